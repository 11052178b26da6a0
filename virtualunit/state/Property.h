#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace virtualunit {

enum class Kind {
    Flag,    ///< true or false
    Integer, ///< whole number
    Real,    ///< number
    Text,    ///< at most high characters, all of them in Latin-1
    Version, ///< four numbers with points between
};

/** What makes a value move by itself; see life.cpp. */
enum class Living {
    No,
    Rail,        ///< noise around the nominal voltage
    Temperature, ///< drifts towards what ambience and load make of it
    Lowest,      ///< lowest temperature seen
    Highest,     ///< highest temperature seen
    Minutes,     ///< a counter of minutes
    Charge,      ///< level of the battery
    Charging,    ///< what the charger does
    Light,       ///< illuminance along the day
    Ramp,        ///< backlight under automatic control
};

struct Span {
    double low;
    double high;
};

/** One value of the unit: what it may be, what it is on a fresh unit, and what it needs. */
struct Property {
    std::string_view name;
    Kind kind = Kind::Integer;
    Span reports{};             ///< what the unit may hold
    Span writes{};              ///< what operations may write, often less
    double number = 0;          ///< value of a fresh unit
    std::string_view text{};    ///< the same for texts and versions
    std::string_view measure{}; ///< unit of measure
    std::string_view description{};
    std::string_view need{};     ///< while this is 0: not supported
    std::string_view alsoNeed{}; ///< the same
    std::string_view whenever{}; ///< while this is 0: data not available
    Living living = Living::No;
    bool driving = false; ///< the living values move differently after a change of this one

    constexpr Property &&needing(std::string_view feature) &&
    {
        (need.empty() ? need : alsoNeed) = feature;
        return std::move(*this);
    }
    constexpr Property &&availableWith(std::string_view property) &&
    {
        whenever = property;
        return std::move(*this);
    }
    constexpr Property &&alive(Living how) &&
    {
        living = how;
        return std::move(*this);
    }
    constexpr Property &&drives() &&
    {
        driving = true;
        return std::move(*this);
    }
    constexpr Property &&reporting(double low, double high) &&
    {
        reports = {low, high};
        return std::move(*this);
    }

    /** Whether a number that is set stays until the value is let live again. What has a ramp lives
     *  on from any number. */
    constexpr bool canBePinned() const { return living != Living::No && living != Living::Ramp; }
    constexpr bool isText() const { return kind == Kind::Text || kind == Kind::Version; }
};

/** The shortest text that reads back as this number. */
std::string formatReal(double number);
/** The value as set() takes it. */
std::string formatNumber(const Property &property, double number);
/** "0 to 255 Hz", for people. */
std::string rangeText(const Property &property);
/** Reads what formatNumber() writes, and some words for truth values. Throws a Failure. */
double parseNumber(const Property &property, std::string_view text);
/** Returns the text if the property can hold it. Throws a Failure. */
std::string checkedText(const Property &property, std::string_view text);
/** False too for what is no number. */
constexpr bool within(const Span &span, double number)
{
    return number >= span.low && number <= span.high;
}
/** The four numbers of a version; false if the text is none. */
bool parseVersion(std::string_view text, double high, std::array<unsigned, 4> &numbers);

} // namespace virtualunit
