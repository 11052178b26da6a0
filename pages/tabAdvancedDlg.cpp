#include "pages/tabAdvancedDlg.h"

#include "frame/WaitNotice.h"
#include "frame/reportError.h"
#include "platform/platform.h"
#include "report/factoryDefaults.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>

#include <iterator>

namespace {

/** That of the last file picked, for all pages of this run. */
QString &lastFirmwareDirectory()
{
    static QString directory;
    return directory;
}

constexpr int shortestReset = 1600; // milliseconds that the touch controller is given in it
constexpr int endPause = 200;       // milliseconds that the full bar stays before the result

// By FirmwareState. A job that ended with an error has one name while it is followed and another in
// the failure message.
constexpr const char *stateLabels[] = {"Initiating", "Preparing communication", "Reading File",
    "Converting file", "Flashing", "Verifying", "Done", "Done - ERROR"};
constexpr const char *failureStates[] = {"Initiating", "Preparing communication", "Reading File",
    "Converting file", "Flashing", "Verifying", "Done", "Complete with error"};

QString stateName(const char *const (&names)[8], std::int32_t state)
{
    const bool known = state >= FIRMWARE_INITIATING && state <= FIRMWARE_FAILED;
    return QString::fromLatin1(known ? names[state] : "Unknown state");
}

/**
 * The path as the library takes it. Where Latin-1 lacks a character, a question mark stands for it,
 * and some file could have that very name: the slash behind it makes it a path that no file has.
 */
QByteArray libraryPath(QString path)
{
    bool exact = !path.contains(QChar::Null);
    path.replace(QChar::Null, QLatin1Char('?'));
    QByteArray bytes = path.toLatin1();
    exact = exact && QString::fromLatin1(bytes) == path;
    return exact ? bytes : bytes + '/';
}

QMessageBox::StandardButton showBox(QWidget *page, QMessageBox::Icon icon, const char *title,
    const QString &text, QMessageBox::StandardButtons buttons = QMessageBox::Ok)
{
    QMessageBox box(icon, QString::fromLatin1(title), text, buttons, page);
    box.setTextFormat(Qt::PlainText);
    return QMessageBox::StandardButton(box.exec());
}

bool confirmed(QWidget *page, const char *title, const QString &question)
{
    return showBox(page, QMessageBox::Warning, title, question,
               QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

/** Whether the unit is known to run on its external battery. */
bool onBatteryPower()
{
    const DeviceHandle<Battery_create, Battery_release> battery;
    std::int32_t source = POWER_EXTERNAL;
    return Battery_getPowerSource(battery, &source) == DEVICE_OK && source == POWER_BATTERY;
}

/** Stays open until the job is over; neither Escape nor the window's system menu takes it away. */
class JobDialog : public QProgressDialog
{
public:
    using QProgressDialog::QProgressDialog;

    void reject() override {}

protected:
    void closeEvent(QCloseEvent *event) override { event->ignore(); }
};

} // namespace

/** One way to use a controller's firmware file. */
struct tabAdvancedDlg::Job {
    DeviceCode (*start)(FirmwareHandle handle, const char *path, bool reserved);
    const char *name;                  ///< of the start operation in error reports
    bool (tabAdvancedDlg::*confirm)(); ///< null if the job starts without a question
    void (tabAdvancedDlg::*showSucceeded)();
};

/** A controller. */
struct tabAdvancedDlg::Target {
    const char *suffix; ///< ending of its firmware files
    Job upgrade;
    Job verification;
};

tabAdvancedDlg::tabAdvancedDlg(QWidget *parent)
    : tabDlg(parent)
{}

void tabAdvancedDlg::showEvent(QShowEvent *)
{
    ui->checkBox->setText(QStringLiteral("Verify only"));
}

void tabAdvancedDlg::clickedOpenFile()
{
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Open File"), lastFirmwareDirectory(),
            QStringLiteral("All (*.*);;mcs (FPGA) (*.MCS);;hex (Front, SS) (*.HEX)"));
    if (path.isEmpty())
        return;
    ui->editFileName->setText(path);
    lastFirmwareDirectory() = QFileInfo(path).absolutePath();
}

// The form's "Program Front" gives way to "Program Front uC" at the first change.
void tabAdvancedDlg::checkBoxStateChanged(int state)
{
    const QString verb = state != 0 ? QStringLiteral("Verify") : QStringLiteral("Program");
    ui->buttonProgFPGA->setText(verb + QStringLiteral(" FPGA"));
    ui->buttonProgFront->setText(verb + QStringLiteral(" Front uC"));
    ui->buttonProgSS->setText(verb + QStringLiteral(" SS"));
}

void tabAdvancedDlg::clickedProgFPGA()
{
    static constexpr Target fpga = {"mcs",
        {Firmware_startFpgaUpgrade, "startFpgaUpgrade", &tabAdvancedDlg::confirmUpgrade,
            &tabAdvancedDlg::showUpgradeSucceeded},
        {Firmware_startFpgaVerification, "startFpgaVerification", nullptr,
            &tabAdvancedDlg::showVerificationSucceeded}};
    run(fpga);
}

void tabAdvancedDlg::clickedProgFront()
{
    static constexpr Target front = {"hex",
        {Firmware_startFrontUpgrade, "startFrontUpgrade", &tabAdvancedDlg::confirmUpgrade,
            &tabAdvancedDlg::showUpgradeSucceeded},
        {Firmware_startFrontVerification, "startFrontVerification", nullptr,
            &tabAdvancedDlg::showVerificationSucceeded}};
    run(front);
}

void tabAdvancedDlg::clickedProgSS()
{
    static constexpr Target supervisor = {"hex",
        {Firmware_startSSUpgrade, "startSSUpgrade", &tabAdvancedDlg::confirmSSUpgrade,
            &tabAdvancedDlg::showSSUpgradeSucceeded},
        {Firmware_startSSVerification, "startSSVerification",
            &tabAdvancedDlg::confirmSSVerification, &tabAdvancedDlg::showSSVerificationSucceeded}};
    run(supervisor);
}

void tabAdvancedDlg::run(const Target &target)
{
    const QString path = ui->editFileName->text();
    if (!checkFileSuffix(path, QString::fromLatin1(target.suffix)))
        return;
    const Job &job = ui->checkBox->isChecked() ? target.verification : target.upgrade;
    if (job.confirm && !(this->*job.confirm)())
        return;
    const auto code = job.start(firmware, libraryPath(path).constData(), false);
    if (code != DEVICE_OK)
        return reportError(code, job.name);
    if (followJob())
        (this->*job.showSucceeded)();
}

// Only the end of the name counts, to the letter: "FIRMWARE.HEX" is refused, "ahex" passes.
bool tabAdvancedDlg::checkFileSuffix(const QString &path, const QString &suffix)
{
    if (path.endsWith(suffix, Qt::CaseSensitive))
        return true;
    const QString text = ui->checkBox->isChecked()
                             ? QStringLiteral("The file to verify must be a .%1 file!")
                             : QStringLiteral("The file to program must be a .%1 file!");
    showBox(this, QMessageBox::Critical, "", text.arg(suffix));
    return false;
}

bool tabAdvancedDlg::confirmUpgrade()
{
    return confirmed(this, "Update progress",
        QStringLiteral("This operation may cause harm to your device.\nDo you want to continue?"));
}

bool tabAdvancedDlg::confirmSSUpgrade()
{
    if (onBatteryPower()) {
        showBox(this, QMessageBox::Warning, "Warning. Battery Power",
            QStringLiteral("Please use external power when updating SS!"));
        return false;
    }
    return confirmed(this, "Update progress",
        QStringLiteral("This operation may cause harm to your device.\n"
                       "After the update, the unit power must be turned off and then on again.\n"
                       "Do you want to continue?"));
}

bool tabAdvancedDlg::confirmSSVerification()
{
    return confirmed(this, "Verify",
        QStringLiteral(
            "After verifying SS, the unit power must be turned off and then on again.\n\n"
            "If you are verifying after an upgrade, or after another verification, the process may "
            "fail in the state preparing communication. In this case, it may work to retry.\n\n"
            "Do you want to continue?"));
}

QProgressDialog *tabAdvancedDlg::createProgressDialog()
{
    auto *dialog = new JobDialog(QStringLiteral("Fetching data..."), QString(), -1, 100, this,
        Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    dialog->setCancelButton(nullptr);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setAutoReset(false);
    dialog->setMinimumDuration(0);
    dialog->setWindowTitle(QStringLiteral("Update progress"));
    // By itself it would come up with the first events only, behind presses that wait there
    // already.
    dialog->show();
    return dialog;
}

// The library sets the pace: it holds back each answer until there is news. A window that is closed
// meanwhile only hides; the page lives until the event loop, which waits for this, has returned.
bool tabAdvancedDlg::followJob()
{
    QProgressDialog *dialog = createProgressDialog();
    dialog->setValue(0);
    FirmwareUpgradeStatus status = {};
    do {
        // A failed query leaves the record as it was, and the next one follows.
        Firmware_getUpgradeStatus(firmware, &status, true);
        dialog->setValue(status.percent);
        dialog->setLabelText(stateName(stateLabels, status.state));
        QCoreApplication::processEvents();
    } while (status.state < FIRMWARE_DONE && status.errorCode == DEVICE_OK);
    dialog->reset();
    platform::pause(endPause);
    if (status.errorCode != DEVICE_OK)
        showJobFailed(status);
    return status.errorCode == DEVICE_OK;
}

void tabAdvancedDlg::showJobFailed(FirmwareUpgradeStatus status)
{
    showBox(this, QMessageBox::Critical, "Update progress",
        QStringLiteral("Upgrade failed in state: %1 (%2%). \nError: %3")
            .arg(stateName(failureStates, status.state), QString::number(status.percent),
                deviceText(status.errorCode)));
}

void tabAdvancedDlg::showUpgradeSucceeded()
{
    showBox(this, QMessageBox::Information, "Update progress",
        QStringLiteral("Software update succeeded!\nPlease shut down the computer in order for the "
                       "update to take effect."));
}

void tabAdvancedDlg::showSSUpgradeSucceeded()
{
    showBox(this, QMessageBox::Information, "Update progress",
        QStringLiteral("Software update succeeded!\nPlease shut down the OS and \nthen toggle the "
                       "unit power for the update to take effect.\n\nIt is safe to turn off power "
                       "when the screen is all white."));
}

void tabAdvancedDlg::showVerificationSucceeded()
{
    showBox(this, QMessageBox::Information, "Verify",
        QStringLiteral("Software verification succeeded!"));
}

void tabAdvancedDlg::showSSVerificationSucceeded()
{
    showBox(this, QMessageBox::Information, "Verify",
        QStringLiteral("Software verification succeeded!\nPlease shut down the OS and \nthen "
                       "toggle the unit power.\n\nIt is safe to turn off power when the screen is "
                       "all white."));
}

void tabAdvancedDlg::clickedShutdown()
{
    reportError(Firmware_shutDown(firmware), "shutDown");
}

void tabAdvancedDlg::clickedDefaults()
{
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Default Settings"),
        QStringLiteral("This operation will reset all settings to the factory default state.\n\n"
                       "This includes settings that are only available from the API and not from "
                       "Vornsettings\n\nDo you want to continue?"),
        QMessageBox::Yes | QMessageBox::No, this);
    if (box.exec() != QMessageBox::Yes)
        return;
    {
        const WaitNotice notice(this, shortestReset);
        applyFactoryDefaults();
    }
    box.setWindowTitle(QStringLiteral("Default Settings"));
    box.setText(
        QStringLiteral("Operation complete. Restart the system for all settings to take effect."));
    box.setIcon(QMessageBox::Warning);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}
