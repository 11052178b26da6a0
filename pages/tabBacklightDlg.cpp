#include "pages/tabBacklightDlg.h"

#include "frame/deviceStatus.h"

namespace {

constexpr int refreshInterval = 500; // milliseconds

// The light filter that goes with this page. It differs from the factory's on purpose: pressing
// Enable once replaces that one.
constexpr std::uint32_t averageWindowSize = 4; // samples
constexpr std::uint32_t rejectDelta = 80;      // lux

} // namespace

tabBacklightDlg::tabBacklightDlg(QWidget *parent)
    : tabDlg(parent)
{
    connect(&refreshTimer, &QTimer::timeout, this, &tabBacklightDlg::refresh);
}

void tabBacklightDlg::showEvent(QShowEvent *)
{
    refreshTimer.start(refreshInterval);
    loadSettings();
}

void tabBacklightDlg::hideEvent(QHideEvent *)
{
    refreshTimer.stop();
}

void tabBacklightDlg::loadSettings()
{
    loadAutomaticParams();
    loadAutomaticFilter();
    loadAutomaticStatus();
    loadLedDimming();
}

void tabBacklightDlg::loadAutomaticParams()
{
    DeviceBool softTransitions = 0;
    double kValue = 0;
    const auto code = Backlight_getAutomaticBLParams(backlight, &softTransitions, &kValue);
    if (code == DEVICE_OK)
        ui->checkBoxABLSoftTransitions->setChecked(softTransitions != 0);
    else
        reportError(code, "getAutomaticBLParams");
}

void tabBacklightDlg::loadAutomaticFilter()
{
    std::uint32_t averageWindow = 0;
    std::uint32_t rejectWindow = 0;
    std::uint32_t rejectDeltaLux = 0;
    std::int32_t samplingMode = 0;
    const auto code = Backlight_getAutomaticBLFilter(
        backlight, &averageWindow, &rejectWindow, &rejectDeltaLux, &samplingMode);
    if (code == DEVICE_OK)
        ui->sliderSensitivity->setValue(int(rejectWindow));
    else
        reportError(code, "getAutomaticBLFilter");
}

void tabBacklightDlg::loadAutomaticStatus()
{
    std::uint8_t running = 0;
    const auto code = Backlight_getAutomaticBLStatus(backlight, &running);
    if (code != DEVICE_OK)
        return reportError(code, "getAutomaticBLStatus");
    ui->checkBoxABLEnable->setChecked(running != 0);
    enableAutomaticSettings(running == 0);
}

void tabBacklightDlg::loadLedDimming()
{
    std::int32_t status = STATUS_OFF;
    const auto code = Backlight_getLedDimming(backlight, &status);
    if (code == DEVICE_OK)
        ui->checkBoxLedDim->setChecked(status == STATUS_ON);
    else
        reportError(code, "getLedDimming");
}

void tabBacklightDlg::refresh()
{
    refreshIntensity();
    ui->labelKLevel->setText(QString::number(ui->sliderSensitivity->value()));
    refreshHealth();
}

void tabBacklightDlg::refreshIntensity()
{
    std::uint8_t intensity = 0;
    const auto code = Backlight_getIntensity(backlight, &intensity);
    if (code == DEVICE_OK) {
        if (intensity == lastIntensity)
            return;
        ui->sliderBacklightLevel->setValue(intensity);
        ui->labelBLLevel->setText(QString::number(intensity));
        lastIntensity = intensity;
    } else if (code == DEVICE_NOT_SUPPORTED) {
        ui->sliderBacklightLevel->hide();
    } else {
        ui->labelBLLevel->setText(QStringLiteral("0"));
        reportError(code, "getIntensity");
        refreshTimer.stop();
    }
}

void tabBacklightDlg::refreshHealth()
{
    DeviceBool healthy = 0;
    const auto code = Backlight_getHealthStatus(backlight, &healthy);
    if (code == DEVICE_OK)
        ui->label_hwstatus1->setText(
            healthy ? QStringLiteral("status: OK") : QStringLiteral("status: ERROR"));
    else if (code != DEVICE_NOT_SUPPORTED)
        ui->label_hwstatus1->setText(QStringLiteral("Error: %1").arg(code));
}

void tabBacklightDlg::backlightChange(int value)
{
    ui->labelBLLevel->setText(QString::number(value));
    reportError(Backlight_setIntensity(backlight, std::uint8_t(value)), "setIntensity");
}

void tabBacklightDlg::sensitivityChange(int value)
{
    // The device takes it with the next start of the automatic control.
    ui->labelKLevel->setText(QString::number(value));
}

void tabBacklightDlg::enableClicked(bool checked)
{
    if (checked) {
        applyAutomaticSettings();
        reportError(Backlight_startAutomaticBL(backlight), "startAutomaticBL");
    } else {
        reportError(Backlight_stopAutomaticBL(backlight), "stopAutomaticBL");
    }
    enableAutomaticSettings(!checked);
}

void tabBacklightDlg::applyAutomaticSettings()
{
    reportError(
        Backlight_setAutomaticBLParams(backlight, ui->checkBoxABLSoftTransitions->isChecked()),
        "setAutomaticBLParams");
    reportError(Backlight_setAutomaticBLFilter(backlight, averageWindowSize,
                    std::uint32_t(ui->sliderSensitivity->value()), rejectDelta, SAMPLING_AUTO),
        "setAutomaticBLFilter");
}

void tabBacklightDlg::ledDimClicked(bool checked)
{
    reportError(Backlight_setLedDimming(backlight, statusOf(checked)), "setLedDimming");
}

void tabBacklightDlg::enableAutomaticSettings(bool enable)
{
    ui->checkBoxABLSoftTransitions->setEnabled(enable);
    ui->sliderSensitivity->setEnabled(enable);
}
