#include "devicetools/trace/library/Device.h"

#include "devicetools/trace/library/RealLibrary.h"
#include "devicetools/trace/library/Recorder.h"
#include "devicetools/trace/library/Replayer.h"

#include <cstdlib>
#include <exception>
#include <iostream>

namespace trace {

void giveUp(const std::string &reason)
{
    std::cerr << "vorntrace: " << reason << std::endl;
    std::_Exit(127);
}

Device &device() noexcept
{
    static Device &only = []() -> Device & {
        try {
            const auto settings = Settings::fromEnvironment();
            if (settings.replayed.empty())
                return *new Recorder(settings);
            return *new Replayer(settings);
        } catch (const std::exception &error) {
            giveUp(error.what());
        }
    }();
    return only;
}

} // namespace trace
