#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabPowerDlg.h"

#include <QPointer>

#include <cstdint>
#include <vector>

class MyThread;

/**
 * Power page: which loads get power, at start-up or now, and the external battery, which a thread
 * follows for as long as the page exists.
 */
class tabPowerDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabPowerDlg(QWidget *parent = nullptr);
    ~tabPowerDlg() override;

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void BacklightClicked(bool on);
    void CANClicked(bool on);
    void ExtFanClicked(bool on);
    void VideoClicked();
    void modeIndexChanged(int index);

private:
    void loadCurrentSettings();
    void loadStartupSettings();
    template <typename Query, typename Handle>
    void loadSwitch(Query query, const Handle &handle, const char *operation, QCheckBox *box);
    template <typename Query, typename Handle>
    void loadVideo(Query query, const Handle &handle);
    void showAnswer(DeviceCode code, const char *operation, const std::vector<QCheckBox *> &boxes);
    template <typename SetAtStartup, typename SetNow, typename Value>
    void write(SetAtStartup setAtStartup, SetNow setNow, Value value, const char *operation);
    void loadBatteryDetails();

    Form<Ui::tabPower> ui{this};
    DeviceHandle<Power_create, Power_release> power;
    DeviceHandle<Battery_create, Battery_release> battery;
    DeviceHandle<Config_create, Config_release> config;
    std::uint8_t constructed = 0; ///< 0 keeps modeIndexChanged quiet while the list is filled
    QPointer<MyThread> monitor;   ///< outlives the page, and goes with the application object
};
