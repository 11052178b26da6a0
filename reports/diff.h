#pragma once

#include "reports/Report.h"

#include <optional>

namespace reports {

/** How far a living value may move without being a change. */
struct Tolerance {
    std::string_view name; ///< as --tolerance takes it
    double amount = 0;     ///< in the values' own unit, or in per cent of the old one
    bool percent = false;
    std::string_view about; ///< for people
};

/** The one table of them, with the amounts that hold unless others are set. */
std::vector<Tolerance> defaultTolerances();

/** Sets one from "rail=2%" or "temperature=5"; throws a Trouble that says what is wrong. */
void setTolerance(std::vector<Tolerance> &tolerances, std::string_view text);

/** An entry of two reports; null where a report lacks it. */
struct Pair {
    const Entry *before = nullptr;
    const Entry *after = nullptr;
    bool changed = false; ///< beyond the tolerance

    const Entry &either() const { return before ? *before : *after; }
    /** "+12", "-0.4 V"; empty where there are no two numbers that differ. */
    std::string difference() const;
};

/** All entries of two reports side by side, by section and group, logs last. */
std::vector<Pair> compare(
    const Report &before, const Report &after, const std::vector<Tolerance> &tolerances);

/** What is said of an entry's text, Latin-1: the text, the size of a log, or "absent". */
std::string entryText(const Report &report, const Entry *entry);

/** "ADC data" or "Settings, Battery". */
std::string placeName(const Entry &entry);

struct DiffOptions {
    std::vector<Tolerance> tolerances;
    bool all = false;
    bool json = false;
};

/** Prints what changed; returns whether anything did. */
bool printDiff(
    std::ostream &out, const Report &before, const Report &after, const DiffOptions &options);

} // namespace reports
