#include "tests/support/pauses/pauses.h"

#include <windows.h>

namespace support {

std::function<void(long milliseconds)> notePause;

namespace {

void WINAPI sleepOrNote(DWORD milliseconds)
{
    if (notePause)
        notePause(static_cast<long>(milliseconds));
    else
        SleepEx(milliseconds, FALSE);
}

} // namespace

} // namespace support

/** Takes the place of the pointer by which all of a test program finds the system's own. */
extern "C" {
extern decltype(&Sleep) importedSleep __asm__("__imp_Sleep");
decltype(&Sleep) importedSleep = support::sleepOrNote;
}
