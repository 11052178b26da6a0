#pragma once

#include "devicetools/contract.h"

#include <cstdint>
#include <string>
#include <string_view>

/**
 * How values of a device stand in lines that people and tools read: in the virtual unit's journal
 * as in a trace. The grammar is in docs/trace.md. Each function appends to a line; any thread.
 */
namespace notation {

/** A text of the device, bytes 1 to 255, in double quotes: Latin-1 becomes UTF-8, and whatever
 *  would leave the line or end the quotes is escaped. Null is the word. */
void appendText(std::string &line, std::string_view latin1);
void appendText(std::string &line, const char *latin1);
void appendInteger(std::string &line, std::int64_t number);
/** The shortest figures that give the same number again. */
void appendReal(std::string &line, double number);
/** What the library gave for a truth value: the words for 0 and 1, any other as a number. */
void appendFlag(std::string &line, std::uint8_t value);
/** Seconds with six digits behind the point. */
void appendSeconds(std::string &line, double seconds);
/** The number that stands in these bytes. */
void appendNumber(std::string &line, contract::Number number, const void *place, std::size_t width);
/** All fields of that struct of the contract, "7, 100, 0". */
void appendRecord(std::string &line, const char *type, const void *place);

} // namespace notation
