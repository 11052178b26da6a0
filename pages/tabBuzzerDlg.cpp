#include "pages/tabBuzzerDlg.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::uint16_t lowestFrequency = 700; // hertz
constexpr std::uint16_t highestFrequency = 10000;
constexpr std::uint16_t highestVolume = 51; // device steps

} // namespace

tabBuzzerDlg::tabBuzzerDlg(QWidget *parent)
    : tabDlg(parent)
{
    ui->buttonOn->setText(QStringLiteral("Off"));
}

// Nothing guards the slots while the widgets take the device's values: a value out of range is
// thus replaced in the device by the limit that the slider shows.
void tabBuzzerDlg::showEvent(QShowEvent *)
{
    loadFrequency();
    loadVolume();
    loadTrigger();
}

void tabBuzzerDlg::loadFrequency()
{
    std::uint16_t hertz = 0;
    const auto code = Buzzer_getFrequency(buzzer, &hertz);
    if (code != DEVICE_OK)
        return hideOrReport(code, "getFrequency", {ui->sliderFreq});
    hertz = std::clamp(hertz, lowestFrequency, highestFrequency);
    ui->sliderFreq->setValue(hertz);
    showFrequency(hertz);
}

void tabBuzzerDlg::loadVolume()
{
    std::uint16_t volume = 0;
    const auto code = Buzzer_getVolume(buzzer, &volume);
    if (code != DEVICE_OK)
        return hideOrReport(code, "getVolume", {ui->sliderVol});
    volume = std::min(volume, highestVolume);
    ui->sliderVol->setValue(volume);
    showVolume(volume);
}

void tabBuzzerDlg::loadTrigger()
{
    DeviceBool sounding = 0;
    const auto code = Buzzer_getTrigger(buzzer, &sounding);
    if (code == DEVICE_OK)
        showOnOff(ui->buttonOn, sounding != 0);
    else
        hideOrReport(code, "getTrigger", {ui->buttonOn});
}

void tabBuzzerDlg::buttonOnToggled(bool on)
{
    const auto code = Buzzer_setTrigger(buzzer, on);
    if (code == DEVICE_OK)
        showOnOff(ui->buttonOn, on);
    else
        reportError(code, "setTrigger");
}

void tabBuzzerDlg::sliderFreqChanged(int hertz)
{
    showFrequency(hertz);
    reportError(Buzzer_setFrequency(buzzer, std::uint16_t(hertz)), "setFrequency");
}

void tabBuzzerDlg::sliderVolChanged(int volume)
{
    showVolume(volume);
    reportError(Buzzer_setVolume(buzzer, std::uint16_t(volume)), "setVolume");
}

void tabBuzzerDlg::showFrequency(int hertz)
{
    ui->labelFreq->setText(QStringLiteral("Freq\n %1 Hz").arg(hertz));
}

void tabBuzzerDlg::showVolume(int volume)
{
    ui->labelVolume->setText(QStringLiteral("Volume\n %1").arg(volume));
}
