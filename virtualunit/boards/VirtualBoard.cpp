#include "virtualunit/boards/VirtualBoard.h"

#include "virtualunit/VirtualUnit.h"
#include "virtualunit/boards/boardRecords.h"

#include <charconv>
#include <cstdio>
#include <string>

namespace boards {

namespace {

constexpr std::uint32_t theHandle = 1;

bool readValue(const char *name, std::string &value)
{
    return virtualunit::get(std::string("CpuBoard.") + name, value).empty();
}

/** Takes the next character off a UTF-8 text; what is no UTF-8 becomes U+FFFD, byte by byte. */
char32_t takeCharacter(std::string_view &text)
{
    constexpr char32_t replacement = 0xFFFD;
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
    char32_t character = size < 2 ? lead : lead & (0x7FU >> size);
    bool sound = size > 0 && size <= text.size();
    for (std::size_t i = 1; sound && i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        sound = (byte & 0xC0) == 0x80;
        character = character << 6 | (byte & 0x3FU);
    }
    text.remove_prefix(sound ? size : 1);
    return sound ? character : replacement;
}

} // namespace

std::int32_t VirtualBoard::initialise()
{
    ++users;
    return 1;
}

std::int32_t VirtualBoard::uninitialise()
{
    auto count = users.load();
    while (count > 0 && !users.compare_exchange_weak(count, count - 1)) {
    }
    return count > 0 ? 1 : 0;
}

std::int32_t VirtualBoard::openByName(const char16_t *name, std::uint32_t *handle) const
{
    return name && boardName == name ? open(0, handle) : 0;
}

std::int32_t VirtualBoard::open(std::uint32_t number, std::uint32_t *handle) const
{
    if (users == 0 || number != 0 || !handle)
        return 0;
    *handle = theHandle;
    return 1;
}

bool VirtualBoard::isOpen(std::uint32_t handle) const
{
    return users > 0 && handle == theHandle;
}

bool readText(const char *name, char16_t *out, std::size_t size)
{
    std::string value;
    if (!readValue(name, value))
        return false;
    std::u16string text;
    for (std::string_view rest = value; !rest.empty();) {
        const auto character = takeCharacter(rest);
        if (text.size() + (character > 0xFFFF ? 2 : 1) >= size)
            break;
        if (character > 0xFFFF) {
            text += char16_t(0xD800 + ((character - 0x10000) >> 10));
            text += char16_t(0xDC00 + (character & 0x3FF));
        } else {
            text += char16_t(character);
        }
    }
    text.copy(out, size - 1);
    out[text.size()] = 0;
    return true;
}

bool readNumber(const char *name, std::uint16_t &out)
{
    std::string value;
    if (!readValue(name, value))
        return false;
    const auto [rest, error] = std::from_chars(value.data(), value.data() + value.size(), out);
    return error == std::errc() && rest == value.data() + value.size();
}

bool readDate(const char *name, BoardDate &out)
{
    std::string value;
    unsigned year = 0;
    unsigned month = 0;
    unsigned day = 0;
    int length = 0;
    if (!readValue(name, value) ||
        std::sscanf(value.c_str(), "%4u-%2u-%2u%n", &year, &month, &day, &length) != 3 ||
        std::size_t(length) != value.size())
        return false;
    out.year = std::uint16_t(year);
    out.month = std::uint16_t(month);
    out.day = std::uint16_t(day);
    return true;
}

} // namespace boards
