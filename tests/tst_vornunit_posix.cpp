#include "virtualunit/VirtualUnit.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

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
        QStringLiteral("PATH"), QStringLiteral(VORN_BIN_DIR ":" VORN_TEST_PROGRAMS ":") +
                                    environment.value(QStringLiteral("PATH")));
    environment.insert(QStringLiteral("VORN_UNIT"), folder.filePath(QStringLiteral("unit.sqlite")));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral("sh"), {QStringLiteral("-c"), line});
    if (!process.waitForFinished(30'000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {-1, QStringLiteral("killed: ") + process.errorString()};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

/** What the tool and the journal make of limits, pipes and impossible places. */
class VornunitPosixTest : public QObject
{
    Q_OBJECT

private slots:
    void limitOfFileSizes();
    void refusesImpossiblePlaces_data();
    void refusesImpossiblePlaces();
    void journalThatNobodyReads();
    void journalThatIsReadNoMore();
    void journalBeyondTheLimit();
};

void VornunitPosixTest::limitOfFileSizes()
{
    const QTemporaryDir folder;
    QCOMPARE(shell(QStringLiteral("vornunit init basic"), folder).exitCode, 0);
    const auto outcome =
        shell(QStringLiteral("ulimit -f 4; exec vornunit set Buzzer.volume 7"), folder);
    QVERIFY2(outcome.err.startsWith(QStringLiteral("vornunit: ")), qPrintable(outcome.err));
    QCOMPARE(outcome.err.count(QLatin1Char('\n')), 1);
    QCOMPARE(outcome.exitCode, 1);
}

void VornunitPosixTest::refusesImpossiblePlaces_data()
{
    QTest::addColumn<QString>("message");
    QTest::newRow("lines --dir file/below")
        << QStringLiteral("The folder \"file/below\" can't be made: Not a directory");
    QTest::newRow("lines --dir lines --gps /usr")
        << QStringLiteral("The recording \"/usr\" is a folder");
    QTest::newRow("lines --dir lines --gps none")
        << QStringLiteral("The recording \"none\" can't be read");
}

void VornunitPosixTest::refusesImpossiblePlaces()
{
    QFETCH(QString, message);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const auto outcome =
        shell(QStringLiteral("exec vornunit ") + QLatin1String(QTest::currentDataTag()), folder);
    QCOMPARE(outcome.err, QStringLiteral("vornunit: ") + message + QLatin1Char('\n'));
    QCOMPARE(outcome.exitCode, 1);
}

void VornunitPosixTest::journalThatNobodyReads()
{
    const QTemporaryDir folder;
    QCOMPARE(
        ::mkfifo(QFile::encodeName(folder.filePath(QStringLiteral("pipe"))).constData(), 0600), 0);
    const auto outcome =
        shell(QStringLiteral("VORN_JOURNAL=pipe exec unitwriter count key 2"), folder);
    QCOMPARE(outcome.err,
        QStringLiteral("The journal \"pipe\" can't be written, calls go on without it: nobody "
                       "reads that pipe\n"));
    QCOMPARE(outcome.exitCode, 0);
}

void VornunitPosixTest::journalThatIsReadNoMore()
{
    const QTemporaryDir folder;
    QCOMPARE(
        ::mkfifo(QFile::encodeName(folder.filePath(QStringLiteral("pipe"))).constData(), 0600), 0);
    // The reader takes one line and goes; the program must neither wait nor die of it.
    const auto outcome = shell(
        QStringLiteral(
            "head -n 1 pipe >line & exec 3>pipe; VORN_JOURNAL=pipe unitwriter count key 2000 3>&-; "
            "code=$?; exec 3>&-; wait; exit $code"),
        folder);
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.exitCode, 0);
    QFile line(folder.filePath(QStringLiteral("line")));
    QVERIFY(line.open(QIODevice::ReadOnly));
    QCOMPARE(line.readAll(), QByteArray("T1 Settings_create() = #1\n"));
}

void VornunitPosixTest::journalBeyondTheLimit()
{
    const QTemporaryDir folder;
    // The unit itself is in memory, so that only the journal meets the limit.
    const auto outcome =
        shell(QStringLiteral("ulimit -f 4; VORN_UNIT=:memory: VORN_JOURNAL=journal "
                             "exec unitwriter count key 500"),
            folder);
    QCOMPARE(outcome.err, QString());
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(QFile(folder.filePath(QStringLiteral("journal"))).size() % 512, 0);
}

QTEST_GUILESS_MAIN(VornunitPosixTest)
#include "tst_vornunit_posix.moc"
