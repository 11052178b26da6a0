#include "telematics/serialPort_posix.h"
#include "tests/support/DeviceTest.h"
#include "virtualunit/VirtualUnit.h"
#include "virtualunit/lines/Lines.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace support;

using virtualunit::lines::Lines;

namespace {

constexpr int baud9600 = 4;
constexpr int baud57600 = 7;

/** Lines that are served in the background, in a folder of their own. */
class Server
{
public:
    explicit Server(const QString &recording = QString())
        : lines(bytes(folder.path()), bytes(recording))
        , worker([this] {
            while (!ended) {
                lines.serve(Lines::Clock::now());
                ++passes;
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        })
    {
        qputenv("VORN_SERIAL_DIR", QFile::encodeName(folder.path()));
    }
    ~Server()
    {
        ended = true;
        worker.join();
        qunsetenv("VORN_SERIAL_DIR");
    }

    /** Until it has looked at all lines once more from now on. */
    bool looksAgain() const
    {
        // A pass that runs at present may have been beyond the line.
        return QTest::qWaitFor([this, before = passes.load()] { return passes >= before + 2; });
    }

    QStringList names() const
    {
        return QDir(folder.path()).entryList(QDir::Files | QDir::System, QDir::Name);
    }

private:
    static std::string bytes(const QString &text) { return QFile::encodeName(text).toStdString(); }

    QTemporaryDir folder;
    Lines lines;
    std::atomic<bool> ended{false};
    std::atomic<int> passes{0};
    std::thread worker;
};

/** The near end of a line, as the program holds it, that waits for what it wants to hear. */
class NearEnd
{
public:
    NearEnd(const char *name, int baudCode)
        : port(serialOpen(name))
    {
        if (!port || serialConfigure(port, baudCode, 3, 0, 0) != 0)
            qFatal("line %s refused", name);
    }
    ~NearEnd() { serialClose(port); }
    NearEnd(const NearEnd &) = delete;
    NearEnd &operator=(const NearEnd &) = delete;

    void say(const QByteArray &bytes)
    {
        if (serialWrite(port, bytes.constData(), std::uint32_t(bytes.size())) != 0)
            qFatal("line takes nothing");
    }
    /** What came until that text came, or until the time was over. */
    QByteArray hear(const QByteArray &text, int milliseconds = 10'000)
    {
        QByteArray heard;
        QElapsedTimer timer;
        timer.start();
        while ((text.isEmpty() || !heard.contains(text)) && timer.elapsed() < milliseconds) {
            pollfd line{port->handle, POLLIN, 0};
            ::poll(&line, 1, 50);
            char byte = 0;
            while ((text.isEmpty() || !heard.contains(text)) && ::read(port->handle, &byte, 1) == 1)
                heard += byte;
        }
        return heard;
    }
    /** Bytes that can be read. */
    int waiting() const
    {
        int count = 0;
        return ::ioctl(port->handle, FIONREAD, &count) == 0 ? count : 0;
    }
    QByteArray ask(const QByteArray &command)
    {
        say(command + "\r\n");
        return hear("OK\r\n");
    }

private:
    SerialPort *port;
};

} // namespace

class LinesTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void names()
    {
        const Server server;
        QTRY_COMPARE(server.names(), (QStringList{"COM3"_s, "COM4"_s}));
        setUnit("Settings.VornsettingsGpsPort"_s, "COM9"_s);
        QTRY_COMPARE(server.names(), (QStringList{"COM3"_s, "COM9"_s}));
        setUnit("Hardware.hasGsm"_s, "false"_s);
        QTRY_COMPARE(server.names(), QStringList{"COM9"_s});
        setUnit("Settings.VornsettingsGpsPort"_s, "/dev/ttyS1"_s);
        QTRY_COMPARE(server.names(), QStringList());
        setUnit("Settings.VornsettingsGpsPort"_s, QString());
        QTRY_COMPARE(server.names(), QStringList{"COM4"_s});
        setUnit("Telematics.available"_s, "0"_s);
        QTRY_COMPARE(server.names(), QStringList());
    }

    void leavesNothingBehind()
    {
        const QTemporaryDir folder;
        const auto path = QFile::encodeName(folder.path()).toStdString();
        {
            const Lines lines(path);
            QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::System).size(), 2);
            QVERIFY_EXCEPTION_THROWN(Lines second(path), std::runtime_error);
        }
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::System).size(), 0);
        // Links that a killed server left are replaced, files are not.
        QVERIFY(QFile::link("/nowhere"_s, folder.filePath("COM4"_s)));
        {
            const Lines lines(path);
            QVERIFY(QFile::exists(folder.filePath("COM4"_s)));
        }
        QFile file(folder.filePath("COM3"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY_EXCEPTION_THROWN(Lines third(path), std::system_error);
        QVERIFY(file.exists());
    }

    void closesWhatItOpened()
    {
        const auto open = [] {
            return QDir("/proc/self/fd"_s).entryList(QDir::System | QDir::Files).size();
        };
        const QTemporaryDir folder;
        const auto path = QFile::encodeName(folder.path()).toStdString();
        {
            const Lines first(path);
        } // what stays open for good, such as the unit's file, is open now
        const auto before = open();
        {
            const Lines lines(path);
            QVERIFY(open() >= before + 2);
        }
        QCOMPARE(open(), before);
    }

    void badRecordings()
    {
        const QTemporaryDir folder;
        const auto path = QFile::encodeName(folder.path()).toStdString();
        QVERIFY_EXCEPTION_THROWN(Lines(path, "/no/such/file"), std::runtime_error);
        QVERIFY_EXCEPTION_THROWN(Lines(path, "/dev/null"), std::runtime_error);
    }

    void modemAnswers()
    {
        const Server server;
        NearEnd modem("COM3", baud57600);
        QVERIFY(modem.ask("ATE0").endsWith("ATE0\r\r\nOK\r\n"));
        QCOMPARE(modem.ask("AT+CPIN?"), QByteArray("\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"));
        QCOMPARE(modem.ask("AT+CPIN=1234"), QByteArray("\r\nOK\r\n"));
        QCOMPARE(modem.ask("AT+CREG?"), QByteArray("\r\n+CREG: 0,1\r\n\r\nOK\r\n"));
        setUnit("Gsm.registration"_s, "5"_s);
        setUnit("Gsm.signal"_s, "7"_s);
        QCOMPARE(modem.ask("AT+CREG?"), QByteArray("\r\n+CREG: 0,5\r\n\r\nOK\r\n"));
        QCOMPARE(modem.ask("AT+CSQ"), QByteArray("\r\n+CSQ: 7,99\r\n\r\nOK\r\n"));
    }

    void cardIsKeptInTheUnit()
    {
        const Server server;
        NearEnd modem("COM3", baud57600);
        modem.ask("ATE0");
        for (const char *left : {"2", "1", "0"}) {
            modem.say("AT+CPIN=9999\r");
            modem.hear("+CME ERROR: ");
            QTRY_COMPARE(unit("Gsm.pinTries"_s), QString::fromLatin1(left));
        }
        QCOMPARE(modem.ask("AT+CPIN?"), QByteArray("12\r\n\r\n+CPIN: SIM PUK\r\n\r\nOK\r\n"));
        modem.ask("AT+CPIN=12345678,4711");
        QTRY_COMPARE(unit("Gsm.pinTries"_s), "3"_s);
        QCOMPARE(unit("Gsm.pin"_s), "4711"_s);
        modem.say("AT+CPIN?\r");
        QVERIFY(modem.hear("OK").contains("+CPIN: READY"));
    }

    void messagesAreKept()
    {
        const Server server;
        NearEnd modem("COM3", baud57600);
        modem.ask("AT+CPIN=1234");
        modem.ask("AT+CMGF=1");
        modem.say("AT+CMGS=123\r\n");
        modem.hear("> ");
        modem.say("Hi\x1A"
                  "CMGS=123\r\n");
        QVERIFY(modem.hear("OK\r\n").contains("+CMGS: 1"));
        std::vector<virtualunit::ShortMessage> messages;
        QTRY_VERIFY(virtualunit::shortMessages(messages).empty() && messages.size() == 1);
        QCOMPARE(messages[0].number, std::string("123"));
        QCOMPARE(messages[0].text, std::string("Hi"));
        QVERIFY(messages[0].time > 0);
        useProfile("full"_s);
        QVERIFY(virtualunit::shortMessages(messages).empty());
        QVERIFY(messages.empty());
    }

    void unaskedLines()
    {
        setUnit("Gsm.pin"_s, QString());
        setUnit("Gsm.unaskedInterval"_s, "1"_s);
        const Server server;
        NearEnd modem("COM3", baud57600);
        QVERIFY(modem.hear("\r\n+CTZV: +4\r\n").endsWith("\r\n+CTZV: +4\r\n"));
        modem.ask("AT+CREG=1");
        setUnit("Gsm.registration"_s, "2"_s);
        QVERIFY(modem.hear("\r\n+CREG: 2\r\n").endsWith("\r\n+CREG: 2\r\n"));
    }

    void modemObeysItsPower()
    {
        setUnit("Gsm.unaskedInterval"_s, "0"_s);
        setUnit("Telematics.gprsPowerStatus"_s, "0"_s);
        const Server server;
        NearEnd modem("COM3", baud57600);
        modem.say("AT\r\n");
        QCOMPARE(modem.hear("", 500), QByteArray());
        setUnit("Telematics.gprsPowerStatus"_s, "1"_s);
        QCOMPARE(modem.hear("RDY\r\n"), QByteArray("\r\nRDY\r\n"));
        QCOMPARE(modem.ask("AT"), QByteArray("AT\r\r\nOK\r\n"));
    }

    void wrongSpeedIsGarbage()
    {
        const Server server;
        NearEnd modem("COM3", baud9600);
        modem.say("AT\r\n");
        QVERIFY(!modem.hear("", 500).contains("OK"));
        NearEnd receiver("COM4", baud57600);
        const QByteArray heard = receiver.hear("", 1500);
        QVERIFY(heard.size() > 50);
        QVERIFY(!heard.contains('$'));
        QVERIFY(!heard.contains('\n'));
    }

    void receiverTalks()
    {
        setUnit("Gps.coldStart"_s, "4"_s);
        const Server server;
        NearEnd receiver("COM4", baud9600);
        const QByteArray start = receiver.hear(",A,");
        QVERIFY(start.contains("$PFST,FOM,9999*55\r\n"));
        QVERIFY(receiver.hear("$PFST,FOM,60.0*").contains("$GPGGA,"));
        setUnit("Telematics.gpsAntennaStatus"_s, "0"_s);
        QVERIFY(receiver.hear(",V,").contains("$GPRMC,"));
    }

    void receiverObeysItsPower()
    {
        setUnit("Gps.coldStart"_s, "0"_s);
        const Server server;
        NearEnd receiver("COM4", baud9600);
        receiver.hear("$PFST,FOM,");
        setUnit("Telematics.gpsPowerStatus"_s, "0"_s);
        receiver.hear("", 1000);
        QCOMPARE(receiver.hear("", 1500), QByteArray());
        setUnit("Gps.coldStart"_s, "60"_s);
        setUnit("Telematics.gpsPowerStatus"_s, "1"_s);
        QVERIFY(receiver.hear(",V,").contains("$GPRMC,"));
    }

    void replays()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("r.nmea"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QByteArray recorded;
        for (int number = 100; number < 170; ++number)
            recorded += "$PFST,FOM," + QByteArray::number(number) + "*00\r\n";
        QVERIFY(file.write(recorded) == recorded.size());
        file.close();

        const Server server(file.fileName());
        NearEnd receiver("COM4", baud9600);
        receiver.hear("FOM,169*00\r\n"); // from anywhere, as nobody was there before
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(receiver.hear("FOM,169*00\r\n"), recorded);
        // 960 characters a second, or fewer where this machine is late.
        QVERIFY(timer.elapsed() > recorded.size() * 1000 / 960 - 200);
    }

    void nothingOldForALaterComer()
    {
        setUnit("Gsm.unaskedInterval"_s, "0"_s);
        const Server server;
        {
            NearEnd modem("COM3", baud57600);
            modem.ask("ATE0");
            modem.say("ATI\r");
            QTRY_VERIFY(modem.waiting() > 0); // answered, and nobody reads it
        }
        QVERIFY(server.looksAgain());
        NearEnd modem("COM3", baud57600);
        QCOMPARE(modem.ask("AT"), QByteArray("\r\nOK\r\n"));
    }

    /** What was on its way when the near end closed is lost, and who opens next hears whole
     * sentences. */
    void halfASentenceIsLost()
    {
        const Server server;
        {
            const NearEnd gps("COM4", baud9600);
            QTRY_VERIFY(gps.waiting() > 0); // the beginning of some that take their time
        }
        QVERIFY(server.looksAgain());
        NearEnd gps("COM4", baud9600);
        const QByteArray heard = gps.hear("\r\n");
        QVERIFY2(heard.startsWith('$'), heard.constData());
    }

    void crashedHoldersAreForgotten()
    {
        const Server server;
        QTRY_COMPARE(server.names().size(), 2);
        const QByteArray name = qgetenv("VORN_SERIAL_DIR") + "/COM3";
        int handle = ::open(name.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        QVERIFY(handle >= 0);
        QCOMPARE(::ioctl(handle, TIOCEXCL), 0);
        QVERIFY(server.looksAgain());
        ::close(handle);
        int exclusive = 1;
        const auto stillExclusive = [&] {
            handle = ::open(name.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
            if (handle >= 0)
                ::ioctl(handle, TIOCGEXCL, &exclusive);
            ::close(handle);
            return exclusive != 0;
        };
        QTRY_VERIFY(!stillExclusive());
    }

    void commandLine()
    {
        const QTemporaryDir folder;
        const QString state = folder.filePath("unit.sqlite"_s);
        const QString lines = folder.filePath("lines"_s);
        QCOMPARE(virtualunit::open(QFile::encodeName(state).toStdString()), std::string());
        QProcess tool;
        tool.start(QStringLiteral(VORN_BIN_DIR "/vornunit"),
            {"--unit"_s, state, "lines"_s, "--dir"_s, lines});
        QVERIFY(tool.waitForReadyRead(20'000));
        QCOMPARE(tool.readAllStandardOutput(),
            "Serving the unit's serial lines in " + QFile::encodeName(lines) + "\n");
        {
            qputenv("VORN_SERIAL_DIR", QFile::encodeName(lines));
            NearEnd modem("COM3", baud57600);
            modem.ask("AT+CPIN=1234");
            modem.ask("AT+CMGF=1");
            modem.say("AT+CMGS=4711\r");
            modem.hear("> ");
            modem.say("one\rtwo\x1A");
            modem.hear("OK\r\n");
            qunsetenv("VORN_SERIAL_DIR");
        }
        tool.terminate();
        QVERIFY(tool.waitForFinished(20'000));
        QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
        QCOMPARE(tool.exitCode(), 0);
        QCOMPARE(tool.readAllStandardError(), QByteArray());
        QVERIFY(QDir(lines).isEmpty(QDir::Files | QDir::System));

        tool.start(QStringLiteral(VORN_BIN_DIR "/vornunit"), {"--unit"_s, state, "sms"_s});
        QVERIFY(tool.waitForFinished(20'000));
        const auto printed = tool.readAllStandardOutput();
        const QByteArray today =
            QDateTime::currentDateTimeUtc().toString("yyyy-MM-dd "_s).toLatin1();
        QVERIFY2(printed.startsWith(today), printed.constData());
        QVERIFY2(printed.endsWith("  4711  one\\rtwo\n"), printed.constData());
        QCOMPARE(printed.count('\n'), 1);

        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VORN_SERIAL_DIR"_s, lines);
        tool.setProcessEnvironment(environment);
        tool.start(QStringLiteral(VORN_BIN_DIR "/vornunit"), {"--unit"_s, state, "lines"_s});
        QVERIFY(tool.waitForReadyRead(20'000));
        QVERIFY(tool.readAllStandardOutput().contains(QFile::encodeName(lines)));
        tool.terminate();
        QVERIFY(tool.waitForFinished(20'000));
        QCOMPARE(virtualunit::open(":memory:"), std::string());
    }

    void commandLineRefuses()
    {
        QProcess tool;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.remove("VORN_SERIAL_DIR"_s);
        tool.setProcessEnvironment(environment);
        const QString program = QStringLiteral(VORN_BIN_DIR "/vornunit");
        tool.start(program, {"--unit"_s, ":memory:"_s, "lines"_s});
        QVERIFY(tool.waitForFinished(20'000));
        QCOMPARE(tool.exitCode(), 1);
        QVERIFY(tool.readAllStandardError().contains("VORN_SERIAL_DIR"));
        tool.start(program, {"--unit"_s, ":memory:"_s, "lines"_s, "--dir"_s, "/dev/null/lines"_s});
        QVERIFY(tool.waitForFinished(20'000));
        QCOMPARE(tool.exitCode(), 1);
        QVERIFY(tool.readAllStandardError().startsWith("vornunit: "));
    }
};

VORN_TEST_MAIN(LinesTest)
#include "tst_lines_posix.moc"
