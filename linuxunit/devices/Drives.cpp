#include "linuxunit/devices/Drives.h"

#include "linuxunit/bus/Bus.h"
#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/texts.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>
#include <vector>

namespace linuxunit {

using nlohmann::json;

namespace {

constexpr const char *udisks = "org.freedesktop.UDisks2";
constexpr const char *driveType = "org.freedesktop.UDisks2.Drive";
constexpr const char *ataType = "org.freedesktop.UDisks2.Drive.Ata";
constexpr const char *nvmeType = "org.freedesktop.UDisks2.NVMe.Controller";
constexpr const char *blockType = "org.freedesktop.UDisks2.Block";
constexpr double whole = 100; ///< percent

/** What wear is called by the service: each falls from 100 to 0 with the device's life. */
constexpr std::string_view wearAttributes[] = {"media-wearout-indicator", "wear-leveling-count",
    "ssd-life-left", "percent-lifetime-remaining", "available-reserved-space"};

struct Drive {
    std::string path;
    json interfaces;
    json device; ///< its properties as a drive
};

json allObjects(Deadline until)
{
    auto objects = readFromBus({udisks, "/org/freedesktop/UDisks2",
                                   "org.freedesktop.DBus.ObjectManager", "GetManagedObjects", {}},
        until);
    if (!objects.is_object())
        throw Failure{UnexpectedContent, std::string(udisks) + " tells of no objects"};
    return objects;
}

bool isBuiltIn(const json &drive)
{
    return !valueOf(drive, "Removable", true) && !valueOf(drive, "Optical", false) &&
           valueOf(drive, "ConnectionBus", std::string()) != "usb";
}

std::vector<Drive> drivesAmong(const json &objects)
{
    std::vector<Drive> drives;
    for (const auto &[path, interfaces] : objects.items()) {
        if (interfaces.is_object() && interfaces.contains(driveType))
            drives.push_back({path, interfaces, interfaces[driveType]});
    }
    return drives;
}

/** Those of the configuration in its order, by the service's identifier; nothing in the place of
 *  one that isn't there. */
std::vector<std::optional<Drive>> named(const std::vector<Drive> &all, const json &names)
{
    std::vector<std::optional<Drive>> drives;
    for (const auto &name : names) {
        const auto found = std::find_if(all.begin(), all.end(),
            [&](const Drive &drive) { return valueOf(drive.device, "Id", std::string()) == name; });
        drives.push_back(found == all.end() ? std::nullopt : std::optional(*found));
    }
    return drives;
}

Drive driveOf(const json &objects, unsigned number)
{
    const auto machine = Machine::present();
    const auto &section = machine->section("smart");
    auto all = drivesAmong(objects);
    if (section.is_object() && section.contains("drives")) {
        const auto drives = named(all, section["drives"]);
        if (number >= drives.size())
            throw Failure{NotSupported, {}};
        if (!drives[number])
            throw Failure{NotAvailable, {}};
        return *drives[number];
    }
    all.erase(std::remove_if(all.begin(), all.end(),
                  [](const Drive &drive) { return !isBuiltIn(drive.device); }),
        all.end());
    std::sort(all.begin(), all.end(), [](const Drive &one, const Drive &other) {
        return valueOf(one.device, "SortKey", one.path) <
               valueOf(other.device, "SortKey", other.path);
    });
    if (number >= all.size())
        throw Failure{NotSupported, {}};
    return all[number];
}

std::uint8_t percentLeft(double percent)
{
    return std::uint8_t(std::lround(std::clamp(percent, 0.0, whole)));
}

json attributesOf(const Drive &drive, const std::string &interface, Deadline until)
{
    return readFromBus(
        {udisks, drive.path, interface, "SmartGetAttributes", {BusOptions()}}, until);
}

std::uint8_t nvmeLifetime(const Drive &drive, Deadline until)
{
    const auto used = valueOf(attributesOf(drive, nvmeType, until), "percent_used", -1.0);
    if (!(used >= 0))
        throw Failure{NotAvailable, {}};
    return percentLeft(whole - used); // it may pass 100
}

std::uint8_t ataLifetime(const Drive &drive, Deadline until)
{
    const auto &ata = drive.interfaces[ataType];
    if (!valueOf(ata, "SmartSupported", false) || !valueOf(ata, "SmartEnabled", false))
        throw Failure{NotSupported, {}};
    if (valueOf(ata, "SmartUpdated", 0.0) <= 0)
        throw Failure{NotAvailable, {}};
    const auto attributes = attributesOf(drive, ataType, until);
    if (!attributes.is_array())
        throw Failure{
            UnexpectedContent, std::string(udisks) + " tells of no attributes of " + drive.path};
    constexpr std::size_t name = 1; ///< in (ysqiiixia{sv})
    constexpr std::size_t normalised = 3;
    for (const auto wear : wearAttributes) {
        for (const auto &attribute : attributes) {
            if (attribute.is_array() && attribute.size() > normalised && attribute[name] == wear &&
                attribute[normalised].is_number() && attribute[normalised] >= 0)
                return percentLeft(attribute[normalised].get<double>());
        }
    }
    throw Failure{NotSupported, {}};
}

/** "mmcblk1" of the block device that belongs to the drive. */
std::string blockName(const json &objects, const Drive &drive)
{
    for (const auto &[path, interfaces] : objects.items()) {
        if (!interfaces.is_object() || !interfaces.contains(blockType) ||
            valueOf(interfaces[blockType], "Drive", std::string()) != drive.path)
            continue;
        auto name = path.substr(path.rfind('/') + 1);
        if (exists("/sys/block/" + name + "/device/life_time"))
            return name;
    }
    throw Failure{NotSupported, {}};
}

/** The register has two areas, and steps of ten percent: 1 is up to 10 % used, 11 is beyond all. */
std::uint8_t cardLifetime(const json &objects, const Drive &drive, Deadline until)
{
    const auto path = "/sys/block/" + blockName(objects, drive) + "/device/life_time";
    std::istringstream text(readSlowText(path, until));
    int worst = 0;
    for (int area = 0; text >> std::hex >> area;)
        worst = std::max(worst, area);
    constexpr int beyond = 11;
    if (worst < 1 || worst > beyond)
        throw Failure{NotSupported, {}};
    return percentLeft(whole - 10.0 * worst);
}

} // namespace

std::string Drives::serial(unsigned number) const
{
    const auto drive = driveOf(allObjects(soon()), number);
    auto serial = latin1(valueOf(drive.device, "Serial", std::string()));
    if (serial.empty())
        throw Failure{NotSupported, {}};
    return serial;
}

std::uint8_t Drives::lifetime(unsigned number) const
{
    const auto until = soon();
    const auto objects = allObjects(until);
    const auto drive = driveOf(objects, number);
    if (drive.interfaces.contains(nvmeType))
        return nvmeLifetime(drive, until);
    if (drive.interfaces.contains(ataType))
        return ataLifetime(drive, until);
    return cardLifetime(objects, drive, until);
}

} // namespace linuxunit
