#include "linuxunit/devices/FrontLed.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/devices/brightness.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/machine/Machine.h"
#include "linuxunit/store/Store.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

namespace linuxunit {

namespace {

constexpr const char *colorNames[] = {"red", "green", "blue"};
constexpr std::uint8_t topOfColor = 15;
constexpr FrontLed::Color standardColors[] = {{topOfColor, 0, 0}, {0, topOfColor, 0},
    {0, 0, topOfColor}, {0, topOfColor, topOfColor}, {topOfColor, 0, topOfColor},
    {topOfColor, topOfColor, 0}}; ///< by LedColor

constexpr double slowest = 0.01; ///< hertz
constexpr double fastest = 100;
constexpr std::uint8_t always = 100;         ///< percent
constexpr double second = 1000;              ///< milliseconds
constexpr long idleStep = 100;               ///< likewise
constexpr std::size_t longestPattern = 4095; ///< bytes that the kernel takes at once

std::string folderOf(const std::string &name)
{
    return "/sys/class/leds/" + name;
}

std::int64_t highest(const std::string &name)
{
    const auto path = folderOf(name) + "/max_brightness";
    const auto top = readNumber(path);
    if (top < 1 || top > INT32_MAX)
        throw Failure{UnexpectedContent,
            path + " holds " + std::to_string(top) + ", which is no top of a range"};
    return top;
}

/** Raw level of a component. */
std::int64_t levelOf(const FrontLed::Color &color, unsigned component, std::int64_t top)
{
    return component < color.size() ? (color[component] * top + topOfColor / 2) / topOfColor : 0;
}

std::vector<std::string> wordsOf(const std::string &text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

/** Whether the LED has the trigger, in the kernel's list with brackets around the active one. */
bool hasTrigger(const std::string &name, const std::string &trigger)
{
    const auto text = textOf(folderOf(name) + "/trigger").value_or("");
    const auto words = wordsOf(text);
    return std::find(words.begin(), words.end(), trigger) != words.end() ||
           std::find(words.begin(), words.end(), "[" + trigger + "]") != words.end();
}

/** The timer comes with every LED that has triggers, if the kernel has it; a bed's file, where the
 *  list was written over, says as much. */
bool hasTimer(const std::string &name)
{
    const auto text = textOf(folderOf(name) + "/trigger").value_or("");
    return hasTrigger(name, "timer") || (!text.empty() && text.find('[') == text.npos);
}

bool hasPattern(const std::string &name)
{
    return hasTrigger(name, "pattern");
}

const char *keyOf(unsigned component)
{
    constexpr const char *keys[] = {"FrontLED.red", "FrontLED.green", "FrontLED.blue"};
    return keys[component];
}

FrontLed::Color keptColor(Store &store)
{
    FrontLed::Color color{};
    for (unsigned i = 0; i < color.size(); ++i)
        color[i] = std::uint8_t(std::clamp<double>(store.number(keyOf(i), 0), 0, topOfColor));
    return color;
}

bool isDark(const FrontLed::Color &color)
{
    return color == FrontLed::Color{};
}

/** @param unset the duty cycle as long as nobody has set any, percent */
FrontLed::Signal keptSignal(Store &store, std::uint8_t unset = always)
{
    const auto hertz = std::clamp(store.number("FrontLED.hertz", 1), slowest, fastest);
    const auto duty = std::clamp<double>(store.number("FrontLED.dutyCycle", unset), 0, always);
    return {hertz, std::uint8_t(duty)};
}

FrontLed::Train keptTrain(Store &store)
{
    const auto byte = [&](const char *key) {
        return std::uint8_t(std::clamp<double>(store.number(key, 0), 0, UINT8_MAX));
    };
    return {byte("FrontLED.pulses"), byte("FrontLED.idleTime")};
}

bool isEndless(const FrontLed::Train &train)
{
    return train.pulses == 0 || train.idleTime == 0;
}

/** Milliseconds. */
struct Times {
    long on;
    long off;
};

Times timesOf(const FrontLed::Signal &signal)
{
    const double period = second / signal.hertz;
    const auto on = std::lround(period * signal.dutyCycle / always);
    return {on, std::lround(period) - on};
}

/** As the pattern trigger takes it, pairs of level and milliseconds: the level goes to that of the
 *  next pair in that time, at once where it is 0. */
std::string patternOf(
    std::int64_t level, const FrontLed::Signal &signal, const FrontLed::Train &train)
{
    const auto [on, off] = timesOf(signal);
    const int pulses = isEndless(train) ? 1 : train.pulses;
    const long idle = isEndless(train) ? 0 : train.idleTime * idleStep;
    const auto step = [](std::int64_t height, long time) {
        const auto text = std::to_string(height);
        return text + " " + std::to_string(time) + " " + text + " 0 ";
    };
    if (off == 0) // the pulses are one
        return step(level, on * pulses) + step(0, idle);
    std::string pattern;
    for (int pulse = 1; pulse <= pulses; ++pulse)
        pattern += step(level, on) + step(0, pulse < pulses ? off : off + idle);
    return pattern;
}

/** The files of a trigger appear with it, and the rules give them to the group a moment later. */
void writeOfTrigger(const std::string &path, const std::string &text)
{
    constexpr std::chrono::milliseconds longest{50};
    const auto until = std::chrono::steady_clock::now() + longest;
    for (;;) {
        try {
            return writeText(path, text, rulesRemedy);
        } catch (const Failure &failure) {
            if (failure.kind != NoPermission || std::chrono::steady_clock::now() >= until)
                throw;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

/** What makes an LED blink so; empty for a steady one, 2 for one that can't. */
std::string triggerFor(
    const std::string &name, const FrontLed::Signal &signal, const FrontLed::Train &train)
{
    const bool isTrain = !isEndless(train);
    if (signal.dutyCycle == 0 || (signal.dutyCycle == always && !isTrain))
        return {};
    if (!isTrain && hasTimer(name))
        return "timer";
    if (hasPattern(name))
        return "pattern";
    throw Failure{NotSupported, {}};
}

void keep(Store &store, const FrontLed::Color &color)
{
    for (unsigned i = 0; i < color.size(); ++i)
        store.setNumber(keyOf(i), color[i]);
}

void startTrigger(const std::string &folder, const std::string &trigger, std::int64_t level,
    const FrontLed::Signal &signal, const FrontLed::Train &train)
{
    writeText(folder + "/trigger", trigger, rulesRemedy);
    if (trigger == "pattern")
        return writeOfTrigger(folder + "/pattern", patternOf(level, signal, train));
    const auto [on, off] = timesOf(signal);
    writeOfTrigger(folder + "/delay_on", std::to_string(on));
    writeOfTrigger(folder + "/delay_off", std::to_string(off));
}

} // namespace

std::vector<FrontLed::Lamp> FrontLed::find() const
{
    const auto machine = Machine::present();
    if (machine->section("frontLed").is_null())
        throw Failure{NotSupported, {}};
    std::vector<Lamp> lamps;
    const auto add = [&](const std::string &name, const std::vector<unsigned> &components,
                         bool isMulticolor) {
        if (!exists(folderOf(name)))
            throw Failure{NotAvailable, {}};
        lamps.push_back({name, components, isMulticolor});
    };
    if (const auto name = machine->text("frontLed", "multicolor"); !name.empty()) {
        std::vector<unsigned> order;
        for (const auto &word : wordsOf(readText(folderOf(name) + "/multi_index"))) {
            const auto *const found = std::find(std::begin(colorNames), std::end(colorNames), word);
            order.push_back(unsigned(found - std::begin(colorNames))); // 3 for one unknown to us
        }
        add(name, order, true);
        return lamps;
    }
    for (unsigned i = 0; i < std::size(colorNames); ++i) {
        if (const auto name = machine->text("frontLed", colorNames[i]); !name.empty())
            add(name, {i}, false);
    }
    if (lamps.empty())
        throw Failure{NotSupported, {}};
    return lamps;
}

FrontLed::Color FrontLed::color()
{
    const auto lamps = find();
    Store store;
    const auto kept = keptColor(store);
    Color shown{};
    const auto component = [](std::int64_t value, std::int64_t top) {
        const auto level = std::clamp<std::int64_t>(value, 0, top);
        return std::uint8_t((level * topOfColor + top / 2) / top);
    };
    for (const auto &lamp : lamps) {
        const auto top = highest(lamp.name);
        const auto level = readNumber(folderOf(lamp.name) + "/brightness");
        if (!lamp.isMulticolor) {
            shown[lamp.components.front()] = component(level, top);
            continue;
        }
        const auto file = folderOf(lamp.name) + "/multi_intensity";
        const auto parts = wordsOf(readText(file));
        for (std::size_t i = 0; i < parts.size() && i < lamp.components.size(); ++i) {
            // What is shown of an intensity is as much as the LED's brightness is of its top.
            const auto intensity = std::clamp<std::int64_t>(numberIn(file, parts[i]), 0, top);
            const auto bright = std::clamp<std::int64_t>(level, 0, top);
            if (lamp.components[i] < shown.size())
                shown[lamp.components[i]] = component((intensity * bright + top / 2) / top, top);
        }
    }
    // In the dark phase of its blinking, off, or coarser than the contract's steps.
    return isDark(kept) ? shown : kept;
}

void FrontLed::show(const std::vector<Lamp> &lamps, const Color &color)
{
    for (const auto &lamp : lamps) {
        const auto top = highest(lamp.name);
        if (!lamp.isMulticolor) {
            writeBrightness("leds", lamp.name, levelOf(color, lamp.components.front(), top));
            continue;
        }
        std::string parts;
        for (const auto component : lamp.components)
            parts += (parts.empty() ? "" : " ") + std::to_string(levelOf(color, component, top));
        writeText(folderOf(lamp.name) + "/multi_intensity", parts, rulesRemedy);
        writeBrightness("leds", lamp.name, isDark(color) ? 0 : top);
    }
}

void FrontLed::blink(
    const std::vector<Lamp> &lamps, const Color &color, const Signal &signal, const Train &train)
{
    for (const auto &lamp : lamps) {
        const auto folder = folderOf(lamp.name);
        if (!exists(folder + "/trigger"))
            continue;
        // Where it blinks, an LED of several colours has them in another file.
        const auto top = highest(lamp.name);
        const auto level = !lamp.isMulticolor ? levelOf(color, lamp.components.front(), top)
                                              : (isDark(color) ? 0 : top);
        const auto trigger = triggerFor(lamp.name, signal, train);
        if (!trigger.empty() && level > 0)
            startTrigger(folder, trigger, level, signal, train);
        else if (hasTimer(lamp.name) || hasPattern(lamp.name))
            writeText(folder + "/trigger", "none", rulesRemedy);
    }
}

bool FrontLed::canTrain(const std::vector<Lamp> &lamps)
{
    return std::all_of(
        lamps.begin(), lamps.end(), [](const Lamp &lamp) { return hasPattern(lamp.name); });
}

void FrontLed::set(
    const std::vector<Lamp> &lamps, const Color &color, const Signal &signal, const Train &train)
{
    // All of them can do it, or none is touched.
    for (const auto &lamp : lamps) {
        if (exists(folderOf(lamp.name) + "/trigger") &&
            triggerFor(lamp.name, signal, train) == "pattern" &&
            patternOf(highest(lamp.name), signal, train).size() > longestPattern)
            throw Failure{ValueOutOfRange, {}};
    }
    show(lamps, signal.dutyCycle > 0 ? color : Color{});
    blink(lamps, color, signal, train);
}

void FrontLed::setColor(const Color &color)
{
    const auto lamps = find();
    if (std::any_of(color.begin(), color.end(), [](auto part) { return part > topOfColor; }))
        throw Failure{ValueOutOfRange, {}};
    Store store;
    const auto signal = keptSignal(store);
    if (signal.dutyCycle > 0)
        set(lamps, color, signal, canTrain(lamps) ? keptTrain(store) : Train{});
    keep(store, color);
}

std::int32_t FrontLed::standardColor()
{
    const auto present = color();
    const auto *const found =
        std::find(std::begin(standardColors), std::end(standardColors), present);
    if (found == std::end(standardColors))
        throw Failure{NotAvailable, {}};
    return std::int32_t(found - std::begin(standardColors));
}

void FrontLed::setStandardColor(std::int32_t number)
{
    if (number < LED_RED || number > LED_YELLOW)
        throw Failure{ValueOutOfRange, {}};
    setColor(standardColors[number]);
}

FrontLed::Signal FrontLed::signal()
{
    const std::uint8_t shown = isDark(color()) ? 0 : always;
    Store store;
    return keptSignal(store, shown);
}

void FrontLed::setSignal(const Signal &signal)
{
    const auto lamps = find();
    if (!(signal.hertz >= slowest && signal.hertz <= fastest) || signal.dutyCycle > always)
        throw Failure{ValueOutOfRange, {}};
    Store store;
    const auto present = color();
    if (isDark(keptColor(store)))
        keep(store, present); // or it would be lost with the light
    set(lamps, present, signal, canTrain(lamps) ? keptTrain(store) : Train{});
    store.setNumber("FrontLED.hertz", signal.hertz);
    store.setNumber("FrontLED.dutyCycle", signal.dutyCycle);
}

void FrontLed::setOff()
{
    setSignal({signal().hertz, 0});
}

FrontLed::Train FrontLed::train()
{
    const auto lamps = find();
    if (!canTrain(lamps))
        throw Failure{NotSupported, {}};
    Store store;
    return keptTrain(store);
}

void FrontLed::setTrain(const Train &train)
{
    const auto lamps = find();
    if (!canTrain(lamps))
        throw Failure{NotSupported, {}};
    Store store;
    set(lamps, color(), keptSignal(store), train);
    store.setNumber("FrontLED.pulses", train.pulses);
    store.setNumber("FrontLED.idleTime", train.idleTime);
}

} // namespace linuxunit
