#include "devicetools/trace/library/Recorder.h"

#include "devicetools/trace/format.h"
#include "platform/system.h"

#include <iostream>
#include <stdexcept>
#include <thread>

namespace trace {

namespace {

/** True while this thread is inside the real library: what that calls of its own functions is none
 *  of the program's calls. */
thread_local bool isInside = false;

class Inside
{
public:
    Inside() { isInside = true; }
    ~Inside() { isInside = false; }
    Inside(const Inside &) = delete;
    Inside &operator=(const Inside &) = delete;
};

double seconds(std::chrono::steady_clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

} // namespace

Recorder::Recorder(const Settings &settings)
    : library(settings.library)
    , times(settings.times)
    , start(std::chrono::nanoseconds(settings.start))
    , tally(settings.tally.empty() ? nullptr : Tally::open(platform::pathOf(settings.tally)))
    , sink(Sink::open(settings.output, sinkError))
{
    if (!sink && !settings.output.empty()) {
        throw std::runtime_error(
            "The trace \"" + settings.output + "\" can't be written: " + sinkError);
    }
    for (const auto &text : settings.faults) {
        const auto fault = parseFault(text);
        faults[contract::find(contract::operations, fault.operation)->name].fault = fault;
    }
    for (const auto &text : settings.delays) {
        const auto delay = parseDelay(text);
        delays[contract::find(contract::operations, delay.operation)->name] =
            std::chrono::milliseconds(delay.milliseconds);
    }
}

void *Recorder::create(std::size_t family)
{
    const auto &row = contract::families[family];
    const auto function = reinterpret_cast<void *(*)()>(library.function(row.createName));
    if (isInside)
        return function();
    Line line{now(), {}, row.createName};
    void *real = nullptr;
    {
        const Inside inside;
        real = function();
    }
    line.end = now();
    unsigned number = 0;
    void *handle = handles.add(family, real, number);
    line.call += "() = #";
    appendInteger(line.call, number);
    write(line);
    return handle;
}

void Recorder::release(std::size_t family, void *handle)
{
    const auto &row = contract::families[family];
    const auto function = reinterpret_cast<void (*)(void *)>(library.function(row.releaseName));
    if (isInside)
        return function(handle);
    const auto found = handles.find(family, handle);
    Line line{now(), {}, row.releaseName};
    {
        const Inside inside;
        function(found.real);
    }
    line.end = now();
    if (found.number != 0)
        handles.release(handle);
    line.call += "(#";
    appendInteger(line.call, found.number);
    line.call += ')';
    write(line);
}

DeviceCode Recorder::perform(std::size_t family, std::size_t operation, contract::Value *values)
{
    const auto &row = contract::operations[operation];
    if (isInside)
        return row.call(functionOf(operation), values);
    const auto handle = handles.find(family, values[0].pointer);
    values[0].pointer = handle.real;
    Line line{now(), {}, row.name};
    pause(row.name);
    const auto fault = faultOf(row.name);
    auto code = fault;
    if (fault == DEVICE_OK) {
        const Inside inside;
        code = row.call(functionOf(operation), values);
    }
    line.end = now();
    line.call += "(#";
    appendInteger(line.call, handle.number);
    const auto length = line.call.size();
    line.call += ", ";
    appendArguments(line.call, row, values);
    if (line.call.size() == length + 2)
        line.call.resize(length);
    line.call += ") = ";
    appendInteger(line.call, code);
    const auto result = line.call.size();
    line.call += " [";
    if (code == DEVICE_OK)
        appendOuts(line.call, row, values);
    if (line.call.size() == result + 2)
        line.call.resize(result);
    else
        line.call += ']';
    if (fault != DEVICE_OK)
        line.call += " fault";
    write(line);
    return code;
}

const char *Recorder::text(std::size_t text, std::int64_t number)
{
    const auto &row = contract::texts[text];
    const auto function = library.function(row.name);
    if (isInside)
        return row.call(function, number);
    Line line{now(), {}, row.name};
    const char *answer = nullptr;
    {
        const Inside inside;
        answer = row.call(function, number);
    }
    line.end = now();
    line.call += '(';
    appendInteger(line.call, number);
    line.call += ") = ";
    appendText(line.call, answer);
    write(line);
    return answer;
}

contract::Function Recorder::functionOf(std::size_t operation)
{
    auto function = functions[operation].load(std::memory_order_relaxed);
    if (!function) {
        function = library.function(contract::operations[operation].name);
        functions[operation].store(function, std::memory_order_relaxed);
    }
    return function;
}

/** The code that this call fails with, 0 without a fault; counts the call. */
DeviceCode Recorder::faultOf(const char *operation)
{
    const auto found = faults.empty() ? faults.end() : faults.find(operation);
    if (found == faults.end())
        return DEVICE_OK;
    const auto &fault = found->second.fault;
    const auto before = found->second.seen.fetch_add(1);
    const bool isPast = fault.times != 0 && before >= std::uint64_t{fault.after} + fault.times;
    return before < fault.after || isPast ? DEVICE_OK : fault.code;
}

void Recorder::pause(const char *operation) const
{
    const auto found = delays.empty() ? delays.end() : delays.find(operation);
    if (found != delays.end())
        std::this_thread::sleep_for(found->second);
}

void Recorder::write(const Line &line)
{
    thread_local unsigned number = 0;
    if (tally)
        tally->addCall();
    if (!sink)
        return;
    std::string text;
    text.reserve(line.call.size() + 64);
    const std::lock_guard lock(mutex);
    if (number == 0)
        number = ++lastThread;
    if (times)
        appendSeconds(text, seconds(line.begin - start)), text += ' ';
    text += 'T';
    appendInteger(text, number);
    (text += ' ') += line.call;
    if (times)
        text += " <", appendSeconds(text, seconds(line.end - line.begin)), text += '>';
    text += '\n';
    const auto error = sink->append(text);
    if (!error.empty() && !hasFailed)
        std::cerr << "vorntrace: The trace can't be written: " << error << std::endl;
    hasFailed = hasFailed || !error.empty();
}

} // namespace trace
