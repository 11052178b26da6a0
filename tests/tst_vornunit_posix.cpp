#include "tests/support/literals.h"
#include "virtualunit/VirtualUnit.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

using namespace support;

namespace {

struct Outcome {
    int exitCode = -1;
    QString err;
};

/** A line of the shell, with the tool's folder in the path. */
Outcome shell(const QString &line, const QTemporaryDir &folder)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(
        "PATH"_s, VORN_BIN_DIR ":" VORN_TEST_PROGRAMS ":"_s + environment.value("PATH"_s));
    environment.insert("VORN_UNIT"_s, folder.filePath("unit.sqlite"_s));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    process.start("sh"_s, {"-c"_s, line});
    if (!process.waitForFinished(30'000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {-1, "killed: "_s + process.errorString()};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

/** What the tool and the journal make of limits, pipes and impossible places. */
class VornunitPosixTest : public QObject
{
    Q_OBJECT

private slots:
    void limitOfFileSizes()
    {
        const QTemporaryDir folder;
        QCOMPARE(shell("vornunit init basic"_s, folder).exitCode, 0);
        const auto outcome = shell("ulimit -f 4; exec vornunit set Buzzer.volume 7"_s, folder);
        QVERIFY2(outcome.err.startsWith("vornunit: "_s), qPrintable(outcome.err));
        QCOMPARE(outcome.err.count(QLatin1Char('\n')), 1);
        QCOMPARE(outcome.exitCode, 1);
    }

    void refusesImpossiblePlaces_data()
    {
        QTest::addColumn<QString>("message");
        QTest::newRow("lines --dir file/below")
            << "The folder \"file/below\" can't be made: Not a directory"_s;
        QTest::newRow("lines --dir lines --gps /usr") << "The recording \"/usr\" is a folder"_s;
        QTest::newRow("lines --dir lines --gps none") << "The recording \"none\" can't be read"_s;
    }

    void refusesImpossiblePlaces()
    {
        QFETCH(QString, message);
        const QTemporaryDir folder;
        QFile file(folder.filePath("file"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const auto outcome =
            shell("exec vornunit "_s + QLatin1String(QTest::currentDataTag()), folder);
        QCOMPARE(outcome.err, "vornunit: "_s + message + QLatin1Char('\n'));
        QCOMPARE(outcome.exitCode, 1);
    }

    void journalThatNobodyReads()
    {
        const QTemporaryDir folder;
        QCOMPARE(::mkfifo(QFile::encodeName(folder.filePath("pipe"_s)).constData(), 0600), 0);
        const auto outcome = shell("VORN_JOURNAL=pipe exec unitwriter count key 2"_s, folder);
        QCOMPARE(outcome.err,
            "The journal \"pipe\" can't be written, calls go on without it: nobody "
            "reads that pipe\n"_s);
        QCOMPARE(outcome.exitCode, 0);
    }

    void journalThatIsReadNoMore()
    {
        const QTemporaryDir folder;
        QCOMPARE(::mkfifo(QFile::encodeName(folder.filePath("pipe"_s)).constData(), 0600), 0);
        // The reader takes one line and goes; the program must neither wait nor die of it.
        const auto outcome = shell(
            "head -n 1 pipe >line & exec 3>pipe; VORN_JOURNAL=pipe unitwriter count key 2000 3>&-; "
            "code=$?; exec 3>&-; wait; exit $code"_s,
            folder);
        QCOMPARE(outcome.err, QString());
        QCOMPARE(outcome.exitCode, 0);
        QFile line(folder.filePath("line"_s));
        QVERIFY(line.open(QIODevice::ReadOnly));
        QCOMPARE(line.readAll(), QByteArray("T1 Settings_create() = #1\n"));
    }

    void journalBeyondTheLimit()
    {
        const QTemporaryDir folder;
        // The unit itself is in memory, so that only the journal meets the limit.
        const auto outcome = shell("ulimit -f 4; VORN_UNIT=:memory: VORN_JOURNAL=journal "
                                   "exec unitwriter count key 500"_s,
            folder);
        QCOMPARE(outcome.err, QString());
        QCOMPARE(outcome.exitCode, 0);
        QCOMPARE(QFile(folder.filePath("journal"_s)).size() % 512, 0);
    }
};

QTEST_GUILESS_MAIN(VornunitPosixTest)
#include "tst_vornunit_posix.moc"
