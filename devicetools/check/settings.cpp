#include "devicetools/check/settings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace check {

using contract::Argument;
using contract::Number;
using contract::Operation;
using contract::Role;

namespace {

struct Ends {
    double low;
    double high;
    bool isStrict = true; ///< nothing beyond is legal
};

/** What a value may be; both are missing for one that the contract says nothing of. */
struct Range {
    std::vector<double> members; ///< of an enumeration
    std::optional<Ends> ends;
};

/** Present state of what draws power, as against what is stored for the next start. */
bool isPower(const Operation &operation)
{
    const std::string_view name = operation.name;
    return name.find("PowerStatus") != name.npos && name.find("StartUp") == name.npos;
}

/** The operation of a setter's name that reads, null for none. */
const Operation *getterOf(const Operation &setter)
{
    std::string name = setter.name;
    const auto at = name.find("_set");
    if (at == name.npos)
        return nullptr;
    name.replace(at, 4, "_get");
    return contract::find(contract::operations, name);
}

/** The ranges that a comment has, "700 to 10000", in its order. What only the program keeps to,
 *  "of which the program sets 0.2 to 30", says nothing of what lies beyond. */
std::vector<Ends> rangesIn(const std::string &comment)
{
    constexpr std::string_view between = " to ";
    std::vector<Ends> ranges;
    for (auto at = comment.find(between); at != comment.npos; at = comment.find(between, at + 1)) {
        const auto words = std::string_view(comment).substr(0, at);
        const auto start = words.find_last_not_of("-.0123456789") + 1; // 0 if there is no other
        const char *const high = comment.data() + at + between.size();
        Ends ends{};
        if (std::from_chars(words.data() + start, words.data() + at, ends.low).ec != std::errc() ||
            std::from_chars(high, comment.data() + comment.size(), ends.high).ec != std::errc())
            continue;
        ends.isStrict = !words.substr(0, start).ends_with("program sets ");
        ranges.push_back(ends);
    }
    return ranges;
}

/** The enumeration that a comment names, null for none. */
const contract::Enumeration *enumerationIn(const std::string &comment)
{
    for (const auto &enumeration : contract::enumerations) {
        if (comment.find(enumeration.name) != comment.npos)
            return &enumeration;
    }
    return nullptr;
}

/** Whether the enumeration is a mask, which its one member has all bits of. */
bool isMask(const contract::Enumeration &enumeration)
{
    return std::string_view(enumeration.name).ends_with("Mask");
}

/** What the comment says of a value; `index` is its number among those without an enumeration. */
Range rangeOf(const Argument &argument, const std::string &comment, std::size_t index)
{
    Range range;
    const auto *enumeration = enumerationIn(comment);
    if (argument.number == Number::Bool) {
        range.members = {0, 1};
    } else if (enumeration && isMask(*enumeration)) {
        range.ends = Ends{0, double(enumeration->enumerators.front().value)};
    } else if (enumeration && argument.number == Number::Signed && argument.width == 4) {
        for (const auto &enumerator : enumeration->enumerators)
            range.members.push_back(enumerator.value);
    } else {
        const auto ranges = rangesIn(comment);
        if (!ranges.empty())
            range.ends = ranges[std::min(index, ranges.size() - 1)];
    }
    return range;
}

double lowest(const Argument &argument)
{
    if (argument.number == Number::Real)
        return -std::numeric_limits<double>::max();
    return argument.number == Number::Signed ? -std::exp2(double(argument.width) * 8 - 1) : 0;
}

double highest(const Argument &argument)
{
    if (argument.number == Number::Real)
        return std::numeric_limits<double>::max();
    const auto bits = double(argument.width) * 8;
    return std::exp2(argument.number == Number::Signed ? bits - 1 : bits) - 1;
}

SettingValue describe(const Argument &argument, const Range &range)
{
    SettingValue value{};
    if (!range.members.empty()) {
        value.legal = range.members;
        if (argument.number != Number::Bool)
            value.illegal = {*std::max_element(range.members.begin(), range.members.end()) + 1};
    } else if (range.ends) {
        const auto [low, high, isStrict] = *range.ends;
        value.legal = {low, high, std::floor((low + high) / 2)};
        if (isStrict)
            value.illegal = {high + 1, low - 1};
    }
    std::erase_if(value.illegal,
        [&](double number) { return number < lowest(argument) || number > highest(argument); });
    return value;
}

/** Rates that a CAN controller has, where the contract names none. */
constexpr double usualRates[] = {125, 250, 500, 1000};

/** Fills in the values of a setting whose channel, if any, stands in its questions. False if the
 *  two operations don't fit together. */
bool matchValues(Setting &setting, const std::string &comment)
{
    const auto &getter = *setting.get.operation;
    const auto &setter = *setting.set.operation;
    std::size_t index = 0;
    for (std::size_t place = 1; place < setter.arguments.size(); ++place) {
        const auto &argument = setter.arguments[place];
        const auto same = std::find_if(getter.arguments.begin(), getter.arguments.end(),
            [&](const Argument &a) { return std::string_view(a.name) == argument.name; });
        if (same == getter.arguments.end() || argument.role != Role::In)
            return false;
        if (same->role == Role::In)
            continue;
        auto value = describe(argument, rangeOf(argument, comment, index++));
        if (std::string_view(argument.name) == "kbitPerSecond")
            value.legal.assign(std::begin(usualRates), std::end(usualRates));
        value.setPlace = place;
        value.getPlace = std::size_t(same - getter.arguments.begin());
        setting.values.push_back(value);
    }
    return !setting.values.empty();
}

/** The comment that describes what is asked: the enumerator's, where a number chooses. */
std::string commentOf(const Question &get, const Operation &setter)
{
    std::string comment = std::string(get.operation->comment) + " " + setter.comment;
    std::replace(comment.begin(), comment.end(), '\n', ' ');
    const auto chooser = std::find_if(get.operation->arguments.begin(),
        get.operation->arguments.end(), [](const Argument &a) { return a.role == Role::In; });
    const auto *enumeration = enumerationIn(comment);
    if (chooser == get.operation->arguments.end() || !enumeration ||
        std::string_view(chooser->name) != "number")
        return comment;
    const auto place = std::size_t(chooser - get.operation->arguments.begin());
    for (const auto &enumerator : enumeration->enumerators) {
        if (enumerator.value == get.given[place].integer)
            return enumerator.comment;
    }
    return {};
}

constexpr int settingMark = -1; ///< as a text of a remembered call: compare before it is made

} // namespace

std::vector<Setting> settingsOf(Session &session)
{
    std::vector<Setting> settings;
    const auto questions = readingQuestions(session);
    for (const auto &setter : contract::operations) {
        const auto *getter = getterOf(setter);
        // The lines of DigIO are inputs, too, and have a test of their own.
        if (!getter || !session.has(setter.name) || std::string_view(setter.family) == "DigIO")
            continue;
        for (const auto &asked : questions) {
            if (asked.operation != getter)
                continue;
            Setting setting{asked, question(setter.name), {}, isPower(setter), {}};
            // A channel stands at the same place in both.
            for (std::size_t place = 1; place < setter.arguments.size(); ++place) {
                if (place < getter->arguments.size() && getter->arguments[place].role == Role::In)
                    setting.set.given[place] = asked.given[place];
            }
            setting.name = asked.text();
            setting.name.replace(setting.name.find("_get"), 4, "_set");
            if (matchValues(setting, commentOf(asked, setter)) && read(session, setting))
                settings.push_back(std::move(setting));
        }
    }
    return settings;
}

std::optional<std::vector<double>> read(Session &session, const Setting &setting)
{
    const auto answer = session.ask(setting.get);
    if (answer.code != DEVICE_OK)
        return std::nullopt;
    std::vector<double> values;
    for (const auto &value : setting.values)
        values.push_back(answer.number(*setting.get.operation, value.getPlace));
    return values;
}

DeviceCode write(Session &session, const Setting &setting, const std::vector<double> &values)
{
    auto call = setting.set;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto place = setting.values[i].setPlace;
        call.given[place] = valueOf(call.operation->arguments[place], values[i]);
    }
    return session.ask(call).code;
}

std::vector<double> candidates(const Setting &setting, std::size_t value, double present)
{
    const auto &described = setting.values[value];
    if (!described.legal.empty())
        return described.legal;
    // Nothing is said of its range: what lies beside what it has is most likely in it.
    std::vector<double> near{present, present + 1};
    if (present >= 1)
        near.push_back(present - 1);
    return near;
}

bool isSame(const Setting &setting, std::size_t value, double one, double other)
{
    const auto place = setting.values[value].setPlace;
    if (setting.set.operation->arguments[place].number != Number::Real)
        return one == other;
    return std::abs(one - other) <= 0.05 + std::abs(one) * 0.01;
}

Restorer::Restorer(Session &watched, std::vector<Setting> &settings)
    : session(watched)
{
    std::erase_if(settings, [this](const Setting &setting) {
        const auto present = read(session, setting);
        if (!present)
            return true;
        auto call = setting.set;
        for (std::size_t i = 0; i < present->size(); ++i) {
            const auto place = setting.values[i].setPlace;
            call.given[place] = valueOf(call.operation->arguments[place], (*present)[i]);
        }
        remember(call);
        session.channel.restoring[session.channel.toRestore - 1].texts[0] = settingMark;
        return false;
    });
}

Restorer::Restorer(Session &watched)
    : session(watched)
{}

void Restorer::remember(const Question &call)
{
    auto &channel = session.channel;
    const auto index = channel.toRestore.load();
    if (index >= Channel::callCount)
        throw std::runtime_error("more settings than can be remembered");
    auto &kept = channel.restoring[index];
    kept.operation = std::int32_t(call.operation - contract::operations);
    kept.texts[0] = 0;
    for (std::size_t place = 1; place < call.operation->arguments.size(); ++place) {
        const auto &argument = call.operation->arguments[place];
        if (argument.role == Role::String) {
            const auto *text = static_cast<const char *>(call.given[place].pointer);
            const auto size = std::int32_t(std::strlen(text)) + 1;
            if (channel.textsUsed + size > Channel::textSize)
                throw std::runtime_error("longer texts than can be remembered");
            std::memcpy(channel.texts + channel.textsUsed, text, std::size_t(size));
            kept.texts[place] = channel.textsUsed;
            channel.textsUsed += size;
        } else if (argument.number == Number::Real) {
            kept.numbers[place] = call.given[place].real;
        } else {
            kept.numbers[place] = double(call.given[place].integer);
        }
    }
    ++channel.toRestore;
}

namespace {

Question rememberedCall(Channel &channel, const Channel::Call &kept)
{
    const auto &operation = contract::operations[kept.operation];
    Question call{&operation, std::vector<contract::Value>(operation.arguments.size())};
    for (std::size_t place = 1; place < operation.arguments.size(); ++place) {
        if (operation.arguments[place].role == Role::String)
            call.given[place].pointer = channel.texts + kept.texts[place];
        else
            call.given[place] = valueOf(operation.arguments[place], kept.numbers[place]);
    }
    return call;
}

/** Whether what a setter would set is what its getter gives. */
bool isRestored(Session &session, const Question &set)
{
    const auto *getter = getterOf(*set.operation);
    if (!getter || !session.has(getter->name))
        return false;
    Setting setting{question(getter->name), set, {}, false, {}};
    for (std::size_t place = 1; place < set.operation->arguments.size(); ++place) {
        if (place < getter->arguments.size() && getter->arguments[place].role == Role::In)
            setting.get.given[place] = set.given[place];
    }
    if (!matchValues(setting, {}))
        return false;
    const auto present = read(session, setting);
    if (!present)
        return false;
    for (std::size_t i = 0; i < present->size(); ++i) {
        const auto place = setting.values[i].setPlace;
        const bool isReal = set.operation->arguments[place].number == Number::Real;
        const auto wanted = isReal ? set.given[place].real : double(set.given[place].integer);
        if (isReal ? std::abs((*present)[i] - wanted) > 1e-9 : (*present)[i] != wanted)
            return false;
    }
    return true;
}

} // namespace

void restore(Session &session)
{
    auto &channel = session.channel;
    while (channel.toRestore > 0) {
        const auto &kept = channel.restoring[channel.toRestore - 1];
        const auto call = rememberedCall(channel, kept);
        // Taken off the list first: a call that crashes must not be tried again and again.
        --channel.toRestore;
        if (!session.has(call.operation->name))
            continue;
        const bool isSetting = kept.texts[0] == settingMark;
        if (isSetting && isRestored(session, call))
            continue;
        const auto code = session.ask(call).code;
        if (code != DEVICE_OK && isSetting)
            session.fail(
                call.text() + ", which puts back what was there, answered " + std::to_string(code));
    }
    channel.textsUsed = 0;
}

Restorer::~Restorer()
{
    if (isLeft)
        return;
    auto &channel = session.channel;
    const bool wasStopped = channel.stop.exchange(false);
    try {
        restore(session);
    } catch (...) {
        // Asked to stop once more, while it does just that: the next process goes on with the rest.
    }
    if (wasStopped)
        channel.stop = true;
}

} // namespace check
