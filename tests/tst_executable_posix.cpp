#include "tests/support/ProgramTree.h"

#include <QtTest>

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
    void library_isReplacedBySearchPath();
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

void ExecutablePosixTest::library_isReplacedBySearchPath()
{
    ProgramTree tree(ours);
    QVERIFY(!tree.report().contains("tiny"));
    tree.putIn(tiny, QStringLiteral("log/libVornAux2.so"));
    tree.environment.insert(QStringLiteral("LD_LIBRARY_PATH"), tree.path(QStringLiteral("log")));
    QVERIFY(tree.report().contains("\nVornaux API: Error(18) tiny error\n"));
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
