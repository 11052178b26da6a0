#pragma once

#include "virtualunit/VirtualUnit.h"
#include "virtualunit/state/Database.h"
#include "virtualunit/state/properties.h"

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace virtualunit {

/** One stored value. A living one starts from it and moves on, unless it is pinned. */
struct Cell {
    double number = 0;
    std::string text;       ///< UTF-8
    std::int64_t since = 0; ///< when it was stored, unit's clock
    bool pinned = false;
};

/** A fault as addFault() takes it; seen counts the calls that it was asked about. */
struct Fault {
    std::int32_t code = 0;
    std::uint32_t times = 0;
    std::uint32_t after = 0;
    std::int64_t seen = 0;

    bool passed() const { return times != 0 && seen >= std::int64_t(after) + times; }
};

/** The whole unit but for its firmware images and short messages. */
struct Snapshot {
    std::int64_t epoch = 0;            ///< when this unit was made, milliseconds since 1970
    std::optional<std::int64_t> clock; ///< the unit's clock stands there
    std::vector<Cell> cells;           ///< by the index of the property
    std::map<std::string, std::string> strings; ///< of the Settings family
    std::map<std::string, Fault, std::less<>> faults;
    std::map<std::string, std::uint32_t, std::less<>> delays; ///< milliseconds

    const Cell &operator[](Key key) const { return cells[key.index]; }
};

/** A unit as the table of properties makes it. */
Snapshot freshSnapshot(std::int64_t epoch);

/**
 * The unit's file. Every change is one transaction, so that a process that is killed leaves whole
 * values; other processes' changes show in changed(). Throws Failures.
 */
class StateFile
{
public:
    /** A file that is new or empty is filled by what makeUnit returns, one of an older format is
     *  brought forward. Nothing is written to a file that isn't ours or that is damaged. */
    StateFile(const std::string &path, const std::function<Snapshot()> &makeUnit);

    /** Whether another connection has committed since the last load(). */
    bool changed();
    bool moved() const { return database.moved(); }
    Snapshot load();

    void begin();
    void commit();
    void rollback() noexcept;

    void replaceAll(const Snapshot &snapshot);
    void saveCell(Key key, const Cell &cell);
    void saveString(const std::string &key, const std::string &value);
    void saveFault(const std::string &operation, const Fault &fault); ///< code 0 removes
    void removeFaults();
    void saveDelay(const std::string &operation, std::uint32_t milliseconds); ///< 0 removes
    void saveClock(const std::optional<std::int64_t> &clock);
    void saveImage(std::string_view controller, std::string_view bytes);
    std::optional<std::string> image(std::string_view controller);
    void addMessage(const ShortMessage &message);
    std::vector<ShortMessage> messages();

private:
    void recognise(const std::function<Snapshot()> &makeUnit);
    void bringForward(const std::function<Snapshot()> &makeUnit);
    std::int64_t version(); ///< of the file's format; 0 if it is new or empty
    void loadCells(Snapshot &snapshot);

    Database database;
    std::optional<Statement> dataVersion;
    std::optional<Statement> cellWriter;
    std::int64_t loadedVersion = -1;
};

} // namespace virtualunit
