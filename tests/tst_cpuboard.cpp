#include "platform/platform.h"
#include "report/BoardType.h"
#include "report/sections.h"
#include "tests/support/BiosData.h"
#include "tests/support/ProgramTree.h"

#include <QtTest>

// The linker leads all calls of platform::DynamicLibrary::procedure() here; CMakeLists.txt tells it
// to.
extern "C" {
platform::DynamicLibrary::Procedure libraryProcedure(const platform::DynamicLibrary *library,
    const char *name) __asm__("__real__ZNK8platform14DynamicLibrary9procedureEPKc");
platform::DynamicLibrary::Procedure notedProcedure(const platform::DynamicLibrary *library,
    const char *name) __asm__("__wrap__ZNK8platform14DynamicLibrary9procedureEPKc");
}

namespace {

QByteArrayList lookedUp; // procedures, in order

} // namespace

platform::DynamicLibrary::Procedure notedProcedure(
    const platform::DynamicLibrary *library, const char *name)
{
    lookedUp << name;
    return libraryProcedure(library, name);
}

using namespace support;

namespace {

QString tiny(const QString &file)
{
    return QStringLiteral(VORN_TINYUNIT_DIR "/%1" VORN_LIBRARY_SUFFIX).arg(file);
}

const QByteArray jidaInfo = "Board name: Board %1\n"
                            "Manufacturing Date: 2011.12.31\n"
                            "Serial Number: SN-0001\n"
                            "Hardware Revision: 16689\n"
                            "Firmware Revision: 65535\n";
const QByteArray cgosInfo = "Board name: Board %1\n"
                            "Board sub name: Sub \xB5\n"
                            "Manufacturing Date: 2011.12.31\n"
                            "Serial Number: SN-0001\n"
                            "Part Number: PN 220\n"
                            "EAN: EAN4567890123456789012\n"
                            "Product Revision: A.1\n"
                            "System BIOS Revision: 65535\n";
const QByteArray bios = "\nBIOS version: BIOS 1.2 \xE9\n";
const QByteArray missing = "failed to LoadLibrary(\"jida.dll\")\n";

} // namespace

/** The CPU board section of the real program, with vendors' libraries of many makes beside it. */
class CpuBoardTest : public QObject
{
    Q_OBJECT

private slots:
    void boardType_data()
    {
        QTest::addColumn<QByteArray>("product");
        QTest::addColumn<bool>("readable");
        QTest::addColumn<int>("type");
        const auto row = [](const char *name, const QByteArray &product, int type) {
            QTest::newRow(name) << product << true << type;
        };
        QTest::newRow("none") << QByteArray() << false << 0;
        row("empty", "", 0);
        row("other", "Standard PC", 0);
        row("whole name", "COMe-bIP6", 1);
        row("whole name, more behind", "COMe-bIP6 B", 0);
        row("whole name, blank in front", " COMe-bIP6", 0);
        row("whole name, line end behind", "COMe-bIP6\n\n", 0);
        row("ChiefRiver", "ChiefRiver", 1);
        row("ChiefRiver inside", "an Old ChiefRiver board", 1);
        row("TS77", "TS77", 2);
        row("TS77 inside", "xxTS77yy", 2);
        row("case matters", "ts77", 0);
        row("Aptio CRB", "Aptio CRB", 4);
        row("TCA3", "congaTCA3", 4);
        row("ChiefRiver before TS77", "TS77 ChiefRiver", 1);
        row("TS77 before TCA3", "TCA3 TS77", 2);
        row("text ends at zero", QByteArray("TCA3\0TS77", 9), 4);
        row("longest", QByteArray(122, 'x') + "TS77", 2);
        QTest::newRow("too long") << QByteArray(123, 'x') + "TS77" << false << 0;
        QTest::newRow("far too long") << "TS77" + QByteArray(100'000, 'x') << false << 0;
    }

    void boardType()
    {
        QFETCH(QByteArray, product);
        QFETCH(bool, readable);
        QFETCH(int, type);
        BiosData biosData;
        if (!product.isNull())
            biosData.setBoard(product);
        // Untouched when there is nothing to read.
        BoardType found = product.isNull() || !readable ? BOARD_CGOS : BOARD_UNRECOGNISED;
        QCOMPARE(readBoardType(found), readable);
        QCOMPARE(int(found), readable ? type : int(BOARD_CGOS));
    }

    void library_data()
    {
        QTest::addColumn<QByteArray>("product");
        QTest::addColumn<QString>("installed");  // library of the tests
        QTest::addColumn<QByteArray>("failing"); // procedure
        QTest::addColumn<QByteArray>("section");
        QTest::addColumn<QByteArrayList>("calls");
        QTest::addColumn<QByteArray>("errors");

        struct Vendor {
            QByteArray name;
            QByteArray info;
            QByteArray recordCall;
            QByteArray product;
            QByteArray openCall;
        };
        const Vendor vendors[] = {
            {"jida", jidaInfo, "info 0x4711 464", "unknown", "numbers 0 0 0"},
            {"jida", jidaInfo, "info 0x4711 464", "COMe-bIP6", "name CCR6"},
            {"cgos", cgosInfo, "info 0x4711 304", "TS77", "name BQ77"},
            {"cgos", cgosInfo, "info 0x4711 304", "TCA3", "numbers 0 0 0"},
        };
        for (const Vendor &vendor : vendors) {
            const QString complete = "board_"_s + QString::fromLatin1(vendor.name);
            const auto row = [&](const char *name, const QString &installed, const char *failing,
                                 const QByteArray &text, const QByteArrayList &calls,
                                 const QByteArray &errors = {}) {
                QTest::addRow("%s, %s", vendor.product.constData(), name)
                    << vendor.product << installed << QByteArray(failing) << text << calls
                    << errors;
            };
            const QByteArray open = vendor.openCall;
            const QByteArray info = vendor.recordCall;
            row("sound", complete, "", vendor.info + bios,
                {"initialise", open, "open", info, "info", "uninitialise"});
            row("initialise fails", complete, "initialise", bios, {"initialise", "uninitialise"});
            row("open fails", complete, "open", "", {"initialise", open, "open", "uninitialise"});
            row("info fails", complete, "info", bios,
                {"initialise", open, "open", info, "info", "uninitialise"});
            row("no library", QString(), "", "", {},
                vendor.name == "jida" ? missing : QByteArray());
            for (const char *role :
                {"INITIALISE", "UNINITIALISE", "OPEN_BY_NAME", "CLOSE", "GET_INFO"})
                row(role, complete + "_without_"_s + QString::fromLatin1(role), "", "", {});
        }
        // The one procedure that only one vendor must have.
        const QString jida = "board_jida_without_OPEN"_s;
        const QString cgos = "board_cgos_without_OPEN"_s;
        QTest::newRow("unknown, OPEN") << QByteArray("unknown") << jida << QByteArray()
                                       << QByteArray() << QByteArrayList() << QByteArray();
        QTest::newRow("COMe-bIP6, OPEN") << QByteArray("COMe-bIP6") << jida << QByteArray()
                                         << QByteArray() << QByteArrayList() << QByteArray();
        QTest::newRow("TS77, OPEN") << QByteArray("TS77") << cgos << QByteArray() << cgosInfo + bios
                                    << QByteArrayList{"initialise", "name BQ77", "open",
                                           "info 0x4711 304", "info", "uninitialise"}
                                    << QByteArray();
        QTest::newRow("TCA3, OPEN") << QByteArray("TCA3") << cgos << QByteArray() << QByteArray()
                                    << QByteArrayList{"initialise", "uninitialise"} << QByteArray();
    }

    void library()
    {
        QFETCH(QByteArray, product);
        QFETCH(QString, installed);
        QFETCH(QByteArray, failing);
        QFETCH(QByteArray, section);
        QFETCH(QByteArrayList, calls);
        QFETCH(QByteArray, errors);

        ProgramTree tree(tiny(QStringLiteral(VORN_LIBRARY_PREFIX "VornAux2")));
        tree.setBoard(product);
        tree.setBiosVersion("BIOS 1.2 \xE9");
        if (!installed.isEmpty())
            tree.putBesideProgram(
                tiny(installed), installed.contains("jida"_s) ? "jida"_s : "Cgos"_s);
        tree.environment.insert("BOARD_FAIL"_s, QString::fromLatin1(failing));
        tree.environment.insert("BOARD_LOG"_s, tree.path("calls"_s));

        const Run run = tree.run({"--systemreport"_s, "report.txt"_s});
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.errors, errors);
        QCOMPARE(::section(tree.read("report.txt"_s), "CPU board data"), section);
        const QByteArray lines = calls.isEmpty() ? QByteArray() : calls.join('\n') + '\n';
        QCOMPARE(tree.read("calls"_s), lines);
    }

    void proceduresInOrder_data()
    {
        QTest::addColumn<QByteArray>("product");
        QTest::addColumn<QByteArrayList>("names");
        const QByteArrayList jida{"JidaDllInitialize", "JidaDllUninitialize",
            "JidaBoardOpenByNameW", "JidaBoardOpenW", "JidaBoardClose", "JidaBoardGetInfoW"};
        const QByteArrayList cgos{"CgosLibInitialize", "CgosLibUninitialize",
            "CgosBoardOpenByNameW", "CgosBoardClose", "CgosBoardGetInfoW", "CgosBoardOpen"};
        QTest::newRow("unknown") << QByteArray("unknown") << jida;
        QTest::newRow("COMe-bIP6") << QByteArray("COMe-bIP6") << jida;
        QTest::newRow("TS77") << QByteArray("TS77") << cgos;
        QTest::newRow("TCA3") << QByteArray("TCA3") << cgos;
    }

    /** In this process, with the libraries of the virtual unit. */
    void proceduresInOrder()
    {
        QFETCH(QByteArray, product);
        QFETCH(QByteArrayList, names);
        BiosData biosData;
        biosData.setBoard(product);
        lookedUp.clear();
        QVERIFY(!cpuBoardDataText().isEmpty());
        QCOMPARE(lookedUp, names);
    }
};

QTEST_GUILESS_MAIN(CpuBoardTest)
#include "tst_cpuboard.moc"
