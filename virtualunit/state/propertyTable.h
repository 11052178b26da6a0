#pragma once

#include "virtualunit/state/Property.h"

#include <cstdint>

/** All values of the virtual unit, as data. Add a row and it is listed, checked and stored. */
namespace virtualunit {

constexpr Property flag(std::string_view name, bool value, std::string_view description)
{
    return {name, Kind::Flag, {0, 1}, {0, 1}, value ? 1.0 : 0.0, {}, {}, description};
}

constexpr Property integer(std::string_view name, double low, double high, double value,
    std::string_view measure, std::string_view description)
{
    return {name, Kind::Integer, {low, high}, {low, high}, value, {}, measure, description};
}

/** An enumeration: operations write its values only, but a unit may report others. */
constexpr Property choice(std::string_view name, double low, double high, double value,
    std::string_view measure, std::string_view description)
{
    return {
        name, Kind::Integer, {INT32_MIN, INT32_MAX}, {low, high}, value, {}, measure, description};
}

constexpr Property onOff(std::string_view name, bool value, std::string_view description)
{
    return choice(name, 0, 1, value ? 1.0 : 0.0, "(1 on, 0 off)", description);
}

constexpr Property real(std::string_view name, double low, double high, double value,
    std::string_view measure, std::string_view description)
{
    return {name, Kind::Real, {low, high}, {low, high}, value, {}, measure, description};
}

constexpr Property text(std::string_view name, std::string_view value, std::string_view description)
{
    return {name, Kind::Text, {0, 199}, {0, 199}, 0, value, "characters", description};
}

constexpr Property version(
    std::string_view name, double high, std::string_view value, std::string_view description)
{
    return {name, Kind::Version, {0, high}, {0, high}, 0, value, "each", description};
}

constexpr Property rail(std::string_view name, double volts, std::string_view description)
{
    return real(name, 0, 60, volts, "V", description).alive(Living::Rail);
}

constexpr Property temperature(std::string_view name, double celsius, std::string_view description)
{
    return integer(name, -32768, 32767, celsius, "degrees C", description)
        .alive(Living::Temperature)
        .drives();
}

constexpr Property minutes(std::string_view name, double value, std::string_view description)
{
    return integer(name, 0, UINT32_MAX, value, "min", description).alive(Living::Minutes);
}

constexpr Property canRate(std::string_view name, double value)
{
    return integer(name, 10, 1000, value, "kbit/s", "baud rate of the channel")
        .needing("Hardware.canCount")
        .reporting(0, 65535);
}

constexpr Property canFrames(std::string_view name, double value)
{
    return choice(name, 0, 2, value, "(0 standard, 1 extended, 2 both)", "frames that it takes")
        .needing("Hardware.canCount");
}

constexpr Property radio(
    std::string_view name, std::string_view fitted, bool value, std::string_view description)
{
    return onOff(name, value, description).needing("Telematics.available").needing(fitted);
}

constexpr Property touch(std::string_view name, double high, double value, std::string_view measure,
    std::string_view description)
{
    return integer(name, 0, high, value, measure, description)
        .needing("Hardware.hasTouchscreen")
        .needing("Feature.touchSettings");
}

constexpr Property battery(Property property)
{
    return std::move(property).needing("Feature.battery").availableWith("Battery.available");
}

inline constexpr auto properties = std::to_array<Property>({
    // What the unit consists of where no operation tells it.
    flag("Unit.running", true, "the computer runs; going from false to true is a start").drives(),
    integer("Unit.ambientTemp", -60, 120, 23, "degrees C", "temperature around the unit").drives(),
    flag("Feature.lightSensor", true, "there is a light sensor"),
    flag("Feature.frontLed", true, "there is a front LED"),
    flag("Feature.buzzer", true, "there is a buzzer"),
    flag("Feature.digitalIo", true, "digital lines can be read"),
    flag("Feature.digitalOutputs", true, "digital lines can be written"),
    flag("Feature.externalFan", true, "there is an external fan").drives(),
    flag("Feature.heater", true, "there is a heater").drives(),
    flag("Feature.suspend", true, "the computer can be suspended"),
    flag("Feature.battery", true, "an external battery can be connected").drives(),
    flag("Feature.storage", true, "there is a storage device"),
    flag("Feature.secondStorage", true, "there is a second storage device"),
    flag("Feature.ledDimming", true, "firmware dims the LED with the backlight"),
    flag("Feature.backlightHealth", true, "firmware watches the backlight"),
    flag("Feature.automaticBacklight", true, "firmware controls the backlight by the light"),
    flag("Feature.ledStartup", true, "firmware has the LED's start-up flag"),
    flag("Feature.powerOnStartup", true, "firmware can start whenever power comes on"),
    flag("Feature.buttonActions", true, "firmware tells short from long presses"),
    flag("Feature.touchProfiles", true, "firmware has touch screen profiles"),
    flag("Feature.touchSettings", true, "firmware gives access to the touch controller"),
    flag("Feature.minMaxTemp", true, "firmware keeps the extreme temperatures"),
    flag("Feature.moreRails", true, "firmware measures the rails above 16"),

    text("Hardware.mainPcbSerial", "S014-22091-0457", "serial number of the main board"),
    text("Hardware.unitSerialNumber", "VU-100-004711", "serial number of the unit"),
    text("Hardware.mainPcbArticleNumber", "601-2044-12", "article number of the main board"),
    text("Hardware.mainManufacturingDate", "2022-03-17", "manufacturing date of the main board"),
    text("Hardware.mainHardwareVersion", "B4", "hardware version of the main board"),
    text("Hardware.mainProductRevision", "R3A", "product revision"),
    text("Hardware.mainProductArticleNumber", "VU-100-12-T", "article number of the product"),
    text("Hardware.addonPcbSerial", "S009-22084-0112", "serial number of the add-on board")
        .needing("Telematics.available"),
    text("Hardware.addonArticleNumber", "601-3107-03", "article number of the add-on board")
        .needing("Telematics.available"),
    text("Hardware.addonManufacturingDate", "2022-02-28", "date of the add-on board")
        .needing("Telematics.available"),
    text("Hardware.addonHardwareVersion", "A2", "hardware version of the add-on board")
        .needing("Telematics.available"),
    integer("Hardware.ethernetCount", 0, 255, 2, "", "Ethernet connections"),
    integer("Hardware.canCount", 0, 255, 4, "", "CAN channels"),
    integer("Hardware.videoCount", 0, 255, 4, "", "video channels"),
    integer("Hardware.usbCount", 0, 255, 4, "", "USB connections"),
    integer("Hardware.serialCount", 0, 255, 2, "", "serial ports"),
    integer("Hardware.digitalInputCount", 0, 255, 4, "", "digital inputs"),
    integer("Hardware.configurableInputCount", 0, 255, 2, "", "configurable inputs"),
    integer("Hardware.pwmOutputCount", 0, 255, 2, "", "PWM outputs"),
    integer("Hardware.configurableButtonCount", 0, 255, 6, "", "configurable buttons"),
    flag("Hardware.hasDisplay", true, "a display is fitted").drives(),
    flag("Hardware.hasTouchscreen", true, "a touch screen is fitted"),
    flag("Hardware.hasWlan", true, "WLAN on the add-on board"),
    flag("Hardware.hasGps", true, "GPS receiver on the add-on board"),
    flag("Hardware.hasGsm", true, "GSM/GPRS modem on the add-on board"),
    flag("Hardware.hasBluetooth", true, "Bluetooth on the add-on board"),

    rail("Adc.voltage0", 24.0, "24V in"),
    rail("Adc.voltage2", 12.0, "12V"),
    rail("Adc.voltage3", 12.0, "12V video"),
    rail("Adc.voltage4", 5.0, "5V"),
    rail("Adc.voltage5", 3.3, "3.3V"),
    rail("Adc.voltage6", 5.0, "TFT").needing("Hardware.hasDisplay"),
    rail("Adc.voltage7", 5.0, "5V STB"),
    rail("Adc.voltage8", 1.9, "1.9V"),
    rail("Adc.voltage9", 1.8, "1.8V"),
    rail("Adc.voltage10", 1.5, "1.5V"),
    rail("Adc.voltage11", 1.2, "1.2V"),
    rail("Adc.voltage12", 1.05, "1.05V"),
    rail("Adc.voltage13", 1.0, "1.0V"),
    rail("Adc.voltage14", 0.9, "0.9V"),
    rail("Adc.voltage15", 2.5, "SS VREF"),
    rail("Adc.voltage16", 24.0, "24V Backup")
        .needing("Feature.battery")
        .availableWith("Battery.available"),
    rail("Adc.voltage17", 2.5, "2.5V").needing("Feature.moreRails"),
    rail("Adc.voltage18", 1.1, "1.1V").needing("Feature.moreRails"),
    rail("Adc.voltage19", 1.3, "1.3V PER").needing("Feature.moreRails"),
    rail("Adc.voltage20", 1.3, "1.3V VDDA").needing("Feature.moreRails"),
    rail("Adc.voltage21", 3.3, "3V3 STBY").needing("Feature.moreRails"),
    rail("Adc.voltage22", 5.0, "VPMIC").needing("Feature.moreRails"),
    rail("Adc.voltage23", 12.0, "VMAIN").needing("Feature.moreRails"),

    version("Versions.fpga", 255, "1.4.2.0", "the FPGA image"),
    version("Versions.ss", 255, "2.1.7.3", "the system supervisor"),
    version("Versions.front", 255, "1.2.0.5", "the front controller"),
    version("Versions.vornAux", 255, "2.7.2.0", "this library"),
    version("Versions.vornAuxDrv", 255, "2.7.0.1", "the driver beneath this library"),
    version("Versions.os", 255, "3.0.12.0", "the operating system image"),

    integer("Backlight.intensity", 0, 255, 180, "", "intensity of the backlight")
        .needing("Hardware.hasDisplay")
        .alive(Living::Ramp)
        .drives(),
    integer("Backlight.status", 0, 255, 1, "", "status byte").needing("Hardware.hasDisplay"),
    flag("Backlight.healthStatus", true, "the backlight hardware is sound")
        .needing("Hardware.hasDisplay")
        .needing("Feature.backlightHealth"),
    integer("Backlight.automaticBLStatus", 0, 255, 0, "", "non-zero: the light sets the intensity")
        .needing("Hardware.hasDisplay")
        .needing("Feature.automaticBacklight")
        .drives(),
    flag("Backlight.softTransitions", true, "automatic control changes the intensity softly")
        .needing("Hardware.hasDisplay")
        .needing("Feature.automaticBacklight")
        .drives(),
    real("Backlight.kValue", 0, 100, 0.35, "", "K value of the automatic control")
        .needing("Hardware.hasDisplay")
        .needing("Feature.automaticBacklight")
        .drives(),
    integer("Backlight.averageWindowSize", 1, 255, 4, "samples", "filter of automatic control")
        .needing("Hardware.hasDisplay")
        .needing("Feature.automaticBacklight")
        .reporting(0, UINT32_MAX)
        .drives(),
    integer("Backlight.rejectWindowSize", 0, 255, 8, "samples", "filter of automatic control")
        .reporting(0, UINT32_MAX)
        .drives(),
    integer("Backlight.rejectDeltaLux", 0, 65535, 80, "lux", "filter of automatic control")
        .reporting(0, UINT32_MAX)
        .drives(),
    choice("Backlight.samplingMode", 0, 2, 2, "(0 standard, 1 extended, 2 auto)",
        "filter of automatic control")
        .drives(),
    onOff("Backlight.ledDimming", false, "the front LED is dimmed with the backlight")
        .needing("Hardware.hasDisplay")
        .needing("Feature.ledDimming"),

    integer("Buzzer.frequency", 700, 10000, 2400, "Hz", "frequency of the tone")
        .needing("Feature.buzzer")
        .reporting(0, 65535),
    integer("Buzzer.volume", 0, 51, 20, "", "volume in device steps")
        .needing("Feature.buzzer")
        .reporting(0, 65535),
    flag("Buzzer.trigger", false, "the buzzer sounds").needing("Feature.buzzer"),

    canRate("Can.baudrate1", 250),
    canRate("Can.baudrate2", 250),
    canRate("Can.baudrate3", 500),
    canRate("Can.baudrate4", 1000),
    canRate("Can.baudrate5", 125),
    canRate("Can.baudrate6", 125),
    canRate("Can.baudrate7", 125),
    canRate("Can.baudrate8", 125),
    canRate("Can.baudrate9", 125),
    canFrames("Can.frameType1", 1),
    canFrames("Can.frameType2", 1),
    canFrames("Can.frameType3", 0),
    canFrames("Can.frameType4", 2),
    canFrames("Can.frameType5", 2),
    canFrames("Can.frameType6", 2),
    canFrames("Can.frameType7", 2),
    canFrames("Can.frameType8", 2),
    canFrames("Can.frameType9", 2),

    choice("Config.startupTrigger", 1, 3, 1, "(1 button, 2 signal, 3 both)",
        "what starts the computer"),
    integer("Config.frontBtnTrigTime", 0, 65535, 2500, "ms", "press time of the front button"),
    integer("Config.extOnOffSigTrigTime", 0, UINT32_MAX, 2, "s", "time of the on/off signal"),
    integer("Config.suspendMaxTime", 0, 65535, 120, "min", "longest time in suspend, 0 no limit")
        .needing("Feature.suspend"),
    onOff("Config.canStartupPower", true, "CAN power at start-up").needing("Hardware.canCount"),
    integer("Config.videoStartupPower", 0, 15, 3, "(mask)", "video power at start-up")
        .needing("Hardware.videoCount")
        .reporting(0, 255),
    onOff("Config.extFanStartupPower", true, "external fan power at start-up")
        .needing("Feature.externalFan"),
    real("Config.startupVoltage", 5, 36, 18.5, "V", "lowest supply voltage for a start")
        .reporting(-1000, 1000),
    integer("Config.heatingTempLimit", -25, 5, -10, "degrees C", "heater runs below it first")
        .needing("Feature.heater")
        .reporting(-32768, 32767)
        .drives(),
    onOff("Config.powerOnStartup", true, "start whenever power comes on")
        .needing("Feature.powerOnStartup"),
    choice("Config.longButtonPressAction", 0, 2, 2, "(0 none, 1 suspend, 2 shut down)",
        "action of a long press")
        .needing("Feature.buttonActions"),
    choice("Config.shortButtonPressAction", 0, 2, 0, "(0 none, 1 suspend, 2 shut down)",
        "action of a short press")
        .needing("Feature.buttonActions"),
    choice("Config.onOffSigAction", 0, 2, 1, "(0 none, 1 suspend, 2 shut down)",
        "action of the on/off signal"),

    onOff("Power.blPowerStatus", true, "backlight power").needing("Hardware.hasDisplay").drives(),
    onOff("Power.canPowerStatus", true, "CAN power").needing("Hardware.canCount").drives(),
    integer("Power.videoPowerStatus", 0, 15, 3, "(mask)", "video power")
        .needing("Hardware.videoCount")
        .reporting(0, 255)
        .drives(),
    onOff("Power.extFanPowerStatus", true, "external fan power")
        .needing("Feature.externalFan")
        .drives(),

    temperature("Diagnostics.ssTemp", 41, "temperature of the system supervisor"),
    temperature("Diagnostics.pcbTemp", 44, "temperature of the main board"),
    integer("Diagnostics.pmSensorCount", 0, 64, 5, "",
        "sensors of the processor module; those after the eighth read like it"),
    temperature("Diagnostics.pmTemp0", 55, "sensor 0 of the processor module"),
    temperature("Diagnostics.pmTemp1", 38, "sensor 1 of the processor module"),
    temperature("Diagnostics.pmTemp2", 30, "sensor 2 of the processor module"),
    temperature("Diagnostics.pmTemp3", 45, "sensor 3 of the processor module"),
    temperature("Diagnostics.pmTemp4", 48, "sensor 4 of the processor module"),
    temperature("Diagnostics.pmTemp5", 50, "sensor 5 of the processor module"),
    temperature("Diagnostics.pmTemp6", 50, "sensor 6 of the processor module"),
    temperature("Diagnostics.pmTemp7", 35, "sensor 7 of the processor module"),
    choice("Diagnostics.pmKind0", 0, 7, 0, "", "kind of sensor 0").drives(),
    choice("Diagnostics.pmKind1", 0, 7, 1, "", "kind of sensor 1").drives(),
    choice("Diagnostics.pmKind2", 0, 7, 2, "", "kind of sensor 2").drives(),
    choice("Diagnostics.pmKind3", 0, 7, 3, "", "kind of sensor 3").drives(),
    choice("Diagnostics.pmKind4", 0, 7, 5, "", "kind of sensor 4").drives(),
    choice("Diagnostics.pmKind5", 0, 7, 6, "", "kind of sensor 5").drives(),
    choice("Diagnostics.pmKind6", 0, 7, 4, "", "kind of sensor 6").drives(),
    choice("Diagnostics.pmKind7", 0, 7, 7, "", "kind of sensor 7").drives(),
    integer("Diagnostics.startupReason", 0, 65535, 1, "", "why the computer last started"),
    integer("Diagnostics.shutDownReason", 0, 65535, 31, "", "why it last stopped, 31 no fault"),
    integer("Diagnostics.hwErrorStatus", 0, 65535, 0, "", "hardware error word"),
    minutes("Diagnostics.totalRunTime", 184523, "running"),
    minutes("Diagnostics.totalSuspendTime", 20160, "suspended"),
    minutes("Diagnostics.totalHeatTime", 312, "heating before a cold start"),
    minutes("Diagnostics.runTime40To60", 96411, "running at 40 to 60 degrees C"),
    minutes("Diagnostics.runTime60To70", 2210, "running at 60 to 70 degrees C"),
    minutes("Diagnostics.runTime70To80", 95, "running at 70 to 80 degrees C"),
    minutes("Diagnostics.runTimeAbove80", 4, "running above 80 degrees C"),
    integer("Diagnostics.minTemp", -32768, 32767, -19, "degrees C", "lowest temperature seen")
        .needing("Feature.minMaxTemp")
        .alive(Living::Lowest),
    integer("Diagnostics.maxTemp", -32768, 32767, 82, "degrees C", "highest temperature seen")
        .needing("Feature.minMaxTemp")
        .alive(Living::Highest),
    integer("Diagnostics.powerCycles", 0, 65535, 1289, "", "power cycles"),

    text("Smart.deviceSerial", "SD064G-20220311-0917", "serial number of the storage device")
        .needing("Feature.storage"),
    integer("Smart.remainingLifetime", 0, 255, 94, "%", "its remaining lifetime")
        .needing("Feature.storage"),
    integer("Smart.initialTime", -62135596800, 253402300799, 1647504000, "s since 1970",
        "when it was first stamped")
        .needing("Feature.storage"),
    text("Smart.deviceSerial2", "SD128G-20220402-0031", "serial number of the second one")
        .needing("Feature.secondStorage"),
    integer("Smart.remainingLifetime2", 0, 255, 99, "%", "its remaining lifetime")
        .needing("Feature.secondStorage"),
    integer("Smart.initialTime2", -62135596800, 253402300799, 1649030400, "s since 1970",
        "when it was first stamped")
        .needing("Feature.secondStorage"),

    integer("DigIO.digIO", 0, 255, 5, "(mask)", "digital lines").needing("Feature.digitalIo"),

    real("FrontLED.frequency", 0.1, 50, 2, "Hz", "blink frequency")
        .needing("Feature.frontLed")
        .reporting(0, 1000),
    integer("FrontLED.dutyCycle", 0, 100, 50, "%", "duty cycle")
        .needing("Feature.frontLed")
        .reporting(0, 255),
    integer("FrontLED.onTime", 0, 255, 25, "", "on time of a pulse").needing("Feature.frontLed"),
    integer("FrontLED.offTime", 0, 255, 25, "", "off time of a pulse").needing("Feature.frontLed"),
    integer("FrontLED.idleTime", 0, 255, 10, "x 100 ms", "idle time between pulse trains")
        .needing("Feature.frontLed"),
    integer("FrontLED.nrOfPulses", 0, 255, 3, "", "pulses in a train").needing("Feature.frontLed"),
    integer("FrontLED.red", 0, 15, 0, "", "red of the colour")
        .needing("Feature.frontLed")
        .reporting(0, 255),
    integer("FrontLED.green", 0, 15, 0, "", "green of the colour").reporting(0, 255),
    integer("FrontLED.blue", 0, 15, 15, "", "blue of the colour").reporting(0, 255),
    onOff("FrontLED.enabledDuringStartup", false, "on during start-up")
        .needing("Feature.frontLed")
        .needing("Feature.ledStartup"),

    integer("LightSensor.illuminance", 0, 65535, 0, "lux", "illuminance")
        .needing("Feature.lightSensor")
        .alive(Living::Light)
        .drives(),
    choice("LightSensor.operatingRange", 0, 1, 0, "(0 standard, 1 extended)", "operating range")
        .needing("Feature.lightSensor")
        .drives(),
    flag("LightSensor.averaging", false, "the averaged measurement runs")
        .needing("Feature.lightSensor"),
    integer("LightSensor.averageWindowSize", 1, 255, 5, "samples", "filter of the measurement")
        .needing("Feature.lightSensor"),
    integer("LightSensor.rejectWindowSize", 0, 255, 5, "samples", "filter of the measurement"),
    integer("LightSensor.rejectDeltaLux", 0, 65535, 100, "lux", "filter of the measurement"),
    choice("LightSensor.samplingMode", 0, 2, 2, "(0 standard, 1 extended, 2 auto)",
        "filter of the measurement"),

    choice("Telematics.available", 0, 1, 1, "", "the add-on board is fitted"),
    radio("Telematics.gprsPowerStatus", "Hardware.hasGsm", true, "present power"),
    radio("Telematics.gprsStartUpPowerStatus", "Hardware.hasGsm", true, "power at start-up"),
    radio("Telematics.wlanPowerStatus", "Hardware.hasWlan", true, "present power"),
    radio("Telematics.wlanStartUpPowerStatus", "Hardware.hasWlan", true, "power at start-up"),
    radio("Telematics.btPowerStatus", "Hardware.hasBluetooth", true, "present power"),
    radio("Telematics.btStartUpPowerStatus", "Hardware.hasBluetooth", false, "power at start-up"),
    radio("Telematics.gpsPowerStatus", "Hardware.hasGps", true, "present power"),
    radio("Telematics.gpsStartUpPowerStatus", "Hardware.hasGps", true, "power at start-up"),
    choice("Telematics.gpsAntennaStatus", 0, 255, 1, "(1 good)", "state of the GPS antenna")
        .needing("Telematics.available")
        .needing("Hardware.hasGps")
        .availableWith("Telematics.gpsPowerStatus"),

    // What the virtual lines make of the radios; no operation tells it.
    flag("Gsm.simInserted", true, "there is a SIM card in the modem"),
    text("Gsm.pin", "1234", "PIN that the card asks for after power-on, empty for none"),
    text("Gsm.puk", "12345678", "PUK of the card"),
    integer("Gsm.pinTries", 0, 3, 3, "", "tries left for the PIN, 0 asks for the PUK"),
    integer("Gsm.pukTries", 0, 10, 10, "", "tries left for the PUK, 0 for a dead card"),
    integer("Gsm.registration", 0, 5, 1, "(1 home, 2 searching, 3 denied, 5 roaming)",
        "registration in the network, as AT+CREG? tells it"),
    integer("Gsm.signal", 0, 99, 21, "(0 to 31, 99 unknown)", "signal, as AT+CSQ tells it"),
    text("Gsm.network", "Virtual Mobile", "name of the network"),
    integer(
        "Gsm.unaskedInterval", 0, 86400, 60, "s", "time between lines nobody asked for, 0 never"),
    integer("Gps.coldStart", 0, 3600, 20, "s", "time from power-on to the first fix"),
    integer("Gps.satellites", 4, 24, 9, "", "satellites in the fix once all are found"),
    real("Gps.latitude", -89, 89, 57.70, "degrees north", "middle of the round that is driven"),
    real("Gps.longitude", -179, 179, 11.97, "degrees east", "middle of the round that is driven"),
    real("Gps.speed", 0, 400, 50, "km/h", "speed on the round"),

    choice("Touch.mode", 0, 3, 3, "(0 mouse, 1 touch at next boot; 2 mouse, 3 touch now)",
        "profile of the touch screen, as last set")
        .needing("Hardware.hasTouchscreen")
        .needing("Feature.touchProfiles"),
    choice("Touch.nextBootMode", 2, 3, 3, "(2 mouse, 3 touch)", "profile after the next start"),
    integer("Touch.mouseRightClickTime", 0, 65535, 800, "ms", "touch that makes a right click")
        .needing("Hardware.hasTouchscreen")
        .needing("Feature.touchProfiles"),
    touch("Touch.rightClickTime", 65535, 1200, "ms", "touch controller setting 0"),
    touch("Touch.lowLevel", 4095, 620, "", "touch controller setting 1"),
    touch("Touch.untouchLevel", 4095, 480, "", "touch controller setting 2"),
    touch("Touch.debounceTime", 16383, 20, "ms", "touch controller setting 3"),
    touch("Touch.debounceTimeoutTime", 16383, 120, "ms", "touch controller setting 4"),
    touch("Touch.doubleClickMaxClickTime", 16383, 300, "ms", "touch controller setting 5"),
    touch("Touch.doubleClickTime", 16383, 600, "ms", "touch controller setting 6"),
    touch("Touch.maxRightClickDistance", 32767, 30, "pixels", "touch controller setting 7"),
    touch("Touch.useDejitter", 65535, 1, "", "touch controller setting 8"),
    touch("Touch.calibrationWidth", 32767, 90, "pixels", "touch controller setting 9"),
    touch("Touch.calibrationMeasurements", 65535, 12, "", "touch controller setting 10"),

    flag("Battery.available", true, "a battery is connected").needing("Feature.battery").drives(),
    battery(integer("Battery.voltageLevel", 0, 255, 76, "%", "charge level")).alive(Living::Charge),
    battery(choice("Battery.chargingStatus", 0, 5, 0, "", "what the charger does"))
        .alive(Living::Charging),
    battery(choice("Battery.powerSource", 0, 1, 1, "(0 battery)", "what powers the computer"))
        .drives(),
    battery(temperature("Battery.temperature", 26, "temperature of the battery")),
    battery(integer("Battery.minTemp", -32768, 32767, -12, "degrees C", "lowest temperature seen"))
        .alive(Living::Lowest),
    battery(integer("Battery.maxTemp", -32768, 32767, 51, "degrees C", "highest temperature seen"))
        .alive(Living::Highest),
    battery(choice("Battery.hwErrorStatus", 0, 5, 0, "", "what is wrong with the battery"))
        .drives(),
    battery(minutes("Battery.runTimeMainPower", 140211, "on main power")),
    battery(minutes("Battery.runTimeBatteryPower", 3127, "on battery power")),
    battery(minutes("Battery.runTimeBelowMinus20", 0, "below -20 degrees C")),
    battery(minutes("Battery.runTimeMinus20To0", 1804, "at -20 to 0 degrees C")),
    battery(minutes("Battery.runTime0To40", 139480, "at 0 to 40 degrees C")),
    battery(minutes("Battery.runTime40To60", 2054, "at 40 to 60 degrees C")),
    battery(minutes("Battery.runTime60To70", 0, "at 60 to 70 degrees C")),
    battery(minutes("Battery.runTime70To80", 0, "at 70 to 80 degrees C")),
    battery(minutes("Battery.runTimeAbove80", 0, "above 80 degrees C")),
    battery(text("Battery.hwVersion", "C1", "hardware version")),
    battery(version("Battery.swVersion", 65535, "1.0.9.214", "software version")),
    battery(text("Battery.serialNumber", "BP24-22013-0088", "serial number")),

    integer("Firmware.duration", 0, 600000, 4000, "ms", "time that a firmware job takes"),

    // What the board vendors' libraries tell.
    text("CpuBoard.name", "CCR6", "name of the CPU board"),
    text("CpuBoard.subName", "CCR6-i3", "sub name of the CPU board"),
    text("CpuBoard.manufacturingDate", "2022-01-24", "year, month and day"),
    text("CpuBoard.serialNumber", "0004202217", "serial number"),
    text("CpuBoard.partNumber", "046-77110", "part number"),
    text("CpuBoard.ean", "4012345678901", "EAN"),
    text("CpuBoard.productRevision", "A1", "product revision, two characters"),
    integer("CpuBoard.biosRevision", 0, 65535, 114, "", "system BIOS revision"),
    integer("CpuBoard.hardwareRevision", 0, 65535, 3, "", "hardware revision"),
    integer("CpuBoard.firmwareRevision", 0, 65535, 12, "", "firmware revision"),
});

inline constexpr std::size_t propertyCount = properties.size();

constexpr std::size_t findProperty(std::string_view name)
{
    for (std::size_t index = 0; index < propertyCount; ++index) {
        if (properties[index].name == name)
            return index;
    }
    return propertyCount;
}

/** What each property depends on, by index, so that no call searches for names. */
struct Dependence {
    std::array<std::size_t, 2> needs; ///< propertyCount for none
    std::size_t whenever;             ///< propertyCount for none
};

constexpr std::size_t findDependence(std::string_view name)
{
    const std::size_t index = name.empty() ? propertyCount : findProperty(name);
    if (index == propertyCount && !name.empty())
        throw "depends on a property that doesn't exist";
    return index;
}

constexpr auto findDependences()
{
    std::array<Dependence, propertyCount> all{};
    for (std::size_t index = 0; index < propertyCount; ++index) {
        all[index].needs[0] = findDependence(properties[index].need);
        all[index].needs[1] = findDependence(properties[index].alsoNeed);
        all[index].whenever = findDependence(properties[index].whenever);
    }
    return all;
}

inline constexpr auto dependences = findDependences();

/** A property by its name, looked up by the compiler: a wrong name doesn't compile. */
class Key
{
public:
    consteval Key(const char *name)
        : index(findProperty(name))
    {
        if (index == propertyCount)
            throw "no such property";
    }
    constexpr explicit Key(std::size_t number)
        : index(number)
    {}

    constexpr const Property &property() const { return properties[index]; }
    /** The property some rows further on, for channels. */
    constexpr Key operator+(std::size_t rows) const { return Key(index + rows); }

    std::size_t index;
};

} // namespace virtualunit
