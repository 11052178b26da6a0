#include "frame/DeviceHandle.h"
#include "frame/batteryTexts.h"
#include "report/formatters.h"
#include "report/sections.h"

namespace {

struct TimeRow {
    std::uint32_t BatteryTimes::*minutes;
    const char *name;
};

/** \260 is the degree sign in Latin-1. */
constexpr TimeRow timeRows[] = {
    {&BatteryTimes::runTimeMainPower, "Total run time on main power"},
    {&BatteryTimes::runTimeBatteryPower, "Total run time on battery power"},
    {&BatteryTimes::runTimeBelowMinus20, "Total run time < -20\260C"},
    {&BatteryTimes::runTimeMinus20To0, "Total run time -20-0\260C"},
    {&BatteryTimes::runTime0To40, "Total run time 0-40\260C"},
    {&BatteryTimes::runTime40To60, "Total run time 40-60\260C"},
    {&BatteryTimes::runTime60To70, "Total run time 60-70\260C"},
    {&BatteryTimes::runTime70To80, "Total run time 70-80\260C"},
    {&BatteryTimes::runTimeAbove80, "Total run time above 80\260C"},
};

/** Size of the buffers that the unit writes texts into. They have one byte more, so that a text
 *  without its end stays bounded. */
constexpr std::uint32_t textSize = 20;

QString errorStatusLine(BatteryHandle battery)
{
    std::int32_t status = 0;
    const auto code = Battery_getHwErrorStatus(battery, &status);
    if (code != DEVICE_OK)
        return batteryFailureLine("battery error status code", code);
    return batteryErrorLine(status);
}

QString hwVersionLine(BatteryHandle battery)
{
    char version[textSize + 1] = "";
    const auto code = Battery_getHwVersion(battery, version, textSize);
    if (code != DEVICE_OK)
        return batteryFailureLine("battery HW version", code);
    return QStringLiteral("Battery HW version: %1\n").arg(QString::fromLatin1(version));
}

QString swVersionLine(BatteryHandle battery)
{
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    std::uint16_t release = 0;
    std::uint16_t build = 0;
    const auto code = Battery_getSwVersion(battery, &major, &minor, &release, &build);
    if (code != DEVICE_OK)
        return batteryFailureLine("battery SW version", code);
    return QStringLiteral("Battery SW version: %1.%2.%3.%4\n")
        .arg(major)
        .arg(minor)
        .arg(release)
        .arg(build);
}

QString serialNumberLine(BatteryHandle battery)
{
    char serial[textSize + 1] = "";
    const auto code = Battery_getSerialNumber(battery, serial, textSize);
    if (code != DEVICE_OK)
        return batteryFailureLine("battery serial number", code);
    return QStringLiteral("Battery serial number: %1\n").arg(QString::fromLatin1(serial));
}

/** An idle battery is told by this line alone: it takes the place of all lines before it. */
void addChargingStatus(BatteryHandle battery, QString &text)
{
    std::int32_t status = 0;
    const auto code = Battery_getChargingStatus(battery, &status);
    if (code != DEVICE_OK)
        text += batteryFailureLine("battery charging status", code);
    else if (status == CHARGING_IDLE)
        text = batteryChargingLine(status);
    else
        text += batteryChargingLine(status);
}

QString powerSourceLine(BatteryHandle battery)
{
    std::int32_t source = POWER_BATTERY;
    const auto code = Battery_getPowerSource(battery, &source);
    if (code != DEVICE_OK)
        return batteryFailureLine("power source", code);
    return powerSourceText(source) + QLatin1Char('\n');
}

QString voltageLevelLine(BatteryHandle battery)
{
    std::uint8_t percent = 0;
    const auto code = Battery_getVoltageLevel(battery, &percent);
    if (code != DEVICE_OK)
        return batteryFailureLine("battery voltage level", code);
    return QStringLiteral("Battery voltage level: %1%\n").arg(percent);
}

QString temperatureLine(BatteryHandle battery)
{
    std::int16_t celsius = 0;
    const auto code = Battery_getTemperature(battery, &celsius);
    if (code != DEVICE_OK)
        return batteryFailureLine("battery temperature", code);
    return QStringLiteral("Battery temperature: %1 deg C\n").arg(celsius);
}

QString extremesLine(BatteryHandle battery)
{
    std::int16_t minimum = 0;
    std::int16_t maximum = 0;
    const auto code = Battery_getMinMaxTemp(battery, &minimum, &maximum);
    if (code != DEVICE_OK)
        return batteryFailureLine("battery min/max temperature", code);
    return QStringLiteral("Battery minimum temp: %1 deg C, maximum temp: %2 deg C\n")
        .arg(minimum)
        .arg(maximum);
}

QString timeLines(BatteryHandle battery)
{
    BatteryTimes times{};
    const auto code = Battery_getTimes(battery, &times);
    if (code != DEVICE_OK)
        return batteryFailureLine("battery diagnostic times", code);
    QString text;
    for (const TimeRow &row : timeRows)
        text += formatMinutesLine(code, row.name, times.*row.minutes);
    return text;
}

} // namespace

QString batteryDataText()
{
    DeviceHandle<Battery_create, Battery_release> battery;
    DeviceBool available = 0;
    if (Battery_isAvailable(battery, &available) != DEVICE_OK || !available) {
        battery.keep(); // deliberately not released where there is no battery
        return QStringLiteral("External battery not available.\n");
    }

    QString text;
    text += errorStatusLine(battery);
    text += hwVersionLine(battery);
    text += swVersionLine(battery);
    text += serialNumberLine(battery);
    addChargingStatus(battery, text);
    text += powerSourceLine(battery);
    text += voltageLevelLine(battery);
    text += temperatureLine(battery);
    text += extremesLine(battery);
    text += timeLines(battery);
    return text;
}
