#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <variant>
#include <vector>

struct sd_bus_message;

/** Messages of the system bus as values: what services say is untrusted, and is checked like any
 *  other JSON. */
namespace linuxunit {

/** An open file that goes along. */
struct BusDescriptor {
    int number; ///< stays the caller's
};
/** a{sv} of switches and texts. */
using BusOptions = std::map<std::string, std::variant<bool, std::string>>;
using BusArgument = std::variant<bool, std::uint32_t, std::string, BusDescriptor, BusOptions>;

/** Negative error number of the library behind it. */
int appendArguments(sd_bus_message *message, const std::vector<BusArgument> &arguments);

/** The body: its value if there is one, an array of them if there are several, null if none.
 *  Variants are what they hold, dictionaries are objects, structures are arrays. Null too for a
 *  body that can't be read. */
nlohmann::json bodyOf(sd_bus_message *message);

/** What an object has of that name and type; the other one if it hasn't. */
template <typename T>
T valueOf(const nlohmann::json &object, const std::string &name, T otherwise)
{
    const auto found = object.is_object() ? object.find(name) : object.end();
    if (!object.is_object() || found == object.end())
        return otherwise;
    if constexpr (std::is_same_v<T, std::string>)
        return found->is_string() ? found->get<std::string>() : otherwise;
    else if constexpr (std::is_same_v<T, bool>)
        return found->is_boolean() ? found->get<bool>() : otherwise;
    else
        return found->is_number() ? found->get<T>() : otherwise;
}

} // namespace linuxunit
