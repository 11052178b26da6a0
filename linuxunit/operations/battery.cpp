#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Accumulator.h"
#include "linuxunit/store/Counters.h"

using namespace linuxunit;

DeviceCode Battery_isAvailable(BatteryHandle handle, DeviceBool *available)
{
    return perform(handle, {available},
        [&](Accumulator &battery) { *available = battery.isAvailable() ? 1 : 0; });
}

DeviceCode Battery_getVoltageLevel(BatteryHandle handle, uint8_t *percent)
{
    return perform(handle, {percent}, [&](Accumulator &battery) { *percent = battery.percent(); });
}

DeviceCode Battery_getChargingStatus(BatteryHandle handle, int32_t *status)
{
    return perform(
        handle, {status}, [&](Accumulator &battery) { *status = battery.chargingStatus(); });
}

DeviceCode Battery_getPowerSource(BatteryHandle handle, int32_t *source)
{
    return perform(
        handle, {source}, [&](Accumulator &battery) { *source = battery.powerSource(); });
}

DeviceCode Battery_getTemperature(BatteryHandle handle, int16_t *celsius)
{
    return perform(handle, {celsius}, [&](Accumulator &battery) { *celsius = battery.celsius(); });
}

DeviceCode Battery_getMinMaxTemp(BatteryHandle handle, int16_t *minimum, int16_t *maximum)
{
    return perform(handle, {minimum, maximum}, [&](Accumulator & /*unused*/) {
        const auto counted = Counters::readBattery();
        if (!counted.coldest || !counted.hottest)
            throw Failure{NotSupported, {}}; // a battery that measures none
        const auto coldest = wholeDegrees(*counted.coldest);
        const auto hottest = wholeDegrees(*counted.hottest);
        *minimum = coldest;
        *maximum = hottest;
    });
}

DeviceCode Battery_getTimes(BatteryHandle handle, BatteryTimes *times)
{
    return perform(handle, {times}, [&](Accumulator & /*unused*/) {
        const auto counted = Counters::readBattery();
        *times = {wholeMinutes(counted.onMainPower), wholeMinutes(counted.onBattery),
            wholeMinutes(counted.belowMinus20), wholeMinutes(counted.atMinus20To0),
            wholeMinutes(counted.at0To40), wholeMinutes(counted.at40To60),
            wholeMinutes(counted.at60To70), wholeMinutes(counted.at70To80),
            wholeMinutes(counted.above80)};
    });
}

DeviceCode Battery_getHwErrorStatus(BatteryHandle handle, int32_t *status)
{
    return perform(
        handle, {status}, [&](Accumulator &battery) { *status = battery.errorStatus(); });
}

DeviceCode Battery_getHwVersion(BatteryHandle handle, char *buffer, uint32_t size)
{
    return performText(handle, buffer, size, [](Accumulator &battery) { return battery.model(); });
}

DeviceCode Battery_getSerialNumber(BatteryHandle handle, char *buffer, uint32_t size)
{
    return performText(handle, buffer, size, [](Accumulator &battery) { return battery.serial(); });
}
