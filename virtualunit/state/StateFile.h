#pragma once

#include "virtualunit/VirtualUnit.h"
#include "virtualunit/state/Database.h"
#include "virtualunit/state/Snapshot.h"

namespace virtualunit {

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
    void setCell(Key key, const Cell &cell);
    void setString(const std::string &key, const std::string &value);
    void setFault(const std::string &operation, const Fault &fault); ///< code 0 removes
    void clearFaults();
    void setDelay(const std::string &operation, std::uint32_t milliseconds); ///< 0 removes
    void setClock(const std::optional<std::int64_t> &clock);
    void setImage(std::string_view controller, std::string_view bytes);
    std::optional<std::string> image(std::string_view controller);
    void addShortMessage(const ShortMessage &message);
    std::vector<ShortMessage> shortMessages();

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
