#include "pages/tabLightSensorDlg.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int updateInterval = 500; // milliseconds

constexpr QLatin1String notRunning("Light Sensor is not running");

QString rangeText(std::int32_t range)
{
    switch (range) {
    case LIGHT_RANGE_STANDARD:
        return QStringLiteral("Range standard");
    case LIGHT_RANGE_EXTENDED:
        return QStringLiteral("Range extended");
    default:
        return QStringLiteral("Unknown range");
    }
}

} // namespace

tabLightSensorDlg::tabLightSensorDlg(QWidget *parent)
    : tabDlg(parent)
{
    // The index of an item is the device's number of that sampling mode.
    ui->comboBoxSamplingsMode->addItems({QStringLiteral("Standard range"),
        QStringLiteral("Extended range"), QStringLiteral("Auto range")});
    ui->editIlumination->setText(notRunning);
    connect(&updateTimer, &QTimer::timeout, this, &tabLightSensorDlg::updateIlluminance);
}

void tabLightSensorDlg::showEvent(QShowEvent *)
{
    // A first start only finds out whether the sensor can be had.
    const auto code = startAverageCalc();
    if (code == DEVICE_AUTOMATIC_BACKLIGHT_RUNS) {
        refuse(QStringLiteral("Cannot be started when automatic backlight is running"));
        reportError(code,
            "startAverageCalc.\r\nThe light sensor cannot be started when automatic backlight is "
            "running.\r\nError");
    } else if (code != DEVICE_OK) {
        refuse(QStringLiteral("Error: startAverageCalc"));
        reportError(code, "startAverageCalc");
    } else {
        ui->pushButtonOn->setEnabled(true);
        ui->pushButtonOn->setToolTip(QString());
        // Only clears the way for the start that counts, which tells if something is wrong.
        LightSensor_stopAverageCalc(lightSensor);
        showOnOff(ui->pushButtonOn, startMeasurement());
    }
}

void tabLightSensorDlg::hideEvent(QHideEvent *)
{
    stopMeasurement();
}

void tabLightSensorDlg::onClicked(bool checked)
{
    if (checked)
        showOnOff(ui->pushButtonOn, startMeasurement());
    else
        stopMeasurement();
}

DeviceCode tabLightSensorDlg::startAverageCalc()
{
    return LightSensor_startAverageCalc(lightSensor,
        std::uint32_t(ui->spinBoxAverageWndSize->value()),
        std::uint32_t(ui->spinBoxRejectWndSize->value()),
        std::uint32_t(ui->spinBoxRejectDelta->value()),
        std::max<std::int32_t>(ui->comboBoxSamplingsMode->currentIndex(), SAMPLING_STANDARD));
}

bool tabLightSensorDlg::startMeasurement()
{
    const auto code = startAverageCalc();
    if (code != DEVICE_OK) {
        reportError(code, "startAverageCalc");
        return false;
    }
    updateTimer.start(updateInterval);
    return true;
}

void tabLightSensorDlg::stopMeasurement()
{
    reportError(LightSensor_stopAverageCalc(lightSensor), "stopAverageCalc");
    updateTimer.stop();
    showOnOff(ui->pushButtonOn, false);
    ui->editIlumination->setText(notRunning);
    lastText = notRunning;
}

void tabLightSensorDlg::refuse(const QString &reason)
{
    showOnOff(ui->pushButtonOn, false);
    ui->pushButtonOn->setEnabled(false);
    ui->pushButtonOn->setToolTip(reason);
}

void tabLightSensorDlg::updateIlluminance()
{
    QString text = readIlluminance();
    readRange(text);
    if (text == lastText)
        return;
    ui->editIlumination->setText(text);
    lastText = text;
}

QString tabLightSensorDlg::readIlluminance()
{
    std::uint16_t lux = 0;
    const auto code = LightSensor_getIlluminance(lightSensor, &lux);
    if (code == DEVICE_OK)
        return QStringLiteral("%1 Lux, ").arg(lux);
    if (code == DEVICE_NOT_SUPPORTED) {
        ui->groupBoxLightsensor->hide();
    } else {
        reportError(code, "getIlluminance");
        stopMeasurement();
    }
    return QString();
}

void tabLightSensorDlg::readRange(QString &text)
{
    std::int32_t range = LIGHT_RANGE_STANDARD;
    const auto code = LightSensor_getOperatingRange(lightSensor, &range);
    if (code == DEVICE_OK) {
        text += rangeText(range);
    } else if (code != DEVICE_NOT_SUPPORTED) {
        reportError(code, "getOperatingRange");
        text = notRunning;
        stopMeasurement();
    }
}
