#pragma once

#include "frame/DeviceHandle.h"
#include "frame/Form.h"
#include "frame/tabDlg.h"
#include "ui_tabAdvancedDlg.h"

class QProgressDialog;

/**
 * Advanced page: programs and verifies the firmware of the three controllers, shuts the computer
 * down, and resets all settings. A firmware job runs in the device library; the page follows it to
 * its end and only then returns to the event loop, so at most one job runs.
 */
class tabAdvancedDlg : public tabDlg
{
    Q_OBJECT

public:
    explicit tabAdvancedDlg(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void clickedOpenFile();
    void clickedProgFront();
    void clickedProgSS();
    void clickedProgFPGA();
    void clickedShutdown();
    void clickedDefaults();
    void checkBoxStateChanged(int state);

private:
    struct Job;
    struct Target;

    void run(const Target &target);
    bool checkFileSuffix(const QString &path, const QString &suffix);
    bool confirmUpgrade();
    bool confirmSSUpgrade();
    bool confirmSSVerification();
    QProgressDialog *createProgressDialog();
    /** Whether the job ended without an error; an error has been shown then. */
    bool followJob();
    void showJobFailed(FirmwareUpgradeStatus status);
    void showUpgradeSucceeded();
    void showSSUpgradeSucceeded();
    void showVerificationSucceeded();
    void showSSVerificationSucceeded();

    Form<Ui::tabAdvanced> ui{this};
    DeviceHandle<Firmware_create, Firmware_release> firmware;
};
