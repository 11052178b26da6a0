#include "pages/tabOnOffDlg.h"
#include "tests/support/PageTest.h"

#include <QCheckBox>
#include <QGroupBox>

using namespace support;

namespace {

// What Apply writes, in its order, and the names in the error boxes.
const char *const writes[][2] = {{"setLongButtonPressAction", "setLongButtonPressAction"},
    {"setShortButtonPressAction", "setShortButtonPressAction"},
    {"setOnOffSigAction", "setOnOffSigAction"},
    {"setStartupTriggerConfig", "setStartupTriggerConfig"},
    {"setSuspendMaxTime", "setSuspendMaxTime"},
    {"setFrontBtnTrigTime", "setFrontBtnShutDownTrigTime"},
    {"setExtOnOffSigTrigTime", "setExtOnOffSigTrigTime"},
    {"setPowerOnStartup", "setPowerOnStartup"}};

} // namespace

class OnOffPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void validatorsBindTyping_data()
    {
        QTest::addColumn<QByteArray>("edit");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("taken");
        for (const char *edit : {"editButtonPressTime", "editTimeSuspend"}) {
            const auto row = [&](const char *typed, const char *taken) {
                QTest::addRow("%s '%s'", edit, typed)
                    << QByteArray(edit) << QString::fromLatin1(typed) << QString::fromLatin1(taken);
            };
            row("65535", "65535");
            row("-1", "1");
            row("12a", "12");
        }
        const auto signal = [](const char *typed, const char *taken) {
            QTest::addRow("signal '%s'", typed)
                << QByteArray("editTimeSignal") << QString::fromLatin1(typed)
                << QString::fromLatin1(taken);
        };
        signal("4294967295", "4294967295");
        signal("-1", "1");
        signal("12a", "12");
    }

    void validatorsBindTyping()
    {
        QFETCH(QByteArray, edit);
        QFETCH(QString, typed);
        QFETCH(QString, taken);
        tabOnOffDlg page;
        page.show();
        auto *field = child<QLineEdit>(&page, edit.constData());
        field->clear();
        QTest::keyClicks(field, typed);
        QCOMPARE(field->text(), taken);
    }

    void listsWithAndWithoutSuspend_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("suspend");
        QTest::newRow("success") << 0 << true;
        QTest::newRow("absent") << 2 << false;
        for (const int code : faultCodes)
            QTest::addRow("%d", code) << code << true;
    }

    void listsWithAndWithoutSuspend()
    {
        QFETCH(int, code);
        QFETCH(bool, suspend);
        fault("Config_getSuspendMaxTime"_s, code);
        calls();
        const tabOnOffDlg page;
        const QStringList made = calls();
        QCOMPARE(made.size(), 2);
        QCOMPARE(made[0], "Config_create()"_s);
        QVERIFY(made[1].startsWith("Config_getSuspendMaxTime() = %1"_s.arg(code)));
        QStringList expected{"No Action"_s, "Shut down"_s};
        if (suspend)
            expected.insert(1, "Suspend"_s);
        for (const char *name : {"comboBox", "comboBox_2", "comboBox_4"})
            QCOMPARE(items(child<QComboBox>(&page, name)), expected);
        QCOMPARE(child<QWidget>(&page, "groupSuspend")->isHidden(), !suspend);
    }

    void showReadsAll()
    {
        setUnit("Config.onOffSigAction"_s, "1"_s);
        setUnit("Config.shortButtonPressAction"_s, "0"_s);
        setUnit("Config.longButtonPressAction"_s, "2"_s);
        setUnit("Config.startupTrigger"_s, "3"_s);
        setUnit("Config.frontBtnTrigTime"_s, "65535"_s);
        setUnit("Config.extOnOffSigTrigTime"_s, "4294967295"_s);
        setUnit("Config.suspendMaxTime"_s, "60"_s);
        setUnit("Config.powerOnStartup"_s, "1"_s);
        {
            tabOnOffDlg page;
            calls();
            page.show();
            QCOMPARE(calls(), QStringList({"Config_getOnOffSigAction() = 0 [1]"_s,
                                  "Config_getShortButtonPressAction() = 0 [0]"_s,
                                  "Config_getLongButtonPressAction() = 0 [2]"_s,
                                  "Config_getStartupTriggerConfig() = 0 [3]"_s,
                                  "Config_getFrontBtnTrigTime() = 0 [65535]"_s,
                                  "Config_getExtOnOffSigTrigTime() = 0 [4294967295]"_s,
                                  "Config_getSuspendMaxTime() = 0 [60]"_s,
                                  "Config_getPowerOnStartup() = 0 [1]"_s}));
            QCOMPARE(index(page, "comboBox"), 1);
            QCOMPARE(index(page, "comboBox_2"), 0);
            QCOMPARE(index(page, "comboBox_4"), 2);
            QCOMPARE(index(page, "comboBox_3"), 2);
            QCOMPARE(text(page, "editButtonPressTime"), "65535"_s);
            QCOMPARE(text(page, "editTimeSignal"), "4294967295"_s);
            QCOMPARE(text(page, "editTimeSuspend"), "60"_s);
            QVERIFY(child<QCheckBox>(&page, "checkBoxPowerOnStartup")->isChecked());
        }
        QCOMPARE(calls(), QStringList({"Config_release()"_s}));
    }

    void showWithoutSuspend()
    {
        fault("Config_getSuspendMaxTime"_s, 2, 1);
        tabOnOffDlg page;
        calls();
        page.show();
        QCOMPARE(calls().filter("SuspendMaxTime"_s), QStringList());
        QVERIFY(!child<QLineEdit>(&page, "editTimeSuspend")->isEnabled());
        QVERIFY(!child<QWidget>(&page, "groupSuspend")->isVisible());
    }

    void actionsSelectTheirItems_data()
    {
        QTest::addColumn<bool>("suspend");
        QTest::addColumn<int>("action");
        QTest::addColumn<int>("index"); // -1: stays as it was
        QTest::addColumn<bool>("enabled");
        QTest::newRow("none") << true << 0 << 0 << true;
        QTest::newRow("suspend") << true << 1 << 1 << true;
        QTest::newRow("shut down") << true << 2 << 2 << true;
        QTest::newRow("unknown") << true << 3 << -1 << false;
        QTest::newRow("far off") << true << 257 << -1 << false;
        QTest::newRow("negative") << true << -1 << -1 << false;
        QTest::newRow("none, without suspend") << false << 0 << 0 << true;
        QTest::newRow("suspend, without suspend") << false << 1 << -1 << true;
        QTest::newRow("shut down, without suspend") << false << 2 << 1 << true;
        QTest::newRow("unknown, without suspend") << false << 200 << -1 << false;
    }

    void actionsSelectTheirItems()
    {
        QFETCH(bool, suspend);
        QFETCH(int, action);
        QFETCH(int, index);
        QFETCH(bool, enabled);
        if (!suspend)
            fault("Config_getSuspendMaxTime"_s, 2);
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
            QCOMPARE(
                child<QComboBox>(&page, place[1])->currentIndex(), index == -1 ? before : index);
            QCOMPARE(child<QGroupBox>(&page, place[2])->isEnabled(), enabled);
        }
    }

    void triggersSelectTheirItems_data()
    {
        QTest::addColumn<int>("trigger");
        QTest::addColumn<int>("index");
        QTest::newRow("button") << 1 << 0;
        QTest::newRow("signal") << 2 << 1;
        QTest::newRow("both") << 3 << 2;
        QTest::newRow("0") << 0 << -1;
        QTest::newRow("4") << 4 << -1;
        QTest::newRow("far off") << 257 << -1;
        QTest::newRow("negative") << -1 << -1;
    }

    void triggersSelectTheirItems()
    {
        QFETCH(int, trigger);
        QFETCH(int, index);
        setUnit("Config.startupTrigger"_s, QString::number(trigger));
        tabOnOffDlg page;
        page.show();
        QCOMPARE(child<QGroupBox>(&page, "groupButton_3")->isEnabled(), index != -1);
        if (index != -1)
            QCOMPARE(child<QComboBox>(&page, "comboBox_3")->currentIndex(), index);
    }

    void failingRead_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("disabled"); // widget, empty if none
        QTest::addColumn<QByteArray>("edit");     // field with the error text, empty if none
        for (const int code : failureCodes) {
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
            row("getExtOnOffSigTrigTime", absent ? "groupSignal" : "",
                absent ? "" : "editTimeSignal");
            row("getSuspendMaxTime", absent ? "groupSuspend" : "", absent ? "" : "editTimeSuspend");
            row("getPowerOnStartup", "checkBoxPowerOnStartup", "");
        }
    }

    void failingRead()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        QFETCH(QByteArray, disabled);
        QFETCH(QByteArray, edit);
        tabOnOffDlg page;
        page.show();
        page.hide();
        const QStringList good = shownCalls(page);
        fault("Config_"_s + operation, code);
        QCOMPARE(shownCalls(page), failing(good, "Config_"_s + operation, code));
        page.show();
        for (const char *name : {"groupSignal", "groupButton", "groupButton_2", "groupButton_3",
                 "groupSuspend", "checkBoxPowerOnStartup"}) {
            const auto *widget = child<QWidget>(&page, name);
            const bool below = disabled == "groupButton_3" && QByteArray(name).startsWith("check");
            QCOMPARE(widget->isEnabled(), disabled != name && !below);
        }
        if (!edit.isEmpty())
            QCOMPARE(text(page, edit.constData()), operation + ": Error:  "_s + deviceText(code));
    }

    void missingTimesCarryTheTextOn()
    {
        setUnit("Config.frontBtnTrigTime"_s, "1234"_s);
        tabOnOffDlg page;
        fault("Config_getExtOnOffSigTrigTime"_s, 2);
        fault("Config_getSuspendMaxTime"_s, 2);
        page.show();
        QCOMPARE(text(page, "editTimeSignal"), "1234"_s);
        QCOMPARE(text(page, "editTimeSuspend"), "1234"_s);
        QVERIFY(!child<QGroupBox>(&page, "groupSuspend")->isEnabled());
        QVERIFY(!child<QGroupBox>(&page, "groupSignal")->isEnabled());

        fault("Config_getFrontBtnTrigTime"_s, 2);
        page.hide();
        page.show();
        QCOMPARE(text(page, "editButtonPressTime"), QString());
        QCOMPARE(text(page, "editTimeSignal"), QString());
    }

    void powerOnStartup_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("checked");
        QTest::newRow("off") << 0 << false;
        QTest::newRow("on") << 1 << true;
        QTest::newRow("unknown") << 2 << false;
    }

    void powerOnStartup()
    {
        QFETCH(int, status);
        setUnit("Config.powerOnStartup"_s, QString::number(status));
        tabOnOffDlg page;
        auto *box = child<QCheckBox>(&page, "checkBoxPowerOnStartup");
        box->setChecked(status != 1);
        page.show();
        QTEST(box->isChecked(), "checked");
        QVERIFY(box->isEnabled());
    }

    void allReadsFail_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << code;
    }

    void allReadsFail()
    {
        QFETCH(int, code);
        tabOnOffDlg page;
        const QString error = deviceText(code);
        for (const QString &call : shownCalls(page))
            fault(call.section(QLatin1Char('('), 0, 0), code);
        page.hide();
        for (const char *edit : {"editButtonPressTime", "editTimeSignal", "editTimeSuspend"})
            child<QLineEdit>(&page, edit)->setText("before"_s);
        page.show();
        QCOMPARE(child<QGroupBox>(&page, "groupSuspend")->isEnabled(), code != 2);
        for (const char *group : {"groupSignal", "groupButton", "groupButton_2", "groupButton_3"})
            QVERIFY(!child<QGroupBox>(&page, group)->isEnabled());
        const auto shown = [&](const char *operation) {
            return code == 2 ? QString() : QString::fromLatin1(operation) + ": Error:  "_s + error;
        };
        QCOMPARE(text(page, "editButtonPressTime"), shown("getFrontBtnTrigTime"));
        QCOMPARE(text(page, "editTimeSignal"), shown("getExtOnOffSigTrigTime"));
        QCOMPARE(text(page, "editTimeSuspend"), shown("getSuspendMaxTime"));
        // What is disabled is written all the same.
        QStringList written{"setLongButtonPressAction"_s, "setShortButtonPressAction"_s,
            "setOnOffSigAction"_s, "setStartupTriggerConfig"_s, "setSuspendMaxTime(0)"_s,
            "setFrontBtnTrigTime(0)"_s, "setExtOnOffSigTrigTime(0)"_s, "setPowerOnStartup"_s};
        calls();
        click(&page, "pushButton");
        for (const QString &call : calls()) {
            QVERIFY2(call.startsWith("Config_"_s + written.value(0)), qPrintable(call));
            written.removeFirst();
        }
        QCOMPARE(written, QStringList());
        QCOMPARE(boxes(&page).size(), 3); // no field holds a number
    }

    void disabledStaysDisabled()
    {
        tabOnOffDlg page;
        fault("Config_getOnOffSigAction"_s, 5, 1);
        page.show();
        page.hide();
        page.show();
        QVERIFY(!child<QGroupBox>(&page, "groupSignal")->isEnabled());
    }

    void applyWritesAll()
    {
        tabOnOffDlg page;
        page.show();
        child<QComboBox>(&page, "comboBox")->setCurrentIndex(0);
        child<QComboBox>(&page, "comboBox_2")->setCurrentIndex(1);
        child<QComboBox>(&page, "comboBox_4")->setCurrentIndex(2);
        child<QComboBox>(&page, "comboBox_3")->setCurrentIndex(2);
        type(page, "editTimeSuspend", "7"_s);
        type(page, "editButtonPressTime", "4001"_s);
        type(page, "editTimeSignal", "9"_s);
        child<QCheckBox>(&page, "checkBoxPowerOnStartup")->setChecked(false);
        calls();
        click(&page, "pushButton");
        QCOMPARE(calls(),
            QStringList({"Config_setLongButtonPressAction(2) = 0"_s,
                "Config_setShortButtonPressAction(1) = 0"_s, "Config_setOnOffSigAction(0) = 0"_s,
                "Config_setStartupTriggerConfig(3) = 0"_s, "Config_setSuspendMaxTime(7) = 0"_s,
                "Config_setFrontBtnTrigTime(4001) = 0"_s, "Config_setExtOnOffSigTrigTime(9) = 0"_s,
                "Config_setPowerOnStartup(0) = 0"_s}));
    }

    void applyWithoutSuspend()
    {
        fault("Config_getSuspendMaxTime"_s, 2);
        tabOnOffDlg page;
        page.show();
        child<QComboBox>(&page, "comboBox")->setCurrentIndex(1);
        child<QComboBox>(&page, "comboBox_2")->setCurrentIndex(0);
        child<QComboBox>(&page, "comboBox_4")->setCurrentIndex(1);
        child<QComboBox>(&page, "comboBox_3")->setCurrentIndex(0);
        child<QCheckBox>(&page, "checkBoxPowerOnStartup")->setChecked(true);
        type(page, "editButtonPressTime", "1"_s);
        type(page, "editTimeSignal", "2"_s);
        calls();
        click(&page, "pushButton");
        QCOMPARE(calls(),
            QStringList({"Config_setLongButtonPressAction(2) = 0"_s,
                "Config_setShortButtonPressAction(0) = 0"_s, "Config_setOnOffSigAction(2) = 0"_s,
                "Config_setStartupTriggerConfig(1) = 0"_s, "Config_setFrontBtnTrigTime(1) = 0"_s,
                "Config_setExtOnOffSigTrigTime(2) = 0"_s, "Config_setPowerOnStartup(1) = 0"_s}));
    }

    void numberFields_data()
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
            {"editTimeSignal", "Config_setExtOnOffSigTrigTime",
                "ON/OFF signal time - invalid format.", false},
        };
        const char *const invalid[] = {
            "", " ", "-1", "0x10", "1,000", "1.5", "12a", "4294967296", "getX: Error:  text"};
        for (const Field &field : fields) {
            const auto row = [&](const char *typed, qint64 value, bool valid) {
                QTest::addRow("%s '%s'", field.edit, typed)
                    << QByteArray(field.edit) << QString::fromLatin1(typed)
                    << "%1(%2) = "_s.arg(QString::fromLatin1(field.call)).arg(value)
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

    void numberFields()
    {
        QFETCH(QByteArray, edit);
        QFETCH(QString, typed);
        QFETCH(QString, call);
        QFETCH(QString, message);
        tabOnOffDlg page;
        page.show();
        type(page, edit.constData(), typed);
        calls();
        click(&page, "pushButton");
        const QStringList made = calls();
        QCOMPARE(made.filter("Config_set"_s).size(), 8);
        QCOMPARE(made.filter(call).size(), 1);
        QCOMPARE(boxes(&page), message.isEmpty() ? QStringList() : QStringList(message));
    }

    void errorTextIsNoNumber()
    {
        tabOnOffDlg page;
        fault("Config_getFrontBtnTrigTime"_s, 18);
        page.show();
        calls();
        click(&page, "pushButton");
        QCOMPARE(calls().filter("FrontBtn"_s), QStringList("Config_setFrontBtnTrigTime(0) = 0"_s));
        QCOMPARE(boxes(&page), QStringList("ON/OFF button time - invalid format."_s));
    }

    void messagesComeInTheirOrder()
    {
        tabOnOffDlg page;
        page.show();
        for (const char *edit : {"editButtonPressTime", "editTimeSignal", "editTimeSuspend"})
            type(page, edit, QString());
        calls();
        // All of them come before anything is written.
        QStringList early;
        for (int message = 0; message < 3; ++message) {
            dialogs.plan([&](QDialog *dialog) {
                early += calls();
                dialog->accept();
            });
        }
        click(&page, "pushButton");
        QCOMPARE(boxes(&page),
            QStringList({"Supend time invalid format."_s, "ON/OFF button time - invalid format."_s,
                "ON/OFF signal time - invalid format."_s}));
        QCOMPARE(early, QStringList());
        QCOMPARE(calls().filter("Time"_s),
            QStringList({"Config_setSuspendMaxTime(0) = 0"_s, "Config_setFrontBtnTrigTime(0) = 0"_s,
                "Config_setExtOnOffSigTrigTime(0) = 0"_s}));
    }

    void failingWrites_data()
    {
        QStringList operations;
        for (const auto &write : writes)
            operations << "Config_"_s + QString::fromLatin1(write[0]);
        addFailureRows(operations);
    }

    void failingWrites()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabOnOffDlg page;
        page.show();
        calls();
        click(&page, "pushButton");
        const QStringList good = calls();
        fault(operation, code);
        click(&page, "pushButton");
        QCOMPARE(calls(), failing(good, operation, code));
        for (const auto &write : writes) {
            if (operation.endsWith(QLatin1Char('_') + QString::fromLatin1(write[0])))
                QCOMPARE(boxes(&page), QStringList(errorBox(code, QString::fromLatin1(write[1]))));
        }
    }

    void allWritesFail()
    {
        QStringList expected;
        for (const auto &write : writes) {
            fault("Config_"_s + QString::fromLatin1(write[0]), 5);
            expected << errorBox(5, QString::fromLatin1(write[1]));
        }
        tabOnOffDlg page;
        page.show();
        click(&page, "pushButton");
        QCOMPARE(boxes(&page), expected);
    }

private:
    static void type(const QWidget &page, const char *edit, const QString &text)
    {
        child<QLineEdit>(&page, edit)->setText(text);
    }
    static QString text(const QWidget &page, const char *edit)
    {
        return child<QLineEdit>(&page, edit)->text();
    }
    /** The calls that one showing makes. */
    QStringList shownCalls(tabOnOffDlg &page)
    {
        calls();
        page.show();
        page.hide();
        return calls();
    }
    static int index(const QWidget &page, const char *box)
    {
        return child<QComboBox>(&page, box)->currentIndex();
    }
};

VORN_TEST_MAIN(OnOffPageTest)
#include "tst_onoffpage.moc"
