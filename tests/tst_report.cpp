#include "frame/VornAux2.h"
#include "report/sections.h"
#include "report/systemReport.h"
#include "tests/support/BiosData.h"
#include "tests/support/DeviceTest.h"
#include "virtualunit/VirtualUnit.h"

#include <QBuffer>
#include <QTemporaryDir>

using namespace support;

namespace {

QString latin1(const char *text)
{
    return QString::fromLatin1(text);
}

QString errorText(int code)
{
    return "Error(%1) "_s.arg(code) + latin1(deviceErrorText(code));
}

QStringList list(std::initializer_list<const char *> texts)
{
    QStringList strings;
    for (const char *text : texts)
        strings << latin1(text);
    return strings;
}

/** The calls of one handle's life around some others. */
QStringList life(const char *family, const QStringList &calls, bool released = true)
{
    QStringList all{latin1(family) + latin1("_create()")};
    for (const QString &call : calls)
        all << latin1(family) + QLatin1Char('_') + call;
    if (released)
        all << latin1(family) + latin1("_release()");
    return all;
}

/** Leaves out results and out values. */
QStringList withoutResults(QStringList calls)
{
    for (QString &call : calls)
        call = call.section(" = "_s, 0, 0);
    return calls;
}

const QStringList versionCalls =
    life("Versions", list({"getVornAuxVersion()", "getVornAuxDrvVersion()", "getFPGAVersion()",
                         "getFrontVersion()", "getSSVersion()", "getOSVersion()"}));

const QStringList eepromCalls = life("Hardware",
    list({"getMainPcbSerial(200)", "getUnitSerialNumber(200)", "getMainPcbArticleNumber(200)",
        "getMainManufacturingDate(200)", "getMainHardwareVersion(200)",
        "getMainProductRevision(200)", "getMainProductArticleNumber(200)", "getEthernetCount()",
        "getCanCount()", "getVideoCount()", "getUsbCount()", "getSerialCount()",
        "getDigitalInputCount()", "hasDisplay()", "hasTouchscreen()", "getConfigurableInputCount()",
        "getPwmOutputCount()", "getConfigurableButtonCount()", "getAddonPcbSerial(200)",
        "getAddonArticleNumber(200)", "getAddonManufacturingDate(200)",
        "getAddonHardwareVersion(200)", "hasWlan()", "hasGps()", "hasBluetooth()", "hasGsm()"}));

const QStringList storageCalls =
    life("Smart", list({"getDeviceSerial(21)", "getRemainingLifetime()", "getInitialTime()",
                      "getDeviceSerial2(21)", "getRemainingLifetime2()", "getInitialTime2()"}));

const QStringList diagnosticCalls =
    list({"Diagnostics_create()", "Diagnostics_getStartupReason()",
        "Diagnostics_startupReasonText(1)", "Diagnostics_getShutDownReason()",
        "Diagnostics_getHwErrorStatus()", "Diagnostics_hwErrorText(0)", "Diagnostics_getTimers()",
        "Diagnostics_getMinMaxTemp()", "Diagnostics_getPowerCycles()", "Diagnostics_getPMTemp(0)",
        "Diagnostics_getPMTemp(1)", "Diagnostics_getPMTemp(2)", "Diagnostics_getSSTemp()",
        "Diagnostics_getPCBTemp()"}) +
    storageCalls + list({"Diagnostics_release()"});

QStringList adcCalls()
{
    QStringList reads;
    for (const int channel :
        {0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23})
        reads << "getVoltage(%1)"_s.arg(channel);
    return life("Adc", reads);
}

const QStringList batteryCalls = life(
    "Battery", list({"isAvailable()", "getHwErrorStatus()", "getHwVersion(20)", "getSwVersion()",
                   "getSerialNumber(20)", "getChargingStatus()", "getPowerSource()",
                   "getVoltageLevel()", "getTemperature()", "getMinMaxTemp()", "getTimes()"}));

const QStringList settingsCalls =
    life("Backlight",
        list({"getIntensity()", "getLedDimming()", "getStatus()", "getAutomaticBLStatus()",
            "getAutomaticBLParams()", "getAutomaticBLFilter()"})) +
    life("Buzzer", list({"getFrequency()", "getVolume()", "getTrigger()"})) +
    life("Can", list({"getBaudrate(1)", "getBaudrate(2)", "getBaudrate(3)", "getBaudrate(4)",
                    "getFrameType(1)", "getFrameType(2)", "getFrameType(3)", "getFrameType(4)"})) +
    life("Config",
        list({"getCanStartupPowerConfig()", "getExtFanStartupPowerConfig()",
            "getExtOnOffSigTrigTime()", "getFrontBtnTrigTime()", "getHeatingTempLimit()",
            "getLongButtonPressAction()", "getShortButtonPressAction()", "getOnOffSigAction()",
            "getPowerOnStartup()", "getStartupTriggerConfig()", "getStartupVoltageConfig()",
            "getSuspendMaxTime()", "getVideoStartupPowerConfig()"})) +
    life("FrontLED", list({"getEnabledDuringStartup()", "getColor()", "getIdleTime()",
                         "getNrOfPulses()", "getOffTime()", "getOnTime()", "getSignal()"})) +
    life("Power", list({"getBLPowerStatus()", "getCanPowerStatus()", "getExtFanPowerStatus()",
                      "getVideoPowerStatus()"})) +
    life("Touch", list({"getMouseRightClickTime()", "getMode()"})) +
    life("Telematics",
        list({"getAvailable()", "getGPRSPowerStatus()", "getGPRSStartUpPowerStatus()",
            "getGPSAntennaStatus()", "getWLANPowerStatus()", "getWLANStartUpPowerStatus()"}),
        false) +
    batteryCalls;

const QString eepromText = latin1("Mainboard:\n"
                                  "Main PCB Serial: S-1 \n"
                                  "Unit serial number: %1 %2 \n"
                                  "Main PCB article number: \344\366\374\377 \n"
                                  "Main manufacturing date: 2011-12-31 \n"
                                  "Main hardware version:  \n"
                                  "Main product revision: R3 \n"
                                  "Main product art.nr: P-12 \n"
                                  "Number of Ethernet connections: 1\n"
                                  "Number of CAN connections: 4\n"
                                  "Number of Video connections: 3\n"
                                  "Number of USB connections: 5\n"
                                  "Number of Serial connections: 6\n"
                                  "Number of Digital input connections: 7\n"
                                  "Display device mounted: Yes\n"
                                  "Touchscreen device mounted: No\n"
                                  "Number of Configurable inputs connections: 8\n"
                                  "Number of PWM outputs connections: 9\n"
                                  "Number of Configurable buttons connections: 255\n"
                                  "\n"
                                  "Addon/Telematics board:\n"
                                  "Addon PCB serial: A-1 \n"
                                  "Addon board article number: A-2 \n"
                                  "Addon manufacturing date: A-3 \n"
                                  "Addon hardware version: A-4 \n"
                                  "WLAN device mounted: Yes\n"
                                  "GPS device mounted: No\n"
                                  "Bluetooth device mounted: Yes\n"
                                  "GSM/GPRS device mounted: No\n");

const QString diagnosticText =
    latin1("Diagnostic data:\n"
           "Startup reason: ") +
    latin1(Diagnostics_startupReasonText(1)) +
    latin1(" \n"
           "ShutDown reason: NoError \n"
           "HW error status: ") +
    latin1(Diagnostics_hwErrorText(0)) +
    latin1(" \n"
           "Total run time: 1500 min (1 days, 1h, 0min) \n"
           "Total suspend time: 0 min (0 days, 0h, 0min) \n"
           "Total heat time: 59 min (0 days, 0h, 59min) \n"
           "Total run time 40-60\260C: 60 min (0 days, 1h, 0min) \n"
           "Total run time 60-70\260C: 1439 min (0 days, 23h, 59min) \n"
           "Total run time 70-80\260C: 1440 min (1 days, 0h, 0min) \n"
           "Total run time above 80\260C: 100000 min (69 days, 10h, 40min) \n"
           "Minimum temp: -25 \260C\n"
           "Maximum temp: 85 \260C\n"
           "Number of power cycles: 40000 \n"
           "JIDA CPU temp: 55 \260C\n"
           "JIDA box temp: -5 \260C\n"
           "JIDA unknown temp: 30 \260C\n"
           "SS temp: -7 \260C\n"
           "PCB temp: 44 \260C\n"
           "\n------------------  SMART data  ------------------\n"
           "Device serial number: SD-1 \n"
           "Estimated remaining lifetime: 94 %\n"
           "Device was initially timestamped on: Fri Nov 11 11:11:11 2011\n"
           "---------------------------------------------------------\n"
           "Device serial number: SD-2 \n"
           "Estimated remaining lifetime: 99 %\n"
           "Device was initially timestamped on: Thu Jan  1 00:00:00 1970\n"
           "---------------------------------------------------------\n");

const QString settingsText = latin1("Backlight:\n"
                                    "Intensity: 200\n"
                                    "Led dimming: Enabled\n"
                                    "Backlight Status: 3\n"
                                    "Automatic backlight Status: 0\n"
                                    "Automatic backlight settings:\n"
                                    "   Soft transitions: 1\n"
                                    "   K value: 0.333333\n"
                                    "   Average window size: 4\n"
                                    "   Reject window size: 8\n"
                                    "   Reject delta in lux: 80\n"
                                    "   Sampling mode: 2\n"
                                    "\n"
                                    "\n"
                                    "Buzzer:\n"
                                    "Frequency: 2400\n"
                                    "Volume: 20\n"
                                    "Trigger (On/Off): 0\n"
                                    "\n"
                                    "Can Settings:\n"
                                    "CAN1 Baud rate: 125\n"
                                    "CAN2 Baud rate: 250\n"
                                    "CAN3 Baud rate: 500\n"
                                    "CAN4 Baud rate: 1000\n"
                                    "CAN1 frame type: Standard\n"
                                    "CAN2 frame type: Extended\n"
                                    "CAN3 frame type: Standard, Extended\n"
                                    "CAN4 frame type: Undefined value\n"
                                    "\n"
                                    "Config:\n"
                                    "CanStartupPowerConfig: Enabled\n"
                                    "ExtFanStartupPowerConfig: Disabled\n"
                                    "ExtOnOffSigTrigTime: 70000\n"
                                    "FrontBtnTrigTime: 2500\n"
                                    "HeatingTempLimit: -10\n"
                                    "LongButtonPressAction: ShutDown\n"
                                    "ShortButtonPressAction: Suspend\n"
                                    "OnOffSigAction: NoAction\n"
                                    "PowerOnStartup: Enabled\n"
                                    "StartupTrigger: Both Front button and OnOff signal\n"
                                    "StartupVoltage: 18.5\n"
                                    "SuspendMaxTime: 120\n"
                                    "VideoStartupPowerConfig: 15\n"
                                    "\n"
                                    "FrontLED:\n"
                                    "EnabledDuringStartup: Enabled\n"
                                    "Color R: 1\n"
                                    "Color G: 2\n"
                                    "Color B: 15\n"
                                    "IdleTime: 10\n"
                                    "NrOfPulses: 3\n"
                                    "OffTime: 25\n"
                                    "OnTime: 26\n"
                                    "Signal frequency: 2.5\n"
                                    "Signal duty cycle: 50\n"
                                    "\n"
                                    "Power:\n"
                                    "BLPowerStatus: Enabled\n"
                                    "CanPowerStatus: Enabled\n"
                                    "ExtFanPowerStatus: Disabled\n"
                                    "VideoPowerStatus: 3\n"
                                    "\n"
                                    "TouchScreen:\n"
                                    "MouseRightClickTime (for mouse profile): 800\n"
                                    "TouchScreenMode: Mouse profile\n"
                                    "\n"
                                    "Telematics:\n"
                                    "Telematics board available: Enabled\n"
                                    "GPRSPowerStatus: Enabled\n"
                                    "GPRSStartUpPowerStatus: Disabled\n"
                                    "GPSAntennaStatus: Disabled\n"
                                    "WLANPowerStatus: Disabled\n"
                                    "WLANStartUpPowerStatus: Enabled\n"
                                    "\n"
                                    "Battery:\n");

const QString batteryText =
    latin1("Battery reports no HW errors\n"
           "Battery HW version: C1\n"
           "Battery SW version: 1.0.9.65535\n"
           "Battery serial number: B-4711\n"
           "Battery is being charged\n"
           "Power source: External power\n"
           "Battery voltage level: 76%\n"
           "Battery temperature: -5 deg C\n"
           "Battery minimum temp: -12 deg C, maximum temp: 51 deg C\n"
           "Total run time on main power: 140211 min (97 days, 8h, 51min) \n"
           "Total run time on battery power: 1500 min (1 days, 1h, 0min) \n"
           "Total run time < -20\260C: 0 min (0 days, 0h, 0min) \n"
           "Total run time -20-0\260C: 1 min (0 days, 0h, 1min) \n"
           "Total run time 0-40\260C: 2 min (0 days, 0h, 2min) \n"
           "Total run time 40-60\260C: 3 min (0 days, 0h, 3min) \n"
           "Total run time 60-70\260C: 4 min (0 days, 0h, 4min) \n"
           "Total run time 70-80\260C: 5 min (0 days, 0h, 5min) \n"
           "Total run time above 80\260C: 6 min (0 days, 0h, 6min) \n");

struct Value {
    const char *name;
    const char *value;
};

/** A unit whose report is the texts above. */
constexpr Value knownUnit[] = {{"Hardware.mainPcbSerial", "S-1"},
    {"Hardware.unitSerialNumber", "%1 %2"}, {"Hardware.mainPcbArticleNumber", "\344\366\374\377"},
    {"Hardware.mainManufacturingDate", "2011-12-31"}, {"Hardware.mainHardwareVersion", ""},
    {"Hardware.mainProductRevision", "R3"}, {"Hardware.mainProductArticleNumber", "P-12"},
    {"Hardware.ethernetCount", "1"}, {"Hardware.canCount", "4"}, {"Hardware.videoCount", "3"},
    {"Hardware.usbCount", "5"}, {"Hardware.serialCount", "6"}, {"Hardware.digitalInputCount", "7"},
    {"Hardware.configurableInputCount", "8"}, {"Hardware.pwmOutputCount", "9"},
    {"Hardware.configurableButtonCount", "255"}, {"Hardware.addonPcbSerial", "A-1"},
    {"Hardware.addonArticleNumber", "A-2"}, {"Hardware.addonManufacturingDate", "A-3"},
    {"Hardware.addonHardwareVersion", "A-4"}, {"Diagnostics.startupReason", "1"},
    {"Diagnostics.shutDownReason", "31"}, {"Diagnostics.hwErrorStatus", "0"},
    {"Diagnostics.totalRunTime", "1500"}, {"Diagnostics.totalSuspendTime", "0"},
    {"Diagnostics.totalHeatTime", "59"}, {"Diagnostics.runTime40To60", "60"},
    {"Diagnostics.runTime60To70", "1439"}, {"Diagnostics.runTime70To80", "1440"},
    {"Diagnostics.runTimeAbove80", "100000"}, {"Diagnostics.minTemp", "-25"},
    {"Diagnostics.maxTemp", "85"}, {"Diagnostics.powerCycles", "40000"},
    {"Diagnostics.pmSensorCount", "3"}, {"Diagnostics.pmTemp0", "55"},
    {"Diagnostics.pmTemp1", "-5"}, {"Diagnostics.pmTemp2", "30"}, {"Diagnostics.pmKind0", "0"},
    {"Diagnostics.pmKind1", "1"}, {"Diagnostics.pmKind2", "8"}, {"Diagnostics.ssTemp", "-7"},
    {"Diagnostics.pcbTemp", "44"}, {"Smart.deviceSerial", "SD-1"},
    {"Smart.remainingLifetime", "94"}, {"Smart.initialTime", "1321009871"},
    {"Smart.deviceSerial2", "SD-2"}, {"Smart.remainingLifetime2", "99"},
    {"Smart.initialTime2", "0"}, {"Backlight.intensity", "200"}, {"Backlight.ledDimming", "1"},
    {"Backlight.status", "3"}, {"Backlight.automaticBLStatus", "0"},
    {"Backlight.softTransitions", "true"}, {"Backlight.kValue", "0.33333333"},
    {"Backlight.averageWindowSize", "4"}, {"Backlight.rejectWindowSize", "8"},
    {"Backlight.rejectDeltaLux", "80"}, {"Backlight.samplingMode", "2"},
    {"Buzzer.frequency", "2400"}, {"Buzzer.volume", "20"}, {"Buzzer.trigger", "false"},
    {"Can.baudrate1", "125"}, {"Can.baudrate2", "250"}, {"Can.baudrate3", "500"},
    {"Can.baudrate4", "1000"}, {"Can.frameType1", "0"}, {"Can.frameType2", "1"},
    {"Can.frameType3", "2"}, {"Can.frameType4", "3"}, {"Config.canStartupPower", "1"},
    {"Config.extFanStartupPower", "0"}, {"Config.extOnOffSigTrigTime", "70000"},
    {"Config.frontBtnTrigTime", "2500"}, {"Config.heatingTempLimit", "-10"},
    {"Config.longButtonPressAction", "2"}, {"Config.shortButtonPressAction", "1"},
    {"Config.onOffSigAction", "0"}, {"Config.powerOnStartup", "1"}, {"Config.startupTrigger", "3"},
    {"Config.startupVoltage", "18.5"}, {"Config.suspendMaxTime", "120"},
    {"Config.videoStartupPower", "15"}, {"FrontLED.enabledDuringStartup", "1"},
    {"FrontLED.red", "1"}, {"FrontLED.green", "2"}, {"FrontLED.blue", "15"},
    {"FrontLED.idleTime", "10"}, {"FrontLED.nrOfPulses", "3"}, {"FrontLED.offTime", "25"},
    {"FrontLED.onTime", "26"}, {"FrontLED.frequency", "2.5"}, {"FrontLED.dutyCycle", "50"},
    {"Power.blPowerStatus", "1"}, {"Power.canPowerStatus", "1"}, {"Power.extFanPowerStatus", "0"},
    {"Power.videoPowerStatus", "3"}, {"Touch.mouseRightClickTime", "800"}, {"Touch.mode", "2"},
    {"Telematics.available", "1"}, {"Telematics.gprsPowerStatus", "1"},
    {"Telematics.gprsStartUpPowerStatus", "0"}, {"Telematics.gpsAntennaStatus", "2"},
    {"Telematics.wlanPowerStatus", "0"}, {"Telematics.wlanStartUpPowerStatus", "1"},
    {"Battery.available", "true"}, {"Battery.hwErrorStatus", "0"}, {"Battery.hwVersion", "C1"},
    {"Battery.swVersion", "1.0.9.65535"}, {"Battery.serialNumber", "B-4711"},
    {"Battery.chargingStatus", "1"}, {"Battery.powerSource", "1"}, {"Battery.voltageLevel", "76"},
    {"Battery.temperature", "-5"}, {"Battery.minTemp", "-12"}, {"Battery.maxTemp", "51"},
    {"Battery.runTimeMainPower", "140211"}, {"Battery.runTimeBatteryPower", "1500"},
    {"Battery.runTimeBelowMinus20", "0"}, {"Battery.runTimeMinus20To0", "1"},
    {"Battery.runTime0To40", "2"}, {"Battery.runTime40To60", "3"}, {"Battery.runTime60To70", "4"},
    {"Battery.runTime70To80", "5"}, {"Battery.runTimeAbove80", "6"}};

/** A unit's equipment that the rows above need to be there. */
constexpr Value knownEquipment[] = {{"Hardware.hasTouchscreen", "false"},
    {"Hardware.hasWlan", "true"}, {"Hardware.hasGps", "false"}, {"Hardware.hasBluetooth", "true"},
    {"Hardware.hasGsm", "false"}};

using Section = QString (*)();

/** How an item tells of a failure. */
enum Outcome { EQUIPMENT, SETTING, BATTERY };

/** One operation of a section and what of the section comes from it. */
struct Item {
    Section section;
    const char *operation;
    Outcome outcome;
    QStringList labels; ///< the lines begin with these
    const char *failure = "";
};

QStringList voltages()
{
    QStringList labels;
    for (const char *rail : {"24V in", "12V", "12V video", "5V", "3.3V", "TFT", "5V STB", "1.9V",
             "1.8V", "1.5V", "1.2V", "1.05V", "1.0V", "0.9V", "SS VREF", "24V Backup", "2.5V",
             "1.1V", "1.3V PER", "1.3V VDDA", "3V3 STBY", "VPMIC", "VMAIN"})
        labels << latin1("Voltage ") + latin1(rail);
    return labels;
}

QList<Item> items()
{
    QList<Item> all;
    const auto add = [&all](Section section, const char *operation, Outcome outcome,
                         std::initializer_list<const char *> labels, const char *failure = "") {
        all << Item{section, operation, outcome, list(labels), failure};
    };
    const auto mainBoard = [&](const char *operation, const char *label) {
        add(eepromDataText, operation, EQUIPMENT, {label});
    };
    mainBoard("Hardware_getMainPcbSerial", "Main PCB Serial");
    mainBoard("Hardware_getUnitSerialNumber", "Unit serial number");
    mainBoard("Hardware_getMainPcbArticleNumber", "Main PCB article number");
    mainBoard("Hardware_getMainManufacturingDate", "Main manufacturing date");
    mainBoard("Hardware_getMainHardwareVersion", "Main hardware version");
    mainBoard("Hardware_getMainProductRevision", "Main product revision");
    mainBoard("Hardware_getMainProductArticleNumber", "Main product art.nr");
    mainBoard("Hardware_getEthernetCount", "Number of Ethernet connections");
    mainBoard("Hardware_getCanCount", "Number of CAN connections");
    mainBoard("Hardware_getVideoCount", "Number of Video connections");
    mainBoard("Hardware_getUsbCount", "Number of USB connections");
    mainBoard("Hardware_getSerialCount", "Number of Serial connections");
    mainBoard("Hardware_getDigitalInputCount", "Number of Digital input connections");
    mainBoard("Hardware_hasDisplay", "Display device mounted");
    mainBoard("Hardware_hasTouchscreen", "Touchscreen device mounted");
    mainBoard("Hardware_getConfigurableInputCount", "Number of Configurable inputs connections");
    mainBoard("Hardware_getPwmOutputCount", "Number of PWM outputs connections");
    mainBoard("Hardware_getConfigurableButtonCount", "Number of Configurable buttons connections");
    mainBoard("Hardware_getAddonPcbSerial", "Addon PCB serial");
    mainBoard("Hardware_getAddonArticleNumber", "Addon board article number");
    mainBoard("Hardware_getAddonManufacturingDate", "Addon manufacturing date");
    mainBoard("Hardware_getAddonHardwareVersion", "Addon hardware version");
    mainBoard("Hardware_hasWlan", "WLAN device mounted");
    mainBoard("Hardware_hasGps", "GPS device mounted");
    mainBoard("Hardware_hasBluetooth", "Bluetooth device mounted");
    mainBoard("Hardware_hasGsm", "GSM/GPRS device mounted");

    add(diagnosticDataText, "Diagnostics_getStartupReason", EQUIPMENT, {"Startup reason"});
    add(diagnosticDataText, "Diagnostics_getShutDownReason", EQUIPMENT, {"ShutDown reason"});
    add(diagnosticDataText, "Diagnostics_getHwErrorStatus", EQUIPMENT, {"HW error status"});
    add(diagnosticDataText, "Diagnostics_getTimers", EQUIPMENT,
        {"Total run time", "Total suspend time", "Total heat time", "Total run time 40-60\260C",
            "Total run time 60-70\260C", "Total run time 70-80\260C",
            "Total run time above 80\260C"});
    add(diagnosticDataText, "Diagnostics_getMinMaxTemp", EQUIPMENT,
        {"Minimum temp", "Maximum temp"});
    add(diagnosticDataText, "Diagnostics_getPowerCycles", EQUIPMENT, {"Number of power cycles"});
    add(diagnosticDataText, "Diagnostics_getSSTemp", EQUIPMENT, {"SS temp"});
    add(diagnosticDataText, "Diagnostics_getPCBTemp", EQUIPMENT, {"PCB temp"});
    all << Item{adcDataText, "Adc_getVoltage", EQUIPMENT, voltages()};

    const auto setting = [&](const char *operation, std::initializer_list<const char *> labels) {
        add(settingsDataText, operation, SETTING, labels);
    };
    setting("Backlight_getIntensity", {"Intensity"});
    setting("Backlight_getLedDimming", {"Led dimming"});
    setting("Backlight_getStatus", {"Backlight Status"});
    setting("Backlight_getAutomaticBLStatus", {"Automatic backlight Status"});
    setting("Buzzer_getFrequency", {"Frequency"});
    setting("Buzzer_getVolume", {"Volume"});
    setting("Buzzer_getTrigger", {"Trigger (On/Off)"});
    setting("Can_getBaudrate",
        {"CAN1 Baud rate", "CAN2 Baud rate", "CAN3 Baud rate", "CAN4 Baud rate"});
    setting("Can_getFrameType",
        {"CAN1 frame type", "CAN2 frame type", "CAN3 frame type", "CAN4 frame type"});
    setting("Config_getCanStartupPowerConfig", {"CanStartupPowerConfig"});
    setting("Config_getExtFanStartupPowerConfig", {"ExtFanStartupPowerConfig"});
    setting("Config_getExtOnOffSigTrigTime", {"ExtOnOffSigTrigTime"});
    setting("Config_getFrontBtnTrigTime", {"FrontBtnTrigTime"});
    setting("Config_getHeatingTempLimit", {"HeatingTempLimit"});
    setting("Config_getLongButtonPressAction", {"LongButtonPressAction"});
    setting("Config_getShortButtonPressAction", {"ShortButtonPressAction"});
    setting("Config_getOnOffSigAction", {"OnOffSigAction"});
    setting("Config_getPowerOnStartup", {"PowerOnStartup"});
    setting("Config_getStartupTriggerConfig", {"StartupTrigger"});
    setting("Config_getStartupVoltageConfig", {"StartupVoltage"});
    setting("Config_getSuspendMaxTime", {"SuspendMaxTime"});
    setting("Config_getVideoStartupPowerConfig", {"VideoStartupPowerConfig"});
    setting("FrontLED_getEnabledDuringStartup", {"EnabledDuringStartup"});
    setting("FrontLED_getColor", {"Color R", "Color G", "Color B"});
    setting("FrontLED_getIdleTime", {"IdleTime"});
    setting("FrontLED_getNrOfPulses", {"NrOfPulses"});
    setting("FrontLED_getOffTime", {"OffTime"});
    setting("FrontLED_getOnTime", {"OnTime"});
    setting("FrontLED_getSignal", {"Signal frequency", "Signal duty cycle"});
    setting("Power_getBLPowerStatus", {"BLPowerStatus"});
    setting("Power_getCanPowerStatus", {"CanPowerStatus"});
    setting("Power_getExtFanPowerStatus", {"ExtFanPowerStatus"});
    setting("Power_getVideoPowerStatus", {"VideoPowerStatus"});
    setting("Touch_getMouseRightClickTime", {"MouseRightClickTime (for mouse profile)"});
    setting("Touch_getMode", {"TouchScreenMode"});
    setting("Telematics_getGPRSPowerStatus", {"GPRSPowerStatus"});
    setting("Telematics_getGPRSStartUpPowerStatus", {"GPRSStartUpPowerStatus"});
    setting("Telematics_getGPSAntennaStatus", {"GPSAntennaStatus"});
    setting("Telematics_getWLANPowerStatus", {"WLANPowerStatus"});
    setting("Telematics_getWLANStartUpPowerStatus", {"WLANStartUpPowerStatus"});

    const auto battery = [&](const char *operation, std::initializer_list<const char *> labels,
                             const char *failure) {
        add(batteryDataText, operation, BATTERY, labels, failure);
    };
    battery(
        "Battery_getHwErrorStatus", {"Battery reports no HW errors"}, "battery error status code");
    battery("Battery_getHwVersion", {"Battery HW version"}, "battery HW version");
    battery("Battery_getSwVersion", {"Battery SW version"}, "battery SW version");
    battery("Battery_getSerialNumber", {"Battery serial number"}, "battery serial number");
    battery("Battery_getChargingStatus", {"Battery is being charged"}, "battery charging status");
    battery("Battery_getPowerSource", {"Power source"}, "power source");
    battery("Battery_getVoltageLevel", {"Battery voltage level"}, "battery voltage level");
    battery("Battery_getTemperature", {"Battery temperature"}, "battery temperature");
    battery("Battery_getMinMaxTemp", {"Battery minimum temp"}, "battery min/max temperature");
    battery("Battery_getTimes",
        {"Total run time on main power", "Total run time on battery power",
            "Total run time < -20\260C", "Total run time -20-0\260C", "Total run time 0-40\260C",
            "Total run time 40-60\260C", "Total run time 60-70\260C", "Total run time 70-80\260C",
            "Total run time above 80\260C"},
        "battery diagnostic times");
    return all;
}

/** The line that a failed item leaves, empty for none. */
QString failedLine(const Item &item, const QString &label, int code)
{
    if (item.outcome == BATTERY)
        return label == item.labels.constFirst()
                   ? latin1("Could not get ") + latin1(item.failure) + latin1(". ") +
                         errorText(code) + QLatin1Char('\n')
                   : QString();
    if (item.outcome == EQUIPMENT && code == 2)
        return {};
    if (item.outcome == EQUIPMENT && code == 18)
        return label + latin1(": N/A\n");
    return label + latin1(": ") + errorText(code) + QLatin1Char('\n');
}

/** A section's text when that item can't be read. */
QString failedText(const QString &sound, const Item &item, int code)
{
    QString text;
    for (const QString &line : sound.split(QLatin1Char('\n'))) {
        QString found;
        for (const QString &label : item.labels) {
            if (line == label || line.startsWith(label + latin1(": ")))
                found = label;
        }
        text += found.isEmpty() ? line + QLatin1Char('\n') : failedLine(item, found, code);
    }
    text.chop(1); // split() gave one empty text behind the last line feed
    return text;
}

/** A section's calls when that item can't be read. */
QStringList failedCalls(const QStringList &sound, const Item &item, int code)
{
    const QString operation = latin1(item.operation);
    int lines = 0;
    for (const QString &label : item.labels)
        lines += failedLine(item, label, code).contains(latin1("Error("));
    const auto reads =
        sound.filter(QRegularExpression(latin1("^") + operation + latin1("\\("))).size();
    QStringList calls;
    QStringList errors;
    for (const QString &call : sound) {
        const bool asksForText =
            call.startsWith(latin1("Diagnostics_")) && call.contains(latin1("Text("));
        if (!asksForText)
            calls += std::exchange(errors, {}); // the text of the number is asked for first
        if (!call.startsWith(operation + QLatin1Char('('))) {
            calls << call;
            continue;
        }
        calls << call.section(" = "_s, 0, 0) + " = %1"_s.arg(code);
        for (int line = 0; line < lines / reads; ++line)
            errors << "deviceErrorText(%1) = "_s.arg(code) + latin1(deviceErrorText(code));
    }
    return calls;
}

} // namespace

class ReportTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void init()
    {
        qputenv("TZ", "UTC");
        qputenv("VORN_LOG_DIR", QFile::encodeName(logs.path()));
        bios.reset(); // one at a time
        bios = std::make_unique<BiosData>();
        DeviceTest::init();
        useKnownUnit();
    }

    void order()
    {
        generateSystemReport();
        QCOMPARE(withoutResults(calls()),
            versionCalls + eepromCalls + diagnosticCalls.mid(0, 12) +
                list({"Diagnostics_getPMTemp(3)", "Diagnostics_getSSTemp()",
                    "Diagnostics_getPCBTemp()"}) +
                storageCalls + list({"Diagnostics_release()"}) + adcCalls() + settingsCalls);
    }

    void handles()
    {
        generateSystemReport();
        QStringList lives;
        for (const QString &line : journal()) {
            if (line.contains("_create"_s) || line.contains("_release"_s))
                lives << line.section(QLatin1Char(' '), 1);
        }
        const auto create = [](const char *family) {
            return latin1(family) + latin1("_create() = #1");
        };
        const auto release = [](const char *family) {
            return latin1(family) + latin1("_release(#1)");
        };
        QStringList expected;
        for (const char *family : {"Versions", "Hardware"})
            expected << create(family) << release(family);
        expected << create("Diagnostics") << create("Smart") << release("Smart")
                 << release("Diagnostics");
        for (const char *family :
            {"Adc", "Backlight", "Buzzer", "Can", "Config", "FrontLED", "Power", "Touch"})
            expected << create(family) << release(family);
        expected << create("Telematics") << create("Battery") << release("Battery");
        QCOMPARE(lives, expected);
    }

    void frame()
    {
        QString report = generateSystemReport();
        const auto banner = [](const char *title) {
            return latin1("\n------------------  ") + latin1(title) +
                   latin1("  ------------------\n");
        };
        static const QRegularExpression time(
            "^\nSystem report generated on: \\w{3} \\w{3} \\d+ [\\d:]{8} \\d{4}\n"_s);
        QVERIFY2(time.match(report).hasMatch(), qPrintable(report.left(100)));
        report = report.mid(report.indexOf(QLatin1Char('\n'), 1) + 1);

        const QString expected = banner("SW Versions") +
                                 latin1("Vornsettings v2.7.2.0\n"
                                        "Vornaux API: v2.7.2.0\n"
                                        "Vornaux Driver: v2.7.0.1\n"
                                        "FPGA: v1.4.2.0\n"
                                        "Front uc: v1.2.0.5\n"
                                        "System Supervisor: v2.1.7.3\n"
                                        "OS version: v3.0.12.0\n") +
                                 banner("EEPROM data") + eepromDataText() +
                                 banner("Diagnostic data") + diagnosticDataText() +
                                 banner("ADC data") + adcDataText() + banner("CPU board data") +
                                 cpuBoardDataText() + banner("Settings") + settingsDataText() +
                                 banner("Log Files") + banner("End of report");
        // Line by line, so that a difference is seen.
        QCOMPARE(report.split(QLatin1Char('\n')), expected.split(QLatin1Char('\n')));
    }

    /** A report that takes its time still says when it began. */
    void stamp_isTheStart()
    {
        virtualunit::setDelay("Versions_getVornAuxVersion", 1500);
        const qint64 begun = QDateTime::currentMSecsSinceEpoch();
        const QString line = generateSystemReport().section(QLatin1Char('\n'), 1, 1);
        const auto stamp = QLocale::c().toDateTime(
            line.section(latin1(": "), 1).simplified(), "ddd MMM d HH:mm:ss yyyy"_s);
        QVERIFY2(stamp.isValid(), qPrintable(line));
        QVERIFY(QDateTime::currentMSecsSinceEpoch() >= begun + 1500);
        QVERIFY(stamp.toMSecsSinceEpoch() < begun + 500);
    }

    void eeprom()
    {
        for (const Value &value : knownEquipment)
            setUnit(latin1(value.name), latin1(value.value));
        QCOMPARE(eepromDataText(), eepromText);
        QCOMPARE(withoutResults(calls()), eepromCalls);
    }

    void eeprom_withoutAddonBoard()
    {
        for (const char *operation :
            {"getAddonPcbSerial", "getAddonArticleNumber", "getAddonManufacturingDate",
                "getAddonHardwareVersion", "hasWlan", "hasGps", "hasBluetooth", "hasGsm"})
            fault(latin1("Hardware_") + latin1(operation), DEVICE_NOT_SUPPORTED);
        QVERIFY(eepromDataText().endsWith(latin1("255\n\nAddon/Telematics board:\n")));
    }

    void adc()
    {
        QString expected = latin1("ADC values\n");
        const QStringList labels = voltages();
        const int channels[] = {
            0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23};
        for (int row = 0; row < labels.size(); ++row) {
            const double volts = 1.0123456 * (channels[row] + 1);
            setUnit("Adc.voltage%1"_s.arg(channels[row]), QString::number(volts, 'g', 17));
            expected += labels[row] + latin1(": ") + QString::number(volts) + latin1(" V\n");
        }
        QCOMPARE(adcDataText(), expected);
        QCOMPARE(withoutResults(calls()), adcCalls());
    }

    void diagnostic() { QCOMPARE(diagnosticDataText(), diagnosticText); }

    void diagnostic_reasons_data()
    {
        QTest::addColumn<int>("reason");
        QTest::addColumn<QString>("line");
        QTest::newRow("31") << 31 << latin1("ShutDown reason: NoError \n");
        QTest::newRow("30") << 30 << latin1("ShutDown reason: 30 \n");
        QTest::newRow("0") << 0 << latin1("ShutDown reason: 0 \n");
        QTest::newRow("65535") << 65535 << latin1("ShutDown reason: 65535 \n");
    }

    void diagnostic_reasons()
    {
        QFETCH(int, reason);
        QFETCH(QString, line);
        setUnit(latin1("Diagnostics.shutDownReason"), QString::number(reason));
        const QString text = diagnosticDataText();
        QVERIFY2(text.contains(QLatin1Char('\n') + line), qPrintable(text));
    }

    void diagnostic_reasonAfterFailure()
    {
        // The number of the read before is asked about, and a reason of 0 after a failed first
        // read.
        setUnit(latin1("Diagnostics.startupReason"), latin1("7"));
        setUnit(latin1("Diagnostics.hwErrorStatus"), latin1("9"));
        fault(latin1("Diagnostics_getShutDownReason"), 5);
        fault(latin1("Diagnostics_getHwErrorStatus"), 5);
        diagnosticDataText();
        const QStringList before = withoutResults(calls());
        QVERIFY(before.contains(latin1("Diagnostics_startupReasonText(7)")));
        QVERIFY(before.contains(latin1("Diagnostics_hwErrorText(7)")));

        clearFaults();
        fault(latin1("Diagnostics_getStartupReason"), 18);
        setUnit(latin1("Diagnostics.shutDownReason"), latin1("3"));
        fault(latin1("Diagnostics_getHwErrorStatus"), 2);
        diagnosticDataText();
        const QStringList after = withoutResults(calls());
        QVERIFY(after.contains(latin1("Diagnostics_startupReasonText(0)")));
        QVERIFY(after.contains(latin1("Diagnostics_hwErrorText(3)")));
    }

    void diagnostic_sensors_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("lines");
        QTest::newRow("none") << 0 << QString();
        QTest::newRow("one") << 1 << latin1("JIDA CPU temp: 20 \260C\n");
        QTest::newRow("eight") << 8
                               << latin1("JIDA CPU temp: 20 \260C\n"
                                         "JIDA box temp: 21 \260C\n"
                                         "JIDA environment temp: 22 \260C\n"
                                         "JIDA board temp: 23 \260C\n"
                                         "JIDA backplane temp: 24 \260C\n"
                                         "JIDA chipsets temp: 25 \260C\n"
                                         "JIDA video temp: 26 \260C\n"
                                         "JIDA other temp: 27 \260C\n");
    }

    void diagnostic_sensors()
    {
        QFETCH(int, count);
        QFETCH(QString, lines);
        setUnit(latin1("Diagnostics.pmSensorCount"), QString::number(count));
        for (int index = 0; index < 8; ++index) {
            setUnit("Diagnostics.pmTemp%1"_s.arg(index), QString::number(20 + index));
            setUnit("Diagnostics.pmKind%1"_s.arg(index), QString::number(index));
        }
        const QString text = diagnosticDataText();
        const auto start = text.indexOf(latin1("Number of power cycles: 40000 \n"));
        const auto end = text.indexOf(latin1("SS temp"));
        QCOMPARE(text.mid(start, end - start), latin1("Number of power cycles: 40000 \n") + lines);
    }

    void storage_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");

        const QString dashes =
            latin1("---------------------------------------------------------\n");
        const QString serial = latin1("Device serial number: SD-1 \n");
        const QString lifetime = latin1("Estimated remaining lifetime: 94 %\n");
        const QString time =
            latin1("Device was initially timestamped on: Fri Nov 11 11:11:11 2011\n");
        const QString serial2 = dashes + latin1("Device serial number: SD-2 \n");
        const QString lifetime2 = latin1("Estimated remaining lifetime: 99 %\n");
        const QString time2 =
            latin1("Device was initially timestamped on: Thu Jan  1 00:00:00 1970\n") + dashes;
        const QString not_available = latin1("Estimated remaining lifetime is not available\n");
        const auto row = [](const char *operation, int code, const QString &text) {
            QTest::addRow("%s, %d", operation, code) << latin1(operation) << code << text;
        };
        for (const int code : failureCodes) {
            const QString error = code == 2    ? QString()
                                  : code == 18 ? latin1("N/A\n")
                                               : errorText(code) + QLatin1Char('\n');
            const QString label = code == 2 ? QString() : latin1("getInitialTime: ");
            const QString label2 = code == 2 ? QString() : latin1("getInitialTime2: ");
            const QString absent = code == 2 ? QString() : not_available;
            const QString second = serial2 + lifetime2 + time2;
            row("Smart_getDeviceSerial", code, not_available + lifetime + time + second);
            row("Smart_getRemainingLifetime", code, serial + not_available + time + second);
            row("Smart_getInitialTime", code, serial + lifetime + label + error + second);
            const QString first = serial + lifetime + time;
            row("Smart_getDeviceSerial2", code, first + absent + lifetime2 + time2);
            row("Smart_getRemainingLifetime2", code, first + serial2 + absent + time2);
            row("Smart_getInitialTime2", code, first + serial2 + lifetime2 + label2 + error);
        }
    }

    void storage()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        QFETCH(QString, text);
        fault(operation, code);
        const QString section = diagnosticDataText();
        const QString banner = latin1("\n------------------  SMART data  ------------------\n");
        QCOMPARE(section.mid(section.indexOf(banner) + banner.size()), text);
    }

    void storage_onlyOne()
    {
        for (const char *operation :
            {"getDeviceSerial2", "getRemainingLifetime2", "getInitialTime2"})
            fault(latin1("Smart_") + latin1(operation), DEVICE_NOT_SUPPORTED);
        const auto second =
            diagnosticText.indexOf(latin1("-----------------------------------------"));
        QCOMPARE(diagnosticDataText(), diagnosticText.left(second));
    }

    void settings()
    {
        QCOMPARE(settingsDataText(), settingsText + batteryText);
        QCOMPARE(withoutResults(calls()), settingsCalls);
    }

    void settings_values_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("line");
        const auto row = [](const char *property, const char *value, const char *line) {
            QTest::addRow("%s %s", property, value)
                << latin1(property) << latin1(value) << latin1(line);
        };
        row("Touch.mode", "0", "TouchScreenMode: Mouse profile (next boot)");
        row("Touch.mode", "1", "TouchScreenMode: Touch profile (next boot)");
        row("Touch.mode", "3", "TouchScreenMode: Touch profile");
        row("Touch.mode", "4", "TouchScreenMode: Undefined value");
        row("Backlight.softTransitions", "false", "   Soft transitions: 0");
        row("Backlight.samplingMode", "0", "   Sampling mode: 0");
        row("Backlight.ledDimming", "2", "Led dimming: Disabled");
        row("Buzzer.trigger", "true", "Trigger (On/Off): 1");
        row("Config.extOnOffSigTrigTime", "4294967295", "ExtOnOffSigTrigTime: -1");
        row("Config.frontBtnTrigTime", "65535", "FrontBtnTrigTime: 65535");
        row("Config.heatingTempLimit", "5", "HeatingTempLimit: 5");
        row("Config.startupTrigger", "1", "StartupTrigger: Front button");
        row("Config.startupTrigger", "2", "StartupTrigger: OnOff Signal");
        row("Config.startupTrigger", "0", "StartupTrigger: Undefined value");
        row("Config.startupVoltage", "9", "StartupVoltage: 9");
        row("Config.shortButtonPressAction", "7", "ShortButtonPressAction: Undefined value");
        row("Telematics.gpsAntennaStatus", "1", "GPSAntennaStatus: Enabled");
    }

    void settings_values()
    {
        QFETCH(QString, property);
        QFETCH(QString, value);
        QFETCH(QString, line);
        setUnit(property, value);
        const QStringList lines = settingsDataText().split(QLatin1Char('\n'));
        QVERIFY2(lines.contains(line), qPrintable(lines.join(QLatin1Char('\n'))));
    }

    void settings_automaticBacklight_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("code");
        for (const int code : failureCodes) {
            QTest::addRow("parameters %d", code) << latin1("getAutomaticBLParams") << code;
            QTest::addRow("filter %d", code) << latin1("getAutomaticBLFilter") << code;
        }
    }

    void settings_automaticBacklight()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        const QString error = errorText(code);
        calls();
        fault(latin1("Backlight_") + operation, code);
        const QString text = settingsDataText();
        QVERIFY2(text.contains(latin1("\nAutomatic backlight Status: 0\n") + operation +
                               latin1(": ") + error + latin1("\n\nBuzzer:\n")),
            qPrintable(text));
        QStringList expected = settingsCalls;
        if (operation == "getAutomaticBLParams"_s)
            expected.removeOne(latin1("Backlight_getAutomaticBLFilter()"));
        expected.insert(
            expected.indexOf(latin1("Backlight_release()")), "deviceErrorText(%1)"_s.arg(code));
        QCOMPARE(withoutResults(calls()), expected);
    }

    void settings_telematics_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("available");
        for (const int code : failureCodes)
            QTest::addRow("code %d", code) << code << latin1("1");
        QTest::newRow("no board") << 0 << latin1("0");
        QTest::newRow("2") << 0 << latin1("2");
    }

    void settings_telematics()
    {
        QFETCH(int, code);
        QFETCH(QString, available);
        setUnit(latin1("Telematics.available"), available);
        if (code != 0)
            fault(latin1("Telematics_getAvailable"), code);
        const QString text = settingsDataText();
        const QString outcome = code != 0 ? errorText(code) : latin1("Disabled");
        QVERIFY2(text.contains(latin1("\n\nTelematics:\nTelematics board available: ") + outcome +
                               latin1("\n\nBattery:\n")),
            qPrintable(text));
        const QStringList ours = withoutResults(calls()).filter("Telematics_"_s);
        QCOMPARE(ours, list({"Telematics_create()", "Telematics_getAvailable()"}));
    }

    void battery()
    {
        QCOMPARE(batteryDataText(), batteryText);
        QCOMPARE(withoutResults(calls()), batteryCalls);
    }

    void battery_absent_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : failureCodes)
            QTest::addRow("code %d", code) << code;
        QTest::newRow("not connected") << 0;
    }

    void battery_absent()
    {
        QFETCH(int, code);
        if (code != 0)
            fault(latin1("Battery_isAvailable"), code);
        else
            setUnit(latin1("Battery.available"), latin1("false"));
        QCOMPARE(batteryDataText(), latin1("External battery not available.\n"));
        // The handle stays open.
        QCOMPARE(withoutResults(calls()), list({"Battery_create()", "Battery_isAvailable()"}));
    }

    void battery_values_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        const auto row = [](const char *property, const char *value, const char *before,
                             const char *after) {
            QTest::addRow("%s %s", property, value)
                << latin1(property) << latin1(value) << latin1(before) << latin1(after);
        };
        const char noErrors[] = "Battery reports no HW errors\n";
        row("Battery.hwErrorStatus", "1", noErrors,
            "Battery error! The thermistor temp sensor is not working\n");
        row("Battery.hwErrorStatus", "2", noErrors,
            "Battery error! The secondary temp sensor is not working\n");
        row("Battery.hwErrorStatus", "3", noErrors, "Battery error! Charging failed\n");
        row("Battery.hwErrorStatus", "4", noErrors, "Battery error! Overcurrent detected\n");
        row("Battery.hwErrorStatus", "5", noErrors, "Battery error! Battery not initiated\n");
        row("Battery.hwErrorStatus", "6", noErrors, "");
        const char charging[] = "Battery is being charged\n";
        row("Battery.chargingStatus", "2", charging, "Battery is fully charged\n");
        row("Battery.chargingStatus", "3", charging,
            "Temperature is too low to charge the battery\n");
        row("Battery.chargingStatus", "4", charging,
            "Temperature is too high to charge the battery\n");
        row("Battery.chargingStatus", "5", charging, "Could not get battery charging status\n");
        row("Battery.chargingStatus", "6", charging, "");
        const char external[] = "Power source: External power\n";
        row("Battery.powerSource", "0", external, "Power source: Battery\n");
        row("Battery.powerSource", "2", external, external);
        row("Battery.hwVersion", "%1 %2", "HW version: C1\n", "HW version: %1 %2\n");
        row("Battery.serialNumber", "", "serial number: B-4711\n", "serial number: \n");
    }

    void battery_values()
    {
        QFETCH(QString, property);
        QFETCH(QString, value);
        QFETCH(QString, before);
        QFETCH(QString, after);
        setUnit(property, value);
        QString expected = batteryText;
        expected.replace(before, after);
        QCOMPARE(batteryDataText(), expected);
    }

    void battery_idleTakesThePlaceOfAllBefore()
    {
        setUnit(latin1("Battery.chargingStatus"), latin1("0"));
        fault(latin1("Battery_getHwVersion"), 5);
        const auto rest = batteryText.indexOf(latin1("Power source"));
        QCOMPARE(
            batteryDataText(), latin1("Battery is not being charged\n") + batteryText.mid(rest));
        QStringList expected = batteryCalls;
        expected.insert(
            expected.indexOf(latin1("Battery_getSwVersion()")), latin1("deviceErrorText(5)"));
        QCOMPARE(withoutResults(calls()), expected);
    }

    void failure_data()
    {
        QTest::addColumn<int>("item");
        QTest::addColumn<int>("code");
        const QList<Item> all = items();
        for (int item = 0; item < all.size(); ++item) {
            for (const int code : failureCodes)
                QTest::addRow("%s %d", all[item].operation, code) << item << code;
        }
    }

    void failure()
    {
        QFETCH(int, item);
        QFETCH(int, code);
        const Item failing = items().at(item);
        const QString sound = failing.section();
        const QStringList soundCalls = calls();
        fault(latin1(failing.operation), code);
        const QString expected = failedText(sound, failing, code);
        QVERIFY(expected != sound);
        QStringList expectedCalls = failedCalls(soundCalls, failing, code);
        calls();
        QCOMPARE(failing.section(), expected);
        QStringList found = calls();
        // Which texts are asked for follows the number, which a failure changes; tested on its own.
        for (QStringList *lines : {&found, &expectedCalls}) {
            for (QString &line : *lines) {
                if (line.startsWith(latin1("Diagnostics_")) && line.contains(latin1("Text(")))
                    line = line.section(QLatin1Char('('), 0, 0);
            }
        }
        QCOMPARE(found, expectedCalls);
    }

    void version_failure_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("code");
        const std::pair<const char *, const char *> versions[] = {
            {"Versions_getVornAuxVersion", "Vornaux API"},
            {"Versions_getVornAuxDrvVersion", "Vornaux Driver"},
            {"Versions_getFPGAVersion", "FPGA"}, {"Versions_getFrontVersion", "Front uc"},
            {"Versions_getSSVersion", "System Supervisor"},
            {"Versions_getOSVersion", "OS version"}};
        for (const auto &[operation, label] : versions) {
            for (const int code : failureCodes)
                QTest::addRow("%s %d", operation, code)
                    << latin1(operation) << latin1(label) << code;
        }
    }

    void version_failure()
    {
        QFETCH(QString, operation);
        QFETCH(QString, label);
        QFETCH(int, code);
        fault(operation, code);
        const QString line =
            QLatin1Char('\n') + label + latin1(": ") + errorText(code) + QLatin1Char('\n');
        const QString report = generateSystemReport();
        QVERIFY2(report.contains(line), qPrintable(report));
    }

    void cpuBoard_data()
    {
        QTest::addColumn<QByteArray>("product");
        QTest::addColumn<QString>("info");
        const QString jida = latin1("Board name: CCR6\n"
                                    "Manufacturing Date: 2022.1.24\n"
                                    "Serial Number: 0004202217\n"
                                    "Hardware Revision: 3\n"
                                    "Firmware Revision: 12\n");
        const QString cgos = latin1("Board name: BQ77\n"
                                    "Board sub name: CCR6-i3\n"
                                    "Manufacturing Date: 2022.1.24\n"
                                    "Serial Number: 0004202217\n"
                                    "Part Number: 046-77110\n"
                                    "EAN: 4012345678901\n"
                                    "Product Revision: A.1\n"
                                    "System BIOS Revision: 114\n");
        QTest::newRow("none") << QByteArray() << jida;
        QTest::newRow("unknown") << QByteArray("Standard PC") << jida;
        QTest::newRow("by name, jida") << QByteArray("ChiefRiver") << jida;
        QTest::newRow("by name, cgos") << QByteArray("TS77") << cgos;
        QTest::newRow("cgos") << QByteArray("Aptio CRB") << cgos;
    }

    void cpuBoard()
    {
        QFETCH(QByteArray, product);
        QFETCH(QString, info);
        if (!product.isNull())
            bios->setBoard(product);
        setUnit(latin1("CpuBoard.name"),
            latin1(product == "TS77" || product == "Aptio CRB" ? "BQ77" : "CCR6"));
        QCOMPARE(cpuBoardDataText(), info);
        bios->setVersion("V %1 \377");
        QCOMPARE(cpuBoardDataText(), info + latin1("\nBIOS version: V %1 \377\n"));
    }

    void profiles_data()
    {
        QTest::addColumn<QString>("profile");
        for (const std::string &profile : virtualunit::profiles())
            QTest::addRow("%s", profile.c_str()) << QString::fromStdString(profile);
    }

    /** What holds for every unit: the frame, and one line for each setting. */
    void profiles()
    {
        QFETCH(QString, profile);
        useProfile(profile);
        const QString report = generateSystemReport();
        const QStringList made = withoutResults(calls());
        QStringList titles;
        QStringList lines = report.split(QLatin1Char('\n'));
        for (const QString &line : qAsConst(lines)) {
            if (line.startsWith("------------------  "_s))
                titles << line.mid(20).chopped(20);
        }
        QCOMPARE(
            titles, list({"SW Versions", "EEPROM data", "Diagnostic data", "SMART data", "ADC data",
                        "CPU board data", "Settings", "Log Files", "End of report"}));
        for (const Item &item : items()) {
            if (item.outcome != SETTING || latin1(item.operation).startsWith(latin1("Telematics_")))
                continue;
            for (const QString &label : item.labels)
                QCOMPARE(
                    lines
                        .filter(QRegularExpression(
                            QLatin1Char('^') + QRegularExpression::escape(label) + latin1(": ")))
                        .size(),
                    1);
        }
        // Whatever the unit has, everything but the board's radios and the battery is asked for.
        QStringList expected = settingsCalls;
        for (const QString &call : settingsCalls) {
            if (!made.contains(call) &&
                (call.startsWith(latin1("Telematics_get")) || call.startsWith(latin1("Battery_")) ||
                    call.startsWith(latin1("Backlight_getAutomaticBLFilter"))))
                expected.removeOne(call);
        }
        const auto start = made.indexOf(latin1("Backlight_create()"));
        QStringList ours = made.mid(start);
        for (const QString &text : ours.filter(latin1("deviceErrorText")))
            ours.removeAll(text);
        QCOMPARE(ours, expected);
    }

    void allFail_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << code;
    }

    void allFail()
    {
        QFETCH(int, code);
        for (const std::string &operation : virtualunit::operations())
            fault(QString::fromStdString(operation), code);
        const QString failed = errorText(code);
        const auto equipment = [&](const QStringList &labels) {
            QString text;
            for (const QString &label : labels)
                text += failedLine(Item{nullptr, "", EQUIPMENT, {}}, label, code);
            return text;
        };
        QCOMPARE(adcDataText(), latin1("ADC values\n") + equipment(voltages()));
        QStringList identity;
        QStringList history;
        for (const Item &item : items()) {
            if (item.section == Section(eepromDataText))
                identity += item.labels;
            if (item.section == Section(diagnosticDataText))
                history += item.labels;
        }
        QCOMPARE(eepromDataText(), latin1("Mainboard:\n") + equipment(identity.mid(0, 18)) +
                                       latin1("\nAddon/Telematics board:\n") +
                                       equipment(identity.mid(18)));
        const QString lifetimes =
            latin1("Estimated remaining lifetime is not available\n").repeated(2);
        QCOMPARE(diagnosticDataText(),
            latin1("Diagnostic data:\n") + equipment(history) +
                latin1("\n------------------  SMART data  ------------------\n") + lifetimes +
                equipment(list({"getInitialTime"})) + (code == 2 ? QString() : lifetimes) +
                equipment(list({"getInitialTime2"})));
        QCOMPARE(batteryDataText(), latin1("External battery not available.\n"));
        const QString settings = settingsDataText();
        QVERIFY(
            settings.startsWith(latin1("Backlight:\nIntensity: ") + failed + QLatin1Char('\n')));
        QVERIFY(settings.endsWith(latin1("\n\nTelematics:\nTelematics board available: ") + failed +
                                  latin1("\n\nBattery:\nExternal battery not available.\n")));
    }

    void file_isLatin1()
    {
        QString text;
        QByteArray bytes;
        for (int character = 0; character < 256; ++character) {
            text += QChar(character);
            bytes += char(character);
        }
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        writeReportText(buffer, text.repeated(1000));
        QVERIFY(buffer.data() == bytes.repeated(1000));
    }

private:
    void useKnownUnit()
    {
        for (const Value &value : knownUnit)
            setUnit(latin1(value.name), latin1(value.value));
        calls();
    }

    QTemporaryDir logs;
    std::unique_ptr<BiosData> bios;
};

VORN_TEST_MAIN(ReportTest)
#include "tst_report.moc"
