#include "linuxunit/calls/Failure.h"
#include "linuxunit/store/Counters.h"
#include "tests/support/LinuxUnit_posix.h"
#include "tests/support/literals.h"

#include <QProcess>
#include <QtTest>

#include <optional>
#include <sqlite3.h>

using linuxunit::Counters;
using linuxunit::Moment;
using support::LinuxUnit;
using support::operator""_s;

/** What vornaux-counter counts, and what the Linux unit makes of it. */
class LinuxCounterTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { unit.emplace(); }
    void cleanup() { unit.reset(); }

    void withoutServiceThereIsNone()
    {
        for (const char *operation : {"Diagnostics_getTimers", "Diagnostics_getMinMaxTemp",
                 "Diagnostics_getPowerCycles", "Battery_getTimes", "Battery_getMinMaxTemp"})
            QCOMPARE(unit->call(operation).code, 2);
        const Counters made;
        QCOMPARE(unit->call("Diagnostics_getTimers").code, 18);
    }

    void startsAndClasses()
    {
        {
            Counters counters;
            counters.add({"first", 60, 0, 25.0});
            counters.add({"first", 120, 600, 40.0});
            counters.add({"first", 120, 600, 40.0}); // the same moment counts once
            counters.add({"first", 90, 0, 40.0});    // a clock doesn't go back
            counters.add({"first", 180, 600, 60.0});
            counters.add({"first", 240, 600, std::nullopt});
        }
        Counters counters;
        counters.add({"second", 60, 0, 70.0});
        counters.add({"second", 120, 0, 80.0});
        counters.add({"second", 180, 0, 80.1});
        QCOMPARE(times(), (std::vector<double>{7, 10, 0, 1, 1, 2, 1}));
        QCOMPARE(unit->call("Diagnostics_getMinMaxTemp").numbers, (std::vector<double>{25, 80}));
        QCOMPARE(unit->call("Diagnostics_getPowerCycles").numbers, std::vector<double>{2});
    }

    void gapsHaveNoTemperature()
    {
        Counters counters;
        counters.add({"first", 36000, 0, 50.0});
        QCOMPARE(times(), (std::vector<double>{600, 0, 0, 0, 0, 0, 0}));
        counters.add({"first", 36060, 0, 50.0});
        QCOMPARE(times(), (std::vector<double>{601, 0, 0, 1, 0, 0, 0}));
    }

    void batteriesAreCounted()
    {
        Counters counters;
        counters.add({"first", 60, 0, 25.0});
        QCOMPARE(unit->call("Battery_getTimes").code, 2);
        double now = 60;
        for (const double celsius : {-20.1, -20.0, 0.0, 40.0, 60.0, 70.0, 80.0, 80.1})
            counters.add({"first", now += 60, 0, 25.0, linuxunit::BatteryMoment{false, celsius}});
        counters.add({"first", now += 60, 0, 25.0, linuxunit::BatteryMoment{true, std::nullopt}});
        counters.add({"first", now += 60, 0, 25.0, linuxunit::BatteryMoment{std::nullopt, 20.0}});
        counters.add({"first", now += 60, 0, 25.0}); // taken out
        counters.add({"first", now += 3600, 0, 25.0, linuxunit::BatteryMoment{true, 20.0}});
        QCOMPARE(unit->call("Battery_getTimes").numbers,
            (std::vector<double>{8, 1, 1, 1, 2, 1, 1, 2, 1}));
        QCOMPARE(unit->call("Battery_getMinMaxTemp").numbers, (std::vector<double>{-20, 80}));
    }

    void olderFileHasNoBattery()
    {
        {
            Counters counters;
            counters.add({"first", 60, 0, 25.0, linuxunit::BatteryMoment{true, std::nullopt}});
        }
        QCOMPARE(unit->call("Battery_getTimes").code, 0);
        QCOMPARE(unit->call("Battery_getMinMaxTemp").code, 2); // it measures none
        sqlite3 *open = nullptr;
        QCOMPARE(sqlite3_open(Counters::path().c_str(), &open), SQLITE_OK);
        QCOMPARE(sqlite3_exec(open, "DROP TABLE battery", nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(open);
        QCOMPARE(unit->call("Battery_getTimes").code, 2);
        QCOMPARE(unit->call("Diagnostics_getPowerCycles").code, 0);
        Counters counters;
        counters.add({"first", 120, 0, 25.0, linuxunit::BatteryMoment{true, 21.0}});
        QCOMPARE(unit->call("Battery_getMinMaxTemp").numbers, (std::vector<double>{21, 21}));
    }

    void serviceCountsTheBattery()
    {
        unit->write("/proc/sys/kernel/random/boot_id"_s, "f00\n");
        const auto folder = "/sys/class/power_supply/BAT0"_s;
        unit->write(folder + "/type"_s, "Battery\n");
        unit->write(folder + "/status"_s, "Discharging\n");
        unit->write(folder + "/temp"_s, "-56\n");
        QProcess service;
        service.setProcessChannelMode(QProcess::ForwardedChannels);
        service.start(QStringLiteral(VORN_BIN_DIR "/vornaux-counter"),
            {QStringLiteral("--interval"), QStringLiteral("1")});
        QVERIFY(service.waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(
            unit->call("Battery_getMinMaxTemp").numbers, (std::vector<double>{-6, -6}), 30000);
        // While the service writes, its file may be taken for a moment.
        const auto counted = [] {
            try {
                return Counters::readBattery();
            } catch (const linuxunit::Failure &) {
                return decltype(Counters::readBattery()){};
            }
        };
        // This start may be older than what a count is sure of.
        QTRY_VERIFY_WITH_TIMEOUT(counted().onBattery > 0, 30000);
        QTRY_VERIFY(counted().atMinus20To0 > 0);
        QCOMPARE(counted().onMainPower, 0.0);
        service.terminate();
        QVERIFY(service.waitForFinished());
        QCOMPARE(service.exitCode(), 0);
    }

    /** What can't be written whole leaves nothing behind, and the same counter goes on. */
    void failedCountIsTakenBack()
    {
        const auto execute = [](const char *statement) {
            sqlite3 *open = nullptr;
            const int opened = sqlite3_open(Counters::path().c_str(), &open);
            const int done = sqlite3_exec(open, statement, nullptr, nullptr, nullptr);
            sqlite3_close(open);
            return std::max(opened, done);
        };
        Counters counters;
        counters.add({"first", 60, 0, 25.0});
        QCOMPARE(execute("CREATE TRIGGER full BEFORE INSERT ON battery"
                         " BEGIN SELECT RAISE(ABORT, 'no room'); END"),
            SQLITE_OK);
        const Moment later{"first", 120, 0, 25.0, linuxunit::BatteryMoment{true, 21.0}};
        std::string said;
        try {
            counters.add(later);
        } catch (const linuxunit::Failure &failure) {
            said = failure.sentence;
        }
        QVERIFY2(said.find("no room") != std::string::npos, said.c_str());
        QCOMPARE(times().front(), 1.0);
        QCOMPARE(execute("DROP TRIGGER full"), SQLITE_OK); // nobody holds the file any longer
        counters.add(later);
        QCOMPARE(times().front(), 2.0);
    }

    void brokenFileIsTold()
    {
        unit->write("/var/lib/vornaux/counters.db"_s, QByteArray(4096, 'x'));
        const auto answer = unit->call("Diagnostics_getPowerCycles");
        QCOMPARE(answer.kind(), 106);
        QVERIFY2(unit->textOf(answer).endsWith("counters.db can't be used: file is not a database"),
            unit->textOf(answer).constData());
    }

    void serviceSurvivesKill()
    {
        unit->write("/proc/sys/kernel/random/boot_id"_s, "f00\n");
        const auto start = [](QProcess &service) {
            service.setProcessChannelMode(QProcess::ForwardedChannels);
            service.start(QStringLiteral(VORN_BIN_DIR "/vornaux-counter"),
                {QStringLiteral("--interval"), QStringLiteral("1")});
            QVERIFY(service.waitForStarted());
        };
        QProcess first;
        start(first);
        QTRY_COMPARE_WITH_TIMEOUT(unit->call("Diagnostics_getPowerCycles").code, 0, 30000);
        const auto running = Counters::read().running;
        QTRY_VERIFY_WITH_TIMEOUT(Counters::read().running > running, 30000);
        first.kill();
        QVERIFY(first.waitForFinished());
        const auto kept = Counters::read().running;
        QVERIFY(kept > running);
        unit->write("/proc/sys/kernel/random/boot_id"_s, "f01\n");
        QProcess second;
        start(second);
        QTRY_COMPARE_WITH_TIMEOUT(
            unit->call("Diagnostics_getPowerCycles").numbers, std::vector<double>{2}, 30000);
        QVERIFY(Counters::read().running > kept);
        second.terminate();
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
    }

    /** Which start this is can't be told, so nothing is counted until it can. */
    void serviceNamesWhatIsMissing()
    {
        QProcess service;
        service.start(QStringLiteral(VORN_BIN_DIR "/vornaux-counter"), QStringList());
        service.setReadChannel(QProcess::StandardError);
        QTRY_VERIFY(service.canReadLine());
        QCOMPARE(service.readLine(),
            QByteArray("vornaux-counter: /proc/sys/kernel/random/boot_id is missing\n"));
        service.terminate();
        QVERIFY(service.waitForFinished());
        QCOMPARE(service.exitCode(), 0);
    }

    void serviceRefuses()
    {
        const auto program = QStringLiteral(VORN_BIN_DIR "/vornaux-counter");
        QCOMPARE(QProcess::execute(program, {"--interval"_s, "61"_s}), 2);
        unit->write("/var/lib/vornaux"_s, "no folder");
        QProcess service;
        service.start(program, QStringList());
        QVERIFY(service.waitForFinished());
        QCOMPARE(service.exitCode(), 1);
        QVERIFY2(
            service.readAllStandardError().contains("counters.db can't be used: "), "no reason");
    }

private:
    std::vector<double> times() { return unit->call("Diagnostics_getTimers").numbers; }

    std::optional<LinuxUnit> unit;
};

QTEST_GUILESS_MAIN(LinuxCounterTest)
#include "tst_linuxcounter_posix.moc"
