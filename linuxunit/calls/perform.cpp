#include "linuxunit/calls/perform.h"

#include <algorithm>
#include <cstring>

namespace linuxunit {

void copyText(const std::string &latin1, char *buffer, std::uint32_t size)
{
    const auto length = std::min<std::size_t>(latin1.size(), size - 1);
    std::memcpy(buffer, latin1.data(), length);
    buffer[length] = '\0';
}

Kind detail::checkCall(Family family, const void *handle, Pointers pointers)
{
    if (!isHandle(family, handle))
        return InvalidHandle;
    const bool isComplete =
        std::all_of(pointers.begin(), pointers.end(), [](const void *p) { return p != nullptr; });
    return isComplete ? Ok : MissingArgument;
}

} // namespace linuxunit
