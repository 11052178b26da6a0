#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Accumulator.h"

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

DeviceCode Battery_getHwErrorStatus(BatteryHandle handle, int32_t *status)
{
    return perform(
        handle, {status}, [&](Accumulator &battery) { *status = battery.errorStatus(); });
}

DeviceCode Battery_getHwVersion(BatteryHandle handle, char *buffer, uint32_t size)
{
    return performText(
        handle, buffer, size, [](Accumulator &battery) { return battery.text("model_name"); });
}

DeviceCode Battery_getSerialNumber(BatteryHandle handle, char *buffer, uint32_t size)
{
    return performText(
        handle, buffer, size, [](Accumulator &battery) { return battery.text("serial_number"); });
}
