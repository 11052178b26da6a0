#include "tests/support/ProgramTree.h"

#include <QDir>
#include <QtTest>

#include <cstdio>

#include <sys/stat.h>

using support::ProgramTree;
using support::Run;

namespace {

const QString ours = QStringLiteral(VORN_DEVICE_LIBRARY);
const QString tiny = QStringLiteral(VORN_TINYUNIT_DIR "/libVornAux2.so");
const QString reportMode = QStringLiteral("--systemreport");
const QString resetMode = QStringLiteral("--factorydefault");

} // namespace

/** The real program among locales, closed streams, pipes and the loader's search paths. */
class ExecutablePosixTest : public QObject
{
    Q_OBJECT

private slots:
    void report_isLatin1InEveryLocale_data();
    void report_isLatin1InEveryLocale();
    void report_withClosedStreams_data();
    void report_withClosedStreams();
    void reset_outlivesItsReader();
    void report_endsAtTheLimitOfFiles();
    void report_hasTheNameThatWasGiven_data();
    void report_hasTheNameThatWasGiven();
    void library_isReplacedBySearchPath();
    void library_withoutOperationIsRefused_data();
    void library_withoutOperationIsRefused();
    void logs_stayOutIfTheyArePipes();
};

void ExecutablePosixTest::report_isLatin1InEveryLocale_data()
{
    QTest::addColumn<QString>("locale");
    for (const char *locale : {"C", "C.UTF-8", "POSIX", "de_DE.UTF-8", "ja_JP.SJIS", "none"})
        QTest::newRow(locale) << QString::fromLatin1(locale);
}

void ExecutablePosixTest::report_isLatin1InEveryLocale()
{
    QFETCH(QString, locale);
    ProgramTree tree(tiny);
    tree.environment.insert(QStringLiteral("LC_ALL"), locale);
    tree.environment.insert(QStringLiteral("TINYUNIT_CODE"), QStringLiteral("5"));
    tree.setBiosVersion("\xE9\n");
    tree.write(QStringLiteral("log/HardwareErrorLog.log"), "\x80\xC3\xA9\xFF\n");
    const Run run = tree.run({reportMode, QStringLiteral("r\u00E9port \u20AC.txt")});
    QCOMPARE(run.errors, QByteArray("failed to LoadLibrary(\"jida.dll\")\n"));
    const QByteArray report = tree.read(QStringLiteral("r\u00E9port \u20AC.txt"));
    QVERIFY(report.contains("Total run time above 80\xB0"
                            "C: Error(5) tiny %1 caf\xE9 %2\xFF\n"));
    QVERIFY(report.contains("File:HardwareErrorLog.log:\n\x80\xC3\xA9\xFF\n\n"));
    QVERIFY(!report.contains("\xC2\xB0"));
}

void ExecutablePosixTest::report_withClosedStreams_data()
{
    QTest::addColumn<QString>("closing");
    QTest::newRow("all") << QStringLiteral("<&- >&- 2>&-");
    QTest::newRow("input") << QStringLiteral("<&-");
    QTest::newRow("output") << QStringLiteral(">&-");
    QTest::newRow("errors") << QStringLiteral("2>&-");
}

void ExecutablePosixTest::report_withClosedStreams()
{
    QFETCH(QString, closing);
    const ProgramTree tree(tiny); // no board library: there is a line for the error stream
    const QByteArray expected = tree.report();
    QVERIFY(expected.contains("End of report"));
    const Run run = tree.runOther(QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("exec \"$0\" \"$@\" ") + closing, tree.program(),
            reportMode, QStringLiteral("closed.txt")});
    QVERIFY(run.endedNormally);
    QCOMPARE(run.exitCode, 0);
    const QByteArray report = tree.read(QStringLiteral("closed.txt"));
    QVERIFY(report.startsWith("\nSystem"));
    QCOMPARE(report.mid(report.indexOf('\n', 1) + 1), expected);
}

void ExecutablePosixTest::reset_outlivesItsReader()
{
    ProgramTree tree(tiny);
    tree.environment.insert(QStringLiteral("TINYUNIT_CODE"), QStringLiteral("5"));
    // A process that Qt starts ignores the signal of a broken pipe; one that a shell starts
    // doesn't.
    tree.runOther(QStringLiteral("env"),
        {QStringLiteral("--default-signal=PIPE"), QStringLiteral("/bin/sh"), QStringLiteral("-c"),
            QStringLiteral("{ \"$0\" \"$1\"; echo $? > status; } 2>&1 | :"), tree.program(),
            resetMode});
    QCOMPARE(tree.read(QStringLiteral("status")), QByteArray("0\n"));
}

/** The system ends a process that writes beyond its limit, unless that wants to be told instead. */
void ExecutablePosixTest::report_endsAtTheLimitOfFiles()
{
    const ProgramTree tree(tiny);
    const QByteArray expected = tree.report();
    QVERIFY(expected.size() > 4096);
    const Run run = tree.runOther(QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("ulimit -f 4; exec \"$0\" \"$@\""), tree.program(),
            reportMode, QStringLiteral("limited.txt")});
    QVERIFY(run.endedNormally);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QByteArray("failed to LoadLibrary(\"jida.dll\")\n"));
    const QByteArray report = tree.read(QStringLiteral("limited.txt"));
    QCOMPARE(report.size(), 4 * 512); // the shell counts in blocks
    QVERIFY(expected.startsWith(report.mid(report.indexOf('\n', 1) + 1)));
}

void ExecutablePosixTest::report_hasTheNameThatWasGiven_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("Latin-1") << QByteArray("r\xE9port.txt");
    QTest::newRow("no character at all") << QByteArray("\xFF\xFE\x80.txt");
    QTest::newRow("half a character") << QByteArray("\xE2\x82.txt");
    QTest::newRow("more than the shortest form") << QByteArray("\xC1\xA1.txt");
    QTest::newRow("half of a pair") << QByteArray("\xED\xA0\x80.txt");
    QTest::newRow("character and its parts") << QByteArray("e\xCC\x81\xC3\xA9.txt");
    QTest::newRow("like a resource's") << QByteArray(":/VornSettings.txt");
    QTest::newRow("control characters") << QByteArray("\x01\x7F\n.txt");
}

void ExecutablePosixTest::report_hasTheNameThatWasGiven()
{
    QFETCH(QByteArray, name);
    const ProgramTree tree(tiny);
    const QByteArray folder = QFile::encodeName(tree.path(QStringLiteral("reports")));
    QVERIFY(QDir().mkpath(tree.path(QStringLiteral("reports/:"))));
    // Arguments of a QProcess are text, so the name goes through a file.
    tree.write(QStringLiteral("name"), name);
    const Run run = tree.runOther(QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("cd reports; exec \"$0\" \"$1\" \"$(cat ../name)\""),
            tree.program(), reportMode});
    QCOMPARE(run.exitCode, 0);
    struct stat report {
    };
    QCOMPARE(stat((folder + '/' + name).constData(), &report), 0);
    QVERIFY(report.st_size > 4096);
    remove((folder + '/' + name).constData());
    QVERIFY(QDir().rmdir(tree.path(QStringLiteral("reports/:"))));
    QVERIFY(QDir().rmdir(tree.path(QStringLiteral("reports")))); // there was nothing else
}

void ExecutablePosixTest::library_isReplacedBySearchPath()
{
    ProgramTree tree(ours);
    QVERIFY(!tree.report().contains("tiny"));
    tree.putIn(tiny, QStringLiteral("log/libVornAux2.so"));
    tree.environment.insert(QStringLiteral("LD_LIBRARY_PATH"), tree.path(QStringLiteral("log")));
    QVERIFY(tree.report().contains("\nVornaux API: Error(18) tiny error\n"));
}

void ExecutablePosixTest::library_withoutOperationIsRefused_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QStringList>("arguments");
    for (const char *operation : {"Buzzer_getVolume", "Can_setBaudrate", "Adc_getVoltage"}) {
        const auto row = [operation](const char *mode, const QStringList &arguments) {
            QTest::addRow("%s, %s", operation, mode) << QString::fromLatin1(operation) << arguments;
        };
        row("window", {});
        row("report", {reportMode, QStringLiteral("refused.txt")});
        row("reset", {resetMode});
    }
}

/** Whatever the operation is for: half a reset, or an empty report, would be worse than none. */
void ExecutablePosixTest::library_withoutOperationIsRefused()
{
    QFETCH(QString, operation);
    QFETCH(QStringList, arguments);
    ProgramTree tree(QStringLiteral(VORN_TINYUNIT_DIR "/without_%1/libVornAux2.so").arg(operation));
    tree.environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    tree.environment.insert(QStringLiteral("TINYUNIT_CALLED"), tree.path(QStringLiteral("called")));
    const Run run = tree.run(arguments);
    QVERIFY(run.endedNormally);
    QCOMPARE(run.exitCode, 127); // the loader's
    QVERIFY(run.errors.contains("undefined symbol: " + operation.toLatin1()));
    QVERIFY(!QFile::exists(tree.path(QStringLiteral("refused.txt"))));
    QVERIFY(!QFile::exists(tree.path(QStringLiteral("called"))));
    tree.replaceDeviceLibrary(tiny); // which does tell when it is called
    tree.report();
    QVERIFY(QFile::exists(tree.path(QStringLiteral("called"))));
}

void ExecutablePosixTest::logs_stayOutIfTheyArePipes()
{
    const ProgramTree tree(tiny);
    const QByteArray pipe = QFile::encodeName(tree.path(QStringLiteral("bin/VornAuxService.log")));
    QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
    QCOMPARE(support::section(tree.report(), "Log Files"), QByteArray());
}

QTEST_GUILESS_MAIN(ExecutablePosixTest)
#include "tst_executable_posix.moc"
