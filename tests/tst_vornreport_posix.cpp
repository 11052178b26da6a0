#include "report/systemReport.h"
#include "tests/support/PageTest.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <memory>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace support;

constexpr int patience = 300'000; // milliseconds

/** The blocks of a kind in the manual below that heading. */
QStringList blocks(const QString &heading, const QString &kind)
{
    QFile file(QStringLiteral(VORN_SOURCE_DIR "/docs/reports.md"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no manual");
    const QString manual = QString::fromUtf8(file.readAll());
    QString part = manual.section("\n### "_s + heading + "\n"_s, 1);
    part = part.section("\n### "_s, 0, 0).section("\n## "_s, 0, 0);
    QStringList found;
    for (const QString &piece : part.split("\n```"_s + kind + "\n"_s).mid(1))
        found << piece.section("\n```"_s, 0, 0);
    return found;
}

} // namespace

/** vornreport beside other programs, and within limits that only POSIX systems set. */
class VornreportLimitsTest : public PageTest
{
    Q_OBJECT

private slots:
    void init();
    void sqliteExamples();
    void folderWithoutPermission();
    void fullDisk();
    void hugeLog();

private:
    QByteArray shell(const QString &script, int expected = 0);
    void write(const QString &name, const QByteArray &text) const;

    std::unique_ptr<QTemporaryDir> folder;
    QByteArray report;
    QByteArray words; ///< what the last script said on its standard error stream
};

void VornreportLimitsTest::init()
{
    DeviceTest::init();
    folder = std::make_unique<QTemporaryDir>();
    report = generateSystemReport().toLatin1();
}

QByteArray VornreportLimitsTest::shell(const QString &script, int expected)
{
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PATH"_s, QStringLiteral(VORN_BIN_DIR ":") + environment.value("PATH"_s));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder->path());
    process.start("bash"_s, {"-ec"_s, script});
    if (!process.waitForFinished(patience))
        qFatal("%s takes too long", qPrintable(script));
    words = process.readAllStandardError();
    if (process.exitCode() != expected)
        qWarning("%s: %d %s", qPrintable(script), process.exitCode(), words.constData());
    return process.readAllStandardOutput();
}

void VornreportLimitsTest::write(const QString &name, const QByteArray &text) const
{
    QDir(folder->path()).mkpath("reports"_s);
    QFile file(folder->filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), qint64(text.size()));
}

/** What the manual shows for SQLite, as it stands there. */
void VornreportLimitsTest::sqliteExamples()
{
    if (QStandardPaths::findExecutable("sqlite3"_s).isEmpty())
        QSKIP("no sqlite3 here");
    write("reports/a.txt"_s, report);
    fault("Versions_getSSVersion"_s, 14);
    write("reports/b.txt"_s, generateSystemReport().toLatin1());
    clearFaults();
    setUnit("Versions.ss"_s, "2.0.0.0"_s);
    setUnit("Hardware.unitSerialNumber"_s, "other, \"quoted\""_s);
    setUnit("Adc.voltage2"_s, "9.87"_s);
    setUnit("Smart.remainingLifetime2"_s, "7"_s);
    write("reports/c.txt"_s, generateSystemReport().toLatin1());

    shell(blocks("SQLite"_s, "sh"_s).join("\n"_s));
    const QStringList queries = blocks("SQLite"_s, "sql"_s);
    QCOMPARE(queries.size(), 3);
    const auto answer = [&](int query) {
        return shell("sqlite3 fleet.db <<'END'\n"_s + queries[query] + "\nEND"_s);
    };
    QCOMPARE(answer(0), QByteArray("v2.0.0.0|1\nv2.1.7.3|1\n"));
    QCOMPARE(answer(1), QByteArray("reports/c.txt|Voltage 12V|9.87\n"));
    QCOMPARE(answer(2), QByteArray("reports/c.txt|Second storage device|7\n"));
}

void VornreportLimitsTest::folderWithoutPermission()
{
    write("reports/a.txt"_s, report);
    const QString locked = folder->filePath("locked"_s);
    QVERIFY(QDir().mkpath(locked));
    QVERIFY(QFile::setPermissions(locked, {}));
    // The administrator may read everything.
    const QString drop = ::geteuid() == 0 ? "setpriv --reuid=65534 --clear-groups "_s : QString();
    QVERIFY(QFile::setPermissions(folder->path(), QFile::Permissions(0x7755)));
    const QByteArray out =
        shell(drop + QStringLiteral(VORN_BIN_DIR) + "/vornreport json locked reports"_s, 2);
    QCOMPARE(words, QByteArray("vornreport: locked: can't be listed: Permission denied\n"));
    QCOMPARE(out.count('\n'), 1);
    QVERIFY(QFile::setPermissions(locked, QFile::Permissions(0x7755)));
}

void VornreportLimitsTest::fullDisk()
{
    write("reports/a.txt"_s, report);
    for (const char *command : {"table reports", "json reports", "html reports",
             "unit reports/a.txt", "diff --all reports/a.txt reports/a.txt"}) {
        shell(QStringLiteral("vornreport %1 > /dev/full").arg(QLatin1String(command)), 2);
        QCOMPARE(words, QByteArray("vornreport: the output can't be written\n"));
    }
}

/** A log of a gigabyte takes no more memory than one of a line. */
void VornreportLimitsTest::hugeLog()
{
#ifdef __SANITIZE_ADDRESS__
    constexpr int size = 20'000'000; // it counts its own memory, and takes its time
#else
    constexpr int size = 1'000'000'000;
#endif
    const auto end = report.indexOf("\n------------------  End");
    write("start"_s, report.left(end) + "\n\nFile:HardwareErrorLog.log:\n");
    write("end"_s, report.mid(end));
    shell(QStringLiteral("{ cat start; yes 'one line of a log that never ends, and never has' |"
                         " head -c %1; echo; cat end; } > huge.txt")
              .arg(size));
    QVERIFY(shell("vornreport json huge.txt | tail -c 100000 | wc -c"_s).toInt() == 100'000);
    QFile::remove(folder->filePath("huge.txt"_s));
    rusage usage{};
    QCOMPARE(::getrusage(RUSAGE_CHILDREN, &usage), 0);
#ifndef __SANITIZE_ADDRESS__
    QVERIFY2(usage.ru_maxrss < 64 * 1024, QByteArray::number(qint64(usage.ru_maxrss)).constData());
#endif
}

VORN_TEST_MAIN(VornreportLimitsTest)
#include "tst_vornreport_posix.moc"
