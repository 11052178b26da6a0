#include "linuxunit/devices/Panel.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/devices/Load.h"
#include "linuxunit/devices/brightness.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>

namespace linuxunit {

namespace {

constexpr const char *allPanels = "/sys/class/backlight";
constexpr std::int64_t top = 255; ///< of the contract
constexpr int unblanked = 0;      ///< bl_power, as frame buffers count
constexpr int poweredDown = 4;

/** What was last set, by device: drivers of eight steps would give another number back. */
struct LastSet {
    std::int64_t raw;
    std::uint8_t intensity;
};

struct LastSets {
    std::mutex mutex;
    std::map<std::string, LastSet> byName;
};

/** Of all handles. Never destroyed: threads may still call while the process ends. */
LastSets &lastSets()
{
    static auto *const only = new LastSets;
    return *only;
}

/** As the kernel advises for several devices of one panel. */
int rankOf(const std::string &name)
{
    const auto type = textOf(std::string(allPanels) + "/" + name + "/type").value_or("");
    if (type == "firmware")
        return 0;
    return type == "platform" ? 1 : 2;
}

std::string found()
{
    const auto names = namesIn(allPanels);
    const auto best = std::min_element(names.begin(), names.end(),
        [](const auto &one, const auto &other) { return rankOf(one) < rankOf(other); });
    return best == names.end() ? std::string() : *best;
}

/** Darkest raw level that is written. */
std::int64_t lowest(std::int64_t highest)
{
    const auto machine = Machine::present();
    const auto &darkest = machine->part("backlight", "darkest");
    return darkest.is_number() ? std::min(darkest.get<std::int64_t>(), highest) : 0;
}

/** a * b / c to the nearest. */
std::int64_t scaled(std::int64_t a, std::int64_t b, std::int64_t c)
{
    return (a * b + c / 2) / c;
}

} // namespace

std::string Panel::name()
{
    auto name = Machine::present()->text("backlight", "device");
    const bool isNamed = !name.empty();
    if (!isNamed)
        name = found();
    if (!name.empty() && exists(std::string(allPanels) + "/" + name)) {
        last = name;
        return name;
    }
    throw Failure{isNamed || !last.empty() ? NotAvailable : NotSupported, {}};
}

std::string Panel::folder()
{
    return std::string(allPanels) + "/" + name();
}

std::int64_t Panel::highest(const std::string &folder) const
{
    const auto path = folder + "/max_brightness";
    const auto highest = readNumber(path);
    constexpr std::int64_t highestOfAll = INT32_MAX;
    if (highest < 1 || highest > highestOfAll)
        throw Failure{UnexpectedContent,
            path + " holds " + std::to_string(highest) + ", which is no top of a range"};
    return highest;
}

std::uint8_t Panel::intensity()
{
    const auto path = folder();
    const auto high = highest(path);
    const auto low = lowest(high);
    const auto raw = readSlowNumber(path + "/brightness");
    {
        auto &all = lastSets();
        const std::lock_guard lock(all.mutex);
        const auto found = all.byName.find(rooted(path));
        if (found != all.byName.end() && found->second.raw == raw)
            return found->second.intensity;
    }
    if (raw < 0 || raw > high)
        throw Failure{UnexpectedContent,
            path + "/brightness holds " + std::to_string(raw) + ", beyond max_brightness"};
    return high == low
               ? std::uint8_t(raw > 0 ? top : 0)
               : std::uint8_t(scaled(std::max(raw - low, std::int64_t(0)), top, high - low));
}

void Panel::setIntensity(std::uint8_t intensity)
{
    const auto path = folder();
    const auto high = highest(path);
    const auto low = lowest(high);
    const auto raw = low + scaled(intensity, high - low, top);
    writeBrightness("backlight", last, raw);
    auto &all = lastSets();
    const std::lock_guard lock(all.mutex);
    all.byName[rooted(path)] = {raw, intensity};
}

bool Panel::isLit()
{
    if (const auto load = Load::configured("power", "backlight"))
        return load->isOn();
    const auto path = folder() + "/bl_power";
    if (!exists(path))
        throw Failure{NotSupported, {}};
    return readNumber(path) == unblanked;
}

void Panel::setLit(bool lit)
{
    if (const auto load = Load::configured("power", "backlight"))
        return load->switchTo(lit);
    const auto path = folder() + "/bl_power";
    if (!exists(path))
        throw Failure{NotSupported, {}};
    writeText(path, std::to_string(lit ? unblanked : poweredDown), rulesRemedy);
}

bool Panel::isSound()
{
    const auto path = folder() + "/actual_brightness";
    if (!exists(path))
        throw Failure{NotSupported, {}};
    try {
        readSlowNumber(path);
        return true;
    } catch (const Failure &failure) {
        if (failure.kind != ReadFailed)
            throw;
        return false;
    }
}

} // namespace linuxunit
