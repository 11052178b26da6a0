#pragma once

#include "frame/VornAux2.h"

#include <QString>

#include <cstdint>

/*
 * What the external battery says, in the words that page and report have in common. Lines have
 * their end.
 */

/** Line of a BatteryErrorStatus; empty for a value that is none. */
QString batteryErrorLine(std::int32_t status);

/** Line of a BatteryChargingStatus; empty for a value that is none. */
QString batteryChargingLine(std::int32_t status);

/** Text of a BatteryPowerSource, without a line's end: all that is no battery is external. */
QString powerSourceText(std::int32_t source);

/** Line for what couldn't be read. Asks the library for the code's text.
 *  @param what such as "battery charging status" */
QString batteryFailureLine(const char *what, DeviceCode code);
