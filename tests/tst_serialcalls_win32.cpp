#include "telematics/serialPort_win32.h"

#include <QStringList>
#include <QtTest>

#include <algorithm>
#include <cstring>
#include <deque>

namespace {

QStringList calls;       // of the system since the last take()
QStringList refused;     // names of calls that fail
std::deque<DWORD> moved; // bytes that each transfer moves; then all that is wanted
std::deque<DWORD> queue; // bytes that wait at each look; then none
const auto line = HANDLE(0x4711);

/** The system's state of a line: as other programs may have left it, all that the layer clears
 *  set. */
DCB foundState()
{
    DCB state{};
    state.DCBlength = sizeof state;
    state.BaudRate = 300;
    state.fBinary = TRUE;
    state.fParity = TRUE;
    state.fOutxCtsFlow = TRUE;
    state.fOutxDsrFlow = TRUE;
    state.fDtrControl = 2;
    state.fDsrSensitivity = TRUE;
    state.fTXContinueOnXoff = TRUE;
    state.fOutX = TRUE;
    state.fInX = TRUE;
    state.fErrorChar = TRUE;
    state.fNull = TRUE;
    state.fRtsControl = 3;
    state.fAbortOnError = TRUE;
    state.ByteSize = 6;
    state.Parity = 4;
    state.StopBits = 1;
    return state;
}

QString text(const DCB &state)
{
    return QStringLiteral("%1 baud %2 %3 %4, kept %5, cleared %6")
        .arg(state.BaudRate)
        .arg(state.ByteSize)
        .arg(state.Parity)
        .arg(state.StopBits)
        .arg(QStringLiteral("%1%2%3%4%5%6%7")
                 .arg(state.fBinary)
                 .arg(state.fParity)
                 .arg(state.fDtrControl)
                 .arg(state.fDsrSensitivity)
                 .arg(state.fTXContinueOnXoff)
                 .arg(state.fErrorChar)
                 .arg(state.fRtsControl))
        .arg(QStringLiteral("%1%2%3%4%5%6")
                 .arg(state.fOutxCtsFlow)
                 .arg(state.fOutxDsrFlow)
                 .arg(state.fOutX)
                 .arg(state.fInX)
                 .arg(state.fNull)
                 .arg(state.fAbortOnError));
}

QString hex(quint64 number)
{
    return QString::number(number, 16);
}

/** Notes "name(handle, arguments)"; whether the call is to succeed. */
BOOL note(const char *name, HANDLE handle, const QStringList &arguments = {})
{
    const QString called = QString::fromLatin1(name);
    QStringList all{hex(quint64(reinterpret_cast<quintptr>(handle)))};
    calls << called + QLatin1Char('(') + (all + arguments).join(QLatin1String(", ")) +
                 QLatin1Char(')');
    return !refused.contains(called);
}

HANDLE notedCreateFile(const wchar_t *name, DWORD access, DWORD share,
    const SECURITY_ATTRIBUTES *security, DWORD disposition, DWORD attributes, HANDLE model)
{
    QStringList units;
    for (const wchar_t *unit = name; *unit; ++unit)
        units << hex(*unit);
    calls << QStringLiteral("CreateFileW(%1; %2, %3, %4, %5, %6, %7)")
                 .arg(units.join(QLatin1Char(' ')), hex(access), hex(share),
                     security ? QStringLiteral("some") : QStringLiteral("none"), hex(disposition),
                     hex(attributes), model ? QStringLiteral("some") : QStringLiteral("none"));
    return refused.contains(QLatin1String("CreateFileW")) ? INVALID_HANDLE_VALUE : line;
}

BOOL notedSetupComm(HANDLE handle, DWORD in, DWORD out)
{
    return note("SetupComm", handle, {hex(in), hex(out)});
}

BOOL notedSetCommTimeouts(HANDLE handle, const COMMTIMEOUTS *times)
{
    return note("SetCommTimeouts", handle,
        {hex(times->ReadIntervalTimeout), hex(times->ReadTotalTimeoutMultiplier),
            QString::number(times->ReadTotalTimeoutConstant),
            hex(times->WriteTotalTimeoutMultiplier), hex(times->WriteTotalTimeoutConstant)});
}

BOOL notedSetCommMask(HANDLE handle, DWORD mask)
{
    return note("SetCommMask", handle, {hex(mask)});
}

BOOL notedGetCommState(HANDLE handle, DCB *state)
{
    *state = foundState();
    return note("GetCommState", handle);
}

BOOL notedSetCommState(HANDLE handle, const DCB *state)
{
    return note("SetCommState", handle, {text(*state)});
}

BOOL notedPurgeComm(HANDLE handle, DWORD mask)
{
    return note("PurgeComm", handle, {hex(mask)});
}

DWORD nextMove(DWORD wanted)
{
    if (moved.empty())
        return wanted;
    const DWORD count = moved.front();
    moved.pop_front();
    return std::min(count, wanted);
}

BOOL notedWriteFile(
    HANDLE handle, const void *bytes, DWORD count, DWORD *written, OVERLAPPED *overlapped)
{
    *written = nextMove(count);
    return note("WriteFile", handle,
        {QString::fromLatin1(static_cast<const char *>(bytes), int(count)),
            overlapped ? QStringLiteral("overlapped") : QStringLiteral("at once")});
}

BOOL notedReadFile(HANDLE handle, void *buffer, DWORD count, DWORD *read, OVERLAPPED *overlapped)
{
    *read = nextMove(count);
    std::memset(buffer, 'r', *read);
    return note("ReadFile", handle,
        {QString::number(count),
            overlapped ? QStringLiteral("overlapped") : QStringLiteral("at once")});
}

BOOL notedClearCommError(HANDLE handle, DWORD *errors, COMSTAT *status)
{
    status->cbInQue = 0;
    if (!queue.empty()) {
        status->cbInQue = queue.front();
        queue.pop_front();
    }
    return note("ClearCommError", handle,
        {errors ? QStringLiteral("errors") : QStringLiteral("count alone")});
}

BOOL notedCloseHandle(HANDLE handle)
{
    return note("CloseHandle", handle);
}

} // namespace

// The layer once more, on a system that writes down what it is asked for.
#undef CreateFileW
#define CreateFileW notedCreateFile
#define SetupComm notedSetupComm
#define SetCommTimeouts notedSetCommTimeouts
#define SetCommMask notedSetCommMask
#define GetCommState notedGetCommState
#define SetCommState notedSetCommState
#define PurgeComm notedPurgeComm
#define WriteFile notedWriteFile
#define ReadFile notedReadFile
#define ClearCommError notedClearCommError
#define CloseHandle notedCloseHandle
#include "telematics/serialPort_win32.cpp"

namespace {

QStringList take()
{
    return std::exchange(calls, {});
}

QString latin1(const char *text)
{
    return QString::fromLatin1(text);
}

const QString purge = latin1("PurgeComm(4711, 7)");

} // namespace

/** What the serial layer asks of Windows, in order and with every argument. */
class SerialCallsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        take();
        refused.clear();
        moved.clear();
        queue.clear();
    }

    void open_data()
    {
        QTest::addColumn<QString>("failing");
        QTest::newRow("all is well") << QString();
        for (const char *name :
            {"SetupComm", "SetCommTimeouts", "SetCommMask", "GetCommState", "PurgeComm"})
            QTest::newRow(name) << latin1(name); // which nobody asks for
    }

    void open()
    {
        QFETCH(QString, failing);
        refused << failing;
        SerialPort *port = serialOpen("COM3");
        QVERIFY(port);
        QCOMPARE(
            take(), QStringList({latin1("CreateFileW(43 4f 4d 33; c0000000, 0, none, 3, 0, none)"),
                        latin1("SetupComm(4711, 1000, 1000)"),
                        latin1("SetCommTimeouts(4711, ffffffff, ffffffff, 3000, 0, 0)"),
                        latin1("SetCommMask(4711, 80)"), latin1("GetCommState(4711)"),
                        latin1("GetCommState(4711)"), purge}));
        QVERIFY(std::memcmp(&port->savedState, &port->workingState, sizeof(DCB)) == 0);
        QCOMPARE(int(port->configured), 0);
        serialClose(port);
    }

    void failingOpen()
    {
        refused << latin1("CreateFileW");
        QVERIFY(!serialOpen("C\xE9"));
        // The sign of a byte goes on.
        QCOMPARE(
            take(), QStringList{latin1("CreateFileW(43 ffe9; c0000000, 0, none, 3, 0, none)")});
    }

    void configure()
    {
        SerialPort *port = serialOpen("COM3");
        take();
        QCOMPARE(serialConfigure(port, 4, 3, 0, 0), 0);
        QCOMPARE(take(), QStringList({purge, latin1("SetCommState(4711, 9600 baud 8 0 0, "
                                                    "kept 1121113, cleared 000000)")}));
        QCOMPARE(serialConfigure(port, 8, 2, 1, 1), 0);
        QCOMPARE(take(), QStringList({purge, latin1("SetCommState(4711, 115200 baud 7 2 2, "
                                                    "kept 1121113, cleared 000000)")}));
        // A refused code stays away from the line, and those in front of it are for the next time.
        QCOMPARE(serialConfigure(port, 0, 0, 2, 2), 6);
        QCOMPARE(serialConfigure(port, 1, 3, 0, 0), 3);
        QCOMPARE(take(), QStringList());
        refused << latin1("SetCommState");
        QCOMPARE(serialConfigure(port, 0, 0, 2, 0), 1);
        QCOMPARE(take(), QStringList({purge, latin1("SetCommState(4711, 1200 baud 5 1 0, "
                                                    "kept 1121113, cleared 000000)")}));
        QCOMPARE(port->baudCode, 8);
        QCOMPARE(int(port->configured), 1);
        serialClose(port);
    }

    void write()
    {
        SerialPort *port = serialOpen("COM3");
        take();
        QCOMPARE(serialWrite(port, "bytes", 5), 1);
        QCOMPARE(take(), QStringList()); // it isn't configured
        serialConfigure(port, 4, 3, 0, 0);
        take();
        moved = {2};
        QCOMPARE(serialWrite(port, "bytes", 5), 0);
        QCOMPARE(take(), QStringList({latin1("WriteFile(4711, bytes, at once)"),
                             latin1("WriteFile(4711, tes, at once)")}));
        QCOMPARE(serialWrite(port, "", 0), 0);
        QCOMPARE(take(), QStringList());
        moved = {2, 0};
        QCOMPARE(serialWrite(port, "bytes", 5), 1);
        QCOMPARE(take().size(), 2);
        refused << latin1("WriteFile");
        QCOMPARE(serialWrite(port, "bytes", 5), 1);
        QCOMPARE(take().size(), 1);
        serialClose(port);
    }

    void read()
    {
        SerialPort *port = serialOpen("COM3");
        take();
        QByteArray buffer(5, '-');
        QCOMPARE(serialRead(port, buffer.data(), 5), 1);
        QCOMPARE(take(), QStringList());
        serialConfigure(port, 4, 3, 0, 0);
        take();
        moved = {1, 2, 0};
        QCOMPARE(serialRead(port, buffer.data(), 5), 7);
        QCOMPARE(take(),
            QStringList({latin1("ReadFile(4711, 5, at once)"), latin1("ReadFile(4711, 4, at once)"),
                latin1("ReadFile(4711, 2, at once)")}));
        QCOMPARE(buffer, QByteArray("rrr--"));
        refused << latin1("ReadFile"); // only the count of bytes is looked at
        moved = {3};
        QCOMPARE(serialRead(port, buffer.data(), 5), 0);
        QCOMPARE(take().size(), 2);
        QCOMPARE(buffer, QByteArray("rrrrr"));
        serialClose(port);
    }

    /** It asks for bytes that are there alone, since one that waits couldn't be stopped. */
    void stoppableRead()
    {
        SerialPort *port = serialOpen("COM3");
        serialConfigure(port, 4, 3, 0, 0);
        take();
        SerialStop stop;
        QByteArray buffer(5, '-');
        const QString look = latin1("ClearCommError(4711, count alone)");
        queue = {2, 0, 9};
        QCOMPARE(serialRead(port, buffer.data(), 5, &stop), 0);
        QCOMPARE(take(), QStringList({look, latin1("ReadFile(4711, 2, at once)"), look, look,
                             latin1("ReadFile(4711, 3, at once)")}));
        QCOMPARE(buffer, QByteArray("rrrrr"));
        queue = {5, 5};
        moved = {0}; // a failure isn't the end of the silence
        QCOMPARE(serialRead(port, buffer.data(), 5, &stop), 0);
        QCOMPARE(take().size(), 4);
        stop.request();
        queue = {5};
        QCOMPARE(serialRead(port, buffer.data(), 5, &stop), 8);
        QCOMPARE(take(), QStringList());
        serialClose(port);
    }

    void close_data()
    {
        QTest::addColumn<bool>("configured");
        QTest::addColumn<QString>("failing");
        QTest::newRow("open") << false << QString();
        QTest::newRow("configured") << true << QString();
        for (const char *name : {"PurgeComm", "SetCommState", "CloseHandle"})
            QTest::newRow(name) << true << latin1(name);
    }

    void close()
    {
        QFETCH(bool, configured);
        QFETCH(QString, failing);
        SerialPort *port = serialOpen("COM3");
        if (configured)
            serialConfigure(port, 4, 3, 0, 0);
        take();
        refused << failing;
        serialClose(port);
        QCOMPARE(take(), QStringList({purge,
                             latin1("SetCommState(4711, 300 baud 6 4 1, kept 1121113, "
                                    "cleared 111111)"),
                             latin1("CloseHandle(4711)")}));
    }

    void purging()
    {
        SerialPort *port = serialOpen("COM3");
        take();
        serialPurge(port);
        QCOMPARE(take(), QStringList{purge});
        serialClose(port);
    }

    void withoutLine()
    {
        SerialPort invalid{};
        invalid.handle = INVALID_HANDLE_VALUE;
        invalid.configured = 1;
        char letter = 0;
        for (SerialPort *port : {static_cast<SerialPort *>(nullptr), &invalid}) {
            QCOMPARE(serialConfigure(port, 4, 3, 0, 0), 1);
            QCOMPARE(serialWrite(port, &letter, 1), 1);
            QCOMPARE(serialRead(port, &letter, 1), 1);
            serialPurge(port);
            serialClose(port);
        }
        QCOMPARE(take(), QStringList());
    }
};

QTEST_GUILESS_MAIN(SerialCallsTest)
#include "tst_serialcalls_win32.moc"
