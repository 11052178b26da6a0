#include "pages/tabVersionDlg.h"

#include "frame/reportError.h"
#include "frame/version.h"

#include <vector>

namespace {

/** The four numbers of a version as the device hands them out. */
struct Version {
    std::uint8_t major = 0;
    std::uint8_t minor = 0;
    std::uint8_t release = 0;
    std::uint8_t build = 0;
};

using VersionQuery = decltype(&Versions_getFPGAVersion);

DeviceCode read(VersionQuery query, VersionsHandle versions, Version &version)
{
    return query(versions, &version.major, &version.minor, &version.release, &version.build);
}

QString text(const Version &version)
{
    return QStringLiteral("v%1.%2.%3.%4")
        .arg(version.major)
        .arg(version.minor)
        .arg(version.release)
        .arg(version.build);
}

/** One row of the page. */
struct VersionRow {
    VersionQuery query;
    QLineEdit *edit;
    const char *name; ///< of the query, in error texts
    /** What goes when the unit doesn't know that version; empty where that is an error too. */
    std::vector<QWidget *> optional;
};

} // namespace

tabVersionDlg::tabVersionDlg(QWidget *parent)
    : tabDlg(parent)
{}

void tabVersionDlg::showEvent(QShowEvent *)
{
    showVersions();
    checkInstallation();
}

void tabVersionDlg::showVersions()
{
    const VersionRow rows[] = {
        {Versions_getFPGAVersion, ui->editFPGA, "getFPGAVersion", {ui->editFPGA, ui->label_2}},
        // The label of the system supervisor stays.
        {Versions_getSSVersion, ui->editSS, "getSSVersion", {ui->editSS}},
        {Versions_getFrontVersion, ui->editFront, "getFrontVersion", {ui->editFront, ui->label_5}},
        {Versions_getVornAuxVersion, ui->editVornAux, "getVornAuxVersion", {}},
        {nullptr, ui->editVornSettings, nullptr, {}},
        {Versions_getVornAuxDrvVersion, ui->editVornAuxDrv, "getVornAuxDrvVersion",
            {ui->editVornAuxDrv, ui->label_6}},
        {Versions_getOSVersion, ui->editOS, "getOSVersion", {}},
    };

    QString shown; // carried on: a row without a text of its own shows the one before it
    for (const VersionRow &row : rows) {
        Version version;
        const auto code = row.query ? read(row.query, versions, version) : DEVICE_OK;
        if (!row.query) {
            shown = QStringLiteral("v%1 - 64 bit").arg(programVersion());
        } else if (code == DEVICE_OK) {
            shown = text(version);
        } else if (code == DEVICE_NOT_SUPPORTED && !row.optional.empty()) {
            for (QWidget *widget : row.optional)
                widget->hide();
        } else {
            shown = fieldErrorText(code, row.name);
        }
        row.edit->setText(shown);
    }
}

void tabVersionDlg::checkInstallation()
{
    const DeviceHandle<Versions_create, Versions_release> check;
    Version scratch;
    const auto driver = read(Versions_getVornAuxDrvVersion, check, scratch);
    const auto library = read(Versions_getVornAuxVersion, check, scratch);
    // The sum in 64 bits, so that two extreme codes can't overflow.
    if (std::int64_t(driver) + library != 0)
        showMessage(
            QStringLiteral("Warning - The driver or API version could not be read. Consider "
                           "reinstalling VornAux."));
}
