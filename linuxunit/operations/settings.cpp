#include "linuxunit/calls/perform.h"
#include "linuxunit/store/Store.h"

using namespace linuxunit;

DeviceCode Settings_getString(SettingsHandle handle, const char *key, char *buffer, uint32_t size)
{
    return perform(handle, {key, size > 0 ? buffer : nullptr}, [&](Store &store) {
        const auto value = store.value(Store::Area::Strings, key);
        if (!value)
            throw Failure{UnknownKey, {}};
        copyText(*value, buffer, size);
    });
}

DeviceCode Settings_setString(SettingsHandle handle, const char *key, const char *value)
{
    return perform(handle, {key, value},
        [&](Store &store) { store.setValue(Store::Area::Strings, key, value); });
}
