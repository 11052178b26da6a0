#pragma once

#include "virtualunit/calls/perform.h"

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

/** A property and where its value goes. */
template <typename T>
struct Out {
    Key key;
    T *value;

    Argument argument() const
    {
        if constexpr (std::is_same_v<T, DeviceBool>) {
            if (key.property().kind == Kind::Flag)
                return Argument::flag(value);
        }
        return value;
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
        ((code = code != Ok ? code : unit.setChecked(ins.key, double(ins.value))), ...);
        return code;
    });
}

template <typename Device>
DeviceCode set(const char *operation, Device *handle, Fixed fixed)
{
    return perform(operation, handle, {}, Does::Write, [&](Unit &unit) {
        const Code code = unit.missing(fixed.key);
        return code == Ok ? unit.setChecked(fixed.key, fixed.value) : code;
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
        if (code == Ok && !parseVersion(unit.text(key), key.property().reports.high, numbers))
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

} // namespace virtualunit
