#pragma once

#include "devicetools/notation.h"

#include <string>
#include <string_view>

/**
 * How the lines of a trace are written. The grammar is in docs/trace.md; LineParser.h reads them.
 * Each function appends to a line; any thread.
 */
namespace trace {

using notation::appendFlag, notation::appendInteger, notation::appendReal, notation::appendSeconds,
    notation::appendText;

/** The first line of a trace, less its end. */
inline constexpr std::string_view versionLine = "# vorntrace 1";

/** What the caller gave: all values but the handle and what the operation writes, "1, 250". */
void appendArguments(
    std::string &line, const contract::Operation &operation, const contract::Value *values);
/** What a successful operation wrote, "25". A text without an end ends with its buffer. */
void appendOuts(
    std::string &line, const contract::Operation &operation, const contract::Value *values);

} // namespace trace
