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

    void profileFeatures_data()
    {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QStringList>("present");
        QTest::addColumn<QStringList>("lacking");
        const QStringList telematics{"Telematics_getGPRSPowerStatus"_s,
            "Telematics_setGPRSStartUpPowerStatus"_s, "Telematics_getWLANPowerStatus"_s,
            "Telematics_getBTPowerStatus"_s, "Telematics_getGPSPowerStatus"_s,
            "Telematics_getGPSAntennaStatus"_s};
        const QStringList gsm = telematics.mid(0, 2);
        const QStringList gps = telematics.mid(4);
        const QStringList touch{"Touch_getMode"_s, "Touch_setMode"_s,
            "Touch_getMouseRightClickTime"_s, "Touch_getAdvancedSetting"_s};
        const QStringList display{
            "Backlight_getIntensity"_s, "Backlight_setIntensity"_s, "Power_getBLPowerStatus"_s};
        const QStringList newer{"Backlight_getHealthStatus"_s, "Backlight_startAutomaticBL"_s,
            "Backlight_setLedDimming"_s, "Config_getHeatingTempLimit"_s,
            "Config_setPowerOnStartup"_s, "Diagnostics_getMinMaxTemp"_s, "Smart_getDeviceSerial2"_s,
            "FrontLED_getEnabledDuringStartup"_s};
        const QStringList box{"Config_getSuspendMaxTime"_s, "Battery_isAvailable"_s,
            "Battery_getTimes"_s, "Smart_getRemainingLifetime2"_s, "Power_setVideoPowerStatus"_s,
            "DigIO_setDigIO"_s, "Hardware_getAddonPcbSerial"_s, "LightSensor_getIlluminance"_s};
        const QStringList always{"Hardware_getMainPcbSerial"_s, "Hardware_hasDisplay"_s,
            "Can_getBaudrate"_s, "Telematics_getAvailable"_s, "Smart_getDeviceSerial"_s,
            "Versions_getFPGAVersion"_s};

        QTest::newRow("full") << "full" << always + telematics + touch + display + newer + box
                              << QStringList();
        QTest::newRow("basic") << "basic" << always << telematics + touch + display + box;
        QTest::newRow("no-touch") << "no-touch" << always + telematics + display + newer + box
                                  << touch;
        QTest::newRow("gps-only") << "gps-only" << always + gps << gsm + telematics.mid(2, 2);
        QTest::newRow("gsm-only") << "gsm-only" << always + gsm << gps + telematics.mid(2, 2);
        QTest::newRow("old-firmware")
            << "old-firmware" << always + telematics + display << newer + touch;
    }

    void profileFeatures()
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

    void profilesRoundTrip_data()
    {
        QTest::addColumn<QString>("profile");
        const auto names = virtualunit::profiles();
        QVERIFY(names.size() >= 7);
        for (const auto &name : names)
            QTest::newRow(name.c_str()) << text(name);
    }

    void profilesRoundTrip()
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
        QFile file(folder.filePath("unit.json"_s));
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

    void refusesBadProfiles_data()
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
        QTest::newRow("fault without code")
            << QByteArray(R"({"faults": {"Buzzer_getVolume": {}}})");
        QTest::newRow("fault of text") << QByteArray(R"({"faults": {"Buzzer_getVolume": "5"}})");
        QTest::newRow("negative delay") << QByteArray(R"({"delays": {"Buzzer_getVolume": -1}})");
    }

    void refusesBadProfiles()
    {
        QFETCH(QByteArray, json);
        put("Buzzer.volume", "44");
        const QTemporaryDir folder;
        QFile file(folder.filePath("unit.json"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(json);
        file.close();
        QVERIFY(!virtualunit::loadProfile(file.fileName().toStdString()).empty());
        QVERIFY(!virtualunit::loadProfile("no such profile").empty());
        QCOMPARE(value("Buzzer.volume"), "44"_s);
    }

    void featuresTakeTheirOperations_data()
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

    void featuresTakeTheirOperations()
    {
        QFETCH(QString, operations);
        const QRegularExpression pattern(QRegularExpression::anchoredPattern(operations));
        put(QTest::currentDataTag(), "0");
        QStringList wrong;
        for (const auto &operation : allOperations) {
            const auto name = QString::fromLatin1(operation.name);
            const bool lacking = codeOf(name) == DEVICE_NOT_SUPPORTED;
            if (lacking != pattern.match(name).hasMatch())
                wrong << name;
        }
        QCOMPARE(wrong, QStringList());
    }

    void countOfZeroMeansNoFeature()
    {
        put("Hardware.canCount", "0");
        put("Hardware.videoCount", "0");
        for (const char *name : {"Can_getBaudrate", "Can_setFrameType", "Power_getCanPowerStatus",
                 "Config_setCanStartupPowerConfig", "Power_getVideoPowerStatus",
                 "Config_getVideoStartupPowerConfig"})
            QCOMPARE(codeOf(QString::fromLatin1(name)), DeviceCode(DEVICE_NOT_SUPPORTED));
    }

    void batteryGone()
    {
        put("Battery.available", "false");
        const Battery battery;
        QCOMPARE(read(Battery_isAvailable, BatteryHandle(battery)), DeviceBool(0));
        for (const auto &operation : allOperations) {
            const auto name = QString::fromLatin1(operation.name);
            if (name.startsWith("Battery_get"_s))
                QCOMPARE(codeOf(name), DeviceCode(DEVICE_DATA_NOT_AVAILABLE));
        }
        double volts = 0;
        QCOMPARE(Adc_getVoltage(Adc(), 16, &volts), DeviceCode(DEVICE_DATA_NOT_AVAILABLE));
    }

    void antennaWithoutPower()
    {
        const Telematics telematics;
        int32_t status = 0;
        QCOMPARE(Telematics_getGPSAntennaStatus(telematics, &status), DEVICE_OK);
        QCOMPARE(status, 1);
        QCOMPARE(Telematics_setGPSPowerStatus(telematics, 0), DEVICE_OK);
        QCOMPARE(Telematics_getGPSAntennaStatus(telematics, &status),
            DeviceCode(DEVICE_DATA_NOT_AVAILABLE));
    }

    void propertiesRoundTrip()
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

    void refusesBadValues_data()
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

    void refusesBadValues()
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

    void persists()
    {
        const QTemporaryDir folder;
        const auto file = folder.filePath("unit.sqlite"_s).toStdString();
        require(virtualunit::open(file));
        QCOMPARE(value("Buzzer.volume"), "20"_s); // a unit of the profile full
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
        QCOMPARE(value("Settings.key"), "text"_s);
        QCOMPARE(value("Versions.fpga"), "9.8.7.6"_s);
        QCOMPARE(Buzzer_getFrequency(open, &hertz), 27);
        require(virtualunit::advanceClock(hour));
        QCOMPARE(value("Diagnostics.totalRunTime").toLongLong(), minutes + 60);
        // All of it lies in the one file once nobody has it open.
        require(virtualunit::open(":memory:"));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("unit.sqlite"_s));
    }

    void sharesChangesBetweenConnections()
    {
        const QTemporaryDir folder;
        require(virtualunit::open(folder.filePath("unit.sqlite"_s).toStdString()));
        // Another process, which counts a fault and changes a value between two reads of ours.
        const auto vornunit = QStringLiteral(VORN_BIN_DIR "/vornunit");
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VORN_UNIT"_s, folder.filePath("unit.sqlite"_s));
        process.setProcessEnvironment(environment);
        const Buzzer buzzer;
        for (int volume = 1; volume < 4; ++volume) {
            QVERIFY(read(Buzzer_getVolume, BuzzerHandle(buzzer)) != volume);
            process.start(vornunit, {"set"_s, "Buzzer.volume"_s, QString::number(volume)});
            QVERIFY(process.waitForFinished(60'000));
            QCOMPARE(process.exitCode(), 0);
            QCOMPARE(read(Buzzer_getVolume, BuzzerHandle(buzzer)), uint16_t(volume));
        }
    }

    void leavesAlone_data()
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

    void leavesAlone()
    {
        QFETCH(QString, kind);
        QFETCH(int, code);
        const QTemporaryDir folder;
        const auto path = folder.filePath(kind == "missing"_s ? "no/unit"_s : "unit"_s);
        QFile file(path);
        if (kind == "folder"_s) {
            QVERIFY(QDir(folder.path()).mkdir("unit"_s));
        } else if (kind == "text"_s) {
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(5000, 'x'));
            file.close();
        } else if (kind != "missing"_s) {
            require(virtualunit::open(path.toStdString()));
            put("Buzzer.volume", "3");
            require(virtualunit::open(":memory:"));
            QVERIFY(file.open(QIODevice::ReadWrite));
            if (kind == "database"_s) {
                file.seek(68); // whose file it is
                file.write("Else");
            } else if (kind == "cut"_s) {
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
        for (const auto &operation : allOperations)
            QCOMPARE(codeOf(QString::fromLatin1(operation.name)), code);
        QVERIFY(qstrlen(deviceErrorText(code)) > 10);
        std::string ignored;
        QVERIFY(!virtualunit::get("Buzzer.volume", ignored).empty());
        QVERIFY(!virtualunit::set("Buzzer.volume", "1").empty());
        QVERIFY(!virtualunit::loadProfile("full").empty());
        QCOMPARE(content(), before);
    }
};

QTEST_GUILESS_MAIN(UnitStateTest)
#include "tst_unitstate.moc"
