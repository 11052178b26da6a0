#pragma once

#include <cstddef>
#include <cstdint>

/**
 * What any bytes must do to the code that reads what comes from outside. Each ends the process by
 * a word on the standard error stream where something is wrong. The fuzzer calls them with bytes of
 * its own making, the test with those that it has saved.
 */

/** Bytes of a GPS receiver, taken in chunks as the GPS thread takes them. */
void checkGpsBytes(const std::uint8_t *bytes, std::size_t size);

/** A modem's reply in the modem console. Makes an application object if there is none. */
void checkModemReply(const std::uint8_t *bytes, std::size_t size);

/** A system report, and what a report of made-up values says. */
void checkReport(const std::uint8_t *bytes, std::size_t size);

/** A trace of calls: what can be read is written so that it is read again the same. */
void checkTrace(const std::uint8_t *bytes, std::size_t size);

/** A description of a machine for the Linux unit, unit.json. */
void checkUnitFile(const std::uint8_t *bytes, std::size_t size);

/** The kernel's files of a machine, some of which hold these bytes, through the Linux unit: what
 * its operations answer is what the files say. VORN_FUZZED_UNIT is the unit's library, null for the
 *  program itself. */
void checkKernelFiles(const std::uint8_t *bytes, std::size_t size);
