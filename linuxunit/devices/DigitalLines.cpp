#include "linuxunit/devices/DigitalLines.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace linuxunit {

using nlohmann::json;

namespace {

std::vector<ConfiguredLine> existing()
{
    auto lines = configuredLines("digitalIo", "lines");
    if (lines.empty())
        throw Failure{NotSupported, {}};
    return lines;
}

} // namespace

ConfiguredLine lineIn(const json &entry)
{
    return {{entry.at("line"), entry.value("chip", std::string()), entry.value("activeLow", false)},
        entry.value("output", false)};
}

std::optional<ConfiguredLine> configuredLine(std::string_view section, std::string_view key)
{
    const auto machine = Machine::present();
    const auto &entry = machine->part(section, key);
    return entry.is_object() ? std::optional(lineIn(entry)) : std::nullopt;
}

std::vector<ConfiguredLine> configuredLines(std::string_view section, std::string_view key)
{
    const auto machine = Machine::present();
    std::vector<ConfiguredLine> lines;
    for (const auto &entry : machine->part(section, key))
        lines.push_back(lineIn(entry));
    return lines;
}

std::uint8_t DigitalLines::read() const
{
    const auto lines = existing();
    unsigned mask = 0;
    for (std::size_t i = 0; i < lines.size(); ++i)
        mask |= readLine(lines[i].name) ? 1U << i : 0U;
    return std::uint8_t(mask);
}

void DigitalLines::write(std::uint8_t mask) const
{
    const auto lines = existing();
    if (std::none_of(lines.begin(), lines.end(), [](const auto &line) { return line.isOutput; }))
        throw Failure{NotSupported, {}};
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].isOutput)
            writeLine(lines[i].name, (mask >> i & 1) != 0);
    }
}

} // namespace linuxunit
