#include "devicetools/check/watch.h"

#include "devicetools/check/settings.h"
#include "platform/system.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <sstream>

namespace check {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

namespace {

constexpr auto testLimit = seconds(300); ///< for a test
constexpr auto jobLimit = seconds(1800); ///< for one that follows firmware jobs
constexpr auto stopLimit = seconds(8);   ///< for a test that was asked to put things back

constexpr std::string_view mark = "--test-process"; ///< the first argument of a test's process
constexpr std::string_view loadOnly = "(load)";
constexpr std::string_view restoreOnly = "(restore)";
/** Exit code of a test's process without a library; 3 is what abort() leaves on Windows. */
constexpr int notLoaded = 113;

std::string joined(const std::set<std::string, std::less<>> &words)
{
    std::string text;
    for (const auto &word : words)
        text += (text.empty() ? "" : ",") + word;
    return text;
}

/** A test's process and what it tells. */
struct Run {
    Run(std::string_view test, const Options &options)
        : Run(test, options, std::make_shared<system::SharedMemory>(sizeof(Channel)))
    {}
    /** One that finds what another has left. */
    Run(std::string_view test, const Options &options, std::shared_ptr<system::SharedMemory> shared)
        : memory(std::move(shared))
        , channel(*static_cast<Channel *>(memory->data()))
        , process({std::string(mark), memory->token(), std::string(test), joined(options.avoided),
                      options.write ? "write" : "", options.power ? "power" : "", options.firmware,
                      options.library},
              *memory)
    {}

    std::shared_ptr<system::SharedMemory> memory;
    Channel &channel;
    system::Process process;
    std::string failure; ///< what brought it to an early end; empty if nothing did
    std::string culprit; ///< the function that it was in
    int exitCode = 0;

    std::string current() const
    {
        std::string text;
        for (const auto &name : channel.current) {
            if (name[0] != '\0')
                text += (text.empty() ? "" : " or ") + std::string(name);
        }
        return text;
    }
};

/** Lets a test put back what it changed, and ends as the interruption wants. */
[[noreturn]] void giveUp(Run &run, const Options &options, int event)
{
    run.channel.stop = true;
    if (!run.process.wait(stopLimit)) {
        run.process.kill();
        run.process.wait(stopLimit);
    }
    run.channel.stop = false;
    if (run.channel.toRestore > 0) {
        Run restoring(restoreOnly, options, run.memory);
        restoring.process.wait(stopLimit);
    }
    system::endInterrupted(event);
}

void noteEnd(Run &run, const system::End &end)
{
    run.exitCode = end.exitCode;
    if (run.channel.done || run.exitCode == notLoaded)
        return;
    run.culprit = run.current();
    const auto where = run.culprit.empty() ? "outside of the library's calls" : "in " + run.culprit;
    run.failure = end.crash.empty() ? "the process left with exit code " +
                                          std::to_string(end.exitCode) + " " + where
                                    : "killed by " + end.crash + " " + where;
}

/** Waits for a test's end, and brings it about if a call or all of it takes too long. */
void watch(Run &run, const Options &options, seconds limit)
{
    const auto deadline = steady_clock::now() + limit;
    auto lastNews = steady_clock::now();
    auto calls = run.channel.calls.load();
    for (;;) {
        if (const auto end = run.process.wait(milliseconds(50)))
            return noteEnd(run, *end);
        if (const int event = system::interruption())
            giveUp(run, options, event);
        const auto now = steady_clock::now();
        if (run.channel.calls != calls) {
            calls = run.channel.calls;
            lastNews = now;
        }
        const auto asked = run.current();
        const bool isEndless = !asked.empty() && now - lastNews > seconds(options.callLimit);
        if (!isEndless && now < deadline)
            continue;
        run.culprit = asked;
        run.failure =
            isEndless ? "no answer within " + std::to_string(options.callLimit) + " s from " + asked
                      : "not done within " + std::to_string(limit.count()) + " s";
        run.process.kill();
        run.process.wait(stopLimit);
        return;
    }
}

/** The worst of what a test found, and what it said of it. */
void judge(const Channel &channel, Outcome &outcome)
{
    constexpr std::pair<Severity, Result> order[] = {{Severity::Fail, Result::Fail},
        {Severity::Warn, Result::Warn}, {Severity::Skip, Result::Skip}};
    const auto count = std::min<std::int32_t>(channel.found, Channel::findingCount);
    for (const auto &[severity, result] : order) {
        for (std::int32_t i = 0; i < count; ++i) {
            const auto &finding = channel.findings[i];
            if (finding.severity == severity)
                outcome.findings.emplace_back(finding.text);
        }
        if (!outcome.findings.empty()) {
            outcome.result = result;
            break;
        }
    }
    if (channel.found > Channel::findingCount)
        outcome.findings.push_back(std::to_string(channel.found - Channel::findingCount) + " more");
}

/** "Can_getBaudrate(2)" without what is asked. */
std::string functionOf(const std::string &call)
{
    return call.substr(0, call.find('('));
}

} // namespace

Watch::Watch(Options given)
    : options(std::move(given))
{
    // A library may move its process to another folder.
    using platform::pathOf, platform::textOf;
    options.library = textOf(std::filesystem::absolute(pathOf(options.library)));
    if (!options.firmware.empty())
        options.firmware = textOf(std::filesystem::absolute(pathOf(options.firmware)));
}

void Watch::begin()
{
    Run run(loadOnly, options);
    watch(run, options, testLimit);
    if (run.exitCode == notLoaded)
        throw CannotBegin{run.channel.findings[0].text};
    broken = run.failure;
}

Outcome Watch::run(const Test &test)
{
    Outcome outcome;
    if (!broken.empty()) {
        outcome.findings.push_back(broken);
        outcome.result = Result::Fail;
        return outcome;
    }
    auto own = options;
    if (test.name != timeTest && test.name != answersTest)
        own.avoided.insert(slow.begin(), slow.end());

    auto run = std::make_unique<Run>(test.name, own);
    const auto limit = test.needs == Needs::Firmware ? jobLimit : testLimit;
    watch(*run, own, limit);
    // Who doesn't come back is left out from now on, so that the others are asked.
    while (test.name == answersTest && !run->culprit.empty() &&
           options.avoided.insert(functionOf(run->culprit)).second) {
        outcome.findings.push_back(run->failure);
        own.avoided = options.avoided;
        run = std::make_unique<Run>(test.name, own);
        watch(*run, own, limit);
    }
    if (!run->failure.empty() && (run->culprit.empty() || test.name != answersTest))
        outcome.findings.push_back(run->failure);
    for (std::int32_t i = 0; i < run->channel.slowFound; ++i)
        slow.insert(run->channel.slow[i]);

    if (run->channel.toRestore > 0) {
        // The test wants to be asked in another process, or came to an early end.
        const bool isDone = run->failure.empty();
        if (!isDone)
            own.avoided.insert(functionOf(run->culprit));
        Run next(isDone ? std::string_view(test.name) : restoreOnly, own, run->memory);
        watch(next, own, limit);
    }
    if (test.name == quietTest && !run->process.printed().empty())
        outcome.findings.push_back("it printed \"" + run->process.printed() + "\"");
    if (!outcome.findings.empty()) {
        outcome.result = Result::Fail;
        return outcome;
    }
    judge(run->channel, outcome);
    return outcome;
}

bool isTestProcess(const std::vector<std::string> &arguments)
{
    return arguments.size() == 8 && arguments.front() == mark;
}

int runTestProcess(const std::vector<std::string> &arguments)
{
    system::prepareTestProcess();
    const system::SharedMemory memory(arguments[1], sizeof(Channel));
    auto &channel = *static_cast<Channel *>(memory.data());
    Options options;
    std::istringstream avoided(arguments[3]);
    for (std::string word; std::getline(avoided, word, ',');)
        options.avoided.insert(word);
    options.write = !arguments[4].empty();
    options.power = !arguments[5].empty();
    options.firmware = arguments[6];
    options.library = arguments[7];

    Session session(channel, options);
    try {
        if (arguments[2] == loadOnly) {
            session.load();
        } else if (arguments[2] == restoreOnly) {
            session.load();
            restore(session);
        } else {
            for (const auto &test : tests) {
                if (arguments[2] == test.name)
                    test.run(session);
            }
            constexpr unsigned loading = 2; // its begin and its end
            if (channel.calls <= loading && channel.found == 0 && arguments[2] != "functions")
                session.skip("nothing is there to be asked");
        }
        session.releaseAll();
    } catch (const Stopped &) {
        return 0;
    } catch (const std::exception &error) {
        session.fail(error.what());
        return notLoaded;
    }
    channel.done = true;
    return 0;
}

} // namespace check
