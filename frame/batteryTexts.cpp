#include "frame/batteryTexts.h"

#include "frame/reportError.h"

#include <span>

namespace {

/** By BatteryErrorStatus. */
constexpr const char *errorLines[] = {
    "Battery reports no HW errors\n",
    "Battery error! The thermistor temp sensor is not working\n",
    "Battery error! The secondary temp sensor is not working\n",
    "Battery error! Charging failed\n",
    "Battery error! Overcurrent detected\n",
    "Battery error! Battery not initiated\n",
};

/** By BatteryChargingStatus. */
constexpr const char *chargingLines[] = {
    "Battery is not being charged\n",
    "Battery is being charged\n",
    "Battery is fully charged\n",
    "Temperature is too low to charge the battery\n",
    "Temperature is too high to charge the battery\n",
    "Could not get battery charging status\n",
};

QString lineOf(std::span<const char *const> lines, std::int32_t value)
{
    const auto index = std::uint32_t(value);
    return index < lines.size() ? QString::fromLatin1(lines[index]) : QString();
}

} // namespace

QString batteryErrorLine(std::int32_t status)
{
    return lineOf(errorLines, status);
}

QString batteryChargingLine(std::int32_t status)
{
    return lineOf(chargingLines, status);
}

QString powerSourceText(std::int32_t source)
{
    return source == POWER_BATTERY ? QStringLiteral("Power source: Battery")
                                   : QStringLiteral("Power source: External power");
}

QString batteryFailureLine(const char *what, DeviceCode code)
{
    return QStringLiteral("Could not get %1. Error(%2) %3\n")
        .arg(QString::fromLatin1(what), QString::number(code), deviceText(code));
}
