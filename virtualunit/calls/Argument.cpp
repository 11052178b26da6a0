#include "virtualunit/calls/Argument.h"

#include "devicetools/notation.h"

namespace virtualunit {

namespace {

std::string recordText(const char *type, const void *record)
{
    std::string text;
    notation::appendRecord(text, type, record);
    return text;
}

} // namespace

std::string journalText(bool value)
{
    return value ? "true" : "false";
}

std::string journalText(double value)
{
    std::string text;
    notation::appendReal(text, value);
    return text;
}

std::string journalText(const char *latin1)
{
    std::string text;
    notation::appendText(text, latin1);
    return text;
}

std::string journalText(const DiagnosticTimes &times)
{
    return recordText("DiagnosticTimes", &times);
}

std::string journalText(const BatteryTimes &times)
{
    return recordText("BatteryTimes", &times);
}

std::string journalText(const FirmwareUpgradeStatus &status)
{
    return recordText("FirmwareUpgradeStatus", &status);
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
