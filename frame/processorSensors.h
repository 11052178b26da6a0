#pragma once

#include "frame/VornAux2.h"

#include <QString>

#include <cstdint>
#include <functional>

/** One temperature sensor of the processor module. */
struct ProcessorSensor {
    std::int16_t celsius;
    std::int32_t kind; ///< ProcessorSensorKind, or a number unknown to us
};

/** So many readings in a row are taken for those of a library that knows no end. */
inline constexpr int mostProcessorSensors = 65'536;

/**
 * Reads the processor module's sensors one after the other, up to the first that can't be read or
 * to mostProcessorSensors; more than 256 are the same ones again, since the device counts them in
 * 8 bits.
 *
 * @param found is given each sensor with its number, from 0
 * @return how many there are
 */
int readProcessorSensors(
    DiagnosticsHandle diagnostics, const std::function<void(int, const ProcessorSensor &)> &found);

/** Told of readings without an end. */
QString endlessSensorsText();
