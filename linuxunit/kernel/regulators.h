#pragma once

#include <string>
#include <vector>

/** Voltage regulators, by name. Those that the board's description gives to user space can be
 *  switched (`reg-userspace-consumer`, by its name or its device's), all others only be read.
 *  Failures are thrown: 18 for a regulator that isn't there, or doesn't know. Any thread. */
namespace linuxunit {

/** One for user space is on if user space wants it on: others that it feeds may keep it so. */
bool isRegulatorOn(const std::string &name);
void switchRegulator(const std::string &name, bool on);
/** Names of those for user space. */
std::vector<std::string> switchableRegulators();

} // namespace linuxunit
