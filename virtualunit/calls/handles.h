#pragma once

#include "frame/VornAux2.h"

#include <memory>
#include <typeindex>

namespace virtualunit {

/** What tells the families apart: the type of their handles. */
using Family = std::type_index;

template <typename Device>
Family familyOf()
{
    return typeid(Device *);
}

/** A new handle. Its address is never given out again, so that a released one is known for good.
 *  Null only when there is no memory. */
void *createHandle(const char *operation, Family family) noexcept;
/** Harmless with whatever is no handle of that family. */
void releaseHandle(const char *operation, Family family, const void *handle) noexcept;
bool isHandle(Family family, const void *handle);
/** Number of the handle in the journal, 0 for what is no handle of that family. */
unsigned handleNumber(Family family, const void *handle);

/** Place for what an operation keeps with its handle; gone when the handle is released and nobody
 *  uses it any more. Null for what is no handle. A handle belongs to one thread at a time, and so
 *  does what is kept with it. */
std::shared_ptr<void> kept(Family family, const void *handle);
void keep(Family family, const void *handle, std::shared_ptr<void> object);

} // namespace virtualunit
