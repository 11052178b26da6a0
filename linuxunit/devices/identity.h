#pragma once

#include <cstdint>
#include <string>

/** What the machine consists of, as the kernel tells it. Nothing is kept; any thread. */
namespace linuxunit::identity {

/** A text of the firmware: that of /sys/class/dmi/id, else that of the device tree. Throws 2 where
 *  neither has one, NoPermission where only root may read it. Either name may be null. */
std::string firmwareText(const char *dmi, const char *deviceTree);

/** Throws 2 where the kernel tells of no devices at all. */
void requireDevices();

std::uint8_t ethernetCount(); ///< wired, of the machine's own or of an adapter
std::uint8_t canCount();
std::uint8_t serialCount(); ///< ports with a controller behind them
bool hasDisplay();          ///< one that is connected now, or has a backlight
bool hasTouchscreen();
bool hasWlan();
bool hasBluetooth();
bool hasModem();
bool hasGnss();

} // namespace linuxunit::identity
