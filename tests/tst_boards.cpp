#include "tests/support/DeviceTest.h"

#include "virtualunit/VirtualUnit.h"

#include <QLibrary>

#include <cstring>

using namespace support;

namespace {

using Initialise = std::int32_t (*)();
using OpenByName = std::int32_t (*)(const char16_t *, std::uint32_t *);
using Open = std::int32_t (*)(std::uintptr_t, std::uint32_t, std::uint32_t, std::uint32_t *);
using Close = std::int32_t (*)(std::uint32_t);
using GetInfo = std::int32_t (*)(std::uint32_t, void *);

/** A vendor's library by its procedures, in the order in which the program looks them up. */
struct Board {
    Initialise initialise = nullptr;
    Initialise uninitialise = nullptr;
    OpenByName openByName = nullptr;
    Open open = nullptr;
    Close close = nullptr;
    GetInfo getInfo = nullptr;
};

constexpr const char *jidaNames[] = {"JidaDllInitialize", "JidaDllUninitialize",
    "JidaBoardOpenByNameW", "JidaBoardOpenW", "JidaBoardClose", "JidaBoardGetInfoW"};
constexpr const char *cgosNames[] = {"CgosLibInitialize", "CgosLibUninitialize",
    "CgosBoardOpenByNameW", "CgosBoardOpen", "CgosBoardClose", "CgosBoardGetInfoW"};

Board load(const char *library, const char *const *names)
{
    const QString file =
        QStringLiteral(VORN_LIB_DIR "/" VORN_LIBRARY_PREFIX "%1" VORN_LIBRARY_SUFFIX)
            .arg(QLatin1String(library));
    QLibrary vendor(file);
    const auto find = [&vendor](const char *name) {
        const auto procedure = vendor.resolve(name);
        if (!procedure)
            qFatal("%s: %s", name, qPrintable(vendor.errorString()));
        return procedure;
    };
    Board board;
    board.initialise = reinterpret_cast<Initialise>(find(names[0]));
    board.uninitialise = reinterpret_cast<Initialise>(find(names[1]));
    board.openByName = reinterpret_cast<OpenByName>(find(names[2]));
    board.open = reinterpret_cast<Open>(find(names[3]));
    board.close = reinterpret_cast<Close>(find(names[4]));
    board.getInfo = reinterpret_cast<GetInfo>(find(names[5]));
    return board;
}

int recordSize(bool jida)
{
    return jida ? 464 : 304;
}

/** The fields by their offsets in bytes, as the vendors publish them. */
QString text(const QByteArray &record, int offset)
{
    QString result;
    for (int at = offset;; at += 2) {
        char16_t unit = 0;
        std::memcpy(&unit, record.constData() + at, sizeof unit);
        if (unit == 0)
            return result;
        result += QChar(ushort(unit));
    }
}

int number(const QByteArray &record, int offset)
{
    std::uint16_t value = 0;
    std::memcpy(&value, record.constData() + offset, sizeof value);
    return value;
}

} // namespace

#define FETCH_BOARD()                                                              \
    QFETCH(bool, jida);                                                            \
    const auto board = load(jida ? "jida" : "Cgos", jida ? jidaNames : cgosNames); \
    [[maybe_unused]] const int size = recordSize(jida)

/** The board vendors' libraries: what they tell of the unit's CPU board, and what they refuse. */
class BoardsTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void tellsTheBoard_data() { vendors(); }

    void tellsTheBoard()
    {
        FETCH_BOARD();
        setUnit("CpuBoard.name"_s, "Board 7"_s);
        setUnit("CpuBoard.subName"_s, "Board 7b"_s);
        setUnit("CpuBoard.manufacturingDate"_s, "2021-11-05"_s);
        setUnit("CpuBoard.serialNumber"_s, "0815"_s);
        setUnit("CpuBoard.partNumber"_s, "P-1"_s);
        setUnit("CpuBoard.ean"_s, "4000000000013"_s);
        setUnit("CpuBoard.productRevision"_s, "A1"_s);
        setUnit("CpuBoard.biosRevision"_s, "65535"_s);
        setUnit("CpuBoard.hardwareRevision"_s, "258"_s);
        setUnit("CpuBoard.firmwareRevision"_s, "3"_s);
        const auto record = info(board, jida);
        QCOMPARE(number(record, 0), size);
        QCOMPARE(text(record, 40), "Board 7"_s);
        QCOMPARE(number(record, 136), 2021);
        QCOMPARE(number(record, 138), 11);
        QCOMPARE(number(record, 142), 5);
        QCOMPARE(text(record, 168), "0815"_s);
        QCOMPARE(number(record, 200), jida ? 258 : 0x4131);
        QCOMPARE(number(record, 202), jida ? 3 : 65535);
        if (jida)
            return;
        QCOMPARE(text(record, 72), "Board 7b"_s);
        QCOMPARE(text(record, 220), "P-1"_s);
        QCOMPARE(text(record, 260), "4000000000013"_s);
    }
    void cutsLongTexts_data() { vendors(); }

    void cutsLongTexts()
    {
        FETCH_BOARD();
        // UTF-8 inside the unit, UTF-16 out here.
        QCOMPARE(virtualunit::set("CpuBoard.name", "\xC3\xBC\xC2\xB0\xC3\xBF"
                                                   "45678901234567890123456789"),
            std::string());
        setUnit("CpuBoard.serialNumber"_s, QString(199, QLatin1Char('s')));
        setUnit("CpuBoard.partNumber"_s, QString(199, QLatin1Char('p')));
        setUnit("CpuBoard.ean"_s, QString(199, QLatin1Char('e')));
        const auto record = info(board, jida);
        QCOMPARE(text(record, 40), QString::fromUtf8("\xC3\xBC\xC2\xB0\xC3\xBF"
                                                     "456789012345"));
        QCOMPARE(text(record, 168), QString(15, QLatin1Char('s')));
        if (jida)
            return;
        QCOMPARE(text(record, 220), QString(19, QLatin1Char('p')));
        QCOMPARE(text(record, 260), QString(21, QLatin1Char('e')));
    }
    void opensItsOwnBoardOnly_data() { vendors(); }

    void opensItsOwnBoardOnly()
    {
        FETCH_BOARD();
        QVERIFY(board.initialise() != 0);
        std::uint32_t handle = 0;
        QVERIFY(board.openByName(jida ? u"CCR6" : u"BQ77", &handle) != 0);
        QVERIFY(handle != 0);
        QVERIFY(board.close(handle) != 0);
        handle = 0;
        QVERIFY(board.open(0, 0, 0, &handle) != 0);
        QVERIFY(handle != 0);
        std::uint32_t untouched = 77;
        for (const char16_t *name : {jida ? u"BQ77" : u"CCR6", u"", u"CCR", u"BQ777", u"ccr6"})
            QCOMPARE(board.openByName(name, &untouched), 0);
        QCOMPARE(board.openByName(nullptr, &untouched), 0);
        QCOMPARE(board.open(0, 1, 0, &untouched), 0);
        QCOMPARE(untouched, 77U);
        QCOMPARE(board.openByName(jida ? u"CCR6" : u"BQ77", nullptr), 0);
        QCOMPARE(board.open(0, 0, 0, nullptr), 0);
        QCOMPARE(board.close(handle + 1), 0);
        QVERIFY(board.uninitialise() != 0);
    }
    void refusesWrongRecords_data() { vendors(); }

    void refusesWrongRecords()
    {
        FETCH_BOARD();
        QVERIFY(board.initialise() != 0);
        std::uint32_t handle = 0;
        QVERIFY(board.open(0, 0, 0, &handle) != 0);
        QCOMPARE(board.getInfo(handle, nullptr), 0);
        for (const int wrong : {0, size - 1, size + 1, recordSize(!jida), -1}) {
            QByteArray record(1000, '\xA5');
            std::memcpy(record.data(), &wrong, sizeof wrong);
            const auto before = record;
            QCOMPARE(board.getInfo(handle, record.data()), 0);
            QCOMPARE(record, before);
        }
        QByteArray record(size, '\xA5');
        std::memcpy(record.data(), &size, sizeof size);
        QCOMPARE(board.getInfo(handle + 1, record.data()), 0);
        QVERIFY(board.getInfo(handle, record.data()) != 0);
        QVERIFY(board.uninitialise() != 0);
    }
    void needsItsInitialisation_data() { vendors(); }

    void needsItsInitialisation()
    {
        FETCH_BOARD();
        std::uint32_t handle = 0;
        QVERIFY(board.initialise() != 0);
        QVERIFY(board.open(0, 0, 0, &handle) != 0);
        QVERIFY(board.uninitialise() != 0);
        QCOMPARE(board.uninitialise(), 0);
        QByteArray record(size, '\0');
        std::memcpy(record.data(), &size, sizeof size);
        QCOMPARE(board.getInfo(handle, record.data()), 0);
        QCOMPARE(board.open(0, 0, 0, &handle), 0);
        QCOMPARE(board.openByName(jida ? u"CCR6" : u"BQ77", &handle), 0);
        QCOMPARE(board.close(handle), 0);
    }
    void saysNothingOfNonsense_data() { vendors(); }

    void saysNothingOfNonsense()
    {
        FETCH_BOARD();
        QVERIFY(board.initialise() != 0);
        std::uint32_t handle = 0;
        QVERIFY(board.open(0, 0, 0, &handle) != 0);
        QByteArray record(size, '\0');
        std::memcpy(record.data(), &size, sizeof size);
        for (const char *date : {"", "yesterday", "2021-11", "2021-11-05 or so", "20211-1-5"}) {
            setUnit("CpuBoard.manufacturingDate"_s, QString::fromLatin1(date));
            QCOMPARE(board.getInfo(handle, record.data()), 0);
        }
        setUnit("CpuBoard.manufacturingDate"_s, "2021-11-05"_s);
        QVERIFY(board.getInfo(handle, record.data()) != 0);
        QVERIFY(board.uninitialise() != 0);
    }

private:
    static void vendors()
    {
        QTest::addColumn<bool>("jida");
        QTest::newRow("jida") << true;
        QTest::newRow("Cgos") << false;
    }

    static QByteArray info(const Board &board, bool jida)
    {
        const auto size = std::uint32_t(recordSize(jida));
        // At an odd address, and with guards on both sides.
        QByteArray memory(int(size) + 2, '\xA5');
        std::memcpy(memory.data() + 1, &size, sizeof size);
        std::uint32_t handle = 0;
        if (!board.initialise() || !board.open(0, 0, 0, &handle) ||
            !board.getInfo(handle, memory.data() + 1) || !board.uninitialise())
            qFatal("no board");
        if (memory.front() != '\xA5' || memory.back() != '\xA5')
            qFatal("wrote beyond the record");
        return memory.mid(1, int(size));
    }
};

VORN_TEST_MAIN(BoardsTest)
#include "tst_boards.moc"
