#include "tests/support/ProgramTree.h"

#include <QDir>
#include <QtTest>

#include <cstdio>

#include <sys/stat.h>

using namespace support;

namespace {

const QString ours = QStringLiteral(VORN_DEVICE_LIBRARY);
const QString tiny = QStringLiteral(VORN_TINYUNIT_DIR "/libVornAux2.so");
const QString reportMode = "--systemreport"_s;
const QString resetMode = "--factorydefault"_s;

} // namespace

/** The real program among locales, closed streams, pipes and the loader's search paths. */
class ExecutablePosixTest : public QObject
{
    Q_OBJECT

private slots:
    void report_isLatin1InEveryLocale_data()
    {
        QTest::addColumn<QString>("locale");
        for (const char *locale : {"C", "C.UTF-8", "POSIX", "de_DE.UTF-8", "ja_JP.SJIS", "none"})
            QTest::newRow(locale) << QString::fromLatin1(locale);
    }

    void report_isLatin1InEveryLocale()
    {
        QFETCH(QString, locale);
        ProgramTree tree(tiny);
        tree.environment.insert("LC_ALL"_s, locale);
        tree.environment.insert("TINYUNIT_CODE"_s, "5"_s);
        tree.setBiosVersion("\xE9\n");
        tree.write("log/HardwareErrorLog.log"_s, "\x80\xC3\xA9\xFF\n");
        const Run run = tree.run({reportMode, QStringLiteral("r\u00E9port \u20AC.txt")});
        QCOMPARE(run.errors, QByteArray("failed to LoadLibrary(\"jida.dll\")\n"));
        const QByteArray report = tree.read(QStringLiteral("r\u00E9port \u20AC.txt"));
        QVERIFY(report.contains("Total run time above 80\xB0"
                                "C: Error(5) tiny %1 caf\xE9 %2\xFF\n"));
        QVERIFY(report.contains("File:HardwareErrorLog.log:\n\x80\xC3\xA9\xFF\n\n"));
        QVERIFY(!report.contains("\xC2\xB0"));
    }

    void report_withClosedStreams_data()
    {
        QTest::addColumn<QString>("closing");
        QTest::newRow("all") << "<&- >&- 2>&-"_s;
        QTest::newRow("input") << "<&-"_s;
        QTest::newRow("output") << ">&-"_s;
        QTest::newRow("errors") << "2>&-"_s;
    }

    void report_withClosedStreams()
    {
        QFETCH(QString, closing);
        const ProgramTree tree(tiny); // no board library: there is a line for the error stream
        const QByteArray expected = tree.report();
        QVERIFY(expected.contains("End of report"));
        const Run run = tree.runOther("/bin/sh"_s, {"-c"_s, "exec \"$0\" \"$@\" "_s + closing,
                                                       tree.program(), reportMode, "closed.txt"_s});
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 0);
        const QByteArray report = tree.read("closed.txt"_s);
        QVERIFY(report.startsWith("\nSystem"));
        QCOMPARE(report.mid(report.indexOf('\n', 1) + 1), expected);
    }

    void window_withoutDisplay_data()
    {
        QTest::addColumn<QStringList>("variables");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("why");
        const QStringList none;
        QTest::newRow("nothing said")
            << none << none << QByteArray("neither DISPLAY nor WAYLAND_DISPLAY leads to one");
        QTest::newRow("display that isn't there")
            << QStringList{"DISPLAY=:4711"_s} << none
            << QByteArray("could not connect to display :4711");
        QTest::newRow("unknown plugin")
            << QStringList{"QT_QPA_PLATFORM=none"_s} << none
            << QByteArray("Could not find the Qt platform plugin \"none\" in \"\"");
        QTest::newRow("unknown plugin as an option")
            << none << QStringList{"-platform"_s, "none"_s}
            << QByteArray("Could not find the Qt platform plugin \"none\" in \"\"");
    }

    void window_withoutDisplay()
    {
        QFETCH(QStringList, variables);
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, why);
        const ProgramTree tree(tiny);
        const QStringList clean{
            "-u"_s, "DISPLAY"_s, "-u"_s, "WAYLAND_DISPLAY"_s, "-u"_s, "QT_QPA_PLATFORM"_s};
        const Run run =
            tree.runOther("env"_s, clean + variables + QStringList{tree.program()} + arguments);
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(
            run.errors, "VornSettings: there is no display to show the window on: " + why + '\n');
    }

    /** The modes without a window don't ask what there is to show one on. */
    void modesWithoutDisplay()
    {
        const ProgramTree tree(tiny);
        const QStringList clean{
            "-u"_s, "DISPLAY"_s, "-u"_s, "WAYLAND_DISPLAY"_s, "QT_QPA_PLATFORM=none"_s};
        const Run report =
            tree.runOther("env"_s, clean + QStringList{tree.program(), reportMode, "r.txt"_s});
        QCOMPARE(report.exitCode, 0);
        QVERIFY(tree.read("r.txt"_s).contains("End of report"));
        const Run reset = tree.runOther("env"_s, clean + QStringList{tree.program(), resetMode});
        QVERIFY(reset.endedNormally);
        QCOMPARE(reset.exitCode, 0);
    }

    void reset_outlivesItsReader()
    {
        ProgramTree tree(tiny);
        tree.environment.insert("TINYUNIT_CODE"_s, "5"_s);
        // A process that Qt starts ignores the signal of a broken pipe; one that a shell starts
        // doesn't.
        tree.runOther("env"_s,
            {"--default-signal=PIPE"_s, "/bin/sh"_s, "-c"_s,
                "{ \"$0\" \"$1\"; echo $? > status; } 2>&1 | :"_s, tree.program(), resetMode});
        QCOMPARE(tree.read("status"_s), QByteArray("0\n"));
    }

    /** The system ends a process that writes beyond its limit, unless that wants to be told
     * instead. */
    void report_endsAtTheLimitOfFiles()
    {
        const ProgramTree tree(tiny);
        const QByteArray expected = tree.report();
        QVERIFY(expected.size() > 4096);
        const Run run =
            tree.runOther("/bin/sh"_s, {"-c"_s, "ulimit -f 4; exec \"$0\" \"$@\""_s, tree.program(),
                                           reportMode, "limited.txt"_s});
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.errors, QByteArray("failed to LoadLibrary(\"jida.dll\")\n"));
        const QByteArray report = tree.read("limited.txt"_s);
        QCOMPARE(report.size(), 4 * 512); // the shell counts in blocks
        QVERIFY(expected.startsWith(report.mid(report.indexOf('\n', 1) + 1)));
    }

    void report_hasTheNameThatWasGiven_data()
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

    void report_hasTheNameThatWasGiven()
    {
        QFETCH(QByteArray, name);
        const ProgramTree tree(tiny);
        const QByteArray folder = QFile::encodeName(tree.path("reports"_s));
        QVERIFY(QDir().mkpath(tree.path("reports/:"_s)));
        // Arguments of a QProcess are text, so the name goes through a file.
        tree.write("name"_s, name);
        const Run run = tree.runOther(
            "/bin/sh"_s, {"-c"_s, "cd reports; exec \"$0\" \"$1\" \"$(cat ../name)\""_s,
                             tree.program(), reportMode});
        QCOMPARE(run.exitCode, 0);
        struct stat report {
        };
        QCOMPARE(stat((folder + '/' + name).constData(), &report), 0);
        QVERIFY(report.st_size > 4096);
        remove((folder + '/' + name).constData());
        QVERIFY(QDir().rmdir(tree.path("reports/:"_s)));
        QVERIFY(QDir().rmdir(tree.path("reports"_s))); // there was nothing else
    }

    void library_isReplacedBySearchPath()
    {
        ProgramTree tree(ours);
        QVERIFY(!tree.report().contains("tiny"));
        tree.putIn(tiny, "log/libVornAux2.so"_s);
        tree.environment.insert("LD_LIBRARY_PATH"_s, tree.path("log"_s));
        QVERIFY(tree.report().contains("\nVornaux API: Error(18) tiny error\n"));
    }

    void library_withoutOperationIsRefused_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QStringList>("arguments");
        for (const char *operation : {"Buzzer_getVolume", "Can_setBaudrate", "Adc_getVoltage"}) {
            const auto row = [operation](const char *mode, const QStringList &arguments) {
                QTest::addRow("%s, %s", operation, mode)
                    << QString::fromLatin1(operation) << arguments;
            };
            row("window", {});
            row("report", {reportMode, "refused.txt"_s});
            row("reset", {resetMode});
        }
    }

    /** Whatever the operation is for: half a reset, or an empty report, would be worse than none.
     */
    void library_withoutOperationIsRefused()
    {
        QFETCH(QString, operation);
        QFETCH(QStringList, arguments);
        ProgramTree tree(
            QStringLiteral(VORN_TINYUNIT_DIR "/without_%1/libVornAux2.so").arg(operation));
        tree.environment.insert("QT_QPA_PLATFORM"_s, "offscreen"_s);
        tree.environment.insert("TINYUNIT_CALLED"_s, tree.path("called"_s));
        const Run run = tree.run(arguments);
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 127); // the loader's
        QVERIFY(run.errors.contains("undefined symbol: " + operation.toLatin1()));
        QVERIFY(!QFile::exists(tree.path("refused.txt"_s)));
        QVERIFY(!QFile::exists(tree.path("called"_s)));
        tree.replaceDeviceLibrary(tiny); // which does tell when it is called
        tree.report();
        QVERIFY(QFile::exists(tree.path("called"_s)));
    }

    void logs_stayOutIfTheyArePipes()
    {
        const ProgramTree tree(tiny);
        const QByteArray pipe = QFile::encodeName(tree.path("bin/VornAuxService.log"_s));
        QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
        QCOMPARE(section(tree.report(), "Log Files"), QByteArray());
    }
};

QTEST_GUILESS_MAIN(ExecutablePosixTest)
#include "tst_executable_posix.moc"
