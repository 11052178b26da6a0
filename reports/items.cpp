#include "reports/items.h"

#include <algorithm>
#include <array>

namespace reports {

namespace {

constexpr Word switchWords[] = {{1, "Enabled"}, {0, "Disabled"}};
constexpr Word mountedWords[] = {{1, "Yes"}, {0, "No"}};
constexpr Word actionWords[] = {{0, "NoAction"}, {1, "Suspend"}, {2, "ShutDown"}};
constexpr Word triggerWords[] = {
    {1, "Front button"}, {2, "OnOff Signal"}, {3, "Both Front button and OnOff signal"}};
constexpr Word frameWords[] = {{0, "Standard"}, {1, "Extended"}, {2, "Standard, Extended"}};
constexpr Word touchWords[] = {{0, "Mouse profile (next boot)"}, {1, "Touch profile (next boot)"},
    {2, "Mouse profile"}, {3, "Touch profile"}};
constexpr Word shutDownWords[] = {{31, "NoError"}};
constexpr Word endlessWords[] = {{1, "Sensor list ended after 65536 readings"}};
constexpr Word batteryWords[] = {{0, "External battery not available."}};
constexpr Word batteryErrors[] = {{0, "Battery reports no HW errors"},
    {1, "Battery error! The thermistor temp sensor is not working"},
    {2, "Battery error! The secondary temp sensor is not working"},
    {3, "Battery error! Charging failed"}, {4, "Battery error! Overcurrent detected"},
    {5, "Battery error! Battery not initiated"}};
constexpr Word chargingWords[] = {{0, "Battery is not being charged"},
    {1, "Battery is being charged"}, {2, "Battery is fully charged"},
    {3, "Temperature is too low to charge the battery"},
    {4, "Temperature is too high to charge the battery"},
    {5, "Could not get battery charging status"}};
constexpr Word sourceWords[] = {{0, "Battery"}, {1, "External power"}};

constexpr Item version(std::string_view name, std::string_view property, std::string_view operation)
{
    return {softwareSection, "", name, Shape::Plain, "", property, operation};
}

constexpr Item identity(std::string_view group, std::string_view name, Shape shape,
    std::string_view property, std::string_view operation)
{
    Item item{identitySection, group, name, shape, "", property, operation};
    if (name.ends_with(" mounted"))
        item.words = mountedWords;
    return item;
}

constexpr Item history(std::string_view name, Shape shape, std::string_view unit,
    std::string_view property, std::string_view operation, std::span<const Word> words = {})
{
    return {historySection, "", name, shape, unit, property, operation, words};
}

constexpr Item rail(std::string_view name, std::string_view property)
{
    return {railSection, "", name, Shape::Measure, "V", property, "Adc_getVoltage"};
}

constexpr Item board(std::string_view name, std::string_view property)
{
    return {boardSection, "", name, Shape::Plain, "", property, ""};
}

constexpr Item setting(std::string_view group, std::string_view name, std::string_view property,
    std::string_view operation, std::span<const Word> words = {}, std::string_view label = {})
{
    return {settingsSection, group, name, Shape::Plain, "", property, operation, words, label};
}

constexpr Item battery(std::string_view name, Shape shape, std::string_view unit,
    std::string_view property, std::string_view operation, std::span<const Word> words,
    std::string_view failureLabel)
{
    return {settingsSection, "Battery", name, shape, unit, property, operation, words, {},
        failureLabel};
}

constexpr Item batteryTime(std::string_view name, std::string_view property)
{
    return {settingsSection, "Battery", name, Shape::Minutes, "min", property, "Battery_getTimes"};
}

/** \260 is the degree sign. */
constexpr Item table[] = {
    {softwareSection, "", "Vornsettings", Shape::Plain, "", "", "", {}, "Vornsettings "},
    version("Vornaux API", "Versions.vornAux", "Versions_getVornAuxVersion"),
    version("Vornaux Driver", "Versions.vornAuxDrv", "Versions_getVornAuxDrvVersion"),
    version("FPGA", "Versions.fpga", "Versions_getFPGAVersion"),
    version("Front uc", "Versions.front", "Versions_getFrontVersion"),
    version("System Supervisor", "Versions.ss", "Versions_getSSVersion"),
    version("OS version", "Versions.os", "Versions_getOSVersion"),
    identity("Mainboard", "Main PCB Serial", Shape::Text, "Hardware.mainPcbSerial",
        "Hardware_getMainPcbSerial"),
    identity("Mainboard", "Unit serial number", Shape::Text, "Hardware.unitSerialNumber",
        "Hardware_getUnitSerialNumber"),
    identity("Mainboard", "Main PCB article number", Shape::Text, "Hardware.mainPcbArticleNumber",
        "Hardware_getMainPcbArticleNumber"),
    identity("Mainboard", "Main manufacturing date", Shape::Text, "Hardware.mainManufacturingDate",
        "Hardware_getMainManufacturingDate"),
    identity("Mainboard", "Main hardware version", Shape::Text, "Hardware.mainHardwareVersion",
        "Hardware_getMainHardwareVersion"),
    identity("Mainboard", "Main product revision", Shape::Text, "Hardware.mainProductRevision",
        "Hardware_getMainProductRevision"),
    identity("Mainboard", "Main product art.nr", Shape::Text, "Hardware.mainProductArticleNumber",
        "Hardware_getMainProductArticleNumber"),
    identity("Mainboard", "Number of Ethernet connections", Shape::Count, "Hardware.ethernetCount",
        "Hardware_getEthernetCount"),
    identity("Mainboard", "Number of CAN connections", Shape::Count, "Hardware.canCount",
        "Hardware_getCanCount"),
    identity("Mainboard", "Number of Video connections", Shape::Count, "Hardware.videoCount",
        "Hardware_getVideoCount"),
    identity("Mainboard", "Number of USB connections", Shape::Count, "Hardware.usbCount",
        "Hardware_getUsbCount"),
    identity("Mainboard", "Number of Serial connections", Shape::Count, "Hardware.serialCount",
        "Hardware_getSerialCount"),
    identity("Mainboard", "Number of Digital input connections", Shape::Count,
        "Hardware.digitalInputCount", "Hardware_getDigitalInputCount"),
    identity("Mainboard", "Display device mounted", Shape::Count, "Hardware.hasDisplay",
        "Hardware_hasDisplay"),
    identity("Mainboard", "Touchscreen device mounted", Shape::Count, "Hardware.hasTouchscreen",
        "Hardware_hasTouchscreen"),
    identity("Mainboard", "Number of Configurable inputs connections", Shape::Count,
        "Hardware.configurableInputCount", "Hardware_getConfigurableInputCount"),
    identity("Mainboard", "Number of PWM outputs connections", Shape::Count,
        "Hardware.pwmOutputCount", "Hardware_getPwmOutputCount"),
    identity("Mainboard", "Number of Configurable buttons connections", Shape::Count,
        "Hardware.configurableButtonCount", "Hardware_getConfigurableButtonCount"),
    identity("Addon/Telematics board", "Addon PCB serial", Shape::Text, "Hardware.addonPcbSerial",
        "Hardware_getAddonPcbSerial"),
    identity("Addon/Telematics board", "Addon board article number", Shape::Text,
        "Hardware.addonArticleNumber", "Hardware_getAddonArticleNumber"),
    identity("Addon/Telematics board", "Addon manufacturing date", Shape::Text,
        "Hardware.addonManufacturingDate", "Hardware_getAddonManufacturingDate"),
    identity("Addon/Telematics board", "Addon hardware version", Shape::Text,
        "Hardware.addonHardwareVersion", "Hardware_getAddonHardwareVersion"),
    identity("Addon/Telematics board", "WLAN device mounted", Shape::Count, "Hardware.hasWlan",
        "Hardware_hasWlan"),
    identity("Addon/Telematics board", "GPS device mounted", Shape::Count, "Hardware.hasGps",
        "Hardware_hasGps"),
    identity("Addon/Telematics board", "Bluetooth device mounted", Shape::Count,
        "Hardware.hasBluetooth", "Hardware_hasBluetooth"),
    identity("Addon/Telematics board", "GSM/GPRS device mounted", Shape::Count, "Hardware.hasGsm",
        "Hardware_hasGsm"),
    history("Startup reason", Shape::Text, "", "Diagnostics.startupReason",
        "Diagnostics_getStartupReason"),
    history("ShutDown reason", Shape::Number, "", "Diagnostics.shutDownReason",
        "Diagnostics_getShutDownReason", shutDownWords),
    history("HW error status", Shape::Text, "", "Diagnostics.hwErrorStatus",
        "Diagnostics_getHwErrorStatus"),
    history("Total run time", Shape::Minutes, "min", "Diagnostics.totalRunTime",
        "Diagnostics_getTimers"),
    history("Total suspend time", Shape::Minutes, "min", "Diagnostics.totalSuspendTime",
        "Diagnostics_getTimers"),
    history("Total heat time", Shape::Minutes, "min", "Diagnostics.totalHeatTime",
        "Diagnostics_getTimers"),
    history("Total run time 40-60\260C", Shape::Minutes, "min", "Diagnostics.runTime40To60",
        "Diagnostics_getTimers"),
    history("Total run time 60-70\260C", Shape::Minutes, "min", "Diagnostics.runTime60To70",
        "Diagnostics_getTimers"),
    history("Total run time 70-80\260C", Shape::Minutes, "min", "Diagnostics.runTime70To80",
        "Diagnostics_getTimers"),
    history("Total run time above 80\260C", Shape::Minutes, "min", "Diagnostics.runTimeAbove80",
        "Diagnostics_getTimers"),
    history("Minimum temp", Shape::Measure, "\260C", "Diagnostics.minTemp",
        "Diagnostics_getMinMaxTemp"),
    history("Maximum temp", Shape::Measure, "\260C", "Diagnostics.maxTemp",
        "Diagnostics_getMinMaxTemp"),
    history("Number of power cycles", Shape::Number, "", "Diagnostics.powerCycles",
        "Diagnostics_getPowerCycles"),
    history("JIDA CPU temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    history("JIDA box temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    history("JIDA environment temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    history("JIDA board temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    history("JIDA backplane temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    history("JIDA chipsets temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    history("JIDA video temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    history("JIDA other temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    history("JIDA unknown temp", Shape::Measure, "\260C", "", "Diagnostics_getPMTemp"),
    // Of a device library that never says that there are no more.
    history("Sensor list", Shape::Sentence, "", "", "", endlessWords),
    history("SS temp", Shape::Measure, "\260C", "Diagnostics.ssTemp", "Diagnostics_getSSTemp"),
    history("PCB temp", Shape::Measure, "\260C", "Diagnostics.pcbTemp", "Diagnostics_getPCBTemp"),
    {storageSection, firstStorage, "Device serial number", Shape::Text, "", "Smart.deviceSerial",
        "Smart_getDeviceSerial"},
    {storageSection, firstStorage, "Estimated remaining lifetime", Shape::Measure, "%",
        "Smart.remainingLifetime", "Smart_getRemainingLifetime"},
    {storageSection, firstStorage, initialTime, Shape::Count, "", "Smart.initialTime",
        "Smart_getInitialTime", {}, "", "getInitialTime: "},
    {storageSection, secondStorage, "Device serial number", Shape::Text, "", "Smart.deviceSerial2",
        "Smart_getDeviceSerial2"},
    {storageSection, secondStorage, "Estimated remaining lifetime", Shape::Measure, "%",
        "Smart.remainingLifetime2", "Smart_getRemainingLifetime2"},
    {storageSection, secondStorage, initialTime, Shape::Count, "", "Smart.initialTime2",
        "Smart_getInitialTime2", {}, "", "getInitialTime2: "},
    rail("Voltage 24V in", "Adc.voltage0"),
    rail("Voltage 12V", "Adc.voltage2"),
    rail("Voltage 12V video", "Adc.voltage3"),
    rail("Voltage 5V", "Adc.voltage4"),
    rail("Voltage 3.3V", "Adc.voltage5"),
    rail("Voltage TFT", "Adc.voltage6"),
    rail("Voltage 5V STB", "Adc.voltage7"),
    rail("Voltage 1.9V", "Adc.voltage8"),
    rail("Voltage 1.8V", "Adc.voltage9"),
    rail("Voltage 1.5V", "Adc.voltage10"),
    rail("Voltage 1.2V", "Adc.voltage11"),
    rail("Voltage 1.05V", "Adc.voltage12"),
    rail("Voltage 1.0V", "Adc.voltage13"),
    rail("Voltage 0.9V", "Adc.voltage14"),
    rail("Voltage SS VREF", "Adc.voltage15"),
    rail("Voltage 24V Backup", "Adc.voltage16"),
    rail("Voltage 2.5V", "Adc.voltage17"),
    rail("Voltage 1.1V", "Adc.voltage18"),
    rail("Voltage 1.3V PER", "Adc.voltage19"),
    rail("Voltage 1.3V VDDA", "Adc.voltage20"),
    rail("Voltage 3V3 STBY", "Adc.voltage21"),
    rail("Voltage VPMIC", "Adc.voltage22"),
    rail("Voltage VMAIN", "Adc.voltage23"),
    board("Board name", "CpuBoard.name"),
    board("Board sub name", "CpuBoard.subName"),
    board("Manufacturing Date", "CpuBoard.manufacturingDate"),
    board("Serial Number", "CpuBoard.serialNumber"),
    board("Part Number", "CpuBoard.partNumber"),
    board("EAN", "CpuBoard.ean"),
    board("Product Revision", "CpuBoard.productRevision"),
    board("System BIOS Revision", "CpuBoard.biosRevision"),
    board("Hardware Revision", "CpuBoard.hardwareRevision"),
    board("Firmware Revision", "CpuBoard.firmwareRevision"),
    board("BIOS version", ""),
    setting("Backlight", "Intensity", "Backlight.intensity", "Backlight_getIntensity"),
    setting(
        "Backlight", "Led dimming", "Backlight.ledDimming", "Backlight_getLedDimming", switchWords),
    setting("Backlight", "Backlight Status", "Backlight.status", "Backlight_getStatus"),
    setting("Backlight", "Automatic backlight Status", "Backlight.automaticBLStatus",
        "Backlight_getAutomaticBLStatus"),
    setting("Backlight", "Soft transitions", "Backlight.softTransitions",
        "Backlight_getAutomaticBLParams", {}, "   Soft transitions: "),
    setting("Backlight", "K value", "Backlight.kValue", "Backlight_getAutomaticBLParams", {},
        "   K value: "),
    setting("Backlight", "Average window size", "Backlight.averageWindowSize",
        "Backlight_getAutomaticBLFilter", {}, "   Average window size: "),
    setting("Backlight", "Reject window size", "Backlight.rejectWindowSize",
        "Backlight_getAutomaticBLFilter", {}, "   Reject window size: "),
    setting("Backlight", "Reject delta in lux", "Backlight.rejectDeltaLux",
        "Backlight_getAutomaticBLFilter", {}, "   Reject delta in lux: "),
    setting("Backlight", "Sampling mode", "Backlight.samplingMode",
        "Backlight_getAutomaticBLFilter", {}, "   Sampling mode: "),
    {settingsSection, "Backlight", "getAutomaticBLParams", Shape::Failure, "", "",
        "Backlight_getAutomaticBLParams"},
    {settingsSection, "Backlight", "getAutomaticBLFilter", Shape::Failure, "", "",
        "Backlight_getAutomaticBLFilter"},
    setting("Buzzer", "Frequency", "Buzzer.frequency", "Buzzer_getFrequency"),
    setting("Buzzer", "Volume", "Buzzer.volume", "Buzzer_getVolume"),
    setting("Buzzer", "Trigger (On/Off)", "Buzzer.trigger", "Buzzer_getTrigger"),
    setting("CAN", "CAN1 Baud rate", "Can.baudrate1", "Can_getBaudrate"),
    setting("CAN", "CAN2 Baud rate", "Can.baudrate2", "Can_getBaudrate"),
    setting("CAN", "CAN3 Baud rate", "Can.baudrate3", "Can_getBaudrate"),
    setting("CAN", "CAN4 Baud rate", "Can.baudrate4", "Can_getBaudrate"),
    setting("CAN", "CAN1 frame type", "Can.frameType1", "Can_getFrameType", frameWords),
    setting("CAN", "CAN2 frame type", "Can.frameType2", "Can_getFrameType", frameWords),
    setting("CAN", "CAN3 frame type", "Can.frameType3", "Can_getFrameType", frameWords),
    setting("CAN", "CAN4 frame type", "Can.frameType4", "Can_getFrameType", frameWords),
    setting("Config", "CanStartupPowerConfig", "Config.canStartupPower",
        "Config_getCanStartupPowerConfig", switchWords),
    setting("Config", "ExtFanStartupPowerConfig", "Config.extFanStartupPower",
        "Config_getExtFanStartupPowerConfig", switchWords),
    setting("Config", "ExtOnOffSigTrigTime", "Config.extOnOffSigTrigTime",
        "Config_getExtOnOffSigTrigTime"),
    setting("Config", "FrontBtnTrigTime", "Config.frontBtnTrigTime", "Config_getFrontBtnTrigTime"),
    setting("Config", "HeatingTempLimit", "Config.heatingTempLimit", "Config_getHeatingTempLimit"),
    setting("Config", "LongButtonPressAction", "Config.longButtonPressAction",
        "Config_getLongButtonPressAction", actionWords),
    setting("Config", "ShortButtonPressAction", "Config.shortButtonPressAction",
        "Config_getShortButtonPressAction", actionWords),
    setting("Config", "OnOffSigAction", "Config.onOffSigAction", "Config_getOnOffSigAction",
        actionWords),
    setting("Config", "PowerOnStartup", "Config.powerOnStartup", "Config_getPowerOnStartup",
        switchWords),
    setting("Config", "StartupTrigger", "Config.startupTrigger", "Config_getStartupTriggerConfig",
        triggerWords),
    setting("Config", "StartupVoltage", "Config.startupVoltage", "Config_getStartupVoltageConfig"),
    setting("Config", "SuspendMaxTime", "Config.suspendMaxTime", "Config_getSuspendMaxTime"),
    setting("Config", "VideoStartupPowerConfig", "Config.videoStartupPower",
        "Config_getVideoStartupPowerConfig"),
    setting("FrontLED", "EnabledDuringStartup", "FrontLED.enabledDuringStartup",
        "FrontLED_getEnabledDuringStartup", switchWords),
    setting("FrontLED", "Color R", "FrontLED.red", "FrontLED_getColor"),
    setting("FrontLED", "Color G", "FrontLED.green", "FrontLED_getColor"),
    setting("FrontLED", "Color B", "FrontLED.blue", "FrontLED_getColor"),
    setting("FrontLED", "IdleTime", "FrontLED.idleTime", "FrontLED_getIdleTime"),
    setting("FrontLED", "NrOfPulses", "FrontLED.nrOfPulses", "FrontLED_getNrOfPulses"),
    setting("FrontLED", "OffTime", "FrontLED.offTime", "FrontLED_getOffTime"),
    setting("FrontLED", "OnTime", "FrontLED.onTime", "FrontLED_getOnTime"),
    setting("FrontLED", "Signal frequency", "FrontLED.frequency", "FrontLED_getSignal"),
    setting("FrontLED", "Signal duty cycle", "FrontLED.dutyCycle", "FrontLED_getSignal"),
    setting("Power", "BLPowerStatus", "Power.blPowerStatus", "Power_getBLPowerStatus", switchWords),
    setting(
        "Power", "CanPowerStatus", "Power.canPowerStatus", "Power_getCanPowerStatus", switchWords),
    setting("Power", "ExtFanPowerStatus", "Power.extFanPowerStatus", "Power_getExtFanPowerStatus",
        switchWords),
    setting("Power", "VideoPowerStatus", "Power.videoPowerStatus", "Power_getVideoPowerStatus"),
    setting("TouchScreen", "MouseRightClickTime (for mouse profile)", "Touch.mouseRightClickTime",
        "Touch_getMouseRightClickTime"),
    setting("TouchScreen", "TouchScreenMode", "Touch.mode", "Touch_getMode", touchWords),
    setting("Telematics", "Telematics board available", "Telematics.available",
        "Telematics_getAvailable", switchWords),
    setting("Telematics", "GPRSPowerStatus", "Telematics.gprsPowerStatus",
        "Telematics_getGPRSPowerStatus", switchWords),
    setting("Telematics", "GPRSStartUpPowerStatus", "Telematics.gprsStartUpPowerStatus",
        "Telematics_getGPRSStartUpPowerStatus", switchWords),
    setting("Telematics", "GPSAntennaStatus", "Telematics.gpsAntennaStatus",
        "Telematics_getGPSAntennaStatus", switchWords),
    setting("Telematics", "WLANPowerStatus", "Telematics.wlanPowerStatus",
        "Telematics_getWLANPowerStatus", switchWords),
    setting("Telematics", "WLANStartUpPowerStatus", "Telematics.wlanStartUpPowerStatus",
        "Telematics_getWLANStartUpPowerStatus", switchWords),
    battery("External battery", Shape::Sentence, "", "Battery.available", "Battery_isAvailable",
        batteryWords, ""),
    battery("Battery HW error status", Shape::Sentence, "", "Battery.hwErrorStatus",
        "Battery_getHwErrorStatus", batteryErrors, "Could not get battery error status code. "),
    battery("Battery HW version", Shape::Plain, "", "Battery.hwVersion", "Battery_getHwVersion", {},
        "Could not get battery HW version. "),
    battery("Battery SW version", Shape::Plain, "", "Battery.swVersion", "Battery_getSwVersion", {},
        "Could not get battery SW version. "),
    battery("Battery serial number", Shape::Plain, "", "Battery.serialNumber",
        "Battery_getSerialNumber", {}, "Could not get battery serial number. "),
    battery("Battery charging status", Shape::Sentence, "", "Battery.chargingStatus",
        "Battery_getChargingStatus", chargingWords, "Could not get battery charging status. "),
    battery("Power source", Shape::Plain, "", "Battery.powerSource", "Battery_getPowerSource",
        sourceWords, "Could not get power source. "),
    battery("Battery voltage level", Shape::Tight, "%", "Battery.voltageLevel",
        "Battery_getVoltageLevel", {}, "Could not get battery voltage level. "),
    battery("Battery temperature", Shape::Tight, " deg C", "Battery.temperature",
        "Battery_getTemperature", {}, "Could not get battery temperature. "),
    battery(
        minimumTemp, Shape::Tight, " deg C", "Battery.minTemp", "Battery_getMinMaxTemp", {}, ""),
    battery(
        maximumTemp, Shape::Tight, " deg C", "Battery.maxTemp", "Battery_getMinMaxTemp", {}, ""),
    battery("Battery min/max temperature", Shape::Failure, "", "", "Battery_getMinMaxTemp", {},
        "Could not get battery min/max temperature. "),
    batteryTime("Total run time on main power", "Battery.runTimeMainPower"),
    batteryTime("Total run time on battery power", "Battery.runTimeBatteryPower"),
    batteryTime("Total run time < -20\260C", "Battery.runTimeBelowMinus20"),
    batteryTime("Total run time -20-0\260C", "Battery.runTimeMinus20To0"),
    batteryTime("Total run time 0-40\260C", "Battery.runTime0To40"),
    batteryTime("Total run time 40-60\260C", "Battery.runTime40To60"),
    batteryTime("Total run time 60-70\260C", "Battery.runTime60To70"),
    batteryTime("Total run time 70-80\260C", "Battery.runTime70To80"),
    batteryTime("Total run time above 80\260C", "Battery.runTimeAbove80"),
    battery("Battery diagnostic times", Shape::Failure, "", "", "Battery_getTimes", {},
        "Could not get battery diagnostic times. "),
};

constexpr Heading headingTable[] = {
    {"Mainboard:", identitySection, "Mainboard"},
    {"Addon/Telematics board:", identitySection, "Addon/Telematics board"},
    {"Diagnostic data:", historySection, ""},
    {"ADC values", railSection, ""},
    {"Backlight:", settingsSection, "Backlight"},
    {"Automatic backlight settings:", settingsSection, "Backlight"},
    {"Buzzer:", settingsSection, "Buzzer"},
    {"Can Settings:", settingsSection, "CAN"},
    {"Config:", settingsSection, "Config"},
    {"FrontLED:", settingsSection, "FrontLED"},
    {"Power:", settingsSection, "Power"},
    {"TouchScreen:", settingsSection, "TouchScreen"},
    {"Telematics:", settingsSection, "Telematics"},
    {"Battery:", settingsSection, "Battery"},
};

constexpr std::string_view sectionTitles[] = {softwareSection, identitySection, historySection,
    storageSection, railSection, boardSection, settingsSection, logSection, endSection};

bool cut(std::string_view line, std::string_view label, std::string_view &rest)
{
    if (!line.starts_with(label))
        return false;
    rest = line.substr(label.size());
    return true;
}

} // namespace

bool Item::labels(std::string_view line, std::string_view &rest) const
{
    if (!label.empty())
        return cut(line, label, rest);
    return shape != Shape::Sentence && cut(line, name, rest) && cut(rest, ": ", rest);
}

bool Item::labelsFailure(std::string_view line, std::string_view &rest) const
{
    return failureLabel.empty() ? labels(line, rest) : cut(line, failureLabel, rest);
}

std::string_view unitOf(const Item &item)
{
    std::string_view unit = item.unit;
    while (unit.starts_with(' '))
        unit.remove_prefix(1);
    return unit;
}

std::span<const Item> items()
{
    return table;
}

const Item *findItem(std::string_view section, std::string_view group, std::string_view name)
{
    const auto *found = std::find_if(std::begin(table), std::end(table), [&](const Item &item) {
        return item.name == name && item.group == group && item.section == section;
    });
    return found == std::end(table) ? nullptr : found;
}

std::span<const Heading> headings()
{
    return headingTable;
}

std::span<const std::string_view> sections()
{
    return sectionTitles;
}

} // namespace reports
