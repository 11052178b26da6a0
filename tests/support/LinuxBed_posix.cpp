#include "tests/support/LinuxBed_posix.h"

#include "tests/support/literals.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QtGlobal>

#include <link.h>
#include <string>
#include <string_view>

namespace support {

namespace {

constexpr int patience = 120'000; // milliseconds

/** What is loaded before all else: what plays the machine, and before that a sanitizer that is in
 *  this process, and so in what runs in the bed; it looks for what throws when it is loaded, which
 *  not every program has by itself. */
QString preloaded()
{
    std::string sanitizer;
    ::dl_iterate_phdr(
        [](dl_phdr_info *object, std::size_t, void *found) {
            const std::string_view file = object->dlpi_name;
            if (file.find("/libasan.so") == file.npos &&
                file.find("/libclang_rt.asan-") == file.npos)
                return 0;
            *static_cast<std::string *>(found) = std::string(file) + " libstdc++.so.6 ";
            return 1;
        },
        &sanitizer);
    return QString::fromStdString(sanitizer) + "libumockdev-preload.so.0"_s;
}

/** Copies all files below a folder to those of the same names below another. */
void copyTree(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        const QString target = to + file.mid(from.size());
        QDir().mkpath(QFileInfo(target).path());
        QFile::remove(target);
        if (!QFile::copy(file, target))
            qFatal("%s can't be copied", qPrintable(file));
    }
}

} // namespace

QString LinuxBed::missing()
{
    return QStandardPaths::findExecutable("umockdev-run"_s).isEmpty() ? "umockdev isn't installed"_s
                                                                      : QString();
}

QString LinuxBed::folderOf(const QString &machine)
{
    return QStringLiteral(VORN_MACHINES_DIR "/") + machine;
}

QStringList LinuxBed::machines()
{
    return QDir(QStringLiteral(VORN_MACHINES_DIR)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

LinuxBed::LinuxBed(const QString &machine)
{
    // The shell tells where the bed is, and then waits for the end of its input.
    keeper.start("umockdev-run"_s, {"-d"_s, folderOf(machine) + "/devices.umockdev"_s, "--"_s,
                                       "/bin/sh"_s, "-c"_s, "echo \"$UMOCKDEV_DIR\"; exec cat"_s});
    while (keeper.canReadLine() || keeper.waitForReadyRead(patience)) {
        if (keeper.canReadLine())
            break;
    }
    root = QString::fromLocal8Bit(keeper.readLine().trimmed());
    if (root.isEmpty())
        qFatal("%s: %s", qPrintable(machine), keeper.readAllStandardError().constData());
    copyTree(folderOf(machine) + "/root"_s, root);

    environment = QProcessEnvironment::systemEnvironment();
    const auto set = [this](const char *name, const QString &value) {
        environment.insert(QLatin1String(name), value);
    };
    set("LD_PRELOAD", preloaded());
    set("UMOCKDEV_DIR", root);
    set("VORNAUX_ROOT", root);
    set("LD_LIBRARY_PATH", QFileInfo(QStringLiteral(VORN_LINUXUNIT_LIBRARY)).path());
    set("HOME", home.path());
    set("XDG_STATE_HOME", home.path());
    set("VORN_DMI_DIR", root + "/sys/class/dmi/id"_s);
    set("VORN_LOG_DIR", home.path());
    // No service of the machine that the test runs on.
    set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path="_s + home.filePath("no-bus"_s));
    set("QT_QPA_PLATFORM", "offscreen"_s);
    environment.remove("VORNAUX_CONFIG"_s);
}

LinuxBed::~LinuxBed()
{
    keeper.closeWriteChannel();
    keeper.waitForFinished(patience);
}

QString LinuxBed::path(const QString &name) const
{
    return root + name;
}

LinuxBed::Run LinuxBed::run(const QString &program, const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished(patience) || process.exitStatus() != QProcess::NormalExit)
        qFatal("%s %s", qPrintable(program), qPrintable(process.errorString()));
    Run left{process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    if (left.errors.contains("Sanitizer") || left.errors.contains("runtime error:"))
        qFatal("%s", left.errors.constData());
    return left;
}

QByteArray LinuxBed::report() const
{
    const auto file = home.filePath("report.txt"_s);
    QFile::remove(file);
    run(QStringLiteral(VORN_BIN_DIR "/VornSettings"), {"--systemreport"_s, file});
    QFile written(file);
    if (!written.open(QIODevice::ReadOnly))
        return {};
    const auto all = written.readAll();
    return all.mid(all.indexOf('\n', 1) + 1);
}

} // namespace support
