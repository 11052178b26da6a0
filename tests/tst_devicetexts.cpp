#include "tests/support/DeviceTest.h"

#include "frame/VornAux2.h"
#include "virtualunit/state/codes.h"

#include <QSet>

#include <limits>

/** The texts of the device library: always there, telling, and for good. */
class DeviceTextsTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void everyCodeHasItsOwnText();
    void unknownCodesHaveAText();
    void startupReasons();
    void hardwareErrorWords();
    void areInTheJournal();
};

void DeviceTextsTest::everyCodeHasItsOwnText()
{
    QSet<QByteArray> texts;
    for (int code = -1; code <= int(virtualunit::NoImage); ++code) {
        const QByteArray text = deviceErrorText(code);
        QVERIFY2(text.size() > 5, qPrintable(QString::number(code)));
        QVERIFY2(!texts.contains(text), text.constData());
        QVERIFY(text != "Unknown error");
        for (const char character : text)
            QVERIFY2(character >= ' ' && character <= '~', text.constData());
        texts << text;
    }
    QCOMPARE(QByteArray(deviceErrorText(DEVICE_OK)), QByteArray("No error"));
}

void DeviceTextsTest::unknownCodesHaveAText()
{
    for (const int code : {-2, virtualunit::NoImage + 1, 9999, std::numeric_limits<int>::max(),
             std::numeric_limits<int>::min()})
        QCOMPARE(QByteArray(deviceErrorText(code)), QByteArray("Unknown error"));
}

void DeviceTextsTest::startupReasons()
{
    QSet<QByteArray> texts;
    for (uint16_t reason = 1; reason <= 9; ++reason)
        texts << QByteArray(Diagnostics_startupReasonText(reason));
    QCOMPARE(texts.size(), 9);
    const QByteArray unknown = "Unknown startup reason";
    QVERIFY(!texts.contains(unknown));
    for (const int reason : {0, 10, 31, 65535})
        QCOMPARE(QByteArray(Diagnostics_startupReasonText(uint16_t(reason))), unknown);
}

void DeviceTextsTest::hardwareErrorWords()
{
    QCOMPARE(QByteArray(Diagnostics_hwErrorText(0)), QByteArray("No error"));
    QList<QByteArray> faults;
    for (int bit = 0; bit < 16; ++bit) {
        const QByteArray fault = Diagnostics_hwErrorText(uint16_t(1 << bit));
        QVERIFY(!fault.isEmpty() && !fault.contains(','));
        QVERIFY(!faults.contains(fault));
        faults << fault;
    }
    // Every word names its faults, lowest bit first, and keeps its text for good.
    QList<const char *> given;
    for (int word = 0; word <= 0xFFFF; ++word)
        given << Diagnostics_hwErrorText(uint16_t(word));
    for (int word = 1; word <= 0xFFFF; ++word) {
        QByteArray expected;
        for (int bit = 0; bit < 16; ++bit) {
            if (word & 1 << bit)
                expected += (expected.isEmpty() ? "" : ", ") + faults[bit];
        }
        if (given[word] != expected)
            QCOMPARE(QByteArray(given[word]), expected);
        if (given[word] != Diagnostics_hwErrorText(uint16_t(word)))
            QFAIL("the text has moved");
    }
    calls();
}

void DeviceTextsTest::areInTheJournal()
{
    deviceErrorText(-1);
    Diagnostics_startupReasonText(8);
    Diagnostics_hwErrorText(3);
    QCOMPARE(journal(),
        (QStringList{QStringLiteral("T1 deviceErrorText(-1) = \"Unspecified error\""),
            QStringLiteral("T1 Diagnostics_startupReasonText(8) = \"Watchdog\""),
            QStringLiteral("T1 Diagnostics_hwErrorText(3) = \"RTC battery low, Main board "
                           "temperature sensor\"")}));
}

VORN_TEST_MAIN(DeviceTextsTest)
#include "tst_devicetexts.moc"
