#include "pages/tabPowerDlg.h"

#include "platform/platform.h"

#include <array>
#include <memory>
#include <vector>

namespace {

// Indices of the mode list.
constexpr int startupMode = 0;
constexpr int currentMode = 1;

/**
 * The battery threads of the program. The page that starts one neither waits for it nor deletes
 * it; that is done when the application object goes, after the last window.
 */
std::vector<std::unique_ptr<MyThread>> &monitors()
{
    static std::vector<std::unique_ptr<MyThread>> threads;
    return threads;
}

void endMonitors()
{
    batteryKeepRunning.store(0, std::memory_order_relaxed);
    for (const auto &thread : monitors())
        thread->wait();
    monitors().clear();
}

MyThread *newMonitor()
{
    if (monitors().empty())
        qAddPostRoutine(endMonitors);
    return monitors().emplace_back(std::make_unique<MyThread>()).get();
}

/** The boxes of the video channels, in the order of the mask's bits. */
std::array<QCheckBox *, 4> videoBoxes(const Form<Ui::tabPower> &ui)
{
    return {ui->checkBoxVideo_1, ui->checkBoxVideo_2, ui->checkBoxVideo_3, ui->checkBoxVideo_4};
}

QString batteryFailure(const char *what, DeviceCode code)
{
    return QStringLiteral("Could not get battery %1. Error(%2) %3\n")
        .arg(QString::fromLatin1(what), QString::number(code),
            QString::fromLatin1(deviceErrorText(code)));
}

QString batteryErrorText(DeviceCode code, std::int32_t status)
{
    if (code == DEVICE_OK) {
        switch (status) {
        case BATTERY_NO_ERROR:
            return {};
        case BATTERY_THERMISTOR:
            return QStringLiteral("Battery error! The thermistor temp sensor is not working\n");
        case BATTERY_SECONDARY_SENSOR:
            return QStringLiteral("Battery error! The secondary temp sensor is not working\n");
        case BATTERY_CHARGING_FAILED:
            return QStringLiteral("Battery error! Charging failed\n");
        case BATTERY_OVERCURRENT:
            return QStringLiteral("Battery error! Overcurrent detected\n");
        case BATTERY_NOT_INITIATED:
            return QStringLiteral("Battery error! Battery not initiated\n");
        default: // a state unknown to us is told with the code of the call that gave it
            break;
        }
    }
    return batteryFailure("error status code", code);
}

} // namespace

tabPowerDlg::tabPowerDlg(QWidget *parent)
    : tabDlg(parent)
    , monitor(newMonitor())
{
    ui->comboBoxMode->insertItem(startupMode, QStringLiteral("Power settings at start-up"));
    ui->comboBoxMode->insertItem(currentMode, QStringLiteral("Current power settings"));
    loadCurrentSettings();

    monitor->start(QThread::InheritPriority);
    // It sets its flag itself; a stop that came before that would be lost. Without a battery it has
    // cleared the flag again and is about to end.
    while (batteryKeepRunning.load(std::memory_order_relaxed) == 0 && !monitor->isFinished())
        platform::pause(1);
    connect(monitor, &MyThread::newLevel, ui->progressBar, &QProgressBar::setValue);
    connect(monitor, &MyThread::newLabel, ui->label_4, &QLabel::setText);
    connect(monitor, &MyThread::newCharge, ui->label_3, &QLabel::setText);
    constructed = 1;
}

tabPowerDlg::~tabPowerDlg()
{
    batteryKeepRunning.store(0, std::memory_order_relaxed);
    power.release();
    battery.release();
    config.release();
}

void tabPowerDlg::showEvent(QShowEvent *)
{
    ui->comboBoxMode->setCurrentIndex(currentMode);
    loadCurrentSettings();

    DeviceBool available = 0;
    if (Battery_isAvailable(battery, &available) == DEVICE_OK && available)
        return loadBatteryDetails();
    ui->tabWidget_2Page2->setEnabled(false);
    ui->tabWidget_2->removeTab(1);
}

void tabPowerDlg::modeIndexChanged(int index)
{
    if (!constructed)
        return;
    if (index == startupMode)
        loadStartupSettings();
    else if (index == currentMode)
        loadCurrentSettings();
}

void tabPowerDlg::loadCurrentSettings()
{
    std::int32_t status = STATUS_OFF;
    DeviceCode code = Power_getCanPowerStatus(power, &status);
    showSwitch(code, status, "getCanPowerStatus", ui->checkBoxCAN);
    code = Power_getExtFanPowerStatus(power, &status);
    showSwitch(code, status, "getExtFanPowerStatus", ui->checkBoxExtFan);
    std::uint8_t mask = 0;
    code = Power_getVideoPowerStatus(power, &mask);
    showVideo(code, mask);
}

void tabPowerDlg::loadStartupSettings()
{
    std::int32_t status = STATUS_OFF;
    DeviceCode code = Config_getCanStartupPowerConfig(config, &status);
    showSwitch(code, status, "getCanStartupPowerConfig", ui->checkBoxCAN);
    code = Config_getExtFanStartupPowerConfig(config, &status);
    showSwitch(code, status, "getExtFanStartupPowerConfig", ui->checkBoxExtFan);
    std::uint8_t mask = 0;
    code = Config_getVideoStartupPowerConfig(config, &mask);
    showVideo(code, mask);
}

void tabPowerDlg::showSwitch(
    DeviceCode code, std::int32_t status, const char *operation, QCheckBox *box)
{
    if (code == DEVICE_OK) {
        box->setChecked(status == STATUS_ON);
        box->show();
        box->setEnabled(true);
        return;
    }
    hideOrReport(code, operation, {box});
    if (code != DEVICE_NOT_SUPPORTED)
        box->setEnabled(false);
}

void tabPowerDlg::showVideo(DeviceCode code, std::uint8_t mask)
{
    // One name for the state at start-up and the state now.
    if (code != DEVICE_OK && code != DEVICE_NOT_SUPPORTED)
        reportError(code, "getVideoPowerStatus");
    for (std::size_t channel = 0; channel < videoBoxes(ui).size(); ++channel) {
        QCheckBox *box = videoBoxes(ui)[channel];
        if (code == DEVICE_OK) {
            box->setChecked((mask >> channel) & 1);
            box->show();
            box->setEnabled(true);
        } else if (code == DEVICE_NOT_SUPPORTED) {
            box->hide();
        } else {
            box->setEnabled(false);
        }
    }
}

// No control is connected to this slot at present; units may switch the backlight by it.
void tabPowerDlg::BacklightClicked(bool on)
{
    reportError(Power_setBLPowerStatus(power, on ? STATUS_ON : STATUS_OFF), "setBLPowerStatus");
}

void tabPowerDlg::CANClicked(bool on)
{
    const std::int32_t status = on ? STATUS_ON : STATUS_OFF;
    const int mode = ui->comboBoxMode->currentIndex();
    if (mode == startupMode)
        reportError(Config_setCanStartupPowerConfig(config, status), "setCanPowerStatus");
    else if (mode == currentMode)
        reportError(Power_setCanPowerStatus(power, status), "setCanPowerStatus");
}

void tabPowerDlg::ExtFanClicked(bool on)
{
    const std::int32_t status = on ? STATUS_ON : STATUS_OFF;
    const int mode = ui->comboBoxMode->currentIndex();
    if (mode == startupMode)
        reportError(Config_setExtFanStartupPowerConfig(config, status), "setExtFanPowerStatus");
    else if (mode == currentMode)
        reportError(Power_setExtFanPowerStatus(power, status), "setExtFanPowerStatus");
}

void tabPowerDlg::VideoClicked()
{
    unsigned mask = 0;
    for (std::size_t channel = 0; channel < videoBoxes(ui).size(); ++channel)
        mask |= unsigned(videoBoxes(ui)[channel]->isChecked()) << channel;
    const int mode = ui->comboBoxMode->currentIndex();
    if (mode == startupMode)
        reportError(
            Config_setVideoStartupPowerConfig(config, std::uint8_t(mask)), "setVideoPowerStatus");
    else if (mode == currentMode)
        reportError(Power_setVideoPowerStatus(power, std::uint8_t(mask)), "setVideoPowerStatus");
}

void tabPowerDlg::loadBatteryDetails()
{
    std::int32_t status = BATTERY_NO_ERROR;
    DeviceCode code = Battery_getHwErrorStatus(battery, &status);
    ui->label_2->setText(batteryErrorText(code, status));

    std::int32_t charging = CHARGING_UNKNOWN;
    code = Battery_getChargingStatus(battery, &charging);
    ui->label_3->setText(
        code == DEVICE_OK ? chargingText(charging) : batteryFailure("charging status", code));

    std::int32_t source = POWER_EXTERNAL;
    code = Battery_getPowerSource(battery, &source);
    ui->label_4->setText(
        code == DEVICE_OK ? powerSourceText(source) : QStringLiteral("Power source: Unknown"));

    std::uint8_t percent = 0;
    code = Battery_getVoltageLevel(battery, &percent);
    ui->progressBar->setValue(code == DEVICE_OK ? percent : 0);
    if (code != DEVICE_OK)
        ui->label->setText(batteryFailure("power status", code));
}
