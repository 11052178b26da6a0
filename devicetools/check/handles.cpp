#include "devicetools/check/tests.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

namespace check {

using contract::Role;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

std::vector<Question> questionsOf(
    const std::vector<Question> &questions, const contract::Family &family)
{
    std::vector<Question> own;
    for (const auto &question : questions) {
        if (std::string_view(question.operation->family) == family.name)
            own.push_back(question);
    }
    return own;
}

/** What a question was answered with while one handle alone asked it. */
struct Alone {
    std::set<DeviceCode> codes;
    std::vector<Answer> answers;
};

void askAlone(Session &session, const Question &question, Alone &alone)
{
    alone.answers.push_back(session.ask(question));
    alone.codes.insert(alone.answers.back().code);
}

/** Whether a number lies among those that were seen, or as near as a measured one may have moved.
 */
bool isAmong(
    double value, const Alone &alone, const contract::Operation &operation, std::size_t place)
{
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const auto &answer : alone.answers) {
        if (answer.code != DEVICE_OK)
            continue;
        low = std::min(low, answer.number(operation, place));
        high = std::max(high, answer.number(operation, place));
    }
    const double slack = high > low ? (high - low) * 4 : 0;
    return value >= low - slack && value <= high + slack;
}

bool isAmong(const Answer &answer, const Alone &alone, const contract::Operation &operation)
{
    if (!alone.codes.contains(answer.code))
        return false;
    for (std::size_t place = 1; answer.code == 0 && place < operation.arguments.size(); ++place) {
        const auto role = operation.arguments[place].role;
        const auto isSame = [&](const Answer &seen) {
            return seen.code == 0 && seen.written[place] == answer.written[place];
        };
        if (role == Role::Out && !isAmong(answer.number(operation, place), alone, operation, place))
            return false;
        // The bytes between a struct's fields are filled alike each time, and texts don't move.
        if ((role == Role::Record || role == Role::Buffer) &&
            std::none_of(alone.answers.begin(), alone.answers.end(), isSame))
            return false;
    }
    return true;
}

/** The first answer of each question on this thread that was none of those of one alone. */
using Strange = std::vector<std::optional<Answer>>;

void askOnThread(Session &session, const contract::Family &family,
    const std::vector<Question> &questions, const std::vector<Alone> &alone, int thread,
    Strange &strange)
try {
    void *const handle = session.create(family, thread);
    const auto deadline = steady_clock::now() + milliseconds(200);
    do {
        for (std::size_t i = 0; i < questions.size(); ++i) {
            auto answer =
                session.ask(questions[i], handle, oneFilling, Place::Guarded, roomySize, thread);
            if (!strange[i] && !isAmong(answer, alone[i], *questions[i].operation))
                strange[i] = std::move(answer);
        }
    } while (steady_clock::now() < deadline);
    session.release(family, handle, thread);
} catch (const Stopped &) {
    // The test's own thread finds it out at its next call.
}

/** A live value moves on; then one handle alone gets there too. */
bool comesAlone(Session &session, const Question &question, const Answer &strange, Alone &alone)
{
    for (int round = 0; round < 20; ++round) {
        askAlone(session, question, alone);
        if (isAmong(strange, alone, *question.operation))
            return true;
        std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
}

/** What went wrong, in a sentence for each question; empty if nothing did. */
std::vector<std::string> disturbances(
    Session &session, const contract::Family &family, const std::vector<Question> &questions)
{
    std::vector<Alone> alone(questions.size());
    for (int round = 0; round < 5; ++round) {
        for (std::size_t i = 0; i < questions.size(); ++i)
            askAlone(session, questions[i], alone[i]);
    }
    Strange one(questions.size());
    Strange other(questions.size());
    std::thread first([&] { askOnThread(session, family, questions, alone, 1, one); });
    std::thread second([&] { askOnThread(session, family, questions, alone, 2, other); });
    first.join();
    second.join();
    std::vector<std::string> sentences;
    for (std::size_t i = 0; i < questions.size(); ++i) {
        const auto &strange = one[i] ? one[i] : other[i];
        if (strange && !comesAlone(session, questions[i], *strange, alone[i]))
            sentences.push_back(
                questions[i].text() + " answered " + strange->text(*questions[i].operation) +
                " while two threads asked, and " +
                alone[i].answers.front().text(*questions[i].operation) + " while one did");
    }
    return sentences;
}

/** A live value may leap while the threads ask, but not each time. */
void checkFamily(
    Session &session, const contract::Family &family, const std::vector<Question> &questions)
{
    constexpr int tries = 3;
    std::vector<std::string> sentences;
    for (int round = 0; round < tries; ++round) {
        sentences = disturbances(session, family, questions);
        if (sentences.empty())
            return;
    }
    for (const auto &sentence : sentences)
        session.fail(sentence);
}

} // namespace

void handlesStandAlone(Session &session)
{
    session.load();
    const auto questions = readingQuestions(session);
    session.releaseAll();
    for (const auto &family : contract::families) {
        if (!session.has(family.createName) || !session.has(family.releaseName))
            continue;
        void *const first = session.create(family);
        void *const second = session.create(family);
        const auto own = questionsOf(questions, family);
        std::vector<DeviceCode> before;
        before.reserve(own.size());
        for (const auto &question : own)
            before.push_back(session.ask(question, second).code);
        session.release(family, first);
        for (std::size_t i = 0; i < own.size(); ++i) {
            const auto code = session.ask(own[i], second).code;
            if (code != before[i])
                session.fail(own[i].text() + " answered " + std::to_string(before[i]) + ", and " +
                             std::to_string(code) + " once another handle was released");
        }
        session.release(family, second);
    }
}

void threadsDoNotDisturb(Session &session)
{
    session.load();
    const auto questions = readingQuestions(session);
    for (const auto &family : contract::families) {
        const auto own = questionsOf(questions, family);
        if (!own.empty() && session.has(family.createName))
            checkFamily(session, family, own);
    }
}

void releasesOnAnotherThread(Session &session)
{
    session.load();
    for (const auto &family : contract::families) {
        if (!session.has(family.createName) || !session.has(family.releaseName))
            continue;
        void *const handle = session.create(family);
        std::thread elsewhere([&] {
            try {
                session.release(family, handle, 1);
            } catch (const Stopped &) {
                // Found out by the next call here.
            }
        });
        elsewhere.join();
    }
}

void answersInTime(Session &session)
{
    constexpr double slow = 0.1;
    constexpr double tooSlow = 5;
    session.load();
    for (const auto &question : readingQuestions(session)) {
        double seconds = session.ask(question).seconds;
        // The machine may have been busy with something else.
        for (int again = 0; again < 2 && seconds > slow && seconds <= tooSlow; ++again)
            seconds = std::min(seconds, session.ask(question).seconds);
        const auto took =
            question.text() + " took " + std::to_string(std::lround(seconds * 1000)) + " ms";
        if (seconds > tooSlow)
            session.fail(took + ", where 5 s are the limit");
        else if (seconds > slow)
            session.warn(took);
    }
}

void waitsNotForever(Session &session)
{
    session.load();
    if (!session.has("Firmware_getUpgradeStatus"))
        return session.skip("Firmware_getUpgradeStatus is left out");
    const auto answer = session.ask(question("Firmware_getUpgradeStatus", {1}));
    if (answer.seconds > 1)
        session.fail("Firmware_getUpgradeStatus with wait took " +
                     std::to_string(std::lround(answer.seconds * 1000)) +
                     " ms without a job, where 1 s is the limit");
}

} // namespace check
