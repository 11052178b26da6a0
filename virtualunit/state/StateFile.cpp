#include "virtualunit/state/StateFile.h"

#include "virtualunit/state/Assignment.h"

#include <cmath>
#include <iterator>

namespace virtualunit {

namespace {

constexpr std::int64_t applicationId = 0x566F726E;

/** What makes each version of the format of the one before. A new file goes through all of them, so
 *  that it is like an old one that was brought forward. */
constexpr const char *formatSteps[] = {
    R"sql(
    CREATE TABLE unit (name TEXT PRIMARY KEY, value INTEGER) WITHOUT ROWID;
    CREATE TABLE value (name TEXT PRIMARY KEY, number REAL NOT NULL, text TEXT NOT NULL,
        since INTEGER NOT NULL, pinned INTEGER NOT NULL) WITHOUT ROWID;
    CREATE TABLE string (name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;
    CREATE TABLE fault (operation TEXT PRIMARY KEY, code INTEGER NOT NULL, times INTEGER NOT NULL,
        after INTEGER NOT NULL, seen INTEGER NOT NULL) WITHOUT ROWID;
    CREATE TABLE delay (operation TEXT PRIMARY KEY, milliseconds INTEGER NOT NULL) WITHOUT ROWID;
    CREATE TABLE image (controller TEXT PRIMARY KEY, bytes BLOB NOT NULL);
)sql",
    // There are files of the first version that have it already.
    R"sql(
    CREATE TABLE IF NOT EXISTS message (id INTEGER PRIMARY KEY, time INTEGER NOT NULL,
        number BLOB NOT NULL, text BLOB NOT NULL);
)sql",
};
constexpr std::int64_t formatVersion = std::size(formatSteps);

Failure damaged(const std::string &what)
{
    return {StateDamaged, "The unit's file is damaged: " + what + "."};
}

/** Counters hold fractions while they live, so the ranges have a little air here. */
bool plausible(const Property &property, const Cell &cell)
{
    if (!property.isText())
        return within({property.reports.low - 1, property.reports.high + 1}, cell.number);
    try {
        checkedText(property, cell.text);
        return true;
    } catch (const Failure &) {
        return false;
    }
}

/** A string, or the key of one, as the operations may have stored it. */
bool storable(const std::string &text)
{
    try {
        checkedString(text);
        return true;
    } catch (const Failure &) {
        return false;
    }
}

} // namespace

StateFile::StateFile(const std::string &path, const std::function<Snapshot()> &makeUnit)
    : database(path)
{
    recognise(makeUnit);
    // Readers never wait for a writer then, and a commit needs no flush to be safe from kill.
    // Where another process holds the file just now, it has done this or will.
    try {
        database.execute("PRAGMA journal_mode = WAL");
    } catch (const Failure &failure) {
        if (failure.code != StateBusy)
            throw;
    }
    database.execute("PRAGMA synchronous = NORMAL");
    dataVersion.emplace(database.prepare("PRAGMA data_version"));
    cellWriter.emplace(database.prepare("REPLACE INTO value VALUES (?, ?, ?, ?, ?)"));
}

std::int64_t StateFile::version()
{
    const auto id = database.number("PRAGMA application_id");
    const auto version = database.number("PRAGMA user_version");
    if (id == applicationId && version >= 1 && version <= formatVersion)
        return version;
    if (id == applicationId)
        throw Failure{StateForeign, "The unit's file was written by another version."};
    if (id != 0 || version != 0 || database.number("SELECT count(*) FROM sqlite_master") != 0)
        throw Failure{StateForeign, "The file is no virtual unit's."};
    return 0;
}

void StateFile::recognise(const std::function<Snapshot()> &makeUnit)
{
    if (version() == 0) {
        // Safe from kill without flushes, and a new unit has nothing yet that a power cut could
        // take.
        database.execute("PRAGMA synchronous = OFF");
        bringForward(makeUnit);
    }
    // Images are large, and damage in them shows when one is compared.
    for (const char *table : {"unit", "value", "string", "fault", "delay"}) {
        auto check = database.prepare("PRAGMA quick_check(" + std::string(table) + ")");
        if (check.step() && check.text(0) != "ok")
            throw damaged(check.text(0));
    }
    if (version() != formatVersion)
        bringForward(makeUnit);
}

/** What the file holds stays: properties that came later have their first value without a row. */
void StateFile::bringForward(const std::function<Snapshot()> &makeUnit)
{
    begin();
    try {
        // Another process may have been faster.
        const auto found = version();
        for (auto next = found; next < formatVersion; ++next)
            database.execute(formatSteps[next]);
        database.execute(("PRAGMA application_id = " + std::to_string(applicationId)).c_str());
        database.execute(("PRAGMA user_version = " + std::to_string(formatVersion)).c_str());
        if (found == 0)
            replaceAll(makeUnit());
        commit();
    } catch (...) {
        rollback();
        throw;
    }
}

bool StateFile::changed()
{
    dataVersion->step();
    const auto version = dataVersion->integer(0);
    dataVersion->reset();
    return version != loadedVersion;
}

Snapshot StateFile::load()
{
    const bool own = !database.inTransaction();
    if (own)
        database.execute("BEGIN");
    try {
        dataVersion->step();
        const auto version = dataVersion->integer(0);
        dataVersion->reset();
        auto epoch = database.prepare("SELECT value FROM unit WHERE name = 'epoch'");
        if (!epoch.step())
            throw damaged("it doesn't tell when the unit was made");
        auto snapshot = freshSnapshot(epoch.integer(0));
        epoch.reset();
        loadCells(snapshot);
        if (own)
            database.execute("COMMIT");
        loadedVersion = version;
        return snapshot;
    } catch (...) {
        if (own)
            rollback();
        throw;
    }
}

void StateFile::loadCells(Snapshot &snapshot)
{
    auto clock = database.prepare("SELECT value FROM unit WHERE name = 'clock'");
    while (clock.step())
        snapshot.clock = clock.integer(0);
    auto values = database.prepare("SELECT name, number, text, since, pinned FROM value");
    while (values.step()) {
        const auto index = findProperty(values.text(0));
        const Cell cell{values.real(1), values.text(2), values.integer(3), values.integer(4) != 0};
        if (index == propertyCount || !plausible(properties[index], cell))
            throw damaged("the value \"" + values.text(0) + "\" makes no sense");
        snapshot.cells[index] = cell;
    }
    auto strings = database.prepare("SELECT name, value FROM string");
    while (strings.step()) {
        if (!storable(strings.text(0)) || !storable(strings.text(1)))
            throw damaged("a stored string makes no sense");
        snapshot.strings[strings.text(0)] = strings.text(1);
    }
    auto faults = database.prepare("SELECT operation, code, times, after, seen FROM fault");
    while (faults.step()) {
        snapshot.faults[faults.text(0)] = {std::int32_t(faults.integer(1)),
            std::uint32_t(faults.integer(2)), std::uint32_t(faults.integer(3)), faults.integer(4)};
    }
    auto delays = database.prepare("SELECT operation, milliseconds FROM delay");
    while (delays.step())
        snapshot.delays[delays.text(0)] = std::uint32_t(delays.integer(1));
}

void StateFile::begin()
{
    database.execute("BEGIN IMMEDIATE");
}

void StateFile::commit()
{
    database.execute("COMMIT");
}

void StateFile::rollback() noexcept
{
    loadedVersion = -1;
    try {
        if (database.inTransaction())
            database.execute("ROLLBACK");
    } catch (const Failure &) {
        // The transaction is gone all the same.
    }
}

void StateFile::replaceAll(const Snapshot &snapshot)
{
    database.execute("DELETE FROM unit; DELETE FROM value; DELETE FROM string; DELETE FROM fault;"
                     "DELETE FROM delay; DELETE FROM image; DELETE FROM message");
    database.prepare("INSERT INTO unit VALUES ('epoch', ?)").bind(1, snapshot.epoch).run();
    setClock(snapshot.clock);
    for (std::size_t index = 0; index < propertyCount; ++index) {
        const auto &cell = snapshot.cells[index];
        const auto &property = properties[index];
        if (cell.number != property.number || cell.text != property.text || cell.pinned)
            setCell(Key(index), cell);
    }
    for (const auto &[key, value] : snapshot.strings)
        setString(key, value);
    for (const auto &[operation, fault] : snapshot.faults)
        setFault(operation, fault);
    for (const auto &[operation, milliseconds] : snapshot.delays)
        setDelay(operation, milliseconds);
}

void StateFile::setCell(Key key, const Cell &cell)
{
    if (!cellWriter)
        cellWriter.emplace(database.prepare("REPLACE INTO value VALUES (?, ?, ?, ?, ?)"));
    cellWriter->bind(1, key.property().name)
        .bind(2, cell.number)
        .bind(3, cell.text)
        .bind(4, cell.since)
        .bind(5, std::int64_t(cell.pinned))
        .run();
}

void StateFile::setString(const std::string &key, const std::string &value)
{
    database.prepare("REPLACE INTO string VALUES (?, ?)").bind(1, key).bind(2, value).run();
}

void StateFile::setFault(const std::string &operation, const Fault &fault)
{
    if (fault.code == 0) {
        database.prepare("DELETE FROM fault WHERE operation = ?").bind(1, operation).run();
        return;
    }
    database.prepare("REPLACE INTO fault VALUES (?, ?, ?, ?, ?)")
        .bind(1, operation)
        .bind(2, std::int64_t(fault.code))
        .bind(3, std::int64_t(fault.times))
        .bind(4, std::int64_t(fault.after))
        .bind(5, fault.seen)
        .run();
}

void StateFile::clearFaults()
{
    database.execute("DELETE FROM fault");
}

void StateFile::setDelay(const std::string &operation, std::uint32_t milliseconds)
{
    if (milliseconds == 0) {
        database.prepare("DELETE FROM delay WHERE operation = ?").bind(1, operation).run();
        return;
    }
    database.prepare("REPLACE INTO delay VALUES (?, ?)")
        .bind(1, operation)
        .bind(2, std::int64_t(milliseconds))
        .run();
}

void StateFile::setClock(const std::optional<std::int64_t> &clock)
{
    database.execute("DELETE FROM unit WHERE name = 'clock'");
    if (clock)
        database.prepare("INSERT INTO unit VALUES ('clock', ?)").bind(1, *clock).run();
}

void StateFile::setImage(std::string_view controller, std::string_view bytes)
{
    database.prepare("REPLACE INTO image VALUES (?, ?)")
        .bind(1, controller)
        .bindBytes(2, bytes)
        .run();
}

std::optional<std::string> StateFile::image(std::string_view controller)
{
    auto statement = database.prepare("SELECT bytes FROM image WHERE controller = ?");
    statement.bind(1, controller);
    if (!statement.step())
        return std::nullopt;
    auto bytes = statement.text(0);
    statement.reset();
    return bytes;
}

void StateFile::addShortMessage(const ShortMessage &message)
{
    database.prepare("INSERT INTO message (time, number, text) VALUES (?, ?, ?)")
        .bind(1, message.time)
        .bindBytes(2, message.number)
        .bindBytes(3, message.text)
        .run();
}

std::vector<ShortMessage> StateFile::shortMessages()
{
    std::vector<ShortMessage> all;
    auto statement = database.prepare("SELECT time, number, text FROM message ORDER BY id");
    while (statement.step())
        all.push_back({statement.integer(0), statement.text(1), statement.text(2)});
    return all;
}

} // namespace virtualunit
