#pragma once

#include <ctime>
#include <string>

namespace platform {

/** "Thu Jan  1 01:00:00 1970\n": what asctime() gives, for every year and alike on every system. */
std::string calendarLine(const std::tm &time);

} // namespace platform
