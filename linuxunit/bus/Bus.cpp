#include "linuxunit/bus/Bus.h"

#include "linuxunit/bus/Connection.h"
#include "linuxunit/calls/Failure.h"
#include "linuxunit/calls/handles.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>

namespace linuxunit {

using nlohmann::json;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds answerLimit{5}; ///< then a service may be asked anew

/** What several callers may ask for. All under the mutex of the desk. */
struct Source {
    bool isRunning = false;
    unsigned rounds = 0; ///< calls that came to an end
    json value;
    std::optional<Failure> failure;          ///< of the last round
    std::optional<Clock::time_point> readAt; ///< when `value` came
};

/** Where callers and the connection meet. */
struct Desk {
    std::mutex mutex;
    std::condition_variable news;
    std::map<std::string, std::shared_ptr<Source>> sources; ///< by call
    std::unique_ptr<Connection> connection;
};

/** Never destroyed: threads may still call while the process ends. */
Desk &desk()
{
    static auto *const only = new Desk;
    return *only;
}

void endConnection()
{
    std::unique_ptr<Connection> old;
    auto &all = desk();
    {
        const std::lock_guard lock(all.mutex);
        old = std::move(all.connection);
        all.sources.clear();
    }
    // Its thread hands over what it has, which takes the mutex.
    old.reset();
}

/** With the mutex taken. */
Connection &connection(Desk &all)
{
    if (!all.connection) {
        atLastRelease(Runner::Service, &endConnection);
        all.connection = std::make_unique<Connection>();
    }
    return *all.connection;
}

/** Throws 2 for a machine without a bus: it is no slow one, however busy it is. With the mutex
 *  taken. */
void requireBus(const Desk &all)
{
    if (!all.connection && !Connection::isPossible())
        throw Failure{NotSupported, {}};
}

std::string keyOf(const BusCall &call)
{
    std::string key = call.service + " " + call.path + " " + call.interface + " " + call.method;
    for (const auto &argument : call.arguments) {
        if (const auto *text = std::get_if<std::string>(&argument))
            key += " " + *text;
    }
    return key;
}

void begin(Desk &all, const std::shared_ptr<Source> &source, const BusCall &call)
{
    source->isRunning = true;
    connection(all).call(call, answerLimit, [source](json value, std::optional<Failure> failure) {
        auto &shared = desk();
        const std::lock_guard lock(shared.mutex);
        source->failure = std::move(failure);
        if (!source->failure) {
            source->value = std::move(value);
            source->readAt = Clock::now();
        }
        source->isRunning = false;
        ++source->rounds;
        shared.news.notify_all();
    });
}

} // namespace

BusCall BusCall::properties(
    const std::string &service, const std::string &path, const std::string &interface)
{
    return {service, path, "org.freedesktop.DBus.Properties", "GetAll", {interface}};
}

json readFromBus(const BusCall &call, Deadline until)
{
    auto &all = desk();
    std::unique_lock lock(all.mutex);
    requireBus(all);
    auto &entry = all.sources[keyOf(call)];
    if (!entry)
        entry = std::make_shared<Source>();
    const auto source = entry;
    const auto round = source->rounds;
    if (!source->isRunning)
        begin(all, source, call);
    if (all.news.wait_until(lock, until, [&] { return source->rounds != round; })) {
        if (source->failure)
            throw Failure(*source->failure);
        return source->value;
    }
    if (source->readAt && Clock::now() - *source->readAt <= keptFor)
        return source->value;
    throw Failure{NotAvailable, {}};
}

json orderOnBus(const BusCall &call)
{
    auto &all = desk();
    std::unique_lock lock(all.mutex);
    requireBus(all);
    const auto source = std::make_shared<Source>();
    begin(all, source, call);
    if (!all.news.wait_for(lock, longestWait, [&] { return source->rounds > 0; }))
        throw Failure{DaemonSilent,
            call.service + " hasn't answered to " + call.method + "; it may do it all the same"};
    if (source->failure && source->failure->kind == NotAvailable)
        throw Failure{DaemonSilent, call.service + " doesn't answer to " + call.method};
    if (source->failure)
        throw Failure(*source->failure);
    return source->value;
}

struct BusJob::Shared {
    bool hasEnded = false;
    std::optional<Failure> failure;
    json changed = json::object();
    unsigned news = 0;
    unsigned told = 0; ///< of them
};

BusJob::BusJob(const BusCall &call, const std::string &watched)
    : shared(std::make_shared<Shared>())
{
    auto &all = desk();
    const std::lock_guard lock(all.mutex);
    auto &line = connection(all);
    line.watch(
        call.service, call.path, watched, [weak = std::weak_ptr(shared)](const json &changed) {
            auto &meeting = desk();
            const std::lock_guard inner(meeting.mutex);
            const auto job = weak.lock();
            if (!job)
                return false;
            job->changed.update(changed);
            ++job->news;
            meeting.news.notify_all();
            return !job->hasEnded;
        });
    line.call(call, Connection::noLimit,
        [job = shared](const json & /*unused*/, std::optional<Failure> failure) {
            auto &meeting = desk();
            const std::lock_guard inner(meeting.mutex);
            job->failure = std::move(failure);
            job->hasEnded = true;
            ++job->news;
            meeting.news.notify_all();
        });
}

BusJob::~BusJob() = default;

void BusJob::wait(std::chrono::milliseconds longest)
{
    auto &all = desk();
    std::unique_lock lock(all.mutex);
    all.news.wait_for(lock, longest, [&] { return shared->news != shared->told; });
    shared->told = shared->news;
}

json BusJob::changed() const
{
    const std::lock_guard lock(desk().mutex);
    return shared->changed;
}

bool BusJob::hasEnded() const
{
    const std::lock_guard lock(desk().mutex);
    if (shared->failure)
        throw Failure(*shared->failure);
    return shared->hasEnded;
}

} // namespace linuxunit
