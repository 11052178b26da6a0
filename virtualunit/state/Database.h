#pragma once

#include "virtualunit/state/codes.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace virtualunit {

/** A prepared statement. Rows are read while step() says that there is one. */
class Statement
{
public:
    Statement(sqlite3 *database, std::string_view sql);

    Statement &bind(int parameter, std::int64_t value);
    Statement &bind(int parameter, double value);
    Statement &bind(int parameter, std::string_view value);
    Statement &bindBytes(int parameter, std::string_view value);
    /** False when there are no more rows; the statement is then ready to be run again. */
    bool step();
    /** Runs a statement that gives no rows. */
    void run();
    void reset();

    /** These throw a Failure, StateDamaged, for what is no number. */
    std::int64_t integer(int column) const;
    double real(int column) const;
    std::string text(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt *statement) const;
    };
    void requireNumber(int column) const;

    sqlite3 *owner;
    std::unique_ptr<sqlite3_stmt, Finalize> handle;
};

/** One connection. All failures are thrown as a Failure with the code that callers shall see. */
class Database
{
public:
    explicit Database(const std::string &path);

    Statement prepare(std::string_view sql) { return {handle.get(), sql}; }
    void execute(const char *sql);
    std::int64_t number(std::string_view sql);
    bool inTransaction() const;
    /** The file at our path is not the one that we hold any more. */
    bool moved() const;

    static Failure failure(sqlite3 *database, int result);

private:
    struct Close {
        void operator()(sqlite3 *database) const;
    };
    std::unique_ptr<sqlite3, Close> handle;
};

} // namespace virtualunit
