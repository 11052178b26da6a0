#include "pages/tabLightSensorDlg.h"
#include "tests/support/PageTest.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

using namespace support;

namespace {

const auto notRunning = "Light Sensor is not running"_s;
const auto stop = "LightSensor_stopAverageCalc() = 0"_s;
const auto start = "LightSensor_startAverageCalc(1, 0, 100, 0) = 0"_s;
const auto luxRead = "LightSensor_getIlluminance() = 0 [230]"_s;
const auto rangeRead = "LightSensor_getOperatingRange() = 0 [0]"_s;

} // namespace

/** The Light sensor page at 230 lux, with the automatic backlight off. */
class LightSensorPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        setUnit("Backlight.automaticBLStatus"_s, "0"_s);
        setUnit("LightSensor.illuminance"_s, "230"_s);
        setUnit("LightSensor.operatingRange"_s, "0"_s);
    }

    void startsOnShow()
    {
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        calls();
        page.show();
        QCOMPARE(calls(), (QStringList{start, stop, start}));
        QCOMPARE(button(page), "On"_s);
        QVERIFY(timer.isActive());
        QCOMPARE(reading(page), notRunning);
    }

    void parametersOfTheStart()
    {
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        page.show();
        page.hide();
        QTest::keyClick(child<QSpinBox>(&page, "spinBoxAverageWndSize"), Qt::Key_Up);
        QTest::keyClick(child<QSpinBox>(&page, "spinBoxRejectWndSize"), Qt::Key_PageUp);
        QTest::keyClick(child<QSpinBox>(&page, "spinBoxRejectDelta"), Qt::Key_Down);
        calls();
        page.show();
        const auto changed = "LightSensor_startAverageCalc(2, 10, 99, 0) = 0"_s;
        QCOMPARE(calls(), (QStringList{changed, stop, changed}));
    }

    void samplingMode_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("mode");
        QTest::newRow("standard") << 0 << 0;
        QTest::newRow("extended") << 1 << 1;
        QTest::newRow("auto") << 2 << 2;
        QTest::newRow("none") << -1 << 0;
    }

    void samplingMode()
    {
        QFETCH(int, index);
        QFETCH(int, mode);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        auto *combo = child<QComboBox>(&page, "comboBoxSamplingsMode");
        for (int i = 0; i < index; ++i)
            QTest::keyClick(combo, Qt::Key_Down);
        if (index < 0)
            combo->setCurrentIndex(index);
        QCOMPARE(combo->currentIndex(), index);
        calls();
        page.show();
        QCOMPARE(
            calls().constFirst(), "LightSensor_startAverageCalc(1, 0, 100, %1) = 0"_s.arg(mode));
    }

    void refusedWhileAutomaticBacklightRuns()
    {
        setUnit("Backlight.automaticBLStatus"_s, "1"_s);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        const auto refused =
            "Off disabled: Cannot be started when automatic backlight is running"_s;
        for (int opening = 0; opening < 2; ++opening) {
            calls();
            planBox([&] { return button(page); });
            page.show();
            QCOMPARE(calls(), QStringList{"LightSensor_startAverageCalc(1, 0, 100, 0) = 20"_s});
            QCOMPARE(boxes(&page),
                QStringList{errorBox(20,
                    "startAverageCalc.\r\nThe light sensor cannot be started when automatic backlight is running.\r\nError"_s)});
            QCOMPARE(behindBox(), refused);
            QCOMPARE(button(page), refused);
            QVERIFY(!timer.isActive());
            calls();
            click(&page, "pushButtonOn");
            QCOMPARE(calls(), QStringList());
            page.hide();
        }
    }

    void refusalEndsWithTheNextShow()
    {
        setUnit("Backlight.automaticBLStatus"_s, "1"_s);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        page.show();
        QCOMPARE(boxes(&page).size(), 1);
        page.hide();
        setUnit("Backlight.automaticBLStatus"_s, "0"_s);
        page.show();
        QCOMPARE(button(page), "On"_s);
        QVERIFY(timer.isActive());
    }

    void trialFailure_data() { addFailureRows({"LightSensor_startAverageCalc"_s}); }

    void trialFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        calls();
        fault(operation, code);
        planBox([&] { return button(page); });
        page.show();
        QCOMPARE(calls(), failing({start}, operation, code));
        const bool refused = code == DEVICE_AUTOMATIC_BACKLIGHT_RUNS;
        QCOMPARE(button(page),
            refused ? "Off disabled: Cannot be started when automatic backlight is running"_s
                    : "Off disabled: Error: startAverageCalc"_s);
        QCOMPARE(behindBox(), button(page));
        const QStringList texts = boxes(&page);
        QCOMPARE(texts.size(), 1);
        if (!refused)
            QCOMPARE(texts.first(), errorBox(code, "startAverageCalc"_s));
        QVERIFY(!timer.isActive());
        QCOMPARE(reading(page), notRunning);
        QVERIFY(child<QGroupBox>(&page, "groupBoxLightsensor")->isVisible());
    }

    void trialStopIsIgnored_data() { addFailureRows({"LightSensor_stopAverageCalc"_s}); }

    void trialStopIsIgnored()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        calls();
        fault(operation, code, 1);
        page.show();
        QCOMPARE(calls(), failing({start, stop, start}, operation, code));
        QCOMPARE(button(page), "On"_s);
        QVERIFY(timer.isActive());
    }

    void secondStartFailure_data() { addFailureRows({"LightSensor_startAverageCalc"_s}); }

    void secondStartFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        calls();
        fault(operation, code, 0, 1);
        page.show();
        QCOMPARE(calls(), QStringList({start, stop}) + failing({start}, operation, code));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "startAverageCalc"_s)});
        QCOMPARE(button(page), "Off"_s);
        QVERIFY(!timer.isActive());
    }

    void stopsOnHide()
    {
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        calls();
        page.hide();
        QCOMPARE(calls(), QStringList{stop});
        QVERIFY(!timer.isActive());
        QCOMPARE(button(page), "Off"_s);
        QCOMPARE(reading(page), notRunning);
    }

    void stopsOnHideThoughRefused()
    {
        fault("LightSensor_startAverageCalc"_s, 5);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        page.show();
        QCOMPARE(boxes(&page).size(), 1);
        calls();
        page.hide();
        QCOMPARE(calls(), QStringList{stop});
        QCOMPARE(button(page), "Off disabled: Error: startAverageCalc"_s);
    }

    void hideFailure_data() { addFailureRows({"LightSensor_stopAverageCalc"_s}); }

    void hideFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        page.show();
        fault(operation, code);
        calls();
        page.hide();
        QCOMPARE(calls(), failing({stop}, operation, code));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "stopAverageCalc"_s)});
        QVERIFY(!timer.isActive());
        QCOMPARE(button(page), "Off"_s);
    }

    void buttonStopsAndStarts()
    {
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        calls();
        click(&page, "pushButtonOn");
        QCOMPARE(calls(), QStringList{stop});
        QCOMPARE(button(page), "Off"_s);
        QCOMPARE(reading(page), notRunning);
        QVERIFY(!timer.isActive());
        click(&page, "pushButtonOn");
        QCOMPARE(calls(), QStringList{start});
        QCOMPARE(button(page), "On"_s);
        QVERIFY(timer.fire());
        QCOMPARE(reading(page), "230 Lux, Range standard"_s);
    }

    void buttonStartFailure_data() { addFailureRows({"LightSensor_startAverageCalc"_s}); }

    void buttonStartFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        page.show();
        click(&page, "pushButtonOn");
        fault(operation, code);
        calls();
        click(&page, "pushButtonOn");
        QCOMPARE(calls(), failing({start}, operation, code));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "startAverageCalc"_s)});
        QCOMPARE(button(page), "Off"_s);
        QVERIFY(!timer.isActive());
    }

    void buttonStopFailure_data() { addFailureRows({"LightSensor_stopAverageCalc"_s}); }

    void buttonStopFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        fault(operation, code, 1);
        calls();
        planBox([&] {
            return button(page) + ", "_s + reading(page) +
                   (timer.isActive() ? ", active"_s : ", stands"_s);
        });
        click(&page, "pushButtonOn");
        // The press alone has changed the button's state.
        QCOMPARE(behindBox(), "On out of step, 230 Lux, Range standard, active"_s);
        QCOMPARE(calls(), failing({stop}, operation, code));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "stopAverageCalc"_s)});
        QCOMPARE(button(page), "Off"_s);
        QCOMPARE(reading(page), notRunning);
        QVERIFY(!timer.isActive());
    }

    void settingsWaitForTheNextStart()
    {
        tabLightSensorDlg page;
        const HeldTimer timer(&page);
        page.show();
        calls();
        QTest::keyClick(child<QSpinBox>(&page, "spinBoxRejectDelta"), Qt::Key_Up);
        QTest::keyClick(child<QComboBox>(&page, "comboBoxSamplingsMode"), Qt::Key_Down);
        QCOMPARE(calls(), QStringList());
        click(&page, "pushButtonOn");
        click(&page, "pushButtonOn");
        QCOMPARE(calls(), (QStringList{stop, "LightSensor_startAverageCalc(1, 0, 101, 1) = 0"_s}));
    }

    void timerRunsWhileMeasuring()
    {
        tabLightSensorDlg page;
        const auto *timer = page.findChild<QTimer *>();
        QVERIFY(timer);
        QVERIFY(!timer->isActive());
        page.show();
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 500);
        QVERIFY(!timer->isSingleShot());
        QTRY_COMPARE(reading(page), "230 Lux, Range standard"_s);
        page.hide();
        QVERIFY(!timer->isActive());
    }

    void showsLuxAndRange_data()
    {
        QTest::addColumn<QString>("lux");
        QTest::addColumn<QString>("range");
        QTest::addColumn<QString>("shown");
        QTest::newRow("dark") << "0"_s
                              << "0"_s
                              << "0 Lux, Range standard"_s;
        QTest::newRow("standard") << "230"_s
                                  << "0"_s
                                  << "230 Lux, Range standard"_s;
        QTest::newRow("extended") << "4000"_s
                                  << "1"_s
                                  << "4000 Lux, Range extended"_s;
        QTest::newRow("unknown") << "65535"_s
                                 << "2"_s
                                 << "65535 Lux, Unknown range"_s;
        QTest::newRow("unknown too") << "1"_s
                                     << "255"_s
                                     << "1 Lux, Unknown range"_s;
    }

    void showsLuxAndRange()
    {
        QFETCH(QString, lux);
        QFETCH(QString, range);
        QFETCH(QString, shown);
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        // With its measurement taken away, the unit tells the range that was set, whatever it is.
        setUnit("LightSensor.averaging"_s, "false"_s);
        setUnit("LightSensor.illuminance"_s, lux);
        setUnit("LightSensor.operatingRange"_s, range);
        calls();
        QVERIFY(timer.fire());
        QCOMPARE(calls(), (QStringList{"LightSensor_getIlluminance() = 0 [%1]"_s.arg(lux),
                              "LightSensor_getOperatingRange() = 0 [%1]"_s.arg(range)}));
        QCOMPARE(reading(page), shown);
    }

    void unchangedTextIsNotWritten()
    {
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        child<QLineEdit>(&page, "editIlumination")->setText("untouched"_s);
        QVERIFY(timer.fire());
        QCOMPARE(reading(page), "untouched"_s);
        setUnit("LightSensor.illuminance"_s, "231"_s);
        QVERIFY(timer.fire());
        QCOMPARE(reading(page), "231 Lux, Range standard"_s);
    }

    void illuminanceFailure_data() { addFailureRows({"LightSensor_getIlluminance"_s}); }

    /** The range is asked for in the same round all the same, and stands alone in the field then.
     */
    void illuminanceFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        fault(operation, code);
        calls();
        QVERIFY(timer.fire());
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        QCOMPARE(calls(), failing(absent ? QStringList{luxRead, rangeRead}
                                         : QStringList{luxRead, stop, rangeRead},
                              operation, code));
        QCOMPARE(
            boxes(&page), absent ? QStringList() : QStringList{errorBox(code, "getIlluminance"_s)});
        QCOMPARE(child<QGroupBox>(&page, "groupBoxLightsensor")->isVisible(), !absent);
        QCOMPARE(reading(page), "Range standard"_s);
        QCOMPARE(button(page), absent ? "On"_s : "Off"_s);
        QCOMPARE(timer.isActive(), absent);
    }

    void rangeFailure_data() { addFailureRows({"LightSensor_getOperatingRange"_s}); }

    void rangeFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        fault(operation, code);
        calls();
        QVERIFY(timer.fire());
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        QCOMPARE(calls(), failing(absent ? QStringList{luxRead, rangeRead}
                                         : QStringList{luxRead, rangeRead, stop},
                              operation, code));
        QCOMPARE(boxes(&page),
            absent ? QStringList() : QStringList{errorBox(code, "getOperatingRange"_s)});
        QCOMPARE(reading(page), absent ? "230 Lux, "_s : notRunning);
        QCOMPARE(button(page), absent ? "On"_s : "Off"_s);
        QCOMPARE(timer.isActive(), absent);
        QVERIFY(child<QGroupBox>(&page, "groupBoxLightsensor")->isVisible());
    }

    void bothFail()
    {
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        fault("LightSensor_getIlluminance"_s, 5);
        fault("LightSensor_getOperatingRange"_s, 18);
        calls();
        QVERIFY(timer.fire());
        QCOMPARE(calls(), (QStringList{"LightSensor_getIlluminance() = 5"_s, stop,
                              "LightSensor_getOperatingRange() = 18"_s, stop}));
        QCOMPARE(boxes(&page),
            (QStringList{errorBox(5, "getIlluminance"_s), errorBox(18, "getOperatingRange"_s)}));
        QCOMPARE(reading(page), notRunning);
        QCOMPARE(button(page), "Off"_s);
    }

    /** An empty text is the one that a new page wrote last, so only a page that stopped once writes
     * it. */
    void bothAbsent()
    {
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        fault("LightSensor_getIlluminance"_s, 2);
        fault("LightSensor_getOperatingRange"_s, 2);
        QVERIFY(timer.fire());
        QCOMPARE(reading(page), notRunning);
        page.hide();
        page.show();
        QVERIFY(timer.fire());
        QCOMPARE(reading(page), QString());
        QVERIFY(timer.isActive());
    }

    void startsAgainAfterFailure()
    {
        tabLightSensorDlg page;
        HeldTimer timer(&page);
        page.show();
        fault("LightSensor_getIlluminance"_s, 5, 1);
        QVERIFY(timer.fire());
        QCOMPARE(boxes(&page).size(), 1);
        calls();
        click(&page, "pushButtonOn");
        QCOMPARE(calls(), QStringList{start});
        QVERIFY(timer.fire());
        QCOMPARE(reading(page), "230 Lux, Range standard"_s);
        QCOMPARE(button(page), "On"_s);
    }

private:
    QString reading(const tabLightSensorDlg &page)
    {
        return child<QLineEdit>(&page, "editIlumination")->text();
    }
    /** "On", "Off" or what is odd about the button. */
    QString button(const tabLightSensorDlg &page)
    {
        const auto *button = child<QPushButton>(&page, "pushButtonOn");
        QString state = button->text();
        if (button->isChecked() != (state == "On"_s))
            state += " out of step"_s;
        if (!button->isEnabled())
            state += " disabled"_s;
        if (!button->toolTip().isEmpty())
            state += ": "_s + button->toolTip();
        return state;
    }
};

VORN_TEST_MAIN(LightSensorPageTest)
#include "tst_lightsensorpage.moc"
