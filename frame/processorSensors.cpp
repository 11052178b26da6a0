#include "frame/processorSensors.h"

int readProcessorSensors(
    DiagnosticsHandle diagnostics, const std::function<void(int, const ProcessorSensor &)> &found)
{
    for (int n = 0; n < mostProcessorSensors; ++n) {
        ProcessorSensor sensor{0, SENSOR_CPU};
        const auto index = std::uint8_t(n);
        if (Diagnostics_getPMTemp(diagnostics, index, &sensor.celsius, &sensor.kind) != DEVICE_OK)
            return n;
        found(n, sensor);
    }
    return mostProcessorSensors;
}

QString endlessSensorsText()
{
    return QStringLiteral("Sensor list ended after %1 readings").arg(mostProcessorSensors);
}
