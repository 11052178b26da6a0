#pragma once

#include <cstdint>

namespace virtualunit {

/**
 * What the operations of the virtual unit answer. 0, 2, 18 and 20 mean to the program what
 * DeviceCodeValue says, all others are faults to it; errorText() has a sentence for each.
 */
enum ErrorCode : std::int32_t {
    Unspecified = -1,            ///< a fault that nothing more is known about
    Success = 0,                 ///< done
    InternalError = 1,           ///< the library itself failed
    NotSupported = 2,            ///< the unit or its firmware has no such feature
    InvalidHandle = 3,           ///< null, released, or of another family
    NullArgument = 4,            ///< an out argument or a text is a null pointer
    NoAnswer = 5,                ///< the controller behind the operation does not answer
    Timeout = 6,                 ///< it began to answer, too slowly
    Busy = 7,                    ///< it has other work at present
    OutOfRange = 8,              ///< a value that the device can't take
    NoSuchChannel = 9,           ///< a channel, rail, sensor or setting number that isn't there
    NoSuchKey = 10,              ///< nothing is stored under that key
    TextTooLong = 11,            ///< a key or value longer than the store takes
    TransferDamaged = 12,        ///< the checksum of an answer on the internal bus is wrong
    StateNotOpened = 13,         ///< the state file can't be opened or made
    StateDamaged = 14,           ///< the state file is no SQLite file, or a damaged one
    StateForeign = 15,           ///< a sound SQLite file, but no unit of this version
    StateNotWritten = 16,        ///< the state file is read-only, or the disk is full
    StateLocked = 17,            ///< another process holds the state file for too long
    DataNotAvailable = 18,       ///< the datum can't be had at present
    PowerOff = 19,               ///< the part that would answer has no power
    AutomaticBacklight = 20,     ///< refused while the automatic backlight runs
    NoFirmwareJob = 21,          ///< progress was asked for, but no job was started on the handle
    FirmwareFileMissing = 22,    ///< no file of that name
    FirmwareFileUnreadable = 23, ///< a folder, a file without read permission, a failing disk
    FirmwareFileMalformed = 24,  ///< not Intel HEX, or incomplete
    FirmwareFileChecksum = 25,   ///< a record whose checksum is wrong
    FirmwareFileTooLarge = 26,   ///< file or addresses exceed the memory of the controller
    FirmwareFileEmpty = 27,      ///< a sound file without one data byte
    FirmwareDiffers = 28,        ///< verification: the controller holds another image
    HardwareFault = 29,          ///< the part reports a fault of its own
};

} // namespace virtualunit
