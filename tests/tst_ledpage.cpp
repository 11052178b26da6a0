#include "pages/tabLEDDlg.h"
#include "tests/support/PageForm.h"
#include "tests/support/PageTest.h"
#include "tests/support/system.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>

#include <optional>

using namespace support;

namespace {

std::uint8_t dutyCycleBesideFailure = 0;
std::optional<double> deviceFrequency;     // instead of the library's own
std::optional<std::int32_t> standardColor; // instead of the library's own

} // namespace

/** Stands before the library's own operation, to which it hands on. Ours leaves the outputs alone
 *  when it fails; another one may not. */
DeviceCode FrontLED_getSignal(FrontLEDHandle handle, double *hertz, std::uint8_t *dutyCycle)
{
    using Operation = DeviceCode (*)(FrontLEDHandle, double *, std::uint8_t *);
    static const auto library = reinterpret_cast<Operation>(deviceProcedure("FrontLED_getSignal"));
    const auto code = library(handle, hertz, dutyCycle);
    if (code != DEVICE_OK)
        *dutyCycle = dutyCycleBesideFailure;
    if (deviceFrequency)
        *hertz = *deviceFrequency;
    return code;
}

/** Stands before the library's own too. Ours has one number for whatever is no standard colour;
 *  another one may have others. */
DeviceCode FrontLED_getStandardColor(FrontLEDHandle handle, std::int32_t *color)
{
    using Operation = DeviceCode (*)(FrontLEDHandle, std::int32_t *);
    static const auto library =
        reinterpret_cast<Operation>(deviceProcedure("FrontLED_getStandardColor"));
    const auto code = library(handle, color);
    if (standardColor)
        *color = *standardColor;
    return code;
}

namespace {

const QStringList loads = {
    "FrontLED_getSignal() = 0 [2, 50]"_s,
    "FrontLED_getStandardColor() = 0 [2]"_s,
    "FrontLED_getColor() = 0 [0, 0, 15]"_s,
    "FrontLED_getNrOfPulses() = 0 [3]"_s,
    "FrontLED_getIdleTime() = 0 [10]"_s,
    "FrontLED_getEnabledDuringStartup() = 0 [0]"_s,
};

const auto readBlue = "FrontLED_getColor() = 0 [0, 0, 15]"_s;
const auto sendSignal = "FrontLED_setSignal(2, 50) = 0"_s;
const auto grey =
    "* { background-color: qlineargradient(spread:pad, x1:0, y1:0, x2:0, y2:1, stop:0 rgba(173, 173, 173, 255), stop:1 rgba(95, 95, 95, 255)) }"_s;

} // namespace

/** The front LED page on a blue LED that blinks at 2 Hz, 50% on, in trains of 3 pulses. */
class LEDPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        dutyCycleBesideFailure = 0;
        standardColor.reset();
        deviceFrequency.reset();
        setUnit("FrontLED.frequency"_s, "2"_s);
        setUnit("FrontLED.dutyCycle"_s, "50"_s);
        setUnit("FrontLED.idleTime"_s, "10"_s);
        setUnit("FrontLED.nrOfPulses"_s, "3"_s);
        setUnit("FrontLED.red"_s, "0"_s);
        setUnit("FrontLED.green"_s, "0"_s);
        setUnit("FrontLED.blue"_s, "15"_s);
        setUnit("FrontLED.enabledDuringStartup"_s, "0"_s);
    }

    void layout()
    {
        tabLEDDlg page;
        // With the longest texts.
        child<QLabel>(&page, "labelFreq")->setText("Freq\n 12.34 Hz"_s);
        child<QLabel>(&page, "labelDutyC")->setText("Duty cycle\n 100% on"_s);
        const QStringList faults = layoutFaults(&page);
        QCOMPARE(faults, QStringList());
    }

    /** Before the first loading, what moves a widget is no wish of the user's. */
    void constructionWritesNothing()
    {
        tabLEDDlg page;
        calls();
        child<QComboBox>(&page, "comboBoxColor")->setCurrentIndex(3);
        child<QSlider>(&page, "sliderFreq")->setValue(100);
        child<QSpinBox>(&page, "spinBoxPulses")->setValue(5);
        child<QSpinBox>(&page, "spinBoxIdleTime")->setValue(500);
        child<QCheckBox>(&page, "checkEnFrontLED")->setChecked(true);
        QCOMPARE(calls(), QStringList());
        QCOMPARE(button(page), "Off"_s);
    }

    void loadsOnShow()
    {
        tabLEDDlg page;
        calls();
        page.show();
        QCOMPARE(calls(), loads);
        QCOMPARE(child<QSlider>(&page, "sliderFreq")->value(), 20);
        QCOMPARE(child<QSlider>(&page, "sliderDutyC")->value(), 50);
        QCOMPARE(text(page, "labelFreq"), "Freq\n 2 Hz"_s);
        QCOMPARE(text(page, "labelDutyC"), "Duty cycle\n 50% on"_s);
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentText(), "Blue"_s);
        QCOMPARE(text(page, "label_customcolor"), "R:0 G:0 B:15"_s);
        QCOMPARE(swatch(page), "* { background-color: rgb(0,0,255) }"_s);
        QCOMPARE(child<QSpinBox>(&page, "spinBoxPulses")->value(), 3);
        QCOMPARE(child<QSpinBox>(&page, "spinBoxIdleTime")->value(), 1000);
        QVERIFY(!child<QCheckBox>(&page, "checkEnFrontLED")->isChecked());
        QCOMPARE(button(page), "On"_s);

        page.hide();
        QCOMPARE(calls(), QStringList());
        page.show();
        QCOMPARE(calls(), loads);
    }

    void showsFrequency_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<int>("slider");
        QTest::addColumn<QString>("shown");
        QTest::newRow("none") << "0"_s << 2 << "0.2"_s;
        QTest::newRow("below the range") << "0.1"_s << 2 << "0.2"_s;
        QTest::newRow("lowest") << "0.2"_s << 2 << "0.2"_s;
        QTest::newRow("rounded down") << "1.234"_s << 12 << "1.23"_s;
        QTest::newRow("rounded up") << "1.238"_s << 12 << "1.24"_s;
        QTest::newRow("whole") << "7"_s << 70 << "7"_s;
        QTest::newRow("rounded to the highest") << "29.997"_s << 300 << "30"_s;
        QTest::newRow("highest") << "30"_s << 300 << "30"_s;
        QTest::newRow("above the range") << "30.01"_s << 300 << "30"_s;
        QTest::newRow("far above the range") << "1000"_s << 300 << "30"_s;
    }

    void showsFrequency()
    {
        QFETCH(QString, device);
        QFETCH(int, slider);
        QFETCH(QString, shown);
        setUnit("FrontLED.frequency"_s, device);
        tabLEDDlg page;
        page.show();
        QCOMPARE(child<QSlider>(&page, "sliderFreq")->value(), slider);
        QCOMPARE(text(page, "labelFreq"), "Freq\n %1 Hz"_s.arg(shown));
        QCOMPARE(unit("FrontLED.frequency"_s), device);
    }

    void everySliderFrequencyComesBack()
    {
        tabLEDDlg page;
        for (int tenths = 2; tenths <= 300; ++tenths) {
            setUnit("FrontLED.frequency"_s, QString::number(tenths / 10.0));
            page.show();
            QCOMPARE(child<QSlider>(&page, "sliderFreq")->value(), tenths);
            page.hide();
        }
    }

    void dutyCycleOfZeroIsOff()
    {
        setUnit("FrontLED.dutyCycle"_s, "0"_s);
        tabLEDDlg page;
        page.show();
        QCOMPARE(button(page), "Off"_s);
        QCOMPARE(text(page, "labelDutyC"), "Duty cycle\n 0% on"_s);
        page.hide();
        setUnit("FrontLED.dutyCycle"_s, "1"_s);
        page.show();
        QCOMPARE(button(page), "On"_s);
    }

    void showsStandardColor_data()
    {
        QTest::addColumn<QStringList>("color");
        QTest::addColumn<QString>("shown");
        QTest::newRow("red") << QStringList{"15"_s, "0"_s, "0"_s} << "Red"_s;
        QTest::newRow("green") << QStringList{"0"_s, "15"_s, "0"_s} << "Green"_s;
        QTest::newRow("blue") << QStringList{"0"_s, "0"_s, "15"_s} << "Blue"_s;
        QTest::newRow("cyan") << QStringList{"0"_s, "15"_s, "15"_s} << "Cyan"_s;
        QTest::newRow("magenta") << QStringList{"15"_s, "0"_s, "15"_s} << "Magenta"_s;
        QTest::newRow("yellow") << QStringList{"15"_s, "15"_s, "0"_s} << "Yellow"_s;
        QTest::newRow("any other") << QStringList{"7"_s, "0"_s, "1"_s} << "Custom color"_s;
    }

    void showsStandardColor()
    {
        QFETCH(QStringList, color);
        QFETCH(QString, shown);
        setUnit("FrontLED.red"_s, color[0]);
        setUnit("FrontLED.green"_s, color[1]);
        setUnit("FrontLED.blue"_s, color[2]);
        tabLEDDlg page;
        page.show();
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentText(), shown);
    }

    void unknownStandardColorIsCustom_data()
    {
        QTest::addColumn<int>("color");
        for (const int color : {6, 7, -1, 1000})
            QTest::addRow("%d", color) << color;
    }

    void unknownStandardColorIsCustom()
    {
        QFETCH(int, color);
        tabLEDDlg page;
        calls();
        standardColor = color;
        page.show();
        QCOMPARE(calls(), loads);
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentIndex(), 6);
    }

    void showsColor()
    {
        setUnit("FrontLED.red"_s, "14"_s);
        setUnit("FrontLED.green"_s, "1"_s);
        setUnit("FrontLED.blue"_s, "7"_s);
        tabLEDDlg page;
        page.show();
        QCOMPARE(text(page, "label_customcolor"), "R:14 G:1 B:7"_s);
        QCOMPARE(swatch(page), "* { background-color: rgb(238,17,119) }"_s);
    }

    void frequencyStaysInRange_data()
    {
        QTest::addColumn<double>("hertz");
        QTest::addColumn<int>("shown");
        const double infinite = std::numeric_limits<double>::infinity();
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 2;
        QTest::newRow("infinite") << infinite << 300;
        QTest::newRow("huge") << 1e300 << 300;
        QTest::newRow("negative") << -1.0 << 2;
        QTest::newRow("negative and huge") << -1e300 << 2;
        QTest::newRow("negative and infinite") << -infinite << 2;
    }

    void frequencyStaysInRange()
    {
        QFETCH(double, hertz);
        QFETCH(int, shown);
        deviceFrequency = hertz;
        tabLEDDlg page;
        page.show();
        QCOMPARE(child<QSlider>(&page, "sliderFreq")->value(), shown);
        QCOMPARE(text(page, "labelFreq"), shown == 2 ? "Freq\n 0.2 Hz"_s : "Freq\n 30 Hz"_s);
    }

    void colorsBeyondTheDevices()
    {
        setUnit("FrontLED.red"_s, "16"_s);
        setUnit("FrontLED.green"_s, "200"_s);
        setUnit("FrontLED.blue"_s, "255"_s);
        tabLEDDlg page;
        page.show();
        QCOMPARE(text(page, "label_customcolor"), "R:16 G:200 B:255"_s);
        QCOMPARE(swatch(page), "* { background-color: rgb(272,3400,4335) }"_s);
        takeWarnings(); // Qt minds such a colour
    }

    /** The page shows its limits then, but the duty cycle in full beside its slider. */
    void valuesBeyondTheWidgets()
    {
        setUnit("FrontLED.dutyCycle"_s, "200"_s);
        setUnit("FrontLED.nrOfPulses"_s, "255"_s);
        setUnit("FrontLED.idleTime"_s, "255"_s);
        QStringList expected = loads;
        expected[0] = "FrontLED_getSignal() = 0 [2, 200]"_s;
        expected[3] = "FrontLED_getNrOfPulses() = 0 [255]"_s;
        expected[4] = "FrontLED_getIdleTime() = 0 [255]"_s;
        tabLEDDlg page;
        calls();
        page.show();
        QCOMPARE(calls(), expected);
        QCOMPARE(child<QSlider>(&page, "sliderDutyC")->value(), 100);
        QCOMPARE(text(page, "labelDutyC"), "Duty cycle\n 200% on"_s);
        QCOMPARE(child<QSpinBox>(&page, "spinBoxPulses")->value(), 99);
        QCOMPARE(child<QSpinBox>(&page, "spinBoxIdleTime")->value(), 10000);
        QCOMPARE(button(page), "On"_s);
    }

    void startupIsOnForOneOnly_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<bool>("checked");
        QTest::newRow("0") << "0"_s << false;
        QTest::newRow("1") << "1"_s << true;
        QTest::newRow("2") << "2"_s << false;
    }

    void startupIsOnForOneOnly()
    {
        QFETCH(QString, status);
        QFETCH(bool, checked);
        setUnit("FrontLED.enabledDuringStartup"_s, status);
        tabLEDDlg page;
        child<QCheckBox>(&page, "checkEnFrontLED")->setChecked(!checked);
        calls();
        page.show();
        QCOMPARE(child<QCheckBox>(&page, "checkEnFrontLED")->isChecked(), checked);
        QCOMPARE(calls().constLast(), "FrontLED_getEnabledDuringStartup() = 0 [%1]"_s.arg(status));
    }

    void signalFailure_data() { addFailureRows({"FrontLED_getSignal"_s}); }

    void signalFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        page.show();
        page.hide();
        openFailing(page, operation, code, "getSignal"_s);
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        for (const char *slider : {"sliderFreq", "sliderDutyC"})
            QCOMPARE(child<QSlider>(&page, slider)->isVisible(), !absent);
        QCOMPARE(child<QSlider>(&page, "sliderFreq")->value(), 20);
        QCOMPARE(child<QSlider>(&page, "sliderDutyC")->value(), 50);
        QCOMPARE(text(page, "labelFreq"), "Freq\n 2 Hz"_s);
        QCOMPARE(button(page), "Off"_s);
    }

    void dutyCycleBesideFailureCounts()
    {
        tabLEDDlg page;
        page.show();
        page.hide();
        fault("FrontLED_getSignal"_s, 5);
        dutyCycleBesideFailure = 40;
        page.show();
        QCOMPARE(boxes(&page), QStringList{errorBox(5, "getSignal"_s)});
        QCOMPARE(button(page), "On"_s);
        QCOMPARE(child<QSlider>(&page, "sliderDutyC")->value(), 50);
        QCOMPARE(text(page, "labelDutyC"), "Duty cycle\n 50% on"_s);
    }

    void standardColorFailure_data() { addFailureRows({"FrontLED_getStandardColor"_s}); }

    void standardColorFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        page.show();
        page.hide();
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        planBox([&] { return child<QComboBox>(&page, "comboBoxColor")->currentText(); });
        openFailing(page, operation, code, operation);
        QCOMPARE(behindBox(), absent ? QString() : "Blue"_s);
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->isVisible(), !absent);
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentIndex(), absent ? 1 : 6);
    }

    void colorFailure_data() { addFailureRows({"FrontLED_getColor"_s}); }

    void colorFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        page.show();
        page.hide();
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        planBox([&] { return text(page, "label_customcolor"); });
        openFailing(page, operation, code, operation);
        QCOMPARE(behindBox(), absent ? QString() : "R:0 G:0 B:15"_s);
        QCOMPARE(child<QLabel>(&page, "label_customcolor")->isVisible(), !absent);
        QCOMPARE(text(page, "label_customcolor"), absent ? "R:0 G:0 B:15"_s : "Undefined"_s);
        QCOMPARE(swatch(page), grey);
    }

    void repetitionFailure_data()
    {
        addFailureRows({"FrontLED_getNrOfPulses"_s, "FrontLED_getIdleTime"_s});
    }

    void repetitionFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        const QString name = operation.mid(int(qstrlen("FrontLED_")));
        openFailing(page, operation, code, name);
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        const bool isPulses = name == "getNrOfPulses"_s;
        const auto *spin = child<QSpinBox>(&page, isPulses ? "spinBoxPulses" : "spinBoxIdleTime");
        const auto *other = child<QSpinBox>(&page, isPulses ? "spinBoxIdleTime" : "spinBoxPulses");
        QCOMPARE(spin->isVisible(), !absent);
        QCOMPARE(spin->value(), isPulses ? 1 : 100);
        QVERIFY(other->isVisible());
        QCOMPARE(other->value(), isPulses ? 1000 : 3);
    }

    void startupFailure_data() { addFailureRows({"FrontLED_getEnabledDuringStartup"_s}); }

    /** A disabled group stays so for the life of the page, a later success notwithstanding. */
    void startupFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        const bool absent = code == DEVICE_NOT_SUPPORTED;
        const auto *group = child<QGroupBox>(&page, "groupFrontLED");
        planBox([&] { return group->isEnabled() ? "enabled"_s : "disabled"_s; });
        openFailing(page, operation, code, "getEnabledDuringStartup"_s);
        QCOMPARE(behindBox(), absent ? QString() : "enabled"_s);
        QCOMPARE(group->isVisible(), !absent);
        QCOMPARE(group->isEnabled(), absent);
        QCOMPARE(button(page), "On"_s);
        page.hide();
        page.show();
        QCOMPARE(group->isVisible(), !absent);
        QCOMPARE(group->isEnabled(), absent);
    }

    void buttonSwitchesOffAndOn()
    {
        tabLEDDlg page;
        open(page);
        click(&page, "buttonOff");
        QCOMPARE(calls(), QStringList{"FrontLED_setOff() = 0"_s});
        QCOMPARE(button(page), "Off"_s);
        QCOMPARE(unit("FrontLED.dutyCycle"_s), "0"_s);
        click(&page, "buttonOff");
        QCOMPARE(calls(), (QStringList{sendSignal, readBlue}));
        QCOMPARE(button(page), "On"_s);
        QCOMPARE(unit("FrontLED.dutyCycle"_s), "50"_s);
    }

    void offFailure_data() { addFailureRows({"FrontLED_setOff"_s}); }

    void offFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        open(page);
        fault(operation, code);
        planBox([&] { return button(page); });
        click(&page, "buttonOff");
        QCOMPARE(behindBox(), "On out of step"_s); // the caption comes last
        QCOMPARE(calls(), QStringList{"FrontLED_setOff() = %1"_s.arg(code)});
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "setOff"_s)});
        QCOMPARE(button(page), "Off"_s);
    }

    void onFailureIsSilent_data() { addFailureRows({"FrontLED_setSignal"_s}); }

    void onFailureIsSilent()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        open(page);
        click(&page, "buttonOff");
        calls();
        fault(operation, code);
        click(&page, "buttonOff");
        QCOMPARE(calls(), failing({sendSignal, readBlue}, operation, code));
        QCOMPARE(button(page), "On"_s);
    }

    void onColorFailure()
    {
        tabLEDDlg page;
        open(page);
        click(&page, "buttonOff");
        fault("FrontLED_getColor"_s, 5);
        click(&page, "buttonOff");
        QCOMPARE(boxes(&page), QStringList{errorBox(5, "FrontLED_getColor"_s)});
        QCOMPARE(button(page), "On"_s);
        QCOMPARE(swatch(page), grey);
    }

    void choosesStandardColor_data()
    {
        QTest::addColumn<int>("from"); // device code
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("color");
        QTest::newRow("red") << 2 << Qt::Key_Up << "Red"_s << 0 << "15, 0, 0"_s;
        QTest::newRow("blue") << 0 << Qt::Key_Down << "Blue"_s << 2 << "0, 0, 15"_s;
        QTest::newRow("green") << 2 << Qt::Key_Down << "Green"_s << 1 << "0, 15, 0"_s;
        QTest::newRow("magenta") << 1 << Qt::Key_Down << "Magenta"_s << 4 << "15, 0, 15"_s;
        QTest::newRow("cyan") << 4 << Qt::Key_Down << "Cyan"_s << 3 << "0, 15, 15"_s;
        QTest::newRow("yellow") << 3 << Qt::Key_Down << "Yellow"_s << 5 << "15, 15, 0"_s;
    }

    void choosesStandardColor()
    {
        QFETCH(int, from);
        QFETCH(Qt::Key, key);
        QFETCH(QString, chosen);
        QFETCH(int, code);
        QFETCH(QString, color);
        const char *components[][3] = {{"15", "0", "0"}, {"0", "15", "0"}, {"0", "0", "15"},
            {"0", "15", "15"}, {"15", "0", "15"}, {"15", "15", "0"}};
        setUnit("FrontLED.red"_s, QString::fromLatin1(components[from][0]));
        setUnit("FrontLED.green"_s, QString::fromLatin1(components[from][1]));
        setUnit("FrontLED.blue"_s, QString::fromLatin1(components[from][2]));
        setUnit("FrontLED.dutyCycle"_s, "0"_s);
        tabLEDDlg page;
        open(page);
        QTest::keyClick(child<QComboBox>(&page, "comboBoxColor"), key);
        const auto read = "FrontLED_getColor() = 0 [%1]"_s.arg(color);
        QCOMPARE(calls(), (QStringList{"FrontLED_setStandardColor(%1) = 0"_s.arg(code), read,
                              "FrontLED_setSignal(2, 0) = 0"_s, read}));
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentText(), chosen);
        QCOMPARE(button(page), "On"_s);
        const QStringList rgb = color.split(", "_s);
        QCOMPARE(text(page, "label_customcolor"), "R:%1 G:%2 B:%3"_s.arg(rgb[0], rgb[1], rgb[2]));
    }

    void choosesCustomColor()
    {
        setUnit("FrontLED.red"_s, "15"_s);
        setUnit("FrontLED.green"_s, "15"_s);
        setUnit("FrontLED.blue"_s, "0"_s);
        tabLEDDlg page;
        open(page);
        QTest::keyClick(child<QComboBox>(&page, "comboBoxColor"), Qt::Key_Down);
        const auto read = "FrontLED_getColor() = 0 [15, 15, 0]"_s;
        QCOMPARE(
            calls(), (QStringList{"FrontLED_setColor(15, 15, 0) = 0"_s, read, sendSignal, read}));
    }

    void customColorIsBlackAfterFailedRead_data() { addFailureRows({"FrontLED_getColor"_s}); }

    void customColorIsBlackAfterFailedRead()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        page.show();
        page.hide();
        openFailing(page, operation, code, operation);
        QColor first;
        dialogs.plan([&](QDialog *dialog) {
            first = qobject_cast<QColorDialog *>(dialog)->currentColor();
            dialog->reject();
        });
        click(&page, "buttonColorpick");
        QCOMPARE(dialogs.take().size(), 1);
        QCOMPARE(first, QColor(0, 0, 0));
        auto *combo = child<QComboBox>(&page, "comboBoxColor");
        QTest::keyClick(combo, Qt::Key_End);
        QCOMPARE(combo->currentText(), "Custom color"_s);
        QCOMPARE(calls().constFirst(), "FrontLED_setColor(0, 0, 0) = 0"_s);
    }

    void choiceFailure_data()
    {
        addFailureRows({"FrontLED_setStandardColor"_s, "FrontLED_setSignal"_s});
    }

    void choiceFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        open(page);
        click(&page, "buttonOff");
        calls();
        fault(operation, code);
        planBox([&] { return button(page); });
        QTest::keyClick(child<QComboBox>(&page, "comboBoxColor"), Qt::Key_Up);
        QCOMPARE(behindBox(), "Off"_s);
        const auto read = operation == "FrontLED_setStandardColor"_s
                              ? readBlue
                              : "FrontLED_getColor() = 0 [15, 0, 0]"_s;
        QCOMPARE(calls(), failing({"FrontLED_setStandardColor(0) = 0"_s, read, sendSignal, read},
                              operation, code));
        QCOMPARE(boxes(&page), QStringList{errorBox(code, operation)});
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentText(), "Red"_s);
        QVERIFY(child<QComboBox>(&page, "comboBoxColor")->isVisible());
        QCOMPARE(button(page), "On"_s);
    }

    void choosingCustomFailure_data()
    {
        addFailureRows({"FrontLED_setColor"_s, "FrontLED_getColor"_s});
    }

    void choosingCustomFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        open(page);
        fault(operation, code);
        QTest::keyClick(child<QComboBox>(&page, "comboBoxColor"), Qt::Key_End);
        QCOMPARE(
            calls(), failing({"FrontLED_setColor(0, 0, 15) = 0"_s, readBlue, sendSignal, readBlue},
                         operation, code));
        // The colour is read twice, so its failure shows twice.
        QStringList expected{errorBox(code, operation)};
        if (operation == "FrontLED_getColor"_s)
            expected = code == DEVICE_NOT_SUPPORTED ? QStringList() : expected + expected;
        QCOMPARE(boxes(&page), expected);
        QCOMPARE(button(page), "On"_s);
    }

    void slidersSendTheSignal_data()
    {
        QTest::addColumn<QString>("slider");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("frequency");
        QTest::addColumn<QString>("duty");
        QTest::newRow("frequency, one up") << "sliderFreq"_s << Qt::Key_Right << "2.1, 50"_s
                                           << "2.1"_s
                                           << "50"_s;
        QTest::newRow("frequency, lowest") << "sliderFreq"_s << Qt::Key_Home << "0.2, 50"_s
                                           << "0.2"_s
                                           << "50"_s;
        QTest::newRow("frequency, highest") << "sliderFreq"_s << Qt::Key_End << "30, 50"_s
                                            << "30"_s
                                            << "50"_s;
        QTest::newRow("duty cycle, one down") << "sliderDutyC"_s << Qt::Key_Left << "2, 49"_s
                                              << "2"_s
                                              << "49"_s;
        QTest::newRow("duty cycle, none") << "sliderDutyC"_s << Qt::Key_Home << "2, 0"_s
                                          << "2"_s
                                          << "0"_s;
        QTest::newRow("duty cycle, always") << "sliderDutyC"_s << Qt::Key_End << "2, 100"_s
                                            << "2"_s
                                            << "100"_s;
    }

    void slidersSendTheSignal()
    {
        QFETCH(QString, slider);
        QFETCH(Qt::Key, key);
        QFETCH(QString, arguments);
        QFETCH(QString, frequency);
        QFETCH(QString, duty);
        tabLEDDlg page;
        open(page);
        QTest::keyClick(child<QSlider>(&page, qPrintable(slider)), key);
        QCOMPARE(calls(), QStringList{"FrontLED_setSignal(%1) = 0"_s.arg(arguments)});
        QCOMPARE(text(page, "labelFreq"), "Freq\n %1 Hz"_s.arg(frequency));
        QCOMPARE(text(page, "labelDutyC"), "Duty cycle\n %1% on"_s.arg(duty));
        QCOMPARE(button(page), "On"_s);
    }

    void sliderFailure_data() { addFailureRows({"FrontLED_setSignal"_s}); }

    void sliderFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        open(page);
        fault(operation, code);
        planBox([&] { return text(page, "labelDutyC"); });
        QTest::keyClick(child<QSlider>(&page, "sliderDutyC"), Qt::Key_Right);
        QCOMPARE(behindBox(), "Duty cycle\n 50% on"_s);
        QCOMPARE(calls(), QStringList{"FrontLED_setSignal(2, 51) = %1"_s.arg(code)});
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "setSignal"_s)});
        QCOMPARE(text(page, "labelDutyC"), "Duty cycle\n 51% on"_s);
        QVERIFY(child<QSlider>(&page, "sliderDutyC")->isVisible());
        QCOMPARE(button(page), "On"_s);
    }

    void pulses()
    {
        tabLEDDlg page;
        open(page);
        auto *spin = child<QSpinBox>(&page, "spinBoxPulses");
        QTest::keyClick(spin, Qt::Key_Up);
        QCOMPARE(calls(), (QStringList{sendSignal, "FrontLED_setNrOfPulses(4) = 0"_s}));
        spin->selectAll();
        QTest::keyClicks(spin, "99"_s);
        QCOMPARE(calls(), (QStringList{sendSignal, "FrontLED_setNrOfPulses(9) = 0"_s, sendSignal,
                              "FrontLED_setNrOfPulses(99) = 0"_s}));
    }

    void idleTime()
    {
        tabLEDDlg page;
        open(page);
        QTest::keyClick(child<QSpinBox>(&page, "spinBoxIdleTime"), Qt::Key_Up);
        QCOMPARE(calls(), (QStringList{sendSignal, "FrontLED_setIdleTime(11) = 0"_s}));
        QCOMPARE(child<QSpinBox>(&page, "spinBoxIdleTime")->value(), 1100);
    }

    void typedIdleTimeLosesItsRest()
    {
        tabLEDDlg page;
        open(page);
        auto *spin = child<QSpinBox>(&page, "spinBoxIdleTime");
        spin->selectAll();
        QTest::keyClicks(spin, "150"_s);
        QCOMPARE(calls().constLast(), "FrontLED_setIdleTime(1) = 0"_s);
        QCOMPARE(spin->value(), 150);
        page.hide();
        page.show();
        QCOMPARE(spin->value(), 100);
    }

    void setRepetitionFailure_data()
    {
        addFailureRows(
            {"FrontLED_setSignal"_s, "FrontLED_setNrOfPulses"_s, "FrontLED_setIdleTime"_s});
    }

    void setRepetitionFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        setUnit("FrontLED.dutyCycle"_s, "0"_s);
        tabLEDDlg page;
        open(page);
        fault(operation, code);
        planBox([&] { return button(page); });
        QTest::keyClick(child<QSpinBox>(&page, "spinBoxPulses"), Qt::Key_Up);
        QTest::keyClick(child<QSpinBox>(&page, "spinBoxIdleTime"), Qt::Key_Down);
        // The change of the pulses, if it was a good one, has switched it on.
        QCOMPARE(behindBox(), operation == "FrontLED_setIdleTime"_s ? "On"_s : "Off"_s);
        const auto send = "FrontLED_setSignal(2, 0) = 0"_s;
        QCOMPARE(calls(), failing({send, "FrontLED_setNrOfPulses(4) = 0"_s, send,
                                      "FrontLED_setIdleTime(9) = 0"_s},
                              operation, code));
        // The signal goes out with each of the two changes.
        const QString box = errorBox(code, operation.mid(int(qstrlen("FrontLED_"))));
        QCOMPARE(boxes(&page),
            operation == "FrontLED_setSignal"_s ? (QStringList{box, box}) : QStringList{box});
        QVERIFY(child<QSpinBox>(&page, "spinBoxPulses")->isVisible());
        QVERIFY(child<QSpinBox>(&page, "spinBoxIdleTime")->isVisible());
        QCOMPARE(button(page), "On"_s);
    }

    void everyChangeSwitchesOn_data()
    {
        QTest::addColumn<QString>("widget");
        for (const char *widget :
            {"sliderFreq", "sliderDutyC", "spinBoxPulses", "spinBoxIdleTime", "comboBoxColor"})
            QTest::newRow(widget) << QString::fromLatin1(widget);
    }

    void everyChangeSwitchesOn()
    {
        QFETCH(QString, widget);
        setUnit("FrontLED.dutyCycle"_s, "0"_s);
        tabLEDDlg page;
        open(page);
        QCOMPARE(button(page), "Off"_s);
        const bool isCombo = widget == "comboBoxColor"_s;
        QTest::keyClick(
            child<QWidget>(&page, qPrintable(widget)), isCombo ? Qt::Key_Down : Qt::Key_Up);
        QCOMPARE(button(page), "On"_s);
        calls();
        click(&page, "buttonOff");
        QCOMPARE(calls(), QStringList{"FrontLED_setOff() = 0"_s});
    }

    void startupSwitch()
    {
        setUnit("FrontLED.dutyCycle"_s, "0"_s);
        tabLEDDlg page;
        open(page);
        click(&page, "checkEnFrontLED");
        QCOMPARE(calls(), QStringList{"FrontLED_setEnabledDuringStartup(1) = 0"_s});
        click(&page, "checkEnFrontLED");
        QCOMPARE(calls(), QStringList{"FrontLED_setEnabledDuringStartup(0) = 0"_s});
        QCOMPARE(button(page), "Off"_s);
    }

    void setStartupFailure_data() { addFailureRows({"FrontLED_setEnabledDuringStartup"_s}); }

    void setStartupFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabLEDDlg page;
        open(page);
        fault(operation, code, 1);
        const auto *group = child<QGroupBox>(&page, "groupFrontLED");
        planBox([&] { return group->isEnabled() ? "enabled"_s : "disabled"_s; });
        click(&page, "checkEnFrontLED");
        QCOMPARE(behindBox(), "enabled"_s);
        QCOMPARE(calls(), QStringList{"FrontLED_setEnabledDuringStartup(1) = %1"_s.arg(code)});
        QCOMPARE(boxes(&page), QStringList{errorBox(code, "setEnabledDuringStartup"_s)});
        QVERIFY(!group->isEnabled());
        page.hide();
        page.show();
        QVERIFY(!group->isEnabled());
        QVERIFY(group->isVisible());
    }

    void pickerStartsFromTheColor()
    {
        setUnit("FrontLED.red"_s, "14"_s);
        tabLEDDlg page;
        open(page);
        QColor first;
        QColorDialog::ColorDialogOptions options = QColorDialog::NoButtons;
        dialogs.plan([&](QDialog *dialog) {
            const auto *picker = qobject_cast<QColorDialog *>(dialog);
            first = picker->currentColor();
            options = picker->options();
            dialog->reject();
        });
        click(&page, "buttonColorpick");
        QCOMPARE(first, QColor(238, 0, 255));
        // The test bench asks for Qt's own dialog, the page for nothing.
        QVERIFY(!(options & (QColorDialog::ShowAlphaChannel | QColorDialog::NoButtons)));
        const QList<Dialog> shown = dialogs.take();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].className, "QColorDialog"_s);
        QCOMPARE(shown[0].title, "Select Color"_s);
        QCOMPARE(shown[0].parent, &page);
        QVERIFY(shown[0].modal);
    }

    void pickerCancelled()
    {
        tabLEDDlg page;
        open(page);
        dialogs.plan([](QDialog *dialog) { dialog->reject(); });
        click(&page, "buttonColorpick");
        QCOMPARE(dialogs.take().size(), 1);
        QCOMPARE(calls(), QStringList());
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentText(), "Blue"_s);
    }

    /** Selecting "Custom color" for the picked colour sends it a second time. */
    void pickedColor()
    {
        tabLEDDlg page;
        open(page);
        planColor(QColor(254, 255, 16));
        click(&page, "buttonColorpick");
        QCOMPARE(dialogs.take().size(), 1);
        const auto send = "FrontLED_setColor(14, 15, 0) = 0"_s;
        const auto read = "FrontLED_getColor() = 0 [14, 15, 0]"_s;
        QCOMPARE(calls(), (QStringList{send, send, read, sendSignal, read, read}));
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentText(), "Custom color"_s);
        QCOMPARE(swatch(page), "* { background-color: rgb(238,255,0) }"_s);
        QCOMPARE(text(page, "label_customcolor"), "R:14 G:15 B:0"_s);
    }

    void pickedColorWithCustomSelected()
    {
        setUnit("FrontLED.red"_s, "3"_s);
        setUnit("FrontLED.dutyCycle"_s, "0"_s);
        tabLEDDlg page;
        open(page);
        planColor(QColor(17, 34, 51));
        click(&page, "buttonColorpick");
        QCOMPARE(dialogs.take().size(), 1);
        QCOMPARE(calls(), (QStringList{"FrontLED_setColor(1, 2, 3) = 0"_s,
                              "FrontLED_getColor() = 0 [1, 2, 3]"_s}));
        QCOMPARE(button(page), "Off"_s);
    }

    void pickedColorBeforeLoading()
    {
        tabLEDDlg page;
        calls();
        planColor(QColor(255, 0, 0));
        child<QPushButton>(&page, "buttonColorpick")->click();
        QCOMPARE(dialogs.take().size(), 1);
        QCOMPARE(calls(), (QStringList{"FrontLED_setColor(15, 0, 0) = 0"_s,
                              "FrontLED_getColor() = 0 [15, 0, 0]"_s}));
        QCOMPARE(child<QComboBox>(&page, "comboBoxColor")->currentIndex(), 6);
    }

    void pickedColorFailure_data() { addFailureRows({"FrontLED_setColor"_s}); }

    void pickedColorFailure()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        setUnit("FrontLED.red"_s, "3"_s);
        tabLEDDlg page;
        open(page);
        fault(operation, code);
        planColor(QColor(255, 0, 0));
        click(&page, "buttonColorpick");
        QCOMPARE(calls(), (QStringList{"FrontLED_setColor(15, 0, 0) = %1"_s.arg(code),
                              "FrontLED_getColor() = 0 [3, 0, 15]"_s}));
        const QStringList texts = dialogs.takeTexts();
        QCOMPARE(texts.size(), 2);
        QCOMPARE(texts[1], errorBox(code, "FrontLED_setColor"_s));
    }

private:
    /** A page that was shown, with its loading forgotten. */
    void open(tabLEDDlg &page)
    {
        page.show();
        calls();
    }
    /** Shows the page while the operation fails, which is told unless it is not supported. */
    void openFailing(tabLEDDlg &page, const QString &operation, int code, const QString &name)
    {
        calls();
        fault(operation, code, 1);
        page.show();
        QCOMPARE(calls(), failing(loads, operation, code));
        QCOMPARE(boxes(&page),
            code == DEVICE_NOT_SUPPORTED ? QStringList() : QStringList{errorBox(code, name)});
    }
    QString text(const tabLEDDlg &page, const char *label)
    {
        return child<QLabel>(&page, label)->text();
    }
    QString swatch(const tabLEDDlg &page)
    {
        return child<QPushButton>(&page, "buttonColorpick")->styleSheet();
    }
    /** "On" or "Off", and what is odd about the button. */
    QString button(const tabLEDDlg &page)
    {
        const auto *button = child<QPushButton>(&page, "buttonOff");
        const bool inStep = button->isChecked() == (button->text() == "On"_s);
        return button->text() + (inStep ? QString() : " out of step"_s);
    }
    void planColor(const QColor &color)
    {
        dialogs.plan([color](QDialog *dialog) {
            qobject_cast<QColorDialog *>(dialog)->setCurrentColor(color);
            dialog->accept();
        });
    }
};

VORN_TEST_MAIN(LEDPageTest)
#include "tst_ledpage.moc"
