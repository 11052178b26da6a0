#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/SwitchedLines.h"

using namespace linuxunit;

DeviceCode Power_getCanPowerStatus(PowerHandle handle, int32_t *status)
{
    return perform(
        handle, {status}, [&](SwitchedLoads &loads) { *status = loads.isOn("can") ? 1 : 0; });
}

DeviceCode Power_setCanPowerStatus(PowerHandle handle, int32_t status)
{
    return perform(
        handle, {}, [&](SwitchedLoads &loads) { loads.switchTo("can", status == STATUS_ON); });
}

DeviceCode Power_getExtFanPowerStatus(PowerHandle handle, int32_t *status)
{
    return perform(
        handle, {status}, [&](SwitchedLoads &loads) { *status = loads.isOn("extFan") ? 1 : 0; });
}

DeviceCode Power_setExtFanPowerStatus(PowerHandle handle, int32_t status)
{
    return perform(
        handle, {}, [&](SwitchedLoads &loads) { loads.switchTo("extFan", status == STATUS_ON); });
}

DeviceCode Power_getVideoPowerStatus(PowerHandle handle, uint8_t *mask)
{
    return perform(handle, {mask}, [&](SwitchedLoads &loads) { *mask = loads.mask("video"); });
}

DeviceCode Power_setVideoPowerStatus(PowerHandle handle, uint8_t mask)
{
    return perform(handle, {}, [&](SwitchedLoads &loads) { loads.setMask("video", mask); });
}
