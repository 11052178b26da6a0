#include "tests/support/PageTest.h"

#include "report/systemReport.h"
#include "virtualunit/VirtualUnit.h"

#include <QDir>
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
class VornreportTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        DeviceTest::init();
        folder = std::make_unique<QTemporaryDir>();
        if (report.isEmpty())
            report = generateSystemReport().toLatin1();
    }

    /** A console outlives its program by a moment on Windows, and holds the folder meanwhile. */
    void cleanup()
    {
        folder->setAutoRemove(false);
        QTRY_VERIFY(QDir(folder->path()).removeRecursively());
        DeviceTest::cleanup();
    }

    void helps()
    {
        const Outcome help = run({"--help"_s});
        QCOMPARE(help.exitCode, 0);
        QCOMPARE(help.err, QByteArray());
        for (const char *command : {"json", "table", "diff", "check", "html", "unit"}) {
            QVERIFY2(help.out.contains(command), command);
            const Outcome more = run({QString::fromLatin1(command), "--help"_s});
            QCOMPARE(more.exitCode, 0);
            QVERIFY2(more.out.contains("Example"), command);
        }
        const Outcome version = run({"--version"_s});
        QVERIFY2(version.out.startsWith("vornreport 2.7.2.0 ("), version.out.constData());
    }

    void refusesWrongUsage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("nothing") << QStringList();
        QTest::newRow("unknown command") << QStringList{"jsn"_s};
        QTest::newRow("no file") << QStringList{"json"_s};
        QTest::newRow("unknown option") << QStringList{"json"_s, "--fast"_s, "x"_s};
    }

    void refusesWrongUsage()
    {
        QFETCH(QStringList, arguments);
        const Outcome outcome = run(arguments);
        QCOMPARE(outcome.exitCode, 2);
        QCOMPARE(outcome.out, QByteArray());
        QVERIFY(!outcome.err.isEmpty());
    }

    void writesJson()
    {
        QByteArray text = report;
        text.replace("System report generated on: " + text.split('\n').at(1).mid(28),
            "System report generated on: Fri Mar 4 05:06:07 2011");
        text.replace("\n------------------  End",
            "\n\nFile:VornAuxService.log:\na \"b\"\n\\\t\344\n\n"
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
        const auto entries = one["entries"_s].toArray();
        for (const auto &value : entries)
            lines << QString::fromUtf8(
                QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
        QCOMPARE(lines.first(),
            R"({"error":null,"group":"","name":"Vornsettings","section":"SW Versions","text":"v2.7.2.0","unit":null,"value":null})"_s);
        QVERIFY(lines.contains(
            R"({"error":null,"group":"","name":null,"section":"ADC data","text":"An unknown line","unit":null,"value":null})"_s));
        QVERIFY(lines.contains(
            R"({"error":null,"group":"","name":"Maximum temp","section":"Diagnostic data","text":"82 °C","unit":"°C","value":82})"_s));
        QVERIFY(lines.contains(
            R"({"error":null,"group":"CAN","name":"CAN1 Baud rate","section":"Settings","text":"250","unit":null,"value":250})"_s));
        QVERIFY(lines.last().contains(R"("text":"a \"b\"\n\\\t)"_s + "\303\244"_s + R"(\n")"_s));
    }

    void writesTable()
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
    void keepsTheOrder()
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

    void takesListsAndStandardInput()
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
        QCOMPARE(objects[0]["entries"_s].toArray().last().toObject()["text"_s].toString().size(),
            5'000'000);
    }

    /** Each file that can't be read has its word, and the others go on. */
    void tellsTrouble()
    {
        write("good.txt"_s, report);
        write("empty.txt"_s, "");
        write("binary.txt"_s, QByteArray("\x7f"
                                         "ELF\0\1\n\n\377",
                                  9));
        write("cut.txt"_s, report.left(300));
        const Outcome outcome = run({"json"_s, "none.txt"_s, "empty.txt"_s, "binary.txt"_s,
            "cut.txt"_s, "good.txt"_s, "--files-from"_s, "nolist"_s});
        QCOMPARE(outcome.exitCode, 2);
        QCOMPARE(outcome.err.split('\n'),
            (QByteArrayList{"vornreport: none.txt: there is no such file",
                "vornreport: empty.txt: is empty", "vornreport: binary.txt: is no system report",
                "vornreport: the list \"nolist\" can't be read", ""}));
        QCOMPARE(outcome.out.count('\n'), 2);
        QVERIFY(outcome.out.startsWith("{\"file\":\"cut.txt\""));
    }

    /** Texts of a unit stay texts, whatever they are; what isn't UTF-8 in a file's name neither
     * harms.
     */
    void marksText()
    {
        QByteArray text = report;
        text.replace(
            "Unit serial number: VU-100-004711", QByteArray("Unit serial number: \"},\1\x7f\200"));
        write("one.txt"_s, text);
        const auto object = json({"one.txt"_s}).constFirst();
        bool found = false;
        const auto entries = object["entries"_s].toArray();
        for (const auto &value : entries)
            found = found || value.toObject()["text"_s].toString() == "\"},\1\x7f\302\200"_s;
        QVERIFY(found);
    }

    /** What changed, counters and numbers by how much. */
    void comparesReports()
    {
        write("a.txt"_s, report + "");
        QByteArray text = report;
        text.replace("Number of power cycles: 1289 ", "Number of power cycles: 1301 ");
        text.replace("Unit serial number: VU-100-004711", "Unit serial number: \344");
        text.replace("Led dimming: Disabled", "Led dimming: Error(14) Communication error");
        text.replace("Volume: 20\n", "");
        text.replace("Voltage 5V: ", "Another line\nVoltage 5V: ");
        text.replace("Maximum temp: 82 ", "Maximum temp: 85 ");
        text.replace("Minimum temp: -19 ", "Minimum temp: -25 ");
        text.replace("\n------------------  End",
            "\n\nFile:VornAuxService.log:\none\ntwo\n\n------------------  End");
        write("b.txt"_s, text);
        const Outcome outcome = run({"diff"_s, "a.txt"_s, "b.txt"_s});
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(outcome.exitCode, 1);
        QCOMPARE(QString::fromUtf8(outcome.out),
            "EEPROM data, Mainboard\n"
            "  Unit serial number: VU-100-004711 -> \303\244\n"
            "Diagnostic data\n"
            "  Minimum temp: -19 \302\260C -> -25 \302\260C (-6 \302\260C)\n"
            "  Number of power cycles: 1289 -> 1301 (+12)\n"
            "ADC data\n"
            "  (unknown line): absent -> Another line\n"
            "Settings, Backlight\n"
            "  Led dimming: Disabled -> Error(14) Communication error\n"
            "Settings, Buzzer\n"
            "  Volume: 20 -> absent\n"
            "Log Files\n"
            "  VornAuxService.log: absent -> 2 lines, 8 bytes\n"_s);
        const Outcome other =
            run({"diff"_s, "--tolerance"_s, "temperature=2"_s, "a.txt"_s, "b.txt"_s});
        QVERIFY(
            other.out.contains("  Maximum temp: 82 \302\260C -> 85 \302\260C (+3 \302\260C)\n"));
        const Outcome all = run({"diff"_s, "--all"_s, "a.txt"_s, "a.txt"_s});
        QCOMPARE(all.exitCode, 0);
        QVERIFY(all.out.contains("ADC data\n  Voltage 24V in: "));
        QVERIFY(!all.out.contains("->"));
        const Outcome missing = run({"diff"_s, "a.txt"_s, "c.txt"_s});
        QCOMPARE(missing.exitCode, 2);
        QCOMPARE(missing.err, QByteArray("vornreport: c.txt: there is no such file\n"));
        write("cut.txt"_s, report.left(500));
        const Outcome cut = run({"diff"_s, "--json"_s, "cut.txt"_s, "cut.txt"_s});
        QCOMPARE(cut.exitCode, 0);
        QCOMPARE(cut.out, QByteArray());
        QCOMPARE(cut.err, QByteArray("vornreport: cut.txt: is not complete\n").repeated(2));
    }

    /** Living values move, and yet nothing has changed. */
    void sameUnitIsTheSame()
    {
        write("a.txt"_s, report);
        QCOMPARE(virtualunit::advanceClock(1000), std::string());
        const QByteArray later = generateSystemReport().toLatin1();
        QVERIFY(later != report);
        write("b.txt"_s, later);
        const Outcome outcome = run({"diff"_s, "a.txt"_s, "b.txt"_s});
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.exitCode, 0);
        const Outcome strict = run({"diff"_s, "--tolerance=rail=0"_s, "a.txt"_s, "b.txt"_s});
        QCOMPARE(strict.exitCode, 1);
        QVERIFY(strict.out.startsWith("ADC data\n  Voltage 24V in: "));
    }

    void refusesTolerances_data()
    {
        QTest::addColumn<QString>("tolerance");
        for (const char *text : {"rai=2%", "rail", "rail=", "rail=x", "rail=-1", "rail=2%%", "=2"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }

    void refusesTolerances()
    {
        QFETCH(QString, tolerance);
        write("a.txt"_s, report);
        const Outcome outcome = run({"diff"_s, "--tolerance"_s, tolerance, "a.txt"_s, "a.txt"_s});
        QCOMPARE(outcome.exitCode, 2);
        QVERIFY(outcome.err.contains("is no tolerance: "));
    }

    void everyProfileIsChecked_data()
    {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QByteArrayList>("expected"); // how the findings begin
        const QByteArrayList none;
        for (const char *sound : {"full", "basic", "gps-only", "gsm-only", "no-touch"})
            QTest::newRow(sound) << QString::fromLatin1(sound) << none;
        QTest::newRow("old-firmware")
            << "old-firmware"_s
            << QByteArrayList{
                   "WARN a.txt: SW Versions: FPGA: v1.0.0.2 (should be at least v1.2.0.0): "};
        QTest::newRow("broken")
            << "broken"_s
            << QByteArrayList{"FAIL a.txt: SW Versions: FPGA: Error(14) Communication error: ",
                   "WARN a.txt: EEPROM data, Mainboard: Main PCB Serial: N/A: ",
                   "FAIL a.txt: Diagnostic data: HW error status: Processor module temperature "
                   "sensor, "
                   "5V supply (should be \"No error\"): ",
                   "WARN a.txt: Diagnostic data: ShutDown reason: 7 (should be \"NoError\"): ",
                   "FAIL a.txt: Diagnostic data: SS temp: 86 \302\260C (should be at most 85 "
                   "\302\260C): ",
                   "FAIL a.txt: SMART data, First storage device: Estimated remaining lifetime: 3 "
                   "% "
                   "(should be at least 5 %): ",
                   "WARN a.txt: SMART data, Second storage device: Device serial number: Estimated "
                   "remaining lifetime is not available: ",
                   "FAIL a.txt: ADC data: Voltage 12V: 9.87 V (should be at least 10.8 V): "};
    }

    /** What is sound is clean, and what is not is found. */
    void everyProfileIsChecked()
    {
        QFETCH(QString, profile);
        QFETCH(QByteArrayList, expected);
        useProfile(profile);
        write("a.txt"_s, generateSystemReport().toLatin1());
        const Outcome outcome = run({"check"_s, "a.txt"_s});
        QCOMPARE(outcome.exitCode, expected.isEmpty() ? 0 : 1);
        if (expected.isEmpty())
            QCOMPARE(outcome.out, QByteArray());
        for (const QByteArray &start : expected)
            QVERIFY2(outcome.out.contains(start), outcome.out.constData());
        const Outcome lines = run({"check"_s, "--json"_s, "a.txt"_s});
        QCOMPARE(lines.out.count('\n'), outcome.out.count('\n'));
        for (const QByteArray &line : lines.out.split('\n')) {
            if (!line.isEmpty())
                QCOMPARE(QJsonDocument::fromJson(line).object().size(), 8);
        }
    }

    void takesRules()
    {
        const Outcome printed = run({"check"_s, "--print-rules"_s});
        write("builtin.json"_s, printed.out);
        write("own.json"_s, R"({"rules": [
        {"name": "Maximum temp", "max": 81.5, "unit": "\u00b0C", "level": "FAIL", "reason": "too hot"},
        {"section": "Settings", "name": "StartupTrigger", "texts": ["onoff signal"], "reason": "vehicle"},
        {"incomplete": true, "reason": "cut"}]})");
        write("a.txt"_s, report);
        write("cut.txt"_s, report.left(900));
        QCOMPARE(run({"check"_s, "--rules"_s, "builtin.json"_s, "a.txt"_s}).exitCode, 0);
        const Outcome own =
            run({"check"_s, "--rules"_s, "own.json"_s, "a.txt"_s, "none.txt"_s, "cut.txt"_s});
        QCOMPARE(own.exitCode, 2);
        QCOMPARE(
            own.out, QByteArray("FAIL a.txt: Diagnostic data: Maximum temp: 82 \302\260C (should "
                                "be at most 81.5 \302\260C): too hot\n"
                                "WARN a.txt: Settings, Config: StartupTrigger: Front button "
                                "(should be \"onoff signal\"): vehicle\n"
                                "WARN cut.txt: the report is not complete: cut\n"));
    }

    void refusesRules_data()
    {
        QTest::addColumn<QByteArray>("rules");
        QTest::addColumn<QByteArray>("words");
        const auto one = [](const char *rule) { return "{\"rules\": [" + QByteArray(rule) + "]}"; };
        QTest::newRow("no JSON") << QByteArray("rules") << QByteArray("parse error");
        QTest::newRow("no list") << QByteArray("{}") << QByteArray("one object with a list");
        QTest::newRow("no object") << one("5") << QByteArray("rule 1: it is no object");
        QTest::newRow("unknown field")
            << one(R"({"minimum": 5})") << QByteArray("nothing called \"minimum\"");
        QTest::newRow("unknown name")
            << one(R"({"name": "Voltage 13V", "min": 5, "unit": "V", "reason": "x"})")
            << QByteArray("no line of a report has that");
        QTest::newRow("other unit")
            << one(R"({"name": "Voltage 12V", "min": 5, "unit": "mV", "reason": "x"})")
            << QByteArray("another unit than \"mV\"");
        QTest::newRow("no reason") << one(R"({"failed": true})") << QByteArray("no reason");
        QTest::newRow("nothing asked")
            << one(R"({"name": "FPGA", "reason": "x"})") << QByteArray("asks for nothing");
        QTest::newRow("level") << one(R"({"failed": true, "level": "BAD", "reason": "x"})")
                               << QByteArray("a level is");
        QTest::newRow("version") << one(R"({"name": "FPGA", "version": "2.x", "reason": "x"})")
                                 << QByteArray("\"2.x\" is no version");
        QTest::newRow("type") << one(R"({"failed": 7, "reason": "x"})") << QByteArray("rule 1: ");
    }

    void refusesRules()
    {
        QFETCH(QByteArray, rules);
        QFETCH(QByteArray, words);
        write("rules.json"_s, rules);
        write("a.txt"_s, report);
        const Outcome outcome = run({"check"_s, "--rules"_s, "rules.json"_s, "a.txt"_s});
        QCOMPARE(outcome.exitCode, 2);
        QVERIFY2(outcome.err.startsWith("vornreport: rules.json: ") && outcome.err.contains(words),
            outcome.err.constData());
    }

    /** Numbers that no unit has, and between which an axis has no steps. */
    void drawsAnyNumbers()
    {
        QByteArray first = report;
        first.replace("power cycles: 1289 ", "power cycles: 4611686018427387904 ");
        first.replace("Minimum temp: -19 ", "Minimum temp: 1e308 ");
        first.replace("Maximum temp: 82 ", "Maximum temp: 999999999999.99988 ");
        write("a.txt"_s, first);
        first.replace("4611686018427387904", "4611686018427388928");
        first.replace("1e308", "-1e308");
        first.replace("999999999999.99988", "999999999999.99976");
        write("b.txt"_s, first);
        write("c.txt"_s, report);
        for (const char *name : {"a.txt", "c.txt"}) {
            const Outcome outcome =
                run({"html"_s, "a.txt"_s, "b.txt"_s, QString::fromLatin1(name)});
            QCOMPARE(outcome.exitCode, 0);
            for (const char *wrong : {"nan ", "nan\"", "inf ", "inf\""})
                QVERIFY2(!outcome.out.contains(wrong), wrong);
            QVERIFY(outcome.out.size() < 1'000'000);
        }
    }

    void readsTheStandardInputOnce()
    {
        const QByteArray words = "vornreport: -: the standard input is read already\n";
        const Outcome twice = run({"json"_s, "-"_s, "-"_s}, report);
        QCOMPARE(twice.exitCode, 2);
        QCOMPARE(twice.err, words);
        QCOMPARE(twice.out.count('\n'), 1);
        write("a.txt"_s, report);
        const Outcome list = run({"json"_s, "-"_s, "--files-from"_s, "-"_s}, "a.txt\n");
        QCOMPARE(list.exitCode, 2);
        QCOMPARE(list.err, words);
        QVERIFY(list.out.startsWith("{\"file\":\"a.txt\""));
        QCOMPARE(run({"json"_s, "--files-from"_s, "-"_s}, "-\n").err, words);
    }

    void judgesLines_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("changed");
        QTest::addColumn<QByteArray>("finding");
        QTest::newRow("no number")
            << QByteArray("Voltage 12V: ") << QByteArray("Voltage 12V: nan V")
            << QByteArray("FAIL a.txt: ADC data: Voltage 12V: nan V "
                          "(should be a number in V): ");
        QTest::newRow("beyond numbers")
            << QByteArray("SS temp: ") << QByteArray("SS temp: 1e999 \260C")
            << QByteArray(
                   "FAIL a.txt: Diagnostic data: SS temp: 1e999 \302\260C (should be a number ");
        QTest::newRow("through mail")
            << QByteArray("SS temp: ") << QByteArray("SS temp: 99 \302\260C")
            << QByteArray("FAIL a.txt: Diagnostic data: SS temp: 99 ");
        QTest::newRow("label through mail")
            << QByteArray("Total run time 40-60\260C: ")
            << QByteArray("Total run time 40-60\302\260C: 0 min (0 days, 0h, 0min) ")
            << QByteArray(
                   "WARN a.txt: the report has 1 line that no report has, first \"Total run");
        QTest::newRow("charging") << QByteArray("Battery HW version: ")
                                  << QByteArray("Could not get battery charging status")
                                  << QByteArray("the battery doesn't tell whether it is charged\n");
    }

    void judgesLines()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, changed);
        QFETCH(QByteArray, finding);
        setUnit("Battery.chargingStatus"_s, "1"_s);
        QByteArray text = generateSystemReport().toLatin1();
        const auto start = text.indexOf('\n' + line) + 1;
        QVERIFY(start > 0);
        text.replace(start, text.indexOf('\n', start) - start, changed);
        write("a.txt"_s, text);
        const Outcome outcome = run({"check"_s, "a.txt"_s});
        QCOMPARE(outcome.exitCode, 1);
        QCOMPARE(outcome.out.count('\n'), 1);
        QVERIFY2(outcome.out.contains(finding), outcome.out.constData());
    }

    /** A limit in one unit says nothing of values in another, and nothing of lines without any. */
    void judgesByTheUnit()
    {
        write("rules.json"_s, R"({"rules": [
        {"section": "Diagnostic data", "max": 50, "unit": "\u00b0C", "reason": "warm"},
        {"name": "FPGA", "version": "v9.9", "reason": "old"}]})");
        write("a.txt"_s, report);
        const Outcome outcome = run({"check"_s, "--rules"_s, "rules.json"_s, "a.txt"_s});
        QVERIFY(outcome.out.contains("FPGA: v1.4.2.0 (should be at least v9.9): old\n"));
        QVERIFY(outcome.out.contains("Maximum temp: 82"));
        for (const QByteArray &line : outcome.out.split('\n'))
            QVERIFY2(line.isEmpty() || line.contains(" temp: ") || line.contains("FPGA"),
                line.constData());
    }

    void showsLargeNumbers()
    {
        write("a.txt"_s, report);
        write("b.txt"_s,
            QByteArray(report).replace("power cycles: 1289 ", "power cycles: 12345678 "));
        const Outcome outcome = run({"diff"_s, "a.txt"_s, "b.txt"_s});
        QVERIFY2(outcome.out.contains("1289 -> 12345678 (+12344389)\n"), outcome.out.constData());
        QVERIFY(run({"html"_s, "a.txt"_s, "b.txt"_s, "a.txt"_s}).out.contains(">12345678</text>"));
    }

    /** Reports that don't tell whose they are may be of as many units. */
    void unknownUnitsStayApart()
    {
        const QByteArray number = "Unit serial number: VU-100-004711 ";
        QVERIFY(report.contains(number));
        const auto failed =
            QByteArray(report).replace(number, "Unit serial number: Error(5) Value out of range");
        write("a.txt"_s, failed);
        write("b.txt"_s, QByteArray(report).replace(number, "Another number: 1"));
        const Outcome outcome = run({"html"_s, "a.txt"_s, "a.txt"_s, "b.txt"_s, "b.txt"_s});
        QCOMPARE(outcome.exitCode, 0);
        QVERIFY(outcome.out.contains("<title>System report: 4 units</title>"));
    }

    /** What a mailed report says doesn't steer the terminal. */
    void keepsTheTerminal()
    {
        write("a.txt"_s, report);
        QByteArray text = report;
        text.replace(
            "Unit serial number: VU-100-004711", "Unit serial number: \x1b[2J\x9b\x7f\344");
        text.replace("Main PCB Serial: ", "\x1b]0;x\7\nMain PCB Serial: ");
        write("b.txt"_s, text);
        const QByteArray bad = "\xEF\xBF\xBD";
        const QByteArray diff = run({"diff"_s, "a.txt"_s, "b.txt"_s}).out;
        QVERIFY2(diff.contains("-> " + bad + "[2J" + bad + bad + "\303\244\n"), diff.constData());
        const QByteArray found = run({"check"_s, "b.txt"_s}).out;
        QVERIFY2(found.contains("first \"" + bad + "]0;x" + bad + '"'), found.constData());
        QVERIFY(!diff.contains('\x1b') && !found.contains('\x1b'));
    }

    /** One carriage return belongs to the line feed, however long the report is. */
    void takesOneCarriageReturn()
    {
        for (const int size : {10, 2'000'000}) {
            QByteArray text = report;
            text.replace("\n------------------  End", "\n\nFile:VornAuxService.log:\n" +
                                                          QByteArray(size, 'x') +
                                                          "\r\r\ny\r\n\n------------------  End");
            write("a.txt"_s, text);
            const auto object = json({"a.txt"_s}).constFirst();
            const QString log =
                object["entries"_s].toArray().last().toObject()["text"_s].toString();
            QCOMPARE(log.right(4), "x\r\ny\n"_s.right(4));
            QCOMPARE(log.size(), size + 4);
        }
    }

private:
    Outcome run(const QStringList &arguments, const QByteArray &input = {}) const
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

    QString write(const QString &name, const QByteArray &text) const
    {
        QFile file(folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("%s", qPrintable(file.errorString()));
        return name;
    }

    /** One object for each line; ends the test program where a line is none. */
    QList<QJsonObject> json(const QStringList &arguments, const QByteArray &input = {}) const
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

    std::unique_ptr<QTemporaryDir> folder;
    QByteArray report;
};

VORN_TEST_MAIN(VornreportTest)
#include "tst_vornreport.moc"
