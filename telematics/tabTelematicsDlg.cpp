#include "telematics/tabTelematicsDlg.h"

#include "frame/WaitNotice.h"
#include "frame/deviceStatus.h"
#include "frame/endWithApplication.h"
#include "frame/workSteps.h"
#include "platform/platform.h"
#include "telematics/rawView.h"
#include "telematics/telematicsState.h"

#include <array>
#include <string>
#include <utility>

namespace {

constexpr const char *gsmPortKey = "VornsettingsGsmPort";
constexpr const char *gpsPortKey = "VornsettingsGpsPort";

// Fixed numbers: on a board without GPS the GSM tab moves to the GPS tab's place and is taken for
// it.
constexpr int gpsTab = 1;
constexpr int gsmTab = 2;

constexpr unsigned long longestThreadEnd = 10000; // milliseconds
constexpr int lineSettling = 50;                  // milliseconds after opening
constexpr std::size_t longestPortName = 255;      // bytes

QString portName(SettingsHandle settings, const char *key, const char *usual)
{
    std::array<char, 255 + 1> name{}; // one more, so that a text without its end stays bounded
    const auto code = Settings_getString(settings, key, name.data(), 255);
    if (code != DEVICE_OK || name[0] == '\0')
        return QString::fromLatin1(usual);
    return QString::fromUtf8(name.data()); // as the page stores it; other texts are Latin-1
}

/** Whether the thread has ended in time. */
bool waitFor(MyGPSThread *thread)
{
    // In two pieces, so that the user is told of a thread that is held up by a slow unit.
    if (thread->wait(WaitNotice::patience))
        return true;
    workStep();
    return thread->wait(longestThreadEnd - WaitNotice::patience);
}

/** Stops a thread and leaves it to end when its device call does, but no later than the program.
 *  What is left of it has nothing to show. */
void giveUp(MyGPSThread *thread)
{
    thread->disconnect();
    thread->stop();
    endWithApplication(thread, [thread] { thread->stop(); });
}

} // namespace

tabTelematicsDlg::tabTelematicsDlg(QWidget *parent)
    : tabDlg(parent)
{
    DeviceHandle<Hardware_create, Hardware_release> hardware;
    setGpsMode(true);
    ui->buttonToggleData->hide();
    ui->lineEditAvailInterfaces->setAttribute(Qt::WA_InputMethodEnabled, false); // only tells

    const DeviceHandle<Settings_create, Settings_release> settings;
    loadPortNames(settings);
    askInterfaces(hardware);
    removeAbsentInterfaces();
    showInterfaces();
}

tabTelematicsDlg::~tabTelematicsDlg()
{
    gpsKeepRunning.store(0, std::memory_order_relaxed);
    telematics.release();
    {
        const DeviceHandle<Settings_create, Settings_release> settings;
        // There is nobody left to tell of a failure.
        Settings_setString(settings, gsmPortKey, ui->lineEditGSMdev->text().toStdString().c_str());
        Settings_setString(settings, gpsPortKey, ui->lineEditGPSdev->text().toStdString().c_str());
    }
    serialClose(std::exchange(gsmPort, nullptr));
    if (gpsThread)
        giveUp(gpsThread);
}

void tabTelematicsDlg::loadPortNames(SettingsHandle settings)
{
    ui->lineEditGSMdev->setText(portName(settings, gsmPortKey, "COM3"));
    ui->lineEditGPSdev->setText(portName(settings, gpsPortKey, "COM4"));
}

void tabTelematicsDlg::askInterfaces(HardwareHandle hardware)
{
    const auto ask = [hardware](
                         DeviceCode (*query)(HardwareHandle, DeviceBool *), DeviceBool &has) {
        if (query(hardware, &has) != DEVICE_OK)
            has = 0;
    };
    ask(Hardware_hasWlan, hasWlan);
    ask(Hardware_hasGps, hasGps);
    ask(Hardware_hasGsm, hasGsm);
    ask(Hardware_hasBluetooth, hasBluetooth);
}

void tabTelematicsDlg::removeAbsentInterfaces()
{
    const auto remove = [](std::initializer_list<QCheckBox *> boxes, const char *reason) {
        for (QCheckBox *box : boxes) {
            box->setEnabled(false);
            box->setToolTip(QString::fromLatin1(reason));
            box->hide();
        }
    };
    if (!hasGsm) {
        remove({ui->checkBoxGPRS, ui->checkBoxGPRS_Startup}, "GSM/GPRS is not available");
        ui->lineEditGSMdev->hide();
        ui->label_9->hide();
        ui->tabWidget->removeTab(gsmTab);
    }
    if (!hasWlan)
        remove({ui->checkBoxWLAN, ui->checkBoxWLAN_Startup}, "WLAN is not available");
    if (!hasGps) {
        remove({ui->checkBoxGPS, ui->checkBoxGPS_Startup}, "GPS is not available");
        ui->lineEditGPSdev->hide();
        ui->label_8->hide();
        ui->tabWidget->removeTab(gpsTab);
    }
    if (!hasBluetooth)
        remove({ui->checkBoxBT, ui->checkBoxBT_Startup}, "Bluetooth is not available");
}

void tabTelematicsDlg::showInterfaces()
{
    const std::pair<DeviceBool, const char *> interfaces[] = {
        {hasBluetooth, "Bluetooth"}, {hasWlan, "WLAN"}, {hasGsm, "GSM/GPRS"}, {hasGps, "GPS"}};
    QStringList present;
    for (const auto &[has, name] : interfaces) {
        if (has)
            present << QString::fromLatin1(name);
    }
    ui->lineEditAvailInterfaces->setText(
        QStringLiteral("Available interfaces: %1").arg(present.join(QStringLiteral(", "))));
}

void tabTelematicsDlg::showEvent(QShowEvent *)
{
    refreshStatus();
}

void tabTelematicsDlg::refreshStatus()
{
    if (!hasGsm) {
        ui->checkBoxGPRS->setChecked(false);
    } else {
        std::int32_t status = STATUS_OFF;
        const auto code = Telematics_getGPRSPowerStatus(telematics, &status);
        if (code == DEVICE_OK)
            ui->checkBoxGPRS->setChecked(status == STATUS_ON);
        else
            hideOrReport(code, "getGPRSPowerStatus", {ui->checkBoxGPRS});
    }
    showPower(hasWlan, Telematics_getWLANPowerStatus, "getWLANPowerStatus", ui->checkBoxWLAN);
    showPower(hasBluetooth, Telematics_getBTPowerStatus, "getBTPowerStatus", ui->checkBoxBT);
    showGps();
    showStartupPower(hasGsm, Telematics_getGPRSStartUpPowerStatus, ui->checkBoxGPRS_Startup);
    showStartupPower(hasWlan, Telematics_getWLANStartUpPowerStatus, ui->checkBoxWLAN_Startup);
    showStartupPower(hasGps, Telematics_getGPSStartUpPowerStatus, ui->checkBoxGPS_Startup);
    showStartupPower(hasBluetooth, Telematics_getBTStartUpPowerStatus, ui->checkBoxBT_Startup);
}

/** Unlike the modem's, these boxes stay where the unit doesn't know the state. */
void tabTelematicsDlg::showPower(bool present,
    DeviceCode (*query)(TelematicsHandle, std::int32_t *), const char *operation, QCheckBox *box)
{
    if (!present)
        return box->setChecked(false);
    std::int32_t status = STATUS_OFF;
    const auto code = query(telematics, &status);
    if (code == DEVICE_OK)
        box->setChecked(status == STATUS_ON);
    else
        hideOrReport(code, operation, {});
}

void tabTelematicsDlg::showStartupPower(
    bool present, DeviceCode (*query)(TelematicsHandle, std::int32_t *), QCheckBox *box)
{
    std::int32_t status = STATUS_OFF;
    box->setChecked(present && query(telematics, &status) == DEVICE_OK && status == STATUS_ON);
}

void tabTelematicsDlg::showGps()
{
    if (!hasGps) {
        ui->label_GPSantenna->setText(antennaText(DEVICE_NOT_SUPPORTED, 0));
        ui->checkBoxGPS->setChecked(false);
        return;
    }
    showPower(hasGps, Telematics_getGPSPowerStatus, "getGPSPowerStatus", ui->checkBoxGPS);
    std::int32_t status = 0;
    const auto code = Telematics_getGPSAntennaStatus(telematics, &status);
    reportError(code, "getGPSAntennaStatus");
    ui->label_GPSantenna->setText(antennaText(code, status));
}

void tabTelematicsDlg::GPRSClicked(bool on)
{
    reportError(Telematics_setGPRSPowerStatus(telematics, statusOf(on)), "setGPRSPowerStatus");
}

void tabTelematicsDlg::WLANClicked(bool on)
{
    reportError(Telematics_setWLANPowerStatus(telematics, statusOf(on)), "setWLANPowerStatus");
}

void tabTelematicsDlg::GPRS_StartupClicked(bool on)
{
    reportError(Telematics_setGPRSStartUpPowerStatus(telematics, statusOf(on)),
        "setGPRSStartUpPowerStatus");
}

void tabTelematicsDlg::WLAN_StartupClicked(bool on)
{
    reportError(Telematics_setWLANStartUpPowerStatus(telematics, statusOf(on)),
        "setWLANStartUpPowerStatus");
}

void tabTelematicsDlg::BTClicked(bool on)
{
    reportError(Telematics_setBTPowerStatus(telematics, statusOf(on)), "setBTPowerStatus");
}

void tabTelematicsDlg::BT_StartupClicked(bool on)
{
    reportError(
        Telematics_setBTStartUpPowerStatus(telematics, statusOf(on)), "setBTStartUpPowerStatus");
}

void tabTelematicsDlg::GPSClicked(bool on)
{
    reportError(Telematics_setGPSPowerStatus(telematics, statusOf(on)), "setGPSPowerStatus");
}

void tabTelematicsDlg::GPS_StartupClicked(bool on)
{
    reportError(
        Telematics_setGPSStartUpPowerStatus(telematics, statusOf(on)), "setGPSStartUpPowerStatus");
}

void tabTelematicsDlg::GPSModeClicked()
{
    setGpsMode(!gpsDataMode);
}

void tabTelematicsDlg::setGpsMode(bool parsed)
{
    ui->textEdit->setVisible(!parsed);
    for (QWidget *widget : std::initializer_list<QWidget *>{ui->label, ui->label_3, ui->label_4,
             ui->label_5, ui->label_6, ui->label_7, ui->editGpsDate, ui->editGpsPos, ui->editGpsSat,
             ui->editGpsAlt, ui->editGpsSpeed, ui->editGpsAcc})
        widget->setVisible(parsed);
    // The caption names the view that a press leads to, the title the one in use.
    ui->buttonToggleData->setText(
        parsed ? QStringLiteral("Serial data") : QStringLiteral("GPS data"));
    ui->groupBox_2->setTitle(parsed ? QStringLiteral("GPS data") : QStringLiteral("Serial data"));
    if (!parsed)
        ui->textEdit->setGeometry(16, 30, 400, 180);
    gpsDataMode = parsed;
}

// The box of a failure may let the user leave the tab and enter it again; a line that this opened
// stays.

void tabTelematicsDlg::openGpsPort()
{
    if (SerialPort *port = openPort(ui->lineEditGPSdev->text(), SERIAL_9600))
        gpsPort = port;
}

void tabTelematicsDlg::openGsmPort()
{
    if (SerialPort *port = openPort(ui->lineEditGSMdev->text(), SERIAL_57600))
        gsmPort = port;
}

SerialPort *tabTelematicsDlg::openPort(const QString &name, std::int32_t baudCode)
{
    const std::string shortened = name.toStdString().substr(0, longestPortName);
    SerialPort *port = serialOpen(shortened.c_str());
    if (!port) {
        showMessage(QStringLiteral("Could not open serial port: ") + name);
        return nullptr;
    }
    // A line that doesn't take the format stays unconfigured, and refuses reads and writes.
    serialConfigure(port, baudCode, SERIAL_8_BITS, SERIAL_NO_PARITY, SERIAL_1_STOP_BIT);
    return port;
}

void tabTelematicsDlg::TabChanged(int)
{
    const WaitNotice notice(this);
    refreshStatus();
    ui->textEditGSM->clear();
    ui->textEdit->clear();
    // The accuracy stays.
    for (QLineEdit *edit :
        {ui->editGpsDate, ui->editGpsPos, ui->editGpsSat, ui->editGpsAlt, ui->editGpsSpeed})
        edit->setText(QCoreApplication::translate("tabTelematics", "INVALID"));

    // Asked anew each time, since the dialogs on the way may have let the user go on.
    if (ui->tabWidget->currentIndex() == gsmTab)
        enterGsmTab();
    else if (hasGsm)
        leaveGsmTab();

    if (ui->tabWidget->currentIndex() == gpsTab)
        enterGpsTab();
    else
        leaveGpsTab();
}

void tabTelematicsDlg::enterGsmTab()
{
    std::int32_t status = STATUS_OFF;
    const auto code = Telematics_getGPRSPowerStatus(telematics, &status);
    if (code == DEVICE_OK && status != STATUS_ON)
        return refuseConsole(QStringLiteral("Please enable GSM/GPRS power!"));
    if (!hasGsm)
        return refuseConsole(QStringLiteral("GSM/GPRS is not available!"));
    enableConsole(true, {});
    if (!gsmPort)
        openGsmPort();
    platform::pause(lineSettling);
}

void tabTelematicsDlg::refuseConsole(const QString &reason)
{
    enableConsole(false, reason);
    ui->textEditGSM->insertPlainText(reason);
}

void tabTelematicsDlg::enableConsole(bool enabled, const QString &toolTip)
{
    for (QPushButton *button : {ui->pushButtonCall, ui->pushButtonCustomExec,
             ui->pushButtonGetNetwork, ui->pushButtonGetPIN, ui->pushButtonSetPin}) {
        button->setEnabled(enabled);
        button->setToolTip(toolTip);
    }
}

void tabTelematicsDlg::leaveGsmTab()
{
    serialClose(std::exchange(gsmPort, nullptr));
}

void tabTelematicsDlg::enterGpsTab()
{
    std::int32_t status = STATUS_OFF;
    const auto code = Telematics_getGPSPowerStatus(telematics, &status);
    if (code == DEVICE_OK && status != STATUS_ON) {
        ui->buttonToggleData->setEnabled(false);
        ui->editGpsDate->setText(QStringLiteral("Please enable GPS Power!"));
    } else if (!hasGps) {
        ui->buttonToggleData->setEnabled(false);
        ui->editGpsDate->setText(QStringLiteral("GPS is not available!"));
    } else {
        ui->buttonToggleData->setEnabled(true);
        ui->editGpsDate->setText(QStringLiteral("INVALID"));
        // Until the new thread has a share of its own: an earlier one may just be ending.
        const GpsLineShare line;
        if (!gpsPort)
            openGpsPort();
        ui->buttonToggleData->show();
        platform::pause(lineSettling);
        startGpsThread();
    }
}

void tabTelematicsDlg::startGpsThread()
{
    if (gpsThread) // a dialog on the way let the tab be entered a second time
        giveUp(gpsThread);
    gpsThread = new MyGPSThread;
    gpsThread->start(QThread::InheritPriority);
    connect(gpsThread, &MyGPSThread::newText, ui->textEdit,
        [view = ui->textEdit](const QString &text) { addRawText(view, text); });
    connect(gpsThread, &MyGPSThread::newTime, ui->editGpsDate, &QLineEdit::setText);
    connect(gpsThread, &MyGPSThread::newPos, ui->editGpsPos, &QLineEdit::setText);
    connect(gpsThread, &MyGPSThread::newSat, ui->editGpsSat, &QLineEdit::setText);
    connect(gpsThread, &MyGPSThread::newAlt, ui->editGpsAlt, &QLineEdit::setText);
    connect(gpsThread, &MyGPSThread::newSpeed, ui->editGpsSpeed, &QLineEdit::setText);
    connect(gpsThread, &MyGPSThread::newAcc, ui->editGpsAcc, &QLineEdit::setText);
    connect(gpsThread, &MyGPSThread::newLabel, ui->label_GPSantenna, &QLabel::setText);
}

void tabTelematicsDlg::leaveGpsTab()
{
    ui->buttonToggleData->hide();
    if (!hasGps)
        return;
    gpsKeepRunning.store(0, std::memory_order_relaxed);
    if (!gpsThread)
        return;
    MyGPSThread *thread = std::exchange(gpsThread, nullptr);
    thread->stop();
    if (waitFor(thread))
        delete thread;
    else
        giveUp(thread);
}
