#include "linuxunit/bus/Bus.h"
#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/StoredSetting.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

using namespace linuxunit;

namespace {

/** Nothing is kept. */
struct Files {
};

template <typename T>
constexpr T lowestOf = std::is_floating_point_v<T> ? T(0) : std::numeric_limits<T>::min();
template <typename T>
constexpr T highestOf = std::numeric_limits<T>::max();

template <typename T>
T readNumber(const char *key, T lowest = lowestOf<T>, T highest = highestOf<T>)
{
    const double read = StoredSetting(key).number(double(lowest), double(highest));
    return std::is_floating_point_v<T> ? T(read) : T(std::llround(read));
}

template <typename T>
DeviceCode giveNumber(ConfigHandle handle, T *value, const char *key, T lowest = lowestOf<T>,
    T highest = highestOf<T>)
{
    return perform(
        handle, {value}, [&](Files & /*unused*/) { *value = readNumber(key, lowest, highest); });
}

template <typename T>
DeviceCode takeNumber(
    ConfigHandle handle, T value, const char *key, T lowest = lowestOf<T>, T highest = highestOf<T>)
{
    return perform(handle, {}, [&](Files & /*unused*/) {
        StoredSetting(key).setNumber(double(value), double(lowest), double(highest));
    });
}

DeviceCode giveChoice(
    ConfigHandle handle, int32_t *value, const char *key, int32_t first, int32_t last)
{
    return perform(handle, {value},
        [&](Files & /*unused*/) { *value = StoredSetting(key).choice(first, last); });
}

DeviceCode takeChoice(
    ConfigHandle handle, int32_t value, const char *key, int32_t first, int32_t last)
{
    return perform(
        handle, {}, [&](Files & /*unused*/) { StoredSetting(key).setChoice(value, first, last); });
}

constexpr const char *suspendKey = "suspendMaxTime";
constexpr int16_t coldestStart = -25; ///< degrees C
constexpr int16_t warmestStart = 5;

/** Throws 2 for a machine that can't suspend. */
void requireSuspend()
{
    const auto answer = readFromBus({"org.freedesktop.login1", "/org/freedesktop/login1",
        "org.freedesktop.login1.Manager", "CanSuspend", {}});
    if (!answer.is_string())
        throw Failure{
            UnexpectedContent, "org.freedesktop.login1 doesn't say whether it can suspend"};
    if (answer == "na")
        throw Failure{NotSupported, {}};
}

} // namespace

DeviceCode Config_getStartupTriggerConfig(ConfigHandle handle, int32_t *trigger)
{
    return giveChoice(handle, trigger, "startupTrigger", TRIGGER_FRONT_BUTTON, TRIGGER_BOTH);
}

DeviceCode Config_setStartupTriggerConfig(ConfigHandle handle, int32_t trigger)
{
    return takeChoice(handle, trigger, "startupTrigger", TRIGGER_FRONT_BUTTON, TRIGGER_BOTH);
}

DeviceCode Config_getFrontBtnTrigTime(ConfigHandle handle, uint16_t *milliseconds)
{
    return giveNumber(handle, milliseconds, "frontButtonTime");
}

DeviceCode Config_setFrontBtnTrigTime(ConfigHandle handle, uint16_t milliseconds)
{
    return takeNumber(handle, milliseconds, "frontButtonTime");
}

DeviceCode Config_getExtOnOffSigTrigTime(ConfigHandle handle, uint32_t *seconds)
{
    return giveNumber(handle, seconds, "onOffSignalTime");
}

DeviceCode Config_setExtOnOffSigTrigTime(ConfigHandle handle, uint32_t seconds)
{
    return takeNumber(handle, seconds, "onOffSignalTime");
}

/* As the system suspends, a computer stays so until somebody wakes it: there is no limit, and none
 * can be set. */

DeviceCode Config_getSuspendMaxTime(ConfigHandle handle, uint16_t *minutes)
{
    return perform(handle, {minutes}, [&](Files & /*unused*/) {
        if (StoredSetting::isMapped(suspendKey)) {
            *minutes = readNumber<uint16_t>(suspendKey);
            return;
        }
        requireSuspend();
        *minutes = 0;
    });
}

DeviceCode Config_setSuspendMaxTime(ConfigHandle handle, uint16_t minutes)
{
    return perform(handle, {}, [&](Files & /*unused*/) {
        if (StoredSetting::isMapped(suspendKey))
            return StoredSetting(suspendKey).setNumber(minutes, 0, UINT16_MAX);
        requireSuspend();
        if (minutes != 0)
            throw Failure{
                DaemonRefused, "org.freedesktop.login1 knows no limit of the time in suspend"};
    });
}

DeviceCode Config_getCanStartupPowerConfig(ConfigHandle handle, int32_t *status)
{
    return giveChoice(handle, status, "canStartupPower", STATUS_OFF, STATUS_ON);
}

DeviceCode Config_setCanStartupPowerConfig(ConfigHandle handle, int32_t status)
{
    return takeChoice(handle, status, "canStartupPower", STATUS_OFF, STATUS_ON);
}

DeviceCode Config_getVideoStartupPowerConfig(ConfigHandle handle, uint8_t *mask)
{
    return giveNumber(handle, mask, "videoStartupPower", uint8_t(0), uint8_t(VIDEO_MASK_ALL));
}

DeviceCode Config_setVideoStartupPowerConfig(ConfigHandle handle, uint8_t mask)
{
    return takeNumber(handle, mask, "videoStartupPower", uint8_t(0), uint8_t(VIDEO_MASK_ALL));
}

DeviceCode Config_getExtFanStartupPowerConfig(ConfigHandle handle, int32_t *status)
{
    return giveChoice(handle, status, "extFanStartupPower", STATUS_OFF, STATUS_ON);
}

DeviceCode Config_setExtFanStartupPowerConfig(ConfigHandle handle, int32_t status)
{
    return takeChoice(handle, status, "extFanStartupPower", STATUS_OFF, STATUS_ON);
}

DeviceCode Config_getStartupVoltageConfig(ConfigHandle handle, double *volts)
{
    return giveNumber(handle, volts, "startupVoltage");
}

DeviceCode Config_setStartupVoltageConfig(ConfigHandle handle, double volts)
{
    return takeNumber(handle, volts, "startupVoltage");
}

DeviceCode Config_getHeatingTempLimit(ConfigHandle handle, int16_t *celsius)
{
    return giveNumber(handle, celsius, "heatingTempLimit", coldestStart, warmestStart);
}

DeviceCode Config_setHeatingTempLimit(ConfigHandle handle, int16_t celsius)
{
    return takeNumber(handle, celsius, "heatingTempLimit", coldestStart, warmestStart);
}

DeviceCode Config_getPowerOnStartup(ConfigHandle handle, int32_t *status)
{
    return giveChoice(handle, status, "powerOnStartup", STATUS_OFF, STATUS_ON);
}

DeviceCode Config_setPowerOnStartup(ConfigHandle handle, int32_t status)
{
    return takeChoice(handle, status, "powerOnStartup", STATUS_OFF, STATUS_ON);
}

DeviceCode Config_getLongButtonPressAction(ConfigHandle handle, int32_t *action)
{
    return giveChoice(handle, action, "longButtonPress", ACTION_NONE, ACTION_SHUT_DOWN);
}

DeviceCode Config_setLongButtonPressAction(ConfigHandle handle, int32_t action)
{
    return takeChoice(handle, action, "longButtonPress", ACTION_NONE, ACTION_SHUT_DOWN);
}

DeviceCode Config_getShortButtonPressAction(ConfigHandle handle, int32_t *action)
{
    return giveChoice(handle, action, "shortButtonPress", ACTION_NONE, ACTION_SHUT_DOWN);
}

DeviceCode Config_setShortButtonPressAction(ConfigHandle handle, int32_t action)
{
    return takeChoice(handle, action, "shortButtonPress", ACTION_NONE, ACTION_SHUT_DOWN);
}

DeviceCode Config_getOnOffSigAction(ConfigHandle handle, int32_t *action)
{
    return giveChoice(handle, action, "onOffSignal", ACTION_NONE, ACTION_SHUT_DOWN);
}

DeviceCode Config_setOnOffSigAction(ConfigHandle handle, int32_t action)
{
    return takeChoice(handle, action, "onOffSignal", ACTION_NONE, ACTION_SHUT_DOWN);
}
