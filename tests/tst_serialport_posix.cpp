#include "telematics/serialPort_posix.h"
#include "tests/support/SerialTest.h"
#include "tests/support/literals.h"

#include <QElapsedTimer>
#include <QFile>
#include <QScopedValueRollback>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <cstring>
#include <ctime>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace support;

namespace {

// A loaded machine may be late, but never early.
constexpr int early = 20;

/** What a reading leaves in its buffer: the text, and untouched zero bytes behind it. */
QByteArray padded(const QByteArray &text, int count)
{
    return text + QByteArray(count - int(text.size()), '\0');
}

/** Runs the work in another process and returns what it returned, 0 to 255. */
int inOtherProcess(const std::function<int()> &work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/** The error of a plain open of that line, by another process that is not the super user. */
int errorOfPlainOpen(const QByteArray &path)
{
    ::chmod(path.constData(), 0666);
    return inOtherProcess([&path] {
        if (::geteuid() == 0 && ::setuid(65534) != 0)
            return 255;
        const int handle = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        return handle < 0 ? errno : 0;
    });
}

termios stateOf(const PseudoTerminal &line)
{
    termios state{};
    if (::tcgetattr(line.descriptor(), &state) != 0)
        qFatal("no state of the pseudo-terminal");
    return state;
}

void setState(const PseudoTerminal &line, const termios &state)
{
    if (::tcsetattr(line.descriptor(), TCSANOW, &state) != 0)
        qFatal("pseudo-terminal refuses the state");
}

bool sameState(const termios &one, const termios &other)
{
    return one.c_iflag == other.c_iflag && one.c_oflag == other.c_oflag &&
           one.c_cflag == other.c_cflag && one.c_lflag == other.c_lflag &&
           std::memcmp(one.c_cc, other.c_cc, sizeof one.c_cc) == 0 &&
           ::cfgetispeed(&one) == ::cfgetispeed(&other) &&
           ::cfgetospeed(&one) == ::cfgetospeed(&other);
}

double processorSeconds()
{
    timespec used{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return double(used.tv_sec) + double(used.tv_nsec) / 1e9;
}

// What a pseudo-terminal never does and other lines may; the linker leads the layer's calls here.
// Without an answer of the test's, the system's own is given.
std::function<int(pollfd *, nfds_t, int)> pollInstead;
std::function<int(int, int *)> queueInstead; // the bytes that wait to be sent
std::function<int()> drainInstead;
std::function<int(const char *)> openInstead;

int failure(int error)
{
    errno = error;
    return -1;
}

} // namespace

extern "C" {
int systemPoll(pollfd *waitedFor, nfds_t count, int wait) __asm__("__real_poll");
int testPoll(pollfd *waitedFor, nfds_t count, int wait) __asm__("__wrap_poll");
int systemIoctl(int handle, unsigned long request, void *argument) __asm__("__real_ioctl");
int testIoctl(int handle, unsigned long request, void *argument) __asm__("__wrap_ioctl");
int systemDrain(int handle) __asm__("__real_tcdrain");
int testDrain(int handle) __asm__("__wrap_tcdrain");
int systemOpen(const char *path, int flags, mode_t mode) __asm__("__real_open");
int testOpen(const char *path, int flags, mode_t mode) __asm__("__wrap_open");
int systemStat(int handle, struct stat *status) __asm__("__real_fstat");
int testStat(int handle, struct stat *status) __asm__("__wrap_fstat");
}

bool linesAreUarts = false;  ///< whether terminals pass for what has wires
bool holdersAreKnown = true; ///< whether the kernel is one that tells of them

int testStat(int handle, struct stat *status)
{
    const int result = systemStat(handle, status);
    if (result == 0 && linesAreUarts)
        status->st_rdev = makedev(4, 64);
    return result;
}

int testPoll(pollfd *waitedFor, nfds_t count, int wait)
{
    return pollInstead ? pollInstead(waitedFor, count, wait) : systemPoll(waitedFor, count, wait);
}

int testIoctl(int handle, unsigned long request, void *argument)
{
    if (request == TIOCGEXCL && !holdersAreKnown)
        return failure(ENOTTY);
    return request == TIOCOUTQ && queueInstead ? queueInstead(handle, static_cast<int *>(argument))
                                               : systemIoctl(handle, request, argument);
}

int testDrain(int handle)
{
    return drainInstead ? drainInstead() : systemDrain(handle);
}

int testOpen(const char *path, int flags, mode_t mode)
{
    return openInstead ? openInstead(path) : systemOpen(path, flags, mode);
}

class SerialPortPosixTest : public SerialTest
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        qunsetenv("VORN_SERIAL_DIR");
        pollInstead = {};
        queueInstead = {};
        drainInstead = {};
        openInstead = {};
    }

    void namesThatAreNoLine_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("nowhere") << QByteArray("/dev/no such line");
        QTest::newRow("not in /dev") << QByteArray("no such line");
        QTest::newRow("folder") << QByteArray("/dev");
        QTest::newRow("no terminal") << QByteArray("/dev/null");
        QTest::newRow("COM0") << QByteArray("COM0");
        QTest::newRow("COM") << QByteArray("COM");
        QTest::newRow("COM without a number") << QByteArray("COMx");
        QTest::newRow("COM out of range") << QByteArray("COM99999999999999999999");
        QTest::newRow("56 characters") << QByteArray(56, 'x');
        QTest::newRow("255 characters") << QByteArray(255, 'x');
        QTest::newRow("longer than any path") << QByteArray(100'000, 'x');
        QTest::newRow("long path") << QByteArray("/") + QByteArray(100'000, '/');
        QTest::newRow("signed characters") << QByteArray("\xff\x80\xfe");
    }
    void namesThatAreNoLine()
    {
        QFETCH(QByteArray, name);
        QCOMPARE(serialOpen(name.constData()), nullptr);
    }

    void filesAreNoLines()
    {
        QTemporaryDir folder;
        const QByteArray file = QFile::encodeName(folder.filePath("file"_s));
        QFile out(QFile::decodeName(file));
        QVERIFY(out.open(QIODevice::WriteOnly) && out.write("text") == 4);
        out.close();
        QCOMPARE(serialOpen(file.constData()), nullptr);
        QVERIFY(out.open(QIODevice::ReadOnly));
        QCOMPARE(out.readAll(), QByteArray("text"));

        const QByteArray pipe = file + ".pipe";
        QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
        QCOMPARE(serialOpen(pipe.constData()), nullptr);
    }

    void bareNamesLieInDev()
    {
        const PseudoTerminal line;
        const QByteArray path = line.path();
        QVERIFY(path.startsWith("/dev/"));
        QVERIFY(Port(serialOpen(path.constData() + 5)) != nullptr);
    }

    /** They count from 1, the system's own lines from 0. */
    void comNamesAreTheSystemsLines()
    {
        QList<QByteArray> asked;
        openInstead = [&asked](const char *path) {
            asked << path;
            return failure(ENOENT);
        };
        for (const char *name : {"COM1", "COM3", "COM999", "COM1000", "com3", "ttyUSB0", "/x/COM3"})
            QCOMPARE(serialOpen(name), nullptr);
        QCOMPARE(asked, (QList<QByteArray>{"/dev/ttyS0", "/dev/ttyS2", "/dev/ttyS998",
                            "/dev/COM1000", "/dev/com3", "/dev/ttyUSB0", "/x/COM3"}));
    }

    void comNamesLieInTheFolder()
    {
        const PseudoTerminal line;
        QTemporaryDir folder;
        for (const char *name : {"COM3", "COM12", "COM07", "tty"}) {
            QVERIFY(QFile::link(
                QFile::decodeName(line.path()), folder.filePath(QString::fromLatin1(name))));
        }
        QCOMPARE(serialOpen("COM12"), nullptr);
        qputenv("VORN_SERIAL_DIR", QFile::encodeName(folder.path()));
        QVERIFY(Port(serialOpen("COM3")) != nullptr);
        QVERIFY(Port(serialOpen("COM12")) != nullptr);
        QCOMPARE(serialOpen("COM4"), nullptr);
        QCOMPARE(serialOpen("COM07"), nullptr); // no number of a port is written so
        QVERIFY(opened(line) != nullptr);       // paths stay paths
        qputenv("VORN_SERIAL_DIR", "");
        QCOMPARE(serialOpen("COM12"), nullptr);
    }

    void opening()
    {
        PseudoTerminal line;
        const termios found = stateOf(line);
        const Port port = opened(line);
        QVERIFY(port);
        QVERIFY(sameState(port->savedState, found));
        QVERIFY(sameState(port->workingState, found));
        QVERIFY(sameState(stateOf(line), found));
        QCOMPARE(int(port->configured), 0);
        QCOMPARE(::fcntl(port->handle, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    }

    void noControllingTerminal()
    {
        const PseudoTerminal line;
        const QByteArray path = line.path();
        QCOMPARE(inOtherProcess([&path] {
            ::setsid();
            if (!serialOpen(path.constData()))
                return 255;
            return ::open("/dev/tty", O_RDWR) < 0 ? errno : 0;
        }),
            ENXIO);
    }

    void onlyOneHolder()
    {
        const QScopedValueRollback<bool> uarts(linesAreUarts, true);
        const PseudoTerminal line;
        const QByteArray path = line.path();
        // One that went without closing would leave the pseudo-terminal exclusive.
        const auto openThere = [&path] { return Port(serialOpen(path.constData())) ? 1 : 0; };
        QCOMPARE(errorOfPlainOpen(path), 0);
        QCOMPARE(inOtherProcess(openThere), 1);

        Port port = opened(line);
        QVERIFY(port);
        QCOMPARE(serialOpen(path.constData()), nullptr);
        QCOMPARE(inOtherProcess(openThere), 0);
        QCOMPARE(errorOfPlainOpen(path), EBUSY);
        QVERIFY(serialConfigure(port.get(), 4, 3, 0, 0) == 0); // the holder isn't disturbed

        port.reset();
        QCOMPARE(errorOfPlainOpen(path), 0);
        QCOMPARE(inOtherProcess(openThere), 1);
    }

    /** It could not close the line, and the other end is still open. */
    void lineOfOneThatWasKilled()
    {
        const PseudoTerminal line;
        const QByteArray path = line.path();
        QCOMPARE(inOtherProcess([&path] { return serialOpen(path.constData()) ? 1 : 0; }), 1);
        QVERIFY(opened(line));
        QCOMPARE(errorOfPlainOpen(path), 0);
    }

    void exclusivenessOfAnotherProgram()
    {
        const PseudoTerminal line;
        const QByteArray path = line.path();
        const int other = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        QVERIFY(other >= 0);
        QCOMPARE(::ioctl(other, TIOCEXCL, nullptr), 0);
        QCOMPARE(serialOpen(path.constData()), nullptr);
        QCOMPARE(errorOfPlainOpen(path), EBUSY); // it still has what it asked for
        QCOMPARE(::ioctl(other, TIOCNXCL, nullptr), 0);
        QVERIFY(opened(line));
        ::close(other);
    }

    void holderThatNobodyKnows()
    {
        const QScopedValueRollback<bool> kernel(holdersAreKnown, false);
        const PseudoTerminal line;
        QVERIFY(opened(line));
        QCOMPARE(serialOpen("/dev/null"), nullptr); // no line at all
    }

    void lineFormats_data() { addSpeeds(); }

    void lineFormats()
    {
        QFETCH(int, baud);
        QFETCH(int, speed);
        const tcflag_t sizes[] = {CS5, CS6, CS7, CS8};
        const tcflag_t parities[] = {0, PARENB, PARENB | PARODD};
        const tcflag_t stops[] = {0, CSTOPB};
        const PseudoTerminal line;
        const Port port = opened(line);
        for (int bits = 0; bits < 4; ++bits) {
            for (int parity = 0; parity < 3; ++parity) {
                for (int stop = 0; stop < 2; ++stop) {
                    QCOMPARE(serialConfigure(port.get(), baud, bits, parity, stop), 0);
                    const termios &asked = port->workingState;
                    QCOMPARE(asked.c_cflag & CSIZE, sizes[bits]);
                    QCOMPARE(asked.c_cflag & (PARENB | PARODD), parities[parity]);
                    QCOMPARE(asked.c_cflag & CSTOPB, stops[stop]);
                    // Character size and parity are nothing to a pseudo-terminal.
                    const termios there = stateOf(line);
                    QCOMPARE(line.speed(), speed);
                    QCOMPARE(there.c_cflag & CSTOPB, stops[stop]);
                    QCOMPARE(int(port->configured), 1);
                    QCOMPARE(port->baudCode, baud);
                    QCOMPARE(port->dataBitsCode, bits);
                    QCOMPARE(port->parityCode, parity);
                    QCOMPARE(port->stopBitsCode, stop);
                }
            }
        }
    }

    void refusedCodes_data() { addRefusedCodes(); }

    void refusedCodes()
    {
        QFETCH(QList<int>, codes);
        QFETCH(int, result);
        PseudoTerminal line;
        const termios found = stateOf(line);
        const Port port = opened(line);
        const auto configure = [&] {
            return serialConfigure(port.get(), codes[0], codes[1], codes[2], codes[3]);
        };
        QCOMPARE(configure(), result);
        QCOMPARE(int(port->configured), 0);
        QVERIFY(sameState(stateOf(line), found));

        QCOMPARE(serialConfigure(port.get(), 7, 2, 1, 1), 0);
        const termios before = stateOf(line);
        QCOMPARE(configure(), result);
        QVERIFY(sameState(stateOf(line), before));
        QCOMPARE(port->baudCode, 7);
        QCOMPARE(port->stopBitsCode, 1);
        QCOMPARE(write(port, "still"), 0);
        QCOMPARE(line.receive(5), QByteArray("still"));
        QVERIFY(line.send("here"));
        QCOMPARE(read(port, 4).bytes, QByteArray("here"));
    }

    void refusedCodesLeaveEarlierOnesStored()
    {
        const PseudoTerminal line;
        const Port port = configured(line);
        QCOMPARE(serialConfigure(port.get(), 8, 0, 2, 7), 6);
        QCOMPARE(int(::cfgetospeed(&port->workingState)), int(B115200));
        QCOMPARE(port->workingState.c_cflag & CSIZE, tcflag_t(CS5));
        QCOMPARE(port->workingState.c_cflag & (PARENB | PARODD), tcflag_t(PARENB | PARODD));
        QCOMPARE(serialConfigure(port.get(), 0, 9, 0, 0), 4);
        QCOMPARE(int(::cfgetospeed(&port->workingState)), int(B1200));
        QCOMPARE(port->workingState.c_cflag & CSIZE, tcflag_t(CS5));
        const termios there = stateOf(line);
        QCOMPARE(int(::cfgetospeed(&there)), int(B9600));
    }

    void flagsOfConfiguring()
    {
        PseudoTerminal line;
        termios found = stateOf(line);
        found.c_iflag |= IXON | IXOFF | IXANY | INPCK | IGNPAR | ICRNL | INLCR | IGNCR | ISTRIP |
                         IGNBRK | BRKINT | PARMRK;
        found.c_oflag |= OPOST | ONLCR;
        found.c_cflag |= CRTSCTS | HUPCL;
        found.c_cflag &= ~tcflag_t(CLOCAL);
        found.c_lflag |= ICANON | ECHO | ISIG | IEXTEN | TOSTOP;
        found.c_cc[VINTR] = 7;
        setState(line, found);
        const Port port = configured(line);
        const termios state = stateOf(line);
        QCOMPARE(state.c_iflag &
                     (IXON | IXOFF | ICRNL | INLCR | IGNCR | ISTRIP | IGNBRK | BRKINT | PARMRK),
            tcflag_t(0));
        QCOMPARE(state.c_iflag & (IXANY | INPCK | IGNPAR), tcflag_t(IXANY | INPCK | IGNPAR));
        QCOMPARE(state.c_oflag & OPOST, tcflag_t(0));
        QCOMPARE(state.c_oflag & ONLCR, tcflag_t(ONLCR));
        QCOMPARE(
            state.c_cflag & (CRTSCTS | HUPCL | CLOCAL | CREAD), tcflag_t(HUPCL | CLOCAL | CREAD));
        QCOMPARE(state.c_lflag & (ICANON | ECHO | ISIG | IEXTEN | TOSTOP), tcflag_t(TOSTOP));
        QCOMPARE(int(state.c_cc[VINTR]), 7);
    }

    void parityCheckingStaysAsFound()
    {
        const PseudoTerminal line;
        const Port port = opened(line);
        QCOMPARE(serialConfigure(port.get(), 4, 3, 1, 0), 0);
        QCOMPARE(port->workingState.c_iflag & INPCK, tcflag_t(0));
    }

    void closingRestores()
    {
        PseudoTerminal line;
        termios found = stateOf(line);
        found.c_iflag |= IXON | ICRNL | INPCK;
        found.c_oflag |= OPOST;
        found.c_cflag |= CRTSCTS | HUPCL | CSTOPB;
        found.c_lflag |= ICANON | ISIG;
        found.c_cc[VMIN] = 9;
        found.c_cc[VTIME] = 4;
        ::cfsetspeed(&found, B4800);
        setState(line, found);
        found = stateOf(line);
        Port port = opened(line);
        QCOMPARE(serialConfigure(port.get(), 8, 3, 2, 0), 0);
        QVERIFY(!sameState(stateOf(line), found));
        QCOMPARE(serialConfigure(port.get(), 2, 1, 1, 1), 0);
        port.reset();
        QVERIFY(sameState(stateOf(line), found));
    }

    void noLineAtAll()
    {
        char byte = 'x';
        QCOMPARE(serialOpen(nullptr), nullptr);
        QCOMPARE(serialConfigure(nullptr, 4, 3, 0, 0), 1);
        QCOMPARE(serialConfigure(nullptr, 1, 9, 9, 9), 1);
        QCOMPARE(serialWrite(nullptr, &byte, 1), 1);
        QCOMPARE(serialRead(nullptr, &byte, 1), 1);
        QCOMPARE(byte, 'x');
        serialPurge(nullptr);
        serialClose(nullptr);

        SerialPort invalid{};
        invalid.handle = -1;
        invalid.configured = 1;
        QCOMPARE(serialConfigure(&invalid, 4, 3, 0, 0), 1);
        QCOMPARE(serialWrite(&invalid, &byte, 1), 1);
        QCOMPARE(serialRead(&invalid, &byte, 1), 1);
        serialPurge(&invalid);
        serialClose(&invalid);
    }

    /** Three lines at once, since each takes its seconds. */
    void silences()
    {
        const PseudoTerminal silent;
        PseudoTerminal replying;
        PseudoTerminal trickling;
        const Port silentPort = configured(silent);
        const Port replyingPort = configured(replying);
        const Port tricklingPort = configured(trickling);
        const QByteArray reply(80, 'r');
        QVERIFY(replying.send(reply));
        Reading shortReply{};
        Reading trickle{};
        const SerialStop nobodys; // that nobody requests
        std::thread replyReader([&] { shortReply = read(replyingPort, 512, &nobodys); });
        std::thread trickleReader([&] { trickle = read(tricklingPort, 16); });
        std::thread trickler([&trickling] {
            for (int byte = 0; byte < 3; ++byte) {
                QTest::qSleep(1000);
                trickling.send("t");
            }
        });
        char buffer[4] = {'k', 'e', 'e', 'p'};
        QElapsedTimer timer;
        timer.start();
        const double before = processorSeconds();
        const int result = serialRead(silentPort.get(), buffer, 4);
        const auto silence = timer.elapsed();
        const double used = processorSeconds() - before;
        replyReader.join();
        trickler.join();
        trickleReader.join();

        QCOMPARE(result, 7);
        QVERIFY(silence >= 3000 - early);
        QVERIFY(silence < 3000 + late);
        QVERIFY(used < 0.2);
        QCOMPARE(QByteArray(buffer, 4), QByteArray("keep"));

        QCOMPARE(shortReply.result, 7);
        QCOMPARE(shortReply.bytes, padded(reply, 512));
        QVERIFY(shortReply.milliseconds >= 3000 - early);
        QVERIFY(shortReply.milliseconds < 3000 + late);

        // Every byte starts the silence anew.
        QCOMPARE(trickle.result, 7);
        QCOMPARE(trickle.bytes, padded("ttt", 16));
        QVERIFY(trickle.milliseconds >= 6000 - early);
        QVERIFY(trickle.milliseconds < 6000 + late);
    }

    void signalsDontShortenTheSilence()
    {
        const PseudoTerminal line;
        const Port port = configured(line);
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        struct sigaction before = {};
        ::sigaction(SIGALRM, &action, &before);
        const itimerval often{{0, 40'000}, {0, 40'000}};
        ::setitimer(ITIMER_REAL, &often, nullptr);
        const Reading reading = read(port, 16);
        const itimerval never{};
        ::setitimer(ITIMER_REAL, &never, nullptr);
        ::sigaction(SIGALRM, &before, nullptr);
        QCOMPARE(reading.result, 7);
        QVERIFY(reading.milliseconds >= 3000 - early);
        QVERIFY(reading.milliseconds < 3000 + late);
    }

    void writesWaitForRoom()
    {
        PseudoTerminal line;
        const Port port = configured(line);
        const QByteArray much(200'000, 'm');
        QByteArray received;
        std::thread reader([&] {
            QTest::qSleep(serialSilence + 500); // longer than any read would wait
            received = line.receive(int(much.size()), 60'000);
        });
        QElapsedTimer timer;
        timer.start();
        const int result = write(port, much);
        const auto milliseconds = timer.elapsed();
        reader.join();
        QCOMPARE(result, 0);
        QCOMPARE(received, much);
        QVERIFY(milliseconds >= serialSilence);
    }

    void writesReturnWhenTheBytesAreOut()
    {
        PseudoTerminal line;
        const Port port = configured(line);
        QStringList asked;
        int waiting = 30;
        queueInstead = [&](int, int *count) {
            *count = waiting;
            asked << QString::number(waiting);
            waiting -= 10;
            return 0;
        };
        drainInstead = [&] {
            asked << "drain"_s;
            return asked.size() == 5 ? failure(EINTR) : 0;
        };
        QCOMPARE(write(port, "bytes"), 0);
        QCOMPARE(asked.join(QLatin1Char(' ')), "30 20 10 0 drain drain"_s);
        QCOMPARE(line.receive(5), QByteArray("bytes"));
        QCOMPARE(write(port, ""), 0);
        QCOMPARE(asked.size(), 6); // nothing to wait for
    }

    /** Three lines at once, since each takes its seconds. */
    void standstills()
    {
        const PseudoTerminal unread;
        const PseudoTerminal stuck;
        const PseudoTerminal slow;
        const Port unreadPort = configured(unread);
        const Port stuckPort = configured(stuck);
        const Port slowPort = configured(slow);
        QElapsedTimer timer;
        timer.start();
        queueInstead = [&](int handle, int *count) { // of the slow line, one byte in 3 s
            *count = handle == slowPort->handle ? 2 - int(timer.elapsed() / 3000) : 2;
            return 0;
        };
        int unreadResult = -1;
        int stuckResult = -1;
        qint64 unreadTime = 0;
        qint64 stuckTime = 0;
        std::thread unreadWriter([&] {
            unreadResult = write(unreadPort, QByteArray(200'000, 'm'));
            unreadTime = timer.elapsed();
        });
        std::thread stuckWriter([&] {
            stuckResult = write(stuckPort, "ab");
            stuckTime = timer.elapsed();
        });
        const int slowResult = write(slowPort, "ab");
        const auto slowTime = timer.elapsed();
        unreadWriter.join();
        stuckWriter.join();
        QCOMPARE(unreadResult, 1);
        QVERIFY(unreadTime >= serialStandstill - early);
        QVERIFY(unreadTime < serialStandstill + late);
        QCOMPARE(stuckResult, 1);
        QVERIFY(stuckTime >= serialStandstill - early);
        QVERIFY(stuckTime < serialStandstill + late);
        QCOMPARE(slowResult, 0);
        QVERIFY(slowTime >= 6000 - early);
    }

    void lineIsGoneBehindItsBytes()
    {
        const PseudoTerminal line;
        const Port port = configured(line);
        drainInstead = [] { return failure(EIO); };
        QCOMPARE(write(port, "bytes"), 1);
        queueInstead = [](int, int *) { return failure(EIO); };
        drainInstead = {};
        QCOMPARE(write(port, "bytes"), 1);
    }

    void queueIsLostWhileItIsWaitedFor()
    {
        const PseudoTerminal line;
        const Port port = configured(line);
        int times = 0;
        queueInstead = [&times](int, int *count) {
            *count = 10;
            return ++times > 3 ? failure(EIO) : 0;
        };
        QCOMPARE(write(port, "bytes"), 1);
        QCOMPARE(times, 4);
    }

    void failingPolls_data()
    {
        QTest::addColumn<int>("error");
        QTest::addColumn<int>("event");
        QTest::newRow("no memory") << ENOMEM << 0;
        QTest::newRow("error on the line") << 0 << POLLERR;
    }
    void failingPolls()
    {
        QFETCH(int, error);
        QFETCH(int, event);
        const PseudoTerminal line;
        const Port port = configured(line);
        pollInstead = [&](pollfd *waitedFor, nfds_t count, int wait) {
            if (error)
                return failure(error);
            if (waitedFor[0].fd != port->handle)
                return systemPoll(waitedFor, count, wait);
            waitedFor[0].revents = static_cast<short>(event);
            return 1;
        };
        const double before = processorSeconds();
        const Reading reading = read(port, 4);
        QCOMPARE(reading.result, 7);
        QVERIFY(reading.milliseconds >= 3000 - early);
        QVERIFY(reading.milliseconds < 3000 + late);

        QElapsedTimer timer;
        timer.start();
        QCOMPARE(write(port, QByteArray(200'000, 'm')), 1); // there is no room for all of it
        QVERIFY(timer.elapsed() < late);
        QVERIFY(processorSeconds() - before < 0.2);
    }

    void interruptedPolls()
    {
        PseudoTerminal line;
        const Port port = configured(line);
        int interruptions = 3;
        pollInstead = [&](pollfd *waitedFor, nfds_t count, int wait) {
            return interruptions-- > 0 ? failure(EINTR) : systemPoll(waitedFor, count, wait);
        };
        const Reading reading = read(port, 4);
        QCOMPARE(reading.result, 7);
        QVERIFY(reading.milliseconds >= 3000 - early);
        QVERIFY(reading.milliseconds < 3000 + late);

        // The line is full until the interruption makes room in it.
        const QByteArray much(20'000, 'm');
        QByteArray received;
        interruptions = 1;
        pollInstead = [&](pollfd *waitedFor, nfds_t count, int wait) {
            if (waitedFor[0].fd != port->handle || interruptions-- <= 0)
                return systemPoll(waitedFor, count, wait);
            received = line.receive(int(much.size()), 500);
            return failure(EINTR);
        };
        QCOMPARE(write(port, much), 0);
        QCOMPARE(received + line.receiveAll(), much);
    }

    void purgingDropsWhatWaits()
    {
        PseudoTerminal line;
        const Port port = configured(line);
        const QByteArray much(6'000, 'm'); // more than the reader's 4096, less than fills the line
        QCOMPARE(write(port, much), 0);
        QCOMPARE(line.receiveAll().size(), much.size());
        QVERIFY(line.send("kept"));
        QCOMPARE(write(port, much), 0);
        serialPurge(port.get());
        QVERIFY(line.receiveAll().size() < much.size());
        QCOMPARE(read(port, 4).bytes, QByteArray("kept"));
    }

    void configuringAndClosingPurge()
    {
        const QByteArray much(6'000, 'm');
        PseudoTerminal line;
        Port port = configured(line);
        QCOMPARE(write(port, much), 0);
        QCOMPARE(serialConfigure(port.get(), 4, 3, 0, 0), 0);
        QVERIFY(line.receiveAll().size() < much.size());
        QCOMPARE(write(port, much), 0);
        port.reset();
        QVERIFY(line.receiveAll().size() < much.size());
    }

    /** What an earlier program left unsent. */
    void openingPurges()
    {
        const QByteArray much(6'000, 'm');
        PseudoTerminal line;
        const int earlier = ::open(line.path().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        QVERIFY(earlier >= 0);
        QCOMPARE(int(::write(earlier, much.constData(), std::size_t(much.size()))), 6'000);
        ::close(earlier);
        const Port port = opened(line);
        QVERIFY(port);
        QVERIFY(line.receiveAll().size() < much.size());
    }

    void receivedBytesSurvive()
    {
        PseudoTerminal line;
        QVERIFY(line.send("before"));
        const Port port = opened(line);
        QVERIFY(line.send(" between"));
        QCOMPARE(serialConfigure(port.get(), 7, 3, 0, 0), 0);
        QCOMPARE(read(port, 14).bytes, QByteArray("before between"));
    }

    void vanishedLine()
    {
        PseudoTerminal line;
        const Port port = configured(line);
        QVERIFY(line.send("last"));
        std::thread puller([&line] {
            QTest::qSleep(300);
            line.hangUp();
        });
        const double before = processorSeconds();
        const Reading reading = read(port, 16);
        puller.join();
        QCOMPARE(reading.result, 7);
        QCOMPARE(reading.bytes, padded("last", 16));
        QVERIFY(reading.milliseconds < 3000 + late);

        // A line that is gone is a silent one: whoever reads in a loop doesn't spin.
        const Reading again = read(port, 16);
        QCOMPARE(again.result, 7);
        QVERIFY(again.milliseconds >= 3000 - early);
        QVERIFY(again.milliseconds < 3000 + late);
        QVERIFY(processorSeconds() - before < 0.2);

        QCOMPARE(write(port, "anybody?"), 1);
        serialPurge(port.get());
    }

    void stopWakesAWaitingRead()
    {
        PseudoTerminal line;
        PseudoTerminal gone;
        const Port port = configured(line);
        const Port gonePort = configured(gone);
        QVERIFY(line.send("part"));
        gone.hangUp();
        for (const Port *waiting : {&port, &gonePort}) {
            SerialStop stop;
            QElapsedTimer timer;
            timer.start();
            std::thread stopper([&stop] {
                QTest::qSleep(300);
                stop.request();
                stop.request();
            });
            const Reading reading = read(*waiting, 16, &stop);
            stopper.join();
            QCOMPARE(reading.result, 8);
            QCOMPARE(reading.bytes, padded(waiting == &port ? "part" : "", 16));
            QVERIFY(reading.milliseconds >= 300 - early);
            QVERIFY2(reading.milliseconds < 1500, qPrintable(QString::number(timer.elapsed())));
        }
    }

    void stopWithoutADescriptorToSpare()
    {
        const PseudoTerminal line;
        const Port port = configured(line);
        rlimit before{};
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none{3, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
        SerialStop stop;
        ::setrlimit(RLIMIT_NOFILE, &before);
        QCOMPARE(int(stop.signal()), -1);
        std::thread stopper([&stop] {
            QTest::qSleep(200);
            stop.request();
        });
        QCOMPARE(read(port, 4, &stop).result, 8); // when the silence is over
        stopper.join();
        QCOMPARE(read(port, 4, &stop).result, 8);
    }

    void vanishesWhileWriting()
    {
        PseudoTerminal line;
        const Port port = configured(line);
        std::thread puller([&line] {
            QTest::qSleep(500);
            line.hangUp();
        });
        const double before = processorSeconds();
        const int result = write(port, QByteArray(1'000'000, 'm'));
        puller.join();
        QCOMPARE(result, 1);
        QVERIFY(processorSeconds() - before < 0.2);
    }
};

QTEST_APPLESS_MAIN(SerialPortPosixTest)
#include "tst_serialport_posix.moc"
