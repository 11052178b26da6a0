#include "pages/tabDigIODlg.h"

#include "pages/bitBoxes.h"

namespace {

constexpr int updateInterval = 250; // milliseconds

template <typename Ui>
BitBoxes inputs(const Ui &ui)
{
    return {ui->checkBoxDI_1, ui->checkBoxDI_2, ui->checkBoxDI_3, ui->checkBoxDI_4};
}

template <typename Ui>
BitBoxes outputs(const Ui &ui)
{
    return {ui->checkBoxDO_1, ui->checkBoxDO_2, ui->checkBoxDO_3, ui->checkBoxDO_4};
}

} // namespace

tabDigIODlg::tabDigIODlg(QWidget *parent)
    : tabDlg(parent)
{
    connect(&updateTimer, &QTimer::timeout, this, &tabDigIODlg::updateIOValues);
    ui->labelStatus->setText(QStringLiteral("Updated every %1 ms").arg(updateInterval));

    findOutputs();
}

void tabDigIODlg::findOutputs()
{
    std::uint8_t mask = 0;
    if (DigIO_getDigIO(digIO, &mask) != DEVICE_OK)
        return removeOutputs();
    // Writing back what was read changes nothing, and shows whether there are outputs at all.
    if (DigIO_setDigIO(digIO, mask) != DEVICE_OK)
        return removeOutputs();
    for (QCheckBox *box : outputs(ui)) {
        box->setCheckable(true);
        box->setEnabled(true);
    }
    checkBits(outputs(ui), mask);
}

void tabDigIODlg::showEvent(QShowEvent *)
{
    updateTimer.start(updateInterval);
    updateIOValues();
}

void tabDigIODlg::hideEvent(QHideEvent *)
{
    updateTimer.stop();
}

void tabDigIODlg::updateIOValues()
{
    std::uint8_t mask = 0;
    const auto code = DigIO_getDigIO(digIO, &mask);
    if (code == DEVICE_OK) {
        if (mask == lastInputs)
            return;
        checkBits(inputs(ui), mask);
        lastInputs = mask;
    } else if (code == DEVICE_NOT_SUPPORTED) {
        ui->groupBoxStatus->hide();
    } else {
        // First, since the box may open from showEvent: a round would fail likewise behind it.
        updateTimer.stop();
        reportError(code, "getDigIO");
        updateTimer.stop(); // if the page was shown again behind the box
    }
}

void tabDigIODlg::doclicked(bool)
{
    const auto code = DigIO_setDigIO(digIO, checkedBits(outputs(ui)));
    if (code == DEVICE_NOT_SUPPORTED)
        return removeOutputs();
    reportError(code, "DigIO_setDigIO");
}

void tabDigIODlg::removeOutputs()
{
    ui->groupBoxStatus_2->setEnabled(false);
    ui->groupBoxStatus_2->hide();
}
