#include "report/factoryDefaults.h"

#include "frame/DeviceHandle.h"
#include "frame/reportError.h"
#include "platform/platform.h"
#include "report/BoardType.h"

#include <algorithm>
#include <string>

namespace {

/** What the unit has. A count that can't be read stays 0, and what depends on it is passed over. */
struct Equipment {
    std::uint8_t canCount = 0;
    std::uint8_t videoCount = 0;
};

Equipment readEquipment()
{
    Equipment equipment;
    const DeviceHandle<Hardware_create, Hardware_release> hardware;
    Hardware_getCanCount(hardware, &equipment.canCount);
    Hardware_getVideoCount(hardware, &equipment.videoCount);
    return equipment;
}

void resetBacklight()
{
    const DeviceHandle<Backlight_create, Backlight_release> backlight;
    reportError(Backlight_setIntensity(backlight, 255), "setIntensity");
    reportError(Backlight_stopAutomaticBL(backlight), "stopAutomaticBL");
    reportError(Backlight_setAutomaticBLParams(backlight, false), "setAutomaticBLParams");
    reportError(
        Backlight_setAutomaticBLFilter(backlight, 5, 5, 50, SAMPLING_AUTO), "setAutomaticBLFilter");
    reportError(Backlight_setLedDimming(backlight, STATUS_ON), "setLedDimming");
}

void resetBuzzer()
{
    const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
    reportError(Buzzer_setFrequency(buzzer, 700), "setFrequency");
    reportError(Buzzer_setVolume(buzzer, 0), "setVolume");
    reportError(Buzzer_setTrigger(buzzer, false), "setTrigger");
}

void resetCan(const Equipment &equipment)
{
    const std::uint8_t channels = std::min<std::uint8_t>(equipment.canCount, 7);
    const auto reportChannel = [](DeviceCode code, const char *operation, std::uint8_t channel) {
        reportError(code, (operation + std::string(" CAN") + std::to_string(channel)).c_str());
    };

    const DeviceHandle<Can_create, Can_release> can;
    for (std::uint8_t channel = 1; channel <= channels; ++channel)
        reportChannel(Can_setBaudrate(can, channel, 125), "setBaudrate", channel);
    for (std::uint8_t channel = 1; channel <= channels; ++channel)
        reportChannel(Can_setFrameType(can, channel, FRAME_BOTH), "setFrameType", channel);
}

void resetConfig(const Equipment &equipment, bool boardNeedsOverride)
{
    const DeviceHandle<Config_create, Config_release> config;
    std::uint16_t minutes = 0;
    const bool suspendSupported =
        Config_getSuspendMaxTime(config, &minutes) != DEVICE_NOT_SUPPORTED;

    if (equipment.canCount != 0)
        reportError(
            Config_setCanStartupPowerConfig(config, STATUS_OFF), "setCanStartupPowerConfig");
    reportError(
        Config_setExtFanStartupPowerConfig(config, STATUS_OFF), "setExtFanStartupPowerConfig");
    reportError(Config_setExtOnOffSigTrigTime(config, 4), "setExtOnOffSigTrigTime");
    reportError(Config_setFrontBtnTrigTime(config, 4000), "setFrontBtnTrigTime");
    reportError(Config_setHeatingTempLimit(config, -25), "setHeatingTempLimit");
    reportError(
        Config_setLongButtonPressAction(config, ACTION_SHUT_DOWN), "setLongButtonPressAction");
    reportError(Config_setOnOffSigAction(config, ACTION_SHUT_DOWN), "setOnOffSigAction");
    reportError(Config_setShortButtonPressAction(
                    config, suspendSupported ? ACTION_SUSPEND : ACTION_SHUT_DOWN),
        "setShortButtonPressAction");
    reportError(Config_setStartupTriggerConfig(config, TRIGGER_BOTH), "setStartupTriggerConfig");
    reportError(Config_setStartupVoltageConfig(config, 9.0), "setStartupVoltageConfig");
    if (suspendSupported)
        reportError(Config_setSuspendMaxTime(config, 60), "setSuspendMaxTime");
    if (equipment.videoCount != 0)
        reportError(Config_setVideoStartupPowerConfig(config, 0), "setVideoStartupPowerConfig");
    reportError(Config_setPowerOnStartup(config, STATUS_OFF), "setPowerOnStartup");

    // These boards neither suspend nor follow the signal. Unchecked: what was just reported for the
    // same writes above would only be said twice.
    if (boardNeedsOverride) {
        Config_setStartupTriggerConfig(config, TRIGGER_BOTH);
        Config_setShortButtonPressAction(config, ACTION_SHUT_DOWN);
        Config_setLongButtonPressAction(config, ACTION_SHUT_DOWN);
        Config_setOnOffSigAction(config, ACTION_NONE);
    }
}

void resetFrontLED()
{
    const DeviceHandle<FrontLED_create, FrontLED_release> led;
    reportError(FrontLED_setColor(led, 0, 15, 0), "setColor");
    reportError(FrontLED_setEnabledDuringStartup(led, STATUS_ON), "setEnabledDuringStartup");
    reportError(FrontLED_setIdleTime(led, 0), "setIdleTime");
    reportError(FrontLED_setNrOfPulses(led, 0), "setNrOfPulses");
    reportError(FrontLED_setOffTime(led, 0), "setOffTime"); // deliberately before the on time
    reportError(FrontLED_setOnTime(led, 100), "setOnTime");
}

void resetLightSensor()
{
    const DeviceHandle<LightSensor_create, LightSensor_release> sensor;
    reportError(LightSensor_setOperatingRange(sensor, LIGHT_RANGE_STANDARD), "setOperatingRange");
}

void resetPower(const Equipment &equipment)
{
    const DeviceHandle<Power_create, Power_release> power;
    reportError(Power_setBLPowerStatus(power, STATUS_ON), "setBLPowerStatus");
    if (equipment.canCount != 0)
        reportError(Power_setCanPowerStatus(power, STATUS_OFF), "setCanPowerStatus");
    reportError(Power_setExtFanPowerStatus(power, STATUS_OFF), "setExtFanPowerStatus");
    if (equipment.videoCount != 0)
        reportError(Power_setVideoPowerStatus(power, 0), "setVideoPowerStatus");
}

/** The right click time is taken in the mouse profile only; the controller needs each pause. */
void resetTouch()
{
    const DeviceHandle<Touch_create, Touch_release> touch;
    reportError(Touch_setMode(touch, TOUCH_TOUCH), "setMode");
    platform::pause(500);
    reportError(Touch_setMode(touch, TOUCH_MOUSE), "setMode");
    platform::pause(500);
    reportError(Touch_setMouseRightClickTime(touch, 1000), "setMouseRightClickTime");
    platform::pause(100);
    reportError(Touch_setMode(touch, TOUCH_TOUCH), "setMode");
    platform::pause(500);
}

struct Radio {
    DeviceCode (*present)(HardwareHandle, DeviceBool *);
    DeviceCode (*setPower)(TelematicsHandle, std::int32_t);
    const char *powerName;
    DeviceCode (*setStartUpPower)(TelematicsHandle, std::int32_t);
    const char *startUpPowerName;
};

constexpr Radio radios[] = {
    {Hardware_hasGsm, Telematics_setGPRSPowerStatus, "setGPRSPowerStatus",
        Telematics_setGPRSStartUpPowerStatus, "setGPRSStartUpPowerStatus"},
    {Hardware_hasWlan, Telematics_setWLANPowerStatus, "setWLANPowerStatus",
        Telematics_setWLANStartUpPowerStatus, "setWLANStartUpPowerStatus"},
    {Hardware_hasGps, Telematics_setGPSPowerStatus, "setGPSPowerStatus",
        Telematics_setGPSStartUpPowerStatus, "setGPSStartUpPowerStatus"},
    {Hardware_hasBluetooth, Telematics_setBTPowerStatus, "setBTPowerStatus",
        Telematics_setBTStartUpPowerStatus, "setBTStartUpPowerStatus"},
};

void resetTelematics()
{
    const DeviceHandle<Telematics_create, Telematics_release> telematics;
    std::int32_t available = 0;
    if (Telematics_getAvailable(telematics, &available) != DEVICE_OK || available != 1)
        return;

    const DeviceHandle<Hardware_create, Hardware_release> hardware;
    for (const Radio &radio : radios) {
        DeviceBool present = 0;
        radio.present(hardware, &present); // a radio that can't be asked for counts as absent
        if (!present)
            continue;
        reportError(radio.setPower(telematics, STATUS_OFF), radio.powerName);
        reportError(radio.setStartUpPower(telematics, STATUS_OFF), radio.startUpPowerName);
    }
}

} // namespace

void applyFactoryDefaults()
{
    BoardType board = BOARD_UNRECOGNISED;
    if (!readBoardType(board))
        board = BOARD_UNRECOGNISED;
    const bool boardNeedsOverride = board == BOARD_JIDA_BY_NAME || board == BOARD_CGOS_BY_NAME;
    const Equipment equipment = readEquipment();

    resetBacklight();
    resetBuzzer();
    resetCan(equipment);
    resetConfig(equipment, boardNeedsOverride);
    resetFrontLED();
    resetLightSensor();
    resetPower(equipment);
    resetTouch();
    resetTelematics();
}
