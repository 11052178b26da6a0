#include "devicetools/trace/Trace.h"
#include "devicetools/trace/format.h"
#include "tests/support/operations.h"
#include "virtualunit/VirtualUnit.h"

#include <QtTest>

Q_DECLARE_METATYPE(std::string)

namespace {

/** One line of each kind, as it is written. */
const char *const lines[] = {
    "T1 Buzzer_create() = #1",
    "T12 Buzzer_create() = #0",
    "T1 Buzzer_release(#1)",
    "T1 Buzzer_release(#0)",
    "T1 Buzzer_getVolume(#1) = 0 [25]",
    "T1 Buzzer_getVolume(#0) = 7",
    "T1 Buzzer_getVolume(#1) = 13 fault",
    "T1 Buzzer_setVolume(#1, 65535) = 0",
    "T1 Buzzer_setTrigger(#0, true) = -2147483648",
    "T1 Buzzer_getTrigger(#1) = 0 [false]",
    "T1 Buzzer_getTrigger(#1) = 0 [255]",
    "T1 Buzzer_getVolume(#1) = 0 [null]",
    "T1 Adc_getVoltage(#1, 4294967295) = 0 [24.113]",
    "T1 Adc_getVoltage(#1, 0) = 0 [-nan]",
    "T1 Adc_getVoltage(#1, 0) = 0 [nan]",
    "T1 Adc_getVoltage(#1, 0) = 0 [inf]",
    "T1 Adc_getVoltage(#1, 0) = 0 [1e+300]",
    "T1 Adc_getVoltage(#1, 0) = 0 [null]",
    "T1 Smart_getInitialTime(#1) = 0 [-9223372036854775808]",
    "T1 Smart_getInitialTime(#1) = 0 [9223372036854775807]",
    "T1 FrontLED_setSignal(#1, 0.2, 50) = 0",
    "T1 Settings_getString(#1, \"key\", 32) = 0 [\"caf\xC3\xA9\"]",
    "T1 Settings_getString(#1, null, 32) = 6",
    "T1 Settings_setString(#1, \"a\\\"b\\\\c\\ny\\x0d\\x7f\", \"\") = 0",
    "T1 Diagnostics_getTimers(#1) = 0 [1, 2, 3, 4, 5, 6, 4294967295]",
    "T1 Firmware_getUpgradeStatus(#1, true) = 0 [4, 30, 0]",
    "T1 Diagnostics_getPMTemp(#1, 0) = 0 [-40, 7]",
    "T1 Battery_getSwVersion(#1) = 0 [1, 0, 9, 214]",
    "T1 deviceErrorText(-5) = \"no, (really)]\"",
    "T1 deviceErrorText(5) = null",
    "T1 Diagnostics_hwErrorText(65535) = \"\"",
    "0.000000 T1 Buzzer_create() = #1 <0.000012>",
    "3600.250000 T2 Buzzer_getVolume(#1) = 13 fault <0.300001>",
};

/** Each operation of the contract with arguments and with null pointers, and each text. */
void callEverything()
{
    for (const auto &family : support::allFamilies) {
        const void *handle = family.create();
        for (const auto &operation : support::allOperations) {
            if (!std::string_view(operation.name).starts_with(std::string(family.name) + "_"))
                continue;
            support::Arguments arguments;
            operation.call(handle, arguments);
            arguments.nullPointers = true;
            operation.call(handle, arguments);
        }
        family.release(handle);
    }
    deviceErrorText(-1);
    Diagnostics_startupReasonText(3);
    Diagnostics_hwErrorText(65535);
}

std::string refusal(std::string_view bytes)
{
    try {
        trace::read(bytes);
    } catch (const trace::Unreadable &unreadable) {
        return unreadable.what();
    }
    return {};
}

} // namespace

/** What is written of calls is read again as it was. */
class TraceTest : public QObject
{
    Q_OBJECT

private slots:
    void lines_areWrittenAsTheyWereRead()
    {
        for (const std::string line : lines) {
            const auto trace = trace::read(line + "\n");
            QCOMPARE(trace.warning, std::string());
            QCOMPARE(trace.calls.size(), std::size_t(1));
            QCOMPARE(trace.calls.front().line(), line);
        }
    }

    void texts_surviveEveryByte()
    {
        std::string bytes;
        for (int byte = 1; byte < 256; ++byte)
            bytes += char(byte);
        for (const auto &text : {bytes, std::string(bytes.rbegin(), bytes.rend())}) {
            std::string line = "T1 Settings_setString(#1, ";
            trace::appendText(line, text);
            line += ", \"\") = 0";
            QVERIFY(line.find('\n') == std::string::npos);
            QVERIFY(QString::fromStdString(line).toUtf8().toStdString() == line);
            const auto call = trace::read(line + "\n").calls.at(0);
            QVERIFY(std::get<std::string>(call.arguments.at(0)) == text);
            QCOMPARE(call.line(), line);
        }
    }

    void journal_isATrace_data()
    {
        QTest::addColumn<std::string>("profile");
        for (const auto &profile : virtualunit::profiles())
            QTest::newRow(profile.c_str()) << profile;
    }

    /** Every operation of the contract, answered by the virtual unit. */
    void journal_isATrace()
    {
        QFETCH(std::string, profile);
        QCOMPARE(virtualunit::open(":memory:"), std::string());
        QCOMPARE(virtualunit::loadProfile(profile), std::string());
        virtualunit::startJournal();
        callEverything();
        const auto journal = virtualunit::takeJournal();
        virtualunit::stopJournal();
        QVERIFY(journal.size() >= std::size(contract::operations) +
                                      2 * std::size(contract::families) +
                                      std::size(contract::texts));
        std::string text;
        for (const auto &call : journal)
            text += call.text() + "\n";
        const auto trace = trace::read(text);
        std::string again;
        for (const auto &call : trace.calls)
            again += call.line() + "\n";
        QCOMPARE(QString::fromStdString(again), QString::fromStdString(text));
    }

    void read_passesOverWhatIsNoCall()
    {
        const auto trace = trace::read("# vorntrace 1\r\n\n# a customer's unit\n\r\n"
                                       "T1 Buzzer_create() = #1\r\nT1 Buzzer_release(#1)\n");
        QCOMPARE(trace.calls.size(), std::size_t(2));
        QCOMPARE(trace.warning, std::string());
        QVERIFY(trace::read("").calls.empty());
    }

    void read_stopsWhereALineIsCutOff()
    {
        const std::string whole = "T1 Buzzer_create() = #1\n";
        for (const std::string line : lines) {
            for (std::size_t length = 1; length <= line.size(); ++length) {
                const auto part = line.substr(0, length);
                QVERIFY2(refusal(whole + part).empty(), part.c_str());
                const auto trace = trace::read(whole + part);
                QCOMPARE(trace.calls.size(), std::size_t(1));
                QCOMPARE(trace.warning, std::string("line 2 is cut off and left out"));
            }
        }
    }

    void read_refusesOtherVersions()
    {
        QCOMPARE(refusal("# vorntrace 2\n"),
            std::string("line 1: the trace is of version 2; this program reads version 1"));
        QVERIFY(!refusal("# vorntrace 1.5\n").empty());
        QVERIFY(!refusal("# vorntrace \n").empty());
        QVERIFY(refusal("# vorntrace 1\n").empty());
    }

    void read_refusesGarbage_data()
    {
        QTest::addColumn<std::string>("line");
        QTest::addColumn<std::string>("reason");
        const auto row = [](const char *line, const char *reason) {
            QTest::newRow(line) << std::string(line) << std::string(reason);
        };
        row("hello", "\"hello\" is not a time in seconds");
        row("T Buzzer_create() = #1", "\"\" is not the number of a thread");
        row("T1 Buzzer_dance(#1) = 0", "\"Buzzer_dance\" is no operation of the contract");
        row("T1 Buzzer_getVolume() = 0 [1]", "\"#\" is expected before \") = 0 [1]\"");
        row("T1 Buzzer_getVolume(#1) = 0", "\" [\" is expected before \"\"");
        row("T1 Buzzer_getVolume(#1) = 5 [1]", "there is \" [1]\" behind the call");
        row("T1 Buzzer_getVolume(#1) = 0 [65536]",
            "\"65536\" is beyond a number without a sign of 16 bits");
        row("T1 Buzzer_getVolume(#1) = 0 [-1]",
            "\"-1\" is beyond a number without a sign of 16 bits");
        row("T1 Buzzer_getVolume(#1) = 2147483648", "\"2147483648\" is beyond a number of 32 bits");
        row("T1 Buzzer_getVolume(#1) = 99999999999999999999",
            "\"99999999999999999999\" is beyond a number of 32 bits");
        row("T1 Buzzer_setVolume(#1) = 0", "\", \" is expected before \") = 0\"");
        row("T1 Buzzer_setVolume(#1, 1, 2) = 0", "\")\" is expected before \", 2) = 0\"");
        row("T1 Buzzer_setTrigger(#1, 1) = 0", "\"1\" is neither true nor false");
        row("T1 Buzzer_create() = 5", "\"#\" is expected before \"5\"");
        row("T1 Buzzer_create() = #1 fault", "there is \" fault\" behind the call");
        row("T1 Buzzer_release(#1) = 0", "there is \" = 0\" behind the call");
        row("T1 Settings_setString(#1, key, \"\") = 0",
            "\"\"\" is expected before \"key, \"\") = 0\"");
        row("T1 Settings_setString(#1, \"\\q\", \"\") = 0", "a text has an unknown escape");
        row("T1 Settings_setString(#1, \"\\x00\", \"\") = 0", "a text has an unknown escape");
        row("T1 Settings_setString(#1, \"\xE2\x82\xAC\", \"\") = 0",
            "a text has a character that no device's text has");
        row("T1 Settings_setString(#1, \"\xFC\", \"\") = 0",
            "a text has a character that no device's text has");
        row("T1 Settings_setString(#1, \"a\tb\", \"\") = 0",
            "a text has a control character that isn't escaped");
        row("T1 Diagnostics_getTimers(#1) = 0 [1, 2]", "\", \" is expected before \"]\"");
        row("0.5 T1 Buzzer_create() = #1", "\" <\" is expected before \"\"");
        row("T1 Buzzer_create() = #1 <0.5>", "there is \" <0.5>\" behind the call");
        row("-1 T1 Buzzer_create() = #1 <0.5>", "a time is not in its range");
        row("nan T1 Buzzer_create() = #1 <0.5>", "a time is not in its range");
    }

    void read_refusesGarbage()
    {
        QFETCH(std::string, line);
        QFETCH(std::string, reason);
        QCOMPARE(refusal("# vorntrace 1\n\n" + line + "\nT1 Buzzer_create() = #1\n"),
            "line 3: " + reason);
    }

    void question_isTheSameOnEveryHandle()
    {
        const auto questionOf = [](const char *line) {
            return trace::read(std::string(line) + "\n").calls.at(0).question();
        };
        QCOMPARE(
            questionOf("T1 Can_getBaudrate(#1, 2) = 0 [250]"), std::string("Can_getBaudrate(2)"));
        QCOMPARE(questionOf("T3 Can_getBaudrate(#7, 2) = 5"), std::string("Can_getBaudrate(2)"));
        QCOMPARE(
            questionOf("T1 Can_getBaudrate(#0, 2) = 5"), std::string("Can_getBaudrate(#0, 2)"));
        QCOMPARE(questionOf("T1 Buzzer_getVolume(#0) = 5"), std::string("Buzzer_getVolume(#0)"));
        QCOMPARE(questionOf("T1 Buzzer_create() = #0"), std::string("Buzzer_create()"));
        QCOMPARE(questionOf("T1 deviceErrorText(5) = \"\""), std::string("deviceErrorText(5)"));
        QCOMPARE(
            trace::question("Can_getBaudrate", false, "2"), std::string("Can_getBaudrate(#0, 2)"));
    }

    void looksLikeTrace_tellsTraceFromProfile()
    {
        QVERIFY(trace::looksLikeTrace("# vorntrace 1\n"));
        QVERIFY(trace::looksLikeTrace("# vorntrace 2\n"));
        QVERIFY(trace::looksLikeTrace("T1 Buzzer_create() = #1\r\n..."));
        QVERIFY(!trace::looksLikeTrace("{\n \"Buzzer.volume\": 3\n}\n"));
        QVERIFY(!trace::looksLikeTrace(""));
        QVERIFY(!trace::looksLikeTrace("# a list\n"));
    }
};

QTEST_GUILESS_MAIN(TraceTest)
#include "tst_trace.moc"
