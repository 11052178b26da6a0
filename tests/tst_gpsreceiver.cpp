#include "telematics/gpsParser.h"
#include "virtualunit/lines/GpsReceiver.h"

#include <QtTest>

using virtualunit::lines::degreesAndMinutes;
using virtualunit::lines::GpsReceiver;
using virtualunit::lines::GpsSurroundings;
using virtualunit::lines::sentence;

namespace {

constexpr std::int64_t someTime = 1'781'687'530; // 2026-06-17 09:12:10 UTC

GpsTexts firstTexts(const std::string &sentences)
{
    GpsFields fields;
    return readGpsLine(sentences.substr(0, sentences.find('\n')), fields);
}

} // namespace

/** The virtual unit's GPS receiver, whose sentences the program's own parser reads. */
class GpsReceiverTest : public QObject
{
    Q_OBJECT

private slots:
    void checksums()
    {
        QCOMPARE(sentence("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"),
            std::string("$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n"));
    }

    void degrees()
    {
        QCOMPARE(degreesAndMinutes(57.70, 2), std::string("5742.0000"));
        QCOMPARE(degreesAndMinutes(-11.97, 3), std::string("01158.2000"));
        QCOMPARE(degreesAndMinutes(9.99999999, 2), std::string("1000.0000"));
        QCOMPARE(degreesAndMinutes(0, 3), std::string("00000.0000"));
    }

    void coldStart()
    {
        GpsReceiver receiver;
        receiver.powerOn();
        GpsSurroundings sky;
        sky.coldStart = 3;
        sky.satellites = 6;
        QCOMPARE(receiver.second(sky, someTime),
            std::string("$GPRMC,091210.000,V,,,,,,,170626,,,N*42\r\n"
                        "$GPGGA,091210.000,,,,,0,00,,,M,,M,,*73\r\n"
                        "$PFST,FOM,9999*55\r\n"));
        receiver.second(sky, someTime + 1);
        receiver.second(sky, someTime + 2);
        std::string all = receiver.second(sky, someTime + 3);
        QCOMPARE(firstTexts(all).time.value_or(""), std::string("2026-06-17 - 09:12:13"));
        QVERIFY(firstTexts(all).position.has_value());
        QVERIFY(all.find(",1,04,") != std::string::npos);
        QVERIFY(all.find("$PFST,FOM,60.0*") != std::string::npos);
        for (int second = 4; second < 12; ++second)
            all = receiver.second(sky, someTime + second);
        QVERIFY(all.find(",1,06,") != std::string::npos);
        QVERIFY(all.find("$PFST,FOM,20.0*") != std::string::npos);
        // Off and on again: all is forgotten.
        receiver.powerOn();
        QVERIFY(!firstTexts(receiver.second(sky, someTime)).position.has_value());
    }

    void lostAntenna()
    {
        GpsReceiver receiver;
        GpsSurroundings sky;
        for (int second = 0; second < 25; ++second)
            receiver.second(sky, someTime);
        QVERIFY(firstTexts(receiver.second(sky, someTime)).position.has_value());
        sky.antenna = false;
        const std::string blind = receiver.second(sky, someTime);
        QVERIFY(!firstTexts(blind).position.has_value());
        QVERIFY2(blind.find(",,,,,0,00,,,M") != std::string::npos, blind.c_str());
        sky.antenna = true;
        int seconds = 0;
        while (!firstTexts(receiver.second(sky, someTime)).position.has_value())
            ++seconds;
        QCOMPARE(seconds, 5);
    }

    void drivesARound()
    {
        GpsReceiver receiver;
        GpsSurroundings sky;
        sky.coldStart = 0;
        sky.latitude = -33.86;
        sky.longitude = -151.2;
        const std::string first = receiver.second(sky, someTime);
        QVERIFY(first.find("S,15112.0000,W") != std::string::npos);
        QVERIFY(first.find(",27.00,90.00,") != std::string::npos);
        QVERIFY(first != receiver.second(sky, someTime));
        sky.speed = 0;
        receiver = GpsReceiver();
        QVERIFY(firstTexts(receiver.second(sky, someTime)).position ==
                firstTexts(receiver.second(sky, someTime)).position);
    }
};

QTEST_APPLESS_MAIN(GpsReceiverTest)
#include "tst_gpsreceiver.moc"
