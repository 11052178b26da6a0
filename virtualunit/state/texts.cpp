#include "virtualunit/state/texts.h"

#include "virtualunit/state/codes.h"

#include <iterator>
#include <map>
#include <mutex>
#include <string>

namespace virtualunit {

namespace {

/** Bit 0 first. Bits beyond the table are faults too, of a kind that this unit doesn't name. */
constexpr const char *hardwareFaults[] = {
    "RTC battery low",
    "Main board temperature sensor",
    "Processor module temperature sensor",
    "Input voltage out of range",
    "5V supply",
    "3.3V supply",
    "12V supply",
    "Video supply",
    "Fan",
    "Heater",
    "Light sensor",
    "Backlight",
    "Front controller",
    "FPGA configuration",
};

std::string describeFaults(std::uint16_t status)
{
    std::string text;
    for (unsigned bit = 0; bit < 16; ++bit) {
        if (!(status & (1U << bit)))
            continue;
        if (!text.empty())
            text += ", ";
        text += bit < std::size(hardwareFaults) ? std::string(hardwareFaults[bit])
                                                : "Unknown fault " + std::to_string(bit);
    }
    return text;
}

} // namespace

const char *errorText(std::int32_t code)
{
    switch (code) {
    case -1:
        return "Unspecified error";
    case Ok:
        return "No error";
    case GeneralFault:
        return "General error";
    case NotSupported:
        return "Not supported by this unit or its firmware";
    case InvalidHandle:
        return "Invalid handle";
    case MissingArgument:
        return "Missing argument";
    case ValueOutOfRange:
        return "Value out of range";
    case NoSuchChannel:
        return "No such channel or setting";
    case NoSuchSensor:
        return "No such sensor";
    case StateUnavailable:
        return "The state file of the unit can't be opened";
    case StateDamaged:
        return "The state file of the unit is damaged";
    case StateForeign:
        return "The state file is not that of a virtual unit";
    case StateBusy:
        return "The state file of the unit is locked by another process";
    case StateNotWritten:
        return "The state file of the unit can't be written";
    case Timeout:
        return "Timeout while waiting for the controller";
    case CommunicationFault:
        return "Communication error";
    case DeviceBusy:
        return "The device is busy";
    case FileNotFound:
        return "The firmware file does not exist";
    case FileUnreadable:
        return "The firmware file can't be read";
    case NotAvailable:
        return "Data not available";
    case FileMalformed:
        return "The firmware file is not a complete Intel HEX file";
    case AutomaticBacklight:
        return "Refused while the automatic backlight is running";
    case FileChecksum:
        return "Wrong checksum in the firmware file";
    case FileTooLarge:
        return "The firmware file is too large for the controller";
    case VerificationFailed:
        return "The firmware in the controller differs from the file";
    case NoJob:
        return "No firmware job was started";
    case JobRunning:
        return "A firmware job is already running";
    case UnknownKey:
        return "No such key";
    case HardwareFault:
        return "Hardware fault";
    case AccessDenied:
        return "Access denied";
    case FileWrongType:
        return "The firmware file is for another controller";
    case NoImage:
        return "The unit holds no image to compare with";
    default:
        return "Unknown error";
    }
}

const char *startupReasonText(std::uint16_t reason)
{
    switch (reason) {
    case 1:
        return "Front button";
    case 2:
        return "OnOff signal";
    case 3:
        return "Power applied";
    case 4:
        return "Restart by the operating system";
    case 5:
        return "Resume from suspend by front button";
    case 6:
        return "Resume from suspend by OnOff signal";
    case 7:
        return "RTC alarm";
    case 8:
        return "Watchdog";
    case 9:
        return "Restart after overtemperature";
    default:
        return "Unknown startup reason";
    }
}

const char *hardwareErrorText(std::uint16_t status)
{
    if (status == 0)
        return "No error";
    // Callers keep the pointer for as long as they like, so a text once given out stays: the map
    // is never destroyed, not even at exit, and its nodes do not move.
    static std::mutex mutex;
    static auto &texts = *new std::map<std::uint16_t, std::string>;
    const std::lock_guard lock(mutex);
    auto &text = texts[status];
    if (text.empty())
        text = describeFaults(status);
    return text.c_str();
}

} // namespace virtualunit
