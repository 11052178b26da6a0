#pragma once

#include "frame/VornAux2.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

/**
 * The contract as a table: every operation, what it takes and what it writes, made from
 * frame/VornAux2.h. Whoever has to define functions of these names includes contractList.h instead,
 * whose head explains its macros. All of it is constant; any thread may read it.
 */
namespace contract {

/** What an argument is for. */
enum class Role {
    Handle, ///< from the family's create
    In,     ///< a number that the caller gives
    String, ///< a text that the caller gives, const char *
    Out,    ///< where the operation writes a number
    Record, ///< where it writes a struct; see structs
    Buffer, ///< where it writes a text; the argument behind it is its Size
    Size,   ///< bytes of the buffer before it, uint32_t
};

/** What kind of number an argument or field is. */
enum class Number {
    None,     ///< no number: a handle, a text, a struct
    Bool,     ///< a truth value that the caller gives
    Flag,     ///< DeviceBool: one that the library gives
    Unsigned, ///< width bytes
    Signed,   ///< width bytes
    Real      ///< double
};

struct Argument {
    Role role;
    Number number;
    std::size_t width; ///< bytes of the value, or of what the argument points to; 0 for texts
    const char *type;  ///< as the contract has it, without the asterisk: "uint8_t"
    const char *name;

    constexpr bool isWritten() const
    {
        return role == Role::Out || role == Role::Record || role == Role::Buffer;
    }
};

/** One argument of a call by table. A number goes through `integer` (converted to the argument's
 *  type) or `real`, all else through `pointer`. */
union Value {
    std::int64_t integer;
    double real;
    void *pointer;
};

/** A text that an operation is given. It is only read. */
inline Value textValue(const char *text)
{
    Value value{};
    value.pointer =
        const_cast<char *>(text); // NOLINT(cppcoreguidelines-pro-type-const-cast): see above
    return value;
}

/** Any function of a library, as its loader finds it. */
using Function = void (*)();

struct Operation {
    const char *family;
    const char *name;
    const char *parameters;              ///< as declared, in parentheses
    const char *comment;                 ///< the header's, lines ending in \n but for the last
    std::span<const Argument> arguments; ///< all, the handle first
    /** Calls `function`, which must have this operation's type, with as many values as arguments.
     */
    DeviceCode (*call)(Function function, const Value *values);
};

/** A family of operations and what opens and closes its handles. */
struct Family {
    const char *name;
    const char *comment;
    const char *createName;
    const char *releaseName;
};

/** A function from a number to a constant text. */
struct Text {
    const char *name;
    const char *type; ///< of its one argument
    const char *argument;
    const char *comment;
    const char *(*call)(Function function, std::int64_t value);
};

struct Field {
    const char *type;
    const char *name;
    Number number;
    std::size_t width;
    std::size_t offset;
};

struct Struct {
    const char *name;
    std::size_t size;
    std::span<const Field> fields;
};

struct Enumerator {
    const char *name;
    std::int32_t value;
    const char *comment;
};

struct Enumeration {
    const char *name;
    std::span<const Enumerator> enumerators;
};

namespace detail {

template <typename T>
constexpr Number numberOf(std::string_view name)
{
    if (name == "DeviceBool")
        return Number::Flag;
    if (std::is_same_v<T, bool>)
        return Number::Bool;
    if (std::is_floating_point_v<T>)
        return Number::Real;
    return std::is_unsigned_v<T> ? Number::Unsigned : Number::Signed;
}

template <typename T>
T valueAs(const Value &value)
{
    if constexpr (std::is_pointer_v<T>)
        return static_cast<T>(value.pointer);
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value.real);
    else
        return static_cast<T>(value.integer);
}

template <typename Signature>
struct Call;

template <typename... T>
struct Call<DeviceCode(T...)> {
    static DeviceCode operation(Function function, const Value *values)
    {
        return spread(function, values, std::index_sequence_for<T...>{});
    }

    template <std::size_t... Index>
    static DeviceCode spread(Function function, const Value *values, std::index_sequence<Index...>)
    {
        return reinterpret_cast<DeviceCode (*)(T...)>(function)(valueAs<T>(values[Index])...);
    }
};

template <typename T>
struct Call<const char *(T)> {
    static const char *text(Function function, std::int64_t value)
    {
        return reinterpret_cast<const char *(*)(T)>(function)(static_cast<T>(value));
    }
};

// Each list in a struct of its own, so that no name of the contract is defined anew.
#define CONTRACT_IN(type, name) \
    Argument{Role::In, numberOf<type>(#type), sizeof(type), #type, #name},
#define CONTRACT_STRING(name) Argument{Role::String, Number::None, 0, "const char", #name},
#define CONTRACT_OUT(type, name) \
    Argument{Role::Out, numberOf<type>(#type), sizeof(type), #type, #name},
#define CONTRACT_RECORD(type, name) \
    Argument{Role::Record, Number::None, sizeof(type), #type, #name},
#define CONTRACT_BUFFER(name, size)                         \
    Argument{Role::Buffer, Number::None, 0, "char", #name}, \
        Argument{Role::Size, Number::Unsigned, sizeof(uint32_t), "uint32_t", #size},
#define CONTRACT_OPERATION(family, name, parameters, arguments, each, comment)               \
    struct ArgumentsOf_##name {                                                              \
        static constexpr Argument list[] = {                                                 \
            {Role::Handle, Number::None, sizeof(void *), #family "Handle", "handle"}, each}; \
    };
#define CONTRACT_FIELD(type, name) \
    Field{#type, #name, numberOf<type>(#type), sizeof(type), offsetof(Record, name)},
#define CONTRACT_STRUCT(name, fields)             \
    struct FieldsOf_##name {                      \
        using Record = ::name;                    \
        static constexpr Field list[] = {fields}; \
    };
#define CONTRACT_ENUMERATOR(name, comment) {#name, name, comment},
#define CONTRACT_ENUM(name, enumerators)                    \
    struct EnumeratorsOf_##name {                           \
        static constexpr Enumerator list[] = {enumerators}; \
    };
#include "devicetools/contractList.h"

} // namespace detail

#define CONTRACT_OPERATION(family, name, parameters, arguments, each, comment) \
    {#family, #name, #parameters, comment, detail::ArgumentsOf_##name::list,   \
        &detail::Call<decltype(::name)>::operation},
inline constexpr Operation operations[] = {
#include "devicetools/contractList.h"
};

#define CONTRACT_FAMILY(family, comment) {#family, comment, #family "_create", #family "_release"},
inline constexpr Family families[] = {
#include "devicetools/contractList.h"
};

#define CONTRACT_TEXT(name, type, argument, comment) \
    {#name, #type, #argument, comment, &detail::Call<decltype(::name)>::text},
inline constexpr Text texts[] = {
#include "devicetools/contractList.h"
};

#define CONTRACT_STRUCT(name, fields) {#name, sizeof(::name), detail::FieldsOf_##name::list},
inline constexpr Struct structs[] = {
#include "devicetools/contractList.h"
};

#define CONTRACT_ENUM(name, enumerators) {#name, detail::EnumeratorsOf_##name::list},
inline constexpr Enumeration enumerations[] = {
#include "devicetools/contractList.h"
};

/** The entry of that name in one of the tables, null if there is none. */
template <typename Entry, std::size_t Count>
constexpr const Entry *find(const Entry (&table)[Count], std::string_view name)
{
    for (const auto &entry : table) {
        if (name == entry.name)
            return &entry;
    }
    return nullptr;
}

} // namespace contract
