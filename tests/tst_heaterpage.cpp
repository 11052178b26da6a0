#include "pages/tabSysConfDlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/FormCheck.h"

#include <QTextDocument>

using support::child;

class HeaterPageTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void form();
    void handles();
    void showReadsTheLimit();
    void failingRead_data();
    void failingRead();
    void fieldsFollowEachOther_data();
    void fieldsFollowEachOther();
    void validatorBindsTypingInCelsius();
    void apply_data();
    void apply();
    void failingWrite_data();
    void failingWrite();
    void disabledGroupWritesNothing();

private:
    static void type(QWidget *edit, const QString &text);
};

void HeaterPageTest::type(QWidget *edit, const QString &text)
{
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

void HeaterPageTest::form()
{
    const tabSysConfDlg page;
    QCOMPARE(page.objectName(), QStringLiteral("tabSysConf"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Heater"));
    QCOMPARE(page.size(), QSize(600, 320));
    QCOMPARE(support::compareForm(
                 &page, {{"icon", "QLabel"}, {"groupHeating", "QGroupBox", "Heating temperature"},
                            {"editHeatingTemp", "QLineEdit", "", "Range: -25°C to +5°C"},
                            {"label_5", "QLabel", "°C"},
                            {"editHeatingTemp_2", "QLineEdit", "", "Range: -13°F to +41°F"},
                            {"label_6", "QLabel", "°F"}, {"pushButton", "QPushButton", "Apply"}}),
        QString());
    QTextDocument text;
    text.setHtml(child<QLabel>(&page, "label_4")->text());
    QCOMPARE(text.toPlainText(),
        QStringLiteral(
            "Enable internal heater and delay start-up\nwhen internal temperature is lower than:"));
    const auto *validator = qobject_cast<const QIntValidator *>(
        child<QLineEdit>(&page, "editHeatingTemp")->validator());
    QVERIFY(validator);
    QCOMPARE(validator->bottom(), -25);
    QCOMPARE(validator->top(), 5);
    QVERIFY(!child<QLineEdit>(&page, "editHeatingTemp_2")->validator());
}

void HeaterPageTest::handles()
{
    {
        const tabSysConfDlg page;
        QCOMPARE(calls(),
            QStringList({QStringLiteral("Config_create()"), QStringLiteral("FrontLED_create()")}));
    }
    QCOMPARE(calls(),
        QStringList({QStringLiteral("Config_release()"), QStringLiteral("FrontLED_release()")}));
}

void HeaterPageTest::showReadsTheLimit()
{
    tabSysConfDlg page;
    calls();
    page.show();
    QCOMPARE(calls(), QStringList({QStringLiteral("Config_getHeatingTempLimit() = 0 [-10]")}));
    QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp")->text(), QStringLiteral("-10"));
    QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp_2")->text(), QStringLiteral("14"));
    page.hide();
    setUnit(QStringLiteral("Config.heatingTempLimit"), QStringLiteral("-32768"));
    page.show();
    QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp")->text(), QStringLiteral("-32768"));
    QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp_2")->text(), QStringLiteral("-58950"));
}

void HeaterPageTest::failingRead_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {2, 18, 20, 5, -1})
        QTest::addRow("%d", code) << code;
}

void HeaterPageTest::failingRead()
{
    QFETCH(int, code);
    fault(QStringLiteral("Config_getHeatingTempLimit"), code);
    tabSysConfDlg page;
    page.show();
    const auto *group = child<QGroupBox>(&page, "groupHeating");
    QCOMPARE(group->isVisible(), code != 2);
    QCOMPARE(child<QPushButton>(&page, "pushButton")->isVisible(), code != 2);
    if (code == 2)
        return;
    QVERIFY(!group->isEnabled());
    QCOMPARE(group->toolTip(), QStringLiteral("Requires newer SS version"));
    QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp")->text(),
        QLatin1String("getHeatingTempLimit: Error:  ") +
            QString::fromLatin1(deviceErrorText(code)));
    QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp_2")->text(), QString());
}

void HeaterPageTest::fieldsFollowEachOther_data()
{
    QTest::addColumn<QByteArray>("edit");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("other");
    const auto celsius = [](const char *typed, const char *other) {
        QTest::addRow("%s C", typed) << QByteArray("editHeatingTemp") << QString::fromLatin1(typed)
                                     << QString::fromLatin1(other);
    };
    const auto fahrenheit = [](const char *typed, const char *other) {
        QTest::addRow("%s F", typed) << QByteArray("editHeatingTemp_2")
                                     << QString::fromLatin1(typed) << QString::fromLatin1(other);
    };
    celsius("5", "41");
    celsius("-25", "-13");
    celsius("0", "32");
    celsius("-1", "30");
    celsius("", "");
    celsius("-", "");
    fahrenheit("41", "5");
    fahrenheit("-13", "-25");
    fahrenheit("33", "0");
    fahrenheit("30", "-1");
    fahrenheit("100", "37");
    fahrenheit("abc", "");
    fahrenheit("", "");
    fahrenheit("2147483647", "1193046452");
    fahrenheit("-2147483648", "-1193046488");
    fahrenheit("2147483648", "");
    fahrenheit("0x20", "");
    fahrenheit("1,000", "");
    fahrenheit("+41", "5");
    fahrenheit(" 41 ", "5");
}

void HeaterPageTest::fieldsFollowEachOther()
{
    QFETCH(QByteArray, edit);
    QFETCH(QString, typed);
    QFETCH(QString, other);
    tabSysConfDlg page;
    page.show();
    auto *field = child<QLineEdit>(&page, edit.constData());
    const bool inCelsius = edit == "editHeatingTemp";
    const auto *target =
        child<QLineEdit>(&page, inCelsius ? "editHeatingTemp_2" : "editHeatingTemp");
    type(field, typed);
    QCOMPARE(field->text(), typed);
    QCOMPARE(target->text(), other);
    // The way back is still connected, once.
    type(field, QStringLiteral("5"));
    QCOMPARE(target->text(), inCelsius ? QStringLiteral("41") : QStringLiteral("-15"));
}

void HeaterPageTest::validatorBindsTypingInCelsius()
{
    tabSysConfDlg page;
    page.show();
    auto *celsius = child<QLineEdit>(&page, "editHeatingTemp");
    type(celsius, QStringLiteral("123abc"));
    QVERIFY(!celsius->text().contains(QLatin1Char('a')));
    QVERIFY(celsius->text() != QStringLiteral("123"));
}

void HeaterPageTest::apply_data()
{
    QTest::addColumn<QString>("fahrenheit");
    QTest::addColumn<QString>("celsius");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("written");
    const QString invalid = QStringLiteral("Heating temperature - invalid format.");
    const QString range =
        QStringLiteral("Heating temperature out of allowed range (-25°C to +5°C).");
    QTest::newRow("highest") << QString() << QStringLiteral("5") << QString() << 5;
    QTest::newRow("lowest") << QString() << QStringLiteral("-25") << QString() << -25;
    QTest::newRow("above") << QString() << QStringLiteral("6") << range << 0;
    QTest::newRow("below") << QString() << QStringLiteral("-26") << range << 0;
    QTest::newRow("empty") << QString() << QStringLiteral("") << invalid << 0;
    QTest::newRow("sign only") << QString() << QStringLiteral("-") << invalid << 0;
    QTest::newRow("hexadecimal") << QString() << QStringLiteral("0x5") << invalid << 0;
    QTest::newRow("huge") << QString() << QStringLiteral("99999999999") << invalid << 0;
    // Cut to 16 bits before the range is tested.
    QTest::newRow("wraps to 4") << QString() << QStringLiteral("65540") << QString() << 4;
    QTest::newRow("100 F") << QStringLiteral("100") << QString() << range << 0;
    QTest::newRow("abc F") << QStringLiteral("abc") << QString() << invalid << 0;
    QTest::newRow("33 F") << QStringLiteral("33") << QString() << QString() << 0;
}

void HeaterPageTest::apply()
{
    QFETCH(QString, fahrenheit);
    QFETCH(QString, celsius);
    QFETCH(QString, message);
    QFETCH(int, written);
    tabSysConfDlg page;
    page.show();
    if (fahrenheit.isNull())
        child<QLineEdit>(&page, "editHeatingTemp")->setText(celsius);
    else
        type(child<QLineEdit>(&page, "editHeatingTemp_2"), fahrenheit);
    calls();
    QTest::mouseClick(child<QPushButton>(&page, "pushButton"), Qt::LeftButton);
    if (message.isEmpty()) {
        QCOMPARE(calls(),
            QStringList({QStringLiteral("Config_setHeatingTempLimit(%1) = 0").arg(written)}));
        QCOMPARE(unit(QStringLiteral("Config.heatingTempLimit")), QString::number(written));
        return;
    }
    QCOMPARE(calls(), QStringList());
    const auto seen = dialogs.take();
    QCOMPARE(seen.size(), 1);
    QCOMPARE(seen[0].text, message);
    QCOMPARE(seen[0].title, QStringLiteral("Vornsettings"));
    QCOMPARE(seen[0].icon, QMessageBox::Critical);
    QCOMPARE(seen[0].parent, static_cast<QWidget *>(&page));
}

void HeaterPageTest::failingWrite_data()
{
    failingRead_data();
}

void HeaterPageTest::failingWrite()
{
    QFETCH(int, code);
    tabSysConfDlg page;
    page.show();
    fault(QStringLiteral("Config_setHeatingTempLimit"), code);
    QTest::mouseClick(child<QPushButton>(&page, "pushButton"), Qt::LeftButton);
    QCOMPARE(dialogs.takeTexts(),
        QStringList({QStringLiteral("Error(%1) in setHeatingTempLimit: %2")
                         .arg(QString::number(code), QString::fromLatin1(deviceErrorText(code)))}));
}

void HeaterPageTest::disabledGroupWritesNothing()
{
    fault(QStringLiteral("Config_getHeatingTempLimit"), 5);
    tabSysConfDlg page;
    page.show();
    calls();
    QTest::mouseClick(child<QPushButton>(&page, "pushButton"), Qt::LeftButton);
    QCOMPARE(calls(), QStringList());
}

VORN_TEST_MAIN(HeaterPageTest)
#include "tst_heaterpage.moc"
