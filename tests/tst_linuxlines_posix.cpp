#include "tests/support/LinuxUnit_posix.h"
#include "tests/support/MockBus_posix.h"
#include "tests/support/MockRtnetlink_posix.h"
#include "tests/support/literals.h"

#include <QDir>
#include <QProcess>
#include <QtTest>

#include <gpiod.h>
#include <linux/if_arp.h>
#include <map>
#include <optional>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

using support::LinuxUnit;
using support::MockBus;
using support::MockRtnetlink;
using support::operator""_s;

// Lines of a chip, in place of libgpiod, which would look at this machine's.

struct gpiod_chip {
    int opened;
};

struct gpiod_line {
    std::string name;
    int value = 0; ///< as the wire is
    bool isOutput = false;
    bool isActiveLow = false;
    bool isRequested = false;
    int error = 0;      ///< answered to a request
    int busyRounds = 0; ///< answered to so many requests
};

namespace {

gpiod_chip chip{0};
std::map<std::string, gpiod_line> lines;

gpiod_line *lineNamed(const char *name)
{
    const auto found = lines.find(name);
    errno = found == lines.end() ? ENOENT : 0;
    return found == lines.end() ? nullptr : &found->second;
}

} // namespace

extern "C" {

gpiod_line *gpiod_line_find(const char *name)
{
    return lineNamed(name);
}

gpiod_chip *gpiod_chip_open_lookup(const char *name)
{
    errno = ENOENT;
    return std::string(name) == "gpiochip7" ? (++chip.opened, &chip) : nullptr;
}

gpiod_line *gpiod_chip_find_line(gpiod_chip * /*unused*/, const char *name)
{
    return lineNamed(name);
}

gpiod_line *gpiod_chip_get_line(gpiod_chip * /*unused*/, unsigned number)
{
    return lineNamed(std::to_string(number).c_str());
}

void gpiod_chip_close(gpiod_chip *closed)
{
    --closed->opened;
}

int gpiod_line_request(gpiod_line *line, const gpiod_line_request_config *config, int value)
{
    const bool isBusy = line->busyRounds > 0 && line->busyRounds-- > 0;
    errno = isBusy ? EBUSY : line->error;
    if (errno != 0)
        return -1;
    line->isRequested = true;
    line->isActiveLow = (config->flags & GPIOD_LINE_REQUEST_FLAG_ACTIVE_LOW) != 0;
    if (config->request_type == GPIOD_LINE_REQUEST_DIRECTION_OUTPUT) {
        line->isOutput = true;
        line->value = line->isActiveLow ? !value : value;
    }
    return 0;
}

int gpiod_line_get_value(gpiod_line *line)
{
    return line->isActiveLow ? !line->value : line->value;
}

const char *gpiod_line_consumer(gpiod_line * /*unused*/)
{
    return "heartbeat";
}

void gpiod_line_close_chip(gpiod_line *line)
{
    line->isRequested = false;
}

} // extern "C"

/** CAN channels, lines and radios of the Linux unit. */
class LinuxLinesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        unit.emplace();
        lines.clear();
        unit->write("/sys/bus/gpio/devices/gpiochip0"_s, "");
    }

    void cleanup()
    {
        unit.reset();
        kernel.reset();
        for (const auto &[name, line] : lines)
            QVERIFY2(!line.isRequested, name.c_str());
    }

    void canChannels()
    {
        QCOMPARE(unit->call("Can_getBaudrate", {1.0}).code, 2);
        playKernel();
        QCOMPARE(unit->call("Can_getBaudrate", {0.0}).code, 6);
        QCOMPARE(unit->call("Can_getBaudrate", {1.0}).numbers, std::vector<double>{250});
        QCOMPARE(unit->call("Can_getBaudrate", {2.0}).code, 18); // never set
        QCOMPARE(unit->call("Can_getBaudrate", {3.0}).code, 6);
        QCOMPARE(unit->call("Can_getFrameType", {1.0}).code, 2);
        configure(R"({"can": {"channels": ["vcan0", "can9", "can2"]}})");
        QCOMPARE(unit->call("Can_getBaudrate", {1.0}).code, 2);
        QCOMPARE(unit->call("Can_getBaudrate", {2.0}).code, 18);
        QCOMPARE(unit->call("Can_getBaudrate", {3.0}).code, 0);
        QCOMPARE(unit->call("Can_getBaudrate", {4.0}).code, 6);
        configure(R"({"can": false})");
        QCOMPARE(unit->call("Can_getBaudrate", {1.0}).code, 2);
    }

    void canIsSetDown()
    {
        playKernel();
        kernel->asked();
        QCOMPARE(unit->call("Can_setBaudrate", {1.0, 500.0}).code, 0);
        QCOMPARE(kernel->asked(), (std::vector<std::string>{"dump", "down 3", "500000 3", "up 3"}));
        QCOMPARE(kernel->link(3).bitRate, 500000U);
        QVERIFY(kernel->link(3).isUp);
        // One that is down stays down; the rate that it has is left alone.
        QCOMPARE(unit->call("Can_setBaudrate", {2.0, 125.0}).code, 0);
        QCOMPARE(kernel->asked(), (std::vector<std::string>{"dump", "125000 2"}));
        QCOMPARE(unit->call("Can_setBaudrate", {1.0, 500.0}).code, 0);
        QCOMPARE(kernel->asked(), (std::vector<std::string>{"dump"}));
    }

    void canIsRefused_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("kind");
        QTest::newRow("no rights") << int(EPERM) << 500.0 << 101;
        QTest::newRow("gone") << int(ENODEV) << 500.0 << 18;
        QTest::newRow("broken") << int(EIO) << 500.0 << 103;
        QTest::newRow("too fast") << 0 << 8000.0 << 5;
        QTest::newRow("none") << 0 << 0.0 << 5;
    }

    void canIsRefused()
    {
        QFETCH(int, number);
        QFETCH(double, rate);
        playKernel();
        kernel->refuse(number);
        const auto answer = unit->call("Can_setBaudrate", {1.0, rate});
        QTEST(answer.kind(), "kind");
        if (number == EPERM)
            QCOMPARE(unit->textOf(answer),
                QByteArray("No permission to set the bit rate of can2; it takes "
                           "the capability CAP_NET_ADMIN"));
        // It goes on as before.
        QCOMPARE(kernel->link(3).bitRate, 250000U);
        QVERIFY(kernel->link(3).isUp);
    }

    void canKernelLies_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("kind");
        QTest::newRow("silence") << QByteArray() << 18;
        QTest::newRow("a byte") << QByteArray("x") << 102;
        QTest::newRow("zeros") << QByteArray(64, '\0') << 102;
        QTest::newRow("ones") << QByteArray(64, '\xff') << 102;
        // A message of 16 bytes that says 32.
        QTest::newRow("too long") << QByteArray("\x20\0\0\0\x10\0\0\0\0\0\0\0\0\0\0\0", 16) << 102;
        QTest::newRow("an error") << QByteArray(
                                         "\x24\0\0\0\x02\0\0\0\0\0\0\0\0\0\0\0\xfb\xff\xff\xff",
                                         20) +
                                         QByteArray(16, '\0')
                                  << 102;
    }

    void canKernelLies()
    {
        QFETCH(QByteArray, bytes);
        playKernel();
        kernel->lie(bytes);
        QTEST(unit->call("Can_getBaudrate", {1.0}).kind(), "kind");
        kernel->tellTruth();
        QCOMPARE(unit->call("Can_getBaudrate", {1.0}).code, 0);
    }

    /** In a network of its own, on the kernel that runs the test. */
    void canOnThisKernel()
    {
        enum Outcome { Passed, NoNamespace, WrongWithout, NoVirtualCan, WrongWith };
        configure(R"({"can": {"channels": ["vcan0"]}})");
        const auto file = QFile::encodeName(unit->path("/unit.json"_s));
        const auto child = ::fork();
        if (child == 0) {
            const auto user = QByteArray::number(::getuid());
            if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
                ::_exit(NoNamespace);
            QFile map("/proc/self/uid_map"_s); // programs that it starts keep its rights
            if (!map.open(QIODevice::WriteOnly) || map.write("0 " + user + " 1\n") < 0 ||
                !map.flush())
                ::_exit(NoNamespace);
            qunsetenv("VORNAUX_ROOT");
            qputenv("VORNAUX_CONFIG", file);
            if (unit->call("Can_getBaudrate", {1.0}).code != 18)
                ::_exit(WrongWithout);
            if (QProcess::execute("ip"_s, {"link"_s, "add"_s, "vcan0"_s, "type"_s, "vcan"_s}) != 0)
                ::_exit(NoVirtualCan);
            ::_exit(unit->call("Can_getBaudrate", {1.0}).code == 2 ? Passed : WrongWith);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        const int outcome = WEXITSTATUS(status);
        if (outcome == NoNamespace)
            QSKIP("No network namespace may be made here");
        if (outcome == NoVirtualCan)
            QSKIP("This kernel has no vcan; that it tells of no CAN interface was seen");
        QCOMPARE(outcome, int(Passed));
    }

    void digitalLines()
    {
        QCOMPARE(unit->call("DigIO_getDigIO").code, 2);
        lines = {{"IN1", {"IN1", 1}}, {"4", {"4", 0}}, {"OUT", {"OUT", 1}}};
        configure(R"({"digitalIo": {"lines": [{"line": "IN1"}, {"line": "4", "chip": "gpiochip7",
        "activeLow": true}, {"line": "OUT", "output": true}]}})");
        QCOMPARE(unit->call("DigIO_getDigIO").numbers, std::vector<double>{7});
        QCOMPARE(lines["OUT"].isOutput, false); // reading changes no direction
        unit->write("/sys/class/net/lo/type"_s, "772\n");
        QCOMPARE(unit->call("Hardware_getDigitalInputCount").numbers, std::vector<double>{2});
        QCOMPARE(unit->call("DigIO_setDigIO", {3.0}).code, 0);
        QCOMPARE(lines["OUT"].isOutput, true);
        QCOMPARE(lines["IN1"].isOutput, false);
        QCOMPARE(unit->call("DigIO_getDigIO").numbers, std::vector<double>{3});
    }

    void digitalInputsAlone()
    {
        lines = {{"IN1", {"IN1", 1}}};
        configure(R"({"digitalIo": {"lines": [{"line": "IN1"}]}})");
        QCOMPARE(unit->call("DigIO_setDigIO", {1.0}).code, 2);
        configure(R"({"digitalIo": {"lines": []}})");
        QCOMPARE(unit->call("DigIO_getDigIO").code, 2);
        configure(R"({"digitalIo": false})");
        QCOMPARE(unit->call("DigIO_getDigIO").code, 2);
    }

    void linesAreRefused()
    {
        configure(R"({"digitalIo": {"lines": [{"line": "IN1"}]}})");
        QCOMPARE(unit->call("DigIO_getDigIO").code, 18);
        lines = {{"IN1", {"IN1", 1}}};
        lines["IN1"].busyRounds = 3; // another of us, for a moment
        QCOMPARE(unit->call("DigIO_getDigIO").numbers, std::vector<double>{1});
        lines["IN1"].error = EBUSY;
        auto answer = unit->call("DigIO_getDigIO");
        QCOMPARE(answer.kind(), 107);
        QCOMPARE(unit->textOf(answer), QByteArray("The GPIO line IN1 is in use by heartbeat"));
        lines["IN1"].error = EACCES;
        answer = unit->call("DigIO_getDigIO");
        QCOMPARE(answer.kind(), 101);
        QVERIFY(unit->textOf(answer).startsWith(
            "No permission to use the GPIO line IN1; add yourself"));
        lines["IN1"].error = EIO;
        QCOMPARE(unit->call("DigIO_getDigIO").kind(), 102);
        configure(R"({"digitalIo": {"lines": [{"line": "IN1", "chip": "gpiochip9"}]}})");
        QCOMPARE(unit->call("DigIO_getDigIO").code, 18);
        configure(R"({"digitalIo": {"lines": [{"line": "IN2", "chip": "gpiochip7"}]}})");
        const int before = chip.opened;
        QCOMPARE(unit->call("DigIO_getDigIO").code, 18);
        QCOMPARE(chip.opened, before);
        unit->remove("/sys/bus/gpio"_s); // nothing of this machine is looked at then
        configure(R"({"digitalIo": {"lines": [{"line": "IN1"}]}})");
        QCOMPARE(unit->call("DigIO_getDigIO").code, 18);
    }

    void loadsAreSwitched()
    {
        lines = {{"CAN", {"CAN", 0}}, {"V1", {"V1", 1}}, {"V2", {"V2", 0}}};
        configure(R"({"power": {"can": {"line": "CAN", "activeLow": true},
        "video": [{"line": "V1"}, {"line": "V2"}]}})");
        QCOMPARE(unit->call("Power_getCanPowerStatus").numbers, std::vector<double>{1});
        QCOMPARE(unit->call("Power_setCanPowerStatus", {0.0}).code, 0);
        QCOMPARE(unit->call("Power_getCanPowerStatus").numbers, std::vector<double>{0});
        QCOMPARE(lines["CAN"].value, 1);
        QCOMPARE(unit->call("Power_getVideoPowerStatus").numbers, std::vector<double>{1});
        QCOMPARE(unit->call("Power_setVideoPowerStatus", {2.0}).code, 0);
        QCOMPARE(unit->call("Power_getVideoPowerStatus").numbers, std::vector<double>{2});
        QCOMPARE(unit->call("Power_setVideoPowerStatus", {4.0}).code, 5);
        QCOMPARE(unit->call("Power_getExtFanPowerStatus").code, 2);
        QCOMPARE(unit->call("Power_setExtFanPowerStatus", {1.0}).code, 2);
    }

    void regulatorsAreSwitched()
    {
        const auto consumers = "/sys/bus/platform/drivers/reg-userspace-consumer/"_s;
        unit->write(consumers + "bind"_s, "");
        unit->write(consumers + "regulator-output-1/name"_s, "vcc-can\n");
        unit->write(consumers + "regulator-output-1/state"_s, "disabled\n");
        unit->write(consumers + "regulator-output-2/state"_s, "enabled\n"); // it may have no name
        unit->write("/sys/class/regulator/regulator.3/name"_s, "vcc-fan\n");
        unit->write("/sys/class/regulator/regulator.3/state"_s, "enabled\n");
        lines = {{"V2", {"V2", 1}}};
        configure(R"({"power": {"can": {"regulator": "vcc-can"}, "extFan": {"regulator": "vcc-fan"},
        "video": [{"regulator": "regulator-output-2"}, {"line": "V2"}]}})");
        QCOMPARE(unit->call("Power_getCanPowerStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit->call("Power_setCanPowerStatus", {1.0}).code, 0);
        QCOMPARE(unit->read(consumers + "regulator-output-1/state"_s), QByteArray("enabled"));
        QCOMPARE(unit->call("Power_getCanPowerStatus").numbers, std::vector<double>{1});
        QCOMPARE(unit->call("Power_getVideoPowerStatus").numbers, std::vector<double>{3});
        QCOMPARE(unit->call("Power_setVideoPowerStatus", {2.0}).code, 0);
        QCOMPARE(unit->read(consumers + "regulator-output-2/state"_s), QByteArray("disabled"));
        QCOMPARE(unit->call("Power_getVideoPowerStatus").numbers, std::vector<double>{2});
        QProcess probe;
        probe.start(QStringLiteral(VORN_BIN_DIR "/vornaux-probe"), QStringList());
        QVERIFY(probe.waitForFinished());
        const auto notes = probe.readAllStandardError();
        QVERIFY2(
            notes.contains("power: what do these regulators switch? vcc-can, regulator-output-2\n"),
            notes.constData());
        // What drivers alone may switch can be read.
        QCOMPARE(unit->call("Power_getExtFanPowerStatus").numbers, std::vector<double>{1});
        const auto refused = unit->call("Power_setExtFanPowerStatus", {0.0});
        QCOMPARE(refused.kind(), 103);
        QVERIFY2(
            unit->textOf(refused).startsWith("The regulator vcc-fan can't be switched from here"),
            unit->textOf(refused).constData());
        QCOMPARE(unit->read("/sys/class/regulator/regulator.3/state"_s), QByteArray("enabled\n"));
    }

    void spoiltRegulators_data()
    {
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<int>("kind");
        QTest::newRow("unknown") << QByteArray("unknown\n") << 18;
        QTest::newRow("of no bytes") << QByteArray() << 18;
        QTest::newRow("nonsense") << QByteArray("maybe\n") << 104;
    }

    void spoiltRegulators()
    {
        QFETCH(QByteArray, state);
        const auto folder = "/sys/bus/platform/drivers/reg-userspace-consumer/can"_s;
        configure(R"({"power": {"can": {"regulator": "can"}}})");
        QCOMPARE(unit->call("Power_getCanPowerStatus").code, 18);
        QCOMPARE(unit->call("Power_setCanPowerStatus", {1.0}).code, 18);
        unit->write(folder + "/state"_s, state);
        QTEST(unit->call("Power_getCanPowerStatus").kind(), "kind");
        unit->remove(folder + "/state"_s);
        unit->link(folder + "/state"_s, "/proc/self/mem"); // EIO
        QCOMPARE(unit->call("Power_getCanPowerStatus").kind(), 102);
        unit->remove(folder + "/state"_s);
        unit->write(folder + "/state"_s, "enabled\n");
        QVERIFY(QFile::setPermissions(unit->path(folder + "/state"_s), QFile::ReadOwner));
        const auto answer = unit->call("Power_setCanPowerStatus", {0.0});
        if (::geteuid() != 0) {
            QCOMPARE(answer.kind(), 101);
            QVERIFY(unit->textOf(answer).contains("state; add yourself to group"));
        }
    }

    void backlightHasASwitch()
    {
        unit->write("/sys/class/backlight/panel/max_brightness"_s, "255\n");
        unit->write("/sys/class/backlight/panel/brightness"_s, "100\n");
        QCOMPARE(unit->call("Power_getBLPowerStatus").code, 2);
        unit->write("/sys/class/backlight/panel/bl_power"_s, "0\n");
        configure(R"({"power": false})");
        QCOMPARE(unit->call("Power_getBLPowerStatus").numbers, std::vector<double>{1});
        lines = {{"BL", {"BL", 0}}};
        configure(R"({"power": {"backlight": {"line": "BL"}}})");
        QCOMPARE(unit->call("Power_getBLPowerStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit->call("Power_setBLPowerStatus", {1.0}).code, 0);
        QCOMPARE(lines["BL"].value, 1);
        QCOMPARE(unit->read("/sys/class/backlight/panel/bl_power"_s), QByteArray("0\n"));
    }

    void radios()
    {
        QCOMPARE(unit->call("Telematics_getAvailable").code, 2);
        for (const char *name : {"rfkill0", "rfkill1"}) {
            const auto folder = "/sys/class/rfkill/"_s + QLatin1String(name);
            unit->write(folder + "/type"_s, "wlan\n");
            unit->write(folder + "/soft"_s, "0\n");
            unit->write(folder + "/hard"_s, "0\n");
        }
        QCOMPARE(unit->call("Telematics_getAvailable").numbers, std::vector<double>{1});
        QCOMPARE(unit->call("Telematics_getWLANPowerStatus").numbers, std::vector<double>{1});
        QCOMPARE(unit->call("Telematics_getBTPowerStatus").code, 2);
        QCOMPARE(unit->call("Telematics_getWLANStartUpPowerStatus").code, 2);
        QCOMPARE(unit->call("Telematics_setWLANPowerStatus", {0.0}).code, 0);
        QCOMPARE(unit->read("/sys/class/rfkill/rfkill0/soft"_s), QByteArray("1"));
        QCOMPARE(unit->read("/sys/class/rfkill/rfkill1/soft"_s), QByteArray("1"));
        QCOMPARE(unit->call("Telematics_getWLANPowerStatus").numbers, std::vector<double>{0});
        unit->write("/sys/class/rfkill/rfkill0/soft"_s, "on\n");
        QCOMPARE(unit->call("Telematics_getWLANPowerStatus").kind(), 104);
        configure(R"({"telematics": false})");
        QCOMPARE(unit->call("Telematics_getAvailable").code, 2);
        QCOMPARE(unit->call("Telematics_getWLANPowerStatus").code, 2);
    }

    /** A radio without power isn't there for the kernel. */
    void radiosHavePowerSwitches()
    {
        unit->write("/sys/class/net/lo/type"_s, "772\n");
        lines = {{"GSM", {"GSM", 0}}};
        configure(R"({"telematics": {"gsm": {"line": "GSM"}, "gps": {"regulator": "gnss"}}})");
        QCOMPARE(unit->call("Telematics_getAvailable").numbers, std::vector<double>{1});
        QCOMPARE(unit->call("Hardware_hasGsm").numbers, std::vector<double>{1});
        QCOMPARE(unit->call("Hardware_hasWlan").numbers, std::vector<double>{0});
        QCOMPARE(unit->call("Telematics_getGPRSPowerStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit->call("Telematics_setGPRSPowerStatus", {1.0}).code, 0);
        QCOMPARE(unit->call("Telematics_getGPRSPowerStatus").numbers, std::vector<double>{1});
        QCOMPARE(unit->call("Telematics_getGPSPowerStatus").code, 18);
        // Now its own switch shows, which blocks it too.
        const auto folder = "/sys/class/rfkill/rfkill0"_s;
        unit->write(folder + "/type"_s, "wwan\n");
        unit->write(folder + "/soft"_s, "1\n");
        unit->write(folder + "/hard"_s, "0\n");
        QCOMPARE(unit->call("Telematics_getGPRSPowerStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit->call("Telematics_setGPRSPowerStatus", {1.0}).code, 0);
        QCOMPARE(unit->read(folder + "/soft"_s), QByteArray("0"));
        QCOMPARE(unit->call("Telematics_setGPRSPowerStatus", {0.0}).code, 0);
        QCOMPARE(unit->read(folder + "/soft"_s), QByteArray("0"));
        QCOMPARE(unit->call("Telematics_getGPRSPowerStatus").numbers, std::vector<double>{0});
        lines["GSM"].error = EACCES;
        QCOMPARE(unit->call("Telematics_setGPRSPowerStatus", {1.0}).kind(), 101);
        configure(R"({"telematics": false})");
        QCOMPARE(unit->call("Telematics_getGPRSPowerStatus").code, 2);
    }

    void radioIsHeldOff()
    {
        const auto folder = "/sys/class/rfkill/rfkill3"_s;
        unit->write(folder + "/type"_s, "bluetooth\n");
        unit->write(folder + "/name"_s, "hci0\n");
        unit->write(folder + "/soft"_s, "1\n");
        unit->write(folder + "/hard"_s, "1\n");
        const auto answer = unit->call("Telematics_setBTPowerStatus", {1.0});
        QCOMPARE(answer.kind(), 103);
        QCOMPARE(unit->textOf(answer), QByteArray("hci0 is held off by a switch on the machine"));
        QCOMPARE(unit->call("Telematics_setBTPowerStatus", {0.0}).code, 0);
        QCOMPARE(unit->call("Telematics_getBTPowerStatus").numbers, std::vector<double>{0});
    }

    void antenna()
    {
        QCOMPARE(unit->call("Telematics_getGPSAntennaStatus").code, 2);
        lines = {{"ANT", {"ANT", 0}}};
        configure(R"({"telematics": {"antenna": {"line": "ANT"}}})");
        QCOMPARE(unit->call("Telematics_getGPSAntennaStatus").numbers, std::vector<double>{0});
        lines["ANT"].value = 1;
        QCOMPARE(unit->call("Telematics_getGPSAntennaStatus").numbers, std::vector<double>{1});
    }

    void portNames()
    {
        QVERIFY2(
            MockBus::isPossible(), "dbus-daemon or python3-dbusmock of packages.txt is missing");
        MockBus bus;
        QCOMPARE(unit->call("Settings_getString", {"VornsettingsGsmPort"}).code, 26);
        bus.play(R"py(
MM = 'org.freedesktop.ModemManager1'
manager = service(MM, '/org/freedesktop/ModemManager1', MM, manager=True)
ports = [('cdc-wdm0', 6), ('../sda', 3), ('ttyUSB2', 3), ('ttyUSB1', 5)]
manager.AddObject('/org/freedesktop/ModemManager1/Modem/0', MM + '.Modem', {'Ports': dbus.Array(
    [dbus.Struct((name, dbus.UInt32(kind))) for name, kind in ports], signature='(su)')}, [])
)py");
        QCOMPARE(unit->call("Settings_getString", {"VornsettingsGsmPort"}).text,
            QByteArray("/dev/ttyUSB2"));
        QCOMPARE(unit->call("Settings_getString", {"VornsettingsGpsPort"}).text,
            QByteArray("/dev/ttyUSB1"));
        QCOMPARE(unit->call("Settings_getString", {"Other"}).code, 26);
        unit->write("/sys/class/gnss/gnss0/type"_s, "NMEA\n");
        QCOMPARE(unit->call("Settings_getString", {"VornsettingsGpsPort"}).text,
            QByteArray("/dev/gnss0"));
        QCOMPARE(unit->call("Settings_setString", {"VornsettingsGpsPort", "/dev/ttyS1"}).code, 0);
        QCOMPARE(unit->call("Settings_getString", {"VornsettingsGpsPort"}).text,
            QByteArray("/dev/ttyS1"));
        unit->releaseAll();
    }

private:
    void configure(const QByteArray &json)
    {
        unit->write("/unit.json"_s, json);
        qputenv("VORNAUX_CONFIG", "/unit.json");
    }

    void playKernel()
    {
        QVERIFY(QDir().mkpath(unit->path("/run/vornaux"_s)));
        kernel.emplace(QFile::encodeName(unit->path("/run/vornaux/rtnetlink"_s)));
        kernel->setLinks({{1, "lo", "", ARPHRD_LOOPBACK, true, 0},
            {2, "can10", "can", ARPHRD_CAN, false, 0}, {3, "can2", "can", ARPHRD_CAN, true, 250000},
            {4, "vcan0", "vcan", ARPHRD_CAN, true, 0}});
    }

    std::optional<LinuxUnit> unit;
    std::optional<MockRtnetlink> kernel;
};

QTEST_GUILESS_MAIN(LinuxLinesTest)
#include "tst_linuxlines_posix.moc"
