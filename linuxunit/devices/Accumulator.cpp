#include "linuxunit/devices/Accumulator.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/devices/PowerDaemon.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/texts.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <cmath>

namespace linuxunit {

using nlohmann::json;

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

/** A number that a driver may have to ask its hardware for; nothing if it isn't to be had. */
std::optional<std::int64_t> slowNumberOf(const std::string &file, Deadline until)
{
    if (!exists(file))
        return std::nullopt;
    try {
        return readSlowNumber(file, until);
    } catch (const Failure &) {
        return std::nullopt;
    }
}

/** Whether a charger feeds the machine; nothing without a charger. What feeds a mouse, or a pen, is
 *  none of it. */
std::optional<bool> isFed(Deadline until)
{
    std::optional<bool> fed;
    for (const auto &name : namesIn(supplies)) {
        const auto folder = below(name);
        if (textOf(folder + "/type") == "Battery" || textOf(folder + "/scope") == "Device")
            continue;
        if (const auto online = slowNumberOf(folder + "/online", until))
            fed = fed.value_or(false) || *online > 0;
    }
    return fed;
}

/** What was told in place of a value that can be. */
Failure impossible(const std::string &source, double value, const char *what)
{
    const auto told = std::isfinite(value) ? roundedText(value) : "no number";
    return {UnexpectedContent, latin1(source + " tells of " + told + what)};
}

std::uint8_t checkedPercent(double percent, const std::string &source)
{
    constexpr double overfull = 110; // gauges that have to learn the battery tell of such
    if (!(percent >= 0 && percent <= overfull))
        throw impossible(source, percent, "% of charge");
    return std::uint8_t(std::min(std::lround(percent), 100L));
}

std::int16_t checkedCelsius(double celsius, const std::string &source)
{
    constexpr double coldest = -100;
    constexpr double hottest = 200;
    if (!(celsius >= coldest && celsius <= hottest))
        throw impossible(source, celsius, " degrees C");
    return std::int16_t(std::lround(celsius));
}

constexpr const char *daemonName = "UPower";

/** As UPower counts. */
enum DaemonState { Charging = 1, Discharging = 2, Empty = 3, Full = 4, PendingCharge = 5 };

std::int32_t chargingStatusOf(int state)
{
    if (state == Charging)
        return CHARGING_ACTIVE;
    if (state == Full)
        return CHARGING_FULL;
    return state >= Discharging && state <= PendingCharge + 1 ? CHARGING_IDLE : CHARGING_UNKNOWN;
}

/** Of a battery that UPower alone knows, a UPS say. */
std::int32_t powerSourceOf(int state, Deadline until)
{
    if (state == Discharging || state == Empty)
        return POWER_BATTERY;
    if (state == Charging || state == Full || state == PendingCharge)
        return POWER_EXTERNAL;
    const auto onBattery = upower::isOnBattery(until);
    if (!onBattery)
        throw Failure{NotAvailable, {}};
    return *onBattery ? POWER_BATTERY : POWER_EXTERNAL;
}

/** Nothing if the kernel doesn't tell. */
std::optional<double> percentOf(const std::string &folder, Deadline until)
{
    if (exists(folder + "/capacity"))
        return double(readSlowNumber(folder + "/capacity", until));
    for (const char *kind : {"/charge_", "/energy_"}) {
        const auto file = folder + kind;
        if (!exists(file + "now") || !exists(file + "full"))
            continue;
        const double full = readSlowReal(file + "full", until);
        if (full <= 0)
            throw Failure{NotAvailable, {}};
        return readSlowReal(file + "now", until) / full * 100;
    }
    return std::nullopt;
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

/** Empty if the kernel hasn't got it. */
std::string Accumulator::folder(Deadline until)
{
    const auto found = find();
    wasThere = wasThere || found || !Machine::present()->text("battery", "device").empty();
    // A slot without a battery.
    if (found && slowNumberOf(*found + "/present", until) == 0)
        throw Failure{NotAvailable, {}};
    return found.value_or("");
}

/** Empty if the kernel doesn't tell it, of this battery or of any. */
std::string Accumulator::fileOf(const char *name, Deadline until)
{
    const auto place = folder(until);
    if (place.empty())
        return {};
    auto file = place + "/" + name;
    return exists(file) ? file : std::string();
}

/** What UPower says of the battery. */
json Accumulator::known(Deadline until)
{
    const auto place = folder(until);
    if (!place.empty()) {
        const auto battery = upower::batteryOfKernel(place.substr(place.rfind('/') + 1), until);
        return battery ? *battery : throw Failure{NotSupported, {}};
    }
    const auto battery = upower::otherBattery(Machine::present()->text("battery", "device"), until);
    if (!battery)
        throw Failure{wasThere ? NotAvailable : NotSupported, {}};
    wasThere = true;
    return *battery;
}

bool Accumulator::isAvailable()
{
    if (!exists("/sys/class"))
        throw Failure{NotSupported, {}};
    if (const auto found = find()) {
        wasThere = true;
        return slowNumberOf(*found + "/present", soon()).value_or(1) != 0;
    }
    const bool isKnown =
        upower::otherBattery(Machine::present()->text("battery", "device")).has_value();
    wasThere = wasThere || isKnown;
    return isKnown;
}

std::uint8_t Accumulator::percent()
{
    const auto until = soon();
    if (const auto place = folder(until); !place.empty()) {
        if (const auto percent = percentOf(place, until))
            return checkedPercent(*percent, place);
    }
    const auto battery = known(until);
    // With a level of its own, "low" say, UPower makes up a percentage.
    constexpr int noLevel = 1;
    if (!battery.contains("Percentage") || valueOf(battery, "BatteryLevel", noLevel) != noLevel)
        throw Failure{NotSupported, {}};
    return checkedPercent(valueOf(battery, "Percentage", std::nan("")), daemonName);
}

std::int32_t Accumulator::chargingStatus()
{
    const auto until = soon();
    const auto file = fileOf("status", until);
    if (file.empty())
        return chargingStatusOf(valueOf(known(until), "State", 0));
    const auto status = readSlowText(file, until);
    if (status == "Charging")
        return CHARGING_ACTIVE;
    if (status == "Full")
        return CHARGING_FULL;
    const auto reason = status == "Not charging" ? fileOf("health", until) : std::string();
    const auto health = reason.empty() ? std::nullopt : readSlowTexts({reason}, until).front();
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
    const auto until = soon();
    const auto place = folder(until);
    if (place.empty())
        return powerSourceOf(valueOf(known(until), "State", 0), until);
    if (const auto fed = isFed(until))
        return *fed ? POWER_EXTERNAL : POWER_BATTERY;
    const auto file = fileOf("status", until);
    const auto status = file.empty() ? std::string() : readSlowText(file, until);
    if (status == "Discharging")
        return POWER_BATTERY;
    if (status == "Charging" || status == "Full" || status == "Not charging")
        return POWER_EXTERNAL;
    return powerSourceOf(0, until);
}

std::int16_t Accumulator::celsius()
{
    const auto until = soon();
    if (const auto file = fileOf("temp", until); !file.empty())
        return checkedCelsius(readSlowReal(file, until) / 10, file);
    const auto celsius = valueOf(known(until), "Temperature", 0.0);
    if (celsius == 0) // as UPower says that there is none
        throw Failure{NotSupported, {}};
    return checkedCelsius(celsius, daemonName);
}

std::int32_t Accumulator::errorStatus()
{
    const auto until = soon();
    const auto file = fileOf("health", until);
    if (file.empty()) {
        if (folder(until).empty())
            known(until);
        throw Failure{NotSupported, {}}; // nor does UPower say
    }
    const auto health = readSlowText(file, until);
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
    throw Failure{UnexpectedContent, file + " tells of \"" + printable(health) + "\""};
}

std::string Accumulator::name()
{
    const auto until = soon();
    const auto place = folder(until);
    return place.empty() ? upower::nameOf(known(until)) : place.substr(place.rfind('/') + 1);
}

std::string Accumulator::text(const char *file, const char *property)
{
    const auto until = soon();
    const auto path = fileOf(file, until);
    auto text = path.empty() ? std::string() : readSlowText(path, until); // some are in the gauge
    if (isPlaceholder(text))
        text = valueOf(known(until), property, std::string());
    if (isPlaceholder(text))
        throw Failure{NotSupported, {}};
    return latin1(text);
}

std::string Accumulator::serial()
{
    return text("serial_number", "Serial");
}

std::string Accumulator::model()
{
    return text("model_name", "Model");
}

} // namespace linuxunit
