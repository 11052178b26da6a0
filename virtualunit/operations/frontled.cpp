#include "virtualunit/calls/Operation.h"

#include <algorithm>

using namespace virtualunit;

namespace {

struct Color {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

/** By their LedColor. */
constexpr Color standardColors[] = {
    {15, 0, 0}, {0, 15, 0}, {0, 0, 15}, {0, 15, 15}, {15, 0, 15}, {15, 15, 0}};

/** One past the standard colours for every other. */
int32_t standardColor(const Unit &unit)
{
    const double red = unit.number("FrontLED.red");
    const double green = unit.number("FrontLED.green");
    const double blue = unit.number("FrontLED.blue");
    const auto found =
        std::find_if(std::begin(standardColors), std::end(standardColors), [&](const Color &color) {
            return color.red == red && color.green == green && color.blue == blue;
        });
    return int32_t(found - std::begin(standardColors));
}

} // namespace

FrontLEDHandle FrontLED_create(void)
{
    return create<FrontLEDDevice>(__func__);
}

void FrontLED_release(FrontLEDHandle handle)
{
    release(__func__, handle);
}

DeviceCode FrontLED_getSignal(FrontLEDHandle handle, double *hertz, uint8_t *dutyCycle)
{
    return get(
        __func__, handle, Out{"FrontLED.frequency", hertz}, Out{"FrontLED.dutyCycle", dutyCycle});
}

DeviceCode FrontLED_setSignal(FrontLEDHandle handle, double hertz, uint8_t dutyCycle)
{
    return set(
        __func__, handle, In{"FrontLED.frequency", hertz}, In{"FrontLED.dutyCycle", dutyCycle});
}

DeviceCode FrontLED_getOnTime(FrontLEDHandle handle, uint8_t *time)
{
    return get(__func__, handle, Out{"FrontLED.onTime", time});
}

DeviceCode FrontLED_setOnTime(FrontLEDHandle handle, uint8_t time)
{
    return set(__func__, handle, In{"FrontLED.onTime", time});
}

DeviceCode FrontLED_getOffTime(FrontLEDHandle handle, uint8_t *time)
{
    return get(__func__, handle, Out{"FrontLED.offTime", time});
}

DeviceCode FrontLED_setOffTime(FrontLEDHandle handle, uint8_t time)
{
    return set(__func__, handle, In{"FrontLED.offTime", time});
}

DeviceCode FrontLED_getIdleTime(FrontLEDHandle handle, uint8_t *hundredMilliseconds)
{
    return get(__func__, handle, Out{"FrontLED.idleTime", hundredMilliseconds});
}

DeviceCode FrontLED_setIdleTime(FrontLEDHandle handle, uint8_t hundredMilliseconds)
{
    return set(__func__, handle, In{"FrontLED.idleTime", hundredMilliseconds});
}

DeviceCode FrontLED_getNrOfPulses(FrontLEDHandle handle, uint8_t *pulses)
{
    return get(__func__, handle, Out{"FrontLED.nrOfPulses", pulses});
}

DeviceCode FrontLED_setNrOfPulses(FrontLEDHandle handle, uint8_t pulses)
{
    return set(__func__, handle, In{"FrontLED.nrOfPulses", pulses});
}

DeviceCode FrontLED_getColor(FrontLEDHandle handle, uint8_t *red, uint8_t *green, uint8_t *blue)
{
    return get(__func__, handle, Out{"FrontLED.red", red}, Out{"FrontLED.green", green},
        Out{"FrontLED.blue", blue});
}

DeviceCode FrontLED_setColor(FrontLEDHandle handle, uint8_t red, uint8_t green, uint8_t blue)
{
    return set(__func__, handle, In{"FrontLED.red", red}, In{"FrontLED.green", green},
        In{"FrontLED.blue", blue});
}

DeviceCode FrontLED_getStandardColor(FrontLEDHandle handle, int32_t *color)
{
    return perform(__func__, handle, {color}, Does::Read, [&](Unit &unit) {
        const Code code = unit.missing("FrontLED.red");
        if (code == Ok)
            *color = standardColor(unit);
        return code;
    });
}

DeviceCode FrontLED_setStandardColor(FrontLEDHandle handle, int32_t color)
{
    return perform(__func__, handle, {color}, Does::Write, [&](Unit &unit) {
        if (const Code code = unit.missing("FrontLED.red"); code != Ok)
            return code;
        if (color < 0 || std::size_t(color) >= std::size(standardColors))
            return ValueOutOfRange;
        const auto &[red, green, blue] = standardColors[color];
        unit.set("FrontLED.red", red);
        unit.set("FrontLED.green", green);
        unit.set("FrontLED.blue", blue);
        return Ok;
    });
}

DeviceCode FrontLED_getEnabledDuringStartup(FrontLEDHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"FrontLED.enabledDuringStartup", status});
}

DeviceCode FrontLED_setEnabledDuringStartup(FrontLEDHandle handle, int32_t status)
{
    return set(__func__, handle, In{"FrontLED.enabledDuringStartup", status});
}

DeviceCode FrontLED_setOff(FrontLEDHandle handle)
{
    // Dark is a duty cycle of 0; colour and frequency stay for the next time.
    return set(__func__, handle, Fixed{"FrontLED.dutyCycle", 0});
}
