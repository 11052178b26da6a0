#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

DigIOHandle DigIO_create(void)
{
    return create<DigIODevice>(__func__);
}

void DigIO_release(DigIOHandle handle)
{
    release(__func__, handle);
}

DeviceCode DigIO_getDigIO(DigIOHandle handle, uint8_t *mask)
{
    return get(__func__, handle, Out{"DigIO.digIO", mask});
}

DeviceCode DigIO_setDigIO(DigIOHandle handle, uint8_t mask)
{
    return perform(__func__, handle, {mask}, Does::Write, [&](Unit &unit) {
        if (const Code code = unit.missing("DigIO.digIO"); code != Ok)
            return code;
        if (!unit.on("Feature.digitalOutputs"))
            return NotSupported;
        // Lines above the fourth may be read, but nothing drives them.
        const auto present = unsigned(unit.number("DigIO.digIO"));
        constexpr unsigned driven = 0x0F;
        if (((mask ^ present) & ~driven) != 0)
            return ValueOutOfRange;
        return unit.setChecked("DigIO.digIO", mask);
    });
}
