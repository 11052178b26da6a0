#include "tests/support/ProgramTree.h"
#include "tests/support/failureCodes.h"
#include "tests/support/system.h"

#include <QtTest>

using namespace support;

namespace {

const QString ours = QStringLiteral(VORN_DEVICE_LIBRARY);
const QString tiny =
    QStringLiteral(VORN_TINYUNIT_DIR "/" VORN_LIBRARY_PREFIX "VornAux2" VORN_LIBRARY_SUFFIX);
const QString reportMode = "--systemreport"_s;
const QString resetMode = "--factorydefault"_s;
const QString reportFile = "report.txt"_s;

const char reportBanners[] = "SW Versions|EEPROM data|Diagnostic data|SMART data|ADC data|"
                             "CPU board data|Settings|Log Files|End of report";

template <typename Units>
QByteArray bytesOf(const Units &units, int size, bool bigEndFirst)
{
    QByteArray bytes;
    for (const auto unit : units) {
        for (int i = 0; i < size; ++i)
            bytes += char(unit >> 8 * (bigEndFirst ? size - 1 - i : i) & 0xFF);
    }
    return bytes;
}

QByteArray utf16(const QString &text, bool bigEndFirst)
{
    return bytesOf(text.toStdU16String(), 2, bigEndFirst);
}

QByteArray utf32(const QString &text, bool bigEndFirst)
{
    return bytesOf(text.toStdU32String(), 4, bigEndFirst);
}

/** Titles of a report's banners in their order. */
QByteArray banners(const QByteArray &report)
{
    static const QRegularExpression banner(
        "\\n-{18}  (.*)  -{18}(?=\\n)"_s, QRegularExpression::MultilineOption);
    QStringList titles;
    auto matches = banner.globalMatch(QString::fromLatin1(report));
    while (matches.hasNext())
        titles << matches.next().captured(1);
    return titles.join(QLatin1Char('|')).toLatin1();
}

QByteArray banner(const char *title)
{
    return QByteArray("\n------------------  ") + title + "  ------------------\n";
}

/** Items of one outcome. */
QByteArray lines(std::initializer_list<const char *> labels, const QByteArray &outcome)
{
    QByteArray all;
    for (const char *label : labels)
        all += label + (": " + outcome) + '\n';
    return all;
}

// The report of a unit that has all bits of all values set.

QByteArray allBits(int length)
{
    return QByteArray(length, '\xFF');
}

const QByteArray allBitsMinutes = "4294967295 min (2982616 days, 4h, 15min) ";

QByteArray allBitsIdentity()
{
    QByteArray report = banner("SW Versions") + "Vornsettings v2.7.2.0\n";
    report += lines(
        {"Vornaux API", "Vornaux Driver", "FPGA", "Front uc", "System Supervisor", "OS version"},
        "v255.255.255.255");
    report += banner("EEPROM data") + "Mainboard:\n";
    report += lines({"Main PCB Serial", "Unit serial number", "Main PCB article number",
                        "Main manufacturing date", "Main hardware version", "Main product revision",
                        "Main product art.nr"},
        allBits(200) + ' ');
    report += lines({"Number of Ethernet connections", "Number of CAN connections",
                        "Number of Video connections", "Number of USB connections",
                        "Number of Serial connections", "Number of Digital input connections"},
        "255");
    report += lines({"Display device mounted", "Touchscreen device mounted"}, "Yes");
    report +=
        lines({"Number of Configurable inputs connections", "Number of PWM outputs connections",
                  "Number of Configurable buttons connections"},
            "255");
    report += "\nAddon/Telematics board:\n";
    report += lines({"Addon PCB serial", "Addon board article number", "Addon manufacturing date",
                        "Addon hardware version"},
        allBits(200) + ' ');
    report += lines({"WLAN device mounted", "GPS device mounted", "Bluetooth device mounted",
                        "GSM/GPRS device mounted"},
        "Yes");
    return report;
}

QByteArray allBitsHistory()
{
    const QByteArray celsius = "-1 \xB0"
                               "C";
    const QByteArray rule = QByteArray(57, '-') + '\n';
    const QByteArray storage = lines({"Device serial number"}, allBits(21) + ' ') +
                               lines({"Estimated remaining lifetime"}, "255 %") +
                               "Device was initially timestamped on: " + secondBefore1970() + '\n';

    QByteArray report = banner("Diagnostic data") + "Diagnostic data:\n";
    report += "Startup reason: tiny reason \nShutDown reason: 65535 \n"
              "HW error status: tiny hardware error \n";
    report += lines({"Total run time", "Total suspend time", "Total heat time",
                        "Total run time 40-60\260C", "Total run time 60-70\260C",
                        "Total run time 70-80\260C", "Total run time above 80\260C"},
        allBitsMinutes);
    report += lines({"Minimum temp", "Maximum temp"}, celsius);
    report += lines({"Number of power cycles"}, "65535 ");
    // As many sensors as are read of a device that never says that there are no more.
    report += lines({"JIDA unknown temp"}, celsius).repeated(65'536);
    report += "Sensor list ended after 65536 readings\n";
    report += lines({"SS temp", "PCB temp"}, celsius);
    report += banner("SMART data") + storage + rule + storage + rule;
    return report;
}

QByteArray allBitsVoltages()
{
    QByteArray report = banner("ADC data") + "ADC values\n";
    report += lines(
        {"Voltage 24V in", "Voltage 12V", "Voltage 12V video", "Voltage 5V", "Voltage 3.3V",
            "Voltage TFT", "Voltage 5V STB", "Voltage 1.9V", "Voltage 1.8V", "Voltage 1.5V",
            "Voltage 1.2V", "Voltage 1.05V", "Voltage 1.0V", "Voltage 0.9V", "Voltage SS VREF",
            "Voltage 24V Backup", "Voltage 2.5V", "Voltage 1.1V", "Voltage 1.3V PER",
            "Voltage 1.3V VDDA", "Voltage 3V3 STBY", "Voltage VPMIC", "Voltage VMAIN"},
        "nan V");
    return report;
}

QByteArray allBitsSettings()
{
    QByteArray report = banner("Settings") +
                        "Backlight:\nIntensity: 255\nLed dimming: Disabled\n"
                        "Backlight Status: 255\nAutomatic backlight Status: 255\n"
                        "Automatic backlight settings:\n"
                        "   Soft transitions: 1\n   K value: nan\n"
                        "   Average window size: 4294967295\n"
                        "   Reject window size: 4294967295\n"
                        "   Reject delta in lux: 4294967295\n"
                        "   Sampling mode: -1\n\n";
    report += "\nBuzzer:\nFrequency: 65535\nVolume: 65535\nTrigger (On/Off): 255\n";
    report += "\nCan Settings:\n";
    report +=
        lines({"CAN1 Baud rate", "CAN2 Baud rate", "CAN3 Baud rate", "CAN4 Baud rate"}, "65535");
    report += lines({"CAN1 frame type", "CAN2 frame type", "CAN3 frame type", "CAN4 frame type"},
        "Undefined value");
    report += "\nConfig:\nCanStartupPowerConfig: Disabled\nExtFanStartupPowerConfig: Disabled\n"
              "ExtOnOffSigTrigTime: -1\nFrontBtnTrigTime: 65535\nHeatingTempLimit: -1\n"
              "LongButtonPressAction: Undefined value\n"
              "ShortButtonPressAction: Undefined value\nOnOffSigAction: Undefined value\n"
              "PowerOnStartup: Disabled\nStartupTrigger: Undefined value\nStartupVoltage: nan\n"
              "SuspendMaxTime: 65535\nVideoStartupPowerConfig: 255\n";
    report += "\nFrontLED:\nEnabledDuringStartup: Disabled\n";
    report += lines(
        {"Color R", "Color G", "Color B", "IdleTime", "NrOfPulses", "OffTime", "OnTime"}, "255");
    report += "Signal frequency: nan\nSignal duty cycle: 255\n";
    report += "\nPower:\nBLPowerStatus: Disabled\nCanPowerStatus: Disabled\n"
              "ExtFanPowerStatus: Disabled\nVideoPowerStatus: 255\n";
    report += "\nTouchScreen:\nMouseRightClickTime (for mouse profile): 65535\n"
              "TouchScreenMode: Undefined value\n";
    report += "\nTelematics:\nTelematics board available: Disabled\n";
    return report;
}

/** Neither its error status nor its charging status has a text. */
QByteArray allBitsBattery()
{
    QByteArray report =
        "\nBattery:\nBattery HW version: " + allBits(20) +
        "\nBattery SW version: 65535.65535.65535.65535\nBattery serial number: " + allBits(20) +
        "\nPower source: External power\nBattery voltage level: 255%\n"
        "Battery temperature: -1 deg C\n"
        "Battery minimum temp: -1 deg C, maximum temp: -1 deg C\n";
    report += lines(
        {"Total run time on main power", "Total run time on battery power",
            "Total run time < -20\260C", "Total run time -20-0\260C", "Total run time 0-40\260C",
            "Total run time 40-60\260C", "Total run time 60-70\260C", "Total run time 70-80\260C",
            "Total run time above 80\260C"},
        allBitsMinutes);
    return report;
}

QByteArray allBitsReport()
{
    return allBitsIdentity() + allBitsHistory() + allBitsVoltages() + banner("CPU board data") +
           allBitsSettings() + allBitsBattery() + banner("Log Files") + banner("End of report");
}

/** The error lines of a reset that fails throughout, on a unit without CAN and video. */
QByteArray resetErrors(const QByteArray &text)
{
    QByteArray lines;
    for (const char *operation : {"setIntensity", "stopAutomaticBL", "setAutomaticBLParams",
             "setAutomaticBLFilter", "setLedDimming", "setFrequency", "setVolume", "setTrigger",
             "setExtFanStartupPowerConfig", "setExtOnOffSigTrigTime", "setFrontBtnTrigTime",
             "setHeatingTempLimit", "setLongButtonPressAction", "setOnOffSigAction",
             "setShortButtonPressAction", "setStartupTriggerConfig", "setStartupVoltageConfig",
             "setSuspendMaxTime", "setPowerOnStartup", "setColor", "setEnabledDuringStartup",
             "setIdleTime", "setNrOfPulses", "setOffTime", "setOnTime", "setOperatingRange",
             "setBLPowerStatus", "setExtFanPowerStatus", "setMode", "setMode",
             "setMouseRightClickTime", "setMode"})
        lines += "Error(5) in " + QByteArray(operation) + ": " + text + '\n';
    return lines;
}

} // namespace

/** The real program, run as a user runs it, with our own unit and with others put in. */
class ExecutableTest : public QObject
{
    Q_OBJECT

private slots:
    void report_isWritten()
    {
        const ProgramTree tree(ours);
        const Run run = tree.run({reportMode, reportFile});
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.output, QByteArray());
        const QByteArray report = tree.read(reportFile);
        QCOMPARE(banners(report), QByteArray(reportBanners));
        QVERIFY(report.startsWith("\nSystem report generated on: "));
        QVERIFY(report.contains("------\nVornsettings v2.7.2.0\nVornaux API: v"));
        QVERIFY(report.endsWith("\n------------------  Log Files  ------------------\n"
                                "\n------------------  End of report  ------------------\n"));
        QVERIFY(!report.contains('\r'));
    }

    void report_replacesFormerContent()
    {
        const ProgramTree tree(tiny);
        tree.write(reportFile, QByteArray(1'000'000, 'x'));
        tree.run({reportMode, reportFile});
        const QByteArray report = tree.read(reportFile);
        QVERIFY(report.startsWith("\nSystem"));
        QVERIFY(report.endsWith("  End of report  ------------------\n"));
    }

    void report_toWhatCantBeOpened_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("empty") << QString();
        QTest::newRow("folder") << "log"_s;
        QTest::newRow("missing folder") << "nowhere/report.txt"_s;
        QTest::newRow("name too long") << "x"_s.repeated(5000);
    }

    void report_toWhatCantBeOpened()
    {
        QFETCH(QString, path);
        ProgramTree tree(ours);
        tree.environment.insert("VORN_JOURNAL"_s, tree.path("journal"_s));
        const Run run = tree.run({reportMode, path});
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(tree.read("journal"_s), QByteArray());
    }

    void report_isLatin1()
    {
        ProgramTree tree(tiny);
        tree.environment.insert("TINYUNIT_CODE"_s, "5"_s);
        tree.setBiosVersion("\xE9");
        tree.write("log/HardwareErrorLog.log"_s, "\x80\xC3\xA9\xFF\n");
        const QString name = QStringLiteral("r\u00E9port \u20AC \u044F.txt");
        const Run run = tree.run({reportMode, name});
        QCOMPARE(run.errors, QByteArray("failed to LoadLibrary(\"jida.dll\")\n"));
        const QByteArray report = tree.read(name);
        QVERIFY(report.contains("Total run time above 80\xB0"
                                "C: Error(5) tiny %1 caf\xE9 %2\xFF\n"));
        QVERIFY(report.contains("File:HardwareErrorLog.log:\n\x80\xC3\xA9\xFF\n\n"));
        QVERIFY(!report.contains("\xC2\xB0"));
    }

    void report_startsWithItsTime()
    {
        ProgramTree tree(tiny);
        tree.environment.insert("TZ"_s, "UTC"_s);
        tree.environment.insert("LC_ALL"_s, "de_DE.UTF-8"_s);
        const QDateTime before = QDateTime::currentDateTimeUtc();
        tree.run({reportMode, reportFile});
        const QDateTime after = QDateTime::currentDateTimeUtc();
        const QString line =
            QString::fromLatin1(tree.read(reportFile)).section(QLatin1Char('\n'), 1, 1);
        const QString label = "System report generated on: "_s;
        QVERIFY(line.startsWith(label));
        auto time = QLocale::c().toDateTime(
            line.mid(label.size()).simplified(), "ddd MMM d HH:mm:ss yyyy"_s);
        time.setTimeSpec(Qt::UTC);
        QVERIFY2(time.isValid(), qPrintable(line));
        QVERIFY(time >= before.addSecs(-1) && time <= after);
    }

    void reset_needsNoDisplay()
    {
        const ProgramTree tree(ours);
        QElapsedTimer timer;
        timer.start();
        const Run run = tree.run({resetMode});
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.errors, QByteArray());
        QVERIFY(timer.elapsed() >= 1600);
    }

    void reset_tellsFailuresOnTheErrorStream()
    {
        ProgramTree tree(tiny);
        tree.environment.insert("TINYUNIT_CODE"_s, "5"_s);
        const Run run = tree.run({resetMode});
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(
            run.errors, resetErrors(QString::fromLatin1("tiny %1 caf\xE9 %2\xFF").toLocal8Bit()));
    }

    void otherCommandLines_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("window");
        const QString file = reportFile;
        QTest::newRow("none") << QStringList{} << true;
        QTest::newRow("report without file") << QStringList{reportMode} << true;
        QTest::newRow("report, two files") << QStringList{reportMode, file, file} << true;
        QTest::newRow("reset, one more") << QStringList{resetMode, "now"_s} << true;
        QTest::newRow("reset, empty one more") << QStringList{resetMode, QString()} << true;
        QTest::newRow("report in capitals") << QStringList{reportMode.toUpper(), file} << true;
        QTest::newRow("reset in capitals") << QStringList{resetMode.toUpper()} << true;
        QTest::newRow("unknown option") << QStringList{"--help"_s} << true;
        QTest::newRow("longer") << QStringList{reportMode + QLatin1Char('s'), file} << true;
        QTest::newRow("shorter") << QStringList{"--factorydefaul"_s} << true;
        QTest::newRow("one dash") << QStringList{reportMode.mid(1), file} << true;
        QTest::newRow("blank") << QStringList{reportMode + QLatin1Char(' '), file} << true;
        QTest::newRow("exchanged") << QStringList{file, reportMode} << true;
        QTest::newRow("toolkit option first")
            << QStringList{"-reverse"_s, reportMode, file} << true;
        QTest::newRow("report") << QStringList{reportMode, file} << false;
        QTest::newRow("report, odd file") << QStringList{reportMode, resetMode} << false;
        QTest::newRow("report, toolkit option")
            << QStringList{reportMode, "-qmljsdebugger=x"_s} << false;
        QTest::newRow("reset") << QStringList{resetMode} << false;
    }

    void otherCommandLines()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, window);
        ProgramTree tree(ours);
        tree.environment.insert("VORN_JOURNAL"_s, tree.path("journal"_s));
        // A window can't come up on this display, so asking for one ends the run.
        tree.environment.insert("QT_QPA_PLATFORM"_s, "nodisplay"_s);
        tree.environment.insert("QT_FORCE_STDERR_LOGGING"_s, "1"_s);
        const Run run = tree.run(arguments);
        QCOMPARE(run.endedNormally && run.exitCode == 0, !window);
        QCOMPARE(run.errors.contains("nodisplay"), window);
        QCOMPARE(tree.read("journal"_s).isEmpty(), window);
        const QString file = arguments.value(1).isEmpty() ? reportFile : arguments[1];
        QCOMPARE(QFile::exists(tree.path(file)), !window && arguments.size() == 2);
    }

    void library_isReplacedByAnotherFile()
    {
        const ProgramTree tree(ours);
        QVERIFY(!tree.report().contains("tiny"));
        tree.replaceDeviceLibrary(tiny);
        QVERIFY(tree.report().contains("\nVornaux API: Error(18) tiny error\n"));
    }

    void library_mayFailWithAnyCode_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("equipment");
        QTest::addColumn<QByteArray>("setting");
        const auto row = [](int code, const QByteArray &equipment, const QByteArray &outcome) {
            QTest::addRow("%d", code) << code << equipment << outcome;
        };
        row(2, QByteArray(), "Error(2) tiny error");
        row(18, "N/A", "Error(18) tiny error");
        row(20, "Error(20) tiny error", "Error(20) tiny error");
        row(5, "Error(5) tiny %1 caf\xE9 %2\xFF", "Error(5) tiny %1 caf\xE9 %2\xFF");
        row(-1, "Error(-1) tiny error", "Error(-1) tiny error");
    }

    void library_mayFailWithAnyCode()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, equipment);
        QFETCH(QByteArray, setting);
        ProgramTree tree(tiny);
        tree.environment.insert("TINYUNIT_CODE"_s, QString::number(code));
        const QByteArray report = tree.report();
        QCOMPARE(banners('\n' + report), QByteArray(reportBanners));

        QByteArray rails = "ADC values\n";
        for (const char *rail : {"24V in", "12V", "12V video", "5V", "3.3V", "TFT", "5V STB",
                 "1.9V", "1.8V", "1.5V", "1.2V", "1.05V", "1.0V", "0.9V", "SS VREF", "24V Backup",
                 "2.5V", "1.1V", "1.3V PER", "1.3V VDDA", "3V3 STBY", "VPMIC", "VMAIN"}) {
            if (!equipment.isNull())
                rails += QByteArray("Voltage ") + rail + ": " + equipment + '\n';
        }
        QCOMPARE(section(report, "ADC data"), rails);
        QVERIFY(report.contains("\nVideoPowerStatus: " + setting + '\n'));
        QVERIFY(report.contains("\ngetAutomaticBLParams: " + setting + "\n\nBuzzer:\n"));
        QVERIFY(report.contains("\nTouchScreenMode: " + setting + "\n\nTelematics:\n"));
        QVERIFY(report.contains("\nTelematics board available: " + setting +
                                "\n\nBattery:\nExternal battery not available.\n\n"));
    }

    void library_mayTellAnyValue()
    {
        ProgramTree tree(tiny);
        tree.environment.insert("TINYUNIT_CODE"_s, "0"_s);
        tree.environment.insert("TZ"_s, "UTC"_s);
        const QList<QByteArray> found = tree.report().split('\n');
        const QList<QByteArray> expected = allBitsReport().split('\n');
        for (int line = 0; line < qMin(found.size(), expected.size()); ++line)
            QCOMPARE(found[line], expected[line]);
        QCOMPARE(found.size(), expected.size());

        // A reset of such a unit: more CAN channels than are handled, no known answer about radios.
        const Run run = tree.run({resetMode});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.errors, QByteArray());
    }

    void library_mayLeaveValuesBehind_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << code;
    }

    /** A value that came with a failure is none. */
    void library_mayLeaveValuesBehind()
    {
        QFETCH(int, code);
        ProgramTree tree(tiny);
        tree.environment.insert("TINYUNIT_CODE"_s, QString::number(code));
        const QByteArray clean = tree.report();
        QVERIFY(clean.contains("End of report"));
        tree.environment.insert("TINYUNIT_TRACES"_s, "1"_s);
        QCOMPARE(tree.report(), clean);
    }

    void logs_data()
    {
        QTest::addColumn<QByteArray>("first");
        QTest::addColumn<QByteArray>("second");
        QTest::addColumn<QByteArray>("section");
        const QByteArray firstHeader = "\n\nFile:HardwareErrorLog.log:\n";
        const QByteArray secondHeader = "\n\nFile:VornAuxService.log:\n";
        const auto row = [&](const char *name, const QByteArray &log, const QByteArray &copy) {
            QTest::addRow("first, %s", name) << log << QByteArray() << firstHeader + copy;
            QTest::addRow("second, %s", name) << QByteArray() << log << secondHeader + copy;
        };
        QTest::newRow("none") << QByteArray() << QByteArray() << QByteArray();
        QTest::newRow("both") << QByteArray("a\n") << QByteArray("b")
                              << firstHeader + "a\n" + secondHeader + "b\n";
        row("empty", "", "");
        row("one line", "one\n", "one\n");
        row("no end", "one\ntwo", "one\ntwo\n");
        row("DOS ends", "one\r\ntwo\r\n", "one\ntwo\n");
        row("empty lines", "\n\r\n\n", "\n\n\n");
        row("return inside", "a\rb\r\nc\n", "a\rb\nc\n");
        row("two returns", "a\r\r\nb\n", "a\r\nb\n");
        row("return at the end", "a\n\r", "a\n\n");
        row("zero bytes", QByteArray("a\0b\n\0\n", 6), QByteArray("a\0b\n\0\n", 6));
        row("place markers", "%1 %2\n", "%1 %2\n");
        row("UTF-8, no mark", "Z\xC3\xBC\n", "Z\xC3\xBC\n");
        row("half a mark", "\xEF\xBB", "\xEF\xBB\n");
        // One character each that Latin-1 has, that it hasn't, and that is two units of UTF-16.
        const QString marked = QStringLiteral("\uFEFFZ\u00FC \u20AC \U0001F4BB.\r\n\nend");
        const QByteArray decoded = "Z\xFC ? ?\?.\n\nend\n";
        row("UTF-8", marked.toUtf8(), decoded);
        row("UTF-8, mark alone", "\xEF\xBB\xBF", "");
        row("UTF-8, damaged", "\xEF\xBB\xBF\xFFok\n", "?ok\n");
        row("UTF-16, little end first", utf16(marked, false), decoded);
        row("UTF-16, big end first", utf16(marked, true), decoded);
        row("UTF-16, mark alone", "\xFF\xFE", "");
        row("UTF-16, cut", QByteArray("\xFF\xFE\x41\0\x42", 5), "A\n");
        row("UTF-32, little end first", utf32(marked, false), decoded);
        row("UTF-32, big end first", utf32(marked, true), decoded);
        QByteArray all;
        for (int byte = 0; byte < 256; ++byte)
            all += char(byte);
        row("all bytes", all, all + '\n');
    }

    void logs()
    {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        QFETCH(QByteArray, section);
        const ProgramTree tree(tiny);
        if (!first.isNull())
            tree.write("log/HardwareErrorLog.log"_s, first);
        if (!second.isNull())
            tree.write("bin/VornAuxService.log"_s, second);
        QCOMPARE(::section(tree.report(), "Log Files"), section);
    }

    void logs_stayOutIfTheyAreNoFiles()
    {
        const ProgramTree tree(tiny);
        QVERIFY(QDir().mkdir(tree.path("log/HardwareErrorLog.log"_s)));
        QVERIFY(QDir().mkdir(tree.path("bin/VornAuxService.log"_s)));
        QCOMPARE(section(tree.report(), "Log Files"), QByteArray());
    }

    void logs_largerThanAnyBuffer()
    {
        const ProgramTree tree(tiny);
        QByteArray log;
        QByteArray copy;
        for (int length = 0; length < 3000; ++length) {
            const QByteArray line(length, char('a' + length % 26));
            log += line + (length % 2 ? "\r\n" : "\n");
            copy += line + '\n';
        }
        tree.write("log/HardwareErrorLog.log"_s, log);
        const QByteArray logs = section(tree.report(), "Log Files");
        QVERIFY(logs == "\n\nFile:HardwareErrorLog.log:\n" + copy);
    }

    /** Characters that are cut wherever a piece ends. */
    void logs_markedAndLarge()
    {
        const ProgramTree tree(tiny);
        const QString line = QStringLiteral("\u00FC\u20AC\U0001F4BB-\r\n");
        const QString log = QChar(0xFEFF) + line.repeated(30'000);
        const QByteArray copy = QByteArray("\xFC?\?\?-\n").repeated(30'000);
        for (const QByteArray &bytes : {log.toUtf8(), utf16(log, true), utf32(log, false)}) {
            tree.write("log/HardwareErrorLog.log"_s, bytes);
            const QByteArray logs = section(tree.report(), "Log Files");
            QVERIFY(logs == "\n\nFile:HardwareErrorLog.log:\n" + copy);
        }
    }
};

QTEST_GUILESS_MAIN(ExecutableTest)
#include "tst_executable.moc"
