#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabSysConfDlg.h"

#include <QIntValidator>

/**
 * Heater page: the temperature below which the unit heats itself before it starts, in two linked
 * fields. The device holds whole degrees Celsius.
 */
class tabSysConfDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabSysConfDlg(QWidget *parent = nullptr);
    ~tabSysConfDlg() override;

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void ApplyClicked();
    void UpdateFahrenheit();
    void UpdateCelsius();

private:
    Form<Ui::tabSysConf> ui{this};
    DeviceHandle<Config_create, Config_release> config;
    /** Held for as long as the page lives, since units may take note of it; not used otherwise. */
    DeviceHandle<FrontLED_create, FrontLED_release> frontLed;
    QIntValidator *validator;
};
