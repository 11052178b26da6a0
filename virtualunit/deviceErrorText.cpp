#include "frame/VornAux2.h"

const char *deviceErrorText(int32_t code)
{
    return code == DEVICE_OK ? "No error" : "Unknown error";
}
