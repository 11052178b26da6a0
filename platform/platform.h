#pragma once

/** The operating system, in the words of the program. */
namespace platform {

/** Stands still for that many milliseconds; no events are handled meanwhile. */
void pause(int milliseconds);

} // namespace platform
