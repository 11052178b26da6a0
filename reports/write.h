#pragma once

#include "reports/Entry.h"

#include <span>

namespace reports {

/** A whole report of those entries, which stand in the report's order; layout among them is passed
 *  over. @param date as the report writes it, "Fri Nov 4 05:06:07 2026" */
std::string reportText(std::string_view date, std::span<const Entry> entries);

} // namespace reports
