#include "devicetools/trace/library/RealLibrary.h"

#include "platform/system.h"

#include <system_error>

#include <windows.h>

namespace trace {

RealLibrary::RealLibrary(const std::string &file)
{
    // Without a folder the system searches as it does for the program: in its own folder first.
    const HMODULE found = file.empty() ? LoadLibraryW(L"VornAux2.dll")
                                       : LoadLibraryExW(platform::pathOf(file).c_str(), nullptr,
                                             LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!found) {
        giveUp("The library \"" + (file.empty() ? std::string("VornAux2.dll") : file) +
               "\" can't be loaded: " + std::system_category().message(int(GetLastError())));
    }
    library = found;
}

contract::Function RealLibrary::function(const char *name) const
{
    const auto found = GetProcAddress(static_cast<HMODULE>(library), name);
    if (!found)
        giveUp("The library has no " + std::string(name));
    return reinterpret_cast<contract::Function>(found);
}

} // namespace trace
