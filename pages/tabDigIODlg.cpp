#include "pages/tabDigIODlg.h"

#include <array>

namespace {

constexpr int updateInterval = 250; // milliseconds

// The boxes of the lines, in the order of the mask's bits.
template <typename Ui>
std::array<QCheckBox *, 4> inputs(const Ui &ui)
{
    return {ui->checkBoxDI_1, ui->checkBoxDI_2, ui->checkBoxDI_3, ui->checkBoxDI_4};
}

template <typename Ui>
std::array<QCheckBox *, 4> outputs(const Ui &ui)
{
    return {ui->checkBoxDO_1, ui->checkBoxDO_2, ui->checkBoxDO_3, ui->checkBoxDO_4};
}

void showMask(const std::array<QCheckBox *, 4> &boxes, std::uint8_t mask)
{
    for (std::size_t bit = 0; bit < boxes.size(); ++bit)
        boxes[bit]->setChecked((mask >> bit) & 1);
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
    showMask(outputs(ui), mask);
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
        showMask(inputs(ui), mask);
        lastInputs = mask;
    } else if (code == DEVICE_NOT_SUPPORTED) {
        ui->groupBoxStatus->hide();
    } else {
        updateTimer.stop(); // first: the box has an event loop, and rounds would pile up boxes
        reportError(code, "getDigIO");
    }
}

void tabDigIODlg::doclicked(bool)
{
    std::uint8_t mask = 0;
    for (std::size_t bit = 0; bit < outputs(ui).size(); ++bit) {
        if (outputs(ui)[bit]->isChecked())
            mask = std::uint8_t(mask | 1U << bit);
    }
    const auto code = DigIO_setDigIO(digIO, mask);
    if (code == DEVICE_NOT_SUPPORTED)
        return removeOutputs();
    reportError(code, "DigIO_setDigIO");
}

void tabDigIODlg::removeOutputs()
{
    ui->groupBoxStatus_2->setEnabled(false);
    ui->groupBoxStatus_2->hide();
}
