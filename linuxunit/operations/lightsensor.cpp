#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/AutomaticBacklight.h"
#include "linuxunit/devices/AveragedLight.h"
#include "linuxunit/devices/LightSource.h"

using namespace linuxunit;

DeviceCode LightSensor_getIlluminance(LightSensorHandle handle, uint16_t *lux)
{
    return perform(handle, {lux}, [&](AveragedLight &light) { *lux = light.lux(); });
}

DeviceCode LightSensor_getOperatingRange(LightSensorHandle handle, int32_t *range)
{
    return perform(handle, {range}, [&](LightSource &light) { *range = light.range(); });
}

DeviceCode LightSensor_setOperatingRange(LightSensorHandle handle, int32_t range)
{
    return perform(handle, {}, [&](LightSource &light) { light.setRange(range); });
}

DeviceCode LightSensor_startAverageCalc(LightSensorHandle handle, uint32_t averageWindowSize,
    uint32_t rejectWindowSize, uint32_t rejectDeltaLux, int32_t samplingMode)
{
    return perform(handle, {}, [&](AveragedLight &light) {
        light.require();
        if (automatic::isRunning())
            throw Failure{AutomaticBacklight, {}};
        light.start({averageWindowSize, rejectWindowSize, rejectDeltaLux, samplingMode});
    });
}

DeviceCode LightSensor_stopAverageCalc(LightSensorHandle handle)
{
    return perform(handle, {}, [](AveragedLight &light) {
        light.require();
        light.stop();
    });
}
