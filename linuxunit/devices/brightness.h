#pragma once

#include <cstdint>
#include <string>

namespace linuxunit {

/** Sets the level of a backlight or an LED: "backlight" or "leds", the name below /sys/class, and
 *  its raw level. Whoever has no right to the file has one to the session's seat, perhaps. */
void writeBrightness(const std::string &subsystem, const std::string &name, std::int64_t level);

} // namespace linuxunit
