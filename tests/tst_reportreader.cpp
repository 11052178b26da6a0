#include "frame/processorSensors.h"
#include "report/sections.h"
#include "report/systemReport.h"
#include "report/tabAboutDlg.h"
#include "reports/read.h"
#include "reports/write.h"
#include "tests/support/BiosData.h"
#include "tests/support/PageTest.h"
#include "virtualunit/VirtualUnit.h"

#include <QRandomGenerator>

#include <optional>
#include <set>

namespace {

using namespace support;
using reports::Entry;

/** A report as the reader sees it. */
class Reading : public reports::EntrySink
{
public:
    explicit Reading(const QByteArray &text)
        : bytes(text)
    {
        reports::Lines lines({bytes.constData(), std::size_t(bytes.size())});
        facts = reports::readReport(lines, *this);
    }

    void entry(const Entry &entry) override
    {
        if (entry.kind == Entry::Kind::Unknown)
            unknown << latin1(entry.text);
        if (entry.kind == Entry::Kind::Log)
            logs << latin1(entry.name);
        entries.push_back(entry);
        reports::appendSource(source, entry);
    }
    void logText(std::string_view piece) override
    {
        log += QByteArray(piece.data(), int(piece.size()));
        source += piece;
    }

    static QString latin1(std::string_view text)
    {
        return QString::fromLatin1(text.data(), int(text.size()));
    }

    const Entry *find(const char *section, const char *group, const char *name) const
    {
        for (const Entry &entry : entries) {
            if (entry.section == section && entry.group == group && entry.name == name)
                return &entry;
        }
        return nullptr;
    }

    QByteArray bytes;
    reports::Facts facts;
    std::vector<Entry> entries;
    QStringList unknown;
    QStringList logs;
    QByteArray log;
    std::string source;
};

QByteArray report()
{
    return generateSystemReport().toLatin1();
}

/** "Fri Nov 4 05:06:07 2026" of a report. */
std::string dateOf(const QByteArray &text)
{
    return text.split('\n').at(1).mid(int(reports::datePrefix.size())).toStdString();
}

const QByteArray banner(const char *title)
{
    return QByteArray("\n------------------  ") + title + "  ------------------\n";
}

} // namespace

/** The reader of reports on the reports of this very program. */
class ReportReaderTest : public PageTest
{
    Q_OBJECT

private slots:
    void initTestCase() { bios.emplace(); }
    void cleanupTestCase() { bios.reset(); }

    void everyLineIsKnown_data()
    {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<int>("code");
        for (const std::string &profile : virtualunit::profiles()) {
            for (const int code : {0, 2, 18, 14, -1})
                QTest::addRow("%s %d", profile.c_str(), code)
                    << QString::fromStdString(profile) << code;
        }
    }

    void everyLineIsKnown()
    {
        QFETCH(QString, profile);
        QFETCH(int, code);
        useProfile(profile);
        bios->setVersion("4.6.5");
        bios->setBoard(code == 2 ? "TS77" : "ChiefRiver");
        setUnit("CpuBoard.name"_s, code == 2 ? "BQ77"_s : "CCR6"_s);
        look();
        setUnit("Battery.chargingStatus"_s, "1"_s);
        look();
        for (const std::string &operation : virtualunit::operations())
            fault(QString::fromStdString(operation), code);
        look();
        fault("Battery_isAvailable"_s, 0);
        fault("Telematics_getAvailable"_s, 0);
        look();
    }

    void randomUnits()
    {
        QRandomGenerator random(1);
        for (int round = 0; round < 200; ++round) {
            useProfile("full"_s);
            setUnit("Battery.chargingStatus"_s, QString::number(random.bounded(6)));
            for (int kind = 0; kind < 8; ++kind)
                setUnit("Diagnostics.pmKind%1"_s.arg(kind), QString::number(random.bounded(10)));
            setUnit("Diagnostics.pmSensorCount"_s, QString::number(random.bounded(12)));
            for (const std::string &operation : virtualunit::operations()) {
                constexpr int codes[] = {2, 18, 14, -7, 65538};
                if (random.bounded(4) == 0)
                    fault(QString::fromStdString(operation), codes[random.bounded(5)]);
            }
            if (round % 2 == 0)
                fault("Battery_isAvailable"_s, 0);
            look();
            if (QTest::currentTestFailed())
                return;
        }
    }

    /** A row of the reader's table that no report has is wrong, or of a report that is no more. */
    void everyRowStandsInAReport()
    {
        const Reading endless("Diagnostic data:\n" + endlessSensorsText().toLatin1() + '\n');
        QCOMPARE(endless.unknown, QStringList());
        for (const Entry &entry : endless.entries) // which no virtual unit has
            seen.insert(entry.item);
        for (const reports::Item &item : reports::items())
            QVERIFY2(seen.count(&item), std::string(item.name).c_str());
    }

    void valuesAreTheUnits()
    {
        useProfile("full"_s);
        setUnit("Battery.chargingStatus"_s, "1"_s);
        setUnit("Hardware.unitSerialNumber"_s, "Error(3) no "_s);
        setUnit("Hardware.mainHardwareVersion"_s, "N/A"_s);
        std::vector<virtualunit::Value> pinned;
        QCOMPARE(virtualunit::list(pinned), std::string());
        for (const auto &property : pinned) {
            if (property.range.find("or live") != std::string::npos)
                QCOMPARE(virtualunit::set(property.name, property.value), std::string());
        }
        const Reading reading(report());
        int compared = 0;
        for (const Entry &entry : reading.entries) {
            if (!entry.item || entry.item->property.empty() || entry.name == reports::initialTime)
                continue;
            const QString value = unit(Reading::latin1(entry.item->property));
            QString told = Reading::latin1(entry.number.empty() ? entry.text : entry.number);
            for (const reports::Word &word : entry.item->words) {
                if (word.text == entry.text)
                    told = QString::number(word.value);
            }
            if (entry.section == reports::softwareSection)
                told.remove(0, 1);
            if (value == "true"_s || value == "false"_s)
                told = told == "1"_s ? "true"_s : "false"_s;
            // What the unit keeps as a number and the report as its meaning.
            if (entry.name == "Startup reason" || entry.name == "HW error status" ||
                entry.section == reports::boardSection)
                continue;
            if (!entry.number.empty())
                QVERIFY(qAbs(told.toDouble() - value.toDouble()) <= qAbs(value.toDouble()) * 1e-5);
            else
                QCOMPARE(told, value);
            ++compared;
        }
        QVERIFY2(compared > 120, QByteArray::number(compared).constData());
    }

    void failuresHaveTheirCodes()
    {
        useProfile("full"_s);
        setUnit("Battery.chargingStatus"_s, "1"_s);
        fault("Hardware_getUsbCount"_s, 18);
        fault("Versions_getFPGAVersion"_s, 18);
        fault("Battery_getHwVersion"_s, -5);
        fault("Smart_getInitialTime"_s, 14);
        fault("Smart_getDeviceSerial2"_s, 7);
        const Reading reading(report());
        const auto *usb = reading.find("EEPROM data", "Mainboard", "Number of USB connections");
        QVERIFY(usb && usb->error == 18 && usb->text == "N/A" && usb->number.empty());
        const auto *fpga = reading.find("SW Versions", "", "FPGA");
        QVERIFY(fpga && fpga->error == 18 && fpga->text == "Error(18) Data not available");
        const auto *battery = reading.find("Settings", "Battery", "Battery HW version");
        QVERIFY(battery && battery->error == -5 && battery->text == "Error(-5) Unknown error");
        const auto *time = reading.find(
            "SMART data", "First storage device", "Device was initially timestamped on");
        QVERIFY(time && time->error == 14);
        const auto *serial =
            reading.find("SMART data", "Second storage device", "Device serial number");
        QVERIFY(serial && serial->failed && !serial->error);
        const auto *lifetime =
            reading.find("SMART data", "Second storage device", "Estimated remaining lifetime");
        QVERIFY(lifetime && lifetime->number == "99" && lifetime->unit == "%");
    }

    /** What the About page saves, entry by entry of its list. */
    void savedSections()
    {
        useProfile("full"_s);
        setUnit("Battery.chargingStatus"_s, "1"_s);
        QTemporaryDir folder;
        tabAboutDlg page(nullptr);
        auto *list = child<QComboBox>(&page, "comboBoxSelection");
        const QList<QByteArray> sections{"EEPROM data", "Diagnostic data", "ADC data",
            "CPU board data", "SW Versions", "Settings"};
        QCOMPARE(list->count(), int(sections.size()));
        for (int index = 0; index < list->count(); ++index) {
            list->setCurrentIndex(index);
            const QString name = folder.filePath(QString::number(index));
            dialogs.planFile(name);
            QVERIFY(QMetaObject::invokeMethod(&page, "SaveFileAs"));
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const Reading reading(file.readAll());
            QCOMPARE(reading.unknown, QStringList());
            QCOMPARE(QByteArray::fromStdString(reading.source), reading.bytes);
            QCOMPARE(reading.facts.complete, list->itemText(index) == "System report"_s);
            const auto first = std::find_if(reading.entries.begin(), reading.entries.end(),
                [](const Entry &entry) { return entry.kind == Entry::Kind::Item; });
            QVERIFY(first != reading.entries.end());
            QCOMPARE(Reading::latin1(first->section), QString::fromLatin1(sections[index]));
        }
        dialogs.take();
        // One behind the other in one file: nothing tells where the next begins but its lines.
        QByteArray together;
        for (int index = 0; index < list->count(); ++index) {
            QFile file(folder.filePath(QString::number(index)));
            QVERIFY(file.open(QIODevice::ReadOnly));
            if (list->itemText(index) != "System report"_s)
                together += file.readAll();
        }
        const Reading reading(together);
        QCOMPARE(reading.unknown, QStringList());
        for (const QByteArray &section : sections.mid(1, 2))
            QVERIFY(std::any_of(
                reading.entries.begin(), reading.entries.end(), [&](const Entry &entry) {
                    return entry.kind == Entry::Kind::Item &&
                           entry.section == section.toStdString();
                }));
        QVERIFY(reading.find("ADC data", "", "Voltage 12V"));
    }

    void rails_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("number");
        QTest::newRow("plain") << QByteArray("12.1 V") << QByteArray("12.1");
        QTest::newRow("negative") << QByteArray("-0.5 V") << QByteArray("-0.5");
        QTest::newRow("exponent") << QByteArray("1.23457e+06 V") << QByteArray("1.23457e+06");
        QTest::newRow("beyond") << QByteArray("1e999 V") << QByteArray();
        QTest::newRow("infinite") << QByteArray("inf V") << QByteArray();
        QTest::newRow("no number") << QByteArray("nan V") << QByteArray();
        QTest::newRow("no unit") << QByteArray("12.1") << QByteArray();
        QTest::newRow("other unit") << QByteArray("12.1 mV") << QByteArray();
        QTest::newRow("zeros") << QByteArray("012.1 V") << QByteArray();
        QTest::newRow("half") << QByteArray("12. V") << QByteArray();
        QTest::newRow("comma") << QByteArray("12,1 V") << QByteArray();
        QTest::newRow("empty") << QByteArray("") << QByteArray();
    }

    /** Only what is a number for certain is taken for one; the text stands there all the same. */
    void rails()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, number);
        const Reading reading("ADC values\nVoltage 12V: " + line + "\n");
        const Entry *rail = reading.find("ADC data", "", "Voltage 12V");
        QVERIFY(rail);
        QCOMPARE(Reading::latin1(rail->text), QString::fromLatin1(line));
        QCOMPARE(Reading::latin1(rail->number), QString::fromLatin1(number));
        QCOMPARE(rail->unit.empty(), number.isEmpty());
    }

    void malformed_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QStringList>("unknown");
        QTest::addColumn<bool>("complete");
        useProfile("basic"_s);
        const QByteArray whole = report();
        QByteArray windows = whole;
        windows.replace("\n", "\r\n");
        const int adc = int(whole.indexOf(banner("ADC data")));
        const int board = int(whole.indexOf(banner("CPU board data")));
        const int settings = int(whole.indexOf(banner("Settings")));
        const QByteArray rails = whole.mid(adc, board - adc);
        const QStringList none;

        QTest::newRow("whole") << whole << none << true;
        QTest::newRow("carriage returns") << windows << none << true;
        QTest::newRow("no last line feed") << whole.chopped(1) << none << true;
        QTest::newRow("blank lines behind") << whole + "\n\n" << none << true;
        QTest::newRow("empty") << QByteArray() << none << false;
        QTest::newRow("cut off") << whole.left(adc) << none << false;
        QTest::newRow("cut off in a number") << whole.left(whole.indexOf("Voltage 12V: ") + 14)
                                             << QStringList{"Voltage 12V: 1"_s} << false;
        QTest::newRow("no date") << whole.mid(whole.indexOf(banner("SW Versions"))) << none
                                 << false;
        QTest::newRow("wrong date")
            << QByteArray(whole).replace("generated on: ", "generated on: x")
            << QStringList{QString::fromLatin1(whole.split('\n').at(1))
                               .replace("on: "_s, "on: x"_s)}
            << false;
        QTest::newRow("section missing") << QByteArray(whole).replace(rails, "") << none << false;
        QTest::newRow("other order")
            << whole.left(adc) + whole.mid(board, settings - board) + rails + whole.mid(settings)
            << none << false;
        QTest::newRow("section twice")
            << whole.left(board) + rails + whole.mid(board) << none << false;
        QTest::newRow("unknown section")
            << whole.left(adc) + banner("Fan data") + "Speed: 5\n" + whole.mid(adc)
            << QStringList{"Speed: 5"_s} << false;
        QTest::newRow("unknown line")
            << QByteArray(whole).replace("Voltage 5V: ", "Voltage 6V: 6\nVoltage 5V: ")
            << QStringList{"Voltage 6V: 6"_s} << true;
        QTest::newRow("other section's line")
            << QByteArray(whole).replace("ADC values\n", "ADC values\nFrequency: 5\n")
            << QStringList{"Frequency: 5"_s} << true;
        QTest::newRow("binary") << QByteArray("\0\1\2\377\n\0", 6)
                                << QStringList{QString::fromLatin1("\0\1\2\377", 4),
                                       QString::fromLatin1("\0", 1)}
                                << false;
        const QByteArray longLine(100000, 'x');
        QTest::newRow("long line")
            << whole + longLine + "\nFPGA: v1.0.0.0\n"
            << QStringList{QString::fromLatin1(longLine.left(65536)),
                   QString::fromLatin1(longLine.mid(65536)), "FPGA: v1.0.0.0"_s}
            << true;
    }

    void malformed()
    {
        QFETCH(QByteArray, text);
        QFETCH(QStringList, unknown);
        QFETCH(bool, complete);
        const Reading reading(text);
        QCOMPARE(reading.unknown, unknown);
        QCOMPARE(reading.facts.complete, complete);
        QCOMPARE(QByteArray::fromStdString(reading.source), text.replace("\r\n", "\n"));
    }

    /** A log says anything, the report's own frame too. */
    void logs()
    {
        useProfile("basic"_s);
        QByteArray whole = report();
        const QByteArray end = banner("End of report");
        const QByteArray other = "File:VornAuxService.log:\n";
        const QByteArray inside = "one\n\n" + end + "two" + banner("ADC data") +
                                  banner("Fan data") + "File:Other.log:\n" +
                                  "Voltage 12V: 1 V\n\n\nFile:Other.log:\n";
        whole.replace(
            end, "\n\nFile:HardwareErrorLog.log:\n" + inside + "\n\n" + other + "three\n" + end);
        const Reading reading(whole);
        QCOMPARE(reading.logs, (QStringList{"HardwareErrorLog.log"_s, "VornAuxService.log"_s}));
        QCOMPARE(reading.log, inside + "three\n");
        QVERIFY(reading.facts.complete);
        QCOMPARE(QByteArray::fromStdString(reading.source), whole);
        QCOMPARE(reading.find("ADC data", "", "Voltage 12V")->number == "1", false);
    }

private:
    /** The report of the present unit holds nothing that the table of the reader doesn't know, and
     * what the reader makes of it is the same report. */
    void look()
    {
        const QByteArray text = report();
        const Reading reading(text);
        QCOMPARE(reading.unknown, QStringList());
        QVERIFY(reading.facts.complete);
        QCOMPARE(QByteArray::fromStdString(reading.source), text);
        QCOMPARE(
            QByteArray::fromStdString(reports::reportText(dateOf(text), reading.entries)), text);
        for (const Entry &entry : reading.entries)
            seen.insert(entry.item);
    }

    std::optional<BiosData> bios;
    std::set<const reports::Item *> seen; ///< rows that some report had
};

VORN_TEST_MAIN(ReportReaderTest)
#include "tst_reportreader.moc"
