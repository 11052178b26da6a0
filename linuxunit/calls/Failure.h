#pragma once

#include "frame/VornAux2.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace linuxunit {

/**
 * What the library answers. 0, 2, 18 and 20 are the contract's own. Kinds from 100 on have a
 * subject, a file say, that the text names: see codeOf().
 */
enum Kind : DeviceCode {
    Ok = DEVICE_OK,
    GeneralFault = 1,                    ///< whatever has no kind of its own, such as no memory
    NotSupported = DEVICE_NOT_SUPPORTED, ///< the machine hasn't got it
    InvalidHandle = 3,                   ///< null, released or of another family
    MissingArgument = 4,                 ///< a null pointer, or a buffer of no size
    ValueOutOfRange = 5,                 ///< a value that the contract doesn't know
    NoSuchChannel = 6,                   ///< a channel or setting number that doesn't exist
    NoSuchSensor = 7,                    ///< an index past the last sensor
    NotAvailable = DEVICE_DATA_NOT_AVAILABLE, ///< it can't be read right now
    AutomaticBacklight = DEVICE_AUTOMATIC_BACKLIGHT_RUNS,
    NoJob = 24,      ///< firmware: no job was started on this handle
    JobRunning = 25, ///< firmware: a job is under way
    UnknownKey = 26, ///< no string is stored under this key

    NoPermission = 101,       ///< the system refuses this user
    ReadFailed = 102,         ///< a file is there and gives an error
    WriteFailed = 103,        ///< likewise
    UnexpectedContent = 104,  ///< a file or daemon says what nobody understands
    ConfigurationWrong = 105, ///< unit.json, with line and reason
    StoreFailed = 106,        ///< the library's own database
    InUse = 107,              ///< another program holds it
    DaemonSilent = 108,       ///< no answer over D-Bus
    DaemonRefused = 109,      ///< an error over D-Bus
};

/** Thrown inside the library alone, where a call of the contract can't be answered. It becomes the
 *  call's code at its end; nothing leaves the library as an exception. */
struct Failure {
    Kind kind;
    std::string sentence; ///< Latin-1, says what and why; kinds below 100 need none
};

/**
 * The code for a failure: its kind, or 1000 times a number above it, where the number tells the
 * sentences of this process apart. So the last three digits are the kind on every machine, and
 * deviceErrorText() of the code gives the sentence for as long as the process lives. Once there are
 * 9,999 sentences further ones have the kind alone. Any thread.
 */
DeviceCode codeOf(const Failure &failure);

/** Constant text of a code, never null. Any thread. */
const char *errorText(DeviceCode code);

/** What an error number means, never translated: "Input/output error". */
std::string errnoText(int number);

/** For a sentence: the beginning of what a file or service says, "?" for what can't be shown. */
std::string printable(std::string_view text);
/** Likewise a number to the nearest whole one, or as it is where that has too many digits. */
std::string roundedText(double number);

/** A failed call on a file as what the contract makes of it: 18 for EAGAIN, ENODATA and what else
 *  says "not now", for a device that went while it was asked too; the rest with path and reason.
 *  EINVAL is a moment's of a reading, and of a writing the value's. */
Failure readFailure(const std::string &path, int number);
/** @param remedy what the user can do about missing rights: "add yourself to group video" */
Failure writeFailure(const std::string &path, int number, const std::string &remedy);

} // namespace linuxunit
