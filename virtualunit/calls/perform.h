#pragma once

#include "virtualunit/calls/Argument.h"
#include "virtualunit/calls/handles.h"
#include "virtualunit/state/Unit.h"

#include <type_traits>

/** The way that every call takes: handle, pointers, delay, fault, body, journal. */
namespace virtualunit {

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
    return performCall(operation, familyOf<Device>(), handle, arguments, does, body);
}

template <typename Device>
Device *create(const char *operation) noexcept
{
    return static_cast<Device *>(createHandle(operation, familyOf<Device>()));
}

template <typename Device>
void release(const char *operation, Device *handle) noexcept
{
    releaseHandle(operation, familyOf<Device>(), handle);
}

/** Journal of an operation that gives a text; returns the text. */
const char *textCall(const char *operation, std::int64_t argument, const char *text) noexcept;

} // namespace virtualunit
