#pragma once

#include <string_view>

namespace support {

/** What a file of the kernel does in the place of telling what it holds. */
enum class FileFault : unsigned char {
    None,
    Gone,     ///< no such file or folder
    NoRights, ///< neither to read nor to write
    ReadOnly, ///< as on a system that is mounted so
    Failing,  ///< EIO at each reading and writing
    Busy,     ///< EAGAIN likewise
    Empty,    ///< 0 bytes, and takes none
    Nonsense, ///< holds no number, nor a name that means something
    Slow,     ///< tells after longer than anybody waits
};

/** What a file of `Nonsense` holds. */
inline constexpr std::string_view nonsense = "soup 0x1f\n";

/** The fault of a file or folder now, by its path on the machine, as "/sys/class/hwmon". Called
 *  from any thread. */
using FaultOf = FileFault (*)(std::string_view path);

/**
 * Spoils what this program and its libraries read and write by the system's functions, of /sys,
 * /etc, the device tree and nodes in a bed; the bed's own files stay as they are. Nodes that the
 * bed hasn't got don't exist, whatever this machine has. Tone devices of the bed tell what they
 * were sent, as the kernel's do and files don't. For programs alone that export their symbols and
 * are linked with its source.
 * @param fault null for no faults
 */
void setFileFaults(FaultOf fault);

} // namespace support
