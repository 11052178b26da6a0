#include "pages/tabCanDlg.h"
#include "tests/support/Boxes.h"
#include "tests/support/PageTest.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

using namespace support;

namespace {

/** The page with its widgets at hand. */
struct Page : tabCanDlg {
    QComboBox *device = child<QComboBox>(this, "comboBoxDevice");
    QComboBox *baudRate = child<QComboBox>(this, "comboBoxBaudRate");
    QComboBox *frameType = child<QComboBox>(this, "comboBoxFrameType");
    QLabel *baudRateLabel = child<QLabel>(this, "labelBaudRate");
    QLabel *frameTypeLabel = child<QLabel>(this, "labelFramType");
    QGroupBox *settings = child<QGroupBox>(this, "groupBoxSettings");
    QPushButton *apply = child<QPushButton>(this, "buttonApply");

    void clickApply() { QTest::mouseClick(apply, Qt::LeftButton); }
};

QStringList lines(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *text : texts)
        list << QString::fromLatin1(text);
    return list;
}

const QStringList fixedRates = lines({"100", "125", "250", "500", "800", "1000"});

QString restartNotice()
{
    return box(QMessageBox::Information, "Vornsettings",
        QStringLiteral(
            "Please restart the computer (or the CAN driver) for the changes to take effect!"),
        "tabCan");
}

QString errorBox(const QString &text)
{
    return box(QMessageBox::Critical, "Vornsettings", text, "tabCan");
}

} // namespace

class CanPageTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void form();
    void layout();
    void findsFourNets();
    void stopsAtFirstMissingNet_data();
    void stopsAtFirstMissingNet();
    void noNets_data();
    void noNets();
    void readsFirstNetWhenShown();
    void opensOnFirstNetAgain();
    void readsSelectedNet();
    void frameType_data();
    void frameType();
    void frameTypeFails_data();
    void frameTypeFails();
    void baudRate_data();
    void baudRate();
    void otherBaudRatesPileUp();
    void baudRateNotSupported();
    void baudRateFails_data();
    void baudRateFails();
    void failureLeavesBaudRateHidden();
    void hiddenBaudRateComesBack();
    void writesBothSettings_data();
    void writesBothSettings();
    void writesOtherBaudRate();
    void otherBaudRateTexts_data();
    void otherBaudRateTexts();
    void refusesOlderOtherBaudRate();
    void refusesNoBaudRate();
    void refusesNoFrameType();
    void writesBaudRateAlone();
    void writesFrameTypeAlone();
    void setFrameTypeFails_data();
    void setFrameTypeFails();
    void setBaudRateFails_data();
    void setBaudRateFails();
};

void CanPageTest::form()
{
    Page page;
    QCOMPARE(page.objectName(), QStringLiteral("tabCan"));
    QCOMPARE(page.windowTitle(), QStringLiteral("CAN"));
    QCOMPARE(widgets(&page),
        QStringList({"icon: QLabel input_device.png centred"_s,
            "groupBoxSettings_2: QGroupBox \"CAN Device\""_s, "gridLayoutWidget_3: QWidget"_s,
            "comboBoxDevice: QComboBox [CAN1 | CAN2 | CAN3 | CAN4]"_s,
            "groupBoxSettings: QGroupBox \"Settings\""_s, "gridLayoutWidget: QWidget"_s,
            "labelBaudRate: QLabel \"Baud rate (kbp/s)\""_s,
            "comboBoxBaudRate: QComboBox [100 | 125 | 250 | 500 | 800 | 1000]"_s,
            "labelFramType: QLabel \"Frame type\""_s,
            "comboBoxFrameType: QComboBox [Standard | Extended | Standard Extended]"_s,
            "buttonApply: QPushButton \"Apply\""_s}));
}

void CanPageTest::layout()
{
    Page page;
    QCOMPARE(page.size(), QSize(600, 320));
    const auto *grid = page.findChild<QGridLayout *>(QStringLiteral("gridLayout"));
    QVERIFY(grid);
    QCOMPARE(grid->contentsMargins(), QMargins());
    QCOMPARE(page.findChild<QGridLayout *>(QStringLiteral("gridLayout_3"))->contentsMargins(),
        QMargins());
    QVERIFY(!page.apply->autoDefault());
    QCOMPARE(grid->itemAtPosition(1, 0)->widget(), page.baudRateLabel);
    QCOMPARE(grid->itemAtPosition(1, 1)->widget(), page.baudRate);
    QCOMPARE(grid->itemAtPosition(2, 0)->widget(), page.frameTypeLabel);
    QCOMPARE(grid->itemAtPosition(2, 1)->widget(), page.frameType);
    QCOMPARE(page.baudRate->minimumWidth(), 230);
    QCOMPARE(page.baudRate->maximumWidth(), 230);
    QCOMPARE(page.frameType->minimumWidth(), 230);
    QCOMPARE(page.frameType->maximumWidth(), 230);
    QCOMPARE(page.baudRateLabel->buddy(), page.baudRate);
    QCOMPARE(page.frameTypeLabel->buddy(), page.frameType);
    QVERIFY(!page.device->accessibleName().isEmpty());
    QCOMPARE(layoutFaults(&page), QStringList());
}

void CanPageTest::findsFourNets()
{
    {
        const Page page;
        QCOMPARE(calls(),
            lines({"Can_create()", "Can_getBaudrate(1) = 0 [250]", "Can_getBaudrate(2) = 0 [250]",
                "Can_getBaudrate(3) = 0 [500]", "Can_getBaudrate(4) = 0 [1000]"}));
        QCOMPARE(items(page.device), lines({"CAN1", "CAN2", "CAN3", "CAN4"}));
        QCOMPARE(items(page.baudRate), fixedRates);
        QCOMPARE(items(page.frameType), lines({"Standard", "Extended", "Standard Extended"}));
        QVERIFY(page.device->isEnabled());
        QVERIFY(page.baudRate->isEnabled());
        QVERIFY(page.frameType->isEnabled());
        QVERIFY(page.apply->isEnabled());
    }
    QCOMPARE(calls(), lines({"Can_release()"}));
}

void CanPageTest::stopsAtFirstMissingNet_data()
{
    addFailureCodes();
}

void CanPageTest::stopsAtFirstMissingNet()
{
    QFETCH(int, code);
    fault(QStringLiteral("Can_getBaudrate"), code, 1, 2);
    Page page;
    QCOMPARE(calls(),
        lines({"Can_create()", "Can_getBaudrate(1) = 0 [250]", "Can_getBaudrate(2) = 0 [250]"}) +
            QStringList(QStringLiteral("Can_getBaudrate(3) = %1").arg(code)));
    QCOMPARE(items(page.device), lines({"CAN1", "CAN2"}));
    QVERIFY(page.apply->isEnabled());
    page.show();
    QCOMPARE(page.settings->title(), QStringLiteral("Settings for CAN1"));
}

void CanPageTest::noNets_data()
{
    addFailureCodes();
}

void CanPageTest::noNets()
{
    QFETCH(int, code);
    fault(QStringLiteral("Can_getBaudrate"), code, 1);
    Page page;
    page.show();
    page.clickApply();
    page.apply->click();
    QCOMPARE(
        calls(), QStringList({QStringLiteral("Can_create()"),
                     QStringLiteral("Can_getBaudrate(1) = %1").arg(code), deviceTextCall(code)}));
    QCOMPARE(items(page.device), QStringList(QStringLiteral("getBaudrate: ") + deviceText(code)));
    const QStringList none(QStringLiteral("No Can nets available"));
    QCOMPARE(items(page.baudRate), none + fixedRates);
    QCOMPARE(items(page.frameType), none + lines({"Standard", "Extended", "Standard Extended"}));
    QCOMPARE(page.baudRate->currentIndex(), 0);
    QCOMPARE(page.frameType->currentIndex(), 0);
    QVERIFY(!page.baudRate->isEnabled());
    QVERIFY(!page.frameType->isEnabled());
    QVERIFY(!page.device->isEnabled());
    QVERIFY(!page.apply->isEnabled());
    QCOMPARE(page.settings->title(), QStringLiteral("Settings"));
    // Nothing enables the page again, even when the net answers later,
    page.hide();
    page.show();
    QCOMPARE(calls(), QStringList());
    // and whoever gets past what is disabled finds nobody there.
    QVERIFY(QMetaObject::invokeMethod(&page, "buttonApplyClicked"));
    QVERIFY(QMetaObject::invokeMethod(&page, "deviceIndexChanged", Q_ARG(int, 0)));
    QCOMPARE(calls(), QStringList());
    QCOMPARE(page.settings->title(), QStringLiteral("Settings"));
}

void CanPageTest::readsFirstNetWhenShown()
{
    Page page;
    calls();
    page.show();
    QCOMPARE(calls(), lines({"Can_getFrameType(1) = 0 [1]", "Can_getBaudrate(1) = 0 [250]"}));
    QCOMPARE(page.frameType->currentText(), QStringLiteral("Extended"));
    QCOMPARE(page.baudRate->currentText(), QStringLiteral("250"));
    QCOMPARE(page.settings->title(), QStringLiteral("Settings for CAN1"));
}

void CanPageTest::opensOnFirstNetAgain()
{
    Page page;
    page.show();
    page.device->setCurrentIndex(2);
    page.hide();
    calls();
    page.show();
    // Once by the change of the selection, once directly.
    QCOMPARE(calls(), lines({"Can_getFrameType(1) = 0 [1]", "Can_getBaudrate(1) = 0 [250]",
                          "Can_getFrameType(1) = 0 [1]", "Can_getBaudrate(1) = 0 [250]"}));
    QCOMPARE(page.device->currentIndex(), 0);
    QCOMPARE(page.settings->title(), QStringLiteral("Settings for CAN1"));
}

void CanPageTest::readsSelectedNet()
{
    Page page;
    page.show();
    calls();
    QTest::keyClick(page.device, Qt::Key_Down);
    QTest::keyClick(page.device, Qt::Key_End);
    QCOMPARE(calls(), lines({"Can_getFrameType(2) = 0 [1]", "Can_getBaudrate(2) = 0 [250]",
                          "Can_getFrameType(4) = 0 [2]", "Can_getBaudrate(4) = 0 [1000]"}));
    QCOMPARE(page.frameType->currentText(), QStringLiteral("Standard Extended"));
    QCOMPARE(page.baudRate->currentText(), QStringLiteral("1000"));
    QCOMPARE(page.settings->title(), QStringLiteral("Settings for CAN4"));
}

void CanPageTest::frameType_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("index");
    QTest::newRow("standard") << QStringLiteral("0") << 0;
    QTest::newRow("extended") << QStringLiteral("1") << 1;
    QTest::newRow("both") << QStringLiteral("2") << 2;
    QTest::newRow("unknown") << QStringLiteral("3") << 0;
    QTest::newRow("far off") << QStringLiteral("257") << 0;
    QTest::newRow("negative") << QStringLiteral("-1") << 0;
}

void CanPageTest::frameType()
{
    QFETCH(QString, value);
    QFETCH(int, index);
    setUnit(QStringLiteral("Can.frameType1"), value);
    Page page;
    page.frameType->setCurrentIndex(index == 2 ? 1 : 2);
    page.show();
    QCOMPARE(page.frameType->currentIndex(), index);
}

void CanPageTest::frameTypeFails_data()
{
    addFailureCodes();
}

void CanPageTest::frameTypeFails()
{
    QFETCH(int, code);
    fault(QStringLiteral("Can_getFrameType"), code, 1);
    Page page;
    calls();
    page.show();
    QStringList expected(QStringLiteral("Can_getFrameType(1) = %1").arg(code));
    if (code != 2)
        expected << deviceTextCall(code);
    expected << QStringLiteral("Can_getBaudrate(1) = 0 [250]");
    QCOMPARE(calls(), expected);
    QCOMPARE(describe(dialogs.take()),
        code == 2 ? QStringList() : QStringList(errorBox(deviceError(code, "getFrameType"))));
    QVERIFY(page.frameType->isHidden());
    QVERIFY(page.frameTypeLabel->isHidden());
    QVERIFY(page.baudRate->isVisible());
    // A later success doesn't bring them back.
    QTest::keyClick(page.device, Qt::Key_Down);
    QVERIFY(page.frameType->isHidden());
    QVERIFY(page.frameTypeLabel->isHidden());
    // What is hidden isn't written.
    calls();
    page.clickApply();
    QCOMPARE(calls(), lines({"Can_setBaudrate(2, 250) = 0"}));
    QCOMPARE(describe(dialogs.take()), QStringList(restartNotice()));
}

void CanPageTest::baudRate_data()
{
    QTest::addColumn<int>("kbitPerSecond");
    QTest::addColumn<int>("index");
    int index = 0;
    for (const int rate : {100, 125, 250, 500, 800, 1000})
        QTest::addRow("%d", rate) << rate << index++;
    QTest::newRow("20") << 20 << 6;
    QTest::newRow("0") << 0 << 6;
    QTest::newRow("65535") << 65535 << 6;
}

void CanPageTest::baudRate()
{
    QFETCH(int, kbitPerSecond);
    QFETCH(int, index);
    setUnit(QStringLiteral("Can.baudrate1"), QString::number(kbitPerSecond));
    Page page;
    page.show();
    QCOMPARE(page.baudRate->currentIndex(), index);
    QCOMPARE(page.baudRate->currentText(), QString::number(kbitPerSecond));
    QCOMPARE(page.baudRate->count(), index < 6 ? 6 : 7);
}

void CanPageTest::otherBaudRatesPileUp()
{
    setUnit(QStringLiteral("Can.baudrate1"), QStringLiteral("20"));
    setUnit(QStringLiteral("Can.baudrate2"), QStringLiteral("50"));
    Page page;
    page.show();
    QTest::keyClick(page.device, Qt::Key_Down);
    QTest::keyClick(page.device, Qt::Key_Up);
    QCOMPARE(items(page.baudRate), fixedRates + lines({"20", "50", "20"}));
    QCOMPARE(page.baudRate->currentIndex(), 6);
}

void CanPageTest::baudRateNotSupported()
{
    Page page;
    fault(QStringLiteral("Can_getBaudrate"), 2);
    page.show();
    QVERIFY(page.baudRate->isHidden());
    QVERIFY(page.baudRateLabel->isHidden());
    QVERIFY(page.frameType->isVisible());
    QCOMPARE(items(page.baudRate), fixedRates + QStringList(QString()));
    QCOMPARE(page.baudRate->currentIndex(), 6);
}

void CanPageTest::baudRateFails_data()
{
    addFailureCodes();
}

void CanPageTest::baudRateFails()
{
    QFETCH(int, code);
    if (code == 2)
        return baudRateNotSupported();
    Page page;
    fault(QStringLiteral("Can_getBaudrate"), code, 1);
    page.show();
    // The text goes in twice, and no dialog speaks of it.
    const QString error = QStringLiteral("getBaudrate: Error:  ") + deviceText(code);
    QCOMPARE(items(page.baudRate), fixedRates + QStringList({error, error}));
    QCOMPARE(page.baudRate->currentIndex(), 6);
    QVERIFY(page.baudRate->isVisible());
    QVERIFY(page.baudRateLabel->isVisible());
    calls();
    page.clickApply();
    QCOMPARE(calls(), lines({"Can_setFrameType(1, 1) = 0"}));
    QCOMPARE(describe(dialogs.take()),
        QStringList(
            {errorBox(QStringLiteral("Baud rate invalid format, net 1.")), restartNotice()}));
}

/** Only a baud rate brings the list of them back. */
void CanPageTest::failureLeavesBaudRateHidden()
{
    Page page;
    fault(QStringLiteral("Can_getBaudrate"), 2, 1);
    page.show();
    fault(QStringLiteral("Can_getBaudrate"), 5, 1);
    QTest::keyClick(page.device, Qt::Key_Down);
    QVERIFY(page.baudRate->isHidden());
    QVERIFY(page.baudRateLabel->isHidden());
    const QString error = QStringLiteral("getBaudrate: Error:  ") + deviceText(5);
    QCOMPARE(items(page.baudRate), fixedRates + QStringList({error, error, QString()}));
    calls();
    page.clickApply();
    QCOMPARE(calls(), lines({"Can_setFrameType(2, 1) = 0"}));
    QCOMPARE(describe(dialogs.take()), QStringList(restartNotice()));
}

void CanPageTest::hiddenBaudRateComesBack()
{
    Page page;
    fault(QStringLiteral("Can_getBaudrate"), 2, 1);
    page.show();
    QVERIFY(page.baudRate->isHidden());
    QTest::keyClick(page.device, Qt::Key_Down);
    QVERIFY(page.baudRate->isVisible());
    QVERIFY(page.baudRateLabel->isVisible());
}

void CanPageTest::writesBothSettings_data()
{
    QTest::addColumn<int>("net");
    QTest::addColumn<int>("frameType");
    QTest::addColumn<int>("baudRate");
    QTest::addColumn<int>("kbitPerSecond");
    int index = 0;
    for (const int rate : {100, 125, 250, 500, 800, 1000}) {
        QTest::addRow("%d", rate) << index % 4 + 1 << index % 3 << index << rate;
        ++index;
    }
}

void CanPageTest::writesBothSettings()
{
    QFETCH(int, net);
    QFETCH(int, frameType);
    QFETCH(int, baudRate);
    QFETCH(int, kbitPerSecond);
    Page page;
    page.show();
    page.device->setCurrentIndex(net - 1);
    page.frameType->setCurrentIndex(frameType);
    page.baudRate->setCurrentIndex(baudRate);
    calls();
    page.clickApply();
    QCOMPARE(calls(),
        QStringList({QStringLiteral("Can_setFrameType(%1, %2) = 0").arg(net).arg(frameType),
            QStringLiteral("Can_setBaudrate(%1, %2) = 0").arg(net).arg(kbitPerSecond)}));
    QCOMPARE(describe(dialogs.take()), QStringList(restartNotice()));
    QCOMPARE(unit(QStringLiteral("Can.baudrate%1").arg(net)), QString::number(kbitPerSecond));
    QCOMPARE(unit(QStringLiteral("Can.frameType%1").arg(net)), QString::number(frameType));
}

void CanPageTest::writesOtherBaudRate()
{
    setUnit(QStringLiteral("Can.baudrate1"), QStringLiteral("20"));
    Page page;
    page.show();
    calls();
    page.clickApply();
    QCOMPARE(calls(), lines({"Can_setFrameType(1, 1) = 0", "Can_setBaudrate(1, 20) = 0"}));
    QCOMPARE(describe(dialogs.take()), QStringList(restartNotice()));
}

void CanPageTest::otherBaudRateTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("kbitPerSecond"); // -1: refused
    QTest::newRow("padded") << QStringLiteral(" 50 ") << 50;
    QTest::newRow("signed") << QStringLiteral("+50") << 50;
    QTest::newRow("leading zeros") << QStringLiteral("0050") << 50;
    QTest::newRow("empty") << QString() << -1;
    QTest::newRow("blank") << QStringLiteral("  ") << -1;
    QTest::newRow("negative") << QStringLiteral("-50") << -1;
    QTest::newRow("hexadecimal") << QStringLiteral("0x32") << -1;
    QTest::newRow("fraction") << QStringLiteral("83.3") << -1;
    QTest::newRow("grouped") << QStringLiteral("1,000") << -1;
    QTest::newRow("other digits") << QString(QChar(0x0665)) << -1;
    QTest::newRow("with a unit") << QStringLiteral("50 kbit/s") << -1;
    QTest::newRow("no digits") << QStringLiteral("fast") << -1;
    QTest::newRow("more than the device takes") << QStringLiteral("65536") << -1;
    QTest::newRow("huge") << QStringLiteral("99999999999999999999") << -1;
}

void CanPageTest::otherBaudRateTexts()
{
    QFETCH(QString, text);
    QFETCH(int, kbitPerSecond);
    setUnit(QStringLiteral("Can.baudrate1"), QStringLiteral("20"));
    Page page;
    page.show();
    page.baudRate->setItemText(6, text);
    calls();
    page.clickApply();
    QStringList written = lines({"Can_setFrameType(1, 1) = 0"});
    QStringList shown(restartNotice());
    if (kbitPerSecond >= 0)
        written << QStringLiteral("Can_setBaudrate(1, %1) = 0").arg(kbitPerSecond);
    else
        shown.prepend(errorBox(QStringLiteral("Baud rate invalid format, net 1.")));
    QCOMPARE(calls(), written);
    QCOMPARE(describe(dialogs.take()), shown);
}

void CanPageTest::refusesOlderOtherBaudRate()
{
    setUnit(QStringLiteral("Can.baudrate1"), QStringLiteral("20"));
    Page page;
    page.show();
    page.hide();
    page.show();
    page.baudRate->setCurrentIndex(7);
    calls();
    page.clickApply();
    QCOMPARE(calls(), lines({"Can_setFrameType(1, 1) = 0"}));
    QCOMPARE(describe(dialogs.take()),
        QStringList({errorBox(QStringLiteral("Invalid frametype, net 1.")), restartNotice()}));
}

void CanPageTest::refusesNoBaudRate()
{
    Page page;
    page.show();
    page.device->setCurrentIndex(1);
    page.baudRate->setCurrentIndex(-1);
    calls();
    page.clickApply();
    QCOMPARE(calls(), lines({"Can_setFrameType(2, 1) = 0"}));
    QCOMPARE(describe(dialogs.take()),
        QStringList({errorBox(QStringLiteral("Invalid frametype, net 2.")), restartNotice()}));
}

void CanPageTest::refusesNoFrameType()
{
    Page page;
    page.show();
    page.device->setCurrentIndex(2);
    page.frameType->setCurrentIndex(-1);
    calls();
    page.clickApply();
    QCOMPARE(calls(), QStringList());
    QCOMPARE(describe(dialogs.take()),
        QStringList({errorBox(QStringLiteral("Invalid frametype, net 3.")), restartNotice()}));
}

void CanPageTest::writesBaudRateAlone()
{
    fault(QStringLiteral("Can_getFrameType"), 2);
    Page page;
    page.show();
    calls();
    page.clickApply();
    QCOMPARE(calls(), lines({"Can_setBaudrate(1, 250) = 0"}));
    QCOMPARE(describe(dialogs.take()), QStringList(restartNotice()));
}

void CanPageTest::writesFrameTypeAlone()
{
    Page page;
    fault(QStringLiteral("Can_getBaudrate"), 2);
    page.show();
    calls();
    QTest::keyClick(page.apply, Qt::Key_Space);
    QCOMPARE(calls(), lines({"Can_setFrameType(1, 1) = 0"}));
    QCOMPARE(describe(dialogs.take()), QStringList(restartNotice()));
}

void CanPageTest::setFrameTypeFails_data()
{
    addFailureCodes();
}

void CanPageTest::setFrameTypeFails()
{
    QFETCH(int, code);
    fault(QStringLiteral("Can_setFrameType"), code);
    Page page;
    page.show();
    calls();
    page.clickApply();
    QCOMPARE(calls(), QStringList({QStringLiteral("Can_setFrameType(1, 1) = %1").arg(code),
                          deviceTextCall(code)}));
    QCOMPARE(describe(dialogs.take()),
        QStringList({errorBox(deviceError(code, "setFrameType")), restartNotice()}));
}

void CanPageTest::setBaudRateFails_data()
{
    addFailureCodes();
}

void CanPageTest::setBaudRateFails()
{
    QFETCH(int, code);
    fault(QStringLiteral("Can_setBaudrate"), code);
    Page page;
    page.show();
    calls();
    page.clickApply();
    QCOMPARE(calls(),
        QStringList({QStringLiteral("Can_setFrameType(1, 1) = 0"),
            QStringLiteral("Can_setBaudrate(1, 250) = %1").arg(code), deviceTextCall(code)}));
    QCOMPARE(describe(dialogs.take()),
        QStringList({errorBox(deviceError(code, "setBaudrate")), restartNotice()}));
}

VORN_TEST_MAIN(CanPageTest)
#include "tst_canpage.moc"
