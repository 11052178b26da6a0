#include "pages/tabPowerDlg.h"

#include "frame/batteryTexts.h"
#include "frame/deviceStatus.h"
#include "frame/endWithApplication.h"
#include "frame/reportError.h"
#include "pages/MyThread.h"
#include "pages/bitBoxes.h"
#include "platform/platform.h"

namespace {

// Indices of the mode list.
constexpr int startupMode = 0;
constexpr int currentMode = 1;

BitBoxes videoBoxes(const Form<Ui::tabPower> &ui)
{
    return {ui->checkBoxVideo_1, ui->checkBoxVideo_2, ui->checkBoxVideo_3, ui->checkBoxVideo_4};
}

QString batteryErrorText(DeviceCode code, std::int32_t status)
{
    if (code == DEVICE_OK && status == BATTERY_NO_ERROR)
        return {};
    const QString line = code == DEVICE_OK ? batteryErrorLine(status) : QString();
    // A state unknown to us is told with the code of the call that gave it.
    return line.isEmpty() ? batteryFailureLine("battery error status code", code) : line;
}

} // namespace

tabPowerDlg::tabPowerDlg(QWidget *parent)
    : tabDlg(parent)
{
    ui->comboBoxMode->insertItem(startupMode, QStringLiteral("Power settings at start-up"));
    ui->comboBoxMode->insertItem(currentMode, QStringLiteral("Current power settings"));
    loadCurrentSettings();

    monitor = new MyThread;
    endWithApplication(monitor, [] { batteryKeepRunning.store(0, std::memory_order_relaxed); });
    monitor->start(QThread::InheritPriority);
    // It sets its flag itself; a stop that came before that would be lost. Without a battery it has
    // cleared the flag again and is about to end, and on a system without a thread to spare it
    // never began.
    while (batteryKeepRunning.load(std::memory_order_relaxed) == 0 && monitor->isRunning())
        platform::pause(1);
    connect(monitor, &MyThread::newLevel, ui->progressBar, &QProgressBar::setValue);
    connect(monitor, &MyThread::newLabel, ui->label_4, &QLabel::setText);
    connect(monitor, &MyThread::newCharge, ui->label_3, &QLabel::setText);
    constructed = 1;
}

tabPowerDlg::~tabPowerDlg()
{
    batteryKeepRunning.store(0, std::memory_order_relaxed);
    if (monitor)
        monitor->requestInterruption();
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
    loadSwitch(Power_getCanPowerStatus, power, "getCanPowerStatus", ui->checkBoxCAN);
    loadSwitch(Power_getExtFanPowerStatus, power, "getExtFanPowerStatus", ui->checkBoxExtFan);
    loadVideo(Power_getVideoPowerStatus, power);
}

void tabPowerDlg::loadStartupSettings()
{
    loadSwitch(
        Config_getCanStartupPowerConfig, config, "getCanStartupPowerConfig", ui->checkBoxCAN);
    loadSwitch(Config_getExtFanStartupPowerConfig, config, "getExtFanStartupPowerConfig",
        ui->checkBoxExtFan);
    loadVideo(Config_getVideoStartupPowerConfig, config);
}

template <typename Query, typename Handle>
void tabPowerDlg::loadSwitch(
    Query query, const Handle &handle, const char *operation, QCheckBox *box)
{
    std::int32_t status = STATUS_OFF;
    const auto code = query(handle, &status);
    if (code == DEVICE_OK)
        box->setChecked(status == STATUS_ON);
    showAnswer(code, operation, {box});
}

template <typename Query, typename Handle>
void tabPowerDlg::loadVideo(Query query, const Handle &handle)
{
    std::uint8_t mask = 0;
    const auto code = query(handle, &mask);
    const auto boxes = videoBoxes(ui);
    if (code == DEVICE_OK)
        checkBits(boxes, mask);
    // One name for the state at start-up and the state now.
    showAnswer(code, "getVideoPowerStatus", {boxes.begin(), boxes.end()});
}

void tabPowerDlg::showAnswer(
    DeviceCode code, const char *operation, const std::vector<QCheckBox *> &boxes)
{
    if (code == DEVICE_NOT_SUPPORTED) {
        for (QCheckBox *box : boxes)
            box->hide();
        return;
    }
    reportError(code, operation);
    for (QCheckBox *box : boxes) {
        if (code == DEVICE_OK)
            box->show();
        box->setEnabled(code == DEVICE_OK);
    }
}

// No control is connected to this slot at present; units may switch the backlight by it.
void tabPowerDlg::BacklightClicked(bool on)
{
    reportError(Power_setBLPowerStatus(power, statusOf(on)), "setBLPowerStatus");
}

void tabPowerDlg::CANClicked(bool on)
{
    write(Config_setCanStartupPowerConfig, Power_setCanPowerStatus, statusOf(on),
        "setCanPowerStatus");
}

void tabPowerDlg::ExtFanClicked(bool on)
{
    write(Config_setExtFanStartupPowerConfig, Power_setExtFanPowerStatus, statusOf(on),
        "setExtFanPowerStatus");
}

void tabPowerDlg::VideoClicked()
{
    write(Config_setVideoStartupPowerConfig, Power_setVideoPowerStatus, checkedBits(videoBoxes(ui)),
        "setVideoPowerStatus");
}

// The mode says which of the two it is; a failure has one name in both.
template <typename SetAtStartup, typename SetNow, typename Value>
void tabPowerDlg::write(
    SetAtStartup setAtStartup, SetNow setNow, Value value, const char *operation)
{
    const int mode = ui->comboBoxMode->currentIndex();
    if (mode == startupMode)
        reportError(setAtStartup(config, value), operation);
    else if (mode == currentMode)
        reportError(setNow(power, value), operation);
}

void tabPowerDlg::loadBatteryDetails()
{
    std::int32_t status = BATTERY_NO_ERROR;
    auto code = Battery_getHwErrorStatus(battery, &status);
    ui->label_2->setText(batteryErrorText(code, status));

    std::int32_t charging = CHARGING_UNKNOWN;
    code = Battery_getChargingStatus(battery, &charging);
    ui->label_3->setText(code == DEVICE_OK ? chargingText(charging)
                                           : batteryFailureLine("battery charging status", code));

    std::int32_t source = POWER_EXTERNAL;
    code = Battery_getPowerSource(battery, &source);
    ui->label_4->setText(powerSourceText(code, source));

    std::uint8_t percent = 0;
    code = Battery_getVoltageLevel(battery, &percent);
    ui->progressBar->setValue(code == DEVICE_OK ? percent : 0);
    if (code != DEVICE_OK)
        ui->label->setText(batteryFailureLine("battery power status", code));
}
