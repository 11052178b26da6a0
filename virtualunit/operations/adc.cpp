#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

AdcHandle Adc_create(void)
{
    return create<AdcDevice>(__func__);
}

void Adc_release(AdcHandle handle)
{
    release(__func__, handle);
}

DeviceCode Adc_getVoltage(AdcHandle handle, uint32_t channel, double *volts)
{
    return perform(__func__, handle, {channel, volts}, Does::Read, [&](Unit &unit) {
        // Channel 1 doesn't exist, and so has no row.
        if (channel == 1 || channel > 23)
            return NoSuchChannel;
        constexpr Key first = "Adc.voltage0";
        const Key rail = first + (channel == 0 ? 0 : channel - 1);
        const Code code = unit.missing(rail);
        if (code == Ok)
            *volts = unit.number(rail);
        return code;
    });
}
