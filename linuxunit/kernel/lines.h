#pragma once

#include <string>

/** Lines of GPIO chips, by libgpiod. They are held no longer than a call, so that several processes
 *  may use the same ones; drivers keep what was written. Failures are thrown: 18 for a line that
 *  isn't there, InUse with the name of who holds it. Any thread. */
namespace linuxunit {

struct LineName {
    std::string name; ///< of the line, or its number on the chip
    std::string chip; ///< name or label; any if empty
    bool isActiveLow = false;
};

bool readLine(const LineName &name);
void writeLine(const LineName &name, bool isActive);

} // namespace linuxunit
