#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/AutomaticBacklight.h"
#include "linuxunit/devices/LightSource.h"
#include "linuxunit/devices/Panel.h"

using namespace linuxunit;

namespace {

/** What the automatic control needs; it doesn't exist on a machine without either. */
struct Lit {
    Panel panel;
    LightSource light;

    void requireBoth()
    {
        light.require();
        static_cast<void>(panel.name());
    }
};

} // namespace

DeviceCode Backlight_getIntensity(BacklightHandle handle, uint8_t *intensity)
{
    return perform(handle, {intensity}, [&](Panel &panel) { *intensity = panel.intensity(); });
}

DeviceCode Backlight_setIntensity(BacklightHandle handle, uint8_t intensity)
{
    return perform(handle, {}, [&](Panel &panel) { panel.setIntensity(intensity); });
}

DeviceCode Backlight_getHealthStatus(BacklightHandle handle, DeviceBool *healthy)
{
    return perform(handle, {healthy}, [&](Panel &panel) { *healthy = panel.isSound() ? 1 : 0; });
}

DeviceCode Backlight_startAutomaticBL(BacklightHandle handle)
{
    return perform(handle, {}, [](Lit &lit) {
        lit.requireBoth();
        automatic::start();
    });
}

DeviceCode Backlight_stopAutomaticBL(BacklightHandle handle)
{
    return perform(handle, {}, [](Lit &lit) {
        lit.requireBoth();
        automatic::stop();
    });
}

DeviceCode Backlight_getAutomaticBLStatus(BacklightHandle handle, uint8_t *running)
{
    return perform(handle, {running}, [&](Lit &lit) {
        lit.requireBoth();
        *running = automatic::isRunning() ? 1 : 0;
    });
}

DeviceCode Backlight_setAutomaticBLParams(BacklightHandle handle, bool softTransitions)
{
    return perform(handle, {}, [&](Lit &lit) {
        lit.requireBoth();
        automatic::setSoftTransitions(softTransitions);
    });
}

DeviceCode Backlight_getAutomaticBLParams(
    BacklightHandle handle, DeviceBool *softTransitions, double *kValue)
{
    return perform(handle, {softTransitions, kValue}, [&](Lit &lit) {
        lit.requireBoth();
        *softTransitions = automatic::settings().softTransitions ? 1 : 0;
        *kValue = automatic::kValue;
    });
}

DeviceCode Backlight_setAutomaticBLFilter(BacklightHandle handle, uint32_t averageWindowSize,
    uint32_t rejectWindowSize, uint32_t rejectDeltaLux, int32_t samplingMode)
{
    return perform(handle, {}, [&](Lit &lit) {
        lit.requireBoth();
        automatic::setFilter({averageWindowSize, rejectWindowSize, rejectDeltaLux, samplingMode});
    });
}

DeviceCode Backlight_getAutomaticBLFilter(BacklightHandle handle, uint32_t *averageWindowSize,
    uint32_t *rejectWindowSize, uint32_t *rejectDeltaLux, int32_t *samplingMode)
{
    return perform(
        handle, {averageWindowSize, rejectWindowSize, rejectDeltaLux, samplingMode}, [&](Lit &lit) {
            lit.requireBoth();
            const auto filter = automatic::settings().filter;
            *averageWindowSize = filter.averageWindowSize;
            *rejectWindowSize = filter.rejectWindowSize;
            *rejectDeltaLux = filter.rejectDeltaLux;
            *samplingMode = filter.samplingMode;
        });
}
