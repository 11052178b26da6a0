#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/VornAux2.h"
#include "frame/tabDlg.h"

#include "ui_tabLightSensorDlg.h"

#include <QString>
#include <QTimer>

/**
 * Light sensor page: runs the device's averaged measurement while it is shown, and tells the
 * illuminance in lux with the range in use. The device refuses the measurement while the automatic
 * backlight runs; the page then stands disabled with the reason until it is shown again.
 */
class tabLightSensorDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabLightSensorDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private slots:
    void updateIlluminance();
    void onClicked(bool checked);

private:
    DeviceCode startAverageCalc();
    bool startMeasurement();
    void stopMeasurement();
    void refuse(const QString &reason);
    QString readIlluminance();
    void readRange(QString &text);

    Form<Ui::tabLightSensor> ui{this};
    DeviceHandle<LightSensor_create, LightSensor_release> lightSensor;
    QTimer updateTimer{this};
    QString lastText; ///< last written to the illumination field
};
