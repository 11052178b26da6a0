#include "tests/support/ProgramTree.h"

#include <QtTest>

using support::ProgramTree;
using support::Run;

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
    void libraryIsFoundBesideTheDeviceLibrary();
    void libraryIsFoundOnTheSearchPath();
    void missingLibraryIsToldInABox();
};

void CpuBoardPosixTest::libraryIsFoundBesideTheDeviceLibrary()
{
    ProgramTree tree(tiny("libVornAux2.so"));
    tree.setBoard("TCA3");
    tree.putIn(tiny("board_cgos.so"), QStringLiteral("lib/libCgos.so"));
    QVERIFY(support::section(tree.report(), "CPU board data").startsWith("Board name: Board %1\n"));

    // A file in the program's folder comes first.
    tree.putBesideProgram(tiny("board_cgos_without_OPEN.so"), QStringLiteral("Cgos"));
    QCOMPARE(support::section(tree.report(), "CPU board data"), QByteArray());
}

void CpuBoardPosixTest::libraryIsFoundOnTheSearchPath()
{
    ProgramTree tree(tiny("libVornAux2.so"));
    tree.putIn(tiny("board_jida.so"), QStringLiteral("log/libjida.so"));
    QCOMPARE(support::section(tree.report(), "CPU board data"), QByteArray());
    tree.environment.insert(QStringLiteral("LD_LIBRARY_PATH"), tree.path(QStringLiteral("log")));
    QVERIFY(support::section(tree.report(), "CPU board data").startsWith("Board name: Board %1\n"));
}

void CpuBoardPosixTest::missingLibraryIsToldInABox()
{
    ProgramTree tree(tiny("libVornAux2.so"));
    tree.environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    tree.environment.insert(QStringLiteral("LD_LIBRARY_PATH"), tree.path(QStringLiteral("lib")));
    const Run run = tree.runOther(tiny("boardbox"), {});
    QVERIFY(!run.errors.contains("jida"));
    QCOMPARE(run.output,
        QByteArray("error|failed to LoadLibrary(\"jida.dll\")|icon 0|parent 0|OK\ntext ''\n"));
    QCOMPARE(run.exitCode, 0);
}

QTEST_GUILESS_MAIN(CpuBoardPosixTest)
#include "tst_cpuboard_posix.moc"
