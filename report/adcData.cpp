#include "frame/DeviceHandle.h"
#include "report/formatters.h"
#include "report/sections.h"

namespace {

struct Rail {
    std::uint32_t channel;
    const char *name;
};

constexpr Rail rails[] = {
    {0, "Voltage 24V in"}, // channel 1 does not exist
    {2, "Voltage 12V"},
    {3, "Voltage 12V video"},
    {4, "Voltage 5V"},
    {5, "Voltage 3.3V"},
    {6, "Voltage TFT"},
    {7, "Voltage 5V STB"},
    {8, "Voltage 1.9V"},
    {9, "Voltage 1.8V"},
    {10, "Voltage 1.5V"},
    {11, "Voltage 1.2V"},
    {12, "Voltage 1.05V"},
    {13, "Voltage 1.0V"},
    {14, "Voltage 0.9V"},
    {15, "Voltage SS VREF"},
    {16, "Voltage 24V Backup"},
    {17, "Voltage 2.5V"},
    {18, "Voltage 1.1V"},
    {19, "Voltage 1.3V PER"},
    {20, "Voltage 1.3V VDDA"},
    {21, "Voltage 3V3 STBY"},
    {22, "Voltage VPMIC"},
    {23, "Voltage VMAIN"},
};

} // namespace

QString adcDataText()
{
    const DeviceHandle<Adc_create, Adc_release> adc;
    QString text = QStringLiteral("ADC values\n");
    for (const Rail &rail : rails) {
        double volts = 0;
        const auto code = Adc_getVoltage(adc, rail.channel, &volts);
        text += formatVoltageLine(code, rail.name, volts, "V");
    }
    return text;
}
