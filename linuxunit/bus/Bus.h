#pragma once

#include "linuxunit/bus/message.h"
#include "linuxunit/kernel/Reading.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

/**
 * Services on the system bus. One thread of the library holds the connection, from the first call
 * to the last handle's release; nobody else waits for a service longer than a caller can. Failures
 * are thrown: 2 for a service or an interface that isn't there, 18 for one that was there before or
 * doesn't answer, NoPermission and DaemonRefused with what the service says. Any thread.
 */
namespace linuxunit {

/** A call of a method. */
struct BusCall {
    std::string service; ///< "org.freedesktop.login1"
    std::string path;
    std::string interface;
    std::string method;
    std::vector<BusArgument> arguments;

    /** All properties of an interface of an object. */
    static BusCall properties(
        const std::string &service, const std::string &path, const std::string &interface);
};

/** The answer as it is now, waited for for 100 ms at most; else the last one, if that isn't older
 *  than 5 s; else 18. The call goes on, and its answer serves the next one. For what changes
 *  nothing. */
nlohmann::json readFromBus(const BusCall &call, Deadline until = soon());

/** Tells a service to do something. It may take longer to answer than a caller can wait: that is
 *  DaemonSilent, and it may do so all the same. */
nlohmann::json orderOnBus(const BusCall &call);

/** A call that takes its time, such as the writing of firmware. One thread at a time. */
class BusJob
{
public:
    /** Begins the call. What its service says of `watched`, an interface of the same object, is
     *  collected meanwhile. */
    BusJob(const BusCall &call, const std::string &watched);
    ~BusJob();
    BusJob(const BusJob &) = delete;
    BusJob &operator=(const BusJob &) = delete;

    /** Waits for news, which are the end or changed properties. */
    void wait(std::chrono::milliseconds longest);
    /** Properties that have changed since the beginning, with their last values. */
    nlohmann::json changed() const;
    /** Whether the call has ended; throws if it failed. */
    bool hasEnded() const;

private:
    struct Shared;
    std::shared_ptr<Shared> shared;
};

} // namespace linuxunit
