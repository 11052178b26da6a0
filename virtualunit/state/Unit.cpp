#include "virtualunit/state/Unit.h"

#include "platform/system.h"
#include "virtualunit/state/Profile.h"

#include <cstdlib>
#include <filesystem>
#include <thread>

namespace virtualunit {

namespace {

std::string defaultPath()
{
    auto folder = platform::userDataFolder();
    if (folder.empty())
        throw Failure{StateUnavailable, std::string("Neither VORN_UNIT nor ") +
                                            platform::userDataVariable +
                                            " names a place for the unit."};
    folder /= "VornSettings";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw Failure{StateUnavailable,
            "The folder " + platform::textOf(folder) + " can't be made: " + error.message() + "."};
    return platform::textOf(folder / "unit.sqlite");
}

} // namespace

std::int64_t machineTime()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

Unit &Unit::instance()
{
    // Never destroyed: a thread may still call while the process ends. The file alone is closed
    // then, so that all of the unit lies in one file again.
    static Unit *const unit = [] {
        auto *made = new Unit;
        std::atexit([] {
            auto &ending = instance();
            // A thread that the system has ended already never gives back what it held. What it
            // left half done is seen to by the next process that opens the file.
            std::unique_lock lock(ending.mutex, std::try_to_lock);
            for (int tries = 0; !lock && tries < 1000; ++tries) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                lock.try_lock();
            }
            if (!lock)
                return;
            ending.file.reset();
            ending.finished = true;
        });
        return made;
    }();
    return *unit;
}

std::string Unit::path()
{
    if (!chosenPath) {
        const auto named = platform::environment("VORN_UNIT");
        chosenPath = named.empty() ? defaultPath() : named;
    }
    return *chosenPath;
}

void Unit::use(const std::string &newPath)
{
    const std::lock_guard lock(mutex);
    file.reset();
    chosenPath = newPath.empty() ? std::nullopt : std::optional(newPath);
    acquire();
}

void Unit::acquire()
{
    if (finished)
        throw Failure{StateUnavailable, "The process is ending."};
    if (file && file->moved())
        file.reset();
    try {
        if (!file)
            file.emplace(path(), [] { return profileSnapshot("full", machineTime()); });
        if (file->changed())
            state = file->load();
    } catch (const Failure &failure) {
        throw Failure{failure.code, chosenPath.value_or("The unit") + ": " + failure.text};
    }
    time = state.clock ? *state.clock : machineTime();
}

Code Unit::missing(Key key) const
{
    const auto &dependence = dependences[key.index];
    for (const auto need : dependence.needs) {
        if (need != propertyCount && !on(Key(need)))
            return NotSupported;
    }
    if (dependence.whenever != propertyCount && !on(Key(dependence.whenever)))
        return NotAvailable;
    return Ok;
}

Code Unit::setChecked(Key key, double number)
{
    if (!within(key.property().writes, number))
        return ValueOutOfRange;
    set(key, number);
    return Ok;
}

void Unit::save(Key key)
{
    file->setCell(key, state[key]);
}

void Unit::settle()
{
    std::vector<Cell> settled;
    for (std::size_t index = 0; index < propertyCount; ++index) {
        if (life::accumulates(properties[index]) && !state.cells[index].pinned)
            settled.push_back({life::settledAt(state, Key(index), time), {}, time, false});
    }
    auto next = settled.begin();
    for (std::size_t index = 0; index < propertyCount; ++index) {
        if (life::accumulates(properties[index]) && !state.cells[index].pinned) {
            state.cells[index] = *next++;
            save(Key(index));
        }
    }
}

void Unit::set(Key key, double number)
{
    const auto &property = key.property();
    if (property.driving)
        settle();
    const bool starting = key.index == Key("Unit.running").index && number != 0 && !on(key);
    auto &cell = state.cells[key.index];
    cell.number = number;
    cell.since = time;
    cell.pinned = property.canBePinned();
    save(key);
    if (starting)
        startUp();
}

/** What the stored settings are for. */
void Unit::startUp()
{
    struct Pair {
        Key present;
        Key stored;
    };
    constexpr Pair pairs[] = {
        {"Power.canPowerStatus", "Config.canStartupPower"},
        {"Power.videoPowerStatus", "Config.videoStartupPower"},
        {"Power.extFanPowerStatus", "Config.extFanStartupPower"},
        {"Telematics.gprsPowerStatus", "Telematics.gprsStartUpPowerStatus"},
        {"Telematics.wlanPowerStatus", "Telematics.wlanStartUpPowerStatus"},
        {"Telematics.btPowerStatus", "Telematics.btStartUpPowerStatus"},
        {"Telematics.gpsPowerStatus", "Telematics.gpsStartUpPowerStatus"},
        {"Touch.mode", "Touch.nextBootMode"},
    };
    for (const auto &pair : pairs)
        set(pair.present, number(pair.stored));
    const Key cycles = "Diagnostics.powerCycles";
    set(cycles, std::min(number(cycles) + 1, cycles.property().reports.high));
    set("Backlight.automaticBLStatus", 0);
    set("LightSensor.averaging", 0);
    set("Power.blPowerStatus", 1);
    set("Buzzer.trigger", 0);
}

void Unit::set(Key key, const std::string &utf8)
{
    auto &cell = state.cells[key.index];
    cell.text = utf8;
    cell.since = time;
    save(key);
}

void Unit::setLiving(Key key, std::optional<double> from)
{
    // What doesn't accumulate lives around its nominal value.
    const double present = life::accumulates(key.property()) ? number(key) : key.property().number;
    const double start = from.value_or(present);
    settle();
    state.cells[key.index] = {start, {}, time, false};
    save(key);
}

void Unit::setString(const std::string &key, const std::string &value)
{
    state.strings[key] = value;
    file->setString(key, value);
}

void Unit::setFault(const std::string &operation, const Fault &fault)
{
    if (fault.code == 0)
        state.faults.erase(operation);
    else
        state.faults[operation] = fault;
    file->setFault(operation, fault);
}

void Unit::clearFaults()
{
    state.faults.clear();
    file->clearFaults();
}

void Unit::setDelay(const std::string &operation, std::uint32_t milliseconds)
{
    if (milliseconds == 0)
        state.delays.erase(operation);
    else
        state.delays[operation] = milliseconds;
    file->setDelay(operation, milliseconds);
}

void Unit::setClock(std::optional<std::int64_t> standing, bool ages)
{
    if (!ages)
        settle();
    state.clock = standing;
    file->setClock(standing);
    time = standing ? *standing : machineTime();
    if (ages)
        return;
    for (std::size_t index = 0; index < propertyCount; ++index) {
        if (life::accumulates(properties[index])) {
            state.cells[index].since = time;
            save(Key(index));
        }
    }
}

void Unit::replace(const Snapshot &snapshot)
{
    file->replaceAll(snapshot);
    state = snapshot;
}

void Unit::setImage(std::string_view controller, std::string_view bytes)
{
    file->setImage(controller, bytes);
}

std::optional<std::string> Unit::image(std::string_view controller)
{
    return file->image(controller);
}

void Unit::addShortMessage(const ShortMessage &message)
{
    file->addShortMessage(message);
}

std::vector<ShortMessage> Unit::shortMessages()
{
    return file->shortMessages();
}

void Unit::pause(std::chrono::milliseconds duration)
{
    mutex.unlock();
    std::this_thread::sleep_for(duration);
    mutex.lock();
    acquire();
}

Change::Change(Unit &held)
    : unit(held)
{
    unit.file->begin();
    try {
        // Only now nobody else can change anything any more.
        if (unit.file->changed())
            unit.state = unit.file->load();
    } catch (...) {
        unit.file->rollback();
        throw;
    }
}

Change::~Change()
{
    // What was changed in memory is read anew by the next access.
    if (open && unit.file)
        unit.file->rollback();
}

void Change::commit()
{
    unit.file->commit();
    open = false;
}

} // namespace virtualunit
