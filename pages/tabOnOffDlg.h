#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabOnOffDlg.h"

#include <QDoubleValidator>
#include <QIntValidator>

/**
 * On/off page: what the front button and the on/off signal do, what starts the unit, and how long
 * it may stay suspended. Read when the page shows, written as a whole by Apply.
 */
class tabOnOffDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabOnOffDlg(QWidget *parent = nullptr);
    ~tabOnOffDlg() override;

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void ApplyClicked();

private:
    void showAction(DeviceCode code, std::int32_t action, QComboBox *box, QGroupBox *group);
    void showTrigger();
    void showPowerOnStartup();

    Form<Ui::tabOnOff> ui{this};
    DeviceHandle<Config_create, Config_release> config;
    std::uint8_t hasSuspend;
    QIntValidator *intValidator;
    QDoubleValidator *timeValidator;
};
