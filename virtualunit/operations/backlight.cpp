#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

BacklightHandle Backlight_create(void)
{
    return create<BacklightDevice>(__func__);
}

void Backlight_release(BacklightHandle handle)
{
    release(__func__, handle);
}

DeviceCode Backlight_getIntensity(BacklightHandle handle, uint8_t *intensity)
{
    return get(__func__, handle, Out{"Backlight.intensity", intensity});
}

DeviceCode Backlight_setIntensity(BacklightHandle handle, uint8_t intensity)
{
    return set(__func__, handle, In{"Backlight.intensity", intensity});
}

DeviceCode Backlight_getStatus(BacklightHandle handle, uint8_t *status)
{
    return get(__func__, handle, Out{"Backlight.status", status});
}

DeviceCode Backlight_getHealthStatus(BacklightHandle handle, DeviceBool *healthy)
{
    return get(__func__, handle, Out{"Backlight.healthStatus", healthy});
}

DeviceCode Backlight_startAutomaticBL(BacklightHandle handle)
{
    return perform(__func__, handle, {}, Does::Write, [](Unit &unit) {
        Code code = unit.missing("Backlight.automaticBLStatus");
        if (code == Ok)
            code = unit.missing("LightSensor.averaging");
        if (code == Ok) {
            // The control takes the light sensor for itself.
            unit.set("LightSensor.averaging", 0);
            unit.set("Backlight.automaticBLStatus", 1);
        }
        return code;
    });
}

DeviceCode Backlight_stopAutomaticBL(BacklightHandle handle)
{
    return set(__func__, handle, Fixed{"Backlight.automaticBLStatus", 0});
}

DeviceCode Backlight_getAutomaticBLStatus(BacklightHandle handle, uint8_t *running)
{
    return get(__func__, handle, Out{"Backlight.automaticBLStatus", running});
}

DeviceCode Backlight_setAutomaticBLParams(BacklightHandle handle, bool softTransitions)
{
    return set(__func__, handle, In{"Backlight.softTransitions", softTransitions});
}

DeviceCode Backlight_getAutomaticBLParams(
    BacklightHandle handle, DeviceBool *softTransitions, double *kValue)
{
    return get(__func__, handle, Out{"Backlight.softTransitions", softTransitions},
        Out{"Backlight.kValue", kValue});
}

DeviceCode Backlight_setAutomaticBLFilter(BacklightHandle handle, uint32_t averageWindowSize,
    uint32_t rejectWindowSize, uint32_t rejectDeltaLux, int32_t samplingMode)
{
    return set(__func__, handle, In{"Backlight.averageWindowSize", averageWindowSize},
        In{"Backlight.rejectWindowSize", rejectWindowSize},
        In{"Backlight.rejectDeltaLux", rejectDeltaLux}, In{"Backlight.samplingMode", samplingMode});
}

DeviceCode Backlight_getAutomaticBLFilter(BacklightHandle handle, uint32_t *averageWindowSize,
    uint32_t *rejectWindowSize, uint32_t *rejectDeltaLux, int32_t *samplingMode)
{
    return get(__func__, handle, Out{"Backlight.averageWindowSize", averageWindowSize},
        Out{"Backlight.rejectWindowSize", rejectWindowSize},
        Out{"Backlight.rejectDeltaLux", rejectDeltaLux},
        Out{"Backlight.samplingMode", samplingMode});
}

DeviceCode Backlight_getLedDimming(BacklightHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Backlight.ledDimming", status});
}

DeviceCode Backlight_setLedDimming(BacklightHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Backlight.ledDimming", status});
}
