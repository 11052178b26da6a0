#include "virtualunit/state/texts.h"

#include "virtualunit/calls/Operation.h"

const char *deviceErrorText(int32_t code)
{
    return virtualunit::textCall(__func__, code, virtualunit::errorText(code));
}

const char *Diagnostics_startupReasonText(uint16_t reason)
{
    return virtualunit::textCall(__func__, reason, virtualunit::startupReasonText(reason));
}

const char *Diagnostics_hwErrorText(uint16_t status)
{
    return virtualunit::textCall(__func__, status, virtualunit::hardwareErrorText(status));
}
