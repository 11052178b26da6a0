#include "virtualunit/calls/Operation.h"
#include <algorithm>

using namespace virtualunit;

DiagnosticsHandle Diagnostics_create(void)
{
    return create<DiagnosticsDevice>(__func__);
}

void Diagnostics_release(DiagnosticsHandle handle)
{
    release(__func__, handle);
}

DeviceCode Diagnostics_getSSTemp(DiagnosticsHandle handle, int16_t *celsius)
{
    return get(__func__, handle, Out{"Diagnostics.ssTemp", celsius});
}

DeviceCode Diagnostics_getPCBTemp(DiagnosticsHandle handle, int16_t *celsius)
{
    return get(__func__, handle, Out{"Diagnostics.pcbTemp", celsius});
}

DeviceCode Diagnostics_getPMTemp(
    DiagnosticsHandle handle, uint8_t index, int16_t *celsius, int32_t *kind)
{
    return perform(__func__, handle, {index, celsius, kind}, Does::Read, [&](Unit &unit) {
        if (index >= unit.number("Diagnostics.pmSensorCount"))
            return NoSuchSensor;
        constexpr Key firstTemperature = "Diagnostics.pmTemp0";
        constexpr Key firstKind = "Diagnostics.pmKind0";
        // A module with more sensors than anybody wants to set one by one repeats the last.
        const std::size_t row = std::min<std::size_t>(index, 7);
        *celsius = int16_t(unit.number(firstTemperature + row));
        *kind = int32_t(unit.number(firstKind + row));
        return Ok;
    });
}

DeviceCode Diagnostics_getStartupReason(DiagnosticsHandle handle, uint16_t *reason)
{
    return get(__func__, handle, Out{"Diagnostics.startupReason", reason});
}

DeviceCode Diagnostics_getShutDownReason(DiagnosticsHandle handle, uint16_t *reason)
{
    return get(__func__, handle, Out{"Diagnostics.shutDownReason", reason});
}

DeviceCode Diagnostics_getHwErrorStatus(DiagnosticsHandle handle, uint16_t *status)
{
    return get(__func__, handle, Out{"Diagnostics.hwErrorStatus", status});
}

DeviceCode Diagnostics_getTimers(DiagnosticsHandle handle, DiagnosticTimes *times)
{
    return perform(__func__, handle, {times}, Does::Read, [&](Unit &unit) {
        const Code code = unit.missing("Diagnostics.totalRunTime");
        if (code != Ok)
            return code;
        const auto minutes = [&](Key key) { return uint32_t(unit.number(key)); };
        times->totalRunTime = minutes("Diagnostics.totalRunTime");
        times->totalSuspendTime = minutes("Diagnostics.totalSuspendTime");
        times->totalHeatTime = minutes("Diagnostics.totalHeatTime");
        times->runTime40To60 = minutes("Diagnostics.runTime40To60");
        times->runTime60To70 = minutes("Diagnostics.runTime60To70");
        times->runTime70To80 = minutes("Diagnostics.runTime70To80");
        times->runTimeAbove80 = minutes("Diagnostics.runTimeAbove80");
        return Ok;
    });
}

DeviceCode Diagnostics_getMinMaxTemp(DiagnosticsHandle handle, int16_t *minimum, int16_t *maximum)
{
    return get(
        __func__, handle, Out{"Diagnostics.minTemp", minimum}, Out{"Diagnostics.maxTemp", maximum});
}

DeviceCode Diagnostics_getPowerCycles(DiagnosticsHandle handle, uint16_t *cycles)
{
    return get(__func__, handle, Out{"Diagnostics.powerCycles", cycles});
}
