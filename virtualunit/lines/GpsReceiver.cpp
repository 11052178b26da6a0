#include "virtualunit/lines/GpsReceiver.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <numbers>

namespace virtualunit::lines {

namespace {

constexpr double radius = 400;             // of the round, metres
constexpr double metresInADegree = 111320; // of latitude
constexpr int warmStart = 5;               // seconds to a new fix when the antenna comes back
constexpr int fewestSatellites = 4;        // for a fix with an altitude

__attribute__((format(printf, 1, 2))) std::string formatted(const char *format, ...)
{
    std::array<char, 160> text{};
    std::va_list values;
    va_start(values, format);
    std::vsnprintf(text.data(), text.size(), format, values);
    va_end(values);
    return text.data();
}

struct Place {
    double latitude;
    double longitude;
    double course; // degrees
    double altitude;
};

/** Clockwise round the middle, from its north. */
Place placeOnTheRound(const GpsSurroundings &surroundings, std::int64_t seconds)
{
    const double metresASecond = surroundings.speed / 3.6;
    const double angle = std::fmod(double(seconds) * metresASecond / radius, 2 * std::numbers::pi);
    const double shrink = std::max(0.01, std::cos(surroundings.latitude * std::numbers::pi / 180));
    const double north = radius * std::cos(angle) / metresInADegree;
    const double east = radius * std::sin(angle) / metresInADegree / shrink;
    return {surroundings.latitude + north, surroundings.longitude + east,
        std::fmod(angle * 180 / std::numbers::pi + 90, 360), 42 + 8 * std::sin(angle)};
}

std::string positionFields(const Place &place)
{
    return degreesAndMinutes(place.latitude, 2) + (place.latitude < 0 ? ",S," : ",N,") +
           degreesAndMinutes(place.longitude, 3) + (place.longitude < 0 ? ",W" : ",E");
}

std::string withoutFix(const std::string &clock, const std::string &date, int satellites)
{
    return sentence("GPRMC," + clock + ",V,,,,,,," + date + ",,,N") +
           sentence("GPGGA," + clock + ",,,,,0," + formatted("%02d", satellites) + ",,,M,,M,,") +
           sentence("PFST,FOM,9999");
}

} // namespace

std::string sentence(std::string_view body)
{
    unsigned sum = 0;
    for (const char character : body)
        sum ^= static_cast<unsigned char>(character);
    return "$" + std::string(body) + formatted("*%02X\r\n", sum);
}

std::string degreesAndMinutes(double degrees, int digits)
{
    constexpr long long minuteUnits = 10'000;
    constexpr long long degreeUnits = 60 * minuteUnits;
    const long long units = std::llround(std::abs(degrees) * degreeUnits);
    return formatted("%0*lld%02lld.%04lld", digits, units / degreeUnits,
        units % degreeUnits / minuteUnits, units % minuteUnits);
}

void GpsReceiver::powerOn()
{
    driven = 0;
    underSky = 0;
}

std::string GpsReceiver::second(const GpsSurroundings &surroundings, std::int64_t time)
{
    const std::chrono::sys_seconds utc{std::chrono::seconds(time)};
    const auto today = std::chrono::floor<std::chrono::days>(utc);
    const std::chrono::hh_mm_ss hour(utc - today);
    const std::chrono::year_month_day day(today);
    const auto clock = formatted("%02d%02d%02d.000", int(hour.hours().count()),
        int(hour.minutes().count()), int(hour.seconds().count()));
    const auto date = formatted(
        "%02u%02u%02d", unsigned(day.day()), unsigned(day.month()), int(day.year()) % 100);

    const auto place = placeOnTheRound(surroundings, driven++);
    if (!surroundings.antenna) {
        underSky = std::min(underSky, std::max(0, surroundings.coldStart - warmStart));
        return withoutFix(clock, date, 0);
    }
    const int withFix = underSky++ - surroundings.coldStart;
    if (withFix < 0)
        return withoutFix(clock, date, std::clamp(underSky / warmStart, 0, fewestSatellites - 1));

    const int satellites = std::min(
        std::max(surroundings.satellites, fewestSatellites), fewestSatellites + withFix / 2);
    const double knots = surroundings.speed / 1.852;
    const double dilution = 0.6 + 3.0 / (satellites - 2);
    return sentence("GPRMC," + clock + ",A," + positionFields(place) +
                    formatted(",%.2f,%.2f,", knots, place.course) + date + ",,,A") +
           sentence(
               "GPGGA," + clock + "," + positionFields(place) +
               formatted(",1,%02d,%.1f,%.1f,M,38.4,M,,", satellites, dilution, place.altitude)) +
           sentence(formatted("PFST,FOM,%.1f", 60.0 / (satellites - 3)));
}

} // namespace virtualunit::lines
