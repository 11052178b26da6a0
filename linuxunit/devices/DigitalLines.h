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

/** A line as the configuration writes it. */
ConfiguredLine lineIn(const nlohmann::json &entry);
/** The line that a section has under that key, or the lines; none if it hasn't. */
std::optional<ConfiguredLine> configuredLine(std::string_view section, std::string_view key);
std::vector<ConfiguredLine> configuredLines(std::string_view section, std::string_view key);

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
