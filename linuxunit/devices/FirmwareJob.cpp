#include "linuxunit/devices/FirmwareJob.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/Reading.h"
#include "linuxunit/kernel/texts.h"
#include "linuxunit/machine/Machine.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace linuxunit {

using nlohmann::json;

namespace {

constexpr const char *fwupd = "org.freedesktop.fwupd";
constexpr std::uint8_t complete = 100; ///< percent

/** A job of any handle. */
std::atomic<bool> isBusy{false};

/** What the service does, as the contract counts; its numbers are the indices. */
constexpr std::array<FirmwareState, 11> states{
    FIRMWARE_INITIATING, // unknown
    FIRMWARE_INITIATING, // idle
    FIRMWARE_READING,    // loading
    FIRMWARE_CONVERTING, // decompressing
    FIRMWARE_FLASHING,   // the device restarts
    FIRMWARE_FLASHING,   // writing
    FIRMWARE_VERIFYING,  // verifying
    FIRMWARE_PREPARING,  // scheduling
    FIRMWARE_READING,    // downloading
    FIRMWARE_PREPARING,  // reading the device
    FIRMWARE_FLASHING,   // erasing
};

/** An open file, or the reason why there is none. */
struct OpenFile {
    explicit OpenFile(const std::string &path)
        : descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
        , error(descriptor < 0 ? errno : 0)
    {}
    ~OpenFile()
    {
        if (descriptor >= 0)
            ::close(descriptor);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    const int descriptor;
    const int error;
};

void requireCabinet(const OpenFile &file, const char *path)
{
    if (file.descriptor < 0)
        throw Failure{
            ReadFailed, std::string("Reading ") + path + " failed: " + errnoText(file.error)};
    constexpr char signature[] = {'M', 'S', 'C', 'F'};
    char begin[sizeof signature]{};
    if (::pread(file.descriptor, begin, sizeof begin, 0) != ssize_t(sizeof begin) ||
        std::memcmp(begin, signature, sizeof begin) != 0)
        throw Failure{
            UnexpectedContent, std::string(path) + " is no cabinet file, which fwupd takes"};
}

/** Throws 2 if there is none. */
void requireService()
{
    readFromBus(BusCall::properties(fwupd, "/", fwupd));
}

/** The service's name of the device; empty for one that the configuration doesn't name. */
std::string nameOf(FirmwareTarget target)
{
    const char *const names[] = {"fpga", "supervisor", "front"};
    return Machine::present()->text("firmware", names[int(target)]);
}

bool isDevice(const json &device, const std::string &name)
{
    const auto guids = device.is_object() ? device.find("Guid") : device.end();
    return valueOf(device, "DeviceId", std::string()) == name ||
           (device.is_object() && guids != device.end() && guids->is_array() &&
               std::find(guids->begin(), guids->end(), json(name)) != guids->end());
}

/** "*" is whatever the file fits. */
std::string deviceFor(FirmwareTarget target)
{
    const auto name = nameOf(target);
    if (name.empty() && target != FirmwareTarget::Supervisor)
        throw Failure{NotSupported, {}};
    return name.empty() ? "*" : name;
}

} // namespace

std::optional<std::string> installedVersion(FirmwareTarget target)
{
    const auto name = nameOf(target);
    if (name.empty())
        return std::nullopt;
    const auto devices = readFromBus({fwupd, "/", fwupd, "GetDevices", {}});
    if (!devices.is_array())
        throw Failure{UnexpectedContent, std::string(fwupd) + " tells of no devices"};
    const auto found = std::find_if(
        devices.begin(), devices.end(), [&](const json &device) { return isDevice(device, name); });
    const auto version =
        found == devices.end() ? std::string() : valueOf(*found, "Version", std::string());
    if (version.empty())
        throw Failure{NotAvailable, {}};
    return version;
}

FirmwareJob::~FirmwareJob()
{
    // The service goes on by itself; a new handle may begin anew, and is told if it is still busy.
    if (job)
        isBusy = false;
}

void FirmwareJob::start(FirmwareTarget target, const char *path)
{
    const auto device = deviceFor(target);
    requireService();
    if (isBusy.exchange(true))
        throw Failure{JobRunning, {}};
    job.reset();
    last = FirmwareUpgradeStatus{FIRMWARE_INITIATING, 0, DEVICE_OK};
    isTold = false;
    const OpenFile file(utf8(path));
    try {
        requireCabinet(file, path);
    } catch (const Failure &failure) {
        last->state = FIRMWARE_READING;
        end(FIRMWARE_READING, codeOf(failure));
        return;
    }
    const BusOptions options{{"reason", std::string("update")}, {"filename", utf8(path)},
        {"allow-reinstall", true}, {"allow-older", true}};
    job.emplace(
        BusCall{fwupd, "/", fwupd, "Install", {device, BusDescriptor{file.descriptor}, options}},
        fwupd);
}

FirmwareUpgradeStatus FirmwareJob::status(bool wait)
{
    if (!last) {
        requireService();
        throw Failure{NoJob, {}};
    }
    if (job) {
        if (wait && isTold)
            job->wait(longestWait);
        follow();
    }
    isTold = true;
    return *last;
}

void FirmwareJob::follow()
{
    const auto changed = job->changed();
    const auto status = changed.value("Status", json());
    if (status.is_number_unsigned() && status < states.size())
        last->state = std::max<std::int32_t>(last->state, states[status.get<std::size_t>()]);
    const auto percent = changed.value("Percentage", json());
    // Before, each step counts its own.
    if (last->state >= FIRMWARE_FLASHING && percent.is_number_unsigned() && percent <= complete)
        last->percent = std::max(last->percent, percent.get<std::uint8_t>());
    try {
        if (job->hasEnded())
            end(FIRMWARE_DONE, DEVICE_OK);
    } catch (const Failure &failure) {
        const bool isGone = failure.kind == NotAvailable || failure.kind == NotSupported;
        end(FIRMWARE_FAILED,
            codeOf(isGone ? Failure{DaemonSilent, std::string(fwupd) + " ended while it worked"}
                          : failure));
    }
}

void FirmwareJob::end(FirmwareState state, DeviceCode code)
{
    last->state = state;
    last->errorCode = code;
    if (state == FIRMWARE_DONE)
        last->percent = complete;
    job.reset();
    isBusy = false;
}

} // namespace linuxunit
