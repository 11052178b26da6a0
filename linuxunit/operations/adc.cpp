#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Sensors.h"

using namespace linuxunit;

namespace {

struct Rails {
};

} // namespace

DeviceCode Adc_getVoltage(AdcHandle handle, uint32_t channel, double *volts)
{
    return perform(handle, {volts}, [&](Rails &) { *volts = railVoltage(channel); });
}
