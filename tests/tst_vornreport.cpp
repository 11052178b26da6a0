#include "tests/support/PageTest.h"

#include "report/systemReport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

namespace {

using namespace support;

constexpr int patience = 60'000; // milliseconds

struct Outcome {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

/** The rows of a CSV text, field by field, as its standard says. */
QList<QByteArrayList> rowsOf(const QByteArray &csv)
{
    QList<QByteArrayList> rows;
    QByteArrayList row;
    QByteArray field;
    bool quoted = false;
    for (int i = 0; i < csv.size(); ++i) {
        const char byte = csv[i];
        if (byte == '"') {
            if (quoted && i + 1 < csv.size() && csv[i + 1] == '"')
                field += csv[i++];
            else
                quoted = !quoted;
        } else if (!quoted && (byte == ',' || byte == '\n')) {
            row << field;
            field.clear();
            if (byte == '\n')
                rows << std::exchange(row, {});
        } else if (quoted || byte != '\r') {
            field += byte;
        }
    }
    return rows;
}

} // namespace

/** The command line tool for reports, started as a user starts it. */
class tst_vornreport : public PageTest
{
    Q_OBJECT

private slots:
    void init();
    void helps();
    void refusesWrongUsage_data();
    void refusesWrongUsage();
    void writesJson();
    void writesTable();
    void keepsTheOrder();
    void takesListsAndStandardInput();
    void tellsTrouble();
    void marksText();

private:
    Outcome run(const QStringList &arguments, const QByteArray &input = {}) const;
    QString write(const QString &name, const QByteArray &text) const;
    QList<QJsonObject> json(const QStringList &arguments, const QByteArray &input = {}) const;

    std::unique_ptr<QTemporaryDir> folder;
    QByteArray report;
};

void tst_vornreport::init()
{
    DeviceTest::init();
    folder = std::make_unique<QTemporaryDir>();
    if (report.isEmpty())
        report = generateSystemReport().toLatin1();
}

Outcome tst_vornreport::run(const QStringList &arguments, const QByteArray &input) const
{
    QProcess tool;
    tool.setWorkingDirectory(folder->path());
    tool.start(QStringLiteral(VORN_BIN_DIR "/vornreport"), arguments);
    tool.write(input);
    tool.closeWriteChannel();
    if (!tool.waitForFinished(patience) || tool.exitStatus() != QProcess::NormalExit)
        qFatal("vornreport %s", qPrintable(tool.errorString()));
    return {tool.exitCode(), tool.readAllStandardOutput(), tool.readAllStandardError()};
}

QString tst_vornreport::write(const QString &name, const QByteArray &text) const
{
    QFile file(folder->filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("%s", qPrintable(file.errorString()));
    return name;
}

/** One object for each line; ends the test program where a line is none. */
QList<QJsonObject> tst_vornreport::json(const QStringList &arguments, const QByteArray &input) const
{
    QList<QJsonObject> objects;
    const QByteArray out = run(QStringList{"json"_s} + arguments, input).out;
    for (const QByteArray &line : out.split('\n')) {
        QJsonParseError error;
        const auto document = QJsonDocument::fromJson(line, &error);
        if (document.isObject())
            objects << document.object();
        else if (!line.isEmpty())
            qFatal("%s", qPrintable(error.errorString()));
    }
    return objects;
}

void tst_vornreport::helps()
{
    const Outcome help = run({"--help"_s});
    QCOMPARE(help.exitCode, 0);
    QCOMPARE(help.err, QByteArray());
    for (const char *command : {"json", "table"}) {
        QVERIFY2(help.out.contains(command), command);
        const Outcome more = run({QString::fromLatin1(command), "--help"_s});
        QCOMPARE(more.exitCode, 0);
        QVERIFY2(more.out.contains("Example"), command);
    }
    const Outcome version = run({"--version"_s});
    QCOMPARE(version.out, QByteArray("vornreport 2.7.2.0\n"));
}

void tst_vornreport::refusesWrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("unknown command") << QStringList{"jsn"_s};
    QTest::newRow("no file") << QStringList{"json"_s};
    QTest::newRow("unknown option") << QStringList{"json"_s, "--fast"_s, "x"_s};
}

void tst_vornreport::refusesWrongUsage()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.out, QByteArray());
    QVERIFY(!outcome.err.isEmpty());
}

void tst_vornreport::writesJson()
{
    QByteArray text = report;
    text.replace("System report generated on: " + text.split('\n').at(1).mid(28),
        "System report generated on: Fri Mar 4 05:06:07 2011");
    text.replace("\n------------------  End", "\n\nFile:VornAuxService.log:\na \"b\"\n\\\t\344\n\n"
                                              "------------------  End");
    text.replace("Voltage 5V: ", "An unknown line\nVoltage 5V: ");
    write("one.txt"_s, text);
    const auto objects = json({"one.txt"_s});
    QCOMPARE(objects.size(), 1);
    const QJsonObject one = objects.constFirst();
    QCOMPARE(one.keys(), (QStringList{"complete"_s, "entries"_s, "file"_s, "generated"_s}));
    QCOMPARE(one["file"_s].toString(), "one.txt"_s);
    QCOMPARE(one["generated"_s].toString(), "2011-03-04T05:06:07"_s);
    QCOMPARE(one["complete"_s].toBool(), true);
    QStringList lines;
    for (const auto &value : one["entries"_s].toArray())
        lines << QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    QCOMPARE(lines.first(),
        R"({"error":null,"group":"","name":"Vornsettings","section":"SW Versions","text":"v2.7.2.0","unit":null,"value":null})"_s);
    QVERIFY(lines.contains(
        R"({"error":null,"group":"","name":null,"section":"ADC data","text":"An unknown line","unit":null,"value":null})"_s));
    QVERIFY(lines.contains(
        R"({"error":null,"group":"","name":"Maximum temp","section":"Diagnostic data","text":")"_s +
        "82 \260C\",\"unit\":\"\260C\",\"value\":82}"_s));
    QVERIFY(lines.contains(
        R"({"error":null,"group":"CAN","name":"CAN1 Baud rate","section":"Settings","text":"250","unit":null,"value":250})"_s));
    QVERIFY(lines.last().contains(R"("text":"a \"b\"\n\\\t)"_s + "\344"_s + R"(\n")"_s));
}

void tst_vornreport::writesTable()
{
    QByteArray text = report;
    text.replace("Unit serial number: VU-100-004711", "Unit serial number: a,\"b\" \344");
    write("one, two.txt"_s, text);
    const Outcome outcome = run({"table"_s, "one, two.txt"_s});
    QCOMPARE(outcome.exitCode, 0);
    const auto rows = rowsOf(outcome.out);
    QCOMPARE(rows.constFirst().join('|'),
        QByteArray("file|generated|section|group|name|text|value|unit|error"));
    const auto entries = json({"one, two.txt"_s}).constFirst()["entries"_s].toArray();
    QCOMPARE(rows.size(), entries.size() + 1);
    for (int i = 0; i < int(entries.size()); ++i) {
        const QJsonObject entry = entries[i].toObject();
        const QByteArrayList &row = rows[i + 1];
        QCOMPARE(row.size(), 9);
        QCOMPARE(row[0], QByteArray("one, two.txt"));
        QCOMPARE(QString::fromUtf8(row[4]), entry["name"_s].toString());
        QCOMPARE(QString::fromUtf8(row[5]), entry["text"_s].toString());
        QCOMPARE(row[6].isEmpty(), entry["value"_s].isNull());
        QCOMPARE(row[6].toDouble(), entry["value"_s].toDouble());
        QCOMPARE(QString::fromUtf8(row[7]), entry["unit"_s].toString());
    }
    QVERIFY(outcome.out.contains("\"a,\"\"b\"\" \303\244\""));
    QCOMPARE(outcome.out.count('\n'), outcome.out.count("\r\n"));
}

/** All cores at work, and yet one report after the other. */
void tst_vornreport::keepsTheOrder()
{
    QVERIFY(QDir(folder->path()).mkpath("many/deep"_s));
    QStringList expected;
    for (int i = 0; i < 300; ++i) {
        const QString name = QStringLiteral("many/%1%2.txt")
                                 .arg(QLatin1String(i % 7 == 0 ? "deep/" : ""))
                                 .arg(i, 4, 10, QLatin1Char('0'));
        QByteArray text = report;
        if (i % 50 == 3) // more than is held back
            text.replace("\n------------------  End", "\n\nFile:HardwareErrorLog.log:\n" +
                                                          QByteArray(3'000'000, 'x') +
                                                          "\n\n------------------  End");
        expected << write(name, text);
    }
    write("many/other.log"_s, report);
    expected.sort();
    QStringList names;
    for (const QJsonObject &object : json({"many"_s})) {
        names << QDir::fromNativeSeparators(object["file"_s].toString());
        QVERIFY(object["complete"_s].toBool());
    }
    QCOMPARE(names, expected);
}

void tst_vornreport::takesListsAndStandardInput()
{
    write("a.txt"_s, report);
    write("b.txt"_s, report);
    write("list"_s, "b.txt\r\n\na.txt");
    const auto names = [this](const QStringList &arguments, const QByteArray &input) {
        QStringList all;
        for (const QJsonObject &object : json(arguments, input))
            all << object["file"_s].toString();
        return all;
    };
    QCOMPARE(names({"a.txt"_s, "--files-from"_s, "list"_s}, {}),
        (QStringList{"a.txt"_s, "b.txt"_s, "a.txt"_s}));
    QCOMPARE(names({"--files-from"_s, "-"_s}, "b.txt\n"), QStringList{"b.txt"_s});
    QCOMPARE(names({"-"_s}, report), QStringList{"-"_s});
    QByteArray large = report;
    large.replace("\n------------------  End", "\n\nFile:HardwareErrorLog.log:\n" +
                                                   QByteArray("line\r\n").repeated(1'000'000) +
                                                   "\n------------------  End");
    const auto objects = json({"-"_s}, large);
    QCOMPARE(objects.size(), 1);
    QCOMPARE(objects[0]["complete"_s].toBool(), true);
    QCOMPARE(
        objects[0]["entries"_s].toArray().last().toObject()["text"_s].toString().size(), 5'000'000);
}

/** Each file that can't be read has its word, and the others go on. */
void tst_vornreport::tellsTrouble()
{
    write("good.txt"_s, report);
    write("empty.txt"_s, "");
    write("binary.txt"_s, QByteArray("\x7f"
                                     "ELF\0\1\n\n\377",
                              9));
    write("cut.txt"_s, report.left(300));
    const Outcome outcome = run({"json"_s, "none.txt"_s, "empty.txt"_s, "binary.txt"_s, "cut.txt"_s,
        "good.txt"_s, "--files-from"_s, "nolist"_s});
    QCOMPARE(outcome.exitCode, 2);
    QCOMPARE(outcome.err.split('\n'),
        (QByteArrayList{"vornreport: none.txt: there is no such file",
            "vornreport: empty.txt: is empty", "vornreport: binary.txt: is no system report",
            "vornreport: the list \"nolist\" can't be read", ""}));
    QCOMPARE(outcome.out.count('\n'), 2);
    QVERIFY(outcome.out.startsWith("{\"file\":\"cut.txt\""));
}

/** Texts of a unit stay texts, whatever they are; what isn't UTF-8 in a file's name neither harms.
 */
void tst_vornreport::marksText()
{
    QByteArray text = report;
    text.replace(
        "Unit serial number: VU-100-004711", QByteArray("Unit serial number: \"},\1\x7f\200"));
    write("one.txt"_s, text);
    const auto object = json({"one.txt"_s}).constFirst();
    bool found = false;
    for (const auto &value : object["entries"_s].toArray())
        found = found || value.toObject()["text"_s].toString() == "\"},\1\x7f\200"_s;
    QVERIFY(found);
}

VORN_TEST_MAIN(tst_vornreport)
#include "tst_vornreport.moc"
