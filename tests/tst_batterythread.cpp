#include "pages/MyThread.h"
#include "pages/tabPowerDlg.h"
#include "tests/support/PageTest.h"

#include <QElapsedTimer>
#include <QProgressBar>

#include <memory>

using support::child;
using support::operator""_s;

/** What the thread signals, collected on the main thread, where the page's widgets get it too. */
class Received : public QObject
{
public:
    explicit Received(const MyThread &thread)
    {
        connect(
            &thread, &MyThread::newCharge, this, [this](const QString &text) { charge << text; });
        connect(&thread, &MyThread::newLabel, this, [this](const QString &text) { label << text; });
        connect(&thread, &MyThread::newLevel, this, [this](int percent) { level << percent; });
    }

    QStringList charge;
    QStringList label;
    QList<int> level;
};

class BatteryThreadTest : public PageTest
{
    Q_OBJECT

private slots:
    void followsTheBatteryAndThePageStopsIt();
    void failuresAreTexts_data();
    void failuresAreTexts();
    void endsAtOnceWithoutBattery_data();
    void endsAtOnceWithoutBattery();
    void stopsWithinOneStep();

private:
    /** The calls of each thread but the first, which is the test's, in the order of the threads. */
    QMap<int, QStringList> threadCalls();
    static void stop(MyThread &thread)
    {
        batteryKeepRunning.store(0);
        QVERIFY(thread.wait(5000));
    }
};

QMap<int, QStringList> BatteryThreadTest::threadCalls()
{
    static const QRegularExpression parts("^T(\\d+) (.*)$"_s);
    static const QRegularExpression handles("#\\d+| = #\\d+"_s);
    QMap<int, QStringList> byThread;
    for (const QString &line : journal()) {
        const auto match = parts.match(line);
        QString call = match.captured(2);
        call.remove(handles);
        if (match.captured(1).toInt() > 1)
            byThread[match.captured(1).toInt()] << call;
    }
    return byThread;
}

// A whole pass takes five seconds, so one pass serves all that it can show: a thread of the test's
// own, and beside it that of a page.
void BatteryThreadTest::followsTheBatteryAndThePageStopsIt()
{
    deviceErrorText(DEVICE_OK); // the test's thread is the journal's first
    setUnit("Battery.voltageLevel"_s, "63"_s);
    MyThread thread;
    const Received received(thread);
    QElapsedTimer clock;
    clock.start();
    thread.start();
    auto page = std::make_unique<tabPowerDlg>();
    page->show();
    const auto *level = child<QProgressBar>(page.get(), "progressBar");
    QCOMPARE(level->value(), 63);
    setUnit("Battery.chargingStatus"_s, "4"_s);
    setUnit("Battery.powerSource"_s, "0"_s);
    setUnit("Battery.voltageLevel"_s, "41"_s);

    QTRY_COMPARE_WITH_TIMEOUT(received.charge.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 3000);
    QTRY_COMPARE_WITH_TIMEOUT(received.label.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 4000);
    QTRY_COMPARE_WITH_TIMEOUT(received.level.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 5000);
    QTRY_COMPARE_WITH_TIMEOUT(level->value(), 41, 20000);
    QCOMPARE(received.charge, QStringList("Temperature is too high to charge the battery\n"_s));
    QCOMPARE(received.label, QStringList("Power source: Battery"_s));
    QCOMPARE(received.level, QList<int>{41});
    QCOMPARE(child<QLabel>(page.get(), "label_3")->text(), received.charge[0]);
    QCOMPARE(child<QLabel>(page.get(), "label_4")->text(), received.label[0]);

    // The page stops all threads, and waits for none.
    page.reset();
    QCOMPARE(int(batteryKeepRunning.load()), 0);
    QVERIFY(thread.wait(5000));
    QMap<int, QStringList> made;
    const auto finished = [&] {
        const auto more = threadCalls();
        for (auto it = more.begin(); it != more.end(); ++it)
            made[it.key()] << it.value();
        return made.size() == 2 && made[2].endsWith("Battery_release()"_s) &&
               made[3].endsWith("Battery_release()"_s);
    };
    QTRY_VERIFY_WITH_TIMEOUT(finished(), 5000);
    const QStringList pass{"Battery_create()"_s, "Battery_isAvailable() = 0 [true]"_s,
        "Battery_getChargingStatus() = 0 [4]"_s, "Battery_getPowerSource() = 0 [0]"_s,
        "Battery_getVoltageLevel() = 0 [41]"_s, "Battery_release()"_s};
    QCOMPARE(made[2], pass);
    QCOMPARE(made[3], pass);
}

void BatteryThreadTest::failuresAreTexts_data()
{
    QTest::addColumn<int>("charging");
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("level");
    QTest::newRow("2, 18, 20") << 2 << 18 << 20;
    QTest::newRow("5, -1, 2") << 5 << -1 << 2;
}

void BatteryThreadTest::failuresAreTexts()
{
    QFETCH(int, charging);
    QFETCH(int, source);
    QFETCH(int, level);
    deviceErrorText(DEVICE_OK);
    fault("Battery_getChargingStatus"_s, charging);
    fault("Battery_getPowerSource"_s, source);
    fault("Battery_getVoltageLevel"_s, level);
    MyThread thread;
    const Received received(thread);
    thread.start();
    QTRY_COMPARE_WITH_TIMEOUT(received.charge.size(), 1, 20000);
    // Stopped in the middle, it finishes the pass without its waits.
    QElapsedTimer clock;
    clock.start();
    stop(thread);
    QVERIFY2(clock.elapsed() < 1000, "it waited its full steps");
    QTRY_COMPARE(received.level.size(), 1);
    QCOMPARE(received.charge, QStringList("Could not get battery charging status\n"_s));
    QCOMPARE(received.label, QStringList("Power source: Unknown"_s));
    QCOMPARE(received.level, QList<int>{0});
    QCOMPARE(threadCalls().value(2),
        QStringList({"Battery_create()"_s, "Battery_isAvailable() = 0 [true]"_s,
            QStringLiteral("Battery_getChargingStatus() = %1").arg(charging),
            QStringLiteral("Battery_getPowerSource() = %1").arg(source),
            QStringLiteral("Battery_getVoltageLevel() = %1").arg(level), "Battery_release()"_s}));
}

void BatteryThreadTest::endsAtOnceWithoutBattery_data()
{
    QTest::addColumn<int>("code");
    QTest::newRow("none") << 0;
    for (const int code : failureCodes)
        QTest::addRow("%d", code) << code;
}

void BatteryThreadTest::endsAtOnceWithoutBattery()
{
    QFETCH(int, code);
    deviceErrorText(DEVICE_OK);
    setUnit("Battery.available"_s, "false"_s);
    fault("Battery_isAvailable"_s, code);
    MyThread thread;
    thread.start();
    QVERIFY(thread.wait(5000));
    QCOMPARE(int(batteryKeepRunning.load()), 0);
    QCOMPARE(threadCalls().value(2), QStringList({"Battery_create()"_s,
                                         QStringLiteral("Battery_isAvailable() = %1").arg(code) +
                                             (code == 0 ? " [false]"_s : QString()),
                                         "Battery_release()"_s}));
}

void BatteryThreadTest::stopsWithinOneStep()
{
    deviceErrorText(DEVICE_OK);
    MyThread thread;
    thread.start();
    QTRY_COMPARE(int(batteryKeepRunning.load()), 1);
    QElapsedTimer clock;
    clock.start();
    stop(thread);
    QVERIFY2(clock.elapsed() < 1000, "it waited its full steps");
    QCOMPARE(threadCalls().value(2),
        QStringList(
            {"Battery_create()"_s, "Battery_isAvailable() = 0 [true]"_s, "Battery_release()"_s}));
}

VORN_TEST_MAIN(BatteryThreadTest)
#include "tst_batterythread.moc"
