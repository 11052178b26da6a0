#include "tests/support/expected.h"
#include "tests/support/failureCodes.h"
#include "tests/support/unit.h"

#include <atomic>
#include <thread>
#include <vector>

using namespace support;

/** The contract itself: handles, pointers, faults, delays, journal and threads. */
class VirtualUnitTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { freshUnit(); }

    void operationsAreTheContracts()
    {
        QStringList expected;
        for (const auto &operation : allOperations)
            expected << QString::fromLatin1(operation.name);
        QStringList found;
        for (const auto &name : virtualunit::operations())
            found << text(name);
        QCOMPARE(found, expected);
    }

    void refusesWrongHandles_data()
    {
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < allOperations.size(); ++i)
            QTest::newRow(allOperations[i].name) << int(i);
    }

    void refusesWrongHandles()
    {
        QFETCH(int, index);
        const auto &operation = allOperations[std::size_t(index)];
        const bool isBuzzer = QByteArray(operation.name).startsWith("Buzzer_");
        const void *foreign = isBuzzer ? handleFor("Adc_") : handleFor("Buzzer_");
        const void *released = handleFor(operation.name);
        for (const auto &family : allFamilies) {
            if (QByteArray(operation.name).startsWith(QByteArray(family.name) + '_'))
                family.release(released);
        }
        int garbage = 0;
        for (const void *handle : {static_cast<const void *>(nullptr), foreign, released,
                 static_cast<const void *>(&garbage)}) {
            Arguments arguments;
            arguments.out.fill(0xA5);
            const auto untouched = arguments.out;
            QCOMPARE(operation.call(handle, arguments), invalidHandle);
            QVERIFY(arguments.out == untouched);
        }
    }

    void refusesNullPointers_data()
    {
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < allOperations.size(); ++i) {
            if (allOperations[i].hasPointers)
                QTest::newRow(allOperations[i].name) << int(i);
        }
    }

    void refusesNullPointers()
    {
        QFETCH(int, index);
        const auto &operation = allOperations[std::size_t(index)];
        const void *handle = handleFor(operation.name);
        Arguments arguments;
        arguments.nullPointers = true;
        QCOMPARE(operation.call(handle, arguments), missingArgument);
    }

    void releaseOfAnythingIsHarmless()
    {
        int garbage = 0;
        for (const auto &family : allFamilies) {
            const void *foreign =
                qstrcmp(family.name, "Adc") == 0 ? handleFor("Buzzer_") : handleFor("Adc_");
            const void *handle = family.create();
            family.release(nullptr);
            family.release(&garbage);
            family.release(foreign);
            family.release(handle);
            family.release(handle);
        }
        // Still there after another family was told to release it.
        const auto adc = Adc_create();
        Buzzer_release(reinterpret_cast<BuzzerHandle>(adc));
        double volts = 0;
        QCOMPARE(Adc_getVoltage(adc, 0, &volts), DEVICE_OK);
        Adc_release(adc);
    }

    void textOperationsGiveTexts()
    {
        for (const auto code : {0, 1, 2, 18, 20, 5, -1, 12345, INT32_MIN})
            QVERIFY(qstrlen(deviceErrorText(code)) > 0);
        for (const auto number : {0, 1, 2, 31, 65535}) {
            QVERIFY(qstrlen(Diagnostics_startupReasonText(uint16_t(number))) > 0);
            QVERIFY(qstrlen(Diagnostics_hwErrorText(uint16_t(number))) > 0);
        }
    }

    void faultsCount()
    {
        const Buzzer buzzer;
        const auto codes = [&buzzer](int calls) {
            QList<int> list;
            for (int i = 0; i < calls; ++i) {
                uint16_t volume = 99;
                list << Buzzer_getVolume(buzzer, &volume);
                if (list.constLast() != DEVICE_OK && volume != 99)
                    qFatal("an out value was touched");
            }
            return list;
        };
        require(virtualunit::setFault("Buzzer_getVolume", 5, 2, 1));
        QCOMPARE(codes(5), QList<int>({0, 5, 5, 0, 0}));
        require(virtualunit::setFault("Buzzer_getVolume", -1, 0, 2));
        QCOMPARE(codes(6), QList<int>({0, 0, -1, -1, -1, -1}));
        require(virtualunit::setFault("Buzzer_getVolume", 0));
        QCOMPARE(codes(2), QList<int>({0, 0}));
        require(virtualunit::setFault("Buzzer_getVolume", 18));
        QCOMPARE(codes(2), QList<int>({18, 18}));
        require(virtualunit::clearFaults());
        QCOMPARE(codes(2), QList<int>({0, 0}));
        QVERIFY(!virtualunit::setFault("Buzzer_getLoudness", 5).empty());
        QVERIFY(!virtualunit::setFault("Buzzer_create", 5).empty());

        // A call that meets a fault does nothing, and one on a wrong handle meets none.
        require(virtualunit::setFault("Buzzer_setVolume", 5, 1));
        put("Buzzer.volume", "7");
        QCOMPARE(Buzzer_setVolume(nullptr, 9), invalidHandle);
        QCOMPARE(Buzzer_setVolume(buzzer, 9), 5);
        QCOMPARE(value("Buzzer.volume"), "7"_s);
        QCOMPARE(Buzzer_setVolume(buzzer, 9), DEVICE_OK);
    }

    /** Arguments, results and out values as the journal has them, of each operation once. */
    void everyOperationInTheJournal()
    {
        freshUnit();
        QStringList lines;
        for (const auto &operation : allOperations) {
            const void *handle = handleFor(operation.name);
            Arguments arguments;
            virtualunit::startJournal();
            operation.call(handle, arguments);
            for (const virtualunit::Call &call : virtualunit::takeJournal())
                lines << support::text(call.operation + '(' + call.arguments +
                                       ") = " + call.result + " [" + call.outs + ']');
            virtualunit::stopJournal();
        }
        QCOMPARE(lines, expectedLines(VORN_SOURCE_DIR "/tests/expected/journal.txt"_s, lines));
    }

    void everyValue()
    {
        freshUnit();
        std::vector<virtualunit::Value> all;
        require(virtualunit::list(all));
        QStringList lines;
        for (const auto &[name, value, range, description] : all)
            lines << support::text(name + " = " + value + " [" + range + "] " + description);
        QCOMPARE(lines, expectedLines(VORN_SOURCE_DIR "/tests/expected/values.txt"_s, lines));
    }

    void faultsOnEveryOperation_data() { refusesWrongHandles_data(); }

    void faultsOnEveryOperation()
    {
        QFETCH(int, index);
        const auto &operation = allOperations[std::size_t(index)];
        const void *handle = handleFor(operation.name);
        std::vector<int> codes(std::begin(failureCodes), std::end(failureCodes));
        codes.push_back(INT32_MAX);
        for (const int code : codes) {
            require(virtualunit::setFault(operation.name, code));
            Arguments arguments;
            arguments.out.fill(0xA5);
            const auto untouched = arguments.out;
            QCOMPARE(operation.call(handle, arguments), code);
            QVERIFY(arguments.out == untouched);
        }
    }

    void delays()
    {
        const Buzzer buzzer;
        uint16_t volume = 0;
        require(virtualunit::setDelay("Buzzer_getVolume", 60));
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), DEVICE_OK);
        QVERIFY(timer.elapsed() >= 60);
        // Others go on meanwhile. The first tenth is left out, in which the slow call may not have
        // begun.
        require(virtualunit::setDelay("Buzzer_getVolume", 1000));
        std::atomic<bool> over{false};
        timer.start();
        std::thread slow([&over] {
            const Buzzer other;
            uint16_t ignored = 0;
            Buzzer_getVolume(other, &ignored);
            over = true;
        });
        int reads = 0;
        while (!over && reads < 100) {
            const bool counts = timer.elapsed() >= 100;
            read(Buzzer_getFrequency, BuzzerHandle(buzzer));
            reads += counts && !over;
        }
        slow.join();
        QCOMPARE(reads, 100);
        QVERIFY(timer.elapsed() >= 900);
        require(virtualunit::setDelay("Buzzer_getVolume", 0));
        timer.start();
        QCOMPARE(Buzzer_getVolume(buzzer, &volume), DEVICE_OK);
        QVERIFY(timer.elapsed() < 500);
        QVERIFY(!virtualunit::setDelay("Nobody_getVolume", 1).empty());
    }

    void journalLines()
    {
        virtualunit::startJournal();
        const auto buzzer = Buzzer_create();
        const auto second = Buzzer_create();
        uint16_t volume = 0;
        DeviceBool sounding = 1;
        Buzzer_getVolume(buzzer, &volume);
        Buzzer_setVolume(second, 30);
        Buzzer_setVolume(second, 52);
        Buzzer_getTrigger(buzzer, &sounding);
        Buzzer_setTrigger(buzzer, true);
        Buzzer_getVolume(nullptr, &volume);
        Buzzer_getVolume(buzzer, nullptr);
        Buzzer_release(second);
        Buzzer_release(buzzer);
        Buzzer_release(buzzer);
        const auto led = FrontLED_create();
        FrontLED_setSignal(led, 0.2, 50);
        double hertz = 0;
        uint8_t duty = 0;
        FrontLED_getSignal(led, &hertz, &duty);
        const auto settings = Settings_create();
        char buffer[20];
        Settings_setString(settings, "a \"key\"", "1\n\xE4");
        Settings_getString(settings, "a \"key\"", buffer, sizeof buffer);
        Settings_setString(settings, nullptr, "x");
        const auto diagnostics = Diagnostics_create();
        put("Diagnostics.pmTemp0", "-12");
        int16_t celsius = 0;
        int32_t kind = 0;
        Diagnostics_getPMTemp(diagnostics, 0, &celsius, &kind);
        put("Smart.initialTime", "1647504000");
        int64_t seconds = 0;
        const auto smart = Smart_create();
        Smart_getInitialTime(smart, &seconds);
        std::thread other([] {
            const Can can;
            Can_setBaudrate(can, 2, 250);
        });
        other.join();
        const std::string errorText = deviceErrorText(5);

        QStringList lines;
        for (const auto &call : virtualunit::takeJournal())
            lines << text(call.text());
        QCOMPARE(lines.join(QLatin1Char('\n')),
            QStringLiteral("T1 Buzzer_create() = #1\n"
                           "T1 Buzzer_create() = #2\n"
                           "T1 Buzzer_getVolume(#1) = 0 [20]\n"
                           "T1 Buzzer_setVolume(#2, 30) = 0\n"
                           "T1 Buzzer_setVolume(#2, 52) = 5\n"
                           "T1 Buzzer_getTrigger(#1) = 0 [false]\n"
                           "T1 Buzzer_setTrigger(#1, true) = 0\n"
                           "T1 Buzzer_getVolume(#0) = 3\n"
                           "T1 Buzzer_getVolume(#1) = 4\n"
                           "T1 Buzzer_release(#2)\n"
                           "T1 Buzzer_release(#1)\n"
                           "T1 Buzzer_release(#0)\n"
                           "T1 FrontLED_create() = #1\n"
                           "T1 FrontLED_setSignal(#1, 0.2, 50) = 0\n"
                           "T1 FrontLED_getSignal(#1) = 0 [0.2, 50]\n"
                           "T1 Settings_create() = #1\n"
                           "T1 Settings_setString(#1, \"a \\\"key\\\"\", \"1\\n\u00e4\") = 0\n"
                           "T1 Settings_getString(#1, \"a \\\"key\\\"\", 20) = 0 [\"1\\n\u00e4\"]\n"
                           "T1 Settings_setString(#1, null, \"x\") = 4\n"
                           "T1 Diagnostics_create() = #1\n"
                           "T1 Diagnostics_getPMTemp(#1, 0) = 0 [-12, 0]\n"
                           "T1 Smart_create() = #1\n"
                           "T1 Smart_getInitialTime(#1) = 0 [1647504000]\n"
                           "T2 Can_create() = #1\n"
                           "T2 Can_setBaudrate(#1, 2, 250) = 0\n"
                           "T2 Can_release(#1)\n"
                           "T1 deviceErrorText(5) = \"%1\"")
                .arg(text(errorText)));
        QVERIFY(virtualunit::takeJournal().empty());
    }

    void journalNumbersStartAnew()
    {
        const Buzzer early;
        virtualunit::startJournal();
        const Buzzer late;
        uint16_t volume = 0;
        Buzzer_getVolume(early, &volume);
        Buzzer_getVolume(late, &volume);
        auto calls = virtualunit::takeJournal();
        QCOMPARE(calls.size(), std::size_t(3));
        QCOMPARE(text(calls[0].result), "#1"_s);
        QCOMPARE(calls[1].handle, 2U);
        QCOMPARE(calls[2].handle, 1U);
        QCOMPARE(calls[2].thread, 1U);
        virtualunit::stopJournal();
        Buzzer_getVolume(late, &volume);
        QVERIFY(virtualunit::takeJournal().empty());
    }

    void threadsWithHandlesOfTheirOwn()
    {
        const QTemporaryDir folder;
        require(virtualunit::open(folder.filePath("unit"_s).toStdString()));
        virtualunit::startJournal();
        std::atomic<int> failures{0};
        const auto work = [&failures](uint8_t channel) {
            for (int i = 0; i < 200; ++i) {
                const Can can;
                const Battery battery;
                uint16_t rate = 0;
                const auto wanted = uint16_t(100 + i);
                DeviceBool available = 0;
                if (Can_setBaudrate(can, channel, wanted) != DEVICE_OK ||
                    Can_getBaudrate(can, channel, &rate) != DEVICE_OK || rate != wanted ||
                    Battery_isAvailable(battery, &available) != DEVICE_OK || available == 0)
                    ++failures;
            }
        };
        std::vector<std::thread> threads;
        for (uint8_t channel = 1; channel <= 4; ++channel)
            threads.emplace_back(work, channel);
        for (auto &thread : threads)
            thread.join();
        QCOMPARE(failures.load(), 0);
        QCOMPARE(virtualunit::takeJournal().size(), std::size_t(4 * 200 * 7));
        virtualunit::stopJournal();
    }
};

QTEST_GUILESS_MAIN(VirtualUnitTest)
#include "tst_virtualunit.moc"
