#include "tests/support/literals.h"

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <csignal>

using namespace support;

namespace {

constexpr int patience = 60'000; // milliseconds

} // namespace

/** `./dev run` with the programs that are built already, as somebody at a terminal has it. */
class DevTest : public QObject
{
    Q_OBJECT

private slots:
    /** A checkout of its own, in which nothing is missing and all has been built. */
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        const QDir root(folder->path());
        for (const auto &made : {"programs"_s, "temporary"_s, "runtime"_s, "build/release"_s})
            QVERIFY(root.mkpath(made));
        QVERIFY(QFile::setPermissions(
            root.filePath("runtime"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QVERIFY(QFile::copy(VORN_SOURCE_DIR "/dev"_s, root.filePath("dev"_s)));
        QVERIFY(QFile::copy(VORN_SOURCE_DIR "/packages.txt"_s, root.filePath("packages.txt"_s)));
        QVERIFY(QFile::link(QStringLiteral(VORN_BIN_DIR), root.filePath("build/release/bin"_s)));
        putScript("programs/cmake"_s, "exit 0");
        putScript("programs/dpkg-query"_s, "echo installed");

        environment = QProcessEnvironment::systemEnvironment();
        environment.insert(
            "PATH"_s, root.filePath("programs"_s) + QLatin1Char(':') + environment.value("PATH"_s));
        environment.insert("TMPDIR"_s, root.filePath("temporary"_s));
        environment.insert("XDG_RUNTIME_DIR"_s, root.filePath("runtime"_s));
        environment.insert("QT_QPA_PLATFORM"_s, "offscreen"_s);
        environment.insert("DISPLAY"_s, ":0"_s); // that there is one is enough
        environment.insert("VORN_UNIT"_s, root.filePath("unit.sqlite"_s));
        environment.insert("VORN_JOURNAL"_s, root.filePath("journal"_s));
        environment.remove("VORN_SERIAL_DIR"_s);
    }

    void leavesNothingWhenInterrupted_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<bool>("toAll");
        QTest::newRow("Ctrl+C") << SIGINT << true; // a terminal tells all that run in it
        QTest::newRow("the terminal is closed") << SIGHUP << true;
        QTest::newRow("the script alone is asked to end") << SIGTERM << false;
    }

    void leavesNothingWhenInterrupted()
    {
        QFETCH(int, signal);
        QFETCH(bool, toAll);
        const QDir temporary(folder->filePath("temporary"_s));
        QProcess script;
        script.setProcessEnvironment(environment);
        script.start("setsid"_s, {"bash"_s, folder->filePath("dev"_s), "run"_s});
        QVERIFY(script.waitForStarted(patience));
        const auto group = pid_t(script.processId());
        const auto guard = qScopeGuard([group] { ::kill(-group, SIGKILL); });
        // The window is there, and so are the lines.
        QTRY_VERIFY_WITH_TIMEOUT(
            QFileInfo(folder->filePath("journal"_s)).size() > 0 &&
                temporary.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() == 1,
            patience);
        QVERIFY(::kill(toAll ? -group : group, signal) == 0);
        QVERIFY(script.waitForFinished(patience));
        QVERIFY(script.exitStatus() == QProcess::CrashExit || script.exitCode() != 0);
        QCOMPARE(temporary.entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
        QTRY_VERIFY_WITH_TIMEOUT(::kill(-group, 0) == -1 && errno == ESRCH, patience);
    }

private:
    void putScript(const QString &name, const QByteArray &text)
    {
        QFile file(folder->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + text + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    std::unique_ptr<QTemporaryDir> folder;
    QProcessEnvironment environment;
};

QTEST_GUILESS_MAIN(DevTest)
#include "tst_dev_posix.moc"
