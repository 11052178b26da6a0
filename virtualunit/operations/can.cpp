#include "virtualunit/calls/Operation.h"

#include <algorithm>

using namespace virtualunit;

namespace {

constexpr double storedChannels = 9;

/** The channel's row, or the code that says why there is none. */
Code find(const Unit &unit, Key first, uint8_t channel, Key &row)
{
    if (const Code code = unit.missing(first); code != Ok)
        return code;
    if (channel == 0 || channel > std::min(unit.number("Hardware.canCount"), storedChannels))
        return NoSuchChannel;
    row = first + (channel - 1U);
    return Ok;
}

template <typename T>
Code read(const Unit &unit, Key first, uint8_t channel, T *value)
{
    Key row = first;
    const Code code = find(unit, first, channel, row);
    if (code == Ok)
        *value = static_cast<T>(unit.number(row));
    return code;
}

Code write(Unit &unit, Key first, uint8_t channel, double value)
{
    Key row = first;
    const Code code = find(unit, first, channel, row);
    return code == Ok ? unit.setChecked(row, value) : code;
}

} // namespace

CanHandle Can_create(void)
{
    return create<CanDevice>(__func__);
}

void Can_release(CanHandle handle)
{
    release(__func__, handle);
}

DeviceCode Can_getBaudrate(CanHandle handle, uint8_t channel, uint16_t *kbitPerSecond)
{
    return perform(__func__, handle, {channel, kbitPerSecond}, Does::Read,
        [&](Unit &unit) { return read(unit, "Can.baudrate1", channel, kbitPerSecond); });
}

DeviceCode Can_setBaudrate(CanHandle handle, uint8_t channel, uint16_t kbitPerSecond)
{
    return perform(__func__, handle, {channel, kbitPerSecond}, Does::Write,
        [&](Unit &unit) { return write(unit, "Can.baudrate1", channel, kbitPerSecond); });
}

DeviceCode Can_getFrameType(CanHandle handle, uint8_t channel, int32_t *frameType)
{
    return perform(__func__, handle, {channel, frameType}, Does::Read,
        [&](Unit &unit) { return read(unit, "Can.frameType1", channel, frameType); });
}

DeviceCode Can_setFrameType(CanHandle handle, uint8_t channel, int32_t frameType)
{
    return perform(__func__, handle, {channel, frameType}, Does::Write,
        [&](Unit &unit) { return write(unit, "Can.frameType1", channel, frameType); });
}
