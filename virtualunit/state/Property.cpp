#include "virtualunit/state/Property.h"

#include "virtualunit/state/codes.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace virtualunit {

namespace {

[[noreturn]] void refuse(const Spec &spec, std::string_view text)
{
    throw Failure{ValueOutOfRange, std::string(spec.name) + " can't be \"" + std::string(text) +
                                       "\"; it takes " + rangeText(spec) + "."};
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

std::string formatNumber(const Spec &spec, double number)
{
    if (spec.kind == Kind::Flag)
        return number != 0 ? "true" : "false";
    if (spec.kind == Kind::Integer)
        return std::to_string(std::llround(number));
    return formatReal(number);
}

std::string rangeText(const Spec &spec)
{
    std::string range;
    if (spec.kind == Kind::Flag)
        return "true or false";
    if (spec.kind == Kind::Version)
        range = "four numbers with points between, 0 to ";
    else if (spec.kind == Kind::Text)
        range = "at most ";
    else
        range = formatNumber(spec, spec.reports.low) + " to ";
    range += spec.isText() ? std::to_string(std::llround(spec.reports.high))
                           : formatNumber(spec, spec.reports.high);
    if (!spec.measure.empty())
        range += " " + std::string(spec.measure);
    if (spec.living != Living::No && spec.living != Living::Ramp)
        range += ", or live";
    return range;
}

double parseNumber(const Spec &spec, std::string_view text)
{
    constexpr std::array yes{"true", "on", "yes"};
    constexpr std::array no{"false", "off", "no"};
    double number = 0;
    if (spec.kind == Kind::Flag && std::find(yes.begin(), yes.end(), text) != yes.end())
        return 1;
    if (spec.kind == Kind::Flag && std::find(no.begin(), no.end(), text) != no.end())
        return 0;
    if (!readNumber(text, number) || !within(spec.reports, number))
        refuse(spec, text);
    if (spec.kind != Kind::Real && number != std::floor(number))
        refuse(spec, text);
    return number;
}

std::string checkedText(const Spec &spec, std::string_view text)
{
    std::array<unsigned, 4> numbers{};
    const bool good = spec.kind == Kind::Version
                          ? parseVersion(text, spec.reports.high, numbers)
                          : text.find('\0') == std::string_view::npos &&
                                static_cast<double>(toLatin1(text).size()) <= spec.reports.high;
    if (!good)
        refuse(spec, text);
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

std::string fromLatin1(std::string_view text)
{
    std::string utf8;
    utf8.reserve(text.size());
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            utf8 += character;
        } else {
            utf8 += static_cast<char>(0xC0 | (byte >> 6));
            utf8 += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return utf8;
}

std::string toLatin1(std::string_view text)
{
    std::string latin1;
    latin1.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            latin1 += text[i];
            continue;
        }
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
        if ((byte != 0xC2 && byte != 0xC3) || (next & 0xC0) != 0x80)
            throw Failure{ValueOutOfRange, "Texts of the unit take Latin-1 characters only."};
        latin1 += static_cast<char>(((byte & 0x03U) << 6U) | (next & 0x3FU));
        ++i;
    }
    return latin1;
}

} // namespace virtualunit
