#include "devicetools/contract.h"
#include "tests/support/literals.h"

#include <QtTest>

#include <cstddef>

using namespace support;

/*
 * The binary interface to a unit's library, pinned: units in the field bring libraries of their
 * own, so nothing here may ever change. What doesn't hold doesn't compile.
 */
namespace {

/** Operations that have that signature, all of them. */
template <typename Signature, Signature... Operations>
struct All {};

template struct All<HardwareHandle (*)(), Hardware_create>;
template struct All<void (*)(HardwareHandle), Hardware_release>;
template struct All<DeviceCode (*)(HardwareHandle, char *, uint32_t), Hardware_getMainPcbSerial,
    Hardware_getUnitSerialNumber, Hardware_getMainPcbArticleNumber,
    Hardware_getMainManufacturingDate, Hardware_getMainHardwareVersion,
    Hardware_getMainProductRevision, Hardware_getMainProductArticleNumber,
    Hardware_getAddonPcbSerial, Hardware_getAddonArticleNumber, Hardware_getAddonManufacturingDate,
    Hardware_getAddonHardwareVersion>;
template struct All<DeviceCode (*)(HardwareHandle, uint8_t *), Hardware_getEthernetCount,
    Hardware_getCanCount, Hardware_getVideoCount, Hardware_getUsbCount, Hardware_getSerialCount,
    Hardware_getDigitalInputCount, Hardware_getConfigurableInputCount, Hardware_getPwmOutputCount,
    Hardware_getConfigurableButtonCount, Hardware_hasDisplay, Hardware_hasTouchscreen,
    Hardware_hasWlan, Hardware_hasGps, Hardware_hasGsm, Hardware_hasBluetooth>;

template struct All<AdcHandle (*)(), Adc_create>;
template struct All<void (*)(AdcHandle), Adc_release>;
template struct All<DeviceCode (*)(AdcHandle, uint32_t, double *), Adc_getVoltage>;

template struct All<VersionsHandle (*)(), Versions_create>;
template struct All<void (*)(VersionsHandle), Versions_release>;
template struct All<DeviceCode (*)(VersionsHandle, uint8_t *, uint8_t *, uint8_t *, uint8_t *),
    Versions_getFPGAVersion, Versions_getSSVersion, Versions_getFrontVersion,
    Versions_getVornAuxVersion, Versions_getVornAuxDrvVersion, Versions_getOSVersion>;

template struct All<BacklightHandle (*)(), Backlight_create>;
template struct All<void (*)(BacklightHandle), Backlight_release>;
template struct All<DeviceCode (*)(BacklightHandle, uint8_t *), Backlight_getIntensity,
    Backlight_getStatus, Backlight_getHealthStatus, Backlight_getAutomaticBLStatus>;
template struct All<DeviceCode (*)(BacklightHandle, uint8_t), Backlight_setIntensity>;
template struct All<DeviceCode (*)(BacklightHandle), Backlight_startAutomaticBL,
    Backlight_stopAutomaticBL>;
template struct All<DeviceCode (*)(BacklightHandle, bool), Backlight_setAutomaticBLParams>;
template struct All<DeviceCode (*)(BacklightHandle, uint8_t *, double *),
    Backlight_getAutomaticBLParams>;
template struct All<DeviceCode (*)(BacklightHandle, uint32_t, uint32_t, uint32_t, int32_t),
    Backlight_setAutomaticBLFilter>;
template struct All<DeviceCode (*)(BacklightHandle, uint32_t *, uint32_t *, uint32_t *, int32_t *),
    Backlight_getAutomaticBLFilter>;
template struct All<DeviceCode (*)(BacklightHandle, int32_t *), Backlight_getLedDimming>;
template struct All<DeviceCode (*)(BacklightHandle, int32_t), Backlight_setLedDimming>;

template struct All<BuzzerHandle (*)(), Buzzer_create>;
template struct All<void (*)(BuzzerHandle), Buzzer_release>;
template struct All<DeviceCode (*)(BuzzerHandle, uint16_t *), Buzzer_getFrequency,
    Buzzer_getVolume>;
template struct All<DeviceCode (*)(BuzzerHandle, uint16_t), Buzzer_setFrequency, Buzzer_setVolume>;
template struct All<DeviceCode (*)(BuzzerHandle, uint8_t *), Buzzer_getTrigger>;
template struct All<DeviceCode (*)(BuzzerHandle, bool), Buzzer_setTrigger>;

template struct All<CanHandle (*)(), Can_create>;
template struct All<void (*)(CanHandle), Can_release>;
template struct All<DeviceCode (*)(CanHandle, uint8_t, uint16_t *), Can_getBaudrate>;
template struct All<DeviceCode (*)(CanHandle, uint8_t, uint16_t), Can_setBaudrate>;
template struct All<DeviceCode (*)(CanHandle, uint8_t, int32_t *), Can_getFrameType>;
template struct All<DeviceCode (*)(CanHandle, uint8_t, int32_t), Can_setFrameType>;

template struct All<ConfigHandle (*)(), Config_create>;
template struct All<void (*)(ConfigHandle), Config_release>;
template struct All<DeviceCode (*)(ConfigHandle, int32_t *), Config_getStartupTriggerConfig,
    Config_getCanStartupPowerConfig, Config_getExtFanStartupPowerConfig, Config_getPowerOnStartup,
    Config_getLongButtonPressAction, Config_getShortButtonPressAction, Config_getOnOffSigAction>;
template struct All<DeviceCode (*)(ConfigHandle, int32_t), Config_setStartupTriggerConfig,
    Config_setCanStartupPowerConfig, Config_setExtFanStartupPowerConfig, Config_setPowerOnStartup,
    Config_setLongButtonPressAction, Config_setShortButtonPressAction, Config_setOnOffSigAction>;
template struct All<DeviceCode (*)(ConfigHandle, uint16_t *), Config_getFrontBtnTrigTime,
    Config_getSuspendMaxTime>;
template struct All<DeviceCode (*)(ConfigHandle, uint16_t), Config_setFrontBtnTrigTime,
    Config_setSuspendMaxTime>;
template struct All<DeviceCode (*)(ConfigHandle, uint32_t *), Config_getExtOnOffSigTrigTime>;
template struct All<DeviceCode (*)(ConfigHandle, uint32_t), Config_setExtOnOffSigTrigTime>;
template struct All<DeviceCode (*)(ConfigHandle, uint8_t *), Config_getVideoStartupPowerConfig>;
template struct All<DeviceCode (*)(ConfigHandle, uint8_t), Config_setVideoStartupPowerConfig>;
template struct All<DeviceCode (*)(ConfigHandle, double *), Config_getStartupVoltageConfig>;
template struct All<DeviceCode (*)(ConfigHandle, double), Config_setStartupVoltageConfig>;
template struct All<DeviceCode (*)(ConfigHandle, int16_t *), Config_getHeatingTempLimit>;
template struct All<DeviceCode (*)(ConfigHandle, int16_t), Config_setHeatingTempLimit>;

template struct All<PowerHandle (*)(), Power_create>;
template struct All<void (*)(PowerHandle), Power_release>;
template struct All<DeviceCode (*)(PowerHandle, int32_t *), Power_getBLPowerStatus,
    Power_getCanPowerStatus, Power_getExtFanPowerStatus>;
template struct All<DeviceCode (*)(PowerHandle, int32_t), Power_setBLPowerStatus,
    Power_setCanPowerStatus, Power_setExtFanPowerStatus>;
template struct All<DeviceCode (*)(PowerHandle, uint8_t *), Power_getVideoPowerStatus>;
template struct All<DeviceCode (*)(PowerHandle, uint8_t), Power_setVideoPowerStatus>;

template struct All<DiagnosticsHandle (*)(), Diagnostics_create>;
template struct All<void (*)(DiagnosticsHandle), Diagnostics_release>;
template struct All<DeviceCode (*)(DiagnosticsHandle, int16_t *), Diagnostics_getSSTemp,
    Diagnostics_getPCBTemp>;
template struct All<DeviceCode (*)(DiagnosticsHandle, uint8_t, int16_t *, int32_t *),
    Diagnostics_getPMTemp>;
template struct All<DeviceCode (*)(DiagnosticsHandle, uint16_t *), Diagnostics_getStartupReason,
    Diagnostics_getShutDownReason, Diagnostics_getHwErrorStatus, Diagnostics_getPowerCycles>;
template struct All<DeviceCode (*)(DiagnosticsHandle, DiagnosticTimes *), Diagnostics_getTimers>;
template struct All<DeviceCode (*)(DiagnosticsHandle, int16_t *, int16_t *),
    Diagnostics_getMinMaxTemp>;

template struct All<SmartHandle (*)(), Smart_create>;
template struct All<void (*)(SmartHandle), Smart_release>;
template struct All<DeviceCode (*)(SmartHandle, char *, uint32_t), Smart_getDeviceSerial,
    Smart_getDeviceSerial2>;
template struct All<DeviceCode (*)(SmartHandle, uint8_t *), Smart_getRemainingLifetime,
    Smart_getRemainingLifetime2>;
template struct All<DeviceCode (*)(SmartHandle, int64_t *), Smart_getInitialTime,
    Smart_getInitialTime2>;

template struct All<DigIOHandle (*)(), DigIO_create>;
template struct All<void (*)(DigIOHandle), DigIO_release>;
template struct All<DeviceCode (*)(DigIOHandle, uint8_t *), DigIO_getDigIO>;
template struct All<DeviceCode (*)(DigIOHandle, uint8_t), DigIO_setDigIO>;

template struct All<FirmwareHandle (*)(), Firmware_create>;
template struct All<void (*)(FirmwareHandle), Firmware_release>;
template struct All<DeviceCode (*)(FirmwareHandle, const char *, bool), Firmware_startFpgaUpgrade,
    Firmware_startFpgaVerification, Firmware_startSSUpgrade, Firmware_startSSVerification,
    Firmware_startFrontUpgrade, Firmware_startFrontVerification>;
template struct All<DeviceCode (*)(FirmwareHandle, FirmwareUpgradeStatus *, bool),
    Firmware_getUpgradeStatus>;
template struct All<DeviceCode (*)(FirmwareHandle), Firmware_shutDown>;

template struct All<FrontLEDHandle (*)(), FrontLED_create>;
template struct All<void (*)(FrontLEDHandle), FrontLED_release>;
template struct All<DeviceCode (*)(FrontLEDHandle, double *, uint8_t *), FrontLED_getSignal>;
template struct All<DeviceCode (*)(FrontLEDHandle, double, uint8_t), FrontLED_setSignal>;
template struct All<DeviceCode (*)(FrontLEDHandle, uint8_t *), FrontLED_getOnTime,
    FrontLED_getOffTime, FrontLED_getIdleTime, FrontLED_getNrOfPulses>;
template struct All<DeviceCode (*)(FrontLEDHandle, uint8_t), FrontLED_setOnTime,
    FrontLED_setOffTime, FrontLED_setIdleTime, FrontLED_setNrOfPulses>;
template struct All<DeviceCode (*)(FrontLEDHandle, uint8_t *, uint8_t *, uint8_t *),
    FrontLED_getColor>;
template struct All<DeviceCode (*)(FrontLEDHandle, uint8_t, uint8_t, uint8_t), FrontLED_setColor>;
template struct All<DeviceCode (*)(FrontLEDHandle, int32_t *), FrontLED_getStandardColor,
    FrontLED_getEnabledDuringStartup>;
template struct All<DeviceCode (*)(FrontLEDHandle, int32_t), FrontLED_setStandardColor,
    FrontLED_setEnabledDuringStartup>;
template struct All<DeviceCode (*)(FrontLEDHandle), FrontLED_setOff>;

template struct All<LightSensorHandle (*)(), LightSensor_create>;
template struct All<void (*)(LightSensorHandle), LightSensor_release>;
template struct All<DeviceCode (*)(LightSensorHandle, uint16_t *), LightSensor_getIlluminance>;
template struct All<DeviceCode (*)(LightSensorHandle, int32_t *), LightSensor_getOperatingRange>;
template struct All<DeviceCode (*)(LightSensorHandle, int32_t), LightSensor_setOperatingRange>;
template struct All<DeviceCode (*)(LightSensorHandle, uint32_t, uint32_t, uint32_t, int32_t),
    LightSensor_startAverageCalc>;
template struct All<DeviceCode (*)(LightSensorHandle), LightSensor_stopAverageCalc>;

template struct All<TelematicsHandle (*)(), Telematics_create>;
template struct All<void (*)(TelematicsHandle), Telematics_release>;
template struct All<DeviceCode (*)(TelematicsHandle, int32_t *), Telematics_getAvailable,
    Telematics_getGPRSPowerStatus, Telematics_getGPRSStartUpPowerStatus,
    Telematics_getWLANPowerStatus, Telematics_getWLANStartUpPowerStatus,
    Telematics_getBTPowerStatus, Telematics_getBTStartUpPowerStatus, Telematics_getGPSPowerStatus,
    Telematics_getGPSStartUpPowerStatus, Telematics_getGPSAntennaStatus>;
template struct All<DeviceCode (*)(TelematicsHandle, int32_t), Telematics_setGPRSPowerStatus,
    Telematics_setGPRSStartUpPowerStatus, Telematics_setWLANPowerStatus,
    Telematics_setWLANStartUpPowerStatus, Telematics_setBTPowerStatus,
    Telematics_setBTStartUpPowerStatus, Telematics_setGPSPowerStatus,
    Telematics_setGPSStartUpPowerStatus>;

template struct All<TouchHandle (*)(), Touch_create>;
template struct All<void (*)(TouchHandle), Touch_release>;
template struct All<DeviceCode (*)(TouchHandle, int32_t *), Touch_getMode>;
template struct All<DeviceCode (*)(TouchHandle, int32_t), Touch_setMode>;
template struct All<DeviceCode (*)(TouchHandle, uint16_t *), Touch_getMouseRightClickTime>;
template struct All<DeviceCode (*)(TouchHandle, uint16_t), Touch_setMouseRightClickTime>;
template struct All<DeviceCode (*)(TouchHandle, int32_t, uint16_t *), Touch_getAdvancedSetting>;
template struct All<DeviceCode (*)(TouchHandle, int32_t, uint16_t), Touch_setAdvancedSetting>;

template struct All<BatteryHandle (*)(), Battery_create>;
template struct All<void (*)(BatteryHandle), Battery_release>;
template struct All<DeviceCode (*)(BatteryHandle, uint8_t *), Battery_isAvailable,
    Battery_getVoltageLevel>;
template struct All<DeviceCode (*)(BatteryHandle, int32_t *), Battery_getChargingStatus,
    Battery_getPowerSource, Battery_getHwErrorStatus>;
template struct All<DeviceCode (*)(BatteryHandle, int16_t *), Battery_getTemperature>;
template struct All<DeviceCode (*)(BatteryHandle, int16_t *, int16_t *), Battery_getMinMaxTemp>;
template struct All<DeviceCode (*)(BatteryHandle, BatteryTimes *), Battery_getTimes>;
template struct All<DeviceCode (*)(BatteryHandle, char *, uint32_t), Battery_getHwVersion,
    Battery_getSerialNumber>;
template struct All<DeviceCode (*)(BatteryHandle, uint16_t *, uint16_t *, uint16_t *, uint16_t *),
    Battery_getSwVersion>;

template struct All<SettingsHandle (*)(), Settings_create>;
template struct All<void (*)(SettingsHandle), Settings_release>;
template struct All<DeviceCode (*)(SettingsHandle, const char *, char *, uint32_t),
    Settings_getString>;
template struct All<DeviceCode (*)(SettingsHandle, const char *, const char *), Settings_setString>;

template struct All<const char *(*)(int32_t), deviceErrorText>;
template struct All<const char *(*)(uint16_t), Diagnostics_startupReasonText,
    Diagnostics_hwErrorText>;

static_assert(std::is_same_v<DeviceCode, int32_t> && std::is_same_v<DeviceBool, uint8_t>);
static_assert(sizeof(bool) == 1 && sizeof(HardwareHandle) == sizeof(void *));

static_assert(sizeof(DiagnosticTimes) == 28 && alignof(DiagnosticTimes) == 4);
static_assert(offsetof(DiagnosticTimes, totalRunTime) == 0);
static_assert(offsetof(DiagnosticTimes, totalSuspendTime) == 4);
static_assert(offsetof(DiagnosticTimes, totalHeatTime) == 8);
static_assert(offsetof(DiagnosticTimes, runTime40To60) == 12);
static_assert(offsetof(DiagnosticTimes, runTime60To70) == 16);
static_assert(offsetof(DiagnosticTimes, runTime70To80) == 20);
static_assert(offsetof(DiagnosticTimes, runTimeAbove80) == 24);

static_assert(sizeof(BatteryTimes) == 36 && alignof(BatteryTimes) == 4);
static_assert(offsetof(BatteryTimes, runTimeMainPower) == 0);
static_assert(offsetof(BatteryTimes, runTimeBatteryPower) == 4);
static_assert(offsetof(BatteryTimes, runTimeBelowMinus20) == 8);
static_assert(offsetof(BatteryTimes, runTimeMinus20To0) == 12);
static_assert(offsetof(BatteryTimes, runTime0To40) == 16);
static_assert(offsetof(BatteryTimes, runTime40To60) == 20);
static_assert(offsetof(BatteryTimes, runTime60To70) == 24);
static_assert(offsetof(BatteryTimes, runTime70To80) == 28);
static_assert(offsetof(BatteryTimes, runTimeAbove80) == 32);

static_assert(sizeof(FirmwareUpgradeStatus) == 12 && alignof(FirmwareUpgradeStatus) == 4);
static_assert(offsetof(FirmwareUpgradeStatus, state) == 0);
static_assert(offsetof(FirmwareUpgradeStatus, percent) == 4);
static_assert(offsetof(FirmwareUpgradeStatus, errorCode) == 8);
static_assert(std::is_same_v<decltype(FirmwareUpgradeStatus::state), int32_t>);
static_assert(std::is_same_v<decltype(FirmwareUpgradeStatus::percent), uint8_t>);
static_assert(std::is_same_v<decltype(FirmwareUpgradeStatus::errorCode), int32_t>);

/** Whether the enumerators are these numbers, one after the other. */
template <typename... Enumerators>
constexpr bool countUp(int first, Enumerators... enumerators)
{
    return ((enumerators == first++) && ...);
}

static_assert(DEVICE_OK == 0 && DEVICE_NOT_SUPPORTED == 2);
static_assert(DEVICE_DATA_NOT_AVAILABLE == 18 && DEVICE_AUTOMATIC_BACKLIGHT_RUNS == 20);
static_assert(countUp(0, STATUS_OFF, STATUS_ON));
static_assert(countUp(1, TRIGGER_FRONT_BUTTON, TRIGGER_ON_OFF_SIGNAL, TRIGGER_BOTH));
static_assert(countUp(0, ACTION_NONE, ACTION_SUSPEND, ACTION_SHUT_DOWN));
static_assert(countUp(0, FRAME_STANDARD, FRAME_EXTENDED, FRAME_BOTH));
static_assert(countUp(0, LIGHT_RANGE_STANDARD, LIGHT_RANGE_EXTENDED));
static_assert(countUp(0, SAMPLING_STANDARD, SAMPLING_EXTENDED, SAMPLING_AUTO));
static_assert(countUp(0, TOUCH_MOUSE_NEXT_BOOT, TOUCH_TOUCH_NEXT_BOOT, TOUCH_MOUSE, TOUCH_TOUCH));
static_assert(countUp(0, TOUCH_RIGHT_CLICK_TIME, TOUCH_LOW_LEVEL, TOUCH_UNTOUCH_LEVEL,
    TOUCH_DEBOUNCE_TIME, TOUCH_DEBOUNCE_TIMEOUT_TIME, TOUCH_DOUBLE_CLICK_MAX_CLICK_TIME,
    TOUCH_DOUBLE_CLICK_TIME, TOUCH_MAX_RIGHT_CLICK_DISTANCE, TOUCH_USE_DEJITTER,
    TOUCH_CALIBRATION_WIDTH, TOUCH_CALIBRATION_MEASUREMENTS, TOUCH_RESTORE_DEFAULTS));
static_assert(countUp(0, SENSOR_CPU, SENSOR_BOX, SENSOR_ENVIRONMENT, SENSOR_BOARD, SENSOR_BACKPLANE,
    SENSOR_CHIPSETS, SENSOR_VIDEO, SENSOR_OTHER));
static_assert(countUp(0, LED_RED, LED_GREEN, LED_BLUE, LED_CYAN, LED_MAGENTA, LED_YELLOW));
static_assert(countUp(0, BATTERY_NO_ERROR, BATTERY_THERMISTOR, BATTERY_SECONDARY_SENSOR,
    BATTERY_CHARGING_FAILED, BATTERY_OVERCURRENT, BATTERY_NOT_INITIATED));
static_assert(countUp(0, CHARGING_IDLE, CHARGING_ACTIVE, CHARGING_FULL, CHARGING_TOO_COLD,
    CHARGING_TOO_HOT, CHARGING_UNKNOWN));
static_assert(countUp(0, POWER_BATTERY, POWER_EXTERNAL));
static_assert(countUp(0, FIRMWARE_INITIATING, FIRMWARE_PREPARING, FIRMWARE_READING,
    FIRMWARE_CONVERTING, FIRMWARE_FLASHING, FIRMWARE_VERIFYING, FIRMWARE_DONE, FIRMWARE_FAILED));
static_assert(VIDEO_MASK_ALL == 0x0F && SHUTDOWN_REASON_NO_ERROR == 31);

/** Names that the file asks others for, or offers to them. */
QStringList symbols(const char *which, const QString &file)
{
    QProcess nm;
    nm.start("nm"_s, {"-D"_s, "--format=posix"_s, QLatin1String(which), file});
    if (!nm.waitForFinished(60'000) || nm.exitCode() != 0)
        qFatal("nm: %s", qPrintable(nm.errorString()));
    QStringList names;
    for (const QByteArray &line : nm.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty())
            names << QString::fromLatin1(line.left(line.indexOf(' ')));
    }
    return names;
}

QStringList contractNames()
{
    QStringList names;
    for (const auto &text : contract::texts)
        names << QLatin1String(text.name);
    for (const auto &family : contract::families)
        names << QLatin1String(family.createName) << QLatin1String(family.releaseName);
    for (const auto &operation : contract::operations)
        names << QLatin1String(operation.name);
    names.sort();
    return names;
}

} // namespace

/** What the program and a unit's library see of each other. */
class ContractTest : public QObject
{
    Q_OBJECT

private slots:
    /** The program starts with a library that has the contract's operations and nothing else. */
    void programAsksForNoMore()
    {
        const QStringList wanted =
            symbols("--undefined-only", QStringLiteral(VORN_BIN_DIR "/VornSettings"));
        const QStringList offered =
            symbols("--defined-only", QStringLiteral(VORN_LIB_DIR "/libVornAux2.so"));
        QStringList found;
        for (const QString &name : wanted) {
            if (offered.contains(name))
                found << name;
        }
        found.sort();
        QCOMPARE(found, contractNames());
    }

    void numberOfOperations() { QCOMPARE(contractNames().size(), 213); }
};

QTEST_GUILESS_MAIN(ContractTest)
#include "tst_contract.moc"
