#include "linuxunit/store/Counters.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"
#include "linuxunit/store/Store.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <sqlite3.h>
#include <unistd.h>

namespace linuxunit {

namespace {

constexpr double longestMeasured = 120; ///< seconds for which a temperature stands
constexpr const char *countersFolder = "/var/lib/vornaux";

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

constexpr const char *makeBattery =
    "CREATE TABLE IF NOT EXISTS battery(id INTEGER PRIMARY KEY CHECK(id = 1), onMainPower REAL, "
    "onBattery REAL, belowMinus20 REAL, atMinus20To0 REAL, at0To40 REAL, at40To60 REAL, at60To70 "
    "REAL, at70To80 REAL, above80 REAL, coldest REAL, hottest REAL)";

/** The times in the order of their columns. */
std::array<double *, 9> timesOf(BatteryCounted &counted)
{
    return {&counted.onMainPower, &counted.onBattery, &counted.belowMinus20, &counted.atMinus20To0,
        &counted.at0To40, &counted.at40To60, &counted.at60To70, &counted.at70To80,
        &counted.above80};
}

bool doesTableExist(sqlite3 *database, const char *name)
{
    const auto statement =
        prepare(database, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1");
    sqlite3_bind_text(statement.get(), 1, name, -1, SQLITE_STATIC);
    const int code = sqlite3_step(statement.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        fail(database);
    return code == SQLITE_ROW;
}

std::optional<BatteryCounted> batteryOf(sqlite3 *database)
{
    const auto statement = prepare(database,
        "SELECT onMainPower, onBattery, belowMinus20, atMinus20To0, at0To40, at40To60, at60To70, "
        "at70To80, above80, coldest, hottest FROM battery");
    const int code = sqlite3_step(statement.get());
    if (code == SQLITE_DONE)
        return std::nullopt;
    if (code != SQLITE_ROW)
        fail(database);
    BatteryCounted counted;
    int column = 0;
    for (double *value : timesOf(counted))
        *value = std::max(sqlite3_column_double(statement.get(), column++), 0.0);
    counted.coldest = measuredAt(statement, column++);
    counted.hottest = measuredAt(statement, column);
    return counted;
}

void bindMeasured(const Statement &statement, int place, const std::optional<double> &value)
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
    bindMeasured(statement, place++, counted.coldest);
    bindMeasured(statement, place++, counted.hottest);
    sqlite3_bind_double(statement.get(), place++, row.running);
    sqlite3_bind_double(statement.get(), place++, row.suspended);
    sqlite3_bind_text(statement.get(), place, row.boot.c_str(), -1, SQLITE_TRANSIENT);
    if (sqlite3_step(statement.get()) != SQLITE_DONE)
        fail(database);
}

void write(sqlite3 *database, BatteryCounted &counted)
{
    const auto statement = prepare(database,
        "INSERT OR REPLACE INTO battery(id, onMainPower, onBattery, belowMinus20, atMinus20To0, "
        "at0To40, at40To60, at60To70, at70To80, above80, coldest, hottest) "
        "VALUES(1, ?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)");
    int place = 1;
    for (const double *value : timesOf(counted))
        sqlite3_bind_double(statement.get(), place++, *value);
    bindMeasured(statement, place++, counted.coldest);
    bindMeasured(statement, place, counted.hottest);
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

double &classOf(BatteryCounted &counted, double celsius)
{
    constexpr double icy = -20;
    constexpr double cold = 0;
    constexpr double warm = 40;
    constexpr double hot = 60;
    constexpr double hotter = 70;
    constexpr double hottest = 80;
    if (celsius < cold)
        return celsius < icy ? counted.belowMinus20 : counted.atMinus20To0;
    if (celsius < hot)
        return celsius < warm ? counted.at0To40 : counted.at40To60;
    if (celsius < hotter)
        return counted.at60To70;
    return celsius <= hottest ? counted.at70To80 : counted.above80;
}

void widen(std::optional<double> &coldest, std::optional<double> &hottest, double celsius)
{
    coldest = std::min(coldest.value_or(celsius), celsius);
    hottest = std::max(hottest.value_or(celsius), celsius);
}

/** @param passed seconds */
void count(BatteryCounted &counted, const BatteryMoment &moment, double passed)
{
    const bool isSure = passed <= longestMeasured;
    if (isSure && moment.isFeeding)
        (*moment.isFeeding ? counted.onBattery : counted.onMainPower) += passed;
    if (!moment.celsius || !std::isfinite(*moment.celsius))
        return;
    widen(counted.coldest, counted.hottest, *moment.celsius);
    if (isSure)
        classOf(counted, *moment.celsius) += passed;
}

/** @return seconds that this start ran since the last count */
double count(Row &row, const Moment &moment)
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
        return passed;
    widen(row.counted.coldest, row.counted.hottest, *moment.celsius);
    if (auto *time = classOf(row.counted, *moment.celsius); time && passed <= longestMeasured)
        *time += passed;
    return passed;
}

using Database = std::unique_ptr<sqlite3, int (*)(sqlite3 *)>;

/** To be read; throws 2 if nobody ever counted. */
Database openFile()
{
    if (::access(Counters::path().c_str(), F_OK) != 0)
        throw Failure{NotSupported, {}};
    sqlite3 *open = nullptr;
    const int code =
        sqlite3_open_v2(Counters::path().c_str(), &open, SQLITE_OPEN_READONLY, nullptr);
    Database database(open, &sqlite3_close);
    if (code != SQLITE_OK)
        fail(open);
    sqlite3_busy_timeout(open, databaseWait);
    return database;
}

} // namespace

std::uint32_t wholeMinutes(double seconds)
{
    constexpr double secondsOfMinute = 60;
    return std::uint32_t(std::clamp(seconds / secondsOfMinute, 0.0, double(UINT32_MAX)));
}

std::int16_t wholeDegrees(double celsius)
{
    return std::int16_t(std::lround(std::clamp<double>(celsius, INT16_MIN, INT16_MAX)));
}

void Counters::Closer::operator()(sqlite3 *open) const
{
    sqlite3_close(open);
}

std::string Counters::path()
{
    return rooted(std::string(countersFolder) + "/counters.db");
}

Counted Counters::read()
{
    const auto row = rowOf(openFile().get());
    if (!row)
        throw Failure{NotAvailable, {}};
    return row->counted;
}

BatteryCounted Counters::readBattery()
{
    const auto database = openFile();
    // A service from before it counted for batteries has made the file.
    const auto counted =
        doesTableExist(database.get(), "battery") ? batteryOf(database.get()) : std::nullopt;
    if (!counted)
        throw Failure{NotSupported, {}};
    return *counted;
}

Counters::Counters()
{
    std::error_code error;
    std::filesystem::create_directories(rooted(countersFolder), error);
    if (error)
        throw Failure{StoreFailed, path() + " can't be used: " + errnoText(error.value())};
    sqlite3 *open = nullptr;
    const int code =
        sqlite3_open_v2(path().c_str(), &open, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    database.reset(open);
    if (code != SQLITE_OK)
        fail(open);
    sqlite3_busy_timeout(open, databaseWait);
    // What is committed is on the disk.
    execute(open, "PRAGMA synchronous = FULL");
    execute(open,
        "CREATE TABLE IF NOT EXISTS counters(id INTEGER PRIMARY KEY CHECK(id = 1), totalRunning "
        "REAL, totalSuspended REAL, at40To60 REAL, at60To70 REAL, at70To80 REAL, above80 REAL, "
        "powerCycles INTEGER, coldest REAL, hottest REAL, running REAL, suspended REAL, boot "
        "TEXT)");
    execute(open, makeBattery);
}

Counters::~Counters() = default;

void Counters::add(const Moment &moment)
{
    execute(database.get(), "BEGIN IMMEDIATE");
    try {
        auto row = rowOf(database.get()).value_or(Row{});
        const double passed = count(row, moment);
        write(database.get(), row);
        if (moment.battery) {
            auto counted = batteryOf(database.get()).value_or(BatteryCounted{});
            count(counted, *moment.battery, passed);
            write(database.get(), counted);
        }
        execute(database.get(), "COMMIT");
    } catch (const Failure &) {
        sqlite3_exec(database.get(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

} // namespace linuxunit
