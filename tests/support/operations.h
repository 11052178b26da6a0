#pragma once

#include "frame/VornAux2.h"

#include <array>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <vector>

/** All operations of the contract in a form in which tests can call each of them. */
namespace support {

/** What stands in for the arguments behind the handle. */
struct Arguments {
    bool nullPointers = false;
    alignas(8) std::array<unsigned char, 256> out{}; ///< every out argument points here
};

struct Operation {
    const char *name;
    DeviceCode (*call)(const void *handle, Arguments &arguments);
    bool hasPointers;
};

struct FamilyOfHandles {
    const char *name;
    const void *(*create)();
    void (*release)(const void *handle);
};

template <typename T>
T standIn(Arguments &arguments)
{
    if constexpr (std::is_same_v<T, const char *>)
        return arguments.nullPointers ? nullptr : "text";
    else if constexpr (std::is_pointer_v<T>)
        return arguments.nullPointers ? nullptr
                                      : static_cast<T>(static_cast<void *>(arguments.out.data()));
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return 100; // enough of a buffer and in the range of all else
    else
        return T(1);
}

template <typename Handle, typename... T>
DeviceCode callAny(DeviceCode (*operation)(Handle, T...), const void *handle, Arguments &arguments)
{
    return operation(static_cast<Handle>(const_cast<void *>(handle)), standIn<T>(arguments)...);
}

template <typename Handle, typename... T>
constexpr bool takesPointers(DeviceCode (*)(Handle, T...))
{
    return (std::is_pointer_v<T> || ...);
}

template <auto Function>
constexpr Operation operation(const char *name)
{
    return {name,
        [](const void *handle, Arguments &arguments) {
            return callAny(Function, handle, arguments);
        },
        takesPointers(Function)};
}

template <auto Create, auto Release>
constexpr FamilyOfHandles family(const char *name)
{
    using Handle = std::invoke_result_t<decltype(Create)>;
    return {name, []() -> const void * { return Create(); },
        [](const void *handle) { Release(static_cast<Handle>(const_cast<void *>(handle))); }};
}

#define CONTRACT_FAMILY(name, comment) family<name##_create, name##_release>(#name),
inline const std::vector<FamilyOfHandles> allFamilies{
#include "devicetools/contractList.h"
};

/** In the header's order. */
#define CONTRACT_OPERATION(family, name, parameters, arguments, each, comment) \
    operation<name>(#name),
inline const std::vector<Operation> allOperations{
#include "devicetools/contractList.h"
};

} // namespace support
