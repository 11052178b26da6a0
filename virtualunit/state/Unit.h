#pragma once

#include "virtualunit/state/StateFile.h"
#include "virtualunit/state/life.h"

#include <chrono>
#include <mutex>

namespace virtualunit {

/**
 * The unit as this process sees it: the state file, and all of it in memory for as long as no other
 * process changes it. One for the process. Everything but the mutex's own users goes through an
 * Access, which holds the mutex; what an operation's body gets is already held.
 */
class Unit
{
public:
    static Unit &instance();

    /** The present value, living ones at the time when this call began. */
    double number(Key key) const { return life::valueAt(state, key, time); }
    bool on(Key key) const { return number(key) != 0; }
    /** UTF-8. */
    const std::string &text(Key key) const { return state[key].text; }
    /** Ok, or the code that says that the unit lacks this or can't tell it at present. */
    Code missing(Key key) const;
    /** The unit's clock, milliseconds since 1970. */
    std::int64_t now() const { return time; }
    const Snapshot &snapshot() const { return state; }

    // Writing, in a Change only.

    /** What an operation stores: checked against the range that operations may write. */
    Code setChecked(Key key, double number);
    /** What is so from now on, whatever the range; pins a living value. */
    void set(Key key, double number);
    void set(Key key, const std::string &utf8);
    /** Lets a value live again, from that number or from the present one. */
    void setLiving(Key key, std::optional<double> from);
    void setString(const std::string &key, const std::string &value);
    void setFault(const std::string &operation, const Fault &fault);
    void clearFaults();
    void setDelay(const std::string &operation, std::uint32_t milliseconds);
    /** Time that the clock stood still or was set back doesn't age the unit. */
    void setClock(std::optional<std::int64_t> standing, bool ages);
    void replace(const Snapshot &snapshot);
    /** Firmware images by controller: "fpga", "ss", "front". */
    void setImage(std::string_view controller, std::string_view bytes);
    void addShortMessage(const ShortMessage &message);

    /** May be read without a Change. */
    std::optional<std::string> image(std::string_view controller);
    std::vector<ShortMessage> shortMessages();

    /** Waits with the unit free for others meanwhile, and takes up what they changed. Not within a
     *  Change. */
    void pause(std::chrono::milliseconds duration);

    /** Uses that file from now on. Throws if that doesn't work; the file before is then given up
     *  all the same, and calls fail until the file can be opened. */
    void use(const std::string &path);

private:
    friend class Access;
    friend class Change;

    void acquire();
    void settle();
    void startUp();
    void save(Key key);
    std::string path();

    std::mutex mutex;
    std::optional<std::string> chosenPath;
    std::optional<StateFile> file;
    Snapshot state;
    std::int64_t time = 0;
    bool finished = false;
};

/** Holds the unit, brought up to date. Throws a Failure if its state can't be had. */
class Access
{
public:
    explicit Access(Unit &unit)
        : lock(unit.mutex)
    {
        unit.acquire();
    }

private:
    std::lock_guard<std::mutex> lock;
};

/** One transaction on a held unit; without commit() nothing of it happened. */
class Change
{
public:
    explicit Change(Unit &unit);
    ~Change();
    Change(const Change &) = delete;
    Change &operator=(const Change &) = delete;
    void commit();

private:
    Unit &unit;
    bool open = true;
};

/** Milliseconds since 1970 by the machine's clock. */
std::int64_t machineTime();

} // namespace virtualunit
