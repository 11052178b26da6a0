#include "linuxunit/store/Store.h"

#include "linuxunit/calls/Failure.h"
#include "linuxunit/kernel/files.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace linuxunit {

namespace {

constexpr const char *systemFolder = "/var/lib/vornaux";

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

[[noreturn]] void fail(const std::string &path, const std::string &reason)
{
    throw Failure{StoreFailed, path + " can't be used: " + reason};
}

Statement prepare(sqlite3 *database, const std::string &path, const char *text)
{
    sqlite3_stmt *statement = nullptr;
    const int code = sqlite3_prepare_v2(database, text, -1, &statement, nullptr);
    if (code != SQLITE_OK)
        fail(path, sqlite3_errmsg(database));
    return {statement, &sqlite3_finalize};
}

void bindBytes(const Statement &statement, int place, const std::string &bytes)
{
    // Blobs, so that bytes come back as they were, whatever encoding they have.
    sqlite3_bind_blob64(statement.get(), place, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

const char *nameOf(Store::Area area)
{
    return area == Store::Area::Strings ? "strings" : "settings";
}

} // namespace

std::string storeFolder()
{
    auto shared = rooted(systemFolder);
    if (::access(shared.c_str(), W_OK) == 0)
        return shared;
    if (const char *state = ::secure_getenv("XDG_STATE_HOME"); state && *state == '/')
        return std::string(state) + "/vornaux";
    if (const char *home = ::secure_getenv("HOME"); home && *home == '/')
        return std::string(home) + "/.local/state/vornaux";
    return {};
}

void Store::Closer::operator()(sqlite3 *open) const
{
    sqlite3_close(open);
}

Store::Store() = default;
Store::~Store() = default;

bool Store::openToRead()
{
    if (database)
        return true;
    const auto folder = storeFolder();
    path = folder + "/unit.db";
    // Empty while another process makes it, or for good if that was cut short.
    std::error_code error;
    if (folder.empty() || std::filesystem::file_size(path, error) == 0 || error)
        return false;
    sqlite3 *open = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &open, SQLITE_OPEN_READONLY, nullptr);
    database.reset(open);
    if (code != SQLITE_OK) {
        const std::string reason = open ? sqlite3_errmsg(open) : "out of memory";
        database.reset();
        fail(path, reason);
    }
    sqlite3_busy_timeout(open, databaseWait);
    return true;
}

void Store::openToWrite()
{
    if (database && isWritable)
        return;
    database.reset();
    const auto folder = storeFolder();
    if (folder.empty())
        throw Failure{StoreFailed, "There is no folder to keep settings in: neither " +
                                       std::string(systemFolder) + " nor a home"};
    path = folder + "/unit.db";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        fail(path, errnoText(error.value()));
    sqlite3 *open = nullptr;
    const int code =
        sqlite3_open_v2(path.c_str(), &open, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    database.reset(open);
    if (code != SQLITE_OK) {
        const std::string reason = open ? sqlite3_errmsg(open) : "out of memory";
        database.reset();
        fail(path, reason);
    }
    sqlite3_busy_timeout(open, databaseWait);
    constexpr const char *layout =
        "CREATE TABLE IF NOT EXISTS kept(area TEXT NOT NULL, key BLOB NOT NULL, value BLOB NOT "
        "NULL, PRIMARY KEY(area, key)) WITHOUT ROWID";
    if (sqlite3_exec(open, layout, nullptr, nullptr, nullptr) != SQLITE_OK) {
        const std::string reason = sqlite3_errmsg(open);
        database.reset();
        fail(path, reason);
    }
    // Others of the group that the folder belongs to share it; elsewhere nobody is in reach.
    if (folder == rooted(systemFolder))
        static_cast<void>(::chmod(path.c_str(), S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH));
    isWritable = true;
}

std::optional<std::string> Store::value(Area area, const std::string &key)
{
    if (!openToRead())
        return std::nullopt;
    const auto statement =
        prepare(database.get(), path, "SELECT value FROM kept WHERE area = ?1 AND key = ?2");
    sqlite3_bind_text(statement.get(), 1, nameOf(area), -1, SQLITE_STATIC);
    bindBytes(statement, 2, key);
    const int code = sqlite3_step(statement.get());
    if (code == SQLITE_DONE)
        return std::nullopt;
    if (code != SQLITE_ROW)
        fail(path, sqlite3_errmsg(database.get()));
    const auto *bytes = static_cast<const char *>(sqlite3_column_blob(statement.get(), 0));
    const auto size = std::size_t(sqlite3_column_bytes(statement.get(), 0));
    return bytes ? std::string(bytes, size) : std::string();
}

void Store::setValue(Area area, const std::string &key, const std::string &value)
{
    openToWrite();
    const auto statement =
        prepare(database.get(), path, "INSERT OR REPLACE INTO kept VALUES(?1, ?2, ?3)");
    sqlite3_bind_text(statement.get(), 1, nameOf(area), -1, SQLITE_STATIC);
    bindBytes(statement, 2, key);
    bindBytes(statement, 3, value);
    if (sqlite3_step(statement.get()) != SQLITE_DONE)
        fail(path, sqlite3_errmsg(database.get()));
}

double Store::number(const std::string &key, double otherwise)
{
    const auto text = value(Area::Settings, key);
    double number = 0;
    if (!text)
        return otherwise;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
    return error == std::errc() && std::isfinite(number) ? number : otherwise;
}

void Store::setNumber(const std::string &key, double value)
{
    char digits[32];
    const auto [end, error] = std::to_chars(std::begin(digits), std::end(digits), value);
    setValue(Area::Settings, key, std::string(digits, end));
}

} // namespace linuxunit
