#include "platform/system.h"
#include "virtualunit/calls/Operation.h"
#include "virtualunit/firmware/FirmwareJob.h"
#include "virtualunit/state/latin1.h"

#include <chrono>

using namespace virtualunit;

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds patience{100}; ///< how long a question with the flag waits for news
constexpr milliseconds interval{5};   ///< how often it looks

/** Where the unit keeps what a controller holds. */
struct Place {
    const char *image;
    Key version;
};

Place placeOf(Controller controller)
{
    switch (controller) {
    case Controller::Fpga:
        return {"fpga", "Versions.fpga"};
    case Controller::SystemSupervisor:
        return {"ss", "Versions.ss"};
    case Controller::Front:
        break;
    }
    return {"front", "Versions.front"};
}

/** An image as it is stored: its address, high byte first, and its bytes. */
std::string stored(const FirmwareImage &image)
{
    std::string bytes;
    bytes.reserve(4 + image.bytes.size());
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += char(image.address >> shift & 0xFF);
    return bytes.append(image.bytes.begin(), image.bytes.end());
}

/** The version that an image makes of its controller: always the same one, and hardly ever that of
 *  another image. */
std::string versionOf(const FirmwareImage &image)
{
    const auto digest = image.digest();
    const auto part = [digest](unsigned shift, unsigned size) {
        return std::to_string((digest >> shift) % size);
    };
    return std::to_string(1 + digest % 9) + '.' + part(8, 20) + '.' + part(16, 256) + '.' +
           part(24, 256);
}

class UnitMemory : public ControllerMemory
{
public:
    explicit UnitMemory(Unit &held)
        : unit(held)
    {}

    Code store(Controller controller, const FirmwareImage &image) override
    try {
        const auto place = placeOf(controller);
        Change change(unit);
        unit.setImage(place.image, stored(image));
        unit.set(place.version, versionOf(image));
        change.commit();
        return Ok;
    } catch (const Failure &failure) {
        return failure.code;
    }

    Code compare(Controller controller, const FirmwareImage &image) override
    try {
        const auto held = unit.image(placeOf(controller).image);
        if (!held)
            return NoImage;
        return *held == stored(image) ? Ok : VerificationFailed;
    } catch (const Failure &failure) {
        return failure.code;
    }

private:
    Unit &unit;
};

/** What is kept with a handle. */
struct Run {
    FirmwareJob job;
    FirmwareUpgradeStatus lastTold{};
    bool hasTold = false;
    std::int64_t waited = 0; ///< milliseconds that questions waited while the clock stood still

    FirmwareUpgradeStatus advance(Unit &unit)
    {
        UnitMemory memory(unit);
        const auto duration = std::int64_t(unit.number("Firmware.duration"));
        return job.advance(unit.now() + waited, duration, memory);
    }

    bool isNews(const FirmwareUpgradeStatus &status) const
    {
        return !hasTold || status.state != lastTold.state || status.percent != lastTold.percent ||
               status.errorCode != lastTold.errorCode;
    }
};

std::shared_ptr<Run> runOf(FirmwareHandle handle)
{
    return std::static_pointer_cast<Run>(kept(familyOf<FirmwareDevice>(), handle));
}

DeviceCode start(const char *operation, FirmwareHandle handle, const char *path, bool reserved,
    Controller controller, FirmwareJob::Kind kind)
{
    return perform(operation, handle, {path, reserved}, Does::Read, [&](Unit &unit) {
        const auto former = runOf(handle);
        if (former && former->job.isRunning())
            return JobRunning;
        // Linux file names are UTF-8 by convention: an umlaut is found by its two bytes alone.
        const auto file = platform::pathOf(fromLatin1(path));
        keep(familyOf<FirmwareDevice>(), handle,
            std::make_shared<Run>(Run{FirmwareJob(controller, kind, file, unit.now())}));
        return Ok;
    });
}

} // namespace

FirmwareHandle Firmware_create(void)
{
    return create<FirmwareDevice>(__func__);
}

void Firmware_release(FirmwareHandle handle)
{
    release(__func__, handle);
}

DeviceCode Firmware_startFpgaUpgrade(FirmwareHandle handle, const char *path, bool reserved)
{
    return start(__func__, handle, path, reserved, Controller::Fpga, FirmwareJob::Kind::Upgrade);
}

DeviceCode Firmware_startFpgaVerification(FirmwareHandle handle, const char *path, bool reserved)
{
    return start(
        __func__, handle, path, reserved, Controller::Fpga, FirmwareJob::Kind::Verification);
}

DeviceCode Firmware_startSSUpgrade(FirmwareHandle handle, const char *path, bool reserved)
{
    return start(
        __func__, handle, path, reserved, Controller::SystemSupervisor, FirmwareJob::Kind::Upgrade);
}

DeviceCode Firmware_startSSVerification(FirmwareHandle handle, const char *path, bool reserved)
{
    return start(__func__, handle, path, reserved, Controller::SystemSupervisor,
        FirmwareJob::Kind::Verification);
}

DeviceCode Firmware_startFrontUpgrade(FirmwareHandle handle, const char *path, bool reserved)
{
    return start(__func__, handle, path, reserved, Controller::Front, FirmwareJob::Kind::Upgrade);
}

DeviceCode Firmware_startFrontVerification(FirmwareHandle handle, const char *path, bool reserved)
{
    return start(
        __func__, handle, path, reserved, Controller::Front, FirmwareJob::Kind::Verification);
}

DeviceCode Firmware_getUpgradeStatus(
    FirmwareHandle handle, FirmwareUpgradeStatus *status, bool wait)
{
    return perform(__func__, handle, {status, wait}, Does::Read, [&](Unit &unit) {
        const auto run = runOf(handle);
        if (!run)
            return NoJob;
        // A clock that stands still must not hang those who follow a job: the time that a question
        // would wait goes by for the job, and for it alone.
        const bool stands = unit.snapshot().clock.has_value();
        if (wait && stands)
            run->waited += patience.count();
        const auto deadline = steady_clock::now() + patience;
        auto news = run->advance(unit);
        while (wait && !stands && !run->isNews(news) && steady_clock::now() < deadline) {
            unit.pause(interval);
            news = run->advance(unit);
        }
        run->lastTold = news;
        run->hasTold = true;
        *status = news;
        return Ok;
    });
}

DeviceCode Firmware_shutDown(FirmwareHandle handle)
{
    // The unit counts as off from now on; the machine that it runs on is none of its business.
    return perform(__func__, handle, {}, Does::Write, [&](Unit &unit) {
        unit.set("Unit.running", 0);
        return Ok;
    });
}
