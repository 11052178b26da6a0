#include "pages/tabBacklightDlg.h"
#include "tests/support/PageTest.h"

#include <QCheckBox>
#include <QLabel>
#include <QSlider>

using namespace support;

namespace {

const QStringList loads = {
    "Backlight_getAutomaticBLParams() = 0 [true, 0.35]"_s,
    "Backlight_getAutomaticBLFilter() = 0 [6, 8, 70, 1]"_s,
    "Backlight_getAutomaticBLStatus() = 0 [0]"_s,
    "Backlight_getLedDimming() = 0 [1]"_s,
};

const QStringList enabling = {
    "Backlight_setAutomaticBLParams(true) = 0"_s,
    "Backlight_setAutomaticBLFilter(4, 8, 80, 2) = 0"_s,
    "Backlight_startAutomaticBL() = 0"_s,
};

} // namespace

/** The Display page on a unit whose automatic control is off and whose values are all set. */
class DisplayPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        setUnit("Backlight.intensity"_s, "180"_s);
        setUnit("Backlight.softTransitions"_s, "true"_s);
        setUnit("Backlight.kValue"_s, "0.35"_s);
        setUnit("Backlight.averageWindowSize"_s, "6"_s);
        setUnit("Backlight.rejectWindowSize"_s, "8"_s);
        setUnit("Backlight.rejectDeltaLux"_s, "70"_s);
        setUnit("Backlight.samplingMode"_s, "1"_s);
        setUnit("Backlight.automaticBLStatus"_s, "0"_s);
        setUnit("Backlight.ledDimming"_s, "1"_s);
    }

    void loadsOnShow()
    {
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        calls();
        page.show();
        QCOMPARE(calls(), loads);
        QVERIFY(child<QCheckBox>(&page, "checkBoxABLSoftTransitions")->isChecked());
        QVERIFY(!child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        QVERIFY(child<QCheckBox>(&page, "checkBoxLedDim")->isChecked());
        QCOMPARE(child<QSlider>(&page, "sliderSensitivity")->value(), 8);
        QCOMPARE(text(page, "labelKLevel"), "8"_s);
        QCOMPARE(openSettings(page), 2);
    }

    void loadsRunningControl()
    {
        setUnit("Backlight.automaticBLStatus"_s, "7"_s);
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        QVERIFY(child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        QCOMPARE(openSettings(page), 0);

        setUnit("Backlight.automaticBLStatus"_s, "0"_s);
        page.hide();
        page.show();
        QVERIFY(!child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        QCOMPARE(openSettings(page), 2);
    }

    void loadFailure_data()
    {
        addFailureRows({"Backlight_getAutomaticBLParams"_s, "Backlight_getAutomaticBLFilter"_s,
            "Backlight_getAutomaticBLStatus"_s, "Backlight_getLedDimming"_s});
    }

    /** Each block stands alone: its own widgets stay, the others are loaded all the same. */
    void loadFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        child<QCheckBox>(&page, "checkBoxABLEnable")->setChecked(true);
        calls();
        fault(operation, code);
        planBox([&] { return timer.isActive() ? "goes on"_s : QString(); });
        page.show();
        QCOMPARE(calls(), failing(loads, operation, code));
        const QString name = operation.mid(int(qstrlen("Backlight_")));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, name)});
        QCOMPARE(child<QCheckBox>(&page, "checkBoxABLSoftTransitions")->isChecked(),
            name != "getAutomaticBLParams"_s);
        QCOMPARE(child<QSlider>(&page, "sliderSensitivity")->value(),
            name != "getAutomaticBLFilter"_s ? 8 : 2);
        QCOMPARE(child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked(),
            name == "getAutomaticBLStatus"_s);
        QCOMPARE(child<QCheckBox>(&page, "checkBoxLedDim")->isChecked(), name != "getLedDimming"_s);
        QVERIFY(child<QSlider>(&page, "sliderSensitivity")->isVisible());
        QCOMPARE(behindBox(), "goes on"_s);
        QVERIFY(timer.isActive());
    }

    void failedStatusLeavesTheSettings_data()
    {
        addFailureRows({"Backlight_getAutomaticBLStatus"_s});
    }

    void failedStatusLeavesTheSettings()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        for (const bool running : {false, true}) {
            clearFaults();
            setUnit("Backlight.automaticBLStatus"_s, running ? "7"_s : "0"_s);
            tabBacklightDlg page;
            const HeldTimer timer(&page);
            page.show();
            page.hide();
            fault(operation, code);
            page.show();
            QCOMPARE(boxes(&page), QStringList{errorBox(code, "getAutomaticBLStatus"_s)});
            QCOMPARE(openSettings(page), running ? 0 : 2);
            QCOMPARE(child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked(), running);
        }
    }

    void ledDimmingIsOnForOneOnly_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("checked");
        QTest::newRow("0") << "0"_s << false;
        QTest::newRow("1") << "1"_s << true;
        QTest::newRow("2") << "2"_s << false;
        QTest::newRow("257") << "257"_s << false;
        QTest::newRow("-1") << "-1"_s << false;
    }

    void ledDimmingIsOnForOneOnly()
    {
        QFETCH(QString, status);
        QFETCH(bool, checked);
        setUnit("Backlight.ledDimming"_s, status);
        tabBacklightDlg page;
        child<QCheckBox>(&page, "checkBoxLedDim")->setChecked(!checked);
        page.show();
        QCOMPARE(child<QCheckBox>(&page, "checkBoxLedDim")->isChecked(), checked);
    }

    void sensitivityStaysInRange_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<int>("shown");
        QTest::newRow("0") << "0"_s << 2;
        QTest::newRow("2") << "2"_s << 2;
        QTest::newRow("17") << "17"_s << 17;
        QTest::newRow("200") << "200"_s << 17;
        QTest::newRow("greatest of 31 bits") << "2147483647"_s << 17;
        QTest::newRow("negative in 32 bits") << "2147483648"_s << 2;
        QTest::newRow("greatest") << "4294967295"_s << 2;
    }

    void sensitivityStaysInRange()
    {
        QFETCH(QString, window);
        QFETCH(int, shown);
        setUnit("Backlight.rejectWindowSize"_s, window);
        tabBacklightDlg page;
        page.show();
        QCOMPARE(child<QSlider>(&page, "sliderSensitivity")->value(), shown);
    }

    void timerRunsWhileShown()
    {
        tabBacklightDlg page;
        const auto *timer = page.findChild<QTimer *>();
        QVERIFY(timer);
        QVERIFY(!timer->isActive());
        page.show();
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 500);
        QVERIFY(!timer->isSingleShot());
        QTRY_COMPARE(text(page, "labelBLLevel"), "180"_s);
        page.hide();
        QVERIFY(!timer->isActive());
        page.show();
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 500);
    }

    void firstIntensityOfZeroTouchesNothing()
    {
        setUnit("Backlight.intensity"_s, "0"_s);
        tabBacklightDlg page;
        HeldTimer timer(&page);
        child<QLabel>(&page, "labelBLLevel")->setText("untouched"_s);
        page.show();
        calls();
        QVERIFY(timer.fire());
        QCOMPARE(calls(), (QStringList{"Backlight_getIntensity() = 0 [0]"_s,
                              "Backlight_getHealthStatus() = 0 [true]"_s}));
        QCOMPARE(text(page, "labelBLLevel"), "untouched"_s);
        QCOMPARE(child<QSlider>(&page, "sliderBacklightLevel")->value(), 0);
    }

    /** What came from the device goes straight back to it, once for each change. */
    void sliderFollowsTheDevice()
    {
        setUnit("Backlight.automaticBLStatus"_s, "1"_s);
        tabBacklightDlg page;
        HeldTimer timer(&page);
        page.show();
        calls();
        for (const QString &intensity : {"180"_s, "255"_s, "1"_s, "0"_s}) {
            setUnit("Backlight.intensity"_s, intensity);
            QVERIFY(timer.fire());
            QCOMPARE(calls(), (QStringList{"Backlight_getIntensity() = 0 [%1]"_s.arg(intensity),
                                  "Backlight_setIntensity(%1) = 0"_s.arg(intensity),
                                  "Backlight_getHealthStatus() = 0 [true]"_s}));
            QCOMPARE(text(page, "labelBLLevel"), intensity);
            QCOMPARE(child<QSlider>(&page, "sliderBacklightLevel")->value(), intensity.toInt());

            QVERIFY(timer.fire());
            QCOMPARE(calls(), (QStringList{"Backlight_getIntensity() = 0 [%1]"_s.arg(intensity),
                                  "Backlight_getHealthStatus() = 0 [true]"_s}));
        }
    }

    void lastIntensitySurvivesHiding()
    {
        tabBacklightDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        type(page, "sliderBacklightLevel", Qt::Key_Home);
        QCOMPARE(unit("Backlight.intensity"_s), "0"_s);
        setUnit("Backlight.intensity"_s, "180"_s);
        page.hide();
        page.show();
        calls();
        QVERIFY(timer.fire());
        QCOMPARE(calls(), (QStringList{"Backlight_getIntensity() = 0 [180]"_s,
                              "Backlight_getHealthStatus() = 0 [true]"_s}));
        QCOMPARE(child<QSlider>(&page, "sliderBacklightLevel")->value(), 0);
        QCOMPARE(text(page, "labelBLLevel"), "0"_s);
    }

    /** A slider that stands there already sends no signal that could do it. */
    void refreshItselfSetsTheLabel()
    {
        tabBacklightDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        type(page, "sliderBacklightLevel", Qt::Key_Right);
        QCOMPARE(unit("Backlight.intensity"_s), "181"_s);
        fault("Backlight_getIntensity"_s, 5, 1);
        QVERIFY(timer.fire());
        QCOMPARE(boxes(&page).size(), 1);
        QCOMPARE(text(page, "labelBLLevel"), "0"_s);
        page.hide();
        page.show();
        calls();
        QVERIFY(timer.fire());
        QCOMPARE(calls(), (QStringList{"Backlight_getIntensity() = 0 [181]"_s,
                              "Backlight_getHealthStatus() = 0 [true]"_s}));
        QCOMPARE(text(page, "labelBLLevel"), "181"_s);
    }

    void echoFailure_data() { addFailureRows({"Backlight_setIntensity"_s}); }

    /** The value counts as known all the same: the next round writes nothing. */
    void echoFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        const auto read = "Backlight_getIntensity() = 0 [180]"_s;
        const auto health = "Backlight_getHealthStatus() = 0 [true]"_s;
        tabBacklightDlg page;
        HeldTimer timer(&page);
        page.show();
        fault(operation, code);
        calls();
        QVERIFY(timer.fire());
        QCOMPARE(
            calls(), failing({read, "Backlight_setIntensity(180) = 0"_s, health}, operation, code));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "setIntensity"_s)});
        QCOMPARE(child<QSlider>(&page, "sliderBacklightLevel")->value(), 180);
        QCOMPARE(text(page, "labelBLLevel"), "180"_s);
        child<QLabel>(&page, "labelBLLevel")->setText("untouched"_s);
        QVERIFY(timer.fire());
        QCOMPARE(calls(), (QStringList{read, health}));
        QCOMPARE(text(page, "labelBLLevel"), "untouched"_s);
        QVERIFY(timer.isActive());
    }

    void intensityFailure_data() { addFailureRows({"Backlight_getIntensity"_s}); }

    void intensityFailure()
    {
        QFETCH(int, code);
        tabBacklightDlg page;
        HeldTimer timer(&page);
        page.show();
        QVERIFY(timer.fire());
        child<QLabel>(&page, "labelKLevel")->clear();
        calls();
        fault("Backlight_getIntensity"_s, code);
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        planBox([&] {
            return text(page, "labelBLLevel") + (timer.isActive() ? ", goes on"_s : QString());
        });
        QVERIFY(timer.fire());
        QCOMPARE(behindBox(), absent ? QString() : "0, goes on"_s);
        QCOMPARE(calls(), (QStringList{"Backlight_getIntensity() = %1"_s.arg(code),
                              "Backlight_getHealthStatus() = 0 [true]"_s}));
        QCOMPARE(text(page, "labelKLevel"), "8"_s);
        QCOMPARE(text(page, "label_hwstatus1"), "status: OK"_s);
        QCOMPARE(
            boxes(&page), absent ? QStringList() : QStringList{errorBox(code, "getIntensity"_s)});
        QCOMPARE(child<QSlider>(&page, "sliderBacklightLevel")->isVisible(), !absent);
        QCOMPARE(text(page, "labelBLLevel"), absent ? "180"_s : "0"_s);
        QCOMPARE(timer.isActive(), absent);
        page.hide();
        page.show();
        // The same once more, as often as the page shows,
        QVERIFY(timer.fire());
        QCOMPARE(
            boxes(&page), absent ? QStringList() : QStringList{errorBox(code, "getIntensity"_s)});
        QCOMPARE(timer.isActive(), absent);
        page.hide();
        page.show();
        QVERIFY(timer.isActive());
        // and then the intensity that was read last is still the known one.
        clearFaults();
        calls();
        QVERIFY(timer.fire());
        QCOMPARE(calls(), (QStringList{"Backlight_getIntensity() = 0 [180]"_s,
                              "Backlight_getHealthStatus() = 0 [true]"_s}));
        QCOMPARE(text(page, "labelBLLevel"), absent ? "180"_s : "0"_s);
    }

    void health_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("healthy");
        QTest::addColumn<QString>("text");
        QTest::newRow("2") << 2 << "true"_s
                           << "status: ERROR"_s; // as before
        for (const int code : faultCodes)
            QTest::addRow("%d", code) << code << "true"_s
                                      << "Error: %1"_s.arg(code);
        QTest::newRow("sound") << 0 << "true"_s
                               << "status: OK"_s;
        QTest::newRow("broken") << 0 << "false"_s
                                << "status: ERROR"_s;
    }

    void health()
    {
        QFETCH(int, code);
        QFETCH(QString, healthy);
        QFETCH(QString, text);
        const bool wasHealthy = healthy == "false"_s;
        setUnit("Backlight.healthStatus"_s, wasHealthy ? "true"_s : "false"_s);
        tabBacklightDlg page;
        HeldTimer timer(&page);
        page.show();
        const auto *label = child<QLabel>(&page, "label_hwstatus1");
        QVERIFY(timer.fire());
        QCOMPARE(label->text(), wasHealthy ? "status: OK"_s : "status: ERROR"_s);
        setUnit("Backlight.healthStatus"_s, healthy);
        fault("Backlight_getHealthStatus"_s, code);
        QVERIFY(timer.fire());
        QCOMPARE(label->text(), text);
        QVERIFY(timer.isActive());
    }

    void unknownHealthKeepsTheCaption()
    {
        tabBacklightDlg page;
        HeldTimer timer(&page);
        page.show();
        fault("Backlight_getHealthStatus"_s, 2);
        QVERIFY(timer.fire());
        QCOMPARE(text(page, "label_hwstatus1"), "status:   "_s);
        QCOMPARE(boxes(&page), QStringList());
    }

    void sliderSetsTheIntensity_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("intensity");
        QTest::newRow("one up") << Qt::Key_Right << "1"_s;
        QTest::newRow("a page up") << Qt::Key_PageUp << "10"_s;
        QTest::newRow("full") << Qt::Key_End << "255"_s;
    }

    void sliderSetsTheIntensity()
    {
        QFETCH(Qt::Key, key);
        QFETCH(QString, intensity);
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        calls();
        type(page, "sliderBacklightLevel", key);
        QCOMPARE(calls(), QStringList{"Backlight_setIntensity(%1) = 0"_s.arg(intensity)});
        QCOMPARE(text(page, "labelBLLevel"), intensity);
        QCOMPARE(unit("Backlight.intensity"_s), intensity);
    }

    void writeFailure_data()
    {
        addFailureRows({"Backlight_setIntensity"_s, "Backlight_setLedDimming"_s});
    }

    /** The page shows what was wished for, and goes on. */
    void writeFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        fault(operation, code);
        calls();
        planBox([&] { return text(page, "labelBLLevel"); });
        type(page, "sliderBacklightLevel", Qt::Key_Right);
        click(&page, "checkBoxLedDim");
        QCOMPARE(behindBox(), "1"_s);
        QCOMPARE(calls(),
            failing({"Backlight_setIntensity(1) = 0"_s, "Backlight_setLedDimming(0) = 0"_s},
                operation, code));
        QCOMPARE(
            boxes(&page), QStringList{errorBox(code, operation.mid(int(qstrlen("Backlight_"))))});
        QCOMPARE(text(page, "labelBLLevel"), "1"_s);
        QVERIFY(child<QSlider>(&page, "sliderBacklightLevel")->isVisible());
        QVERIFY(!child<QCheckBox>(&page, "checkBoxLedDim")->isChecked());
        QVERIFY(child<QCheckBox>(&page, "checkBoxLedDim")->isEnabled());
        QVERIFY(timer.isActive());
    }

    void sensitivityChangesTheLabelOnly()
    {
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        calls();
        type(page, "sliderSensitivity", Qt::Key_Right);
        QCOMPARE(text(page, "labelKLevel"), "9"_s);
        type(page, "sliderSensitivity", Qt::Key_End);
        QCOMPARE(text(page, "labelKLevel"), "17"_s);
        type(page, "sliderSensitivity", Qt::Key_Home);
        QCOMPARE(text(page, "labelKLevel"), "2"_s);
        QCOMPARE(calls(), QStringList());
    }

    void enableSendsFilterAndStarts_data()
    {
        QTest::addColumn<bool>("soft");
        QTest::addColumn<QString>("params");
        QTest::newRow("soft") << true << "true"_s;
        QTest::newRow("hard") << false << "false"_s;
    }

    void enableSendsFilterAndStarts()
    {
        QFETCH(bool, soft);
        QFETCH(QString, params);
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        if (!soft)
            click(&page, "checkBoxABLSoftTransitions");
        type(page, "sliderSensitivity", Qt::Key_End);
        calls();
        click(&page, "checkBoxABLEnable");
        QCOMPARE(calls(), (QStringList{"Backlight_setAutomaticBLParams(%1) = 0"_s.arg(params),
                              "Backlight_setAutomaticBLFilter(4, 17, 80, 2) = 0"_s,
                              "Backlight_startAutomaticBL() = 0"_s}));
        QVERIFY(child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        QCOMPARE(openSettings(page), 0);
    }

    void enableFailure_data()
    {
        addFailureRows({"Backlight_setAutomaticBLParams"_s, "Backlight_setAutomaticBLFilter"_s,
            "Backlight_startAutomaticBL"_s});
    }

    void enableFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        fault(operation, code);
        calls();
        planBox([&] { return QString::number(openSettings(page)); });
        click(&page, "checkBoxABLEnable");
        QCOMPARE(calls(), failing(enabling, operation, code));
        QCOMPARE(
            boxes(&page), QStringList{errorBox(code, operation.mid(int(qstrlen("Backlight_"))))});
        QVERIFY(child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        QCOMPARE(behindBox(), "2"_s);
        QCOMPARE(openSettings(page), 0);
    }

    void disableStops()
    {
        setUnit("Backlight.automaticBLStatus"_s, "1"_s);
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        calls();
        click(&page, "checkBoxABLEnable");
        QCOMPARE(calls(), QStringList{"Backlight_stopAutomaticBL() = 0"_s});
        QVERIFY(!child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        QCOMPARE(openSettings(page), 2);
        QCOMPARE(unit("Backlight.automaticBLStatus"_s), "0"_s);
    }

    void disableFailure_data() { addFailureRows({"Backlight_stopAutomaticBL"_s}); }

    void disableFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        setUnit("Backlight.automaticBLStatus"_s, "1"_s);
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        fault(operation, code);
        calls();
        planBox([&] { return QString::number(openSettings(page)); });
        click(&page, "checkBoxABLEnable");
        QCOMPARE(calls(), QStringList{"Backlight_stopAutomaticBL() = %1"_s.arg(code)});
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "stopAutomaticBL"_s)});
        QVERIFY(!child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        QCOMPARE(behindBox(), "0"_s);
        QCOMPARE(openSettings(page), 2);
    }

    void failedStartShowsUntilShownAgain()
    {
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        fault("Backlight_startAutomaticBL"_s, 5);
        click(&page, "checkBoxABLEnable");
        QCOMPARE(boxes(&page), QStringList{errorBox(5, "startAutomaticBL"_s)});
        QVERIFY(child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        page.hide();
        page.show();
        QVERIFY(!child<QCheckBox>(&page, "checkBoxABLEnable")->isChecked());
        QCOMPARE(openSettings(page), 2);
    }

    void ledDimming()
    {
        tabBacklightDlg page;
        const HeldTimer timer(&page);
        page.show();
        calls();
        click(&page, "checkBoxLedDim");
        QCOMPARE(calls(), QStringList{"Backlight_setLedDimming(0) = 0"_s});
        click(&page, "checkBoxLedDim");
        QCOMPARE(calls(), QStringList{"Backlight_setLedDimming(1) = 0"_s});
    }

private:
    void type(const tabBacklightDlg &page, const char *slider, Qt::Key key)
    {
        QTest::keyClick(child<QSlider>(&page, slider), key);
    }
    /** How many of the automatic control's two settings the user can change. */
    int openSettings(const tabBacklightDlg &page)
    {
        return int(child<QWidget>(&page, "checkBoxABLSoftTransitions")->isEnabled()) +
               int(child<QWidget>(&page, "sliderSensitivity")->isEnabled());
    }
    QString text(const tabBacklightDlg &page, const char *label)
    {
        return child<QLabel>(&page, label)->text();
    }
};

VORN_TEST_MAIN(DisplayPageTest)
#include "tst_displaypage.moc"
