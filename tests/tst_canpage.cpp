#include "pages/tabCanDlg.h"
#include "tests/support/PageTest.h"

#include <QComboBox>
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
        "Please restart the computer (or the CAN driver) for the changes to take effect!"_s, "OK",
        Qt::AutoText);
}

} // namespace

class CanPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void findsFourNets()
    {
        {
            const Page page;
            QCOMPARE(calls(), lines({"Can_create()", "Can_getBaudrate(1) = 0 [250]",
                                  "Can_getBaudrate(2) = 0 [250]", "Can_getBaudrate(3) = 0 [500]",
                                  "Can_getBaudrate(4) = 0 [1000]"}));
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

    void stopsAtFirstMissingNet_data() { addFailureCodes(); }

    void stopsAtFirstMissingNet()
    {
        QFETCH(int, code);
        fault("Can_getBaudrate"_s, code, 1, 2);
        Page page;
        QCOMPARE(calls(), lines({"Can_create()", "Can_getBaudrate(1) = 0 [250]",
                              "Can_getBaudrate(2) = 0 [250]"}) +
                              QStringList("Can_getBaudrate(3) = %1"_s.arg(code)));
        QCOMPARE(items(page.device), lines({"CAN1", "CAN2"}));
        QVERIFY(page.apply->isEnabled());
        page.show();
        QCOMPARE(page.settings->title(), "Settings for CAN1"_s);
    }

    void noNets_data() { addFailureCodes(); }

    void noNets()
    {
        QFETCH(int, code);
        fault("Can_getBaudrate"_s, code, 1);
        Page page;
        page.show();
        page.clickApply();
        page.apply->click();
        QCOMPARE(calls(), QStringList({"Can_create()"_s, "Can_getBaudrate(1) = %1"_s.arg(code)}));
        QCOMPARE(items(page.device), QStringList("getBaudrate: "_s + deviceText(code)));
        const QStringList none("No Can nets available"_s);
        QCOMPARE(items(page.baudRate), none + fixedRates);
        QCOMPARE(
            items(page.frameType), none + lines({"Standard", "Extended", "Standard Extended"}));
        QCOMPARE(page.baudRate->currentIndex(), 0);
        QCOMPARE(page.frameType->currentIndex(), 0);
        QVERIFY(!page.baudRate->isEnabled());
        QVERIFY(!page.frameType->isEnabled());
        QVERIFY(!page.device->isEnabled());
        QVERIFY(!page.apply->isEnabled());
        QCOMPARE(page.settings->title(), "Settings"_s);
        // Nothing enables the page again, even when the net answers later,
        page.hide();
        page.show();
        QCOMPARE(calls(), QStringList());
        // and whoever gets past what is disabled finds nobody there.
        QVERIFY(QMetaObject::invokeMethod(&page, "buttonApplyClicked"));
        QVERIFY(QMetaObject::invokeMethod(&page, "deviceIndexChanged", Q_ARG(int, 0)));
        QCOMPARE(calls(), QStringList());
        QCOMPARE(page.settings->title(), "Settings"_s);
    }

    void readsFirstNetWhenShown()
    {
        Page page;
        calls();
        page.show();
        QCOMPARE(calls(), lines({"Can_getFrameType(1) = 0 [1]", "Can_getBaudrate(1) = 0 [250]"}));
        QCOMPARE(page.frameType->currentText(), "Extended"_s);
        QCOMPARE(page.baudRate->currentText(), "250"_s);
        QCOMPARE(page.settings->title(), "Settings for CAN1"_s);
    }

    void opensOnFirstNetAgain()
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
        QCOMPARE(page.settings->title(), "Settings for CAN1"_s);
    }

    void readsSelectedNet()
    {
        Page page;
        page.show();
        calls();
        QTest::keyClick(page.device, Qt::Key_Down);
        QTest::keyClick(page.device, Qt::Key_End);
        QCOMPARE(calls(), lines({"Can_getFrameType(2) = 0 [1]", "Can_getBaudrate(2) = 0 [250]",
                              "Can_getFrameType(4) = 0 [2]", "Can_getBaudrate(4) = 0 [1000]"}));
        QCOMPARE(page.frameType->currentText(), "Standard Extended"_s);
        QCOMPARE(page.baudRate->currentText(), "1000"_s);
        QCOMPARE(page.settings->title(), "Settings for CAN4"_s);
    }

    void frameType_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("index");
        QTest::newRow("standard") << "0"_s << 0;
        QTest::newRow("extended") << "1"_s << 1;
        QTest::newRow("both") << "2"_s << 2;
        QTest::newRow("unknown") << "3"_s << 0;
        QTest::newRow("far off") << "257"_s << 0;
        QTest::newRow("negative") << "-1"_s << 0;
    }

    void frameType()
    {
        QFETCH(QString, value);
        QFETCH(int, index);
        setUnit("Can.frameType1"_s, value);
        Page page;
        page.frameType->setCurrentIndex(index == 2 ? 1 : 2);
        page.show();
        QCOMPARE(page.frameType->currentIndex(), index);
    }

    void frameTypeFails_data() { addFailureCodes(); }

    void frameTypeFails()
    {
        QFETCH(int, code);
        fault("Can_getFrameType"_s, code, 1);
        Page page;
        calls();
        planBox([&] {
            return page.settings->title() +
                   (page.frameType->isHidden() ? " without frame type"_s : QString());
        });
        page.show();
        QCOMPARE(behindBox(), code == 2 ? QString() : "Settings without frame type"_s);
        QStringList expected("Can_getFrameType(1) = %1"_s.arg(code));
        expected << "Can_getBaudrate(1) = 0 [250]"_s;
        QCOMPARE(calls(), expected);
        QCOMPARE(boxes(&page),
            code == 2 ? QStringList() : QStringList(errorBox(code, "getFrameType"_s)));
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
        QCOMPARE(boxes(&page), QStringList(restartNotice()));
    }

    void baudRate_data()
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

    void baudRate()
    {
        QFETCH(int, kbitPerSecond);
        QFETCH(int, index);
        setUnit("Can.baudrate1"_s, QString::number(kbitPerSecond));
        Page page;
        page.show();
        QCOMPARE(page.baudRate->currentIndex(), index);
        QCOMPARE(page.baudRate->currentText(), QString::number(kbitPerSecond));
        QCOMPARE(page.baudRate->count(), index < 6 ? 6 : 7);
    }

    void otherBaudRatesPileUp()
    {
        setUnit("Can.baudrate1"_s, "20"_s);
        setUnit("Can.baudrate2"_s, "50"_s);
        Page page;
        page.show();
        QTest::keyClick(page.device, Qt::Key_Down);
        QTest::keyClick(page.device, Qt::Key_Up);
        QCOMPARE(items(page.baudRate), fixedRates + lines({"20", "50", "20"}));
        QCOMPARE(page.baudRate->currentIndex(), 6);
    }

    void baudRateNotSupported()
    {
        Page page;
        fault("Can_getBaudrate"_s, 2);
        page.show();
        QVERIFY(page.baudRate->isHidden());
        QVERIFY(page.baudRateLabel->isHidden());
        QVERIFY(page.frameType->isVisible());
        QCOMPARE(items(page.baudRate), fixedRates + QStringList(QString()));
        QCOMPARE(page.baudRate->currentIndex(), 6);
    }

    void baudRateFails_data() { addFailureCodes(); }

    void baudRateFails()
    {
        QFETCH(int, code);
        if (code == 2)
            return baudRateNotSupported();
        Page page;
        fault("Can_getBaudrate"_s, code, 1);
        page.show();
        // The text goes in twice, and no dialog speaks of it.
        const QString error = "getBaudrate: Error:  "_s + deviceText(code);
        QCOMPARE(items(page.baudRate), fixedRates + QStringList({error, error}));
        QCOMPARE(page.baudRate->currentIndex(), 6);
        QVERIFY(page.baudRate->isVisible());
        QVERIFY(page.baudRateLabel->isVisible());
        calls();
        page.clickApply();
        QCOMPARE(calls(), lines({"Can_setFrameType(1, 1) = 0"}));
        QCOMPARE(
            boxes(&page), QStringList({"Baud rate invalid format, net 1."_s, restartNotice()}));
    }

    /** Only a baud rate brings the list of them back. */
    void failureLeavesBaudRateHidden()
    {
        Page page;
        fault("Can_getBaudrate"_s, 2, 1);
        page.show();
        fault("Can_getBaudrate"_s, 5, 1);
        QTest::keyClick(page.device, Qt::Key_Down);
        QVERIFY(page.baudRate->isHidden());
        QVERIFY(page.baudRateLabel->isHidden());
        const QString error = "getBaudrate: Error:  "_s + deviceText(5);
        QCOMPARE(items(page.baudRate), fixedRates + QStringList({error, error, QString()}));
        calls();
        page.clickApply();
        QCOMPARE(calls(), lines({"Can_setFrameType(2, 1) = 0"}));
        QCOMPARE(boxes(&page), QStringList(restartNotice()));
    }

    void hiddenBaudRateComesBack()
    {
        Page page;
        fault("Can_getBaudrate"_s, 2, 1);
        page.show();
        QVERIFY(page.baudRate->isHidden());
        QTest::keyClick(page.device, Qt::Key_Down);
        QVERIFY(page.baudRate->isVisible());
        QVERIFY(page.baudRateLabel->isVisible());
    }

    void writesBothSettings_data()
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

    void writesBothSettings()
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
        QCOMPARE(calls(), QStringList({"Can_setFrameType(%1, %2) = 0"_s.arg(net).arg(frameType),
                              "Can_setBaudrate(%1, %2) = 0"_s.arg(net).arg(kbitPerSecond)}));
        QCOMPARE(boxes(&page), QStringList(restartNotice()));
        QCOMPARE(unit("Can.baudrate%1"_s.arg(net)), QString::number(kbitPerSecond));
        QCOMPARE(unit("Can.frameType%1"_s.arg(net)), QString::number(frameType));
    }

    void writesOtherBaudRate()
    {
        setUnit("Can.baudrate1"_s, "20"_s);
        Page page;
        page.show();
        calls();
        page.clickApply();
        QCOMPARE(calls(), lines({"Can_setFrameType(1, 1) = 0", "Can_setBaudrate(1, 20) = 0"}));
        QCOMPARE(boxes(&page), QStringList(restartNotice()));
    }

    void otherBaudRateTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("kbitPerSecond"); // -1: refused
        QTest::newRow("padded") << " 50 "_s << 50;
        QTest::newRow("signed") << "+50"_s << 50;
        QTest::newRow("leading zeros") << "0050"_s << 50;
        QTest::newRow("empty") << QString() << -1;
        QTest::newRow("blank") << "  "_s << -1;
        QTest::newRow("negative") << "-50"_s << -1;
        QTest::newRow("hexadecimal") << "0x32"_s << -1;
        QTest::newRow("fraction") << "83.3"_s << -1;
        QTest::newRow("grouped") << "1,000"_s << -1;
        QTest::newRow("other digits") << QString(QChar(0x0665)) << -1;
        QTest::newRow("with a unit") << "50 kbit/s"_s << -1;
        QTest::newRow("no digits") << "fast"_s << -1;
        QTest::newRow("more than the device takes") << "65536"_s << -1;
        QTest::newRow("huge") << "99999999999999999999"_s << -1;
    }

    void otherBaudRateTexts()
    {
        QFETCH(QString, text);
        QFETCH(int, kbitPerSecond);
        setUnit("Can.baudrate1"_s, "20"_s);
        Page page;
        page.show();
        page.baudRate->setItemText(6, text);
        calls();
        page.clickApply();
        QStringList written = lines({"Can_setFrameType(1, 1) = 0"});
        QStringList shown(restartNotice());
        if (kbitPerSecond >= 0)
            written << "Can_setBaudrate(1, %1) = 0"_s.arg(kbitPerSecond);
        else
            shown.prepend("Baud rate invalid format, net 1."_s);
        QCOMPARE(calls(), written);
        QCOMPARE(boxes(&page), shown);
    }

    void refusesOlderOtherBaudRate()
    {
        setUnit("Can.baudrate1"_s, "20"_s);
        Page page;
        page.show();
        page.hide();
        page.show();
        page.baudRate->setCurrentIndex(7);
        calls();
        page.clickApply();
        QCOMPARE(calls(), lines({"Can_setFrameType(1, 1) = 0"}));
        QCOMPARE(boxes(&page), QStringList({"Invalid frametype, net 1."_s, restartNotice()}));
    }

    void refusesNoBaudRate()
    {
        Page page;
        page.show();
        page.device->setCurrentIndex(1);
        page.baudRate->setCurrentIndex(-1);
        calls();
        page.clickApply();
        QCOMPARE(calls(), lines({"Can_setFrameType(2, 1) = 0"}));
        QCOMPARE(boxes(&page), QStringList({"Invalid frametype, net 2."_s, restartNotice()}));
    }

    void refusesNoFrameType()
    {
        Page page;
        page.show();
        page.device->setCurrentIndex(2);
        page.frameType->setCurrentIndex(-1);
        calls();
        page.clickApply();
        QCOMPARE(calls(), QStringList());
        QCOMPARE(boxes(&page), QStringList({"Invalid frametype, net 3."_s, restartNotice()}));
    }

    void writesBaudRateAlone()
    {
        fault("Can_getFrameType"_s, 2);
        Page page;
        page.show();
        calls();
        page.clickApply();
        QCOMPARE(calls(), lines({"Can_setBaudrate(1, 250) = 0"}));
        QCOMPARE(boxes(&page), QStringList(restartNotice()));
    }

    void writesFrameTypeAlone()
    {
        Page page;
        fault("Can_getBaudrate"_s, 2);
        page.show();
        calls();
        QTest::keyClick(page.apply, Qt::Key_Space);
        QCOMPARE(calls(), lines({"Can_setFrameType(1, 1) = 0"}));
        QCOMPARE(boxes(&page), QStringList(restartNotice()));
    }

    void setFrameTypeFails_data() { addFailureCodes(); }

    void setFrameTypeFails()
    {
        QFETCH(int, code);
        fault("Can_setFrameType"_s, code);
        Page page;
        page.show();
        calls();
        page.clickApply();
        QCOMPARE(calls(), QStringList({"Can_setFrameType(1, 1) = %1"_s.arg(code)}));
        QCOMPARE(boxes(&page), QStringList({errorBox(code, "setFrameType"_s), restartNotice()}));
    }

    void setBaudRateFails_data() { addFailureCodes(); }

    void setBaudRateFails()
    {
        QFETCH(int, code);
        fault("Can_setBaudrate"_s, code);
        Page page;
        page.show();
        calls();
        page.clickApply();
        QCOMPARE(calls(), QStringList({"Can_setFrameType(1, 1) = 0"_s,
                              "Can_setBaudrate(1, 250) = %1"_s.arg(code)}));
        QCOMPARE(boxes(&page), QStringList({errorBox(code, "setBaudrate"_s), restartNotice()}));
    }
};

VORN_TEST_MAIN(CanPageTest)
#include "tst_canpage.moc"
