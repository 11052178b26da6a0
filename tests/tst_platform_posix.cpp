#include "platform/platform.h"
#include "tests/support/DeviceTest.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <pthread.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace support;

namespace {

/** What a function writes to the standard error stream. */
QByteArray errorsOf(const std::function<void()> &function)
{
    QTemporaryFile file;
    if (!file.open())
        qFatal("no temporary file");
    const int saved = dup(STDERR_FILENO);
    dup2(file.handle(), STDERR_FILENO);
    function();
    dup2(saved, STDERR_FILENO);
    close(saved);
    file.seek(0);
    return file.readAll();
}

void ignoreSignal(int) {}

bool isDripping = false; ///< whether the standard error stream takes a few bytes at a time

} // namespace

extern "C" {
ssize_t __real_write(int descriptor, const void *bytes, size_t count);

/** The calls of write() that this program makes itself, and the platform layer in it. */
ssize_t __wrap_write(int descriptor, const void *bytes, size_t count)
{
    if (isDripping && descriptor == STDERR_FILENO)
        count = std::min<size_t>(count, 7);
    return __real_write(descriptor, bytes, count);
}
}

/** The platform layer on a POSIX system. */
class PlatformPosixTest : public QObject
{
    Q_OBJECT

private slots:
    void pause_isNotCutShortBySignals()
    {
        struct sigaction action = {};
        action.sa_handler = ignoreSignal;
        sigaction(SIGUSR1, &action, nullptr);
        const pthread_t sleeper = pthread_self();
        std::thread disturber([sleeper] {
            for (int i = 0; i < 5; ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                pthread_kill(sleeper, SIGUSR1);
            }
        });
        QElapsedTimer timer;
        timer.start();
        platform::pause(100);
        const qint64 elapsed = timer.elapsed();
        disturber.join();
        QVERIFY2(elapsed >= 100, qPrintable(QString::number(elapsed)));
    }

    void biosText_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("present");
        QTest::addColumn<QByteArray>("value");
        const auto row = [](const char *name, const QByteArray &content, const QByteArray &value) {
            QTest::newRow(name) << content << true << value;
        };
        row("plain", "1.2.3", "1.2.3");
        row("line end", "1.2.3\n", "1.2.3");
        row("DOS line end", "1.2.3\r\n", "1.2.3");
        row("one line end only", "1.2.3\n\n", "1.2.3\n");
        row("return alone", "1.2.3\r", "1.2.3\r");
        row("blanks", " 1.2 \n", " 1.2 ");
        row("empty", "", "");
        row("bytes beyond ASCII", "\xE9\xFF\n", "\xE9\xFF");
        row("first of several texts", QByteArray("one\0two\n", 8), "one");
        row("126 characters", QByteArray(126, 'x') + "\r\n", QByteArray(126, 'x'));
        for (const int length : {127, 128, 129, 5000})
            QTest::addRow("%d characters", length) << QByteArray(length, 'x') + "\r\n"
                                                   << false << QByteArray();
    }

    void biosText()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, present);
        QFETCH(QByteArray, value);
        const QTemporaryDir folder;
        qputenv("VORN_DMI_DIR", QFile::encodeName(folder.path()));
        QFile file(folder.filePath("bios_version"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();

        const auto text = platform::biosText(platform::BiosValue::SystemBiosVersion);
        QCOMPARE(text.has_value(), present);
        if (present)
            QCOMPARE(QString::fromStdU16String(*text).toLatin1(), value);
        QVERIFY(!platform::biosText(platform::BiosValue::BaseBoardProduct));
    }

    void biosText_ofWhatIsNoFile()
    {
        const QTemporaryDir folder;
        qputenv("VORN_DMI_DIR", QFile::encodeName(folder.path()));
        QVERIFY(QDir(folder.path()).mkdir("board_name"_s));
        QVERIFY(!platform::biosText(platform::BiosValue::BaseBoardProduct));
        QVERIFY(!platform::biosText(platform::BiosValue::SystemBiosVersion));
    }

    void timeStampLine_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<QByteArray>("line");
        const auto row = [](const char *zone, qint64 seconds, const char *line) {
            QTest::addRow("%s %lld", zone, static_cast<long long>(seconds))
                << QByteArray(zone) << seconds << QByteArray(line);
        };
        row("UTC", 0, "Thu Jan  1 00:00:00 1970\n");
        row("UTC", 1325376000, "Sun Jan  1 00:00:00 2012\n");
        row("UTC", -1, "Wed Dec 31 23:59:59 1969\n");
        row("UTC", 4102444800, "Fri Jan  1 00:00:00 2100\n");
        row("<+01>-1", 0, "Thu Jan  1 01:00:00 1970\n");
        row("UTC", 253402300799, "Fri Dec 31 23:59:59 9999\n");
        row("UTC", 253402300800, "Sat Jan  1 00:00:00 10000\n");
        row("UTC", -62167219201, "Fri Dec 31 23:59:59 -1\n");
        row("UTC", std::numeric_limits<qint64>::max(), "\n");
        row("UTC", std::numeric_limits<qint64>::min(), "\n");
    }

    void timeStampLine()
    {
        QFETCH(QByteArray, zone);
        QFETCH(qint64, seconds);
        QFETCH(QByteArray, line);
        const QByteArray former = qgetenv("TZ");
        qputenv("TZ", zone);
        const std::string text = platform::timeStampLine(seconds);
        if (former.isNull())
            qunsetenv("TZ");
        else
            qputenv("TZ", former);
        QCOMPARE(QByteArray::fromStdString(text), line);
    }

    void logs_lieWhereTheyAreWritten()
    {
        qunsetenv("VORN_LOG_DIR");
        QCOMPARE(
            platform::hardwareErrorLog().string(), std::string("/var/log/HardwareErrorLog.log"));
        qputenv("VORN_LOG_DIR", "/elsewhere");
        QCOMPARE(
            platform::hardwareErrorLog().string(), std::string("/elsewhere/HardwareErrorLog.log"));
        QCOMPARE(QString::fromStdString(platform::deviceServiceLog().string()),
            QCoreApplication::applicationDirPath() + "/VornAuxService.log"_s);
    }

    void errorLine_isWrittenWhole()
    {
        const QString text = "x"_s.repeated(100'000);
        QCOMPARE(errorsOf([&] { platform::printErrorLine(text); }), text.toLatin1() + '\n');
        QCOMPARE(errorsOf([] { platform::printErrorLine(latin1("caf\xE9")); }),
            latin1("caf\xE9\n").toLocal8Bit());
        isDripping = true;
        const auto written = errorsOf([] { platform::printErrorLine("taken in three pieces"_s); });
        isDripping = false;
        QCOMPARE(written, QByteArray("taken in three pieces\n"));
    }

    void errorLine_toNobodyIsNoFailure()
    {
        platform::ensureStandardStreams();
        int ends[2];
        QCOMPARE(pipe(ends), 0);
        const int saved = dup(STDERR_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        close(ends[0]);
        platform::printErrorLine("nobody reads this"_s);
        dup2(saved, STDERR_FILENO);
        close(saved);
    }

    void standardStreams_areOpened_data()
    {
        QTest::addColumn<QList<int>>("closed");
        QTest::newRow("none") << QList<int>{};
        for (const int stream : {0, 1, 2})
            QTest::addRow("%d", stream) << QList<int>{stream};
        QTest::newRow("all") << QList<int>{0, 1, 2};
    }

    void standardStreams_areOpened()
    {
        QFETCH(QList<int>, closed);
        int saved[3];
        for (int stream = 0; stream < 3; ++stream)
            saved[stream] = dup(stream);
        for (const int stream : closed)
            close(stream);
        platform::ensureStandardStreams();
        QList<int> open;
        QList<int> changed;
        for (int stream = 0; stream < 3; ++stream) {
            struct stat now = {};
            struct stat before = {};
            if (fstat(stream, &now) == 0)
                open << stream;
            fstat(saved[stream], &before);
            if (!closed.contains(stream) &&
                (now.st_dev != before.st_dev || now.st_ino != before.st_ino))
                changed << stream;
        }
        for (int stream = 0; stream < 3; ++stream) {
            dup2(saved[stream], stream);
            close(saved[stream]);
        }
        QCOMPARE(open, (QList<int>{0, 1, 2}));
        QCOMPARE(changed, QList<int>());
    }

    void blockingMessage_isAPlainBox()
    {
        platform::showBlockingMessage("title"_s, "text"_s);
        const auto boxes = dialogs.take();
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes[0].title, "title"_s);
        QCOMPARE(boxes[0].text, "text"_s);
        QCOMPARE(boxes[0].icon, QMessageBox::NoIcon);
        QCOMPARE(boxes[0].buttons, QStringList{"OK"_s});
        QVERIFY(!boxes[0].parent);
        QVERIFY(boxes[0].modal);
    }

private:
    Dialogs dialogs;
};

VORN_TEST_MAIN(PlatformPosixTest)
#include "tst_platform_posix.moc"
