#include "pages/tabDigIODlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/FormCheck.h"

using support::child;

class DigitalIoPageTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void form();
    void outputsFollowTheDeviceAtConstruction_data();
    void outputsFollowTheDeviceAtConstruction();
    void noOutputs_data();
    void noOutputs();
    void inputsAreReadAtOnceAndByTimer();
    void everyBitHasItsBox_data();
    void everyBitHasItsBox();
    void unchangedMaskIsNotShownAgain();
    void timerStopsWithThePage();
    void failingRead_data();
    void failingRead();
    void clickWritesAllBoxes();
    void failingWrite_data();
    void failingWrite();

private:
    static int shownMask(const QWidget &page, const char *prefix);
};

int DigitalIoPageTest::shownMask(const QWidget &page, const char *prefix)
{
    int mask = 0;
    for (int line = 1; line <= 4; ++line) {
        const QByteArray name = QByteArray(prefix) + QByteArray::number(line);
        if (child<QCheckBox>(&page, name.constData())->isChecked())
            mask += 1 << (line - 1);
    }
    return mask;
}

void DigitalIoPageTest::form()
{
    const tabDigIODlg page;
    QCOMPARE(page.objectName(), QStringLiteral("tabDigIO"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Digital Input/Output"));
    QCOMPARE(page.size(), QSize(600, 320));
    QCOMPARE(support::compareForm(&page,
                 {{"icon", "QLabel"}, {"groupBoxStatus", "QGroupBox", "Status"},
                     {"labelStatus", "QLabel", "Updated every 250 ms"},
                     {"checkBoxDI_1", "QCheckBox", "DI 1"}, {"checkBoxDI_2", "QCheckBox", "DI 2"},
                     {"checkBoxDI_3", "QCheckBox", "DI 3"}, {"checkBoxDI_4", "QCheckBox", "DI 4"},
                     {"groupBoxStatus_2", "QGroupBox", "Outputs"},
                     {"checkBoxDO_1", "QCheckBox", "DO 1"}, {"checkBoxDO_2", "QCheckBox", "DO 2"},
                     {"checkBoxDO_3", "QCheckBox", "DO 3"}, {"checkBoxDO_4", "QCheckBox", "DO 4"}}),
        QString());
    for (const char *grid : {"gridLayout", "gridLayout_2"}) {
        const auto *layout = page.findChild<QGridLayout *>(QString::fromLatin1(grid));
        QVERIFY(layout);
        QCOMPARE(layout->horizontalSpacing(), 15);
        QCOMPARE(layout->verticalSpacing(), 10);
        QCOMPARE(layout->contentsMargins(), QMargins());
        const QString prefix = QLatin1String(grid).endsWith(QLatin1Char('2'))
                                   ? QStringLiteral("checkBoxDO_")
                                   : QStringLiteral("checkBoxDI_");
        const auto at = [&](int row, int column) {
            return layout->itemAtPosition(row, column)->widget()->objectName();
        };
        QCOMPARE(at(0, 0), prefix + QLatin1Char('1'));
        QCOMPARE(at(0, 1), prefix + QLatin1Char('3'));
        QCOMPARE(at(1, 0), prefix + QLatin1Char('2'));
        QCOMPARE(at(1, 1), prefix + QLatin1Char('4'));
    }
    for (const char *input : {"checkBoxDI_1", "checkBoxDI_2", "checkBoxDI_3", "checkBoxDI_4"})
        QVERIFY(!child<QCheckBox>(&page, input)->isEnabled());
}

void DigitalIoPageTest::outputsFollowTheDeviceAtConstruction_data()
{
    QTest::addColumn<int>("mask");
    for (const int mask : {0, 1, 2, 4, 8, 10, 15, 0xF5})
        QTest::addRow("%d", mask) << mask;
}

void DigitalIoPageTest::outputsFollowTheDeviceAtConstruction()
{
    QFETCH(int, mask);
    setUnit(QStringLiteral("DigIO.digIO"), QString::number(mask));
    {
        const tabDigIODlg page;
        QCOMPARE(shownMask(page, "checkBoxDO_"), mask & 15);
        for (const char *output : {"checkBoxDO_1", "checkBoxDO_2", "checkBoxDO_3", "checkBoxDO_4"})
            QVERIFY(child<QCheckBox>(&page, output)->isEnabled());
        QCOMPARE(calls(), QStringList({QStringLiteral("DigIO_create()"),
                              QStringLiteral("DigIO_getDigIO() = 0 [%1]").arg(mask),
                              QStringLiteral("DigIO_setDigIO(%1) = 0").arg(mask)}));
    }
    QCOMPARE(calls(), QStringList({QStringLiteral("DigIO_release()")}));
}

void DigitalIoPageTest::noOutputs_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("code");
    for (const int code : {2, 18, 20, 5, -1}) {
        QTest::addRow("read %d", code) << QStringLiteral("DigIO_getDigIO") << code;
        QTest::addRow("write %d", code) << QStringLiteral("DigIO_setDigIO") << code;
    }
}

void DigitalIoPageTest::noOutputs()
{
    QFETCH(QString, operation);
    QFETCH(int, code);
    fault(operation, code, 1);
    tabDigIODlg page;
    page.show();
    QVERIFY(!child<QGroupBox>(&page, "groupBoxStatus_2")->isVisible());
    QVERIFY(!child<QGroupBox>(&page, "groupBoxStatus_2")->isEnabled());
    QVERIFY(child<QGroupBox>(&page, "groupBoxStatus")->isVisible());
    const bool asked = calls().contains(QStringLiteral("DigIO_setDigIO(5) = %1").arg(code));
    QCOMPARE(asked, operation == QLatin1String("DigIO_setDigIO"));
}

void DigitalIoPageTest::inputsAreReadAtOnceAndByTimer()
{
    tabDigIODlg page;
    calls();
    page.show();
    QCOMPARE(calls(), QStringList({QStringLiteral("DigIO_getDigIO() = 0 [5]")}));
    QCOMPARE(shownMask(page, "checkBoxDI_"), 5);
    const auto *timer = page.findChild<QTimer *>();
    QVERIFY(timer && timer->isActive() && !timer->isSingleShot());
    QCOMPARE(timer->interval(), 250);
    setUnit(QStringLiteral("DigIO.digIO"), QStringLiteral("10"));
    QTRY_COMPARE(shownMask(page, "checkBoxDI_"), 10);
    // The outputs stand for what was last set here.
    QCOMPARE(shownMask(page, "checkBoxDO_"), 5);
}

void DigitalIoPageTest::everyBitHasItsBox_data()
{
    QTest::addColumn<int>("bit");
    QTest::addColumn<QByteArray>("box");
    QTest::newRow("1") << 0 << QByteArray("checkBoxDI_1");
    QTest::newRow("2") << 1 << QByteArray("checkBoxDI_2");
    QTest::newRow("3") << 2 << QByteArray("checkBoxDI_3");
    QTest::newRow("4") << 3 << QByteArray("checkBoxDI_4");
}

void DigitalIoPageTest::everyBitHasItsBox()
{
    QFETCH(int, bit);
    QFETCH(QByteArray, box);
    setUnit(QStringLiteral("DigIO.digIO"), QString::number(1 << bit));
    tabDigIODlg page;
    page.show();
    QVERIFY(child<QCheckBox>(&page, box.constData())->isChecked());
    QCOMPARE(shownMask(page, "checkBoxDI_"), 1 << bit);
}

void DigitalIoPageTest::unchangedMaskIsNotShownAgain()
{
    setUnit(QStringLiteral("DigIO.digIO"), QStringLiteral("0"));
    tabDigIODlg page;
    auto *box = child<QCheckBox>(&page, "checkBoxDI_1");
    box->setChecked(true);
    page.show();
    // A first mask of 0 counts as unchanged.
    QVERIFY(box->isChecked());
    page.hide();
    setUnit(QStringLiteral("DigIO.digIO"), QStringLiteral("16"));
    page.show();
    QVERIFY2(!box->isChecked(), "the upper bits count for the comparison");
    box->setChecked(true);
    page.hide();
    page.show();
    QVERIFY(box->isChecked());
}

void DigitalIoPageTest::timerStopsWithThePage()
{
    tabDigIODlg page;
    const auto *timer = page.findChild<QTimer *>();
    QVERIFY(!timer->isActive());
    page.show();
    QVERIFY(timer->isActive());
    page.hide();
    QVERIFY(!timer->isActive());
}

void DigitalIoPageTest::failingRead_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {2, 18, 20, 5, -1})
        QTest::addRow("%d", code) << code;
}

void DigitalIoPageTest::failingRead()
{
    QFETCH(int, code);
    tabDigIODlg page;
    fault(QStringLiteral("DigIO_getDigIO"), code);
    page.show();
    const auto *timer = page.findChild<QTimer *>();
    const auto seen = dialogs.take();
    if (code == 2) {
        QVERIFY(seen.isEmpty());
        QVERIFY(!child<QGroupBox>(&page, "groupBoxStatus")->isVisible());
        QVERIFY(timer->isActive());
        return;
    }
    QCOMPARE(seen.size(), 1);
    QCOMPARE(seen[0].title, QStringLiteral("Vornsettings"));
    QCOMPARE(
        seen[0].text, QStringLiteral("Error(%1) in getDigIO: %2")
                          .arg(QString::number(code), QString::fromLatin1(deviceErrorText(code))));
    QCOMPARE(seen[0].icon, QMessageBox::Critical);
    QCOMPARE(seen[0].parent, static_cast<QWidget *>(&page));
    QVERIFY(!timer->isActive());
    QVERIFY(child<QGroupBox>(&page, "groupBoxStatus")->isVisible());

    clearFaults();
    page.hide();
    page.show();
    QVERIFY(timer->isActive());
}

void DigitalIoPageTest::clickWritesAllBoxes()
{
    tabDigIODlg page;
    page.show();
    calls();
    const auto click = [&](const char *name) {
        QTest::mouseClick(child<QCheckBox>(&page, name), Qt::LeftButton, {}, QPoint(12, 12));
        return calls();
    };
    QCOMPARE(click("checkBoxDO_2"), QStringList({QStringLiteral("DigIO_setDigIO(7) = 0")}));
    QCOMPARE(unit(QStringLiteral("DigIO.digIO")), QStringLiteral("7"));
    QCOMPARE(click("checkBoxDO_1"), QStringList({QStringLiteral("DigIO_setDigIO(6) = 0")}));
    QCOMPARE(click("checkBoxDO_4"), QStringList({QStringLiteral("DigIO_setDigIO(14) = 0")}));
    QCOMPARE(click("checkBoxDO_3"), QStringList({QStringLiteral("DigIO_setDigIO(10) = 0")}));
}

void DigitalIoPageTest::failingWrite_data()
{
    failingRead_data();
}

void DigitalIoPageTest::failingWrite()
{
    QFETCH(int, code);
    tabDigIODlg page;
    page.show();
    fault(QStringLiteral("DigIO_setDigIO"), code);
    auto *box = child<QCheckBox>(&page, "checkBoxDO_2");
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(12, 12));
    QCOMPARE(child<QGroupBox>(&page, "groupBoxStatus_2")->isVisible(), code != 2);
    QCOMPARE(child<QGroupBox>(&page, "groupBoxStatus_2")->isEnabled(), code != 2);
    if (code == 2)
        return;
    QVERIFY2(box->isChecked(), "the boxes stay as the user left them");
    QCOMPARE(dialogs.takeTexts(),
        QStringList({QStringLiteral("Error(%1) in DigIO_setDigIO: %2")
                         .arg(QString::number(code), QString::fromLatin1(deviceErrorText(code)))}));
}

VORN_TEST_MAIN(DigitalIoPageTest)
#include "tst_digitaliopage.moc"
