#include "tests/support/CheckTest.h"

#include <QFile>
#include <QStandardPaths>
#include <QtTest>

#include <csignal>

using namespace support;

/** The compliance test among signals, and beside compilers of device libraries. */
class VorncheckPosixTest : public CheckTest
{
    Q_OBJECT

private slots:
    /** A parent may have told the system to forget how children end. */
    void hearsOfEndsThatItsParentIgnores()
    {
        QProcess tool;
        tool.start("env"_s, {"--ignore-signal=CHLD"_s, VORN_BIN_DIR "/vorncheck"_s, "--only"_s,
                                "functions"_s, QStringLiteral(VORN_DEVICE_LIBRARY)});
        const auto outcome = ended(tool);
        QCOMPARE(outcome.exitCode, 0);
        QVERIFY2(outcome.out.startsWith("PASS functions\n"_s), qPrintable(outcome.out));
    }

    void putsBackWhenInterrupted_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("TERM") << SIGTERM;
        QTest::newRow("INT") << SIGINT;
        QTest::newRow("HUP") << SIGHUP;
    }

    void putsBackWhenInterrupted()
    {
        QFETCH(int, signal);
        const auto before = settings();
        QProcess tool;
        startWriting(tool);
        if (QTest::currentTestFailed())
            return;
        ::kill(static_cast<pid_t>(tool.processId()), signal);
        QVERIFY(tool.waitForFinished(checkPatience));
        QCOMPARE(tool.exitStatus(), QProcess::CrashExit); // as the signal wants it
        QVERIFY(settings() == before);
    }

    void skeletonKeepsTheContract_data()
    {
        QTest::addColumn<QString>("compiler");
        QTest::addColumn<bool>("runs");
        QTest::newRow("gcc, C99") << "gcc -std=c99 -Wmissing-prototypes -fPIC" << true;
        QTest::newRow("gcc, C++17") << "g++ -std=c++17 -x c++ -fPIC" << true;
        QTest::newRow("clang, C99") << "clang -std=c99 -fPIC" << false;
        QTest::newRow("clang, C++17") << "clang++ -std=c++17 -x c++ -fPIC" << false;
        QTest::newRow("MinGW, C99") << "x86_64-w64-mingw32-gcc -std=c99" << false;
        QTest::newRow("MinGW, C++17") << "x86_64-w64-mingw32-g++ -std=c++17 -x c++" << false;
    }

    /** Compiles without a warning, passes, and the program makes its report on it. */
    void skeletonKeepsTheContract()
    {
        QFETCH(QString, compiler);
        QFETCH(bool, runs);
        auto words = compiler.split(QLatin1Char(' '));
        const auto name = words.takeFirst();
        if (QStandardPaths::findExecutable(name).isEmpty())
            QSKIP("this compiler is not installed");
        QProcess tool;
        const auto source = folder->filePath("unit.c"_s);
        tool.setStandardOutputFile(source);
        tool.start(VORN_BIN_DIR "/vornunit"_s, {"skeleton"_s});
        QVERIFY(tool.waitForFinished(checkPatience) && tool.exitCode() == 0);
        const auto library = folder->filePath("libVornAux2.so"_s);
        QProcess build;
        build.start(name, words + QStringList{"-Wall"_s, "-Wextra"_s, "-Wpedantic"_s,
                                      "-Wconversion"_s, "-Wshadow"_s, "-Werror"_s, "-shared"_s,
                                      "-I" VORN_SOURCE_DIR "/frame"_s, "-o"_s, library, source});
        QVERIFY(build.waitForFinished(checkPatience));
        QCOMPARE(QString::fromUtf8(build.readAllStandardError()), QString());
        QCOMPARE(build.exitCode(), 0);
        if (!runs)
            return;
        const auto tests = words.contains("-std=c99"_s) ? QStringList() : withoutThreads();
        QCOMPARE(findings(check(tests + QStringList{"--write"_s, library}, 0)), QStringList());

        QProcess program;
        environment.insert("LD_LIBRARY_PATH"_s, folder->path());
        program.setProcessEnvironment(environment);
        const auto report = folder->filePath("report.txt"_s);
        program.start(VORN_BIN_DIR "/VornSettings"_s, {"--systemreport"_s, report});
        QVERIFY(program.waitForFinished(checkPatience) && program.exitCode() == 0);
        QFile file(report);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("Not supported by this unit or its firmware"));
    }
};

QTEST_GUILESS_MAIN(VorncheckPosixTest)
#include "tst_vorncheck_posix.moc"
