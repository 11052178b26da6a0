#include "tests/support/DeviceTest.h"

#include "frame/VornAux2.h"
#include "tests/support/expected.h"
#include "virtualunit/state/codes.h"

#include <QSet>

#include <limits>

using namespace support;

/** The texts of the device library: always there, telling, and for good. */
class DeviceTextsTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void everyCodeHasItsOwnText()
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

    void unknownCodesHaveAText()
    {
        for (const int code : {-2, virtualunit::NoImage + 1, 9999, std::numeric_limits<int>::max(),
                 std::numeric_limits<int>::min()})
            QCOMPARE(QByteArray(deviceErrorText(code)), QByteArray("Unknown error"));
    }

    void startupReasons()
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

    void hardwareErrorWords()
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

    void wording()
    {
        QStringList lines;
        for (int code = -1; code <= int(virtualunit::NoImage); ++code)
            lines << "code %1: %2"_s.arg(code).arg(QString::fromLatin1(deviceErrorText(code)));
        for (uint16_t reason = 1; reason <= 9; ++reason)
            lines << "startup reason %1: %2"_s.arg(reason).arg(
                QString::fromLatin1(Diagnostics_startupReasonText(reason)));
        for (int bit = 0; bit < 16; ++bit)
            lines << "hardware error %1: %2"_s.arg(bit).arg(
                QString::fromLatin1(Diagnostics_hwErrorText(uint16_t(1 << bit))));
        QCOMPARE(lines, expectedLines(VORN_SOURCE_DIR "/tests/expected/devicetexts.txt"_s, lines));
        calls();
    }

    void areInTheJournal()
    {
        deviceErrorText(-1);
        Diagnostics_startupReasonText(8);
        Diagnostics_hwErrorText(3);
        QCOMPARE(journal(), (QStringList{"T1 deviceErrorText(-1) = \"Unspecified error\""_s,
                                "T1 Diagnostics_startupReasonText(8) = \"Watchdog\""_s,
                                "T1 Diagnostics_hwErrorText(3) = \"RTC battery low, Main board "
                                "temperature sensor\""_s}));
    }
};

VORN_TEST_MAIN(DeviceTextsTest)
#include "tst_devicetexts.moc"
