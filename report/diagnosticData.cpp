#include "frame/DeviceHandle.h"
#include "frame/processorSensors.h"
#include "frame/workSteps.h"
#include "platform/platform.h"
#include "report/formatters.h"
#include "report/sections.h"

namespace {

constexpr char celsius[] = "\260C"; // the degree sign in Latin-1

struct TimeRow {
    std::uint32_t DiagnosticTimes::*minutes;
    const char *name;
};

constexpr TimeRow timeRows[] = {
    {&DiagnosticTimes::totalRunTime, "Total run time"},
    {&DiagnosticTimes::totalSuspendTime, "Total suspend time"},
    {&DiagnosticTimes::totalHeatTime, "Total heat time"},
    {&DiagnosticTimes::runTime40To60, "Total run time 40-60\260C"},
    {&DiagnosticTimes::runTime60To70, "Total run time 60-70\260C"},
    {&DiagnosticTimes::runTime70To80, "Total run time 70-80\260C"},
    {&DiagnosticTimes::runTimeAbove80, "Total run time above 80\260C"},
};

/** By ProcessorSensorKind. */
constexpr const char *sensorNames[] = {
    "JIDA CPU temp",
    "JIDA box temp",
    "JIDA environment temp",
    "JIDA board temp",
    "JIDA backplane temp",
    "JIDA chipsets temp",
    "JIDA video temp",
    "JIDA other temp",
};

const char *sensorName(std::int32_t kind)
{
    const auto index = std::uint32_t(kind);
    return index < std::size(sensorNames) ? sensorNames[index] : "JIDA unknown temp";
}

QString reasonLines(DiagnosticsHandle diagnostics)
{
    // One variable for the three words: after a failed read it holds what the read before left.
    std::uint16_t word = 0;
    DeviceCode code = Diagnostics_getStartupReason(diagnostics, &word);
    const char *meaning = Diagnostics_startupReasonText(word);
    QString text = formatTextLine(code, "Startup reason", meaning, "");

    code = Diagnostics_getShutDownReason(diagnostics, &word);
    if (word == SHUTDOWN_REASON_NO_ERROR)
        text += formatTextLine(code, "ShutDown reason", "NoError", "");
    else
        text += formatUShortLine(code, "ShutDown reason", word, "");

    code = Diagnostics_getHwErrorStatus(diagnostics, &word);
    meaning = Diagnostics_hwErrorText(word);
    text += formatTextLine(code, "HW error status", meaning, "");
    return text;
}

QString timeLines(DiagnosticsHandle diagnostics)
{
    DiagnosticTimes times{};
    const auto code = Diagnostics_getTimers(diagnostics, &times);
    QString text;
    for (const TimeRow &row : timeRows)
        text += formatMinutesLine(code, row.name, times.*row.minutes);
    return text;
}

QString extremeLines(DiagnosticsHandle diagnostics)
{
    std::int16_t minimum = 0;
    std::int16_t maximum = 0;
    const auto code = Diagnostics_getMinMaxTemp(diagnostics, &minimum, &maximum);
    QString text = formatShortLine(code, "Minimum temp", minimum, celsius);
    text += formatShortLine(code, "Maximum temp", maximum, celsius);
    return text;
}

QString powerCyclesLine(DiagnosticsHandle diagnostics)
{
    std::uint16_t cycles = 0;
    const auto code = Diagnostics_getPowerCycles(diagnostics, &cycles);
    return formatUShortLine(code, "Number of power cycles", cycles, "");
}

/** The processor module's sensors, up to the first that can't be read. */
QString sensorLines(DiagnosticsHandle diagnostics)
{
    QString text;
    const int sensors =
        readProcessorSensors(diagnostics, [&text](int, const ProcessorSensor &sensor) {
            workStep();
            text += formatShortLine(DEVICE_OK, sensorName(sensor.kind), sensor.celsius, celsius);
        });
    if (sensors == mostProcessorSensors)
        text += endlessSensorsText() + QLatin1Char('\n');
    return text;
}

QString temperatureLine(DiagnosticsHandle diagnostics,
    DeviceCode (*read)(DiagnosticsHandle, std::int16_t *), const char *name)
{
    std::int16_t temperature = 0;
    const auto code = read(diagnostics, &temperature);
    return formatShortLine(code, name, temperature, celsius);
}

/** One storage device: the operations that ask for it, and how its block differs. */
struct Storage {
    DeviceCode (*getSerial)(SmartHandle, char *, std::uint32_t);
    DeviceCode (*getLifetime)(SmartHandle, std::uint8_t *);
    DeviceCode (*getInitialTime)(SmartHandle, std::int64_t *);
    const char *serialName;
    const char *initialTimeName;
    const char *end;  ///< after a good time stamp
    bool mayBeAbsent; ///< the code "not supported" stands for an absent device, without a line
};

constexpr Storage storages[] = {
    {Smart_getDeviceSerial, Smart_getRemainingLifetime, Smart_getInitialTime,
        "Device serial number", "getInitialTime", "", false},
    {Smart_getDeviceSerial2, Smart_getRemainingLifetime2, Smart_getInitialTime2,
        "---------------------------------------------------------\nDevice serial number",
        "getInitialTime2", "---------------------------------------------------------\n", true},
};

QString storageLines(SmartHandle smart, const Storage &storage)
{
    // What the report says for the serial number, too.
    const auto notAvailable = QStringLiteral("Estimated remaining lifetime is not available\n");
    const auto absent = [&storage](DeviceCode code) {
        return code == DEVICE_NOT_SUPPORTED && storage.mayBeAbsent;
    };
    QString text;

    char serial[21 + 1] = ""; // one byte more, so that a text without its end stays bounded
    DeviceCode code = storage.getSerial(smart, serial, sizeof serial - 1);
    if (code == DEVICE_OK)
        text += formatTextLine(code, storage.serialName, serial, "");
    else if (!absent(code))
        text += notAvailable;

    std::uint8_t lifetime = 0;
    code = storage.getLifetime(smart, &lifetime);
    if (code == DEVICE_OK)
        text += formatUShortLine(code, "Estimated remaining lifetime", lifetime, "%");
    else if (!absent(code))
        text += notAvailable;

    std::int64_t initialTime = 0;
    code = storage.getInitialTime(smart, &initialTime);
    if (code == DEVICE_OK)
        text += QStringLiteral("Device was initially timestamped on: ") +
                QString::fromStdString(platform::timeStampLine(initialTime)) +
                QString::fromLatin1(storage.end);
    else if (!absent(code))
        text += formatUShortLine(code, storage.initialTimeName, 0, "");
    return text;
}

} // namespace

QString diagnosticDataText()
{
    const DeviceHandle<Diagnostics_create, Diagnostics_release> diagnostics;
    QString text = QStringLiteral("Diagnostic data:\n");
    text += reasonLines(diagnostics);
    text += timeLines(diagnostics);
    text += extremeLines(diagnostics);
    text += powerCyclesLine(diagnostics);
    text += sensorLines(diagnostics);
    text += temperatureLine(diagnostics, Diagnostics_getSSTemp, "SS temp");
    text += temperatureLine(diagnostics, Diagnostics_getPCBTemp, "PCB temp");

    text += QStringLiteral("\n------------------  SMART data  ------------------\n");
    const DeviceHandle<Smart_create, Smart_release> smart;
    for (const Storage &storage : storages)
        text += storageLines(smart, storage);
    return text;
}
