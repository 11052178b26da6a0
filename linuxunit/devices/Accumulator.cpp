#include "linuxunit/devices/Accumulator.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/texts.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <cmath>

namespace linuxunit {

namespace {

constexpr const char *supplies = "/sys/class/power_supply";

std::string below(const std::string &name)
{
    return std::string(supplies).append("/").append(name);
}

bool isBatteryOfMachine(const std::string &folder)
{
    return textOf(folder + "/type") == "Battery" && textOf(folder + "/scope") != "Device";
}

/** Whether a charger feeds the machine; nothing without a charger. */
std::optional<bool> isFed()
{
    std::optional<bool> fed;
    for (const auto &name : namesIn(supplies)) {
        const auto folder = below(name);
        const auto online = numberOf(folder + "/online");
        if (textOf(folder + "/type") == "Battery" || !online)
            continue;
        fed = fed.value_or(false) || *online > 0;
    }
    return fed;
}

std::int64_t percentOf(const std::string &folder)
{
    if (exists(folder + "/capacity"))
        return readSlowNumber(folder + "/capacity");
    for (const char *kind : {"/charge_", "/energy_"}) {
        const auto file = folder + kind;
        if (!exists(file + "now") || !exists(file + "full"))
            continue;
        const double full = readSlowReal(file + "full");
        if (full <= 0)
            throw Failure{NotAvailable, {}};
        return std::lround(readSlowReal(file + "now") / full * 100);
    }
    throw Failure{NotSupported, {}};
}

} // namespace

std::optional<std::string> Accumulator::find()
{
    const auto wanted = Machine::present()->text("battery", "device");
    if (!wanted.empty())
        return exists(below(wanted)) ? std::optional(below(wanted)) : std::nullopt;
    for (const auto &name : namesIn(supplies)) {
        if (isBatteryOfMachine(below(name)))
            return below(name);
    }
    return std::nullopt;
}

std::string Accumulator::folder()
{
    const auto found = find();
    wasThere = wasThere || found || !Machine::present()->text("battery", "device").empty();
    if (!found)
        throw Failure{wasThere ? NotAvailable : NotSupported, {}};
    // A slot without a battery.
    if (numberOf(*found + "/present") == 0)
        throw Failure{NotAvailable, {}};
    return *found;
}

std::string Accumulator::fileOf(const char *name)
{
    auto file = std::string(folder()).append("/").append(name);
    if (!exists(file))
        throw Failure{NotSupported, {}};
    return file;
}

bool Accumulator::isAvailable()
{
    if (!exists("/sys/class"))
        throw Failure{NotSupported, {}};
    const auto found = find();
    wasThere = wasThere || found;
    return found && numberOf(*found + "/present").value_or(1) != 0;
}

std::uint8_t Accumulator::percent()
{
    const auto place = folder();
    const auto percent = percentOf(place);
    constexpr std::int64_t overfull = 110; // gauges that have to learn the battery tell of such
    if (percent < 0 || percent > overfull)
        throw Failure{
            UnexpectedContent, place + " tells of a charge of " + std::to_string(percent) + "%"};
    return std::uint8_t(std::min<std::int64_t>(percent, 100));
}

std::int32_t Accumulator::chargingStatus()
{
    const auto place = folder();
    const auto status = readSlowText(place + "/status");
    const auto health = textOf(place + "/health").value_or("");
    if (status == "Charging")
        return CHARGING_ACTIVE;
    if (status == "Full")
        return CHARGING_FULL;
    if (status == "Not charging" && health == "Cold")
        return CHARGING_TOO_COLD;
    if (status == "Not charging" && (health == "Overheat" || health == "Hot"))
        return CHARGING_TOO_HOT;
    if (status == "Discharging" || status == "Not charging")
        return CHARGING_IDLE;
    return CHARGING_UNKNOWN;
}

std::int32_t Accumulator::powerSource()
{
    const auto place = folder();
    if (const auto fed = isFed())
        return *fed ? POWER_EXTERNAL : POWER_BATTERY;
    const auto status = readSlowText(place + "/status");
    if (status == "Discharging")
        return POWER_BATTERY;
    if (status == "Charging" || status == "Full" || status == "Not charging")
        return POWER_EXTERNAL;
    throw Failure{NotAvailable, {}};
}

std::int16_t Accumulator::celsius()
{
    const auto file = fileOf("temp");
    const double celsius = readSlowReal(file) / 10;
    constexpr double coldest = -100;
    constexpr double hottest = 200;
    if (!(celsius >= coldest && celsius <= hottest))
        throw Failure{UnexpectedContent,
            file + " tells of " + std::to_string(std::lround(celsius)) + " degrees C"};
    return std::int16_t(std::lround(celsius));
}

std::int32_t Accumulator::errorStatus()
{
    const auto file = fileOf("health");
    const auto health = readSlowText(file);
    for (const char *sound : {"Good", "Warm", "Cool", "Hot", "Cold", "Overheat"}) {
        if (health == sound)
            return BATTERY_NO_ERROR;
    }
    if (health == "Overcurrent" || health == "Over current")
        return BATTERY_OVERCURRENT;
    if (health == "Safety timer expire" || health == "Watchdog timer expire")
        return BATTERY_CHARGING_FAILED;
    if (health == "Calibration required")
        return BATTERY_NOT_INITIATED;
    if (health == "Unknown" || health == "No battery" || health.empty())
        throw Failure{NotAvailable, {}};
    throw Failure{UnexpectedContent, latin1(file + " tells of \"" + health.substr(0, 40) + "\"")};
}

std::string Accumulator::name()
{
    const auto place = folder();
    return place.substr(place.rfind('/') + 1);
}

std::string Accumulator::text(const char *name)
{
    const auto text = readText(fileOf(name));
    if (isPlaceholder(text))
        throw Failure{NotSupported, {}};
    return latin1(text);
}

} // namespace linuxunit
