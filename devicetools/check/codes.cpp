#include "devicetools/check/tests.h"

#include <algorithm>
#include <map>

namespace check {

namespace {

/** What Hardware_... tells of, and what can be asked of it. */
struct Equipment {
    const char *told;
    std::vector<Question> asked;
};

std::vector<Equipment> equipment()
{
    return {
        {"Hardware_hasDisplay",
            {question("Backlight_getIntensity"), question("Backlight_getStatus"),
                question("Power_getBLPowerStatus")}},
        {"Hardware_hasTouchscreen",
            {question("Touch_getMode"), question("Touch_getMouseRightClickTime"),
                question("Touch_getAdvancedSetting", {0})}},
        {"Hardware_getCanCount",
            {question("Can_getBaudrate", {1}), question("Can_getFrameType", {1}),
                question("Config_getCanStartupPowerConfig"), question("Power_getCanPowerStatus")}},
        {"Hardware_getVideoCount",
            {question("Config_getVideoStartupPowerConfig"), question("Power_getVideoPowerStatus")}},
        {"Hardware_hasWlan", {question("Telematics_getWLANPowerStatus"),
                                 question("Telematics_getWLANStartUpPowerStatus")}},
        {"Hardware_hasGps", {question("Telematics_getGPSPowerStatus"),
                                question("Telematics_getGPSStartUpPowerStatus"),
                                question("Telematics_getGPSAntennaStatus")}},
        {"Hardware_hasGsm", {question("Telematics_getGPRSPowerStatus"),
                                question("Telematics_getGPRSStartUpPowerStatus")}},
        {"Hardware_hasBluetooth", {question("Telematics_getBTPowerStatus"),
                                      question("Telematics_getBTStartUpPowerStatus")}},
    };
}

std::optional<double> told(Session &session, const char *operation)
{
    if (!session.has(operation))
        return std::nullopt;
    const auto asked = question(operation);
    const auto answer = session.ask(asked);
    if (answer.code != DEVICE_OK)
        return std::nullopt;
    return answer.number(*asked.operation, 1);
}

bool isRadio(const Equipment &equipment)
{
    return std::string_view(equipment.asked.front().operation->family) == "Telematics";
}

void compareWith(Session &session, const Equipment &row, bool present)
{
    std::size_t unsupported = 0;
    std::size_t asked = 0;
    for (const auto &question : row.asked) {
        if (!session.has(question.operation->name))
            continue;
        const auto code = session.ask(question).code;
        ++asked;
        unsupported += code == DEVICE_NOT_SUPPORTED ? 1 : 0;
        if (!present && code == DEVICE_OK)
            session.warn(
                question.text() + " answered 0, where " + row.told + " says that there is none");
    }
    if (present && asked > 0 && unsupported == asked)
        session.warn(row.asked.front().text() + " and all beside it answered 2, where " + row.told +
                     " says that there is one");
}

/** A question about what doesn't exist. */
void expectFailure(Session &session, const Question &question)
{
    if (!session.has(question.operation->name))
        return;
    const auto answer = session.ask(question);
    if (answer.code == DEVICE_OK)
        session.fail(question.text() + " answered " + answer.text(*question.operation) +
                     ", where it doesn't exist");
}

void checkTexts(Session &session, const char *name, std::vector<std::int64_t> values)
{
    session.load();
    if (!session.has(name))
        return session.skip(std::string(name) + " is missing");
    const auto &text = *contract::find(contract::texts, name);
    std::vector<std::pair<const char *, std::string>> first;
    for (const auto value : values) {
        const char *pointer = session.textOf(text, value);
        const auto call = name + ("(" + std::to_string(value) + ")");
        if (!pointer)
            return session.fail(call + " gave null");
        if (*pointer == '\0')
            return session.fail(call + " gave an empty text");
        first.emplace_back(pointer, pointer);
    }
    // What they gave holds, and they give it again, whatever was asked in between.
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto call = name + ("(" + std::to_string(values[i]) + ")");
        if (first[i].first != first[i].second)
            return session.fail("the text of " + call + " was \"" + first[i].second +
                                "\" and became \"" + first[i].first + "\"");
        const char *again = session.textOf(text, values[i]);
        if (!again || again != first[i].second)
            return session.fail(call + " gave \"" + first[i].second + "\", and the second time \"" +
                                (again ? again : "null") + "\"");
    }
}

std::vector<std::int64_t> numbers(std::int64_t first, std::int64_t last)
{
    std::vector<std::int64_t> all;
    for (auto number = first; number <= last; ++number)
        all.push_back(number);
    return all;
}

} // namespace

void answersWithoutFaults(Session &session)
{
    // What fails by rights: nobody has stored the string, there is no job, the sensors have ended.
    constexpr std::string_view mayFail[] = {
        "Settings_getString", "Firmware_getUpgradeStatus", "Diagnostics_getPMTemp"};
    // Of the contract itself, and told by the test for it.
    constexpr DeviceCode fair[] = {DEVICE_OK, DEVICE_NOT_SUPPORTED, DEVICE_DATA_NOT_AVAILABLE,
        DEVICE_AUTOMATIC_BACKLIGHT_RUNS};
    session.load();
    std::string last;
    for (const auto &question : readingQuestions(session)) {
        // One channel is enough to name an operation.
        if (last == question.operation->name || std::find(std::begin(mayFail), std::end(mayFail),
                                                    question.operation->name) != std::end(mayFail))
            continue;
        const auto code = session.ask(question).code;
        if (std::find(std::begin(fair), std::end(fair), code) != std::end(fair))
            continue;
        last = question.operation->name;
        const auto *text = contract::find(contract::texts, "deviceErrorText");
        const char *said = session.has(text->name) ? session.textOf(*text, code) : nullptr;
        session.fail(question.text() + " answered " + std::to_string(code) +
                     (said ? ": " + std::string(said) : std::string()));
    }
}

void onlyOneAnswersTwenty(Session &session)
{
    session.load();
    for (const auto &question : readingQuestions(session)) {
        if (session.ask(question).code == DEVICE_AUTOMATIC_BACKLIGHT_RUNS)
            session.fail(
                question.text() + " answered 20, which is for LightSensor_startAverageCalc alone");
    }
}

void codesRepeat(Session &session)
{
    session.load();
    for (const auto &question : readingQuestions(session)) {
        auto last = session.ask(question).code;
        int changes = 0;
        DeviceCode other = last;
        for (int round = 0; round < 9; ++round) {
            const auto code = session.ask(question).code;
            if (code != last) {
                ++changes;
                other = last;
            }
            last = code;
        }
        // A datum may come or go once while somebody asks.
        if (changes > 1)
            session.fail(question.text() + " answered " + std::to_string(other) + " and " +
                         std::to_string(last) + " by turns");
    }
}

void codesMatchHardware(Session &session)
{
    session.load();
    const bool hasBoard = told(session, "Telematics_getAvailable").value_or(0) > 0;
    bool compared = false;
    for (const auto &row : equipment()) {
        const auto present = told(session, row.told);
        if (!present)
            continue;
        compared = true;
        // A radio needs its board, too.
        if (*present == 0 || !isRadio(row) || hasBoard)
            compareWith(session, row, *present > 0);
    }
    if (!compared)
        session.skip("no operation of the Hardware family answers 0");
}

void sensorsEnd(Session &session)
{
    constexpr int indices = 256;
    session.load();
    if (!session.has("Diagnostics_getPMTemp"))
        return session.skip("Diagnostics_getPMTemp is left out");
    int end = 0;
    while (end < indices && session.ask(question("Diagnostics_getPMTemp", {double(end)})).code == 0)
        ++end;
    if (end == indices)
        return session.fail("Diagnostics_getPMTemp answered 0 for all indices from 0 to 255");
    for (int index = end; index < indices; ++index) {
        const auto answer = session.ask(question("Diagnostics_getPMTemp", {double(index)}));
        if (answer.code == DEVICE_OK)
            return session.fail("Diagnostics_getPMTemp(" + std::to_string(end) +
                                ") failed and Diagnostics_getPMTemp(" + std::to_string(index) +
                                ") answered 0, where the sensors have ended");
    }
}

void channelsEnd(Session &session)
{
    session.load();
    for (const double channel : {1.0, 24.0, 255.0, 4294967295.0})
        expectFailure(session, question("Adc_getVoltage", {channel}));
    for (const double number : {-1.0, double(TOUCH_RESTORE_DEFAULTS + 1), 2147483647.0})
        expectFailure(session, question("Touch_getAdvancedSetting", {number}));
    if (const auto count = told(session, "Hardware_getCanCount")) {
        for (const double channel : {0.0, *count + 1, 255.0}) {
            if (channel > 255 || (channel > 0 && channel <= *count))
                continue;
            expectFailure(session, question("Can_getBaudrate", {channel}));
            expectFailure(session, question("Can_getFrameType", {channel}));
        }
    }
}

void errorTextsHold(Session &session)
{
    auto codes = numbers(-2, 300);
    codes.insert(codes.end(), {INT32_MIN, INT32_MAX});
    checkTexts(session, "deviceErrorText", std::move(codes));
}

void startupReasonTextsHold(Session &session)
{
    auto reasons = numbers(0, 300);
    reasons.insert(reasons.end(), {UINT16_MAX - 1, UINT16_MAX});
    checkTexts(session, "Diagnostics_startupReasonText", std::move(reasons));
}

void hardwareErrorTextsHold(Session &session)
{
    auto words = numbers(0, 300);
    words.insert(words.end(), {UINT16_MAX - 1, UINT16_MAX});
    checkTexts(session, "Diagnostics_hwErrorText", std::move(words));
}

} // namespace check
