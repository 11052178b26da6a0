#pragma once

#include "linuxunit/bus/Bus.h"
#include "linuxunit/calls/Failure.h"

#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <thread>

struct sd_bus;

namespace linuxunit {

/**
 * A connection to the system bus and the thread that serves it. It is made when something is asked,
 * and made anew when the bus had gone. Answers are handed over on that thread, which never waits
 * for a service: any number of calls may be under way. The destructor ends those with 18.
 */
class Connection
{
public:
    /** What came of a call: its value, or why there is none. */
    using Answer = std::function<void(nlohmann::json value, std::optional<Failure> failure)>;
    /** Takes changed properties; false ends the watch. */
    using Watch = std::function<bool(const nlohmann::json &changed)>;

    static constexpr std::chrono::seconds noLimit{0};

    /** Whether this machine has a bus to connect to. Without waiting. */
    static bool isPossible();

    Connection();
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /** Without waiting; `answer` is called once. A file that goes along is duplicated at once. */
    void call(const BusCall &call, std::chrono::seconds limit, Answer answer);
    /** Without waiting; before the calls that follow. Ends with the connection, too. */
    void watch(const std::string &service, const std::string &path, const std::string &interface,
        Watch watch);

private:
    struct Pending;
    struct Watched;
    using Task = std::function<void()>;

    void run();
    void add(Task task);
    bool takeTasks();
    void process();
    void sleep();
    bool connect();
    void disconnect();
    void send(const std::shared_ptr<Pending> &pending);
    void finish(const Pending *pending, nlohmann::json value, std::optional<Failure> failure);
    Failure absent(const std::string &service) const;

    static int takeReply(sd_bus_message *message, void *pending);
    static int takeSignal(sd_bus_message *message, void *watched);

    std::mutex mutex;
    std::vector<Task> tasks;
    bool isEnding = false;
    int wake; ///< an eventfd

    // Of the thread alone.
    sd_bus *bus = nullptr;
    std::set<std::shared_ptr<Pending>> pendings;
    std::set<std::shared_ptr<Watched>> watches;
    std::set<std::string> known; ///< services that have answered: when they go they were there

    std::thread thread;
};

} // namespace linuxunit
