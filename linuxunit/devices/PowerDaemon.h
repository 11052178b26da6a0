#pragma once

#include "linuxunit/bus/Bus.h"

#include <optional>
#include <string>

/** UPower, which knows of batteries that the kernel has no power supply for, a UPS on USB say, and
 *  tells some values that a driver doesn't. The kernel's own are asked first: UPower reads them
 * every 30 s or slower. Failures of a service that is there are thrown, 18 while it doesn't answer.
 * Any thread. */
namespace linuxunit::upower {

/** Properties of the battery that the kernel calls so. Nothing without one, or without UPower. */
std::optional<nlohmann::json> batteryOfKernel(const std::string &name, Deadline until = soon());
/** Of the first battery or UPS that feeds the machine and isn't the kernel's; of that name, which
 * is the last part of its NativePath, unless the name is empty. */
std::optional<nlohmann::json> otherBattery(const std::string &name, Deadline until = soon());
/** Last part of the NativePath. */
std::string nameOf(const nlohmann::json &battery);

/** Whether the machine runs on a battery, as far as UPower knows. */
std::optional<bool> isOnBattery(Deadline until = soon());

} // namespace linuxunit::upower
