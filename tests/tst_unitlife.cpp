#include "tests/support/unit.h"

#include <QSet>
#include <QTemporaryDir>

using namespace support;

/** How the unit lives along its clock. */
class UnitLifeTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { freshUnit(); }

    void clockStandsAndMoves()
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

    void countersAdvance()
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

    void temperaturesDriftAndPin()
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

    void extremesAreKept()
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
        // The hottest that can be reported can be stored as well, even with the noise on top.
        const QTemporaryDir folder;
        require(virtualunit::open(folder.filePath("unit"_s).toStdString()));
        put("Diagnostics.pcbTemp", "32767");
        put("Diagnostics.pcbTemp", "live 32767");
        put("Diagnostics.pcbTemp", "live");
        put("Unit.ambientTemp", "0");
        require(virtualunit::open(folder.filePath("unit"_s).toStdString()));
        QCOMPARE(value("Diagnostics.maxTemp"), "32767"_s);
        require(virtualunit::loadProfile("full"));
        put("Battery.maxTemp", "60");
        QCOMPARE(value("Battery.maxTemp"), "60"_s);

        // Whatever a sensor reports has been seen.
        put("Unit.ambientTemp", "110");
        for (int i = 0; i < 200; ++i) {
            require(virtualunit::advanceClock(minute));
            QVERIFY(value("Diagnostics.maxTemp").toInt() >= value("Diagnostics.pcbTemp").toInt());
            QVERIFY(value("Diagnostics.maxTemp").toInt() >= value("Diagnostics.ssTemp").toInt());
        }
    }

    void railsAreNoisyAndSwitched()
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

    void batteryChargesAndDischarges()
    {
        const Battery battery;
        const auto level = [&battery] {
            return read(Battery_getVoltageLevel, BatteryHandle(battery));
        };
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
        put("Battery.temperature", "0");
        QVERIFY(status() != int32_t(CHARGING_TOO_COLD));
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

    void lightFollowsTheDay()
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

    void intensityFollowsTheLight()
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

    void softTransitionsAreSlower()
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

    void filterRejectsReflections()
    {
        const LightSensor sensor;
        // At night nothing but reflections comes near 900 lux.
        const auto brightest = [&](uint32_t rejectWindow, uint32_t delta) {
            int found = 0;
            if (LightSensor_startAverageCalc(sensor, 1, rejectWindow, delta, SAMPLING_EXTENDED) !=
                0)
                qFatal("not started");
            require(virtualunit::setClock(midnight + 48 * hour));
            for (int i = 0; i < 300; ++i) {
                require(virtualunit::advanceClock(100));
                found =
                    qMax(found, int(read(LightSensor_getIlluminance, LightSensorHandle(sensor))));
            }
            return found;
        };
        QVERIFY(brightest(0, 100) > 800);
        // The sum of 300 readings shows how much of the reflections comes through.
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
};

QTEST_GUILESS_MAIN(UnitLifeTest)
#include "tst_unitlife.moc"
