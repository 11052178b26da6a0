#include "linuxunit/devices/brightness.h"

#include "linuxunit/bus/Bus.h"
#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/files.h"

namespace linuxunit {

void writeBrightness(const std::string &subsystem, const std::string &name, std::int64_t level)
{
    const auto path = std::string("/sys/class/").append(subsystem).append("/").append(name);
    try {
        writeText(path + "/brightness", std::to_string(level), rulesRemedy);
    } catch (const Failure &refusal) {
        if (refusal.kind != NoPermission)
            throw;
        try {
            orderOnBus({"org.freedesktop.login1", "/org/freedesktop/login1/session/auto",
                "org.freedesktop.login1.Session", "SetBrightness",
                {subsystem, name, std::uint32_t(level)}});
            forgetReading(path + "/brightness");
        } catch (const Failure &failure) {
            if (failure.kind == DaemonSilent)
                throw;
            throw Failure(refusal); // what can be done about the file helps more
        }
    }
}

} // namespace linuxunit
