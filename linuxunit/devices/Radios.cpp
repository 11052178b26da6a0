#include "linuxunit/devices/Radios.h"

#include "linuxunit/bus/Bus.h"
#include "linuxunit/calls/Failure.h"
#include "linuxunit/devices/DigitalLines.h"
#include "linuxunit/devices/Load.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <vector>

namespace linuxunit {

using nlohmann::json;

namespace {

constexpr const char *allSwitches = "/sys/class/rfkill";
constexpr const char *receivers = "/sys/class/gnss";

/** A type of rfkill's, and what the configuration calls the radio's power. */
struct Radio {
    const char *type;
    const char *key;
};
constexpr Radio allRadios[] = {
    {"wwan", "gsm"}, {"wlan", "wlan"}, {"bluetooth", "bluetooth"}, {"gps", "gps"}};

/** Of a board that cuts the radio's power. */
std::optional<Load> loadOf(const std::string &type)
{
    const auto *const radio = std::find_if(std::begin(allRadios), std::end(allRadios),
        [&](const Radio &one) { return one.type == type; });
    return radio == std::end(allRadios) ? std::nullopt : Load::configured("telematics", radio->key);
}

std::vector<std::string> switchesOf(const std::string &type)
{
    Machine::present()->section("telematics"); // throws 2 for false
    std::vector<std::string> folders;
    for (const auto &name : namesIn(allSwitches)) {
        auto folder = std::string(allSwitches) + "/" + name;
        if (textOf(folder + "/type") == type)
            folders.push_back(std::move(folder));
    }
    return folders;
}

/** ModemManager's numbers. */
enum PortType { AtPort = 3, PositionPort = 5 };

/** First port of that type of any modem. */
std::optional<std::string> portOf(PortType type)
{
    constexpr const char *modemManager = "org.freedesktop.ModemManager1";
    json objects;
    try {
        objects = readFromBus({modemManager, "/org/freedesktop/ModemManager1",
            "org.freedesktop.DBus.ObjectManager", "GetManagedObjects", {}});
    } catch (const Failure &) {
        return std::nullopt;
    }
    if (!objects.is_object())
        return std::nullopt;
    for (const auto &object : objects) {
        const auto modem = object.is_object()
                               ? object.value(std::string(modemManager) + ".Modem", json())
                               : json();
        const auto ports = modem.is_object() ? modem.value("Ports", json()) : json();
        if (!ports.is_array())
            continue;
        for (const auto &port : ports) {
            if (!port.is_array() || port.size() != 2 || !port[0].is_string() || port[1] != type)
                continue;
            const auto name = port[0].get<std::string>();
            if (!name.empty() && name.find('/') == name.npos)
                return "/dev/" + name;
        }
    }
    return std::nullopt;
}

} // namespace

void Radios::require() const
{
    Machine::present()->section("telematics"); // throws 2 for false
    const auto switches = namesIn(allSwitches);
    const bool isSwitched = std::any_of(switches.begin(), switches.end(), [](const auto &name) {
        const auto type = textOf(std::string(allSwitches) + "/" + name + "/type");
        return std::any_of(std::begin(allRadios), std::end(allRadios),
            [&](const Radio &radio) { return type == radio.type; });
    });
    const bool isPowered = std::any_of(std::begin(allRadios), std::end(allRadios),
        [](const Radio &radio) { return hasPowerSwitch(radio.type); });
    if (!isSwitched && !isPowered && namesIn(receivers).empty())
        throw Failure{NotSupported, {}};
}

bool Radios::hasPowerSwitch(const std::string &type)
{
    return loadOf(type).has_value();
}

bool Radios::isOn(const std::string &type) const
{
    const auto load = loadOf(type);
    const auto folders = switchesOf(type);
    if (!load && folders.empty())
        throw Failure{NotSupported, {}};
    return (!load || load->isOn()) &&
           std::all_of(folders.begin(), folders.end(), [](const auto &folder) {
               return readNumber(folder + "/soft") == 0 && readNumber(folder + "/hard") == 0;
           });
}

void Radios::switchTo(const std::string &type, bool on) const
{
    const auto load = loadOf(type);
    const auto folders = switchesOf(type);
    if (!load && folders.empty())
        throw Failure{NotSupported, {}};
    if (load)
        load->switchTo(on);
    // Without power it is off whatever its switch says, and the switch goes with the radio.
    if (load && !on)
        return;
    for (const auto &folder : folders) {
        writeText(folder + "/soft", on ? "0" : "1", rulesRemedy);
        if (on && readNumber(folder + "/hard") != 0)
            throw Failure{WriteFailed, printable(textOf(folder + "/name").value_or(type)) +
                                           " is held off by a switch on the machine"};
    }
}

bool Radios::isAntennaGood() const
{
    const auto line = configuredLine("telematics", "antenna");
    if (!line)
        throw Failure{NotSupported, {}};
    return readLine(line->name);
}

std::optional<std::string> modemPort()
{
    return portOf(AtPort);
}

std::optional<std::string> positionPort()
{
    const auto names = namesIn(receivers);
    return names.empty() ? portOf(PositionPort) : "/dev/" + names.front();
}

} // namespace linuxunit
