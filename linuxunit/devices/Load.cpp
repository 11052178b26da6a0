#include "linuxunit/devices/Load.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/devices/DigitalLines.h"
#include "linuxunit/kernel/regulators.h"
#include "linuxunit/machine/Machine.h"

#include <nlohmann/json.hpp>

namespace linuxunit {

using nlohmann::json;

namespace {

std::vector<Load> loadsOf(std::string_view key)
{
    auto loads = Load::allConfigured("power", key);
    if (loads.empty())
        throw Failure{NotSupported, {}};
    return loads;
}

} // namespace

Load::Load(const json &entry)
    : regulator(entry.value("regulator", std::string()))
{
    if (regulator.empty())
        line = lineIn(entry).name;
}

std::optional<Load> Load::configured(std::string_view section, std::string_view key)
{
    const auto machine = Machine::present();
    if (machine->denies(section))
        return std::nullopt;
    const auto &entry = machine->part(section, key);
    return entry.is_object() ? std::optional(Load(entry)) : std::nullopt;
}

std::vector<Load> Load::allConfigured(std::string_view section, std::string_view key)
{
    const auto machine = Machine::present();
    std::vector<Load> loads;
    for (const auto &entry : machine->part(section, key))
        loads.push_back(Load(entry));
    return loads;
}

Load Load::ofPower(std::string_view key)
{
    const auto load = configured("power", key);
    if (!load)
        throw Failure{NotSupported, {}};
    return *load;
}

bool Load::isOn() const
{
    return regulator.empty() ? readLine(line) : isRegulatorOn(regulator);
}

void Load::switchTo(bool on) const
{
    if (regulator.empty())
        writeLine(line, on);
    else
        switchRegulator(regulator, on);
}

std::uint8_t maskOfLoads(std::string_view key)
{
    unsigned mask = 0;
    unsigned bit = 1;
    for (const auto &load : loadsOf(key)) {
        mask |= load.isOn() ? bit : 0U;
        bit <<= 1U;
    }
    return std::uint8_t(mask);
}

void switchLoads(std::string_view key, std::uint8_t mask)
{
    const auto loads = loadsOf(key);
    if (mask >> loads.size() != 0)
        throw Failure{ValueOutOfRange, {}};
    for (std::size_t i = 0; i < loads.size(); ++i)
        loads[i].switchTo((mask >> i & 1) != 0);
}

} // namespace linuxunit
