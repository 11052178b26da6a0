#include "tests/support/CheckTest.h"
#include "tests/support/system.h"
#include "virtualunit/VirtualUnit.h"

#include <QFile>
#include <QtTest>

#include <map>

using namespace support;

namespace {

/** A library that breaks a rule, and what finds it. */
struct Broken {
    const char *library;
    const char *finding; ///< result and test
    const char *words;   ///< in what the test says
    bool waits = false;  ///< finding it takes many seconds in which nothing is computed
    bool posix = false;  ///< what it breaks is a process's own on POSIX alone
};

const Broken brokenLibraries[] = {
    {"missing", "fail functions", "missing: Battery_getTimes"},
    {"missing_setter", "fail functions", "missing: Buzzer_setVolume"},
    {"missing_text", "fail functions", "missing: deviceErrorText"},
    {"loading", "fail loading", "in loading the library"},
    {"crash", "fail answers", "in Battery_getTimes"},
    {"abort", "fail answers", "in Battery_getTimes"},
    {"exit", "fail answers", "exit code 0 in Battery_getTimes"},
    {"crash_release", "fail answers", "in Buzzer_release"},
    {"prints", "fail quiet", "reading the times"},
    {"prints_errors", "fail quiet", "reading the times"},
    {"folder", "fail folder", "the working folder was"},
    {"rounding", "fail rounding", "the rounding mode was"},
    {"thread_left", "fail threads-left", "after the last release"},
    {"descriptor", "fail descriptors-left", "leaves something open"},
    {"leak", "fail growth", "10,000 creates and releases took"},
    {"out_beyond", "fail out-bounds", "Battery_getTemperature wrote beyond the 2 bytes"},
    {"out_before", "fail out-bounds", "Battery_getTemperature"},
    {"out_far", "fail out-bounds", "Battery_getTemperature"},
    {"width_narrow", "fail out-width", "Config_getExtOnOffSigTrigTime"},
    {"width_none", "fail out-width", "Battery_getTemperature"},
    {"width_record", "fail out-width", "Battery_getTimes"},
    {"untouched", "fail out-untouched", "answered 7 and changed"},
    {"untouched_text", "fail out-untouched", "changed buffer"},
    {"flags", "warn flags", "Hardware_hasWlan gave 255"},
    {"text_no_end", "fail text-end", "no ending zero byte"},
    {"text_beyond", "fail text-bounds", "wrote beyond the 1 bytes of buffer"},
    {"text_one", "fail text-bounds", "wrote beyond the 1 bytes of buffer"},
    {"text_size", "fail text-sizes", "answered 5 for a buffer of 1"},
    {"text_prefix", "fail text-prefix", "Tex..."},
    {"fault", "fail faults", "Battery_getTemperature answered 14: an error"},
    {"code_20", "fail code-20", "Battery_getTemperature answered 20"},
    {"code_repeated", "fail code-repeated", "Diagnostics_getSSTemp"},
    {"hardware_denies", "warn code-hardware", "Telematics_getWLANPowerStatus answered 0"},
    {"hardware_affirms", "warn code-hardware", "Hardware_hasTouchscreen"},
    {"sensors_endless", "fail sensors", "from 0 to 255"},
    {"sensors_again", "fail sensors", "Diagnostics_getPMTemp(200) answered 0"},
    {"channel_adc", "fail channels", "Adc_getVoltage(1)"},
    {"channel_can", "fail channels", "Can_getBaudrate(2)"},
    {"channel_touch", "fail channels", "Touch_getAdvancedSetting(12)"},
    {"text_null", "fail error-texts", "deviceErrorText(300) gave null"},
    {"text_empty", "fail error-texts", "deviceErrorText(-2) gave an empty text"},
    {"text_buffer", "fail error-texts", "became \"error 2147483647\""},
    {"reason_empty", "fail reason-texts", "Diagnostics_startupReasonText(65535)"},
    {"word_changes", "fail hardware-texts", "Diagnostics_hwErrorText(0)"},
    {"handles", "fail handles", "once another handle was released"},
    {"release_elsewhere", "fail release-elsewhere", "_release"},
    {"set_refused", "fail write-values", "Buzzer_setVolume refused 51 with 5"},
    {"set_ignored", "fail write-values", "Buzzer_getVolume gives 1"},
    {"set_wrong", "fail write-values", "Buzzer_getVolume gives 50"},
    {"range_taken", "warn write-range", "made 52 of it"},
    {"range_changes", "fail write-range", "changed 1 to 51"},
    {"neighbour", "fail write-neighbours", "Buzzer_getFrequency gives from 1000 to 3000"},
    {"strings_empty", "fail write-strings", "refused \"\" (0 bytes)"},
    {"strings_cut", "fail write-strings", "(1023 bytes)"},
    {"strings_ascii", "fail write-strings", "Settings_getString gives \"Gr?"},
    {"strings_forgotten", "fail write-strings-stay", "not there"},
    {"outputs", "fail write-outputs", "DigIO_setDigIO was given 8"},
    {"automatic", "fail write-automatic", "tells the opposite"},
    {"averages_start", "fail write-averages", "the automatic backlight doesn't run"},
    {"averages_stop", "fail write-averages", "LightSensor_stopAverageCalc answered 15"},
    {"firmware_state", "fail firmware-missing", "ended in state 6"},
    {"firmware_code", "fail firmware-missing", "Firmware_getUpgradeStatus answered 16"},
    {"firmware_back", "fail firmware-file", "went back from state 5, 50 percent"},
    {"locale", "fail locale", "the locale was", false, true},
    {"umask", "fail umask", "the mask for new files was", false, true},
    {"signals", "fail signals", "SIGUSR1 ignored", false, true},
    {"endless", "fail answers", "no answer within 10 s from Battery_getTimes", true},
    {"slow", "warn time", "Battery_getTimes took 1", true},
    {"too_slow", "fail time", "Battery_getTimes took 5", true},
    {"wait", "fail wait", "Firmware_getUpgradeStatus", true},
    {"threads", "fail threads", "Smart_getInitialTime answered 18", true},
};

QString brokenUnit(const QString &name)
{
    return VORN_BROKENUNIT_DIR "/"_s + name + QStringLiteral(VORN_LIBRARY_SUFFIX);
}

} // namespace

/** The compliance test, against libraries that keep the contract and libraries that don't. */
class VorncheckTest : public CheckTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        CheckTest::initTestCase();
        image = files.filePath("image.hex"_s);
        QFile file(image);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(":0401000001020304F1\n:00000001FF\n") > 0);
    }

    void helps()
    {
        const auto help = run({"--help"_s});
        QCOMPARE(help.exitCode, 0);
        QVERIFY(help.out.contains("--write"_s));
        const auto version = run({"--version"_s});
        QCOMPARE(version.exitCode, 0);
        QVERIFY(version.out.startsWith("vorncheck "_s));
    }

    void refusesWrongUsage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("no library") << QStringList{} << "LIBRARY is required";
        QTest::newRow("no such file") << QStringList{"/no/such/library"_s} << "/no/such/library";
        QTest::newRow("no library at all")
            << QStringList{VORN_SOURCE_DIR "/README.md"_s} << "README.md";
        QTest::newRow("no such test")
            << QStringList{"--only"_s, "thraeds"_s, brokenUnit("goodunit"_s)}
            << "There is no test \"thraeds\"; did you mean \"threads\"?";
        QTest::newRow("no time at all")
            << QStringList{"--call-limit"_s, "0"_s, brokenUnit("goodunit"_s)} << "--call-limit";
        QTest::newRow("no such option") << QStringList{"--wriet"_s} << "--wriet";
    }

    void refusesWrongUsage()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const auto outcome = run(arguments);
        QCOMPARE(outcome.exitCode, 2);
        QCOMPARE(outcome.out, QString());
        QVERIFY2(outcome.err.startsWith("vorncheck: "_s), qPrintable(outcome.err));
        QVERIFY2(outcome.err.contains(message), qPrintable(outcome.err));
    }

    void lists()
    {
        QVERIFY(names.size() > 40);
        QCOMPARE(names.first(), "functions"_s);
    }

    void goodLibraryPasses()
    {
        const auto outcome = run(everything() << brokenUnit("goodunit"_s));
        QCOMPARE(outcome.exitCode, 0);
        const auto lines = outcome.out.trimmed().split(QLatin1Char('\n'));
        for (const auto &line : lines.mid(0, lines.size() - 1))
            QVERIFY2(
                line.startsWith("PASS "_s) || line.contains("this system"_s), qPrintable(line));
        QVERIFY2(
            lines.last().contains(" passed, 0 failed, 0 warned, "_s), qPrintable(lines.last()));
    }

    void brokenLibraryIsFound_data()
    {
        QTest::addColumn<QString>("finding");
        QTest::addColumn<QString>("sentence");
        for (const auto &broken : brokenLibraries) {
            if (!broken.posix || isPosix())
                QTest::newRow(broken.library) << broken.finding << broken.words;
        }
    }

    /** By its test, by name, and by no other. */
    void brokenLibraryIsFound()
    {
        QFETCH(QString, finding);
        QFETCH(QString, sentence);
        const auto *const broken = std::find_if(std::begin(brokenLibraries),
            std::end(brokenLibraries),
            [](const Broken &each) { return qstrcmp(each.library, QTest::currentDataTag()) == 0; });
        const int exitCode = finding.startsWith("fail"_s) ? 1 : 0;
        const auto found = findings(reportIn(outcomeOf(*broken), exitCode));
        QVERIFY2(found.size() == 1, qPrintable(found.join(QLatin1Char('\n'))));
        QVERIFY2(found.first().startsWith(finding + QLatin1Char(':')), qPrintable(found.first()));
        QVERIFY2(found.first().contains(sentence), qPrintable(found.first()));
    }

    /** A test that no library fails proves nothing. */
    void everyTestHasItsLibrary()
    {
        QStringList unproved;
        for (const auto &name : names) {
            const auto proves = [&name](const Broken &broken) {
                return QString::fromLatin1(broken.finding).section(QLatin1Char(' '), 1) == name;
            };
            if (std::none_of(std::begin(brokenLibraries), std::end(brokenLibraries), proves))
                unproved << name;
        }
        QCOMPARE(unproved, QStringList());
    }

    /** The unit's own journal tells that nothing was set. */
    void onlyReadsUnlessAllowed()
    {
        const QString journal = folder->filePath("journal"_s);
        environment.insert("VORN_JOURNAL"_s, journal);
        const QStringList arguments = withoutThreads() << QStringLiteral(VORN_DEVICE_LIBRARY);
        // The journal is closed with the library, too.
        QCOMPARE(findings(check(arguments, 0)), QStringList());
        QFile file(journal);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray calls = file.readAll();
        QVERIFY(calls.contains("Buzzer_getVolume"));
        for (const char *changing : {"_set", "Firmware_start", "Backlight_start",
                 "LightSensor_start", "_stop", "_shutDown"})
            QVERIFY2(!calls.contains(changing), changing);
    }

    void virtualUnitPasses_data()
    {
        QTest::addColumn<bool>("warned");
        for (const auto &name : virtualunit::profiles()) {
            // Its firmware gives no access to the touch screen that it has.
            if (name != "broken")
                QTest::newRow(name.c_str()) << (name == "old-firmware");
        }
    }

    void virtualUnitPasses()
    {
        QFETCH(bool, warned);
        QCOMPARE(virtualunit::loadProfile(QTest::currentDataTag()), std::string());
        const auto before = settings();
        // What a unit has or lacks makes no difference to its threads.
        const bool isFull = qstrcmp(QTest::currentDataTag(), "full") == 0;
        const auto found = findings(check(QStringList{"--write"_s, "--power"_s} +
                                              (isFull ? QStringList() : withoutThreads()) +
                                              QStringList{QStringLiteral(VORN_DEVICE_LIBRARY)},
            0));
        QVERIFY2(found.size() == (warned ? 1 : 0), qPrintable(found.join(QLatin1Char('\n'))));
        QVERIFY(!warned || found.first().startsWith("warn code-hardware: Touch_"_s));
        QVERIFY(settings() == before);
    }

    /** It moves the brightness while it runs, the more the slower the unit answers. */
    void automaticLeavesTheBrightness()
    {
        QCOMPARE(virtualunit::loadProfile("full"), std::string());
        QCOMPARE(virtualunit::setDelay("Backlight_getAutomaticBLStatus", 500), std::string());
        const auto before = settings();
        const auto found = findings(check(
            {"--write"_s, "--only"_s, "write-automatic"_s, QStringLiteral(VORN_DEVICE_LIBRARY)},
            0));
        QCOMPARE(found, QStringList());
        QCOMPARE(settings().at("Backlight.intensity"), before.at("Backlight.intensity"));
    }

    /** Which has stored no image to compare with; never does it get one. */
    void virtualUnitVerifiesFirmware()
    {
        QCOMPARE(virtualunit::set("Firmware.duration", "1000"), std::string());
        const QStringList tests{"--only"_s, "firmware-file"_s, "--only"_s, "firmware-missing"_s};
        const auto found = findings(check(QStringList{"--firmware"_s, image} + tests +
                                              QStringList{QStringLiteral(VORN_DEVICE_LIBRARY)},
            0));
        QCOMPARE(found.size(), 1);
        QVERIFY2(found.first().startsWith(
                     "warn firmware-file: Firmware_startSSVerification found error 30"_s),
            qPrintable(found.first()));
    }

    void brokenProfileIsNamed()
    {
        QCOMPARE(virtualunit::loadProfile("broken"), std::string());
        QCOMPARE(virtualunit::set("Firmware.duration", "1000"), std::string());
        const auto found = findings(check(
            everything() + withoutThreads() + QStringList{QStringLiteral(VORN_DEVICE_LIBRARY)}, 1));
        const auto all = found.join(QLatin1Char('\n'));
        // One that only reads, one that sets, one of each other kind.
        for (const char *named :
            {"Versions_getFPGAVersion answered 14", "Buzzer_getVolume answered 27",
                "Touch_getAdvancedSetting(0) answered 14", "Can_setBaudrate(1) refused 125 with 28",
                "FrontLED_setNrOfPulses refused 3 with 14", "Touch_setMode refused",
                "Settings_setString(\"VornsettingsGsmPort\") answered 28",
                "DigIO_setDigIO(0) answered 27", "Backlight_startAutomaticBL answered 15"})
            QVERIFY2(all.contains(QLatin1String(named)), named);
    }

    /** Answers 18 to everything. */
    void tinyUnitPasses()
    {
        const QString library = QStringLiteral(
            VORN_TINYUNIT_DIR "/" VORN_LIBRARY_PREFIX "VornAux2" VORN_LIBRARY_SUFFIX);
        const auto found = findings(check(withoutThreads() + QStringList{"--write"_s, library}, 0));
        QCOMPARE(found, QStringList());
    }

    void tinyUnitIsFound_data()
    {
        QTest::addColumn<QString>("variable");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("finding");
        QTest::newRow("texts without an end") << "TINYUNIT_CODE"
                                              << "0"
                                              << "fail text-end: Hardware_getMainPcbSerial";
        QTest::newRow("all bits of a flag") << "TINYUNIT_CODE"
                                            << "0"
                                            << "warn flags: Hardware_hasDisplay gave 255";
        QTest::newRow("sensors without an end") << "TINYUNIT_CODE"
                                                << "0"
                                                << "fail sensors: ";
        QTest::newRow("out values of failures") << "TINYUNIT_TRACES"
                                                << "1"
                                                << "fail out-untouched: Hardware_getMainPcbSerial";
        QTest::newRow("20") << "TINYUNIT_CODE"
                            << "20"
                            << "fail code-20: Hardware_getMainPcbSerial";
    }

    void tinyUnitIsFound()
    {
        QFETCH(QString, variable);
        QFETCH(QString, value);
        QFETCH(QString, finding);
        environment.insert(variable, value);
        const QString library = QStringLiteral(
            VORN_TINYUNIT_DIR "/" VORN_LIBRARY_PREFIX "VornAux2" VORN_LIBRARY_SUFFIX);
        const auto test = finding.section(QLatin1Char(' '), 1).section(QLatin1Char(':'), 0, 0);
        const auto found =
            findings(check({"--only"_s, test, library}, finding.startsWith("fail"_s) ? 1 : 0));
        QCOMPARE(found.size(), 1);
        QVERIFY2(found.first().startsWith(finding), qPrintable(found.first()));
    }

    /** The test's process is killed then, so another one puts things back. */
    void putsBackAfterAnEndlessCall()
    {
        const auto before = settings();
        // Reads pass, so that it begins; the third write of one test then never comes back in time.
        QCOMPARE(virtualunit::setDelay("Buzzer_setTrigger", 5'000), std::string());
        const auto found =
            findings(check({"--write"_s, "--call-limit"_s, "1"_s, "--only"_s, "write-values"_s,
                               QStringLiteral(VORN_DEVICE_LIBRARY)},
                1));
        QCOMPARE(found.size(), 1);
        QVERIFY2(found.first().contains("no answer within 1 s from Buzzer_setTrigger"_s),
            qPrintable(found.first()));
        QVERIFY(settings() == before);
    }

private:
    /** The check of a broken library. */
    struct Running {
        QTemporaryDir store;
        QProcess tool;
    };

    QStringList everything() const { return {"--write"_s, "--power"_s, "--firmware"_s, image}; }

    void start(const Broken &broken)
    {
        if (running.count(broken.library))
            return;
        const bool isThreads = broken.finding == std::string_view("fail threads");
        auto &[store, tool] = running[broken.library];
        auto own = environment;
        own.insert("BROKENUNIT_STORE"_s, store.path());
        tool.setProcessEnvironment(own);
        tool.start(VORN_BIN_DIR "/vorncheck"_s,
            QStringList{"--json"_s} + everything() +
                (isThreads ? QStringList() : withoutThreads()) +
                QStringList{brokenUnit("broken_"_s + QLatin1String(broken.library))});
    }

    /** While it is waited for, the next ones are checked on the other cores, and those that mostly
     * wait; unless the command line names the libraries to be checked. */
    CheckOutcome outcomeOf(const Broken &broken)
    {
        start(broken);
        if (!QCoreApplication::arguments().filter("brokenLibraryIsFound:"_s).isEmpty())
            return ended(running.at(broken.library).tool);
        for (const auto &other : brokenLibraries) {
            if (other.waits)
                start(other);
        }
        const auto ahead = std::min<std::ptrdiff_t>(
            QThread::idealThreadCount(), std::end(brokenLibraries) - &broken);
        for (const auto *next = &broken; next != &broken + ahead; ++next)
            start(*next);
        return ended(running.at(broken.library).tool);
    }

    QTemporaryDir files;
    QString image;
    std::map<std::string, Running> running; ///< by the library's name, from its start on
};

QTEST_GUILESS_MAIN(VorncheckTest)
#include "tst_vorncheck.moc"
