#include "virtualunit/state/latin1.h"

#include "virtualunit/state/codes.h"

namespace virtualunit {

std::string fromLatin1(std::string_view text)
{
    std::string utf8;
    utf8.reserve(text.size());
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            utf8 += character;
        } else {
            utf8 += char(0xC0 | (byte >> 6));
            utf8 += char(0x80 | (byte & 0x3F));
        }
    }
    return utf8;
}

std::string toLatin1(std::string_view text)
{
    std::string latin1;
    latin1.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            latin1 += text[i];
            continue;
        }
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
        if ((byte != 0xC2 && byte != 0xC3) || (next & 0xC0) != 0x80)
            throw Failure{ValueOutOfRange, "Texts of the unit take Latin-1 characters only."};
        latin1 += char(((byte & 0x03U) << 6U) | (next & 0x3FU));
        ++i;
    }
    return latin1;
}

} // namespace virtualunit
