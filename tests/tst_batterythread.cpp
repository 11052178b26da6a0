#include "pages/MyThread.h"
#include "pages/tabPowerDlg.h"
#include "tests/support/PageTest.h"
#include "tests/support/SkippedPauses.h"
#include "virtualunit/VirtualUnit.h"

#include <QElapsedTimer>
#include <QProgressBar>

#include <atomic>
#include <memory>
#include <vector>

using namespace support;

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

/** The battery thread without the time that it waits; its waits are written down instead. */
class HurriedThread : public MyThread
{
public:
    std::vector<int> pauses;               ///< milliseconds
    std::vector<std::size_t> pausesBefore; ///< how many of them before each of its signals

    /** Runs until it has given that signal so many times; then its flag is cleared. */
    template <typename Signal>
    void runUntil(Signal signal, int times = 1)
    {
        const auto clearFlag = [times]() mutable {
            if (--times == 0)
                batteryKeepRunning.store(0);
        };
        connect(this, signal, this, clearFlag, Qt::DirectConnection);
        start();
        QVERIFY(wait(5000));
        QVERIFY(finished.load());
    }

protected:
    void run() override
    {
        runHurried();
        finished.store(true);
    }

private:
    void runHurried()
    {
        SkippedPauses skipped;
        const auto take = [&] {
            for (const int pause : skipped.take())
                pauses.push_back(pause);
        };
        const auto note = [&] {
            take();
            pausesBefore.push_back(pauses.size());
        };
        const QObject meanwhile;
        connect(this, &MyThread::newCharge, &meanwhile, note, Qt::DirectConnection);
        connect(this, &MyThread::newLabel, &meanwhile, note, Qt::DirectConnection);
        connect(this, &MyThread::newLevel, &meanwhile, note, Qt::DirectConnection);
        MyThread::run();
        take();
    }

    /** Hands over what was written down; the thread sanitizer doesn't see Qt's own way. */
    std::atomic<bool> finished{false};
};

// Threads are on the heap: the sanitizer takes what becomes of a stack behind them for a race.

class BatteryThreadTest : public PageTest
{
    Q_OBJECT

private slots:
    /** A whole pass takes five seconds, so one pass serves all that it can show: a thread of the
     * test's own, and beside it that of a page. */
    void followsTheBatteryAndThePageStopsIt()
    {
        setUnit("Battery.voltageLevel"_s, "63"_s);
        const auto thread = std::make_unique<MyThread>();
        const Received received(*thread);
        QElapsedTimer clock;
        clock.start();
        thread->start();
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

        page.reset(); // stops all threads
        QCOMPARE(int(batteryKeepRunning.load()), 0);
        QVERIFY(thread->wait(5000));
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

    void pageWaitsForNoThread()
    {
        QCOMPARE(virtualunit::setDelay("Battery_isAvailable", 3000), std::string());
        auto page = std::make_unique<tabPowerDlg>();
        QElapsedTimer clock;
        clock.start();
        page.reset();
        QVERIFY2(clock.elapsed() < 2000, "it waited for its thread's call");
        QStringList made;
        const auto ended = [&] {
            return (made << threadCalls().value(2)).endsWith("Battery_release()"_s);
        };
        QTRY_VERIFY_WITH_TIMEOUT(ended(), 20000);
    }

    /** One flag serves all pages that there will be. */
    void nextPageDoesntReviveTheThread()
    {
        auto page = std::make_unique<tabPowerDlg>();
        page.reset();
        batteryKeepRunning.store(1);
        QStringList made;
        const auto ended = [&] {
            return (made << threadCalls().value(2)).endsWith("Battery_release()"_s);
        };
        QTRY_VERIFY_WITH_TIMEOUT(ended(), 5000);
        QVERIFY2(made.size() <= 3, "it went on to its first pass");
        batteryKeepRunning.store(0);
    }

    void onePassWaitsBetweenItsCalls()
    {
        const auto thread = std::make_unique<HurriedThread>();
        const Received received(*thread);
        thread->runUntil(&MyThread::newLevel);
        // Thirty steps of 100 ms, then ten, then ten.
        QCOMPARE(thread->pauses, std::vector<int>(50, 100));
        QCOMPARE(thread->pausesBefore, (std::vector<std::size_t>{30, 40, 50}));
        QTRY_COMPARE(received.level.size(), 1);
    }

    void failuresAreTexts_data()
    {
        addFailureRows({"Battery_getChargingStatus"_s, "Battery_getPowerSource"_s,
            "Battery_getVoltageLevel"_s});
    }

    void failuresAreTexts()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        setUnit("Battery.chargingStatus"_s, "2"_s);
        setUnit("Battery.powerSource"_s, "0"_s);
        setUnit("Battery.voltageLevel"_s, "88"_s);
        fault(operation, code);
        const auto thread = std::make_unique<HurriedThread>();
        const Received received(*thread);
        thread->runUntil(&MyThread::newLevel);
        QTRY_COMPARE(received.level.size(), 1);
        const auto fails = [&](const char *name) {
            return operation.endsWith(QLatin1String(name));
        };
        QCOMPARE(received.charge,
            QStringList(fails("ChargingStatus") ? "Could not get battery charging status\n"_s
                                                : "Battery is fully charged\n"_s));
        QCOMPARE(received.label, QStringList(fails("PowerSource") ? "Power source: Unknown"_s
                                                                  : "Power source: Battery"_s));
        QCOMPARE(received.level, QList<int>{fails("VoltageLevel") ? 0 : 88});
        const QStringList pass{"Battery_create()"_s, "Battery_isAvailable() = 0 [true]"_s,
            "Battery_getChargingStatus() = 0 [2]"_s, "Battery_getPowerSource() = 0 [0]"_s,
            "Battery_getVoltageLevel() = 0 [88]"_s, "Battery_release()"_s};
        QCOMPARE(threadCalls().value(2), failing(pass, operation, code));
    }

    void stopInTheMiddleFinishesThePass_data()
    {
        QTest::addColumn<bool>("afterSource");
        QTest::addColumn<int>("pauses");
        QTest::newRow("after the charging state") << false << 30;
        QTest::newRow("after the power source") << true << 40;
    }

    void stopInTheMiddleFinishesThePass()
    {
        QFETCH(bool, afterSource);
        QFETCH(int, pauses);
        const auto thread = std::make_unique<HurriedThread>();
        const Received received(*thread);
        thread->runUntil(afterSource ? &MyThread::newLabel : &MyThread::newCharge);
        QCOMPARE(int(thread->pauses.size()), pauses);
        QTRY_COMPARE(received.level.size(), 1);
        QCOMPARE(threadCalls().value(2).filter("_get"_s).size(), 3);
    }

    void passesGoOn()
    {
        const auto thread = std::make_unique<HurriedThread>();
        thread->runUntil(&MyThread::newCharge, 3);
        QCOMPARE(threadCalls().value(2).filter("_get"_s).size(), 9);
        QCOMPARE(int(thread->pauses.size()), 50 + 50 + 30);
    }

    void endsAtOnceWithoutBattery_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("none") << 0;
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << code;
    }

    void endsAtOnceWithoutBattery()
    {
        QFETCH(int, code);
        setUnit("Battery.available"_s, "false"_s);
        fault("Battery_isAvailable"_s, code);
        const auto thread = std::make_unique<MyThread>();
        thread->start();
        QVERIFY(thread->wait(5000));
        QCOMPARE(int(batteryKeepRunning.load()), 0);
        QCOMPARE(threadCalls().value(2),
            QStringList({"Battery_create()"_s,
                "Battery_isAvailable() = %1"_s.arg(code) + (code == 0 ? " [false]"_s : QString()),
                "Battery_release()"_s}));
    }

    void stopsWithinOneStep()
    {
        const auto thread = std::make_unique<MyThread>();
        thread->start();
        QTRY_COMPARE(int(batteryKeepRunning.load()), 1);
        QElapsedTimer clock;
        clock.start();
        stop(*thread);
        QVERIFY2(clock.elapsed() < 1000, "it waited its full steps");
        QCOMPARE(threadCalls().value(2),
            QStringList({"Battery_create()"_s, "Battery_isAvailable() = 0 [true]"_s,
                "Battery_release()"_s}));
    }

private:
    /** The calls of each thread but the first, which is the test's, in the order of the threads. */
    QMap<int, QStringList> threadCalls()
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
    static void stop(MyThread &thread)
    {
        batteryKeepRunning.store(0);
        QVERIFY(thread.wait(5000));
    }
};

VORN_TEST_MAIN(BatteryThreadTest)
#include "tst_batterythread.moc"
