#pragma once

#include "frame/VornAux2.h"

#include <array>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <vector>

/** All operations of the contract in a form in which tests can call each of them. */
namespace support {

/** What stands in for the arguments behind the handle. */
struct Arguments {
    bool nullPointers = false;
    alignas(8) std::array<unsigned char, 256> out{}; ///< every out argument points here
};

struct Operation {
    const char *name;
    DeviceCode (*call)(const void *handle, Arguments &arguments);
    bool hasPointers;
};

struct FamilyOfHandles {
    const char *name;
    const void *(*create)();
    void (*release)(const void *handle);
};

template <typename T>
T standIn(Arguments &arguments)
{
    if constexpr (std::is_same_v<T, const char *>)
        return arguments.nullPointers ? nullptr : "text";
    else if constexpr (std::is_pointer_v<T>)
        return arguments.nullPointers ? nullptr
                                      : static_cast<T>(static_cast<void *>(arguments.out.data()));
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return 100; // enough of a buffer and in the range of all else
    else
        return T(1);
}

template <typename Handle, typename... T>
DeviceCode callAny(DeviceCode (*operation)(Handle, T...), const void *handle, Arguments &arguments)
{
    return operation(static_cast<Handle>(const_cast<void *>(handle)), standIn<T>(arguments)...);
}

template <typename Handle, typename... T>
constexpr bool takesPointers(DeviceCode (*)(Handle, T...))
{
    return (std::is_pointer_v<T> || ...);
}

template <auto Function>
constexpr Operation operation(const char *name)
{
    return {name,
        [](const void *handle, Arguments &arguments) {
            return callAny(Function, handle, arguments);
        },
        takesPointers(Function)};
}

template <auto Create, auto Release>
constexpr FamilyOfHandles family(const char *name)
{
    using Handle = std::invoke_result_t<decltype(Create)>;
    return {name, []() -> const void * { return Create(); },
        [](const void *handle) { Release(static_cast<Handle>(const_cast<void *>(handle))); }};
}

#define VORN_OPERATION(name) operation<name>(#name)
#define VORN_FAMILY(name) family<name##_create, name##_release>(#name)

inline const std::vector<FamilyOfHandles> allFamilies{
    VORN_FAMILY(Hardware),
    VORN_FAMILY(Adc),
    VORN_FAMILY(Versions),
    VORN_FAMILY(Backlight),
    VORN_FAMILY(Buzzer),
    VORN_FAMILY(Can),
    VORN_FAMILY(Config),
    VORN_FAMILY(Power),
    VORN_FAMILY(Diagnostics),
    VORN_FAMILY(Smart),
    VORN_FAMILY(DigIO),
    VORN_FAMILY(Firmware),
    VORN_FAMILY(FrontLED),
    VORN_FAMILY(LightSensor),
    VORN_FAMILY(Telematics),
    VORN_FAMILY(Touch),
    VORN_FAMILY(Battery),
    VORN_FAMILY(Settings),
};

/** In the header's order. */
inline const std::vector<Operation> allOperations{
    VORN_OPERATION(Hardware_getMainPcbSerial),
    VORN_OPERATION(Hardware_getUnitSerialNumber),
    VORN_OPERATION(Hardware_getMainPcbArticleNumber),
    VORN_OPERATION(Hardware_getMainManufacturingDate),
    VORN_OPERATION(Hardware_getMainHardwareVersion),
    VORN_OPERATION(Hardware_getMainProductRevision),
    VORN_OPERATION(Hardware_getMainProductArticleNumber),
    VORN_OPERATION(Hardware_getAddonPcbSerial),
    VORN_OPERATION(Hardware_getAddonArticleNumber),
    VORN_OPERATION(Hardware_getAddonManufacturingDate),
    VORN_OPERATION(Hardware_getAddonHardwareVersion),
    VORN_OPERATION(Hardware_getEthernetCount),
    VORN_OPERATION(Hardware_getCanCount),
    VORN_OPERATION(Hardware_getVideoCount),
    VORN_OPERATION(Hardware_getUsbCount),
    VORN_OPERATION(Hardware_getSerialCount),
    VORN_OPERATION(Hardware_getDigitalInputCount),
    VORN_OPERATION(Hardware_getConfigurableInputCount),
    VORN_OPERATION(Hardware_getPwmOutputCount),
    VORN_OPERATION(Hardware_getConfigurableButtonCount),
    VORN_OPERATION(Hardware_hasDisplay),
    VORN_OPERATION(Hardware_hasTouchscreen),
    VORN_OPERATION(Hardware_hasWlan),
    VORN_OPERATION(Hardware_hasGps),
    VORN_OPERATION(Hardware_hasGsm),
    VORN_OPERATION(Hardware_hasBluetooth),
    VORN_OPERATION(Adc_getVoltage),
    VORN_OPERATION(Versions_getFPGAVersion),
    VORN_OPERATION(Versions_getSSVersion),
    VORN_OPERATION(Versions_getFrontVersion),
    VORN_OPERATION(Versions_getVornAuxVersion),
    VORN_OPERATION(Versions_getVornAuxDrvVersion),
    VORN_OPERATION(Versions_getOSVersion),
    VORN_OPERATION(Backlight_getIntensity),
    VORN_OPERATION(Backlight_setIntensity),
    VORN_OPERATION(Backlight_getStatus),
    VORN_OPERATION(Backlight_getHealthStatus),
    VORN_OPERATION(Backlight_startAutomaticBL),
    VORN_OPERATION(Backlight_stopAutomaticBL),
    VORN_OPERATION(Backlight_getAutomaticBLStatus),
    VORN_OPERATION(Backlight_setAutomaticBLParams),
    VORN_OPERATION(Backlight_getAutomaticBLParams),
    VORN_OPERATION(Backlight_setAutomaticBLFilter),
    VORN_OPERATION(Backlight_getAutomaticBLFilter),
    VORN_OPERATION(Backlight_getLedDimming),
    VORN_OPERATION(Backlight_setLedDimming),
    VORN_OPERATION(Buzzer_getFrequency),
    VORN_OPERATION(Buzzer_setFrequency),
    VORN_OPERATION(Buzzer_getVolume),
    VORN_OPERATION(Buzzer_setVolume),
    VORN_OPERATION(Buzzer_getTrigger),
    VORN_OPERATION(Buzzer_setTrigger),
    VORN_OPERATION(Can_getBaudrate),
    VORN_OPERATION(Can_setBaudrate),
    VORN_OPERATION(Can_getFrameType),
    VORN_OPERATION(Can_setFrameType),
    VORN_OPERATION(Config_getStartupTriggerConfig),
    VORN_OPERATION(Config_setStartupTriggerConfig),
    VORN_OPERATION(Config_getFrontBtnTrigTime),
    VORN_OPERATION(Config_setFrontBtnTrigTime),
    VORN_OPERATION(Config_getExtOnOffSigTrigTime),
    VORN_OPERATION(Config_setExtOnOffSigTrigTime),
    VORN_OPERATION(Config_getSuspendMaxTime),
    VORN_OPERATION(Config_setSuspendMaxTime),
    VORN_OPERATION(Config_getCanStartupPowerConfig),
    VORN_OPERATION(Config_setCanStartupPowerConfig),
    VORN_OPERATION(Config_getVideoStartupPowerConfig),
    VORN_OPERATION(Config_setVideoStartupPowerConfig),
    VORN_OPERATION(Config_getExtFanStartupPowerConfig),
    VORN_OPERATION(Config_setExtFanStartupPowerConfig),
    VORN_OPERATION(Config_getStartupVoltageConfig),
    VORN_OPERATION(Config_setStartupVoltageConfig),
    VORN_OPERATION(Config_getHeatingTempLimit),
    VORN_OPERATION(Config_setHeatingTempLimit),
    VORN_OPERATION(Config_getPowerOnStartup),
    VORN_OPERATION(Config_setPowerOnStartup),
    VORN_OPERATION(Config_getLongButtonPressAction),
    VORN_OPERATION(Config_setLongButtonPressAction),
    VORN_OPERATION(Config_getShortButtonPressAction),
    VORN_OPERATION(Config_setShortButtonPressAction),
    VORN_OPERATION(Config_getOnOffSigAction),
    VORN_OPERATION(Config_setOnOffSigAction),
    VORN_OPERATION(Power_getBLPowerStatus),
    VORN_OPERATION(Power_setBLPowerStatus),
    VORN_OPERATION(Power_getCanPowerStatus),
    VORN_OPERATION(Power_setCanPowerStatus),
    VORN_OPERATION(Power_getVideoPowerStatus),
    VORN_OPERATION(Power_setVideoPowerStatus),
    VORN_OPERATION(Power_getExtFanPowerStatus),
    VORN_OPERATION(Power_setExtFanPowerStatus),
    VORN_OPERATION(Diagnostics_getSSTemp),
    VORN_OPERATION(Diagnostics_getPCBTemp),
    VORN_OPERATION(Diagnostics_getPMTemp),
    VORN_OPERATION(Diagnostics_getStartupReason),
    VORN_OPERATION(Diagnostics_getShutDownReason),
    VORN_OPERATION(Diagnostics_getHwErrorStatus),
    VORN_OPERATION(Diagnostics_getTimers),
    VORN_OPERATION(Diagnostics_getMinMaxTemp),
    VORN_OPERATION(Diagnostics_getPowerCycles),
    VORN_OPERATION(Smart_getDeviceSerial),
    VORN_OPERATION(Smart_getRemainingLifetime),
    VORN_OPERATION(Smart_getInitialTime),
    VORN_OPERATION(Smart_getDeviceSerial2),
    VORN_OPERATION(Smart_getRemainingLifetime2),
    VORN_OPERATION(Smart_getInitialTime2),
    VORN_OPERATION(DigIO_getDigIO),
    VORN_OPERATION(DigIO_setDigIO),
    VORN_OPERATION(Firmware_startFpgaUpgrade),
    VORN_OPERATION(Firmware_startFpgaVerification),
    VORN_OPERATION(Firmware_startSSUpgrade),
    VORN_OPERATION(Firmware_startSSVerification),
    VORN_OPERATION(Firmware_startFrontUpgrade),
    VORN_OPERATION(Firmware_startFrontVerification),
    VORN_OPERATION(Firmware_getUpgradeStatus),
    VORN_OPERATION(Firmware_shutDown),
    VORN_OPERATION(FrontLED_getSignal),
    VORN_OPERATION(FrontLED_setSignal),
    VORN_OPERATION(FrontLED_getOnTime),
    VORN_OPERATION(FrontLED_setOnTime),
    VORN_OPERATION(FrontLED_getOffTime),
    VORN_OPERATION(FrontLED_setOffTime),
    VORN_OPERATION(FrontLED_getIdleTime),
    VORN_OPERATION(FrontLED_setIdleTime),
    VORN_OPERATION(FrontLED_getNrOfPulses),
    VORN_OPERATION(FrontLED_setNrOfPulses),
    VORN_OPERATION(FrontLED_getColor),
    VORN_OPERATION(FrontLED_setColor),
    VORN_OPERATION(FrontLED_getStandardColor),
    VORN_OPERATION(FrontLED_setStandardColor),
    VORN_OPERATION(FrontLED_getEnabledDuringStartup),
    VORN_OPERATION(FrontLED_setEnabledDuringStartup),
    VORN_OPERATION(FrontLED_setOff),
    VORN_OPERATION(LightSensor_getIlluminance),
    VORN_OPERATION(LightSensor_getOperatingRange),
    VORN_OPERATION(LightSensor_setOperatingRange),
    VORN_OPERATION(LightSensor_startAverageCalc),
    VORN_OPERATION(LightSensor_stopAverageCalc),
    VORN_OPERATION(Telematics_getAvailable),
    VORN_OPERATION(Telematics_getGPRSPowerStatus),
    VORN_OPERATION(Telematics_setGPRSPowerStatus),
    VORN_OPERATION(Telematics_getGPRSStartUpPowerStatus),
    VORN_OPERATION(Telematics_setGPRSStartUpPowerStatus),
    VORN_OPERATION(Telematics_getWLANPowerStatus),
    VORN_OPERATION(Telematics_setWLANPowerStatus),
    VORN_OPERATION(Telematics_getWLANStartUpPowerStatus),
    VORN_OPERATION(Telematics_setWLANStartUpPowerStatus),
    VORN_OPERATION(Telematics_getBTPowerStatus),
    VORN_OPERATION(Telematics_setBTPowerStatus),
    VORN_OPERATION(Telematics_getBTStartUpPowerStatus),
    VORN_OPERATION(Telematics_setBTStartUpPowerStatus),
    VORN_OPERATION(Telematics_getGPSPowerStatus),
    VORN_OPERATION(Telematics_setGPSPowerStatus),
    VORN_OPERATION(Telematics_getGPSStartUpPowerStatus),
    VORN_OPERATION(Telematics_setGPSStartUpPowerStatus),
    VORN_OPERATION(Telematics_getGPSAntennaStatus),
    VORN_OPERATION(Touch_getMode),
    VORN_OPERATION(Touch_setMode),
    VORN_OPERATION(Touch_getMouseRightClickTime),
    VORN_OPERATION(Touch_setMouseRightClickTime),
    VORN_OPERATION(Touch_getAdvancedSetting),
    VORN_OPERATION(Touch_setAdvancedSetting),
    VORN_OPERATION(Battery_isAvailable),
    VORN_OPERATION(Battery_getVoltageLevel),
    VORN_OPERATION(Battery_getChargingStatus),
    VORN_OPERATION(Battery_getPowerSource),
    VORN_OPERATION(Battery_getTemperature),
    VORN_OPERATION(Battery_getMinMaxTemp),
    VORN_OPERATION(Battery_getHwErrorStatus),
    VORN_OPERATION(Battery_getTimes),
    VORN_OPERATION(Battery_getHwVersion),
    VORN_OPERATION(Battery_getSwVersion),
    VORN_OPERATION(Battery_getSerialNumber),
    VORN_OPERATION(Settings_getString),
    VORN_OPERATION(Settings_setString),
};

#undef VORN_OPERATION
#undef VORN_FAMILY

} // namespace support
