#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

namespace {

/** A unit that can't be suspended doesn't take that for an action. */
DeviceCode setAction(const char *operation, ConfigHandle handle, Key key, int32_t action)
{
    return perform(operation, handle, {action}, Does::Write, [&](Unit &unit) {
        const Code code = unit.missing(key);
        if (code != Ok)
            return code;
        if (action == ACTION_SUSPEND && !unit.on("Feature.suspend"))
            return ValueOutOfRange;
        return unit.setChecked(key, action);
    });
}

} // namespace

ConfigHandle Config_create(void)
{
    return create<ConfigDevice>(__func__);
}

void Config_release(ConfigHandle handle)
{
    release(__func__, handle);
}

DeviceCode Config_getStartupTriggerConfig(ConfigHandle handle, int32_t *trigger)
{
    return get(__func__, handle, Out{"Config.startupTrigger", trigger});
}

DeviceCode Config_setStartupTriggerConfig(ConfigHandle handle, int32_t trigger)
{
    return set(__func__, handle, In{"Config.startupTrigger", trigger});
}

DeviceCode Config_getFrontBtnTrigTime(ConfigHandle handle, uint16_t *milliseconds)
{
    return get(__func__, handle, Out{"Config.frontBtnTrigTime", milliseconds});
}

DeviceCode Config_setFrontBtnTrigTime(ConfigHandle handle, uint16_t milliseconds)
{
    return set(__func__, handle, In{"Config.frontBtnTrigTime", milliseconds});
}

DeviceCode Config_getExtOnOffSigTrigTime(ConfigHandle handle, uint32_t *seconds)
{
    return get(__func__, handle, Out{"Config.extOnOffSigTrigTime", seconds});
}

DeviceCode Config_setExtOnOffSigTrigTime(ConfigHandle handle, uint32_t seconds)
{
    return set(__func__, handle, In{"Config.extOnOffSigTrigTime", seconds});
}

DeviceCode Config_getSuspendMaxTime(ConfigHandle handle, uint16_t *minutes)
{
    return get(__func__, handle, Out{"Config.suspendMaxTime", minutes});
}

DeviceCode Config_setSuspendMaxTime(ConfigHandle handle, uint16_t minutes)
{
    return set(__func__, handle, In{"Config.suspendMaxTime", minutes});
}

DeviceCode Config_getCanStartupPowerConfig(ConfigHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Config.canStartupPower", status});
}

DeviceCode Config_setCanStartupPowerConfig(ConfigHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Config.canStartupPower", status});
}

DeviceCode Config_getVideoStartupPowerConfig(ConfigHandle handle, uint8_t *mask)
{
    return get(__func__, handle, Out{"Config.videoStartupPower", mask});
}

DeviceCode Config_setVideoStartupPowerConfig(ConfigHandle handle, uint8_t mask)
{
    return set(__func__, handle, In{"Config.videoStartupPower", mask});
}

DeviceCode Config_getExtFanStartupPowerConfig(ConfigHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Config.extFanStartupPower", status});
}

DeviceCode Config_setExtFanStartupPowerConfig(ConfigHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Config.extFanStartupPower", status});
}

DeviceCode Config_getStartupVoltageConfig(ConfigHandle handle, double *volts)
{
    return get(__func__, handle, Out{"Config.startupVoltage", volts});
}

DeviceCode Config_setStartupVoltageConfig(ConfigHandle handle, double volts)
{
    return set(__func__, handle, In{"Config.startupVoltage", volts});
}

DeviceCode Config_getHeatingTempLimit(ConfigHandle handle, int16_t *celsius)
{
    return get(__func__, handle, Out{"Config.heatingTempLimit", celsius});
}

DeviceCode Config_setHeatingTempLimit(ConfigHandle handle, int16_t celsius)
{
    return set(__func__, handle, In{"Config.heatingTempLimit", celsius});
}

DeviceCode Config_getPowerOnStartup(ConfigHandle handle, int32_t *status)
{
    return get(__func__, handle, Out{"Config.powerOnStartup", status});
}

DeviceCode Config_setPowerOnStartup(ConfigHandle handle, int32_t status)
{
    return set(__func__, handle, In{"Config.powerOnStartup", status});
}

DeviceCode Config_getLongButtonPressAction(ConfigHandle handle, int32_t *action)
{
    return get(__func__, handle, Out{"Config.longButtonPressAction", action});
}

DeviceCode Config_setLongButtonPressAction(ConfigHandle handle, int32_t action)
{
    return setAction(__func__, handle, "Config.longButtonPressAction", action);
}

DeviceCode Config_getShortButtonPressAction(ConfigHandle handle, int32_t *action)
{
    return get(__func__, handle, Out{"Config.shortButtonPressAction", action});
}

DeviceCode Config_setShortButtonPressAction(ConfigHandle handle, int32_t action)
{
    return setAction(__func__, handle, "Config.shortButtonPressAction", action);
}

DeviceCode Config_getOnOffSigAction(ConfigHandle handle, int32_t *action)
{
    return get(__func__, handle, Out{"Config.onOffSigAction", action});
}

DeviceCode Config_setOnOffSigAction(ConfigHandle handle, int32_t action)
{
    return setAction(__func__, handle, "Config.onOffSigAction", action);
}
