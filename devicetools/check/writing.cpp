#include "devicetools/check/settings.h"
#include "devicetools/check/tests.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace check {

namespace {

/** Values that are two views of the same thing, so that setting one moves the other. */
constexpr std::pair<std::string_view, std::string_view> related[] = {
    {"FrontLED_setColor", "FrontLED_setStandardColor"},
    {"FrontLED_setSignal", "FrontLED_setOnTime"},
    {"FrontLED_setSignal", "FrontLED_setOffTime"},
    {"Touch_setMouseRightClickTime", "Touch_setAdvancedSetting(0)"},
};

bool areRelated(const Setting &one, const Setting &other)
{
    return std::any_of(std::begin(related), std::end(related), [&](const auto &pair) {
        return (one.name == pair.first && other.name == pair.second) ||
               (one.name == pair.second && other.name == pair.first);
    });
}

/** What is no fault: done, not supported, not available at present. */
bool isFair(DeviceCode code)
{
    return code == DEVICE_OK || code == DEVICE_NOT_SUPPORTED || code == DEVICE_DATA_NOT_AVAILABLE;
}

bool runsAutomatic(Session &session)
{
    const auto asked = question("Backlight_getAutomaticBLStatus");
    if (!session.has(asked.operation->name))
        return false;
    const auto answer = session.ask(asked);
    return answer.code == DEVICE_OK && answer.number(*asked.operation, 1) != 0;
}

bool hasNoSuspend(Session &session)
{
    const auto asked = question("Config_getSuspendMaxTime");
    return session.has(asked.operation->name) && session.ask(asked).code == DEVICE_NOT_SUPPORTED;
}

/** What may be set. What the automatic backlight moves is its own, and a unit without suspend need
 *  not take it for a button's action. */
std::vector<Setting> settableOf(Session &session)
{
    session.load();
    auto settings = settingsOf(session);
    const bool automatic = runsAutomatic(session);
    std::erase_if(settings, [&](const Setting &setting) {
        return automatic && setting.name.starts_with("Backlight_setIntensity");
    });
    if (hasNoSuspend(session)) {
        for (auto &setting : settings) {
            for (auto &value : setting.values) {
                if (std::string_view(setting.set.operation->arguments[value.setPlace].name) ==
                    "action")
                    std::erase(value.legal, ACTION_SUSPEND);
            }
        }
    }
    return settings;
}

std::string listed(const std::vector<double> &values)
{
    std::string text;
    for (const double value : values)
        text += (text.empty() ? "" : ", ") + textOf(value);
    return text;
}

/** Calls with values one after the other, one of them changed at a time. */
template <typename Function>
void forEachCandidate(Session &session, const Setting &setting, Function function)
{
    const auto present = read(session, setting);
    if (!present)
        return;
    for (std::size_t i = 0; i < setting.values.size(); ++i) {
        auto tried = candidates(setting, i, (*present)[i]);
        if (setting.switchesPower && !session.options.power)
            tried = {(*present)[i]};
        for (const double value : tried) {
            auto values = *present;
            values[i] = value;
            function(values, i);
        }
    }
}

void checkValues(Session &session, const Setting &setting)
{
    bool hasFailed = false;
    const auto present = read(session, setting);
    forEachCandidate(session, setting, [&](const std::vector<double> &values, std::size_t changed) {
        if (hasFailed)
            return;
        const auto code = write(session, setting, values);
        const bool isSaid =
            !setting.values[changed].legal.empty() || (present && values == *present);
        if (code == DEVICE_NOT_SUPPORTED)
            return;
        if (code != DEVICE_OK) {
            hasFailed = true;
            const auto text =
                setting.name + " refused " + listed(values) + " with " + std::to_string(code);
            // The contract gives no range, so this may be beyond it.
            return isSaid ? session.fail(text) : session.warn(text);
        }
        const auto got = read(session, setting);
        for (std::size_t i = 0; got && i < values.size(); ++i) {
            if (!isSame(setting, i, values[i], (*got)[i]))
                hasFailed = true;
        }
        if (!got)
            session.fail(setting.get.text() + " fails after " + setting.name + " was given " +
                         listed(values));
        else if (hasFailed)
            session.fail(setting.name + " was given " + listed(values) + ", and " +
                         setting.get.text() + " gives " + listed(*got));
        hasFailed = hasFailed || !got;
    });
}

void checkRange(Session &session, const Setting &setting, const std::vector<double> &present,
    std::size_t index, double value)
{
    auto values = present;
    values[index] = value;
    const auto code = write(session, setting, values);
    const auto got = read(session, setting);
    if (!got)
        return session.fail(
            setting.get.text() + " fails after " + setting.name + " was given " + listed(values));
    if (code != DEVICE_OK && *got != present)
        return session.fail(setting.name + " refused " + listed(values) + " with " +
                            std::to_string(code) + " and changed " + listed(present) + " to " +
                            listed(*got));
    if (code == DEVICE_OK)
        session.warn(setting.name + " took " + listed(values) +
                     ", which is beyond the range, and made " + listed(*got) + " of it");
    write(session, setting, present);
}

std::vector<std::vector<double>> readAll(Session &session, const std::vector<Setting> &settings)
{
    std::vector<std::vector<double>> all;
    all.reserve(settings.size());
    for (const auto &setting : settings)
        all.push_back(read(session, setting).value_or(std::vector<double>{}));
    return all;
}

/** Whether it runs; and, as it moves the brightness while it does, the brightness of a unit where
 * it doesn't. */
void rememberAutomatic(Session &session, Restorer &restorer)
{
    if (runsAutomatic(session))
        return restorer.remember(question("Backlight_startAutomaticBL"));
    const auto brightness = question("Backlight_getIntensity");
    if (session.has(brightness.operation->name) && session.has("Backlight_setIntensity")) {
        const auto answer = session.ask(brightness);
        if (answer.code == DEVICE_OK)
            restorer.remember(
                question("Backlight_setIntensity", {answer.number(*brightness.operation, 1)}));
    }
    restorer.remember(question("Backlight_stopAutomaticBL"));
}

Question withTexts(Question asked, const char *key, const char *value = nullptr)
{
    asked.given[1] = contract::textValue(key);
    if (value)
        asked.given[2] = contract::textValue(value);
    return asked;
}

std::optional<std::string> stringOf(Session &session, const char *key)
{
    const auto answer = session.ask(withTexts(question("Settings_getString"), key));
    if (answer.code != DEVICE_OK)
        return std::nullopt;
    const auto &bytes = answer.written[2];
    return std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), '\0'));
}

DeviceCode setString(Session &session, const char *key, const std::string &value)
{
    return session.ask(withTexts(question("Settings_setString"), key, value.c_str())).code;
}

constexpr const char *ownKey = "VornCheck";

/** The key to write to: our own, or one of the program's if the library takes no others. The second
 *  case needs a value that can be put back. Empty if there is none, which is the test's finding
 *  then. */
std::string keyToWrite(Session &session, Restorer &restorer)
{
    const char *const keys[] = {ownKey, "VornsettingsGsmPort", "VornsettingsGpsPort"};
    for (const char *key : keys) {
        const auto present = stringOf(session, key);
        if (!present && key != ownKey)
            continue;
        // There is no way to remove a key; an empty text is the nearest.
        const auto value = present.value_or("");
        restorer.remember(withTexts(question("Settings_setString"), key, value.c_str()));
        const auto code = setString(session, key, "VornCheck");
        if (code == DEVICE_OK)
            return key;
        if (key != ownKey && code != DEVICE_NOT_SUPPORTED) {
            session.fail("Settings_setString(\"" + std::string(key) + "\") answered " +
                         std::to_string(code));
            return {};
        }
    }
    session.skip("Settings_setString takes no key whose value can be put back");
    return {};
}

bool hasStrings(Session &session)
{
    session.load();
    if (session.has("Settings_getString") && session.has("Settings_setString"))
        return true;
    session.skip("the operations of the Settings family are left out");
    return false;
}

std::string readable(const std::string &text)
{
    std::string shown = text.size() > 40 ? text.substr(0, 40) + "..." : text;
    return "\"" + shown + "\" (" + std::to_string(text.size()) + " bytes)";
}

/** Of 1,023 bytes with a different place for each letter. */
std::string longText()
{
    std::string text;
    for (int i = 0; text.size() < 1023; ++i)
        text += std::to_string(i) + ' ';
    text.resize(1023);
    return text;
}

} // namespace

void givesBackWhatWasSet(Session &session)
{
    auto settings = settableOf(session);
    if (settings.empty())
        return session.skip("nothing can be read that can be set");
    const Restorer restorer(session, settings);
    for (const auto &setting : settings) {
        const auto present = read(session, setting);
        checkValues(session, setting);
        if (present)
            write(session, setting, *present);
    }
}

void refusesBeyondRange(Session &session)
{
    auto settings = settableOf(session);
    if (settings.empty())
        return session.skip("nothing can be read that can be set");
    const Restorer restorer(session, settings);
    for (const auto &setting : settings) {
        const auto present = read(session, setting);
        // Beyond the range of a mask or a switch is what turns something off, too.
        if (!present || (setting.switchesPower && !session.options.power))
            continue;
        for (std::size_t i = 0; i < setting.values.size(); ++i) {
            for (const double value : setting.values[i].illegal)
                checkRange(session, setting, *present, i, value);
        }
    }
}

void keepsNeighbours(Session &session)
{
    auto settings = settableOf(session);
    if (settings.size() < 2)
        return session.skip("fewer than two values can be read that can be set");
    const Restorer restorer(session, settings);
    auto before = readAll(session, settings);
    for (std::size_t index = 0; index < settings.size(); ++index) {
        const auto &setting = settings[index];
        forEachCandidate(session, setting, [&](const std::vector<double> &values, std::size_t) {
            write(session, setting, values);
        });
        write(session, setting, before[index]);
        const auto after = readAll(session, settings);
        for (std::size_t other = 0; other < settings.size(); ++other) {
            if (other == index || after[other] == before[other] ||
                areRelated(setting, settings[other]))
                continue;
            session.fail(setting.name + " changed what " + settings[other].get.text() +
                         " gives from " + listed(before[other]) + " to " + listed(after[other]));
        }
        before = after;
    }
}

void keepsStrings(Session &session)
{
    if (!hasStrings(session))
        return;
    Restorer restorer(session);
    const auto key = keyToWrite(session, restorer);
    if (key.empty())
        return;
    for (const std::string &text :
        {std::string("COM5"), std::string("Gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x94\xA7"),
            std::string("a \"b\"\\\n\tc\x01"), longText(), std::string()}) {
        const auto code = setString(session, key.c_str(), text);
        const auto got = stringOf(session, key.c_str());
        if (code != DEVICE_OK)
            session.fail(
                "Settings_setString refused " + readable(text) + " with " + std::to_string(code));
        else if (got != text)
            session.fail("Settings_setString was given " + readable(text) +
                         ", and Settings_getString " +
                         (got ? "gives " + readable(*got) : std::string("fails")));
    }
}

void keepsStringsForOthers(Session &session)
{
    if (!hasStrings(session))
        return;
    // The second round runs in another process, which the watching one starts.
    const bool isSecond = session.channel.textsUsed > 0;
    const std::string expected = "kept for another process";
    if (isSecond) {
        const auto *key = session.channel.texts + session.channel.restoring[0].texts[1];
        const auto got = stringOf(session, key);
        if (got != expected)
            session.fail("a text that one process set is in another one " +
                         (got ? readable(*got) : std::string("not there")));
        return restore(session);
    }
    Restorer restorer(session);
    const auto key = keyToWrite(session, restorer);
    if (key.empty())
        return;
    if (setString(session, key.c_str(), expected) == DEVICE_OK)
        restorer.leaveToNext();
}

void writesOutputs(Session &session)
{
    constexpr int lines = 4;
    session.load();
    const auto get = question("DigIO_getDigIO");
    const auto present = session.has("DigIO_getDigIO") ? session.ask(get) : Answer{1, {}, -1, 0};
    auto settings = settingsOf(session);
    std::erase_if(settings, [](const Setting &s) { return !s.name.starts_with("FrontLED_"); });
    Restorer restorer(session, settings);
    if (present.code == DEVICE_OK && session.has("DigIO_setDigIO")) {
        const auto mask = present.number(*get.operation, 1);
        restorer.remember(question("DigIO_setDigIO", {mask}));
        for (int tried = 0; tried < 1 << lines; ++tried) {
            const auto code = session.ask(question("DigIO_setDigIO", {double(tried)})).code;
            if (code == DEVICE_NOT_SUPPORTED)
                break;
            const auto answer = session.ask(get);
            const auto got = answer.code == 0 ? int(answer.number(*get.operation, 1)) : -1;
            if (code != DEVICE_OK)
                return session.fail("DigIO_setDigIO(" + std::to_string(tried) + ") answered " +
                                    std::to_string(code));
            if ((got & 15) != tried)
                return session.fail("DigIO_setDigIO was given " + std::to_string(tried) +
                                    ", and DigIO_getDigIO gives " + std::to_string(got));
        }
    }
    if (session.has("FrontLED_setOff")) {
        const auto code = session.ask(question("FrontLED_setOff")).code;
        if (!isFair(code))
            session.fail("FrontLED_setOff answered " + std::to_string(code));
    }
}

void automaticRuns(Session &session)
{
    session.load();
    for (const char *name : {"Backlight_startAutomaticBL", "Backlight_stopAutomaticBL",
             "Backlight_getAutomaticBLStatus"}) {
        if (!session.has(name))
            return session.skip(std::string(name) + " is left out");
    }
    const auto status = session.ask(question("Backlight_getAutomaticBLStatus")).code;
    if (status != DEVICE_OK)
        return session.skip("Backlight_getAutomaticBLStatus answers " + std::to_string(status));
    Restorer restorer(session);
    rememberAutomatic(session, restorer);
    for (const bool on : {true, false, true}) {
        const char *name = on ? "Backlight_startAutomaticBL" : "Backlight_stopAutomaticBL";
        const auto code = session.ask(question(name)).code;
        if (code != DEVICE_OK)
            return session.fail(std::string(name) + " answered " + std::to_string(code));
        if (runsAutomatic(session) != on)
            return session.fail("after " + std::string(name) +
                                " Backlight_getAutomaticBLStatus tells the opposite");
    }
}

void averagesRun(Session &session)
{
    session.load();
    const auto start = question("LightSensor_startAverageCalc", {5, 5, 100, SAMPLING_AUTO});
    const auto stop = question("LightSensor_stopAverageCalc");
    if (!session.has(start.operation->name) || !session.has(stop.operation->name))
        return session.skip("the operations are left out");
    Restorer restorer(session);
    restorer.remember(stop);
    for (int round = 0; round < 2; ++round) {
        const auto code = session.ask(start).code;
        if (code != DEVICE_OK && isFair(code))
            return session.skip("LightSensor_startAverageCalc answers " + std::to_string(code));
        if (code == DEVICE_AUTOMATIC_BACKLIGHT_RUNS && runsAutomatic(session))
            return session.skip("the automatic backlight runs");
        if (code != DEVICE_OK)
            return session.fail(start.text() + " answered " + std::to_string(code) +
                                (code == DEVICE_AUTOMATIC_BACKLIGHT_RUNS
                                        ? ", and the automatic backlight doesn't run"
                                        : ""));
        const auto stopped = session.ask(stop).code;
        if (stopped != DEVICE_OK)
            return session.fail("LightSensor_stopAverageCalc answered " + std::to_string(stopped));
    }
}

} // namespace check
