#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

SmartHandle Smart_create(void)
{
    return create<SmartDevice>(__func__);
}

void Smart_release(SmartHandle handle)
{
    release(__func__, handle);
}

DeviceCode Smart_getDeviceSerial(SmartHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Smart.deviceSerial", buffer, size);
}

DeviceCode Smart_getRemainingLifetime(SmartHandle handle, uint8_t *percent)
{
    return get(__func__, handle, Out{"Smart.remainingLifetime", percent});
}

DeviceCode Smart_getInitialTime(SmartHandle handle, int64_t *seconds)
{
    return get(__func__, handle, Out{"Smart.initialTime", seconds});
}

DeviceCode Smart_getDeviceSerial2(SmartHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Smart.deviceSerial2", buffer, size);
}

DeviceCode Smart_getRemainingLifetime2(SmartHandle handle, uint8_t *percent)
{
    return get(__func__, handle, Out{"Smart.remainingLifetime2", percent});
}

DeviceCode Smart_getInitialTime2(SmartHandle handle, int64_t *seconds)
{
    return get(__func__, handle, Out{"Smart.initialTime2", seconds});
}
