#include "tests/support/unit.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace support;

/** Profiles, values by name, and the file in which the unit lies. */
class UnitStateTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { freshUnit(); }

    void profileFeatures_data();
    void profileFeatures();
    void profilesRoundTrip_data();
    void profilesRoundTrip();
    void refusesBadProfiles_data();
    void refusesBadProfiles();
    void featuresTakeTheirOperations_data();
    void featuresTakeTheirOperations();
    void countOfZeroMeansNoFeature();
    void batteryGone();
    void antennaWithoutPower();
    void propertiesRoundTrip();
    void refusesBadValues_data();
    void refusesBadValues();
    void persists();
    void sharesChangesBetweenConnections();
    void leavesAlone_data();
    void leavesAlone();
};

void UnitStateTest::profileFeatures_data()
{
    QTest::addColumn<QString>("profile");
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<QStringList>("lacking");
    const QStringList telematics{QStringLiteral("Telematics_getGPRSPowerStatus"),
        QStringLiteral("Telematics_setGPRSStartUpPowerStatus"),
        QStringLiteral("Telematics_getWLANPowerStatus"),
        QStringLiteral("Telematics_getBTPowerStatus"),
        QStringLiteral("Telematics_getGPSPowerStatus"),
        QStringLiteral("Telematics_getGPSAntennaStatus")};
    const QStringList gsm = telematics.mid(0, 2);
    const QStringList gps = telematics.mid(4);
    const QStringList touch{QStringLiteral("Touch_getMode"), QStringLiteral("Touch_setMode"),
        QStringLiteral("Touch_getMouseRightClickTime"), QStringLiteral("Touch_getAdvancedSetting")};
    const QStringList display{QStringLiteral("Backlight_getIntensity"),
        QStringLiteral("Backlight_setIntensity"), QStringLiteral("Power_getBLPowerStatus")};
    const QStringList newer{QStringLiteral("Backlight_getHealthStatus"),
        QStringLiteral("Backlight_startAutomaticBL"), QStringLiteral("Backlight_setLedDimming"),
        QStringLiteral("Config_getHeatingTempLimit"), QStringLiteral("Config_setPowerOnStartup"),
        QStringLiteral("Diagnostics_getMinMaxTemp"), QStringLiteral("Smart_getDeviceSerial2"),
        QStringLiteral("FrontLED_getEnabledDuringStartup")};
    const QStringList box{QStringLiteral("Config_getSuspendMaxTime"),
        QStringLiteral("Battery_isAvailable"), QStringLiteral("Battery_getTimes"),
        QStringLiteral("Smart_getRemainingLifetime2"), QStringLiteral("Power_setVideoPowerStatus"),
        QStringLiteral("DigIO_setDigIO"), QStringLiteral("Hardware_getAddonPcbSerial"),
        QStringLiteral("LightSensor_getIlluminance")};
    const QStringList always{QStringLiteral("Hardware_getMainPcbSerial"),
        QStringLiteral("Hardware_hasDisplay"), QStringLiteral("Can_getBaudrate"),
        QStringLiteral("Telematics_getAvailable"), QStringLiteral("Smart_getDeviceSerial"),
        QStringLiteral("Versions_getFPGAVersion")};

    QTest::newRow("full") << "full" << always + telematics + touch + display + newer + box
                          << QStringList();
    QTest::newRow("basic") << "basic" << always << telematics + touch + display + box;
    QTest::newRow("no-touch") << "no-touch" << always + telematics + display + newer + box << touch;
    QTest::newRow("gps-only") << "gps-only" << always + gps << gsm + telematics.mid(2, 2);
    QTest::newRow("gsm-only") << "gsm-only" << always + gsm << gps + telematics.mid(2, 2);
    QTest::newRow("old-firmware") << "old-firmware" << always + telematics + display
                                  << newer + touch;
}

void UnitStateTest::profileFeatures()
{
    QFETCH(QString, profile);
    QFETCH(QStringList, present);
    QFETCH(QStringList, lacking);
    require(virtualunit::loadProfile(profile.toStdString()));
    QStringList wrong;
    for (const auto &name : qAsConst(present)) {
        if (codeOf(name) != DEVICE_OK)
            wrong << name;
    }
    for (const auto &name : qAsConst(lacking)) {
        if (codeOf(name) != DEVICE_NOT_SUPPORTED)
            wrong << name;
    }
    QCOMPARE(wrong, QStringList());
}

void UnitStateTest::profilesRoundTrip_data()
{
    QTest::addColumn<QString>("profile");
    const auto names = virtualunit::profiles();
    QVERIFY(names.size() >= 7);
    for (const auto &name : names)
        QTest::newRow(name.c_str()) << text(name);
}

void UnitStateTest::profilesRoundTrip()
{
    QFETCH(QString, profile);
    require(virtualunit::loadProfile(profile.toStdString()));
    put("Buzzer.volume", "33");
    put("Adc.voltage4", "4.75");
    put("Backlight.intensity", "12");
    put("Battery.voltageLevel", "live 40");
    put("Settings.another", "\"\u00fc\"");
    require(virtualunit::setFault("Buzzer_getTrigger", -5, 3, 2));
    require(virtualunit::setDelay("Buzzer_setTrigger", 1));
    std::vector<virtualunit::Value> before;
    require(virtualunit::list(before));
    std::string written;
    require(virtualunit::profileText(written));

    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("unit.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(written.c_str());
    file.close();
    require(virtualunit::loadProfile("basic"));
    require(virtualunit::loadProfile(file.fileName().toStdString()));

    std::vector<virtualunit::Value> after;
    require(virtualunit::list(after));
    QCOMPARE(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        QCOMPARE(text(after[i].name), text(before[i].name));
        QCOMPARE(text(after[i].name + "=" + after[i].value),
            text(before[i].name + "=" + before[i].value));
    }
    std::string again;
    require(virtualunit::profileText(again));
    QCOMPARE(text(again), text(written));
}

void UnitStateTest::refusesBadProfiles_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("hello");
    QTest::newRow("cut") << QByteArray(R"({"values": {"Buzzer.volume": 3)");
    QTest::newRow("list") << QByteArray("[]");
    QTest::newRow("unknown section") << QByteArray(R"({"colour": "red"})");
    QTest::newRow("unknown value") << QByteArray(R"({"values": {"Buzzer.colour": 3}})");
    QTest::newRow("wrong value") << QByteArray(R"({"values": {"Buzzer.volume": "loud"}})");
    QTest::newRow("out of range") << QByteArray(R"({"values": {"Unit.ambientTemp": 1000}})");
    QTest::newRow("values no object") << QByteArray(R"({"values": 3})");
    QTest::newRow("unknown operation") << QByteArray(R"({"faults": {"Buzzer_get": 3}})");
    QTest::newRow("fault without code") << QByteArray(R"({"faults": {"Buzzer_getVolume": {}}})");
    QTest::newRow("fault of text") << QByteArray(R"({"faults": {"Buzzer_getVolume": "5"}})");
    QTest::newRow("negative delay") << QByteArray(R"({"delays": {"Buzzer_getVolume": -1}})");
}

void UnitStateTest::refusesBadProfiles()
{
    QFETCH(QByteArray, json);
    put("Buzzer.volume", "44");
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("unit.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(json);
    file.close();
    QVERIFY(!virtualunit::loadProfile(file.fileName().toStdString()).empty());
    QVERIFY(!virtualunit::loadProfile("no such profile").empty());
    QCOMPARE(value("Buzzer.volume"), QStringLiteral("44"));
}

void UnitStateTest::featuresTakeTheirOperations_data()
{
    QTest::addColumn<QString>("operations"); // as a pattern
    const auto row = [](const char *property, const char *operations) {
        QTest::newRow(property) << QString::fromLatin1(operations);
    };
    row("Feature.lightSensor", "LightSensor_.*|Backlight_startAutomaticBL");
    row("Feature.frontLed", "FrontLED_.*");
    row("Feature.buzzer", "Buzzer_.*");
    row("Feature.digitalIo", "DigIO_.*");
    row("Feature.digitalOutputs", "DigIO_setDigIO");
    row("Feature.externalFan", "(Config|Power)_.etExtFan.*");
    row("Feature.heater", "Config_.etHeatingTempLimit");
    row("Feature.suspend", "Config_.etSuspendMaxTime");
    row("Feature.battery", "Battery_.*");
    row("Feature.storage", "Smart_.*[^2]");
    row("Feature.secondStorage", "Smart_.*2");
    row("Feature.ledDimming", "Backlight_.etLedDimming");
    row("Feature.backlightHealth", "Backlight_getHealthStatus");
    row("Feature.automaticBacklight", "Backlight_.*AutomaticBL.*");
    row("Feature.ledStartup", "FrontLED_.etEnabledDuringStartup");
    row("Feature.powerOnStartup", "Config_.etPowerOnStartup");
    row("Feature.buttonActions", "Config_.et(Long|Short)ButtonPressAction");
    row("Feature.touchProfiles", "Touch_.et(Mode|MouseRightClickTime)");
    row("Feature.touchSettings", "Touch_.etAdvancedSetting");
    row("Feature.minMaxTemp", "Diagnostics_getMinMaxTemp");
    row("Hardware.canCount", "Can_.*|(Config|Power)_.etCan.*");
    row("Hardware.videoCount", "(Config|Power)_.etVideo.*");
    row("Hardware.hasDisplay", "Backlight_.*|Power_.etBLPowerStatus");
    row("Hardware.hasTouchscreen", "Touch_.*");
    row("Hardware.hasWlan", "Telematics_.etWLAN.*");
    row("Hardware.hasGps", "Telematics_.etGPS.*");
    row("Hardware.hasGsm", "Telematics_.etGPRS.*");
    row("Hardware.hasBluetooth", "Telematics_.etBT.*");
    row("Telematics.available",
        "Telematics_.*PowerStatus|Telematics_getGPSAntennaStatus|Hardware_getAddon.*");
}

void UnitStateTest::featuresTakeTheirOperations()
{
    QFETCH(QString, operations);
    const QRegularExpression pattern(QRegularExpression::anchoredPattern(operations));
    put(QTest::currentDataTag(), "0");
    QStringList wrong;
    for (const auto &operation : support::allOperations) {
        const auto name = QString::fromLatin1(operation.name);
        const bool lacking = codeOf(name) == DEVICE_NOT_SUPPORTED;
        if (lacking != pattern.match(name).hasMatch())
            wrong << name;
    }
    QCOMPARE(wrong, QStringList());
}

void UnitStateTest::countOfZeroMeansNoFeature()
{
    put("Hardware.canCount", "0");
    put("Hardware.videoCount", "0");
    for (const char *name : {"Can_getBaudrate", "Can_setFrameType", "Power_getCanPowerStatus",
             "Config_setCanStartupPowerConfig", "Power_getVideoPowerStatus",
             "Config_getVideoStartupPowerConfig"})
        QCOMPARE(codeOf(QString::fromLatin1(name)), DeviceCode(DEVICE_NOT_SUPPORTED));
}

void UnitStateTest::batteryGone()
{
    put("Battery.available", "false");
    const Battery battery;
    QCOMPARE(read(Battery_isAvailable, BatteryHandle(battery)), DeviceBool(0));
    for (const auto &operation : support::allOperations) {
        const auto name = QString::fromLatin1(operation.name);
        if (name.startsWith(QLatin1String("Battery_get")))
            QCOMPARE(codeOf(name), DeviceCode(DEVICE_DATA_NOT_AVAILABLE));
    }
    double volts = 0;
    QCOMPARE(Adc_getVoltage(Adc(), 16, &volts), DeviceCode(DEVICE_DATA_NOT_AVAILABLE));
}

void UnitStateTest::antennaWithoutPower()
{
    const Telematics telematics;
    int32_t status = 0;
    QCOMPARE(Telematics_getGPSAntennaStatus(telematics, &status), DEVICE_OK);
    QCOMPARE(status, 1);
    QCOMPARE(Telematics_setGPSPowerStatus(telematics, 0), DEVICE_OK);
    QCOMPARE(
        Telematics_getGPSAntennaStatus(telematics, &status), DeviceCode(DEVICE_DATA_NOT_AVAILABLE));
}

void UnitStateTest::propertiesRoundTrip()
{
    std::vector<virtualunit::Value> properties;
    require(virtualunit::list(properties));
    QVERIFY(properties.size() > 150);
    for (const auto &property : properties) {
        QVERIFY2(!property.description.empty(), property.name.c_str());
        QVERIFY2(!property.range.empty(), property.name.c_str());
        // A listed value is one that set() takes, and a set value is read exactly.
        require(virtualunit::set(property.name, property.value));
        QCOMPARE(value(property.name.c_str()), text(property.value));
        require(virtualunit::advanceClock(hour));
        if (property.name != "Backlight.intensity")
            QCOMPARE(value(property.name.c_str()), text(property.value));
    }
}

void UnitStateTest::refusesBadValues_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("unknown name") << "Buzzer.loudness"
                                  << "1";
    QTest::newRow("no name") << ""
                             << "1";
    QTest::newRow("no key") << "Settings."
                            << "1";
    QTest::newRow("above") << "Diagnostics.ssTemp"
                           << "32768";
    QTest::newRow("below") << "Diagnostics.ssTemp"
                           << "-32769";
    QTest::newRow("fraction") << "Diagnostics.ssTemp"
                              << "20.5";
    QTest::newRow("word") << "Diagnostics.ssTemp"
                          << "warm";
    QTest::newRow("empty") << "Diagnostics.ssTemp"
                           << "";
    QTest::newRow("rest") << "Diagnostics.ssTemp"
                          << "20 C";
    QTest::newRow("not a number") << "Adc.voltage4"
                                  << "nan";
    QTest::newRow("infinite") << "Adc.voltage4"
                              << "inf";
    QTest::newRow("hex") << "Adc.voltage4"
                         << "0x5";
    QTest::newRow("flag") << "Battery.available"
                          << "2";
    QTest::newRow("version of three") << "Versions.fpga"
                                      << "1.2.3";
    QTest::newRow("version of five") << "Versions.fpga"
                                     << "1.2.3.4.5";
    QTest::newRow("version above") << "Versions.fpga"
                                   << "1.2.3.256";
    QTest::newRow("version signed") << "Versions.fpga"
                                    << "1.2.3.-4";
    QTest::newRow("long text") << "Hardware.mainPcbSerial" << QString(200, QLatin1Char('x'));
    QTest::newRow("beyond Latin-1") << "Hardware.mainPcbSerial" << QString(QChar(0x20AC));
    QTest::newRow("lifeless") << "Buzzer.volume"
                              << "live";
    QTest::newRow("live word") << "Diagnostics.ssTemp"
                               << "live warm";
}

void UnitStateTest::refusesBadValues()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    std::string before;
    require(virtualunit::profileText(before));
    const auto error = virtualunit::set(name.toStdString(), value.toStdString());
    QVERIFY(!error.empty());
    QVERIFY(error.back() == '.');
    std::string after;
    require(virtualunit::profileText(after));
    QCOMPARE(text(after), text(before));
}

void UnitStateTest::persists()
{
    const QTemporaryDir folder;
    const auto file = folder.filePath(QStringLiteral("unit.sqlite")).toStdString();
    require(virtualunit::open(file));
    QCOMPARE(value("Buzzer.volume"), QStringLiteral("20")); // a unit of the profile full
    require(virtualunit::setClock(midnight));
    QCOMPARE(Buzzer_setVolume(Buzzer(), 47), DEVICE_OK);
    QCOMPARE(Settings_setString(Settings(), "key", "text"), DEVICE_OK);
    put("Versions.fpga", "9.8.7.6");
    require(virtualunit::setFault("Buzzer_getFrequency", 27, 3, 1));
    uint16_t hertz = 0;
    QCOMPARE(Buzzer_getFrequency(Buzzer(), &hertz), DEVICE_OK);
    const auto minutes = value("Diagnostics.totalRunTime").toLongLong();

    const Buzzer open;
    require(virtualunit::open(":memory:"));
    QCOMPARE(read(Buzzer_getVolume, BuzzerHandle(open)), uint16_t(20));
    require(virtualunit::open(file));
    QCOMPARE(read(Buzzer_getVolume, BuzzerHandle(open)), uint16_t(47));
    QCOMPARE(value("Settings.key"), QStringLiteral("text"));
    QCOMPARE(value("Versions.fpga"), QStringLiteral("9.8.7.6"));
    QCOMPARE(Buzzer_getFrequency(open, &hertz), 27);
    require(virtualunit::advanceClock(hour));
    QCOMPARE(value("Diagnostics.totalRunTime").toLongLong(), minutes + 60);
    // All of it lies in the one file once nobody has it open.
    require(virtualunit::open(":memory:"));
    QCOMPARE(
        QDir(folder.path()).entryList(QDir::Files), QStringList(QStringLiteral("unit.sqlite")));
}

void UnitStateTest::sharesChangesBetweenConnections()
{
    const QTemporaryDir folder;
    require(virtualunit::open(folder.filePath(QStringLiteral("unit.sqlite")).toStdString()));
    // Another process, which counts a fault and changes a value between two reads of ours.
    const auto vornunit = QStringLiteral(VORN_BIN_DIR "/vornunit");
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VORN_UNIT"), folder.filePath(QStringLiteral("unit.sqlite")));
    process.setProcessEnvironment(environment);
    const Buzzer buzzer;
    for (int volume = 1; volume < 4; ++volume) {
        QVERIFY(read(Buzzer_getVolume, BuzzerHandle(buzzer)) != volume);
        process.start(vornunit,
            {QStringLiteral("set"), QStringLiteral("Buzzer.volume"), QString::number(volume)});
        QVERIFY(process.waitForFinished(60'000));
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(read(Buzzer_getVolume, BuzzerHandle(buzzer)), uint16_t(volume));
    }
}

void UnitStateTest::leavesAlone_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("code");
    QTest::newRow("text file") << "text" << stateDamaged;
    QTest::newRow("other database") << "database" << stateForeign;
    QTest::newRow("damaged in the middle") << "middle" << stateDamaged;
    QTest::newRow("cut") << "cut" << stateDamaged;
    QTest::newRow("folder") << "folder" << stateUnavailable;
    QTest::newRow("missing folder") << "missing" << stateUnavailable;
}

void UnitStateTest::leavesAlone()
{
    QFETCH(QString, kind);
    QFETCH(int, code);
    const QTemporaryDir folder;
    const auto path = folder.filePath(
        kind == QLatin1String("missing") ? QStringLiteral("no/unit") : QStringLiteral("unit"));
    QFile file(path);
    if (kind == QLatin1String("folder")) {
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("unit")));
    } else if (kind == QLatin1String("text")) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(5000, 'x'));
        file.close();
    } else if (kind != QLatin1String("missing")) {
        require(virtualunit::open(path.toStdString()));
        put("Buzzer.volume", "3");
        require(virtualunit::open(":memory:"));
        QVERIFY(file.open(QIODevice::ReadWrite));
        if (kind == QLatin1String("database")) {
            file.seek(68); // whose file it is
            file.write("Else");
        } else if (kind == QLatin1String("cut")) {
            file.resize(file.size() / 2);
        } else {
            file.seek(4096);
            file.write(QByteArray(int(file.size()) - 4096, '\xEE'));
        }
        file.close();
    }
    const auto content = [&file] {
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const auto before = content();
    file.close();

    QVERIFY(!virtualunit::open(path.toStdString()).empty());
    for (const auto &operation : support::allOperations)
        QCOMPARE(codeOf(QString::fromLatin1(operation.name)), code);
    QVERIFY(qstrlen(deviceErrorText(code)) > 10);
    std::string ignored;
    QVERIFY(!virtualunit::get("Buzzer.volume", ignored).empty());
    QVERIFY(!virtualunit::set("Buzzer.volume", "1").empty());
    QVERIFY(!virtualunit::loadProfile("full").empty());
    QCOMPARE(content(), before);
}

QTEST_GUILESS_MAIN(UnitStateTest)
#include "tst_unitstate.moc"
