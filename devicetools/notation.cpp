#include "devicetools/notation.h"

#include <array>
#include <charconv>
#include <cstring>

namespace notation {

using contract::Number;

namespace {

template <typename T>
T read(const void *place)
{
    T value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

template <typename... T>
void appendFigures(std::string &line, T... how)
{
    std::array<char, 400> figures; // the longest number with a fixed point has 309 before it
    const auto end = std::to_chars(figures.data(), figures.data() + figures.size(), how...).ptr;
    line.append(figures.data(), end);
}

void appendUnsigned(std::string &line, const void *place, std::size_t width)
{
    switch (width) {
    case 1:
        return appendFigures(line, read<std::uint8_t>(place));
    case 2:
        return appendFigures(line, read<std::uint16_t>(place));
    case 4:
        return appendFigures(line, read<std::uint32_t>(place));
    default:
        return appendFigures(line, read<std::uint64_t>(place));
    }
}

void appendSigned(std::string &line, const void *place, std::size_t width)
{
    switch (width) {
    case 1:
        return appendFigures(line, read<std::int8_t>(place));
    case 2:
        return appendFigures(line, read<std::int16_t>(place));
    case 4:
        return appendFigures(line, read<std::int32_t>(place));
    default:
        return appendFigures(line, read<std::int64_t>(place));
    }
}

} // namespace

void appendText(std::string &line, std::string_view latin1)
{
    constexpr auto digits = "0123456789abcdef";
    line += '"';
    for (const char character : latin1) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\')
            (line += '\\') += character;
        else if (character == '\n')
            line += "\\n";
        else if (byte < 0x20 || byte == 0x7F)
            ((line += "\\x") += digits[byte >> 4U]) += digits[byte & 0x0FU];
        else if (byte < 0x80)
            line += character;
        else
            (line += char(0xC0U | byte >> 6U)) += char(0x80U | (byte & 0x3FU));
    }
    line += '"';
}

void appendText(std::string &line, const char *latin1)
{
    if (latin1)
        appendText(line, std::string_view(latin1));
    else
        line += "null";
}

void appendInteger(std::string &line, std::int64_t number)
{
    appendFigures(line, number);
}

void appendReal(std::string &line, double number)
{
    appendFigures(line, number);
}

void appendFlag(std::string &line, std::uint8_t value)
{
    if (value > 1)
        appendFigures(line, value);
    else
        line += value == 1 ? "true" : "false";
}

void appendSeconds(std::string &line, double seconds)
{
    appendFigures(line, seconds, std::chars_format::fixed, 6);
}

void appendNumber(std::string &line, Number number, const void *place, std::size_t width)
{
    switch (number) {
    case Number::Real:
        return appendReal(line, read<double>(place));
    case Number::Flag:
        return appendFlag(line, read<std::uint8_t>(place));
    case Number::Signed:
        return appendSigned(line, place, width);
    default:
        return appendUnsigned(line, place, width);
    }
}

void appendRecord(std::string &line, const char *type, const void *place)
{
    bool first = true;
    for (const auto &field : contract::find(contract::structs, type)->fields) {
        if (!first)
            line += ", ";
        first = false;
        appendNumber(
            line, field.number, static_cast<const char *>(place) + field.offset, field.width);
    }
}

} // namespace notation
