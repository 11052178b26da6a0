#include "linuxunit/devices/SwitchedLines.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace linuxunit {

using nlohmann::json;

namespace {

ConfiguredLine lineIn(const json &entry)
{
    return {{entry.at("line"), entry.value("chip", std::string()), entry.value("activeLow", false)},
        entry.value("output", false)};
}

std::vector<ConfiguredLine> existing(std::string_view section, std::string_view key)
{
    auto lines = configuredLines(section, key);
    if (lines.empty())
        throw Failure{NotSupported, {}};
    return lines;
}

std::uint8_t maskOf(const std::vector<ConfiguredLine> &lines)
{
    unsigned mask = 0;
    for (std::size_t i = 0; i < lines.size(); ++i)
        mask |= readLine(lines[i].name) ? 1U << i : 0U;
    return std::uint8_t(mask);
}

LineName loadLine(std::string_view key)
{
    const auto line = configuredLine("power", key);
    if (!line)
        throw Failure{NotSupported, {}};
    return line->name;
}

} // namespace

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

bool SwitchedLoads::isOn(std::string_view key) const
{
    return readLine(loadLine(key));
}

void SwitchedLoads::switchTo(std::string_view key, bool on) const
{
    writeLine(loadLine(key), on);
}

std::uint8_t SwitchedLoads::mask(std::string_view key) const
{
    return maskOf(existing("power", key));
}

void SwitchedLoads::setMask(std::string_view key, std::uint8_t mask) const
{
    const auto lines = existing("power", key);
    if (mask >> lines.size() != 0)
        throw Failure{ValueOutOfRange, {}};
    for (std::size_t i = 0; i < lines.size(); ++i)
        writeLine(lines[i].name, (mask >> i & 1) != 0);
}

std::uint8_t DigitalLines::read() const
{
    return maskOf(existing("digitalIo", "lines"));
}

void DigitalLines::write(std::uint8_t mask) const
{
    const auto lines = existing("digitalIo", "lines");
    if (std::none_of(lines.begin(), lines.end(), [](const auto &line) { return line.isOutput; }))
        throw Failure{NotSupported, {}};
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].isOutput)
            writeLine(lines[i].name, (mask >> i & 1) != 0);
    }
}

} // namespace linuxunit
