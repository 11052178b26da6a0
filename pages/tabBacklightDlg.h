#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/VornAux2.h"
#include "frame/tabDlg.h"

#include "ui_tabBacklightDlg.h"

#include <QTimer>

#include <cstdint>

/**
 * Display page: intensity of the backlight, its automatic control by the light sensor, dimming of
 * the front LED, and whether the backlight hardware is sound. While it is shown, the level slider
 * follows the device, which changes the intensity by itself under automatic control.
 */
class tabBacklightDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabBacklightDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private slots:
    void backlightChange(int value);
    void sensitivityChange(int value);
    void refresh();
    void enableClicked(bool checked);
    void ledDimClicked(bool checked);

private:
    void applyAutomaticSettings();
    void loadSettings();
    void loadAutomaticParams();
    void loadAutomaticFilter();
    void loadAutomaticStatus();
    void loadLedDimming();
    void refreshIntensity();
    void refreshHealth();
    void enableAutomaticSettings(bool enable);

    Form<Ui::tabBacklight> ui{this};
    DeviceHandle<Backlight_create, Backlight_release> backlight;
    QTimer refreshTimer{this};
    std::uint8_t lastIntensity = 0; ///< as last taken from the device
};
