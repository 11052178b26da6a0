#pragma once

#include "reports/Report.h"

namespace reports {

/** A virtual unit made from a report. */
struct UnitProfile {
    std::string json;                ///< a profile as vornunit takes it, UTF-8
    std::vector<std::string> untold; ///< a unit's values that the report doesn't tell, or not in a
                                     ///< way that a unit could hold; in the order of its table
};

/**
 * A unit whose report is this one: every value that it tells, what is absent absent, and error
 * lines as faults of the operations behind them. Everything else is that of a fresh unit. Time
 * stamps are taken as local time of this machine.
 */
UnitProfile unitProfile(const Report &report);

} // namespace reports
