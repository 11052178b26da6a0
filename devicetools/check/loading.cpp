#include "devicetools/check/tests.h"

#include <algorithm>
#include <cfenv>
#include <chrono>
#include <clocale>
#include <iterator>
#include <thread>

namespace check {

namespace {

/** Uses everything that changes nothing, once, and gives all handles back. */
void useAll(Session &session)
{
    if (!session.isLoaded())
        session.load();
    for (const auto &family : contract::families)
        session.handle(family.name);
    for (const auto &question : readingQuestions(session))
        session.ask(question);
    for (const auto &text : contract::texts) {
        for (int value = 0; value < 32 && session.has(text.name); ++value)
            session.textOf(text, value);
    }
    session.releaseAll();
}

/** Whether what is measured is the same after the library was used. */
template <typename Measure>
void compareAround(Session &session, const std::string &what, Measure measure)
{
    const auto before = measure();
    if (!before)
        return session.skip("this system doesn't tell " + what);
    useAll(session);
    const auto after = measure();
    if (*before != *after)
        session.fail(what + " was \"" + *before + "\" before the library was used and is \"" +
                     *after + "\" now");
}

} // namespace

void allFunctionsAreThere(Session &session)
{
    session.load();
    std::vector<std::string> missing;
    const auto look = [&](const char *name) {
        if (!session.exports(name))
            missing.emplace_back(name);
    };
    for (const auto &text : contract::texts)
        look(text.name);
    for (const auto &family : contract::families) {
        look(family.createName);
        look(family.releaseName);
    }
    for (const auto &operation : contract::operations)
        look(operation.name);
    if (missing.empty())
        return;

    // As many to a finding as go into one.
    std::string names;
    for (const auto &name : missing) {
        if (names.size() + name.size() > Channel::findingSize - 20) {
            session.fail("missing: " + names);
            names.clear();
        }
        names += (names.empty() ? "" : ", ") + name;
    }
    session.fail("missing: " + names);
}

void loadsTwice(Session &session)
{
    for (int round = 0; round < 2; ++round) {
        useAll(session);
        session.unload();
    }
    session.load();
}

void everythingAnswers(Session &session)
{
    session.load();
    for (const auto &family : contract::families) {
        if (session.has(family.createName))
            session.release(family, session.create(family));
    }
    for (const auto &text : contract::texts) {
        if (session.has(text.name))
            session.textOf(text, 0);
    }
    for (const auto &question : readingQuestions(session)) {
        const auto answer = session.ask(question);
        auto &channel = session.channel;
        if (answer.seconds > 1 && channel.slowFound < Channel::slowCount) {
            std::snprintf(
                channel.slow[channel.slowFound], Channel::nameSize, "%s", question.operation->name);
            ++channel.slowFound;
        }
    }
    session.releaseAll();
}

void keepsQuiet(Session &session)
{
    // What it prints when it goes, it prints at the end of the process, too.
    useAll(session);
}

void keepsLocale(Session &session)
{
    // Neither of the two that a library would set.
    std::setlocale(LC_ALL, "C.UTF-8");
    compareAround(session, "the locale", [] {
        const char *name = std::setlocale(LC_ALL, nullptr);
        return name ? std::optional<std::string>(name) : std::nullopt;
    });
}

void keepsWorkingFolder(Session &session)
{
    compareAround(session, "the working folder", [] {
        std::error_code error;
        return std::optional(std::filesystem::current_path(error).string());
    });
}

void keepsUmask(Session &session)
{
    compareAround(session, "the mask for new files", system::umaskNow);
}

void keepsSignalHandlers(Session &session)
{
    compareAround(session, "the signals' treatment", system::signalHandlersNow);
}

void keepsRounding(Session &session)
{
    compareAround(session, "the rounding mode",
        [] { return std::optional(std::to_string(std::fegetround())); });
}

void leavesNoThread(Session &session)
{
    const auto before = system::threadsNow();
    if (!before)
        return session.skip("this system doesn't tell its threads");
    useAll(session);
    // The system may take a moment to forget a thread that has ended.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (system::threadsNow() > before && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    const auto after = system::threadsNow();
    if (*after > *before)
        session.fail("threads before the first create: " + std::to_string(*before) +
                     ", after the last release: " + std::to_string(*after));
}

void leavesNoDescriptor(Session &session)
{
    const auto before = system::descriptorsNow();
    if (!before)
        return session.skip("this system doesn't tell what is open");
    const auto more = [](const std::vector<std::string> &now,
                          const std::vector<std::string> &then) {
        std::string names;
        std::vector<std::string> left;
        std::set_difference(
            now.begin(), now.end(), then.begin(), then.end(), std::back_inserter(left));
        for (const auto &name : left)
            names += (names.empty() ? "" : ", ") + name;
        return names;
    };
    // What a library keeps for its next handle is its own affair, as long as it doesn't become more
    // and goes with the library.
    useAll(session);
    const auto first = system::descriptorsNow();
    useAll(session);
    useAll(session);
    const auto third = system::descriptorsNow();
    session.unload();
    const auto unloaded = more(*system::descriptorsNow(), *before);
    if (third->size() > first->size())
        session.fail(
            "each round of creates and releases leaves something open: " + more(*third, *first));
    else if (!unloaded.empty())
        session.fail("open when the library has gone: " + unloaded);
}

void handlesDoNotGrow(Session &session)
{
    constexpr int warmUp = 2000;
    constexpr int count = 10'000;
    constexpr std::size_t tolerance = 160'000; // less than any leak of each handle takes
    if (!system::privateBytesNow())
        return session.skip("this system doesn't tell the memory that is used");
    session.load();
    for (const auto &family : contract::families) {
        if (!session.has(family.createName) || !session.has(family.releaseName))
            continue;
        const auto repeat = [&](int rounds) {
            for (int i = 0; i < rounds; ++i)
                session.release(family, session.create(family));
        };
        repeat(warmUp);
        const auto before = *system::privateBytesNow();
        repeat(count);
        const auto after = *system::privateBytesNow();
        if (after > before + tolerance)
            session.fail(std::string(family.name) + ": 10,000 creates and releases took " +
                         std::to_string((after - before) / 1024) + " KiB");
    }
}

} // namespace check
