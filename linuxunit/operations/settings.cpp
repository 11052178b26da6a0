#include "linuxunit/calls/perform.h"
#include "linuxunit/devices/Radios.h"
#include "linuxunit/store/Store.h"

#include <optional>
#include <string_view>

using namespace linuxunit;

namespace {

/** What the machine says as long as nobody has said otherwise. */
std::optional<std::string> foundValue(std::string_view key)
{
    if (key == "VornsettingsGsmPort")
        return modemPort();
    if (key == "VornsettingsGpsPort")
        return positionPort();
    return std::nullopt;
}

} // namespace

DeviceCode Settings_getString(SettingsHandle handle, const char *key, char *buffer, uint32_t size)
{
    return perform(handle, {key, size > 0 ? buffer : nullptr}, [&](Store &store) {
        auto value = store.value(Store::Area::Strings, key);
        if (!value)
            value = foundValue(key);
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
