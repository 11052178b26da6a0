#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Sensors.h"

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
