#include "tests/support/SerialTest.h"

#include <QElapsedTimer>
#include <QtTest>

#include <limits>

using namespace support;

void SerialTest::addSpeeds()
{
    QTest::addColumn<int>("baud");
    QTest::addColumn<int>("speed");
    constexpr std::pair<int, int> rows[] = {{0, 1200}, {2, 2400}, {3, 4800}, {4, 9600}, {5, 19200},
        {6, 38400}, {7, 57600}, {8, 115200}};
    for (const auto &[baud, speed] : rows)
        QTest::addRow("%d", speed) << baud << speed;
}

void SerialTest::addRefusedCodes()
{
    QTest::addColumn<QList<int>>("codes");
    QTest::addColumn<int>("result");
    constexpr int most = std::numeric_limits<int>::max();
    QTest::newRow("baud 1") << QList<int>{1, 3, 0, 0} << 3;
    QTest::newRow("baud 9") << QList<int>{9, 3, 0, 0} << 3;
    QTest::newRow("baud -1") << QList<int>{-1, 3, 0, 0} << 3;
    QTest::newRow("baud, largest") << QList<int>{most, 3, 0, 0} << 3;
    QTest::newRow("data bits 4") << QList<int>{4, 4, 0, 0} << 4;
    QTest::newRow("data bits -1") << QList<int>{4, -1, 0, 0} << 4;
    QTest::newRow("parity 3") << QList<int>{4, 3, 3, 0} << 5;
    QTest::newRow("parity -1") << QList<int>{4, 3, -1, 0} << 5;
    QTest::newRow("stop bits 2") << QList<int>{4, 3, 0, 2} << 6;
    QTest::newRow("stop bits -1") << QList<int>{4, 3, 0, -1} << 6;
    QTest::newRow("baud before all") << QList<int>{1, 9, 9, 9} << 3;
    QTest::newRow("data bits before parity") << QList<int>{4, 9, 9, 9} << 4;
    QTest::newRow("parity before stop bits") << QList<int>{4, 3, 9, 9} << 5;
}

void SerialTest::unconfiguredIsNotTouched()
{
    PseudoTerminal line;
    const Port port = opened(line);
    QVERIFY(line.send("waiting"));
    QCOMPARE(write(port, "bytes"), 1);
    const Reading reading = read(port, 4);
    QCOMPARE(reading.result, 1);
    QCOMPARE(reading.bytes, QByteArray(4, '\0'));
    QVERIFY(reading.milliseconds < late);
    QCOMPARE(serialWrite(port.get(), nullptr, 0), 1);
    QCOMPARE(serialRead(port.get(), nullptr, 0), 1);
    QCOMPARE(line.receive(1, 50), QByteArray());
}

void SerialTest::nothingToMove()
{
    const PseudoTerminal line;
    const Port port = configured(line);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(serialRead(port.get(), nullptr, 0), 0);
    QCOMPARE(serialWrite(port.get(), nullptr, 0), 0);
    QVERIFY(timer.elapsed() < late);
}

void SerialTest::allBytesPass()
{
    PseudoTerminal line;
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += char(byte);
    const Port port = configured(line);
    QCOMPARE(write(port, all), 0);
    QCOMPARE(line.receive(256), all);
    QVERIFY(line.send(all));
    const Reading reading = read(port, 256);
    QCOMPARE(reading.result, 0);
    QCOMPARE(reading.bytes, all);
    QVERIFY(reading.milliseconds < late);
    QCOMPARE(line.receive(1, 50), QByteArray()); // no echo
}

void SerialTest::fullAtOnce()
{
    PseudoTerminal line;
    const Port port = configured(line);
    QVERIFY(line.send("first, rest"));
    Reading reading = read(port, 5);
    QCOMPARE(reading.result, 0);
    QCOMPARE(reading.bytes, QByteArray("first"));
    QVERIFY(reading.milliseconds < late);
    reading = read(port, 6);
    QCOMPARE(reading.bytes, QByteArray(", rest"));
}

void SerialTest::stoppedReadsTakeNothing()
{
    PseudoTerminal line;
    const Port port = configured(line);
    QVERIFY(line.send("kept"));
    SerialStop stop;
    QVERIFY(!stop.isRequested());
    stop.request();
    QVERIFY(stop.isRequested());
    for (int time = 0; time < 2; ++time) {
        const Reading reading = read(port, 4, &stop);
        QCOMPARE(reading.result, 8);
        QCOMPARE(reading.bytes, QByteArray(4, '\0'));
    }
    const SerialStop another;
    QCOMPARE(read(port, 4, &another).bytes, QByteArray("kept"));
}

void SerialTest::linesStandAlone()
{
    PseudoTerminal one;
    PseudoTerminal two;
    const Port first = configured(one);
    const Port second = configured(two);
    QCOMPARE(serialConfigure(second.get(), 7, 3, 0, 0), 0);
    QCOMPARE(one.speed(), 9600);
    QCOMPARE(two.speed(), 57600);
    QVERIFY(one.send("1"));
    QVERIFY(two.send("2"));
    QCOMPARE(read(second, 1).bytes, QByteArray("2"));
    QCOMPARE(read(first, 1).bytes, QByteArray("1"));
}
