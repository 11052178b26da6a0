#pragma once

#include "reports/Entry.h"
#include "reports/Lines.h"

namespace reports {

/** What is said of a report as a whole. */
struct Facts {
    std::string generated; ///< ISO 8601 local time, "2026-01-31T08:00:00"; empty if it isn't told
    bool complete = false; ///< the date, every section in its place, and the end
    std::size_t known = 0; ///< lines that belong to a report, blank ones not counted
};

/**
 * Reads a report as far as it goes. Any bytes are taken: what isn't known becomes an entry without
 * a name, and all entries together, by appendSource(), are the text again with plain line feeds.
 * A last line without its end, which may have lost more than that, counts as unknown.
 */
Facts readReport(Lines &lines, EntrySink &sink);

/** "Fri Nov  4 05:06:07 2026", the day padded or not, as "2026-11-04T05:06:07"; else empty. */
std::string isoTime(std::string_view text);

} // namespace reports
