#include "linuxunit/kernel/Reading.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/calls/handles.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <dlfcn.h>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

namespace linuxunit {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t mostThreads =
    8; ///< beyond them every file is stuck, and one more would be too

/** A file that somebody asked for. */
struct Source {
    bool isRunning = false; ///< queued or being read
    unsigned rounds = 0;    ///< readings that came to an end
    std::string text;
    std::optional<Failure> failure;          ///< of the last round
    std::optional<Clock::time_point> readAt; ///< when `text` was read
};

struct Worker {
    std::thread thread;
    bool hasEnded = false;
};

struct Pool {
    std::mutex mutex;
    std::condition_variable work;
    std::condition_variable done;
    std::map<std::string, std::shared_ptr<Source>> sources; ///< by rooted path
    std::deque<std::pair<std::string, std::shared_ptr<Source>>> queue;
    std::deque<Worker> workers; ///< only becomes more
    std::size_t ended = 0;
    std::size_t idle = 0;
    bool isEnding = false;
};

/** Never destroyed: a thread that the kernel holds back may come home at any time. */
std::shared_ptr<Pool> &pool()
{
    static auto *const only = new std::shared_ptr<Pool>(std::make_shared<Pool>());
    return *only;
}

std::mutex &poolMutex()
{
    static auto *const only = new std::mutex;
    return *only;
}

std::shared_ptr<Pool> presentPool()
{
    const std::lock_guard lock(poolMutex());
    return pool();
}

/** A thread that is stuck in the kernel needs its code when it comes back, whatever is unloaded. */
void stayLoaded()
{
    Dl_info info{};
    static const char here = 0;
    if (::dladdr(&here, &info) && info.dli_fname)
        static_cast<void>(::dlopen(info.dli_fname, RTLD_LAZY | RTLD_NODELETE | RTLD_NOLOAD));
}

void readInto(Source &source, const std::string &path, std::unique_lock<std::mutex> &lock)
{
    std::string text;
    std::optional<Failure> failure;
    lock.unlock();
    try {
        text = readText(path);
    } catch (const Failure &thrown) {
        failure = thrown;
    } catch (const std::exception &) {
        failure = Failure{GeneralFault, {}};
    }
    lock.lock();
    source.failure = std::move(failure);
    if (!source.failure) {
        source.text = std::move(text);
        source.readAt = Clock::now();
    }
    source.isRunning = false;
    ++source.rounds;
}

void serve(const std::shared_ptr<Pool> &own, Worker &worker)
{
    std::unique_lock lock(own->mutex);
    while (!own->isEnding) {
        if (own->queue.empty()) {
            ++own->idle;
            own->work.wait(lock);
            --own->idle;
            continue;
        }
        const auto [path, source] = std::move(own->queue.front());
        own->queue.pop_front();
        readInto(*source, path, lock);
        own->done.notify_all();
    }
    worker.hasEnded = true;
    ++own->ended;
    own->done.notify_all();
}

/** Waits for the threads to end, but not for those that the kernel doesn't give back. */
void endThreads()
{
    const auto old = presentPool();
    std::unique_lock lock(old->mutex);
    if (old->workers.empty())
        return;
    {
        const std::lock_guard others(poolMutex());
        pool() = std::make_shared<Pool>();
    }
    old->isEnding = true;
    old->work.notify_all();
    old->done.wait_for(lock, longestWait, [&] { return old->ended == old->workers.size(); });
    for (auto &worker : old->workers) {
        if (worker.hasEnded)
            continue;
        worker.thread.detach();
        stayLoaded();
    }
    lock.unlock();
    for (auto &worker : old->workers) {
        if (worker.thread.joinable())
            worker.thread.join();
    }
}

void startThread(const std::shared_ptr<Pool> &own)
{
    atLastRelease(Runner::Service, &endThreads);
    auto &worker = own->workers.emplace_back();
    try {
        worker.thread = std::thread(serve, own, std::ref(worker));
    } catch (...) {
        own->workers.pop_back();
        throw;
    }
}

/** One more thread for the reading that was put last into the queue. If the system has none to
 * give, those that run serve it later; without any of them it is thrown out again. */
void startForIt(const std::shared_ptr<Pool> &own, Source &source)
{
    try {
        startThread(own);
    } catch (const std::system_error &) {
        if (!own->workers.empty())
            return;
        own->queue.pop_back();
        source.isRunning = false;
        throw;
    }
}

/** A reading that was asked for. All with the pool's mutex taken. */
struct Ticket {
    std::shared_ptr<Source> source;
    unsigned round; ///< the readings that had ended then

    bool isServed() const { return source->rounds != round; }
    /** What came of it; the last value if it isn't served yet. */
    std::string result() const
    {
        if (isServed() && source->failure)
            throw Failure(*source->failure);
        if (!isServed() && !(source->readAt && Clock::now() - *source->readAt <= keptFor))
            throw Failure{NotAvailable, {}};
        return source->text;
    }
};

Ticket request(const std::shared_ptr<Pool> &own, const std::string &path)
{
    auto &source = own->sources[rooted(path)];
    if (!source)
        source = std::make_shared<Source>();
    Ticket ticket{source, source->rounds};
    if (!source->isRunning) {
        source->isRunning = true;
        own->queue.emplace_back(path, source);
        // Of those that end nobody looks at one more.
        if (!own->isEnding && own->idle < own->queue.size() && own->workers.size() < mostThreads)
            startForIt(own, *source);
        own->work.notify_one();
    }
    return ticket;
}

} // namespace

Deadline soon()
{
    return Clock::now() + longestWait;
}

std::string readSlowText(const std::string &path, Deadline until)
{
    const auto own = presentPool();
    std::unique_lock lock(own->mutex);
    const auto ticket = request(own, path);
    own->done.wait_until(lock, until, [&] { return ticket.isServed(); });
    return ticket.result();
}

std::vector<std::optional<std::string>> readSlowTexts(
    const std::vector<std::string> &paths, Deadline until)
{
    const auto own = presentPool();
    std::unique_lock lock(own->mutex);
    std::vector<Ticket> tickets;
    tickets.reserve(paths.size());
    for (const auto &path : paths)
        tickets.push_back(request(own, path));
    own->done.wait_until(lock, until, [&] {
        return std::all_of(
            tickets.begin(), tickets.end(), [](const Ticket &ticket) { return ticket.isServed(); });
    });
    std::vector<std::optional<std::string>> texts(paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        try {
            texts[i] = tickets[i].result();
        } catch (const Failure &) {
            // Stays without a text.
        }
    }
    return texts;
}

std::int64_t readSlowNumber(const std::string &path, Deadline until)
{
    return numberIn(path, readSlowText(path, until));
}

double readSlowReal(const std::string &path, Deadline until)
{
    return realIn(path, readSlowText(path, until));
}

void forgetReading(const std::string &path)
{
    const auto own = presentPool();
    const std::lock_guard lock(own->mutex);
    own->sources.erase(rooted(path));
}

} // namespace linuxunit
