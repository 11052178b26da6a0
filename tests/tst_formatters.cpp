#include "report/formatters.h"
#include "tests/support/literals.h"

#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>

using namespace support;

namespace {

QString errorText(int code)
{
    return "Error(%1) "_s.arg(code) + latin1(deviceErrorText(code));
}

constexpr int faults[] = {1, 3, 5, 17, 19, 20, 255, -1, std::numeric_limits<int>::min()};

} // namespace

/** Every formatter with every outcome. */
class FormattersTest : public QObject
{
    Q_OBJECT

private slots:
    void failure_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");

        using Formatter = std::function<QString(DeviceCode)>;
        struct Optional {
            const char *row;
            QString label;
            Formatter format;
        };
        const Optional optionals[] = {
            {"value", "Name"_s,
                [](DeviceCode code) { return formatValueLine(code, "Name", "1"_s, "V"); }},
            {"text", "Name"_s,
                [](DeviceCode code) { return formatTextLine(code, "Name", "text", ""); }},
            {"short", "Name"_s,
                [](DeviceCode code) { return formatShortLine(code, "Name", -1, "C"); }},
            {"ushort", "Name"_s,
                [](DeviceCode code) { return formatUShortLine(code, "Name", 1, "%"); }},
            {"voltage", "Name"_s,
                [](DeviceCode code) { return formatVoltageLine(code, "Name", 1.5, "V"); }},
            {"minutes", "Name"_s,
                [](DeviceCode code) { return formatMinutesLine(code, "Name", 1500); }},
            {"connections", "Number of Name connections"_s,
                [](DeviceCode code) { return formatConnectionsLine(code, "Name", 4); }},
            {"mounted", "Name device mounted"_s,
                [](DeviceCode code) { return formatMountedLine(code, "Name", true); }},
        };
        for (const Optional &optional : optionals) {
            QTest::addRow("%s, not supported", optional.row) << optional.format(2) << QString();
            QTest::addRow("%s, not available", optional.row)
                << optional.format(18) << optional.label + ": N/A\n"_s;
            for (const int code : faults)
                QTest::addRow("%s, %d", optional.row, code)
                    << optional.format(code)
                    << optional.label + ": "_s + errorText(code) + QLatin1Char('\n');
        }

        const std::pair<const char *, Formatter> settings[] = {
            {"version",
                [](DeviceCode code) { return formatVersionLine("Name", 1, 2, 3, 4, code); }},
            {"int", [](DeviceCode code) { return formatIntLine("Name", 1, code); }},
            {"double", [](DeviceCode code) { return formatDoubleLine("Name", 1.5, code); }},
            {"enabled", [](DeviceCode code) { return formatEnabledLine("Name", 1, code); }},
            {"trigger", [](DeviceCode code) { return formatStartupTriggerLine("Name", 1, code); }},
            {"action", [](DeviceCode code) { return formatButtonActionLine("Name", 1, code); }},
            {"frame type", [](DeviceCode code) { return formatFrameTypeLine("Name", 1, code); }},
        };
        for (const auto &[row, format] : settings) {
            for (const int code : {2, 18})
                QTest::addRow("%s, %d", row, code)
                    << format(code) << "Name: "_s + errorText(code) + QLatin1Char('\n');
            for (const int code : faults)
                QTest::addRow("%s, %d", row, code)
                    << format(code) << "Name: "_s + errorText(code) + QLatin1Char('\n');
        }

        QTest::newRow("button configuration, not supported")
            << formatButtonConfigLine(2, "Name", 4) << QString();
        QTest::newRow("button configuration, not available")
            << formatButtonConfigLine(18, "Name", 4)
            << "Name: "_s + errorText(18) + QLatin1Char('\n');
        QTest::newRow("button configuration, 5") << formatButtonConfigLine(5, "Name", 1)
                                                 << "Name: "_s + errorText(5) + QLatin1Char('\n');
    }

    void failure()
    {
        QFETCH(QString, line);
        QFETCH(QString, expected);
        QCOMPARE(line, expected);
    }

    void success_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &line, const char *expected) {
            QTest::newRow(name) << line << latin1(expected);
        };
        const auto lowest = std::numeric_limits<std::int32_t>::min();

        row("value", formatValueLine(0, "Name", "12"_s, "V"), "Name: 12 V\n");
        row("value, no unit", formatValueLine(0, "Name", "12"_s, ""), "Name: 12 \n");
        row("text", formatTextLine(0, "Main PCB Serial", "4711", ""), "Main PCB Serial: 4711 \n");
        row("text, empty", formatTextLine(0, "Name", "", ""), "Name:  \n");
        row("text, degree", formatTextLine(0, "A\260C", "\344\377", "\260C"),
            "A\260C: \344\377 \260C\n");
        row("short", formatShortLine(0, "SS temp", 40, "\260C"), "SS temp: 40 \260C\n");
        row("short, lowest", formatShortLine(0, "SS temp", -32768, ""), "SS temp: -32768 \n");
        row("ushort", formatUShortLine(0, "Cycles", 40000, ""), "Cycles: 40000 \n");
        row("ushort, highest", formatUShortLine(0, "Cycles", 65535, "%"), "Cycles: 65535 %\n");
        row("voltage", formatVoltageLine(0, "Voltage 12V", 12.1, "V"), "Voltage 12V: 12.1 V\n");
        row("voltage, cut", formatVoltageLine(0, "U", 12.3456789, "V"), "U: 12.3457 V\n");
        row("voltage, exponent", formatVoltageLine(0, "U", 1234567.0, "V"), "U: 1.23457e+06 V\n");

        row("minutes, 0", formatMinutesLine(0, "Time", 0), "Time: 0 min (0 days, 0h, 0min) \n");
        row("minutes, 59", formatMinutesLine(0, "Time", 59), "Time: 59 min (0 days, 0h, 59min) \n");
        row("minutes, 1439", formatMinutesLine(0, "Time", 1439),
            "Time: 1439 min (0 days, 23h, 59min) \n");
        row("minutes, 1500", formatMinutesLine(0, "Total run time", 1500),
            "Total run time: 1500 min (1 days, 1h, 0min) \n");
        row("minutes, highest", formatMinutesLine(0, "Time", 4294967295U),
            "Time: 4294967295 min (2982616 days, 4h, 15min) \n");

        row("connections", formatConnectionsLine(0, "CAN", 4), "Number of CAN connections: 4\n");
        row("connections, many", formatConnectionsLine(0, "USB", 255),
            "Number of USB connections: 255\n");
        row("mounted", formatMountedLine(0, "WLAN", true), "WLAN device mounted: Yes\n");
        row("mounted, no", formatMountedLine(0, "WLAN", false), "WLAN device mounted: No\n");
        const std::uint8_t two = 2;
        row("mounted, 2", formatMountedLine(0, "WLAN", two), "WLAN device mounted: Yes\n");

        row("version", formatVersionLine("FPGA", 0, 10, 200, 255, 0), "FPGA: v0.10.200.255\n");
        row("int", formatIntLine("Intensity", 255, 0), "Intensity: 255\n");
        row("int, lowest", formatIntLine("Intensity", lowest, 0), "Intensity: -2147483648\n");
        row("double", formatDoubleLine("Voltage", 9.0, 0), "Voltage: 9\n");
        row("double, exponent", formatDoubleLine("Voltage", 0.00001, 0), "Voltage: 1e-05\n");
        row("enabled", formatEnabledLine("Name", 1, 0), "Name: Enabled\n");
        for (const int off : {0, 2, -1})
            row("disabled", formatEnabledLine("Name", off, 0), "Name: Disabled\n");

        row("trigger 1", formatStartupTriggerLine("T", 1, 0), "T: Front button\n");
        row("trigger 2", formatStartupTriggerLine("T", 2, 0), "T: OnOff Signal\n");
        row("trigger 3", formatStartupTriggerLine("T", 3, 0),
            "T: Both Front button and OnOff signal\n");
        for (const int undefined : {0, 4, -1})
            row("trigger, other", formatStartupTriggerLine("T", undefined, 0),
                "T: Undefined value\n");
        row("action 0", formatButtonActionLine("A", 0, 0), "A: NoAction\n");
        row("action 1", formatButtonActionLine("A", 1, 0), "A: Suspend\n");
        row("action 2", formatButtonActionLine("A", 2, 0), "A: ShutDown\n");
        for (const int undefined : {3, -1})
            row("action, other", formatButtonActionLine("A", undefined, 0), "A: Undefined value\n");
        row("frame type 0", formatFrameTypeLine("F", 0, 0), "F: Standard\n");
        row("frame type 1", formatFrameTypeLine("F", 1, 0), "F: Extended\n");
        row("frame type 2", formatFrameTypeLine("F", 2, 0), "F: Standard, Extended\n");
        for (const int undefined : {3, -1})
            row("frame type, other", formatFrameTypeLine("F", undefined, 0),
                "F: Undefined value\n");

        row("button 0", formatButtonConfigLine(0, "B", 0), "B: BUTTON_ONLY_MP_ACTION\n");
        row("button 2", formatButtonConfigLine(0, "B", 2), "B: BUTTON_AS_STARTUP_TRIG\n");
        row("button 4", formatButtonConfigLine(0, "B", 4), "B: BUTTON_AS_ACTION_TRIG\n");
        row("button 6", formatButtonConfigLine(0, "B", 6), "B: BUTTON_AS_ACTION_STARTUP_TRIG\n");
        row("button 8", formatButtonConfigLine(0, "B", 8), "B: BUTTON_AS_BACKLIGHT_DECREASE\n");
        row("button 10", formatButtonConfigLine(0, "B", 10),
            "B: BUTTON_AS_BACKLIGHT_DECR_STARTUP_TRIG\n");
        row("button 12", formatButtonConfigLine(0, "B", 12), "B: BUTTON_AS_BACKLIGHT_INCREASE\n");
        row("button 14", formatButtonConfigLine(0, "B", 14),
            "B: BUTTON_AS_BACKLIGHT_INCR_STARTUP_TRIG\n");
        row("button 1", formatButtonConfigLine(0, "B", 1), "B: 1 - Incorrect setting\n");
        row("button 16", formatButtonConfigLine(0, "B", 16), "B: 16 - Incorrect setting\n");
        row("button -2", formatButtonConfigLine(0, "B", -2), "B: -2 - Incorrect setting\n");
    }

    void success()
    {
        QFETCH(QString, line);
        QFETCH(QString, expected);
        QCOMPARE(line, expected);
    }

    void text_isTakenAsItStands()
    {
        QCOMPARE(formatTextLine(0, "%2", "%1 %3 %L1 %%", "%1"), "%2: %1 %3 %L1 %% %1\n"_s);
        QCOMPARE(formatConnectionsLine(0, "%1", 3), "Number of %1 connections: 3\n"_s);
        QCOMPARE(formatMountedLine(18, "%1", true), "%1 device mounted: N/A\n"_s);
        QCOMPARE(formatIntLine("%1 %2", 7, 0), "%1 %2: 7\n"_s);
        QCOMPARE(formatIntLine("%3", 7, 5), "%3: "_s + errorText(5) + QLatin1Char('\n'));
    }

    void number_isQtsGeneralFormat_data()
    {
        QTest::addColumn<double>("value");
        for (const double value : {0.0, -0.0, 0.1, 1.0 / 3, 999999.4, 999999.5, 1e6, 123456.5, 1e-4,
                 1e-5, 12.000004, 1e100, 5e-324, -24.05, HUGE_VAL, -HUGE_VAL, std::nan("")})
            QTest::addRow("%g", value) << value;
    }

    void number_isQtsGeneralFormat()
    {
        QFETCH(double, value);
        const QString number = "%1"_s.arg(value);
        QCOMPARE(formatVoltageLine(0, "U", value, "V"), "U: "_s + number + " V\n"_s);
        QCOMPARE(formatDoubleLine("U", value, 0), "U: "_s + number + QLatin1Char('\n'));
    }
};

QTEST_APPLESS_MAIN(FormattersTest)
#include "tst_formatters.moc"
