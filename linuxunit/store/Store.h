#pragma once

#include <memory>
#include <optional>
#include <string>

struct sqlite3;

namespace linuxunit {

inline constexpr int databaseWait = 80; ///< milliseconds, for another process

/**
 * What the library remembers across runs: the strings of the Settings family, and settings that
 * the kernel has no place for, such as the frequency of the next tone. An SQLite file below
 * /var/lib/vornaux where this user may write there, else below $XDG_STATE_HOME (~/.local/state).
 * Several processes may use it at once; each call is a transaction of its own, which waits for
 * others no longer than a caller can. Failures are StoreFailed with the file and the reason. One
 * thread at a time.
 */
class Store
{
public:
    enum class Area {
        Strings,  ///< the Settings family's; any key, any bytes
        Settings, ///< the library's own, by operation: "Buzzer.frequency"
    };

    Store();
    ~Store();
    Store(const Store &) = delete;
    Store &operator=(const Store &) = delete;

    /** Nothing if it was never set. */
    std::optional<std::string> value(Area area, const std::string &key);
    void setValue(Area area, const std::string &key, const std::string &value);

    /** A number of the library's own; the second one if it was never set, or is none any more. */
    double number(const std::string &key, double otherwise);
    void setNumber(const std::string &key, double value);

private:
    struct Closer {
        void operator()(sqlite3 *open) const;
    };

    bool openToRead();
    void openToWrite();

    std::string path;
    std::unique_ptr<sqlite3, Closer> database;
    bool isWritable = false;
};

/** Folder of the file, without VORNAUX_ROOT where that applies. Empty if there is none. */
std::string storeFolder();

} // namespace linuxunit
