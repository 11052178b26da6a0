#pragma once

#include "frame/VornAux2.h"

#include <QString>

#include <cstdint>

/*
 * One finished line of the report, line feed included, for one item that was read from the unit:
 * its name, the code of the operation that read it and its value. Names, units and text values are
 * Latin-1 and must be readable whatever the code; values count on success only. The text of the
 * code is asked for only where the line shows it.
 */

/** "label: Error(code) text", the line of an item that couldn't be read. */
QString formatErrorLine(const QString &label, DeviceCode code);

/*
 * Items that a unit may lack: the line is left out (empty text) when the code says "not supported"
 * and says "N/A" when the datum can't be had; other codes give an error line.
 */

/** "name: value unit". The blank before the unit stays when there is no unit. */
QString formatValueLine(DeviceCode code, const char *name, const QString &value, const char *unit);
QString formatTextLine(DeviceCode code, const char *name, const char *value, const char *unit);
QString formatShortLine(DeviceCode code, const char *name, std::int16_t value, const char *unit);
QString formatUShortLine(DeviceCode code, const char *name, std::uint16_t value, const char *unit);
/** Six significant digits, with an exponent where that is shorter. */
QString formatVoltageLine(DeviceCode code, const char *name, double volts, const char *unit);
/** "name: 1500 min (1 days, 1h, 0min) ". */
QString formatMinutesLine(DeviceCode code, const char *name, std::uint32_t minutes);
/** "Number of name connections: count". */
QString formatConnectionsLine(DeviceCode code, const char *name, std::uint8_t count);
/** "name device mounted: Yes" or "No". */
QString formatMountedLine(DeviceCode code, const char *name, bool mounted);

/*
 * Settings, which every unit is expected to have: every code but success gives an error line.
 */

/** "name: vmajor.minor.release.build". */
QString formatVersionLine(const char *name, std::uint8_t major, std::uint8_t minor,
    std::uint8_t release, std::uint8_t build, DeviceCode code);
QString formatIntLine(const char *name, std::int32_t value, DeviceCode code);
/** Six significant digits, with an exponent where that is shorter. */
QString formatDoubleLine(const char *name, double value, DeviceCode code);
/** OnOffStatus as "Enabled" or "Disabled". */
QString formatEnabledLine(const char *name, std::int32_t status, DeviceCode code);
QString formatStartupTriggerLine(const char *name, std::int32_t trigger, DeviceCode code);
QString formatButtonActionLine(const char *name, std::int32_t action, DeviceCode code);
QString formatFrameTypeLine(const char *name, std::int32_t frameType, DeviceCode code);

/** Configuration of a button by its number. An item of its own kind: "not supported" leaves the
 *  line out, every other code gives an error line. */
QString formatButtonConfigLine(DeviceCode code, const char *name, std::int32_t value);
