#include "tests/support/SkippedPauses.h"

#include <thread>
#include <utility>

// The linker leads all calls of platform::pause() here; tests/CMakeLists.txt tells it to.
extern "C" {
void lastingPause(int milliseconds) __asm__("__real__ZN8platform5pauseEi");
void programPause(int milliseconds) __asm__("__wrap__ZN8platform5pauseEi");
}

namespace {

thread_local bool skipping = false;
thread_local std::vector<int> skipped;
thread_local std::function<void(int milliseconds)> noteOf;

} // namespace

void programPause(int milliseconds)
{
    if (!skipping)
        return lastingPause(milliseconds);
    skipped.push_back(milliseconds);
    if (noteOf)
        noteOf(milliseconds);
    // A loop of pauses waits for another thread.
    std::this_thread::yield();
}

namespace support {

SkippedPauses::SkippedPauses(std::function<void(int milliseconds)> note)
{
    skipping = true;
    noteOf = std::move(note);
}

SkippedPauses::~SkippedPauses()
{
    skipping = false;
    skipped.clear();
    noteOf = nullptr;
}

std::vector<int> SkippedPauses::take()
{
    return std::exchange(skipped, {});
}

} // namespace support
