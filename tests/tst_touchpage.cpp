#include "pages/tabTouchDlg.h"
#include "tests/support/PageForm.h"
#include "tests/support/PageTest.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/system.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QTextEdit>

#include <iterator>
#include <memory>

using namespace support;

namespace {

/** The page with its widgets at hand. */
struct Page : tabTouchDlg {
    QTabWidget *tabs = child<QTabWidget>(this, "tabWidget");
    QGroupBox *profile = child<QGroupBox>(this, "groupSettings");
    QCheckBox *mouse = child<QCheckBox>(this, "checkBoxMouse");
    QCheckBox *touch = child<QCheckBox>(this, "checkBox_Touch");
    QPushButton *apply = child<QPushButton>(this, "pushButtonApply");
    QPushButton *applyNextBoot = child<QPushButton>(this, "pushButtonApplyNextBoot");
    QPushButton *calibrate = child<QPushButton>(this, "pushButtonCalib");
    QComboBox *points = child<QComboBox>(this, "comboBoxCalib");
    QComboBox *parameter = child<QComboBox>(this, "comboBoxParameter");
    QLineEdit *value = child<QLineEdit>(this, "editTimeData");
    QLabel *measure = child<QLabel>(this, "label_DataType");
    QPushButton *applySetting = child<QPushButton>(this, "pushButtonApplySetting");
    QTextEdit *dump = child<QTextEdit>(this, "textEdit");
    QPushButton *defaults = child<QPushButton>(this, "pushButtonDefaults");
    QLabel *defaultsLabel = child<QLabel>(this, "label_defaults");

    QString dumpText() const { return dump->toPlainText(); }
    void showAdvanced()
    {
        show();
        tabs->setCurrentIndex(1);
    }
};

void click(QWidget *widget)
{
    QTest::mouseClick(widget, Qt::LeftButton);
}

struct Parameter {
    const char *listName;
    const char *property;
    const char *dumpName;
    const char *measure;
    int highest;
    const char *message; // of a value above the highest
};

constexpr Parameter parameters[] = {
    {"RightClickTime", "rightClickTime", "RIGHT_CLICK_TIME: ", "Milliseconds (0..65535)", 65535,
        nullptr},
    {"LowLevel", "lowLevel", "LOW_LEVEL: ", "A/D value (0..4095)", 4095,
        "Invalid data format. The TS_LOW_LEVEL parameter range is 0-4095."},
    {"UnTouchLevel", "untouchLevel", "UNTOUCHLEVEL: ", "A/D value (0..4095)", 4095,
        "Invalid data format. The TS_UNTOUCHLEVEL parameter range is 0-4095."},
    {"DebounceTime", "debounceTime", "DEBOUNCE_TIME: ", "Milliseconds (0..16383)", 16383,
        "Invalid data format. The TS_DEBOUNCE_TIME parameter range is 0-16383."},
    {"DebounceTimeoutTime", "debounceTimeoutTime",
        "DEBOUNCE_TIMEOUT_TIME: ", "Milliseconds (0..16383)", 16383,
        "Invalid data format. The TS_DEBOUNCE_TIMEOUT_TIME parameter range is 0-16383."},
    {"DoubleClickMaxClickTime", "doubleClickMaxClickTime",
        "DOUBLECLICK_MAX_CLICK_TIME: ", "Milliseconds (0..16383)", 16383,
        "Invalid data format. The TS_DOUBLECLICK_MAX_CLICK_TIME parameter range is 0-16383."},
    {"DoubleClickTime", "doubleClickTime", "DOUBLE_CLICK_TIME: ", "Milliseconds (0..16383)", 16383,
        "Invalid data format. The TS_DOUBLE_CLICK_TIME parameter range is 0-16383."},
    {"MaxRightClickDistance", "maxRightClickDistance",
        "MAX_RIGHTCLICK_DISTANCE: ", "Pixels (0..32767)", 32767,
        "Invalid data format. The TS_MAX_RIGHT_CLICK_DISTANCE parameter range is 0-32767."},
    {"UseDejitter", "useDejitter", "USE_DEJITTER: ", "Boolean (0..1)", 65535, nullptr},
    {"CalibrationWidth", "calibrationWidth", "CALIBTATION_WIDTH: ", "Pixels (0..32767)", 32767,
        "Invalid data format. The TS_CALIBRATION_WIDTH parameter range is 0-32767."},
    {"CalibrationMeasurements", "calibrationMeasurements",
        "CALIBRATION_MEASUREMENTS: ", "(0..65535)", 65535, nullptr},
};
constexpr int parameterCount = int(std::size(parameters));

/** Lines without those on what the tab widget has of its own: the buttons of its bar, and the tabs,
 *  of which the one that isn't shown has no place yet. */
QStringList withoutTabBar(const QStringList &lines)
{
    static const QRegularExpression own("^(ScrollLeftButton|ScrollRightButton|tab|tab_2): "_s);
    QStringList others;
    for (const QString &line : lines)
        if (!own.match(line).hasMatch())
            others << line;
    return others;
}

} // namespace

class TouchPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        pauses = std::make_unique<SkippedPauses>();
        for (int number = 0; number < parameterCount; ++number)
            setUnit(
                "Touch."_s + latin1(parameters[number].property), QString::number(value(number)));
        calls();
    }

    void cleanup()
    {
        qDeleteAll(qApp->findChildren<QProcess *>(QString(), Qt::FindDirectChildrenOnly));
        removeCalibrator();
        pauses.reset();
        PageTest::cleanup();
    }

    /** The form without its page, whose slots Qt then misses. */
    void unitTextBeforeAnyParameter()
    {
        QDialog dialog;
        Ui::tabTouch form;
        form.setupUi(&dialog);
        takeWarnings();
        QTextDocument text;
        text.setHtml(form.label_DataType->text());
        QCOMPARE(text.toPlainText(), "ms"_s);
        QVERIFY(form.label_DataType->text().contains("font-size:8pt"_s));
    }

    void layout()
    {
        Page page;
        page.show();
        // All of a box can be pressed.
        QTest::mouseClick(page.mouse, Qt::LeftButton, Qt::NoModifier,
            page.mouse->rect().bottomRight() - QPoint(10, 5));
        QVERIFY(page.mouse->isChecked());
        page.showAdvanced();
        for (int number = 0; number < parameterCount; ++number) {
            page.parameter->setCurrentIndex(number);
            QCOMPARE(withoutTabBar(layoutFaults(&page)), QStringList());
        }
    }

    void readsParametersWhenMade()
    {
        {
            const Page page;
            QCOMPARE(
                calls(), QStringList("Touch_create()"_s) + parameterCall(0, 500) + dumpCalls());
            QStringList names;
            for (const Parameter &parameter : parameters)
                names << latin1(parameter.listName);
            QStringList items;
            for (int index = 0; index < page.parameter->count(); ++index)
                items << page.parameter->itemText(index);
            QCOMPARE(items, names);
            QCOMPARE(page.points->count(), 2);
            QCOMPARE(page.points->itemText(0), "5-point calibration"_s);
            QCOMPARE(page.points->itemText(1), "13-point calibration"_s);
            QCOMPARE(page.value->text(), "500"_s);
            QString dump;
            for (int number = 0; number < parameterCount; ++number)
                dump += latin1(parameters[number].dumpName) + QString::number(value(number)) +
                        QLatin1Char('\n');
            QCOMPARE(page.dumpText(), dump);
        }
        QCOMPARE(calls(), QStringList("Touch_release()"_s));
    }

    void readsModeAndParametersWhenShown()
    {
        Page page;
        setUnit("Touch.mode"_s, "2"_s);
        setUnit("Touch.lowLevel"_s, "77"_s);
        calls();
        page.show();
        QStringList expected = dumpCalls();
        expected[1] = "Touch_getAdvancedSetting(1) = 0 [77]"_s;
        expected.prepend("Touch_getMode() = 0 [2]"_s);
        QCOMPARE(calls(), expected);
        QVERIFY(page.dumpText().contains("\nLOW_LEVEL: 77\n"_s));
    }

    void mode_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("mouse");
        QTest::newRow("mouse at next boot") << "0"_s << true;
        QTest::newRow("touch at next boot") << "1"_s << false;
        QTest::newRow("mouse") << "2"_s << true;
        QTest::newRow("touch") << "3"_s << false;
        QTest::newRow("unknown") << "4"_s << false;
        QTest::newRow("far off") << "258"_s << false;
        QTest::newRow("negative") << "-1"_s << false;
    }

    void mode()
    {
        QFETCH(QString, mode);
        QFETCH(bool, mouse);
        Page page;
        QVERIFY(!page.mouse->isChecked());
        QVERIFY(!page.touch->isChecked());
        (mouse ? page.touch : page.mouse)->setChecked(true);
        setUnit("Touch.mode"_s, mode);
        page.show();
        QCOMPARE(page.mouse->isChecked(), mouse);
        QCOMPARE(page.touch->isChecked(), !mouse);
    }

    void profilesExcludeEachOther()
    {
        setUnit("Touch.mode"_s, "3"_s);
        Page page;
        page.show();
        calls();
        click(page.mouse);
        QVERIFY(page.mouse->isChecked());
        QVERIFY(!page.touch->isChecked());
        click(page.mouse);
        QVERIFY(page.mouse->isChecked());
        click(page.touch);
        QVERIFY(page.touch->isChecked());
        QVERIFY(!page.mouse->isChecked());
        QCOMPARE(calls(), QStringList());
    }

    void modeFails_data() { addFailureRows({"Touch_getMode"_s}); }

    void modeFails()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        if (code == 2)
            return modeNotSupported();
        fault(operation, code, 1);
        Page page;
        calls();
        page.show();
        QCOMPARE(calls(), QStringList("Touch_getMode() = %1"_s.arg(code)) + dumpCalls());
        QVERIFY(page.profile->isVisible());
        QVERIFY(!page.profile->isEnabled());
        QVERIFY(!page.apply->isEnabled());
        QVERIFY(!page.applyNextBoot->isEnabled());
        QCOMPARE(page.profile->toolTip(), "Requires KV Front controller >= v0.5.0.0"_s);
        page.hide();
        page.show();
        QVERIFY(!page.profile->isEnabled());
    }

    void failedModeLeavesTheProfile_data() { addFailureRows({"Touch_getMode"_s}); }

    void failedModeLeavesTheProfile()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        Page page;
        fault(operation, code, 1);
        page.show();
        QVERIFY(!page.mouse->isChecked());
        QVERIFY(!page.touch->isChecked());
        for (const bool mouse : {false, true}) {
            page.hide();
            setUnit("Touch.mode"_s, mouse ? "2"_s : "3"_s);
            page.show();
            page.hide();
            fault(operation, code, 1);
            page.show();
            QCOMPARE(page.mouse->isChecked(), mouse);
            QCOMPARE(page.touch->isChecked(), !mouse);
        }
    }

    void writesMode_data()
    {
        QTest::addColumn<bool>("mouse");
        QTest::addColumn<bool>("nextBoot");
        QTest::addColumn<int>("mode");
        QTest::newRow("mouse") << true << false << 2;
        QTest::newRow("touch") << false << false << 3;
        QTest::newRow("mouse at next boot") << true << true << 0;
        QTest::newRow("touch at next boot") << false << true << 1;
    }

    void writesMode()
    {
        QFETCH(bool, mouse);
        QFETCH(bool, nextBoot);
        QFETCH(int, mode);
        Page page;
        page.show();
        click(mouse ? page.mouse : page.touch);
        calls();
        click(nextBoot ? page.applyNextBoot : page.apply);
        QCOMPARE(calls(), QStringList("Touch_setMode(%1) = 0"_s.arg(mode)));
    }

    void writesTouchModeWithoutProfile()
    {
        Page page;
        // No profile is checked before the unit has told one.
        page.apply->click();
        page.applyNextBoot->click();
        QCOMPARE(
            calls().mid(12), QStringList({"Touch_getAdvancedSetting(10) = 0 [510]"_s}) +
                                 QStringList({"Touch_setMode(3) = 0"_s, "Touch_setMode(1) = 0"_s}));
    }

    void setModeFails_data() { addFailureRows({"Touch_setMode"_s}); }

    void setModeFails()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code);
        Page page;
        page.show();
        click(page.apply);
        click(page.applyNextBoot);
        const QString error = errorBox(code, "TouchScreenModeSettings"_s);
        QCOMPARE(boxes(&page), QStringList({error, error}));
    }

    void selectsParameter_data() { addParameters(1); }

    void selectsParameter()
    {
        QFETCH(int, number);
        Page page;
        page.showAdvanced();
        page.parameter->setCurrentIndex(number - 1);
        calls();
        QTest::keyClick(page.parameter, Qt::Key_Down);
        QCOMPARE(calls(), parameterCall(number, value(number)) + dumpCalls());
        QCOMPARE(page.value->text(), QString::number(value(number)));
        QCOMPARE(page.measure->text(), latin1(parameters[number].measure));
    }

    void parameterFails_data() { addFailureRows({"Touch_getAdvancedSetting"_s}); }

    void parameterFails()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        Page page;
        page.showAdvanced();
        calls();
        fault(operation, code, 1);
        QTest::keyClick(page.parameter, Qt::Key_Down);
        QCOMPARE(
            calls(), QStringList("Touch_getAdvancedSetting(1) = %1"_s.arg(code)) + dumpCalls());
        QCOMPARE(page.value->text(), "Error"_s);
        QCOMPARE(page.measure->text(), "A/D value (0..4095)"_s);
    }

    void unknownParameter()
    {
        Page page;
        page.parameter->addItem("Restore"_s);
        calls();
        page.parameter->setCurrentIndex(parameterCount);
        QVERIFY(calls().constFirst().startsWith("Touch_getAdvancedSetting(11) = "_s));
        QCOMPARE(page.measure->text(), "ERROR"_s);
        page.parameter->setCurrentIndex(-1);
        QCOMPARE(page.measure->text(), "ERROR"_s);
    }

    void writesHighestValue_data() { addParameters(0); }

    void writesHighestValue()
    {
        QFETCH(int, number);
        const int highest = parameters[number].highest;
        Page page;
        page.showAdvanced();
        page.parameter->setCurrentIndex(number);
        page.value->clear();
        QTest::keyClicks(page.value, QString::number(highest));
        calls();
        click(page.applySetting);
        QStringList expected = dumpCalls();
        expected[number] = parameterCall(number, highest).constFirst();
        expected.prepend("Touch_setAdvancedSetting(%1, %2) = 0"_s.arg(number).arg(highest));
        QCOMPARE(calls(), expected);
        QCOMPARE(page.value->text(), QString::number(highest));
    }

    void dejitterTakesMoreThanItsUnitSays()
    {
        Page page;
        page.showAdvanced();
        page.parameter->setCurrentText("UseDejitter"_s);
        QCOMPARE(page.measure->text(), "Boolean (0..1)"_s);
        page.value->setText("2"_s);
        calls();
        click(page.applySetting);
        QCOMPARE(calls().value(0), "Touch_setAdvancedSetting(8, 2) = 0"_s);
        QVERIFY(page.dumpText().contains("\nUSE_DEJITTER: 2\n"_s));
    }

    void refusesHigherValue_data() { addParameters(0); }

    void refusesHigherValue()
    {
        QFETCH(int, number);
        const Parameter &parameter = parameters[number];
        const char *noNumber = "Invalid data format. Please enter 0-65535.";
        Page page;
        page.showAdvanced();
        page.parameter->setCurrentIndex(number);
        verifyRefused(page, QString::number(parameter.highest + 1),
            parameter.message ? parameter.message : noNumber);
        verifyRefused(page, "70000"_s, noNumber);
    }

    void valueTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("value"); // -1: no number
        QTest::newRow("empty") << QString() << -1;
        QTest::newRow("blank") << "  "_s << -1;
        QTest::newRow("zero") << "0"_s << 0;
        QTest::newRow("leading zeros") << "00012"_s << 12;
        QTest::newRow("blanks around") << " 12 "_s << 12;
        QTest::newRow("plus") << "+12"_s << 12;
        QTest::newRow("minus") << "-12"_s << -1;
        QTest::newRow("highest") << "65535"_s << 65535;
        QTest::newRow("too high") << "65536"_s << -1;
        QTest::newRow("70000") << "70000"_s << -1;
        QTest::newRow("huge") << QString(500, QLatin1Char('9')) << -1;
        QTest::newRow("wraps at 32 bits") << "4294967297"_s << -1;
        QTest::newRow("wraps at 64 bits") << "18446744073709551617"_s << -1;
        QTest::newRow("hexadecimal") << "0x10"_s << -1;
        QTest::newRow("hexadecimal digits") << "ff"_s << -1;
        QTest::newRow("group dot") << "1.000"_s << -1;
        QTest::newRow("group comma") << "1,000"_s << -1;
        QTest::newRow("group blank") << "1 000"_s << -1;
        QTest::newRow("fraction") << "1.5"_s << -1;
        QTest::newRow("exponent") << "1e3"_s << -1;
        QTest::newRow("letters") << "abc"_s << -1;
        QTest::newRow("letters behind") << "12ms"_s << -1;
        QTest::newRow("error text") << "Error"_s << -1;
        QTest::newRow("Arabic digits") << QString::fromUtf8("\xD9\xA1\xD9\xA2") << -1;
        QTest::newRow("full width digits") << QString::fromUtf8("\xEF\xBC\x91\xEF\xBC\x92") << -1;
    }

    void valueTexts()
    {
        QFETCH(QString, text);
        QFETCH(int, value);
        const QLocale former;
        const auto restore = qScopeGuard([former] { QLocale::setDefault(former); });
        Page page;
        page.showAdvanced();
        for (const char *name : {"C", "de_DE", "ar_EG"}) {
            QLocale::setDefault(QLocale(latin1(name)));
            page.value->setText(text);
            calls();
            click(page.applySetting);
            const QStringList done = calls();
            if (value < 0) {
                QCOMPARE(done, QStringList());
                QCOMPARE(boxes(&page), QStringList("Invalid data format. Please enter 0-65535."_s));
            } else {
                QCOMPARE(done.value(0), "Touch_setAdvancedSetting(0, %1) = 0"_s.arg(value));
                QCOMPARE(done.count(), 1 + parameterCount);
            }
        }
    }

    void returnKeyPressesNoButton()
    {
        Page page;
        page.showAdvanced();
        calls();
        QTest::keyClick(page.value, Qt::Key_Return);
        QCOMPARE(calls(), QStringList());
        for (const QPushButton *button : page.findChildren<QPushButton *>())
            QVERIFY2(!button->autoDefault(), qPrintable(button->objectName()));
    }

    void refusesMissingParameter()
    {
        Page page;
        page.showAdvanced();
        page.parameter->addItem("Restore"_s);
        for (const int index : {parameterCount, -1}) {
            page.parameter->setCurrentIndex(index);
            verifyRefused(page, "1"_s, "Internal error");
            // The text comes first.
            verifyRefused(page, "abc"_s, "Invalid data format. Please enter 0-65535.");
        }
    }

    void setParameterFails_data() { addFailureRows({"Touch_setAdvancedSetting"_s}); }

    void setParameterFails()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code);
        Page page;
        page.showAdvanced();
        calls();
        QTest::keyClick(page.applySetting, Qt::Key_Space);
        const QStringList done = callsWithTexts();
        QCOMPARE(done, QStringList({"Touch_setAdvancedSetting(0, 500) = %1"_s.arg(code),
                           errorTextCall(code)}) +
                           dumpCalls());
        QCOMPARE(boxes(&page),
            QStringList("Error setAdvancedSetting: %1\n"_s.arg(latin1(deviceErrorText(code)))));
    }

    void restoresDefaults()
    {
        Page page;
        page.showAdvanced();
        calls();
        click(page.defaults);
        const QStringList done = calls();
        QCOMPARE(done.value(0), "Touch_setAdvancedSetting(11, 1) = 0"_s);
        QCOMPARE(done.count(), 1 + parameterCount);
        QVERIFY(!page.dumpText().contains("LOW_LEVEL: 501\n"_s));
        // The field keeps the former value.
        QCOMPARE(page.value->text(), "500"_s);
    }

    void restoreDefaultsFails_data() { addFailureRows({"Touch_setAdvancedSetting"_s}); }

    void restoreDefaultsFails()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code);
        Page page;
        page.showAdvanced();
        calls();
        click(page.defaults);
        QCOMPARE(calls(), QStringList("Touch_setAdvancedSetting(11, 1) = %1"_s.arg(code)));
        QCOMPARE(boxes(&page), QStringList(errorBox(code, "setAdvancedSetting"_s)));
    }

    void showsDefaultsBesideAdvanced()
    {
        Page page;
        page.show();
        calls();
        auto *bar = page.tabs->findChild<QTabBar *>();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(1).center());
        QVERIFY(page.defaults->isVisible());
        QVERIFY(page.defaultsLabel->isVisible());
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(0).center());
        QVERIFY(page.defaults->isHidden());
        QVERIFY(page.defaultsLabel->isHidden());
        QCOMPARE(calls(), QStringList());
    }

    void dumpOfFailures_data() { addFailureRows({"Touch_getAdvancedSetting"_s}); }

    /** Each failure is looked up before the next read. */
    void dumpOfFailures()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        Page page;
        calls();
        fault(operation, code, 2, 3);
        page.show();
        const QStringList done = callsWithTexts();
        const QStringList lines = page.dumpText().split(QLatin1Char('\n'));
        QStringList expected = dumpCalls();
        expected[3] = "Touch_getAdvancedSetting(3) = %1"_s.arg(code);
        expected[4] = "Touch_getAdvancedSetting(4) = %1"_s.arg(code);
        expected.insert(5, errorTextCall(code));
        expected.insert(4, errorTextCall(code));
        QCOMPARE(done.mid(1), expected);
        const QString failure = "Error getAdvancedSetting: "_s + latin1(deviceErrorText(code));
        QCOMPARE(lines.value(2), "UNTOUCHLEVEL: 502"_s);
        QCOMPARE(lines.value(3), "DEBOUNCE_TIME: "_s + failure);
        QCOMPARE(lines.value(4), "DEBOUNCE_TIMEOUT_TIME: "_s + failure);
        QCOMPARE(lines.value(5), "DOUBLECLICK_MAX_CLICK_TIME: 505"_s);
        QCOMPARE(lines.count(), parameterCount + 1);
    }

    /** The controller gets its time before each read of the dump, and before no other. */
    void dumpPauses()
    {
        const std::vector<int> oneDump(parameterCount, 10);
        Page page;
        QCOMPARE(pauses->take(), oneDump);
        page.showAdvanced();
        QCOMPARE(pauses->take(), oneDump);
        QTest::keyClick(page.parameter, Qt::Key_Down);
        QCOMPARE(pauses->take(), oneDump);
        click(page.defaults);
        QCOMPARE(pauses->take(), oneDump);
    }

    void dumpPausesBeforeEachRead()
    {
        Page page;
        calls();
        QStringList made;
        pauses.reset();
        pauses = std::make_unique<SkippedPauses>([&](int) { made += calls() << "pause"_s; });
        page.show();
        made += calls();
        QStringList expected{made.value(0)};
        for (const QString &call : dumpCalls())
            expected << "pause"_s << call;
        QCOMPARE(made, expected);
        QVERIFY(made.first().startsWith("Touch_getMode("_s));
    }

    void calibrates_data()
    {
        QTest::addColumn<int>("points");
        QTest::addColumn<QByteArray>("arguments");
        QTest::newRow("5 points") << 0 << QByteArray("1 <>");
        QTest::newRow("13 points") << 1 << QByteArray("1 <--13p>");
        QTest::newRow("none chosen") << -1 << QByteArray("1 <>");
    }

    void calibrates()
    {
        QFETCH(int, points);
        const QTemporaryDir folder;
        const QString told = folder.filePath("arguments"_s);
        qputenv("CALIBRATOR_TOLD", told.toLocal8Bit());
        installCalibrator();
        Page page;
        page.show();
        page.points->setCurrentIndex(points);
        calls();
        click(page.calibrate);
        QCOMPARE(calls(), QStringList());
        QTRY_VERIFY(QFile::exists(told));
        QFile file(told);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QTEST(file.readAll(), "arguments");
        const auto *process = qApp->findChild<QProcess *>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(process);
        QTRY_COMPARE(process->state(), QProcess::NotRunning);
        QCOMPARE(zombies(), QStringList());
    }

    void calibratorMissing()
    {
        Page page;
        page.show();
        click(page.calibrate);
        click(page.calibrate);
        const auto processes =
            qApp->findChildren<QProcess *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(processes.count(), 2);
        for (const QProcess *process : processes)
            QTRY_COMPARE(process->state(), QProcess::NotRunning);
        QCOMPARE(zombies(), QStringList());
        QCOMPARE(dialogs.takeTexts(), QStringList());
        QCOMPARE(takeWarnings(), QStringList());
    }

    void calibratorEndsWithProgram()
    {
        qunsetenv("CALIBRATOR_TOLD");
        installCalibrator();
        Page page;
        page.show();
        click(page.calibrate);
        const auto *process = qApp->findChild<QProcess *>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(process);
        QTRY_COMPARE(process->state(), QProcess::Running);
        QCOMPARE(process->openMode(), QIODevice::OpenMode(QIODevice::ReadWrite));
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        QCOMPARE(process->state(), QProcess::NotRunning);
        QCOMPARE(zombies(), QStringList());
    }

private:
    /** A row for each parameter from that number on. Column: number. */
    static void addParameters(int first)
    {
        QTest::addColumn<int>("number");
        for (int number = first; number < parameterCount; ++number)
            QTest::newRow(parameters[number].listName) << number;
    }
    /** The calls of one dump of the values that init() has set. */
    static QStringList dumpCalls()
    {
        QStringList lines;
        for (int number = 0; number < parameterCount; ++number)
            lines << parameterCall(number, value(number));
        return lines;
    }

    static QStringList parameterCall(int number, int value)
    {
        return {"Touch_getAdvancedSetting(%1) = 0 [%2]"_s.arg(number).arg(value)};
    }
    static int value(int number) { return 500 + number; }
    /** The call for the text of that code. Makes such a call itself. */
    static QString errorTextCall(int code)
    {
        return "deviceErrorText(%1) = %2"_s.arg(code).arg(latin1(deviceErrorText(code)));
    }
    /** calls() with what it leaves out. */
    QStringList callsWithTexts()
    {
        return DeviceTest::calls(); // clazy:exclude=skipped-base-method
    }
    /** That text as value of the chosen parameter brings up the message alone. */
    void verifyRefused(Page &page, const QString &text, const char *message)
    {
        page.value->setText(text);
        calls();
        click(page.applySetting);
        QCOMPARE(calls(), QStringList());
        QCOMPARE(boxes(&page), QStringList(latin1(message)));
    }

    void modeNotSupported()
    {
        fault("Touch_getMode"_s, 2, 1);
        Page page;
        calls();
        page.show();
        QCOMPARE(calls(), QStringList("Touch_getMode() = 2"_s) + dumpCalls());
        QVERIFY(page.profile->isHidden());
        QVERIFY(page.apply->isHidden());
        QVERIFY(page.applyNextBoot->isHidden());
        QVERIFY(!page.mouse->isEnabled());
        QVERIFY(!page.touch->isEnabled());
        QVERIFY(page.calibrate->isVisible());
        QCOMPARE(page.profile->toolTip(), QString());
        // The answer of a later read brings nothing back.
        page.hide();
        page.show();
        QVERIFY(page.profile->isHidden());
        QVERIFY(!page.mouse->isEnabled());
    }
    /** A calibrator beside this program. */
    void installCalibrator()
    {
        const QString place = QCoreApplication::applicationDirPath() + "/TouchCalibrator.exe"_s;
        QVERIFY(QFile::copy(QStringLiteral(VORN_CALIBRATOR), place));
    }

    void removeCalibrator()
    {
        const QString place = QCoreApplication::applicationDirPath() + "/TouchCalibrator.exe"_s;
        // Windows keeps the file of a program that is still about to end.
        QTRY_VERIFY(!QFile::exists(place) || QFile::remove(place));
    }

    std::unique_ptr<SkippedPauses> pauses;
};

VORN_TEST_MAIN(TouchPageTest)
#include "tst_touchpage.moc"
