/**
 * @file VornAux2.h
 * @brief The device service contract: everything the program asks of the unit's hardware.
 *
 * The header is plain C, so that a library for a real unit can be written in any language that
 * speaks the C ABI. The executable binds to libVornAux2.so (VornAux2.dll on Windows) when it is
 * loaded; replacing that file replaces the device.
 *
 * ABI, which is fixed:
 * - C linkage and the platform's C calling convention; structs have natural alignment.
 * - Each family has a handle, an opaque pointer from its _create and given back once to its
 *   _release. Several handles of one family may live at once; each stands alone. One handle is
 *   used by one thread at a time; different handles may be used by different threads at once.
 * - Every other operation returns a DeviceCode, 0 for success. Out arguments are filled on
 *   success only; on any other code they keep what the caller put there.
 * - Text operations with a buffer write at most size bytes, the ending zero byte included; a
 *   text that is too long is cut. Texts are Latin-1; see Settings for its own.
 * - Truth values are one byte. An out value is DeviceBool: zero is false, all else true.
 *
 * What the codes mean to the program: 0 is success; 2 says that this unit or its firmware has no
 * such feature, which is no fault; 18 says that the datum can't be had at present; 20 says that
 * the running automatic backlight forbids the operation; every other code is a fault that is
 * shown with its number and its text.
 */

#ifndef VORNAUX2_H
#define VORNAUX2_H

#include <stdbool.h>
#include <stdint.h>

/* What exports a function, if the compiler needs to be told: set by the build of a library alone.
 * Callers need no import attribute on any system, and without it the functions' addresses are
 * constant expressions, which the handle type of the program relies on. */
#ifndef VORNAUX2_API
#    define VORNAUX2_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** Result of an operation; see DeviceCodeValue for the codes that the program tells apart. */
typedef int32_t DeviceCode;

/** A truth value as the library hands it out: zero is false, every other value true. */
typedef uint8_t DeviceBool;

/** The codes with a meaning of their own. All others are faults, numbered by the library. */
enum DeviceCodeValue {
    DEVICE_OK = 0,                       /**< success */
    DEVICE_NOT_SUPPORTED = 2,            /**< the unit or its firmware has no such feature */
    DEVICE_DATA_NOT_AVAILABLE = 18,      /**< the datum can't be had at present */
    DEVICE_AUTOMATIC_BACKLIGHT_RUNS = 20 /**< refused while the automatic backlight runs */
};

/** State of a switch. Every value but ON counts as off. */
enum OnOffStatus {
    STATUS_OFF = 0, /**< off */
    STATUS_ON = 1,  /**< on */
};

/** What starts the computer. */
enum StartupTrigger {
    TRIGGER_FRONT_BUTTON = 1,  /**< the front button */
    TRIGGER_ON_OFF_SIGNAL = 2, /**< the on/off signal */
    TRIGGER_BOTH = 3,          /**< either of the two */
};

/** What a button press or the on/off signal does while the computer runs. */
enum ButtonAction {
    ACTION_NONE = 0,      /**< nothing */
    ACTION_SUSPEND = 1,   /**< suspend */
    ACTION_SHUT_DOWN = 2, /**< shut down */
};

/** Frames that a CAN channel takes. */
enum CanFrameType {
    FRAME_STANDARD = 0, /**< 11-bit identifiers */
    FRAME_EXTENDED = 1, /**< 29-bit identifiers */
    FRAME_BOTH = 2,     /**< both */
};

/** Operating range of the light sensor. */
enum LightRange {
    LIGHT_RANGE_STANDARD = 0, /**< standard */
    LIGHT_RANGE_EXTENDED = 1, /**< extended */
};

/** Range in which the light filter samples. */
enum SamplingMode {
    SAMPLING_STANDARD = 0, /**< standard range */
    SAMPLING_EXTENDED = 1, /**< extended range */
    SAMPLING_AUTO = 2,     /**< the library chooses */
};

/** Profile of the touch screen. */
enum TouchMode {
    TOUCH_MOUSE_NEXT_BOOT = 0, /**< mouse profile from the next boot on */
    TOUCH_TOUCH_NEXT_BOOT = 1, /**< touch profile from the next boot on */
    TOUCH_MOUSE = 2,           /**< mouse profile now */
    TOUCH_TOUCH = 3,           /**< touch profile now */
};

/** Numbers of the touch controller's advanced settings. */
enum TouchSetting {
    TOUCH_RIGHT_CLICK_TIME = 0,            /**< milliseconds, 0 to 65535 */
    TOUCH_LOW_LEVEL = 1,                   /**< A/D value, 0 to 4095 */
    TOUCH_UNTOUCH_LEVEL = 2,               /**< A/D value, 0 to 4095 */
    TOUCH_DEBOUNCE_TIME = 3,               /**< milliseconds, 0 to 16383 */
    TOUCH_DEBOUNCE_TIMEOUT_TIME = 4,       /**< milliseconds, 0 to 16383 */
    TOUCH_DOUBLE_CLICK_MAX_CLICK_TIME = 5, /**< milliseconds, 0 to 16383 */
    TOUCH_DOUBLE_CLICK_TIME = 6,           /**< milliseconds, 0 to 16383 */
    TOUCH_MAX_RIGHT_CLICK_DISTANCE = 7,    /**< pixels, 0 to 32767 */
    TOUCH_USE_DEJITTER = 8,                /**< 0 or 1, other values are taken */
    TOUCH_CALIBRATION_WIDTH = 9,           /**< pixels, 0 to 32767 */
    TOUCH_CALIBRATION_MEASUREMENTS = 10,   /**< count, 0 to 65535 */
    TOUCH_RESTORE_DEFAULTS = 11, /**< write only: the value 1 restores the settings 0 to 10 */
};

/** Where a temperature sensor of the processor module sits. */
enum ProcessorSensorKind {
    SENSOR_CPU = 0,         /**< CPU */
    SENSOR_BOX = 1,         /**< box */
    SENSOR_ENVIRONMENT = 2, /**< environment */
    SENSOR_BOARD = 3,       /**< board */
    SENSOR_BACKPLANE = 4,   /**< backplane */
    SENSOR_CHIPSETS = 5,    /**< chipsets */
    SENSOR_VIDEO = 6,       /**< video */
    SENSOR_OTHER = 7,       /**< other */
};

/** Standard colours of the front LED. */
enum LedColor {
    LED_RED = 0,     /**< red */
    LED_GREEN = 1,   /**< green */
    LED_BLUE = 2,    /**< blue */
    LED_CYAN = 3,    /**< cyan */
    LED_MAGENTA = 4, /**< magenta */
    LED_YELLOW = 5,  /**< yellow */
};

/** What is wrong with the external battery. */
enum BatteryErrorStatus {
    BATTERY_NO_ERROR = 0,         /**< nothing */
    BATTERY_THERMISTOR = 1,       /**< thermistor sensor not working */
    BATTERY_SECONDARY_SENSOR = 2, /**< secondary sensor not working */
    BATTERY_CHARGING_FAILED = 3,  /**< charging failed */
    BATTERY_OVERCURRENT = 4,      /**< overcurrent */
    BATTERY_NOT_INITIATED = 5,    /**< battery not initiated */
};

/** What the charger does. */
enum BatteryChargingStatus {
    CHARGING_IDLE = 0,     /**< not being charged */
    CHARGING_ACTIVE = 1,   /**< being charged */
    CHARGING_FULL = 2,     /**< fully charged */
    CHARGING_TOO_COLD = 3, /**< too cold to charge */
    CHARGING_TOO_HOT = 4,  /**< too hot to charge */
    CHARGING_UNKNOWN = 5,  /**< status unavailable */
};

/** What powers the computer. Every value but the battery is external power. */
enum BatteryPowerSource {
    POWER_BATTERY = 0,  /**< the battery */
    POWER_EXTERNAL = 1, /**< external power */
};

/** Stages of a firmware job, in their order. The two last ones end it. */
enum FirmwareState {
    FIRMWARE_INITIATING = 0, /**< initiating */
    FIRMWARE_PREPARING = 1,  /**< preparing communication */
    FIRMWARE_READING = 2,    /**< reading the file */
    FIRMWARE_CONVERTING = 3, /**< converting the file */
    FIRMWARE_FLASHING = 4,   /**< flashing */
    FIRMWARE_VERIFYING = 5,  /**< verifying */
    FIRMWARE_DONE = 6,       /**< done */
    FIRMWARE_FAILED = 7,     /**< done, with an error */
};

/** Masks of the four video channels: bit 0 is channel 1, bit 3 is channel 4. */
enum VideoMask { VIDEO_MASK_ALL = 0x0F };

/** Shutdown reason that stands for "no fault". */
enum { SHUTDOWN_REASON_NO_ERROR = 31 };

/** Run time counters of the unit, in minutes. */
typedef struct DiagnosticTimes {
    uint32_t totalRunTime;     /**< running */
    uint32_t totalSuspendTime; /**< suspended */
    uint32_t totalHeatTime;    /**< heating before a cold start */
    uint32_t runTime40To60;    /**< running at 40 to 60 degrees C */
    uint32_t runTime60To70;    /**< running at 60 to 70 degrees C */
    uint32_t runTime70To80;    /**< running at 70 to 80 degrees C */
    uint32_t runTimeAbove80;   /**< running above 80 degrees C */
} DiagnosticTimes;

/** Run time counters of the external battery, in minutes. */
typedef struct BatteryTimes {
    uint32_t runTimeMainPower;    /**< running on main power */
    uint32_t runTimeBatteryPower; /**< running on battery power */
    uint32_t runTimeBelowMinus20; /**< running below -20 degrees C */
    uint32_t runTimeMinus20To0;   /**< running at -20 to 0 degrees C */
    uint32_t runTime0To40;        /**< running at 0 to 40 degrees C */
    uint32_t runTime40To60;       /**< running at 40 to 60 degrees C */
    uint32_t runTime60To70;       /**< running at 60 to 70 degrees C */
    uint32_t runTime70To80;       /**< running at 70 to 80 degrees C */
    uint32_t runTimeAbove80;      /**< running above 80 degrees C */
} BatteryTimes;

/** How far a firmware job has come. */
typedef struct FirmwareUpgradeStatus {
    int32_t state;     /**< FirmwareState */
    uint8_t percent;   /**< progress of the job, 0 to 100 */
    int32_t errorCode; /**< 0 while all is well, else the DeviceCode that ended the job */
} FirmwareUpgradeStatus;

/** Text of a code, constant, never null; the caller doesn't free it. Any thread. */
VORNAUX2_API const char *deviceErrorText(int32_t code);

/* Hardware: what the unit consists of. The program passes 200 bytes for a text. */

/** Handle of the Hardware family. */
typedef struct HardwareDevice *HardwareHandle;
/** A new handle, to be given back to Hardware_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API HardwareHandle Hardware_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Hardware_release(HardwareHandle handle);

/** Serial number of the main board. */
VORNAUX2_API DeviceCode Hardware_getMainPcbSerial(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Serial number of the unit. */
VORNAUX2_API DeviceCode Hardware_getUnitSerialNumber(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Article number of the main board. */
VORNAUX2_API DeviceCode Hardware_getMainPcbArticleNumber(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Manufacturing date of the main board, free text. */
VORNAUX2_API DeviceCode Hardware_getMainManufacturingDate(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Hardware version of the main board. */
VORNAUX2_API DeviceCode Hardware_getMainHardwareVersion(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Product revision. */
VORNAUX2_API DeviceCode Hardware_getMainProductRevision(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Article number of the product. */
VORNAUX2_API DeviceCode Hardware_getMainProductArticleNumber(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Serial number of the add-on board. */
VORNAUX2_API DeviceCode Hardware_getAddonPcbSerial(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Article number of the add-on board. */
VORNAUX2_API DeviceCode Hardware_getAddonArticleNumber(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Manufacturing date of the add-on board, free text. */
VORNAUX2_API DeviceCode Hardware_getAddonManufacturingDate(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Hardware version of the add-on board. */
VORNAUX2_API DeviceCode Hardware_getAddonHardwareVersion(
    HardwareHandle handle, char *buffer, uint32_t size);
/** Number of Ethernet connections. */
VORNAUX2_API DeviceCode Hardware_getEthernetCount(HardwareHandle handle, uint8_t *count);
/** Number of CAN channels. */
VORNAUX2_API DeviceCode Hardware_getCanCount(HardwareHandle handle, uint8_t *count);
/** Number of video channels. */
VORNAUX2_API DeviceCode Hardware_getVideoCount(HardwareHandle handle, uint8_t *count);
/** Number of USB connections. */
VORNAUX2_API DeviceCode Hardware_getUsbCount(HardwareHandle handle, uint8_t *count);
/** Number of serial ports. */
VORNAUX2_API DeviceCode Hardware_getSerialCount(HardwareHandle handle, uint8_t *count);
/** Number of digital inputs. */
VORNAUX2_API DeviceCode Hardware_getDigitalInputCount(HardwareHandle handle, uint8_t *count);
/** Number of configurable inputs. */
VORNAUX2_API DeviceCode Hardware_getConfigurableInputCount(HardwareHandle handle, uint8_t *count);
/** Number of PWM outputs. */
VORNAUX2_API DeviceCode Hardware_getPwmOutputCount(HardwareHandle handle, uint8_t *count);
/** Number of configurable buttons. */
VORNAUX2_API DeviceCode Hardware_getConfigurableButtonCount(HardwareHandle handle, uint8_t *count);
/** Whether a display is fitted. */
VORNAUX2_API DeviceCode Hardware_hasDisplay(HardwareHandle handle, DeviceBool *present);
/** Whether a touch screen is fitted. */
VORNAUX2_API DeviceCode Hardware_hasTouchscreen(HardwareHandle handle, DeviceBool *present);
/** Whether the add-on board has WLAN. */
VORNAUX2_API DeviceCode Hardware_hasWlan(HardwareHandle handle, DeviceBool *present);
/** Whether the add-on board has a GPS receiver. */
VORNAUX2_API DeviceCode Hardware_hasGps(HardwareHandle handle, DeviceBool *present);
/** Whether the add-on board has a GSM/GPRS modem. */
VORNAUX2_API DeviceCode Hardware_hasGsm(HardwareHandle handle, DeviceBool *present);
/** Whether the add-on board has Bluetooth. */
VORNAUX2_API DeviceCode Hardware_hasBluetooth(HardwareHandle handle, DeviceBool *present);

/* Adc: supply rails. Channel 1 does not exist. */

/** Handle of the Adc family. */
typedef struct AdcDevice *AdcHandle;
/** A new handle, to be given back to Adc_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API AdcHandle Adc_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Adc_release(AdcHandle handle);

/** Voltage of a supply rail in volts. Channels: 0 24V in, 2 12V, 3 12V video, 4 5V, 5 3.3V,
 *  6 TFT, 7 5V STB, 8 1.9V, 9 1.8V, 10 1.5V, 11 1.2V, 12 1.05V, 13 1.0V, 14 0.9V, 15 SS VREF,
 *  16 24V Backup, 17 2.5V, 18 1.1V, 19 1.3V PER, 20 1.3V VDDA, 21 3V3 STBY, 22 VPMIC,
 *  23 VMAIN. */
VORNAUX2_API DeviceCode Adc_getVoltage(AdcHandle handle, uint32_t channel, double *volts);

/* Versions: versions of what runs on the unit. */

/** Handle of the Versions family. */
typedef struct VersionsDevice *VersionsHandle;
/** A new handle, to be given back to Versions_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API VersionsHandle Versions_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Versions_release(VersionsHandle handle);

/** The FPGA image. */
VORNAUX2_API DeviceCode Versions_getFPGAVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build);
/** The system supervisor. */
VORNAUX2_API DeviceCode Versions_getSSVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build);
/** The front controller. */
VORNAUX2_API DeviceCode Versions_getFrontVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build);
/** This library. */
VORNAUX2_API DeviceCode Versions_getVornAuxVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build);
/** The driver beneath this library. */
VORNAUX2_API DeviceCode Versions_getVornAuxDrvVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build);
/** The operating system image. */
VORNAUX2_API DeviceCode Versions_getOSVersion(
    VersionsHandle handle, uint8_t *major, uint8_t *minor, uint8_t *release, uint8_t *build);

/* Backlight: the display's backlight and its automatic control. */

/** Handle of the Backlight family. */
typedef struct BacklightDevice *BacklightHandle;
/** A new handle, to be given back to Backlight_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API BacklightHandle Backlight_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Backlight_release(BacklightHandle handle);

/** Present intensity, 0 to 255. */
VORNAUX2_API DeviceCode Backlight_getIntensity(BacklightHandle handle, uint8_t *intensity);
/** Sets the intensity, 0 to 255. */
VORNAUX2_API DeviceCode Backlight_setIntensity(BacklightHandle handle, uint8_t intensity);
/** Status byte of the backlight hardware. */
VORNAUX2_API DeviceCode Backlight_getStatus(BacklightHandle handle, uint8_t *status);
/** True while the backlight hardware is sound. */
VORNAUX2_API DeviceCode Backlight_getHealthStatus(BacklightHandle handle, DeviceBool *healthy);
/** Starts the control of the intensity by the light sensor. */
VORNAUX2_API DeviceCode Backlight_startAutomaticBL(BacklightHandle handle);
/** Stops it. */
VORNAUX2_API DeviceCode Backlight_stopAutomaticBL(BacklightHandle handle);
/** Non-zero while the automatic control runs. */
VORNAUX2_API DeviceCode Backlight_getAutomaticBLStatus(BacklightHandle handle, uint8_t *running);
/** Whether the automatic control changes the intensity softly. */
VORNAUX2_API DeviceCode Backlight_setAutomaticBLParams(
    BacklightHandle handle, bool softTransitions);
/** Reads that, and the K value of the control. */
VORNAUX2_API DeviceCode Backlight_getAutomaticBLParams(
    BacklightHandle handle, DeviceBool *softTransitions, double *kValue);
/** Light filter of the automatic control: windows in samples, delta in lux, SamplingMode. */
VORNAUX2_API DeviceCode Backlight_setAutomaticBLFilter(BacklightHandle handle,
    uint32_t averageWindowSize, uint32_t rejectWindowSize, uint32_t rejectDeltaLux,
    int32_t samplingMode);
/** Reads the light filter. */
VORNAUX2_API DeviceCode Backlight_getAutomaticBLFilter(BacklightHandle handle,
    uint32_t *averageWindowSize, uint32_t *rejectWindowSize, uint32_t *rejectDeltaLux,
    int32_t *samplingMode);
/** Whether the front LED is dimmed with the backlight, OnOffStatus. */
VORNAUX2_API DeviceCode Backlight_getLedDimming(BacklightHandle handle, int32_t *status);
/** Sets that, OnOffStatus. */
VORNAUX2_API DeviceCode Backlight_setLedDimming(BacklightHandle handle, int32_t status);

/* Buzzer: the buzzer. */

/** Handle of the Buzzer family. */
typedef struct BuzzerDevice *BuzzerHandle;
/** A new handle, to be given back to Buzzer_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API BuzzerHandle Buzzer_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Buzzer_release(BuzzerHandle handle);

/** Frequency of the tone in hertz, 700 to 10000. */
VORNAUX2_API DeviceCode Buzzer_getFrequency(BuzzerHandle handle, uint16_t *hertz);
/** Sets it. */
VORNAUX2_API DeviceCode Buzzer_setFrequency(BuzzerHandle handle, uint16_t hertz);
/** Volume in the device's steps, 0 to 51. */
VORNAUX2_API DeviceCode Buzzer_getVolume(BuzzerHandle handle, uint16_t *volume);
/** Sets it. */
VORNAUX2_API DeviceCode Buzzer_setVolume(BuzzerHandle handle, uint16_t volume);
/** Whether the buzzer sounds. */
VORNAUX2_API DeviceCode Buzzer_getTrigger(BuzzerHandle handle, DeviceBool *sounding);
/** Sounds it or stops it. */
VORNAUX2_API DeviceCode Buzzer_setTrigger(BuzzerHandle handle, bool sounding);

/* Can: CAN channels, numbered from 1. Changes take effect when the computer or its CAN driver
 * restarts. */

/** Handle of the Can family. */
typedef struct CanDevice *CanHandle;
/** A new handle, to be given back to Can_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API CanHandle Can_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Can_release(CanHandle handle);

/** Baud rate of a channel in kbit/s. */
VORNAUX2_API DeviceCode Can_getBaudrate(CanHandle handle, uint8_t channel, uint16_t *kbitPerSecond);
/** Sets it. */
VORNAUX2_API DeviceCode Can_setBaudrate(CanHandle handle, uint8_t channel, uint16_t kbitPerSecond);
/** CanFrameType of a channel. */
VORNAUX2_API DeviceCode Can_getFrameType(CanHandle handle, uint8_t channel, int32_t *frameType);
/** Sets it. */
VORNAUX2_API DeviceCode Can_setFrameType(CanHandle handle, uint8_t channel, int32_t frameType);

/* Config: settings that are stored in the unit and hold across restarts. */

/** Handle of the Config family. */
typedef struct ConfigDevice *ConfigHandle;
/** A new handle, to be given back to Config_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API ConfigHandle Config_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Config_release(ConfigHandle handle);

/** What starts the computer, StartupTrigger. */
VORNAUX2_API DeviceCode Config_getStartupTriggerConfig(ConfigHandle handle, int32_t *trigger);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setStartupTriggerConfig(ConfigHandle handle, int32_t trigger);
/** The front button's press time, in milliseconds. */
VORNAUX2_API DeviceCode Config_getFrontBtnTrigTime(ConfigHandle handle, uint16_t *milliseconds);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setFrontBtnTrigTime(ConfigHandle handle, uint16_t milliseconds);
/** The on/off signal's time, in seconds. */
VORNAUX2_API DeviceCode Config_getExtOnOffSigTrigTime(ConfigHandle handle, uint32_t *seconds);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setExtOnOffSigTrigTime(ConfigHandle handle, uint32_t seconds);
/** Longest time in suspend in minutes, 0 for no limit. Code 2: the unit has no suspend. */
VORNAUX2_API DeviceCode Config_getSuspendMaxTime(ConfigHandle handle, uint16_t *minutes);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setSuspendMaxTime(ConfigHandle handle, uint16_t minutes);
/** CAN power at start-up, OnOffStatus. */
VORNAUX2_API DeviceCode Config_getCanStartupPowerConfig(ConfigHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setCanStartupPowerConfig(ConfigHandle handle, int32_t status);
/** Video power at start-up, a VideoMask. */
VORNAUX2_API DeviceCode Config_getVideoStartupPowerConfig(ConfigHandle handle, uint8_t *mask);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setVideoStartupPowerConfig(ConfigHandle handle, uint8_t mask);
/** External fan power at start-up, OnOffStatus. */
VORNAUX2_API DeviceCode Config_getExtFanStartupPowerConfig(ConfigHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setExtFanStartupPowerConfig(ConfigHandle handle, int32_t status);
/** Lowest supply voltage at which the computer starts, in volts. */
VORNAUX2_API DeviceCode Config_getStartupVoltageConfig(ConfigHandle handle, double *volts);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setStartupVoltageConfig(ConfigHandle handle, double volts);
/** Temperature below which the heater runs first, in degrees C, -25 to 5. Code 2: no heater. */
VORNAUX2_API DeviceCode Config_getHeatingTempLimit(ConfigHandle handle, int16_t *celsius);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setHeatingTempLimit(ConfigHandle handle, int16_t celsius);
/** Whether the computer starts whenever power comes on, OnOffStatus. */
VORNAUX2_API DeviceCode Config_getPowerOnStartup(ConfigHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setPowerOnStartup(ConfigHandle handle, int32_t status);
/** What a long press of the front button does, ButtonAction. */
VORNAUX2_API DeviceCode Config_getLongButtonPressAction(ConfigHandle handle, int32_t *action);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setLongButtonPressAction(ConfigHandle handle, int32_t action);
/** What a short press does, ButtonAction. */
VORNAUX2_API DeviceCode Config_getShortButtonPressAction(ConfigHandle handle, int32_t *action);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setShortButtonPressAction(ConfigHandle handle, int32_t action);
/** What the on/off signal does, ButtonAction. */
VORNAUX2_API DeviceCode Config_getOnOffSigAction(ConfigHandle handle, int32_t *action);
/** Sets it. */
VORNAUX2_API DeviceCode Config_setOnOffSigAction(ConfigHandle handle, int32_t action);

/* Power: present state of the switched rails, as against the stored start-up state in Config. */

/** Handle of the Power family. */
typedef struct PowerDevice *PowerHandle;
/** A new handle, to be given back to Power_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API PowerHandle Power_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Power_release(PowerHandle handle);

/** Power of the backlight, OnOffStatus. */
VORNAUX2_API DeviceCode Power_getBLPowerStatus(PowerHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Power_setBLPowerStatus(PowerHandle handle, int32_t status);
/** Power of the CAN transceivers, OnOffStatus. */
VORNAUX2_API DeviceCode Power_getCanPowerStatus(PowerHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Power_setCanPowerStatus(PowerHandle handle, int32_t status);
/** Power of the video channels, a VideoMask. */
VORNAUX2_API DeviceCode Power_getVideoPowerStatus(PowerHandle handle, uint8_t *mask);
/** Sets it. */
VORNAUX2_API DeviceCode Power_setVideoPowerStatus(PowerHandle handle, uint8_t mask);
/** Power of the external fan, OnOffStatus. */
VORNAUX2_API DeviceCode Power_getExtFanPowerStatus(PowerHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Power_setExtFanPowerStatus(PowerHandle handle, int32_t status);

/* Diagnostics: how the unit is and how it has lived. Temperatures in degrees C. */

/** Handle of the Diagnostics family. */
typedef struct DiagnosticsDevice *DiagnosticsHandle;
/** A new handle, to be given back to Diagnostics_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API DiagnosticsHandle Diagnostics_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Diagnostics_release(DiagnosticsHandle handle);

/** Temperature of the system supervisor. */
VORNAUX2_API DeviceCode Diagnostics_getSSTemp(DiagnosticsHandle handle, int16_t *celsius);
/** Temperature of the main board. */
VORNAUX2_API DeviceCode Diagnostics_getPCBTemp(DiagnosticsHandle handle, int16_t *celsius);
/** Sensor number index of the processor module, from 0, with its ProcessorSensorKind. An index past
 *  the last sensor gives a non-zero code. */
VORNAUX2_API DeviceCode Diagnostics_getPMTemp(
    DiagnosticsHandle handle, uint8_t index, int16_t *celsius, int32_t *kind);
/** Why the computer last started; see Diagnostics_startupReasonText. */
VORNAUX2_API DeviceCode Diagnostics_getStartupReason(DiagnosticsHandle handle, uint16_t *reason);
/** Why it last stopped; SHUTDOWN_REASON_NO_ERROR stands for no fault. */
VORNAUX2_API DeviceCode Diagnostics_getShutDownReason(DiagnosticsHandle handle, uint16_t *reason);
/** Hardware error word; see Diagnostics_hwErrorText. */
VORNAUX2_API DeviceCode Diagnostics_getHwErrorStatus(DiagnosticsHandle handle, uint16_t *status);
/** Run time counters. */
VORNAUX2_API DeviceCode Diagnostics_getTimers(DiagnosticsHandle handle, DiagnosticTimes *times);
/** Lowest and highest temperature seen. */
VORNAUX2_API DeviceCode Diagnostics_getMinMaxTemp(
    DiagnosticsHandle handle, int16_t *minimum, int16_t *maximum);
/** Number of power cycles. */
VORNAUX2_API DeviceCode Diagnostics_getPowerCycles(DiagnosticsHandle handle, uint16_t *cycles);

/** Text of a start-up reason, constant, never null. Any thread. */
VORNAUX2_API const char *Diagnostics_startupReasonText(uint16_t reason);
/** Text of a hardware error word, constant, never null. Any thread. */
VORNAUX2_API const char *Diagnostics_hwErrorText(uint16_t status);

/* Smart: health of the storage devices. */

/** Handle of the Smart family. */
typedef struct SmartDevice *SmartHandle;
/** A new handle, to be given back to Smart_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API SmartHandle Smart_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Smart_release(SmartHandle handle);

/** Serial number of the first storage device; the program passes 21 bytes. */
VORNAUX2_API DeviceCode Smart_getDeviceSerial(SmartHandle handle, char *buffer, uint32_t size);
/** Estimated remaining lifetime of the first storage device in percent, 0 to 100. */
VORNAUX2_API DeviceCode Smart_getRemainingLifetime(SmartHandle handle, uint8_t *percent);
/** When the first storage device was first stamped, in seconds since 1970. */
VORNAUX2_API DeviceCode Smart_getInitialTime(SmartHandle handle, int64_t *seconds);
/** Serial number of the second storage device; the program passes 21 bytes. Code 2: there is none.
 */
VORNAUX2_API DeviceCode Smart_getDeviceSerial2(SmartHandle handle, char *buffer, uint32_t size);
/** Estimated remaining lifetime of the second storage device in percent, 0 to 100. Code 2: there is
 *  none. */
VORNAUX2_API DeviceCode Smart_getRemainingLifetime2(SmartHandle handle, uint8_t *percent);
/** When the second storage device was first stamped, in seconds since 1970. Code 2: there is none.
 */
VORNAUX2_API DeviceCode Smart_getInitialTime2(SmartHandle handle, int64_t *seconds);

/* DigIO: digital lines, bit 0 to bit 3. */

/** Handle of the DigIO family. */
typedef struct DigIODevice *DigIOHandle;
/** A new handle, to be given back to DigIO_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API DigIOHandle DigIO_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void DigIO_release(DigIOHandle handle);

/** Reads the lines. */
VORNAUX2_API DeviceCode DigIO_getDigIO(DigIOHandle handle, uint8_t *mask);
/** Writes the lines. Code 2: the unit can only read them. */
VORNAUX2_API DeviceCode DigIO_setDigIO(DigIOHandle handle, uint8_t mask);

/* Firmware: programming of the controllers. A job runs in the library; the starting call returns at
 * once. */

/** Handle of the Firmware family. */
typedef struct FirmwareDevice *FirmwareHandle;
/** A new handle, to be given back to Firmware_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API FirmwareHandle Firmware_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Firmware_release(FirmwareHandle handle);

/** Starts to write the FPGA image, a file ending in mcs. The path is Latin-1; reserved is false. */
VORNAUX2_API DeviceCode Firmware_startFpgaUpgrade(
    FirmwareHandle handle, const char *path, bool reserved);
/** Starts to compare the FPGA image with what the unit holds; arguments as for the upgrade. */
VORNAUX2_API DeviceCode Firmware_startFpgaVerification(
    FirmwareHandle handle, const char *path, bool reserved);
/** Starts to write the system supervisor image, a file ending in hex. The path is Latin-1; reserved
 *  is false. */
VORNAUX2_API DeviceCode Firmware_startSSUpgrade(
    FirmwareHandle handle, const char *path, bool reserved);
/** Starts to compare the system supervisor image with what the unit holds; arguments as for the
 *  upgrade. */
VORNAUX2_API DeviceCode Firmware_startSSVerification(
    FirmwareHandle handle, const char *path, bool reserved);
/** Starts to write the front controller image, a file ending in hex. The path is Latin-1; reserved
 *  is false. */
VORNAUX2_API DeviceCode Firmware_startFrontUpgrade(
    FirmwareHandle handle, const char *path, bool reserved);
/** Starts to compare the front controller image with what the unit holds; arguments as for the
 *  upgrade. */
VORNAUX2_API DeviceCode Firmware_startFrontVerification(
    FirmwareHandle handle, const char *path, bool reserved);
/** Progress of the handle's job. With wait it returns at the next news or after about 100 ms. The
 *  job ends with the record's state or error code, never with a call that fails. */
VORNAUX2_API DeviceCode Firmware_getUpgradeStatus(
    FirmwareHandle handle, FirmwareUpgradeStatus *status, bool wait);
/** Turns the computer off. */
VORNAUX2_API DeviceCode Firmware_shutDown(FirmwareHandle handle);

/* FrontLED: the front LED. */

/** Handle of the FrontLED family. */
typedef struct FrontLEDDevice *FrontLEDHandle;
/** A new handle, to be given back to FrontLED_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API FrontLEDHandle FrontLED_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void FrontLED_release(FrontLEDHandle handle);

/** Blink frequency in hertz, of which the program sets 0.2 to 30, and duty cycle in percent, 0 to
 *  100. */
VORNAUX2_API DeviceCode FrontLED_getSignal(
    FrontLEDHandle handle, double *hertz, uint8_t *dutyCycle);
/** Sets them. */
VORNAUX2_API DeviceCode FrontLED_setSignal(FrontLEDHandle handle, double hertz, uint8_t dutyCycle);
/** On time of a pulse, device units. */
VORNAUX2_API DeviceCode FrontLED_getOnTime(FrontLEDHandle handle, uint8_t *time);
/** Sets it. */
VORNAUX2_API DeviceCode FrontLED_setOnTime(FrontLEDHandle handle, uint8_t time);
/** Off time of a pulse, device units. */
VORNAUX2_API DeviceCode FrontLED_getOffTime(FrontLEDHandle handle, uint8_t *time);
/** Sets it. */
VORNAUX2_API DeviceCode FrontLED_setOffTime(FrontLEDHandle handle, uint8_t time);
/** Idle time between pulse trains, in hundreds of milliseconds. */
VORNAUX2_API DeviceCode FrontLED_getIdleTime(FrontLEDHandle handle, uint8_t *hundredMilliseconds);
/** Sets it. */
VORNAUX2_API DeviceCode FrontLED_setIdleTime(FrontLEDHandle handle, uint8_t hundredMilliseconds);
/** Number of pulses in a train. */
VORNAUX2_API DeviceCode FrontLED_getNrOfPulses(FrontLEDHandle handle, uint8_t *pulses);
/** Sets it. */
VORNAUX2_API DeviceCode FrontLED_setNrOfPulses(FrontLEDHandle handle, uint8_t pulses);
/** Colour, each component 0 to 15. */
VORNAUX2_API DeviceCode FrontLED_getColor(
    FrontLEDHandle handle, uint8_t *red, uint8_t *green, uint8_t *blue);
/** Sets it. */
VORNAUX2_API DeviceCode FrontLED_setColor(
    FrontLEDHandle handle, uint8_t red, uint8_t green, uint8_t blue);
/** Standard colour, LedColor. */
VORNAUX2_API DeviceCode FrontLED_getStandardColor(FrontLEDHandle handle, int32_t *color);
/** Sets it. */
VORNAUX2_API DeviceCode FrontLED_setStandardColor(FrontLEDHandle handle, int32_t color);
/** Whether the LED is on during start-up, stored, OnOffStatus. */
VORNAUX2_API DeviceCode FrontLED_getEnabledDuringStartup(FrontLEDHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode FrontLED_setEnabledDuringStartup(FrontLEDHandle handle, int32_t status);
/** Turns the LED off. */
VORNAUX2_API DeviceCode FrontLED_setOff(FrontLEDHandle handle);

/* LightSensor: the ambient light sensor. */

/** Handle of the LightSensor family. */
typedef struct LightSensorDevice *LightSensorHandle;
/** A new handle, to be given back to LightSensor_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API LightSensorHandle LightSensor_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void LightSensor_release(LightSensorHandle handle);

/** Illuminance in lux. */
VORNAUX2_API DeviceCode LightSensor_getIlluminance(LightSensorHandle handle, uint16_t *lux);
/** Operating range, LightRange. */
VORNAUX2_API DeviceCode LightSensor_getOperatingRange(LightSensorHandle handle, int32_t *range);
/** Sets it. */
VORNAUX2_API DeviceCode LightSensor_setOperatingRange(LightSensorHandle handle, int32_t range);
/** Starts the averaged measurement: windows in samples, delta in lux, SamplingMode. Code 20 while
 *  the automatic backlight runs. */
VORNAUX2_API DeviceCode LightSensor_startAverageCalc(LightSensorHandle handle,
    uint32_t averageWindowSize, uint32_t rejectWindowSize, uint32_t rejectDeltaLux,
    int32_t samplingMode);
/** Stops it. */
VORNAUX2_API DeviceCode LightSensor_stopAverageCalc(LightSensorHandle handle);

/* Telematics: the add-on board with its radios. */

/** Handle of the Telematics family. */
typedef struct TelematicsDevice *TelematicsHandle;
/** A new handle, to be given back to Telematics_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API TelematicsHandle Telematics_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Telematics_release(TelematicsHandle handle);

/** 1 when the add-on board is fitted. */
VORNAUX2_API DeviceCode Telematics_getAvailable(TelematicsHandle handle, int32_t *available);
/** Present power of the GSM/GPRS modem, OnOffStatus. */
VORNAUX2_API DeviceCode Telematics_getGPRSPowerStatus(TelematicsHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Telematics_setGPRSPowerStatus(TelematicsHandle handle, int32_t status);
/** Its power at start-up, stored, OnOffStatus. */
VORNAUX2_API DeviceCode Telematics_getGPRSStartUpPowerStatus(
    TelematicsHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Telematics_setGPRSStartUpPowerStatus(
    TelematicsHandle handle, int32_t status);
/** Present power of the WLAN, OnOffStatus. */
VORNAUX2_API DeviceCode Telematics_getWLANPowerStatus(TelematicsHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Telematics_setWLANPowerStatus(TelematicsHandle handle, int32_t status);
/** Its power at start-up, stored, OnOffStatus. */
VORNAUX2_API DeviceCode Telematics_getWLANStartUpPowerStatus(
    TelematicsHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Telematics_setWLANStartUpPowerStatus(
    TelematicsHandle handle, int32_t status);
/** Present power of the Bluetooth, OnOffStatus. */
VORNAUX2_API DeviceCode Telematics_getBTPowerStatus(TelematicsHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Telematics_setBTPowerStatus(TelematicsHandle handle, int32_t status);
/** Its power at start-up, stored, OnOffStatus. */
VORNAUX2_API DeviceCode Telematics_getBTStartUpPowerStatus(
    TelematicsHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Telematics_setBTStartUpPowerStatus(TelematicsHandle handle, int32_t status);
/** Present power of the GPS receiver, OnOffStatus. */
VORNAUX2_API DeviceCode Telematics_getGPSPowerStatus(TelematicsHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Telematics_setGPSPowerStatus(TelematicsHandle handle, int32_t status);
/** Its power at start-up, stored, OnOffStatus. */
VORNAUX2_API DeviceCode Telematics_getGPSStartUpPowerStatus(
    TelematicsHandle handle, int32_t *status);
/** Sets it. */
VORNAUX2_API DeviceCode Telematics_setGPSStartUpPowerStatus(
    TelematicsHandle handle, int32_t status);
/** State of the GPS antenna: 1 is good, every other value open or short. */
VORNAUX2_API DeviceCode Telematics_getGPSAntennaStatus(TelematicsHandle handle, int32_t *status);

/* Touch: the touch screen. */

/** Handle of the Touch family. */
typedef struct TouchDevice *TouchHandle;
/** A new handle, to be given back to Touch_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API TouchHandle Touch_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Touch_release(TouchHandle handle);

/** Profile of the touch screen, TouchMode. */
VORNAUX2_API DeviceCode Touch_getMode(TouchHandle handle, int32_t *mode);
/** Sets it. */
VORNAUX2_API DeviceCode Touch_setMode(TouchHandle handle, int32_t mode);
/** How long a touch lasts to be a right click, in milliseconds. */
VORNAUX2_API DeviceCode Touch_getMouseRightClickTime(TouchHandle handle, uint16_t *milliseconds);
/** Sets it. */
VORNAUX2_API DeviceCode Touch_setMouseRightClickTime(TouchHandle handle, uint16_t milliseconds);
/** One value of the touch controller by its TouchSetting number. */
VORNAUX2_API DeviceCode Touch_getAdvancedSetting(
    TouchHandle handle, int32_t number, uint16_t *value);
/** Writes one. */
VORNAUX2_API DeviceCode Touch_setAdvancedSetting(
    TouchHandle handle, int32_t number, uint16_t value);

/* Battery: the external battery. Temperatures in degrees C. The program passes 20 bytes for a
 * text. */

/** Handle of the Battery family. */
typedef struct BatteryDevice *BatteryHandle;
/** A new handle, to be given back to Battery_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API BatteryHandle Battery_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Battery_release(BatteryHandle handle);

/** Whether a battery is connected. */
VORNAUX2_API DeviceCode Battery_isAvailable(BatteryHandle handle, DeviceBool *available);
/** Charge level in percent, 0 to 100. */
VORNAUX2_API DeviceCode Battery_getVoltageLevel(BatteryHandle handle, uint8_t *percent);
/** BatteryChargingStatus. */
VORNAUX2_API DeviceCode Battery_getChargingStatus(BatteryHandle handle, int32_t *status);
/** BatteryPowerSource. */
VORNAUX2_API DeviceCode Battery_getPowerSource(BatteryHandle handle, int32_t *source);
/** Temperature of the battery. */
VORNAUX2_API DeviceCode Battery_getTemperature(BatteryHandle handle, int16_t *celsius);
/** Lowest and highest temperature seen. */
VORNAUX2_API DeviceCode Battery_getMinMaxTemp(
    BatteryHandle handle, int16_t *minimum, int16_t *maximum);
/** BatteryErrorStatus. */
VORNAUX2_API DeviceCode Battery_getHwErrorStatus(BatteryHandle handle, int32_t *status);
/** Run time counters. */
VORNAUX2_API DeviceCode Battery_getTimes(BatteryHandle handle, BatteryTimes *times);
/** Hardware version. */
VORNAUX2_API DeviceCode Battery_getHwVersion(BatteryHandle handle, char *buffer, uint32_t size);
/** Software version. */
VORNAUX2_API DeviceCode Battery_getSwVersion(
    BatteryHandle handle, uint16_t *major, uint16_t *minor, uint16_t *release, uint16_t *build);
/** Serial number. */
VORNAUX2_API DeviceCode Battery_getSerialNumber(BatteryHandle handle, char *buffer, uint32_t size);

/* Settings: a small store of named strings that outlives the program's runs. */

/** Handle of the Settings family. */
typedef struct SettingsDevice *SettingsHandle;
/** A new handle, to be given back to Settings_release. Its operations fail with a code when the
 *  device can't be reached. */
VORNAUX2_API SettingsHandle Settings_create(void);
/** Gives the handle back; it must not be used afterwards. */
VORNAUX2_API void Settings_release(SettingsHandle handle);

/** Value of a key, UTF-8 as it was written; the program passes 255 bytes. Fails without a value. */
VORNAUX2_API DeviceCode Settings_getString(
    SettingsHandle handle, const char *key, char *buffer, uint32_t size);
/** Writes the value of a key; the program writes UTF-8. */
VORNAUX2_API DeviceCode Settings_setString(
    SettingsHandle handle, const char *key, const char *value);

#ifdef __cplusplus
}
#endif

#endif
