#include "linuxunit/kernel/iio.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"

#include <cctype>
#include <cmath>
#include <optional>

namespace linuxunit {

namespace {

constexpr const char *allDevices = "/sys/bus/iio/devices";

/** in_voltage3 shares in_voltage_scale with its like, and so does in_voltage3_vcc;
 * in_voltage0-voltage1 in_voltage-voltage_scale.
 */
std::string sharedName(const std::string &channel)
{
    std::string name;
    for (const char byte : channel.substr(0, channel.find('_', sizeof "in_" - 1))) {
        if (std::isdigit(static_cast<unsigned char>(byte)) == 0)
            name += byte;
    }
    return name;
}

} // namespace

std::optional<std::string> iioFile(
    const std::string &folder, const std::string &channel, const char *what)
{
    // Its own, of all of its kind, of all inputs, of the device.
    for (const auto &name : {channel + what, sharedName(channel) + what, std::string("in") + what,
             std::string(what + 1)}) {
        const auto path = std::string(folder).append("/").append(name);
        if (exists(path))
            return path;
    }
    return std::nullopt;
}

std::vector<std::string> iioDevices()
{
    std::vector<std::string> devices;
    for (const auto &name : namesIn(allDevices)) {
        if (name.starts_with("iio:device"))
            devices.push_back(std::string(allDevices).append("/").append(name));
    }
    return devices;
}

bool isIioDevice(const std::string &folder, const std::string &nameOrLabel)
{
    return textOf(folder + "/name") == nameOrLabel || textOf(folder + "/label") == nameOrLabel;
}

bool hasIioScale(const std::string &folder, const std::string &channel)
{
    return iioFile(folder, channel, "_scale").has_value();
}

double readIio(const std::string &folder, const std::string &channel)
{
    const auto path = std::string(folder).append("/").append(channel);
    if (exists(path + "_input"))
        return readSlowReal(path + "_input");
    const auto scaleFile = iioFile(folder, channel, "_scale");
    if (!scaleFile)
        throw Failure{NotAvailable, {}};
    const auto offsetFile = iioFile(folder, channel, "_offset");
    // A driver gives these two behind the lock that it holds while it measures.
    const auto until = soon();
    const double scale = readSlowReal(*scaleFile, until);
    const double offset = offsetFile ? readSlowReal(*offsetFile, until) : 0;
    const double value = (readSlowReal(path + "_raw", until) + offset) * scale;
    if (!std::isfinite(value))
        throw Failure{UnexpectedContent, path + "_raw and its scale are no number together"};
    return value;
}

} // namespace linuxunit
