#include "report/tabAboutDlg.h"

#include "frame/DeviceHandle.h"
#include "frame/WaitNotice.h"
#include "report/sections.h"
#include "report/systemReport.h"
#include "report/viewText.h"

#include <QFile>
#include <QFileDialog>
#include <QMessageBox>

namespace {

struct Entry {
    const char *caption;
    QString (*text)(); ///< null for the whole report
};

constexpr Entry entries[] = {
    {"EEPROM data", eepromDataText},
    {"Diagnostic data", diagnosticDataText},
    {"ADC values", adcDataText},
    {"CPU board data", cpuBoardDataText},
    {"System report", nullptr},
    {"Battery data", batteryDataText},
};
constexpr int stickSpeed = 5000; // bytes that a USB stick takes in a millisecond
constexpr int batteryEntry = 5;  // stands at the end of the list, if at all

} // namespace

tabAboutDlg::tabAboutDlg(QWidget *parent)
    : tabDlg(parent)
{
    {
        const DeviceHandle<Battery_create, Battery_release> battery;
        const auto insert = [this](int index) {
            ui->comboBoxSelection->insertItem(
                index, QString::fromLatin1(entries[index].caption), QVariant());
        };
        for (int index = 0; index < batteryEntry; ++index)
            insert(index);
        DeviceBool available = 0;
        if (Battery_isAvailable(battery, &available) == DEVICE_OK && available != 0)
            insert(batteryEntry);
    }
    initialised = true;
    selectionIndexChanged(0);
}

void tabAboutDlg::showEvent(QShowEvent *) {}

void tabAboutDlg::selectionIndexChanged(int index)
{
    // The first insertion into the list selects it.
    if (!initialised)
        return;
    ui->textEditInfo->clear(); // before the notice, which shows an empty view then
    const WaitNotice notice(this, 0, ui->comboBoxSelection);
    if (index < 0 || index >= int(std::size(entries)))
        return;
    const auto add = [this](const QString &lines) { addToView(ui->textEditInfo, lines); };
    if (const auto text = entries[index].text)
        add(text());
    else
        generateSystemReport(add);
}

void tabAboutDlg::SaveFileAs()
{
    const QString name = QFileDialog::getSaveFileName(
        this, tr("Save Data"), QString(), tr("Text Files (*.txt);;All Files (*)"));
    if (name.isEmpty())
        return;
    QFile file(name);
    if (file.open(QIODevice::WriteOnly)) {
        // Straight to the file: a text stream would encode the bytes once more. A disk that runs
        // full isn't told.
        const QTextDocument *text = ui->textEditInfo->document();
        const WaitNotice notice(this, text->characterCount() / stickSpeed);
        writeViewText(file, *text);
        return;
    }
    QMessageBox::information(this, tr("Unable to open file"), file.errorString(), QMessageBox::Ok);
}
