#pragma once

#include "devicetools/contract.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace support {

/**
 * The Linux unit, loaded beside the virtual unit that tests are linked to, on a tree of files of
 * its own instead of this machine's: VORNAUX_ROOT leads there while the object lives, and the state
 * of the user too. Its calls go by name. One at a time in a process.
 */
class LinuxUnit
{
public:
    /** What a call answered: its code, and what it wrote. */
    struct Answer {
        DeviceCode code = -1;
        std::vector<double> numbers; ///< out values in their order; fields of a record likewise
        QByteArray text;

        /** The kind of the code: what its number in front, which tells sentences apart, leaves. */
        DeviceCode kind() const { return code % 1000; }
    };
    using Value = std::variant<double, const char *>;

    /** Milliseconds that a call may take, with what the machine's load adds. */
    static constexpr int longestCall = 150;

    LinuxUnit();
    ~LinuxUnit();
    LinuxUnit(const LinuxUnit &) = delete;
    LinuxUnit &operator=(const LinuxUnit &) = delete;

    /** Writes a file of the tree, with its folders; a link's target likewise. */
    void write(const QString &path, const QByteArray &content) const;
    void link(const QString &path, const QByteArray &target) const;
    /** What writes files of a folder, whose name ends in "/" or is empty, by their names and
     * contents. */
    auto writerIn(const char *place) const
    {
        return [this, place](const char *name, const QByteArray &content) {
            write(QLatin1String(place) + QLatin1String(name), content);
        };
    }
    QByteArray read(const QString &path) const;
    void remove(const QString &path) const;
    /** Where a path of the tree lies. */
    QString path(const QString &path) const;

    /** Calls on the family's handle, which is created first if need be. Values of arguments that
     * the caller gives, in their order. */
    Answer call(const char *operation, const std::vector<Value> &given = {},
        std::uint32_t bufferSize = 200);
    /** The text of the answer's code. */
    QByteArray textOf(const Answer &answer) const;
    /** Gives back the handles that were created. */
    void releaseAll();

    /** A function of the library, null if it isn't there. */
    contract::Function function(const char *name) const;

private:
    QTemporaryDir folder;
    void *library;
    bool ownsBus = false;
    std::map<std::string, void *> handles;
};

} // namespace support
