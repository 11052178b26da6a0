#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

namespace {

/** The range that the running measurement chose, else the one that was set. */
int32_t rangeInUse(const Unit &unit)
{
    constexpr double standardLimit = 4095; // lux
    const auto mode = int32_t(unit.number("LightSensor.samplingMode"));
    if (!unit.on("LightSensor.averaging"))
        return int32_t(unit.number("LightSensor.operatingRange"));
    if (mode != SAMPLING_AUTO)
        return mode == SAMPLING_EXTENDED ? LIGHT_RANGE_EXTENDED : LIGHT_RANGE_STANDARD;
    return unit.number("LightSensor.illuminance") > standardLimit ? LIGHT_RANGE_EXTENDED
                                                                  : LIGHT_RANGE_STANDARD;
}

} // namespace

LightSensorHandle LightSensor_create(void)
{
    return create<LightSensorDevice>(__func__);
}

void LightSensor_release(LightSensorHandle handle)
{
    release(__func__, handle);
}

DeviceCode LightSensor_getIlluminance(LightSensorHandle handle, uint16_t *lux)
{
    return get(__func__, handle, Out{"LightSensor.illuminance", lux});
}

DeviceCode LightSensor_getOperatingRange(LightSensorHandle handle, int32_t *range)
{
    return perform(__func__, handle, {range}, Does::Read, [&](Unit &unit) {
        const Code code = unit.missing("LightSensor.operatingRange");
        if (code == Ok)
            *range = rangeInUse(unit);
        return code;
    });
}

DeviceCode LightSensor_setOperatingRange(LightSensorHandle handle, int32_t range)
{
    return set(__func__, handle, In{"LightSensor.operatingRange", range});
}

DeviceCode LightSensor_startAverageCalc(LightSensorHandle handle, uint32_t averageWindowSize,
    uint32_t rejectWindowSize, uint32_t rejectDeltaLux, int32_t samplingMode)
{
    return perform(__func__, handle,
        {averageWindowSize, rejectWindowSize, rejectDeltaLux, samplingMode}, Does::Write,
        [&](Unit &unit) {
            Code code = unit.missing("LightSensor.averageWindowSize");
            if (code == Ok && unit.on("Backlight.automaticBLStatus"))
                code = AutomaticBacklight;
            const auto store = [&](Key key, double number) {
                if (code == Ok)
                    code = unit.setChecked(key, number);
            };
            store("LightSensor.averageWindowSize", averageWindowSize);
            store("LightSensor.rejectWindowSize", rejectWindowSize);
            store("LightSensor.rejectDeltaLux", rejectDeltaLux);
            store("LightSensor.samplingMode", samplingMode);
            store("LightSensor.averaging", 1);
            return code;
        });
}

DeviceCode LightSensor_stopAverageCalc(LightSensorHandle handle)
{
    return set(__func__, handle, Fixed{"LightSensor.averaging", 0});
}
