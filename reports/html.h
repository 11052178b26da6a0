#pragma once

#include "reports/check.h"
#include "reports/diff.h"

namespace reports {

/**
 * One page that needs nothing else: what the rules find first, then the sections. Two reports stand
 * side by side; of more, those of one unit become trends beside its newest report, and several
 * units a table that leads to each. UTF-8.
 */
std::string htmlPage(const std::vector<Report> &reports, const std::vector<Rule> &rules);

} // namespace reports
