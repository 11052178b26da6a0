#include "linuxunit/devices/identity.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/kernel/texts.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <functional>
#include <iterator>
#include <linux/input.h>
#include <optional>
#include <string_view>
#include <vector>

namespace linuxunit::identity {

namespace {

using Test = std::function<bool(const std::string &folder)>;

std::uint8_t count(const std::string &folder, const Test &test)
{
    const auto names = namesIn(folder);
    const auto number = std::count_if(names.begin(), names.end(),
        [&](const auto &name) { return test(std::string(folder).append("/").append(name)); });
    return std::uint8_t(std::min<std::ptrdiff_t>(number, UINT8_MAX));
}

bool any(const std::string &folder, const Test &test)
{
    return count(folder, test) > 0;
}

bool isThere(const std::string & /*unused*/)
{
    return true;
}

/** Bits of a mask of the input layer, hexadecimal words of 64 with the highest first. */
bool hasBit(const std::string &mask, unsigned bit)
{
    constexpr unsigned wordBits = 64;
    std::vector<std::string> words;
    for (std::size_t at = 0; at < mask.size();) {
        const auto end = std::min(mask.find(' ', at), mask.size());
        words.push_back(mask.substr(at, end - at));
        at = end + 1;
    }
    if (bit / wordBits >= words.size())
        return false;
    const auto &word = words[words.size() - 1 - bit / wordBits];
    std::uint64_t bits = 0;
    std::from_chars(word.data(), word.data() + word.size(), bits, 16);
    return (bits >> (bit % wordBits) & 1U) != 0;
}

/** As udev tells one by what a device can do. */
bool looksLikeTouchscreen(const std::string &folder)
{
    const auto has = [&](const char *file, unsigned bit) {
        return hasBit(textOf(folder + file).value_or(""), bit);
    };
    constexpr const char *keys = "/capabilities/key";
    constexpr const char *axes = "/capabilities/abs";
    const bool isDirect = has("/properties", INPUT_PROP_DIRECT);
    const bool hasPen = has(keys, BTN_STYLUS) || has(keys, BTN_TOOL_PEN);
    const bool isPad = has(keys, BTN_TOOL_FINGER) && !isDirect;
    if (hasPen || isPad || !(isDirect || has(keys, BTN_TOUCH)))
        return false;
    if (has(axes, ABS_MT_POSITION_X) && has(axes, ABS_MT_POSITION_Y) &&
        !(has(axes, ABS_MT_SLOT) &&
            has(axes, ABS_MT_SLOT - 1))) // with all axes it is something else
        return true;
    // With the buttons of a mouse it is the pointer of a virtual machine.
    for (unsigned button = BTN_MOUSE; button < BTN_JOYSTICK; ++button) {
        if (has(keys, button))
            return false;
    }
    return has(axes, ABS_X) && has(axes, ABS_Y);
}

/** What udev found, and rules of the machine may have set otherwise, where it knows the device. The
 *  database is read as libudev reads it, which can't look below another root. */
bool isTouchscreen(const std::string &folder)
{
    for (const auto &name : namesIn(folder)) {
        const auto number = textOf(std::string(folder).append("/").append(name).append("/dev"));
        if (!name.starts_with("event") || !number)
            continue;
        const auto entry = "/run/udev/data/c" + *number;
        if (assignedIn(entry, "E:ID_INPUT"))
            return assignedIn(entry, "E:ID_INPUT_TOUCHSCREEN") == "1";
    }
    return looksLikeTouchscreen(folder);
}

bool hasRadio(const char *type)
{
    return any("/sys/class/rfkill",
        [type](const std::string &folder) { return textOf(folder + "/type") == type; });
}

constexpr const char *networks = "/sys/class/net";
constexpr std::string_view portOfSwitch = "dsa"; // DEVTYPE

bool isOfType(const std::string &folder, int type)
{
    return numberOf(folder + "/type") == type && exists(folder + "/device");
}

/** The kernel's word for what an interface is, "wwan", which plain ones lack. Nothing if it can't
 * be asked: an interface without its word would pass for one with a socket. */
std::optional<std::string> interfaceKind(const std::string &folder)
{
    const auto file = folder + "/uevent";
    if (!assignedIn(file, "INTERFACE"))
        return std::nullopt;
    return assignedIn(file, "DEVTYPE").value_or("");
}

/** What joins a built-in switch to the processor has a folder by which the switch is set, and what
 * a port gives to virtual machines leads to that port. */
bool hasSocket(const std::string &folder)
{
    constexpr const char *others[] = {"/wireless", "/phy80211", "/dsa", "/device/physfn"};
    return std::none_of(std::begin(others), std::end(others),
        [&](const char *name) { return exists(folder + name); });
}

} // namespace

std::string firmwareText(const char *dmi, const char *deviceTree)
{
    if (dmi) {
        const auto path = std::string("/sys/class/dmi/id/") + dmi;
        if (exists(path)) {
            auto text = readText(path);
            if (!isPlaceholder(text))
                return latin1(text);
        }
    }
    if (deviceTree) {
        const auto path = std::string("/proc/device-tree/") + deviceTree;
        if (exists(path)) {
            auto text = readText(path);
            if (!isPlaceholder(text))
                return latin1(text);
        }
    }
    throw Failure{NotSupported, {}};
}

void requireDevices()
{
    if (!exists("/sys/class"))
        throw Failure{NotSupported, {}};
}

std::uint8_t ethernetCount()
{
    constexpr int ethernet = 1; // ARPHRD_ETHER, which radios have too
    return count(networks, [](const std::string &folder) {
        const auto kind = interfaceKind(folder);
        return kind && (kind->empty() || *kind == portOfSwitch) && isOfType(folder, ethernet) &&
               hasSocket(folder);
    });
}

std::uint8_t canCount()
{
    constexpr int can = 280; // ARPHRD_CAN
    return count(networks, [](const std::string &folder) { return isOfType(folder, can); });
}

std::uint8_t serialCount()
{
    return count("/sys/class/tty", [](const std::string &folder) {
        return numberOf(folder + "/type").value_or(0) != 0 && exists(folder + "/device");
    });
}

bool hasDisplay()
{
    return any("/sys/class/backlight", isThere) ||
           any("/sys/class/drm",
               [](const std::string &folder) { return textOf(folder + "/status") == "connected"; });
}

bool hasTouchscreen()
{
    return any("/sys/class/input", isTouchscreen);
}

bool hasWlan()
{
    return hasRadio("wlan") || any(networks, [](const std::string &folder) {
        return exists(folder + "/wireless") || exists(folder + "/phy80211");
    });
}

bool hasBluetooth()
{
    return hasRadio("bluetooth") || any("/sys/class/bluetooth", isThere);
}

bool hasModem()
{
    return hasRadio("wwan") || any("/sys/class/wwan", isThere) ||
           any(networks, [](const std::string &folder) {
               return assignedIn(folder + "/uevent", "DEVTYPE") == "wwan";
           });
}

bool hasGnss()
{
    return hasRadio("gps") || any("/sys/class/gnss", isThere);
}

} // namespace linuxunit::identity
