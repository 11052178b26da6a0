#include "devicetools/trace/Trace.h"
#include "tests/support/ProgramTree.h"

#include <QElapsedTimer>
#include <QtTest>

#include <memory>

#include <signal.h>
#include <sys/stat.h>

using namespace support;

namespace {

const QString tool = QStringLiteral(VORN_TRACER);
const QString writer = VORN_TEST_PROGRAMS "/unitwriter"_s;
const QString report = "--systemreport"_s;
constexpr int patience = 30'000; // milliseconds

QStringList shell(const QByteArray &script)
{
    return {"--"_s, "/bin/sh"_s, "-c"_s, QString::fromLatin1(script)};
}

} // namespace

/** The tool among signals, scripts, the loader's search paths and full disks. */
class VorntracePosixTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        tree = std::make_unique<ProgramTree>(QStringLiteral(VORN_DEVICE_LIBRARY));
        tree->environment.insert("ASAN_OPTIONS"_s,
            tree->environment.value("ASAN_OPTIONS"_s) + ":verify_asan_link_order=0"_s);
        QDir(tree->path("log"_s)).mkpath("temporary"_s);
        tree->environment.insert("TMPDIR"_s, tree->path("log/temporary"_s));
    }

    void exitCode_passesThrough_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : {0, 1, 3, 42, 127, 255})
            QTest::newRow(qPrintable(QString::number(code))) << code;
    }

    void exitCode_passesThrough()
    {
        QFETCH(int, code);
        const auto script = "exit " + QByteArray::number(code);
        const auto run = tree->runOther(tool, QStringList{"record"_s} + shell(script));
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, code);
    }

    void signal_endsTheToolAsTheProgram()
    {
        // A sanitizer in the tracer would take the shell's SEGV for a finding.
        const auto name = "ASAN_OPTIONS"_s;
        tree->environment.insert(name, tree->environment.value(name) + ":handle_segv=0"_s);
        for (const char *signal : {"SEGV", "KILL", "TERM", "ABRT"}) {
            const auto script = QByteArray("kill -") + signal + " $$";
            const auto run = tree->runOther(tool, QStringList{"record"_s} + shell(script));
            QVERIFY2(!run.endedNormally, signal);
        }
    }

    void signal_reachesTheProgram_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("HUP") << SIGHUP;
        QTest::newRow("INT") << SIGINT;
        QTest::newRow("QUIT") << SIGQUIT;
        QTest::newRow("USR1") << SIGUSR1;
        QTest::newRow("TERM") << SIGTERM;
        QTest::newRow("PIPE") << SIGPIPE;
    }

    void signal_reachesTheProgram()
    {
        QFETCH(int, signal);
        QProcess process;
        tree->prepare(process);
        const auto script = "trap 'exit 9' %1; echo ready; while :; do sleep 0.05; done"_s;
        process.start(tool, {"record"_s, "--"_s, "/bin/sh"_s, "-c"_s,
                                script.arg(QString::fromLatin1(QTest::currentDataTag()))});
        QVERIFY(process.waitForReadyRead(patience));
        ::kill(pid_t(process.processId()), signal);
        QVERIFY(process.waitForFinished(patience));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 9);
    }

    void stoppedProgram_goesOn()
    {
        QProcess process;
        tree->prepare(process);
        process.start(tool, QStringList{"record"_s} + shell("echo ready; kill -STOP $$; exit 4"));
        QVERIFY(process.waitForReadyRead(patience));
        const auto state = [&] {
            QFile file("/proc/%1/stat"_s.arg(process.processId()));
            if (!file.open(QIODevice::ReadOnly))
                return QByteArray();
            const auto text = file.readAll();
            return text.mid(text.lastIndexOf(')') + 2, 1);
        };
        QTRY_COMPARE_WITH_TIMEOUT(state(), QByteArray("T"), patience);
        ::kill(pid_t(process.processId()), SIGCONT);
        QVERIFY(process.waitForFinished(patience));
        QCOMPARE(process.exitCode(), 4);
    }

    void record_findsTheLibraryThatTheProgramFinds_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"run path", "LD_LIBRARY_PATH", "script"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void record_findsTheLibraryThatTheProgramFinds()
    {
        QFETCH(QString, way);
        const auto tiny = VORN_TINYUNIT_DIR "/libVornAux2.so"_s;
        tree->environment.insert("TINYUNIT_CODE"_s, "0"_s);
        const auto file = tree->path("report.txt"_s);
        QStringList command{tree->program(), report, file};
        if (way == "LD_LIBRARY_PATH"_s)
            tree->environment.insert(way, QStringLiteral(VORN_TINYUNIT_DIR));
        else
            tree->replaceDeviceLibrary(tiny);
        if (way == "script"_s)
            command = shell("exec \"$0\" \"$@\"").mid(1) + command;
        const auto run = tree->runOther(
            tool, QStringList{"record"_s, "--output"_s, "trace"_s, "--"_s} + command);
        QVERIFY2(run.exitCode == 0, run.errors.constData());
        QVERIFY(tree->read("report.txt"_s).contains("tiny reason"));
        QVERIFY(tree->read("trace"_s).contains("= \"tiny reason\"\n"));
    }

    void record_tellsThatTheDiskIsFull()
    {
        const auto run = tree->runOther(tool,
            {"record"_s, "--output"_s, "/dev/full"_s, "--"_s, writer, "count"_s, "key"_s, "3"_s});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errors.contains("can't be written"), run.errors.constData());
    }

    /** A program that closes its streams or leads them elsewhere is traced to where they were. */
    void record_keepsItsErrorStream()
    {
        const auto script = "\"" + writer.toLatin1() + "\" count key 1";
        const auto run = tree->runOther(tool, QStringList{"record"_s} + shell(script));
        QVERIFY2(run.errors.endsWith("T1 Settings_release(#1)\n"), run.errors.constData());
    }

    void record_leavesNothingBehind()
    {
        tree->runOther(tool, QStringList{"record"_s} + shell("kill -TERM $$"));
        QVERIFY(QDir(tree->path("log/temporary"_s)).isEmpty());
    }

    void replay_findsScriptsAndPaths()
    {
        tree->write("trace"_s, "# vorntrace 1\nT1 Settings_create() = #1\n"
                               "T1 Settings_setString(#1, \"key\", \"1\") = 0\n"
                               "T1 Settings_getString(#1, \"key\", 32) = 0 [\"1\"]\n");
        // A folder with what separates names in the loader's lists, and a program from the search
        // path.
        const auto folder = tree->path("log/a b:c"_s);
        QDir().mkpath(folder);
        tree->environment.insert("TMPDIR"_s, folder);
        tree->environment.insert("PATH"_s, VORN_TEST_PROGRAMS ":/usr/bin:/bin"_s);
        for (const auto &command : {QStringList{"unitwriter"_s, "count"_s, "key"_s, "1"_s},
                 QStringList(shell("exec unitwriter count key 1").mid(1))}) {
            const auto run = tree->runOther(
                tool, QStringList{"replay"_s, "--strict"_s, "trace"_s, "--"_s} + command);
            QCOMPARE(run.errors, QByteArray("vorntrace: 4 calls, 0 not in the trace\n"));
            QCOMPARE(run.exitCode, 0);
        }
    }

private:
    std::unique_ptr<ProgramTree> tree;
};

QTEST_GUILESS_MAIN(VorntracePosixTest)
#include "tst_vorntrace_posix.moc"
