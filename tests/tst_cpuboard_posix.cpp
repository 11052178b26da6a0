#include "tests/support/ProgramTree.h"

#include <QtTest>

using namespace support;

namespace {

QString tiny(const char *file)
{
    return QStringLiteral(VORN_TINYUNIT_DIR "/%1").arg(QLatin1String(file));
}

} // namespace

/** Where the board vendors' libraries are looked for, and the toolkit's box that says that one is
 *  missing. */
class CpuBoardPosixTest : public QObject
{
    Q_OBJECT

private slots:
    void libraryIsFoundBesideTheDeviceLibrary()
    {
        ProgramTree tree(tiny("libVornAux2.so"));
        tree.setBoard("TCA3");
        tree.putIn(tiny("board_cgos.so"), "lib/libCgos.so"_s);
        QVERIFY(section(tree.report(), "CPU board data").startsWith("Board name: Board %1\n"));

        // A file in the program's folder comes first.
        tree.putBesideProgram(tiny("board_cgos_without_OPEN.so"), "Cgos"_s);
        QCOMPARE(section(tree.report(), "CPU board data"), QByteArray());
    }

    void libraryIsFoundOnTheSearchPath()
    {
        ProgramTree tree(tiny("libVornAux2.so"));
        tree.putIn(tiny("board_jida.so"), "log/libjida.so"_s);
        QCOMPARE(section(tree.report(), "CPU board data"), QByteArray());
        tree.environment.insert("LD_LIBRARY_PATH"_s, tree.path("log"_s));
        QVERIFY(section(tree.report(), "CPU board data").startsWith("Board name: Board %1\n"));
    }

    void missingLibraryIsToldInABox()
    {
        ProgramTree tree(tiny("libVornAux2.so"));
        tree.environment.insert("QT_QPA_PLATFORM"_s, "offscreen"_s);
        tree.environment.insert("LD_LIBRARY_PATH"_s, tree.path("lib"_s));
        const Run run = tree.runOther(tiny("boardbox"), {});
        QVERIFY(!run.errors.contains("jida"));
        QCOMPARE(run.output,
            QByteArray("error|failed to LoadLibrary(\"jida.dll\")|icon 0|parent 0|OK\ntext ''\n"));
        QCOMPARE(run.exitCode, 0);
    }
};

QTEST_GUILESS_MAIN(CpuBoardPosixTest)
#include "tst_cpuboard_posix.moc"
