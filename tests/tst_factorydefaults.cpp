#include "frame/VornAux2.h"
#include "report/factoryDefaults.h"
#include "tests/support/BiosData.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/SkippedPauses.h"

#include <QTemporaryDir>

using namespace support;

namespace {

/** What a unit is, as far as the reset depends on it. */
struct Equipment {
    int canChannels = 4;
    bool video = true;
    bool suspend = true;
    bool override = false;
    bool telematics = true;
    QStringList radios = {"GPRS"_s, "WLAN"_s, "GPS"_s, "BT"_s};
};

/** The calls of a reset from its first write on, results apart. */
QStringList writes(const Equipment &unit)
{
    QStringList calls;
    const auto add = [&calls](const QString &call) { calls << call; };
    const auto addAll = [&calls](std::initializer_list<const char *> lines) {
        for (const char *line : lines)
            calls << latin1(line);
    };
    addAll({"Backlight_create()", "Backlight_setIntensity(255)", "Backlight_stopAutomaticBL()",
        "Backlight_setAutomaticBLParams(false)", "Backlight_setAutomaticBLFilter(5, 5, 50, 2)",
        "Backlight_setLedDimming(1)", "Backlight_release()"});
    addAll({"Buzzer_create()", "Buzzer_setFrequency(700)", "Buzzer_setVolume(0)",
        "Buzzer_setTrigger(false)", "Buzzer_release()"});
    add("Can_create()"_s);
    for (int channel = 1; channel <= unit.canChannels; ++channel)
        add("Can_setBaudrate(%1, 125)"_s.arg(channel));
    for (int channel = 1; channel <= unit.canChannels; ++channel)
        add("Can_setFrameType(%1, 2)"_s.arg(channel));
    add("Can_release()"_s);

    addAll({"Config_create()", "Config_getSuspendMaxTime()"});
    if (unit.canChannels > 0)
        add("Config_setCanStartupPowerConfig(0)"_s);
    addAll({"Config_setExtFanStartupPowerConfig(0)", "Config_setExtOnOffSigTrigTime(4)",
        "Config_setFrontBtnTrigTime(4000)", "Config_setHeatingTempLimit(-25)",
        "Config_setLongButtonPressAction(2)", "Config_setOnOffSigAction(2)"});
    add("Config_setShortButtonPressAction(%1)"_s.arg(unit.suspend ? 1 : 2));
    addAll({"Config_setStartupTriggerConfig(3)", "Config_setStartupVoltageConfig(9)"});
    if (unit.suspend)
        add("Config_setSuspendMaxTime(60)"_s);
    if (unit.video)
        add("Config_setVideoStartupPowerConfig(0)"_s);
    add("Config_setPowerOnStartup(0)"_s);
    if (unit.override)
        addAll({"Config_setStartupTriggerConfig(3)", "Config_setShortButtonPressAction(2)",
            "Config_setLongButtonPressAction(2)", "Config_setOnOffSigAction(0)"});
    add("Config_release()"_s);

    addAll(
        {"FrontLED_create()", "FrontLED_setColor(0, 15, 0)", "FrontLED_setEnabledDuringStartup(1)",
            "FrontLED_setIdleTime(0)", "FrontLED_setNrOfPulses(0)", "FrontLED_setOffTime(0)",
            "FrontLED_setOnTime(100)", "FrontLED_release()"});
    addAll({"LightSensor_create()", "LightSensor_setOperatingRange(0)", "LightSensor_release()"});
    addAll({"Power_create()", "Power_setBLPowerStatus(1)"});
    if (unit.canChannels > 0)
        add("Power_setCanPowerStatus(0)"_s);
    add("Power_setExtFanPowerStatus(0)"_s);
    if (unit.video)
        add("Power_setVideoPowerStatus(0)"_s);
    add("Power_release()"_s);
    addAll({"Touch_create()", "Touch_setMode(3)", "pause(500)", "Touch_setMode(2)", "pause(500)",
        "Touch_setMouseRightClickTime(1000)", "pause(100)", "Touch_setMode(3)", "pause(500)",
        "Touch_release()"});

    addAll({"Telematics_create()", "Telematics_getAvailable()"});
    if (unit.telematics) {
        add("Hardware_create()"_s);
        const std::pair<const char *, const char *> queries[] = {{"Hardware_hasGsm()", "GPRS"},
            {"Hardware_hasWlan()", "WLAN"}, {"Hardware_hasGps()", "GPS"},
            {"Hardware_hasBluetooth()", "BT"}};
        for (const auto &[query, radio] : queries) {
            add(latin1(query));
            if (!unit.radios.contains(latin1(radio)))
                continue;
            add("Telematics_set"_s + latin1(radio) + "PowerStatus(0)"_s);
            add("Telematics_set"_s + latin1(radio) + "StartUpPowerStatus(0)"_s);
        }
        add("Hardware_release()"_s);
    }
    add("Telematics_release()"_s);
    return calls;
}

const QStringList counts = {"Hardware_create()"_s, "Hardware_getCanCount()"_s,
    "Hardware_getVideoCount()"_s, "Hardware_release()"_s};

/** Leaves out results and out values. */
QStringList withoutResults(QStringList calls)
{
    for (QString &call : calls)
        call = call.section(" = "_s, 0, 0);
    return calls;
}

} // namespace

class FactoryDefaultsTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void order_data()
    {
        QTest::addColumn<int>("canCount");
        QTest::addColumn<int>("videoCount");
        for (const int canCount : {0, 1, 4, 7, 9})
            QTest::addRow("%d CAN", canCount) << canCount << 4;
        QTest::newRow("no video") << 4 << 0;
        QTest::newRow("neither") << 0 << 0;
    }

    void order()
    {
        QFETCH(int, canCount);
        QFETCH(int, videoCount);
        setUnit("Hardware.canCount"_s, QString::number(canCount));
        setUnit("Hardware.videoCount"_s, QString::number(videoCount));
        const QStringList made = reset();
        Equipment unit;
        unit.canChannels = std::min(canCount, 7);
        unit.video = videoCount > 0;
        QCOMPARE(withoutResults(made), counts + writes(unit));
    }

    void values()
    {
        setUnit("Touch.mode"_s, "0"_s);
        reset();
        const std::pair<const char *, const char *> values[] = {{"Backlight.intensity", "255"},
            {"Backlight.automaticBLStatus", "0"}, {"Backlight.softTransitions", "false"},
            {"Backlight.averageWindowSize", "5"}, {"Backlight.rejectWindowSize", "5"},
            {"Backlight.rejectDeltaLux", "50"}, {"Backlight.samplingMode", "2"},
            {"Backlight.ledDimming", "1"}, {"Buzzer.frequency", "700"}, {"Buzzer.volume", "0"},
            {"Buzzer.trigger", "false"}, {"Can.baudrate1", "125"}, {"Can.baudrate4", "125"},
            {"Can.frameType1", "2"}, {"Can.frameType4", "2"}, {"Config.canStartupPower", "0"},
            {"Config.extFanStartupPower", "0"}, {"Config.extOnOffSigTrigTime", "4"},
            {"Config.frontBtnTrigTime", "4000"}, {"Config.heatingTempLimit", "-25"},
            {"Config.longButtonPressAction", "2"}, {"Config.onOffSigAction", "2"},
            {"Config.shortButtonPressAction", "1"}, {"Config.startupTrigger", "3"},
            {"Config.startupVoltage", "9"}, {"Config.suspendMaxTime", "60"},
            {"Config.videoStartupPower", "0"}, {"Config.powerOnStartup", "0"},
            {"FrontLED.red", "0"}, {"FrontLED.green", "15"}, {"FrontLED.blue", "0"},
            {"FrontLED.enabledDuringStartup", "1"}, {"FrontLED.idleTime", "0"},
            {"FrontLED.nrOfPulses", "0"}, {"FrontLED.offTime", "0"}, {"FrontLED.onTime", "100"},
            {"LightSensor.operatingRange", "0"}, {"Power.blPowerStatus", "1"},
            {"Power.canPowerStatus", "0"}, {"Power.extFanPowerStatus", "0"},
            {"Power.videoPowerStatus", "0"}, {"Touch.mode", "3"},
            {"Touch.mouseRightClickTime", "1000"}, {"Telematics.gprsPowerStatus", "0"},
            {"Telematics.gprsStartUpPowerStatus", "0"}, {"Telematics.wlanPowerStatus", "0"},
            {"Telematics.wlanStartUpPowerStatus", "0"}, {"Telematics.gpsPowerStatus", "0"},
            {"Telematics.gpsStartUpPowerStatus", "0"}, {"Telematics.btPowerStatus", "0"},
            {"Telematics.btStartUpPowerStatus", "0"}};
        for (const auto &[name, value] : values)
            QCOMPARE(
                latin1(name) + "="_s + unit(latin1(name)), latin1(name) + "="_s + latin1(value));
    }

    void handles()
    {
        const SkippedPauses pauses;
        applyFactoryDefaults();
        QStringList lives;
        for (const QString &line : journal()) {
            if (line.contains("_create"_s) || line.contains("_release"_s))
                lives << line.section(QLatin1Char(' '), 1);
        }
        QStringList expected;
        const auto life = [](const char *family, int number) {
            return QStringList{latin1(family) + "_create() = #%1"_s.arg(number),
                latin1(family) + "_release(#%1)"_s.arg(number)};
        };
        for (const char *family : {"Hardware", "Backlight", "Buzzer", "Can", "Config", "FrontLED",
                 "LightSensor", "Power", "Touch"})
            expected += life(family, 1);
        const QStringList telematics = life("Telematics", 1);
        expected += QStringList{telematics[0]} + life("Hardware", 2) + QStringList{telematics[1]};
        QCOMPARE(lives, expected);
    }

    void board_data()
    {
        QTest::addColumn<QByteArray>("board");
        QTest::addColumn<bool>("override");
        QTest::newRow("type 0") << QByteArray("Standard PC") << false;
        QTest::newRow("type 1") << QByteArray("COMe-bIP6") << true;
        QTest::newRow("type 1, by part") << QByteArray("ChiefRiver 2") << true;
        QTest::newRow("type 2") << QByteArray("TS77") << true;
        QTest::newRow("type 4") << QByteArray("TCA3") << false;
    }

    void board()
    {
        QFETCH(QByteArray, board);
        QFETCH(bool, override);
        const QStringList made = reset(board.constData());
        Equipment equipment;
        equipment.override = override;
        QCOMPARE(withoutResults(made), counts + writes(equipment));
        QCOMPARE(unit("Config.onOffSigAction"_s), latin1(override ? "0" : "2"));
        QCOMPARE(unit("Config.shortButtonPressAction"_s), latin1(override ? "2" : "1"));
        QCOMPARE(unit("Config.longButtonPressAction"_s), "2"_s);
        QCOMPARE(unit("Config.startupTrigger"_s), "3"_s);
        QCOMPARE(unit("Config.suspendMaxTime"_s), "60"_s);
    }

    void count_thatCantBeRead()
    {
        fault("Hardware_getCanCount"_s, 5);
        fault("Hardware_getVideoCount"_s, 18);
        const QStringList made = reset();
        Equipment unit;
        unit.canChannels = 0;
        unit.video = false;
        QCOMPARE(withoutResults(made), counts + writes(unit));
    }

    void suspend_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("board");
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << code << QByteArray("TCA3");
        QTest::newRow("2, board of type 2") << 2 << QByteArray("TS77");
    }

    void suspend()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, board);
        fault("Config_getSuspendMaxTime"_s, code);
        const QStringList made = reset(board.constData());
        Equipment unit;
        unit.suspend = code != DEVICE_NOT_SUPPORTED;
        unit.override = board == "TS77";
        QCOMPARE(withoutResults(made), counts + writes(unit));
    }

    void telematics_data()
    {
        QTest::addColumn<QString>("faultOn");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("fitted");
        QTest::addColumn<QStringList>("radios");
        const QStringList all = {"GPRS"_s, "WLAN"_s, "GPS"_s, "BT"_s};
        const auto without = [&all](const char *radio) {
            QStringList radios = all;
            radios.removeOne(latin1(radio));
            return radios;
        };
        for (const int code : failureCodes)
            QTest::addRow("getAvailable, %d", code)
                << "Telematics_getAvailable"_s << code << QString() << QString() << false << all;
        QTest::newRow("no board") << QString() << 0 << "Telematics.available"_s
                                  << "0"_s << false << all;
        QTest::newRow("board 2") << QString() << 0 << "Telematics.available"_s
                                 << "2"_s << false << all;
        const std::tuple<const char *, const char *, const char *> queries[] = {
            {"Hardware_hasGsm", "Hardware.hasGsm", "GPRS"},
            {"Hardware_hasWlan", "Hardware.hasWlan", "WLAN"},
            {"Hardware_hasGps", "Hardware.hasGps", "GPS"},
            {"Hardware_hasBluetooth", "Hardware.hasBluetooth", "BT"}};
        for (const auto &[query, property, radio] : queries) {
            QTest::addRow("no %s", radio)
                << QString() << 0 << latin1(property) << "false"_s << true << without(radio);
            QTest::addRow("%s fails", query)
                << latin1(query) << 5 << QString() << QString() << true << without(radio);
        }
    }

    void telematics()
    {
        QFETCH(QString, faultOn);
        QFETCH(int, code);
        QFETCH(QString, property);
        QFETCH(QString, value);
        QFETCH(bool, fitted);
        QFETCH(QStringList, radios);
        if (!faultOn.isEmpty())
            fault(faultOn, code);
        if (!property.isEmpty())
            setUnit(property, value);
        const QStringList made = reset();
        Equipment unit;
        unit.telematics = fitted;
        unit.radios = radios;
        QCOMPARE(withoutResults(made), counts + writes(unit));
    }

    void failures_areReportedOneByOne_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : faultCodes)
            QTest::addRow("%d", code) << code;
    }

    void failures_areReportedOneByOne()
    {
        QFETCH(int, code);
        QStringList expected;
        const QString text = "Error(%1) in "_s.arg(code);
        setUnit("Hardware.canCount"_s, "7"_s);
        for (const QString &call : writes([] {
                 Equipment unit;
                 unit.canChannels = 7;
                 return unit;
             }())) {
            const QString operation = call.section(QLatin1Char('('), 0, 0);
            const QString name = operation.section(QLatin1Char('_'), 1);
            if (!name.startsWith("set"_s) && name != "stopAutomaticBL"_s)
                continue;
            fault(operation, code);
            QString channel;
            if (operation.startsWith("Can_"_s))
                channel = " CAN"_s + call.section(QLatin1Char('('), 1).left(1);
            expected << text + name + channel + ": "_s + latin1(deviceErrorText(code));
        }
        const QStringList made = reset();
        QCOMPARE(dialogs.takeTexts(), expected);
        // Each text was asked for once.
        QCOMPARE(made.filter("deviceErrorText("_s).size(), expected.size());
    }

    void failures_thatAreNone()
    {
        for (const QString &call : writes(Equipment()))
            if (call.contains("_set"_s))
                fault(call.section(QLatin1Char('('), 0, 0), DEVICE_NOT_SUPPORTED);
        const QStringList made = reset();
        QCOMPARE(withoutResults(made), counts + writes(Equipment()));
        QCOMPARE(dialogs.takeTexts(), QStringList());
    }

    void override_failsUnseen()
    {
        // The first write of each goes well, the one that overrides it fails.
        for (const char *operation :
            {"Config_setStartupTriggerConfig", "Config_setShortButtonPressAction",
                "Config_setLongButtonPressAction", "Config_setOnOffSigAction"})
            fault(latin1(operation), 5, 0, 1);
        const QStringList made = reset("TS77");
        Equipment equipment;
        equipment.override = true;
        QCOMPARE(withoutResults(made), counts + writes(equipment));
        QCOMPARE(dialogs.takeTexts(), QStringList());
        QCOMPARE(unit("Config.onOffSigAction"_s), "2"_s);
    }

    void profiles_data()
    {
        QTest::addColumn<QStringList>("radios");
        QTest::addColumn<bool>("telematics");
        const QStringList all = {"GPRS"_s, "WLAN"_s, "GPS"_s, "BT"_s};
        QTest::newRow("full") << all << true;
        QTest::newRow("basic") << QStringList() << false;
        QTest::newRow("no-touch") << all << true;
        QTest::newRow("gps-only") << QStringList{"GPS"_s} << true;
        QTest::newRow("gsm-only") << QStringList{"GPRS"_s} << true;
    }

    void profiles()
    {
        QFETCH(QStringList, radios);
        QFETCH(bool, telematics);
        useProfile(latin1(QTest::currentDataTag()));
        Equipment equipment;
        equipment.canChannels = unit("Hardware.canCount"_s).toInt();
        equipment.video = unit("Hardware.videoCount"_s).toInt() > 0;
        equipment.suspend = unit("Feature.suspend"_s) == "true"_s;
        equipment.telematics = telematics;
        equipment.radios = radios;
        const QStringList made = reset();
        QCOMPARE(withoutResults(made), counts + writes(equipment));
        QCOMPARE(dialogs.takeTexts(), QStringList());
    }

private:
    /** Runs the reset on a CPU board of that name, null for none. The result: calls and pauses. */
    QStringList reset(const char *board = nullptr)
    {
        BiosData bios;
        if (board)
            bios.setBoard(board);
        calls();
        QStringList seen;
        const SkippedPauses pauses([&](int milliseconds) {
            seen += calls();
            seen << "pause(%1)"_s.arg(milliseconds);
        });
        applyFactoryDefaults();
        return seen + calls();
    }
};

VORN_TEST_MAIN(FactoryDefaultsTest)
#include "tst_factorydefaults.moc"
