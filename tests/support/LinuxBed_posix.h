#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace support {

/**
 * A machine of tests/machines/, played by umockdev: what runs in it sees the machine's /sys, /dev
 * and /proc instead of those of this one, and the Linux unit as its device library. It lasts as
 * long as the object.
 */
class LinuxBed
{
public:
    /** What a program in the bed left. */
    struct Run {
        int exitCode = -1;
        QByteArray output;
        QByteArray errors;
    };

    /** Why there are no beds here; empty if there are. */
    static QString missing();
    /** Names of all machines. */
    static QStringList machines();
    /** Folder of a machine's files. */
    static QString folderOf(const QString &machine);

    explicit LinuxBed(const QString &machine);
    ~LinuxBed();
    LinuxBed(const LinuxBed &) = delete;
    LinuxBed &operator=(const LinuxBed &) = delete;

    /** Where a path of the machine lies. */
    QString path(const QString &name) const;
    Run run(const QString &program, const QStringList &arguments) const;
    /** The system report, from the second line feed on: without the line that holds the time. */
    QByteArray report() const;

    /** Of what runs in the bed, to be changed as a test needs. */
    QProcessEnvironment environment;

private:
    QProcess keeper; ///< umockdev, which takes the bed away when it ends
    QTemporaryDir home;
    QString root;
};

} // namespace support
