#include "report/formatters.h"
#include "report/rows.h"
#include "report/sections.h"

namespace {

template <auto Read>
constexpr auto integer = settingLine<Read, formatIntLine>;

template <auto Read>
constexpr auto decimal = settingLine<Read, formatDoubleLine>;

template <auto Read>
constexpr auto enabled = settingLine<Read, formatEnabledLine>;

template <auto Read>
constexpr auto action = settingLine<Read, formatButtonActionLine>;

template <auto Read>
constexpr auto trigger = settingLine<Read, formatStartupTriggerLine>;

constexpr ReportRow<BacklightHandle> backlightRows[] = {
    {integer<Backlight_getIntensity>, "Intensity"},
    {enabled<Backlight_getLedDimming>, "Led dimming"},
    {integer<Backlight_getStatus>, "Backlight Status"},
    {integer<Backlight_getAutomaticBLStatus>, "Automatic backlight Status"},
};

constexpr ReportRow<BuzzerHandle> buzzerRows[] = {
    {integer<Buzzer_getFrequency>, "Frequency"},
    {integer<Buzzer_getVolume>, "Volume"},
    {integer<Buzzer_getTrigger>, "Trigger (On/Off)"},
};

constexpr ReportRow<ConfigHandle> configRows[] = {
    {enabled<Config_getCanStartupPowerConfig>, "CanStartupPowerConfig"},
    {enabled<Config_getExtFanStartupPowerConfig>, "ExtFanStartupPowerConfig"},
    {integer<Config_getExtOnOffSigTrigTime>, "ExtOnOffSigTrigTime"},
    {integer<Config_getFrontBtnTrigTime>, "FrontBtnTrigTime"},
    {integer<Config_getHeatingTempLimit>, "HeatingTempLimit"},
    {action<Config_getLongButtonPressAction>, "LongButtonPressAction"},
    {action<Config_getShortButtonPressAction>, "ShortButtonPressAction"},
    {action<Config_getOnOffSigAction>, "OnOffSigAction"},
    {enabled<Config_getPowerOnStartup>, "PowerOnStartup"},
    {trigger<Config_getStartupTriggerConfig>, "StartupTrigger"},
    {decimal<Config_getStartupVoltageConfig>, "StartupVoltage"},
    {integer<Config_getSuspendMaxTime>, "SuspendMaxTime"},
    {integer<Config_getVideoStartupPowerConfig>, "VideoStartupPowerConfig"}, // a mask, no switch
};

/** Three lines from one reading. */
QString colorLines(FrontLEDHandle led, const char *)
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    const auto code = FrontLED_getColor(led, &red, &green, &blue);
    QString text = formatIntLine("Color R", red, code);
    text += formatIntLine("Color G", green, code);
    text += formatIntLine("Color B", blue, code);
    return text;
}

/** Two lines from one reading. */
QString signalLines(FrontLEDHandle led, const char *)
{
    double hertz = 0;
    std::uint8_t dutyCycle = 0;
    const auto code = FrontLED_getSignal(led, &hertz, &dutyCycle);
    QString text = formatDoubleLine("Signal frequency", hertz, code);
    text += formatIntLine("Signal duty cycle", dutyCycle, code);
    return text;
}

constexpr ReportRow<FrontLEDHandle> frontLEDRows[] = {
    {enabled<FrontLED_getEnabledDuringStartup>, "EnabledDuringStartup"},
    {colorLines, "Color"},
    {integer<FrontLED_getIdleTime>, "IdleTime"},
    {integer<FrontLED_getNrOfPulses>, "NrOfPulses"},
    {integer<FrontLED_getOffTime>, "OffTime"},
    {integer<FrontLED_getOnTime>, "OnTime"},
    {signalLines, "Signal"},
};

constexpr ReportRow<PowerHandle> powerRows[] = {
    {enabled<Power_getBLPowerStatus>, "BLPowerStatus"},
    {enabled<Power_getCanPowerStatus>, "CanPowerStatus"},
    {enabled<Power_getExtFanPowerStatus>, "ExtFanPowerStatus"},
    {integer<Power_getVideoPowerStatus>, "VideoPowerStatus"}, // a mask, no switch
};

constexpr ReportRow<TelematicsHandle> addonBoardRows[] = {
    {enabled<Telematics_getGPRSPowerStatus>, "GPRSPowerStatus"},
    {enabled<Telematics_getGPRSStartUpPowerStatus>, "GPRSStartUpPowerStatus"},
    {enabled<Telematics_getGPSAntennaStatus>, "GPSAntennaStatus"},
    {enabled<Telematics_getWLANPowerStatus>, "WLANPowerStatus"},
    {enabled<Telematics_getWLANStartUpPowerStatus>, "WLANStartUpPowerStatus"},
};

/** Whatever the number of channels that the unit has. */
struct CanChannel {
    std::uint8_t number;
    const char *baudRateName;
    const char *frameTypeName;
};

constexpr CanChannel canChannels[] = {
    {1, "CAN1 Baud rate", "CAN1 frame type"},
    {2, "CAN2 Baud rate", "CAN2 frame type"},
    {3, "CAN3 Baud rate", "CAN3 frame type"},
    {4, "CAN4 Baud rate", "CAN4 frame type"},
};

/** By TouchMode. */
constexpr const char *touchModes[] = {
    "Mouse profile (next boot)",
    "Touch profile (next boot)",
    "Mouse profile",
    "Touch profile",
};

/** One block for all settings of the automatic control, or the failure that was in the way. */
QString automaticBacklightLines(BacklightHandle backlight)
{
    DeviceBool soft = 0;
    double kValue = 0;
    DeviceCode code = Backlight_getAutomaticBLParams(backlight, &soft, &kValue);
    if (code != DEVICE_OK)
        return formatErrorLine(QStringLiteral("getAutomaticBLParams"), code);

    std::uint32_t averageWindow = 0;
    std::uint32_t rejectWindow = 0;
    std::uint32_t rejectDelta = 0;
    std::int32_t samplingMode = 0;
    code = Backlight_getAutomaticBLFilter(
        backlight, &averageWindow, &rejectWindow, &rejectDelta, &samplingMode);
    if (code != DEVICE_OK)
        return formatErrorLine(QStringLiteral("getAutomaticBLFilter"), code);

    QString text = QStringLiteral("Automatic backlight settings:\n");
    text += QStringLiteral("   Soft transitions: %1\n").arg(soft ? 1 : 0);
    text += QStringLiteral("   K value: %1\n").arg(kValue);
    text += QStringLiteral("   Average window size: %1\n").arg(averageWindow);
    text += QStringLiteral("   Reject window size: %1\n").arg(rejectWindow);
    text += QStringLiteral("   Reject delta in lux: %1\n").arg(rejectDelta);
    text += QStringLiteral("   Sampling mode: %1\n\n").arg(samplingMode);
    return text;
}

QString backlightBlock()
{
    const DeviceHandle<Backlight_create, Backlight_release> backlight;
    QString text = QStringLiteral("Backlight:\n");
    text += reportLines<BacklightHandle>(backlight, backlightRows);
    text += automaticBacklightLines(backlight);
    return text;
}

QString buzzerBlock()
{
    const DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
    return QStringLiteral("\nBuzzer:\n") + reportLines<BuzzerHandle>(buzzer, buzzerRows);
}

QString canBlock()
{
    const DeviceHandle<Can_create, Can_release> can;
    QString text = QStringLiteral("\nCan Settings:\n");
    for (const CanChannel &channel : canChannels) {
        std::uint16_t kbitPerSecond = 0;
        const auto code = Can_getBaudrate(can, channel.number, &kbitPerSecond);
        text += formatIntLine(channel.baudRateName, kbitPerSecond, code);
    }
    for (const CanChannel &channel : canChannels) {
        std::int32_t frameType = 0;
        const auto code = Can_getFrameType(can, channel.number, &frameType);
        text += formatFrameTypeLine(channel.frameTypeName, frameType, code);
    }
    return text;
}

QString configBlock()
{
    const DeviceHandle<Config_create, Config_release> config;
    return QStringLiteral("\nConfig:\n") + reportLines<ConfigHandle>(config, configRows);
}

QString frontLEDBlock()
{
    const DeviceHandle<FrontLED_create, FrontLED_release> led;
    return QStringLiteral("\nFrontLED:\n") + reportLines<FrontLEDHandle>(led, frontLEDRows);
}

QString powerBlock()
{
    const DeviceHandle<Power_create, Power_release> power;
    return QStringLiteral("\nPower:\n") + reportLines<PowerHandle>(power, powerRows);
}

QString touchModeLine(TouchHandle touch)
{
    std::int32_t mode = 0;
    const auto code = Touch_getMode(touch, &mode);
    if (code != DEVICE_OK)
        return formatErrorLine(QStringLiteral("TouchScreenMode"), code);
    const auto index = std::uint32_t(mode);
    const char *text = index < std::size(touchModes) ? touchModes[index] : "Undefined value";
    return QStringLiteral("TouchScreenMode: %1\n").arg(QString::fromLatin1(text));
}

QString touchScreenBlock()
{
    const DeviceHandle<Touch_create, Touch_release> touch;
    QString text = QStringLiteral("\nTouchScreen:\n");
    text += integer<Touch_getMouseRightClickTime>(touch, "MouseRightClickTime (for mouse profile)");
    text += touchModeLine(touch);
    return text;
}

QString telematicsBlock()
{
    DeviceHandle<Telematics_create, Telematics_release> telematics;
    telematics.keep(); // deliberately not released
    QString text = QStringLiteral("\nTelematics:\n");
    std::int32_t available = 0;
    const auto code = Telematics_getAvailable(telematics, &available);
    text += formatEnabledLine("Telematics board available", available, code);
    if (code == DEVICE_OK && available == 1)
        text += reportLines<TelematicsHandle>(telematics, addonBoardRows);
    return text;
}

} // namespace

QString settingsDataText()
{
    QString text = backlightBlock();
    text += buzzerBlock();
    text += canBlock();
    text += configBlock();
    text += frontLEDBlock();
    text += powerBlock();
    text += touchScreenBlock();
    text += telematicsBlock();
    text += QStringLiteral("\nBattery:\n") + batteryDataText();
    return text;
}
