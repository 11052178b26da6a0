#include "devicetools/trace/Trace.h"
#include "tests/support/ProgramTree.h"
#include "virtualunit/VirtualUnit.h"

#include <QElapsedTimer>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace support;

namespace {

const QString ours = QStringLiteral(VORN_DEVICE_LIBRARY);
const QString tiny =
    QStringLiteral(VORN_TINYUNIT_DIR "/" VORN_LIBRARY_PREFIX "VornAux2" VORN_LIBRARY_SUFFIX);
const QString writer = VORN_TEST_PROGRAMS "/unitwriter"_s;
const QString report = "--systemreport"_s;

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/** All but the line with the date. */
QByteArray undated(const QByteArray &text)
{
    return text.mid(text.indexOf('\n', 1) + 1);
}

QByteArray withoutVersion(const QByteArray &text)
{
    return text.startsWith("# vorntrace 1\n") ? text.mid(14) : "no version line";
}

} // namespace

/** The tool as a user starts it, around programs on our unit, on a foreign one and on none. */
class VorntraceTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        tree = std::make_unique<ProgramTree>(ours);
        tree->letOthersFindUnit();
        tree->environment.insert("QT_QPA_PLATFORM"_s, "offscreen"_s);
        tree->environment.remove("VORN_JOURNAL"_s);
        // The sanitizer minds that a library is loaded before it.
        const auto options = tree->environment.value("ASAN_OPTIONS"_s);
        tree->environment.insert("ASAN_OPTIONS"_s, options + ":verify_asan_link_order=0"_s);
    }

    void helps()
    {
        const auto run = [&](const char *arguments) {
            return tree->runOther(QStringLiteral(VORN_TRACER), words(arguments));
        };
        QCOMPARE(run("--help").exitCode, 0);
        QVERIFY(run("--help").output.contains("record"));
        QVERIFY(run("record --help").output.contains("-- PROGRAM [ARGUMENTS...]"));
        QVERIFY(run("replay --help").output.contains("-- PROGRAM [ARGUMENTS...]"));
        const auto version = run("--version");
        QCOMPARE(version.exitCode, 0);
        QVERIFY2(version.output.startsWith("vorntrace 2."), version.output.constData());
    }

    void refusesWrongUsage_data()
    {
        QTest::addColumn<QString>("arguments");
        for (const char *arguments : {"", "dance", "record", "record prog", "record --", "replay",
                 "replay trace", "replay -- prog", "record --fault Buzzer_getVolume -- prog",
                 "record --fault Buzzer_dance=5 -- prog",
                 "record --fault Buzzer_getVolume=0 -- prog",
                 "record --fault Buzzer_getVolume=x -- prog",
                 "record --fault Buzzer_getVolume=5,often=1 -- prog",
                 "record --fault Buzzer_getVolume=5,times=-1 -- prog",
                 "record --fault Buzzer_create=5 -- prog",
                 "record --fault buzzer_getvolume=5 -- prog",
                 "record --delay Buzzer_getVolume=-1 -- prog", "record --strict -- prog"})
            QTest::newRow(*arguments ? arguments : "nothing") << QString::fromLatin1(arguments);
    }

    void refusesWrongUsage()
    {
        QFETCH(QString, arguments);
        const auto run = tree->runOther(
            QStringLiteral(VORN_TRACER), arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.output, QByteArray());
        QVERIFY2(run.errors.startsWith("vorntrace: "), run.errors.constData());
        QCOMPARE(run.errors.count('\n'), 1);
        if (arguments.contains("buzzer_getvolume"_s))
            QVERIFY2(
                run.errors.contains("did you mean \"Buzzer_getVolume\"?"), run.errors.constData());
    }

    void refusesWhatCantBeDone_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("program") << "record --output trace -- ./none"
                                 << QByteArray("\"./none\" can't be started: ");
        QTest::newRow("output") << "record --output none/trace -- ./none"
                                << QByteArray("can't be written");
        QTest::newRow("library") << "record --library none -- ./none"
                                 << QByteArray("can't be read");
        QTest::newRow("trace") << "replay none -- ./none" << QByteArray("can't be read");
        QTest::newRow("folder") << "replay bin -- ./none" << QByteArray("is a folder");
    }

    void refusesWhatCantBeDone()
    {
        QFETCH(QString, arguments);
        QFETCH(QByteArray, reason);
        tree->write("bin.txt"_s, "");
        QDir(tree->path(QString())).mkpath("bin"_s);
        const auto run =
            tree->runOther(QStringLiteral(VORN_TRACER), arguments.split(QLatin1Char(' ')));
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errors.contains("vorntrace: ") && run.errors.contains(reason),
            run.errors.constData());
    }

    void record_writesTheJournalsLines_data()
    {
        QTest::addColumn<QString>("profile");
        for (const auto &profile : virtualunit::profiles())
            QTest::newRow(profile.c_str()) << QString::fromStdString(profile);
    }

    /** And the report comes out of the trace as it came out of the unit. */
    void record_writesTheJournalsLines()
    {
        QFETCH(QString, profile);
        tree->runOther(VORN_BIN_DIR "/vornunit"_s, {"init"_s, profile});
        tree->environment.insert("VORN_JOURNAL"_s, tree->path("journal"_s));
        const auto first =
            trace("record --output trace", tree->program(), {report, tree->path("first.txt"_s)});
        QCOMPARE(first.exitCode, 0);
        const auto journal = tree->read("journal"_s);
        QVERIFY(journal.count('\n') > 100);
        QCOMPARE(withoutVersion(recorded()), journal);

        // Another unit is there now; nobody asks it.
        tree->replaceDeviceLibrary(tiny);
        const auto second =
            trace("replay --strict trace", tree->program(), {report, tree->path("second.txt"_s)});
        QCOMPARE(second.exitCode, 0);
        QVERIFY2(second.errors.contains("vorntrace: " + QByteArray::number(journal.count('\n')) +
                                        " calls, 0 not in the trace\n"),
            second.errors.constData());
        const auto text = undated(tree->read("first.txt"_s));
        QVERIFY(text.contains("End of report"));
        QCOMPARE(undated(tree->read("second.txt"_s)), text);
    }

    void record_asksTheLibraryThatIsNamed()
    {
        const auto library = tree->putIn(
            tiny, QStringLiteral("another " VORN_LIBRARY_PREFIX "unit" VORN_LIBRARY_SUFFIX));
        tree->environment.insert("TINYUNIT_CODE"_s, "0"_s);
        const auto run = tree->runOther(QStringLiteral(VORN_TRACER),
            {"record"_s, "--output"_s, tracePath(), "--library"_s, library, "--"_s, tree->program(),
                report, tree->path("report.txt"_s)});
        QVERIFY2(run.exitCode == 0, run.errors.constData());
        QVERIFY(tree->read("report.txt"_s).contains("tiny reason"));
        QVERIFY(recorded().contains("= \"tiny reason\"\n"));
    }

    void record_goesToTheErrorStream()
    {
        const auto run = trace("record", writer, words("count key 1"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(withoutVersion(run.errors),
            QByteArray("T1 Settings_create() = #1\n"
                       "T1 Settings_setString(#1, \"key\", \"1\") = 0\n"
                       "T1 Settings_getString(#1, \"key\", 32) = 0 [\"1\"]\n"
                       "T1 Settings_release(#1)\n"));
    }

    void record_endsAsTheProgram()
    {
        QCOMPARE(
            trace("record --output trace", writer).exitCode, tree->runOther(writer, {}).exitCode);
        const auto run = trace(
            "record --output trace --fault Settings_setString=7", writer, words("count key 1"));
        QCOMPARE(run.exitCode, 1);
    }

    void record_tellsTimes()
    {
        trace("record --times --output trace --delay Settings_setString=60", writer,
            words("count key 2"));
        const auto calls = trace::read(recorded().toStdString()).calls;
        QCOMPARE(calls.size(), std::size_t(6));
        double last = 0;
        for (const auto &call : calls) {
            QVERIFY(call.begin && call.duration);
            QVERIFY(*call.begin >= last);
            last = *call.begin + *call.duration;
            QVERIFY(QByteArray(call.name) != "Settings_setString" || *call.duration >= 0.06);
        }
        QVERIFY(last > 0.12 && last < 60);
    }

    void record_faultsDontReachTheLibrary()
    {
        const auto run =
            trace("record --output trace --fault Settings_setString=13,after=2,times=1", writer,
                words("count key 5"));
        QCOMPARE(run.exitCode, 1); // the writer gives up at its first failure
        QVERIFY2(run.errors.contains("setString: 13 "), run.errors.constData());
        QVERIFY(recorded().contains("T1 Settings_setString(#1, \"key\", \"2\") = 0\n"));
        QVERIFY(recorded().contains("T1 Settings_setString(#1, \"key\", \"3\") = 13 fault\n"));
        const auto stored = tree->runOther(VORN_BIN_DIR "/vornunit"_s, {"get"_s, "Settings.key"_s});
        QCOMPARE(stored.output.trimmed(), QByteArray("2"));

        // From then on the library answers again, and without "times" it never does.
        trace("record --output trace --fault Buzzer_getVolume=-1,times=2", tree->program(),
            {report, tree->path("report.txt"_s)});
        QCOMPARE(recorded().count(" = -1 fault\n"), 1);
        QVERIFY(tree->read("report.txt"_s).contains("Volume: Error(-1)"));
        trace("record --output trace --fault Adc_getVoltage=5,after=3 --fault Buzzer_getVolume=6",
            tree->program(), {report, tree->path("report.txt"_s)});
        QCOMPARE(recorded().count(" = 5 fault\n"), 20);
        QCOMPARE(recorded().count(" = 6 fault\n"), 1);
    }

    void record_delays()
    {
        QElapsedTimer clock;
        clock.start();
        trace("record --output trace --delay Settings_getString=200", writer, words("count key 3"));
        QVERIFY(clock.elapsed() >= 600);
    }

    /** The tiny unit gives all handles one address. */
    void record_tellsHandlesApart()
    {
        tree->replaceDeviceLibrary(tiny);
        trace("record --output trace", tree->program(), {report, tree->path("report.txt"_s)});
        const auto calls = trace::read(recorded().toStdString()).calls;
        QVERIFY(calls.size() > 100);
        unsigned last = 0;
        for (const auto &call : calls) {
            if (QByteArray(call.name) == "Hardware_create")
                QCOMPARE(call.handle, ++last);
            else if (call.kind != trace::Call::Kind::Text)
                QVERIFY(call.handle != 0);
        }
        QVERIFY(last > 0);
    }

    void replay_needsNoLibrary()
    {
        trace("record --output trace", tree->program(), {report, tree->path("first.txt"_s)});
        const bool isGone = QFile::remove(tree->path("lib/libVornAux2.so"_s)) ||
                            QFile::remove(tree->path("bin/VornAux2.dll"_s));
        QVERIFY(isGone);
        const auto run =
            trace("replay --strict trace", tree->program(), {report, tree->path("second.txt"_s)});
        QVERIFY2(run.exitCode == 0, run.errors.constData());
        QCOMPARE(undated(tree->read("second.txt"_s)), undated(tree->read("first.txt"_s)));
    }

    void replay_showsTheSamePages()
    {
        const auto walk = VORN_TEST_PROGRAMS "/pagewalk"_s;
        tree->environment.insert("VORN_SERIAL_DIR"_s, tree->path("log"_s));
        const auto first = trace("record --output trace", walk);
        QVERIFY2(first.exitCode == 0, first.errors.constData());
        QVERIFY(first.output.count('\n') > 200);
        tree->environment.insert("VORN_UNIT"_s, tree->path("no/unit"_s));
        const auto second = trace("replay trace", walk);
        QVERIFY2(second.exitCode == 0, second.errors.constData());
        QCOMPARE(second.output, first.output);
        QVERIFY2(second.errors.contains(" 0 not in the trace"), second.errors.constData());
    }

    void replay_givesAnswersInTheirOrder()
    {
        // The writer reads a key back after each writing, and stops at what it hasn't written.
        tree->write("trace"_s, "T1 Settings_setString(#4, \"key\", \"1\") = 0\n"
                               "T1 Settings_setString(#4, \"key\", \"2\") = 0\n"
                               "T1 Settings_setString(#4, \"key\", \"3\") = 0\n"
                               "T1 Settings_getString(#4, \"key\", 32) = 0 [\"1\"]\n"
                               "T1 Settings_getString(#5, \"key\", 32) = 0 [\"2\"]\n");
        const auto run = trace("replay trace", writer, words("count key 3"));
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errors.contains("wrote 3 and read 2"), run.errors.constData());
        QVERIFY2(run.errors.contains("vorntrace: 7 calls, 1 not in the trace, the first "
                                     "Settings_create()\n"),
            run.errors.constData());
    }

    void replay_countsWhatIsNotInTheTrace()
    {
        tree->write("trace"_s, "# vorntrace 1\nT1 Settings_create() = #1\n");
        auto run = trace("replay trace", writer, words("count key 1"));
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errors.contains("setString: 2 not in the trace"), run.errors.constData());
        QVERIFY2(run.errors.endsWith("vorntrace: 3 calls, 2 not in the trace, the first "
                                     "Settings_setString(\"key\", \"1\")\n"),
            run.errors.constData());
        run = trace("replay --strict trace", writer, words("count key 1"));
        QCOMPARE(run.exitCode, 3);
    }

    void replay_takesItsTime()
    {
        tree->write("trace"_s,
            "# vorntrace 1\n0.000000 T1 Settings_create() = #1 <0.000001>\n"
            "0.000000 T1 Settings_setString(#1, \"key\", \"1\") = 0 <0.400000>\n"
            "0.500000 T1 Settings_getString(#1, \"key\", 32) = 0 [\"1\"] <0.400000>\n");
        const auto milliseconds = [&](const char *command) {
            QElapsedTimer clock;
            clock.start();
            const auto run = trace(command, writer, words("count key 1"));
            return run.exitCode == 0 ? clock.elapsed() : -1;
        };
        const auto quick = milliseconds("replay trace");
        QVERIFY(quick >= 0);
        const auto timed = milliseconds("replay --times trace");
        QVERIFY2(timed >= 800, qPrintable(QString::number(timed)));
    }

    void replay_stopsWhereTheTraceIsCutOff()
    {
        trace("record --output trace", writer, words("count key 3"));
        const auto whole = recorded();
        tree->write("trace"_s, whole.left(whole.size() - 20));
        const auto run = trace("replay trace", writer, words("count key 3"));
        QVERIFY2(run.errors.startsWith("vorntrace: The trace \""), run.errors.constData());
        QVERIFY2(
            run.errors.contains("\", line 9 is cut off and left out\n"), run.errors.constData());
        QCOMPARE(run.errors.count("cut off"), 1);
    }

    void replay_refusesGarbage()
    {
        tree->write("trace"_s, "# vorntrace 1\nT1 Buzzer_getVolume(#1) = zero\n");
        const auto run = trace("replay trace", writer, words("count key 3"));
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.errors.endsWith("trace\", line 2: \"zero\" is not a number of 32 bits\n"),
            run.errors.constData());
    }

    void replay_takesJournals()
    {
        tree->environment.insert("VORN_JOURNAL"_s, tracePath());
        QCOMPARE(tree->runOther(writer, words("count key 3")).exitCode, 0);
        tree->environment.remove("VORN_JOURNAL"_s);
        const auto run = trace("replay --strict trace", writer, words("count key 3"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.errors, QByteArray("vorntrace: 8 calls, 0 not in the trace\n"));
    }

private:
    Run trace(const char *command, const QString &program, const QStringList &arguments = {}) const
    {
        return tree->runOther(
            QStringLiteral(VORN_TRACER), words(command) + QStringList{"--"_s, program} + arguments);
    }
    QString tracePath() const { return tree->path("trace"_s); }
    QByteArray recorded() const { return tree->read("trace"_s); }

    std::unique_ptr<ProgramTree> tree;
};

QTEST_GUILESS_MAIN(VorntraceTest)
#include "tst_vorntrace.moc"
