#include "telematics/tabTelematicsDlg.h"
#include "telematics/telematicsState.h"
#include "tests/support/PageTest.h"
#include "tests/support/PseudoTerminal.h"
#include "virtualunit/VirtualUnit.h"

#include <QTemporaryDir>

#include <atomic>
#include <filesystem>
#include <thread>

#include <malloc.h>

using support::child;
using support::operator""_s;

// The linker puts this in place of the program's pauses, which would be most of the test's time.
extern "C" void __wrap__ZN8platform5pauseEi(int)
{
    std::this_thread::sleep_for(std::chrono::microseconds(100));
}

namespace {

constexpr int rounds = 5;
constexpr int visits = 100;     // in each round
constexpr int firstVisits = 50; // until all that is kept for the next one is there

int entries(const char *folder)
{
    const std::filesystem::directory_iterator entries(folder);
    return int(std::distance(begin(entries), end(entries)));
}

/** Bytes that are allocated in this process. The sanitizers' own allocators say nothing here, and
 *  find leaks themselves. */
qint64 allocatedMemory()
{
    const auto info = ::mallinfo2();
    return qint64(info.uordblks + info.hblkhd);
}

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
    void initTestCase();
    void manyVisits_data();
    void manyVisits();
};

void GpsVisitsTest::initTestCase()
{
    ::mallopt(M_ARENA_MAX, 1); // only this one's memory is told
}

void GpsVisitsTest::manyVisits_data()
{
    QTest::addColumn<bool>("usable");
    QTest::newRow("with a line") << true;
    QTest::newRow("without a line") << false;
}

void GpsVisitsTest::manyVisits()
{
    QFETCH(bool, usable);
    const QTemporaryDir folder;
    qputenv("VORN_SERIAL_DIR", QFile::encodeName(folder.path()));
    support::PseudoTerminal line;
    const TalkingReceiver receiver(line);
    if (usable)
        QVERIFY(QFile::link(QFile::decodeName(line.path()), folder.filePath("COM4"_s)));
    virtualunit::stopJournal(); // which grows with every call

    tabTelematicsDlg page;
    page.show();
    auto *tabs = child<QTabWidget>(&page, "tabWidget");
    auto *position = child<QLineEdit>(&page, "editGpsPos");
    int positions = 0;
    connect(position, &QLineEdit::textChanged, this,
        [&](const QString &text) { positions += text != "INVALID"_s; });
    const auto visit = [&](int count) {
        for (int number = 0; number < count; ++number) {
            tabs->setCurrentIndex(1);
            QCOMPARE(dialogs.takeTexts(),
                usable ? QStringList() : QStringList{"Could not open serial port: COM4"_s});
            if (usable && number % 10 == 0)
                QVERIFY(QTest::qWaitFor([&] { return position->text() != "INVALID"_s; }));
            tabs->setCurrentIndex(0);
            QVERIFY(!gpsPort.load());
            QCoreApplication::processEvents();
        }
    };
    visit(firstVisits);
    const int threads = entries("/proc/self/task");
    const int descriptors = entries("/proc/self/fd");
    qint64 growth = std::numeric_limits<qint64>::max();
    for (int round = 0; round < rounds; ++round) {
        const qint64 memory = allocatedMemory();
        visit(visits);
        growth = std::min(growth, allocatedMemory() - memory);
    }
    QCOMPARE(entries("/proc/self/task"), threads);
    QCOMPARE(entries("/proc/self/fd"), descriptors);
    // A queue may grow in one round, a leak does in all of them. The smallest object of a visit is
    // the thread, of some hundred bytes.
    QVERIFY2(growth < visits * 64, qPrintable(QString::number(growth)));
    QCOMPARE(positions >= (firstVisits + rounds * visits) / 10, usable);
}

VORN_TEST_MAIN(GpsVisitsTest)
#include "tst_gpsvisits.moc"
