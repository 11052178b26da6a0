#pragma once

#include "virtualunit/VirtualUnit.h"

#include <optional>

namespace virtualunit {

/** Whether calls are recorded at all, in memory or in VORN_JOURNAL's file. Cheap. */
bool journalRuns();
/** Changes with each startJournal(): numbers of handles and threads begin anew then. */
unsigned journalGeneration() noexcept;

/** Records one call. No handle for what takes none; 0 for an invalid one. */
void journal(const char *operation, std::optional<unsigned> handle, std::string result,
    std::string arguments, std::string outs);

} // namespace virtualunit
