#include "linuxunit/devices/StoredSetting.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/texts.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <cmath>
#include <fnmatch.h>
#include <nlohmann/json.hpp>

namespace linuxunit {

using nlohmann::json;

namespace {

constexpr const char *settingRemedy = "give group vornaux the right to it by a rule of your own";

/** The first file that fits, by name; empty if there is none. */
std::string firstMatch(const std::string &pattern)
{
    const auto star = pattern.find('*');
    if (star == pattern.npos)
        return exists(pattern) ? pattern : std::string();
    const auto begin = pattern.rfind('/', star) + 1;
    const auto end = std::min(pattern.find('/', star), pattern.size());
    const auto part = pattern.substr(begin, end - begin);
    for (const auto &name : namesIn(pattern.substr(0, begin))) {
        if (::fnmatch(part.c_str(), name.c_str(), FNM_PERIOD) != 0)
            continue;
        auto found = firstMatch(pattern.substr(0, begin) + name + pattern.substr(end));
        if (!found.empty())
            return found;
    }
    return {};
}

/** The kernel's way of telling a choice: all there are, with brackets around the present one. */
std::string chosenIn(const std::string &text)
{
    const auto open = text.find('[');
    const auto close = text.find(']', open == text.npos ? 0 : open);
    return open == text.npos || close == text.npos ? text : text.substr(open + 1, close - open - 1);
}

Failure beyond(const std::string &path, const std::string &text)
{
    return {UnexpectedContent,
        latin1(path) + " holds \"" + printable(text) + "\", which is none of the setting's values"};
}

} // namespace

bool StoredSetting::isMapped(const char *key)
{
    return Machine::present()->part("config", key).is_object();
}

StoredSetting::StoredSetting(const char *key)
    : factor(1)
{
    const auto machine = Machine::present();
    const auto &entry = machine->part("config", key);
    if (!entry.is_object())
        throw Failure{NotSupported, {}};
    pattern = entry.at("file").get<std::string>();
    factor = entry.value("factor", 1.0);
    words = entry.value("values", std::vector<std::string>());
}

std::string StoredSetting::path() const
{
    auto found = firstMatch(pattern);
    if (found.empty())
        throw Failure{NotAvailable, {}};
    return found;
}

double StoredSetting::number(double lowest, double highest) const
{
    const auto file = path();
    const auto text = readSlowText(file);
    const double value = realIn(file, text) * factor;
    if (!(value >= lowest && value <= highest))
        throw beyond(file, text);
    return value;
}

void StoredSetting::setNumber(double value, double lowest, double highest) const
{
    const auto file = path();
    const double raw = value / factor;
    if (!(value >= lowest && value <= highest && std::abs(raw) < double(INT64_MAX)))
        throw Failure{ValueOutOfRange, {}};
    writeText(file, std::to_string(std::llround(raw)), settingRemedy);
}

std::int32_t StoredSetting::choice(std::int32_t first, std::int32_t last) const
{
    const auto file = path();
    const auto text = chosenIn(readSlowText(file));
    if (text.empty())
        throw Failure{NotAvailable, {}};
    const auto found = std::find(words.begin(), words.end(), text);
    const std::int64_t value =
        words.empty() ? numberIn(file, text) : first + (found - words.begin());
    if (value < first || value > last || (!words.empty() && found == words.end()))
        throw beyond(file, text);
    return std::int32_t(value);
}

void StoredSetting::setChoice(std::int32_t value, std::int32_t first, std::int32_t last) const
{
    const auto file = path();
    const auto index = std::size_t(value - first);
    if (value < first || value > last || (!words.empty() && index >= words.size()))
        throw Failure{ValueOutOfRange, {}};
    writeText(file, words.empty() ? std::to_string(value) : words[index], settingRemedy);
}

} // namespace linuxunit
