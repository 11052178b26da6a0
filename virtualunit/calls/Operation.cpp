#include "virtualunit/calls/Operation.h"

#include "devicetools/contract.h"
#include "virtualunit/calls/Journal.h"

#include <algorithm>
#include <cstring>
#include <thread>

namespace virtualunit {

namespace {

template <typename T>
const T &at(const void *pointer)
{
    return *static_cast<const T *>(pointer);
}

std::string listed(std::initializer_list<std::int64_t> numbers)
{
    std::string text;
    for (const auto number : numbers)
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

std::string timesText(const DiagnosticTimes &times)
{
    return listed({times.totalRunTime, times.totalSuspendTime, times.totalHeatTime,
        times.runTime40To60, times.runTime60To70, times.runTime70To80, times.runTimeAbove80});
}

std::string timesText(const BatteryTimes &times)
{
    return listed({times.runTimeMainPower, times.runTimeBatteryPower, times.runTimeBelowMinus20,
        times.runTimeMinus20To0, times.runTime0To40, times.runTime40To60, times.runTime60To70,
        times.runTime70To80, times.runTimeAbove80});
}

std::string joined(Arguments arguments, bool outs)
{
    std::string text;
    for (const auto &argument : arguments) {
        if (argument.isOut() == outs)
            text += (text.empty() ? "" : ", ") + argument.text();
    }
    return text;
}

void record(const char *operation, unsigned handle, Arguments arguments, Code code)
{
    if (journalRuns()) {
        journal(operation, handle, std::to_string(code), argumentsText(arguments),
            code == Ok ? joined(arguments, true) : std::string());
    }
}

std::uint32_t delayOf(const Unit &unit, const char *operation)
{
    const auto &delays = unit.snapshot().delays;
    const auto found = delays.empty() ? delays.end() : delays.find(operation);
    return found == delays.end() ? 0 : found->second;
}

/** The code of the fault that this call meets, Ok without; counts the call. */
Code takeFault(Unit &unit, const char *operation)
{
    const auto find = [&] { return unit.snapshot().faults.find(operation); };
    const auto none = unit.snapshot().faults.end();
    if (unit.snapshot().faults.empty() || find() == none || find()->second.passed())
        return Ok;
    if (find()->second.times == 0 && find()->second.after == 0)
        return static_cast<Code>(find()->second.code);
    // Other processes count too.
    Change change(unit);
    const auto &faults = unit.snapshot().faults;
    const auto found = faults.find(operation);
    if (found == faults.end() || found->second.passed())
        return Ok;
    auto fault = found->second;
    const bool strikes = fault.seen >= fault.after;
    if (fault.times == 0 && strikes)
        return static_cast<Code>(fault.code);
    ++fault.seen;
    unit.writeFault(operation, fault);
    change.commit();
    return strikes ? static_cast<Code>(fault.code) : Ok;
}

Code runOnUnit(const char *operation, Does does, const Body &body)
{
    auto &unit = Unit::instance();
    const Access access(unit);
    if (const auto milliseconds = delayOf(unit, operation))
        unit.pause(std::chrono::milliseconds(milliseconds));
    if (const Code fault = takeFault(unit, operation); fault != Ok)
        return fault;
    if (does == Does::Read)
        return body(unit);
    Change change(unit);
    const Code code = body(unit);
    if (code == Ok)
        change.commit();
    return code;
}

Code checkedRun(const char *operation, Family family, const void *handle, Arguments arguments,
    Does does, const Body &body)
{
    if (!isHandle(family, handle))
        return InvalidHandle;
    const auto missing = [](const Argument &argument) { return argument.isMissing(); };
    if (std::any_of(arguments.begin(), arguments.end(), missing))
        return MissingArgument;
    try {
        return runOnUnit(operation, does, body);
    } catch (const Failure &failure) {
        return failure.code;
    }
}

} // namespace

bool Argument::isMissing() const
{
    if (type < Type::Text)
        return false;
    return pointer == nullptr || (type == Type::Buffer && integer == 0);
}

std::string argumentsText(Arguments arguments)
{
    std::string text;
    for (const auto &argument : arguments) {
        if (argument.type == Argument::Type::Buffer)
            text += (text.empty() ? "" : ", ") + std::to_string(argument.integer);
        else if (!argument.isOut())
            text += (text.empty() ? "" : ", ") + argument.text();
    }
    return text;
}

std::string Argument::text() const
{
    switch (type) {
    case Type::Bool:
        return integer != 0 ? "true" : "false";
    case Type::Signed:
        return std::to_string(integer);
    case Type::Real:
        return formatReal(real);
    case Type::Text:
    case Type::Buffer:
        return pointer ? quoted(static_cast<const char *>(pointer)) : "null";
    case Type::U8:
        return std::to_string(at<std::uint8_t>(pointer));
    case Type::U16:
        return std::to_string(at<std::uint16_t>(pointer));
    case Type::U32:
        return std::to_string(at<std::uint32_t>(pointer));
    case Type::I16:
        return std::to_string(at<std::int16_t>(pointer));
    case Type::I32:
        return std::to_string(at<std::int32_t>(pointer));
    case Type::I64:
        return std::to_string(at<std::int64_t>(pointer));
    case Type::Flag:
        return at<std::uint8_t>(pointer) != 0 ? "true" : "false";
    case Type::Double:
        return formatReal(at<double>(pointer));
    case Type::Diagnostics:
        return timesText(at<DiagnosticTimes>(pointer));
    case Type::Battery:
        return timesText(at<BatteryTimes>(pointer));
    case Type::Firmware: {
        const auto &status = at<FirmwareUpgradeStatus>(pointer);
        return listed({status.state, status.percent, status.errorCode});
    }
    }
    return {};
}

DeviceCode performCall(const char *operation, Family family, const void *handle,
    Arguments arguments, Does does, const Body &body) noexcept
{
    try {
        // Before the call: a firmware job may last, and the handle may be gone afterwards.
        const unsigned number = journalRuns() ? handleNumber(family, handle) : 0;
        const Code code = checkedRun(operation, family, handle, arguments, does, body);
        record(operation, number, arguments, code);
        return code;
    } catch (const std::exception &) {
        return GeneralFault; // no memory, say
    }
}

const char *textCall(const char *operation, std::int64_t argument, const char *text) noexcept
{
    try {
        if (journalRuns())
            journal(operation, {}, text, std::to_string(argument), {});
    } catch (const std::exception &) {
        // The text matters more than its record.
    }
    return text;
}

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

const std::vector<std::string> &operationNames()
{
    static const auto *const names = [] {
        auto *all = new std::vector<std::string>;
        for (const auto &operation : contract::operations)
            all->emplace_back(operation.name);
        return all;
    }();
    return *names;
}

const std::string &checkedOperation(const std::string &operation)
{
    const auto &names = operationNames();
    if (std::find(names.begin(), names.end(), operation) == names.end())
        throw Failure{ValueOutOfRange, "There is no operation \"" + operation + "\"."};
    return operation;
}

} // namespace virtualunit
