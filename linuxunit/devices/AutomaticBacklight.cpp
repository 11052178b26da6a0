#include "linuxunit/devices/AutomaticBacklight.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/calls/handles.h"
#include "linuxunit/devices/LightSource.h"
#include "linuxunit/devices/Panel.h"
#include "linuxunit/store/Store.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace linuxunit::automatic {

namespace {

constexpr std::chrono::milliseconds samplePeriod{200};
constexpr int softStep = 4;                         ///< of the 255, for each sample
constexpr const char *wish = "Backlight.automatic"; ///< 1 until somebody stops it

/** The file that is locked while the control runs. */
class LockFile
{
public:
    LockFile() = default;
    ~LockFile() { close(); }
    LockFile(const LockFile &) = delete;
    LockFile &operator=(const LockFile &) = delete;

    /** False if another process has it. */
    bool take()
    {
        const auto folder = storeFolder();
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        const auto path = folder + "/automatic.lock";
        constexpr mode_t sharedByGroup = 0664;
        descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, sharedByGroup);
        if (folder.empty() || descriptor < 0)
            throw Failure{StoreFailed, path + " can't be used: " + errnoText(errno)};
        struct flock lock = whole();
        if (::fcntl(descriptor, F_OFD_SETLK, &lock) == 0)
            return true;
        close();
        return false;
    }
    void close()
    {
        if (descriptor >= 0)
            ::close(descriptor);
        descriptor = -1;
    }
    /** Whether somebody has it. */
    static bool isTaken()
    {
        const auto path = storeFolder() + "/automatic.lock";
        const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        if (file < 0)
            return false;
        struct flock lock = whole();
        const bool isTold = ::fcntl(file, F_OFD_GETLK, &lock) == 0;
        ::close(file);
        return isTold && lock.l_type != F_UNLCK;
    }

private:
    static struct flock whole()
    {
        struct flock lock {
        };
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        return lock;
    }

    int descriptor = -1;
};

struct Control {
    std::mutex life; ///< who starts and stops
    std::mutex mutex;
    std::condition_variable change;
    std::thread thread;
    LockFile lock;
    bool isEnding = false;
    bool isRunning = false;
};

/** Never destroyed: threads may still call while the process ends. */
Control &control()
{
    static auto *const only = new Control;
    return *only;
}

/** One sample's work. */
class Regulator
{
public:
    /** False if somebody else has stopped it. */
    bool step()
    {
        try {
            if (store.number(wish, 0) == 0)
                return false;
            const auto present = settings();
            if (!isSame(present.filter))
                filter = LightFilter(used = present.filter);
            filter.add(source.lux());
            approach(intensityFor(filter.average()), present.softTransitions);
        } catch (const Failure &) {
            // Gone, asleep or busy: it may be back at the next sample.
        }
        return true;
    }

private:
    bool isSame(const FilterSettings &other) const
    {
        return used.averageWindowSize == other.averageWindowSize &&
               used.rejectWindowSize == other.rejectWindowSize &&
               used.rejectDeltaLux == other.rejectDeltaLux;
    }

    void approach(int wanted, bool softly)
    {
        const int now = panel.intensity();
        const int next = softly ? std::clamp(wanted, now - softStep, now + softStep) : wanted;
        if (next != now)
            panel.setIntensity(std::uint8_t(next));
    }

    Store store;
    LightSource source;
    Panel panel;
    FilterSettings used;
    LightFilter filter{used};
};

void regulate()
{
    auto &own = control();
    Regulator regulator;
    std::unique_lock lock(own.mutex);
    while (!own.isEnding) {
        lock.unlock();
        const bool goesOn = regulator.step();
        lock.lock();
        if (!goesOn)
            break;
        own.change.wait_for(lock, samplePeriod, [&] { return own.isEnding; });
    }
    own.isRunning = false;
    own.lock.close();
}

/** With `life` taken. */
void end(Control &own)
{
    {
        const std::lock_guard lock(own.mutex);
        own.isEnding = true;
    }
    own.change.notify_all();
    if (own.thread.joinable())
        own.thread.join();
}

void endWithHandles()
{
    auto &own = control();
    const std::lock_guard life(own.life);
    end(own);
}

std::uint32_t count(Store &store, const char *key, std::uint32_t otherwise)
{
    return std::uint32_t(std::clamp(store.number(key, otherwise), 0.0, double(UINT32_MAX)));
}

} // namespace

void start()
{
    auto &own = control();
    const std::lock_guard life(own.life);
    if (isRunning())
        return;
    end(own);
    if (!own.lock.take())
        return; // another process was quicker
    const auto tell = [&own](bool isRunning) {
        const std::lock_guard lock(own.mutex); // others may be asking
        own.isEnding = false;
        own.isRunning = isRunning;
    };
    try {
        Store().setNumber(wish, 1);
        tell(true);
        atLastRelease(Runner::Control, &endWithHandles);
        own.thread = std::thread(regulate);
    } catch (...) {
        tell(false);
        own.lock.close();
        throw;
    }
}

void stop()
{
    auto &own = control();
    const std::lock_guard life(own.life);
    if (!isRunning())
        return;
    Store().setNumber(wish, 0);
    end(own);
}

bool isRunning()
{
    auto &own = control();
    {
        const std::lock_guard lock(own.mutex);
        if (own.isRunning && !own.isEnding)
            return Store().number(wish, 0) != 0;
    }
    return LockFile::isTaken() && Store().number(wish, 0) != 0;
}

Settings settings()
{
    Store store;
    Settings present;
    present.softTransitions = store.number("Backlight.softTransitions", 1) != 0;
    auto &filter = present.filter;
    filter.averageWindowSize =
        count(store, "Backlight.averageWindowSize", filter.averageWindowSize);
    filter.rejectWindowSize = count(store, "Backlight.rejectWindowSize", filter.rejectWindowSize);
    filter.rejectDeltaLux = count(store, "Backlight.rejectDeltaLux", filter.rejectDeltaLux);
    filter.samplingMode = std::int32_t(count(store, "Backlight.samplingMode", SAMPLING_AUTO));
    return present;
}

void setSoftTransitions(bool soft)
{
    Store().setNumber("Backlight.softTransitions", soft ? 1 : 0);
}

void setFilter(const FilterSettings &filter)
{
    checkFilter(filter);
    Store store;
    store.setNumber("Backlight.averageWindowSize", filter.averageWindowSize);
    store.setNumber("Backlight.rejectWindowSize", filter.rejectWindowSize);
    store.setNumber("Backlight.rejectDeltaLux", filter.rejectDeltaLux);
    store.setNumber("Backlight.samplingMode", filter.samplingMode);
}

std::uint8_t intensityFor(double lux)
{
    constexpr double darkest = 15;
    constexpr double brightest = 255;
    return std::uint8_t(std::lround(std::min(darkest + kValue * std::log10(1 + lux), brightest)));
}

} // namespace linuxunit::automatic
