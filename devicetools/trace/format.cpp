#include "devicetools/trace/format.h"

#include <algorithm>

namespace trace {

namespace {

using contract::Argument;
using contract::Number;
using contract::Role;
using contract::Value;
using notation::appendNumber, notation::appendRecord;

void appendOut(std::string &line, const Argument &argument, const Value *value)
{
    const void *place = value->pointer;
    if (!place)
        line += "null";
    else if (argument.role == Role::Record)
        appendRecord(line, argument.type, place);
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
