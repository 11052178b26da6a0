#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

BatteryHandle Battery_create(void)
{
    return create<BatteryDevice>(__func__);
}

void Battery_release(BatteryHandle handle)
{
    release(__func__, handle);
}

DeviceCode Battery_isAvailable(BatteryHandle handle, DeviceBool *available)
{
    return get(__func__, handle, Out{"Battery.available", available});
}

DeviceCode Battery_getVoltageLevel(BatteryHandle handle, uint8_t *percent)
{
    return get(__func__, handle, Out{"Battery.voltageLevel", percent});
}

DeviceCode Battery_getChargingStatus(BatteryHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Battery.chargingStatus", status});
}

DeviceCode Battery_getPowerSource(BatteryHandle handle, int32_t *source)
{
    return get(__func__, handle, Out{"Battery.powerSource", source});
}

DeviceCode Battery_getTemperature(BatteryHandle handle, int16_t *celsius)
{
    return get(__func__, handle, Out{"Battery.temperature", celsius});
}

DeviceCode Battery_getMinMaxTemp(BatteryHandle handle, int16_t *minimum, int16_t *maximum)
{
    return get(__func__, handle, Out{"Battery.minTemp", minimum}, Out{"Battery.maxTemp", maximum});
}

DeviceCode Battery_getHwErrorStatus(BatteryHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Battery.hwErrorStatus", status});
}

DeviceCode Battery_getTimes(BatteryHandle handle, BatteryTimes *times)
{
    return perform(__func__, handle, {times}, Does::Read, [&](Unit &unit) {
        const Code code = unit.missing("Battery.runTimeMainPower");
        if (code != Ok)
            return code;
        const auto minutes = [&](Key key) { return uint32_t(unit.number(key)); };
        times->runTimeMainPower = minutes("Battery.runTimeMainPower");
        times->runTimeBatteryPower = minutes("Battery.runTimeBatteryPower");
        times->runTimeBelowMinus20 = minutes("Battery.runTimeBelowMinus20");
        times->runTimeMinus20To0 = minutes("Battery.runTimeMinus20To0");
        times->runTime0To40 = minutes("Battery.runTime0To40");
        times->runTime40To60 = minutes("Battery.runTime40To60");
        times->runTime60To70 = minutes("Battery.runTime60To70");
        times->runTime70To80 = minutes("Battery.runTime70To80");
        times->runTimeAbove80 = minutes("Battery.runTimeAbove80");
        return Ok;
    });
}

DeviceCode Battery_getHwVersion(BatteryHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Battery.hwVersion", buffer, size);
}

DeviceCode Battery_getSwVersion(
    BatteryHandle handle, uint16_t *major, uint16_t *minor, uint16_t *release, uint16_t *build)
{
    return getVersion(__func__, handle, "Battery.swVersion", major, minor, release, build);
}

DeviceCode Battery_getSerialNumber(BatteryHandle handle, char *buffer, uint32_t size)
{
    return getText(__func__, handle, "Battery.serialNumber", buffer, size);
}
