#include "pages/MyThread.h"
#include "pages/tabPowerDlg.h"
#include "tests/support/DeviceTest.h"

#include <QElapsedTimer>
#include <QSignalSpy>

#include <memory>

using support::child;

class BatteryThreadTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void onePass();
    void failuresAreTexts_data();
    void failuresAreTexts();
    void endsAtOnceWithoutBattery_data();
    void endsAtOnceWithoutBattery();
    void stopsWithinOneStep();
    void stopInTheMiddleFinishesThePass();
    void pageFollowsTheBatteryAndStopsIt();

private:
    /** The calls of the thread alone. */
    QStringList threadCalls();
    static void stop(MyThread &thread)
    {
        batteryKeepRunning.store(0);
        QVERIFY(thread.wait(5000));
    }
};

QStringList BatteryThreadTest::threadCalls()
{
    QStringList own;
    for (const QString &call : calls()) {
        if (call.startsWith(QLatin1String("Battery_")))
            own << call;
    }
    return own;
}

void BatteryThreadTest::onePass()
{
    setUnit(QStringLiteral("Battery.chargingStatus"), QStringLiteral("2"));
    setUnit(QStringLiteral("Battery.powerSource"), QStringLiteral("0"));
    setUnit(QStringLiteral("Battery.voltageLevel"), QStringLiteral("88"));
    MyThread thread;
    QSignalSpy charge(&thread, &MyThread::newCharge);
    QSignalSpy label(&thread, &MyThread::newLabel);
    QSignalSpy level(&thread, &MyThread::newLevel);
    QElapsedTimer clock;
    clock.start();
    thread.start();
    QTRY_COMPARE_WITH_TIMEOUT(charge.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 3000);
    QTRY_COMPARE_WITH_TIMEOUT(label.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 4000);
    QTRY_COMPARE_WITH_TIMEOUT(level.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 5000);
    stop(thread);
    QCOMPARE(charge[0][0].toString(), QStringLiteral("Battery is fully charged\n"));
    QCOMPARE(label[0][0].toString(), QStringLiteral("Power source: Battery"));
    QCOMPARE(level[0][0].toInt(), 88);
    QCOMPARE(threadCalls(), QStringList({QStringLiteral("Battery_create()"),
                                QStringLiteral("Battery_isAvailable() = 0 [true]"),
                                QStringLiteral("Battery_getChargingStatus() = 0 [2]"),
                                QStringLiteral("Battery_getPowerSource() = 0 [0]"),
                                QStringLiteral("Battery_getVoltageLevel() = 0 [88]"),
                                QStringLiteral("Battery_release()")}));
}

void BatteryThreadTest::failuresAreTexts_data()
{
    QTest::addColumn<int>("code");
    QTest::addRow("absent") << 2;
    QTest::addRow("fault") << -1;
}

void BatteryThreadTest::failuresAreTexts()
{
    QFETCH(int, code);
    for (const char *operation :
        {"Battery_getChargingStatus", "Battery_getPowerSource", "Battery_getVoltageLevel"})
        fault(QString::fromLatin1(operation), code);
    MyThread thread;
    QSignalSpy charge(&thread, &MyThread::newCharge);
    QSignalSpy label(&thread, &MyThread::newLabel);
    QSignalSpy level(&thread, &MyThread::newLevel);
    thread.start();
    QTRY_COMPARE_WITH_TIMEOUT(charge.size(), 1, 20000);
    stop(thread);
    QTRY_COMPARE(level.size(), 1);
    QCOMPARE(charge[0][0].toString(), QStringLiteral("Could not get battery charging status\n"));
    QCOMPARE(label.value(0).value(0).toString(), QStringLiteral("Power source: Unknown"));
    QCOMPARE(level[0][0].toInt(), 0);
}

void BatteryThreadTest::endsAtOnceWithoutBattery_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 2, 18, 20, 5, -1})
        QTest::addRow("%d", code) << code;
}

void BatteryThreadTest::endsAtOnceWithoutBattery()
{
    QFETCH(int, code);
    if (code == 0)
        setUnit(QStringLiteral("Battery.available"), QStringLiteral("false"));
    else
        fault(QStringLiteral("Battery_isAvailable"), code);
    MyThread thread;
    thread.start();
    QVERIFY(thread.wait(5000));
    QCOMPARE(int(batteryKeepRunning.load()), 0);
    const QStringList made = threadCalls();
    QCOMPARE(made.size(), 3);
    QCOMPARE(made[0], QStringLiteral("Battery_create()"));
    QVERIFY(made[1].startsWith(QStringLiteral("Battery_isAvailable() = %1").arg(code)));
    QCOMPARE(made[2], QStringLiteral("Battery_release()"));
}

void BatteryThreadTest::stopsWithinOneStep()
{
    MyThread thread;
    thread.start();
    QTRY_COMPARE(int(batteryKeepRunning.load()), 1);
    stop(thread);
    QCOMPARE(threadCalls().filter(QStringLiteral("_get")), QStringList());
}

void BatteryThreadTest::stopInTheMiddleFinishesThePass()
{
    MyThread thread;
    QSignalSpy charge(&thread, &MyThread::newCharge);
    thread.start();
    QTRY_COMPARE_WITH_TIMEOUT(charge.size(), 1, 20000);
    stop(thread);
    const QStringList made = threadCalls();
    QCOMPARE(made.filter(QStringLiteral("getPowerSource")).size(), 1);
    QCOMPARE(made.filter(QStringLiteral("getVoltageLevel")).size(), 1);
    QCOMPARE(made.constLast(), QStringLiteral("Battery_release()"));
}

void BatteryThreadTest::pageFollowsTheBatteryAndStopsIt()
{
    setUnit(QStringLiteral("Battery.voltageLevel"), QStringLiteral("63"));
    auto page = std::make_unique<tabPowerDlg>();
    page->show();
    QCOMPARE(child<QProgressBar>(page.get(), "progressBar")->value(), 63);
    setUnit(QStringLiteral("Battery.voltageLevel"), QStringLiteral("41"));
    setUnit(QStringLiteral("Battery.powerSource"), QStringLiteral("0"));
    setUnit(QStringLiteral("Battery.chargingStatus"), QStringLiteral("4"));
    QTRY_COMPARE_WITH_TIMEOUT(child<QProgressBar>(page.get(), "progressBar")->value(), 41, 20000);
    QCOMPARE(child<QLabel>(page.get(), "label_3")->text(),
        QStringLiteral("Temperature is too high to charge the battery\n"));
    QCOMPARE(child<QLabel>(page.get(), "label_4")->text(), QStringLiteral("Power source: Battery"));
    calls();
    page.reset();
    QCOMPARE(int(batteryKeepRunning.load()), 0);
    QStringList made;
    QTRY_VERIFY_WITH_TIMEOUT(
        (made += threadCalls()).filter(QStringLiteral("_release")).size() == 2, 5000);
}

VORN_TEST_MAIN(BatteryThreadTest)
#include "tst_batterythread.moc"
