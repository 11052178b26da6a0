#include "virtualunit/firmware/IntelHex.h"

#include "tests/support/hexFile.h"
#include "virtualunit/state/codes.h"

#include <QtTest>

using namespace support;
using virtualunit::IntelHexResult;

namespace {

constexpr std::size_t kibibyte = 1024;

IntelHexResult read(const QByteArray &text, std::size_t memory = 64 * kibibyte)
{
    return virtualunit::readIntelHex({text.constData(), std::size_t(text.size())}, memory);
}

QByteArray bytes(const IntelHexResult &result)
{
    return {
        reinterpret_cast<const char *>(result.image.bytes.data()), int(result.image.bytes.size())};
}

/** Two bytes, high byte first, as address records have them. */
QByteArray word(int value)
{
    return QByteArray(1, char(value >> 8)) + char(value);
}

const QByteArray end = hexRecord(1, 0);

} // namespace

/** Good files become images, bad ones are refused with the line and the code that tell why. */
class IntelHexTest : public QObject
{
    Q_OBJECT

private slots:
    void refuses_data()
    {
        using namespace virtualunit;
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("line");
        const QByteArray good = hexRecord(0, 0, "abcd") + '\n';
        const QByteArray tail = '\n' + end + '\n';
        const int malformed = FileMalformed;

        QTest::newRow("nothing") << QByteArray() << malformed << 0;
        QTest::newRow("one empty line") << QByteArray("\n") << malformed << 1;
        QTest::newRow("garbage") << QByteArray("\x7f"
                                               "ELF\x02\x01\n")
                                 << malformed << 1;
        QTest::newRow("zero bytes") << QByteArray(4096, '\0') << malformed << 1;
        QTest::newRow("a line without end") << QByteArray(1 << 20, 'A') << malformed << 1;
        QTest::newRow("a colon alone") << good + ":" + tail << malformed << 2;
        QTest::newRow("no colon") << good + "00000001FF\n" << malformed << 2;
        QTest::newRow("blank before the colon") << good + " " + end << malformed << 2;
        QTest::newRow("blank behind the record") << good + end + " \n" << malformed << 2;
        QTest::newRow("empty line amid") << good + "\n" + end << malformed << 2;
        QTest::newRow("odd number of digits") << good + end + "0" << malformed << 2;
        QTest::newRow("no hex digit") << good + ":0000000G00" + tail << malformed << 2;
        QTest::newRow("too short") << good + ":000001FF" + tail << malformed << 2;
        QTest::newRow("cut record") << good + hexRecord(0, 4, "efgh").chopped(2) << malformed << 2;
        QTest::newRow("longer than it says") << good + ":0100000041424344" + tail << malformed << 2;
        QTest::newRow("cut file") << good + hexRecord(0, 4, "efgh") + '\n' << malformed << 2;
        QTest::newRow("data after the end")
            << good + end + '\n' + hexRecord(0, 4, "e") << malformed << 3;
        QTest::newRow("two ends") << good + end + '\n' + end << malformed << 3;
        QTest::newRow("unknown type") << good + hexRecord(6, 0) + tail << malformed << 2;
        QTest::newRow("end with data") << good + hexRecord(1, 0, "x") << malformed << 2;
        QTest::newRow("short segment base") << good + hexRecord(2, 0, "x") + tail << malformed << 2;
        QTest::newRow("long linear base") << good + hexRecord(4, 0, "xyz") + tail << malformed << 2;
        QTest::newRow("short segment start")
            << good + hexRecord(3, 0, "xyz") + tail << malformed << 2;
        QTest::newRow("long linear start")
            << good + hexRecord(5, 0, "vwxyz") + tail << malformed << 2;
        QTest::newRow("checksum") << good + ":0100000041BF" + tail << int(FileChecksum) << 2;
        QTest::newRow("checksum of the end") << good + ":00000001FE\n" << int(FileChecksum) << 2;
        QTest::newRow("byte given twice")
            << hexRecord(0, 4, "abcd") + '\n' + hexRecord(0, 1, "efgh") + tail << malformed << 0;
        QTest::newRow("same record twice") << good + good + end << malformed << 0;
        QTest::newRow("beyond the first segment")
            << hexRecord(0, 0xFFFF, "ab") + tail << malformed << 1;
        QTest::newRow("beyond a segment")
            << hexRecord(2, 0, word(0x1000)) + '\n' + hexRecord(0, 0xFFFE, "abc") + tail
            << malformed << 2;
        QTest::newRow("beyond 4 GiB")
            << hexRecord(4, 0, word(0xFFFF)) + '\n' + hexRecord(0, 0xFFFE, "abc") + tail
            << malformed << 2;
        QTest::newRow("no data") << end << int(FileMalformed) << 0;
        QTest::newRow("empty data records only")
            << hexRecord(0, 16) + tail << int(FileMalformed) << 0;
        QTest::newRow("more data than memory")
            << hexFile(QByteArray(64 * 1024 + 1, 'x')) << int(FileTooLarge) << 4098;
        QTest::newRow("spread beyond the memory")
            << hexRecord(0, 0, "a") + '\n' + hexRecord(4, 0, word(1)) + '\n' +
                   hexRecord(0, 0, "b") + tail
            << int(FileTooLarge) << 0;
    }

    void refuses()
    {
        QFETCH(QByteArray, text);
        const auto result = read(text);
        QTEST(int(result.code), "code");
        QTEST(int(result.line), "line");
        QVERIFY(!result.reason.empty());
        QVERIFY(result.image.bytes.empty());
    }

    /** What vornunit and the journal of a job tell people. */
    void saysWhy()
    {
        const QByteArray good = hexRecord(0, 0, "abcd") + '\n';
        const QByteArray tail = '\n' + end + '\n';
        const std::pair<QByteArray, const char *> refused[] = {
            {"00000001FF\n", "begin with a colon"}, {":000001FF" + tail, "impossible length"},
            {":0000000G00" + tail, "no hexadecimal digit"},
            {":0100000041424344" + tail, "length field is wrong"},
            {":0100000041BF" + tail, "checksum is wrong"}, {hexRecord(6, 0) + tail, "unknown type"},
            {hexRecord(2, 0, "x") + tail, "its type"}, {end, "no data"},
            {good + good + end, "given twice"},
            {hexRecord(0, 0xFFFF, "ab") + tail, "end of its segment"},
            {hexFile(QByteArray(64 * 1024 + 1, 'x')), "controller's memory takes"}};
        for (const auto &[text, why] : refused) {
            const auto said = read(text).reason;
            QVERIFY2(said.ends_with(why), said.c_str());
        }
    }

    void reads_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<quint32>("address");
        QTest::addColumn<QByteArray>("image");
        const QByteArray good = hexRecord(0, 0, "abcd") + '\n';

        QTest::newRow("plain") << good + end + '\n' << 0U << QByteArray("abcd");
        QTest::newRow("no last line end") << good + end << 0U << QByteArray("abcd");
        QTest::newRow("CRLF") << QByteArray(good + end + '\n').replace('\n', "\r\n") << 0U
                              << QByteArray("abcd");
        QTest::newRow("empty lines behind the end") << good + end + "\n\r\n\n"
                                                    << 0U << QByteArray("abcd");
        QTest::newRow("lower case") << (good + end).toLower() << 0U << QByteArray("abcd");
        QTest::newRow("start address")
            << good + hexRecord(3, 0, "abcd") + '\n' + hexRecord(5, 0, "abcd") + '\n' + end << 0U
            << QByteArray("abcd");
        QTest::newRow("empty data record")
            << hexRecord(0, 9) + '\n' + good + end << 0U << QByteArray("abcd");
        QTest::newRow("any order")
            << hexRecord(0, 6, "gh") + '\n' + good + hexRecord(0, 4, "ef") + '\n' + end << 0U
            << QByteArray("abcdefgh");
        QTest::newRow("gap is erased flash")
            << hexRecord(0, 0, "ab") + '\n' + hexRecord(0, 4, "ef") + '\n' + end << 0U
            << QByteArray("ab\xFF\xFF"
                          "ef");
        QTest::newRow("first address")
            << hexRecord(0, 0x1234, "ab") + '\n' + end << 0x1234U << QByteArray("ab");
        QTest::newRow("segment base")
            << hexRecord(2, 0, word(0x1234)) + '\n' + hexRecord(0, 0x10, "ab") + '\n' + end
            << 0x12350U << QByteArray("ab");
        QTest::newRow("linear base")
            << hexRecord(4, 0, word(0x0800)) + '\n' + hexRecord(0, 0x10, "ab") + '\n' + end
            << 0x08000010U << QByteArray("ab");
        QTest::newRow("linear across 64 KiB")
            << hexRecord(4, 0, word(0)) + '\n' + hexRecord(0, 0xFFFF, "ab") + '\n' + end << 0xFFFFU
            << QByteArray("ab");
        QTest::newRow("up to 4 GiB")
            << hexRecord(4, 0, word(0xFFFF)) + '\n' + hexRecord(0, 0xFFFE, "ab") + '\n' + end
            << 0xFFFFFFFEU << QByteArray("ab");
        QTest::newRow("longest record")
            << hexRecord(0, 0, QByteArray(255, 'x')) + '\n' + end << 0U << QByteArray(255, 'x');
    }

    void reads()
    {
        QFETCH(QByteArray, text);
        const auto result = read(text);
        QCOMPARE(result.reason, std::string());
        QCOMPARE(int(result.code), 0);
        QTEST(quint32(result.image.address), "address");
        QTEST(bytes(result), "image");
    }

    void keepsToTheMemory()
    {
        const QByteArray full(64 * 1024, 'x');
        QCOMPARE(int(read(hexFile(full)).code), 0);
        QCOMPARE(int(read(hexFile(full), std::size_t(full.size()) - 1).code),
            int(virtualunit::FileTooLarge));
        // Where in the address range it lies doesn't matter.
        QCOMPARE(int(read(hexFile(full, 0x08008000)).code), 0);
    }

    void readsWhatItHolds()
    {
        QByteArray image;
        for (int i = 0; i < 300'000; ++i)
            image += char(i * 7 + i / 251);
        for (const int perLine : {1, 16, 32, 255}) {
            const auto result = read(hexFile(image, 0xFF00, perLine), 16 * kibibyte * kibibyte);
            QCOMPARE(int(result.code), 0);
            QCOMPARE(quint32(result.image.address), 0xFF00U);
            QCOMPARE(bytes(result), image);
        }
    }

    void digestsTellImagesApart()
    {
        const auto digest = [](const QByteArray &text) { return read(text).image.digest(); };
        const auto first = digest(hexFile("abcd"));
        QCOMPARE(digest(hexFile("abcd", 0, 1)), first);
        QVERIFY(digest(hexFile("abce")) != first);
        QVERIFY(digest(hexFile("abcde")) != first);
        QVERIFY(digest(hexFile("abcd", 4)) != first);
    }
};

QTEST_APPLESS_MAIN(IntelHexTest)
#include "tst_intelhex.moc"
