#include "pages/tabSysConfDlg.h"
#include "tests/support/PageTest.h"

#include <QGroupBox>

using namespace support;

class HeaterPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void showReadsTheLimit()
    {
        tabSysConfDlg page;
        calls();
        page.show();
        QCOMPARE(calls(), QStringList("Config_getHeatingTempLimit() = 0 [-10]"_s));
        QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp")->text(), "-10"_s);
        QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp_2")->text(), "14"_s);
        page.hide();
        setUnit("Config.heatingTempLimit"_s, "-32768"_s);
        page.show();
        QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp")->text(), "-32768"_s);
        QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp_2")->text(), "-58950"_s);
    }

    void failingRead_data() { addFailureRows({"Config_getHeatingTempLimit"_s}); }

    void failingRead()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabSysConfDlg page;
        page.show();
        page.hide();
        fault(operation, code, 1);
        calls();
        page.show();
        QCOMPARE(calls(), QStringList("Config_getHeatingTempLimit() = %1"_s.arg(code)));
        const auto *group = child<QGroupBox>(&page, "groupHeating");
        const auto *apply = child<QPushButton>(&page, "pushButton");
        const auto *celsius = child<QLineEdit>(&page, "editHeatingTemp");
        const auto *fahrenheit = child<QLineEdit>(&page, "editHeatingTemp_2");
        QCOMPARE(group->isVisible(), code != 2);
        QCOMPARE(apply->isVisible(), code != 2);
        QCOMPARE(group->isEnabled(), code == 2);
        QVERIFY(apply->isEnabled());
        QCOMPARE(group->toolTip(), code == 2 ? QString() : "Requires newer SS version"_s);
        QCOMPARE(celsius->text(),
            code == 2 ? "-10"_s : "getHeatingTempLimit: Error:  "_s + deviceText(code));
        QCOMPARE(fahrenheit->text(), code == 2 ? "14"_s : QString());
        // A later success fills the fields, and brings nothing back.
        page.hide();
        page.show();
        QCOMPARE(celsius->text(), "-10"_s);
        QCOMPARE(group->isVisible(), code != 2);
        QCOMPARE(group->isEnabled(), code == 2);
    }

    void fieldsFollowEachOther_data()
    {
        QTest::addColumn<QByteArray>("edit");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("other");
        const auto celsius = [](const char *typed, const char *other) {
            QTest::addRow("%s C", typed)
                << QByteArray("editHeatingTemp") << QString::fromLatin1(typed)
                << QString::fromLatin1(other);
        };
        const auto fahrenheit = [](const char *typed, const char *other) {
            QTest::addRow("%s F", typed)
                << QByteArray("editHeatingTemp_2") << QString::fromLatin1(typed)
                << QString::fromLatin1(other);
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

    void fieldsFollowEachOther()
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
        type(field, "5"_s);
        QCOMPARE(target->text(), inCelsius ? "41"_s : "-15"_s);
    }

    void validatorBindsTypingInCelsius()
    {
        tabSysConfDlg page;
        page.show();
        auto *celsius = child<QLineEdit>(&page, "editHeatingTemp");
        type(celsius, "123abc"_s);
        QVERIFY(!celsius->text().contains(QLatin1Char('a')));
        QVERIFY(celsius->text() != "123"_s);
    }

    void apply_data()
    {
        QTest::addColumn<QString>("fahrenheit");
        QTest::addColumn<QString>("celsius");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("written");
        const QString invalid = "Heating temperature - invalid format."_s;
        const QString range = "Heating temperature out of allowed range (-25°C to +5°C)."_s;
        QTest::newRow("highest") << QString() << "5"_s << QString() << 5;
        QTest::newRow("lowest") << QString() << "-25"_s << QString() << -25;
        QTest::newRow("above") << QString() << "6"_s << range << 0;
        QTest::newRow("below") << QString() << "-26"_s << range << 0;
        QTest::newRow("empty") << QString() << ""_s << invalid << 0;
        QTest::newRow("blank") << QString() << "  "_s << invalid << 0;
        QTest::newRow("signed") << QString() << "+5"_s << QString() << 5;
        QTest::newRow("padded") << QString() << " 5 "_s << QString() << 5;
        QTest::newRow("no digits") << QString() << "five"_s << invalid << 0;
        QTest::newRow("fraction") << QString() << "4.0"_s << invalid << 0;
        QTest::newRow("decimal comma") << QString() << "4,0"_s << invalid << 0;
        QTest::newRow("other digits") << QString() << QString(QChar(0x0664)) << invalid << 0;
        QTest::newRow("highest int") << QString() << "2147483647"_s << QString() << -1;
        QTest::newRow("beyond int") << QString() << "2147483648"_s << invalid << 0;
        QTest::newRow("sign only") << QString() << "-"_s << invalid << 0;
        QTest::newRow("hexadecimal") << QString() << "0x5"_s << invalid << 0;
        QTest::newRow("huge") << QString() << "99999999999"_s << invalid << 0;
        // Cut to 16 bits before the range is tested.
        QTest::newRow("wraps to 4") << QString() << "65540"_s << QString() << 4;
        QTest::newRow("wraps to -25") << QString() << "-65561"_s << QString() << -25;
        QTest::newRow("118004 F") << "118004"_s << QString() << QString() << 4;
        QTest::newRow("100 F") << "100"_s << QString() << range << 0;
        QTest::newRow("abc F") << "abc"_s << QString() << invalid << 0;
        QTest::newRow("33 F") << "33"_s << QString() << QString() << 0;
    }

    void apply()
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
        click(&page, "pushButton");
        if (message.isEmpty()) {
            QCOMPARE(calls(), QStringList("Config_setHeatingTempLimit(%1) = 0"_s.arg(written)));
            QCOMPARE(unit("Config.heatingTempLimit"_s), QString::number(written));
            return;
        }
        QCOMPARE(calls(), QStringList());
        QCOMPARE(boxes(&page), QStringList(message));
    }

    void otherLocales()
    {
        // Numbers are those of the device, whatever the unit's language.
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        tabSysConfDlg page;
        page.show();
        type(child<QLineEdit>(&page, "editHeatingTemp_2"), "1.000"_s);
        QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp")->text(), QString());
        type(child<QLineEdit>(&page, "editHeatingTemp_2"), "2147483647"_s);
        QCOMPARE(child<QLineEdit>(&page, "editHeatingTemp")->text(), "1193046452"_s);
        QLocale::setDefault(before);
    }

    void failingWrite_data() { addFailureRows({"Config_setHeatingTempLimit"_s}); }

    void failingWrite()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabSysConfDlg page;
        page.show();
        fault(operation, code);
        calls();
        click(&page, "pushButton");
        QCOMPARE(calls(), QStringList("Config_setHeatingTempLimit(-10) = %1"_s.arg(code)));
        QCOMPARE(boxes(&page), QStringList(errorBox(code, "setHeatingTempLimit"_s)));
        QVERIFY(child<QPushButton>(&page, "pushButton")->isVisible());
    }

    void disabledGroupWritesNothing()
    {
        fault("Config_getHeatingTempLimit"_s, 5);
        tabSysConfDlg page;
        page.show();
        child<QLineEdit>(&page, "editHeatingTemp")->setText("0"_s);
        calls();
        click(&page, "pushButton");
        QCOMPARE(calls(), QStringList());
    }

private:
    static void type(QWidget *edit, const QString &text)
    {
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
    }
};

VORN_TEST_MAIN(HeaterPageTest)
#include "tst_heaterpage.moc"
