#include "linuxunit/bus/Connection.h"

#include "linuxunit/kernel/files.h"
#include "linuxunit/kernel/texts.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace linuxunit {

using nlohmann::json;

namespace {

constexpr std::uint64_t noTimeout = UINT64_MAX;

using Message = std::unique_ptr<sd_bus_message, sd_bus_message *(*)(sd_bus_message *)>;

/** Where the bus is: never the machine's own for a library that looks at another root. */
std::string address()
{
    const char *given = ::secure_getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return given ? given : "unix:path=" + rooted("/run/dbus/system_bus_socket");
}

bool isOneOf(const char *name, std::initializer_list<std::string_view> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

/** The service isn't there, or its bus; it says nothing itself. */
bool meansAbsence(const sd_bus_error &error)
{
    return isOneOf(error.name,
        {SD_BUS_ERROR_SERVICE_UNKNOWN, SD_BUS_ERROR_NAME_HAS_NO_OWNER,
            "org.freedesktop.systemd1.NoSuchUnit", "org.freedesktop.systemd1.UnitMasked"});
}

bool meansSilence(const sd_bus_error &error)
{
    return isOneOf(
        error.name, {SD_BUS_ERROR_NO_REPLY, SD_BUS_ERROR_TIMEOUT, SD_BUS_ERROR_DISCONNECTED,
                        "org.freedesktop.DBus.Error.TimedOut", SD_BUS_ERROR_UNKNOWN_OBJECT});
}

bool meansNoRights(const sd_bus_error &error)
{
    return isOneOf(error.name,
        {SD_BUS_ERROR_ACCESS_DENIED, SD_BUS_ERROR_INTERACTIVE_AUTHORIZATION_REQUIRED,
            SD_BUS_ERROR_AUTH_FAILED, "org.freedesktop.UDisks2.Error.NotAuthorized",
            "org.freedesktop.UDisks2.Error.NotAuthorizedCanObtain",
            "org.freedesktop.fwupd.AuthFailed", "org.freedesktop.fwupd.PermissionDenied"});
}

/** What a service refuses, as the user is told. */
Failure refusal(const BusCall &call, const sd_bus_error &error)
{
    if (isOneOf(error.name, {SD_BUS_ERROR_UNKNOWN_METHOD, SD_BUS_ERROR_UNKNOWN_INTERFACE,
                                SD_BUS_ERROR_UNKNOWN_PROPERTY}))
        return {NotSupported, {}};
    const auto reason = latin1(error.message && *error.message ? error.message : error.name);
    if (meansNoRights(error))
        return {NoPermission,
            "No permission for " + call.method + " of " + call.service + ": " + reason};
    return {DaemonRefused, call.service + " refuses " + call.method + ": " + reason};
}

} // namespace

struct Connection::Pending {
    Connection *owner;
    BusCall call;
    std::uint64_t limit; ///< microseconds
    Answer answer;
    std::vector<int> files; ///< ours, until the message has them
    sd_bus_slot *slot = nullptr;

    ~Pending()
    {
        sd_bus_slot_unref(slot);
        for (const int file : files)
            ::close(file);
    }
};

struct Connection::Watched {
    Connection *owner;
    std::string interface;
    Watch watch;
    sd_bus_slot *slot = nullptr;

    ~Watched() { sd_bus_slot_unref(slot); }
};

bool Connection::isPossible()
{
    constexpr std::string_view socket = "unix:path=";
    const auto where = address();
    // Sockets of other kinds, and lists of them, have no place where one could look.
    return !where.starts_with(socket) || where.find_first_of(",;%") != where.npos ||
           ::access(where.substr(socket.size()).c_str(), F_OK) == 0;
}

Connection::Connection()
    : wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (wake < 0)
        throw Failure{GeneralFault, {}};
    thread = std::thread(&Connection::run, this);
}

Connection::~Connection()
{
    add({});
    thread.join();
    ::close(wake);
}

void Connection::add(Task task)
{
    const std::lock_guard lock(mutex);
    if (task)
        tasks.push_back(std::move(task));
    else
        isEnding = true;
    static_cast<void>(::eventfd_write(wake, 1));
}

void Connection::call(const BusCall &call, std::chrono::seconds limit, Answer answer)
{
    const auto pending = std::make_shared<Pending>();
    pending->owner = this;
    pending->call = call;
    pending->limit =
        limit == noLimit ? noTimeout : std::uint64_t(std::chrono::microseconds(limit).count());
    pending->answer = std::move(answer);
    for (auto &argument : pending->call.arguments) {
        if (auto *file = std::get_if<BusDescriptor>(&argument)) {
            file->number = ::fcntl(file->number, F_DUPFD_CLOEXEC, 0);
            if (file->number >= 0)
                pending->files.push_back(file->number);
        }
    }
    add([this, pending] { send(pending); });
}

void Connection::watch(
    const std::string &service, const std::string &path, const std::string &interface, Watch watch)
{
    const auto watched = std::make_shared<Watched>();
    watched->owner = this;
    watched->interface = interface;
    watched->watch = std::move(watch);
    add([this, watched, service, path] {
        if (!connect())
            return;
        const int result = sd_bus_match_signal_async(
            bus, &watched->slot, service.c_str(), path.c_str(), "org.freedesktop.DBus.Properties",
            "PropertiesChanged",
            [](sd_bus_message *message, void *given, sd_bus_error * /*unused*/) {
                return takeSignal(message, given);
            },
            nullptr, watched.get());
        if (result >= 0)
            watches.insert(watched);
    });
}

void Connection::run()
{
    while (takeTasks()) {
        process();
        sleep();
    }
    disconnect();
}

/** False at the end. */
bool Connection::takeTasks()
{
    std::vector<Task> present;
    {
        const std::lock_guard lock(mutex);
        if (isEnding)
            return false;
        present.swap(tasks);
        eventfd_t count = 0;
        static_cast<void>(::eventfd_read(wake, &count));
    }
    for (const auto &task : present)
        task();
    return true;
}

void Connection::process()
{
    int result = 1;
    while (bus && result > 0)
        result = sd_bus_process(bus, nullptr);
    if (result < 0)
        disconnect();
}

void Connection::sleep()
{
    pollfd waits[2] = {{wake, POLLIN, 0}, {-1, 0, 0}};
    int milliseconds = -1;
    if (bus) {
        const int events = sd_bus_get_events(bus);
        waits[1] = {sd_bus_get_fd(bus), short(std::max(events, 0)), 0};
        std::uint64_t until = noTimeout;
        if (sd_bus_get_timeout(bus, &until) >= 0 && until != noTimeout) {
            timespec now{};
            ::clock_gettime(CLOCK_MONOTONIC, &now);
            const auto present =
                std::uint64_t(now.tv_sec) * 1000000 + std::uint64_t(now.tv_nsec) / 1000;
            milliseconds = until > present ? int((until - present) / 1000 + 1) : 0;
        }
    }
    ::poll(waits, std::size(waits), milliseconds);
}

bool Connection::connect()
{
    if (bus)
        return true;
    if (sd_bus_new(&bus) < 0)
        return false;
    if (sd_bus_set_address(bus, address().c_str()) >= 0 && sd_bus_set_bus_client(bus, 1) >= 0 &&
        sd_bus_negotiate_fds(bus, 1) >= 0 && sd_bus_start(bus) >= 0)
        return true;
    bus = sd_bus_unref(bus);
    return false;
}

void Connection::disconnect()
{
    watches.clear();
    while (!pendings.empty()) {
        const auto pending = *pendings.begin();
        finish(pending.get(), {}, Failure{NotAvailable, {}});
    }
    bus = sd_bus_close_unref(bus);
}

/** What the machine hasn't got, or has no more. */
Failure Connection::absent(const std::string &service) const
{
    return {known.contains(service) ? NotAvailable : NotSupported, {}};
}

void Connection::send(const std::shared_ptr<Pending> &pending)
{
    pendings.insert(pending);
    const auto &call = pending->call;
    if (!connect())
        return finish(pending.get(), {}, absent(call.service));
    sd_bus_message *made = nullptr;
    int result = sd_bus_message_new_method_call(bus, &made, call.service.c_str(), call.path.c_str(),
        call.interface.c_str(), call.method.c_str());
    const Message message(made, &sd_bus_message_unref);
    if (result >= 0)
        result = appendArguments(made, call.arguments);
    if (result >= 0)
        result = sd_bus_call_async(
            bus, &pending->slot, made,
            [](sd_bus_message *reply, void *given, sd_bus_error * /*unused*/) {
                return takeReply(reply, given);
            },
            pending.get(), pending->limit);
    if (result < 0)
        finish(pending.get(), {},
            Failure{DaemonRefused, call.service + " can't be asked: " + errnoText(-result)});
}

void Connection::finish(const Pending *pending, json value, std::optional<Failure> failure)
{
    const auto found = std::find_if(
        pendings.begin(), pendings.end(), [&](const auto &one) { return one.get() == pending; });
    if (found == pendings.end())
        return;
    const auto taken = pendings.extract(found);
    taken.value()->answer(std::move(value), std::move(failure));
}

int Connection::takeReply(sd_bus_message *message, void *given)
{
    const auto *pending = static_cast<Pending *>(given);
    auto &owner = *pending->owner;
    const auto *error = sd_bus_message_get_error(message);
    if (!error) {
        owner.known.insert(pending->call.service);
        owner.finish(pending, bodyOf(message), std::nullopt);
    } else if (meansAbsence(*error)) {
        owner.finish(pending, {}, owner.absent(pending->call.service));
    } else if (meansSilence(*error)) {
        owner.finish(pending, {}, Failure{NotAvailable, {}});
    } else {
        owner.known.insert(pending->call.service);
        owner.finish(pending, {}, refusal(pending->call, *error));
    }
    return 0;
}

int Connection::takeSignal(sd_bus_message *message, void *given)
{
    auto *watched = static_cast<Watched *>(given);
    const auto body = bodyOf(message);
    const bool isOurs =
        body.is_array() && body.size() > 1 && body[0] == watched->interface && body[1].is_object();
    if (isOurs && !watched->watch(body[1])) {
        auto &all = watched->owner->watches;
        all.erase(std::find_if(
            all.begin(), all.end(), [&](const auto &one) { return one.get() == watched; }));
    }
    return 0;
}

} // namespace linuxunit
