#include "linuxunit/devices/FrontLed.h"
#include "linuxunit/calls/perform.h"

using namespace linuxunit;

/* On and off time are the signal's in units of a device that isn't here, and what the LED does
 * before the kernel runs is its firmware's: those operations answer 2. */

DeviceCode FrontLED_getSignal(FrontLEDHandle handle, double *hertz, uint8_t *dutyCycle)
{
    return perform(handle, {hertz, dutyCycle}, [&](FrontLed &led) {
        const auto signal = led.signal();
        *hertz = signal.hertz;
        *dutyCycle = signal.dutyCycle;
    });
}

DeviceCode FrontLED_setSignal(FrontLEDHandle handle, double hertz, uint8_t dutyCycle)
{
    return perform(handle, {}, [&](FrontLed &led) { led.setSignal({hertz, dutyCycle}); });
}

DeviceCode FrontLED_getColor(FrontLEDHandle handle, uint8_t *red, uint8_t *green, uint8_t *blue)
{
    return perform(handle, {red, green, blue}, [&](FrontLed &led) {
        const auto color = led.color();
        *red = color[0];
        *green = color[1];
        *blue = color[2];
    });
}

DeviceCode FrontLED_setColor(FrontLEDHandle handle, uint8_t red, uint8_t green, uint8_t blue)
{
    return perform(handle, {}, [&](FrontLed &led) { led.setColor({red, green, blue}); });
}

DeviceCode FrontLED_getStandardColor(FrontLEDHandle handle, int32_t *color)
{
    return perform(handle, {color}, [&](FrontLed &led) { *color = led.standardColor(); });
}

DeviceCode FrontLED_setStandardColor(FrontLEDHandle handle, int32_t color)
{
    return perform(handle, {}, [&](FrontLed &led) { led.setStandardColor(color); });
}

DeviceCode FrontLED_getNrOfPulses(FrontLEDHandle handle, uint8_t *pulses)
{
    return perform(handle, {pulses}, [&](FrontLed &led) { *pulses = led.train().pulses; });
}

DeviceCode FrontLED_setNrOfPulses(FrontLEDHandle handle, uint8_t pulses)
{
    return perform(handle, {}, [&](FrontLed &led) {
        led.setTrain({pulses, led.train().idleTime});
    });
}

DeviceCode FrontLED_getIdleTime(FrontLEDHandle handle, uint8_t *hundredMilliseconds)
{
    return perform(handle, {hundredMilliseconds},
        [&](FrontLed &led) { *hundredMilliseconds = led.train().idleTime; });
}

DeviceCode FrontLED_setIdleTime(FrontLEDHandle handle, uint8_t hundredMilliseconds)
{
    return perform(handle, {}, [&](FrontLed &led) {
        led.setTrain({led.train().pulses, hundredMilliseconds});
    });
}

DeviceCode FrontLED_setOff(FrontLEDHandle handle)
{
    return perform(handle, {}, [](FrontLed &led) { led.setOff(); });
}
