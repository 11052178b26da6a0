#include "virtualunit/calls/perform.h"

#include "virtualunit/calls/Journal.h"

#include <algorithm>
#include <thread>

namespace virtualunit {

namespace {

std::string givenTexts(Arguments arguments)
{
    std::string text;
    for (const auto &argument : arguments) {
        if (argument.isGiven())
            text += (text.empty() ? "" : ", ") + argument.given();
    }
    return text;
}

std::string filledTexts(Arguments arguments)
{
    std::string text;
    for (const auto &argument : arguments) {
        if (argument.isFilled())
            text += (text.empty() ? "" : ", ") + argument.filled();
    }
    return text;
}

void record(const char *operation, unsigned handle, Arguments arguments, Code code)
try {
    if (journalRuns()) {
        journal(operation, handle, std::to_string(code), givenTexts(arguments),
            code == Ok ? filledTexts(arguments) : std::string());
    }
} catch (const std::exception &) {
    // What has been done matters more than its record.
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
    unit.setFault(operation, fault);
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

} // namespace virtualunit
