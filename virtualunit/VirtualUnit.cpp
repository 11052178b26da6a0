#include "virtualunit/VirtualUnit.h"

#include "virtualunit/state/Assignment.h"
#include "virtualunit/state/Profile.h"
#include "virtualunit/state/Unit.h"
#include "virtualunit/state/operationNames.h"

#include <map>

namespace virtualunit {

namespace {

template <typename Function>
Error guarded(const Function &function)
{
    try {
        function();
        return {};
    } catch (const Failure &failure) {
        return failure.text;
    } catch (const std::exception &exception) {
        return std::string("It went wrong: ") + exception.what() + ".";
    }
}

template <typename Function>
Error reading(const Function &function)
{
    return guarded([&] {
        auto &unit = Unit::instance();
        const Access access(unit);
        function(unit);
    });
}

template <typename Function>
Error changing(const Function &function)
{
    return reading([&](Unit &unit) {
        Change change(unit);
        function(unit);
        change.commit();
    });
}

std::string valueText(const Unit &unit, Key key)
{
    const auto &property = key.property();
    return property.isText() ? unit.text(key) : formatNumber(property, unit.number(key));
}

Value stringValue(const std::string &key, const std::string &value)
{
    return {std::string(stringPrefix) + key, value,
        "at most " + std::to_string(longestString) + " characters", "stored string"};
}

void apply(Unit &unit, const Assignment &wanted)
{
    if (!wanted.string.empty())
        unit.setString(wanted.string, wanted.text);
    else if (wanted.key.property().isText())
        unit.set(wanted.key, wanted.text);
    else if (wanted.live)
        unit.setLiving(wanted.key, wanted.from ? std::optional(wanted.number) : std::nullopt);
    else
        unit.set(wanted.key, wanted.number);
}

/** The clock goes on. */
void become(Unit &unit, Snapshot made)
{
    made.clock = unit.snapshot().clock;
    unit.replace(made);
}

} // namespace

Error open(const std::string &file)
{
    return guarded([&] { Unit::instance().use(file); });
}

Error loadProfile(const std::string &nameOrPath)
{
    return changing([&](Unit &unit) { become(unit, profileSnapshot(nameOrPath, unit.now())); });
}

Error loadProfileText(const std::string &text)
{
    return changing([&](Unit &unit) { become(unit, readProfile(text, unit.now())); });
}

std::vector<std::string> profiles()
{
    return profileNames();
}

Error profileText(std::string &text)
{
    return reading([&](Unit &unit) { text = writeProfile(unit.snapshot(), unit.now()); });
}

Error list(std::vector<Value> &values)
{
    return reading([&](Unit &unit) {
        values.clear();
        for (std::size_t index = 0; index < propertyCount; ++index) {
            const auto &property = properties[index];
            values.push_back({std::string(property.name), valueText(unit, Key(index)),
                rangeText(property), std::string(property.description)});
        }
        for (const auto &[key, value] : unit.snapshot().strings)
            values.push_back(stringValue(key, value));
    });
}

Error get(const std::string &name, std::string &value)
{
    return reading([&](Unit &unit) {
        const auto &strings = unit.snapshot().strings;
        const auto index = findProperty(name);
        if (index != propertyCount) {
            value = valueText(unit, Key(index));
            return;
        }
        const auto found = name.starts_with(stringPrefix)
                               ? strings.find(name.substr(stringPrefix.size()))
                               : strings.end();
        if (found == strings.end())
            throw Failure{ValueOutOfRange, "There is no value \"" + name + "\"."};
        value = found->second;
    });
}

Error set(const std::string &name, const std::string &value)
{
    return changing([&](Unit &unit) { apply(unit, readAssignment(name, value)); });
}

Error setFault(
    const std::string &operation, std::int32_t code, std::uint32_t times, std::uint32_t after)
{
    return changing([&](Unit &unit) {
        unit.setFault(checkedOperation(operation), {code, times, after, 0});
    });
}

Error clearFaults()
{
    return changing([](Unit &unit) { unit.clearFaults(); });
}

Error setDelay(const std::string &operation, std::uint32_t milliseconds)
{
    return changing([&](Unit &unit) { unit.setDelay(checkedOperation(operation), milliseconds); });
}

Error disturbances(std::vector<Disturbance> &all)
{
    return reading([&](Unit &unit) {
        const auto &snapshot = unit.snapshot();
        std::map<std::string, Disturbance> found;
        for (const auto &[operation, fault] : snapshot.faults)
            found[operation] = {operation, fault.code, fault.times, fault.after, fault.seen};
        for (const auto &[operation, milliseconds] : snapshot.delays) {
            found[operation].operation = operation;
            found[operation].delay = milliseconds;
        }
        all.clear();
        for (const auto &[operation, disturbance] : found)
            all.push_back(disturbance);
    });
}

Error addShortMessage(const std::string &number, const std::string &text)
{
    return changing([&](Unit &unit) { unit.addShortMessage({unit.now(), number, text}); });
}

Error shortMessages(std::vector<ShortMessage> &messages)
{
    return reading([&](Unit &unit) { messages = unit.shortMessages(); });
}

std::vector<std::string> operations()
{
    return operationNames();
}

Error setClock(std::int64_t milliseconds)
{
    return changing([&](Unit &unit) {
        // Time passes only from one standing clock to a later one.
        const auto &clock = unit.snapshot().clock;
        unit.setClock(milliseconds, clock && milliseconds >= *clock);
    });
}

Error advanceClock(std::int64_t milliseconds)
{
    return changing(
        [&](Unit &unit) { unit.setClock(unit.now() + milliseconds, milliseconds >= 0); });
}

Error releaseClock()
{
    return changing([](Unit &unit) { unit.setClock(std::nullopt, false); });
}

} // namespace virtualunit
