#include "platform/calendarLine.h"

#include <array>
#include <cstdio>

namespace platform {

std::string calendarLine(const std::tm &time)
{
    constexpr const char *days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr const char *months[] = {
        "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::array<char, 64> line{};
    std::snprintf(line.data(), line.size(), "%s %s%3d %02d:%02d:%02d %lld\n", days[time.tm_wday],
        months[time.tm_mon], time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec,
        1900LL + time.tm_year);
    return line.data();
}

} // namespace platform
