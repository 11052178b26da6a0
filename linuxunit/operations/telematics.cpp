#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Radios.h"

using namespace linuxunit;

/* The system keeps the switches as they were when it went down; nothing keeps another state for the
 * next start, and the operations for that answer 2. */

namespace {

DeviceCode giveState(TelematicsHandle handle, int32_t *status, const char *type)
{
    return perform(handle, {status},
        [&](Radios &radios) { *status = radios.isOn(type) ? STATUS_ON : STATUS_OFF; });
}

DeviceCode takeState(TelematicsHandle handle, int32_t status, const char *type)
{
    return perform(handle, {}, [&](Radios &radios) { radios.switchTo(type, status == STATUS_ON); });
}

} // namespace

DeviceCode Telematics_getAvailable(TelematicsHandle handle, int32_t *available)
{
    return perform(handle, {available}, [&](Radios &radios) {
        radios.require();
        *available = 1;
    });
}

DeviceCode Telematics_getGPRSPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return giveState(handle, status, "wwan");
}

DeviceCode Telematics_setGPRSPowerStatus(TelematicsHandle handle, int32_t status)
{
    return takeState(handle, status, "wwan");
}

DeviceCode Telematics_getWLANPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return giveState(handle, status, "wlan");
}

DeviceCode Telematics_setWLANPowerStatus(TelematicsHandle handle, int32_t status)
{
    return takeState(handle, status, "wlan");
}

DeviceCode Telematics_getBTPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return giveState(handle, status, "bluetooth");
}

DeviceCode Telematics_setBTPowerStatus(TelematicsHandle handle, int32_t status)
{
    return takeState(handle, status, "bluetooth");
}

DeviceCode Telematics_getGPSPowerStatus(TelematicsHandle handle, int32_t *status)
{
    return giveState(handle, status, "gps");
}

DeviceCode Telematics_setGPSPowerStatus(TelematicsHandle handle, int32_t status)
{
    return takeState(handle, status, "gps");
}

DeviceCode Telematics_getGPSAntennaStatus(TelematicsHandle handle, int32_t *status)
{
    return perform(
        handle, {status}, [&](Radios &radios) { *status = radios.isAntennaGood() ? 1 : 0; });
}
