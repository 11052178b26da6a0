#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/VornAux2.h"
#include "frame/tabDlg.h"

#include "ui_tabLEDDlg.h"

#include <QColor>

#include <array>
#include <cstdint>

/**
 * Front LED page: blink signal, colour, repetition of the pulses, on/off, and whether the LED is on
 * during system start-up. Every change goes to the device at once and switches the LED on. The page
 * shows the device as of its last opening.
 */
class tabLEDDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabLEDDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void buttonOffClicked();
    void dropDownColorIndexChanged(int index);
    void freqDutyCValueChanged(int value);
    void pulsesValueChanged(int pulses);
    void idleTimeValueChanged(int milliseconds);
    void checkEnableLedOnStart(bool enable);
    void buttonColorpickClicked();

private:
    void addColor(const QString &name, std::int32_t code);
    void refreshColor();
    void loadSignal(std::uint8_t &dutyCycle);
    void loadStandardColor();
    void loadPulses();
    void loadIdleTime();
    void loadEnabledDuringStartup();
    DeviceCode sendSignal();
    DeviceCode sendCustomColor();
    void setCustomColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue);
    QColor customColor() const;
    void showSignalTexts(double hertz, int dutyCycle);
    void showOn(bool on);

    Form<Ui::tabLED> ui{this};
    DeviceHandle<FrontLED_create, FrontLED_release> frontLED;
    std::array<std::int32_t, 7> colorTable{}; ///< device colour code by index of the combo box
    bool loaded = false; ///< while false, the slots of the settings don't write to the device
    bool ledOn = false;
    std::uint8_t customRed = 0; ///< 0 to 15, as last read from the device or picked
    std::uint8_t customGreen = 0;
    std::uint8_t customBlue = 0;
};
