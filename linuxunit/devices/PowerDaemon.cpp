#include "linuxunit/devices/PowerDaemon.h"

#include "linuxunit/calls/Failure.h"

#include <functional>

namespace linuxunit::upower {

using nlohmann::json;

namespace {

constexpr const char *upower = "org.freedesktop.UPower";
constexpr const char *manager = "/org/freedesktop/UPower";
constexpr const char *deviceType = "org.freedesktop.UPower.Device";

enum DeviceType { Battery = 2, Ups = 3 };

/** What the service answers; null if there is no such service or object. */
json answerTo(const BusCall &call, Deadline until)
{
    try {
        return readFromBus(call, until);
    } catch (const Failure &failure) {
        if (failure.kind != NotSupported)
            throw;
        return nullptr;
    }
}

/** The kernel's power supplies go by their name alone. */
bool isKernels(const std::string &nativePath)
{
    return nativePath.find('/') == nativePath.npos ||
           nativePath.find("/power_supply/") != nativePath.npos;
}

std::optional<json> firstBattery(const std::function<bool(const json &)> &fits, Deadline until)
{
    const auto paths = answerTo({upower, manager, upower, "EnumerateDevices", {}}, until);
    if (!paths.is_null() && !paths.is_array())
        throw Failure{UnexpectedContent, std::string(upower) + " tells of no devices"};
    for (const auto &path : paths) {
        if (!path.is_string())
            continue;
        const auto device = answerTo(BusCall::properties(upower, path, deviceType), until);
        const int type = valueOf(device, "Type", 0);
        if ((type == Battery || type == Ups) && valueOf(device, "PowerSupply", false) &&
            valueOf(device, "IsPresent", false) && fits(device))
            return device;
    }
    return std::nullopt;
}

} // namespace

std::optional<json> batteryOfKernel(const std::string &name, Deadline until)
{
    return firstBattery([&](const json &battery) { return nameOf(battery) == name; }, until);
}

std::optional<json> otherBattery(const std::string &name, Deadline until)
{
    return firstBattery(
        [&](const json &battery) {
            return !isKernels(valueOf(battery, "NativePath", std::string())) &&
                   (name.empty() || nameOf(battery) == name);
        },
        until);
}

std::string nameOf(const json &battery)
{
    const auto path = valueOf(battery, "NativePath", std::string());
    return path.substr(path.rfind('/') + 1);
}

std::optional<bool> isOnBattery(Deadline until)
{
    const auto daemon = answerTo(BusCall::properties(upower, manager, upower), until);
    if (!daemon.is_object() || !daemon.contains("OnBattery") || !daemon["OnBattery"].is_boolean())
        return std::nullopt;
    return daemon["OnBattery"].get<bool>();
}

} // namespace linuxunit::upower
