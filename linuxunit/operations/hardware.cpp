#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/DigitalLines.h"
#include "linuxunit/devices/Radios.h"
#include "linuxunit/devices/identity.h"
#include "linuxunit/kernel/texts.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <nlohmann/json.hpp>

using namespace linuxunit;

namespace {

/** Nothing is kept with the handles: what a machine consists of may change, by a plug. */
struct Parts {
};

/** What the integrator wrote down for the machine, else what its firmware says. */
std::string partText(const char *name, const char *dmi, const char *deviceTree)
{
    const auto machine = Machine::present();
    const auto &texts = machine->part("hardware", "texts");
    const auto found = texts.find(name);
    if (found != texts.end())
        return latin1(found->get<std::string>());
    return identity::firmwareText(dmi, deviceTree);
}

DeviceCode giveText(HardwareHandle handle, char *buffer, uint32_t size, const char *name,
    const char *dmi = nullptr, const char *deviceTree = nullptr)
{
    return performText(
        handle, buffer, size, [&](Parts &) { return partText(name, dmi, deviceTree); });
}

/** What the integrator counted, else what the kernel shows; 2 where it shows none of its kind. */
DeviceCode giveCount(
    HardwareHandle handle, uint8_t *count, const char *name, std::uint8_t (*counted)() = nullptr)
{
    return perform(handle, {count}, [&](Parts &) {
        const auto machine = Machine::present();
        const auto &counts = machine->part("hardware", "counts");
        const auto found = counts.find(name);
        if (found == counts.end()) {
            if (!counted)
                throw Failure{NotSupported, {}};
            identity::requireDevices();
        }
        *count = found != counts.end() ? found->get<std::uint8_t>() : counted();
    });
}

DeviceCode giveFlag(HardwareHandle handle, DeviceBool *present, bool (*found)())
{
    return perform(handle, {present}, [&](Parts &) {
        identity::requireDevices();
        *present = found() ? 1 : 0;
    });
}

/** Lines that the configuration has as inputs. A machine without any says so, and its menu dims the
 *  page; nobody counts where there are outputs alone, which the page is for as well. */
std::uint8_t digitalInputs()
{
    if (Machine::present()->denies("digitalIo"))
        return 0;
    const auto lines = configuredLines("digitalIo", "lines");
    const auto inputs = std::count_if(
        lines.begin(), lines.end(), [](const ConfiguredLine &line) { return !line.isOutput; });
    if (inputs == 0 && !lines.empty())
        throw Failure{NotSupported, {}};
    return std::uint8_t(inputs);
}

/** A radio whose power is off isn't seen by anybody, and is there all the same. */
DeviceCode giveRadio(HardwareHandle handle, DeviceBool *present, bool (*found)(), const char *type)
{
    return perform(handle, {present}, [&](Parts &) {
        identity::requireDevices();
        *present = found() || Radios::hasPowerSwitch(type) ? 1 : 0;
    });
}

} // namespace

DeviceCode Hardware_getMainPcbSerial(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "mainPcbSerial", "board_serial");
}

DeviceCode Hardware_getUnitSerialNumber(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "unitSerialNumber", "product_serial", "serial-number");
}

DeviceCode Hardware_getMainPcbArticleNumber(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "mainPcbArticleNumber", "board_name", "model");
}

DeviceCode Hardware_getMainManufacturingDate(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "mainManufacturingDate");
}

DeviceCode Hardware_getMainHardwareVersion(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "mainHardwareVersion", "board_version");
}

DeviceCode Hardware_getMainProductRevision(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "mainProductRevision", "product_version");
}

DeviceCode Hardware_getMainProductArticleNumber(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "mainProductArticleNumber", "product_sku");
}

DeviceCode Hardware_getAddonPcbSerial(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "addonPcbSerial");
}

DeviceCode Hardware_getAddonArticleNumber(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "addonArticleNumber");
}

DeviceCode Hardware_getAddonManufacturingDate(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "addonManufacturingDate");
}

DeviceCode Hardware_getAddonHardwareVersion(HardwareHandle handle, char *buffer, uint32_t size)
{
    return giveText(handle, buffer, size, "addonHardwareVersion");
}

DeviceCode Hardware_getEthernetCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "ethernet", &identity::ethernetCount);
}

DeviceCode Hardware_getCanCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "can", &identity::canCount);
}

DeviceCode Hardware_getVideoCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "video");
}

DeviceCode Hardware_getUsbCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "usb");
}

DeviceCode Hardware_getSerialCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "serial", &identity::serialCount);
}

DeviceCode Hardware_getDigitalInputCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "digitalInput", &digitalInputs);
}

DeviceCode Hardware_getConfigurableInputCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "configurableInput");
}

DeviceCode Hardware_getPwmOutputCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "pwmOutput");
}

DeviceCode Hardware_getConfigurableButtonCount(HardwareHandle handle, uint8_t *count)
{
    return giveCount(handle, count, "configurableButton");
}

DeviceCode Hardware_hasDisplay(HardwareHandle handle, DeviceBool *present)
{
    return giveFlag(handle, present, &identity::hasDisplay);
}

DeviceCode Hardware_hasTouchscreen(HardwareHandle handle, DeviceBool *present)
{
    return giveFlag(handle, present, &identity::hasTouchscreen);
}

DeviceCode Hardware_hasWlan(HardwareHandle handle, DeviceBool *present)
{
    return giveRadio(handle, present, &identity::hasWlan, "wlan");
}

DeviceCode Hardware_hasGps(HardwareHandle handle, DeviceBool *present)
{
    return giveRadio(handle, present, &identity::hasGnss, "gps");
}

DeviceCode Hardware_hasGsm(HardwareHandle handle, DeviceBool *present)
{
    return giveRadio(handle, present, &identity::hasModem, "wwan");
}

DeviceCode Hardware_hasBluetooth(HardwareHandle handle, DeviceBool *present)
{
    return giveRadio(handle, present, &identity::hasBluetooth, "bluetooth");
}
