#include "tests/support/operations.h"

#include "frame/DeviceHandle.h"
#include "virtualunit/VirtualUnit.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>
#include <thread>

namespace {

using Hardware = DeviceHandle<Hardware_create, Hardware_release>;
using Adc = DeviceHandle<Adc_create, Adc_release>;
using Versions = DeviceHandle<Versions_create, Versions_release>;
using Backlight = DeviceHandle<Backlight_create, Backlight_release>;
using Buzzer = DeviceHandle<Buzzer_create, Buzzer_release>;
using Can = DeviceHandle<Can_create, Can_release>;
using Config = DeviceHandle<Config_create, Config_release>;
using Power = DeviceHandle<Power_create, Power_release>;
using Diagnostics = DeviceHandle<Diagnostics_create, Diagnostics_release>;
using Smart = DeviceHandle<Smart_create, Smart_release>;
using DigIO = DeviceHandle<DigIO_create, DigIO_release>;
using Firmware = DeviceHandle<Firmware_create, Firmware_release>;
using FrontLED = DeviceHandle<FrontLED_create, FrontLED_release>;
using LightSensor = DeviceHandle<LightSensor_create, LightSensor_release>;
using Telematics = DeviceHandle<Telematics_create, Telematics_release>;
using Touch = DeviceHandle<Touch_create, Touch_release>;
using Battery = DeviceHandle<Battery_create, Battery_release>;
using Settings = DeviceHandle<Settings_create, Settings_release>;

constexpr DeviceCode invalidHandle = 3;
constexpr DeviceCode missingArgument = 4;
constexpr DeviceCode outOfRange = 5;
constexpr DeviceCode noSuchChannel = 6;
constexpr DeviceCode noSuchSensor = 7;
constexpr DeviceCode stateUnavailable = 8;
constexpr DeviceCode stateDamaged = 9;
constexpr DeviceCode stateForeign = 10;
constexpr DeviceCode unknownKey = 26;

constexpr std::int64_t minute = 60'000;
constexpr std::int64_t hour = 60 * minute;
/** Midnight of a day long ago. */
constexpr std::int64_t midnight = 20'000 * 24 * hour;

QString text(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

void require(const virtualunit::Error &error)
{
    if (!error.empty())
        qFatal("%s", error.c_str());
}

void put(const char *name, const char *value)
{
    require(virtualunit::set(name, value));
}

QString value(const char *name)
{
    std::string found;
    require(virtualunit::get(name, found));
    return text(found);
}

/** What a getter with one out value gives; fails the test program on any code. */
template <typename Handle, typename T>
T read(DeviceCode (*getter)(Handle, T *), Handle handle)
{
    T result{};
    const auto code = getter(handle, &result);
    if (code != DEVICE_OK)
        qFatal("a getter gave %d", code);
    return result;
}

const void *handleFor(const char *operation)
{
    for (const auto &family : support::allFamilies) {
        if (QByteArray(operation).startsWith(QByteArray(family.name) + '_'))
            return family.create();
    }
    qFatal("no family for %s", operation);
    return nullptr;
}

} // namespace

/** One setting through its pair of operations, on a handle of its own for each call. */
struct Setting {
    std::function<DeviceCode(double)> write;
    std::function<DeviceCode(double &)> read;
};
Q_DECLARE_METATYPE(Setting)

namespace {

template <typename Owner, auto Set, auto Get>
struct Pair;
template <typename Owner, typename Handle, typename T, typename O, DeviceCode (*Set)(Handle, T),
    DeviceCode (*Get)(Handle, O *)>
struct Pair<Owner, Set, Get> {
    static Setting make()
    {
        return {[](double number) { return Set(Owner(), static_cast<T>(number)); },
            [](double &number) {
                O out{};
                const auto code = Get(Owner(), &out);
                number = static_cast<double>(out);
                return code;
            }};
    }
};

template <auto Set, auto Get, typename Index, typename T>
Setting indexed(Index index, DeviceCode (*)(struct CanDevice *, Index, T))
{
    return {[index](double number) { return Set(Can(), index, static_cast<T>(number)); },
        [index](double &number) {
            T out{};
            const auto code = Get(Can(), index, &out);
            number = static_cast<double>(out);
            return code;
        }};
}

Setting touchSetting(int32_t number)
{
    return {[number](double value) {
                return Touch_setAdvancedSetting(Touch(), number, static_cast<uint16_t>(value));
            },
        [number](double &value) {
            uint16_t out = 0;
            const auto code = Touch_getAdvancedSetting(Touch(), number, &out);
            value = out;
            return code;
        }};
}

} // namespace

class VirtualUnitTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void operationsAreTheContracts();
    void refusesWrongHandles_data();
    void refusesWrongHandles();
    void refusesNullPointers_data();
    void refusesNullPointers();
    void releaseOfAnythingIsHarmless();
    void textOperationsGiveTexts();

    void keepsWhatIsSet_data();
    void keepsWhatIsSet();
    void setsSeveralValuesOrNone();
    void storedAndPresentPowerAreApart();
    void startTakesStoredSettings();
    void touchDefaults();
    void ledColours();
    void digitalLines();
    void cutsTexts();
    void keepsStrings();
    void channelsAndSensorsEnd();
    void lightSensorYieldsToBacklight();

    void profileFeatures_data();
    void profileFeatures();
    void profilesRoundTrip_data();
    void profilesRoundTrip();
    void refusesBadProfiles_data();
    void refusesBadProfiles();
    void countOfZeroMeansNoFeature();
    void batteryGone();
    void antennaWithoutPower();

    void propertiesRoundTrip();
    void refusesBadValues_data();
    void refusesBadValues();

    void faultsCount();
    void faultsOnEveryOperation_data();
    void faultsOnEveryOperation();
    void delays();

    void clockStandsAndMoves();
    void countersAdvance();
    void temperaturesDriftAndPin();
    void extremesAreKept();
    void railsAreNoisyAndSwitched();
    void batteryChargesAndDischarges();
    void lightFollowsTheDay();
    void intensityFollowsTheLight();
    void softTransitionsAreSlower();
    void filterRejectsReflections();

    void journalLines();
    void journalNumbersStartAnew();

    void persists();
    void sharesChangesBetweenConnections();
    void leavesAlone_data();
    void leavesAlone();
    void recoversWhenTheFileIsBack();
    void threadsWithHandlesOfTheirOwn();
};

void VirtualUnitTest::init()
{
    require(virtualunit::open(":memory:"));
    require(virtualunit::setClock(midnight + 12 * hour));
    require(virtualunit::loadProfile("full"));
    virtualunit::stopJournal();
}

void VirtualUnitTest::operationsAreTheContracts()
{
    QStringList expected;
    for (const auto &operation : support::allOperations)
        expected << QString::fromLatin1(operation.name);
    QStringList found;
    for (const auto &name : virtualunit::operations())
        found << text(name);
    QCOMPARE(found, expected);
}

void VirtualUnitTest::refusesWrongHandles_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < support::allOperations.size(); ++i)
        QTest::newRow(support::allOperations[i].name) << int(i);
}

void VirtualUnitTest::refusesWrongHandles()
{
    QFETCH(int, index);
    const auto &operation = support::allOperations[std::size_t(index)];
    const bool isBuzzer = QByteArray(operation.name).startsWith("Buzzer_");
    const void *foreign = isBuzzer ? handleFor("Adc_") : handleFor("Buzzer_");
    const void *released = handleFor(operation.name);
    for (const auto &family : support::allFamilies) {
        if (QByteArray(operation.name).startsWith(QByteArray(family.name) + '_'))
            family.release(released);
    }
    int garbage = 0;
    for (const void *handle : {static_cast<const void *>(nullptr), foreign, released,
             static_cast<const void *>(&garbage)}) {
        support::Arguments arguments;
        arguments.out.fill(0xA5);
        const auto untouched = arguments.out;
        QCOMPARE(operation.call(handle, arguments), invalidHandle);
        QVERIFY(arguments.out == untouched);
    }
}

void VirtualUnitTest::refusesNullPointers_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < support::allOperations.size(); ++i) {
        if (support::allOperations[i].hasPointers)
            QTest::newRow(support::allOperations[i].name) << int(i);
    }
}

void VirtualUnitTest::refusesNullPointers()
{
    QFETCH(int, index);
    const auto &operation = support::allOperations[std::size_t(index)];
    const void *handle = handleFor(operation.name);
    support::Arguments arguments;
    arguments.nullPointers = true;
    QCOMPARE(operation.call(handle, arguments), missingArgument);
}

void VirtualUnitTest::releaseOfAnythingIsHarmless()
{
    int garbage = 0;
    for (const auto &family : support::allFamilies) {
        const void *foreign =
            qstrcmp(family.name, "Adc") == 0 ? handleFor("Buzzer_") : handleFor("Adc_");
        const void *handle = family.create();
        family.release(nullptr);
        family.release(&garbage);
        family.release(foreign);
        family.release(handle);
        family.release(handle);
    }
    // Still there after another family was told to release it.
    const auto adc = Adc_create();
    Buzzer_release(reinterpret_cast<BuzzerHandle>(adc));
    double volts = 0;
    QCOMPARE(Adc_getVoltage(adc, 0, &volts), DEVICE_OK);
    Adc_release(adc);
}

void VirtualUnitTest::textOperationsGiveTexts()
{
    for (const auto code : {0, 1, 2, 18, 20, 5, -1, 12345, INT32_MIN})
        QVERIFY(qstrlen(deviceErrorText(code)) > 0);
    for (const auto number : {0, 1, 2, 31, 65535}) {
        QVERIFY(qstrlen(Diagnostics_startupReasonText(uint16_t(number))) > 0);
        QVERIFY(qstrlen(Diagnostics_hwErrorText(uint16_t(number))) > 0);
    }
}

void VirtualUnitTest::keepsWhatIsSet_data()
{
    QTest::addColumn<Setting>("setting");
    QTest::addColumn<QList<double>>("good");
    QTest::addColumn<QList<double>>("bad");
    const QList<double> onOff{0, 1};
    const QList<double> notOnOff{-1, 2, 255};
    const QList<double> bytes{0, 1, 254, 255};
    const QList<double> words{0, 1, 65535};
    const auto row = [](const char *name, const Setting &setting, const QList<double> &good,
                         const QList<double> &bad) {
        QTest::newRow(name) << setting << good << bad;
    };
#define VORN_ROW(family, setting, ...)                                                            \
    row(#family "_" #setting, Pair<family, family##_set##setting, family##_get##setting>::make(), \
        __VA_ARGS__)
    VORN_ROW(Backlight, Intensity, bytes, {});
    VORN_ROW(Backlight, LedDimming, onOff, notOnOff);
    VORN_ROW(Buzzer, Frequency, {700, 701, 9999, 10000}, {0, 699, 10001, 65535});
    VORN_ROW(Buzzer, Volume, {0, 51, 25}, {52, 65535});
    VORN_ROW(Buzzer, Trigger, onOff, {});
    VORN_ROW(Config, StartupTriggerConfig, {1, 2, 3}, {-1, 0, 4});
    VORN_ROW(Config, FrontBtnTrigTime, words, {});
    VORN_ROW(Config, ExtOnOffSigTrigTime, {0, 4294967295, 7}, {});
    VORN_ROW(Config, SuspendMaxTime, words, {});
    VORN_ROW(Config, CanStartupPowerConfig, onOff, notOnOff);
    VORN_ROW(Config, VideoStartupPowerConfig, {0, 5, 15}, {16, 255});
    VORN_ROW(Config, ExtFanStartupPowerConfig, onOff, notOnOff);
    VORN_ROW(Config, StartupVoltageConfig, {5, 9, 36, 18.25},
        {4.99, 36.01, -9, std::numeric_limits<double>::quiet_NaN(),
            std::numeric_limits<double>::infinity()});
    VORN_ROW(Config, HeatingTempLimit, {-25, 5, 0}, {-26, 6, -32768, 32767});
    VORN_ROW(Config, PowerOnStartup, onOff, notOnOff);
    VORN_ROW(Config, LongButtonPressAction, {0, 1, 2}, {-1, 3});
    VORN_ROW(Config, ShortButtonPressAction, {0, 1, 2}, {-1, 3});
    VORN_ROW(Config, OnOffSigAction, {0, 1, 2}, {-1, 3});
    VORN_ROW(Power, BLPowerStatus, onOff, notOnOff);
    VORN_ROW(Power, CanPowerStatus, onOff, notOnOff);
    VORN_ROW(Power, VideoPowerStatus, {0, 5, 15}, {16, 255});
    VORN_ROW(Power, ExtFanPowerStatus, onOff, notOnOff);
    VORN_ROW(DigIO, DigIO, {0, 9, 15}, {16, 255});
    VORN_ROW(FrontLED, OnTime, bytes, {});
    VORN_ROW(FrontLED, OffTime, bytes, {});
    VORN_ROW(FrontLED, IdleTime, bytes, {});
    VORN_ROW(FrontLED, NrOfPulses, bytes, {});
    VORN_ROW(FrontLED, StandardColor, {0, 1, 2, 3, 4, 5}, {-1, 6, 100});
    VORN_ROW(FrontLED, EnabledDuringStartup, onOff, notOnOff);
    VORN_ROW(LightSensor, OperatingRange, onOff, notOnOff);
    VORN_ROW(Telematics, GPRSPowerStatus, onOff, notOnOff);
    VORN_ROW(Telematics, GPRSStartUpPowerStatus, onOff, notOnOff);
    VORN_ROW(Telematics, WLANPowerStatus, onOff, notOnOff);
    VORN_ROW(Telematics, WLANStartUpPowerStatus, onOff, notOnOff);
    VORN_ROW(Telematics, BTPowerStatus, onOff, notOnOff);
    VORN_ROW(Telematics, BTStartUpPowerStatus, onOff, notOnOff);
    VORN_ROW(Telematics, GPSPowerStatus, onOff, notOnOff);
    VORN_ROW(Telematics, GPSStartUpPowerStatus, onOff, notOnOff);
    VORN_ROW(Touch, Mode, {0, 1, 2, 3}, {-1, 4});
    VORN_ROW(Touch, MouseRightClickTime, words, {});
#undef VORN_ROW
    for (const uint8_t channel : {1, 2, 3, 4}) {
        row(qPrintable(QStringLiteral("Can_Baudrate %1").arg(channel)),
            indexed<Can_setBaudrate, Can_getBaudrate>(channel, Can_setBaudrate),
            {10, 125, 1000, 83}, {0, 9, 1001, 65535});
        row(qPrintable(QStringLiteral("Can_FrameType %1").arg(channel)),
            indexed<Can_setFrameType, Can_getFrameType>(channel, Can_setFrameType), {0, 1, 2},
            {-1, 3});
    }
    const double highest[] = {
        65535, 4095, 4095, 16383, 16383, 16383, 16383, 32767, 65535, 32767, 65535};
    for (int32_t number = 0; number < TOUCH_RESTORE_DEFAULTS; ++number) {
        const double high = highest[number];
        row(qPrintable(QStringLiteral("Touch setting %1").arg(number)), touchSetting(number),
            {0, 1, high}, high < 65535 ? QList<double>{high + 1, 65535} : QList<double>{});
    }
}

void VirtualUnitTest::keepsWhatIsSet()
{
    QFETCH(Setting, setting);
    QFETCH(QList<double>, good);
    QFETCH(QList<double>, bad);
    for (const double wanted : qAsConst(good)) {
        double found = -77;
        QCOMPARE(setting.write(wanted), DEVICE_OK);
        QCOMPARE(setting.read(found), DEVICE_OK);
        QCOMPARE(found, wanted);
        for (const double refused : qAsConst(bad)) {
            QCOMPARE(setting.write(refused), outOfRange);
            QCOMPARE(setting.read(found), DEVICE_OK);
            QCOMPARE(found, wanted);
        }
    }
}

void VirtualUnitTest::setsSeveralValuesOrNone()
{
    const Backlight backlight;
    QCOMPARE(Backlight_setAutomaticBLFilter(backlight, 4, 17, 80, 2), DEVICE_OK);
    // The last value alone is wrong.
    QCOMPARE(Backlight_setAutomaticBLFilter(backlight, 5, 5, 50, 3), outOfRange);
    QCOMPARE(Backlight_setAutomaticBLFilter(backlight, 0, 5, 50, 2), outOfRange);
    uint32_t average = 0;
    uint32_t reject = 0;
    uint32_t delta = 0;
    int32_t mode = 0;
    QCOMPARE(
        Backlight_getAutomaticBLFilter(backlight, &average, &reject, &delta, &mode), DEVICE_OK);
    QCOMPARE(QList<double>({double(average), double(reject), double(delta), double(mode)}),
        QList<double>({4, 17, 80, 2}));

    const FrontLED led;
    QCOMPARE(FrontLED_setSignal(led, 7.5, 33), DEVICE_OK);
    QCOMPARE(FrontLED_setSignal(led, 9, 101), outOfRange);
    QCOMPARE(FrontLED_setSignal(led, std::numeric_limits<double>::quiet_NaN(), 50), outOfRange);
    double hertz = 0;
    uint8_t duty = 0;
    QCOMPARE(FrontLED_getSignal(led, &hertz, &duty), DEVICE_OK);
    QCOMPARE(hertz, 7.5);
    QCOMPARE(duty, uint8_t(33));

    QCOMPARE(FrontLED_setColor(led, 1, 2, 3), DEVICE_OK);
    QCOMPARE(FrontLED_setColor(led, 4, 5, 16), outOfRange);
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    QCOMPARE(FrontLED_getColor(led, &red, &green, &blue), DEVICE_OK);
    QCOMPARE(QList<double>({double(red), double(green), double(blue)}), QList<double>({1, 2, 3}));
}

void VirtualUnitTest::storedAndPresentPowerAreApart()
{
    const Power power;
    const Config config;
    const Telematics telematics;
    for (const int32_t status : {0, 1}) {
        QCOMPARE(Power_setCanPowerStatus(power, status), DEVICE_OK);
        QCOMPARE(Config_setCanStartupPowerConfig(config, 1 - status), DEVICE_OK);
        QCOMPARE(read(Power_getCanPowerStatus, PowerHandle(power)), status);
        QCOMPARE(read(Config_getCanStartupPowerConfig, ConfigHandle(config)), 1 - status);
        QCOMPARE(Telematics_setWLANStartUpPowerStatus(telematics, 1 - status), DEVICE_OK);
        QCOMPARE(Telematics_setWLANPowerStatus(telematics, status), DEVICE_OK);
        QCOMPARE(read(Telematics_getWLANPowerStatus, TelematicsHandle(telematics)), status);
        QCOMPARE(
            read(Telematics_getWLANStartUpPowerStatus, TelematicsHandle(telematics)), 1 - status);
    }
}

void VirtualUnitTest::startTakesStoredSettings()
{
    put("Config.videoStartupPower", "9");
    put("Power.videoPowerStatus", "2");
    put("Telematics.btStartUpPowerStatus", "0");
    put("Telematics.btPowerStatus", "1");
    QCOMPARE(Touch_setMode(Touch(), TOUCH_MOUSE_NEXT_BOOT), DEVICE_OK);
    QCOMPARE(value("Touch.nextBootMode"), QStringLiteral("2"));
    const int cycles = value("Diagnostics.powerCycles").toInt();

    put("Unit.running", "false");
    QCOMPARE(value("Power.videoPowerStatus"), QStringLiteral("2"));
    put("Unit.running", "true");
    QCOMPARE(value("Power.videoPowerStatus"), QStringLiteral("9"));
    QCOMPARE(value("Telematics.btPowerStatus"), QStringLiteral("0"));
    QCOMPARE(value("Touch.mode"), QStringLiteral("2"));
    QCOMPARE(value("Diagnostics.powerCycles").toInt(), cycles + 1);
    // Running already: no start.
    put("Unit.running", "true");
    QCOMPARE(value("Diagnostics.powerCycles").toInt(), cycles + 1);
}

void VirtualUnitTest::touchDefaults()
{
    const Touch touch;
    QCOMPARE(Touch_setAdvancedSetting(touch, TOUCH_LOW_LEVEL, 77), DEVICE_OK);
    QCOMPARE(Touch_setAdvancedSetting(touch, TOUCH_RESTORE_DEFAULTS, 0), outOfRange);
    QCOMPARE(Touch_setAdvancedSetting(touch, TOUCH_RESTORE_DEFAULTS, 2), outOfRange);
    QCOMPARE(value("Touch.lowLevel"), QStringLiteral("77"));
    QCOMPARE(Touch_setAdvancedSetting(touch, TOUCH_RESTORE_DEFAULTS, 1), DEVICE_OK);
    QCOMPARE(value("Touch.lowLevel"), QStringLiteral("600"));
    QCOMPARE(value("Touch.calibrationMeasurements"), QStringLiteral("8"));
    uint16_t number = 9;
    for (const int32_t wrong : {-1, 11, 12, INT32_MAX, INT32_MIN}) {
        QCOMPARE(Touch_getAdvancedSetting(touch, wrong, &number), noSuchChannel);
        QCOMPARE(number, uint16_t(9));
    }
    for (const int32_t wrong : {-1, 12, INT32_MAX, INT32_MIN})
        QCOMPARE(Touch_setAdvancedSetting(touch, wrong, 1), noSuchChannel);
}

void VirtualUnitTest::ledColours()
{
    const FrontLED led;
    QCOMPARE(FrontLED_setStandardColor(led, LED_CYAN), DEVICE_OK);
    QCOMPARE(value("FrontLED.red") + value("FrontLED.green") + value("FrontLED.blue"),
        QStringLiteral("01515"));
    QCOMPARE(FrontLED_setColor(led, 15, 0, 15), DEVICE_OK);
    QCOMPARE(read(FrontLED_getStandardColor, FrontLEDHandle(led)), int32_t(LED_MAGENTA));
    QCOMPARE(FrontLED_setColor(led, 15, 1, 15), DEVICE_OK);
    QCOMPARE(read(FrontLED_getStandardColor, FrontLEDHandle(led)), 6);

    QCOMPARE(FrontLED_setSignal(led, 4, 60), DEVICE_OK);
    QCOMPARE(FrontLED_setOff(led), DEVICE_OK);
    QCOMPARE(value("FrontLED.dutyCycle"), QStringLiteral("0"));
    QCOMPARE(value("FrontLED.frequency"), QStringLiteral("4"));
}

void VirtualUnitTest::digitalLines()
{
    const DigIO lines;
    put("DigIO.digIO", "165");
    QCOMPARE(read(DigIO_getDigIO, DigIOHandle(lines)), uint8_t(165));
    // What was read may be written back; lines that nothing drives can't be changed.
    QCOMPARE(DigIO_setDigIO(lines, 165), DEVICE_OK);
    QCOMPARE(DigIO_setDigIO(lines, 10), outOfRange);
    QCOMPARE(DigIO_setDigIO(lines, 0xA0 | 10), DEVICE_OK);
    QCOMPARE(value("DigIO.digIO"), QStringLiteral("170"));
    put("Feature.digitalOutputs", "false");
    QCOMPARE(DigIO_setDigIO(lines, 170), DeviceCode(DEVICE_NOT_SUPPORTED));
    QCOMPARE(read(DigIO_getDigIO, DigIOHandle(lines)), uint8_t(170));
}

void VirtualUnitTest::cutsTexts()
{
    const Hardware hardware;
    put("Hardware.mainProductRevision", "R\u00c43");
    char buffer[8];
    for (const uint32_t size : {1U, 2U, 3U, 4U, 8U}) {
        memset(buffer, 0x7F, sizeof buffer);
        QCOMPARE(Hardware_getMainProductRevision(hardware, buffer, size), DEVICE_OK);
        QCOMPARE(QByteArray(buffer), QByteArray("R\xC4"
                                                "3")
                                         .left(int(size) - 1));
        if (size < sizeof buffer)
            QCOMPARE(buffer[size], char(0x7F));
    }
    QCOMPARE(Hardware_getMainProductRevision(hardware, buffer, 0), missingArgument);
}

void VirtualUnitTest::keepsStrings()
{
    const Settings settings;
    char buffer[255] = "kept";
    QCOMPARE(Settings_getString(settings, "VornsettingsGsmPort", buffer, 255), DEVICE_OK);
    QCOMPARE(QByteArray(buffer), QByteArray("COM3"));
    QCOMPARE(Settings_getString(settings, "nobody", buffer, 255), unknownKey);
    QCOMPARE(QByteArray(buffer), QByteArray("COM3"));

    QByteArray all;
    for (int character = 1; character < 256; ++character)
        all += char(character);
    QCOMPARE(Settings_setString(settings, "a key", all.constData()), DEVICE_OK);
    char large[300];
    QCOMPARE(Settings_getString(settings, "a key", large, 300), DEVICE_OK);
    QCOMPARE(QByteArray(large), all);
    QCOMPARE(Settings_setString(settings, "a key", ""), DEVICE_OK);
    QCOMPARE(Settings_getString(settings, "a key", large, 300), DEVICE_OK);
    QCOMPARE(QByteArray(large), QByteArray());
    QCOMPARE(Settings_setString(settings, "", "x"), outOfRange);
    QCOMPARE(Settings_setString(settings, "a key", QByteArray(1024, 'x').constData()), outOfRange);
    QCOMPARE(value("Settings.a key"), QString());
    put("Settings.VornsettingsGpsPort", "ttyS\u00e9");
    QCOMPARE(Settings_getString(settings, "VornsettingsGpsPort", buffer, 255), DEVICE_OK);
    QCOMPARE(QByteArray(buffer), QByteArray("ttyS\xE9"));
}

void VirtualUnitTest::channelsAndSensorsEnd()
{
    const Can can;
    uint16_t rate = 0;
    int32_t type = 0;
    for (const uint8_t channel : {0, 5, 9, 255}) {
        QCOMPARE(Can_getBaudrate(can, channel, &rate), noSuchChannel);
        QCOMPARE(Can_setBaudrate(can, channel, 125), noSuchChannel);
        QCOMPARE(Can_getFrameType(can, channel, &type), noSuchChannel);
        QCOMPARE(Can_setFrameType(can, channel, 1), noSuchChannel);
    }
    put("Hardware.canCount", "9");
    QCOMPARE(Can_setBaudrate(can, 7, 500), DEVICE_OK);
    QCOMPARE(value("Can.baudrate7"), QStringLiteral("500"));

    const Adc adc;
    double volts = 0;
    for (const uint32_t channel : {1U, 24U, UINT32_MAX})
        QCOMPARE(Adc_getVoltage(adc, channel, &volts), noSuchChannel);
    for (uint32_t channel = 2; channel < 24; ++channel)
        QCOMPARE(Adc_getVoltage(adc, channel, &volts), DEVICE_OK);

    const Diagnostics diagnostics;
    int16_t celsius = 0;
    int32_t kind = 0;
    put("Diagnostics.pmSensorCount", "2");
    put("Diagnostics.pmTemp1", "-7");
    put("Diagnostics.pmKind1", "6");
    QCOMPARE(Diagnostics_getPMTemp(diagnostics, 1, &celsius, &kind), DEVICE_OK);
    QCOMPARE(celsius, int16_t(-7));
    QCOMPARE(kind, 6);
    QCOMPARE(Diagnostics_getPMTemp(diagnostics, 2, &celsius, &kind), noSuchSensor);
    QCOMPARE(Diagnostics_getPMTemp(diagnostics, 255, &celsius, &kind), noSuchSensor);
}

void VirtualUnitTest::lightSensorYieldsToBacklight()
{
    const LightSensor sensor;
    const Backlight backlight;
    QCOMPARE(LightSensor_startAverageCalc(sensor, 5, 5, 100, 2), DEVICE_OK);
    QCOMPARE(value("LightSensor.averaging"), QStringLiteral("true"));
    QCOMPARE(LightSensor_startAverageCalc(sensor, 0, 5, 100, 2), outOfRange);
    QCOMPARE(LightSensor_startAverageCalc(sensor, 5, 5, 100, 3), outOfRange);
    QCOMPARE(value("LightSensor.averageWindowSize"), QStringLiteral("5"));

    QCOMPARE(Backlight_startAutomaticBL(backlight), DEVICE_OK);
    QCOMPARE(read(Backlight_getAutomaticBLStatus, BacklightHandle(backlight)), uint8_t(1));
    QCOMPARE(value("LightSensor.averaging"), QStringLiteral("false"));
    QCOMPARE(LightSensor_startAverageCalc(sensor, 5, 5, 100, 2),
        DeviceCode(DEVICE_AUTOMATIC_BACKLIGHT_RUNS));
    QCOMPARE(LightSensor_stopAverageCalc(sensor), DEVICE_OK);
    QCOMPARE(Backlight_stopAutomaticBL(backlight), DEVICE_OK);
    QCOMPARE(read(Backlight_getAutomaticBLStatus, BacklightHandle(backlight)), uint8_t(0));
    QCOMPARE(LightSensor_startAverageCalc(sensor, 5, 5, 100, 2), DEVICE_OK);

    // The range is the one in use.
    put("LightSensor.illuminance", "100");
    QCOMPARE(read(LightSensor_getOperatingRange, LightSensorHandle(sensor)), 0);
    put("LightSensor.illuminance", "20000");
    QCOMPARE(read(LightSensor_getOperatingRange, LightSensorHandle(sensor)), 1);
    QCOMPARE(LightSensor_startAverageCalc(sensor, 5, 5, 100, SAMPLING_STANDARD), DEVICE_OK);
    QCOMPARE(read(LightSensor_getOperatingRange, LightSensorHandle(sensor)), 0);
}

namespace {

/** The codes of operations that a test of features asks for, by name. */
DeviceCode codeOf(const QString &name)
{
    for (const auto &operation : support::allOperations) {
        if (name == QLatin1String(operation.name)) {
            support::Arguments arguments;
            return operation.call(handleFor(operation.name), arguments);
        }
    }
    qFatal("no operation %s", qPrintable(name));
    return -1;
}

} // namespace

void VirtualUnitTest::profileFeatures_data()
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

void VirtualUnitTest::profileFeatures()
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

void VirtualUnitTest::profilesRoundTrip_data()
{
    QTest::addColumn<QString>("profile");
    const auto names = virtualunit::profiles();
    QVERIFY(names.size() >= 7);
    for (const auto &name : names)
        QTest::newRow(name.c_str()) << text(name);
}

void VirtualUnitTest::profilesRoundTrip()
{
    QFETCH(QString, profile);
    require(virtualunit::loadProfile(profile.toStdString()));
    put("Buzzer.volume", "33");
    put("Adc.voltage4", "4.75");
    put("Backlight.intensity", "12");
    put("Battery.voltageLevel", "live 40");
    put("Settings.another", "\"\u00fc\"");
    require(virtualunit::addFault("Buzzer_getTrigger", -5, 3, 2));
    require(virtualunit::setDelay("Buzzer_setTrigger", 1));
    std::vector<virtualunit::Property> before;
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

    std::vector<virtualunit::Property> after;
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

void VirtualUnitTest::refusesBadProfiles_data()
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

void VirtualUnitTest::refusesBadProfiles()
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

void VirtualUnitTest::countOfZeroMeansNoFeature()
{
    put("Hardware.canCount", "0");
    put("Hardware.videoCount", "0");
    for (const char *name : {"Can_getBaudrate", "Can_setFrameType", "Power_getCanPowerStatus",
             "Config_setCanStartupPowerConfig", "Power_getVideoPowerStatus",
             "Config_getVideoStartupPowerConfig"})
        QCOMPARE(codeOf(QString::fromLatin1(name)), DeviceCode(DEVICE_NOT_SUPPORTED));
}

void VirtualUnitTest::batteryGone()
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

void VirtualUnitTest::antennaWithoutPower()
{
    const Telematics telematics;
    int32_t status = 0;
    QCOMPARE(Telematics_getGPSAntennaStatus(telematics, &status), DEVICE_OK);
    QCOMPARE(status, 1);
    QCOMPARE(Telematics_setGPSPowerStatus(telematics, 0), DEVICE_OK);
    QCOMPARE(
        Telematics_getGPSAntennaStatus(telematics, &status), DeviceCode(DEVICE_DATA_NOT_AVAILABLE));
}

void VirtualUnitTest::propertiesRoundTrip()
{
    std::vector<virtualunit::Property> properties;
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

void VirtualUnitTest::refusesBadValues_data()
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
                           << "201";
    QTest::newRow("below") << "Diagnostics.ssTemp"
                           << "-129";
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

void VirtualUnitTest::refusesBadValues()
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

void VirtualUnitTest::faultsCount()
{
    const Buzzer buzzer;
    const auto codes = [&buzzer](int calls) {
        QList<int> list;
        for (int i = 0; i < calls; ++i) {
            uint16_t volume = 99;
            list << Buzzer_getVolume(buzzer, &volume);
            if (list.constLast() != DEVICE_OK && volume != 99)
                qFatal("an out value was touched");
        }
        return list;
    };
    require(virtualunit::addFault("Buzzer_getVolume", 5, 2, 1));
    QCOMPARE(codes(5), QList<int>({0, 5, 5, 0, 0}));
    require(virtualunit::addFault("Buzzer_getVolume", -1, 0, 2));
    QCOMPARE(codes(6), QList<int>({0, 0, -1, -1, -1, -1}));
    require(virtualunit::addFault("Buzzer_getVolume", 0));
    QCOMPARE(codes(2), QList<int>({0, 0}));
    require(virtualunit::addFault("Buzzer_getVolume", 18));
    QCOMPARE(codes(2), QList<int>({18, 18}));
    require(virtualunit::clearFaults());
    QCOMPARE(codes(2), QList<int>({0, 0}));
    QVERIFY(!virtualunit::addFault("Buzzer_getLoudness", 5).empty());
    QVERIFY(!virtualunit::addFault("Buzzer_create", 5).empty());

    // A call that meets a fault does nothing, and one on a wrong handle meets none.
    require(virtualunit::addFault("Buzzer_setVolume", 5, 1));
    put("Buzzer.volume", "7");
    QCOMPARE(Buzzer_setVolume(nullptr, 9), invalidHandle);
    QCOMPARE(Buzzer_setVolume(buzzer, 9), 5);
    QCOMPARE(value("Buzzer.volume"), QStringLiteral("7"));
    QCOMPARE(Buzzer_setVolume(buzzer, 9), DEVICE_OK);
}

void VirtualUnitTest::faultsOnEveryOperation_data()
{
    refusesWrongHandles_data();
}

void VirtualUnitTest::faultsOnEveryOperation()
{
    QFETCH(int, index);
    const auto &operation = support::allOperations[std::size_t(index)];
    const void *handle = handleFor(operation.name);
    for (const int code : {2, 18, 20, 5, -1, INT32_MAX}) {
        require(virtualunit::addFault(operation.name, code));
        support::Arguments arguments;
        arguments.out.fill(0xA5);
        const auto untouched = arguments.out;
        QCOMPARE(operation.call(handle, arguments), code);
        QVERIFY(arguments.out == untouched);
    }
}

void VirtualUnitTest::delays()
{
    const Buzzer buzzer;
    uint16_t volume = 0;
    require(virtualunit::setDelay("Buzzer_getVolume", 60));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(Buzzer_getVolume(buzzer, &volume), DEVICE_OK);
    QVERIFY(timer.elapsed() >= 60);
    // Others go on meanwhile.
    std::thread slow([] {
        const Buzzer other;
        uint16_t ignored = 0;
        require(virtualunit::setDelay("Buzzer_getVolume", 1000));
        Buzzer_getVolume(other, &ignored);
    });
    timer.start();
    while (timer.elapsed() < 300)
        read(Buzzer_getFrequency, BuzzerHandle(buzzer));
    slow.join();
    QVERIFY(timer.elapsed() >= 900);
    require(virtualunit::setDelay("Buzzer_getVolume", 0));
    timer.start();
    QCOMPARE(Buzzer_getVolume(buzzer, &volume), DEVICE_OK);
    QVERIFY(timer.elapsed() < 500);
    QVERIFY(!virtualunit::setDelay("Nobody_getVolume", 1).empty());
}

void VirtualUnitTest::clockStandsAndMoves()
{
    const auto minutes = [] { return value("Diagnostics.totalRunTime").toLongLong(); };
    const auto start = minutes();
    require(virtualunit::setClock(midnight + 13 * hour));
    QCOMPARE(minutes(), start + 60);
    // Set back, the unit doesn't grow younger, nor older when the clock follows the machine's.
    require(virtualunit::setClock(midnight));
    QCOMPARE(minutes(), start + 60);
    require(virtualunit::advanceClock(59 * minute));
    QCOMPARE(minutes(), start + 119);
    require(virtualunit::advanceClock(-30 * minute));
    QCOMPARE(minutes(), start + 119);
    require(virtualunit::releaseClock());
    QCOMPARE(minutes(), start + 119);
    require(virtualunit::advanceClock(10 * minute));
    QCOMPARE(minutes(), start + 129);
}

void VirtualUnitTest::countersAdvance()
{
    put("Battery.temperature", "50");
    put("Diagnostics.pcbTemp", "65");
    DiagnosticTimes before{};
    DiagnosticTimes after{};
    BatteryTimes batteryBefore{};
    BatteryTimes batteryAfter{};
    QCOMPARE(Diagnostics_getTimers(Diagnostics(), &before), DEVICE_OK);
    QCOMPARE(Battery_getTimes(Battery(), &batteryBefore), DEVICE_OK);
    require(virtualunit::advanceClock(90 * minute));
    put("Battery.powerSource", "0");
    put("Battery.temperature", "-30");
    put("Diagnostics.pcbTemp", "81");
    put("Unit.ambientTemp", "-40");
    require(virtualunit::advanceClock(10 * minute + 59'000));
    QCOMPARE(Diagnostics_getTimers(Diagnostics(), &after), DEVICE_OK);
    QCOMPARE(Battery_getTimes(Battery(), &batteryAfter), DEVICE_OK);
    QCOMPARE(after.totalRunTime, before.totalRunTime + 100);
    QCOMPARE(after.totalSuspendTime, before.totalSuspendTime);
    QCOMPARE(after.totalHeatTime, before.totalHeatTime + 10);
    QCOMPARE(after.runTime40To60, before.runTime40To60);
    QCOMPARE(after.runTime60To70, before.runTime60To70 + 90);
    QCOMPARE(after.runTime70To80, before.runTime70To80);
    QCOMPARE(after.runTimeAbove80, before.runTimeAbove80 + 10);
    QCOMPARE(batteryAfter.runTimeMainPower, batteryBefore.runTimeMainPower + 90);
    QCOMPARE(batteryAfter.runTimeBatteryPower, batteryBefore.runTimeBatteryPower + 10);
    QCOMPARE(batteryAfter.runTimeBelowMinus20, batteryBefore.runTimeBelowMinus20 + 10);
    QCOMPARE(batteryAfter.runTime40To60, batteryBefore.runTime40To60 + 90);
    QCOMPARE(batteryAfter.runTime0To40, batteryBefore.runTime0To40);

    // Nothing counts in a computer that is off.
    put("Unit.running", "false");
    require(virtualunit::advanceClock(hour));
    QCOMPARE(Diagnostics_getTimers(Diagnostics(), &before), DEVICE_OK);
    QCOMPARE(before.totalRunTime, after.totalRunTime);
}

void VirtualUnitTest::temperaturesDriftAndPin()
{
    const auto degrees = [] { return value("Diagnostics.ssTemp").toInt(); };
    require(virtualunit::advanceClock(3 * hour));
    const int settled = degrees();
    put("Unit.ambientTemp", "60");
    QVERIFY(qAbs(degrees() - settled) <= 1); // not at once
    require(virtualunit::advanceClock(7 * minute));
    const int rising = degrees();
    QVERIFY(rising > settled + 10);
    require(virtualunit::advanceClock(3 * hour));
    QVERIFY(degrees() > rising + 10);
    QVERIFY(qAbs(degrees() - settled - 37) <= 2);

    // Load and fan.
    const int hot = degrees();
    put("Power.extFanPowerStatus", "0");
    put("Backlight.intensity", "255");
    require(virtualunit::advanceClock(3 * hour));
    QVERIFY(degrees() >= hot + 4);

    put("Diagnostics.ssTemp", "71");
    require(virtualunit::advanceClock(5 * minute));
    QCOMPARE(read(Diagnostics_getSSTemp, DiagnosticsHandle(Diagnostics())), int16_t(71));
    put("Diagnostics.ssTemp", "live");
    require(virtualunit::advanceClock(3 * hour));
    QVERIFY(degrees() != 71);
    put("Diagnostics.ssTemp", "live 20");
    QVERIFY(qAbs(degrees() - 20) <= 1);
    require(virtualunit::advanceClock(5 * minute));
    QVERIFY(degrees() > 30);
}

void VirtualUnitTest::extremesAreKept()
{
    int16_t lowest = 0;
    int16_t highest = 0;
    put("Diagnostics.pcbTemp", "91");
    put("Diagnostics.pcbTemp", "-44");
    put("Diagnostics.pcbTemp", "live");
    QCOMPARE(Diagnostics_getMinMaxTemp(Diagnostics(), &lowest, &highest), DEVICE_OK);
    QCOMPARE(lowest, int16_t(-44));
    QCOMPARE(highest, int16_t(91));
    put("Battery.temperature", "77");
    QCOMPARE(Battery_getMinMaxTemp(Battery(), &lowest, &highest), DEVICE_OK);
    QCOMPARE(lowest, int16_t(-12));
    QCOMPARE(highest, int16_t(77));
    put("Battery.maxTemp", "60");
    QCOMPARE(value("Battery.maxTemp"), QStringLiteral("60"));

    // Whatever a sensor reports has been seen.
    put("Unit.ambientTemp", "110");
    for (int i = 0; i < 200; ++i) {
        require(virtualunit::advanceClock(minute));
        QVERIFY(value("Diagnostics.maxTemp").toInt() >= value("Diagnostics.pcbTemp").toInt());
        QVERIFY(value("Diagnostics.maxTemp").toInt() >= value("Diagnostics.ssTemp").toInt());
    }
}

void VirtualUnitTest::railsAreNoisyAndSwitched()
{
    const Adc adc;
    const auto volts = [&adc](uint32_t channel) {
        double result = 0;
        if (Adc_getVoltage(adc, channel, &result) != DEVICE_OK)
            qFatal("no voltage");
        return result;
    };
    QSet<QString> seen;
    for (int i = 0; i < 50; ++i) {
        require(virtualunit::advanceClock(1000));
        QCOMPARE(volts(4), volts(4)); // the clock stands
        QVERIFY(qAbs(volts(4) - 5) < 0.05);
        seen << QString::number(volts(4));
    }
    QVERIFY(seen.size() > 5);
    put("Adc.voltage4", "4.321");
    QCOMPARE(volts(4), 4.321);
    put("Adc.voltage4", "live");
    QVERIFY(qAbs(volts(4) - 5) < 0.05);

    QVERIFY(volts(3) > 11);
    QCOMPARE(Power_setVideoPowerStatus(Power(), 0), DEVICE_OK);
    QVERIFY(volts(3) < 0.1);
    QCOMPARE(Power_setBLPowerStatus(Power(), 0), DEVICE_OK);
    QVERIFY(volts(6) < 0.1);
    QVERIFY(volts(0) > 23);
    put("Battery.powerSource", "0");
    QVERIFY(volts(0) < 0.1);
    QVERIFY(volts(16) > 20);
}

void VirtualUnitTest::batteryChargesAndDischarges()
{
    const Battery battery;
    const auto level = [&battery] { return read(Battery_getVoltageLevel, BatteryHandle(battery)); };
    const auto status = [&battery] {
        return read(Battery_getChargingStatus, BatteryHandle(battery));
    };
    QCOMPARE(level(), uint8_t(76));
    QCOMPARE(status(), int32_t(CHARGING_ACTIVE));
    require(virtualunit::advanceClock(20 * minute));
    QCOMPARE(level(), uint8_t(86));
    put("Battery.powerSource", "0");
    QCOMPARE(status(), int32_t(CHARGING_IDLE));
    require(virtualunit::advanceClock(10 * minute));
    QCOMPARE(level(), uint8_t(82));
    require(virtualunit::advanceClock(24 * hour));
    QCOMPARE(level(), uint8_t(0));
    put("Battery.powerSource", "1");
    put("Battery.temperature", "-3");
    QCOMPARE(status(), int32_t(CHARGING_TOO_COLD));
    require(virtualunit::advanceClock(hour));
    QCOMPARE(level(), uint8_t(0));
    put("Battery.temperature", "46");
    QCOMPARE(status(), int32_t(CHARGING_TOO_HOT));
    put("Battery.temperature", "20");
    require(virtualunit::advanceClock(24 * hour));
    QCOMPARE(level(), uint8_t(100));
    QCOMPARE(status(), int32_t(CHARGING_FULL));
    put("Battery.chargingStatus", "5");
    QCOMPARE(status(), int32_t(CHARGING_UNKNOWN));
    put("Battery.chargingStatus", "live");
    put("Battery.hwErrorStatus", "3");
    QCOMPARE(status(), int32_t(CHARGING_IDLE));
}

void VirtualUnitTest::lightFollowsTheDay()
{
    const LightSensor sensor;
    const auto lux = [&sensor] {
        return read(LightSensor_getIlluminance, LightSensorHandle(sensor));
    };
    QCOMPARE(LightSensor_setOperatingRange(sensor, LIGHT_RANGE_EXTENDED), DEVICE_OK);
    QCOMPARE(LightSensor_startAverageCalc(sensor, 50, 20, 200, SAMPLING_EXTENDED), DEVICE_OK);
    require(virtualunit::setClock(midnight + 24 * hour));
    const auto night = lux();
    require(virtualunit::setClock(midnight + 31 * hour));
    const auto morning = lux();
    require(virtualunit::setClock(midnight + 36 * hour));
    const auto noon = lux();
    QVERIFY(night < 50);
    QVERIFY(morning > 5 * night);
    QVERIFY(noon > 2 * morning);
    QVERIFY(noon > 4095);
    // The standard range ends.
    QCOMPARE(LightSensor_startAverageCalc(sensor, 50, 20, 200, SAMPLING_STANDARD), DEVICE_OK);
    QCOMPARE(lux(), uint16_t(4095));
    put("LightSensor.illuminance", "230");
    QCOMPARE(lux(), uint16_t(230));
}

void VirtualUnitTest::intensityFollowsTheLight()
{
    const Backlight backlight;
    const auto intensity = [&backlight] {
        return read(Backlight_getIntensity, BacklightHandle(backlight));
    };
    QCOMPARE(Backlight_setIntensity(backlight, 100), DEVICE_OK);
    require(virtualunit::advanceClock(hour));
    QCOMPARE(intensity(), uint8_t(100));

    put("LightSensor.illuminance", "0");
    QCOMPARE(Backlight_startAutomaticBL(backlight), DEVICE_OK);
    QCOMPARE(intensity(), uint8_t(100));
    require(virtualunit::advanceClock(minute));
    const auto dark = intensity();
    QVERIFY(dark < 50);
    put("LightSensor.illuminance", "60000");
    QCOMPARE(intensity(), dark);
    require(virtualunit::advanceClock(minute));
    const auto bright = intensity();
    QVERIFY(bright > 200);
    // Set by hand meanwhile, it goes on from there.
    QCOMPARE(Backlight_setIntensity(backlight, 30), DEVICE_OK);
    QCOMPARE(intensity(), uint8_t(30));
    require(virtualunit::advanceClock(minute));
    QCOMPARE(intensity(), bright);
    QCOMPARE(Backlight_stopAutomaticBL(backlight), DEVICE_OK);
    put("LightSensor.illuminance", "0");
    require(virtualunit::advanceClock(minute));
    QCOMPARE(intensity(), bright);
}

void VirtualUnitTest::softTransitionsAreSlower()
{
    const Backlight backlight;
    put("LightSensor.illuminance", "60000");
    const auto after = [&](bool soft) {
        QCOMPARE(Backlight_stopAutomaticBL(backlight), DEVICE_OK);
        QCOMPARE(Backlight_setAutomaticBLParams(backlight, soft), DEVICE_OK);
        QCOMPARE(Backlight_setIntensity(backlight, 0), DEVICE_OK);
        QCOMPARE(Backlight_startAutomaticBL(backlight), DEVICE_OK);
        require(virtualunit::advanceClock(500));
    };
    after(true);
    const auto soft = read(Backlight_getIntensity, BacklightHandle(backlight));
    after(false);
    const auto hard = read(Backlight_getIntensity, BacklightHandle(backlight));
    QCOMPARE(soft, uint8_t(20));
    QCOMPARE(hard, uint8_t(200));
    DeviceBool flag = 1;
    double kValue = 0;
    QCOMPARE(Backlight_getAutomaticBLParams(backlight, &flag, &kValue), DEVICE_OK);
    QCOMPARE(flag, DeviceBool(0));
    QCOMPARE(kValue, 0.35);
}

void VirtualUnitTest::filterRejectsReflections()
{
    const LightSensor sensor;
    // At night nothing but reflections comes near 900 lux.
    const auto brightest = [&](uint32_t rejectWindow, uint32_t delta) {
        int found = 0;
        if (LightSensor_startAverageCalc(sensor, 1, rejectWindow, delta, SAMPLING_EXTENDED) != 0)
            qFatal("not started");
        require(virtualunit::setClock(midnight + 48 * hour));
        for (int i = 0; i < 300; ++i) {
            require(virtualunit::advanceClock(100));
            found = qMax(found, int(read(LightSensor_getIlluminance, LightSensorHandle(sensor))));
        }
        return found;
    };
    QVERIFY(brightest(0, 100) > 800);
    // The newest sample alone, unless it is far off: then there is none but it.
    const auto averaged = [&](uint32_t rejectWindow) {
        if (LightSensor_startAverageCalc(sensor, 5, rejectWindow, 400, SAMPLING_EXTENDED) != 0)
            qFatal("not started");
        int sum = 0;
        require(virtualunit::setClock(midnight + 48 * hour));
        for (int i = 0; i < 300; ++i) {
            require(virtualunit::advanceClock(100));
            sum += read(LightSensor_getIlluminance, LightSensorHandle(sensor));
        }
        return sum;
    };
    QVERIFY(averaged(10) * 4 < averaged(0));
}

void VirtualUnitTest::journalLines()
{
    virtualunit::startJournal();
    const auto buzzer = Buzzer_create();
    const auto second = Buzzer_create();
    uint16_t volume = 0;
    DeviceBool sounding = 1;
    Buzzer_getVolume(buzzer, &volume);
    Buzzer_setVolume(second, 30);
    Buzzer_setVolume(second, 52);
    Buzzer_getTrigger(buzzer, &sounding);
    Buzzer_setTrigger(buzzer, true);
    Buzzer_getVolume(nullptr, &volume);
    Buzzer_getVolume(buzzer, nullptr);
    Buzzer_release(second);
    Buzzer_release(buzzer);
    Buzzer_release(buzzer);
    const auto led = FrontLED_create();
    FrontLED_setSignal(led, 0.2, 50);
    double hertz = 0;
    uint8_t duty = 0;
    FrontLED_getSignal(led, &hertz, &duty);
    const auto settings = Settings_create();
    char buffer[20];
    Settings_setString(settings, "a \"key\"", "1\n\xE4");
    Settings_getString(settings, "a \"key\"", buffer, sizeof buffer);
    Settings_setString(settings, nullptr, "x");
    const auto diagnostics = Diagnostics_create();
    put("Diagnostics.pmTemp0", "-12");
    int16_t celsius = 0;
    int32_t kind = 0;
    Diagnostics_getPMTemp(diagnostics, 0, &celsius, &kind);
    put("Smart.initialTime", "1647504000");
    int64_t seconds = 0;
    const auto smart = Smart_create();
    Smart_getInitialTime(smart, &seconds);
    std::thread other([] {
        const Can can;
        Can_setBaudrate(can, 2, 250);
    });
    other.join();
    const std::string errorText = deviceErrorText(5);

    QStringList lines;
    for (const auto &call : virtualunit::takeJournal())
        lines << text(call.text());
    QCOMPARE(lines.join(QLatin1Char('\n')),
        QStringLiteral("T1 Buzzer_create() = #1\n"
                       "T1 Buzzer_create() = #2\n"
                       "T1 Buzzer_getVolume(#1) = 0 [20]\n"
                       "T1 Buzzer_setVolume(#2, 30) = 0\n"
                       "T1 Buzzer_setVolume(#2, 52) = 5\n"
                       "T1 Buzzer_getTrigger(#1) = 0 [false]\n"
                       "T1 Buzzer_setTrigger(#1, true) = 0\n"
                       "T1 Buzzer_getVolume(#0) = 3\n"
                       "T1 Buzzer_getVolume(#1) = 4\n"
                       "T1 Buzzer_release(#2)\n"
                       "T1 Buzzer_release(#1)\n"
                       "T1 Buzzer_release(#0)\n"
                       "T1 FrontLED_create() = #1\n"
                       "T1 FrontLED_setSignal(#1, 0.2, 50) = 0\n"
                       "T1 FrontLED_getSignal(#1) = 0 [0.2, 50]\n"
                       "T1 Settings_create() = #1\n"
                       "T1 Settings_setString(#1, \"a \\\"key\\\"\", \"1\\n\u00e4\") = 0\n"
                       "T1 Settings_getString(#1, \"a \\\"key\\\"\", 20) = 0 [\"1\\n\u00e4\"]\n"
                       "T1 Settings_setString(#1, null, \"x\") = 4\n"
                       "T1 Diagnostics_create() = #1\n"
                       "T1 Diagnostics_getPMTemp(#1, 0) = 0 [-12, 0]\n"
                       "T1 Smart_create() = #1\n"
                       "T1 Smart_getInitialTime(#1) = 0 [1647504000]\n"
                       "T2 Can_create() = #1\n"
                       "T2 Can_setBaudrate(#1, 2, 250) = 0\n"
                       "T2 Can_release(#1)\n"
                       "T1 deviceErrorText(5) = \"%1\"")
            .arg(text(errorText)));
    QVERIFY(virtualunit::takeJournal().empty());
}

void VirtualUnitTest::journalNumbersStartAnew()
{
    const Buzzer early;
    virtualunit::startJournal();
    const Buzzer late;
    uint16_t volume = 0;
    Buzzer_getVolume(early, &volume);
    Buzzer_getVolume(late, &volume);
    auto calls = virtualunit::takeJournal();
    QCOMPARE(calls.size(), std::size_t(3));
    QCOMPARE(text(calls[0].result), QStringLiteral("#1"));
    QCOMPARE(calls[1].handle, 2U);
    QCOMPARE(calls[2].handle, 1U);
    QCOMPARE(calls[2].thread, 1U);
    virtualunit::stopJournal();
    Buzzer_getVolume(late, &volume);
    QVERIFY(virtualunit::takeJournal().empty());
}

void VirtualUnitTest::persists()
{
    const QTemporaryDir folder;
    const auto file = folder.filePath(QStringLiteral("unit.sqlite")).toStdString();
    require(virtualunit::open(file));
    QCOMPARE(value("Buzzer.volume"), QStringLiteral("20")); // a unit of the profile full
    require(virtualunit::setClock(midnight));
    QCOMPARE(Buzzer_setVolume(Buzzer(), 47), DEVICE_OK);
    QCOMPARE(Settings_setString(Settings(), "key", "text"), DEVICE_OK);
    put("Versions.fpga", "9.8.7.6");
    require(virtualunit::addFault("Buzzer_getFrequency", 27, 3, 1));
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

void VirtualUnitTest::sharesChangesBetweenConnections()
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
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(read(Buzzer_getVolume, BuzzerHandle(buzzer)), uint16_t(volume));
    }
}

void VirtualUnitTest::leavesAlone_data()
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

void VirtualUnitTest::leavesAlone()
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

void VirtualUnitTest::recoversWhenTheFileIsBack()
{
    const QTemporaryDir folder;
    const auto path = folder.filePath(QStringLiteral("unit"));
    require(virtualunit::open(path.toStdString()));
    const Buzzer buzzer;
    QCOMPARE(Buzzer_setVolume(buzzer, 5), DEVICE_OK);
    // Taken away and replaced under our hands.
    require(virtualunit::open(folder.filePath(QStringLiteral("other")).toStdString()));
    QCOMPARE(Buzzer_setVolume(buzzer, 6), DEVICE_OK);
    require(virtualunit::open(path.toStdString()));
    QVERIFY(QFile::remove(path));
    QVERIFY(QFile::rename(folder.filePath(QStringLiteral("other")), path));
    QCOMPARE(read(Buzzer_getVolume, BuzzerHandle(buzzer)), uint16_t(6));
}

void VirtualUnitTest::threadsWithHandlesOfTheirOwn()
{
    const QTemporaryDir folder;
    require(virtualunit::open(folder.filePath(QStringLiteral("unit")).toStdString()));
    virtualunit::startJournal();
    std::atomic<int> failures{0};
    const auto work = [&failures](uint8_t channel) {
        for (int i = 0; i < 200; ++i) {
            const Can can;
            const Battery battery;
            uint16_t rate = 0;
            const auto wanted = static_cast<uint16_t>(100 + i);
            DeviceBool available = 0;
            if (Can_setBaudrate(can, channel, wanted) != DEVICE_OK ||
                Can_getBaudrate(can, channel, &rate) != DEVICE_OK || rate != wanted ||
                Battery_isAvailable(battery, &available) != DEVICE_OK || available == 0)
                ++failures;
        }
    };
    std::vector<std::thread> threads;
    for (const uint8_t channel : {1, 2, 3, 4})
        threads.emplace_back(work, channel);
    for (auto &thread : threads)
        thread.join();
    QCOMPARE(failures.load(), 0);
    QCOMPARE(virtualunit::takeJournal().size(), std::size_t(4 * 200 * 7));
    virtualunit::stopJournal();
}

QTEST_GUILESS_MAIN(VirtualUnitTest)
#include "tst_virtualunit.moc"
