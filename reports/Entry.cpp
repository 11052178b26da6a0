#include "reports/Entry.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace reports {

namespace {

constexpr std::string_view errorStart = "Error(";

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

std::size_t skipDigits(std::string_view text, std::size_t at)
{
    while (at < text.size() && isDigit(text[at]))
        ++at;
    return at;
}

/** Whether the text is a number by JSON's grammar, so that it can be passed on as it stands. */
bool isNumber(std::string_view text)
{
    std::size_t at = text.starts_with('-') ? 1 : 0;
    const std::size_t whole = at;
    at = skipDigits(text, at);
    if (at == whole || (text[whole] == '0' && at > whole + 1))
        return false;
    if (at < text.size() && text[at] == '.') {
        const std::size_t start = at + 1;
        at = skipDigits(text, start);
        if (at == start)
            return false;
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        std::size_t start = at + 1;
        if (start < text.size() && (text[start] == '+' || text[start] == '-'))
            ++start;
        at = skipDigits(text, start);
        if (at == start)
            return false;
    }
    return at == text.size();
}

/** "Error(14) Communication error" */
std::optional<std::int32_t> errorCode(std::string_view text)
{
    if (!text.starts_with(errorStart))
        return {};
    text.remove_prefix(errorStart.size());
    std::int32_t code = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), code);
    const auto length = std::size_t(end - text.data());
    if (failure != std::errc() || !text.substr(length).starts_with(") "))
        return {};
    return code;
}

bool mayBeAbsent(Shape shape)
{
    return shape == Shape::Text || shape == Shape::Number || shape == Shape::Measure ||
           shape == Shape::Minutes || shape == Shape::Count;
}

bool endsInBlank(Shape shape)
{
    return shape == Shape::Text || shape == Shape::Number || shape == Shape::Minutes;
}

bool readFailure(Entry &entry, std::string_view text)
{
    if (entry.item->operation.empty())
        return false;
    if (mayBeAbsent(entry.item->shape) && text == "N/A")
        entry.error = notAvailable;
    else
        entry.error = errorCode(text);
    if (!entry.error)
        return false;
    entry.text = text;
    entry.failed = true;
    return true;
}

void setNumber(Entry &entry, std::string_view number)
{
    if (!numberOf(number))
        return;
    entry.number = number;
    entry.unit = unitOf(*entry.item);
}

void readMinutes(Entry &entry)
{
    std::uint32_t minutes = 0;
    const std::string_view text = entry.text;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), minutes);
    // The brackets tell the same once more; where they don't, neither is to be trusted.
    if (failure == std::errc() && minutesText(minutes) == text)
        setNumber(entry, text.substr(0, std::size_t(end - text.data())));
}

void readNumber(Entry &entry)
{
    std::string_view number = entry.text;
    switch (entry.item->shape) {
    case Shape::Minutes:
        return readMinutes(entry);
    case Shape::Measure:
    case Shape::Tight:
        if (!number.ends_with(entry.item->unit))
            return;
        number.remove_suffix(entry.item->unit.size());
        if (entry.item->shape == Shape::Measure) {
            if (!number.ends_with(' '))
                return;
            number.remove_suffix(1);
        }
        return setNumber(entry, number);
    case Shape::Number:
    case Shape::Count:
        return setNumber(entry, number);
    case Shape::Plain:
        // Names, dates and versions of boards and batteries may look like numbers without being
        // any.
        if (entry.item->section == settingsSection && entry.item->group != "Battery" &&
            entry.item->words.empty())
            setNumber(entry, number);
        return;
    case Shape::Text:
    case Shape::Sentence:
    case Shape::Failure:
        return;
    }
}

} // namespace

std::optional<double> numberOf(std::string_view text)
{
    double number = 0;
    const char *const end = text.data() + text.size();
    if (!isNumber(text) || std::from_chars(text.data(), end, number).ec != std::errc())
        return {};
    return number;
}

std::string numberText(double number)
{
    constexpr double exact = 1e15;
    const bool whole = std::abs(number) < exact && number == std::trunc(number);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), whole ? "%.0f" : "%.6g", number);
    return text.data();
}

std::vector<unsigned> versionNumbers(std::string_view text)
{
    if (text.starts_with('v'))
        text.remove_prefix(1);
    std::vector<unsigned> numbers;
    const char *at = text.data();
    const char *const end = at + text.size();
    while (numbers.size() < 4) {
        const auto [next, error] = std::from_chars(at, end, numbers.emplace_back());
        if (error != std::errc())
            return {};
        if (next == end)
            return numbers;
        if (*next != '.')
            return {};
        at = next + 1;
    }
    return {};
}

std::string minutesText(std::uint32_t minutes)
{
    constexpr std::uint32_t minutesOfDay = 24 * 60;
    return std::to_string(minutes) + " min (" + std::to_string(minutes / minutesOfDay) + " days, " +
           std::to_string(minutes % minutesOfDay / 60) + "h, " + std::to_string(minutes % 60) +
           "min)";
}

Entry readValue(
    const Item &item, std::optional<std::string_view> rest, std::optional<std::string_view> failing)
{
    Entry entry;
    entry.kind = Entry::Kind::Item;
    entry.item = &item;
    entry.section = item.section;
    entry.group = item.group;
    entry.name = item.name;
    // A text with the blank behind it is a text, whatever it says: failures have no blank there.
    const bool blank = rest && endsInBlank(item.shape) && rest->ends_with(' ');
    if (failing && !(blank && item.shape == Shape::Text) && readFailure(entry, *failing))
        return entry;
    if (!rest || item.shape == Shape::Failure) {
        entry.kind = Entry::Kind::Unknown;
        return entry;
    }
    entry.text = *rest;
    if (blank) {
        entry.tail = rest->substr(rest->size() - 1);
        entry.text.remove_suffix(1);
    }
    readNumber(entry);
    return entry;
}

void appendSource(std::string &text, const Entry &entry)
{
    if (entry.kind == Entry::Kind::Log) {
        text += logPrefix;
        text += entry.name;
        text += ':';
    } else if (entry.kind == Entry::Kind::Item && !(entry.failed && entry.text == noLifetime)) {
        const Item &item = *entry.item;
        if (entry.name == maximumTemp) {
            text += betweenTemps;
        } else if (entry.failed && !item.failureLabel.empty()) {
            text += item.failureLabel;
        } else if (!item.label.empty()) {
            text += item.label;
        } else if (item.shape != Shape::Sentence) {
            text += item.name;
            text += ": ";
        }
    }
    text += entry.text;
    text += entry.tail;
    if (!entry.continued)
        text += '\n';
}

} // namespace reports
