#include "reports/check.h"

#include "reports/diff.h"
#include "reports/exchange.h"

#include <algorithm>
#include <array>

namespace reports {

namespace {

std::string utf8(std::string_view latin1)
{
    std::string text;
    appendUtf8(text, latin1);
    return text;
}

char lower(char character)
{
    return character >= 'A' && character <= 'Z' ? char(character + 32) : character;
}

bool sameText(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
        [](char a, char b) { return lower(a) == lower(b); });
}

template <typename T, typename Value>
bool contains(const std::vector<T> &list, const Value &value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

/** Missing numbers are 0. */
std::optional<std::array<unsigned, 4>> versionOf(std::string_view text)
{
    const std::vector<unsigned> numbers = versionNumbers(text);
    if (numbers.empty())
        return {};
    std::array<unsigned, 4> version{};
    std::copy(numbers.begin(), numbers.end(), version.begin());
    return version;
}

bool picks(const Rule &rule, const Entry &entry)
{
    return (rule.section.empty() || entry.section == rule.section) &&
           (rule.group.empty() || entry.group == rule.group) &&
           (rule.name.empty() || entry.name == rule.name) && !entry.name.empty() &&
           !contains(rule.exceptNames, entry.name);
}

/** Whether the line says nothing else where it could be read. */
bool alwaysHasNumber(const Item &item)
{
    return !item.unit.empty() || (item.shape == Shape::Number && item.words.empty());
}

/** What nobody knows, in one finding however much of it there is. */
Finding unknownLines(const Rule &rule, const Report &report)
{
    std::size_t count = 0;
    std::string first;
    for (const Entry &entry : report.entries()) {
        if (entry.kind == Entry::Kind::Unknown && count++ == 0)
            first = utf8(entry.text.substr(0, 60));
    }
    if (count == 0)
        return {};
    return {rule.level, nullptr, "", "the report",
        "has " + std::to_string(count) + (count == 1 ? " line" : " lines") +
            " that no report has, first \"" + first + "\"",
        "", rule.reason};
}

/** What the line should be by the rule; nothing where it is. An empty text where it can't be told.
 */
std::optional<std::string> broken(const Rule &rule, const Entry &entry)
{
    if (rule.failed) {
        const bool counts =
            entry.failed &&
            (rule.codes.empty() || (entry.error && contains(rule.codes, *entry.error))) &&
            !(entry.error && contains(rule.exceptCodes, *entry.error));
        return counts ? std::optional<std::string>("") : std::nullopt;
    }
    if (entry.failed)
        return {};
    if ((rule.minimum || rule.maximum) && (!entry.item || unitOf(*entry.item) != rule.unit))
        return {}; // the rule picks more than it measures
    const auto value = numberOf(entry.number);
    const std::string unit = rule.unit.empty() ? "" : " " + utf8(rule.unit);
    if (rule.minimum && value && *value < *rule.minimum)
        return "at least " + numberText(*rule.minimum) + unit;
    if (rule.maximum && value && *value > *rule.maximum)
        return "at most " + numberText(*rule.maximum) + unit;
    if ((rule.minimum || rule.maximum) && !value && alwaysHasNumber(*entry.item))
        return "a number" + (unit.empty() ? unit : " in" + unit);
    const auto wanted = versionOf(rule.version);
    const auto version = versionOf(entry.text);
    if (wanted && version && *version < *wanted)
        return "at least v" + rule.version;
    const auto isText = [&](const std::string &text) { return sameText(text, entry.text); };
    if (!rule.texts.empty() && std::none_of(rule.texts.begin(), rule.texts.end(), isText))
        return "\"" + utf8(rule.texts.front()) + "\"";
    return {};
}

} // namespace

const char *levelName(Rule::Level level)
{
    return level == Rule::Level::Fail ? "FAIL" : "WARN";
}

std::vector<Finding> check(const Report &report, const std::vector<Rule> &rules)
{
    std::vector<Finding> findings;
    for (const Rule &rule : rules) {
        if (rule.incomplete && !report.facts().complete)
            findings.push_back(
                {rule.level, nullptr, "", "the report", "is not complete", "", rule.reason});
        if (rule.unknown) {
            Finding finding = unknownLines(rule, report);
            if (!finding.name.empty())
                findings.push_back(std::move(finding));
        }
    }
    for (const Entry &entry : report.entries()) {
        for (const Rule &rule : rules) {
            if (rule.incomplete || rule.unknown || !picks(rule, entry))
                continue;
            const auto limit = broken(rule, entry);
            if (!limit)
                continue;
            findings.push_back({rule.level, &entry, utf8(placeName(entry)), utf8(entry.name),
                utf8(entry.text), *limit, rule.reason});
            break;
        }
    }
    return findings;
}

std::string findingsText(const Report &report, const std::vector<Finding> &findings)
{
    std::string text;
    for (const Finding &finding : findings) {
        std::string line = levelName(finding.level);
        line.append(" ").append(report.name()).append(": ");
        if (!finding.place.empty())
            line.append(finding.place).append(": ");
        line.append(finding.name).append(finding.entry ? ": " : " ").append(finding.text);
        if (!finding.limit.empty())
            line.append(" (should be ").append(finding.limit).append(")");
        line.append(": ").append(finding.reason);
        text.append(forTerminal(line)).append("\n");
    }
    return text;
}

std::string findingsJson(const Report &report, const std::vector<Finding> &findings)
{
    std::string text;
    for (const Finding &finding : findings) {
        const auto field = [&text](const char *key, std::string_view value, bool null) {
            text.append(",\"").append(key).append("\":");
            if (null)
                text += "null";
            else
                appendJsonUtf8(text, value);
        };
        text.append("{\"level\":\"").append(levelName(finding.level)).append("\"");
        field("file", report.name(), false);
        field("section", finding.entry ? utf8(finding.entry->section) : "", !finding.entry);
        field("group", finding.entry ? utf8(finding.entry->group) : "", !finding.entry);
        field("name", finding.name, !finding.entry);
        field("text", finding.text, false);
        field("limit", finding.limit, finding.limit.empty());
        field("reason", finding.reason, false);
        text += "}\n";
    }
    return text;
}

} // namespace reports
