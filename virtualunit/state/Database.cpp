#include "virtualunit/state/Database.h"

#include <sqlite3.h>

namespace virtualunit {

namespace {

constexpr int lockPatience = 10000; // milliseconds

Code codeOf(int result)
{
    switch (result & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StateBusy;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_MISMATCH:
    case SQLITE_ERROR: // a table of ours is missing or isn't as we made it
        return StateDamaged;
    case SQLITE_FULL:
    case SQLITE_READONLY:
    case SQLITE_IOERR:
        return StateNotWritten;
    default:
        return StateUnavailable;
    }
}

} // namespace

Failure Database::failure(sqlite3 *database, int result)
{
    const std::string reason = database ? sqlite3_errmsg(database) : sqlite3_errstr(result);
    return {codeOf(result), "The unit's file can't be used: " + reason + "."};
}

void Database::Close::operator()(sqlite3 *database) const
{
    sqlite3_close_v2(database);
}

Database::Database(const std::string &path)
{
    sqlite3 *opened = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &opened,
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
        nullptr);
    handle.reset(opened);
    if (result != SQLITE_OK)
        throw failure(opened, result);
    sqlite3_busy_timeout(opened, lockPatience);
}

void Database::execute(const char *sql)
{
    const int result = sqlite3_exec(handle.get(), sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
        throw failure(handle.get(), result);
}

std::int64_t Database::number(std::string_view sql)
{
    auto statement = prepare(sql);
    return statement.step() ? statement.integer(0) : 0;
}

bool Database::inTransaction() const
{
    return sqlite3_get_autocommit(handle.get()) == 0;
}

bool Database::moved() const
{
    int answer = 0;
    sqlite3_file_control(handle.get(), "main", SQLITE_FCNTL_HAS_MOVED, &answer);
    return answer != 0;
}

void Statement::Finalize::operator()(sqlite3_stmt *statement) const
{
    sqlite3_finalize(statement);
}

Statement::Statement(sqlite3 *database, std::string_view sql)
    : owner(database)
{
    sqlite3_stmt *prepared = nullptr;
    const int result = sqlite3_prepare_v3(
        database, sql.data(), int(sql.size()), SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    handle.reset(prepared);
    if (result != SQLITE_OK)
        throw Database::failure(database, result);
}

Statement &Statement::bind(int parameter, std::int64_t value)
{
    sqlite3_bind_int64(handle.get(), parameter, value);
    return *this;
}

Statement &Statement::bind(int parameter, double value)
{
    sqlite3_bind_double(handle.get(), parameter, value);
    return *this;
}

Statement &Statement::bind(int parameter, std::string_view value)
{
    sqlite3_bind_text64(handle.get(), parameter, value.data() ? value.data() : "", value.size(),
        SQLITE_TRANSIENT, SQLITE_UTF8);
    return *this;
}

Statement &Statement::bindBytes(int parameter, std::string_view value)
{
    sqlite3_bind_blob64(
        handle.get(), parameter, value.data() ? value.data() : "", value.size(), SQLITE_TRANSIENT);
    return *this;
}

bool Statement::step()
{
    const int result = sqlite3_step(handle.get());
    if (result == SQLITE_ROW)
        return true;
    if (result == SQLITE_DONE) {
        sqlite3_reset(handle.get());
        return false;
    }
    const auto failure = Database::failure(owner, result);
    sqlite3_reset(handle.get());
    throw failure;
}

void Statement::run()
{
    while (step()) {
    }
}

void Statement::reset()
{
    sqlite3_reset(handle.get());
}

void Statement::requireNumber(int column) const
{
    // SQLite keeps a text that is no number as it is, in a column of numbers too, and reads 0.
    const int type = sqlite3_column_type(handle.get(), column);
    if (type != SQLITE_INTEGER && type != SQLITE_FLOAT)
        throw Failure{StateDamaged, "The unit's file is damaged: it has a text for a number."};
}

std::int64_t Statement::integer(int column) const
{
    requireNumber(column);
    return sqlite3_column_int64(handle.get(), column);
}

double Statement::real(int column) const
{
    requireNumber(column);
    return sqlite3_column_double(handle.get(), column);
}

std::string Statement::text(int column) const
{
    const void *bytes = sqlite3_column_blob(handle.get(), column);
    const auto size = std::size_t(sqlite3_column_bytes(handle.get(), column));
    return bytes ? std::string(static_cast<const char *>(bytes), size) : std::string();
}

} // namespace virtualunit
