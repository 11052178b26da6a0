#include "linuxunit/devices/FrontLed.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/devices/brightness.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/machine/Machine.h"
#include "linuxunit/store/Store.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

namespace linuxunit {

namespace {

constexpr const char *colorNames[] = {"red", "green", "blue"};
constexpr std::uint8_t topOfColor = 15;
constexpr FrontLed::Color standardColors[] = {{topOfColor, 0, 0}, {0, topOfColor, 0},
    {0, 0, topOfColor}, {0, topOfColor, topOfColor}, {topOfColor, 0, topOfColor},
    {topOfColor, topOfColor, 0}}; ///< by LedColor

constexpr double slowest = 0.01; ///< hertz
constexpr double fastest = 100;
constexpr std::uint8_t always = 100; ///< percent

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

std::vector<std::string> wordsOf(const std::string &text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

/** Whether the LED has the trigger. Without brackets around the active one it isn't the kernel's
 * list of them, and nobody knows. */
bool hasTrigger(const std::string &name, const std::string &trigger)
{
    const auto text = textOf(folderOf(name) + "/trigger").value_or("");
    const auto words = wordsOf(text);
    return text.find('[') == text.npos ||
           std::find(words.begin(), words.end(), trigger) != words.end() ||
           std::find(words.begin(), words.end(), "[" + trigger + "]") != words.end();
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

} // namespace

std::vector<FrontLed::Lamp> FrontLed::find() const
{
    const auto machine = Machine::present();
    if (machine->section("frontLed").is_null())
        throw Failure{NotSupported, {}};
    std::vector<Lamp> lamps;
    const auto add = [&](const std::string &name, const std::vector<unsigned> &components) {
        if (!exists(folderOf(name)))
            throw Failure{NotAvailable, {}};
        lamps.push_back({name, components});
    };
    if (const auto name = machine->text("frontLed", "multicolor"); !name.empty()) {
        std::vector<unsigned> order;
        for (const auto &word : wordsOf(readText(folderOf(name) + "/multi_index"))) {
            const auto *const found = std::find(std::begin(colorNames), std::end(colorNames), word);
            order.push_back(unsigned(found - std::begin(colorNames))); // 3 for one unknown to us
        }
        add(name, order);
        return lamps;
    }
    for (unsigned i = 0; i < std::size(colorNames); ++i) {
        if (const auto name = machine->text("frontLed", colorNames[i]); !name.empty())
            add(name, {i});
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
        return std::uint8_t(
            std::clamp<std::int64_t>((value * topOfColor + top / 2) / top, 0, topOfColor));
    };
    for (const auto &lamp : lamps) {
        const auto top = highest(lamp.name);
        const auto level = readNumber(folderOf(lamp.name) + "/brightness");
        if (lamp.components.size() == 1) {
            shown[lamp.components.front()] = component(level, top);
            continue;
        }
        const auto parts = wordsOf(readText(folderOf(lamp.name) + "/multi_intensity"));
        for (std::size_t i = 0; i < parts.size() && i < lamp.components.size(); ++i) {
            if (lamp.components[i] < shown.size())
                shown[lamp.components[i]] =
                    component(numberIn(folderOf(lamp.name) + "/multi_intensity", parts[i]), top);
        }
        if (level == 0)
            shown = {};
    }
    // In the dark phase of its blinking, or coarser than the contract's steps.
    const bool isOurs = store.number("FrontLED.lit", 0) != 0;
    return isOurs && !isDark(kept) ? kept : shown;
}

void FrontLed::show(const std::vector<Lamp> &lamps, const Color &color)
{
    for (const auto &lamp : lamps) {
        const auto top = highest(lamp.name);
        const auto level = [&](unsigned component) {
            return component < color.size() ? (color[component] * top + topOfColor / 2) / topOfColor
                                            : std::int64_t(0);
        };
        if (lamp.components.size() == 1) {
            writeBrightness("leds", lamp.name, level(lamp.components.front()));
            continue;
        }
        std::string parts;
        for (const auto component : lamp.components)
            parts += (parts.empty() ? "" : " ") + std::to_string(level(component));
        writeText(folderOf(lamp.name) + "/multi_intensity", parts, rulesRemedy);
        writeBrightness("leds", lamp.name, isDark(color) ? 0 : top);
    }
}

void FrontLed::blink(const std::vector<Lamp> &lamps, const Signal &signal)
{
    const bool isSteady = signal.dutyCycle == 0 || signal.dutyCycle == always;
    for (const auto &lamp : lamps) {
        const auto folder = folderOf(lamp.name);
        if (!exists(folder + "/trigger"))
            continue;
        const bool canBlink = hasTrigger(lamp.name, "timer");
        if (!isSteady && !canBlink)
            throw Failure{NotSupported, {}};
        const bool isDarkOne = readNumber(folder + "/brightness") == 0;
        if (isSteady || isDarkOne) {
            if (canBlink)
                writeText(folder + "/trigger", "none", rulesRemedy);
            continue;
        }
        const double period = 1000 / signal.hertz; // milliseconds
        const auto on = std::lround(period * signal.dutyCycle / always);
        writeText(folder + "/trigger", "timer", rulesRemedy);
        writeText(folder + "/delay_on", std::to_string(on), rulesRemedy);
        writeText(folder + "/delay_off", std::to_string(std::lround(period) - on), rulesRemedy);
    }
}

void FrontLed::setColor(const Color &color)
{
    const auto lamps = find();
    if (std::any_of(color.begin(), color.end(), [](auto part) { return part > topOfColor; }))
        throw Failure{ValueOutOfRange, {}};
    const auto present = signal();
    if (present.dutyCycle > 0)
        show(lamps, color);
    Store store;
    for (unsigned i = 0; i < color.size(); ++i)
        store.setNumber(keyOf(i), color[i]);
    store.setNumber("FrontLED.lit", 1);
    blink(lamps, present);
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
    find();
    Store store;
    const auto hertz = std::clamp(store.number("FrontLED.hertz", 1), slowest, fastest);
    const auto duty = std::clamp<double>(store.number("FrontLED.dutyCycle", always), 0, always);
    return {hertz, std::uint8_t(duty)};
}

void FrontLed::setSignal(const Signal &signal)
{
    const auto lamps = find();
    if (!(signal.hertz >= slowest && signal.hertz <= fastest) || signal.dutyCycle > always)
        throw Failure{ValueOutOfRange, {}};
    Store store;
    if (signal.dutyCycle > 0 && store.number("FrontLED.lit", 0) != 0)
        show(lamps, keptColor(store));
    blink(lamps, signal);
    if (signal.dutyCycle == 0)
        show(lamps, {});
    store.setNumber("FrontLED.hertz", signal.hertz);
    store.setNumber("FrontLED.dutyCycle", signal.dutyCycle);
}

void FrontLed::setOff()
{
    const auto lamps = find();
    show(lamps, {}); // takes the trigger away, too
    Store().setNumber("FrontLED.lit", 0);
}

} // namespace linuxunit
