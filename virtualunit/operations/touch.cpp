#include "virtualunit/calls/Operation.h"

using namespace virtualunit;

namespace {

constexpr Key firstSetting = "Touch.rightClickTime";

Key setting(int32_t number)
{
    return firstSetting + std::size_t(number);
}

bool isMouse(int32_t mode)
{
    return mode == TOUCH_MOUSE || mode == TOUCH_MOUSE_NEXT_BOOT;
}

/** What the controller leaves the factory with. */
Code restoreDefaults(Unit &unit, uint16_t confirmation)
{
    constexpr double defaults[] = {1000, 600, 450, 10, 100, 250, 500, 25, 1, 100, 8};
    static_assert(std::size(defaults) == TOUCH_RESTORE_DEFAULTS);
    if (confirmation != 1)
        return ValueOutOfRange;
    for (std::size_t number = 0; number < std::size(defaults); ++number)
        unit.set(firstSetting + number, defaults[number]);
    return Ok;
}

} // namespace

TouchHandle Touch_create(void)
{
    return create<TouchDevice>(__func__);
}

void Touch_release(TouchHandle handle)
{
    release(__func__, handle);
}

DeviceCode Touch_getMode(TouchHandle handle, int32_t *mode)
{
    return get(__func__, handle, Out{"Touch.mode", mode});
}

DeviceCode Touch_setMode(TouchHandle handle, int32_t mode)
{
    return perform(__func__, handle, {mode}, Does::Write, [&](Unit &unit) {
        Code code = unit.missing("Touch.mode");
        if (code == Ok)
            code = unit.setChecked("Touch.mode", mode);
        if (code == Ok)
            unit.set("Touch.nextBootMode", isMouse(mode) ? TOUCH_MOUSE : TOUCH_TOUCH);
        return code;
    });
}

DeviceCode Touch_getMouseRightClickTime(TouchHandle handle, uint16_t *milliseconds)
{
    return get(__func__, handle, Out{"Touch.mouseRightClickTime", milliseconds});
}

DeviceCode Touch_setMouseRightClickTime(TouchHandle handle, uint16_t milliseconds)
{
    return set(__func__, handle, In{"Touch.mouseRightClickTime", milliseconds});
}

DeviceCode Touch_getAdvancedSetting(TouchHandle handle, int32_t number, uint16_t *value)
{
    return perform(__func__, handle, {number, value}, Does::Read, [&](Unit &unit) {
        const Code code = unit.missing(firstSetting);
        if (code != Ok)
            return code;
        if (number < 0 || number >= TOUCH_RESTORE_DEFAULTS)
            return NoSuchChannel;
        *value = uint16_t(unit.number(setting(number)));
        return Ok;
    });
}

DeviceCode Touch_setAdvancedSetting(TouchHandle handle, int32_t number, uint16_t value)
{
    return perform(__func__, handle, {number, value}, Does::Write, [&](Unit &unit) {
        const Code code = unit.missing(firstSetting);
        if (code != Ok)
            return code;
        if (number == TOUCH_RESTORE_DEFAULTS)
            return restoreDefaults(unit, value);
        if (number < 0 || number > TOUCH_RESTORE_DEFAULTS)
            return NoSuchChannel;
        return unit.setChecked(setting(number), value);
    });
}
