#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Sensors.h"
#include "linuxunit/store/Counters.h"

#include <algorithm>

using namespace linuxunit;

DeviceCode Diagnostics_getSSTemp(DiagnosticsHandle handle, int16_t *celsius)
{
    return perform(handle, {celsius}, [&](Thermometers &all) { *celsius = all.supervisor(); });
}

DeviceCode Diagnostics_getPCBTemp(DiagnosticsHandle handle, int16_t *celsius)
{
    return perform(handle, {celsius}, [&](Thermometers &all) { *celsius = all.board(); });
}

DeviceCode Diagnostics_getPMTemp(
    DiagnosticsHandle handle, uint8_t index, int16_t *celsius, int32_t *kind)
{
    return perform(handle, {celsius, kind}, [&](Thermometers &all) {
        const auto reading = all.processor(index);
        *celsius = reading.celsius;
        *kind = reading.kind;
    });
}

DeviceCode Diagnostics_getTimers(DiagnosticsHandle handle, DiagnosticTimes *times)
{
    return perform(handle, {times}, [&](Thermometers & /*unused*/) {
        const auto counted = Counters::read();
        constexpr std::uint32_t withoutHeater = 0;
        *times = {wholeMinutes(counted.running), wholeMinutes(counted.suspended), withoutHeater,
            wholeMinutes(counted.at40To60), wholeMinutes(counted.at60To70),
            wholeMinutes(counted.at70To80), wholeMinutes(counted.above80)};
    });
}

DeviceCode Diagnostics_getMinMaxTemp(DiagnosticsHandle handle, int16_t *minimum, int16_t *maximum)
{
    return perform(handle, {minimum, maximum}, [&](Thermometers & /*unused*/) {
        const auto counted = Counters::read();
        if (!counted.coldest || !counted.hottest)
            throw Failure{NotAvailable, {}};
        const auto coldest = wholeDegrees(*counted.coldest);
        const auto hottest = wholeDegrees(*counted.hottest);
        *minimum = coldest;
        *maximum = hottest;
    });
}

DeviceCode Diagnostics_getPowerCycles(DiagnosticsHandle handle, uint16_t *cycles)
{
    return perform(handle, {cycles}, [&](Thermometers & /*unused*/) {
        *cycles = std::uint16_t(std::min<std::int64_t>(Counters::read().powerCycles, UINT16_MAX));
    });
}

/* Linux tells of no start-up reason and no hardware error word; the operations that would give one
 * answer 2. Their texts must be there all the same. */

const char *Diagnostics_startupReasonText(uint16_t /*reason*/)
{
    return "Unknown start-up reason";
}

const char *Diagnostics_hwErrorText(uint16_t status)
{
    return status == 0 ? "No error" : "Unknown hardware error";
}
