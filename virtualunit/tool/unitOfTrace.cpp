#include "virtualunit/tool/unitOfTrace.h"

#include "commandline/commandline.h"
#include "devicetools/trace/Trace.h"
#include "devicetools/trace/format.h"
#include "devicetools/trace/traceFile.h"
#include "platform/system.h"
#include "virtualunit/VirtualUnit.h"
#include "virtualunit/tool/lists.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>

/* Which value of the unit an operation reads is told by nothing but the unit itself, so it is
 * asked: a value is changed, and what changes with it in an operation's answer comes from there. */

namespace tool {

namespace {

using trace::Call;
using trace::Datum;

/** Our own library's functions, in the order of contract::operations. */
#define CONTRACT_OPERATION(family, name, parameters, arguments, each, comment) \
    reinterpret_cast<contract::Function>(&(name)),
const contract::Function functions[] = {
#include "devicetools/contractList.h"
};

/** As the unit's set() takes it. */
std::string settable(const Datum &datum)
{
    if (const auto *text = std::get_if<std::string>(&datum)) {
        std::string utf8;
        for (const char byte : *text) {
            const auto code = static_cast<unsigned char>(byte);
            if (code >= 0x80)
                utf8 += char(0xC0U | code >> 6U);
            utf8 += char(code < 0x80 ? code : 0x80U | (code & 0x3FU));
        }
        return utf8;
    }
    std::string figures;
    if (const auto *real = std::get_if<double>(&datum))
        trace::appendReal(figures, *real);
    else if (const auto *integer = std::get_if<std::int64_t>(&datum))
        trace::appendInteger(figures, *integer);
    return figures;
}

std::string familyOf(const Call &call)
{
    return call.operation->family;
}

/** A call on this process's unit with the arguments of a recorded one. */
class Question
{
public:
    explicit Question(const Call &recorded)
        : call(recorded)
    {}

    /** The unit's answer, by way of its journal, which tells it in the trace's own words. */
    Call answer() const
    {
        virtualunit::startJournal();
        ask();
        const auto journal = virtualunit::takeJournal();
        virtualunit::stopJournal();
        std::string line;
        for (const auto &entry : journal) {
            if (entry.operation == call.name)
                line = entry.text() + "\n";
        }
        return trace::read(line).calls.at(0);
    }

    void ask() const
    {
        const auto &operation = *call.operation;
        std::vector<contract::Value> values;
        std::vector<std::unique_ptr<std::array<std::uint64_t, 128>>> places; // more than any out
        auto datum = call.arguments.begin();
        for (const auto &argument : operation.arguments) {
            auto &value = values.emplace_back();
            if (argument.isWritten())
                value.pointer =
                    places.emplace_back(std::make_unique<std::array<std::uint64_t, 128>>())->data();
            else if (argument.role == contract::Role::Size)
                value.integer = sizeof *places.back(), ++datum;
            else if (argument.role != contract::Role::Handle)
                value = valueOf(*datum++);
        }
        withHandle(operation, [&](void *handle) {
            values.front().pointer = handle;
            operation.call(functions[&operation - contract::operations], values.data());
        });
    }

private:
    const Call &call;

    static contract::Value valueOf(const Datum &datum)
    {
        contract::Value value{};
        if (const auto *text = std::get_if<std::string>(&datum))
            return contract::textValue(text->c_str());
        if (const auto *real = std::get_if<double>(&datum))
            value.real = *real;
        else if (const auto *integer = std::get_if<std::int64_t>(&datum))
            value.integer = *integer;
        return value;
    }

    template <typename Use>
    static void withHandle(const contract::Operation &operation, Use use)
    {
        const std::string_view family = operation.family;
#define CONTRACT_CREATE(name, create, comment) \
    if (family == #name) {                     \
        const auto handle = create();          \
        use(handle);                           \
        name##_release(handle);                \
    }
#include "devicetools/contractList.h"
    }
};

/** Where an operation's outs come from: names of values, empty for none. */
using Sources = std::vector<std::string>;

/** Puts a value that the unit had back, as it had it. */
class Restored
{
public:
    explicit Restored(const virtualunit::Value &changed)
        : value(changed)
        , isLiving(changed.range.ends_with("or live"))
    {}
    ~Restored() { virtualunit::set(value.name, (isLiving ? "live " : "") + value.value); }
    Restored(const Restored &) = delete;
    Restored &operator=(const Restored &) = delete;

private:
    const virtualunit::Value value;
    const bool isLiving;
};

bool isVersion(const virtualunit::Value &value)
{
    return value.range.starts_with("four numbers");
}

/** The outs that show each of two values that were put in, by their places. */
std::vector<std::size_t> placesOf(const virtualunit::Value &value, const Question &question)
{
    std::vector<std::size_t> places;
    const Restored restored(value);
    std::vector<Call> answers;
    std::vector<std::string> probes;
    for (const char *probe : {"1", "0", "2", "3", "37", "101"}) {
        if (probes.size() < 2 && virtualunit::set(value.name, probe).empty()) {
            probes.emplace_back(probe);
            answers.push_back(question.answer());
        }
    }
    if (probes.size() < 2 || answers[0].code != 0 || answers[1].code != 0)
        return {};
    for (std::size_t place = 0; place < answers[0].outs.size(); ++place) {
        if (settable(answers[0].outs[place]) == probes[0] &&
            settable(answers[1].outs[place]) == probes[1])
            places.push_back(place);
    }
    return places;
}

bool isReadAsVersion(const virtualunit::Value &value, const Question &question)
{
    const Restored restored(value);
    if (!virtualunit::set(value.name, "11.12.13.14").empty())
        return false;
    const auto answer = question.answer();
    return answer.code == 0 && answer.outs.size() == 4 && settable(answer.outs[0]) == "11" &&
           settable(answer.outs[3]) == "14";
}

std::vector<virtualunit::Value> valuesOf(const std::string &family)
{
    std::vector<virtualunit::Value> values;
    require(virtualunit::list(values));
    const auto isOther = [&](const auto &value) { return !value.name.starts_with(family + "."); };
    values.erase(std::remove_if(values.begin(), values.end(), isOther), values.end());
    return values;
}

/** None if the unit has nothing to tell it by. A version is a single source of four outs. */
Sources sourcesOf(const Call &call)
{
    Sources sources(call.outs.size());
    const Question question(call);
    if (question.answer().code != 0)
        return {};
    for (const auto &value : valuesOf(familyOf(call))) {
        if (isVersion(value)) {
            if (isReadAsVersion(value, question))
                return {value.name};
            continue;
        }
        for (const auto place : placesOf(value, question))
            sources[place] = value.name;
    }
    return sources;
}

/** A value that can live goes on from there if it shows as what it was; else it stays. */
void setValue(const std::string &name, const std::string &text)
{
    std::string shown;
    if (virtualunit::set(name, "live " + text).empty() && virtualunit::get(name, shown).empty() &&
        shown == text)
        return;
    virtualunit::set(name, text); // what our unit can't be stays as it is
}

void setVersion(const std::string &name, const Call &call)
{
    std::string text;
    for (const auto &number : call.outs)
        text += (text.empty() ? "" : ".") + settable(number);
    virtualunit::set(name, text);
}

class UnitOfTrace
{
public:
    explicit UnitOfTrace(const std::vector<Call> &calls)
    {
        for (const auto &call : calls) {
            if (call.operation && call.handle != 0 && !call.isFault)
                take(call);
        }
    }

    std::string profile()
    {
        require(virtualunit::open(":memory:"));
        require(virtualunit::setClock(0)); // nothing moves while it is looked at
        // Some operations work only as far as others have told how much there is.
        for (int round = 0; round < 2; ++round)
            applyAll();
        for (const auto &[operation, code] : failures)
            require(virtualunit::setFault(operation, code));
        std::string text;
        require(virtualunit::profileText(text));
        return text;
    }

private:
    std::map<std::string, std::pair<std::size_t, const Call *>> last; ///< successes by question
    std::set<std::string> succeeding;                                 ///< operations
    std::map<std::string, std::int32_t> failures; ///< of operations that never succeeded
    std::map<std::string, Sources> known;         ///< by question
    std::int64_t sensors = 0;
    std::size_t count = 0;

    void take(const Call &call)
    {
        // A job is over, and whoever has shut a unit down wants one that runs.
        const bool succeeded = call.code == DEVICE_OK;
        if (succeeded && familyOf(call) != "Firmware")
            last[call.question()] = {count++, &call};
        if (succeeded && std::string_view(call.name) == "Diagnostics_getPMTemp")
            sensors = std::max(sensors, std::get<std::int64_t>(call.arguments.at(0)) + 1);
        if (succeeded) {
            succeeding.insert(call.name);
            failures.erase(call.name);
        } else if (!succeeding.contains(call.name)) {
            failures[call.name] = call.code;
        }
    }

    void applyAll()
    {
        std::vector<std::pair<std::size_t, const Call *>> inOrder;
        for (const auto &[question, success] : last)
            inOrder.push_back(success);
        std::sort(inOrder.begin(), inOrder.end());
        if (sensors > 0)
            setValue("Diagnostics.pmSensorCount", std::to_string(sensors));
        for (const auto &[place, call] : inOrder)
            apply(*call);
    }

    void apply(const Call &call)
    {
        if (call.outs.empty())
            return Question(call).ask();
        if (std::string_view(call.name) == "Settings_getString") {
            virtualunit::set("Settings." + settable(call.arguments.at(0)), settable(call.outs[0]));
            return;
        }
        auto &sources = known[call.question()];
        if (sources.empty())
            sources = sourcesOf(call);
        if (sources.size() == 1 && call.outs.size() == 4)
            return setVersion(sources[0], call);
        for (std::size_t place = 0; place < sources.size(); ++place) {
            if (!sources[place].empty())
                setValue(sources[place], settable(call.outs[place]));
        }
    }
};

} // namespace

bool isTrace(const std::string &file)
{
    const auto path = platform::pathOf(file);
    std::error_code error;
    std::ifstream stream(path, std::ios::binary);
    if (!stream || std::filesystem::is_directory(path, error))
        return false;
    std::string line;
    std::getline(stream, line);
    return trace::looksLikeTrace(line + "\n");
}

std::string profileOfTrace(const std::string &file, std::string &warning)
{
    try {
        const auto trace = trace::readFile(file);
        warning = trace.warning;
        return UnitOfTrace(trace.calls).profile();
    } catch (const trace::Unreadable &unreadable) {
        throw commandline::Refusal{unreadable.what()};
    }
}

} // namespace tool
