#include "pages/MyThread.h"
#include "pages/tabPowerDlg.h"
#include "tests/support/DeviceTest.h"

#include <QElapsedTimer>

#include <memory>

using support::child;

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
    const Received received(thread);
    QElapsedTimer clock;
    clock.start();
    thread.start();
    QTRY_COMPARE_WITH_TIMEOUT(received.charge.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 3000);
    QTRY_COMPARE_WITH_TIMEOUT(received.label.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 4000);
    QTRY_COMPARE_WITH_TIMEOUT(received.level.size(), 1, 20000);
    QVERIFY(clock.elapsed() >= 5000);
    stop(thread);
    QCOMPARE(received.charge[0], QStringLiteral("Battery is fully charged\n"));
    QCOMPARE(received.label[0], QStringLiteral("Power source: Battery"));
    QCOMPARE(received.level[0], 88);
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
    const Received received(thread);
    thread.start();
    QTRY_COMPARE_WITH_TIMEOUT(received.charge.size(), 1, 20000);
    stop(thread);
    QTRY_COMPARE(received.level.size(), 1);
    QCOMPARE(received.charge[0], QStringLiteral("Could not get battery charging status\n"));
    QCOMPARE(received.label.value(0), QStringLiteral("Power source: Unknown"));
    QCOMPARE(received.level[0], 0);
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
    const Received received(thread);
    thread.start();
    QTRY_COMPARE_WITH_TIMEOUT(received.charge.size(), 1, 20000);
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
