#include "pages/tabVersionDlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/FormCheck.h"

using support::child;

class VersionPageTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void form();
    void handleLivesWithThePage();
    void showReadsAllVersions();
    void failureStandsInItsRow_data();
    void failureStandsInItsRow();
    void installationWarning_data();
    void installationWarning();
    void hiddenRowStaysHidden();
    void missingLibraryVersionIsAnError();

private:
    static QString text(const QWidget &page, const char *edit)
    {
        return child<QLineEdit>(&page, edit)->text();
    }
};

namespace {

const QString warning = QStringLiteral(
    "Warning - The driver or API version could not be read. Consider reinstalling VornAux.");

const char *const edits[] = {"editFPGA", "editSS", "editFront", "editVornAux", "editVornSettings",
    "editVornAuxDrv", "editOS"};

} // namespace

void VersionPageTest::form()
{
    const tabVersionDlg page;
    QCOMPARE(page.objectName(), QStringLiteral("tabVersion"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Version"));
    QCOMPARE(page.size(), QSize(600, 320));
    QCOMPARE(support::compareForm(&page,
                 {{"groupBox", "QGroupBox", "Peripheral software"}, {"label_2", "QLabel", "FPGA:"},
                     {"label_4", "QLabel", "System Supervisor:"},
                     {"label_5", "QLabel", "Front controller:"},
                     {"groupBox_2", "QGroupBox", "Application interface"},
                     {"label", "QLabel", "Vornaux API:"}, {"label_3", "QLabel", "Vornsettings:"},
                     {"label_6", "QLabel", "Vornaux Driver:"},
                     {"groupBox_3", "QGroupBox", "Operating System"},
                     {"label_7", "QLabel", "OS version:"}, {"icon", "QLabel"}}),
        QString());
    QCOMPARE(child<QWidget>(&page, "groupBox")->geometry(), QRect(10, 0, 431, 120));
    QCOMPARE(child<QWidget>(&page, "groupBox_2")->geometry(), QRect(10, 121, 431, 120));
    QCOMPARE(child<QWidget>(&page, "groupBox_3")->geometry(), QRect(10, 242, 431, 70));
    QCOMPARE(child<QWidget>(&page, "icon")->geometry(), QRect(490, 30, 60, 60));
    for (const char *name : edits) {
        const auto *edit = child<QLineEdit>(&page, name);
        QVERIFY2(edit->isReadOnly() && edit->isEnabled(), name);
    }
}

void VersionPageTest::handleLivesWithThePage()
{
    {
        const tabVersionDlg page;
        QCOMPARE(calls(), QStringList({QStringLiteral("Versions_create()")}));
    }
    QCOMPARE(calls(), QStringList({QStringLiteral("Versions_release()")}));
}

void VersionPageTest::showReadsAllVersions()
{
    setUnit(QStringLiteral("Versions.fpga"), QStringLiteral("1.2.3.4"));
    setUnit(QStringLiteral("Versions.ss"), QStringLiteral("255.0.1.2"));
    setUnit(QStringLiteral("Versions.front"), QStringLiteral("5.6.7.8"));
    setUnit(QStringLiteral("Versions.vornAux"), QStringLiteral("9.8.7.6"));
    setUnit(QStringLiteral("Versions.vornAuxDrv"), QStringLiteral("4.3.2.1"));
    setUnit(QStringLiteral("Versions.os"), QStringLiteral("0.0.0.0"));
    tabVersionDlg page;
    calls();
    page.show();
    QCOMPARE(calls(), QStringList({QStringLiteral("Versions_getFPGAVersion() = 0 [1, 2, 3, 4]"),
                          QStringLiteral("Versions_getSSVersion() = 0 [255, 0, 1, 2]"),
                          QStringLiteral("Versions_getFrontVersion() = 0 [5, 6, 7, 8]"),
                          QStringLiteral("Versions_getVornAuxVersion() = 0 [9, 8, 7, 6]"),
                          QStringLiteral("Versions_getVornAuxDrvVersion() = 0 [4, 3, 2, 1]"),
                          QStringLiteral("Versions_getOSVersion() = 0 [0, 0, 0, 0]"),
                          QStringLiteral("Versions_create()"),
                          QStringLiteral("Versions_getVornAuxDrvVersion() = 0 [4, 3, 2, 1]"),
                          QStringLiteral("Versions_getVornAuxVersion() = 0 [9, 8, 7, 6]"),
                          QStringLiteral("Versions_release()")}));
    QCOMPARE(text(page, "editFPGA"), QStringLiteral("v1.2.3.4"));
    QCOMPARE(text(page, "editSS"), QStringLiteral("v255.0.1.2"));
    QCOMPARE(text(page, "editFront"), QStringLiteral("v5.6.7.8"));
    QCOMPARE(text(page, "editVornAux"), QStringLiteral("v9.8.7.6"));
    QCOMPARE(text(page, "editVornSettings"), QStringLiteral("v2.7.2.0 - 64 bit"));
    QCOMPARE(text(page, "editVornAuxDrv"), QStringLiteral("v4.3.2.1"));
    QCOMPARE(text(page, "editOS"), QStringLiteral("v0.0.0.0"));

    page.hide();
    setUnit(QStringLiteral("Versions.os"), QStringLiteral("1.0.0.0"));
    page.show();
    QCOMPARE(text(page, "editOS"), QStringLiteral("v1.0.0.0"));
}

void VersionPageTest::failureStandsInItsRow_data()
{
    struct Row {
        const char *operation;
        const char *edit;
        const char *before; ///< whose text it shows when the unit doesn't have it
        QStringList hidden;
    };
    const Row rows[] = {
        {"getFPGAVersion", "editFPGA", "", {QStringLiteral("editFPGA"), QStringLiteral("label_2")}},
        {"getSSVersion", "editSS", "editFPGA", {QStringLiteral("editSS")}},
        {"getFrontVersion", "editFront", "editSS",
            {QStringLiteral("editFront"), QStringLiteral("label_5")}},
        {"getVornAuxVersion", "editVornAux", nullptr, {}},
        {"getVornAuxDrvVersion", "editVornAuxDrv", "editVornSettings",
            {QStringLiteral("editVornAuxDrv"), QStringLiteral("label_6")}},
        {"getOSVersion", "editOS", nullptr, {}},
    };
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("edit");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QStringList>("hidden");
    for (const Row &row : rows) {
        for (const int code : {2, 18, 20, 5, -1}) {
            const bool absent = code == 2 && row.before;
            QTest::addRow("%s %d", row.operation, code)
                << QString::fromLatin1(row.operation) << code << QByteArray(row.edit)
                << (absent ? QByteArray(row.before) : QByteArray("-"))
                << (absent ? row.hidden : QStringList());
        }
    }
}

void VersionPageTest::failureStandsInItsRow()
{
    QFETCH(QString, operation);
    QFETCH(int, code);
    QFETCH(QByteArray, edit);
    QFETCH(QByteArray, before);
    QFETCH(QStringList, hidden);
    fault(QLatin1String("Versions_") + operation, code);
    tabVersionDlg page;
    page.show();

    if (before == "-")
        QCOMPARE(text(page, edit.constData()),
            operation + QLatin1String(": Error:  ") + QString::fromLatin1(deviceErrorText(code)));
    else
        QCOMPARE(text(page, edit.constData()),
            before.isEmpty() ? QString() : text(page, before.constData()));
    for (const QWidget *widget : page.findChildren<QWidget *>())
        QCOMPARE(!widget->isVisible(), hidden.contains(widget->objectName()));
    const bool warned = operation.contains(QLatin1String("VornAux"));
    QCOMPARE(dialogs.takeTexts(), warned ? QStringList({warning}) : QStringList());
}

void VersionPageTest::installationWarning_data()
{
    QTest::addColumn<int>("driver");
    QTest::addColumn<int>("library");
    QTest::addColumn<bool>("warned");
    QTest::newRow("both fail") << 5 << 18 << true;
    QTest::newRow("absent driver") << 2 << 0 << true;
    QTest::newRow("extreme codes") << int(INT32_MIN) << int(INT32_MIN) << true;
    QTest::newRow("codes that cancel out") << 5 << -5 << false;
}

void VersionPageTest::installationWarning()
{
    QFETCH(int, driver);
    QFETCH(int, library);
    QFETCH(bool, warned);
    fault(QStringLiteral("Versions_getVornAuxDrvVersion"), driver);
    fault(QStringLiteral("Versions_getVornAuxVersion"), library);
    tabVersionDlg page;
    for (int visit = 0; visit < 2; ++visit) {
        page.show();
        const auto seen = dialogs.take();
        QCOMPARE(seen.size(), warned ? 1 : 0);
        if (warned) {
            QCOMPARE(seen[0].title, QStringLiteral("Vornsettings"));
            QCOMPARE(seen[0].text, warning);
            QCOMPARE(seen[0].icon, QMessageBox::Critical);
            QCOMPARE(seen[0].buttons, QStringList({QStringLiteral("OK")}));
            QCOMPARE(seen[0].parent, static_cast<QWidget *>(&page));
            QVERIFY(seen[0].modal);
        }
        page.hide();
    }
}

void VersionPageTest::hiddenRowStaysHidden()
{
    fault(QStringLiteral("Versions_getFPGAVersion"), 2);
    tabVersionDlg page;
    page.show();
    page.hide();
    clearFaults();
    page.show();
    QVERIFY(!child<QLineEdit>(&page, "editFPGA")->isVisible());
    QVERIFY(!child<QLabel>(&page, "label_2")->isVisible());
}

void VersionPageTest::missingLibraryVersionIsAnError()
{
    fault(QStringLiteral("Versions_getVornAuxVersion"), 2);
    tabVersionDlg page;
    page.show();
    QCOMPARE(dialogs.takeTexts(), QStringList({warning}));
    QVERIFY(child<QLineEdit>(&page, "editVornAux")->isVisible());
    QVERIFY(text(page, "editVornAux").startsWith(QLatin1String("getVornAuxVersion: Error: ")));
}

VORN_TEST_MAIN(VersionPageTest)
#include "tst_versionpage.moc"
