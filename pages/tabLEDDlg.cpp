#include "pages/tabLEDDlg.h"

#include "frame/deviceStatus.h"

#include <QColorDialog>

#include <algorithm>
#include <cmath>

namespace {

constexpr double lowestFrequency = 0.2; // hertz
constexpr double highestFrequency = 30.0;
constexpr std::int32_t customColorCode = 6; // beside the device's own colours 0 to 5
constexpr int customColorIndex = 6;

constexpr QLatin1String greySheet(
    "* { background-color: qlineargradient(spread:pad, x1:0, y1:0, x2:0, y2:1, "
    "stop:0 rgba(173, 173, 173, 255), stop:1 rgba(95, 95, 95, 255)) }");

// A colour component has 4 bits in the device and 8 bits on the screen.
constexpr int toScreen(int component)
{
    return component * 255 / 15;
}

constexpr std::uint8_t toDevice(int component)
{
    return std::uint8_t(component * 15 / 255);
}

double shownFrequency(double hertz)
{
    // Written so that what is no number ends at the low end too.
    if (!(hertz > lowestFrequency))
        return lowestFrequency;
    if (hertz > highestFrequency)
        return highestFrequency;
    return std::clamp(std::floor(hertz * 100 + 0.5) / 100.0, lowestFrequency, highestFrequency);
}

} // namespace

tabLEDDlg::tabLEDDlg(QWidget *parent)
    : tabDlg(parent)
{
    addColor(QStringLiteral("Red"), LED_RED);
    addColor(QStringLiteral("Blue"), LED_BLUE);
    addColor(QStringLiteral("Green"), LED_GREEN);
    addColor(QStringLiteral("Magenta"), LED_MAGENTA);
    addColor(QStringLiteral("Cyan"), LED_CYAN);
    addColor(QStringLiteral("Yellow"), LED_YELLOW);
    addColor(QStringLiteral("Custom color"), customColorCode);
}

void tabLEDDlg::addColor(const QString &name, std::int32_t code)
{
    colorTable[std::size_t(ui->comboBoxColor->count())] = code;
    ui->comboBoxColor->addItem(name);
}

void tabLEDDlg::showEvent(QShowEvent *)
{
    loaded = false;
    std::uint8_t dutyCycle = 0;
    loadSignal(dutyCycle);
    loadStandardColor();
    refreshColor();
    loadPulses();
    loadIdleTime();
    loadEnabledDuringStartup();
    showOn(dutyCycle > 0);
    loaded = true;
}

void tabLEDDlg::loadSignal(std::uint8_t &dutyCycle)
{
    double hertz = 0;
    const auto code = FrontLED_getSignal(frontLED, &hertz, &dutyCycle);
    if (code != DEVICE_OK)
        return hideOrReport(code, "getSignal", {ui->sliderFreq, ui->sliderDutyC});
    hertz = shownFrequency(hertz);
    ui->sliderFreq->setValue(int(hertz * 10));
    ui->sliderDutyC->setValue(dutyCycle);
    showSignalTexts(hertz, dutyCycle);
}

void tabLEDDlg::loadStandardColor()
{
    std::int32_t color = LED_RED;
    const auto code = FrontLED_getStandardColor(frontLED, &color);
    if (code == DEVICE_OK) {
        const auto standardEnd = colorTable.begin() + customColorIndex;
        const auto found = std::find(colorTable.begin(), standardEnd, color);
        ui->comboBoxColor->setCurrentIndex(int(found - colorTable.begin()));
    } else if (code == DEVICE_NOT_SUPPORTED) {
        ui->comboBoxColor->hide();
    } else {
        reportError(code, "FrontLED_getStandardColor");
        ui->comboBoxColor->setCurrentIndex(customColorIndex);
    }
}

void tabLEDDlg::loadPulses()
{
    std::uint8_t pulses = 0;
    const auto code = FrontLED_getNrOfPulses(frontLED, &pulses);
    if (code == DEVICE_OK)
        ui->spinBoxPulses->setValue(pulses);
    else
        hideOrReport(code, "getNrOfPulses", {ui->spinBoxPulses});
}

void tabLEDDlg::loadIdleTime()
{
    std::uint8_t hundredMilliseconds = 0;
    const auto code = FrontLED_getIdleTime(frontLED, &hundredMilliseconds);
    if (code == DEVICE_OK)
        ui->spinBoxIdleTime->setValue(hundredMilliseconds * 100);
    else
        hideOrReport(code, "getIdleTime", {ui->spinBoxIdleTime});
}

void tabLEDDlg::loadEnabledDuringStartup()
{
    std::int32_t status = STATUS_OFF;
    const auto code = FrontLED_getEnabledDuringStartup(frontLED, &status);
    if (code == DEVICE_OK) {
        ui->checkEnFrontLED->setChecked(status == STATUS_ON);
    } else if (code == DEVICE_NOT_SUPPORTED) {
        ui->groupFrontLED->hide();
    } else {
        reportError(code, "getEnabledDuringStartup");
        ui->groupFrontLED->setEnabled(false);
    }
}

void tabLEDDlg::refreshColor()
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    const auto code = FrontLED_getColor(frontLED, &red, &green, &blue);
    if (code == DEVICE_OK) {
        ui->label_customcolor->setText(
            QStringLiteral("R:%0 G:%1 B:%2").arg(red).arg(green).arg(blue));
        setCustomColor(red, green, blue);
        ui->buttonColorpick->setStyleSheet(QStringLiteral("* { background-color: rgb(%1,%2,%3) }")
                                               .arg(toScreen(red))
                                               .arg(toScreen(green))
                                               .arg(toScreen(blue)));
        return;
    }
    if (code == DEVICE_NOT_SUPPORTED) {
        ui->label_customcolor->hide();
    } else {
        reportError(code, "FrontLED_getColor");
        ui->label_customcolor->setText(QStringLiteral("Undefined"));
    }
    setCustomColor(0, 0, 0);
    ui->buttonColorpick->setStyleSheet(greySheet);
}

void tabLEDDlg::buttonOffClicked()
{
    ledOn = !ledOn;
    ui->buttonOff->setChecked(ledOn);
    if (!ledOn) {
        reportError(FrontLED_setOff(frontLED), "setOff");
        showOn(false);
        return;
    }
    // A refused signal is told by the slots of the settings, not by the switch.
    sendSignal();
    showOn(true);
    refreshColor();
}

void tabLEDDlg::dropDownColorIndexChanged(int index)
{
    if (!loaded || index < 0)
        return;
    const std::int32_t color = colorTable[std::size_t(index)];
    if (color == customColorCode)
        reportError(sendCustomColor(), "FrontLED_setColor");
    else
        reportError(FrontLED_setStandardColor(frontLED, color), "FrontLED_setStandardColor");
    refreshColor();
    reportError(sendSignal(), "FrontLED_setSignal");
    showOn(true);
    // Read again: the LED shows its colour only once the signal runs.
    refreshColor();
}

void tabLEDDlg::freqDutyCValueChanged(int)
{
    if (!loaded)
        return;
    reportError(sendSignal(), "setSignal");
    showSignalTexts(ui->sliderFreq->value() / 10.0, ui->sliderDutyC->value());
    showOn(true);
}

void tabLEDDlg::pulsesValueChanged(int pulses)
{
    if (!loaded)
        return;
    reportError(sendSignal(), "setSignal");
    reportError(FrontLED_setNrOfPulses(frontLED, std::uint8_t(pulses)), "setNrOfPulses");
    showOn(true);
}

void tabLEDDlg::idleTimeValueChanged(int milliseconds)
{
    if (!loaded)
        return;
    reportError(sendSignal(), "setSignal");
    reportError(FrontLED_setIdleTime(frontLED, std::uint8_t(milliseconds / 100)), "setIdleTime");
    showOn(true);
}

void tabLEDDlg::checkEnableLedOnStart(bool enable)
{
    if (!loaded)
        return;
    const auto code = FrontLED_setEnabledDuringStartup(frontLED, statusOf(enable));
    if (code == DEVICE_OK)
        return;
    reportError(code, "setEnabledDuringStartup");
    ui->groupFrontLED->setEnabled(false);
}

void tabLEDDlg::buttonColorpickClicked()
{
    const QColor picked =
        QColorDialog::getColor(customColor(), this, QStringLiteral("Select Color"));
    if (!picked.isValid())
        return;
    setCustomColor(toDevice(picked.red()), toDevice(picked.green()), toDevice(picked.blue()));
    reportError(sendCustomColor(), "FrontLED_setColor");
    ui->comboBoxColor->setCurrentIndex(customColorIndex);
    refreshColor();
}

DeviceCode tabLEDDlg::sendSignal()
{
    return FrontLED_setSignal(
        frontLED, ui->sliderFreq->value() / 10.0, std::uint8_t(ui->sliderDutyC->value()));
}

DeviceCode tabLEDDlg::sendCustomColor()
{
    return FrontLED_setColor(frontLED, customRed, customGreen, customBlue);
}

void tabLEDDlg::setCustomColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    customRed = red;
    customGreen = green;
    customBlue = blue;
}

QColor tabLEDDlg::customColor() const
{
    return QColor(toScreen(customRed), toScreen(customGreen), toScreen(customBlue));
}

void tabLEDDlg::showSignalTexts(double hertz, int dutyCycle)
{
    ui->labelFreq->setText(QStringLiteral("Freq\n %1 Hz").arg(hertz));
    ui->labelDutyC->setText(QStringLiteral("Duty cycle\n %1% on").arg(dutyCycle));
    // The slider's own number, which a screen reader is told, is in tenths.
    ui->sliderFreq->setAccessibleDescription(QStringLiteral("%1 Hz").arg(hertz));
}

void tabLEDDlg::showOn(bool on)
{
    ledOn = on;
    showOnOff(ui->buttonOff, on);
}
