#include "virtualunit/calls/Operation.h"
#include "virtualunit/state/Assignment.h"
#include "virtualunit/state/latin1.h"

using namespace virtualunit;

SettingsHandle Settings_create(void)
{
    return create<SettingsDevice>(__func__);
}

void Settings_release(SettingsHandle handle)
{
    release(__func__, handle);
}

DeviceCode Settings_getString(SettingsHandle handle, const char *key, char *buffer, uint32_t size)
{
    return perform(__func__, handle, {key, {buffer, size}}, Does::Read, [&](Unit &unit) {
        const auto &strings = unit.snapshot().strings;
        const auto found = strings.find(fromLatin1(key));
        if (found == strings.end())
            return UnknownKey;
        copyText(found->second, buffer, size);
        return Ok;
    });
}

DeviceCode Settings_setString(SettingsHandle handle, const char *key, const char *value)
{
    return perform(__func__, handle, {key, value}, Does::Write, [&](Unit &unit) {
        if (*key == '\0')
            return ValueOutOfRange;
        unit.setString(checkedString(fromLatin1(key)), checkedString(fromLatin1(value)));
        return Ok;
    });
}
