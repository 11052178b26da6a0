#include "devicetools/trace/Settings.h"

#include "devicetools/contract.h"
#include "platform/system.h"

#include <charconv>
#include <stdexcept>
#include <string_view>

namespace trace {

namespace {

constexpr char separator = ';';

template <typename T>
T number(std::string_view text, const char *what)
{
    T value{};
    const auto end = text.data() + text.size();
    if (text.empty() || std::from_chars(text.data(), end, value).ptr != end)
        throw std::invalid_argument("\"" + std::string(text) + "\" is no " + what);
    return value;
}

/** Cuts the text before the mark off; the rest is behind it, empty without a mark. */
std::string_view cut(std::string_view &rest, char mark)
{
    const auto end = rest.find(mark);
    const auto first = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return first;
}

std::string checkedOperation(std::string_view name)
{
    if (!contract::find(contract::operations, name))
        throw std::invalid_argument("There is no operation \"" + std::string(name) + "\"");
    return std::string(name);
}

std::string joined(const std::vector<std::string> &texts)
{
    std::string all;
    for (const auto &text : texts)
        all += (all.empty() ? "" : std::string(1, separator)) + text;
    return all;
}

std::vector<std::string> apart(std::string_view all)
{
    std::vector<std::string> texts;
    while (!all.empty())
        texts.emplace_back(cut(all, separator));
    return texts;
}

} // namespace

Fault parseFault(const std::string &text)
{
    std::string_view rest = text;
    Fault fault;
    fault.operation = checkedOperation(cut(rest, '='));
    fault.code = number<std::int32_t>(cut(rest, ','), "code");
    if (fault.code == 0)
        throw std::invalid_argument("The code 0 is no fault");
    while (!rest.empty()) {
        auto value = cut(rest, ',');
        const auto name = cut(value, '=');
        if (name == "after")
            fault.after = number<std::uint32_t>(value, "number of calls");
        else if (name == "times")
            fault.times = number<std::uint32_t>(value, "number of calls");
        else
            throw std::invalid_argument(
                "A fault has no \"" + std::string(name) + "\", but after and times");
    }
    return fault;
}

Delay parseDelay(const std::string &text)
{
    std::string_view rest = text;
    Delay delay;
    delay.operation = checkedOperation(cut(rest, '='));
    delay.milliseconds = number<std::uint32_t>(rest, "number of milliseconds");
    return delay;
}

std::vector<std::pair<std::string, std::string>> Settings::variables() const
{
    return {{"VORNTRACE_REPLAY", replayed}, {"VORNTRACE_OUTPUT", output},
        {"VORNTRACE_LIBRARY", library}, {"VORNTRACE_TALLY", tally},
        {"VORNTRACE_TIMES", times ? "1" : ""}, {"VORNTRACE_START", std::to_string(start)},
        {"VORNTRACE_FAULTS", joined(faults)}, {"VORNTRACE_DELAYS", joined(delays)}};
}

Settings Settings::fromEnvironment()
{
    using platform::environment;
    Settings settings;
    settings.replayed = environment("VORNTRACE_REPLAY");
    settings.output = environment("VORNTRACE_OUTPUT");
    settings.library = environment("VORNTRACE_LIBRARY");
    settings.tally = environment("VORNTRACE_TALLY");
    settings.times = !environment("VORNTRACE_TIMES").empty();
    const auto start = environment("VORNTRACE_START");
    std::from_chars(start.data(), start.data() + start.size(), settings.start);
    settings.faults = apart(environment("VORNTRACE_FAULTS"));
    settings.delays = apart(environment("VORNTRACE_DELAYS"));
    return settings;
}

} // namespace trace
