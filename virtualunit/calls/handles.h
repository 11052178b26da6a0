#pragma once

#include "frame/VornAux2.h"

#include <memory>

namespace virtualunit {

enum class Family {
    Hardware,
    Adc,
    Versions,
    Backlight,
    Buzzer,
    Can,
    Config,
    Power,
    Diagnostics,
    Smart,
    DigIO,
    Firmware,
    FrontLED,
    LightSensor,
    Telematics,
    Touch,
    Battery,
    Settings
};

template <typename Device>
inline constexpr Family familyOf = Device::unknown;
template <>
inline constexpr Family familyOf<HardwareDevice> = Family::Hardware;
template <>
inline constexpr Family familyOf<AdcDevice> = Family::Adc;
template <>
inline constexpr Family familyOf<VersionsDevice> = Family::Versions;
template <>
inline constexpr Family familyOf<BacklightDevice> = Family::Backlight;
template <>
inline constexpr Family familyOf<BuzzerDevice> = Family::Buzzer;
template <>
inline constexpr Family familyOf<CanDevice> = Family::Can;
template <>
inline constexpr Family familyOf<ConfigDevice> = Family::Config;
template <>
inline constexpr Family familyOf<PowerDevice> = Family::Power;
template <>
inline constexpr Family familyOf<DiagnosticsDevice> = Family::Diagnostics;
template <>
inline constexpr Family familyOf<SmartDevice> = Family::Smart;
template <>
inline constexpr Family familyOf<DigIODevice> = Family::DigIO;
template <>
inline constexpr Family familyOf<FirmwareDevice> = Family::Firmware;
template <>
inline constexpr Family familyOf<FrontLEDDevice> = Family::FrontLED;
template <>
inline constexpr Family familyOf<LightSensorDevice> = Family::LightSensor;
template <>
inline constexpr Family familyOf<TelematicsDevice> = Family::Telematics;
template <>
inline constexpr Family familyOf<TouchDevice> = Family::Touch;
template <>
inline constexpr Family familyOf<BatteryDevice> = Family::Battery;
template <>
inline constexpr Family familyOf<SettingsDevice> = Family::Settings;

/** A new handle. Its address is never given out again, so that a released one is known for good.
 *  Null only when there is no memory. */
void *createHandle(const char *operation, Family family) noexcept;
/** Harmless with whatever is no handle of that family. */
void releaseHandle(const char *operation, Family family, const void *handle) noexcept;
bool isHandle(Family family, const void *handle);
/** Number of the handle in the journal, 0 for what is no handle of that family. */
unsigned handleNumber(Family family, const void *handle);

/** Place for what an operation keeps with its handle; gone when the handle is released and nobody
 *  uses it any more. Null for what is no handle. A handle belongs to one thread at a time, and so
 *  does what is kept with it. */
std::shared_ptr<void> kept(Family family, const void *handle);
void keep(Family family, const void *handle, std::shared_ptr<void> object);

} // namespace virtualunit
