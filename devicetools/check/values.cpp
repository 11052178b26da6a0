#include "devicetools/check/tests.h"

#include <algorithm>

namespace check {

using contract::Argument;
using contract::Role;

namespace {

/** Buffers of the texts: the small ones, and those that the program has. */
constexpr std::uint32_t textSizes[] = {1, 2, 8, 20, 21, 200, 255, 1024, roomySize};

bool isText(const contract::Operation &operation)
{
    return std::any_of(operation.arguments.begin(), operation.arguments.end(),
        [](const Argument &argument) { return argument.role == Role::Buffer; });
}

std::size_t bufferOf(const contract::Operation &operation)
{
    const auto found = std::find_if(operation.arguments.begin(), operation.arguments.end(),
        [](const Argument &argument) { return argument.role == Role::Buffer; });
    return std::size_t(found - operation.arguments.begin());
}

std::vector<Question> questionsOf(Session &session, bool texts)
{
    session.load();
    auto questions = readingQuestions(session);
    std::erase_if(
        questions, [texts](const Question &asked) { return isText(*asked.operation) != texts; });
    return questions;
}

/** First amid bytes that tell who changed them, which names every culprit; then before a page whose
 *  touch ends the process, which misses nothing. */
void checkBounds(
    Session &session, const std::vector<Question> &questions, std::span<const std::uint32_t> sizes)
{
    for (const Place place : {Place::Guarded, Place::AtEdge}) {
        if (session.hasFailed())
            return;
        for (const auto &question : questions) {
            for (const auto size : sizes) {
                const auto answer = session.ask(question, oneFilling, place, size);
                if (answer.overrun < 0)
                    continue;
                const auto &argument = question.operation->arguments[std::size_t(answer.overrun)];
                const auto width = argument.role == Role::Buffer ? size : argument.width;
                session.fail(question.text() + " wrote beyond the " + std::to_string(width) +
                             " bytes of " + argument.name);
                break;
            }
        }
    }
}

/** Whether bytes of the argument that count have their filling in both answers. */
bool isSkipped(const Argument &argument, const std::vector<unsigned char> &one,
    const std::vector<unsigned char> &other)
{
    const auto skipped = [&](std::size_t first, std::size_t count) {
        for (std::size_t i = first; i < first + count; ++i) {
            if (one[i] == oneFilling && other[i] == otherFilling)
                return true;
        }
        return false;
    };
    if (argument.role != Role::Record)
        return skipped(0, argument.width);
    // What lies between the fields is nobody's.
    const auto &fields = contract::find(contract::structs, argument.type)->fields;
    return std::any_of(fields.begin(), fields.end(),
        [&](const contract::Field &field) { return skipped(field.offset, field.width); });
}

bool isFilled(const std::vector<unsigned char> &bytes, unsigned char filling)
{
    return std::all_of(
        bytes.begin(), bytes.end(), [filling](unsigned char byte) { return byte == filling; });
}

/** The text in a buffer; all of it if it doesn't end. */
std::string textIn(const Answer &answer, std::size_t place)
{
    const auto &bytes = answer.written[place];
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), '\0')};
}

} // namespace

void staysInBounds(Session &session)
{
    constexpr std::uint32_t any[] = {roomySize};
    checkBounds(session, questionsOf(session, false), any);
}

void writesWhole(Session &session)
{
    for (const auto &question : questionsOf(session, false)) {
        const auto one = session.ask(question, oneFilling);
        const auto other = session.ask(question, otherFilling);
        if (one.code != DEVICE_OK || other.code != DEVICE_OK)
            continue;
        for (std::size_t place = 1; place < question.operation->arguments.size(); ++place) {
            const auto &argument = question.operation->arguments[place];
            if (argument.isWritten() &&
                isSkipped(argument, one.written[place], other.written[place]))
                session.fail(question.text() + " answered 0 and didn't write all of the " +
                             std::to_string(argument.width) + " bytes of " + argument.name);
        }
    }
}

void leavesUntouched(Session &session)
{
    session.load();
    auto questions = readingQuestions(session);
    // Whatever the unit has, these fail.
    for (auto failing : {question("Can_getBaudrate", {255}), question("Can_getFrameType", {255}),
             question("Adc_getVoltage", {1}), question("Diagnostics_getPMTemp", {255}),
             question("Touch_getAdvancedSetting", {-1})}) {
        if (session.has(failing.operation->name))
            questions.push_back(std::move(failing));
    }
    for (const auto &question : questions) {
        for (const auto filling : {oneFilling, otherFilling}) {
            const auto answer = session.ask(question, filling);
            if (answer.code == DEVICE_OK)
                continue;
            const auto touched = std::find_if(answer.written.begin(), answer.written.end(),
                [filling](const auto &bytes) { return !isFilled(bytes, filling); });
            if (touched == answer.written.end())
                continue;
            const auto place = std::size_t(touched - answer.written.begin());
            session.fail(question.text() + " answered " + std::to_string(answer.code) +
                         " and changed " + question.operation->arguments[place].name);
            break;
        }
    }
}

void flagsAreZeroOrOne(Session &session)
{
    for (const auto &question : questionsOf(session, false)) {
        const auto answer = session.ask(question);
        for (std::size_t place = 1; place < question.operation->arguments.size(); ++place) {
            const auto &argument = question.operation->arguments[place];
            if (answer.code != DEVICE_OK || argument.number != contract::Number::Flag)
                continue;
            const auto value = answer.number(*question.operation, place);
            if (value > 1)
                session.warn(question.text() + " gave " + textOf(value) + " for " + argument.name +
                             ", where 0 or 1 is expected");
        }
    }
}

void textsStayInBounds(Session &session)
{
    checkBounds(session, questionsOf(session, true), textSizes);
}

void textsEnd(Session &session)
{
    for (const auto &question : questionsOf(session, true)) {
        const auto place = bufferOf(*question.operation);
        for (const auto size : textSizes) {
            const auto answer = session.ask(question, oneFilling, Place::Guarded, size);
            // An end beyond the buffer is another test's.
            if (answer.code != DEVICE_OK || answer.overrun >= 0 ||
                textIn(answer, place).size() < size)
                continue;
            session.fail(question.text() + " wrote no ending zero byte into a buffer of " +
                         std::to_string(size));
            break;
        }
    }
}

void textsBeginAlike(Session &session)
{
    for (const auto &question : questionsOf(session, true)) {
        const auto place = bufferOf(*question.operation);
        std::string shorter;
        for (const auto size : textSizes) {
            const auto answer = session.ask(question, oneFilling, Place::Guarded, size);
            if (answer.code != DEVICE_OK)
                continue;
            const auto text = textIn(answer, place).substr(0, size - 1);
            if (!text.starts_with(shorter)) {
                auto told = question.text();
                told.append(" gave \"").append(text).append("\" for ").append(std::to_string(size));
                told.append(" bytes, which doesn't begin with \"").append(shorter);
                session.fail(told.append("\" of a smaller buffer"));
                break;
            }
            shorter = text;
        }
    }
}

void textsFitAnySize(Session &session)
{
    for (const auto &question : questionsOf(session, true)) {
        if (session.ask(question).code != DEVICE_OK)
            continue;
        for (const auto size : textSizes) {
            const auto answer = session.ask(question, oneFilling, Place::Guarded, size);
            if (answer.code == DEVICE_OK)
                continue;
            session.fail(question.text() + " answered " + std::to_string(answer.code) +
                         " for a buffer of " + std::to_string(size) +
                         ", where a text that is too long is to be cut");
            break;
        }
    }
}

} // namespace check
