#include "tests/support/unit.h"

#include <array>
#include <functional>
#include <limits>

using namespace support;

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
                number = double(out);
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
            number = double(out);
            return code;
        }};
}

Setting touchSetting(int32_t number)
{
    return {[number](double value) {
                return Touch_setAdvancedSetting(Touch(), number, uint16_t(value));
            },
        [number](double &value) {
            uint16_t out = 0;
            const auto code = Touch_getAdvancedSetting(Touch(), number, &out);
            value = out;
            return code;
        }};
}

} // namespace

/** What operations write, operations read, within the ranges of the device. */
class UnitSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { freshUnit(); }

    void keepsWhatIsSet_data()
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
        for (uint8_t channel = 1; channel <= 4; ++channel) {
            row(qPrintable("Can_Baudrate %1"_s.arg(channel)),
                indexed<Can_setBaudrate, Can_getBaudrate>(channel, Can_setBaudrate),
                {10, 125, 1000, 83}, {0, 9, 1001, 65535});
            row(qPrintable("Can_FrameType %1"_s.arg(channel)),
                indexed<Can_setFrameType, Can_getFrameType>(channel, Can_setFrameType), {0, 1, 2},
                {-1, 3});
        }
        const double highest[] = {
            65535, 4095, 4095, 16383, 16383, 16383, 16383, 32767, 65535, 32767, 65535};
        for (int32_t number = 0; number < TOUCH_RESTORE_DEFAULTS; ++number) {
            const double high = highest[number];
            row(qPrintable("Touch setting %1"_s.arg(number)), touchSetting(number), {0, 1, high},
                high < 65535 ? QList<double>{high + 1, 65535} : QList<double>{});
        }
    }

    void keepsWhatIsSet()
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

    void setsSeveralValuesOrNone()
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
        QCOMPARE(
            QList<double>({double(red), double(green), double(blue)}), QList<double>({1, 2, 3}));
    }

    void storedAndPresentPowerAreApart()
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
            QCOMPARE(read(Telematics_getWLANStartUpPowerStatus, TelematicsHandle(telematics)),
                1 - status);
        }
    }

    void startTakesStoredSettings()
    {
        put("Config.videoStartupPower", "9");
        put("Power.videoPowerStatus", "2");
        put("Telematics.btStartUpPowerStatus", "0");
        put("Telematics.btPowerStatus", "1");
        QCOMPARE(Touch_setMode(Touch(), TOUCH_MOUSE_NEXT_BOOT), DEVICE_OK);
        QCOMPARE(value("Touch.nextBootMode"), "2"_s);
        const int cycles = value("Diagnostics.powerCycles").toInt();

        put("Unit.running", "false");
        QCOMPARE(value("Power.videoPowerStatus"), "2"_s);
        put("Unit.running", "true");
        QCOMPARE(value("Power.videoPowerStatus"), "9"_s);
        QCOMPARE(value("Telematics.btPowerStatus"), "0"_s);
        QCOMPARE(value("Touch.mode"), "2"_s);
        QCOMPARE(value("Diagnostics.powerCycles").toInt(), cycles + 1);
        // Running already: no start.
        put("Unit.running", "true");
        QCOMPARE(value("Diagnostics.powerCycles").toInt(), cycles + 1);
    }

    void touchDefaults()
    {
        const Touch touch;
        QCOMPARE(Touch_setAdvancedSetting(touch, TOUCH_LOW_LEVEL, 77), DEVICE_OK);
        QCOMPARE(Touch_setAdvancedSetting(touch, TOUCH_RESTORE_DEFAULTS, 0), outOfRange);
        QCOMPARE(Touch_setAdvancedSetting(touch, TOUCH_RESTORE_DEFAULTS, 2), outOfRange);
        QCOMPARE(value("Touch.lowLevel"), "77"_s);
        QCOMPARE(Touch_setAdvancedSetting(touch, TOUCH_RESTORE_DEFAULTS, 1), DEVICE_OK);
        QCOMPARE(value("Touch.lowLevel"), "600"_s);
        QCOMPARE(value("Touch.calibrationMeasurements"), "8"_s);
        uint16_t number = 9;
        for (const int32_t wrong : {-1, 11, 12, INT32_MAX, INT32_MIN}) {
            QCOMPARE(Touch_getAdvancedSetting(touch, wrong, &number), noSuchChannel);
            QCOMPARE(number, uint16_t(9));
        }
        for (const int32_t wrong : {-1, 12, INT32_MAX, INT32_MIN})
            QCOMPARE(Touch_setAdvancedSetting(touch, wrong, 1), noSuchChannel);
    }

    void ledColours()
    {
        const FrontLED led;
        QCOMPARE(FrontLED_setStandardColor(led, LED_CYAN), DEVICE_OK);
        QCOMPARE(
            value("FrontLED.red") + value("FrontLED.green") + value("FrontLED.blue"), "01515"_s);
        QCOMPARE(FrontLED_setColor(led, 15, 0, 15), DEVICE_OK);
        QCOMPARE(read(FrontLED_getStandardColor, FrontLEDHandle(led)), int32_t(LED_MAGENTA));
        QCOMPARE(FrontLED_setColor(led, 15, 1, 15), DEVICE_OK);
        QCOMPARE(read(FrontLED_getStandardColor, FrontLEDHandle(led)), 6);

        QCOMPARE(FrontLED_setSignal(led, 4, 60), DEVICE_OK);
        QCOMPARE(FrontLED_setOff(led), DEVICE_OK);
        QCOMPARE(value("FrontLED.dutyCycle"), "0"_s);
        QCOMPARE(value("FrontLED.frequency"), "4"_s);
    }

    void digitalLines()
    {
        const DigIO lines;
        put("DigIO.digIO", "165");
        QCOMPARE(read(DigIO_getDigIO, DigIOHandle(lines)), uint8_t(165));
        // What was read may be written back; lines that nothing drives can't be changed.
        QCOMPARE(DigIO_setDigIO(lines, 165), DEVICE_OK);
        QCOMPARE(DigIO_setDigIO(lines, 10), outOfRange);
        QCOMPARE(DigIO_setDigIO(lines, 0xA0 | 10), DEVICE_OK);
        QCOMPARE(value("DigIO.digIO"), "170"_s);
        put("Feature.digitalOutputs", "false");
        QCOMPARE(DigIO_setDigIO(lines, 170), DeviceCode(DEVICE_NOT_SUPPORTED));
        QCOMPARE(read(DigIO_getDigIO, DigIOHandle(lines)), uint8_t(170));
    }

    void cutsTexts()
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

    void keepsStrings()
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
        QCOMPARE(
            Settings_setString(settings, "a key", QByteArray(1024, 'x').constData()), outOfRange);
        QCOMPARE(value("Settings.a key"), QString());
        put("Settings.VornsettingsGpsPort", "ttyS\u00e9");
        QCOMPARE(Settings_getString(settings, "VornsettingsGpsPort", buffer, 255), DEVICE_OK);
        QCOMPARE(QByteArray(buffer), QByteArray("ttyS\xE9"));
    }

    void channelsAndSensorsEnd()
    {
        const Can can;
        uint16_t rate = 0;
        int32_t type = 0;
        for (const uint8_t channel : std::array<uint8_t, 4>{0, 5, 9, 255}) {
            QCOMPARE(Can_getBaudrate(can, channel, &rate), noSuchChannel);
            QCOMPARE(Can_setBaudrate(can, channel, 125), noSuchChannel);
            QCOMPARE(Can_getFrameType(can, channel, &type), noSuchChannel);
            QCOMPARE(Can_setFrameType(can, channel, 1), noSuchChannel);
        }
        put("Hardware.canCount", "9");
        QCOMPARE(Can_setBaudrate(can, 7, 500), DEVICE_OK);
        QCOMPARE(value("Can.baudrate7"), "500"_s);

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

    void lightSensorYieldsToBacklight()
    {
        const LightSensor sensor;
        const Backlight backlight;
        QCOMPARE(LightSensor_startAverageCalc(sensor, 5, 5, 100, 2), DEVICE_OK);
        QCOMPARE(value("LightSensor.averaging"), "true"_s);
        QCOMPARE(LightSensor_startAverageCalc(sensor, 0, 5, 100, 2), outOfRange);
        QCOMPARE(LightSensor_startAverageCalc(sensor, 5, 5, 100, 3), outOfRange);
        QCOMPARE(value("LightSensor.averageWindowSize"), "5"_s);

        QCOMPARE(Backlight_startAutomaticBL(backlight), DEVICE_OK);
        QCOMPARE(read(Backlight_getAutomaticBLStatus, BacklightHandle(backlight)), uint8_t(1));
        QCOMPARE(value("LightSensor.averaging"), "false"_s);
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
};

QTEST_GUILESS_MAIN(UnitSettingsTest)
#include "tst_unitsettings.moc"
