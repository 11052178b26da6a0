#pragma once

#include <functional>

namespace support {

/** While it is set, the pauses of the program, in milliseconds, are noted here instead of being
 *  waited for. Only in test programs that are linked with the file of the system. */
extern std::function<void(long milliseconds)> notePause;

} // namespace support
