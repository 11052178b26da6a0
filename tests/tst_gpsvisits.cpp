#include "telematics/tabTelematicsDlg.h"
#include "telematics/telematicsState.h"
#include "tests/support/PageTest.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/system.h"
#include "virtualunit/VirtualUnit.h"

#include <atomic>
#include <thread>

using namespace support;

using support::operator""_s;

namespace {

constexpr int rounds = 5;
constexpr int visits = 100;     // in each round
constexpr int firstVisits = 50; // until all that is kept for the next one is there

/** A receiver that never falls silent, so that no read waits. */
class TalkingReceiver
{
public:
    explicit TalkingReceiver(support::PseudoTerminal &line)
        : talker([this, &line] {
            const QByteArray sentence =
                "$GPRMC,123519.00,A,4807.038,N,01131.000,E,022.4,084.4,230324,003.1,W*6A\r\n";
            const QByteArray chunk = sentence.repeated(8).left(512);
            while (!over) {
                if (gpsPort.load())
                    line.send(chunk);
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        })
    {}
    ~TalkingReceiver()
    {
        over = true;
        talker.join();
    }
    TalkingReceiver(const TalkingReceiver &) = delete;
    TalkingReceiver &operator=(const TalkingReceiver &) = delete;

private:
    std::atomic<bool> over{false};
    std::thread talker;
};

} // namespace

/** What visits of the GPS tab leave behind. */
class GpsVisitsTest : public PageTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        support::makeMemoryCountable();
        support::useNoOtherLines();
    }

    void manyVisits_data()
    {
        QTest::addColumn<bool>("usable");
        QTest::newRow("with a line") << true;
        QTest::newRow("without a line") << false;
    }

    void manyVisits()
    {
        QFETCH(bool, usable);
        support::PseudoTerminal line;
        const TalkingReceiver receiver(line);
        if (usable)
            line.setName("COM4"_s);
        virtualunit::stopJournal(); // which grows with every call

        tabTelematicsDlg page;
        page.show();
        auto *tabs = child<QTabWidget>(&page, "tabWidget");
        auto *position = child<QLineEdit>(&page, "editGpsPos");
        positions = 0;
        connect(position, &QLineEdit::textChanged, this,
            [this](const QString &text) { positions += text != "INVALID"_s; });
        support::SkippedPauses pauses; // they would be most of the test's time
        const auto visit = [&](int count) {
            for (int number = 0; number < count; ++number) {
                tabs->setCurrentIndex(1);
                QCOMPARE(dialogs.takeTexts(),
                    usable ? QStringList() : QStringList{"Could not open serial port: COM4"_s});
                if (usable && number % 10 == 0)
                    QVERIFY(QTest::qWaitFor([&] { return position->text() != "INVALID"_s; }));
                tabs->setCurrentIndex(0);
                QVERIFY(!gpsPort.load());
                QCOMPARE(pauses.take(), std::vector<int>{50});
                QCoreApplication::processEvents();
            }
        };
        visit(firstVisits);
        const int threads = support::threads();
        int opened = std::numeric_limits<int>::max();
        qint64 growth = std::numeric_limits<qint64>::max();
        for (int round = 0; round < rounds; ++round) {
            const int handles = support::openHandles();
            const qint64 memory = support::allocatedMemory();
            visit(visits);
            opened = std::min(opened, support::openHandles() - handles);
            growth = std::min(growth, support::allocatedMemory() - memory);
        }
        // A queue may grow in one round, and the system or the toolkit open something for itself; a
        // leak grows in all of them. The smallest object of a visit is the thread, of some hundred
        // bytes.
        QVERIFY2(opened < 10, qPrintable(QString::number(opened)));
        QVERIFY(support::threads() < threads + 10);
        QVERIFY2(growth < visits * 64, qPrintable(QString::number(growth)));
        QCOMPARE(positions >= (firstVisits + rounds * visits) / 10, usable);
    }

private:
    int positions = 0; // shown so far
};

VORN_TEST_MAIN(GpsVisitsTest)
#include "tst_gpsvisits.moc"
