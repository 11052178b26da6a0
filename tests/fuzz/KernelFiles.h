#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

/** The files by which a kernel tells of a machine, below a temporary folder that VORNAUX_ROOT
 * names. A machine in good order, of which an input spoils some. One thread. */
namespace kernelfiles {

/** What is asked of the unit when one of their files has changed. */
enum class Room { Identity, Backlight, Light, Sensors, Battery, Led, Radio, Settings };

enum File : unsigned {
    // Identity
    BoardSerial,
    BoardName,
    BoardVersion,
    ProductSerial,
    ProductSku,
    ControllerRelease,
    TreeSerial,
    TreeModel,
    OsRelease,
    KernelRelease,
    EthernetType,
    EthernetUevent,
    CanType,
    SerialType,
    DisplayStatus,
    InputProperties,
    InputKeys,
    InputAxes,
    InputTones,
    InputDev,
    InputUdev,
    // Backlight
    BacklightType,
    MaxBrightness,
    Brightness,
    ActualBrightness,
    BlPower,
    // Light
    LightName,
    LightRaw,
    LightScale,
    LightOffset,
    LightScales,
    // Sensors
    CoreChip,
    CoreTemperature,
    CoreLabel,
    BoardChip,
    BoardTemperature,
    BoardFault,
    BoardVoltage,
    BoardVoltageLabel,
    ZoneType,
    ZoneTemperature,
    AdcName,
    AdcRaw,
    AdcScale,
    // Battery
    BatteryType,
    BatteryScope,
    BatteryPresent,
    BatteryStatus,
    BatteryHealth,
    Capacity,
    ChargeNow,
    ChargeFull,
    BatteryTemperature,
    BatterySerial,
    BatteryModel,
    ChargerType,
    ChargerOnline,
    // Led
    LedIndex,
    LedIntensities,
    LedLevel,
    LedTop,
    LedTrigger,
    // Radio
    RadioType,
    RadioName,
    RadioSoft,
    RadioHard,
    // Settings
    StartTrigger,
    StartVoltage,
    ButtonTime,
    RegulatorName,
    RegulatorState,
    FileCount
};

/**
 * Lays the machine out with what the bytes say of it: records that end with the byte 1E, each the
 * letter of a file, '!' for the first one, and the file's bytes. A single byte 7F is for a file
 * that isn't there.
 * @return what the records are about; all of it if there is none
 */
std::set<Room> lay(std::string_view bytes);

/** All bytes of a file as it was laid; nothing if it isn't there. */
const std::optional<std::string> &text(File file);
/** Its first line without blanks around, as an attribute of the kernel is read. */
std::optional<std::string> line(File file);
/** The number that the line is; nothing if it is none, and of a real one too if it is none that
 *  can be written. */
std::optional<std::int64_t> whole(File file);
std::optional<double> real(File file);
/** The line of a machine in good order. */
std::string sane(File file);

} // namespace kernelfiles
