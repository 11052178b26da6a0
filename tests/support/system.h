#pragma once

#include <QByteArrayList>
#include <QString>
#include <QStringList>

#include <memory>

/** What tests want to know of the operating system. */
namespace support {

/** Whether processes have signals, a mask for new files, and a locale that libraries can change. */
bool isPosix();

/** File of a program of that name. */
QString programFile(const QString &name);

/** Things of the system that this process holds open: files, threads, ... */
int openHandles();

/** Threads of this process. */
int threads();

/** Memory of this process at present and at most so far, in bytes. */
qint64 residentMemory();
qint64 peakMemory();
/** What of it is allocated at present, if makeMemoryCountable() came before all threads. The
 *  sanitizers' own allocators say nothing here, and find leaks themselves. */
qint64 allocatedMemory();
void makeMemoryCountable();

/** Names of files that are none in the usual sense and that could keep a careless reader waiting
 * for ever; those that have to be made lie in that folder. */
QByteArrayList oddFiles(const QString &folder);

/** The last second before 1970 in UTC, as the report tells times; Windows can't tell it. */
QByteArray secondBefore1970();

/** Children of this process that have ended and that nobody has asked for. */
QStringList zombies();

/** The device library's own procedure, where a test program has put one of its own in front. */
using Procedure = void (*)();
Procedure deviceProcedure(const char *name);

/**
 * Notes the message boxes that a process brings up past the toolkit, and closes them, while the
 * object lives. Only Windows has such.
 */
class SystemBoxes
{
public:
    explicit SystemBoxes(qint64 processId);
    ~SystemBoxes();
    SystemBoxes(const SystemBoxes &) = delete;
    SystemBoxes &operator=(const SystemBoxes &) = delete;

    /** "title|text|buttons" of those that came; stops looking. */
    QStringList take();

private:
    class Watcher;
    std::unique_ptr<Watcher> watcher;
};

} // namespace support
