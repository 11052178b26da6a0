#include "tests/support/system.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <dlfcn.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

namespace support {

namespace {

qint64 statusLine(const char *name)
{
    QFile file(QStringLiteral("/proc/self/status"));
    const auto lines = (file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray()).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(name))
            return line.mid(int(qstrlen(name))).trimmed().split(' ').constFirst().toLongLong() *
                   1024;
    }
    return -1;
}

} // namespace

bool isPosix()
{
    return true;
}

QString programFile(const QString &name)
{
    return name;
}

int openHandles()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files).size());
}

int threads()
{
    const QDir tasks(QStringLiteral("/proc/self/task"));
    return int(tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

qint64 residentMemory()
{
    return statusLine("VmRSS:");
}

qint64 peakMemory()
{
    return statusLine("VmHWM:");
}

qint64 allocatedMemory()
{
    const auto info = ::mallinfo2();
    return qint64(info.uordblks + info.hblkhd);
}

void makeMemoryCountable()
{
    ::mallopt(M_ARENA_MAX, 1); // only the first arena's memory is told
}

QByteArrayList oddFiles(const QString &folder)
{
    const QByteArray pipe = QFile::encodeName(folder) + "/pipe.hex";
    const QByteArray loop = QFile::encodeName(folder) + "/loop.hex";
    if (::mkfifo(pipe.constData(), 0600) != 0 || ::symlink("loop.hex", loop.constData()) != 0)
        qFatal("no pipe");
    return {pipe, loop, "/dev/zero", QByteArray(5000, 'x')};
}

QByteArray secondBefore1970()
{
    return "Wed Dec 31 23:59:59 1969";
}

QStringList zombies()
{
    QStringList found;
    QFile children(
        QStringLiteral("/proc/self/task/%1/children").arg(QCoreApplication::applicationPid()));
    if (!children.open(QIODevice::ReadOnly))
        return found;
    const QString pids = QString::fromLatin1(children.readAll());
    for (const QString &pid : pids.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
        if (stat.open(QIODevice::ReadOnly) && stat.readAll().contains(") Z "))
            found << pid;
    }
    return found;
}

Procedure deviceProcedure(const char *name)
{
    return reinterpret_cast<Procedure>(dlsym(RTLD_NEXT, name));
}

class SystemBoxes::Watcher
{
};

SystemBoxes::SystemBoxes(qint64) {}

SystemBoxes::~SystemBoxes() = default;

QStringList SystemBoxes::take()
{
    return {};
}

} // namespace support
