#include "linuxunit/calls/Failure.h"
#include "linuxunit/store/Counters.h"
#include "tests/support/LinuxUnit_posix.h"
#include "tests/support/literals.h"

#include <QProcess>
#include <QtTest>

#include <optional>

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
    void withoutServiceThereIsNone();
    void startsAndClasses();
    void gapsHaveNoTemperature();
    void brokenFileIsTold();
    void serviceSurvivesKill();
    void serviceRefuses();

private:
    std::vector<double> times() { return unit->call("Diagnostics_getTimers").numbers; }

    std::optional<LinuxUnit> unit;
};

void LinuxCounterTest::withoutServiceThereIsNone()
{
    for (const char *operation :
        {"Diagnostics_getTimers", "Diagnostics_getMinMaxTemp", "Diagnostics_getPowerCycles"})
        QCOMPARE(unit->call(operation).code, 2);
    const Counters made;
    QCOMPARE(unit->call("Diagnostics_getTimers").code, 18);
}

void LinuxCounterTest::startsAndClasses()
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

void LinuxCounterTest::gapsHaveNoTemperature()
{
    Counters counters;
    counters.add({"first", 36000, 0, 50.0});
    QCOMPARE(times(), (std::vector<double>{600, 0, 0, 0, 0, 0, 0}));
    counters.add({"first", 36060, 0, 50.0});
    QCOMPARE(times(), (std::vector<double>{601, 0, 0, 1, 0, 0, 0}));
}

void LinuxCounterTest::brokenFileIsTold()
{
    unit->write("/var/lib/vornaux/counters.db"_s, QByteArray(4096, 'x'));
    const auto answer = unit->call("Diagnostics_getPowerCycles");
    QCOMPARE(answer.code % 1000, 106);
    QVERIFY2(unit->textOf(answer).endsWith("counters.db can't be used: file is not a database"),
        unit->textOf(answer).constData());
}

void LinuxCounterTest::serviceSurvivesKill()
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

void LinuxCounterTest::serviceRefuses()
{
    const auto program = QStringLiteral(VORN_BIN_DIR "/vornaux-counter");
    QCOMPARE(QProcess::execute(program, {"--interval"_s, "61"_s}), 2);
    unit->write("/var/lib/vornaux"_s, "no folder");
    QProcess service;
    service.start(program, QStringList());
    QVERIFY(service.waitForFinished());
    QCOMPARE(service.exitCode(), 1);
    QVERIFY2(service.readAllStandardError().contains("counters.db can't be used: "), "no reason");
}

QTEST_GUILESS_MAIN(LinuxCounterTest)
#include "tst_linuxcounter_posix.moc"
