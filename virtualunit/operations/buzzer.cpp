#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

BuzzerHandle Buzzer_create(void)
{
    return create<BuzzerDevice>(__func__);
}

void Buzzer_release(BuzzerHandle handle)
{
    release(__func__, handle);
}

DeviceCode Buzzer_getFrequency(BuzzerHandle handle, uint16_t *hertz)
{
    return get(__func__, handle, Out{"Buzzer.frequency", hertz});
}

DeviceCode Buzzer_setFrequency(BuzzerHandle handle, uint16_t hertz)
{
    return set(__func__, handle, In{"Buzzer.frequency", hertz});
}

DeviceCode Buzzer_getVolume(BuzzerHandle handle, uint16_t *volume)
{
    return get(__func__, handle, Out{"Buzzer.volume", volume});
}

DeviceCode Buzzer_setVolume(BuzzerHandle handle, uint16_t volume)
{
    return set(__func__, handle, In{"Buzzer.volume", volume});
}

DeviceCode Buzzer_getTrigger(BuzzerHandle handle, DeviceBool *sounding)
{
    return get(__func__, handle, Out{"Buzzer.trigger", sounding});
}

DeviceCode Buzzer_setTrigger(BuzzerHandle handle, bool sounding)
{
    return set(__func__, handle, In{"Buzzer.trigger", sounding});
}
