#include "reports/check.h"

#include "reports/diff.h"
#include "reports/exchange.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

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

/** "v1.2.3.4" or "1.2.3.4"; missing numbers are 0. Nothing for other texts. */
std::optional<std::array<unsigned, 4>> versionOf(std::string_view text)
{
    if (text.starts_with('v'))
        text.remove_prefix(1);
    std::array<unsigned, 4> version{};
    const char *at = text.data();
    const char *const end = at + text.size();
    for (std::size_t i = 0; i < version.size(); ++i) {
        const auto [next, error] = std::from_chars(at, end, version[i]);
        if (error != std::errc())
            return {};
        if (next == end)
            return version;
        if (*next != '.')
            return {};
        at = next + 1;
    }
    return {};
}

std::string numberText(double number)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.6g", number);
    return text.data();
}

bool picks(const Rule &rule, const Entry &entry)
{
    return (rule.section.empty() || entry.section == rule.section) &&
           (rule.group.empty() || entry.group == rule.group) &&
           (rule.name.empty() || entry.name == rule.name) && !entry.name.empty() &&
           !contains(rule.exceptNames, entry.name);
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
    const auto value = numberOf(entry.number);
    const std::string unit = rule.unit.empty() ? "" : " " + utf8(rule.unit);
    if (rule.minimum && value && *value < *rule.minimum)
        return "at least " + numberText(*rule.minimum) + unit;
    if (rule.maximum && value && *value > *rule.maximum)
        return "at most " + numberText(*rule.maximum) + unit;
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
    }
    for (const Entry &entry : report.entries()) {
        for (const Rule &rule : rules) {
            if (rule.incomplete || !picks(rule, entry))
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
        text.append(levelName(finding.level)).append(" ").append(report.name()).append(": ");
        if (!finding.place.empty())
            text.append(finding.place).append(": ");
        text.append(finding.name).append(finding.entry ? ": " : " ").append(finding.text);
        if (!finding.limit.empty())
            text.append(" (should be ").append(finding.limit).append(")");
        text.append(": ").append(finding.reason).append("\n");
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
