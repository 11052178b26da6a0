#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Tone.h"

using namespace linuxunit;

DeviceCode Buzzer_getFrequency(BuzzerHandle handle, uint16_t *hertz)
{
    return perform(handle, {hertz}, [&](Tone &tone) { *hertz = tone.frequency(); });
}

DeviceCode Buzzer_setFrequency(BuzzerHandle handle, uint16_t hertz)
{
    return perform(handle, {}, [&](Tone &tone) { tone.setFrequency(hertz); });
}

DeviceCode Buzzer_getTrigger(BuzzerHandle handle, DeviceBool *sounding)
{
    return perform(handle, {sounding}, [&](Tone &tone) { *sounding = tone.isSounding() ? 1 : 0; });
}

DeviceCode Buzzer_setTrigger(BuzzerHandle handle, bool sounding)
{
    return perform(handle, {}, [&](Tone &tone) { tone.sound(sounding); });
}
