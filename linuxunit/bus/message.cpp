#include "linuxunit/bus/message.h"

#include <systemd/sd-bus.h>

#include <stdexcept>
#include <string_view>

namespace linuxunit {

using nlohmann::json;

namespace {

void require(int result)
{
    if (result < 0)
        throw std::runtime_error("unreadable message");
}

template <typename T>
T basic(sd_bus_message *message, char type)
{
    T value{};
    require(sd_bus_message_read_basic(message, type, &value));
    return value;
}

json next(sd_bus_message *message, char type, const char *contents);

json nextOfAny(sd_bus_message *message)
{
    char type = 0;
    const char *contents = nullptr;
    require(sd_bus_message_peek_type(message, &type, &contents));
    return next(message, type, contents);
}

bool isAtEnd(sd_bus_message *message)
{
    const int result = sd_bus_message_at_end(message, 0);
    require(result);
    return result > 0;
}

/** What is in the container: one value after the other. */
json inside(sd_bus_message *message, char type, const char *contents)
{
    auto values = json::array();
    require(sd_bus_message_enter_container(message, type, contents));
    while (!isAtEnd(message))
        values.push_back(nextOfAny(message));
    require(sd_bus_message_exit_container(message));
    return values;
}

json dictionary(sd_bus_message *message, const char *contents)
{
    auto entries = json::object();
    for (auto &entry : inside(message, SD_BUS_TYPE_ARRAY, contents)) {
        const auto &key = entry.at(0);
        entries[key.is_string() ? key.get<std::string>() : key.dump()] = std::move(entry.at(1));
    }
    return entries;
}

json next(sd_bus_message *message, char type, const char *contents)
{
    switch (type) {
    case SD_BUS_TYPE_BOOLEAN:
        return basic<int>(message, type) != 0;
    case SD_BUS_TYPE_BYTE:
        return basic<std::uint8_t>(message, type);
    case SD_BUS_TYPE_INT16:
        return basic<std::int16_t>(message, type);
    case SD_BUS_TYPE_UINT16:
        return basic<std::uint16_t>(message, type);
    case SD_BUS_TYPE_INT32:
        return basic<std::int32_t>(message, type);
    case SD_BUS_TYPE_UINT32:
        return basic<std::uint32_t>(message, type);
    case SD_BUS_TYPE_INT64:
        return basic<std::int64_t>(message, type);
    case SD_BUS_TYPE_UINT64:
        return basic<std::uint64_t>(message, type);
    case SD_BUS_TYPE_DOUBLE:
        return basic<double>(message, type);
    case SD_BUS_TYPE_STRING:
    case SD_BUS_TYPE_OBJECT_PATH:
    case SD_BUS_TYPE_SIGNATURE:
        return basic<const char *>(message, type);
    case SD_BUS_TYPE_VARIANT:
        return inside(message, type, contents).at(0);
    case SD_BUS_TYPE_ARRAY:
        return *contents == SD_BUS_TYPE_DICT_ENTRY_BEGIN ? dictionary(message, contents)
                                                         : inside(message, type, contents);
    case SD_BUS_TYPE_STRUCT:
    case SD_BUS_TYPE_DICT_ENTRY:
        return inside(message, type, contents);
    default: // a file, which nobody here asks for
        require(sd_bus_message_skip(message, nullptr));
        return nullptr;
    }
}

int append(sd_bus_message *message, const BusOptions &options)
{
    int result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
    for (const auto &[name, value] : options) {
        if (result < 0)
            return result;
        if (const auto *text = std::get_if<std::string>(&value))
            result = sd_bus_message_append(message, "{sv}", name.c_str(), "s", text->c_str());
        else
            result = sd_bus_message_append(
                message, "{sv}", name.c_str(), "b", int(std::get<bool>(value)));
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

} // namespace

int appendArguments(sd_bus_message *message, const std::vector<BusArgument> &arguments)
{
    int result = 0;
    for (const auto &argument : arguments) {
        if (result < 0)
            return result;
        if (const auto *flag = std::get_if<bool>(&argument))
            result = sd_bus_message_append(message, "b", int(*flag));
        else if (const auto *number = std::get_if<std::uint32_t>(&argument))
            result = sd_bus_message_append(message, "u", *number);
        else if (const auto *text = std::get_if<std::string>(&argument))
            result = sd_bus_message_append(message, "s", text->c_str());
        else if (const auto *file = std::get_if<BusDescriptor>(&argument))
            result = sd_bus_message_append(message, "h", file->number);
        else
            result = append(message, std::get<BusOptions>(argument));
    }
    return result;
}

json bodyOf(sd_bus_message *message)
{
    try {
        auto values = json::array();
        while (!isAtEnd(message))
            values.push_back(nextOfAny(message));
        if (values.empty())
            return nullptr;
        return values.size() == 1 ? std::move(values.at(0)) : std::move(values);
    } catch (const std::exception &) {
        return nullptr;
    }
}

} // namespace linuxunit
