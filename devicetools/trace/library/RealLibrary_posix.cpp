#include "devicetools/trace/library/RealLibrary.h"

#include <dlfcn.h>

namespace trace {

namespace {

std::string lastError()
{
    const char *text = ::dlerror();
    return text ? text : "the system doesn't say why";
}

} // namespace

RealLibrary::RealLibrary(const std::string &file)
{
    // This library stands before all others, and behind it the loader has put the one that the
    // program is bound to.
    library = file.empty() ? RTLD_NEXT : ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!file.empty() && !library)
        giveUp("The library can't be loaded: " + lastError());
}

contract::Function RealLibrary::function(const char *name) const
{
    void *found = ::dlsym(library, name);
    if (!found)
        giveUp("The library has no " + std::string(name) + ": " + lastError());
    return reinterpret_cast<contract::Function>(found);
}

} // namespace trace
