#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/VornAux2.h"
#include "frame/tabDlg.h"

#include "ui_tabBuzzerDlg.h"

/**
 * Buzzer page: frequency in hertz, volume in the device's steps, and the button that sounds it.
 * Leaving the page doesn't silence the buzzer.
 */
class tabBuzzerDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabBuzzerDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void buttonOnToggled(bool on);
    void sliderFreqChanged(int hertz);
    void sliderVolChanged(int volume);

private:
    void loadFrequency();
    void loadVolume();
    void loadTrigger();
    void showFrequency(int hertz);
    void showVolume(int volume);

    Form<Ui::tabBuzzer> ui{this};
    DeviceHandle<Buzzer_create, Buzzer_release> buzzer;
};
