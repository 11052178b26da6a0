#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace virtualunit::lines {

/** Where the receiver is and what it sees of the sky. */
struct GpsSurroundings {
    bool antenna = true;      ///< sound; without it no satellite is seen
    int coldStart = 20;       ///< seconds under the sky from power-on to the first fix
    int satellites = 9;       ///< used once all are found, at least 4
    double latitude = 57.70;  ///< degrees, north positive: the middle of the round that it drives
    double longitude = 11.97; ///< degrees, east positive
    double speed = 50;        ///< km/h along the round
};

/**
 * A GPS receiver that drives a round: each second the sentences RMC, GGA and the proprietary figure
 * of merit, with checksums and CR LF. After power-on it looks for satellites first; without antenna
 * it loses them, and finds them faster again.
 */
class GpsReceiver
{
public:
    void powerOn();
    /** The sentences of the next second of its life, at that time in seconds since 1970. */
    std::string second(const GpsSurroundings &surroundings, std::int64_t time);

private:
    std::int64_t driven = 0; // seconds on the round
    int underSky = 0;        // seconds with a sound antenna
};

/** "$body*hh" and the line end, with the checksum of the body. */
std::string sentence(std::string_view body);

/** Degrees as "ddmm.mmmm", or "dddmm.mmmm" with three digits. */
std::string degreesAndMinutes(double degrees, int digits);

} // namespace virtualunit::lines
