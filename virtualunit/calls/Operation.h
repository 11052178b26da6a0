#pragma once

#include "virtualunit/calls/handles.h"
#include "virtualunit/state/Unit.h"

#include <initializer_list>
#include <type_traits>

/**
 * What all operations of the contract have in common. An operation is one call of get(), set() or
 * perform() with __func__ as its name; these check the handle and the pointers, honour delays and
 * faults, keep the journal and turn every failure into a code:
 *
 *     DeviceCode Buzzer_getVolume(BuzzerHandle handle, uint16_t *volume)
 *     {
 *         return get(__func__, handle, Out{"Buzzer.volume", volume});
 *     }
 *
 * The order is: handle, pointers, delay, fault, features, the operation itself.
 */
namespace virtualunit {

/** One argument of a call, for the checks and for the journal. */
class Argument
{
public:
    enum class Type {
        Bool,
        Signed,
        Real,
        Text,
        U8,
        U16,
        U32,
        I16,
        I32,
        I64,
        Flag,
        Double,
        Buffer,
        Diagnostics,
        Battery,
        Firmware
    };

    // By value.
    Argument(bool value)
        : type(Type::Bool)
        , integer(value)
    {}
    template <typename T>
    requires std::is_integral_v<T> Argument(T value)
        : type(Type::Signed)
        , integer(static_cast<std::int64_t>(value))
    {}
    Argument(double value)
        : type(Type::Real)
        , real(value)
    {}
    Argument(const char *value)
        : type(Type::Text)
        , pointer(value)
    {}

    // Filled on success.
    Argument(const std::uint8_t *out, bool isFlag = false)
        : type(isFlag ? Type::Flag : Type::U8)
        , pointer(out)
    {}
    Argument(const std::uint16_t *out)
        : type(Type::U16)
        , pointer(out)
    {}
    Argument(const std::uint32_t *out)
        : type(Type::U32)
        , pointer(out)
    {}
    Argument(const std::int16_t *out)
        : type(Type::I16)
        , pointer(out)
    {}
    Argument(const std::int32_t *out)
        : type(Type::I32)
        , pointer(out)
    {}
    Argument(const std::int64_t *out)
        : type(Type::I64)
        , pointer(out)
    {}
    Argument(const double *out)
        : type(Type::Double)
        , pointer(out)
    {}
    Argument(const char *buffer, std::uint32_t size)
        : type(Type::Buffer)
        , integer(size)
        , pointer(buffer)
    {}
    Argument(const DiagnosticTimes *out)
        : type(Type::Diagnostics)
        , pointer(out)
    {}
    Argument(const BatteryTimes *out)
        : type(Type::Battery)
        , pointer(out)
    {}
    Argument(const FirmwareUpgradeStatus *out)
        : type(Type::Firmware)
        , pointer(out)
    {}

    bool isOut() const { return type > Type::Text; }
    bool isMissing() const;
    /** As it stands in the journal: a value, or what an out pointer points to. */
    std::string text() const;

private:
    Type type;
    std::int64_t integer = 0;
    double real = 0;
    const void *pointer = nullptr;

    friend std::string argumentsText(std::initializer_list<Argument> arguments);
};

using Arguments = std::initializer_list<Argument>;

/** Whether an operation's body runs within a Change; it is taken back unless the body returns Ok.
 */
enum class Does { Read, Write };

/** A body by reference, without a copy. */
class Body
{
public:
    template <typename Function>
    requires(!std::is_same_v<std::remove_cvref_t<Function>, Body>) Body(const Function &function)
        : object(&function)
        , call([](const void *body, Unit &unit) -> Code {
            return (*static_cast<const Function *>(body))(unit);
        })
    {}
    Code operator()(Unit &unit) const { return call(object, unit); }

private:
    const void *object;
    Code (*call)(const void *, Unit &);
};

DeviceCode performCall(const char *operation, Family family, const void *handle,
    Arguments arguments, Does does, const Body &body) noexcept;

template <typename Device>
DeviceCode perform(
    const char *operation, Device *handle, Arguments arguments, Does does, const Body &body)
{
    return performCall(operation, familyOf<Device>, handle, arguments, does, body);
}

template <typename Device>
Device *create(const char *operation) noexcept
{
    return static_cast<Device *>(createHandle(operation, familyOf<Device>));
}

template <typename Device>
void release(const char *operation, Device *handle) noexcept
{
    releaseHandle(operation, familyOf<Device>, handle);
}

/** Journal of an operation that gives a text; returns the text. */
const char *textCall(const char *operation, std::int64_t argument, const char *text) noexcept;

/** A property and where its value goes. */
template <typename T>
struct Out {
    Key key;
    T *value;

    Argument argument() const
    {
        if constexpr (std::is_same_v<T, std::uint8_t>)
            return {value, key.spec().kind == Kind::Flag};
        else
            return {value};
    }
};
template <typename T>
Out(Key, T *) -> Out<T>;
template <typename T>
Out(const char *, T *) -> Out<T>;

/** A property and its new value. */
template <typename T>
struct In {
    Key key;
    T value;
};
template <typename T>
In(Key, T) -> In<T>;
template <typename T>
In(const char *, T) -> In<T>;

/** A property and the value that an operation without arguments gives it. */
struct Fixed {
    Key key;
    double value;
};

/** Reads properties, all or none. */
template <typename Device, typename... T>
DeviceCode get(const char *operation, Device *handle, Out<T>... outs)
{
    return perform(operation, handle, {outs.argument()...}, Does::Read, [&](Unit &unit) {
        Code code = Ok;
        ((code = code != Ok ? code : unit.missing(outs.key)), ...);
        if (code == Ok)
            ((*outs.value = static_cast<T>(unit.number(outs.key))), ...);
        return code;
    });
}

/** Writes properties, all or none. */
template <typename Device, typename... T>
DeviceCode set(const char *operation, Device *handle, In<T>... ins)
{
    return perform(operation, handle, {Argument(ins.value)...}, Does::Write, [&](Unit &unit) {
        Code code = Ok;
        ((code = code != Ok ? code : unit.missing(ins.key)), ...);
        ((code = code != Ok ? code : unit.store(ins.key, static_cast<double>(ins.value))), ...);
        return code;
    });
}

template <typename Device>
DeviceCode set(const char *operation, Device *handle, Fixed fixed)
{
    return perform(operation, handle, {}, Does::Write, [&](Unit &unit) {
        const Code code = unit.missing(fixed.key);
        return code == Ok ? unit.store(fixed.key, fixed.value) : code;
    });
}

/** Into the caller's buffer, cut to its size and in Latin-1. */
void copyText(std::string_view utf8, char *buffer, std::uint32_t size);
Code copyText(const Unit &unit, Key key, char *buffer, std::uint32_t size);

/** Reads a text into the caller's buffer, cut to its size. */
template <typename Device>
DeviceCode getText(const char *operation, Device *handle, Key key, char *buffer, std::uint32_t size)
{
    return perform(operation, handle, {Argument(buffer, size)}, Does::Read,
        [&](Unit &unit) { return copyText(unit, key, buffer, size); });
}

/** Reads the four numbers of a version. */
template <typename Device, typename T>
DeviceCode getVersion(
    const char *operation, Device *handle, Key key, T *major, T *minor, T *release, T *build)
{
    return perform(operation, handle, {major, minor, release, build}, Does::Read, [&](Unit &unit) {
        const Code code = unit.missing(key);
        std::array<unsigned, 4> numbers{};
        if (code == Ok && !parseVersion(unit.text(key), key.spec().reports.high, numbers))
            return StateDamaged;
        if (code != Ok)
            return code;
        *major = static_cast<T>(numbers[0]);
        *minor = static_cast<T>(numbers[1]);
        *release = static_cast<T>(numbers[2]);
        *build = static_cast<T>(numbers[3]);
        return Ok;
    });
}

/** Names of all operations that return a code, in the header's order. */
const std::vector<std::string> &operationNames();
/** Throws a Failure for any other name. */
const std::string &checkedOperation(const std::string &operation);

} // namespace virtualunit
