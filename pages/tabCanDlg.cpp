#include "pages/tabCanDlg.h"

#include "frame/reportError.h"

#include <QMessageBox>

#include <algorithm>
#include <iterator>

namespace {

constexpr std::uint8_t maxCanNets = 4;

constexpr const char *frameTypes[] = {"Standard", "Extended", "Standard Extended"}; // CanFrameType

constexpr std::uint16_t baudRates[] = {100, 125, 250, 500, 800, 1000}; // kbit/s
constexpr int otherBaudRate = 6; // the item behind them: what the unit holds besides

} // namespace

tabCanDlg::tabCanDlg(QWidget *parent)
    : tabDlg(parent)
{
    for (const char *frameType : frameTypes)
        ui->comboBoxFrameType->addItem(QString::fromLatin1(frameType));
    for (const std::uint16_t baudRate : baudRates)
        ui->comboBoxBaudRate->addItem(QString::number(baudRate));
    findNets();
}

void tabCanDlg::findNets()
{
    for (std::uint8_t net = 1; net <= maxCanNets; ++net) {
        std::uint16_t kbitPerSecond = 0; // only whether the net answers is of interest
        const auto code = Can_getBaudrate(can, net, &kbitPerSecond);
        if (code != DEVICE_OK) {
            if (net == 1)
                ui->comboBoxDevice->insertItem(
                    0, QStringLiteral("getBaudrate: %1").arg(deviceText(code)));
            break;
        }
        // The first insertion selects the net, while the page is still idle.
        ui->comboBoxDevice->insertItem(net - 1, QStringLiteral("CAN%1").arg(net));
        noCanNets = false;
    }
    if (noCanNets)
        showNoNets();
}

void tabCanDlg::showNoNets()
{
    for (QComboBox *box : {ui->comboBoxBaudRate, ui->comboBoxFrameType}) {
        box->insertItem(0, QStringLiteral("No Can nets available"));
        box->setCurrentIndex(0);
    }
    ui->comboBoxBaudRate->setEnabled(false);
    ui->comboBoxDevice->setEnabled(false);
    ui->comboBoxFrameType->setEnabled(false);
    ui->buttonApply->setEnabled(false);
}

void tabCanDlg::showEvent(QShowEvent *)
{
    if (noCanNets)
        return;
    ui->comboBoxDevice->setCurrentIndex(0);
    // Selecting what is selected already tells nobody.
    deviceIndexChanged(0);
}

void tabCanDlg::deviceIndexChanged(int index)
{
    if (noCanNets)
        return;
    loadNet(std::uint8_t(index + 1));
    ui->groupBoxSettings->setTitle(
        QStringLiteral("Settings for %1").arg(ui->comboBoxDevice->currentText()));
}

void tabCanDlg::loadNet(std::uint8_t net)
{
    loadFrameType(net);
    loadBaudRate(net);
}

void tabCanDlg::loadFrameType(std::uint8_t net)
{
    std::int32_t frameType = FRAME_STANDARD;
    const auto code = Can_getFrameType(can, net, &frameType);
    if (code != DEVICE_OK) {
        ui->comboBoxFrameType->hide();
        ui->labelFramType->hide();
        if (code != DEVICE_NOT_SUPPORTED)
            reportError(code, "getFrameType");
        return;
    }
    const bool known = frameType >= FRAME_STANDARD && frameType <= FRAME_BOTH;
    ui->comboBoxFrameType->setCurrentIndex(known ? frameType : FRAME_STANDARD);
}

// An answer that isn't one of the fixed rates, a missing or failed one included, becomes a further
// item. Nothing takes these items away, so the list grows with each such load.
void tabCanDlg::loadBaudRate(std::uint8_t net)
{
    std::uint16_t kbitPerSecond = 0;
    QString text;
    const auto code = Can_getBaudrate(can, net, &kbitPerSecond);
    if (code == DEVICE_OK) {
        text = QString::number(kbitPerSecond);
        ui->labelBaudRate->show();
        ui->comboBoxBaudRate->show();
    } else if (code == DEVICE_NOT_SUPPORTED) {
        ui->labelBaudRate->hide();
        ui->comboBoxBaudRate->hide();
    } else {
        text = fieldErrorText(code, "getBaudrate");
        insertBaudRate(text);
    }
    const auto *rate = std::find_if(std::begin(baudRates), std::end(baudRates),
        [&text](std::uint16_t known) { return QString::number(known) == text; });
    if (rate != std::end(baudRates))
        ui->comboBoxBaudRate->setCurrentIndex(int(rate - std::begin(baudRates)));
    else
        insertBaudRate(text);
}

void tabCanDlg::insertBaudRate(const QString &text)
{
    ui->comboBoxBaudRate->insertItem(otherBaudRate, text);
    ui->comboBoxBaudRate->setCurrentIndex(otherBaudRate);
}

void tabCanDlg::buttonApplyClicked()
{
    if (noCanNets)
        return;
    applyNet(std::uint8_t(ui->comboBoxDevice->currentIndex() + 1));
    // Also after a failure: a part of the settings may have been written.
    QMessageBox box(this);
    box.setWindowTitle(QStringLiteral("Vornsettings"));
    box.setText(QStringLiteral(
        "Please restart the computer (or the CAN driver) for the changes to take effect!"));
    box.setIcon(QMessageBox::Information);
    box.exec();
}

void tabCanDlg::applyNet(std::uint8_t net)
{
    // What the load has hidden doesn't exist on this unit.
    if (ui->comboBoxFrameType->isVisible() && !applyFrameType(net))
        return;
    if (ui->comboBoxBaudRate->isVisible())
        applyBaudRate(net);
}

bool tabCanDlg::applyFrameType(std::uint8_t net)
{
    const std::int32_t frameType = ui->comboBoxFrameType->currentIndex();
    if (frameType < FRAME_STANDARD || frameType > FRAME_BOTH) {
        showMessage(QStringLiteral("Invalid frametype, net %1.").arg(net));
        return false;
    }
    const auto code = Can_setFrameType(can, net, frameType);
    reportError(code, "setFrameType");
    return code == DEVICE_OK;
}

void tabCanDlg::applyBaudRate(std::uint8_t net)
{
    const int index = ui->comboBoxBaudRate->currentIndex();
    std::uint16_t kbitPerSecond = 0;
    if (index >= 0 && index < otherBaudRate) {
        kbitPerSecond = baudRates[index];
    } else if (index == otherBaudRate) {
        bool valid = false;
        kbitPerSecond = ui->comboBoxBaudRate->currentText().toUShort(&valid);
        if (!valid)
            return showMessage(QStringLiteral("Baud rate invalid format, net %1.").arg(net));
    } else {
        // Speaks of the frame type, as it always did.
        return showMessage(QStringLiteral("Invalid frametype, net %1.").arg(net));
    }
    reportError(Can_setBaudrate(can, net, kbitPerSecond), "setBaudrate");
}
