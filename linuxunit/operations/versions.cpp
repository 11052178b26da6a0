#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/FirmwareJob.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/kernel/texts.h"
#include "linuxunit/machine/Machine.h"

#include <array>
#include <optional>

using namespace linuxunit;

namespace {

struct Sources {
};

/** Numbers of a version where they go. A version that there is no text of is 2, one whose numbers
 *  don't fit is 18. */
DeviceCode give(VersionsHandle handle, std::array<uint8_t *, 4> numbers,
    std::optional<std::string> (*textOfVersion)())
{
    return perform(handle, {numbers[0], numbers[1], numbers[2], numbers[3]}, [&](Sources &) {
        const auto text = textOfVersion();
        if (!text)
            throw Failure{NotSupported, {}};
        const auto version = versionIn(*text);
        if (!version)
            throw Failure{NotAvailable, {}};
        for (std::size_t i = 0; i < numbers.size(); ++i)
            *numbers[i] = (*version)[i];
    });
}

std::optional<std::string> ownVersion()
{
    return VORN_VERSION;
}

std::optional<std::string> kernelVersion()
{
    return textOf("/proc/sys/kernel/osrelease");
}

std::optional<std::string> fpgaVersion()
{
    return installedVersion(FirmwareTarget::Fpga);
}

std::optional<std::string> frontVersion()
{
    return installedVersion(FirmwareTarget::Front);
}

/** Of the embedded controller, which supervises the machine, unless another one does. */
std::optional<std::string> controllerVersion()
{
    if (!Machine::present()->denies("firmware")) {
        if (auto version = installedVersion(FirmwareTarget::Supervisor))
            return version;
    }
    return textOf("/sys/class/dmi/id/ec_firmware_release");
}

std::optional<std::string> systemVersion()
{
    for (const char *path : {"/etc/os-release", "/usr/lib/os-release"}) {
        for (const char *key : {"IMAGE_VERSION", "VERSION_ID"}) {
            if (auto text = assignedIn(path, key))
                return text;
        }
    }
    return std::nullopt;
}

} // namespace

DeviceCode Versions_getFPGAVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return give(handle, {major, minor, release, build}, &fpgaVersion);
}

DeviceCode Versions_getFrontVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return give(handle, {major, minor, release, build}, &frontVersion);
}

DeviceCode Versions_getVornAuxVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return give(handle, {major, minor, release, build}, &ownVersion);
}

DeviceCode Versions_getVornAuxDrvVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return give(handle, {major, minor, release, build}, &kernelVersion);
}

DeviceCode Versions_getSSVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return give(handle, {major, minor, release, build}, &controllerVersion);
}

DeviceCode Versions_getOSVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build)
{
    return give(handle, {major, minor, release, build}, &systemVersion);
}
