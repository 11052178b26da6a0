#include "tests/support/pauses/pauses.h"

#include <cerrno>
#include <ctime>

namespace support {

std::function<void(long milliseconds)> notePause;

} // namespace support

/** Takes the place of the C library's for a whole test program. */
extern "C" int nanosleep(const timespec *duration, timespec *remaining)
{
    if (!support::notePause) {
        errno = clock_nanosleep(CLOCK_REALTIME, 0, duration, remaining);
        return errno == 0 ? 0 : -1;
    }
    support::notePause(duration->tv_sec * 1000 + duration->tv_nsec / 1'000'000);
    return 0;
}
