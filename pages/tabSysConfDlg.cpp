#include "pages/tabSysConfDlg.h"

#include "frame/reportError.h"

#include <limits>

namespace {

constexpr int lowestLimit = -25; // degrees C
constexpr int highestLimit = 5;

/** Cuts toward zero. What an int can't hold becomes the lowest int, as processors convert it. */
int cutToInt(double value)
{
    constexpr double beyond = 2147483648.0;
    if (value <= -beyond || value >= beyond)
        return std::numeric_limits<int>::min();
    return int(value);
}

} // namespace

tabSysConfDlg::tabSysConfDlg(QWidget *parent)
    : tabDlg(parent)
    , validator(new QIntValidator(lowestLimit, highestLimit, nullptr))
{
    ui->editHeatingTemp->setValidator(validator);
}

tabSysConfDlg::~tabSysConfDlg()
{
    delete validator;
    config.release();
    frontLed.release();
}

void tabSysConfDlg::showEvent(QShowEvent *)
{
    std::int16_t celsius = 0;
    const auto code = Config_getHeatingTempLimit(config, &celsius);
    if (code == DEVICE_OK) {
        ui->editHeatingTemp->setText(QString::number(celsius));
    } else if (code == DEVICE_NOT_SUPPORTED) {
        ui->groupHeating->hide();
        ui->pushButton->hide();
    } else {
        ui->groupHeating->setEnabled(false);
        ui->groupHeating->setToolTip(QStringLiteral("Requires newer SS version"));
        ui->editHeatingTemp->setText(fieldErrorText(code, "getHeatingTempLimit"));
    }
}

void tabSysConfDlg::ApplyClicked()
{
    if (!ui->groupHeating->isEnabled())
        return;
    bool valid = false;
    const auto celsius = std::int16_t(ui->editHeatingTemp->text().toInt(&valid, 10));
    if (!valid)
        return showMessage(QStringLiteral("Heating temperature - invalid format."));
    if (celsius < lowestLimit || celsius > highestLimit)
        return showMessage(
            QStringLiteral("Heating temperature out of allowed range (-25°C to +5°C)."));
    reportError(Config_setHeatingTempLimit(config, celsius), "setHeatingTempLimit");
}

// The other field's signal is off while this one fills it, so that they don't chase each other. Its
// connection is the form's, which is made by names and so can only be taken away by names.

void tabSysConfDlg::UpdateFahrenheit()
{
    bool valid = false;
    const int celsius = ui->editHeatingTemp->text().toInt(&valid, 10);
    const int fahrenheit = cutToInt(celsius * 1.8 + 32.0);
    disconnect(ui->editHeatingTemp_2, SIGNAL(textChanged(QString)), this, SLOT(UpdateCelsius()));
    ui->editHeatingTemp_2->setText(valid ? QString::number(fahrenheit) : QString());
    connect(ui->editHeatingTemp_2, SIGNAL(textChanged(QString)), this, SLOT(UpdateCelsius()));
}

void tabSysConfDlg::UpdateCelsius()
{
    bool valid = false;
    const int fahrenheit = ui->editHeatingTemp_2->text().toInt(&valid, 10);
    const int celsius = cutToInt((fahrenheit - 32.0) / 1.8);
    disconnect(ui->editHeatingTemp, SIGNAL(textChanged(QString)), this, SLOT(UpdateFahrenheit()));
    ui->editHeatingTemp->setText(valid ? QString::number(celsius) : QString());
    connect(ui->editHeatingTemp, SIGNAL(textChanged(QString)), this, SLOT(UpdateFahrenheit()));
}
