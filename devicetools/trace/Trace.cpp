#include "devicetools/trace/Trace.h"

#include "devicetools/trace/LineParser.h"
#include "devicetools/trace/format.h"

#include <algorithm>
#include <charconv>

namespace trace {

namespace {

using contract::Number;
using contract::Role;

constexpr std::string_view versionMark = "# vorntrace ";

/** Appends values with commas between. */
class List
{
public:
    explicit List(std::string &filled)
        : line(filled)
    {}

    void append(const Datum &datum, Number number)
    {
        if (!isFirst)
            line += ", ";
        isFirst = false;
        if (const auto *text = std::get_if<std::string>(&datum))
            appendText(line, *text);
        else if (const auto *real = std::get_if<double>(&datum))
            appendReal(line, *real);
        else if (const auto *integer = std::get_if<std::int64_t>(&datum))
            appendIntegral(*integer, number);
        else
            line += "null";
    }

private:
    std::string &line;
    bool isFirst = true;

    void appendIntegral(std::int64_t value, Number number)
    {
        if (number == Number::Bool || number == Number::Flag)
            appendFlag(line, std::uint8_t(value));
        else
            appendInteger(line, value);
    }
};

std::string argumentsOf(const Call &call)
{
    std::string line;
    List list(line);
    auto datum = call.arguments.begin();
    if (!call.operation && datum != call.arguments.end())
        list.append(*datum, Number::Signed);
    else if (call.operation) {
        for (const auto &argument : call.operation->arguments) {
            if (argument.role != Role::Handle && !argument.isWritten())
                list.append(*datum++, argument.number);
        }
    }
    return line;
}

std::string outsOf(const Call &call)
{
    std::string line;
    List list(line);
    auto datum = call.outs.begin();
    for (const auto &argument : call.operation->arguments) {
        if (!argument.isWritten())
            continue;
        if (argument.role != Role::Record) {
            list.append(*datum++, argument.number);
            continue;
        }
        for (const auto &field : contract::find(contract::structs, argument.type)->fields)
            list.append(*datum++, field.number);
    }
    return line;
}

/** Refuses a trace of a later program. */
void checkVersion(std::string_view line)
{
    const auto number = line.substr(versionMark.size());
    unsigned version = 0;
    const auto end = number.data() + number.size();
    if (std::from_chars(number.data(), end, version).ptr != end || version != 1)
        throw Unreadable("line 1: the trace is of version " + std::string(number) +
                         "; this program reads version 1");
}

void readLine(Trace &trace, std::string_view line, std::size_t number)
try {
    if (line.ends_with('\r')) // an editor's doing; that of a text is escaped
        line.remove_suffix(1);
    if (number == 1 && line.starts_with(versionMark))
        checkVersion(line);
    else if (!line.empty() && !line.starts_with('#'))
        trace.calls.push_back(parseLine(line));
} catch (const LineError &error) {
    throw Unreadable("line " + std::to_string(number) + ": " + error.reason);
}

/** A line without its end: whatever could be the beginning of one was cut off. */
void judgeLastLine(Trace &trace, std::string_view line, std::size_t number)
try {
    if (!line.starts_with('#'))
        parseLine(line);
    else if (number == 1 && line.starts_with(versionMark))
        checkVersion(line);
    trace.warning = "line " + std::to_string(number) + " is cut off and left out";
} catch (const LineError &error) {
    if (!error.isAtEnd)
        throw Unreadable("line " + std::to_string(number) + ": " + error.reason);
    trace.warning = "line " + std::to_string(number) + " is cut off and left out";
}

} // namespace

std::string question(const char *name, bool isHandleValid, std::string_view arguments)
{
    std::string text = name;
    text += '(';
    if (!isHandleValid)
        text += arguments.empty() ? "#0" : "#0, ";
    text += arguments;
    text += ')';
    return text;
}

std::string Call::question() const
{
    return trace::question(
        name, handle != 0 || kind == Kind::Create || kind == Kind::Text, argumentsOf(*this));
}

std::string Call::line() const
{
    std::string line;
    if (begin)
        appendSeconds(line, *begin), line += ' ';
    line += "T" + std::to_string(thread) + " " + name + "(";
    const auto given = argumentsOf(*this);
    if (kind == Kind::Operation || kind == Kind::Release)
        line += "#" + std::to_string(handle) + (given.empty() ? "" : ", ");
    line += given + ")";
    if (kind == Kind::Create)
        line += " = #" + std::to_string(handle);
    else if (kind == Kind::Operation)
        line += " = " + std::to_string(code);
    else if (kind == Kind::Text)
        line += " = ", appendText(line, text ? text->c_str() : nullptr);
    if (!outs.empty())
        line += " [" + outsOf(*this) + "]";
    if (isFault)
        line += " fault";
    if (duration)
        line += " <", appendSeconds(line, *duration), line += '>';
    return line;
}

Trace read(std::string_view bytes)
{
    Trace trace;
    for (std::size_t number = 1; !bytes.empty(); ++number) {
        const auto end = bytes.find('\n');
        if (end == std::string_view::npos) {
            judgeLastLine(trace, bytes, number);
            break;
        }
        readLine(trace, bytes.substr(0, end), number);
        bytes.remove_prefix(end + 1);
    }
    return trace;
}

bool looksLikeTrace(std::string_view beginning)
{
    const auto line = beginning.substr(0, beginning.find('\n'));
    if (line.starts_with(versionMark))
        return true;
    try {
        parseLine(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
    } catch (const LineError &) {
        return false;
    }
    return true;
}

} // namespace trace
