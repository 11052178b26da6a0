#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

TelematicsHandle Telematics_create(void)
{
    return create<TelematicsDevice>(__func__);
}

void Telematics_release(TelematicsHandle handle)
{
    release(__func__, handle);
}

DeviceCode Telematics_getAvailable(TelematicsHandle handle, int32_t *available)
{
    return get(__func__, handle, Out{"Telematics.available", available});
}

DeviceCode Telematics_getGPRSPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.gprsPowerStatus", status});
}

DeviceCode Telematics_setGPRSPowerStatus(TelematicsHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Telematics.gprsPowerStatus", status});
}

DeviceCode Telematics_getGPRSStartUpPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.gprsStartUpPowerStatus", status});
}

DeviceCode Telematics_setGPRSStartUpPowerStatus(TelematicsHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Telematics.gprsStartUpPowerStatus", status});
}

DeviceCode Telematics_getWLANPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.wlanPowerStatus", status});
}

DeviceCode Telematics_setWLANPowerStatus(TelematicsHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Telematics.wlanPowerStatus", status});
}

DeviceCode Telematics_getWLANStartUpPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.wlanStartUpPowerStatus", status});
}

DeviceCode Telematics_setWLANStartUpPowerStatus(TelematicsHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Telematics.wlanStartUpPowerStatus", status});
}

DeviceCode Telematics_getBTPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.btPowerStatus", status});
}

DeviceCode Telematics_setBTPowerStatus(TelematicsHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Telematics.btPowerStatus", status});
}

DeviceCode Telematics_getBTStartUpPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.btStartUpPowerStatus", status});
}

DeviceCode Telematics_setBTStartUpPowerStatus(TelematicsHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Telematics.btStartUpPowerStatus", status});
}

DeviceCode Telematics_getGPSPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.gpsPowerStatus", status});
}

DeviceCode Telematics_setGPSPowerStatus(TelematicsHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Telematics.gpsPowerStatus", status});
}

DeviceCode Telematics_getGPSStartUpPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.gpsStartUpPowerStatus", status});
}

DeviceCode Telematics_setGPSStartUpPowerStatus(TelematicsHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Telematics.gpsStartUpPowerStatus", status});
}

DeviceCode Telematics_getGPSAntennaStatus(TelematicsHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Telematics.gpsAntennaStatus", status});
}
