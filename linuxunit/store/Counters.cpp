#include "linuxunit/store/Counters.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sqlite3.h>
#include <unistd.h>

namespace linuxunit {

namespace {

constexpr int longestWait = 80;         ///< milliseconds, for another process
constexpr double longestMeasured = 120; ///< seconds for which a temperature stands
constexpr const char *folder = "/var/lib/vornaux";

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

/** The row: what was counted, and how far this start was counted when that was written. */
struct Row {
    Counted counted;
    std::string boot;
    double running = 0;
    double suspended = 0;
};

[[noreturn]] void fail(sqlite3 *database)
{
    throw Failure{StoreFailed, Counters::path() + " can't be used: " +
                                   (database ? sqlite3_errmsg(database) : "out of memory")};
}

void execute(sqlite3 *database, const char *text)
{
    if (sqlite3_exec(database, text, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(database);
}

Statement prepare(sqlite3 *database, const char *text)
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(database, text, -1, &statement, nullptr) != SQLITE_OK)
        fail(database);
    return {statement, &sqlite3_finalize};
}

std::optional<double> measuredAt(const Statement &statement, int column)
{
    if (sqlite3_column_type(statement.get(), column) == SQLITE_NULL)
        return std::nullopt;
    return sqlite3_column_double(statement.get(), column);
}

std::optional<Row> rowOf(sqlite3 *database)
{
    const auto statement = prepare(database,
        "SELECT totalRunning, totalSuspended, at40To60, at60To70, at70To80, above80, powerCycles, "
        "coldest, hottest, running, suspended, boot FROM counters");
    const int code = sqlite3_step(statement.get());
    if (code == SQLITE_DONE)
        return std::nullopt;
    if (code != SQLITE_ROW)
        fail(database);
    Row row;
    int column = 0;
    for (double *value : {&row.counted.running, &row.counted.suspended, &row.counted.at40To60,
             &row.counted.at60To70, &row.counted.at70To80, &row.counted.above80})
        *value = std::max(sqlite3_column_double(statement.get(), column++), 0.0);
    row.counted.powerCycles =
        std::max<std::int64_t>(sqlite3_column_int64(statement.get(), column++), 0);
    row.counted.coldest = measuredAt(statement, column++);
    row.counted.hottest = measuredAt(statement, column++);
    row.running = sqlite3_column_double(statement.get(), column++);
    row.suspended = sqlite3_column_double(statement.get(), column++);
    const auto *boot = sqlite3_column_text(statement.get(), column);
    row.boot = boot ? reinterpret_cast<const char *>(boot) : "";
    return row;
}

void bind(const Statement &statement, int place, const std::optional<double> &value)
{
    if (value)
        sqlite3_bind_double(statement.get(), place, *value);
}

void write(sqlite3 *database, const Row &row)
{
    const auto statement = prepare(database,
        "INSERT OR REPLACE INTO counters(id, totalRunning, totalSuspended, at40To60, at60To70, "
        "at70To80, above80, powerCycles, coldest, hottest, running, suspended, boot) "
        "VALUES(1, ?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)");
    const auto &counted = row.counted;
    int place = 1;
    for (const double value : {counted.running, counted.suspended, counted.at40To60,
             counted.at60To70, counted.at70To80, counted.above80})
        sqlite3_bind_double(statement.get(), place++, value);
    sqlite3_bind_int64(statement.get(), place++, counted.powerCycles);
    bind(statement, place++, counted.coldest);
    bind(statement, place++, counted.hottest);
    sqlite3_bind_double(statement.get(), place++, row.running);
    sqlite3_bind_double(statement.get(), place++, row.suspended);
    sqlite3_bind_text(statement.get(), place, row.boot.c_str(), -1, SQLITE_TRANSIENT);
    if (sqlite3_step(statement.get()) != SQLITE_DONE)
        fail(database);
}

double *classOf(Counted &counted, double celsius)
{
    constexpr double warm = 40;
    constexpr double hot = 60;
    constexpr double hotter = 70;
    constexpr double hottest = 80;
    if (celsius < warm)
        return nullptr;
    if (celsius < hot)
        return &counted.at40To60;
    if (celsius < hotter)
        return &counted.at60To70;
    return celsius <= hottest ? &counted.at70To80 : &counted.above80;
}

void count(Row &row, const Moment &moment)
{
    if (moment.boot != row.boot) {
        row.boot = moment.boot;
        row.running = 0;
        row.suspended = 0;
        ++row.counted.powerCycles;
    }
    const double passed = std::max(moment.running - row.running, 0.0);
    row.counted.running += passed;
    row.counted.suspended += std::max(moment.suspended - row.suspended, 0.0);
    row.running = std::max(moment.running, row.running);
    row.suspended = std::max(moment.suspended, row.suspended);
    if (!moment.celsius || !std::isfinite(*moment.celsius))
        return;
    const double celsius = *moment.celsius;
    row.counted.coldest = std::min(row.counted.coldest.value_or(celsius), celsius);
    row.counted.hottest = std::max(row.counted.hottest.value_or(celsius), celsius);
    if (auto *time = classOf(row.counted, celsius); time && passed <= longestMeasured)
        *time += passed;
}

} // namespace

void Counters::Closer::operator()(sqlite3 *open) const
{
    sqlite3_close(open);
}

std::string Counters::path()
{
    return rooted(std::string(folder) + "/counters.db");
}

Counted Counters::read()
{
    if (::access(path().c_str(), F_OK) != 0)
        throw Failure{NotSupported, {}};
    sqlite3 *open = nullptr;
    const int code = sqlite3_open_v2(path().c_str(), &open, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, Closer> database(open);
    if (code != SQLITE_OK)
        fail(open);
    sqlite3_busy_timeout(open, longestWait);
    const auto row = rowOf(open);
    if (!row)
        throw Failure{NotAvailable, {}};
    return row->counted;
}

Counters::Counters()
{
    std::error_code error;
    std::filesystem::create_directories(rooted(folder), error);
    if (error)
        throw Failure{StoreFailed, path() + " can't be used: " + errnoText(error.value())};
    sqlite3 *open = nullptr;
    const int code =
        sqlite3_open_v2(path().c_str(), &open, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    database.reset(open);
    if (code != SQLITE_OK)
        fail(open);
    sqlite3_busy_timeout(open, longestWait);
    // What is committed is on the disk.
    execute(open, "PRAGMA synchronous = FULL");
    execute(open,
        "CREATE TABLE IF NOT EXISTS counters(id INTEGER PRIMARY KEY CHECK(id = 1), totalRunning "
        "REAL, totalSuspended REAL, at40To60 REAL, at60To70 REAL, at70To80 REAL, above80 REAL, "
        "powerCycles INTEGER, coldest REAL, hottest REAL, running REAL, suspended REAL, boot "
        "TEXT)");
}

Counters::~Counters() = default;

void Counters::add(const Moment &moment)
{
    execute(database.get(), "BEGIN IMMEDIATE");
    try {
        auto row = rowOf(database.get()).value_or(Row{});
        count(row, moment);
        write(database.get(), row);
        execute(database.get(), "COMMIT");
    } catch (const Failure &) {
        sqlite3_exec(database.get(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

} // namespace linuxunit
