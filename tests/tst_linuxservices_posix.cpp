#include "tests/support/LinuxUnit_posix.h"
#include "tests/support/MockBus_posix.h"
#include "tests/support/literals.h"

#include <QElapsedTimer>
#include <QtTest>

#include <optional>
#include <set>
#include <unistd.h>

using support::LinuxUnit;
using support::MockBus;
using support::operator""_s;

namespace {

/** A disk on a cable, a stick, an NVMe one and an eMMC; the service's order is none of these. */
const QByteArray drives = R"py(
UD = 'org.freedesktop.UDisks2'
manager = service(UD, '/org/freedesktop/UDisks2', UD + '.Manager', manager=True)

def drive(name, sort, serial, bus='', removable=False):
    path = '/org/freedesktop/UDisks2/drives/' + name
    manager.AddObject(path, UD + '.Drive', {
        'Id': name, 'Serial': serial, 'ConnectionBus': bus, 'Removable': dbus.Boolean(removable),
        'Optical': dbus.Boolean(False), 'SortKey': sort, 'Size': dbus.UInt64(8054112256)}, [])
    return objects[path]

stick = drive('Generic_Flash_Disk', '01hotplug/1675972756688073', 'STICK', 'usb', True)
nvme = drive('Samsung_SSD_970', '00coldplug/10fixed/nvme0', 'S4EWNF0M')
disk = drive('INTEL_SSDSC2', '00coldplug/20fixed/sda', 'BTPR1475')
disk.AddProperties(UD + '.Drive.Ata', {'SmartSupported': dbus.Boolean(True),
    'SmartEnabled': dbus.Boolean(True), 'SmartUpdated': dbus.UInt64(UPDATED)})
disk.AddMethod(UD + '.Drive.Ata', 'SmartGetAttributes', 'a{sv}', 'a(ysqiiixia{sv})', '''ret = [
    (dbus.Byte(5), 'reallocated-sector-count', dbus.UInt16(50), 100, 100, 0, dbus.Int64(0), 1, dbus.Dictionary({}, signature='sv')),
    (dbus.Byte(233), 'media-wearout-indicator', dbus.UInt16(50), 97, 97, 0, dbus.Int64(0), 1, dbus.Dictionary({}, signature='sv'))]''')
nvme.AddProperties(UD + '.NVMe.Controller', {'State': 'live', 'SmartUpdated': dbus.UInt64(1753906112)})
nvme.AddMethod(UD + '.NVMe.Controller', 'SmartGetAttributes', 'a{sv}', 'a{sv}', NVME)
)py";

QByteArray drivesWith(const QByteArray &nvme, const QByteArray &updated = "1675972756")
{
    return QByteArray("from dbusmock.mockobject import objects\nUPDATED = ") + updated +
           "\nNVME = '''" + nvme + "'''\n" + drives;
}

/** The firmware's service; `install` is what it does when it is asked to. */
QByteArray fwupd(const QByteArray &install)
{
    return R"py(
FW = 'org.freedesktop.fwupd'
fwupd = service(FW, '/', FW, properties={'Status': dbus.UInt32(1), 'Percentage': dbus.UInt32(0)})
fwupd.AddMethod(FW, 'Install', 'sha{sv}', '', """
import time
def tell(status, percent, self=self, time=time):
    self.UpdateProperties('org.freedesktop.fwupd',
        {'Status': dbus.UInt32(status), 'Percentage': dbus.UInt32(percent)})
    self.connection.flush()
    time.sleep(0.15)
)py" + install +
           "\n\"\"\")\n";
}

/** UPower with one battery of these properties, beside that of a mouse. */
QByteArray upower(const QByteArray &properties, const QByteArray &daemon = "'OnBattery': False")
{
    return R"py(
UP = 'org.freedesktop.UPower'
manager = service(UP, '/org/freedesktop/UPower', UP, properties={)py" +
           daemon + R"py(})
def device(name, properties):
    path = '/org/freedesktop/UPower/devices/' + name
    manager.AddObject(path, UP + '.Device', {'Type': dbus.UInt32(2), 'IsPresent': True,
        'PowerSupply': True, **properties}, [])
    return dbus.ObjectPath(path)
found = [device('mouse', {'PowerSupply': False, 'Percentage': 11.0}), device('own', {)py" +
           properties + R"py(})]
manager.AddMethod(UP, 'EnumerateDevices', '', 'ao', 'ret = ' + repr(found))
)py";
}

const QByteArray ups = "'Type': dbus.UInt32(3), 'NativePath': '/sys/devices/usb1/hiddev0', "
                       "'Percentage': 87.4, 'State': dbus.UInt32(2), 'Serial': 'B4711', "
                       "'Model': 'Back-UPS', 'BatteryLevel': dbus.UInt32(1), 'Temperature': 0.0";

const char *const used = "ret = {'percent_used': dbus.Byte(3), 'avail_spare': dbus.Byte(100)}";

} // namespace

/** The Linux unit and the services of the system bus, on a bus of the test's own. */
class LinuxServicesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY2(
            MockBus::isPossible(), "dbus-daemon or python3-dbusmock of packages.txt is missing");
    }

    void init()
    {
        unit.emplace();
        bus.emplace();
    }

    void cleanup()
    {
        unit.reset();
        bus.reset();
    }

    void withoutBusNothingIsThere()
    {
        QCOMPARE(call("Smart_getDeviceSerial").code, 2);
        bus.reset();
        unit->releaseAll();
        QCOMPARE(call("Smart_getDeviceSerial").code, 2);
        QCOMPARE(call("Firmware_shutDown").code, 2);
        QCOMPARE(call("Firmware_startSSUpgrade", {"/nowhere", 0.0}).code, 2);
    }

    void drivesAreTold()
    {
        bus->play(drivesWith(used));
        QCOMPARE(call("Smart_getDeviceSerial").text, QByteArray("S4EWNF0M"));
        QCOMPARE(call("Smart_getDeviceSerial2").text, QByteArray("BTPR1475"));
        QCOMPARE(call("Smart_getRemainingLifetime").numbers, std::vector<double>{97});
        QCOMPARE(call("Smart_getRemainingLifetime2").numbers, std::vector<double>{97});
        QCOMPARE(call("Smart_getInitialTime").code, 2);
        QCOMPARE(call("Smart_getInitialTime2").code, 2);
    }

    void configuredDrives()
    {
        unit->write(
            "/etc/vornaux/unit.json"_s, R"({"smart": {"drives": ["INTEL_SSDSC2", "Gone"]}})");
        bus->play(drivesWith(used));
        QCOMPARE(call("Smart_getDeviceSerial").text, QByteArray("BTPR1475"));
        QCOMPARE(call("Smart_getDeviceSerial2").code, 18);
        unit->write("/etc/vornaux/unit.json"_s, R"({"smart": false})");
        QCOMPARE(call("Smart_getDeviceSerial").code, 2);
    }

    void nvmeLifetimes_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("kind");
        QTest::addColumn<double>("percent");
        QTest::newRow("refused") << QByteArray("raise dbus.exceptions.DBusException('Broken', "
                                               "name='org.freedesktop.UDisks2.Error.Failed')")
                                 << 109 << 0.0;
        QTest::newRow("no rights") << QByteArray("raise dbus.exceptions.DBusException('No', "
                                                 "name='org.freedesktop.DBus.Error.AccessDenied')")
                                   << 101 << 0.0;
        QTest::newRow("nothing in it")
            << QByteArray("ret = dbus.Dictionary({}, signature='sv')") << 18 << 0.0;
        QTest::newRow("a text") << QByteArray("ret = {'percent_used': '3'}") << 18 << 0.0;
        QTest::newRow("no number")
            << QByteArray("ret = {'percent_used': float('nan')}") << 18 << 0.0;
        QTest::newRow("negative") << QByteArray("ret = {'percent_used': -3}") << 18 << 0.0;
        QTest::newRow("endless") << QByteArray("ret = {'percent_used': float('inf')}") << 0 << 0.0;
        QTest::newRow("used up") << QByteArray("ret = {'percent_used': dbus.Byte(130)}") << 0
                                 << 0.0;
        QTest::newRow("new") << QByteArray("ret = {'percent_used': dbus.Byte(0)}") << 0 << 100.0;
    }

    void nvmeLifetimes()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, kind);
        bus->play(drivesWith(reply));
        const auto answer = call("Smart_getRemainingLifetime");
        QCOMPARE(answer.kind(), kind);
        if (kind == 0)
            QTEST(answer.numbers.at(0), "percent");
        if (kind == 109)
            QCOMPARE(unit->textOf(answer),
                QByteArray("org.freedesktop.UDisks2 refuses SmartGetAttributes: Broken"));
    }

    void unreadDiskIsNotAvailable()
    {
        bus->play(drivesWith(used, "0"));
        QCOMPARE(call("Smart_getRemainingLifetime2").code, 18);
        QCOMPARE(call("Smart_getDeviceSerial2").code, 0);
    }

    void cardsTellOfTheirRegister()
    {
        bus->play(R"py(
UD = 'org.freedesktop.UDisks2'
manager = service(UD, '/org/freedesktop/UDisks2', UD + '.Manager', manager=True)
card = '/org/freedesktop/UDisks2/drives/BJTD4R'
manager.AddObject(card, UD + '.Drive', {'Id': 'BJTD4R', 'Serial': '', 'ConnectionBus': 'sdio',
    'Removable': dbus.Boolean(False), 'SortKey': '00coldplug/00fixed/mmcblk1'}, [])
manager.AddObject('/org/freedesktop/UDisks2/block_devices/mmcblk1', UD + '.Block',
    {'Drive': dbus.ObjectPath(card)}, [])
)py");
        QCOMPARE(call("Smart_getDeviceSerial").code, 2);
        QCOMPARE(call("Smart_getRemainingLifetime").code, 2);
        const auto file = "/sys/block/mmcblk1/device/life_time"_s;
        unit->write(file, "0x01 0x02\n");
        QCOMPARE(call("Smart_getRemainingLifetime").numbers, std::vector<double>{80});
        unit->write(file, "0x0b 0x01\n");
        QCOMPARE(call("Smart_getRemainingLifetime").numbers, std::vector<double>{0});
        for (const char *nothing : {"0x00 0x00\n", "0x0f 0x01\n", "nonsense\n", "\n"}) {
            unit->write(file, nothing);
            QCOMPARE(call("Smart_getRemainingLifetime").code, 2);
        }
    }

    void lateAnswersServeTheNextCall()
    {
        bus->play(drivesWith(QByteArray("import time; time.sleep(0.4); ") + used));
        QCOMPARE(call("Smart_getRemainingLifetime").code, 18);
        QTRY_COMPARE_WITH_TIMEOUT(
            call("Smart_getRemainingLifetime").numbers, std::vector<double>{97}, 5000);
    }

    void servicesDieAndComeBack()
    {
        bus->play(drivesWith(used));
        QCOMPARE(call("Smart_getDeviceSerial").code, 0);
        bus->killServices();
        QTRY_COMPARE(call("Smart_getDeviceSerial").code, 18);
        bus->play(drivesWith(used));
        QCOMPARE(call("Smart_getDeviceSerial").code, 0);
    }

    void busDiesAndComesBack()
    {
        bus->play(drivesWith(used));
        QCOMPARE(call("Smart_getDeviceSerial").code, 0);
        bus->killBus();
        QTRY_COMPARE(call("Smart_getDeviceSerial").code, 18);
        bus.reset();
        bus.emplace();
        bus->play(drivesWith(used));
        QCOMPARE(call("Smart_getDeviceSerial").code, 0);
    }

    void shutDown_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("asks for a password")
            << QByteArray(
                   "raise dbus.exceptions.DBusException('Interactive authentication required.', "
                   "name='org.freedesktop.DBus.Error.InteractiveAuthorizationRequired')")
            << 101
            << QByteArray("No permission for PowerOff of org.freedesktop.login1: "
                          "Interactive authentication required.");
        QTest::newRow("silent") << QByteArray("import time; time.sleep(0.5)") << 108
                                << QByteArray(
                                       "org.freedesktop.login1 hasn't answered to PowerOff; it "
                                       "may do it all the same");
        QTest::newRow("goes") << QByteArray("") << 0 << QByteArray("No error");
    }

    void shutDown()
    {
        QFETCH(QByteArray, reply);
        bus->play("logind = service('org.freedesktop.login1', '/org/freedesktop/login1', "
                  "'org.freedesktop.login1.Manager')\n"
                  "logind.AddMethod('', 'PowerOff', 'b', '', \"\"\"" +
                  reply + "\"\"\")");
        const auto answer = call("Firmware_shutDown");
        QTEST(answer.kind(), "kind");
        QTEST(unit->textOf(answer), "text");
        QTRY_VERIFY(bus->calls().contains("PowerOff False"));
    }

    void batteryOfTheServiceAlone()
    {
        unit->write("/sys/class/net/lo/type"_s, "772\n");
        QCOMPARE(call("Battery_isAvailable").numbers, std::vector<double>{0});
        QCOMPARE(call("Battery_getVoltageLevel").code, 2);
        bus->play(upower(ups));
        QCOMPARE(call("Battery_isAvailable").numbers, std::vector<double>{1});
        QCOMPARE(call("Battery_getVoltageLevel").numbers, std::vector<double>{87});
        QCOMPARE(call("Battery_getChargingStatus").numbers, std::vector<double>{0});
        QCOMPARE(call("Battery_getPowerSource").numbers, std::vector<double>{0});
        QCOMPARE(call("Battery_getSerialNumber").text, QByteArray("B4711"));
        QCOMPARE(call("Battery_getHwVersion").text, QByteArray("Back-UPS"));
        QCOMPARE(call("Battery_getTemperature").code, 2);
        QCOMPARE(call("Battery_getHwErrorStatus").code, 2);
        // The machine is asked where the battery doesn't say.
        bus->play(upower("'Type': dbus.UInt32(3), 'NativePath': '/sys/devices/usb1/hiddev0', "
                         "'State': dbus.UInt32(6), 'Temperature': 31.6",
            "'OnBattery': True"));
        QCOMPARE(call("Battery_getPowerSource").numbers, std::vector<double>{0});
        QCOMPARE(call("Battery_getVoltageLevel").code, 2);
        QCOMPARE(call("Battery_getTemperature").numbers, std::vector<double>{32});
        unit->write("/etc/vornaux/unit.json"_s, R"({"battery": {"device": "hiddev0"}})");
        QCOMPARE(call("Battery_isAvailable").numbers, std::vector<double>{1});
        unit->write("/etc/vornaux/unit.json"_s, R"({"battery": {"device": "hiddev1"}})");
        QCOMPARE(call("Battery_isAvailable").numbers, std::vector<double>{0});
        QCOMPARE(call("Battery_getVoltageLevel").code, 18);
        unit->write("/etc/vornaux/unit.json"_s, R"({"battery": false})");
        QCOMPARE(call("Battery_isAvailable").code, 2);
    }

    void serviceCompletesTheBattery()
    {
        const auto folder = "/sys/class/power_supply/BAT0"_s;
        unit->write(folder + "/type"_s, "Battery\n");
        unit->write(folder + "/status"_s, "Charging\n");
        unit->write(folder + "/serial_number"_s, "\n");
        const auto service =
            upower("'NativePath': 'BAT0', 'Percentage': 55.0, 'Temperature': 28.4, "
                   "'State': dbus.UInt32(2), 'Serial': '0815'");
        bus->play(service);
        // The kernel's word goes first.
        QCOMPARE(call("Battery_getChargingStatus").numbers, std::vector<double>{1});
        QCOMPARE(call("Battery_getVoltageLevel").numbers, std::vector<double>{55});
        QCOMPARE(call("Battery_getTemperature").numbers, std::vector<double>{28});
        QCOMPARE(call("Battery_getSerialNumber").text, QByteArray("0815"));
        QCOMPARE(call("Battery_getHwVersion").code, 2);
        unit->write(folder + "/capacity"_s, "54\n");
        QCOMPARE(call("Battery_getVoltageLevel").numbers, std::vector<double>{54});
        // What the kernel hasn't got any more has gone, whatever the service remembers.
        unit->remove(folder);
        QCOMPARE(call("Battery_isAvailable").numbers, std::vector<double>{0});
        QCOMPARE(call("Battery_getVoltageLevel").code, 18);
    }

    void batteryServiceLies_data()
    {
        QTest::addColumn<QByteArray>("properties");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QByteArray>("text");
        const auto row = [](const char *name, const QByteArray &lie, int kind, const char *text) {
            QTest::newRow(name) << QByteArray("'NativePath': '/sys/devices/usb1/hiddev0', ") + lie
                                << kind << QByteArray(text);
        };
        row("too much", "'Percentage': 250.0", 104, "UPower tells of 250% of charge");
        row("negative", "'Percentage': -1.0", 104, "UPower tells of -1% of charge");
        row("no number", "'Percentage': float('nan')", 104, "UPower tells of no number% of charge");
        row("a text", "'Percentage': '80'", 104, "UPower tells of no number% of charge");
        row("nothing", "'Energy': 3.0", 2, "Not supported by this machine");
        row("a level of its own", "'Percentage': 55.0, 'BatteryLevel': dbus.UInt32(6)", 2,
            "Not supported by this machine");
        row("no type", "'Type': 'battery'", 2, "Not supported by this machine");
        row("an empty slot", "'IsPresent': False", 2, "Not supported by this machine");
    }

    void batteryServiceLies()
    {
        QFETCH(QByteArray, properties);
        QFETCH(int, kind);
        bus->play(upower(properties));
        QTRY_COMPARE(
            call("Battery_getVoltageLevel").kind(), kind); // a busy machine is late at first
        QTEST(unit->textOf(call("Battery_getVoltageLevel")), "text");
        bus->play("UP = 'org.freedesktop.UPower'\n"
                  "manager = service(UP, '/org/freedesktop/UPower', UP)\n"
                  "manager.AddMethod(UP, 'EnumerateDevices', '', 's', 'ret = \"none\"')");
        QTRY_COMPARE(call("Battery_getVoltageLevel").kind(), 104);
    }

    void batteryServiceIsLateAndDies()
    {
        unit->write("/sys/class/net/lo/type"_s, "772\n");
        bus->play(upower(ups).replace("'ret = '", "'import time; time.sleep(0.3); ret = '"));
        QCOMPARE(call("Battery_isAvailable").code, 18); // neither yes nor no
        QTRY_COMPARE_WITH_TIMEOUT(
            call("Battery_getVoltageLevel").numbers, std::vector<double>{87}, 5000);
        bus->play(upower(ups));
        QTRY_COMPARE(call("Battery_getVoltageLevel").code, 0);
        bus->killServices();
        QTRY_COMPARE(call("Battery_getVoltageLevel").code, 18);
        bus->play(upower(ups));
        QTRY_COMPARE(call("Battery_getVoltageLevel").numbers, std::vector<double>{87});
    }

    void suspendTime()
    {
        QCOMPARE(call("Config_getSuspendMaxTime").code, 2);
        const QByteArray logind =
            "logind = service('org.freedesktop.login1', '/org/freedesktop/login1', "
            "'org.freedesktop.login1.Manager')\n"
            "logind.AddMethod('', 'CanSuspend', '', '";
        bus->play(logind + "s', 'ret = \"challenge\"')");
        QCOMPARE(call("Config_getSuspendMaxTime").numbers, std::vector<double>{0});
        QCOMPARE(call("Config_setSuspendMaxTime", {0.0}).code, 0);
        QCOMPARE(call("Config_setSuspendMaxTime", {5.0}).kind(), 109);
        bus->play(logind + "s', 'ret = \"na\"')");
        QCOMPARE(call("Config_getSuspendMaxTime").code, 2);
        bus->play(logind + "i', 'ret = 1')");
        QCOMPARE(call("Config_getSuspendMaxTime").kind(), 104);
        unit->write("/etc/vornaux/unit.json"_s, R"({"config": false})");
        QCOMPARE(call("Config_getSuspendMaxTime").code, 2);
    }

    void brightnessWithoutRights()
    {
        const auto folder = "/sys/class/backlight/panel"_s;
        unit->write(folder + "/max_brightness"_s, "255\n");
        unit->write(folder + "/brightness"_s, "100\n");
        QVERIFY(QFile::setPermissions(unit->path(folder + "/brightness"_s), QFile::ReadOwner));
        const auto answer = call("Backlight_setIntensity", {10.0});
        if (::geteuid() == 0) { // who may write anywhere, and asks nobody
            QCOMPARE(answer.code, 0);
            QVERIFY(!bus->calls().contains("SetBrightness"));
            return;
        }
        QCOMPARE(answer.kind(), 101);
        QVERIFY(unit->textOf(answer).contains("/sys/class/backlight/panel/brightness; "));
        bus->play(
            "session = service('org.freedesktop.login1', '/org/freedesktop/login1/session/auto', "
            "'org.freedesktop.login1.Session')\n"
            "session.AddMethod('', 'SetBrightness', 'ssu', '', '')");
        QCOMPARE(call("Backlight_setIntensity", {10.0}).code, 0);
        QTRY_VERIFY(bus->calls().contains("SetBrightness \"backlight\" \"panel\" 10"));
    }

    void firmwareIsInstalled()
    {
        bus->play(
            fwupd("for step in ((2, 30), (3, 60), (5, 20), (5, 70), (4, 0), (6, 90), (5, 10), "
                  "(77, 200)): tell(*step)"));
        QCOMPARE(firmwareStatus().errorCode, 24);
        unit->write("/new.hex"_s, "MSCF and more");
        const auto path = QFile::encodeName(unit->path("/new.hex"_s));
        QCOMPARE(call("Firmware_startSSUpgrade", {path.constData(), 0.0}).code, 0);
        QCOMPARE(call("Firmware_startSSUpgrade", {path.constData(), 0.0}).code, 25);
        FirmwareUpgradeStatus last{};
        std::set<int> seen;
        QElapsedTimer timer;
        for (timer.start(); last.state < FIRMWARE_DONE && timer.elapsed() < 20000;) {
            const auto status = firmwareStatus();
            QCOMPARE(status.errorCode, 0);
            QVERIFY(status.state >= last.state);
            QVERIFY(status.percent >= last.percent);
            last = status;
            seen.insert(status.state);
        }
        QCOMPARE(last.state, std::int32_t(FIRMWARE_DONE));
        QCOMPARE(last.percent, std::uint8_t(100));
        QVERIFY(seen.count(FIRMWARE_READING) && seen.count(FIRMWARE_FLASHING));
        QVERIFY(seen.count(FIRMWARE_VERIFYING));
        QVERIFY(bus->calls().contains("Install \"*\""));
        QCOMPARE(firmwareStatus().state, std::int32_t(FIRMWARE_DONE));
    }

    void firmwareRefused_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("state");
        QTest::newRow("no cabinet") << QByteArray(":10000000") << 104 << int(FIRMWARE_READING);
        QTest::newRow("empty") << QByteArray() << 104 << int(FIRMWARE_READING);
        QTest::newRow("refused") << QByteArray("MSCF") << 109 << int(FIRMWARE_FAILED);
    }

    void firmwareRefused()
    {
        QFETCH(QByteArray, content);
        bus->play(fwupd("raise dbus.exceptions.DBusException('No device fits', "
                        "name='org.freedesktop.fwupd.NotFound')"));
        unit->write("/new.hex"_s, content);
        const auto path = QFile::encodeName(unit->path("/new.hex"_s));
        QCOMPARE(call("Firmware_startSSUpgrade", {path.constData(), 0.0}).code, 0);
        FirmwareUpgradeStatus status{};
        QTRY_VERIFY((status = firmwareStatus()).errorCode != 0);
        QTEST(status.errorCode % 1000, "kind");
        QTEST(int(status.state), "state");
    }

    void firmwareServiceDies()
    {
        bus->play(fwupd("tell(5, 40)\ntime.sleep(60)"));
        unit->write("/new.hex"_s, "MSCF");
        const auto path = QFile::encodeName(unit->path("/new.hex"_s));
        QCOMPARE(call("Firmware_startSSUpgrade", {path.constData(), 0.0}).code, 0);
        QTRY_COMPARE(firmwareStatus().percent, std::uint8_t(40));
        bus->killServices();
        FirmwareUpgradeStatus status{};
        QTRY_VERIFY((status = firmwareStatus()).errorCode != 0);
        QCOMPARE(status.state, std::int32_t(FIRMWARE_FAILED));
        QCOMPARE(status.errorCode % 1000, 108);
        // Another job may begin, when there is a service again.
        QCOMPARE(call("Firmware_startSSUpgrade", {path.constData(), 0.0}).code, 18);
        bus->play(fwupd("pass"));
        QCOMPARE(call("Firmware_startSSUpgrade", {path.constData(), 0.0}).code, 0);
        QTRY_COMPARE(firmwareStatus().state, std::int32_t(FIRMWARE_DONE));
    }

    void firmwareTargets()
    {
        bus->play(fwupd("pass"));
        unit->write("/new.hex"_s, "MSCF");
        const auto path = QFile::encodeName(unit->path("/new.hex"_s));
        QCOMPARE(call("Firmware_startFrontUpgrade", {path.constData(), 0.0}).code, 2);
        unit->write("/etc/vornaux/unit.json"_s, R"({"firmware": {"front": "a1b2"}})");
        QCOMPARE(call("Firmware_startFrontUpgrade", {path.constData(), 0.0}).code, 0);
        QTRY_COMPARE(firmwareStatus().state, std::int32_t(FIRMWARE_DONE));
        QVERIFY(bus->calls().contains("Install \"a1b2\""));
    }

    void firmwareVersions()
    {
        QCOMPARE(call("Versions_getFPGAVersion").code, 2);
        QCOMPARE(call("Versions_getSSVersion").code, 2);
        unit->write("/sys/class/dmi/id/ec_firmware_release"_s, "1.20\n");
        QCOMPARE(call("Versions_getSSVersion").numbers, (std::vector<double>{1, 20, 0, 0}));
        unit->write("/etc/vornaux/unit.json"_s,
            R"({"firmware": {"fpga": "a1b2", "front": "11111111-2222", "supervisor": "c3"}})");
        QCOMPARE(call("Versions_getFPGAVersion").code, 2); // nobody knows
        bus->play(fwupd("pass") + R"py(
fwupd.AddMethod(FW, 'GetDevices', '', 'aa{sv}', """ret = [
    {'DeviceId': 'a1b2', 'Version': '2.0.17'},
    {'DeviceId': 'd4', 'Guid': dbus.Array(['0000', '11111111-2222'], signature='s'), 'Version': '5.6.7.8'},
    {'DeviceId': 'c3', 'Name': 'of no version'}]""")
)py");
        QCOMPARE(call("Versions_getFPGAVersion").numbers, (std::vector<double>{2, 0, 17, 0}));
        QCOMPARE(call("Versions_getFrontVersion").numbers, (std::vector<double>{5, 6, 7, 8}));
        QCOMPARE(call("Versions_getSSVersion").code, 18);
        unit->write("/etc/vornaux/unit.json"_s, R"({"firmware": false})");
        QCOMPARE(call("Versions_getFPGAVersion").code, 2);
        QCOMPARE(call("Versions_getSSVersion").numbers, (std::vector<double>{1, 20, 0, 0}));
    }

    void firmwareVersionsAreSpoilt_data()
    {
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("kind");
        const auto row = [](const char *name, const char *signature, const char *reply, int kind) {
            QTest::newRow(name) << QByteArray(signature) << QByteArray(reply) << kind;
        };
        row("late", "aa{sv}", "import time; time.sleep(0.3); ret = [{'DeviceId': 'x'}]", 18);
        row("gone", "aa{sv}", "ret = [{'DeviceId': 'b2', 'Version': '1'}]", 18);
        row("a text", "s", "ret = 'none'", 104);
        row("no objects", "as", "ret = ['a1b2']", 18);
        row("no text", "aa{sv}", "ret = [{'DeviceId': 'a1b2', 'Version': 7}]", 18);
        row("no version", "aa{sv}", "ret = [{'DeviceId': 'a1b2', 'Version': 'new'}]", 18);
        row("too large", "aa{sv}", "ret = [{'DeviceId': 'a1b2', 'Version': '2024.1'}]", 18);
        row("no rights", "aa{sv}",
            "raise dbus.exceptions.DBusException('No', name='org.freedesktop.fwupd.AuthFailed')",
            101);
    }

    void firmwareVersionsAreSpoilt()
    {
        QFETCH(QByteArray, signature);
        QFETCH(QByteArray, reply);
        unit->write("/etc/vornaux/unit.json"_s, R"({"firmware": {"fpga": "a1b2"}})");
        bus->play(fwupd("pass") + "fwupd.AddMethod(FW, 'GetDevices', '', '" + signature +
                  "', \"\"\"" + reply + "\"\"\")\n");
        QFETCH(int, kind);
        QTRY_COMPARE(call("Versions_getFPGAVersion").kind(), kind);
    }

private:
    FirmwareUpgradeStatus firmwareStatus()
    {
        const auto answer = call("Firmware_getUpgradeStatus", {1.0});
        if (answer.code != DEVICE_OK)
            return {-1, 0, answer.code};
        return {std::int32_t(answer.numbers[0]), std::uint8_t(answer.numbers[1]),
            std::int32_t(answer.numbers[2])};
    }

    /** Holds every call to its time. */
    LinuxUnit::Answer call(const char *operation, const std::vector<LinuxUnit::Value> &given = {})
    {
        QElapsedTimer timer;
        timer.start();
        auto answer = unit->call(operation, given);
        if (timer.elapsed() > LinuxUnit::longestCall)
            QTest::qFail(operation, __FILE__, __LINE__);
        return answer;
    }

    std::optional<LinuxUnit> unit;
    std::optional<MockBus> bus;
};

QTEST_GUILESS_MAIN(LinuxServicesTest)
#include "tst_linuxservices_posix.moc"
