#pragma once

#include "devicetools/trace/Trace.h"

namespace trace {

/** What is wrong with a line. */
struct LineError {
    std::string reason;
    bool isAtEnd; ///< as far as it goes it is a line: something is missing, nothing is wrong
};

/** Reads one line of a trace, less its end. Throws LineError. */
Call parseLine(std::string_view line);

} // namespace trace
