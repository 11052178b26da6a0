#pragma once

#include <filesystem>

namespace virtualunit::lines {

/** What serveLines() does on this system, in one sentence for a help text. */
extern const char *const serveLinesHelp;

/**
 * Serves the unit's serial lines in that folder until the process is asked to end (SIGINT, SIGTERM,
 * SIGHUP). Troubles with the unit are told on the standard error stream and waited out.
 * @param recording see Lines
 * Throws std::runtime_error if the lines can't be set up, as they never can on Windows.
 */
void serveLines(const std::filesystem::path &folder, const std::filesystem::path &recording);

} // namespace virtualunit::lines
