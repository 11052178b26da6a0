#pragma once

#include <string>

namespace tool {

/** Whether that file is there and begins as a trace or a journal does. */
bool isTrace(const std::string &file);

/**
 * The profile of a unit that holds, of everything that a trace tells, the last value that was read
 * or written; operations that only ever failed are its faults, and all else is as in the profile
 * "full". This process uses a unit of its own in memory from now on. Throws a commandline::Refusal
 * for what is no trace; `warning` gets a sentence when the trace is cut off.
 */
std::string profileOfTrace(const std::string &file, std::string &warning);

} // namespace tool
