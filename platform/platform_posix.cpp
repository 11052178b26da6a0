#include "platform/platform.h"

#include <chrono>
#include <thread>

namespace platform {

void pause(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace platform
