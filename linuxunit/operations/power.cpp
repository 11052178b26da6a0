#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Load.h"
#include "linuxunit/devices/Panel.h"

using namespace linuxunit;

namespace {

/** Nothing is kept: what switches a load is as the configuration says now. */
struct Loads {
};

DeviceCode giveState(PowerHandle handle, int32_t *status, const char *key)
{
    return perform(handle, {status},
        [&](Loads & /*unused*/) { *status = Load::ofPower(key).isOn() ? STATUS_ON : STATUS_OFF; });
}

DeviceCode takeState(PowerHandle handle, int32_t status, const char *key)
{
    return perform(
        handle, {}, [&](Loads & /*unused*/) { Load::ofPower(key).switchTo(status == STATUS_ON); });
}

} // namespace

DeviceCode Power_getBLPowerStatus(PowerHandle handle, int32_t *status)
{
    return perform(
        handle, {status}, [&](Panel &panel) { *status = panel.isLit() ? STATUS_ON : STATUS_OFF; });
}

DeviceCode Power_setBLPowerStatus(PowerHandle handle, int32_t status)
{
    return perform(handle, {}, [&](Panel &panel) {
        if (status != STATUS_ON && status != STATUS_OFF)
            throw Failure{ValueOutOfRange, {}};
        panel.setLit(status == STATUS_ON);
    });
}

DeviceCode Power_getCanPowerStatus(PowerHandle handle, int32_t *status)
{
    return giveState(handle, status, "can");
}

DeviceCode Power_setCanPowerStatus(PowerHandle handle, int32_t status)
{
    return takeState(handle, status, "can");
}

DeviceCode Power_getExtFanPowerStatus(PowerHandle handle, int32_t *status)
{
    return giveState(handle, status, "extFan");
}

DeviceCode Power_setExtFanPowerStatus(PowerHandle handle, int32_t status)
{
    return takeState(handle, status, "extFan");
}

DeviceCode Power_getVideoPowerStatus(PowerHandle handle, uint8_t *mask)
{
    return perform(handle, {mask}, [&](Loads & /*unused*/) { *mask = maskOfLoads("video"); });
}

DeviceCode Power_setVideoPowerStatus(PowerHandle handle, uint8_t mask)
{
    return perform(handle, {}, [&](Loads & /*unused*/) { switchLoads("video", mask); });
}
