#include "report/formatters.h"

#include "frame/reportError.h"

#include <array>
#include <span>

// Lines are glued rather than filled into patterns, since a text from the unit may hold what looks
// like a place marker.

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

QString number(double value)
{
    return QString::number(value, 'g', 6);
}

QString successLine(const QString &label, const QString &value)
{
    return label + QStringLiteral(": ") + value + QLatin1Char('\n');
}

/** The outcomes of an item that a unit may lack. */
QString optionalLine(DeviceCode code, const QString &label, const QString &value)
{
    switch (code) {
    case DEVICE_OK:
        return successLine(label, value);
    case DEVICE_NOT_SUPPORTED:
        return {};
    case DEVICE_DATA_NOT_AVAILABLE:
        return successLine(label, QStringLiteral("N/A"));
    default:
        return formatErrorLine(label, code);
    }
}

/** The outcomes of a setting. */
QString settingLine(DeviceCode code, const char *name, const QString &value)
{
    return code == DEVICE_OK ? successLine(text(name), value) : formatErrorLine(text(name), code);
}

struct ValueText {
    std::int32_t value;
    const char *text;
};

/** The text of a value, null for a value that has none. */
const char *find(std::span<const ValueText> table, std::int32_t value)
{
    for (const ValueText &row : table) {
        if (row.value == value)
            return row.text;
    }
    return nullptr;
}

QString textOrUndefined(std::span<const ValueText> table, std::int32_t value)
{
    const char *found = find(table, value);
    return text(found ? found : "Undefined value");
}

constexpr ValueText startupTriggers[] = {
    {TRIGGER_FRONT_BUTTON, "Front button"},
    {TRIGGER_ON_OFF_SIGNAL, "OnOff Signal"},
    {TRIGGER_BOTH, "Both Front button and OnOff signal"},
};

constexpr ValueText buttonActions[] = {
    {ACTION_NONE, "NoAction"},
    {ACTION_SUSPEND, "Suspend"},
    {ACTION_SHUT_DOWN, "ShutDown"},
};

constexpr ValueText frameTypes[] = {
    {FRAME_STANDARD, "Standard"},
    {FRAME_EXTENDED, "Extended"},
    {FRAME_BOTH, "Standard, Extended"},
};

constexpr ValueText buttonConfigs[] = {
    {0, "BUTTON_ONLY_MP_ACTION"},
    {2, "BUTTON_AS_STARTUP_TRIG"},
    {4, "BUTTON_AS_ACTION_TRIG"},
    {6, "BUTTON_AS_ACTION_STARTUP_TRIG"},
    {8, "BUTTON_AS_BACKLIGHT_DECREASE"},
    {10, "BUTTON_AS_BACKLIGHT_DECR_STARTUP_TRIG"},
    {12, "BUTTON_AS_BACKLIGHT_INCREASE"},
    {14, "BUTTON_AS_BACKLIGHT_INCR_STARTUP_TRIG"},
};

} // namespace

QString formatErrorLine(const QString &label, DeviceCode code)
{
    return label + QStringLiteral(": Error(") + QString::number(code) + QStringLiteral(") ") +
           deviceText(code) + QLatin1Char('\n');
}

QString formatValueLine(DeviceCode code, const char *name, const QString &value, const char *unit)
{
    return optionalLine(code, text(name), value + QLatin1Char(' ') + text(unit));
}

QString formatTextLine(DeviceCode code, const char *name, const char *value, const char *unit)
{
    return formatValueLine(code, name, text(value), unit);
}

QString formatShortLine(DeviceCode code, const char *name, std::int16_t value, const char *unit)
{
    return formatValueLine(code, name, QString::number(value), unit);
}

QString formatUShortLine(DeviceCode code, const char *name, std::uint16_t value, const char *unit)
{
    return formatValueLine(code, name, QString::number(value), unit);
}

QString formatVoltageLine(DeviceCode code, const char *name, double volts, const char *unit)
{
    return formatValueLine(code, name, number(volts), unit);
}

QString formatMinutesLine(DeviceCode code, const char *name, std::uint32_t minutes)
{
    constexpr std::uint32_t minutesOfDay = 24 * 60;
    const auto value = QStringLiteral("%1 min (%2 days, %3h, %4min)")
                           .arg(minutes)
                           .arg(minutes / minutesOfDay)
                           .arg(minutes % minutesOfDay / 60)
                           .arg(minutes % 60);
    return formatValueLine(code, name, value, "");
}

QString formatConnectionsLine(DeviceCode code, const char *name, std::uint8_t count)
{
    const QString label =
        QStringLiteral("Number of ") + text(name) + QStringLiteral(" connections");
    return optionalLine(code, label, QString::number(count));
}

QString formatMountedLine(DeviceCode code, const char *name, bool mounted)
{
    return optionalLine(
        code, text(name) + QStringLiteral(" device mounted"), text(mounted ? "Yes" : "No"));
}

QString formatVersionLine(const char *name, std::uint8_t major, std::uint8_t minor,
    std::uint8_t release, std::uint8_t build, DeviceCode code)
{
    return settingLine(
        code, name, QStringLiteral("v%1.%2.%3.%4").arg(major).arg(minor).arg(release).arg(build));
}

QString formatIntLine(const char *name, std::int32_t value, DeviceCode code)
{
    return settingLine(code, name, QString::number(value));
}

QString formatDoubleLine(const char *name, double value, DeviceCode code)
{
    return settingLine(code, name, number(value));
}

QString formatEnabledLine(const char *name, std::int32_t status, DeviceCode code)
{
    return settingLine(code, name, text(status == STATUS_ON ? "Enabled" : "Disabled"));
}

QString formatStartupTriggerLine(const char *name, std::int32_t trigger, DeviceCode code)
{
    return settingLine(code, name, textOrUndefined(startupTriggers, trigger));
}

QString formatButtonActionLine(const char *name, std::int32_t action, DeviceCode code)
{
    return settingLine(code, name, textOrUndefined(buttonActions, action));
}

QString formatFrameTypeLine(const char *name, std::int32_t frameType, DeviceCode code)
{
    return settingLine(code, name, textOrUndefined(frameTypes, frameType));
}

QString formatButtonConfigLine(DeviceCode code, const char *name, std::int32_t value)
{
    if (code == DEVICE_NOT_SUPPORTED)
        return {};
    const char *known = find(buttonConfigs, value);
    return settingLine(code, name,
        known ? text(known) : QString::number(value) + QStringLiteral(" - Incorrect setting"));
}
