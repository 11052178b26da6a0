#include "report/formatters.h"
#include "report/rows.h"
#include "report/sections.h"

namespace {

using Row = ReportRow<HardwareHandle>;

template <DeviceCode (*Read)(HardwareHandle, char *, std::uint32_t)>
QString text(HardwareHandle hardware, const char *name)
{
    char buffer[200 + 1] = ""; // one byte more, so that a text without its end stays bounded
    const auto code = Read(hardware, buffer, sizeof buffer - 1);
    return formatTextLine(code, name, buffer, "");
}

template <auto Read>
constexpr auto connections = equipmentLine<Read, formatConnectionsLine>;

template <auto Read>
constexpr auto mounted = equipmentLine<Read, formatMountedLine>;

constexpr Row mainBoard[] = {
    {text<Hardware_getMainPcbSerial>, "Main PCB Serial"},
    {text<Hardware_getUnitSerialNumber>, "Unit serial number"},
    {text<Hardware_getMainPcbArticleNumber>, "Main PCB article number"},
    {text<Hardware_getMainManufacturingDate>, "Main manufacturing date"},
    {text<Hardware_getMainHardwareVersion>, "Main hardware version"},
    {text<Hardware_getMainProductRevision>, "Main product revision"},
    {text<Hardware_getMainProductArticleNumber>, "Main product art.nr"},
    {connections<Hardware_getEthernetCount>, "Ethernet"},
    {connections<Hardware_getCanCount>, "CAN"},
    {connections<Hardware_getVideoCount>, "Video"},
    {connections<Hardware_getUsbCount>, "USB"},
    {connections<Hardware_getSerialCount>, "Serial"},
    {connections<Hardware_getDigitalInputCount>, "Digital input"},
    {mounted<Hardware_hasDisplay>, "Display"},
    {mounted<Hardware_hasTouchscreen>, "Touchscreen"},
    {connections<Hardware_getConfigurableInputCount>, "Configurable inputs"},
    {connections<Hardware_getPwmOutputCount>, "PWM outputs"},
    {connections<Hardware_getConfigurableButtonCount>, "Configurable buttons"},
};

constexpr Row addonBoard[] = {
    {text<Hardware_getAddonPcbSerial>, "Addon PCB serial"},
    {text<Hardware_getAddonArticleNumber>, "Addon board article number"},
    {text<Hardware_getAddonManufacturingDate>, "Addon manufacturing date"},
    {text<Hardware_getAddonHardwareVersion>, "Addon hardware version"},
    {mounted<Hardware_hasWlan>, "WLAN"},
    {mounted<Hardware_hasGps>, "GPS"},
    {mounted<Hardware_hasBluetooth>, "Bluetooth"},
    {mounted<Hardware_hasGsm>, "GSM/GPRS"},
};

} // namespace

QString eepromDataText()
{
    const DeviceHandle<Hardware_create, Hardware_release> hardware;
    QString text = QStringLiteral("Mainboard:\n");
    text += reportLines<HardwareHandle>(hardware, mainBoard);
    text += QStringLiteral("\nAddon/Telematics board:\n");
    text += reportLines<HardwareHandle>(hardware, addonBoard);
    return text;
}
