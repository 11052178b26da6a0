#include "frame/VornAux2.h"
#include "report/sections.h"
#include "report/systemReport.h"
#include "tests/support/BiosData.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/expected.h"
#include "virtualunit/VirtualUnit.h"

#include <QBuffer>
#include <QTemporaryDir>

using namespace support;

namespace {

QString errorText(int code)
{
    return "Error(%1) "_s.arg(code) + latin1(deviceErrorText(code));
}

/** A file of what is expected of the report, or of what the unit is for it. */
QString expectedFile(const char *name)
{
    return VORN_SOURCE_DIR "/tests/expected/report/"_s + latin1(name) + ".txt"_s;
}

/** Leaves out results and out values. */
QStringList withoutResults(QStringList calls)
{
    for (QString &call : calls)
        call = call.section(" = "_s, 0, 0);
    return calls;
}

/** Calls of a whole report, from the first to the last of those named. */
QStringList callsBetween(const char *first, const char *last)
{
    const QStringList calls = linesOf(expectedFile("calls"));
    const auto begin = calls.indexOf(latin1(first));
    return calls.mid(begin, calls.indexOf(latin1(last), begin) - begin + 1);
}

QStringList batteryCalls()
{
    return callsBetween("Battery_create()", "Battery_release()");
}

QStringList settingsCalls()
{
    return callsBetween("Backlight_create()", "Battery_release()");
}

using Section = QString (*)();

/** How an item tells of a failure. */
enum Outcome { EQUIPMENT, SETTING, BATTERY };

/** One operation of a section and what of the section comes from it. */
struct Item {
    Section section;
    QString operation;
    Outcome outcome;
    QStringList labels; ///< the lines begin with these
    QString failure;    ///< what the battery's lines call it
};

QList<Item> items()
{
    static const QHash<QString, std::pair<Section, Outcome>> sections = {
        {"eeprom"_s, {eepromDataText, EQUIPMENT}},
        {"diagnostic"_s, {diagnosticDataText, EQUIPMENT}}, {"adc"_s, {adcDataText, EQUIPMENT}},
        {"settings"_s, {settingsDataText, SETTING}}, {"battery"_s, {batteryDataText, BATTERY}}};
    QList<Item> all;
    for (const QString &line : linesOf(expectedFile("failures"))) {
        const QStringList cells = line.split(" | "_s);
        const auto &[section, outcome] = sections[cells[0]];
        all << Item{section, cells[1], outcome, cells[2].split("; "_s), cells.value(3)};
    }
    return all;
}

QStringList voltages()
{
    for (const Item &item : items()) {
        if (item.section == Section(adcDataText))
            return item.labels;
    }
    return {};
}

/** The line that a failed item leaves, empty for none. */
QString failedLine(const Item &item, const QString &label, int code)
{
    if (item.outcome == BATTERY)
        return label == item.labels.constFirst() ? "Could not get "_s + item.failure + ". "_s +
                                                       errorText(code) + QLatin1Char('\n')
                                                 : QString();
    if (item.outcome == EQUIPMENT && code == 2)
        return {};
    if (item.outcome == EQUIPMENT && code == 18)
        return label + ": N/A\n"_s;
    return label + ": "_s + errorText(code) + QLatin1Char('\n');
}

/** A section's text when that item can't be read. */
QString failedText(const QString &sound, const Item &item, int code)
{
    QString text;
    for (const QString &line : sound.split(QLatin1Char('\n'))) {
        QString found;
        for (const QString &label : item.labels) {
            if (line == label || line.startsWith(label + ": "_s))
                found = label;
        }
        text += found.isEmpty() ? line + QLatin1Char('\n') : failedLine(item, found, code);
    }
    text.chop(1); // split() gave one empty text behind the last line feed
    return text;
}

/** A section's calls when that item can't be read. */
QStringList failedCalls(const QStringList &sound, const Item &item, int code)
{
    int lines = 0;
    for (const QString &label : item.labels)
        lines += failedLine(item, label, code).contains("Error("_s);
    const auto reads = sound.filter(QRegularExpression("^"_s + item.operation + "\\("_s)).size();
    QStringList calls;
    QStringList errors;
    for (const QString &call : sound) {
        const bool asksForText = call.startsWith("Diagnostics_"_s) && call.contains("Text("_s);
        if (!asksForText)
            calls += std::exchange(errors, {}); // the text of the number is asked for first
        if (!call.startsWith(item.operation + QLatin1Char('('))) {
            calls << call;
            continue;
        }
        calls << call.section(" = "_s, 0, 0) + " = %1"_s.arg(code);
        for (int line = 0; line < lines / reads; ++line)
            errors << "deviceErrorText(%1) = "_s.arg(code) + latin1(deviceErrorText(code));
    }
    return calls;
}

} // namespace

class ReportTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void init()
    {
        qputenv("TZ", "UTC");
        qputenv("VORN_LOG_DIR", QFile::encodeName(logs.path()));
        bios.reset(); // one at a time
        bios = std::make_unique<BiosData>();
        DeviceTest::init();
        useKnownUnit();
    }

    void order()
    {
        generateSystemReport();
        const QStringList made = withoutResults(calls());
        QCOMPARE(made, expectedLines(expectedFile("calls"), made));
    }

    void handles()
    {
        generateSystemReport();
        QStringList lives;
        for (const QString &line : journal()) {
            if (line.contains("_create"_s) || line.contains("_release"_s))
                lives << line.section(QLatin1Char(' '), 1);
        }
        QCOMPARE(lives, expectedLines(expectedFile("handles"), lives));
    }

    void frame()
    {
        QString report = generateSystemReport();
        const auto banner = [](const char *title) {
            return "\n------------------  "_s + latin1(title) + "  ------------------\n"_s;
        };
        static const QRegularExpression time(
            "^\nSystem report generated on: \\w{3} \\w{3} \\d+ [\\d:]{8} \\d{4}\n"_s);
        QVERIFY2(time.match(report).hasMatch(), qPrintable(report.left(100)));
        report = report.mid(report.indexOf(QLatin1Char('\n'), 1) + 1);

        const QString expected = banner("SW Versions") +
                                 "Vornsettings v2.7.2.0\n"
                                 "Vornaux API: v2.7.2.0\n"
                                 "Vornaux Driver: v2.7.0.1\n"
                                 "FPGA: v1.4.2.0\n"
                                 "Front uc: v1.2.0.5\n"
                                 "System Supervisor: v2.1.7.3\n"
                                 "OS version: v3.0.12.0\n"_s +
                                 banner("EEPROM data") + eepromDataText() +
                                 banner("Diagnostic data") + diagnosticDataText() +
                                 banner("ADC data") + adcDataText() + banner("CPU board data") +
                                 cpuBoardDataText() + banner("Settings") + settingsDataText() +
                                 banner("Log Files") + banner("End of report");
        // Line by line, so that a difference is seen.
        QCOMPARE(report.split(QLatin1Char('\n')), expected.split(QLatin1Char('\n')));
    }

    /** A report that takes its time still says when it began. */
    void stamp_isTheStart()
    {
        virtualunit::setDelay("Versions_getVornAuxVersion", 1500);
        const qint64 begun = QDateTime::currentMSecsSinceEpoch();
        const QString line = generateSystemReport().section(QLatin1Char('\n'), 1, 1);
        const auto stamp = QLocale::c().toDateTime(
            line.section(": "_s, 1).simplified(), "ddd MMM d HH:mm:ss yyyy"_s);
        QVERIFY2(stamp.isValid(), qPrintable(line));
        QVERIFY(QDateTime::currentMSecsSinceEpoch() >= begun + 1500);
        QVERIFY(stamp.toMSecsSinceEpoch() < begun + 500);
    }

    void eeprom()
    {
        for (const char *feature : {"hasTouchscreen", "hasGps", "hasGsm"})
            setUnit("Hardware."_s + latin1(feature), "false"_s);
        for (const char *feature : {"hasWlan", "hasBluetooth"})
            setUnit("Hardware."_s + latin1(feature), "true"_s);
        compare("eeprom", eepromDataText());
        QCOMPARE(withoutResults(calls()), callsBetween("Hardware_create()", "Hardware_release()"));
    }

    void eeprom_withoutAddonBoard()
    {
        for (const char *operation :
            {"getAddonPcbSerial", "getAddonArticleNumber", "getAddonManufacturingDate",
                "getAddonHardwareVersion", "hasWlan", "hasGps", "hasBluetooth", "hasGsm"})
            fault("Hardware_"_s + latin1(operation), DEVICE_NOT_SUPPORTED);
        QVERIFY(eepromDataText().endsWith("255\n\nAddon/Telematics board:\n"_s));
    }

    void adc()
    {
        QString expected = "ADC values\n"_s;
        const QStringList labels = voltages();
        const int channels[] = {
            0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23};
        for (int row = 0; row < labels.size(); ++row) {
            const double volts = 1.0123456 * (channels[row] + 1);
            setUnit("Adc.voltage%1"_s.arg(channels[row]), QString::number(volts, 'g', 17));
            expected += labels[row] + ": "_s + QString::number(volts) + " V\n"_s;
        }
        QCOMPARE(adcDataText(), expected);
        QCOMPARE(withoutResults(calls()), callsBetween("Adc_create()", "Adc_release()"));
    }

    void diagnostic() { compare("diagnostic", diagnosticDataText()); }

    void diagnostic_reasons_data()
    {
        QTest::addColumn<int>("reason");
        QTest::addColumn<QString>("line");
        QTest::newRow("31") << 31 << "ShutDown reason: NoError \n"_s;
        QTest::newRow("30") << 30 << "ShutDown reason: 30 \n"_s;
        QTest::newRow("0") << 0 << "ShutDown reason: 0 \n"_s;
        QTest::newRow("65535") << 65535 << "ShutDown reason: 65535 \n"_s;
    }

    void diagnostic_reasons()
    {
        QFETCH(int, reason);
        QFETCH(QString, line);
        setUnit("Diagnostics.shutDownReason"_s, QString::number(reason));
        const QString text = diagnosticDataText();
        QVERIFY2(text.contains(QLatin1Char('\n') + line), qPrintable(text));
    }

    void diagnostic_reasonAfterFailure()
    {
        // The number of the read before is asked about, and a reason of 0 after a failed first
        // read.
        setUnit("Diagnostics.startupReason"_s, "7"_s);
        setUnit("Diagnostics.hwErrorStatus"_s, "9"_s);
        fault("Diagnostics_getShutDownReason"_s, 5);
        fault("Diagnostics_getHwErrorStatus"_s, 5);
        diagnosticDataText();
        const QStringList before = withoutResults(calls());
        QVERIFY(before.contains("Diagnostics_startupReasonText(7)"_s));
        QVERIFY(before.contains("Diagnostics_hwErrorText(7)"_s));

        clearFaults();
        fault("Diagnostics_getStartupReason"_s, 18);
        setUnit("Diagnostics.shutDownReason"_s, "3"_s);
        fault("Diagnostics_getHwErrorStatus"_s, 2);
        diagnosticDataText();
        const QStringList after = withoutResults(calls());
        QVERIFY(after.contains("Diagnostics_startupReasonText(0)"_s));
        QVERIFY(after.contains("Diagnostics_hwErrorText(3)"_s));
    }

    void diagnostic_sensors_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("lines");
        QTest::newRow("none") << 0 << QString();
        QTest::newRow("one") << 1 << "JIDA CPU temp: 20 °C\n"_s;
        QTest::newRow("eight") << 8
                               << "JIDA CPU temp: 20 °C\n"
                                  "JIDA box temp: 21 °C\n"
                                  "JIDA environment temp: 22 °C\n"
                                  "JIDA board temp: 23 °C\n"
                                  "JIDA backplane temp: 24 °C\n"
                                  "JIDA chipsets temp: 25 °C\n"
                                  "JIDA video temp: 26 °C\n"
                                  "JIDA other temp: 27 °C\n"_s;
    }

    void diagnostic_sensors()
    {
        QFETCH(int, count);
        QFETCH(QString, lines);
        setUnit("Diagnostics.pmSensorCount"_s, QString::number(count));
        for (int index = 0; index < 8; ++index) {
            setUnit("Diagnostics.pmTemp%1"_s.arg(index), QString::number(20 + index));
            setUnit("Diagnostics.pmKind%1"_s.arg(index), QString::number(index));
        }
        const QString text = diagnosticDataText();
        const auto start = text.indexOf("Number of power cycles: 40000 \n"_s);
        const auto end = text.indexOf("SS temp"_s);
        QCOMPARE(text.mid(start, end - start), "Number of power cycles: 40000 \n"_s + lines);
    }

    void storage_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");

        const QString dashes = "---------------------------------------------------------\n"_s;
        const QString serial = "Device serial number: SD-1 \n"_s;
        const QString lifetime = "Estimated remaining lifetime: 94 %\n"_s;
        const QString time = "Device was initially timestamped on: Fri Nov 11 11:11:11 2011\n"_s;
        const QString serial2 = dashes + "Device serial number: SD-2 \n"_s;
        const QString lifetime2 = "Estimated remaining lifetime: 99 %\n"_s;
        const QString time2 =
            "Device was initially timestamped on: Thu Jan  1 00:00:00 1970\n"_s + dashes;
        const QString not_available = "Estimated remaining lifetime is not available\n"_s;
        const auto row = [](const char *operation, int code, const QString &text) {
            QTest::addRow("%s, %d", operation, code) << latin1(operation) << code << text;
        };
        for (const int code : failureCodes) {
            const QString error = code == 2    ? QString()
                                  : code == 18 ? "N/A\n"_s
                                               : errorText(code) + QLatin1Char('\n');
            const QString label = code == 2 ? QString() : "getInitialTime: "_s;
            const QString label2 = code == 2 ? QString() : "getInitialTime2: "_s;
            const QString absent = code == 2 ? QString() : not_available;
            const QString second = serial2 + lifetime2 + time2;
            row("Smart_getDeviceSerial", code, not_available + lifetime + time + second);
            row("Smart_getRemainingLifetime", code, serial + not_available + time + second);
            row("Smart_getInitialTime", code, serial + lifetime + label + error + second);
            const QString first = serial + lifetime + time;
            row("Smart_getDeviceSerial2", code, first + absent + lifetime2 + time2);
            row("Smart_getRemainingLifetime2", code, first + serial2 + absent + time2);
            row("Smart_getInitialTime2", code, first + serial2 + lifetime2 + label2 + error);
        }
    }

    void storage()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        QFETCH(QString, text);
        fault(operation, code);
        const QString section = diagnosticDataText();
        const QString banner = "\n------------------  SMART data  ------------------\n"_s;
        QCOMPARE(section.mid(section.indexOf(banner) + banner.size()), text);
    }

    void storage_onlyOne()
    {
        const QString both = diagnosticDataText();
        for (const char *operation :
            {"getDeviceSerial2", "getRemainingLifetime2", "getInitialTime2"})
            fault("Smart_"_s + latin1(operation), DEVICE_NOT_SUPPORTED);
        QCOMPARE(diagnosticDataText(),
            both.left(both.indexOf("\n-----------------------------------------"_s) + 1));
    }

    void settings()
    {
        compare("settings", settingsDataText());
        QCOMPARE(withoutResults(calls()), settingsCalls());
    }

    void settings_values_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("line");
        const auto row = [](const char *property, const char *value, const char *line) {
            QTest::addRow("%s %s", property, value)
                << latin1(property) << latin1(value) << latin1(line);
        };
        row("Touch.mode", "0", "TouchScreenMode: Mouse profile (next boot)");
        row("Touch.mode", "1", "TouchScreenMode: Touch profile (next boot)");
        row("Touch.mode", "3", "TouchScreenMode: Touch profile");
        row("Touch.mode", "4", "TouchScreenMode: Undefined value");
        row("Backlight.softTransitions", "false", "   Soft transitions: 0");
        row("Backlight.samplingMode", "0", "   Sampling mode: 0");
        row("Backlight.ledDimming", "2", "Led dimming: Disabled");
        row("Buzzer.trigger", "true", "Trigger (On/Off): 1");
        row("Config.extOnOffSigTrigTime", "4294967295", "ExtOnOffSigTrigTime: -1");
        row("Config.frontBtnTrigTime", "65535", "FrontBtnTrigTime: 65535");
        row("Config.heatingTempLimit", "5", "HeatingTempLimit: 5");
        row("Config.startupTrigger", "1", "StartupTrigger: Front button");
        row("Config.startupTrigger", "2", "StartupTrigger: OnOff Signal");
        row("Config.startupTrigger", "0", "StartupTrigger: Undefined value");
        row("Config.startupVoltage", "9", "StartupVoltage: 9");
        row("Config.shortButtonPressAction", "7", "ShortButtonPressAction: Undefined value");
        row("Telematics.gpsAntennaStatus", "1", "GPSAntennaStatus: Enabled");
    }

    void settings_values()
    {
        QFETCH(QString, property);
        QFETCH(QString, value);
        QFETCH(QString, line);
        setUnit(property, value);
        const QStringList lines = settingsDataText().split(QLatin1Char('\n'));
        QVERIFY2(lines.contains(line), qPrintable(lines.join(QLatin1Char('\n'))));
    }

    void settings_automaticBacklight_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("code");
        for (const int code : failureCodes) {
            QTest::addRow("parameters %d", code) << "getAutomaticBLParams"_s << code;
            QTest::addRow("filter %d", code) << "getAutomaticBLFilter"_s << code;
        }
    }

    void settings_automaticBacklight()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        const QString error = errorText(code);
        calls();
        fault("Backlight_"_s + operation, code);
        const QString text = settingsDataText();
        QVERIFY2(text.contains("\nAutomatic backlight Status: 0\n"_s + operation + ": "_s + error +
                               "\n\nBuzzer:\n"_s),
            qPrintable(text));
        QStringList expected = settingsCalls();
        if (operation == "getAutomaticBLParams"_s)
            expected.removeOne("Backlight_getAutomaticBLFilter()"_s);
        expected.insert(
            expected.indexOf("Backlight_release()"_s), "deviceErrorText(%1)"_s.arg(code));
        QCOMPARE(withoutResults(calls()), expected);
    }

    void settings_telematics_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("available");
        for (const int code : failureCodes)
            QTest::addRow("code %d", code) << code << "1"_s;
        QTest::newRow("no board") << 0 << "0"_s;
        QTest::newRow("2") << 0 << "2"_s;
    }

    void settings_telematics()
    {
        QFETCH(int, code);
        QFETCH(QString, available);
        setUnit("Telematics.available"_s, available);
        if (code != 0)
            fault("Telematics_getAvailable"_s, code);
        const QString text = settingsDataText();
        const QString outcome = code != 0 ? errorText(code) : "Disabled"_s;
        QVERIFY2(text.contains("\n\nTelematics:\nTelematics board available: "_s + outcome +
                               "\n\nBattery:\n"_s),
            qPrintable(text));
        const QStringList ours = withoutResults(calls()).filter("Telematics_"_s);
        QCOMPARE(ours, QStringList({"Telematics_create()"_s, "Telematics_getAvailable()"_s}));
    }

    void battery()
    {
        compare("battery", batteryDataText());
        QCOMPARE(withoutResults(calls()), batteryCalls());
    }

    void battery_absent_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : failureCodes)
            QTest::addRow("code %d", code) << code;
        QTest::newRow("not connected") << 0;
    }

    void battery_absent()
    {
        QFETCH(int, code);
        if (code != 0)
            fault("Battery_isAvailable"_s, code);
        else
            setUnit("Battery.available"_s, "false"_s);
        QCOMPARE(batteryDataText(), "External battery not available.\n"_s);
        // The handle stays open.
        QCOMPARE(withoutResults(calls()),
            QStringList({"Battery_create()"_s, "Battery_isAvailable()"_s}));
    }

    void battery_values_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        const auto row = [](const char *property, const char *value, const char *before,
                             const char *after) {
            QTest::addRow("%s %s", property, value)
                << latin1(property) << latin1(value) << latin1(before) << latin1(after);
        };
        const char noErrors[] = "Battery reports no HW errors\n";
        row("Battery.hwErrorStatus", "1", noErrors,
            "Battery error! The thermistor temp sensor is not working\n");
        row("Battery.hwErrorStatus", "2", noErrors,
            "Battery error! The secondary temp sensor is not working\n");
        row("Battery.hwErrorStatus", "3", noErrors, "Battery error! Charging failed\n");
        row("Battery.hwErrorStatus", "4", noErrors, "Battery error! Overcurrent detected\n");
        row("Battery.hwErrorStatus", "5", noErrors, "Battery error! Battery not initiated\n");
        row("Battery.hwErrorStatus", "6", noErrors, "");
        const char charging[] = "Battery is being charged\n";
        row("Battery.chargingStatus", "2", charging, "Battery is fully charged\n");
        row("Battery.chargingStatus", "3", charging,
            "Temperature is too low to charge the battery\n");
        row("Battery.chargingStatus", "4", charging,
            "Temperature is too high to charge the battery\n");
        row("Battery.chargingStatus", "5", charging, "Could not get battery charging status\n");
        row("Battery.chargingStatus", "6", charging, "");
        const char external[] = "Power source: External power\n";
        row("Battery.powerSource", "0", external, "Power source: Battery\n");
        row("Battery.powerSource", "2", external, external);
        row("Battery.hwVersion", "%1 %2", "HW version: C1\n", "HW version: %1 %2\n");
        row("Battery.serialNumber", "", "serial number: B-4711\n", "serial number: \n");
    }

    void battery_values()
    {
        QFETCH(QString, property);
        QFETCH(QString, value);
        QFETCH(QString, before);
        QFETCH(QString, after);
        QString expected = batteryDataText();
        QVERIFY(expected.contains(before));
        setUnit(property, value);
        expected.replace(before, after);
        QCOMPARE(batteryDataText(), expected);
    }

    void battery_idleTakesThePlaceOfAllBefore()
    {
        const QString charging = batteryDataText();
        calls();
        setUnit("Battery.chargingStatus"_s, "0"_s);
        fault("Battery_getHwVersion"_s, 5);
        QCOMPARE(batteryDataText(),
            "Battery is not being charged\n"_s + charging.mid(charging.indexOf("Power source"_s)));
        QStringList expected = batteryCalls();
        expected.insert(expected.indexOf("Battery_getSwVersion()"_s), "deviceErrorText(5)"_s);
        QCOMPARE(withoutResults(calls()), expected);
    }

    void failure_data()
    {
        QTest::addColumn<int>("item");
        QTest::addColumn<int>("code");
        const QList<Item> all = items();
        for (int item = 0; item < all.size(); ++item) {
            for (const int code : failureCodes)
                QTest::addRow("%s %d", qPrintable(all[item].operation), code) << item << code;
        }
    }

    void failure()
    {
        QFETCH(int, item);
        QFETCH(int, code);
        const Item failing = items().at(item);
        const QString sound = failing.section();
        const QStringList soundCalls = calls();
        fault(failing.operation, code);
        const QString expected = failedText(sound, failing, code);
        QVERIFY(expected != sound);
        QStringList expectedCalls = failedCalls(soundCalls, failing, code);
        calls();
        QCOMPARE(failing.section(), expected);
        QStringList found = calls();
        // Which texts are asked for follows the number, which a failure changes; tested on its own.
        for (QStringList *lines : {&found, &expectedCalls}) {
            for (QString &line : *lines) {
                if (line.startsWith("Diagnostics_"_s) && line.contains("Text("_s))
                    line = line.section(QLatin1Char('('), 0, 0);
            }
        }
        QCOMPARE(found, expectedCalls);
    }

    void version_failure_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("code");
        const std::pair<const char *, const char *> versions[] = {
            {"Versions_getVornAuxVersion", "Vornaux API"},
            {"Versions_getVornAuxDrvVersion", "Vornaux Driver"},
            {"Versions_getFPGAVersion", "FPGA"}, {"Versions_getFrontVersion", "Front uc"},
            {"Versions_getSSVersion", "System Supervisor"},
            {"Versions_getOSVersion", "OS version"}};
        for (const auto &[operation, label] : versions) {
            for (const int code : failureCodes)
                QTest::addRow("%s %d", operation, code)
                    << latin1(operation) << latin1(label) << code;
        }
    }

    void version_failure()
    {
        QFETCH(QString, operation);
        QFETCH(QString, label);
        QFETCH(int, code);
        fault(operation, code);
        const QString line =
            QLatin1Char('\n') + label + ": "_s + errorText(code) + QLatin1Char('\n');
        const QString report = generateSystemReport();
        QVERIFY2(report.contains(line), qPrintable(report));
    }

    void cpuBoard_data()
    {
        QTest::addColumn<QByteArray>("product");
        QTest::addColumn<QString>("info");
        const QString jida = "Board name: CCR6\n"
                             "Manufacturing Date: 2022.1.24\n"
                             "Serial Number: 0004202217\n"
                             "Hardware Revision: 3\n"
                             "Firmware Revision: 12\n"_s;
        const QString cgos = "Board name: BQ77\n"
                             "Board sub name: CCR6-i3\n"
                             "Manufacturing Date: 2022.1.24\n"
                             "Serial Number: 0004202217\n"
                             "Part Number: 046-77110\n"
                             "EAN: 4012345678901\n"
                             "Product Revision: A.1\n"
                             "System BIOS Revision: 114\n"_s;
        QTest::newRow("none") << QByteArray() << jida;
        QTest::newRow("unknown") << QByteArray("Standard PC") << jida;
        QTest::newRow("by name, jida") << QByteArray("ChiefRiver") << jida;
        QTest::newRow("by name, cgos") << QByteArray("TS77") << cgos;
        QTest::newRow("cgos") << QByteArray("Aptio CRB") << cgos;
    }

    void cpuBoard()
    {
        QFETCH(QByteArray, product);
        QFETCH(QString, info);
        if (!product.isNull())
            bios->setBoard(product);
        setUnit("CpuBoard.name"_s,
            latin1(product == "TS77" || product == "Aptio CRB" ? "BQ77" : "CCR6"));
        QCOMPARE(cpuBoardDataText(), info);
        bios->setVersion("V %1 \377");
        QCOMPARE(cpuBoardDataText(), info + "\nBIOS version: V %1 ÿ\n"_s);
    }

    void profiles_data()
    {
        QTest::addColumn<QString>("profile");
        for (const std::string &profile : virtualunit::profiles())
            QTest::addRow("%s", profile.c_str()) << QString::fromStdString(profile);
    }

    /** What holds for every unit: the frame, and one line for each setting. */
    void profiles()
    {
        QFETCH(QString, profile);
        useProfile(profile);
        const QString report = generateSystemReport();
        const QStringList made = withoutResults(calls());
        QStringList titles;
        QStringList lines = report.split(QLatin1Char('\n'));
        for (const QString &line : qAsConst(lines)) {
            if (line.startsWith("------------------  "_s))
                titles << line.mid(20).chopped(20);
        }
        QCOMPARE(titles,
            QStringList({"SW Versions"_s, "EEPROM data"_s, "Diagnostic data"_s, "SMART data"_s,
                "ADC data"_s, "CPU board data"_s, "Settings"_s, "Log Files"_s, "End of report"_s}));
        for (const Item &item : items()) {
            if (item.outcome != SETTING || item.operation.startsWith("Telematics_"_s))
                continue;
            for (const QString &label : item.labels)
                QCOMPARE(lines
                             .filter(QRegularExpression(
                                 QLatin1Char('^') + QRegularExpression::escape(label) + ": "_s))
                             .size(),
                    1);
        }
        // Whatever the unit has, everything but the board's radios and the battery is asked for.
        QStringList expected = settingsCalls();
        for (const QString &call : settingsCalls()) {
            if (!made.contains(call) &&
                (call.startsWith("Telematics_get"_s) || call.startsWith("Battery_"_s) ||
                    call.startsWith("Backlight_getAutomaticBLFilter"_s)))
                expected.removeOne(call);
        }
        const auto start = made.indexOf("Backlight_create()"_s);
        QStringList ours = made.mid(start);
        for (const QString &text : ours.filter("deviceErrorText"_s))
            ours.removeAll(text);
        QCOMPARE(ours, expected);
    }

    void allFail_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << code;
    }

    void allFail()
    {
        QFETCH(int, code);
        for (const std::string &operation : virtualunit::operations())
            fault(QString::fromStdString(operation), code);
        const QString failed = errorText(code);
        const auto equipment = [&](const QStringList &labels) {
            QString text;
            for (const QString &label : labels)
                text += failedLine(Item{nullptr, {}, EQUIPMENT, {}, {}}, label, code);
            return text;
        };
        QCOMPARE(adcDataText(), "ADC values\n"_s + equipment(voltages()));
        QStringList identity;
        QStringList history;
        for (const Item &item : items()) {
            if (item.section == Section(eepromDataText))
                identity += item.labels;
            if (item.section == Section(diagnosticDataText))
                history += item.labels;
        }
        QCOMPARE(eepromDataText(), "Mainboard:\n"_s + equipment(identity.mid(0, 18)) +
                                       "\nAddon/Telematics board:\n"_s +
                                       equipment(identity.mid(18)));
        const QString lifetimes = "Estimated remaining lifetime is not available\n"_s.repeated(2);
        QCOMPARE(diagnosticDataText(),
            "Diagnostic data:\n"_s + equipment(history) +
                "\n------------------  SMART data  ------------------\n"_s + lifetimes +
                equipment({"getInitialTime"_s}) + (code == 2 ? QString() : lifetimes) +
                equipment({"getInitialTime2"_s}));
        QCOMPARE(batteryDataText(), "External battery not available.\n"_s);
        const QString settings = settingsDataText();
        QVERIFY(settings.startsWith("Backlight:\nIntensity: "_s + failed + QLatin1Char('\n')));
        QVERIFY(settings.endsWith("\n\nTelematics:\nTelematics board available: "_s + failed +
                                  "\n\nBattery:\nExternal battery not available.\n"_s));
    }

    void file_isLatin1()
    {
        QString text;
        QByteArray bytes;
        for (int character = 0; character < 256; ++character) {
            text += QChar(character);
            bytes += char(character);
        }
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        writeReportText(buffer, text.repeated(1000));
        QVERIFY(buffer.data() == bytes.repeated(1000));
    }

private:
    static void compare(const char *section, const QString &text)
    {
        const QStringList lines = text.split(QLatin1Char('\n'));
        QCOMPARE(lines, expectedLines(expectedFile(section), lines));
    }

    /** A unit whose report is that of the files. */
    void useKnownUnit()
    {
        for (const QString &line : linesOf(expectedFile("unit"))) {
            const auto end = line.indexOf(QLatin1Char('='));
            setUnit(line.left(end), line.mid(end + 1));
        }
        calls();
    }

    QTemporaryDir logs;
    std::unique_ptr<BiosData> bios;
};

VORN_TEST_MAIN(ReportTest)
#include "tst_report.moc"
