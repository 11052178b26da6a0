#include "devicetools/trace/format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace trace {

namespace {

using contract::Argument;
using contract::Number;
using contract::Role;
using contract::Value;

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

void appendRecord(std::string &line, const Argument &argument, const void *place)
{
    bool first = true;
    for (const auto &field : contract::find(contract::structs, argument.type)->fields) {
        if (!first)
            line += ", ";
        first = false;
        appendNumber(
            line, field.number, static_cast<const char *>(place) + field.offset, field.width);
    }
}

void appendOut(std::string &line, const Argument &argument, const Value *value)
{
    const void *place = value->pointer;
    if (!place)
        line += "null";
    else if (argument.role == Role::Record)
        appendRecord(line, argument, place);
    else if (argument.role == Role::Out)
        appendNumber(line, argument.number, place, argument.width);
    else {
        const auto *text = static_cast<const char *>(place);
        const auto size = std::size_t(value[1].integer);
        appendText(line, std::string_view(text, std::find(text, text + size, '\0')));
    }
}

void appendIn(std::string &line, const Argument &argument, const Value &value)
{
    if (argument.role == Role::String)
        appendText(line, static_cast<const char *>(value.pointer));
    else if (argument.number == Number::Real)
        appendReal(line, value.real);
    else if (argument.number == Number::Bool)
        line += value.integer != 0 ? "true" : "false";
    else
        appendInteger(line, value.integer);
}

/** Calls append(argument, value) for those that it is meant for, with commas between. */
template <typename Choice, typename Append>
void appendChosen(std::string &line, const contract::Operation &operation, const Value *values,
    Choice isChosen, Append append)
{
    bool first = true;
    for (const auto &argument : operation.arguments) {
        if (isChosen(argument)) {
            if (!first)
                line += ", ";
            first = false;
            append(line, argument, values);
        }
        ++values;
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

void appendArguments(std::string &line, const contract::Operation &operation, const Value *values)
{
    appendChosen(
        line, operation, values,
        [](const Argument &argument) {
            return argument.role == Role::In || argument.role == Role::String ||
                   argument.role == Role::Size;
        },
        [](std::string &text, const Argument &argument, const Value *value) {
            appendIn(text, argument, *value);
        });
}

void appendOuts(std::string &line, const contract::Operation &operation, const Value *values)
{
    appendChosen(
        line, operation, values, [](const Argument &argument) { return argument.isWritten(); },
        appendOut);
}

} // namespace trace
