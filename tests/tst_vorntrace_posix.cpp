#include "devicetools/trace/Trace.h"
#include "tests/support/ProgramTree.h"

#include <QElapsedTimer>
#include <QtTest>

#include <memory>

#include <signal.h>
#include <sys/stat.h>

using support::ProgramTree;
using support::Run;

namespace {

const QString tool = QStringLiteral(VORN_TRACER);
const QString writer = QStringLiteral(VORN_TEST_PROGRAMS "/unitwriter");
const QString report = QStringLiteral("--systemreport");
constexpr int patience = 30'000; // milliseconds

QStringList shell(const QByteArray &script)
{
    return {QStringLiteral("--"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
        QString::fromLatin1(script)};
}

} // namespace

/** The tool among signals, scripts, the loader's search paths and full disks. */
class VorntracePosixTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void exitCode_passesThrough_data();
    void exitCode_passesThrough();
    void signal_endsTheToolAsTheProgram();
    void signal_reachesTheProgram_data();
    void signal_reachesTheProgram();
    void stoppedProgram_goesOn();
    void record_findsTheLibraryThatTheProgramFinds_data();
    void record_findsTheLibraryThatTheProgramFinds();
    void record_tellsThatTheDiskIsFull();
    void record_keepsItsErrorStream();
    void record_leavesNothingBehind();
    void replay_findsScriptsAndPaths();

private:
    std::unique_ptr<ProgramTree> tree;
};

void VorntracePosixTest::init()
{
    tree = std::make_unique<ProgramTree>(QStringLiteral(VORN_DEVICE_LIBRARY));
    tree->environment.insert(
        QStringLiteral("ASAN_OPTIONS"), tree->environment.value(QStringLiteral("ASAN_OPTIONS")) +
                                            QStringLiteral(":verify_asan_link_order=0"));
    QDir(tree->path(QStringLiteral("log"))).mkpath(QStringLiteral("temporary"));
    tree->environment.insert(QStringLiteral("TMPDIR"), tree->path(QStringLiteral("log/temporary")));
}

void VorntracePosixTest::exitCode_passesThrough_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 1, 3, 42, 127, 255})
        QTest::newRow(qPrintable(QString::number(code))) << code;
}

void VorntracePosixTest::exitCode_passesThrough()
{
    QFETCH(int, code);
    const auto script = "exit " + QByteArray::number(code);
    const auto run = tree->runOther(tool, QStringList{QStringLiteral("record")} + shell(script));
    QVERIFY(run.endedNormally);
    QCOMPARE(run.exitCode, code);
}

void VorntracePosixTest::signal_endsTheToolAsTheProgram()
{
    // A sanitizer in the tracer would take the shell's SEGV for a finding.
    const auto name = QStringLiteral("ASAN_OPTIONS");
    tree->environment.insert(
        name, tree->environment.value(name) + QStringLiteral(":handle_segv=0"));
    for (const char *signal : {"SEGV", "KILL", "TERM", "ABRT"}) {
        const auto script = QByteArray("kill -") + signal + " $$";
        const auto run =
            tree->runOther(tool, QStringList{QStringLiteral("record")} + shell(script));
        QVERIFY2(!run.endedNormally, signal);
    }
}

void VorntracePosixTest::signal_reachesTheProgram_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("HUP") << SIGHUP;
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("QUIT") << SIGQUIT;
    QTest::newRow("USR1") << SIGUSR1;
    QTest::newRow("TERM") << SIGTERM;
    QTest::newRow("PIPE") << SIGPIPE;
}

void VorntracePosixTest::signal_reachesTheProgram()
{
    QFETCH(int, signal);
    QProcess process;
    tree->prepare(process);
    const auto script =
        QStringLiteral("trap 'exit 9' %1; echo ready; while :; do sleep 0.05; done");
    process.start(
        tool, {QStringLiteral("record"), QStringLiteral("--"), QStringLiteral("/bin/sh"),
                  QStringLiteral("-c"), script.arg(QString::fromLatin1(QTest::currentDataTag()))});
    QVERIFY(process.waitForReadyRead(patience));
    ::kill(pid_t(process.processId()), signal);
    QVERIFY(process.waitForFinished(patience));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 9);
}

void VorntracePosixTest::stoppedProgram_goesOn()
{
    QProcess process;
    tree->prepare(process);
    process.start(
        tool, QStringList{QStringLiteral("record")} + shell("echo ready; kill -STOP $$; exit 4"));
    QVERIFY(process.waitForReadyRead(patience));
    const auto state = [&] {
        QFile file(QStringLiteral("/proc/%1/stat").arg(process.processId()));
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

void VorntracePosixTest::record_findsTheLibraryThatTheProgramFinds_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"run path", "LD_LIBRARY_PATH", "script"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void VorntracePosixTest::record_findsTheLibraryThatTheProgramFinds()
{
    QFETCH(QString, way);
    const auto tiny = QStringLiteral(VORN_TINYUNIT_DIR "/libVornAux2.so");
    tree->environment.insert(QStringLiteral("TINYUNIT_CODE"), QStringLiteral("0"));
    const auto file = tree->path(QStringLiteral("report.txt"));
    QStringList command{tree->program(), report, file};
    if (way == QStringLiteral("LD_LIBRARY_PATH"))
        tree->environment.insert(way, QStringLiteral(VORN_TINYUNIT_DIR));
    else
        tree->replaceDeviceLibrary(tiny);
    if (way == QStringLiteral("script"))
        command = shell("exec \"$0\" \"$@\"").mid(1) + command;
    const auto run =
        tree->runOther(tool, QStringList{QStringLiteral("record"), QStringLiteral("--output"),
                                 QStringLiteral("trace"), QStringLiteral("--")} +
                                 command);
    QVERIFY2(run.exitCode == 0, run.errors.constData());
    QVERIFY(tree->read(QStringLiteral("report.txt")).contains("tiny reason"));
    QVERIFY(tree->read(QStringLiteral("trace")).contains("= \"tiny reason\"\n"));
}

void VorntracePosixTest::record_tellsThatTheDiskIsFull()
{
    const auto run = tree->runOther(
        tool, {QStringLiteral("record"), QStringLiteral("--output"), QStringLiteral("/dev/full"),
                  QStringLiteral("--"), writer, QStringLiteral("count"), QStringLiteral("key"),
                  QStringLiteral("3")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.errors.contains("can't be written"), run.errors.constData());
}

/** A program that closes its streams or leads them elsewhere is traced to where they were. */
void VorntracePosixTest::record_keepsItsErrorStream()
{
    const auto script = "\"" + writer.toLatin1() + "\" count key 1";
    const auto run = tree->runOther(tool, QStringList{QStringLiteral("record")} + shell(script));
    QVERIFY2(run.errors.endsWith("T1 Settings_release(#1)\n"), run.errors.constData());
}

void VorntracePosixTest::record_leavesNothingBehind()
{
    tree->runOther(tool, QStringList{QStringLiteral("record")} + shell("kill -TERM $$"));
    QVERIFY(QDir(tree->path(QStringLiteral("log/temporary"))).isEmpty());
}

void VorntracePosixTest::replay_findsScriptsAndPaths()
{
    tree->write(QStringLiteral("trace"), "# vorntrace 1\nT1 Settings_create() = #1\n"
                                         "T1 Settings_setString(#1, \"key\", \"1\") = 0\n"
                                         "T1 Settings_getString(#1, \"key\", 32) = 0 [\"1\"]\n");
    // A folder with what separates names in the loader's lists, and a program from the search path.
    const auto folder = tree->path(QStringLiteral("log/a b:c"));
    QDir().mkpath(folder);
    tree->environment.insert(QStringLiteral("TMPDIR"), folder);
    tree->environment.insert(
        QStringLiteral("PATH"), QStringLiteral(VORN_TEST_PROGRAMS ":/usr/bin:/bin"));
    for (const auto &command : {QStringList{QStringLiteral("unitwriter"), QStringLiteral("count"),
                                    QStringLiteral("key"), QStringLiteral("1")},
             QStringList(shell("exec unitwriter count key 1").mid(1))}) {
        const auto run =
            tree->runOther(tool, QStringList{QStringLiteral("replay"), QStringLiteral("--strict"),
                                     QStringLiteral("trace"), QStringLiteral("--")} +
                                     command);
        QCOMPARE(run.errors, QByteArray("vorntrace: 4 calls, 0 not in the trace\n"));
        QCOMPARE(run.exitCode, 0);
    }
}

QTEST_GUILESS_MAIN(VorntracePosixTest)
#include "tst_vorntrace_posix.moc"
