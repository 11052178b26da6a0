#include "telematics/MyGPSThread.h"
#include "telematics/telematicsState.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SerialLine.h"
#include "tests/support/system.h"
#include "virtualunit/VirtualUnit.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

using namespace support;

namespace {

constexpr int patience = 20'000; // milliseconds that a slow machine may take

std::atomic<bool> openAtRelease{false}; ///< the line, when the thread's handle was given back

constexpr char rmc[] = "$GPRMC,123519.000,A,4807.038,N,01131.000,E,022.4,084.4,230324,,,A*00\r\n";

/** For a thread, which closes it. */
SerialPort *openLine(const PseudoTerminal &line)
{
    return support::configured(line).release();
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no file %s", qPrintable(path));
    return file.readAll();
}

/** The thread, and how it hands over what it did: the thread sanitizer doesn't see Qt's own way. */
class WatchedThread : public MyGPSThread
{
public:
    bool waitForEnd() { return wait(patience) && ended; }

protected:
    void run() override
    {
        MyGPSThread::run();
        ended = true;
    }

private:
    std::atomic<bool> ended{false};
};

/** Collects what a thread sends, and stops the thread when the test ends. */
class Reader : public QObject
{
public:
    Reader()
    {
        const auto collect = [this](const char *name) {
            return [this, name](const QString &text) {
                texts << QString::fromLatin1(name) + " \""_s + text + QLatin1Char('"');
            };
        };
        connect(&thread, &MyGPSThread::newTime, this, collect("newTime"));
        connect(&thread, &MyGPSThread::newPos, this, collect("newPos"));
        connect(&thread, &MyGPSThread::newSpeed, this, collect("newSpeed"));
        connect(&thread, &MyGPSThread::newAlt, this, collect("newAlt"));
        connect(&thread, &MyGPSThread::newSat, this, collect("newSat"));
        connect(&thread, &MyGPSThread::newAcc, this, collect("newAcc"));
        connect(&thread, &MyGPSThread::newText, this, [this](const QString &text) { raw << text; });
        connect(
            &thread, &MyGPSThread::newLabel, this, [this](const QString &text) { labels << text; });
    }
    ~Reader() override { stop(); }

    void start()
    {
        thread.start();
        QVERIFY(QTest::qWaitFor([this] { return !labels.isEmpty(); }, patience));
    }
    /** Lets the read end by itself. */
    bool stop()
    {
        gpsKeepRunning = 0;
        return thread.waitForEnd();
    }
    /** Ends the read by filling its buffer. */
    bool stop(PseudoTerminal &line)
    {
        gpsKeepRunning = 0;
        return line.send(QByteArray(512, '\n')) && thread.waitForEnd();
    }

private:
    // On the heap: the sanitizer takes what becomes of a stack behind a thread for a race.
    std::unique_ptr<WatchedThread> owned = std::make_unique<WatchedThread>();

public:
    WatchedThread &thread = *owned;
    QStringList texts;
    QStringList raw;
    QStringList labels;
};

} // namespace

/** Stands before the library's own operation, to which it hands on. */
void Telematics_release(TelematicsHandle handle)
{
    using Operation = void (*)(TelematicsHandle);
    static const auto library = reinterpret_cast<Operation>(deviceProcedure("Telematics_release"));
    openAtRelease = gpsPort != nullptr;
    library(handle);
}

class GpsThreadTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void initTestCase() { support::makeMemoryCountable(); }

    void signalsInOrder()
    {
        const auto &meta = MyGPSThread::staticMetaObject;
        QStringList names;
        for (int index = meta.methodOffset(); index < meta.methodCount(); ++index)
            names << QString::fromLatin1(meta.method(index).methodSignature());
        QCOMPARE(names, (QStringList{"newText(QString)"_s, "newTime(QString)"_s,
                            "newPos(QString)"_s, "newSat(QString)"_s, "newAlt(QString)"_s,
                            "newSpeed(QString)"_s, "newAcc(QString)"_s, "newLabel(QString)"_s}));
    }

    void silentLine()
    {
        const PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        calls();
        QElapsedTimer timer;
        timer.start();
        reader.start();
        QTRY_COMPARE_WITH_TIMEOUT(reader.labels.size(), 2, 6000);
        QVERIFY(timer.elapsed() >= 2900);
        timer.start();
        QVERIFY(reader.stop());
        QVERIFY(timer.elapsed() < 5000); // within one read
        QCOMPARE(reader.raw, QStringList());
        QCOMPARE(reader.texts, QStringList());
        QCOMPARE(calls(),
            (QStringList{"Telematics_create()"_s, "Telematics_getGPSAntennaStatus() = 0 [1]"_s,
                "Telematics_getGPSAntennaStatus() = 0 [1]"_s, "Telematics_release()"_s}));
        QVERIFY(gpsPort == nullptr);
        SerialPort *again = openLine(line); // closed it is as well
        serialClose(again);
    }

    void antenna_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("label");
        const auto broken = "GPS antenna status: Error: Open or short"_s;
        const auto unknown = "GPS antenna status: Unknown"_s;
        QTest::newRow("good") << "1"_s << 0 << "GPS antenna status: OK"_s;
        QTest::newRow("open") << "0"_s << 0 << broken;
        QTest::newRow("short") << "2"_s << 0 << broken;
        QTest::newRow("not supported") << "1"_s << 2 << unknown;
        QTest::newRow("fault") << "1"_s << 7 << unknown;
        QTest::newRow("no data") << "0"_s << 18 << unknown;
    }
    void antenna()
    {
        QFETCH(QString, state);
        QFETCH(int, code);
        QFETCH(QString, label);
        setUnit("Telematics.gpsAntennaStatus"_s, state);
        if (code != 0)
            fault("Telematics_getGPSAntennaStatus"_s, code);
        Reader reader;
        reader.start();
        QVERIFY(reader.stop());
        QCOMPARE(reader.labels.first(), label);
        clearFaults();
    }

    void withoutALine()
    {
        QVERIFY(gpsPort == nullptr);
        QLabel label;
        Reader reader;
        connect(&reader.thread, &MyGPSThread::newLabel, &label, &QLabel::setText);
        reader.start();
        // No pause between the passes, and yet the window stays alive.
        QTRY_VERIFY(reader.labels.size() > 100);
        int ticks = 0;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, this, [&ticks] { ++ticks; });
        ticker.start(10);
        QTRY_VERIFY(ticks > 20);
        QVERIFY(reader.stop());
        QCOMPARE(label.text(), "GPS antenna status: OK"_s);
        QCOMPARE(reader.raw, QStringList());
    }

    void labelsWaitForTheWindow()
    {
        std::atomic<int> sent{0};
        Reader reader;
        connect(
            &reader.thread, &MyGPSThread::newLabel, &reader.thread, [&sent] { ++sent; },
            Qt::DirectConnection);
        reader.start();
        const int before = sent;
        QThread::msleep(1000); // a busy window
        // One more, whose arrival was counted here just before its sending.
        QVERIFY2(sent - before <= 501, qPrintable(QString::number(sent - before)));
        QTRY_VERIFY(sent - before > 1500);
        QVERIFY(reader.stop());
    }

    void unconfiguredLine()
    {
        PseudoTerminal line;
        gpsPort = serialOpen(line.path().constData());
        QVERIFY(line.send(rmc));
        Reader reader;
        reader.start();
        QTRY_VERIFY(reader.labels.size() > 10);
        QVERIFY(reader.stop());
        QCOMPARE(reader.raw, QStringList());
        QVERIFY(gpsPort == nullptr);
    }

    void recordings_data()
    {
        QTest::addColumn<QString>("path");
        const QDir folder(VORN_SOURCE_DIR "/tests/nmea"_s);
        for (const QString &file : folder.entryList({"*.nmea"_s}))
            QTest::newRow(qPrintable(file)) << folder.filePath(file);
    }
    void recordings()
    {
        QFETCH(QString, path);
        PseudoTerminal line;
        gpsPort = openLine(line);
        const QByteArray recorded = contents(path);
        const QByteArray expected =
            contents(path.left(path.lastIndexOf(QLatin1Char('.'))) + ".expected"_s);
        Reader reader;
        reader.start();
        // Zero bytes fill the last chunk, and end its text.
        const auto chunks = (recorded.size() + 511) / 512;
        QVERIFY(line.send(recorded.leftJustified(chunks * 512, '\0')));
        QTRY_COMPARE_WITH_TIMEOUT(reader.raw.size(), chunks, 10'000);
        QTRY_COMPARE(
            reader.texts.join(QLatin1Char('\n')) + QLatin1Char('\n'), QString::fromUtf8(expected));
        QVERIFY(reader.stop(line));
        for (int chunk = 0; chunk < chunks; ++chunk)
            QCOMPARE(reader.raw.at(chunk), QString::fromUtf8(recorded.mid(chunk * 512, 512)));
    }

    void zeroBytes()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        reader.start();
        QVERIFY(line.send((QByteArray(1, '\0') + rmc).leftJustified(512, '\n')));
        QTRY_COMPARE(reader.labels.size(), 2); // the chunk counts as none
        QCOMPARE(reader.raw, QStringList());
        QByteArray chunk = QByteArray("$PFST,FOM,1.5*00\r\n") + '\0' + rmc;
        QVERIFY(line.send(chunk + QByteArray(512 - chunk.size(), '\n')));
        QTRY_COMPARE(reader.texts, QStringList{"newAcc \"1.5 meters\""_s});
        QCOMPARE(reader.raw, QStringList{"$PFST,FOM,1.5*00\r\n"_s});
        QVERIFY(reader.stop(line));
    }

    /** What a shorter chunk doesn't reach of the buffer is none of its text. */
    void chunksEndedBySilence()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        reader.start();
        const QByteArray first = QByteArray("$PFST,FOM,1*00\n").leftJustified(99, '-') + '\n';
        const QByteArray second = "$PFST,FOM,2*00\n----\n";
        QVERIFY(line.send(first));
        QTRY_COMPARE_WITH_TIMEOUT(reader.raw, QStringList{QString::fromLatin1(first)}, patience);
        QVERIFY(line.send(second));
        const QStringList both{QString::fromLatin1(first), QString::fromLatin1(second)};
        QTRY_COMPARE_WITH_TIMEOUT(reader.raw, both, patience);
        // The silence behind them says nothing more.
        QTRY_COMPARE_WITH_TIMEOUT(reader.labels.size(), 4, patience);
        QCOMPARE(reader.raw, both);
        QCOMPARE(reader.texts, (QStringList{"newAcc \"1 meters\""_s, "newAcc \"2 meters\""_s}));
        QVERIFY(reader.stop(line));
    }

    void pauseBetweenChunks()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        constexpr int chunks = 11;
        QVERIFY(line.send(QByteArray(chunks * 512, '\n'))); // they all wait
        std::vector<qint64> times;                          // the thread's, in its own hand
        QElapsedTimer clock;
        clock.start();
        Reader reader;
        connect(
            &reader.thread, &MyGPSThread::newText, &reader.thread,
            [&] { times.push_back(clock.elapsed()); }, Qt::DirectConnection);
        reader.start();
        QTRY_COMPARE_WITH_TIMEOUT(reader.raw.size(), chunks, patience);
        QVERIFY(reader.stop(line));
        QVERIFY(times[chunks - 1] - times[0] >= (chunks - 1) * 10 - 1);
    }

    void noPauseWithoutChunks()
    {
        QVERIFY(gpsPort == nullptr);
        qint64 last = -1;
        qint64 shortest = std::numeric_limits<qint64>::max(); // nanoseconds between two labels
        QElapsedTimer clock;
        clock.start();
        Reader reader;
        connect(
            &reader.thread, &MyGPSThread::newLabel, &reader.thread,
            [&] {
                const qint64 now = clock.nsecsElapsed();
                if (last >= 0)
                    shortest = std::min(shortest, now - last);
                last = now;
            },
            Qt::DirectConnection);
        reader.start();
        QTRY_VERIFY(reader.labels.size() > 200);
        QVERIFY(reader.stop());
        // A busy machine makes some of them long, a pause all.
        QVERIFY2(shortest < 5'000'000, qPrintable(QString::number(shortest)));
    }

    void shortTimeDoesntEndTheReader()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        reader.start();
        QByteArray chunk = "$GPRMC,12,A,1.0,N,2.0,E,3,4,230324,$PFST,FOM,1\n$PFST,FOM,2*00\n";
        QVERIFY(line.send(chunk + QByteArray(512 - chunk.size(), '\n')));
        QTRY_COMPARE(reader.texts, QStringList{"newAcc \"2 meters\""_s});
        QVERIFY(reader.thread.isRunning());
        QVERIFY(reader.stop(line));
    }

    void chunkWithoutALineFeed()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        reader.start();
        const QByteArray value(498, '1');
        const QByteArray chunk = "$PFST,FOM," + value + "*" + "end";
        QCOMPARE(chunk.size(), 512);
        QVERIFY(line.send(chunk));
        // What fits a line is looked at once,
        QTRY_COMPARE(
            reader.texts, QStringList{"newAcc \""_s + QString::fromLatin1(value) + " meters\""_s});
        QCOMPARE(reader.raw, QStringList{QString::fromLatin1(chunk)});
        // and then nothing is read any more,
        const QByteArray next = QByteArray(rmc).repeated(8);
        QVERIFY(line.send(next));
        QTest::qWait(300);
        QCOMPARE(reader.raw.size(), 1);
        QCOMPARE(reader.labels.size(), 1);
        // but the stop is heard at once, not after the silence that would end a read.
        QElapsedTimer timer;
        timer.start();
        QVERIFY(reader.stop());
        QVERIFY(timer.elapsed() < 2500);
        QVERIFY(gpsPort == nullptr);
    }

    void stopBetweenLines()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        // Said by the thread itself, so in the midst of the chunk.
        connect(
            &reader.thread, &MyGPSThread::newAcc, &reader.thread, [] { gpsKeepRunning = 0; },
            Qt::DirectConnection);
        reader.start();
        QVERIFY(line.send(QByteArray("$PFST,FOM,1*00\n$PFST,FOM,2*00\n").repeated(18).left(512)));
        QVERIFY(reader.thread.waitForEnd());
        QTRY_COMPARE(reader.texts, QStringList{"newAcc \"1 meters\""_s});
        QTest::qWait(0);
        QCOMPARE(reader.texts.size(), 1);
    }

    void stopBeforeTheStartIsOverwritten()
    {
        gpsKeepRunning = 0;
        Reader reader;
        reader.start();
        QTRY_VERIFY(reader.labels.size() > 3);
        QVERIFY(reader.thread.isRunning());
        QVERIFY(reader.stop());
    }

    void stopWakesTheRead()
    {
        const PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        reader.start();
        QThread::msleep(100); // behind the label comes the read
        QElapsedTimer timer;
        timer.start();
        reader.thread.stop();
        QVERIFY(reader.thread.waitForEnd());
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(gpsPort == nullptr);
    }

    void stopRightAfterTheStart()
    {
        PseudoTerminal line;
        for (int round = 0; round < 50; ++round) {
            gpsPort = openLine(line);
            Reader reader;
            QElapsedTimer timer;
            timer.start();
            reader.thread.start();
            reader.thread.stop();
            QVERIFY(reader.thread.waitForEnd());
            QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
            QVERIFY(gpsPort == nullptr);
        }
    }

    void stoppedThreadLeavesTheBytes()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        GpsLineShare share; // as the next thread has one
        QCOMPARE(virtualunit::setDelay("Telematics_getGPSAntennaStatus", 500), std::string());
        Reader reader;
        reader.thread.start();
        QStringList made;
        QTRY_VERIFY((made += calls()).contains("Telematics_create()"_s));
        QVERIFY(line.send("for the next"));
        reader.thread.stop();
        QVERIFY(reader.thread.waitForEnd());
        QCOMPARE(reader.raw, QStringList());
        QByteArray bytes(12, '\0');
        QCOMPARE(serialRead(gpsPort, bytes.data(), 12), 0);
        QCOMPARE(bytes, QByteArray("for the next"));
        share.giveBack();
        QVERIFY(gpsPort == nullptr);
    }

    void vanishingLine()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        reader.start();
        line.hangUp();
        QTRY_COMPARE_WITH_TIMEOUT(reader.labels.size(), 2, 6000);
        QVERIFY(reader.stop());
        QVERIFY(reader.labels.size() <= 3); // one for each silence: no spinning
        QVERIFY(gpsPort == nullptr);
    }

    void handleGoesBeforeTheLine()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        openAtRelease = false;
        Reader reader;
        reader.start();
        QVERIFY(reader.stop(line));
        QVERIFY(openAtRelease);
        QVERIFY(gpsPort == nullptr);
    }

    void lastThreadClosesTheLine()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        Reader givenUp;
        givenUp.start();
        Reader next;
        next.start();
        // The flag is the next one's; who was given up ends by himself.
        givenUp.thread.requestInterruption();
        while (!givenUp.thread.wait(10))
            QVERIFY(line.send(QByteArray(512, '\n')));
        QVERIFY(gpsPort != nullptr);
        QVERIFY(next.thread.isRunning());
        QVERIFY(next.stop(line));
        QVERIFY(gpsPort == nullptr);
    }

    void sharesOfManyThreads()
    {
        std::vector<std::thread> threads;
        for (int number = 0; number < 4; ++number) {
            threads.emplace_back([] {
                for (int round = 0; round < 500; ++round) {
                    GpsLineShare share;
                    share.giveBack();
                    share.giveBack(); // once is enough
                    const GpsLineShare another;
                }
            });
        }
        for (auto &thread : threads)
            thread.join();
        const PseudoTerminal line;
        gpsPort = openLine(line);
        {
            const GpsLineShare first;
            {
                const GpsLineShare second;
            }
            QVERIFY(gpsPort != nullptr);
        }
        QVERIFY(gpsPort == nullptr);
    }

    void leavesNothingBehind()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        serialClose(gpsPort);
        gpsPort = nullptr;
        const auto before = support::openHandles();
        for (int round = 0; round < 100; ++round) {
            gpsPort = openLine(line);
            Reader reader;
            reader.start();
            QVERIFY(
                line.send(QByteArray("$PFST,FOM,1*00\n$PFST,FOM,2*00\n").repeated(18).left(512)));
            QVERIFY(QTest::qWaitFor([&reader] { return !reader.texts.isEmpty(); }, patience));
            QVERIFY(reader.stop(line));
        }
        QVERIFY(support::openHandles() < before + 10); // the system may have opened some for itself
    }

    void memoryDoesntGrow()
    {
        PseudoTerminal line;
        gpsPort = openLine(line);
        Reader reader;
        reader.start();
        // What the test itself would collect is no growth of the thread's.
        int chunks = 0;
        disconnect(&reader.thread, nullptr, &reader, nullptr);
        connect(&reader.thread, &MyGPSThread::newText, this, [&chunks] { ++chunks; });
        const QByteArray chunk = QByteArray(rmc).repeated(8).left(511) + '\n';
        const auto feed = [&](int count) {
            const int until = chunks + count;
            while (chunks < until) {
                QVERIFY(line.send(chunk));
                QTest::qWait(1);
            }
            calls(); // the journal is none either
        };
        feed(50);
        qint64 growth = std::numeric_limits<qint64>::max();
        for (int round = 0; round < 3; ++round) {
            const qint64 memory = support::allocatedMemory();
            feed(100);
            growth = std::min(growth, support::allocatedMemory() - memory);
        }
        // A queue may grow in one round, a leak does in all of them. One stream for each chunk
        // would be at least its 512 bytes.
        QVERIFY2(growth < 100 * 256, qPrintable(QString::number(growth)));
        QVERIFY(reader.stop()); // the line may still be full
    }
};

VORN_TEST_MAIN(GpsThreadTest)
#include "tst_gpsthread.moc"
