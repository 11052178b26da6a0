#include "pages/tabOnOffDlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/FormCheck.h"

using support::child;

class OnOffPageTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void form();
    void listsWithAndWithoutSuspend_data();
    void listsWithAndWithoutSuspend();
    void showReadsAll();
    void showWithoutSuspend();
    void actionsSelectTheirItems_data();
    void actionsSelectTheirItems();
    void triggersSelectTheirItems_data();
    void triggersSelectTheirItems();
    void failingRead_data();
    void failingRead();
    void missingTimesCarryTheTextOn();
    void applyWritesAll();
    void applyWithoutSuspend();
    void numberFields_data();
    void numberFields();
    void failingWrites_data();
    void failingWrites();

private:
    static void type(const QWidget &page, const char *edit, const QString &text)
    {
        child<QLineEdit>(&page, edit)->setText(text);
    }
    static QString text(const QWidget &page, const char *edit)
    {
        return child<QLineEdit>(&page, edit)->text();
    }
    static int index(const QWidget &page, const char *box)
    {
        return child<QComboBox>(&page, box)->currentIndex();
    }
    static void apply(const QWidget &page)
    {
        QTest::mouseClick(child<QPushButton>(&page, "pushButton"), Qt::LeftButton);
    }
};

void OnOffPageTest::form()
{
    tabOnOffDlg page;
    QCOMPARE(page.objectName(), QStringLiteral("tabOnOff"));
    QCOMPARE(page.windowTitle(), QStringLiteral("On/Off Settings"));
    QCOMPARE(page.size(), QSize(600, 320));
    QCOMPARE(support::compareForm(&page,
                 {{"icon", "QLabel"}, {"groupButton", "QGroupBox", "Short press - ON/OFF button"},
                     {"groupButton_2", "QGroupBox", "Long press - ON/OFF button"},
                     {"label_4", "QLabel", "Required time to press:"},
                     {"editButtonPressTime", "QLineEdit", "", "Range: 0 to 65535"},
                     {"label", "QLabel", "ms"}, {"groupSignal", "QGroupBox", "ON/OFF signal"},
                     {"label_2", "QLabel", "Required state change time:"},
                     {"editTimeSignal", "QLineEdit", "", "Range: 0 to 4294967295"},
                     {"label_5", "QLabel", "s"}, {"groupSuspend", "QGroupBox", "Suspend mode"},
                     {"label_3", "QLabel", "Maximum time in suspend mode (0 = Infinite):"},
                     {"editTimeSuspend", "QLineEdit", "", "Range: 0 to 65535"},
                     {"label_6", "QLabel", "min"}, {"groupButton_3", "QGroupBox", "Unit start-up"},
                     {"checkBoxPowerOnStartup", "QCheckBox", "Always start when\n power turned on"},
                     {"pushButton", "QPushButton", "Apply"}}),
        QString());
    const auto parentOf = [&](const char *name) {
        return child<QWidget>(&page, name)->parentWidget()->objectName();
    };
    QCOMPARE(parentOf("comboBox_2"), QStringLiteral("groupButton"));
    QCOMPARE(parentOf("comboBox_4"), QStringLiteral("groupButton_2"));
    QCOMPARE(parentOf("editButtonPressTime"), QStringLiteral("groupButton_2"));
    QCOMPARE(parentOf("comboBox"), QStringLiteral("groupSignal"));
    QCOMPARE(parentOf("editTimeSignal"), QStringLiteral("groupSignal"));
    QCOMPARE(parentOf("editTimeSuspend"), QStringLiteral("groupSuspend"));
    QCOMPARE(parentOf("comboBox_3"), QStringLiteral("groupButton_3"));
    for (const char *edit : {"editButtonPressTime", "editTimeSuspend"}) {
        const auto *validator =
            qobject_cast<const QIntValidator *>(child<QLineEdit>(&page, edit)->validator());
        QVERIFY(validator && validator->bottom() == 0 && validator->top() == 65535);
    }
    const auto *validator = qobject_cast<const QDoubleValidator *>(
        child<QLineEdit>(&page, "editTimeSignal")->validator());
    QVERIFY(validator && validator->bottom() == 0.0 && validator->top() == 4294967295.0);
    QCOMPARE(validator->decimals(), 0);
}

void OnOffPageTest::listsWithAndWithoutSuspend_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("suspend");
    QTest::newRow("success") << 0 << true;
    QTest::newRow("absent") << 2 << false;
    for (const int code : {18, 20, 5, -1})
        QTest::addRow("%d", code) << code << true;
}

void OnOffPageTest::listsWithAndWithoutSuspend()
{
    QFETCH(int, code);
    QFETCH(bool, suspend);
    fault(QStringLiteral("Config_getSuspendMaxTime"), code);
    calls();
    const tabOnOffDlg page;
    const QStringList made = calls();
    QCOMPARE(made.size(), 2);
    QCOMPARE(made[0], QStringLiteral("Config_create()"));
    QVERIFY(made[1].startsWith(QStringLiteral("Config_getSuspendMaxTime() = %1").arg(code)));
    QStringList expected{QStringLiteral("No Action"), QStringLiteral("Shut down")};
    if (suspend)
        expected.insert(1, QStringLiteral("Suspend"));
    for (const char *name : {"comboBox", "comboBox_2", "comboBox_4"}) {
        const auto *box = child<QComboBox>(&page, name);
        QStringList items;
        for (int i = 0; i < box->count(); ++i)
            items << box->itemText(i);
        QCOMPARE(items, expected);
    }
    const auto *trigger = child<QComboBox>(&page, "comboBox_3");
    QCOMPARE(trigger->count(), 3);
    QCOMPARE(trigger->itemText(0), QStringLiteral("Button"));
    QCOMPARE(trigger->itemText(1), QStringLiteral("ON/OFF signal"));
    QCOMPARE(trigger->itemText(2), QStringLiteral("Both button and signal"));
    QCOMPARE(child<QWidget>(&page, "groupSuspend")->isHidden(), !suspend);
}

void OnOffPageTest::showReadsAll()
{
    setUnit(QStringLiteral("Config.onOffSigAction"), QStringLiteral("1"));
    setUnit(QStringLiteral("Config.shortButtonPressAction"), QStringLiteral("0"));
    setUnit(QStringLiteral("Config.longButtonPressAction"), QStringLiteral("2"));
    setUnit(QStringLiteral("Config.startupTrigger"), QStringLiteral("3"));
    setUnit(QStringLiteral("Config.frontBtnTrigTime"), QStringLiteral("65535"));
    setUnit(QStringLiteral("Config.extOnOffSigTrigTime"), QStringLiteral("4294967295"));
    setUnit(QStringLiteral("Config.suspendMaxTime"), QStringLiteral("60"));
    setUnit(QStringLiteral("Config.powerOnStartup"), QStringLiteral("1"));
    {
        tabOnOffDlg page;
        calls();
        page.show();
        QCOMPARE(calls(), QStringList({QStringLiteral("Config_getOnOffSigAction() = 0 [1]"),
                              QStringLiteral("Config_getShortButtonPressAction() = 0 [0]"),
                              QStringLiteral("Config_getLongButtonPressAction() = 0 [2]"),
                              QStringLiteral("Config_getStartupTriggerConfig() = 0 [3]"),
                              QStringLiteral("Config_getFrontBtnTrigTime() = 0 [65535]"),
                              QStringLiteral("Config_getExtOnOffSigTrigTime() = 0 [4294967295]"),
                              QStringLiteral("Config_getSuspendMaxTime() = 0 [60]"),
                              QStringLiteral("Config_getPowerOnStartup() = 0 [1]")}));
        QCOMPARE(index(page, "comboBox"), 1);
        QCOMPARE(index(page, "comboBox_2"), 0);
        QCOMPARE(index(page, "comboBox_4"), 2);
        QCOMPARE(index(page, "comboBox_3"), 2);
        QCOMPARE(text(page, "editButtonPressTime"), QStringLiteral("65535"));
        QCOMPARE(text(page, "editTimeSignal"), QStringLiteral("4294967295"));
        QCOMPARE(text(page, "editTimeSuspend"), QStringLiteral("60"));
        QVERIFY(child<QCheckBox>(&page, "checkBoxPowerOnStartup")->isChecked());
    }
    QCOMPARE(calls(), QStringList({QStringLiteral("Config_release()")}));
}

void OnOffPageTest::showWithoutSuspend()
{
    fault(QStringLiteral("Config_getSuspendMaxTime"), 2, 1);
    tabOnOffDlg page;
    calls();
    page.show();
    QCOMPARE(calls().filter(QStringLiteral("SuspendMaxTime")), QStringList());
    QVERIFY(!child<QLineEdit>(&page, "editTimeSuspend")->isEnabled());
    QVERIFY(!child<QWidget>(&page, "groupSuspend")->isVisible());
}

void OnOffPageTest::actionsSelectTheirItems_data()
{
    QTest::addColumn<bool>("suspend");
    QTest::addColumn<int>("action");
    QTest::addColumn<int>("index"); // -1: stays as it was
    QTest::addColumn<bool>("enabled");
    QTest::newRow("none") << true << 0 << 0 << true;
    QTest::newRow("suspend") << true << 1 << 1 << true;
    QTest::newRow("shut down") << true << 2 << 2 << true;
    QTest::newRow("unknown") << true << 3 << -1 << false;
    QTest::newRow("none, without suspend") << false << 0 << 0 << true;
    QTest::newRow("suspend, without suspend") << false << 1 << -1 << true;
    QTest::newRow("shut down, without suspend") << false << 2 << 1 << true;
    QTest::newRow("unknown, without suspend") << false << 200 << -1 << false;
}

void OnOffPageTest::actionsSelectTheirItems()
{
    QFETCH(bool, suspend);
    QFETCH(int, action);
    QFETCH(int, index);
    QFETCH(bool, enabled);
    if (!suspend)
        fault(QStringLiteral("Config_getSuspendMaxTime"), 2);
    const char *const places[][3] = {{"Config.onOffSigAction", "comboBox", "groupSignal"},
        {"Config.shortButtonPressAction", "comboBox_2", "groupButton"},
        {"Config.longButtonPressAction", "comboBox_4", "groupButton_2"}};
    tabOnOffDlg page;
    for (const auto &place : places) {
        setUnit(QString::fromLatin1(place[0]), QString::number(action));
        child<QComboBox>(&page, place[1])->setCurrentIndex(index == 1 ? 0 : 1);
    }
    page.show();
    for (const auto &place : places) {
        const int before = index == 1 ? 0 : 1;
        QCOMPARE(child<QComboBox>(&page, place[1])->currentIndex(), index == -1 ? before : index);
        QCOMPARE(child<QGroupBox>(&page, place[2])->isEnabled(), enabled);
    }
}

void OnOffPageTest::triggersSelectTheirItems_data()
{
    QTest::addColumn<int>("trigger");
    QTest::addColumn<int>("index");
    QTest::newRow("button") << 1 << 0;
    QTest::newRow("signal") << 2 << 1;
    QTest::newRow("both") << 3 << 2;
    QTest::newRow("0") << 0 << -1;
    QTest::newRow("4") << 4 << -1;
}

void OnOffPageTest::triggersSelectTheirItems()
{
    QFETCH(int, trigger);
    QFETCH(int, index);
    setUnit(QStringLiteral("Config.startupTrigger"), QString::number(trigger));
    tabOnOffDlg page;
    page.show();
    QCOMPARE(child<QGroupBox>(&page, "groupButton_3")->isEnabled(), index != -1);
    if (index != -1)
        QCOMPARE(child<QComboBox>(&page, "comboBox_3")->currentIndex(), index);
}

void OnOffPageTest::failingRead_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("disabled"); // widget, empty if none
    QTest::addColumn<QByteArray>("edit");     // field with the error text, empty if none
    for (const int code : {2, 18, 20, 5, -1}) {
        const bool absent = code == 2;
        const auto row = [&](const char *operation, const char *disabled, const char *edit) {
            QTest::addRow("%s %d", operation, code) << QString::fromLatin1(operation) << code
                                                    << QByteArray(disabled) << QByteArray(edit);
        };
        row("getOnOffSigAction", "groupSignal", "");
        row("getShortButtonPressAction", "groupButton", "");
        row("getLongButtonPressAction", "groupButton_2", "");
        row("getStartupTriggerConfig", "groupButton_3", "");
        // The time of the long press takes the short press group with it.
        row("getFrontBtnTrigTime", absent ? "groupButton" : "",
            absent ? "" : "editButtonPressTime");
        row("getExtOnOffSigTrigTime", absent ? "groupSignal" : "", absent ? "" : "editTimeSignal");
        row("getPowerOnStartup", "checkBoxPowerOnStartup", "");
    }
}

void OnOffPageTest::failingRead()
{
    QFETCH(QString, operation);
    QFETCH(int, code);
    QFETCH(QByteArray, disabled);
    QFETCH(QByteArray, edit);
    tabOnOffDlg page;
    fault(QLatin1String("Config_") + operation, code);
    page.show();
    for (const char *name : {"groupSignal", "groupButton", "groupButton_2", "groupButton_3",
             "groupSuspend", "checkBoxPowerOnStartup"}) {
        const auto *widget = child<QWidget>(&page, name);
        const bool below = disabled == "groupButton_3" && QByteArray(name).startsWith("check");
        QCOMPARE(widget->isEnabled(), disabled != name && !below);
    }
    if (!edit.isEmpty())
        QCOMPARE(text(page, edit.constData()),
            operation + QLatin1String(": Error:  ") + QString::fromLatin1(deviceErrorText(code)));
}

void OnOffPageTest::missingTimesCarryTheTextOn()
{
    setUnit(QStringLiteral("Config.frontBtnTrigTime"), QStringLiteral("1234"));
    tabOnOffDlg page;
    fault(QStringLiteral("Config_getExtOnOffSigTrigTime"), 2);
    fault(QStringLiteral("Config_getSuspendMaxTime"), 2);
    page.show();
    QCOMPARE(text(page, "editTimeSignal"), QStringLiteral("1234"));
    QCOMPARE(text(page, "editTimeSuspend"), QStringLiteral("1234"));
    QVERIFY(!child<QGroupBox>(&page, "groupSuspend")->isEnabled());
    QVERIFY(!child<QGroupBox>(&page, "groupSignal")->isEnabled());

    fault(QStringLiteral("Config_getFrontBtnTrigTime"), 2);
    page.hide();
    page.show();
    QCOMPARE(text(page, "editButtonPressTime"), QString());
    QCOMPARE(text(page, "editTimeSignal"), QString());
}

void OnOffPageTest::applyWritesAll()
{
    tabOnOffDlg page;
    page.show();
    child<QComboBox>(&page, "comboBox")->setCurrentIndex(0);
    child<QComboBox>(&page, "comboBox_2")->setCurrentIndex(1);
    child<QComboBox>(&page, "comboBox_4")->setCurrentIndex(2);
    child<QComboBox>(&page, "comboBox_3")->setCurrentIndex(2);
    type(page, "editTimeSuspend", QStringLiteral("7"));
    type(page, "editButtonPressTime", QStringLiteral("4001"));
    type(page, "editTimeSignal", QStringLiteral("9"));
    child<QCheckBox>(&page, "checkBoxPowerOnStartup")->setChecked(false);
    calls();
    apply(page);
    QCOMPARE(calls(), QStringList({QStringLiteral("Config_setLongButtonPressAction(2) = 0"),
                          QStringLiteral("Config_setShortButtonPressAction(1) = 0"),
                          QStringLiteral("Config_setOnOffSigAction(0) = 0"),
                          QStringLiteral("Config_setStartupTriggerConfig(3) = 0"),
                          QStringLiteral("Config_setSuspendMaxTime(7) = 0"),
                          QStringLiteral("Config_setFrontBtnTrigTime(4001) = 0"),
                          QStringLiteral("Config_setExtOnOffSigTrigTime(9) = 0"),
                          QStringLiteral("Config_setPowerOnStartup(0) = 0")}));
}

void OnOffPageTest::applyWithoutSuspend()
{
    fault(QStringLiteral("Config_getSuspendMaxTime"), 2);
    tabOnOffDlg page;
    page.show();
    child<QComboBox>(&page, "comboBox")->setCurrentIndex(1);
    child<QComboBox>(&page, "comboBox_2")->setCurrentIndex(0);
    child<QComboBox>(&page, "comboBox_4")->setCurrentIndex(1);
    child<QComboBox>(&page, "comboBox_3")->setCurrentIndex(0);
    child<QCheckBox>(&page, "checkBoxPowerOnStartup")->setChecked(true);
    type(page, "editButtonPressTime", QStringLiteral("1"));
    type(page, "editTimeSignal", QStringLiteral("2"));
    calls();
    apply(page);
    QCOMPARE(calls(), QStringList({QStringLiteral("Config_setLongButtonPressAction(2) = 0"),
                          QStringLiteral("Config_setShortButtonPressAction(0) = 0"),
                          QStringLiteral("Config_setOnOffSigAction(2) = 0"),
                          QStringLiteral("Config_setStartupTriggerConfig(1) = 0"),
                          QStringLiteral("Config_setFrontBtnTrigTime(1) = 0"),
                          QStringLiteral("Config_setExtOnOffSigTrigTime(2) = 0"),
                          QStringLiteral("Config_setPowerOnStartup(1) = 0")}));
}

void OnOffPageTest::numberFields_data()
{
    QTest::addColumn<QByteArray>("edit");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("message");
    struct Field {
        const char *edit;
        const char *call;
        const char *message;
        bool narrow; ///< cut to 16 bits
    };
    const Field fields[] = {
        {"editTimeSuspend", "Config_setSuspendMaxTime", "Supend time invalid format.", true},
        {"editButtonPressTime", "Config_setFrontBtnTrigTime",
            "ON/OFF button time - invalid format.", true},
        {"editTimeSignal", "Config_setExtOnOffSigTrigTime", "ON/OFF signal time - invalid format.",
            false},
    };
    const char *const invalid[] = {
        "", " ", "-1", "0x10", "1,000", "1.5", "12a", "4294967296", "getX: Error:  text"};
    for (const Field &field : fields) {
        const auto row = [&](const char *typed, qint64 value, bool valid) {
            QTest::addRow("%s '%s'", field.edit, typed)
                << QByteArray(field.edit) << QString::fromLatin1(typed)
                << QStringLiteral("%1(%2) = ").arg(QString::fromLatin1(field.call)).arg(value)
                << (valid ? QString() : QString::fromLatin1(field.message));
        };
        for (const char *typed : invalid)
            row(typed, 0, false);
        row("+5", 5, true);
        row(" 7 ", 7, true);
        row("007", 7, true);
        row("70000", field.narrow ? 70000 & 0xFFFF : 70000, true);
        row("4294967295", field.narrow ? 65535 : 4294967295, true);
    }
}

void OnOffPageTest::numberFields()
{
    QFETCH(QByteArray, edit);
    QFETCH(QString, typed);
    QFETCH(QString, call);
    QFETCH(QString, message);
    tabOnOffDlg page;
    page.show();
    type(page, edit.constData(), typed);
    calls();
    apply(page);
    const QStringList made = calls();
    QCOMPARE(made.filter(QStringLiteral("Config_set")).size(), 8);
    QCOMPARE(made.filter(call).size(), 1);
    const auto seen = dialogs.take();
    QCOMPARE(seen.size(), message.isEmpty() ? 0 : 1);
    if (!message.isEmpty()) {
        QCOMPARE(seen[0].text, message);
        QCOMPARE(seen[0].title, QStringLiteral("Vornsettings"));
        QCOMPARE(seen[0].icon, QMessageBox::Critical);
        QCOMPARE(seen[0].parent, static_cast<QWidget *>(&page));
    }
}

void OnOffPageTest::failingWrites_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");
    const char *const writes[][2] = {{"setLongButtonPressAction", "setLongButtonPressAction"},
        {"setShortButtonPressAction", "setShortButtonPressAction"},
        {"setOnOffSigAction", "setOnOffSigAction"},
        {"setStartupTriggerConfig", "setStartupTriggerConfig"},
        {"setSuspendMaxTime", "setSuspendMaxTime"},
        {"setFrontBtnTrigTime", "setFrontBtnShutDownTrigTime"},
        {"setExtOnOffSigTrigTime", "setExtOnOffSigTrigTime"},
        {"setPowerOnStartup", "setPowerOnStartup"}};
    for (const auto &write : writes) {
        for (const int code : {2, 18, 20, 5, -1})
            QTest::addRow("%s %d", write[0], code)
                << QString::fromLatin1(write[0]) << QString::fromLatin1(write[1]) << code;
    }
}

void OnOffPageTest::failingWrites()
{
    QFETCH(QString, operation);
    QFETCH(QString, name);
    QFETCH(int, code);
    tabOnOffDlg page;
    page.show();
    fault(QLatin1String("Config_") + operation, code);
    calls();
    apply(page);
    QCOMPARE(calls().filter(QStringLiteral("Config_set")).size(), 8);
    QCOMPARE(
        dialogs.takeTexts(), QStringList({QStringLiteral("Error(%1) in %2: %3")
                                              .arg(QString::number(code), name,
                                                  QString::fromLatin1(deviceErrorText(code)))}));
}

VORN_TEST_MAIN(OnOffPageTest)
#include "tst_onoffpage.moc"
