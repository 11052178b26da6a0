#pragma once

#include "reports/Report.h"

namespace reports {

/**
 * What a technician should look at, as data. A rule speaks of the lines that section, group and
 * name pick (empty ones pick any), and finds something where the line doesn't hold to it.
 */
struct Rule {
    enum class Level { Warn, Fail };
    Level level = Level::Warn;
    std::string section; ///< Latin-1, as all texts of a rule but the reason
    std::string group;
    std::string name;
    std::optional<double> minimum; ///< in the unit
    std::optional<double> maximum;
    std::string unit;                ///< of the lines' values
    std::vector<std::string> texts;  ///< one of these, whatever the case
    std::string version;             ///< "2.1.0.0" or later
    bool failed = false;             ///< finds lines that say that something can't be read
    std::vector<std::int32_t> codes; ///< only failures with one of these codes; empty for all
    std::vector<std::int32_t> exceptCodes;
    std::vector<std::string> exceptNames;
    bool incomplete = false; ///< finds reports that aren't complete
    bool unknown = false;    ///< finds reports with lines that no report has
    std::string reason;      ///< for people, UTF-8
};

/** Reads rules from JSON; throws a Trouble that says what is wrong with which rule. */
std::vector<Rule> readRules(const std::string &json);
std::vector<Rule> builtInRules();
extern const char *const builtInRulesText;

/** What a rule has found. Texts are UTF-8. */
struct Finding {
    Rule::Level level = Rule::Level::Warn;
    const Entry *entry = nullptr; ///< null for the report as a whole
    std::string place;            ///< "ADC data" or "Settings, Battery"
    std::string name;
    std::string text;
    std::string limit; ///< "at least 11.4 V"; empty where none makes sense
    std::string reason;
};
const char *levelName(Rule::Level level);

/** In the report's order, what is said of the whole first. Of the rules that find something in a
 *  line the first one speaks. */
std::vector<Finding> check(const Report &report, const std::vector<Rule> &rules);

/** One line for each finding. */
std::string findingsText(const Report &report, const std::vector<Finding> &findings);
/** One JSON object a line for each finding. */
std::string findingsJson(const Report &report, const std::vector<Finding> &findings);

} // namespace reports
