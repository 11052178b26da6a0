#pragma once

#include "tests/support/literals.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace support {

/** What a run of a program left. */
struct Run {
    bool endedNormally = false;
    int exitCode = -1;
    QByteArray output; ///< standard output
    /** Standard error stream, and behind it a line for each message box of the system's own: the
     *  text alone if it is the plain box that the program may show. */
    QByteArray errors;
};

/**
 * The program as it is installed, in a temporary folder, with the device library in its place and
 * log/ for the hardware service's log. Libraries and logs can be put in without disturbing another
 * test. Runs there have neither a display nor a user's unit nor BIOS data.
 */
class ProgramTree
{
public:
    /** @param deviceLibrary a file that becomes the tree's device library */
    explicit ProgramTree(const QString &deviceLibrary);
    ~ProgramTree();
    ProgramTree(const ProgramTree &) = delete;
    ProgramTree &operator=(const ProgramTree &) = delete;

    /** Puts another device library into the place of the first. */
    void replaceDeviceLibrary(const QString &file) const;
    /** Puts a library beside the program, named as on Windows without ".dll". */
    void putBesideProgram(const QString &file, const QString &library) const;
    /** Lets programs that lie elsewhere find our unit, where they don't know it by themselves. */
    void letOthersFindUnit();
    /** BIOS data of the runs, in Latin-1. */
    void setBoard(const QByteArray &product) const;
    void setBiosVersion(const QByteArray &version) const;

    /** A path below the tree. */
    QString path(const QString &name) const;
    /** Copies a file into the tree; the path is the copy's. */
    QString putIn(const QString &file, const QString &name) const;
    void write(const QString &name, const QByteArray &content) const;
    QByteArray read(const QString &name) const;

    /** Environment of the runs, to be changed as a test needs. */
    QProcessEnvironment environment;

    /** Runs the program to its end. */
    Run run(const QStringList &arguments) const;
    /** Runs another program in the same surroundings. */
    Run runOther(const QString &program, const QStringList &arguments) const;
    /** Runs the report mode and gives what it wrote, from the second line feed on: without the
     *  line that holds the time. */
    QByteArray report() const;

    /** Readies a process for this tree without starting it. */
    void prepare(QProcess &process) const;
    QString program() const;

private:
    QTemporaryDir folder;
};

/** The part of a report between the banner of that title and the next banner. */
QByteArray section(const QByteArray &report, const char *title);

} // namespace support
