#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

class QFile;

/** The operating system, in the words of the program. */
namespace platform {

/**
 * Makes sure that the standard streams are open, and that neither a reader who goes away nor a
 * limit on the size of files ends anything: writing fails then, as on a full disk. Comes first in
 * main(): else the next file that is opened gets the number of a closed stream, and a message would
 * be written into a report or into the unit's memory. Windows: the system's own boxes about
 * libraries and disks, for which nobody may be there, don't come up either.
 */
void ensureStandardStreams();

/** The path that stands at that place, which must exist, of main()'s arguments. Linux: the very
 *  bytes, whether they are text or not. Windows: all that the command line can hold. */
std::filesystem::path fileArgument(int index, const char *const *arguments);

/** Opens the file of that very name for writing and empties it, or makes it. QFile's own names are
 *  text, which on Linux not every name is. False if it can't be opened. */
bool openForWriting(QFile &file, const std::filesystem::path &path);

/** Writes one line to the standard error stream, in the encoding of the user's terminal. Failures
 *  are ignored, there being nowhere left to tell them. Windows: without such a stream it goes to
 *  the console that the program was started from. */
void printErrorLine(const QString &line);

/** Shows a plain box with an OK button and waits until it is closed. Linux: in a run without
 *  windows it becomes an error line, and nothing waits. Main thread only. */
void showBlockingMessage(const QString &title, const QString &text);

/** Stands still for that many milliseconds, signals or not; no events are handled meanwhile. */
void pause(int milliseconds);

/** What the program wants to know of the computer's BIOS data. */
enum class BiosValue {
    BaseBoardProduct, ///< name of the CPU board
    SystemBiosVersion ///< version of the BIOS, first text if there are several
};

/**
 * A text of the BIOS data, nothing if there is none or if it is longer than 126 characters.
 *
 * Linux: the files board_name and bios_version of /sys/class/dmi/id, or of the folder that the
 * environment variable VORN_DMI_DIR names. The files are Latin-1; one line end at the end is not
 * part of the value. Windows: the registry's values of these names, of any type; those that are
 * stored without an ending zero may have 127 characters.
 */
std::optional<std::u16string> biosText(BiosValue value);

/** "Thu Jan  1 01:00:00 1970\n" for seconds since 1970, in local time and always in English. Where
 *  the system can't represent the time only the line feed is left. Main thread only. */
std::string timeStampLine(std::int64_t secondsSince1970);

/** Log file of the hardware service, in /var/log or on Windows in C:\, or else in the folder that
 *  the environment variable VORN_LOG_DIR names. */
std::filesystem::path hardwareErrorLog();

/** Log file of the device library, in the program's folder. */
std::filesystem::path deviceServiceLog();

/** Folders of the removable drives that are plugged in and mounted now, sorted. Linux: those below
 *  /media and /run/media. Windows: none, since its own dialogs offer the drives. */
QStringList removableDrives();

/** Whether a removable drive would have that folder, plugged in or not. */
bool isRemovableDrivePath(const QString &path);

/**
 * A library that is loaded at run time, for as long as this object lives.
 *
 * It is named as on Windows. Linux: "jida.dll" is libjida.so, looked for in the program's folder,
 * in the folder of the loaded device library and where the system looks for libraries. Windows
 * looks in its own order, which begins with the program's folder.
 */
class DynamicLibrary
{
public:
    explicit DynamicLibrary(const char *windowsName);
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary &) = delete;
    DynamicLibrary &operator=(const DynamicLibrary &) = delete;

    bool isLoaded() const { return handle != nullptr; }

    /** A procedure of any type, to be cast to its own; null if the library has none of that name.
     */
    using Procedure = void (*)();
    Procedure procedure(const char *name) const;

private:
    void *handle = nullptr;
};

} // namespace platform
