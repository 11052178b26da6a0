#pragma once

#include <memory>
#include <typeindex>

namespace linuxunit {

/** What tells the families apart: the type of their handles. */
using Family = std::type_index;

template <typename Device>
Family familyOf()
{
    return typeid(Device *);
}

/** A new handle. Its address is never given out again, so that a released one is known for good.
 *  Null only when there is no memory. Any thread, as all of these. */
void *createHandle(Family family) noexcept;
/** Harmless with whatever is no handle of that family. With the last handle of all, what the hooks
 *  keep running ends. */
void releaseHandle(Family family, const void *handle) noexcept;
bool isHandle(Family family, const void *handle);

/** Place for what a family keeps with its handle, one object of each type; gone when the handle is
 *  released. A handle belongs to one thread at a time, and so does what is kept with it. */
std::shared_ptr<void> kept(Family family, const void *handle, std::type_index type);
void keep(Family family, const void *handle, std::type_index type, std::shared_ptr<void> object);

/** What is kept with a handle, made when it is first asked for. */
template <typename T, typename Device>
std::shared_ptr<T> kept(Device *handle)
{
    auto object = std::static_pointer_cast<T>(kept(familyOf<Device>(), handle, typeid(T)));
    if (!object) {
        object = std::make_shared<T>();
        keep(familyOf<Device>(), handle, typeid(T), object);
    }
    return object;
}

/** What may run behind the calls: what reads and writes by itself ends before what it does so by.
 */
enum class Runner { Control, Service };

/** Called when the last handle of all families has been released: nothing of the library may run
 *  then. At most once for each function; it may run again when there were handles in between. */
void atLastRelease(Runner runner, void (*function)());

} // namespace linuxunit
