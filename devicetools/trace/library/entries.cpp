#include "devicetools/trace/library/Device.h"

#include <array>

/* The functions of the contract, all alike: what they are called with goes to the device as a row
 * of values. */

namespace {

using contract::Value;

template <typename T>
Value valueOf(T argument)
{
    Value value{};
    if constexpr (std::is_pointer_v<T>)
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): goes on to the library as it came
        value.pointer = const_cast<void *>(static_cast<const volatile void *>(argument));
    else if constexpr (std::is_floating_point_v<T>)
        value.real = argument;
    else
        value.integer = std::int64_t(argument);
    return value;
}

template <typename... T>
std::array<Value, sizeof...(T)> valuesOf(T... arguments)
{
    return {valueOf(arguments)...};
}

template <std::size_t Family, std::size_t Operation, std::size_t Count>
DeviceCode perform(std::array<Value, Count> values)
{
    static_assert(contract::operations[Operation].arguments.size() == Count);
    return trace::device().perform(Family, Operation, values.data());
}

template <typename Entry, std::size_t Count>
constexpr std::size_t rowOf(const Entry (&table)[Count], std::string_view name)
{
    return std::size_t(contract::find(table, name) - table);
}

} // namespace

#define CONTRACT_CREATE(family, name, comment)                           \
    family##Handle name(void)                                            \
    {                                                                    \
        constexpr auto row = rowOf(contract::families, #family);         \
        return static_cast<family##Handle>(trace::device().create(row)); \
    }
#define CONTRACT_RELEASE(family, name, comment)                              \
    void name(family##Handle handle)                                         \
    {                                                                        \
        trace::device().release(rowOf(contract::families, #family), handle); \
    }
#define CONTRACT_TEXT(name, type, argument, comment)                          \
    const char *name(type argument)                                           \
    {                                                                         \
        return trace::device().text(rowOf(contract::texts, #name), argument); \
    }
#define CONTRACT_OPERATION(family, name, parameters, arguments, each, comment)                  \
    DeviceCode name parameters                                                                  \
    {                                                                                           \
        return perform<rowOf(contract::families, #family), rowOf(contract::operations, #name)>( \
            valuesOf arguments);                                                                \
    }
#include "devicetools/contractList.h"
