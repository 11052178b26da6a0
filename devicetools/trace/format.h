#pragma once

#include "devicetools/contract.h"

#include <cstdint>
#include <string>
#include <string_view>

/**
 * How the lines of a trace are written, the same as those of the virtual unit's journal. The
 * grammar is in docs/trace.md; Reader.h reads them. Each function appends to a line; any thread.
 */
namespace trace {

/** The first line of a trace, less its end. */
inline constexpr std::string_view versionLine = "# vorntrace 1";

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

/** What the caller gave: all values but the handle and what the operation writes, "1, 250". */
void appendArguments(
    std::string &line, const contract::Operation &operation, const contract::Value *values);
/** What a successful operation wrote, "25". A text without an end ends with its buffer. */
void appendOuts(
    std::string &line, const contract::Operation &operation, const contract::Value *values);

} // namespace trace
