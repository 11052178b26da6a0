#include "tests/support/ProgramTree.h"
#include "tests/support/literals.h"
#include "virtualunit/VirtualUnit.h"

#include <QtTest>

#include <memory>

using namespace support;

namespace {

const QString vornunit = QStringLiteral(VORN_BIN_DIR "/vornunit");

} // namespace

/** `vornunit init TRACE`: a unit that lives on from where a trace saw it last. */
class UnitOfTraceTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        tree = std::make_unique<ProgramTree>(QStringLiteral(VORN_DEVICE_LIBRARY));
        const auto file = tree->environment.value("VORN_UNIT"_s).toStdString();
        QCOMPARE(virtualunit::open(file), std::string());
        // Nothing drifts between a report and the next.
        QCOMPARE(virtualunit::setClock(1'773'000'000'000), std::string());
    }

    void report_isThatOfTheTracedUnit_data()
    {
        QTest::addColumn<QString>("profile");
        // Of the others the report tells more than whole operations: rails that aren't there.
        for (const char *profile : {"full", "broken", "gps-only", "gsm-only", "no-touch"})
            QTest::newRow(profile) << QString::fromLatin1(profile);
    }

    void report_isThatOfTheTracedUnit()
    {
        QFETCH(QString, profile);
        run({"init"_s, profile});
        for (const char *assignment :
            {"Buzzer.volume 31", "Backlight.kValue 3.25", "Can.baudrate2 125",
                "Versions.ss 9.8.7.6", "Hardware.mainPcbSerial caf\xC3\xA9 \\\"1\"",
                "Battery.runTime0To40 77", "Diagnostics.pmSensorCount 3", "Adc.voltage7 4.75"}) {
            const auto text = QString::fromUtf8(assignment);
            run({"set"_s, text.section(QLatin1Char(' '), 0, 0), text.section(QLatin1Char(' '), 1)});
        }
        tree->environment.insert("VORN_JOURNAL"_s, tree->path("journal"_s));
        const auto first = tree->report();
        tree->environment.remove("VORN_JOURNAL"_s);
        QVERIFY(first.contains("v9.8.7.6") || profile == "broken"_s);

        run({"init"_s, profile == "full"_s ? "basic"_s : "full"_s});
        QVERIFY(tree->report() != first);
        const auto made = run({"init"_s, tree->path("journal"_s)});
        QCOMPARE(made.errors, QByteArray());
        QCOMPARE(made.exitCode, 0);
        QCOMPARE(tree->report(), first);
    }

    void values_areTheLastThatWereReadOrWritten()
    {
        tree->write("trace"_s,
            "# vorntrace 1\n"
            "T1 Buzzer_getVolume(#1) = 0 [25]\n"
            "T1 Buzzer_setVolume(#1, 40) = 0\n"
            "T1 Backlight_setIntensity(#1, 40) = 0\n"
            "T1 Backlight_getIntensity(#1) = 0 [41]\n"
            "T1 Backlight_setIntensity(#1, 99) = 13 fault\n"
            "T1 Backlight_setIntensity(#1, 98) = 13\n"
            "T1 Buzzer_getTrigger(#1) = 0 [true]\n"
            "T1 Can_getBaudrate(#1, 6) = 0 [1000]\n" // asked before it is known that there are six
            "T1 Can_getBaudrate(#1, 7) = 17\n"
            "T1 Hardware_getCanCount(#1) = 0 [6]\n"
            "T1 Settings_setString(#1, \"key\", \"caf\xC3\xA9\") = 0\n"
            "T1 Settings_getString(#1, \"other\", 32) = 0 [\"there\"]\n"
            "T1 Diagnostics_getSSTemp(#1) = 0 [-17]\n"
            "T1 Adc_getVoltage(#1, 4) = 0 [4.9]\n"
            "T1 Versions_getOSVersion(#1) = 0 [1, 2, 3, 4]\n"
            "T1 Touch_setAdvancedSetting(#1, 3, 77) = 0\n"
            "T1 Firmware_shutDown(#1) = 0\n"
            "T1 FrontLED_getSignal(#1) = 0 [2.5, 60]\n");
        QCOMPARE(run({"init"_s, "trace"_s}).exitCode, 0);
        const auto values = run({"get"_s, "Buzzer.volume"_s, "Backlight.intensity"_s,
            "Buzzer.trigger"_s, "Can.baudrate6"_s, "Hardware.canCount"_s, "Settings.key"_s,
            "Settings.other"_s, "Diagnostics.ssTemp"_s, "Adc.voltage4"_s, "Versions.os"_s,
            "Touch.debounceTime"_s, "Unit.running"_s, "FrontLED.frequency"_s});
        QCOMPARE(QString::fromUtf8(values.output),
            QString::fromUtf8("40\n41\ntrue\n1000\n6\ncaf\xC3\xA9\nthere\n-17\n4.9\n1.2.3.4\n77\n"
                              "true\n2.5\n"));
        QCOMPARE(run({"faults"_s}).output, QByteArray());
    }

    void operations_thatOnlyFailedBecomeFaults()
    {
        tree->write("trace"_s,
            "T1 Buzzer_getVolume(#1) = 5\nT1 Buzzer_getVolume(#1) = 6\n"
            "T1 Buzzer_setVolume(#1, 3) = 7\nT1 Buzzer_setVolume(#1, 4) = 0\n"
            "T1 Buzzer_getFrequency(#1) = 0 [900]\nT1 Buzzer_getFrequency(#1) = 8\n"
            "T1 Buzzer_getTrigger(#1) = 9 fault\nT1 Buzzer_getTrigger(#0) = 9\n"
            "T1 LightSensor_getIlluminance(#1) = 2\n");
        QCOMPARE(run({"init"_s, "trace"_s}).exitCode, 0);
        std::vector<virtualunit::Disturbance> faults;
        QCOMPARE(virtualunit::disturbances(faults), std::string());
        QCOMPARE(faults.size(), std::size_t(2));
        QCOMPARE(faults[0].operation, std::string("Buzzer_getVolume"));
        QCOMPARE(faults[0].code, 6);
        QCOMPARE(faults[1].operation, std::string("LightSensor_getIlluminance"));
        QCOMPARE(faults[1].code, 2);
    }

    void cutTraces_areTakenAsFarAsTheyGo()
    {
        tree->write("trace"_s, "T1 Buzzer_getVolume(#1) = 0 [13]\nT1 Buzzer_getVol");
        const auto made = run({"init"_s, "trace"_s});
        QCOMPARE(made.exitCode, 0);
        QCOMPARE(made.errors,
            QByteArray("vornunit: The trace \"trace\", line 2 is cut off and left out\n"));
        QCOMPARE(run({"get"_s, "Buzzer.volume"_s}).output.trimmed(), QByteArray("13"));
    }

    void garbage_isRefusedAndTheUnitStays()
    {
        run({"set"_s, "Buzzer.volume"_s, "33"_s});
        tree->write("trace"_s, "# vorntrace 1\nT1 Buzzer_getVolume(#1) = 0 [99999]\n");
        const auto made = run({"init"_s, "trace"_s});
        QCOMPARE(made.exitCode, 1);
        QVERIFY2(made.errors.startsWith("vornunit: The trace \"trace\", line 2: "),
            made.errors.constData());
        QCOMPARE(run({"get"_s, "Buzzer.volume"_s}).output.trimmed(), QByteArray("33"));
    }

private:
    Run run(const QStringList &arguments) const { return tree->runOther(vornunit, arguments); }

    std::unique_ptr<ProgramTree> tree;
};

QTEST_GUILESS_MAIN(UnitOfTraceTest)
#include "tst_unitoftrace.moc"
