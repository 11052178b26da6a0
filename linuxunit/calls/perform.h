#pragma once

#include "linuxunit/calls/Failure.h"
#include "linuxunit/calls/handles.h"

#include <exception>
#include <initializer_list>
#include <string>

/**
 * What all operations of the contract have in common. An operation is one call of perform():
 *
 *     DeviceCode Buzzer_getFrequency(BuzzerHandle handle, uint16_t *hertz)
 *     {
 *         return perform(handle, {hertz}, [&](Buzzer &buzzer) { *hertz = buzzer.frequency(); });
 *     }
 *
 * It checks the handle (3) and the pointers (4), gives the body what is kept with the handle, made
 * when it is first needed, and turns what the body throws into a code. Out values are written last
 * in the body, so that they stay as they are on failure.
 */
namespace linuxunit {

using Pointers = std::initializer_list<const void *>;

/** Into the caller's buffer, cut to its size. */
void copyText(const std::string &latin1, char *buffer, std::uint32_t size);

namespace detail {

/** Ok, or what is wrong with a call before anything is done. */
Kind checkCall(Family family, const void *handle, Pointers pointers);

template <typename T>
struct KeptOf;
template <typename Body, typename Result, typename T>
struct KeptOf<Result (Body::*)(T &) const> {
    using Type = T;
};

} // namespace detail

template <typename Device, typename Body>
DeviceCode perform(Device *handle, Pointers pointers, const Body &body) noexcept
{
    try {
        if (const Kind wrong = detail::checkCall(familyOf<Device>(), handle, pointers); wrong != Ok)
            return wrong;
        const auto object =
            kept<typename detail::KeptOf<decltype(&Body::operator())>::Type>(handle);
        body(*object);
        return Ok;
    } catch (const Failure &failure) {
        return codeOf(failure);
    } catch (const std::exception &) {
        return GeneralFault; // no memory, say
    }
}

/** Gives the text that the body returns; a buffer of no size is a missing argument. */
template <typename Device, typename Body>
DeviceCode performText(Device *handle, char *buffer, std::uint32_t size, const Body &body) noexcept
{
    using Kept = typename detail::KeptOf<decltype(&Body::operator())>::Type;
    return perform(handle, {size > 0 ? buffer : nullptr},
        [&](Kept &object) { copyText(body(object), buffer, size); });
}

} // namespace linuxunit
