#include "pages/tabOnOffDlg.h"

#include "frame/WaitNotice.h"
#include "frame/deviceStatus.h"
#include "frame/reportError.h"

namespace {

bool suspendSupported(ConfigHandle config)
{
    std::uint16_t minutes = 0;
    return Config_getSuspendMaxTime(config, &minutes) != DEVICE_NOT_SUPPORTED;
}

/**
 * Fills one of the fields of times. The text is one for all fields, in the order in which they are
 * read: a field whose time the unit doesn't have shows what the field before it got.
 */
template <typename Time>
void showTime(DeviceCode code, Time time, const char *operation, QGroupBox *group, QString &text,
    QLineEdit *edit)
{
    if (code == DEVICE_OK)
        text = QString::number(time);
    else if (code == DEVICE_NOT_SUPPORTED)
        group->setEnabled(false);
    else
        text = fieldErrorText(code, operation);
    edit->setText(text);
}

} // namespace

tabOnOffDlg::tabOnOffDlg(QWidget *parent)
    : tabDlg(parent)
    , hasSuspend(suspendSupported(config))
    , intValidator(new QIntValidator(0, 65535, nullptr))
    , timeValidator(new QDoubleValidator(0, 4294967295.0, 0, nullptr))
{
    ui->editButtonPressTime->setValidator(intValidator);
    ui->editTimeSuspend->setValidator(intValidator);
    ui->editTimeSignal->setValidator(timeValidator);

    for (QComboBox *actions : {ui->comboBox, ui->comboBox_2, ui->comboBox_4}) {
        actions->addItem(QStringLiteral("No Action"));
        if (hasSuspend)
            actions->addItem(QStringLiteral("Suspend"));
        actions->addItem(QStringLiteral("Shut down"));
    }
    ui->comboBox_3->addItems({QStringLiteral("Button"), QStringLiteral("ON/OFF signal"),
        QStringLiteral("Both button and signal")});
    if (!hasSuspend)
        ui->groupSuspend->hide();
}

tabOnOffDlg::~tabOnOffDlg()
{
    delete intValidator;
    delete timeValidator;
}

void tabOnOffDlg::showEvent(QShowEvent *)
{
    std::int32_t action = 0;
    auto code = Config_getOnOffSigAction(config, &action);
    showAction(code, action, ui->comboBox, ui->groupSignal);
    code = Config_getShortButtonPressAction(config, &action);
    showAction(code, action, ui->comboBox_2, ui->groupButton);
    code = Config_getLongButtonPressAction(config, &action);
    showAction(code, action, ui->comboBox_4, ui->groupButton_2);

    showTrigger();

    QString text;
    std::uint16_t milliseconds = 0;
    code = Config_getFrontBtnTrigTime(config, &milliseconds);
    // The group of the short press goes, though the field stands in that of the long press.
    showTime(
        code, milliseconds, "getFrontBtnTrigTime", ui->groupButton, text, ui->editButtonPressTime);
    std::uint32_t seconds = 0;
    code = Config_getExtOnOffSigTrigTime(config, &seconds);
    showTime(code, seconds, "getExtOnOffSigTrigTime", ui->groupSignal, text, ui->editTimeSignal);
    if (hasSuspend) {
        std::uint16_t minutes = 0;
        code = Config_getSuspendMaxTime(config, &minutes);
        showTime(code, minutes, "getSuspendMaxTime", ui->groupSuspend, text, ui->editTimeSuspend);
    } else {
        ui->editTimeSuspend->setEnabled(false);
    }

    showPowerOnStartup();
}

void tabOnOffDlg::showAction(DeviceCode code, std::int32_t action, QComboBox *box, QGroupBox *group)
{
    if (code != DEVICE_OK || action < ACTION_NONE || action > ACTION_SHUT_DOWN)
        return group->setEnabled(false);
    if (hasSuspend || action == ACTION_NONE)
        box->setCurrentIndex(action);
    else if (action == ACTION_SHUT_DOWN)
        box->setCurrentIndex(1); // the list has no item for suspend
}

void tabOnOffDlg::showTrigger()
{
    std::int32_t trigger = 0;
    const auto code = Config_getStartupTriggerConfig(config, &trigger);
    if (code != DEVICE_OK || trigger < TRIGGER_FRONT_BUTTON || trigger > TRIGGER_BOTH)
        return ui->groupButton_3->setEnabled(false);
    ui->comboBox_3->setCurrentIndex(trigger - 1);
}

void tabOnOffDlg::showPowerOnStartup()
{
    std::int32_t status = STATUS_OFF;
    if (Config_getPowerOnStartup(config, &status) != DEVICE_OK)
        return ui->checkBoxPowerOnStartup->setEnabled(false);
    ui->checkBoxPowerOnStartup->setChecked(status == STATUS_ON);
}

void tabOnOffDlg::ApplyClicked()
{
    const WaitNotice notice(this);
    int signalAction = ui->comboBox->currentIndex();
    int shortPressAction = ui->comboBox_2->currentIndex();
    int longPressAction = ui->comboBox_4->currentIndex();
    const int trigger = ui->comboBox_3->currentIndex() + 1;

    // A time that is no number is told, and then written as 0 like the rest.
    bool valid = true;
    std::uint32_t minutes = 0;
    if (hasSuspend) {
        minutes = ui->editTimeSuspend->text().toUInt(&valid, 10);
        if (!valid)
            showMessage(QStringLiteral("Supend time invalid format."));
    }
    const std::uint32_t milliseconds = ui->editButtonPressTime->text().toUInt(&valid, 10);
    if (!valid)
        showMessage(QStringLiteral("ON/OFF button time - invalid format."));
    const std::uint32_t seconds = ui->editTimeSignal->text().toUInt(&valid, 10);
    if (!valid)
        showMessage(QStringLiteral("ON/OFF signal time - invalid format."));

    if (!hasSuspend) {
        for (int *action : {&signalAction, &shortPressAction, &longPressAction}) {
            if (*action != ACTION_NONE)
                ++*action;
        }
    }

    reportError(
        Config_setLongButtonPressAction(config, longPressAction), "setLongButtonPressAction");
    reportError(
        Config_setShortButtonPressAction(config, shortPressAction), "setShortButtonPressAction");
    reportError(Config_setOnOffSigAction(config, signalAction), "setOnOffSigAction");
    reportError(Config_setStartupTriggerConfig(config, trigger), "setStartupTriggerConfig");
    if (hasSuspend)
        reportError(Config_setSuspendMaxTime(config, std::uint16_t(minutes)), "setSuspendMaxTime");
    reportError(Config_setFrontBtnTrigTime(config, std::uint16_t(milliseconds)),
        "setFrontBtnShutDownTrigTime");
    reportError(Config_setExtOnOffSigTrigTime(config, seconds), "setExtOnOffSigTrigTime");
    reportError(Config_setPowerOnStartup(config, statusOf(ui->checkBoxPowerOnStartup->isChecked())),
        "setPowerOnStartup");
}
