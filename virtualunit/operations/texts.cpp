#include "virtualunit/texts.h"
#include "frame/VornAux2.h"

const char *deviceErrorText(int32_t code)
{
    return virtualunit::errorText(code);
}

const char *Diagnostics_startupReasonText(uint16_t reason)
{
    return virtualunit::startupReasonText(reason);
}

const char *Diagnostics_hwErrorText(uint16_t status)
{
    return virtualunit::hardwareErrorText(status);
}
