#include "tests/support/ProgramTree.h"

#include "reports/read.h"
#include "tests/support/system.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace support {

namespace {

/** What the reader of reports kept of one. */
class Kept : public reports::EntrySink
{
public:
    std::string source;

    void entry(const reports::Entry &entry) override { reports::appendSource(source, entry); }
    void logText(std::string_view piece) override { source += piece; }
};

/** Every report that a test has the program write, whatever the unit was like, is one for the
 * reader. */
void lookThrough(const QByteArray &report)
{
    reports::Lines lines({report.constData(), std::size_t(report.size())});
    Kept kept;
    const auto facts = reports::readReport(lines, kept);
    const QByteArray plain =
        QByteArray(report).replace("\r\n", "\n"); // as the reader takes their ends
    if (!facts.complete || QByteArray::fromStdString(kept.source) != plain)
        QTest::qFail("vornreport would lose lines of this report", __FILE__, __LINE__);
}

} // namespace

QString ProgramTree::path(const QString &name) const
{
    return folder.filePath(name);
}

QString ProgramTree::putIn(const QString &file, const QString &name) const
{
    const QString copy = path(name);
    QFile::remove(copy);
    if (!QFile::copy(file, copy))
        qFatal("no file %s", qPrintable(file));
    return copy;
}

void ProgramTree::write(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write %s", qPrintable(name));
}

QByteArray ProgramTree::read(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void ProgramTree::prepare(QProcess &process) const
{
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
}

Run ProgramTree::run(const QStringList &arguments) const
{
    return runOther(program(), arguments);
}

Run ProgramTree::runOther(const QString &name, const QStringList &arguments) const
{
    QProcess process;
    prepare(process);
    process.start(name, arguments);
    process.waitForStarted(60'000);
    SystemBoxes boxes(process.processId());
    Run run;
    const bool ended = process.waitForFinished(60'000);
    run.endedNormally = ended && process.exitStatus() == QProcess::NormalExit;
    run.exitCode = process.exitCode();
    run.output = process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    for (QString box : boxes.take()) {
        static const QRegularExpression plain(QStringLiteral("^error\\|(.*)\\|OK$"));
        run.errors += box.replace(plain, QStringLiteral("\\1")).toLatin1() + '\n';
    }
    return run;
}

QByteArray ProgramTree::report() const
{
    run({QStringLiteral("--systemreport"), path(QStringLiteral("report.txt"))});
    const QByteArray text = read(QStringLiteral("report.txt"));
    if (!text.isEmpty())
        lookThrough(text);
    return text.mid(text.indexOf('\n', 1) + 1);
}

QByteArray section(const QByteArray &report, const char *title)
{
    const QByteArray banner =
        QByteArray("\n------------------  ") + title + "  ------------------\n";
    const auto start = report.indexOf(banner);
    if (start < 0)
        return "no such banner";
    const auto text = start + banner.size();
    const auto end = report.indexOf("\n------------------  ", text - 1);
    return report.mid(text, end < 0 ? -1 : end - text);
}

} // namespace support
