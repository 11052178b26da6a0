#include "tests/support/literals.h"

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace support;

namespace {

/** Installs what has been built, or one component of it; its files below the prefix. */
QStringList installed(const QTemporaryDir &prefix, const QStringList &component)
{
    QProcess cmake;
    cmake.start("cmake"_s, QStringList{"--install"_s, QStringLiteral(VORN_BIN_DIR "/.."),
                               "--prefix"_s, prefix.path()} +
                               component);
    if (!cmake.waitForFinished(60'000) || cmake.exitCode() != 0)
        return {QString::fromUtf8(cmake.readAllStandardError())};
    QStringList files;
    QDirIterator all(prefix.path(), QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext())
        files << QDir(prefix.path()).relativeFilePath(all.next());
    files.sort();
    return files;
}

} // namespace

/** What "cmake --install" makes of a finished build. */
class InstallPosixTest : public QObject
{
    Q_OBJECT

private slots:
    void files_data()
    {
        QTest::addColumn<QString>("component");
        QTest::addColumn<QStringList>("expected");
        const QStringList program{"bin/VornSettings"_s};
        const QStringList unit{"bin/TouchCalibrator.exe"_s, "bin/vornunit"_s, "lib/libCgos.so"_s,
            "lib/libVornAux2.so"_s, "lib/libjida.so"_s};
        const QStringList tools{"bin/vorncheck"_s, "bin/vornreport"_s, "bin/vornskeleton"_s,
            "bin/vorntrace"_s, "lib/vorntrace/libvorntrace.so"_s};
        const QStringList devel{"include/VornAux2.h"_s, "lib/cmake/VornAux2/VornAux2Config.cmake"_s,
            "lib/cmake/VornAux2/VornAux2ConfigVersion.cmake"_s, "lib/pkgconfig/VornAux2.pc"_s};
        QStringList computer;
#ifdef VORN_LINUXUNIT // which is built where its libraries are
        computer << "bin/vornaux-counter"_s
                 << "bin/vornaux-probe"_s
                 << "lib/linuxunit/libVornAux2.so"_s
                 << "lib/systemd/system/vornaux-counter.service"_s
                 << "lib/udev/rules.d/70-vornaux.rules"_s
                 << "share/vornaux/unit.schema.json"_s;
#endif
        QStringList all = program + unit + tools + devel + computer;
        all.sort();
        // On a real unit a stand-in would take the place of the real part.
        QTest::newRow("for a unit") << "program"_s << program;
        QTest::newRow("stand-ins") << "virtualunit"_s << unit;
        QTest::newRow("for whoever looks into one") << "tools"_s << tools;
        QTest::newRow("for a computer with Linux") << "linuxunit"_s << computer;
        QTest::newRow("for whoever writes a library") << "devel"_s << devel;
        QTest::newRow("all") << QString() << all;
    }

    void files()
    {
        QFETCH(QString, component);
        const QTemporaryDir prefix;
        const QStringList one{"--component"_s, component};
        QTEST(installed(prefix, component.isEmpty() ? QStringList() : one), "expected");
    }

    /** Which build a file is from, strings(1) tells. */
    void everyFileTellsItsVersion()
    {
        const QTemporaryDir prefix;
        for (const auto &name : installed(prefix, {})) {
            QFile file(prefix.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const auto content = file.readAll();
            if (content.mid(1, 3) == "ELF")
                QVERIFY2(content.contains("VornSettings 2.7.2.0 ("), qPrintable(name));
        }
    }

    void exampleBuilds_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("CMake")
            << "cmake -S . -B build -DCMAKE_PREFIX_PATH=\"$PREFIX\" && cmake --build build && "
               "build/ask"_s;
        QTest::newRow("pkg-config") << "PKG_CONFIG_PATH=\"$PREFIX/lib/pkgconfig\" make && "
                                       "LD_LIBRARY_PATH=. ./ask"_s;
    }

    /** With what is installed for whoever writes a library, and nothing else of ours. */
    void exampleBuilds()
    {
        QFETCH(QString, command);
        const QTemporaryDir prefix;
        installed(prefix, {});
        QProcess shell;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("PREFIX"_s, prefix.path());
        environment.insert("SOURCE"_s, QStringLiteral(VORN_SOURCE_DIR "/packaging/example"));
        shell.setProcessEnvironment(environment);
        shell.setWorkingDirectory(prefix.path());
        shell.start("sh"_s, {"-e"_s, "-c"_s,
                                "cp -r \"$SOURCE\" example; cd example; "
                                "\"$PREFIX/bin/vornskeleton\" > unit.c; "_s +
                                    command});
        QVERIFY(shell.waitForFinished(120'000));
        QVERIFY2(shell.exitCode() == 0, shell.readAllStandardError().constData());
        QVERIFY(shell.readAllStandardOutput().endsWith(
            "Driver: this unit has none\nBoard: this unit has none\n"));
    }

    void treeRunsWhereItLies()
    {
        const QTemporaryDir prefix;
        QVERIFY(installed(prefix, {}).contains("bin/VornSettings"_s));
        QProcess program;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("VORN_UNIT"_s, ":memory:"_s);
        program.setProcessEnvironment(environment);
        const QString report = prefix.filePath("report.txt"_s);
        program.start(prefix.filePath("bin/VornSettings"_s), {"--systemreport"_s, report});
        QVERIFY(program.waitForFinished(60'000));
        QCOMPARE(program.exitCode(), 0);
        QFile file(report);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("\nVornaux API: v"));
    }
};

QTEST_GUILESS_MAIN(InstallPosixTest)
#include "tst_install_posix.moc"
