#pragma once

#include "linuxunit/kernel/lines.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string_view>
#include <vector>

namespace linuxunit {

/** What switches the power of something: a GPIO line or a regulator, as the configuration says. */
class Load
{
public:
    /** What a section has under that key; nothing if it hasn't, or is false. */
    static std::optional<Load> configured(std::string_view section, std::string_view key);
    /** The same of a list of them. */
    static std::vector<Load> allConfigured(std::string_view section, std::string_view key);
    /** The one of the section `power`; throws 2 without. */
    static Load ofPower(std::string_view key);

    bool isOn() const;
    void switchTo(bool on) const;

private:
    explicit Load(const nlohmann::json &entry);

    LineName line;
    std::string regulator; ///< empty for a line
};

/** Bit 0 for the first load of a list of the section `power`. 2 without any; bits without a load
 *  must be 0. */
std::uint8_t maskOfLoads(std::string_view key);
void switchLoads(std::string_view key, std::uint8_t mask);

} // namespace linuxunit
