#include "pages/tabPowerDlg.h"
#include "tests/support/PageForm.h"
#include "tests/support/PageTest.h"

#include <QCheckBox>
#include <QProgressBar>
#include <QTabWidget>

using namespace support;

namespace {

const QStringList currentReads{"Power_getCanPowerStatus() = 0 [1]"_s,
    "Power_getExtFanPowerStatus() = 0 [0]"_s, "Power_getVideoPowerStatus() = 0 [5]"_s};

const QStringList startupReads{"Config_getCanStartupPowerConfig() = 0 [0]"_s,
    "Config_getExtFanStartupPowerConfig() = 0 [1]"_s,
    "Config_getVideoStartupPowerConfig() = 0 [10]"_s};

} // namespace

class PowerPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        setUnit("Power.canPowerStatus"_s, "1"_s);
        setUnit("Power.extFanPowerStatus"_s, "0"_s);
        setUnit("Power.videoPowerStatus"_s, "5"_s);
        setUnit("Config.canStartupPower"_s, "0"_s);
        setUnit("Config.extFanStartupPower"_s, "1"_s);
        setUnit("Config.videoStartupPower"_s, "10"_s);
    }

    void layoutHoldsLongTexts()
    {
        for (const char *operation : {"getHwErrorStatus", "getChargingStatus", "getVoltageLevel"})
            fault("Battery_"_s + QString::fromLatin1(operation), 20);
        tabPowerDlg page;
        QCOMPARE(layoutFaults(&page), QStringList());
    }

    void handlesAndFirstReading()
    {
        {
            const tabPowerDlg page;
            QCOMPARE(pageCalls(),
                QStringList({"Power_create()"_s, "Battery_create()"_s, "Config_create()"_s}) +
                    currentReads);
            QCOMPARE(child<QComboBox>(&page, "comboBoxMode")->currentIndex(), 0);
        }
        QCOMPARE(pageCalls(),
            QStringList({"Power_release()"_s, "Battery_release()"_s, "Config_release()"_s}));
    }

    void showChoosesTheCurrentSettings()
    {
        tabPowerDlg page;
        pageCalls();
        page.show();
        // Once for the list's change, once by itself.
        QCOMPARE(pageCalls().mid(0, 7),
            currentReads + currentReads + QStringList("Battery_isAvailable() = 0 [true]"_s));
        QCOMPARE(child<QComboBox>(&page, "comboBoxMode")->currentIndex(), 1);
        QVERIFY(checked(page, "checkBoxCAN"));
        QVERIFY(!checked(page, "checkBoxExtFan"));
        QVERIFY(checked(page, "checkBoxVideo_1"));
        QVERIFY(!checked(page, "checkBoxVideo_2"));
        QVERIFY(checked(page, "checkBoxVideo_3"));
        QVERIFY(!checked(page, "checkBoxVideo_4"));
        page.hide();
        page.show();
        QCOMPARE(pageCalls().filter("Power_get"_s), currentReads);
    }

    void modeChoosesWhatTheBoxesStandFor()
    {
        tabPowerDlg page;
        page.show();
        pageCalls();
        auto *mode = child<QComboBox>(&page, "comboBoxMode");
        mode->setFocus();
        QTest::keyClick(mode, Qt::Key_Up);
        QCOMPARE(pageCalls(), startupReads);
        QVERIFY(!checked(page, "checkBoxCAN"));
        QVERIFY(checked(page, "checkBoxExtFan"));
        QVERIFY(checked(page, "checkBoxVideo_2"));
        QVERIFY(!checked(page, "checkBoxVideo_3"));
        page.hide();
        page.show();
        QCOMPARE(mode->currentIndex(), 1);
        QVERIFY(checked(page, "checkBoxCAN"));
    }

    void failingRead_data()
    {
        addFailureRows({"Power_getCanPowerStatus"_s, "Power_getExtFanPowerStatus"_s,
            "Power_getVideoPowerStatus"_s, "Config_getCanStartupPowerConfig"_s,
            "Config_getExtFanStartupPowerConfig"_s, "Config_getVideoStartupPowerConfig"_s});
    }

    void failingRead()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabPowerDlg page;
        page.show();
        auto *mode = child<QComboBox>(&page, "comboBoxMode");
        const bool now = operation.startsWith("Power_"_s);
        mode->setCurrentIndex(now ? 0 : 1);
        pageCalls();
        const auto affected = [&](const QCheckBox *box) {
            // "checkBoxVideo_2" is about "Video".
            const QString subject = box->objectName().mid(8).section(QLatin1Char('_'), 0, 0);
            return operation.contains(subject, Qt::CaseInsensitive);
        };
        QStringList checkedBefore;
        for (const auto *box : page.findChildren<QCheckBox *>()) {
            if (affected(box) && box->isChecked())
                checkedBefore << box->objectName();
        }
        fault(operation, code);
        const auto disabledBoxes = [&page] {
            QStringList names;
            for (const auto *box : page.findChildren<QCheckBox *>()) {
                if (!box->isEnabled())
                    names << box->objectName();
            }
            return "disabled: "_s + names.join(QLatin1Char(' '));
        };
        planBox(disabledBoxes);
        mode->setCurrentIndex(now ? 1 : 0);
        QCOMPARE(behindBox(), code == 2 ? QString() : "disabled: "_s);
        QCOMPARE(pageCalls(), failing(now ? currentReads : startupReads, operation, code));
        for (const auto *box : page.findChildren<QCheckBox *>()) {
            QCOMPARE(box->isVisible(), !(affected(box) && code == 2));
            QCOMPARE(box->isEnabled(), !(affected(box) && code != 2));
            if (affected(box))
                QCOMPARE(box->isChecked(), checkedBefore.contains(box->objectName()));
        }
        // The video channels have one name for both states.
        const QString name = operation.contains("Video"_s) ? "getVideoPowerStatus"_s
                                                           : operation.section(QLatin1Char('_'), 1);
        QCOMPARE(boxes(&page), code == 2 ? QStringList() : QStringList(errorBox(code, name)));
    }

    void failingReadsFromTheStart()
    {
        fault("Power_getCanPowerStatus"_s, 5);
        fault("Power_getVideoPowerStatus"_s, -1);
        const QStringList round{
            errorBox(5, "getCanPowerStatus"_s), errorBox(-1, "getVideoPowerStatus"_s)};
        tabPowerDlg page;
        QCOMPARE(boxes(&page), round);
        page.show();
        QCOMPARE(boxes(&page), round + round);
        page.hide();
        page.show();
        QCOMPARE(boxes(&page), round);
        QVERIFY(child<QCheckBox>(&page, "checkBoxCAN")->isVisible());
        QVERIFY(!child<QCheckBox>(&page, "checkBoxCAN")->isEnabled());
        QVERIFY(child<QCheckBox>(&page, "checkBoxExtFan")->isEnabled());
    }

    void onlyOneCountsAsOn()
    {
        setUnit("Power.canPowerStatus"_s, "257"_s);
        setUnit("Power.extFanPowerStatus"_s, "-1"_s);
        setUnit("Power.videoPowerStatus"_s, "250"_s);
        tabPowerDlg page;
        page.show();
        QVERIFY(!checked(page, "checkBoxCAN"));
        QVERIFY(!checked(page, "checkBoxExtFan"));
        QVERIFY(!checked(page, "checkBoxVideo_1"));
        QVERIFY(checked(page, "checkBoxVideo_2"));
        QVERIFY(!checked(page, "checkBoxVideo_3"));
        QVERIFY(checked(page, "checkBoxVideo_4"));
        // What the boxes don't stand for is written as 0.
        click(&page, "checkBoxVideo_1");
        QCOMPARE(unit("Power.videoPowerStatus"_s), "11"_s);
    }

    void noModeNoWriting()
    {
        tabPowerDlg page;
        page.show();
        child<QComboBox>(&page, "comboBoxMode")->setCurrentIndex(-1);
        pageCalls();
        for (const char *box : {"checkBoxCAN", "checkBoxExtFan", "checkBoxVideo_1"})
            click(&page, box);
        QCOMPARE(pageCalls(), QStringList());
    }

    void goodReadingBringsTheBoxesBack()
    {
        tabPowerDlg page;
        fault("Power_getCanPowerStatus"_s, 2);
        fault("Power_getVideoPowerStatus"_s, 2);
        page.show();
        QVERIFY(!child<QCheckBox>(&page, "checkBoxCAN")->isVisible());
        QVERIFY(!child<QCheckBox>(&page, "checkBoxVideo_4")->isVisible());
        fault("Power_getCanPowerStatus"_s, 5);
        fault("Power_getVideoPowerStatus"_s, 5);
        page.hide();
        page.show();
        boxes(&page);
        QVERIFY(!child<QCheckBox>(&page, "checkBoxCAN")->isEnabled());
        clearFaults();
        child<QComboBox>(&page, "comboBoxMode")->setCurrentIndex(0);
        for (const char *name : {"checkBoxCAN", "checkBoxVideo_1", "checkBoxVideo_4"}) {
            QVERIFY(child<QCheckBox>(&page, name)->isVisible());
            QVERIFY(child<QCheckBox>(&page, name)->isEnabled());
        }
    }

    void clicksWriteInTheirMode_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QString>("call");
        QTest::newRow("CAN now") << 1 << QByteArray("checkBoxCAN")
                                 << "Power_setCanPowerStatus(0) = 0"_s;
        QTest::newRow("fan now") << 1 << QByteArray("checkBoxExtFan")
                                 << "Power_setExtFanPowerStatus(1) = 0"_s;
        QTest::newRow("video now")
            << 1 << QByteArray("checkBoxVideo_2") << "Power_setVideoPowerStatus(7) = 0"_s;
        QTest::newRow("CAN at start")
            << 0 << QByteArray("checkBoxCAN") << "Config_setCanStartupPowerConfig(1) = 0"_s;
        QTest::newRow("fan at start")
            << 0 << QByteArray("checkBoxExtFan") << "Config_setExtFanStartupPowerConfig(0) = 0"_s;
        QTest::newRow("video at start")
            << 0 << QByteArray("checkBoxVideo_1") << "Config_setVideoStartupPowerConfig(11) = 0"_s;
    }

    void clicksWriteInTheirMode()
    {
        QFETCH(int, mode);
        QFETCH(QByteArray, box);
        QFETCH(QString, call);
        tabPowerDlg page;
        page.show();
        child<QComboBox>(&page, "comboBoxMode")->setCurrentIndex(mode);
        pageCalls();
        click(&page, box.constData());
        QCOMPARE(pageCalls(), QStringList({call}));
    }

    void videoMaskOfAllBoxes()
    {
        setUnit("Power.videoPowerStatus"_s, "0"_s);
        tabPowerDlg page;
        page.show();
        click(&page, "checkBoxVideo_1");
        click(&page, "checkBoxVideo_3");
        QCOMPARE(unit("Power.videoPowerStatus"_s), "5"_s);
        click(&page, "checkBoxVideo_2");
        click(&page, "checkBoxVideo_4");
        QCOMPARE(unit("Power.videoPowerStatus"_s), "15"_s);
        QCOMPARE(unit("Config.videoStartupPower"_s), "10"_s);
    }

    void failingWrite_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("code");
        for (const int code : failureCodes) {
            const auto row = [&](int mode, const char *box, const char *operation,
                                 const char *name) {
                QTest::addRow("%s %d", operation, code)
                    << mode << QByteArray(box) << QString::fromLatin1(operation)
                    << QString::fromLatin1(name) << code;
            };
            row(1, "checkBoxCAN", "Power_setCanPowerStatus", "setCanPowerStatus");
            row(1, "checkBoxExtFan", "Power_setExtFanPowerStatus", "setExtFanPowerStatus");
            row(1, "checkBoxVideo_3", "Power_setVideoPowerStatus", "setVideoPowerStatus");
            row(0, "checkBoxCAN", "Config_setCanStartupPowerConfig", "setCanPowerStatus");
            row(0, "checkBoxExtFan", "Config_setExtFanStartupPowerConfig", "setExtFanPowerStatus");
            row(0, "checkBoxVideo_3", "Config_setVideoStartupPowerConfig", "setVideoPowerStatus");
        }
    }

    void failingWrite()
    {
        QFETCH(int, mode);
        QFETCH(QByteArray, box);
        QFETCH(QString, operation);
        QFETCH(QString, name);
        QFETCH(int, code);
        tabPowerDlg page;
        page.show();
        child<QComboBox>(&page, "comboBoxMode")->setCurrentIndex(mode);
        fault(operation, code);
        const bool before = checked(page, box.constData());
        click(&page, box.constData());
        QVERIFY2(checked(page, box.constData()) != before, "the box isn't set back");
        QCOMPARE(boxes(&page), QStringList(errorBox(code, name)));
    }

    void backlightSlotStaysInPlace_data() { addFailureRows({"Power_setBLPowerStatus"_s}); }

    void backlightSlotStaysInPlace()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabPowerDlg page;
        pageCalls();
        QVERIFY(QMetaObject::invokeMethod(&page, "BacklightClicked", Q_ARG(bool, false)));
        QVERIFY(QMetaObject::invokeMethod(&page, "BacklightClicked", Q_ARG(bool, true)));
        QCOMPARE(pageCalls(),
            QStringList({"Power_setBLPowerStatus(0) = 0"_s, "Power_setBLPowerStatus(1) = 0"_s}));
        fault(operation, code);
        QVERIFY(QMetaObject::invokeMethod(&page, "BacklightClicked", Q_ARG(bool, true)));
        QCOMPARE(boxes(&page), QStringList(errorBox(code, "setBLPowerStatus"_s)));
    }

    void noBatteryTakesTheTab_data()
    {
        addFailureCodes();
        QTest::newRow("0") << 0;
    }

    void noBatteryTakesTheTab()
    {
        QFETCH(int, code);
        if (code == 0)
            setUnit("Battery.available"_s, "false"_s);
        else
            fault("Battery_isAvailable"_s, code);
        tabPowerDlg page;
        for (int visit = 0; visit < 2; ++visit) {
            pageCalls();
            page.show();
            const auto *tabs = child<QTabWidget>(&page, "tabWidget_2");
            QCOMPARE(tabs->count(), 1);
            QCOMPARE(tabs->tabText(0), "Power"_s);
            QVERIFY(!child<QWidget>(&page, "tabWidget_2Page2")->isEnabled());
            QVERIFY(child<QCheckBox>(&page, "checkBoxCAN")->isEnabled());
            QCOMPARE(pageCalls().filter("Battery_get"_s), QStringList());
            page.hide();
        }
        // A battery that comes later is asked, and has no tab to be seen on.
        clearFaults();
        setUnit("Battery.available"_s, "true"_s);
        page.show();
        QCOMPARE(pageCalls().filter("Battery_get"_s).size(), 4);
        QCOMPARE(child<QTabWidget>(&page, "tabWidget_2")->count(), 1);
        QVERIFY(!child<QWidget>(&page, "tabWidget_2Page2")->isEnabled());
    }

    void batteryDetails_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("property");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("label");
        QTest::addColumn<QString>("text");
        struct Detail {
            const char *operation;
            const char *property;
            const char *label;
            const char *failure; ///< before the code; the whole text if it doesn't tell the code
        };
        const auto row = [](const Detail &detail, int value, int code, const QString &text) {
            QTest::addRow("%s: %d, code %d", detail.operation, value, code)
                << "Battery_"_s + QString::fromLatin1(detail.operation)
                << "Battery."_s + QString::fromLatin1(detail.property) << value << code
                << QByteArray(detail.label) << text;
        };
        const auto failure = [](const Detail &detail, int code) {
            QString text = QString::fromLatin1(detail.failure);
            if (text.endsWith(QLatin1Char(' ')))
                text += "Error(%1) %2\n"_s.arg(QString::number(code), deviceText(code));
            return text;
        };
        const Detail error{"getHwErrorStatus", "hwErrorStatus", "label_2",
            "Could not get battery error status code. "};
        const Detail charging{"getChargingStatus", "chargingStatus", "label_3",
            "Could not get battery charging status. "};
        const Detail source{"getPowerSource", "powerSource", "label_4", "Power source: Unknown"};
        const Detail level{
            "getVoltageLevel", "voltageLevel", "label", "Could not get battery power status. "};

        row(error, 0, 0, QString());
        row(error, 1, 0, "Battery error! The thermistor temp sensor is not working\n"_s);
        row(error, 2, 0, "Battery error! The secondary temp sensor is not working\n"_s);
        row(error, 3, 0, "Battery error! Charging failed\n"_s);
        row(error, 4, 0, "Battery error! Overcurrent detected\n"_s);
        row(error, 5, 0, "Battery error! Battery not initiated\n"_s);
        row(error, 6, 0, failure(error, 0)); // an unknown state has the code of a success
        row(charging, 0, 0, "Battery is not being charged\n"_s);
        row(charging, 1, 0, "Battery is being charged\n"_s);
        row(charging, 2, 0, "Battery is fully charged\n"_s);
        row(charging, 3, 0, "Temperature is too low to charge the battery\n"_s);
        row(charging, 4, 0, "Temperature is too high to charge the battery\n"_s);
        row(charging, 5, 0, "Could not get battery charging status\n"_s);
        row(charging, 6, 0, "Could not get battery charging status\n"_s);
        row(source, 0, 0, "Power source: Battery"_s);
        row(source, 1, 0, "Power source: External power"_s);
        row(source, 7, 0, "Power source: External power"_s);
        for (const int percent : {0, 63, 100, 101, 255})
            row(level, percent, 0, "Battery voltage"_s);
        for (const Detail &detail : {error, charging, source, level}) {
            for (const int code : failureCodes)
                row(detail, 1, code, failure(detail, code));
        }
    }

    void batteryDetails()
    {
        QFETCH(QString, operation);
        QFETCH(QString, property);
        QFETCH(int, value);
        QFETCH(int, code);
        QFETCH(QByteArray, label);
        QFETCH(QString, text);
        setUnit(property, QString::number(value));
        fault(operation, code);
        tabPowerDlg page;
        pageCalls();
        page.show();
        QCOMPARE(child<QLabel>(&page, label.constData())->text(), text);
        QStringList asked;
        for (const QString &call : pageCalls().filter("Battery_"_s))
            asked << call.section(QLatin1Char('('), 0, 0);
        QCOMPARE(asked, QStringList({"Battery_isAvailable"_s, "Battery_getHwErrorStatus"_s,
                            "Battery_getChargingStatus"_s, "Battery_getPowerSource"_s,
                            "Battery_getVoltageLevel"_s}));
        const int percent = unit("Battery.voltageLevel"_s).toInt();
        const bool failed = label == "label" && code != 0;
        // The bar takes what it can show and keeps what it had otherwise, 24 at first.
        const int shown = percent <= 100 ? percent : 24;
        QCOMPARE(child<QProgressBar>(&page, "progressBar")->value(), failed ? 0 : shown);
    }

    void levelErrorStays()
    {
        fault("Battery_getVoltageLevel"_s, 5, 1);
        tabPowerDlg page;
        page.show();
        const QString error = child<QLabel>(&page, "label")->text();
        QVERIFY(error.startsWith("Could not get battery power status. Error(5) "_s));
        page.hide();
        setUnit("Battery.voltageLevel"_s, "63"_s);
        page.show();
        // The level comes back, and nothing puts the caption back.
        QCOMPARE(child<QProgressBar>(&page, "progressBar")->value(), 63);
        QCOMPARE(child<QLabel>(&page, "label")->text(), error);
    }

private:
    static bool checked(const QWidget &page, const char *box)
    {
        return child<QCheckBox>(&page, box)->isChecked();
    }
    /** The calls of the main thread alone. */
    QStringList pageCalls() { return withoutErrorTexts(mainThreadCalls()); }
};

VORN_TEST_MAIN(PowerPageTest)
#include "tst_powerpage.moc"
