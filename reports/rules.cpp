#include "reports/check.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace reports {

namespace {

using Json = nlohmann::json;

/** UTF-8 as Latin-1, which is all that reports have. */
std::string latin1(const Json &value)
{
    const auto &utf8 = value.get_ref<const std::string &>();
    std::string text;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        if (byte < 0x80) {
            text += utf8[i];
        } else if ((byte == 0xC2 || byte == 0xC3) && i + 1 < utf8.size()) {
            const auto next = static_cast<unsigned char>(utf8[++i]);
            text += char(((byte & 3U) << 6U) | (next & 0x3FU));
        } else {
            throw Trouble{"\"" + utf8 + "\" has characters that no report has"};
        }
    }
    return text;
}

std::vector<std::string> latin1List(const Json &value)
{
    std::vector<std::string> list;
    for (const Json &text : value)
        list.push_back(latin1(text));
    return list;
}

Rule::Level level(const Json &value)
{
    if (value == "FAIL")
        return Rule::Level::Fail;
    if (value == "WARN")
        return Rule::Level::Warn;
    throw Trouble{"a level is \"WARN\" or \"FAIL\", not " + value.dump()};
}

struct Field {
    const char *name;
    void (*read)(Rule &, const Json &);
};

constexpr Field fields[] = {
    {"level", [](Rule &rule, const Json &value) { rule.level = level(value); }},
    {"section", [](Rule &rule, const Json &value) { rule.section = latin1(value); }},
    {"group", [](Rule &rule, const Json &value) { rule.group = latin1(value); }},
    {"name", [](Rule &rule, const Json &value) { rule.name = latin1(value); }},
    {"min", [](Rule &rule, const Json &value) { rule.minimum = value.get<double>(); }},
    {"max", [](Rule &rule, const Json &value) { rule.maximum = value.get<double>(); }},
    {"unit", [](Rule &rule, const Json &value) { rule.unit = latin1(value); }},
    {"texts", [](Rule &rule, const Json &value) { rule.texts = latin1List(value); }},
    {"version",
        [](Rule &rule, const Json &value) {
            rule.version = value.get<std::string>();
            if (rule.version.starts_with('v'))
                rule.version.erase(0, 1);
        }},
    {"failed", [](Rule &rule, const Json &value) { rule.failed = value.get<bool>(); }},
    {"codes", [](Rule &rule, const Json &value) { rule.codes = value.get<std::vector<int>>(); }},
    {"exceptCodes",
        [](Rule &rule, const Json &value) { rule.exceptCodes = value.get<std::vector<int>>(); }},
    {"exceptNames", [](Rule &rule, const Json &value) { rule.exceptNames = latin1List(value); }},
    {"incomplete", [](Rule &rule, const Json &value) { rule.incomplete = value.get<bool>(); }},
    {"unknown", [](Rule &rule, const Json &value) { rule.unknown = value.get<bool>(); }},
    {"reason", [](Rule &rule, const Json &value) { rule.reason = value.get<std::string>(); }},
};

/** A rule that can't ever find anything helps nobody: most likely a name is misspelt. */
void requireSense(const Rule &rule)
{
    const bool asks = rule.minimum || rule.maximum || !rule.texts.empty() ||
                      !rule.version.empty() || rule.failed || rule.incomplete || rule.unknown;
    if (!asks)
        throw Trouble{
            "it asks for nothing: there is no min, max, texts, version, failed, incomplete or "
            "unknown"};
    if (!rule.version.empty() && versionNumbers(rule.version).empty())
        throw Trouble{"\"" + rule.version + "\" is no version, as 2.1.0.0 is one"};
    if (rule.reason.empty())
        throw Trouble{"it has no reason"};
    bool picks = false;
    bool measures = false;
    for (const Item &item : items()) {
        if ((!rule.section.empty() && item.section != rule.section) ||
            (!rule.group.empty() && item.group != rule.group) ||
            (!rule.name.empty() && item.name != rule.name))
            continue;
        picks = true;
        measures = measures || unitOf(item) == rule.unit;
    }
    if (!picks)
        throw Trouble{"no line of a report has that section, group and name"};
    if ((rule.minimum || rule.maximum) && !measures)
        throw Trouble{"its lines have another unit than \"" + rule.unit + "\""};
}

Rule readRule(const Json &json)
{
    if (!json.is_object())
        throw Trouble{"it is no object"};
    Rule rule;
    for (const auto &[key, value] : json.items()) {
        const auto *field = std::find_if(std::begin(fields), std::end(fields),
            [&key = key](const Field &known) { return key == known.name; });
        if (field == std::end(fields))
            throw Trouble{"there is nothing called \"" + key + "\""};
        field->read(rule, value);
    }
    requireSense(rule);
    return rule;
}

} // namespace

std::vector<Rule> readRules(const std::string &text)
{
    std::vector<Rule> rules;
    try {
        const Json json = Json::parse(text);
        if (!json.is_object() || !json.contains("rules") || !json["rules"].is_array())
            throw Trouble{"they are one object with a list \"rules\""};
        for (const Json &rule : json["rules"])
            rules.push_back(readRule(rule));
    } catch (const Trouble &trouble) {
        throw Trouble{"rule " + std::to_string(rules.size() + 1) + ": " + trouble.text};
    } catch (const Json::exception &exception) {
        throw Trouble{"rule " + std::to_string(rules.size() + 1) + ": " + exception.what()};
    }
    return rules;
}

std::vector<Rule> builtInRules()
{
    return readRules(builtInRulesText);
}

} // namespace reports
