#include "virtualunit/calls/Operation.h"

#include "virtualunit/state/latin1.h"

#include <algorithm>
#include <cstring>

namespace virtualunit {

Code copyText(const Unit &unit, Key key, char *buffer, std::uint32_t size)
{
    const Code code = unit.missing(key);
    if (code == Ok)
        copyText(unit.text(key), buffer, size);
    return code;
}

void copyText(std::string_view utf8, char *buffer, std::uint32_t size)
{
    const auto text = toLatin1(utf8);
    const auto length = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

} // namespace virtualunit
