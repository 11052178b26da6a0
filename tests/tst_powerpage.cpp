#include "pages/tabPowerDlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/FormCheck.h"

using support::child;

class PowerPageTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void init();
    void form();
    void handlesAndFirstReading();
    void showChoosesTheCurrentSettings();
    void modeChoosesWhatTheBoxesStandFor();
    void failingRead_data();
    void failingRead();
    void goodReadingBringsTheBoxesBack();
    void clicksWriteInTheirMode_data();
    void clicksWriteInTheirMode();
    void videoMaskOfAllBoxes();
    void failingWrite_data();
    void failingWrite();
    void backlightSlotStaysInPlace();
    void noBatteryTakesTheTab_data();
    void noBatteryTakesTheTab();
    void batteryErrors_data();
    void batteryErrors();
    void chargingStates_data();
    void chargingStates();
    void powerSources_data();
    void powerSources();
    void levels_data();
    void levels();

private:
    static void click(const QWidget &page, const char *box)
    {
        QTest::mouseClick(child<QCheckBox>(&page, box), Qt::LeftButton, {}, QPoint(15, 15));
    }
    static bool checked(const QWidget &page, const char *box)
    {
        return child<QCheckBox>(&page, box)->isChecked();
    }
    /** The calls of the main thread alone, which runs first. */
    QStringList pageCalls();
};

namespace {

const char *const videoBoxes[] = {
    "checkBoxVideo_1", "checkBoxVideo_2", "checkBoxVideo_3", "checkBoxVideo_4"};

const QStringList currentReads{QStringLiteral("Power_getCanPowerStatus() = 0 [1]"),
    QStringLiteral("Power_getExtFanPowerStatus() = 0 [0]"),
    QStringLiteral("Power_getVideoPowerStatus() = 0 [5]")};

} // namespace

void PowerPageTest::init()
{
    DeviceTest::init();
    // The journal numbers threads as they come; a battery thread of the row before may still be
    // about to end.
    deviceErrorText(DEVICE_OK);
    calls();
    setUnit(QStringLiteral("Power.canPowerStatus"), QStringLiteral("1"));
    setUnit(QStringLiteral("Power.extFanPowerStatus"), QStringLiteral("0"));
    setUnit(QStringLiteral("Power.videoPowerStatus"), QStringLiteral("5"));
    setUnit(QStringLiteral("Config.canStartupPower"), QStringLiteral("0"));
    setUnit(QStringLiteral("Config.extFanStartupPower"), QStringLiteral("1"));
    setUnit(QStringLiteral("Config.videoStartupPower"), QStringLiteral("10"));
}

QStringList PowerPageTest::pageCalls()
{
    QStringList lines = journal();
    QStringList own;
    for (const QString &line : lines) {
        if (!line.startsWith(QLatin1String("T1 ")))
            continue;
        QString call = line.mid(3);
        call.remove(QRegularExpression(QStringLiteral("#\\d+(, )?| = #\\d+")));
        own << call;
    }
    return own;
}

void PowerPageTest::form()
{
    const tabPowerDlg page;
    QCOMPARE(page.objectName(), QStringLiteral("tabPower"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Power"));
    QCOMPARE(page.size(), QSize(600, 320));
    QCOMPARE(support::compareForm(&page,
                 {{"tabWidget_2", "QTabWidget"}, {"tabWidget_2Page1", "QWidget"},
                     {"tabWidget_2Page2", "QWidget"}, {"comboBoxMode", "QComboBox"},
                     {"checkBoxCAN", "QCheckBox", "CAN power"},
                     {"checkBoxExtFan", "QCheckBox", "External fan power"},
                     {"checkBoxVideo_1", "QCheckBox", "Video Ch 1"},
                     {"checkBoxVideo_2", "QCheckBox", "Video Ch 2"},
                     {"checkBoxVideo_3", "QCheckBox", "Video Ch 3"},
                     {"checkBoxVideo_4", "QCheckBox", "Video Ch 4"},
                     {"progressBar", "QProgressBar", "24%"}, {"label", "QLabel", "Battery voltage"},
                     {"label_2", "QLabel", "Error Status"}, {"line", "QFrame"},
                     {"label_3", "QLabel", "Charge status"}, {"label_4", "QLabel", "Powersource: "},
                     {"icon", "QLabel"}}),
        QString());
    const auto *tabs = child<QTabWidget>(&page, "tabWidget_2");
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Power"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Battery"));
    const auto *mode = child<QComboBox>(&page, "comboBoxMode");
    QCOMPARE(mode->count(), 2);
    QCOMPARE(mode->itemText(0), QStringLiteral("Power settings at start-up"));
    QCOMPARE(mode->itemText(1), QStringLiteral("Current power settings"));
    QCOMPARE(child<QProgressBar>(&page, "progressBar")->value(), 24);
}

void PowerPageTest::handlesAndFirstReading()
{
    {
        const tabPowerDlg page;
        QCOMPARE(pageCalls(),
            QStringList({QStringLiteral("Power_create()"), QStringLiteral("Battery_create()"),
                QStringLiteral("Config_create()")}) +
                currentReads);
        QCOMPARE(child<QComboBox>(&page, "comboBoxMode")->currentIndex(), 0);
    }
    QCOMPARE(
        pageCalls(), QStringList({QStringLiteral("Power_release()"),
                         QStringLiteral("Battery_release()"), QStringLiteral("Config_release()")}));
}

void PowerPageTest::showChoosesTheCurrentSettings()
{
    tabPowerDlg page;
    pageCalls();
    page.show();
    // Once for the list's change, once by itself.
    QCOMPARE(pageCalls().mid(0, 7),
        currentReads + currentReads +
            QStringList({QStringLiteral("Battery_isAvailable() = 0 [true]")}));
    QCOMPARE(child<QComboBox>(&page, "comboBoxMode")->currentIndex(), 1);
    QVERIFY(checked(page, "checkBoxCAN"));
    QVERIFY(!checked(page, "checkBoxExtFan"));
    QVERIFY(checked(page, "checkBoxVideo_1"));
    QVERIFY(!checked(page, "checkBoxVideo_2"));
    QVERIFY(checked(page, "checkBoxVideo_3"));
    QVERIFY(!checked(page, "checkBoxVideo_4"));
    page.hide();
    page.show();
    QCOMPARE(pageCalls().filter(QStringLiteral("Power_get")), currentReads);
}

void PowerPageTest::modeChoosesWhatTheBoxesStandFor()
{
    tabPowerDlg page;
    page.show();
    pageCalls();
    auto *mode = child<QComboBox>(&page, "comboBoxMode");
    mode->setFocus();
    QTest::keyClick(mode, Qt::Key_Up);
    QCOMPARE(pageCalls(), QStringList({QStringLiteral("Config_getCanStartupPowerConfig() = 0 [0]"),
                              QStringLiteral("Config_getExtFanStartupPowerConfig() = 0 [1]"),
                              QStringLiteral("Config_getVideoStartupPowerConfig() = 0 [10]")}));
    QVERIFY(!checked(page, "checkBoxCAN"));
    QVERIFY(checked(page, "checkBoxExtFan"));
    QVERIFY(checked(page, "checkBoxVideo_2"));
    QVERIFY(!checked(page, "checkBoxVideo_3"));
    page.hide();
    page.show();
    QCOMPARE(mode->currentIndex(), 1);
    QVERIFY(checked(page, "checkBoxCAN"));
}

void PowerPageTest::failingRead_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("boxes");
    QTest::addColumn<int>("code");
    const QStringList can{QStringLiteral("checkBoxCAN")};
    const QStringList fan{QStringLiteral("checkBoxExtFan")};
    QStringList video;
    for (const char *box : videoBoxes)
        video << QString::fromLatin1(box);
    for (const int code : {2, 18, 20, 5, -1}) {
        const auto row = [&](int mode, const char *operation, const char *name,
                             const QStringList &boxes) {
            QTest::addRow("%s %d", operation, code) << mode << QString::fromLatin1(operation)
                                                    << QString::fromLatin1(name) << boxes << code;
        };
        row(1, "Power_getCanPowerStatus", "getCanPowerStatus", can);
        row(1, "Power_getExtFanPowerStatus", "getExtFanPowerStatus", fan);
        row(1, "Power_getVideoPowerStatus", "getVideoPowerStatus", video);
        row(0, "Config_getCanStartupPowerConfig", "getCanStartupPowerConfig", can);
        row(0, "Config_getExtFanStartupPowerConfig", "getExtFanStartupPowerConfig", fan);
        // One name for both states.
        row(0, "Config_getVideoStartupPowerConfig", "getVideoPowerStatus", video);
    }
}

void PowerPageTest::failingRead()
{
    QFETCH(int, mode);
    QFETCH(QString, operation);
    QFETCH(QString, name);
    QFETCH(QStringList, boxes);
    QFETCH(int, code);
    tabPowerDlg page;
    page.show();
    fault(operation, code);
    auto *list = child<QComboBox>(&page, "comboBoxMode");
    if (mode == 1) {
        list->setCurrentIndex(0);
        list->setCurrentIndex(1);
    } else {
        list->setCurrentIndex(0);
    }
    for (const auto *box : page.findChildren<QCheckBox *>()) {
        const bool affected = boxes.contains(box->objectName());
        QCOMPARE(box->isVisible(), !(affected && code == 2));
        QCOMPARE(box->isEnabled(), !(affected && code != 2));
    }
    const QString text =
        QStringLiteral("Error(%1) in %2: %3")
            .arg(QString::number(code), name, QString::fromLatin1(deviceErrorText(code)));
    QCOMPARE(dialogs.takeTexts(), code == 2 ? QStringList() : QStringList({text}));
}

void PowerPageTest::goodReadingBringsTheBoxesBack()
{
    tabPowerDlg page;
    fault(QStringLiteral("Power_getCanPowerStatus"), 2);
    fault(QStringLiteral("Power_getVideoPowerStatus"), 2);
    page.show();
    QVERIFY(!child<QCheckBox>(&page, "checkBoxCAN")->isVisible());
    QVERIFY(!child<QCheckBox>(&page, "checkBoxVideo_4")->isVisible());
    clearFaults();
    child<QComboBox>(&page, "comboBoxMode")->setCurrentIndex(0);
    QVERIFY(child<QCheckBox>(&page, "checkBoxCAN")->isVisible());
    QVERIFY(child<QCheckBox>(&page, "checkBoxVideo_4")->isVisible());
}

void PowerPageTest::clicksWriteInTheirMode_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QString>("call");
    QTest::newRow("CAN now") << 1 << QByteArray("checkBoxCAN")
                             << QStringLiteral("Power_setCanPowerStatus(0) = 0");
    QTest::newRow("fan now") << 1 << QByteArray("checkBoxExtFan")
                             << QStringLiteral("Power_setExtFanPowerStatus(1) = 0");
    QTest::newRow("video now") << 1 << QByteArray("checkBoxVideo_2")
                               << QStringLiteral("Power_setVideoPowerStatus(7) = 0");
    QTest::newRow("CAN at start") << 0 << QByteArray("checkBoxCAN")
                                  << QStringLiteral("Config_setCanStartupPowerConfig(1) = 0");
    QTest::newRow("fan at start") << 0 << QByteArray("checkBoxExtFan")
                                  << QStringLiteral("Config_setExtFanStartupPowerConfig(0) = 0");
    QTest::newRow("video at start") << 0 << QByteArray("checkBoxVideo_1")
                                    << QStringLiteral("Config_setVideoStartupPowerConfig(11) = 0");
}

void PowerPageTest::clicksWriteInTheirMode()
{
    QFETCH(int, mode);
    QFETCH(QByteArray, box);
    QFETCH(QString, call);
    tabPowerDlg page;
    page.show();
    child<QComboBox>(&page, "comboBoxMode")->setCurrentIndex(mode);
    pageCalls();
    click(page, box.constData());
    QCOMPARE(pageCalls(), QStringList({call}));
}

void PowerPageTest::videoMaskOfAllBoxes()
{
    setUnit(QStringLiteral("Power.videoPowerStatus"), QStringLiteral("0"));
    tabPowerDlg page;
    page.show();
    click(page, "checkBoxVideo_1");
    click(page, "checkBoxVideo_3");
    QCOMPARE(unit(QStringLiteral("Power.videoPowerStatus")), QStringLiteral("5"));
    click(page, "checkBoxVideo_2");
    click(page, "checkBoxVideo_4");
    QCOMPARE(unit(QStringLiteral("Power.videoPowerStatus")), QStringLiteral("15"));
    QCOMPARE(unit(QStringLiteral("Config.videoStartupPower")), QStringLiteral("10"));
}

void PowerPageTest::failingWrite_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");
    for (const int code : {2, 18, 20, 5, -1}) {
        const auto row = [&](int mode, const char *box, const char *operation, const char *name) {
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

void PowerPageTest::failingWrite()
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
    click(page, box.constData());
    QVERIFY2(checked(page, box.constData()) != before, "the box isn't set back");
    const auto seen = dialogs.take();
    QCOMPARE(seen.size(), 1);
    QCOMPARE(seen[0].text,
        QStringLiteral("Error(%1) in %2: %3")
            .arg(QString::number(code), name, QString::fromLatin1(deviceErrorText(code))));
    QCOMPARE(seen[0].parent, static_cast<QWidget *>(&page));
}

void PowerPageTest::backlightSlotStaysInPlace()
{
    tabPowerDlg page;
    pageCalls();
    QVERIFY(QMetaObject::invokeMethod(&page, "BacklightClicked", Q_ARG(bool, false)));
    QVERIFY(QMetaObject::invokeMethod(&page, "BacklightClicked", Q_ARG(bool, true)));
    QCOMPARE(pageCalls(), QStringList({QStringLiteral("Power_setBLPowerStatus(0) = 0"),
                              QStringLiteral("Power_setBLPowerStatus(1) = 0")}));
    fault(QStringLiteral("Power_setBLPowerStatus"), 5);
    QVERIFY(QMetaObject::invokeMethod(&page, "BacklightClicked", Q_ARG(bool, true)));
    QVERIFY(
        dialogs.takeTexts().value(0).startsWith(QLatin1String("Error(5) in setBLPowerStatus: ")));
}

void PowerPageTest::noBatteryTakesTheTab_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 2, 18, 20, 5, -1})
        QTest::addRow("%d", code) << code;
}

void PowerPageTest::noBatteryTakesTheTab()
{
    QFETCH(int, code);
    if (code == 0)
        setUnit(QStringLiteral("Battery.available"), QStringLiteral("false"));
    else
        fault(QStringLiteral("Battery_isAvailable"), code);
    tabPowerDlg page;
    for (int visit = 0; visit < 2; ++visit) {
        pageCalls();
        page.show();
        const auto *tabs = child<QTabWidget>(&page, "tabWidget_2");
        QCOMPARE(tabs->count(), 1);
        QCOMPARE(tabs->tabText(0), QStringLiteral("Power"));
        QVERIFY(!child<QWidget>(&page, "tabWidget_2Page2")->isEnabled());
        QCOMPARE(pageCalls().filter(QStringLiteral("Battery_get")), QStringList());
        page.hide();
    }
}

void PowerPageTest::batteryErrors_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    const auto failure = [](int code) {
        return QStringLiteral("Could not get battery error status code. Error(%1) %2\n")
            .arg(QString::number(code), QString::fromLatin1(deviceErrorText(code)));
    };
    QTest::newRow("none") << 0 << 0 << QString();
    QTest::newRow("thermistor")
        << 0 << 1 << QStringLiteral("Battery error! The thermistor temp sensor is not working\n");
    QTest::newRow("secondary") << 0 << 2
                               << QStringLiteral(
                                      "Battery error! The secondary temp sensor is not working\n");
    QTest::newRow("charging") << 0 << 3 << QStringLiteral("Battery error! Charging failed\n");
    QTest::newRow("overcurrent") << 0 << 4
                                 << QStringLiteral("Battery error! Overcurrent detected\n");
    QTest::newRow("not initiated")
        << 0 << 5 << QStringLiteral("Battery error! Battery not initiated\n");
    QTest::newRow("unknown") << 0 << 6 << failure(0);
    for (const int code : {2, 18, 20, 5, -1})
        QTest::addRow("%d", code) << code << 0 << failure(code);
}

void PowerPageTest::batteryErrors()
{
    QFETCH(int, code);
    QFETCH(int, status);
    QFETCH(QString, text);
    setUnit(QStringLiteral("Battery.hwErrorStatus"), QString::number(status));
    fault(QStringLiteral("Battery_getHwErrorStatus"), code);
    tabPowerDlg page;
    page.show();
    QCOMPARE(child<QLabel>(&page, "label_2")->text(), text);
}

void PowerPageTest::chargingStates_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    const char *texts[] = {"Battery is not being charged\n", "Battery is being charged\n",
        "Battery is fully charged\n", "Temperature is too low to charge the battery\n",
        "Temperature is too high to charge the battery\n",
        "Could not get battery charging status\n", "Could not get battery charging status\n"};
    for (int status = 0; status < 7; ++status)
        QTest::addRow("state %d", status) << 0 << status << QString::fromLatin1(texts[status]);
    for (const int code : {2, 18, 20, 5, -1})
        QTest::addRow("%d", code) << code << 1
                                  << QStringLiteral(
                                         "Could not get battery charging status. Error(%1) %2\n")
                                         .arg(QString::number(code),
                                             QString::fromLatin1(deviceErrorText(code)));
}

void PowerPageTest::chargingStates()
{
    QFETCH(int, code);
    QFETCH(int, status);
    QFETCH(QString, text);
    setUnit(QStringLiteral("Battery.chargingStatus"), QString::number(status));
    fault(QStringLiteral("Battery_getChargingStatus"), code);
    tabPowerDlg page;
    page.show();
    QCOMPARE(child<QLabel>(&page, "label_3")->text(), text);
}

void PowerPageTest::powerSources_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("source");
    QTest::addColumn<QString>("text");
    QTest::newRow("battery") << 0 << 0 << QStringLiteral("Power source: Battery");
    QTest::newRow("external") << 0 << 1 << QStringLiteral("Power source: External power");
    QTest::newRow("other") << 0 << 7 << QStringLiteral("Power source: External power");
    for (const int code : {2, 18, 20, 5, -1})
        QTest::addRow("%d", code) << code << 0 << QStringLiteral("Power source: Unknown");
}

void PowerPageTest::powerSources()
{
    QFETCH(int, code);
    QFETCH(int, source);
    QFETCH(QString, text);
    setUnit(QStringLiteral("Battery.powerSource"), QString::number(source));
    fault(QStringLiteral("Battery_getPowerSource"), code);
    tabPowerDlg page;
    page.show();
    QCOMPARE(child<QLabel>(&page, "label_4")->text(), text);
}

void PowerPageTest::levels_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 2, 18, 20, 5, -1})
        QTest::addRow("%d", code) << code;
}

void PowerPageTest::levels()
{
    QFETCH(int, code);
    setUnit(QStringLiteral("Battery.voltageLevel"), QStringLiteral("63"));
    fault(QStringLiteral("Battery_getVoltageLevel"), code);
    tabPowerDlg page;
    page.show();
    QCOMPARE(child<QProgressBar>(&page, "progressBar")->value(), code == 0 ? 63 : 0);
    QCOMPARE(child<QLabel>(&page, "label")->text(),
        code == 0 ? QStringLiteral("Battery voltage")
                  : QStringLiteral("Could not get battery power status. Error(%1) %2\n")
                        .arg(QString::number(code), QString::fromLatin1(deviceErrorText(code))));
}

VORN_TEST_MAIN(PowerPageTest)
#include "tst_powerpage.moc"
