#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "telematics/MyGPSThread.h"
#include "telematics/serialPort.h"
#include "ui_tabTelematicsDlg.h"

#include <cstddef>
#include <cstdint>

/**
 * Telematics page: the switches of the add-on board's radios, the live GPS display and the modem
 * console. The GPS line and its thread exist while the GPS tab is current, the modem's line while
 * the GSM tab is. The console's dialogues block until the modem has been silent for 3 seconds.
 */
class tabTelematicsDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabTelematicsDlg(QWidget *parent = nullptr);
    ~tabTelematicsDlg() override;

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void GPRSClicked(bool on);
    void WLANClicked(bool on);
    void GPRS_StartupClicked(bool on);
    void WLAN_StartupClicked(bool on);
    void BTClicked(bool on);
    void BT_StartupClicked(bool on);
    void GPSClicked(bool on);
    void GPS_StartupClicked(bool on);
    void TabChanged(int index);
    void GPSModeClicked();

    // The modem console, in gsmConsole.cpp. It sends an SMS and has no call to hang up, so nothing
    // is connected to HangUpClicked.
    void CallClicked();
    void HangUpClicked();
    void CustomExecClicked();
    void SetPinClicked();
    void GetPinStatusClicked();
    void GetNetworkStatusClicked();

private:
    void loadPortNames(SettingsHandle settings);
    void askInterfaces(HardwareHandle hardware);
    void removeAbsentInterfaces();
    void showInterfaces();

    void refreshStatus();
    void showPower(bool present, DeviceCode (*query)(TelematicsHandle, std::int32_t *),
        const char *operation, QCheckBox *box);
    void showStartupPower(
        bool present, DeviceCode (*query)(TelematicsHandle, std::int32_t *), QCheckBox *box);
    void showGps();

    void setGpsMode(bool parsed);
    SerialPort *openPort(const QString &name, std::int32_t baudCode);
    void openGpsPort();
    void openGsmPort();
    void enterGsmTab();
    void refuseConsole(const QString &reason);
    void enableConsole(bool enabled, const QString &toolTip);
    void leaveGsmTab();
    void enterGpsTab();
    void startGpsThread();
    void leaveGpsTab();

    void readReply(std::size_t size);
    void showModemReply(const char *buffer, std::size_t size);

    Form<Ui::tabTelematics> ui{this};
    DeviceHandle<Telematics_create, Telematics_release> telematics;
    MyGPSThread *gpsThread = nullptr;
    DeviceBool hasWlan = 0;
    DeviceBool hasGps = 0;
    DeviceBool hasGsm = 0;
    DeviceBool hasBluetooth = 0;
};
