#include "pages/tabTouchDlg.h"

#include "frame/WaitNotice.h"
#include "frame/reportError.h"
#include "platform/platform.h"

#include <QCoreApplication>
#include <QProcess>

#include <cstdint>
#include <iterator>

namespace {

/** One advanced parameter; its number is its place in the table. */
struct Parameter {
    const char *listName;
    const char *dumpName;
    const char *unit;
    std::uint16_t highest;
    const char *tooHigh; ///< message for values above the highest; none where every value goes
};

constexpr Parameter parameters[] = {
    {"RightClickTime", "RIGHT_CLICK_TIME: ", "Milliseconds (0..65535)", 65535, nullptr},
    {"LowLevel", "LOW_LEVEL: ", "A/D value (0..4095)", 4095,
        "Invalid data format. The TS_LOW_LEVEL parameter range is 0-4095."},
    {"UnTouchLevel", "UNTOUCHLEVEL: ", "A/D value (0..4095)", 4095,
        "Invalid data format. The TS_UNTOUCHLEVEL parameter range is 0-4095."},
    {"DebounceTime", "DEBOUNCE_TIME: ", "Milliseconds (0..16383)", 16383,
        "Invalid data format. The TS_DEBOUNCE_TIME parameter range is 0-16383."},
    {"DebounceTimeoutTime", "DEBOUNCE_TIMEOUT_TIME: ", "Milliseconds (0..16383)", 16383,
        "Invalid data format. The TS_DEBOUNCE_TIMEOUT_TIME parameter range is 0-16383."},
    {"DoubleClickMaxClickTime", "DOUBLECLICK_MAX_CLICK_TIME: ", "Milliseconds (0..16383)", 16383,
        "Invalid data format. The TS_DOUBLECLICK_MAX_CLICK_TIME parameter range is 0-16383."},
    {"DoubleClickTime", "DOUBLE_CLICK_TIME: ", "Milliseconds (0..16383)", 16383,
        "Invalid data format. The TS_DOUBLE_CLICK_TIME parameter range is 0-16383."},
    {"MaxRightClickDistance", "MAX_RIGHTCLICK_DISTANCE: ", "Pixels (0..32767)", 32767,
        "Invalid data format. The TS_MAX_RIGHT_CLICK_DISTANCE parameter range is 0-32767."},
    {"UseDejitter", "USE_DEJITTER: ", "Boolean (0..1)", 65535, nullptr}, // not held to 0 and 1
    {"CalibrationWidth", "CALIBTATION_WIDTH: ", "Pixels (0..32767)", 32767,
        "Invalid data format. The TS_CALIBRATION_WIDTH parameter range is 0-32767."},
    {"CalibrationMeasurements", "CALIBRATION_MEASUREMENTS: ", "(0..65535)", 65535, nullptr},
};
static_assert(std::size(parameters) == TOUCH_RESTORE_DEFAULTS);

/** Null for a number that no parameter has. */
const Parameter *parameterAt(int index)
{
    return index >= 0 && index < int(std::size(parameters)) ? &parameters[index] : nullptr;
}

constexpr int readPause = 10; // milliseconds that the controller gets between two reads

constexpr int thirteenPoints = 1; // item of the calibration list

QString latin1(const char *text)
{
    return QString::fromLatin1(text);
}

} // namespace

tabTouchDlg::tabTouchDlg(QWidget *parent)
    : tabDlg(parent)
{
    ui->comboBoxCalib->addItem(QStringLiteral("5-point calibration"));
    ui->comboBoxCalib->addItem(QStringLiteral("13-point calibration"));
    // The first name selects itself, so the parameters are read here already.
    for (const Parameter &parameter : parameters)
        ui->comboBoxParameter->addItem(latin1(parameter.listName));
    ui->label_defaults->hide();
    ui->pushButtonDefaults->hide();
    ui->textEdit->setAttribute(Qt::WA_InputMethodEnabled, false); // nobody fills it in
}

void tabTouchDlg::showEvent(QShowEvent *)
{
    loadMode();
    showParameters();
}

// Front controllers differ in what they know of profiles. What is taken away here stays away.
void tabTouchDlg::loadMode()
{
    std::int32_t mode = TOUCH_MOUSE_NEXT_BOOT;
    const auto code = Touch_getMode(touch, &mode);
    if (code == DEVICE_OK) {
        const bool mouse = mode == TOUCH_MOUSE_NEXT_BOOT || mode == TOUCH_MOUSE;
        // Checked first: of two exclusive boxes the checked one can't be unchecked.
        (mouse ? ui->checkBoxMouse : ui->checkBox_Touch)->setChecked(true);
        (mouse ? ui->checkBox_Touch : ui->checkBoxMouse)->setChecked(false);
    } else if (code == DEVICE_NOT_SUPPORTED) {
        ui->checkBoxMouse->setEnabled(false);
        ui->checkBox_Touch->setEnabled(false);
        ui->groupSettings->hide();
        ui->pushButtonApply->hide();
        ui->pushButtonApplyNextBoot->hide();
    } else {
        ui->groupSettings->setEnabled(false);
        ui->pushButtonApply->setEnabled(false);
        ui->pushButtonApplyNextBoot->setEnabled(false);
        ui->groupSettings->setToolTip(QStringLiteral("Requires KV Front controller >= v0.5.0.0"));
    }
}

void tabTouchDlg::buttonApplyClicked()
{
    const auto mode = ui->checkBoxMouse->isChecked() ? TOUCH_MOUSE : TOUCH_TOUCH;
    reportError(Touch_setMode(touch, mode), "TouchScreenModeSettings");
}

void tabTouchDlg::buttonApplyNextBootClicked()
{
    const auto mode =
        ui->checkBoxMouse->isChecked() ? TOUCH_MOUSE_NEXT_BOOT : TOUCH_TOUCH_NEXT_BOOT;
    reportError(Touch_setMode(touch, mode), "TouchScreenModeSettings");
}

// The tool runs on its own, and a unit without it is a unit without calibration: nothing is said.
void tabTouchDlg::buttonCalibrateClicked()
{
    const QString program =
        QStringLiteral("%1/TouchCalibrator.exe").arg(QCoreApplication::applicationDirPath());
    const bool thirteen = ui->comboBoxCalib->currentIndex() == thirteenPoints;
    // The tool wants an argument in any case; five points have an empty one.
    const QStringList arguments{thirteen ? QStringLiteral("--13p") : QString()};
    auto *process = new QProcess(qApp);
    // It ends with the program. Left to its own end, the object would do the same with a warning.
    connect(qApp, &QCoreApplication::aboutToQuit, process, [process] {
        process->kill();
        process->waitForFinished();
    });
    process->start(program, arguments, QIODevice::ReadWrite);
}

void tabTouchDlg::comboboxIndexChanged(int index)
{
    const WaitNotice notice(this, 0, ui->comboBoxParameter);
    std::uint16_t value = 0;
    const auto code = Touch_getAdvancedSetting(touch, index, &value);
    ui->editTimeData->setText(code == DEVICE_OK ? QString::number(value) : QStringLiteral("Error"));
    const Parameter *parameter = parameterAt(index);
    ui->label_DataType->setText(latin1(parameter ? parameter->unit : "ERROR"));
    showParameters();
}

void tabTouchDlg::buttonApplySettingClicked()
{
    const WaitNotice notice(this);
    const int index = ui->comboBoxParameter->currentIndex();
    bool valid = false;
    const std::uint16_t value = ui->editTimeData->text().toUShort(&valid, 10);
    if (!valid)
        return showMessage(QStringLiteral("Invalid data format. Please enter 0-65535."));
    const Parameter *parameter = parameterAt(index);
    if (!parameter)
        return showMessage(QStringLiteral("Internal error"));
    if (value > parameter->highest)
        return showMessage(latin1(parameter->tooHigh));
    const auto code = Touch_setAdvancedSetting(touch, index, value);
    if (code != DEVICE_OK)
        showMessage(QStringLiteral("Error setAdvancedSetting: %1\n").arg(deviceText(code)));
    showParameters();
}

void tabTouchDlg::buttonDefaultsClicked()
{
    const WaitNotice notice(this);
    const auto code = Touch_setAdvancedSetting(touch, TOUCH_RESTORE_DEFAULTS, 1);
    if (code != DEVICE_OK)
        return reportError(code, "setAdvancedSetting");
    showParameters();
}

void tabTouchDlg::TabChanged(int index)
{
    // They stand beside the tabs, on the page, and belong to the Advanced tab.
    ui->label_defaults->setVisible(index != 0);
    ui->pushButtonDefaults->setVisible(index != 0);
}

void tabTouchDlg::showParameters()
{
    ui->textEdit->clear();
    QString text;
    for (int number = 0; number < TOUCH_RESTORE_DEFAULTS; ++number) {
        platform::pause(readPause);
        text += latin1(parameters[number].dumpName);
        std::uint16_t value = 0;
        const auto code = Touch_getAdvancedSetting(touch, number, &value);
        if (code == DEVICE_OK)
            text += QStringLiteral("%1\n").arg(value);
        else
            text += QStringLiteral("Error getAdvancedSetting: %1\n").arg(deviceText(code));
    }
    ui->textEdit->setPlainText(text);
}
