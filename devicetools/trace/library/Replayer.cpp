#include "devicetools/trace/library/Replayer.h"

#include "devicetools/trace/format.h"
#include "devicetools/trace/traceFile.h"
#include "platform/system.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

namespace trace {

namespace {

using contract::Number;
using contract::Role;

/** Into a place of that width; the reader has seen to it that the number fits. */
void writeInteger(void *place, std::int64_t number, std::size_t width)
{
    switch (width) {
    case 1: {
        const auto value = std::uint8_t(number);
        std::memcpy(place, &value, sizeof value);
        break;
    }
    case 2: {
        const auto value = std::uint16_t(number);
        std::memcpy(place, &value, sizeof value);
        break;
    }
    case 4: {
        const auto value = std::uint32_t(number);
        std::memcpy(place, &value, sizeof value);
        break;
    }
    default:
        std::memcpy(place, &number, sizeof number);
    }
}

/** Nothing is written for what the recorded caller didn't take. */
void writeNumber(void *place, const Datum &datum, std::size_t width)
{
    if (const auto *integer = std::get_if<std::int64_t>(&datum))
        writeInteger(place, *integer, width);
    else if (const auto *real = std::get_if<double>(&datum))
        std::memcpy(place, real, sizeof *real);
}

void writeText(char *buffer, const Datum &datum, std::int64_t size)
{
    const auto *text = std::get_if<std::string>(&datum);
    if (!text || size <= 0)
        return;
    const auto length = std::min(text->size(), std::size_t(size) - 1);
    std::memcpy(buffer, text->data(), length);
    buffer[length] = '\0';
}

void writeRecord(
    void *place, const contract::Struct &record, std::vector<Datum>::const_iterator datum)
{
    for (const auto &field : record.fields)
        writeNumber(static_cast<char *>(place) + field.offset, *datum++, field.width);
}

void writeOuts(const Call &call, const contract::Value *values)
{
    auto datum = call.outs.begin();
    for (const auto &argument : call.operation->arguments) {
        const auto *value = values++;
        if (!argument.isWritten())
            continue;
        const auto *record = argument.role == Role::Record
                                 ? contract::find(contract::structs, argument.type)
                                 : nullptr;
        if (value->pointer && record)
            writeRecord(value->pointer, *record, datum);
        else if (value->pointer && argument.role == Role::Out)
            writeNumber(value->pointer, *datum, argument.width);
        else if (value->pointer)
            writeText(static_cast<char *>(value->pointer), *datum, value[1].integer);
        datum += record ? std::ptrdiff_t(record->fields.size()) : 1;
    }
}

/** Whether the caller asks to be kept waiting for news. */
bool waits(const contract::Operation &operation, const contract::Value *values)
{
    for (const auto &argument : operation.arguments) {
        if (std::string_view(argument.name) == "wait" && values->integer != 0)
            return true;
        ++values;
    }
    return false;
}

} // namespace

Replayer::Replayer(const Settings &settings)
    : times(settings.times)
    , tally(settings.tally.empty() ? nullptr : Tally::open(platform::pathOf(settings.tally)))
    , trace(readFile(settings.replayed))
{
    for (const auto &call : trace.calls)
        answers[call.question()].calls.push_back(&call);
}

void *Replayer::create(std::size_t family)
{
    const auto answer =
        answerTo(question(contract::families[family].createName, true, std::string_view()));
    unsigned number = 0;
    const bool isNull = answer.call && answer.call->handle == 0;
    return handles.add(family, isNull ? nullptr : this, number);
}

void Replayer::release(std::size_t family, void *handle)
{
    // There is no answer to it, so none can be missing.
    if (tally)
        tally->addCall();
    if (handles.find(family, handle).number != 0)
        handles.release(handle);
}

DeviceCode Replayer::perform(std::size_t family, std::size_t operation, contract::Value *values)
{
    const auto &row = contract::operations[operation];
    std::string arguments;
    appendArguments(arguments, row, values);
    const bool isHandle = handles.find(family, values[0].pointer).number != 0;
    const auto answer = answerTo(question(row.name, isHandle, arguments));
    if (!answer.call)
        return DEVICE_NOT_SUPPORTED;
    // Whoever follows a job asks again at once, also when the trace has no more news of it.
    if (answer.isUsedUp && waits(row, values))
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (answer.call->code == DEVICE_OK)
        writeOuts(*answer.call, values);
    return answer.call->code;
}

const char *Replayer::text(std::size_t text, std::int64_t number)
{
    std::string argument;
    appendInteger(argument, number);
    const auto answer = answerTo(question(contract::texts[text].name, true, argument));
    if (!answer.call)
        return "not in the trace";
    return answer.call->text ? answer.call->text->c_str() : nullptr;
}

Replayer::Answer Replayer::answerTo(const std::string &question)
{
    if (tally)
        tally->addCall();
    Answer answer{nullptr, false};
    {
        const std::lock_guard lock(mutex);
        const auto found = answers.find(question);
        if (found != answers.end()) {
            auto &[calls, next] = found->second;
            answer = {calls[std::min(next, calls.size() - 1)], next >= calls.size()};
            ++next;
        }
    }
    if (!answer.call && tally)
        tally->addUnknown(question);
    if (answer.call && times && answer.call->duration)
        std::this_thread::sleep_for(std::chrono::duration<double>(*answer.call->duration));
    return answer;
}

} // namespace trace
