#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/FirmwareJob.h"

using namespace linuxunit;

/* Nothing on Linux compares a device's firmware with a file; the verifications answer 2. */

DeviceCode Firmware_startFpgaUpgrade(FirmwareHandle handle, const char *path, bool /*reserved*/)
{
    return perform(
        handle, {path}, [&](FirmwareJob &job) { job.start(FirmwareTarget::Fpga, path); });
}

DeviceCode Firmware_startSSUpgrade(FirmwareHandle handle, const char *path, bool /*reserved*/)
{
    return perform(
        handle, {path}, [&](FirmwareJob &job) { job.start(FirmwareTarget::Supervisor, path); });
}

DeviceCode Firmware_startFrontUpgrade(FirmwareHandle handle, const char *path, bool /*reserved*/)
{
    return perform(
        handle, {path}, [&](FirmwareJob &job) { job.start(FirmwareTarget::Front, path); });
}

DeviceCode Firmware_getUpgradeStatus(
    FirmwareHandle handle, FirmwareUpgradeStatus *status, bool wait)
{
    return perform(handle, {status}, [&](FirmwareJob &job) { *status = job.status(wait); });
}

DeviceCode Firmware_shutDown(FirmwareHandle handle)
{
    return perform(handle, {}, [](FirmwareJob & /*unused*/) {
        orderOnBus({"org.freedesktop.login1", "/org/freedesktop/login1",
            "org.freedesktop.login1.Manager", "PowerOff", {false}});
    });
}
