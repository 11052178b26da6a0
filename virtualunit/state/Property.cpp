#include "virtualunit/state/Property.h"

#include "virtualunit/state/codes.h"
#include "virtualunit/state/latin1.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace virtualunit {

namespace {

[[noreturn]] void refuse(const Property &property, std::string_view text)
{
    throw Failure{ValueOutOfRange, std::string(property.name) + " can't be \"" + std::string(text) +
                                       "\"; it takes " + rangeText(property) + "."};
}

bool readNumber(std::string_view text, double &number)
{
    const auto end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

} // namespace

std::string formatReal(double number)
{
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
    return {buffer, end};
}

std::string formatNumber(const Property &property, double number)
{
    if (property.kind == Kind::Flag)
        return number != 0 ? "true" : "false";
    if (property.kind == Kind::Integer)
        return std::to_string(std::llround(number));
    return formatReal(number);
}

std::string rangeText(const Property &property)
{
    std::string range;
    if (property.kind == Kind::Flag)
        return "true or false";
    if (property.kind == Kind::Version)
        range = "four numbers with points between, 0 to ";
    else if (property.kind == Kind::Text)
        range = "at most ";
    else
        range = formatNumber(property, property.reports.low) + " to ";
    range += property.isText() ? std::to_string(std::llround(property.reports.high))
                               : formatNumber(property, property.reports.high);
    if (!property.measure.empty())
        range += " " + std::string(property.measure);
    if (property.canBePinned())
        range += ", or live";
    return range;
}

double parseNumber(const Property &property, std::string_view text)
{
    constexpr std::array yes{"true", "on", "yes"};
    constexpr std::array no{"false", "off", "no"};
    double number = 0;
    if (property.kind == Kind::Flag && std::find(yes.begin(), yes.end(), text) != yes.end())
        return 1;
    if (property.kind == Kind::Flag && std::find(no.begin(), no.end(), text) != no.end())
        return 0;
    if (!readNumber(text, number) || !within(property.reports, number))
        refuse(property, text);
    if (property.kind != Kind::Real && number != std::floor(number))
        refuse(property, text);
    return number;
}

std::string checkedText(const Property &property, std::string_view text)
{
    std::array<unsigned, 4> numbers{};
    const bool good = property.kind == Kind::Version
                          ? parseVersion(text, property.reports.high, numbers)
                          : text.find('\0') == std::string_view::npos &&
                                double(toLatin1(text).size()) <= property.reports.high;
    if (!good)
        refuse(property, text);
    return std::string(text);
}

bool parseVersion(std::string_view text, double high, std::array<unsigned, 4> &numbers)
{
    const char *at = text.data();
    const char *const end = at + text.size();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0 && (at == end || *at++ != '.'))
            return false;
        const auto result = std::from_chars(at, end, numbers[i]);
        if (result.ec != std::errc() || numbers[i] > high)
            return false;
        at = result.ptr;
    }
    return at == end;
}

} // namespace virtualunit
