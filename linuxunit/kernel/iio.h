#pragma once

#include <optional>
#include <string>
#include <vector>

namespace linuxunit {

/** Folders of all IIO devices, "/sys/bus/iio/devices/iio:device0" first. */
std::vector<std::string> iioDevices();
/** Whether the device has that name or label. */
bool isIioDevice(const std::string &folder, const std::string &nameOrLabel);

/** Whether a channel has what makes its raw value one with a unit: in_voltage3_scale, or
 *  in_voltage_scale for all of its kind. */
bool hasIioScale(const std::string &folder, const std::string &channel);
/** Path of what goes with a channel, its own or shared with its like: "_scale", "_scale_available".
 */
std::optional<std::string> iioFile(
    const std::string &folder, const std::string &channel, const char *what);
/** Value of a channel, in_voltage3 say, from its _input or from _raw, _offset and _scale; units as
 *  the kernel has them, millivolts or lux. Throws 18 without either, or if the scale is unknown. */
double readIio(const std::string &folder, const std::string &channel);

} // namespace linuxunit
