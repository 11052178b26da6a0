#include "report/systemReport.h"
#include "tests/support/PageTest.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <memory>

#include <unistd.h>

namespace {

using namespace support;

constexpr int patience = 300'000; // milliseconds

/** The blocks of a kind in the manual below that heading. */
QStringList blocks(const QString &heading, const QString &kind)
{
    QFile file(VORN_SOURCE_DIR "/docs/reports.md"_s);
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
    void init()
    {
        DeviceTest::init();
        folder = std::make_unique<QTemporaryDir>();
        report = generateSystemReport().toLatin1();
    }

    /** What the manual shows for SQLite, as it stands there. */
    void sqliteExamples()
    {
        QVERIFY2(!QStandardPaths::findExecutable("sqlite3"_s).isEmpty(),
            "sqlite3 of packages.txt is missing");
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

    /** What is locked has a message of its own, wherever it lies, and the rest goes on. */
    void folderWithoutPermission()
    {
        write("reports/a.txt"_s, report);
        write("reports/z.txt"_s, report);
        const QStringList locked{folder->filePath("locked"_s), folder->filePath("reports/k"_s),
            folder->filePath("reports/m"_s)};
        for (const QString &name : locked) {
            QVERIFY(QDir().mkpath(name));
            QVERIFY(QFile::setPermissions(name, {}));
        }
        // The administrator may read everything.
        const QString drop =
            ::geteuid() == 0 ? "setpriv --reuid=65534 --clear-groups "_s : QString();
        QVERIFY(QFile::setPermissions(folder->path(), QFile::Permissions(0x7755)));
        const QByteArray out =
            shell(drop + QStringLiteral(VORN_BIN_DIR) + "/vornreport json locked reports"_s, 2);
        QCOMPARE(words.split('\n'),
            (QByteArrayList{"vornreport: locked: can't be listed: Permission denied",
                "vornreport: reports/k: can't be listed: Permission denied",
                "vornreport: reports/m: can't be listed: Permission denied", ""}));
        QCOMPARE(out.count('\n'), 2);
        for (const QString &name : locked)
            QVERIFY(QFile::setPermissions(name, QFile::Permissions(0x7755)));
    }

    /** A link that leads nowhere is told, one in a circle isn't followed. */
    void linksInFolders()
    {
        write("reports/a.txt"_s, report);
        QVERIFY(QFile::link("nothing"_s, folder->filePath("reports/b.txt"_s)));
        QVERIFY(QFile::link("c.txt"_s, folder->filePath("reports/c.txt"_s)));
        QVERIFY(QFile::link("a.txt"_s, folder->filePath("reports/d.txt"_s)));
        QVERIFY(QFile::link("."_s, folder->filePath("reports/e"_s)));
        QVERIFY(QFile::link("."_s, folder->filePath("reports/f.txt"_s)));
        const QByteArray out = shell("vornreport json reports"_s, 2);
        QCOMPARE(words, QByteArray("vornreport: reports/b.txt: there is no such file\n"
                                   "vornreport: reports/c.txt: can't be opened\n"));
        QCOMPARE(out.count('\n'), 2);
    }

    /** Names of files are any bytes; what is printed of them is UTF-8. */
    void namesThatAreNoText()
    {
        write("reports/a.txt"_s, report);
        shell("mv reports/a.txt reports/$'a\\xff\\xc3\\xa4.txt'"_s);
        const QByteArray name = "reports/a\xEF\xBF\xBD\303\244.txt";
        const QByteArray table = shell("vornreport table reports"_s);
        QVERIFY2(table.split('\n').at(1).startsWith(name + ','), table.left(200).constData());
        QVERIFY(shell("vornreport html reports"_s).contains(name));
        shell("sed -i '/^Voltage 12V: /s/: .*/: 9 V/' reports/*"_s);
        QVERIFY(shell("vornreport check reports | grep ."_s).startsWith("FAIL " + name));
        shell("rm -r reports"_s); // Qt doesn't find it
    }

    /** Where the system gives no threads, one does all. */
    void withoutThreads()
    {
        write("reports/a.txt"_s, report);
        write("reports/b.txt"_s, report);
        QVERIFY(QFile::setPermissions(folder->path(), QFile::Permissions(0x7755)));
        // The administrator has no such limit.
        const QString drop =
            ::geteuid() == 0 ? "setpriv --reuid=65533 --clear-groups "_s : QString();
        // Nor would a leak's search find its thread.
        const QByteArray out =
            shell(drop + "bash -c 'ulimit -u 1; ASAN_OPTIONS=detect_leaks=0 exec "_s +
                  QStringLiteral(VORN_BIN_DIR) + "/vornreport json reports'"_s);
        QCOMPARE(words, QByteArray());
        QCOMPARE(out.count('\n'), 2);
    }

    /** The line of the manual that asks a fleet finds the unit. */
    void fleetIsAsked()
    {
        QFile file(VORN_SOURCE_DIR "/docs/reports.md"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString line = QString::fromUtf8(file.readAll())
                                 .section("*Is it this truck alone?* `"_s, 1)
                                 .section("`"_s, 0, 0);
        QVERIFY(line.startsWith("vornreport check"_s));
        write("reports/a.txt"_s, report);
        setUnit("Adc.voltage2"_s, "9.87"_s);
        write("reports/b.txt"_s, generateSystemReport().toLatin1());
        const QByteArray found = shell(QString(line).replace("trucks/"_s, "reports/"_s));
        QVERIFY2(found.startsWith("FAIL reports/b.txt: ADC data: Voltage 12V: 9.87 V"),
            found.constData());
        QCOMPARE(found.count('\n'), 1);
    }

    void fullDisk()
    {
        write("reports/a.txt"_s, report);
        for (const char *command :
            {"table reports", "json reports", "html reports", "check --print-rules",
                "unit reports/a.txt", "diff --all reports/a.txt reports/a.txt"}) {
            shell("vornreport %1 > /dev/full"_s.arg(QLatin1String(command)), 2);
            QCOMPARE(words, QByteArray("vornreport: the output can't be written\n"));
        }
    }

    /** A log of a gigabyte takes no more memory than one of a line. */
    void hugeLog()
    {
#ifdef VORN_ADDRESS_SANITIZER
        constexpr int size = 20'000'000; // it counts its own memory, and takes its time
#else
        constexpr int size = 1'000'000'000;
#endif
        const auto end = report.indexOf("\n------------------  End");
        write("start"_s, report.left(end) + "\n\nFile:HardwareErrorLog.log:\n");
        write("end"_s, report.mid(end));
        shell("{ cat start; yes 'one line of a log that never ends, and never has' |"
              " head -c %1; echo; cat end; } > huge.txt"_s.arg(size));
        // Of a child that is started by a small parent: it begins with its parent's memory.
        const QByteArray shown = shell(R"(python3 -c '
import resource, subprocess, sys
subprocess.run(["vornreport", "json", "huge.txt"], check=True)
print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss, file=sys.stderr)
' | tail -c 100000 | wc -c)"_s);
        QCOMPARE(shown.trimmed(), QByteArray("100000"));
        QFile::remove(folder->filePath("huge.txt"_s));
        const int kilobytes = words.trimmed().toInt();
        QVERIFY2(kilobytes > 0, words.constData());
#ifndef VORN_ADDRESS_SANITIZER
        QVERIFY2(kilobytes < 64 * 1024, words.constData());
#endif
    }

private:
    QByteArray shell(const QString &script, int expected = 0)
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("PATH"_s, VORN_BIN_DIR ":"_s + environment.value("PATH"_s));
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

    void write(const QString &name, const QByteArray &text) const
    {
        QDir(folder->path()).mkpath("reports"_s);
        QFile file(folder->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), qint64(text.size()));
    }

    std::unique_ptr<QTemporaryDir> folder;
    QByteArray report;
    QByteArray words; ///< what the last script said on its standard error stream
};

VORN_TEST_MAIN(VornreportLimitsTest)
#include "tst_vornreport_posix.moc"
