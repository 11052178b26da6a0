#pragma once

#include "linuxunit/kernel/files.h"

#include <chrono>

/**
 * Values from devices that may be slow: a sensor on a bus, a sleeping hub. They are read on threads
 * of the library, which begin with the first such reading and end with the last handle. A call
 * waits for 100 ms at most. What isn't there by then is answered with the last value, if that isn't
 * older than `keptFor`, else with 18; the reading goes on, and serves the next call. Each file is
 * read by one thread at a time, however many ask, unless it was written meanwhile. Any thread.
 */
namespace linuxunit {

inline constexpr std::chrono::milliseconds longestWait{90}; ///< the rest is for what surrounds it
inline constexpr std::chrono::seconds keptFor{5};

/** Until when a caller can wait that has several readings to make. */
using Deadline = std::chrono::steady_clock::time_point;
Deadline soon();

/** First line of the file, as readText(). */
std::string readSlowText(const std::string &path, Deadline until = soon());
/** The same of several files at once, within the same time; nothing for those that fail. */
std::vector<std::optional<std::string>> readSlowTexts(
    const std::vector<std::string> &paths, Deadline until = soon());
std::int64_t readSlowNumber(const std::string &path, Deadline until = soon());
double readSlowReal(const std::string &path, Deadline until = soon());
/** What was read of that file, or is being read, answers no later call: it holds something else
 * now. */
void forgetReading(const std::string &path);

} // namespace linuxunit
