#include "devicetools/check/Session.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace check {

using contract::Argument;
using contract::Number;
using contract::Operation;
using contract::Role;

namespace {

constexpr std::size_t guardSize = 64;
constexpr unsigned char guardByte = 0xC3;

/** The keys that the program stores, and one that nobody does. */
constexpr const char *settingKeys[] = {
    "VornsettingsGsmPort", "VornsettingsGpsPort", "VornCheckUnknownKey"};

std::size_t widthOf(const Argument &argument, std::uint32_t size)
{
    return argument.role == Role::Buffer ? size : argument.width;
}

template <typename T>
T loaded(const unsigned char *bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

double numberIn(Number number, std::size_t width, const unsigned char *bytes)
{
    if (number == Number::Real)
        return loaded<double>(bytes);
    const bool isSigned = number == Number::Signed;
    switch (width) {
    case 1:
        return isSigned ? loaded<std::int8_t>(bytes) : loaded<std::uint8_t>(bytes);
    case 2:
        return isSigned ? loaded<std::int16_t>(bytes) : loaded<std::uint16_t>(bytes);
    case 4:
        return isSigned ? double(loaded<std::int32_t>(bytes)) : loaded<std::uint32_t>(bytes);
    default:
        return double(loaded<std::int64_t>(bytes));
    }
}

/** What an out argument holds, for messages. */
std::string contents(const Argument &argument, const std::vector<unsigned char> &bytes)
{
    if (argument.role == Role::Out)
        return textOf(numberIn(argument.number, argument.width, bytes.data()));
    if (argument.role == Role::Record) {
        std::string text;
        for (const auto &field : contract::find(contract::structs, argument.type)->fields) {
            text += text.empty() ? "" : ", ";
            text += textOf(numberIn(field.number, field.width, bytes.data() + field.offset));
        }
        return "{" + text + "}";
    }
    const auto end = std::find(bytes.begin(), bytes.end(), '\0');
    std::string text(bytes.begin(),
        std::min(end, bytes.begin() + std::min<std::ptrdiff_t>(40, end - bytes.begin())));
    for (char &byte : text) {
        if (static_cast<unsigned char>(byte) < ' ' || static_cast<unsigned char>(byte) > '~')
            byte = '?';
    }
    return "\"" + text + "\"";
}

} // namespace

std::string textOf(double number)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", number);
    return text;
}

std::string Question::text() const
{
    std::string arguments;
    for (std::size_t place = 1; place < operation->arguments.size(); ++place) {
        const auto &argument = operation->arguments[place];
        if (argument.role != Role::In && argument.role != Role::String)
            continue;
        arguments += arguments.empty() ? "" : ", ";
        if (argument.role == Role::String)
            arguments += "\"" + std::string(static_cast<const char *>(given[place].pointer)) + "\"";
        else if (argument.number == Number::Real)
            arguments += textOf(given[place].real);
        else
            arguments += std::to_string(given[place].integer);
    }
    return arguments.empty() ? std::string(operation->name)
                             : operation->name + ("(" + arguments + ")");
}

double Answer::number(const Operation &operation, std::size_t place) const
{
    const auto &argument = operation.arguments[place];
    return numberIn(argument.number, argument.width, written[place].data());
}

std::string Answer::text(const Operation &operation) const
{
    std::string values;
    for (std::size_t place = 0; code == DEVICE_OK && place < operation.arguments.size(); ++place) {
        if (!operation.arguments[place].isWritten())
            continue;
        values += values.empty() ? "" : ", ";
        values += contents(operation.arguments[place], written[place]);
    }
    return values.empty() ? std::to_string(code) : std::to_string(code) + " (" + values + ")";
}

Arena::Arena()
{
    for (auto &piece : pieces)
        piece = std::make_unique<system::GuardedMemory>(roomySize + 2 * guardSize);
}

Session::Session(Channel &watched, Options given)
    : options(std::move(given))
    , channel(watched)
{}

void Session::load()
{
    begin("loading the library", 0);
    library = std::make_unique<system::Library>(options.library);
    end(0);
    functions.clear();
    const auto add = [this](const char *name) {
        if (!options.avoided.contains(name)) {
            if (const auto found = library->function(name))
                functions.emplace(name, found);
        }
    };
    for (const auto &family : contract::families) {
        add(family.createName);
        add(family.releaseName);
    }
    // Without a handle nothing can be asked.
    for (const auto &operation : contract::operations) {
        if (has(contract::find(contract::families, operation.family)->createName))
            add(operation.name);
    }
    for (const auto &text : contract::texts)
        add(text.name);
}

void Session::unload()
{
    releaseAll();
    begin("unloading the library", 0);
    library.reset();
    end(0);
    functions.clear();
}

bool Session::has(std::string_view name) const
{
    return functions.find(name) != functions.end();
}

system::Library::Function Session::function(std::string_view name) const
{
    return functions.at(std::string(name));
}

void Session::begin(const char *name, int thread)
{
    if (channel.stop)
        throw Stopped{};
    std::snprintf(channel.current[thread], Channel::nameSize, "%s", name);
    ++channel.calls;
}

void Session::end(int thread)
{
    channel.current[thread][0] = '\0';
    ++channel.calls;
}

void *Session::create(const contract::Family &family, int thread)
{
    if (!has(family.createName))
        return nullptr;
    const auto call = reinterpret_cast<void *(*)()>(function(family.createName));
    begin(family.createName, thread);
    void *handle = call();
    end(thread);
    return handle;
}

void Session::release(const contract::Family &family, void *handle, int thread)
{
    if (!has(family.releaseName))
        return;
    const auto call = reinterpret_cast<void (*)(void *)>(function(family.releaseName));
    begin(family.releaseName, thread);
    call(handle);
    end(thread);
}

void *Session::handle(const char *family)
{
    const auto found = handles.find(std::string_view(family));
    if (found != handles.end())
        return found->second;
    return handles[family] = create(*contract::find(contract::families, family));
}

void Session::releaseAll()
{
    for (const auto &family : contract::families) {
        const auto found = handles.find(std::string_view(family.name));
        if (found != handles.end())
            release(family, found->second);
    }
    handles.clear();
}

Answer Session::ask(const Question &question, void *handle, unsigned char filling, Place place,
    std::uint32_t size, int thread)
{
    const auto arguments = question.operation->arguments;
    std::vector<contract::Value> values = question.given;
    std::array<unsigned char *, Channel::valueCount> where{};
    values[0].pointer = handle;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        if (arguments[i].role == Role::Size)
            values[i].integer = size;
        if (!arguments[i].isWritten())
            continue;
        auto &memory = arenas[std::size_t(thread)][i];
        const auto width = widthOf(arguments[i], size);
        where[i] = place == Place::AtEdge ? memory.end() - width : memory.begin() + guardSize;
        std::fill(memory.begin(), memory.end(), guardByte);
        std::fill_n(where[i], width, filling);
        values[i].pointer = where[i];
    }

    Answer answer;
    const auto called = function(question.operation->name);
    begin(question.text().c_str(), thread);
    const auto started = std::chrono::steady_clock::now();
    answer.code = question.operation->call(called, values.data());
    answer.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    end(thread);

    answer.written.resize(arguments.size());
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        if (!where[i])
            continue;
        const auto &memory = arenas[std::size_t(thread)][i];
        const auto width = widthOf(arguments[i], size);
        answer.written[i].assign(where[i], where[i] + width);
        const auto isGuard = [](unsigned char byte) { return byte == guardByte; };
        if (!std::all_of(memory.begin(), where[i], isGuard) ||
            !std::all_of(where[i] + width, memory.end(), isGuard))
            answer.overrun = int(i);
    }
    return answer;
}

Answer Session::ask(
    const Question &question, unsigned char filling, Place place, std::uint32_t size)
{
    return ask(question, handle(question.operation->family), filling, place, size);
}

const char *Session::textOf(const contract::Text &text, std::int64_t value, int thread)
{
    const auto called = function(text.name);
    begin((text.name + ("(" + std::to_string(value) + ")")).c_str(), thread);
    const char *result = text.call(called, value);
    end(thread);
    return result;
}

void Session::note(Severity severity, const std::string &text)
{
    const auto index = channel.found++;
    if (index >= Channel::findingCount)
        return;
    channel.findings[index].severity = severity;
    std::snprintf(channel.findings[index].text, Channel::findingSize, "%s", text.c_str());
}

bool Session::hasFailed() const
{
    const auto count = std::min<std::int32_t>(channel.found, Channel::findingCount);
    return std::any_of(channel.findings, channel.findings + count,
        [](const auto &finding) { return finding.severity == Severity::Fail; });
}

bool isReading(const Operation &operation)
{
    return std::any_of(operation.arguments.begin(), operation.arguments.end(),
        [](const Argument &argument) { return argument.isWritten(); });
}

contract::Value valueOf(const Argument &argument, double number)
{
    contract::Value value{};
    if (argument.number == Number::Real)
        value.real = number;
    else
        value.integer = std::int64_t(number);
    return value;
}

Question question(std::string_view name, std::initializer_list<double> given)
{
    const auto *operation = contract::find(contract::operations, name);
    if (!operation)
        throw std::logic_error("no operation " + std::string(name));
    Question result{operation, std::vector<contract::Value>(operation->arguments.size())};
    auto next = given.begin();
    for (std::size_t place = 1; place < operation->arguments.size(); ++place) {
        if (operation->arguments[place].role == Role::In && next != given.end())
            result.given[place] = valueOf(operation->arguments[place], *next++);
    }
    return result;
}

namespace {

/** What an argument of a reading operation may be, by what it is called. */
std::vector<double> meaningfulValues(
    std::string_view family, std::string_view argument, double canCount)
{
    std::vector<double> values;
    const auto add = [&](int first, int last) {
        for (int value = first; value <= last; ++value)
            values.push_back(value);
    };
    if (argument == "channel" && family == "Adc") {
        values.push_back(0);
        add(2, 23);
    } else if (argument == "channel") {
        add(1, int(std::clamp(canCount, 1.0, 9.0)));
    } else if (argument == "index") {
        add(0, 9);
    } else if (argument == "number") {
        add(0, TOUCH_RESTORE_DEFAULTS - 1);
    } else {
        values.push_back(0);
    }
    return values;
}

} // namespace

std::vector<Question> readingQuestions(Session &session)
{
    double canCount = 1;
    if (session.has("Hardware_getCanCount")) {
        const auto counting = question("Hardware_getCanCount");
        const auto answer = session.ask(counting);
        if (answer.code == DEVICE_OK)
            canCount = answer.number(*counting.operation, 1);
    }
    std::vector<Question> questions;
    for (const auto &operation : contract::operations) {
        if (!isReading(operation) || !session.has(operation.name))
            continue;
        // No operation that reads takes more than one value.
        const auto given = std::find_if(operation.arguments.begin(), operation.arguments.end(),
            [](const Argument &a) { return a.role == Role::In || a.role == Role::String; });
        if (given == operation.arguments.end()) {
            questions.push_back(question(operation.name));
        } else if (given->role == Role::In) {
            for (const double value : meaningfulValues(operation.family, given->name, canCount))
                questions.push_back(question(operation.name, {value}));
        } else {
            for (const char *key : settingKeys) {
                auto asked = question(operation.name);
                asked.given[std::size_t(given - operation.arguments.begin())] =
                    contract::textValue(key);
                questions.push_back(asked);
            }
        }
    }
    return questions;
}

} // namespace check
