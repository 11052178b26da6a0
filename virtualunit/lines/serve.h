#pragma once

#include <filesystem>

namespace virtualunit::lines {

/**
 * Serves the unit's serial lines in that folder until the process is asked to end (SIGINT, SIGTERM,
 * SIGHUP). Troubles with the unit are told on the standard error stream and waited out.
 * @param recording see Lines
 * Throws std::runtime_error if the lines can't be set up.
 */
void serveLines(const std::filesystem::path &folder, const std::filesystem::path &recording);

} // namespace virtualunit::lines
