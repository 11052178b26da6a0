#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

PowerHandle Power_create(void)
{
    return create<PowerDevice>(__func__);
}

void Power_release(PowerHandle handle)
{
    release(__func__, handle);
}

DeviceCode Power_getBLPowerStatus(PowerHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Power.blPowerStatus", status});
}

DeviceCode Power_setBLPowerStatus(PowerHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Power.blPowerStatus", status});
}

DeviceCode Power_getCanPowerStatus(PowerHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Power.canPowerStatus", status});
}

DeviceCode Power_setCanPowerStatus(PowerHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Power.canPowerStatus", status});
}

DeviceCode Power_getVideoPowerStatus(PowerHandle handle, uint8_t *mask)
{
    return get(__func__, handle, Out{"Power.videoPowerStatus", mask});
}

DeviceCode Power_setVideoPowerStatus(PowerHandle handle, uint8_t mask)
{
    return set(__func__, handle, In{"Power.videoPowerStatus", mask});
}

DeviceCode Power_getExtFanPowerStatus(PowerHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Power.extFanPowerStatus", status});
}

DeviceCode Power_setExtFanPowerStatus(PowerHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Power.extFanPowerStatus", status});
}
