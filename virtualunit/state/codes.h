#pragma once

#include "frame/VornAux2.h"

#include <string>

namespace virtualunit {

/** Every result code of this library; the texts are in texts.cpp. The numbers are for good. */
enum Code : DeviceCode {
    Ok = DEVICE_OK,
    GeneralFault = 1,                         ///< whatever has no code of its own
    NotSupported = DEVICE_NOT_SUPPORTED,      ///< the unit has no such feature
    InvalidHandle = 3,                        ///< null, released or of another family
    MissingArgument = 4,                      ///< a null pointer, or a buffer of no size
    ValueOutOfRange = 5,                      ///< a value that the device can't take
    NoSuchChannel = 6,                        ///< a channel or setting number that doesn't exist
    NoSuchSensor = 7,                         ///< an index past the last sensor
    StateUnavailable = 8,                     ///< the unit's file can't be opened or created
    StateDamaged = 9,                         ///< the unit's file is damaged
    StateForeign = 10,                        ///< the file is no virtual unit's
    StateBusy = 11,                           ///< another process kept the file locked too long
    StateNotWritten = 12,                     ///< the file can't be written: no space or no rights
    Timeout = 13,                             ///< the controller didn't answer in time
    CommunicationFault = 14,                  ///< the controller's answer was garbled
    DeviceBusy = 15,                          ///< the controller does something else
    FileNotFound = 16,                        ///< firmware: no such file
    FileUnreadable = 17,                      ///< firmware: the file can't be read
    NotAvailable = DEVICE_DATA_NOT_AVAILABLE, ///< the datum can't be had at present
    FileMalformed = 19,                       ///< firmware: no Intel HEX file
    AutomaticBacklight = DEVICE_AUTOMATIC_BACKLIGHT_RUNS, ///< refused while it runs
    FileChecksum = 21,       ///< firmware: a record's checksum is wrong
    FileTooLarge = 22,       ///< firmware: the image doesn't fit
    VerificationFailed = 23, ///< firmware: the file differs from the stored image
    NoJob = 24,              ///< firmware: no job was started on this handle
    JobRunning = 25,         ///< firmware: a job is under way
    UnknownKey = 26,         ///< no string is stored under this key
    HardwareFault = 27,      ///< the hardware reports a fault
    AccessDenied = 28,       ///< the caller may not do this
    FileWrongType = 29,      ///< firmware: an image for another controller
    NoImage = 30,            ///< firmware: nothing stored to compare with
};

/** Thrown inside the library only: a code for the contract's caller and a sentence for people. */
struct Failure {
    Code code;
    std::string text;
};

} // namespace virtualunit
