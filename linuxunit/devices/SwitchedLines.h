#pragma once

#include "linuxunit/kernel/lines.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string_view>
#include <vector>

namespace linuxunit {

/** A line of the configuration. */
struct ConfiguredLine {
    LineName name;
    bool isOutput;
};

/** The line that a section has under that key, or the lines; none if it hasn't. */
std::optional<ConfiguredLine> configuredLine(std::string_view section, std::string_view key);
std::vector<ConfiguredLine> configuredLines(std::string_view section, std::string_view key);

/** A load that a line of the section `power` switches. 2 without such a line. One thread at a
 *  time. */
class SwitchedLoads
{
public:
    bool isOn(std::string_view key) const;
    void switchTo(std::string_view key, bool on) const;

    /** The same of several lines, bit 0 for the first one. Bits without a line must be 0. */
    std::uint8_t mask(std::string_view key) const;
    void setMask(std::string_view key, std::uint8_t mask) const;
};

/** Digital inputs and outputs: bit 0 is the first line of the section `digitalIo`. 2 without one.
 */
class DigitalLines
{
public:
    std::uint8_t read() const;
    /** Those that the configuration calls outputs; 2 if none is. */
    void write(std::uint8_t mask) const;
};

} // namespace linuxunit
