#include "tests/support/LinuxUnit_posix.h"
#include "tests/support/literals.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QtTest>

#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

using support::LinuxUnit;
using support::operator""_s;

namespace {

constexpr const char *panel = "/sys/class/backlight/rpi_backlight";

void addPanel(const LinuxUnit &unit, const QByteArray &highest, const QByteArray &level)
{
    const auto folder = QLatin1String(panel);
    unit.write(folder + "/max_brightness"_s, highest);
    unit.write(folder + "/brightness"_s, level);
    unit.write(folder + "/actual_brightness"_s, level);
    unit.write(folder + "/bl_power"_s, "0\n");
    unit.write(folder + "/type"_s, "raw\n");
}

void addLight(const LinuxUnit &unit, const QByteArray &lux)
{
    const auto folder = "/sys/bus/iio/devices/iio:device0"_s;
    unit.write(folder + "/name"_s, "acpi-als\n");
    unit.write(folder + "/in_illuminance_input"_s, lux);
}

/** What a spoilt file makes of a reading. */
struct Spoilt {
    const char *name;
    const char *content; ///< null for a file that isn't there
    int kind;
    const char *words; ///< in the text of the code
};

const Spoilt spoiltFiles[] = {
    {"vanished", nullptr, 18, "Not available"},
    {"of no bytes", "", 18, "Not available"},
    {"nonsense", "soup\n", 104, "brightness holds \"soup\" where a number is expected"},
    {"control characters", "1\x01\x02 2\n", 104, "holds \"1?? 2\""},
    {"hexadecimal", "0x1f\n", 104, "holds \"0x1f\""},
    {"beyond 64 bits", "99999999999999999999\n", 104, "where a number is expected"},
    {"negative", "-1\n", 104, "beyond max_brightness"},
    {"beyond the top", "256\n", 104, "beyond max_brightness"},
};

struct Rejected {
    const char *name;
    const char *text;
    const char *words;
};

const Rejected wrongFiles[] = {
    {"empty", "", "line 1: syntax error"},
    {"unfinished", "{\n\"buzzer\": {", "line 2: syntax error"},
    {"no object", "[]", "line 1: the file is no object"},
    {"unknown section", "{\n\n  \"backlit\": {}\n}", "line 3: backlit is unknown here"},
    {"unknown key", "{\"buzzer\":\n {\"volume\":\n 3}}", "line 3: buzzer/volume is unknown here"},
    {"true for a section", "{\"buzzer\": true}", "line 1: buzzer is no object"},
    {"wrong type", "{\"backlight\": {\n\"device\": 7\n}}", "line 2: backlight/device is no string"},
    {"empty name", "{\"backlight\": {\"device\": \"\"}}", "backlight/device is empty"},
    {"below", "{\"backlight\": {\"darkest\": -1}}", "backlight/darkest is below 0"},
    {"above", "{\"hardware\": {\"counts\": {\n\"usb\": 256}}}",
        "line 2: hardware/counts/usb is above 255"},
    {"another folder", "{\"config\": {\"startupVoltage\": {\"file\": \"/etc/x\"}}}",
        "config/startupVoltage/file doesn't begin with /sys/"},
    {"no factor", "{\"config\": {\"startupVoltage\": {\"file\": \"/sys/x\", \"factor\": 0}}}",
        "config/startupVoltage/factor is below 1e-09"},
    {"neither of two", "{\"power\": {\n\"can\": {}}}", "line 2: power/can lacks \"line\""},
    {"one of two", "{\"power\": {\"can\": {\"regulator\": \"\"}}}",
        "line 1: power/can/regulator is empty"},
    {"both of two", "{\"power\": {\"can\": {\"regulator\": \"a\", \"line\": \"b\"}}}",
        "line 1: power/can/line is unknown here"},
    {"lacking", "{\"adc\": {\n\"rails\": [\n{\"channel\": 2}]}}",
        "line 3: adc/rails/0 lacks \"chip\""},
    {"other kind", "{\"temperatures\": {\"processor\": [{\"chip\": \"a\", \"kind\": \"nose\"}]}}",
        "temperatures/processor/0/kind is none of"},
    {"twice", "{\"name\": \"a\",\n\"name\": \"b\"}", "line 2: \"name\" stands there twice"},
    {"no UTF-8", "{\"name\": \"\xFF\"}", "line 1: syntax error"},
};

} // namespace

/** The Linux unit on trees of files, in the test's own process. */
class LinuxUnitTest : public QObject
{
    Q_OBJECT

private slots:
    void bareMachineHasNothing()
    {
        LinuxUnit unit;
        // What the library knows of itself and of the settings that it keeps.
        const std::set<std::string> answered{
            "Settings_getString", "Settings_setString", "Versions_getVornAuxVersion"};
        for (const auto &operation : contract::operations) {
            if (answered.count(operation.name) > 0)
                continue;
            std::vector<LinuxUnit::Value> given;
            for (const auto &argument : operation.arguments) {
                if (argument.role == contract::Role::In)
                    given.emplace_back(0.0);
                else if (argument.role == contract::Role::String)
                    given.emplace_back("/nowhere");
            }
            const auto answer = unit.call(operation.name, given);
            QVERIFY2(answer.code == DEVICE_NOT_SUPPORTED,
                qPrintable(QStringLiteral("%1 answered %2: %3")
                               .arg(QLatin1String(operation.name))
                               .arg(answer.code)
                               .arg(QString::fromLatin1(unit.textOf(answer)))));
        }
    }

    void handlesAndPointersAreChecked()
    {
        LinuxUnit unit;
        const auto get =
            reinterpret_cast<decltype(&Settings_getString)>(unit.function("Settings_getString"));
        const auto create =
            reinterpret_cast<decltype(&Settings_create)>(unit.function("Settings_create"));
        const auto release =
            reinterpret_cast<decltype(&Settings_release)>(unit.function("Settings_release"));
        const auto unmapped = reinterpret_cast<decltype(&Versions_getFPGAVersion)>(
            unit.function("Versions_getFPGAVersion"));
        char buffer[4] = "abc";
        QCOMPARE(get(nullptr, "a", buffer, 4), 3);
        auto *const handle = create();
        QVERIFY(handle);
        QCOMPARE(get(handle, nullptr, buffer, 4), 4);
        QCOMPARE(get(handle, "a", nullptr, 4), 4);
        QCOMPARE(get(handle, "a", buffer, 0), 4);
        QCOMPARE(get(handle, "a", buffer, 4), 26);
        QCOMPARE(
            unmapped(reinterpret_cast<VersionsHandle>(handle), nullptr, nullptr, nullptr, nullptr),
            3);
        release(handle);
        QCOMPARE(get(handle, "a", buffer, 4), 3);
        QCOMPARE(QByteArray(buffer), QByteArray("abc"));
    }

    void stringsStay()
    {
        LinuxUnit unit;
        QCOMPARE(unit.call("Settings_getString", {"Gsm"}).code, 26);
        QCOMPARE(unit.call("Settings_setString", {"Gsm", "Gr\xC3\xBC\xC3\x9F"}).code, 0);
        unit.releaseAll();
        QCOMPARE(unit.call("Settings_getString", {"Gsm"}).text, QByteArray("Gr\xC3\xBC\xC3\x9F"));
        QCOMPARE(unit.call("Settings_getString", {"Gsm"}, 3).text, QByteArray("Gr"));
        QVERIFY(QFile::exists(unit.path("/state/vornaux/unit.db"_s)));
    }

    void stringsNeedAFolder()
    {
        LinuxUnit unit;
        unit.write("/state"_s, "no folder");
        const auto answer = unit.call("Settings_setString", {"Gsm", "COM1"});
        QCOMPARE(answer.kind(), 106);
        QVERIFY2(unit.textOf(answer).contains("unit.db can't be used: Not a directory"),
            unit.textOf(answer).constData());
        // The sentence has a code of its own, and keeps it.
        QCOMPARE(unit.call("Settings_setString", {"Gsm", "COM1"}).code, answer.code);
        QVERIFY(answer.code > 1000);
    }

    void damagedStoreIsNamed()
    {
        LinuxUnit unit;
        unit.write("/state/vornaux/unit.db"_s, "");
        QCOMPARE(unit.call("Settings_getString", {"Gsm"}).code, 26);
        unit.write("/state/vornaux/unit.db"_s, QByteArray(8192, 'x'));
        const auto answer = unit.call("Settings_getString", {"Gsm"});
        QCOMPARE(answer.kind(), 106);
        QVERIFY2(unit.textOf(answer).endsWith("unit.db can't be used: file is not a database"),
            unit.textOf(answer).constData());
        QCOMPARE(unit.call("Settings_setString", {"Gsm", "COM1"}).kind(), 106);
        unit.remove("/state/vornaux/unit.db"_s);
        unit.releaseAll();
        QCOMPARE(unit.call("Settings_setString", {"Gsm", "COM1"}).code, 0);
        QCOMPARE(unit.call("Settings_getString", {"Gsm"}).text, QByteArray("COM1"));
    }

    void probeWritesTextsAsTheyAre()
    {
        const LinuxUnit unit;
        unit.write("/sys/class/dmi/id/product_name"_s, "Gr\u00f6\u00dfe 1\n");
        const auto sensor = "/sys/class/hwmon/hwmon0"_s;
        unit.write(sensor + "/name"_s, "K\u00f6rper\n");
        unit.write(sensor + "/in0_label"_s, "+12V\n");
        unit.write(sensor + "/in0_input"_s, "12000\n");
        QProcess probe;
        probe.start(QStringLiteral(VORN_BIN_DIR "/vornaux-probe"), QStringList());
        QVERIFY(probe.waitForFinished());
        const auto printed = probe.readAllStandardOutput();
        QVERIFY2(printed.contains("\"name\": \"Gr\u00f6\u00dfe 1\""), printed.constData());
        QVERIFY2(printed.contains("\"chip\": \"K\u00f6rper\""), printed.constData());
    }

    void wrongConfigurationIsNamed_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("words");
        for (const auto &row : wrongFiles)
            QTest::newRow(row.name) << QByteArray(row.text) << QByteArray(row.words);
    }

    void wrongConfigurationIsNamed()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, words);
        LinuxUnit unit;
        addPanel(unit, "255\n", "100\n");
        unit.write("/etc/vornaux/unit.json"_s, text);
        const auto answer = unit.call("Backlight_getIntensity");
        QCOMPARE(answer.kind(), 105);
        const auto told = unit.textOf(answer);
        QVERIFY2(told.startsWith("/etc/vornaux/unit.json, line "), told.constData());
        QVERIFY2(told.contains(words), told.constData());
        QCOMPARE(unit.call("Config_getSuspendMaxTime").code, answer.code);
        QCOMPARE(unit.call("Config_setSuspendMaxTime", {0.0}).code, answer.code);
    }

    void configurationIsReadAnew()
    {
        LinuxUnit unit;
        addPanel(unit, "255\n", "100\n");
        QCOMPARE(unit.call("Backlight_getIntensity").code, 0);
        unit.write("/etc/vornaux/unit.json"_s, R"({"backlight": false})");
        QCOMPARE(unit.call("Backlight_getIntensity").code, 2);
        unit.write("/etc/vornaux/unit.json"_s, R"({"backlight": {"device": "other"}})");
        QCOMPARE(unit.call("Backlight_getIntensity").code, 18);
        unit.write("/etc/vornaux/unit.json"_s, R"({"backlight": {"device": "rpi_backlight"}})");
        QCOMPARE(unit.call("Backlight_getIntensity").code, 0);
        unit.write("/etc/vornaux/unit.json"_s,
            R"({"backlight": {"device": "rpi_backlight", "darkest": 55}})");
        QCOMPARE(unit.call("Backlight_setIntensity", {0.0}).code, 0);
        QCOMPARE(unit.read(QLatin1String(panel) + "/brightness"_s), QByteArray("55"));
    }

    void backlightIsScaledWithoutDrift_data()
    {
        QTest::addColumn<int>("highest");
        for (const int highest : {1, 7, 15, 31, 100, 255, 851, 19393, 65535})
            QTest::addRow("%d", highest) << highest;
    }

    void backlightIsScaledWithoutDrift()
    {
        QFETCH(int, highest);
        LinuxUnit unit;
        addPanel(unit, QByteArray::number(highest) + '\n', QByteArray::number(highest) + '\n');
        // A loaded machine may not read in time, and says so.
        const auto told = [&] {
            auto answer = unit.call("Backlight_getIntensity");
            for (int tries = 0; answer.code == 18 && tries < 50; ++tries)
                answer = unit.call("Backlight_getIntensity");
            return answer.numbers;
        };
        QCOMPARE(told(), std::vector<double>{255});
        for (int intensity = 0; intensity <= 255; ++intensity) {
            QCOMPARE(unit.call("Backlight_setIntensity", {double(intensity)}).code, 0);
            const auto raw = unit.read(QLatin1String(panel) + "/brightness"_s).toInt();
            QVERIFY(std::abs(raw - intensity * highest / 255.0) <= 0.5);
            QCOMPARE(told(), std::vector<double>{double(intensity)});
        }
        // What others set is read as it is.
        unit.write(QLatin1String(panel) + "/brightness"_s, "0\n");
        QTRY_COMPARE(told(), std::vector<double>{0});
    }

    void backlightPowerAndHealth()
    {
        LinuxUnit unit;
        addPanel(unit, "255\n", "100\n");
        QCOMPARE(unit.call("Power_getBLPowerStatus").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Power_setBLPowerStatus", {0.0}).code, 0);
        QCOMPARE(unit.read(QLatin1String(panel) + "/bl_power"_s), QByteArray("4"));
        QCOMPARE(unit.call("Power_getBLPowerStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("Power_setBLPowerStatus", {2.0}).code, 5);
        QCOMPARE(unit.call("Backlight_getHealthStatus").numbers, std::vector<double>{1});
        // What reads a foreign process's memory at 0 answers EIO.
        unit.remove(QLatin1String(panel) + "/actual_brightness"_s);
        unit.link(QLatin1String(panel) + "/actual_brightness"_s, "/proc/self/mem");
        QCOMPARE(unit.call("Backlight_getHealthStatus").numbers, std::vector<double>{0});
        unit.remove(QLatin1String(panel) + "/brightness"_s);
        unit.link(QLatin1String(panel) + "/brightness"_s, "/proc/self/mem");
        const auto answer = unit.call("Backlight_getIntensity");
        QCOMPARE(answer.kind(), 102);
        QCOMPARE(
            unit.textOf(answer), QByteArray("Reading /sys/class/backlight/rpi_backlight/brightness "
                                            "failed: Input/output error"));
        unit.remove(QLatin1String(panel) + "/bl_power"_s);
        QCOMPARE(unit.call("Power_getBLPowerStatus").code, 2);
    }

    void bestBacklightIsTaken()
    {
        LinuxUnit unit;
        addPanel(unit, "255\n", "0\n");
        unit.write("/sys/class/backlight/acpi_video0/type"_s, "firmware\n");
        unit.write("/sys/class/backlight/acpi_video0/max_brightness"_s, "10\n");
        unit.write("/sys/class/backlight/acpi_video0/brightness"_s, "10\n");
        QCOMPARE(unit.call("Backlight_getIntensity").numbers, std::vector<double>{255});
        unit.remove("/sys/class/backlight/acpi_video0"_s);
        QCOMPARE(unit.call("Backlight_getIntensity").numbers, std::vector<double>{0});
        unit.remove(QLatin1String(panel));
        QCOMPARE(unit.call("Backlight_getIntensity").code, 18);
        unit.releaseAll();
        QCOMPARE(unit.call("Backlight_getIntensity").code, 2);
    }

    void spoiltBacklightIsNamed_data()
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < int(std::size(spoiltFiles)); ++row)
            QTest::newRow(spoiltFiles[row].name) << row;
    }

    void spoiltBacklightIsNamed()
    {
        QFETCH(int, row);
        const auto &spoilt = spoiltFiles[row];
        LinuxUnit unit;
        addPanel(unit, "255\n", "100\n");
        QCOMPARE(unit.call("Backlight_getIntensity").code, 0);
        if (spoilt.content)
            unit.write(QLatin1String(panel) + "/brightness"_s, spoilt.content);
        else
            unit.remove(QLatin1String(panel) + "/brightness"_s);
        const auto answer = unit.call("Backlight_getIntensity");
        QCOMPARE(answer.kind(), spoilt.kind);
        QVERIFY2(unit.textOf(answer).contains(spoilt.words), unit.textOf(answer).constData());
        unit.write(QLatin1String(panel) + "/brightness"_s, "7\n");
        QCOMPARE(unit.call("Backlight_getIntensity").numbers, std::vector<double>{7});
    }

    void missingRightsAreNamed()
    {
        LinuxUnit unit;
        addPanel(unit, "255\n", "100\n");
        QFile file(unit.path(QLatin1String(panel) + "/brightness"_s));
        QVERIFY(file.setPermissions(QFile::ReadOwner));
        const auto answer = unit.call("Backlight_setIntensity", {3.0});
        if (::geteuid() == 0) { // who may write anywhere
            QCOMPARE(answer.code, 0);
            QCOMPARE(unit.call("Backlight_getIntensity").numbers, std::vector<double>{3});
            return;
        }
        QCOMPARE(answer.kind(), 101);
        QVERIFY2(
            unit.textOf(answer).startsWith("No permission to write "
                                           "/sys/class/backlight/rpi_backlight/brightness; add "
                                           "yourself to group"),
            unit.textOf(answer).constData());
        QVERIFY(file.setPermissions({}));
        QCOMPARE(unit.textOf(unit.call("Backlight_getIntensity")),
            QByteArray("No permission to read /sys/class/backlight/rpi_backlight/brightness"));
    }

    void slowFilesDoNotBlock()
    {
        LinuxUnit unit;
        addPanel(unit, "255\n", "100\n");
        QCOMPARE(unit.call("Backlight_getIntensity").numbers, std::vector<double>{100});
        const auto path = QLatin1String(panel) + "/brightness"_s;
        unit.remove(path);
        // Nobody writes to it, so that reading it doesn't come to an end.
        QCOMPARE(::mkfifo(QFile::encodeName(unit.path(path)).constData(), 0600), 0);
        for (int round = 0; round < 3; ++round) {
            QElapsedTimer timer;
            timer.start();
            QCOMPARE(unit.call("Backlight_getIntensity").numbers, std::vector<double>{100});
            QVERIFY2(timer.elapsed() < LinuxUnit::longestCall,
                qPrintable(QString::number(timer.elapsed())));
        }
        // Without a value from before there is none.
        unit.releaseAll();
        QCOMPARE(unit.call("Backlight_getIntensity").code, 18);
        // Whoever waits for the file gets its end, and the threads go.
        const int writer =
            ::open(QFile::encodeName(unit.path(path)).constData(), O_WRONLY | O_NONBLOCK);
        QVERIFY(writer >= 0);
        ::close(writer);
    }

    void slowDevicesDoNotBlock_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QStringList>("stuck");
        const auto row = [](const char *name, const char *operation, const QStringList &stuck) {
            QTest::newRow(name) << QString::fromLatin1(operation) << stuck;
        };
        const auto sensor = "/sys/class/hwmon/hwmon0/"_s;
        const auto battery = "/sys/class/power_supply/BAT0/"_s;
        const auto light = "/sys/bus/iio/devices/iio:device0/in_illuminance_"_s;
        row("broken sensor", "Diagnostics_getPMTemp", {sensor + "temp1_fault"_s});
        row("broken board", "Diagnostics_getPCBTemp",
            {sensor + "temp1_fault"_s, sensor + "temp1_input"_s});
        row("slot", "Battery_isAvailable", {battery + "present"_s});
        row("gauge", "Battery_getVoltageLevel",
            {battery + "present"_s, battery + "charge_now"_s, battery + "charge_full"_s});
        row("health", "Battery_getChargingStatus", {battery + "health"_s});
        row("charger", "Battery_getPowerSource",
            {"/sys/class/power_supply/AC/online"_s, battery + "status"_s});
        row("serial", "Battery_getSerialNumber", {battery + "serial_number"_s});
        row("scale", "LightSensor_getIlluminance", {light + "scale"_s});
        row("light", "LightSensor_getIlluminance",
            {light + "scale"_s, light + "offset"_s, light + "raw"_s});
    }

    /** Whatever a driver has to ask its hardware for, alone or together. */
    void slowDevicesDoNotBlock()
    {
        QFETCH(QString, operation);
        QFETCH(QStringList, stuck);
        LinuxUnit unit;
        const auto write = unit.writerIn("/sys/class/");
        write("hwmon/hwmon0/name", "lm75\n");
        write("hwmon/hwmon0/temp1_input", "40000\n");
        write("power_supply/BAT0/type", "Battery\n");
        write("power_supply/BAT0/status", "Not charging\n");
        write("power_supply/AC/type", "Mains\n");
        unit.write("/sys/bus/iio/devices/iio:device0/in_illuminance_raw"_s, "209\n");
        for (const auto &file : stuck) {
            unit.write(file, "");
            unit.remove(file);
            QCOMPARE(::mkfifo(QFile::encodeName(unit.path(file)).constData(), 0600), 0);
        }
        QElapsedTimer timer;
        timer.start();
        std::vector<LinuxUnit::Value> given;
        if (operation.endsWith("PMTemp"_s))
            given.emplace_back(0.0);
        unit.call(operation.toLatin1().constData(), given);
        const auto time = timer.elapsed();
        QVERIFY2(time < LinuxUnit::longestCall, qPrintable(QString::number(time)));
        // It would take no time if it didn't ask for what is stuck.
        QVERIFY2(time > 50, qPrintable(QString::number(time)));
        unit.releaseAll();
        // Whoever waits for a file gets its end, and the threads go.
        for (const auto &file : stuck)
            ::close(::open(QFile::encodeName(unit.path(file)).constData(), O_RDWR | O_NONBLOCK));
    }

    void illuminanceIsScaled()
    {
        LinuxUnit unit;
        QCOMPARE(unit.call("LightSensor_getIlluminance").code, 2);
        const auto folder = "/sys/bus/iio/devices/iio:device3"_s;
        unit.write(folder + "/name"_s, "als\n");
        unit.write(folder + "/in_illuminance_raw"_s, "209\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").code, 2); // of an unknown unit
        unit.write(folder + "/in_illuminance_scale"_s, "0.100000\n");
        unit.write(folder + "/in_illuminance_offset"_s, "1\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").numbers, std::vector<double>{21});
        unit.write(
            "/etc/vornaux/unit.json"_s, R"({"lightSensor": {"device": "als", "factor": 2.5}})");
        QCOMPARE(unit.call("LightSensor_getIlluminance").numbers, std::vector<double>{53});
        unit.write(folder + "/in_illuminance_raw"_s, "16777216\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").numbers, std::vector<double>{65535});
        unit.write(folder + "/in_illuminance_raw"_s, "-9\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").kind(), 104);
        unit.write(folder + "/in_illuminance_raw"_s, "inf\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").kind(), 104);
        unit.remove(folder);
        QCOMPARE(unit.call("LightSensor_getIlluminance").code, 18);
    }

    void valuesBeyondAllNumbers()
    {
        LinuxUnit unit;
        const auto light = "/sys/bus/iio/devices/iio:device0"_s;
        unit.write(light + "/name"_s, "als\n");
        unit.write(light + "/in_illuminance_raw"_s, "1e200\n");
        unit.write(light + "/in_illuminance_scale"_s, "1e200\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").kind(), 104);
        // Neither infinite nor 0.
        unit.write(light + "/in_illuminance_raw"_s, "1.7e308\n");
        unit.write(light + "/in_illuminance_offset"_s, "1.7e308\n");
        unit.write(light + "/in_illuminance_scale"_s, "0\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").kind(), 104);
        unit.write("/sys/class/hwmon/hwmon0/name"_s, "ina226\n");
        unit.write("/sys/class/hwmon/hwmon0/in1_input"_s, "12040\n");
        unit.write("/etc/vornaux/unit.json"_s, R"({"adc": {"rails": [
        {"channel": 2, "chip": "ina226", "factor": 1e308}]}})");
        QCOMPARE(unit.call("Adc_getVoltage", {2.0}).kind(), 104);
        // It would be the first sensor if it were cut to 32 bits.
        unit.write("/etc/vornaux/unit.json"_s, R"({"adc": {"rails": [
        {"channel": 2, "chip": "ina226", "number": 4294967296}]}})");
        QCOMPARE(unit.call("Adc_getVoltage", {2.0}).kind(), 105);
        unit.remove("/etc/vornaux/unit.json"_s);
        unit.write("/sys/class/hwmon/hwmon1/name"_s, "lm75\n");
        unit.write("/sys/class/hwmon/hwmon1/temp1_input"_s, "1e300\n");
        const auto hot = unit.call("Diagnostics_getPCBTemp");
        QCOMPARE(hot.kind(), 104);
        QVERIFY2(unit.textOf(hot).endsWith("temp1_input tells of 1e+297 degrees C"),
            unit.textOf(hot).constData());
    }

    void lightRangeIsTheScale()
    {
        LinuxUnit unit;
        const auto folder = "/sys/bus/iio/devices/iio:device0"_s;
        addLight(unit, "12\n");
        QCOMPARE(unit.call("LightSensor_getOperatingRange").code, 2);
        unit.remove(folder + "/in_illuminance_input"_s);
        unit.write(folder + "/in_illuminance_raw"_s, "400\n");
        unit.write(folder + "/in_illuminance_scale"_s, "0.005000\n");
        QCOMPARE(unit.call("LightSensor_getOperatingRange").code, 2);
        unit.write(folder + "/in_illuminance_scale_available"_s, "1 0.25 0.005\n");
        QCOMPARE(unit.call("LightSensor_getOperatingRange").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("LightSensor_setOperatingRange", {1.0}).code, 0);
        QCOMPARE(unit.read(folder + "/in_illuminance_scale"_s), QByteArray("1"));
        QCOMPARE(unit.call("LightSensor_getOperatingRange").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("LightSensor_getIlluminance").numbers, std::vector<double>{400});
        unit.write(folder + "/in_illuminance_scale"_s, "0.25\n");
        QCOMPARE(unit.call("LightSensor_getOperatingRange").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("LightSensor_setOperatingRange", {0.0}).code, 0);
        QCOMPARE(unit.read(folder + "/in_illuminance_scale"_s), QByteArray("0.005"));
        QCOMPARE(unit.call("LightSensor_setOperatingRange", {2.0}).code, 5);
        unit.write("/etc/vornaux/unit.json"_s, R"({"lightSensor": false})");
        QCOMPARE(unit.call("LightSensor_getOperatingRange").code, 2);
    }

    /** What stands beside a value in the folder of a sensor is none, nor of another value. */
    void companionsAreNoLight()
    {
        LinuxUnit unit;
        const auto write = unit.writerIn("/sys/bus/iio/devices/iio:device0/");
        write("name", "als\n");
        write("in_illuminance_scale", "0.5\n");
        write("in_illuminance_offset", "1\n");
        write("in_illuminance_calibscale", "2\n");
        write("in_illuminance_hysteresis", "3\n");
        write("in_illuminance_integration_time", "0.1\n");
        write("in_illuminance_scale_available", "1 0.5\n");
        write("in_intensity_both_raw", "7\n");
        write("in_intensity_scale_available", "1 0.5\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").code, 2);
        QCOMPARE(unit.call("LightSensor_getOperatingRange").code, 2);
        unit.remove("/sys/bus/iio/devices/iio:device0/in_illuminance_scale_available"_s);
        write("in_illuminance_raw", "400\n");
        write("in_illuminance_calibscale_available", "1 2\n");
        write("in_illuminance_integration_time_available", "0.1 0.2\n");
        write("in_proximity_scale_available", "1 0.5\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").numbers, std::vector<double>{201});
        QCOMPARE(unit.call("LightSensor_getOperatingRange").code, 2);
        QCOMPARE(unit.call("LightSensor_setOperatingRange", {1.0}).code, 2);
        // The driver scales by itself what it gives as an input; its scale is no range of that.
        unit.remove("/sys/bus/iio/devices/iio:device0/in_illuminance_raw"_s);
        write("in_illuminance0_input", "32\n");
        write("in_illuminance0_scale", "0.1\n");
        write("in_illuminance_scale_available", "1 0.1\n");
        QCOMPARE(unit.call("LightSensor_getIlluminance").numbers, std::vector<double>{32});
        QCOMPARE(unit.call("LightSensor_getOperatingRange").code, 2);
    }

    void spoiltLightRange_data()
    {
        QTest::addColumn<QByteArray>("available");
        QTest::addColumn<int>("kind");
        QTest::newRow("of no bytes") << QByteArray() << 2;
        QTest::newRow("one") << QByteArray("0.5\n") << 2;
        QTest::newRow("one twice") << QByteArray("0.5 0.50\n") << 2;
        QTest::newRow("a range") << QByteArray("[0.1 0.1 1]\n") << 104;
        QTest::newRow("nonsense") << QByteArray("fine coarse\n") << 104;
        QTest::newRow("zero") << QByteArray("0 1\n") << 104;
        QTest::newRow("no number") << QByteArray("nan 1\n") << 104;
    }

    void spoiltLightRange()
    {
        QFETCH(QByteArray, available);
        LinuxUnit unit;
        const auto folder = "/sys/bus/iio/devices/iio:device0"_s;
        unit.write(folder + "/in_illuminance_raw"_s, "400\n");
        unit.write(folder + "/in_illuminance_scale"_s, "0.5\n");
        unit.write(folder + "/in_illuminance_scale_available"_s, available);
        QTEST(unit.call("LightSensor_getOperatingRange").kind(), "kind");
        QTEST(unit.call("LightSensor_setOperatingRange", {0.0}).kind(), "kind");
        QCOMPARE(unit.read(folder + "/in_illuminance_scale"_s), QByteArray("0.5\n"));
    }

    void touchscreens_data()
    {
        QTest::addColumn<QByteArray>("properties");
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QByteArray>("axes");
        QTest::addColumn<QByteArray>("database");
        QTest::addColumn<double>("present");
        const auto row = [](const char *name, const char *properties, const char *keys,
                             const char *axes, const char *database, bool isPresent) {
            QTest::newRow(name) << QByteArray(properties) << QByteArray(keys) << QByteArray(axes)
                                << QByteArray(database) << double(isPresent);
        };
        const char *const touch = "400 0 0 0 0 0";
        row("of fingers", "2", touch, "261800000000003", "", true);
        row("resistive", "0", touch, "1000003", "", true); // its driver doesn't call it direct
        row("direct alone", "2", "0", "3", "", true);
        row("pen", "2", "c01 0 0 0 0 0", "3", "", false);
        row("touch pad", "0", "420 0 10000 0 0 0 0", "3", "", false);
        row("pad", "5", "e520 10000 0 0 0 0", "660800011000003", "", false);
        row("virtual mouse", "0", "70000 0 0 0 0", "3", "", false);
        row("virtual pointer", "2", "70000 0 0 0 0", "3", "", false);
        row("keyboard", "0", "fffffffffffffffe", "0", "", false);
        row("all axes", "2", touch, "ffffffffffffffff", "", true); // of both kinds
        row("said by a rule", "0", "0", "0", "E:ID_INPUT=1\nE:ID_INPUT_TOUCHSCREEN=1\n", true);
        row("denied by a rule", "2", touch, "261800000000003",
            "E:ID_INPUT=1\nE:ID_INPUT_TABLET=1\n", false);
        row("not looked at yet", "2", touch, "261800000000003", "I:1234\n", true);
    }

    void touchscreens()
    {
        QFETCH(QByteArray, properties);
        QFETCH(QByteArray, keys);
        QFETCH(QByteArray, axes);
        QFETCH(QByteArray, database);
        LinuxUnit unit;
        const auto folder = "/sys/class/input/input3"_s;
        unit.write(folder + "/properties"_s, properties + '\n');
        unit.write(folder + "/capabilities/key"_s, keys + '\n');
        unit.write(folder + "/capabilities/abs"_s, axes + '\n');
        unit.write(folder + "/event7/dev"_s, "13:71\n");
        if (!database.isEmpty())
            unit.write("/run/udev/data/c13:71"_s, database);
        QTEST(unit.call("Hardware_hasTouchscreen").numbers.at(0), "present");
        // What a matrix turns the coordinates by is no profile, and no value of a controller.
        unit.write("/run/udev/data/c13:71"_s, "E:ID_INPUT=1\nE:ID_INPUT_TOUCHSCREEN=1\n"
                                              "E:LIBINPUT_CALIBRATION_MATRIX=0 1 0 -1 0 1\n");
        QCOMPARE(unit.call("Hardware_hasTouchscreen").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Touch_getMode").code, 2);
        QCOMPARE(unit.call("Touch_getMouseRightClickTime").code, 2);
        for (int setting = 0; setting <= TOUCH_CALIBRATION_MEASUREMENTS; ++setting)
            QCOMPARE(unit.call("Touch_getAdvancedSetting", {double(setting)}).code, 2);
    }

    void automaticBacklightFollowsTheLight()
    {
        LinuxUnit unit;
        addPanel(unit, "255\n", "100\n");
        QCOMPARE(unit.call("Backlight_startAutomaticBL").code, 2);
        addLight(unit, "1000\n");
        QCOMPARE(unit.call("Backlight_getAutomaticBLStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("Backlight_setAutomaticBLParams", {0.0}).code, 0);
        QCOMPARE(unit.call("Backlight_getAutomaticBLParams").numbers, (std::vector<double>{0, 50}));
        QCOMPARE(unit.call("Backlight_setAutomaticBLFilter", {1.0, 0.0, 5.0, 2.0}).code, 0);
        QCOMPARE(unit.call("Backlight_setAutomaticBLFilter", {0.0, 0.0, 5.0, 2.0}).code, 5);
        QCOMPARE(unit.call("Backlight_setAutomaticBLFilter", {1.0, 0.0, 5.0, 3.0}).code, 5);
        QCOMPARE(
            unit.call("Backlight_getAutomaticBLFilter").numbers, (std::vector<double>{1, 0, 5, 2}));
        QCOMPARE(unit.call("Backlight_startAutomaticBL").code, 0);
        QCOMPARE(unit.call("Backlight_getAutomaticBLStatus").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("LightSensor_startAverageCalc", {5.0, 5.0, 100.0, 2.0}).code, 20);
        QTRY_COMPARE(unit.read(QLatin1String(panel) + "/brightness"_s), QByteArray("165"));
        addLight(unit, "0\n");
        QTRY_COMPARE(unit.read(QLatin1String(panel) + "/brightness"_s), QByteArray("15"));
        // Gone for a while.
        unit.remove("/sys/bus/iio/devices/iio:device0"_s);
        QTest::qWait(450);
        addLight(unit, "9\n");
        QTRY_COMPARE(unit.read(QLatin1String(panel) + "/brightness"_s), QByteArray("65"));
        QCOMPARE(unit.call("Backlight_stopAutomaticBL").code, 0);
        QCOMPARE(unit.call("Backlight_getAutomaticBLStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("LightSensor_startAverageCalc", {5.0, 5.0, 100.0, 2.0}).code, 0);
        // It ends with the handles.
        QCOMPARE(unit.call("Backlight_startAutomaticBL").code, 0);
        unit.releaseAll();
        QCOMPARE(unit.call("Backlight_getAutomaticBLStatus").numbers, std::vector<double>{0});
    }

    /** Neither what reads for a call, nor what the control begins while that ends. */
    void nothingRunsBehindTheLastHandle()
    {
        LinuxUnit unit;
        addPanel(unit, "255\n", "100\n");
        addLight(unit, "1000\n");
        unit.write("/sys/class/power_supply/BAT0/type"_s, "Battery\n");
        const auto stuck = QFile::encodeName(unit.path("/sys/class/power_supply/BAT0/capacity"_s));
        QCOMPARE(::mkfifo(stuck.constData(), 0600), 0);
        const auto threads = [] { return QDir("/proc/self/task"_s).count(); };
        const auto before = threads();
        for (int round = 0; round < 6; ++round) {
            QCOMPARE(unit.call("Battery_getVoltageLevel").code, 18);
            QCOMPARE(unit.call("Backlight_startAutomaticBL").code, 0);
            unit.releaseAll(); // which takes a moment, since one of them is stuck
            ::close(::open(stuck.constData(), O_RDWR | O_NONBLOCK));
            QTRY_COMPARE(threads(), before);
        }
    }

    void averageForgivesFlashes()
    {
        LinuxUnit unit;
        addLight(unit, "100\n");
        QCOMPARE(unit.call("LightSensor_startAverageCalc", {4.0, 100.0, 50.0, 2.0}).code, 0);
        QTest::qWait(300);
        addLight(unit, "60000\n");
        QTest::qWait(450);
        QCOMPARE(unit.call("LightSensor_getIlluminance").numbers, std::vector<double>{100});
        QCOMPARE(unit.call("LightSensor_stopAverageCalc").code, 0);
        QCOMPARE(unit.call("LightSensor_getIlluminance").numbers, std::vector<double>{60000});
        QCOMPARE(unit.call("LightSensor_startAverageCalc", {0.0, 0.0, 50.0, 2.0}).code, 5);
    }

    void sensorsAreWalked()
    {
        LinuxUnit unit;
        const auto write = unit.writerIn("/sys/class/");
        write("hwmon/hwmon0/name", "acpitz\n");
        write("hwmon/hwmon0/temp1_input", "27800\n");
        unit.link("/sys/class/hwmon/hwmon0/device"_s, "../../thermal/thermal_zone0");
        write("thermal/thermal_zone0/type", "acpitz\n");
        write("thermal/thermal_zone0/temp", "27800\n");
        write("thermal/thermal_zone1/type", "x86_pkg_temp\n");
        write("thermal/thermal_zone1/temp", "50000\n");
        write("thermal/thermal_zone2/type", "pch_skylake\n");
        write("thermal/thermal_zone2/temp", "-4499\n");
        write("hwmon/hwmon1/name", "coretemp\n");
        write("hwmon/hwmon1/temp1_input", "50500\n");
        write("hwmon/hwmon1/temp1_label", "Package id 0\n");
        write("hwmon/hwmon1/temp10_input", "49000\n");
        write("hwmon/hwmon1/temp2_input", "48000\n");
        write("hwmon/hwmon2/name", "BAT0\n");
        write("hwmon/hwmon2/temp1_input", "20000\n");
        write("hwmon/hwmon3/device/name", "it8786\n"); // an old driver's files are one level down
        write("hwmon/hwmon3/device/temp1_input", "-280200\n");
        write("hwmon/hwmon3/device/temp2_input", "\n");
        write("hwmon/hwmon3/device/temp3_input", "41000\n");
        write("hwmon/hwmon3/device/temp3_fault", "1\n");
        const std::vector<std::vector<double>> walked{{51, 0}, {48, 0}, {49, 0}, {28, 3}, {-4, 5}};
        for (std::size_t i = 0; i < walked.size(); ++i)
            QCOMPARE(unit.call("Diagnostics_getPMTemp", {double(i)}).numbers, walked[i]);
        QCOMPARE(unit.call("Diagnostics_getPMTemp", {5.0}).code, 7);
        QCOMPARE(unit.call("Diagnostics_getPMTemp", {255.0}).code, 7);
        QCOMPARE(unit.call("Diagnostics_getPCBTemp").numbers, std::vector<double>{28});
        QCOMPARE(unit.call("Diagnostics_getSSTemp").code, 2);
        unit.write("/etc/vornaux/unit.json"_s, R"({"temperatures": {
        "supervisor": {"chip": "it8786", "input": "temp1"},
        "board": {"chip": "gone"},
        "processor": [{"chip": "coretemp", "label": "Package id 0", "kind": "box"}]}})");
        const auto nonsense = unit.call("Diagnostics_getSSTemp");
        QCOMPARE(nonsense.kind(), 104);
        QVERIFY(unit.textOf(nonsense).endsWith("temp1_input tells of -280 degrees C"));
        QCOMPARE(unit.call("Diagnostics_getPCBTemp").code, 18);
        QCOMPARE(unit.call("Diagnostics_getPMTemp", {0.0}).numbers, (std::vector<double>{51, 1}));
        QCOMPARE(unit.call("Diagnostics_getPMTemp", {1.0}).code, 7);
    }

    /** Its thermal zone answers EINVAL, as files of namespaces do. */
    void disabledZoneIsNotAvailable()
    {
        LinuxUnit unit;
        const auto temp = "/sys/class/thermal/thermal_zone0/temp"_s;
        unit.write("/sys/class/thermal/thermal_zone0/type"_s, "board-thermal\n");
        unit.link(temp, "/proc/self/ns/uts");
        unit.write("/etc/vornaux/unit.json"_s,
            R"({"temperatures": {"supervisor": {"chip": "board-thermal"}}})");
        QCOMPARE(unit.call("Diagnostics_getPCBTemp").code, 18);
        QCOMPARE(unit.call("Diagnostics_getSSTemp").code, 18);
        QCOMPARE(unit.call("Diagnostics_getPMTemp", {0.0}).code, 7); // none that a walk could show
        unit.remove(temp);
        unit.write(temp, "41000\n");
        QCOMPARE(unit.call("Diagnostics_getPCBTemp").numbers, std::vector<double>{41});
        QCOMPARE(unit.call("Diagnostics_getPMTemp", {0.0}).numbers,
            (std::vector<double>{41, SENSOR_BOARD}));
    }

    void sixtyFourSensors()
    {
        LinuxUnit unit;
        unit.write("/sys/class/hwmon/hwmon0/name"_s, "coretemp\n");
        for (int i = 1; i <= 64; ++i)
            unit.write(
                "/sys/class/hwmon/hwmon0/temp%1_input"_s.arg(i), QByteArray::number(i * 1000));
        for (int i = 0; i < 64; ++i)
            QCOMPARE(unit.call("Diagnostics_getPMTemp", {double(i)}).numbers,
                (std::vector<double>{i + 1.0, 0}));
        QCOMPARE(unit.call("Diagnostics_getPMTemp", {64.0}).code, 7);
    }

    /** The kernel makes a chip of a power supply, and writes its name another way. */
    void batteriesAreNoSensors()
    {
        LinuxUnit unit;
        unit.write("/sys/class/power_supply/sbs-9-000b/type"_s, "Battery\n");
        unit.write("/sys/class/hwmon/hwmon0/name"_s, "sbs_9_000b\n");
        unit.write("/sys/class/hwmon/hwmon0/temp1_input"_s, "26000\n");
        unit.link("/sys/class/hwmon/hwmon0/device"_s, "../../power_supply/sbs-9-000b");
        QCOMPARE(unit.call("Diagnostics_getPMTemp", {0.0}).code, 2);
    }

    void railsAreMapped()
    {
        LinuxUnit unit;
        unit.write("/sys/class/hwmon/hwmon0/name"_s, "ina226\n");
        unit.write("/sys/class/hwmon/hwmon0/in1_input"_s, "12040\n");
        unit.write("/sys/class/hwmon/hwmon0/in1_label"_s, "12V rail\n");
        const auto folder = "/sys/bus/iio/devices/iio:device0"_s;
        unit.write(folder + "/name"_s, "ad7606\n");
        unit.write(folder + "/in_voltage3_raw"_s, "1000\n");
        unit.write("/etc/vornaux/unit.json"_s, R"({"adc": {"rails": [
        {"channel": 2, "chip": "ina226", "label": "12V rail"},
        {"channel": 0, "chip": "ad7606", "input": "in_voltage3", "factor": 11},
        {"channel": 4, "chip": "ina226", "input": "in7"}]}})");
        QCOMPARE(unit.call("Adc_getVoltage", {2.0}).numbers, std::vector<double>{12.04});
        QCOMPARE(unit.call("Adc_getVoltage", {0.0}).code, 18); // no scale: nobody knows the unit
        unit.write(folder + "/in_voltage_scale"_s, "2\n");
        QCOMPARE(unit.call("Adc_getVoltage", {0.0}).numbers, std::vector<double>{22});
        QCOMPARE(unit.call("Adc_getVoltage", {4.0}).code, 18);
        QCOMPARE(unit.call("Adc_getVoltage", {5.0}).code, 2);
        QCOMPARE(unit.call("Adc_getVoltage", {1.0}).code, 6);
        QCOMPARE(unit.call("Adc_getVoltage", {24.0}).code, 6);
    }

    /** A channel has a scale of its own or one of its kind, and none of another channel. */
    void companionsAreNoVoltages()
    {
        LinuxUnit unit;
        const auto write = unit.writerIn("/sys/bus/iio/devices/iio:device0/");
        write("name", "ad7606\n");
        write("in_voltage0_raw", "1000\n");
        write("in_voltage0_scale", "2\n");
        write("in_voltage0_offset", "500\n");
        write("in_voltage0_scale_available", "2 4\n");
        write("in_voltage0_mean_raw", "900\n");
        write("in_voltage0_peak_raw", "1100\n");
        write("in_voltage0_vref_raw", "100\n");
        write("in_voltage1_vcc_raw", "200\n");
        unit.write("/etc/vornaux/unit.json"_s, R"({"adc": {"rails": [
        {"channel": 0, "chip": "ad7606"},
        {"channel": 2, "chip": "ad7606", "input": "in_voltage0_vref"},
        {"channel": 3, "chip": "ad7606", "input": "in_voltage1_vcc"},
        {"channel": 4, "chip": "ad7606", "input": "in_voltage0_peak"}]}})");
        QCOMPARE(unit.call("Adc_getVoltage", {0.0}).numbers, std::vector<double>{3});
        QCOMPARE(unit.call("Adc_getVoltage", {2.0}).code, 18);
        QCOMPARE(unit.call("Adc_getVoltage", {3.0}).code, 18);
        QCOMPARE(unit.call("Adc_getVoltage", {4.0}).code, 18);
        write("in_voltage_scale", "10\n");
        QCOMPARE(unit.call("Adc_getVoltage", {0.0}).numbers, std::vector<double>{3});
        QCOMPARE(unit.call("Adc_getVoltage", {2.0}).numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Adc_getVoltage", {3.0}).numbers, std::vector<double>{2});
        QCOMPARE(unit.call("Adc_getVoltage", {4.0}).code, 18);
    }

    void identityIsTold()
    {
        LinuxUnit unit;
        const auto write = unit.writerIn("");
        write("/sys/class/dmi/id/board_serial", "Default string\n");
        write("/sys/class/dmi/id/board_name", "UTC-510D\n");
        write("/sys/class/dmi/id/product_version", "V1.0 \xC2\xB5\n");
        write("/proc/device-tree/serial-number", QByteArray("00000001\0", 9));
        write("/sys/class/net/eth0/type", "1\n");
        write("/sys/class/net/eth0/uevent", "INTERFACE=eth0\n");
        write("/sys/class/net/eth0/device/vendor", "0x8086\n");
        write("/sys/class/net/wlan0/type", "1\n");
        write("/sys/class/net/wlan0/uevent", "INTERFACE=wlan0\n");
        write("/sys/class/net/wlan0/device/vendor", "0x8086\n");
        write("/sys/class/net/wlan0/wireless/x", "");
        write("/sys/class/net/lo/type", "772\n");
        write("/sys/class/net/docker0/type", "1\n");
        write("/sys/class/net/can0/type", "280\n");
        write("/sys/class/net/can0/device/x", "");
        write("/sys/class/net/vcan0/type", "280\n");
        write("/sys/class/tty/ttyS0/type", "4\n");
        write("/sys/class/tty/ttyS0/device/x", "");
        write("/sys/class/tty/ttyS1/type", "0\n");
        write("/sys/class/tty/ttyS1/device/x", "");
        write("/sys/class/drm/card0-HDMI-A-1/status", "disconnected\n");
        write("/sys/class/input/input3/properties", "2\n");
        write("/sys/class/input/input3/capabilities/key", "400 0 0 0 0 0\n");
        write("/sys/class/input/input3/capabilities/abs", "261800000000003\n");
        write("/sys/class/rfkill/rfkill0/type", "bluetooth\n");
        QCOMPARE(unit.call("Hardware_getMainPcbSerial").code, 2);
        QCOMPARE(unit.call("Hardware_getUnitSerialNumber").text, QByteArray("00000001"));
        QCOMPARE(unit.call("Hardware_getMainPcbArticleNumber").text, QByteArray("UTC-510D"));
        QCOMPARE(unit.call("Hardware_getMainProductRevision").text, QByteArray("V1.0 \xB5"));
        QCOMPARE(unit.call("Hardware_getMainProductRevision", {}, 4).text, QByteArray("V1."));
        QCOMPARE(unit.call("Hardware_getEthernetCount").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Hardware_getCanCount").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Hardware_getSerialCount").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Hardware_getUsbCount").code, 2);
        QCOMPARE(unit.call("Hardware_hasDisplay").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("Hardware_hasTouchscreen").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Hardware_hasWlan").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Hardware_hasBluetooth").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Hardware_hasGsm").numbers, std::vector<double>{0});
        write("/sys/class/drm/card0-HDMI-A-1/status", "connected\n");
        QCOMPARE(unit.call("Hardware_hasDisplay").numbers, std::vector<double>{1});
        unit.write("/etc/vornaux/unit.json"_s, R"({"hardware": {
        "texts": {"mainManufacturingDate": "Mai 2021, Gera \u00e4\u20ac"}, "counts": {"usb": 4}}})");
        QCOMPARE(unit.call("Hardware_getMainManufacturingDate").text,
            QByteArray("Mai 2021, Gera \xE4?"));
        QCOMPARE(unit.call("Hardware_getUsbCount").numbers, std::vector<double>{4});
    }

    /** The ports of a built-in switch are a machine's sockets; what joins the switch to the
     *  processor has none. */
    void portsOfSwitchesAreCounted()
    {
        LinuxUnit unit;
        const auto add = [&](const char *name, const char *type, const char *kind) {
            const auto folder = "/sys/class/net/"_s + QLatin1String(name);
            unit.write(folder + "/type"_s, type);
            unit.write(folder + "/uevent"_s, kind);
            unit.write(folder + "/device/uevent"_s, "");
        };
        add("eth0", "1\n", "INTERFACE=eth0\nIFINDEX=2\n");
        unit.write("/sys/class/net/eth0/dsa/tagging"_s, "dsa\n");
        for (const char *port : {"lan1", "lan2", "lan3", "wan"})
            add(port, "1\n", "DEVTYPE=dsa\nINTERFACE=lan\n");
        QCOMPARE(unit.call("Hardware_getEthernetCount").numbers, std::vector<double>{4});
        add("eth1", "1\n", "INTERFACE=eth1\n"); // beside the switch
        QCOMPARE(unit.call("Hardware_getEthernetCount").numbers, std::vector<double>{5});
        // What a port gives to virtual machines, and what else has a device: none has a socket.
        add("eth1v0", "1\n", "INTERFACE=eth1v0\n");
        unit.write("/sys/class/net/eth1v0/device/physfn/uevent"_s, "");
        add("usb0", "1\n", "DEVTYPE=gadget\nINTERFACE=usb0\n");
        add("wwan0", "1\n", "DEVTYPE=wwan\nINTERFACE=wwan0\n");
        add("ib0", "32\n", "INTERFACE=ib0\n");
        QCOMPARE(unit.call("Hardware_getEthernetCount").numbers, std::vector<double>{5});
        // It would pass for another socket.
        unit.write("/sys/class/net/wwan0/uevent"_s, "soup\n");
        QCOMPARE(unit.call("Hardware_getEthernetCount").numbers, std::vector<double>{5});
        unit.remove("/sys/class/net/wwan0/uevent"_s);
        QCOMPARE(unit.call("Hardware_getEthernetCount").numbers, std::vector<double>{5});
        QCOMPARE(unit.call("Hardware_getCanCount").numbers, std::vector<double>{0});
        add("can0", "280\n", "INTERFACE=can0\n");
        QCOMPARE(unit.call("Hardware_getCanCount").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Hardware_getEthernetCount").numbers, std::vector<double>{5});
    }

    void versionsAreTold()
    {
        LinuxUnit unit;
        unit.write("/proc/sys/kernel/osrelease"_s, "6.1.0-13-amd64\n");
        unit.write("/etc/os-release"_s, "NAME=\"Debian\"\nVERSION_ID=\"12\"\n");
        unit.write("/sys/class/dmi/id/ec_firmware_release"_s, "1.35\n");
        QCOMPARE(
            unit.call("Versions_getVornAuxDrvVersion").numbers, (std::vector<double>{6, 1, 0, 13}));
        QCOMPARE(unit.call("Versions_getOSVersion").numbers, (std::vector<double>{12, 0, 0, 0}));
        QCOMPARE(unit.call("Versions_getSSVersion").numbers, (std::vector<double>{1, 35, 0, 0}));
        QCOMPARE(unit.call("Versions_getFPGAVersion").code, 2);
        unit.write("/proc/sys/kernel/osrelease"_s, "4.19.325\n");
        QCOMPARE(unit.call("Versions_getVornAuxDrvVersion").code, 18); // doesn't fit
        unit.write("/etc/os-release"_s, "ID=arch\n");
        QCOMPARE(unit.call("Versions_getOSVersion").code, 2);
    }

    void batteryIsTold()
    {
        LinuxUnit unit;
        const auto write = unit.writerIn("/sys/class/power_supply/");
        write("hidpp_battery_0/type", "Battery\n");
        write("hidpp_battery_0/scope", "Device\n");
        QCOMPARE(unit.call("Battery_isAvailable").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("Battery_getVoltageLevel").code, 2);
        write("BAT1/type", "Battery\n");
        write("BAT1/present", "1\n");
        write("BAT1/charge_now", "2100000\n");
        write("BAT1/charge_full", "4200000\n");
        write("BAT1/status", "Discharging\n");
        write("BAT1/temp", "-56\n");
        write("BAT1/health", "Good\n");
        write("BAT1/serial_number", " 123 \n");
        write("AC/type", "Mains\n");
        write("AC/online", "0\n");
        QCOMPARE(unit.call("Battery_isAvailable").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Battery_getVoltageLevel").numbers, std::vector<double>{50});
        QCOMPARE(unit.call("Battery_getChargingStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("Battery_getPowerSource").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("Battery_getTemperature").numbers, std::vector<double>{-6});
        QCOMPARE(unit.call("Battery_getHwErrorStatus").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("Battery_getSerialNumber").text, QByteArray("123"));
        QCOMPARE(unit.call("Battery_getTimes").code, 2);
        // What feeds a pen doesn't feed the machine.
        write("pen_charger/type", "Wireless\n");
        write("pen_charger/scope", "Device\n");
        write("pen_charger/online", "1\n");
        QCOMPARE(unit.call("Battery_getPowerSource").numbers, std::vector<double>{0});
        write("AC/online", "1\n");
        write("BAT1/status", "Not charging\n");
        write("BAT1/health", "Cold\n");
        write("BAT1/capacity", "104\n");
        QCOMPARE(unit.call("Battery_getVoltageLevel").numbers, std::vector<double>{100});
        QCOMPARE(unit.call("Battery_getChargingStatus").numbers, std::vector<double>{3});
        QCOMPARE(unit.call("Battery_getPowerSource").numbers, std::vector<double>{1});
        write("BAT1/health", "Dead\n");
        const auto dead = unit.call("Battery_getHwErrorStatus");
        QCOMPARE(dead.kind(), 104);
        QVERIFY(unit.textOf(dead).endsWith("health tells of \"Dead\""));
        write("BAT1/capacity", "65535\n");
        QCOMPARE(unit.call("Battery_getVoltageLevel").kind(), 104);
        write("BAT1/present", "0\n");
        QCOMPARE(unit.call("Battery_isAvailable").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("Battery_getVoltageLevel").code, 18);
    }

    void ledShowsColorsAndBlinks()
    {
        LinuxUnit unit;
        const auto write = unit.writerIn("/sys/class/leds/");
        const auto read = [&](const char *path) {
            return unit.read("/sys/class/leds/"_s + QLatin1String(path));
        };
        for (const char *name : {"red:indicator", "green:indicator"}) {
            write((std::string(name) + "/max_brightness").c_str(), "255\n");
            write((std::string(name) + "/brightness").c_str(), "0\n");
            write((std::string(name) + "/trigger").c_str(), "[none] timer heartbeat\n");
            write((std::string(name) + "/delay_on").c_str(), "0\n");
            write((std::string(name) + "/delay_off").c_str(), "0\n");
        }
        QCOMPARE(unit.call("FrontLED_getColor").code, 2);
        unit.write("/etc/vornaux/unit.json"_s,
            R"({"frontLed": {"red": "red:indicator", "green": "green:indicator"}})");
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{0, 0, 0}));
        QCOMPARE(unit.call("FrontLED_getSignal").numbers, (std::vector<double>{1, 0}));
        QCOMPARE(unit.call("FrontLED_setStandardColor", {5.0}).code, 0);
        QCOMPARE(unit.call("FrontLED_getSignal").numbers, (std::vector<double>{1, 100}));
        QCOMPARE(read("red:indicator/brightness"), QByteArray("255"));
        QCOMPARE(unit.call("FrontLED_getStandardColor").numbers, std::vector<double>{5});
        QCOMPARE(unit.call("FrontLED_setColor", {7.0, 0.0, 0.0}).code, 0);
        QCOMPARE(read("red:indicator/brightness"), QByteArray("119"));
        QCOMPARE(read("green:indicator/brightness"), QByteArray("0"));
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{7, 0, 0}));
        QCOMPARE(unit.call("FrontLED_getStandardColor").code, 18);
        QCOMPARE(unit.call("FrontLED_setColor", {16.0, 0.0, 0.0}).code, 5);
        write("red:indicator/trigger", "[none] timer heartbeat\n");
        QCOMPARE(unit.call("FrontLED_setSignal", {2.0, 25.0}).code, 0);
        QCOMPARE(read("red:indicator/trigger"), QByteArray("timer"));
        QCOMPARE(read("red:indicator/delay_on"), QByteArray("125"));
        QCOMPARE(read("red:indicator/delay_off"), QByteArray("375"));
        QCOMPARE(unit.call("FrontLED_getSignal").numbers, (std::vector<double>{2, 25}));
        QCOMPARE(unit.call("FrontLED_setSignal", {0.0, 25.0}).code, 5);
        QCOMPARE(unit.call("FrontLED_setSignal", {2.0, 101.0}).code, 5);
        QCOMPARE(unit.call("FrontLED_setOff").code, 0);
        QCOMPARE(read("red:indicator/brightness"), QByteArray("0"));
        // Off is a signal without light; colour and frequency stay for the next one.
        QCOMPARE(unit.call("FrontLED_getSignal").numbers, (std::vector<double>{2, 0}));
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{7, 0, 0}));
        QCOMPARE(unit.call("FrontLED_setSignal", {2.0, 100.0}).code, 0);
        QCOMPARE(read("red:indicator/brightness"), QByteArray("119"));
        QCOMPARE(unit.call("FrontLED_getNrOfPulses").code, 2);
        QCOMPARE(unit.call("FrontLED_setIdleTime", {3.0}).code, 2);
        unit.remove("/sys/class/leds/green:indicator"_s);
        QCOMPARE(unit.call("FrontLED_getColor").code, 18);
    }

    void ledOfOthersIsSwitchedOff()
    {
        LinuxUnit unit;
        const auto folder = "/sys/class/leds/status"_s;
        unit.write(folder + "/max_brightness"_s, "255\n");
        unit.write(folder + "/brightness"_s, "255\n");
        unit.write(folder + "/trigger"_s, "none [heartbeat] pattern\n");
        unit.write(folder + "/pattern"_s, "");
        unit.write("/etc/vornaux/unit.json"_s, R"({"frontLed": {"green": "status"}})");
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{0, 15, 0}));
        QCOMPARE(unit.call("FrontLED_setOff").code, 0);
        QCOMPARE(unit.read(folder + "/brightness"_s), QByteArray("0"));
        QCOMPARE(unit.read(folder + "/trigger"_s), QByteArray("none"));
        unit.write(folder + "/trigger"_s, "[none] heartbeat pattern\n");
        QCOMPARE(unit.call("FrontLED_setSignal", {1.0, 50.0}).code, 0); // without a timer
        QCOMPARE(unit.read(folder + "/trigger"_s), QByteArray("pattern"));
        QCOMPARE(unit.read(folder + "/pattern"_s), QByteArray("255 500 255 0 0 500 0 0 "));
    }

    void ledTrains_data()
    {
        QTest::addColumn<double>("duty");
        QTest::addColumn<double>("pulses");
        QTest::addColumn<double>("idle");
        QTest::addColumn<QByteArray>("trigger");
        QTest::addColumn<QByteArray>("pattern");
        QTest::newRow("three") << 25.0 << 3.0 << 10.0 << QByteArray("pattern")
                               << QByteArray("255 125 255 0 0 375 0 0 255 125 255 0 0 375 0 0 "
                                             "255 125 255 0 0 1375 0 0 ");
        QTest::newRow("one") << 25.0 << 1.0 << 1.0 << QByteArray("pattern")
                             << QByteArray("255 125 255 0 0 475 0 0 ");
        QTest::newRow("in one") << 100.0 << 4.0 << 2.0 << QByteArray("pattern")
                                << QByteArray("255 2000 255 0 0 200 0 0 ");
        QTest::newRow("without pulses")
            << 25.0 << 0.0 << 10.0 << QByteArray("timer") << QByteArray();
        QTest::newRow("without idle time")
            << 25.0 << 3.0 << 0.0 << QByteArray("timer") << QByteArray();
        QTest::newRow("off") << 0.0 << 3.0 << 10.0 << QByteArray("none") << QByteArray();
    }

    void ledTrains()
    {
        QFETCH(double, duty);
        QFETCH(double, pulses);
        QFETCH(double, idle);
        LinuxUnit unit;
        const auto folder = "/sys/class/leds/rgb:status"_s;
        const auto addFiles = [&] {
            unit.write(folder + "/trigger"_s, "[none] timer pattern\n");
            for (const auto &name : {"/pattern"_s, "/delay_on"_s, "/delay_off"_s})
                unit.write(folder + name, "");
        };
        unit.write(folder + "/max_brightness"_s, "255\n");
        unit.write(folder + "/brightness"_s, "0\n");
        unit.write(folder + "/multi_index"_s, "red green blue\n");
        unit.write(folder + "/multi_intensity"_s, "0 0 0\n");
        addFiles();
        unit.write("/etc/vornaux/unit.json"_s, R"({"frontLed": {"multicolor": "rgb:status"}})");
        QCOMPARE(unit.call("FrontLED_getNrOfPulses").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("FrontLED_getIdleTime").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("FrontLED_setColor", {15.0, 7.0, 0.0}).code, 0);
        addFiles();
        QCOMPARE(unit.call("FrontLED_setIdleTime", {idle}).code, 0);
        addFiles();
        QCOMPARE(unit.call("FrontLED_setNrOfPulses", {pulses}).code, 0);
        addFiles();
        QCOMPARE(unit.call("FrontLED_setSignal", {2.0, duty}).code, 0);
        QTEST(unit.read(folder + "/trigger"_s), "trigger");
        QTEST(unit.read(folder + "/pattern"_s), "pattern");
        QCOMPARE(
            unit.read(folder + "/multi_intensity"_s), QByteArray(duty > 0 ? "255 119 0" : "0 0 0"));
        addFiles();
        QCOMPARE(unit.call("FrontLED_getNrOfPulses").numbers, std::vector<double>{pulses});
        QCOMPARE(unit.call("FrontLED_getIdleTime").numbers, std::vector<double>{idle});
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{15, 7, 0}));
    }

    void ledTrainsAreRefused()
    {
        LinuxUnit unit;
        const auto folder = "/sys/class/leds/status"_s;
        unit.write(folder + "/max_brightness"_s, "65535\n");
        unit.write(folder + "/brightness"_s, "0\n");
        unit.write(folder + "/trigger"_s, "[none] pattern\n");
        unit.write(folder + "/pattern"_s, "");
        unit.write("/etc/vornaux/unit.json"_s, R"({"frontLed": {"green": "status"}})");
        QCOMPARE(unit.call("FrontLED_setSignal", {2.0, 25.0}).code, 0);
        unit.write(folder + "/trigger"_s, "[none] pattern\n");
        QCOMPARE(unit.call("FrontLED_setColor", {0.0, 15.0, 0.0}).code, 0);
        unit.write(folder + "/trigger"_s, "[none] pattern\n");
        QCOMPARE(unit.call("FrontLED_setIdleTime", {1.0}).code, 0);
        unit.write(folder + "/trigger"_s, "[none] pattern\n");
        // A page of the kernel's is full before.
        QCOMPARE(unit.call("FrontLED_setNrOfPulses", {255.0}).code, 5);
        QCOMPARE(unit.call("FrontLED_getNrOfPulses").numbers, std::vector<double>{0});
        QCOMPARE(unit.call("FrontLED_setNrOfPulses", {99.0}).code, 0);
        unit.write(folder + "/trigger"_s, "none [pattern]\n");
        unit.remove(folder + "/pattern"_s); // the driver has gone
        QCOMPARE(unit.call("FrontLED_setNrOfPulses", {2.0}).code, 18);
        QCOMPARE(unit.call("FrontLED_getNrOfPulses").numbers, std::vector<double>{99});
        unit.link(folder + "/pattern"_s, "/proc/self/mem");
        QCOMPARE(unit.call("FrontLED_setNrOfPulses", {2.0}).kind(), 103);
    }

    void multicolorLedKeepsItsOrder()
    {
        LinuxUnit unit;
        const auto folder = "/sys/class/leds/rgb:status"_s;
        unit.write(folder + "/max_brightness"_s, "255\n");
        unit.write(folder + "/brightness"_s, "0\n");
        unit.write(folder + "/multi_index"_s, "green blue red\n");
        unit.write(folder + "/multi_intensity"_s, "0 0 0\n");
        unit.write("/etc/vornaux/unit.json"_s, R"({"frontLed": {"multicolor": "rgb:status"}})");
        QCOMPARE(unit.call("FrontLED_setColor", {15.0, 1.0, 0.0}).code, 0);
        QCOMPARE(unit.read(folder + "/multi_intensity"_s), QByteArray("17 0 255"));
        QCOMPARE(unit.read(folder + "/brightness"_s), QByteArray("255"));
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{15, 1, 0}));
        QCOMPARE(unit.call("FrontLED_setSignal", {1.0, 100.0}).code, 0);
    }

    /** Somebody else's light: the driver shows of each intensity what the brightness leaves. */
    void multicolorLedOfOthers()
    {
        LinuxUnit unit;
        const auto folder = "/sys/class/leds/rgb:status"_s;
        unit.write(folder + "/max_brightness"_s, "255\n");
        unit.write(folder + "/brightness"_s, "128\n");
        unit.write(folder + "/multi_index"_s, "red green blue\n");
        unit.write(folder + "/multi_intensity"_s, "255 128 0\n");
        unit.write("/etc/vornaux/unit.json"_s, R"({"frontLed": {"multicolor": "rgb:status"}})");
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{8, 4, 0}));
        unit.write(folder + "/brightness"_s, "9223372036854775807\n");
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{15, 8, 0}));
        // With one colour, which has an intensity all the same, and isn't one of the contract's.
        unit.write(folder + "/multi_index"_s, "white\n");
        unit.write(folder + "/multi_intensity"_s, "255\n");
        QCOMPARE(unit.call("FrontLED_getColor").numbers, (std::vector<double>{0, 0, 0}));
        unit.write(folder + "/multi_index"_s, "green\n");
        QCOMPARE(unit.call("FrontLED_setColor", {3.0, 5.0, 0.0}).code, 0);
        QCOMPARE(unit.read(folder + "/multi_intensity"_s), QByteArray("85"));
        QCOMPARE(unit.read(folder + "/brightness"_s), QByteArray("255"));
    }

    void settingsAreMapped()
    {
        LinuxUnit unit;
        const auto folder = "/sys/bus/i2c/devices/1-0048/"_s;
        unit.write(folder + "hwmon/hwmon7/temp1_min"_s, "-12400\n");
        unit.write(folder + "wake_voltage"_s, "9500\n");
        unit.write(folder + "press_time"_s, "4\n");
        unit.write(folder + "video"_s, "5\n");
        QCOMPARE(unit.call("Config_getHeatingTempLimit").code, 2);
        unit.write("/etc/vornaux/unit.json"_s, R"({"config": {
        "heatingTempLimit": {"file": "/sys/bus/i2c/devices/1-0048/hwmon/hwmon*/temp1_min", "factor": 0.001},
        "startupVoltage": {"file": "/sys/bus/i2c/devices/1-0048/wake_voltage", "factor": 0.001},
        "frontButtonTime": {"file": "/sys/bus/i2c/devices/1-0048/press_time", "factor": 1000},
        "videoStartupPower": {"file": "/sys/bus/i2c/devices/1-0048/video"},
        "suspendMaxTime": {"file": "/sys/bus/i2c/devices/1-0048/suspend"}}})");
        QCOMPARE(unit.call("Config_getHeatingTempLimit").numbers, std::vector<double>{-12});
        QCOMPARE(unit.call("Config_setHeatingTempLimit", {-25.0}).code, 0);
        QCOMPARE(unit.read(folder + "hwmon/hwmon7/temp1_min"_s), QByteArray("-25000"));
        QCOMPARE(unit.call("Config_setHeatingTempLimit", {6.0}).code, 5);
        QCOMPARE(unit.call("Config_setHeatingTempLimit", {-26.0}).code, 5);
        QCOMPARE(unit.call("Config_getStartupVoltageConfig").numbers, std::vector<double>{9.5});
        QCOMPARE(unit.call("Config_setStartupVoltageConfig", {11.2}).code, 0);
        QCOMPARE(unit.read(folder + "wake_voltage"_s), QByteArray("11200"));
        QCOMPARE(unit.call("Config_setStartupVoltageConfig", {-1.0}).code, 5);
        QCOMPARE(unit.call("Config_getFrontBtnTrigTime").numbers, std::vector<double>{4000});
        QCOMPARE(unit.call("Config_setFrontBtnTrigTime", {6000.0}).code, 0);
        QCOMPARE(unit.read(folder + "press_time"_s), QByteArray("6"));
        QCOMPARE(unit.call("Config_getVideoStartupPowerConfig").numbers, std::vector<double>{5});
        QCOMPARE(unit.call("Config_setVideoStartupPowerConfig", {16.0}).code, 5);
        QCOMPARE(unit.call("Config_getSuspendMaxTime").code, 18);
        unit.write(folder + "suspend"_s, "60\n");
        QCOMPARE(unit.call("Config_getSuspendMaxTime").numbers, std::vector<double>{60});
        QCOMPARE(unit.call("Config_setSuspendMaxTime", {90.0}).code, 0);
        QCOMPARE(unit.read(folder + "suspend"_s), QByteArray("90"));
        QCOMPARE(unit.call("Config_getExtOnOffSigTrigTime").code, 2);
        unit.remove(folder + "hwmon/hwmon7"_s);
        QCOMPARE(unit.call("Config_getHeatingTempLimit").code, 18);
        unit.write("/etc/vornaux/unit.json"_s, R"({"config": false})");
        QCOMPARE(unit.call("Config_getStartupVoltageConfig").code, 2);
        QCOMPARE(unit.call("Config_getSuspendMaxTime").code, 2);
    }

    void settingsOfWords()
    {
        LinuxUnit unit;
        const auto folder = "/sys/devices/platform/supervisor/"_s;
        unit.write(folder + "wake"_s, "button [signal] any\n");
        unit.write(folder + "short_press"_s, "poweroff\n");
        unit.write(folder + "power_on"_s, "1\n");
        unit.write("/etc/vornaux/unit.json"_s, R"({"config": {
        "startupTrigger": {"file": "/sys/devices/platform/supervisor/wake", "values": ["button", "signal", "any"]},
        "shortButtonPress": {"file": "/sys/devices/platform/supervisor/short_press", "values": ["ignore", "suspend", "poweroff"]},
        "longButtonPress": {"file": "/sys/devices/platform/supervisor/short_press", "values": ["ignore", "suspend"]},
        "powerOnStartup": {"file": "/sys/devices/platform/supervisor/power_on"}}})");
        QCOMPARE(unit.call("Config_getStartupTriggerConfig").numbers, std::vector<double>{2});
        QCOMPARE(unit.call("Config_setStartupTriggerConfig", {3.0}).code, 0);
        QCOMPARE(unit.read(folder + "wake"_s), QByteArray("any"));
        QCOMPARE(unit.call("Config_getStartupTriggerConfig").numbers, std::vector<double>{3});
        QCOMPARE(unit.call("Config_setStartupTriggerConfig", {0.0}).code, 5);
        QCOMPARE(unit.call("Config_setStartupTriggerConfig", {4.0}).code, 5);
        QCOMPARE(unit.call("Config_getShortButtonPressAction").numbers, std::vector<double>{2});
        QCOMPARE(unit.call("Config_setLongButtonPressAction", {2.0}).code, 5); // no word for it
        QCOMPARE(unit.call("Config_getLongButtonPressAction").kind(), 104);
        QCOMPARE(unit.call("Config_getPowerOnStartup").numbers, std::vector<double>{1});
        QCOMPARE(unit.call("Config_setPowerOnStartup", {0.0}).code, 0);
        QCOMPARE(unit.read(folder + "power_on"_s), QByteArray("0"));
        QCOMPARE(unit.call("Config_getOnOffSigAction").code, 2);
    }

    void spoiltSettings_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("ofNumber");
        QTest::addColumn<int>("ofWords");
        QTest::newRow("of no bytes") << QByteArray() << 18 << 18;
        QTest::newRow("nonsense") << QByteArray("soup\n") << 104 << 104;
        QTest::newRow("too warm") << QByteArray("6\n") << 104 << 104;
        QTest::newRow("beyond all") << QByteArray("1e300\n") << 104 << 104;
        QTest::newRow("a bracket") << QByteArray("]on[\n") << 104 << 104;
    }

    void spoiltSettings()
    {
        QFETCH(QByteArray, content);
        LinuxUnit unit;
        const auto file = "/sys/devices/platform/supervisor/value"_s;
        unit.write("/etc/vornaux/unit.json"_s, R"({"config": {
        "heatingTempLimit": {"file": "/sys/devices/platform/supervisor/value"},
        "canStartupPower": {"file": "/sys/devices/platform/supervisor/value", "values": ["off", "on"]}}})");
        unit.write(file, content);
        QTEST(unit.call("Config_getHeatingTempLimit").kind(), "ofNumber");
        QTEST(unit.call("Config_getCanStartupPowerConfig").kind(), "ofWords");
        unit.remove(file);
        unit.link(file, "/proc/self/mem"); // EIO
        QCOMPARE(unit.call("Config_getHeatingTempLimit").kind(), 102);
        QCOMPARE(unit.call("Config_setHeatingTempLimit", {0.0}).kind(), 103);
        unit.remove(file);
        unit.link(file, "/proc/self/oom_score_adj"); // EINVAL for what is no number
        QCOMPARE(unit.call("Config_setCanStartupPowerConfig", {0.0}).kind(), 103);
        unit.remove(file);
        unit.write(file, "on\n");
        QVERIFY(QFile::setPermissions(unit.path(file), QFile::ReadOwner));
        const auto answer = unit.call("Config_setCanStartupPowerConfig", {0.0});
        if (::geteuid() != 0)
            QCOMPARE(unit.textOf(answer),
                QByteArray(
                    "No permission to write /sys/devices/platform/supervisor/value; give group "
                    "vornaux the right to it by a rule of your own"));
    }
};

QTEST_GUILESS_MAIN(LinuxUnitTest)
#include "tst_linuxunit_posix.moc"
