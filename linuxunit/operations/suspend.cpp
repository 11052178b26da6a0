#include "linuxunit/bus/Bus.h"
#include "linuxunit/calls/perform.h"

#include <nlohmann/json.hpp>

using namespace linuxunit;

namespace {

/** Nothing is kept. */
struct Suspend {
};

/** Throws 2 for a machine that can't suspend. */
void requireSuspend()
{
    const auto answer = readFromBus({"org.freedesktop.login1", "/org/freedesktop/login1",
        "org.freedesktop.login1.Manager", "CanSuspend", {}});
    if (!answer.is_string())
        throw Failure{
            UnexpectedContent, "org.freedesktop.login1 doesn't say whether it can suspend"};
    if (answer == "na")
        throw Failure{NotSupported, {}};
}

} // namespace

/* A suspended computer stays so until somebody wakes it: there is no limit, and none can be set. */

DeviceCode Config_getSuspendMaxTime(ConfigHandle handle, uint16_t *minutes)
{
    return perform(handle, {minutes}, [&](Suspend & /*unused*/) {
        requireSuspend();
        *minutes = 0;
    });
}

DeviceCode Config_setSuspendMaxTime(ConfigHandle handle, uint16_t minutes)
{
    return perform(handle, {}, [&](Suspend & /*unused*/) {
        requireSuspend();
        if (minutes != 0)
            throw Failure{
                DaemonRefused, "org.freedesktop.login1 knows no limit of the time in suspend"};
    });
}
