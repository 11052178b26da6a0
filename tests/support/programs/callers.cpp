// callers THREADS CALLS [crash]: calls the device library on so many threads at once, so often
// each, and then ends, with "crash" by a signal while the threads still call.
#include "frame/DeviceHandle.h"
#include "frame/VornAux2.h"

#include <atomic>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

std::atomic<int> failures{0};

void call(unsigned long thread, unsigned long calls)
{
    const DeviceHandle<Settings_create, Settings_release> settings;
    const auto key = "thread " + std::to_string(thread);
    for (unsigned long number = 0; number < calls; ++number) {
        char text[64] = {};
        if (Settings_getString(settings, key.c_str(), text, sizeof text) == DEVICE_OK)
            ++failures;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 3)
        return 2;
    const bool crashes = argc > 3 && std::string_view(argv[3]) == "crash";
    const auto calls = std::strtoul(argv[2], nullptr, 10);
    std::vector<std::thread> threads;
    for (unsigned long number = std::strtoul(argv[1], nullptr, 10); number > 0; --number)
        threads.emplace_back(call, number, crashes ? ~0UL : calls);
    if (crashes) {
        const DeviceHandle<Settings_create, Settings_release> settings;
        for (unsigned long number = 0; number < calls; ++number)
            Settings_setString(settings, "", "");
        std::abort();
    }
    for (auto &thread : threads)
        thread.join();
    return failures == 0 ? 0 : 1;
}
