#include "virtualunit/calls/Argument.h"

#include "virtualunit/calls/Journal.h"
#include "virtualunit/state/Property.h"

namespace virtualunit {

namespace {

std::string listed(std::initializer_list<std::int64_t> numbers)
{
    std::string text;
    for (const auto number : numbers)
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    return text;
}

} // namespace

std::string journalText(bool value)
{
    return value ? "true" : "false";
}

std::string journalText(double value)
{
    return formatReal(value);
}

std::string journalText(const char *latin1)
{
    return latin1 ? quoted(latin1) : "null";
}

std::string journalText(const DiagnosticTimes &times)
{
    return listed({times.totalRunTime, times.totalSuspendTime, times.totalHeatTime,
        times.runTime40To60, times.runTime60To70, times.runTime70To80, times.runTimeAbove80});
}

std::string journalText(const BatteryTimes &times)
{
    return listed({times.runTimeMainPower, times.runTimeBatteryPower, times.runTimeBelowMinus20,
        times.runTimeMinus20To0, times.runTime0To40, times.runTime40To60, times.runTime60To70,
        times.runTime70To80, times.runTimeAbove80});
}

std::string journalText(const FirmwareUpgradeStatus &status)
{
    return listed({status.state, status.percent, status.errorCode});
}

Argument Argument::flag(DeviceBool *out)
{
    Argument argument(out);
    argument.printer = printFlag;
    return argument;
}

bool Argument::isMissing() const
{
    return isPointer && (object == nullptr || (way == Way::Buffer && bufferSize == 0));
}

std::string Argument::given() const
{
    return way == Way::Buffer ? std::to_string(bufferSize) : printer(object);
}

std::string Argument::printText(const void *object)
{
    return journalText(static_cast<const char *>(object));
}

std::string Argument::printFlag(const void *object)
{
    return journalText(*static_cast<const DeviceBool *>(object) != 0);
}

} // namespace virtualunit
