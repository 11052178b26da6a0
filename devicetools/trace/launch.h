#pragma once

#include "devicetools/trace/Settings.h"

#include <filesystem>
#include <string>
#include <vector>

namespace trace {

/** How a program ended. */
struct Ending {
    int code = 0;   ///< its exit code
    int signal = 0; ///< what killed it, 0 if it ended by itself
};

/** Runs a program with the tracing library in front of its device library, until it ends; signals
 *  that come meanwhile reach it. `folder` is an empty one for the time being. Throws
 *  std::runtime_error with a sentence when it can't be started. */
Ending launch(const std::vector<std::string> &command, const Settings &settings,
    const std::filesystem::path &folder);

/** Ends this process as that one ended. */
[[noreturn]] void endAs(const Ending &ending);

/** A new folder for the user alone. Throws std::system_error. */
std::filesystem::path makeTemporaryFolder();

} // namespace trace
