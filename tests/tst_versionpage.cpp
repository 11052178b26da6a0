#include "pages/tabVersionDlg.h"
#include "tests/support/PageTest.h"

using namespace support;

namespace {

const QString warning =
    "Warning - The driver or API version could not be read. Consider reinstalling VornAux."_s;

/** The calls of one showing on the unit that init() makes. */
const QStringList showing{"Versions_getFPGAVersion() = 0 [1, 2, 3, 4]"_s,
    "Versions_getSSVersion() = 0 [255, 0, 1, 2]"_s, "Versions_getFrontVersion() = 0 [5, 6, 7, 8]"_s,
    "Versions_getVornAuxVersion() = 0 [9, 8, 7, 6]"_s,
    "Versions_getVornAuxDrvVersion() = 0 [4, 3, 2, 1]"_s,
    "Versions_getOSVersion() = 0 [0, 0, 0, 0]"_s, "Versions_create()"_s,
    "Versions_getVornAuxDrvVersion() = 0 [4, 3, 2, 1]"_s,
    "Versions_getVornAuxVersion() = 0 [9, 8, 7, 6]"_s, "Versions_release()"_s};

} // namespace

class VersionPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        setUnit("Versions.fpga"_s, "1.2.3.4"_s);
        setUnit("Versions.ss"_s, "255.0.1.2"_s);
        setUnit("Versions.front"_s, "5.6.7.8"_s);
        setUnit("Versions.vornAux"_s, "9.8.7.6"_s);
        setUnit("Versions.vornAuxDrv"_s, "4.3.2.1"_s);
        setUnit("Versions.os"_s, "0.0.0.0"_s);
    }

    void showReadsAllVersions()
    {
        tabVersionDlg page;
        calls();
        page.show();
        QCOMPARE(calls(), showing);
        QCOMPARE(text(page, "editFPGA"), "v1.2.3.4"_s);
        QCOMPARE(text(page, "editSS"), "v255.0.1.2"_s);
        QCOMPARE(text(page, "editFront"), "v5.6.7.8"_s);
        QCOMPARE(text(page, "editVornAux"), "v9.8.7.6"_s);
        QCOMPARE(text(page, "editVornSettings"), "v2.7.2.0 - 64 bit"_s);
        QCOMPARE(text(page, "editVornAuxDrv"), "v4.3.2.1"_s);
        QCOMPARE(text(page, "editOS"), "v0.0.0.0"_s);

        page.hide();
        setUnit("Versions.os"_s, "1.0.0.0"_s);
        page.show();
        QCOMPARE(text(page, "editOS"), "v1.0.0.0"_s);
    }

    void failureStandsInItsRow_data()
    {
        struct Row {
            const char *operation;
            const char *edit;
            const char *before; ///< whose text it shows when the unit doesn't have it
            QStringList hidden;
        };
        const Row rows[] = {
            {"getFPGAVersion", "editFPGA", "", {"editFPGA"_s, "label_2"_s}},
            {"getSSVersion", "editSS", "editFPGA", {"editSS"_s}},
            {"getFrontVersion", "editFront", "editSS", {"editFront"_s, "label_5"_s}},
            {"getVornAuxVersion", "editVornAux", nullptr, {}},
            {"getVornAuxDrvVersion", "editVornAuxDrv", "editVornSettings",
                {"editVornAuxDrv"_s, "label_6"_s}},
            {"getOSVersion", "editOS", nullptr, {}},
        };
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("edit");
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QStringList>("hidden");
        for (const Row &row : rows) {
            for (const int code : failureCodes) {
                const bool absent = code == 2 && row.before;
                QTest::addRow("%s %d", row.operation, code)
                    << QString::fromLatin1(row.operation) << code << QByteArray(row.edit)
                    << (absent ? QByteArray(row.before) : QByteArray("-"))
                    << (absent ? row.hidden : QStringList());
            }
        }
    }

    void failureStandsInItsRow()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        QFETCH(QByteArray, edit);
        QFETCH(QByteArray, before);
        QFETCH(QStringList, hidden);
        fault("Versions_"_s + operation, code);
        tabVersionDlg page;
        calls();
        page.show();
        QCOMPARE(calls(), failing(showing, "Versions_"_s + operation, code));

        if (before == "-")
            QCOMPARE(text(page, edit.constData()),
                operation + ": Error:  "_s + QString::fromLatin1(deviceErrorText(code)));
        else
            QCOMPARE(text(page, edit.constData()),
                before.isEmpty() ? QString() : text(page, before.constData()));
        for (const QWidget *widget : page.findChildren<QWidget *>())
            QCOMPARE(!widget->isVisible(), hidden.contains(widget->objectName()));
        const bool warned = operation.contains("VornAux"_s);
        QCOMPARE(boxes(&page), warned ? QStringList(warning) : QStringList());
    }

    void installationWarning_data()
    {
        QTest::addColumn<int>("driver");
        QTest::addColumn<int>("library");
        QTest::addColumn<bool>("warned");
        QTest::newRow("both fail") << 5 << 18 << true;
        QTest::newRow("absent driver") << 2 << 0 << true;
        QTest::newRow("extreme codes") << int(INT32_MIN) << int(INT32_MIN) << true;
        QTest::newRow("codes that cancel out") << 5 << -5 << false;
    }

    void installationWarning()
    {
        QFETCH(int, driver);
        QFETCH(int, library);
        QFETCH(bool, warned);
        fault("Versions_getVornAuxDrvVersion"_s, driver);
        fault("Versions_getVornAuxVersion"_s, library);
        tabVersionDlg page;
        for (int visit = 0; visit < 2; ++visit) {
            // The check's handle is held until somebody has read the warning.
            QStringList before;
            if (warned) {
                dialogs.plan([&](QDialog *dialog) {
                    before = calls();
                    dialog->accept();
                });
            }
            page.show();
            QCOMPARE(boxes(&page), warned ? QStringList(warning) : QStringList());
            QCOMPARE(calls().value(warned ? 0 : -1), warned ? "Versions_release()"_s : QString());
            QCOMPARE(before.isEmpty(), !warned);
            if (warned)
                QVERIFY(before.constLast().startsWith("Versions_getVornAuxVersion("_s));
            page.hide();
        }
    }

    void hiddenRowStaysHidden()
    {
        fault("Versions_getFPGAVersion"_s, 2);
        tabVersionDlg page;
        page.show();
        page.hide();
        clearFaults();
        page.show();
        QVERIFY(!child<QLineEdit>(&page, "editFPGA")->isVisible());
        QVERIFY(!child<QLabel>(&page, "label_2")->isVisible());
    }

    void everythingFails()
    {
        for (const QString &call : showing) {
            if (call.contains(" = "_s))
                fault(call.section(QLatin1Char('('), 0, 0), 18);
        }
        tabVersionDlg page;
        page.show();
        QCOMPARE(boxes(&page), QStringList(warning));
        const QString error = ": Error:  "_s + QString::fromLatin1(deviceErrorText(18));
        QCOMPARE(text(page, "editFPGA"), "getFPGAVersion"_s + error);
        QCOMPARE(text(page, "editOS"), "getOSVersion"_s + error);
        QCOMPARE(text(page, "editVornSettings"), "v2.7.2.0 - 64 bit"_s);
    }

    void missingLibraryVersionIsAnError()
    {
        fault("Versions_getVornAuxVersion"_s, 2);
        tabVersionDlg page;
        page.show();
        QCOMPARE(boxes(&page), QStringList(warning));
        QVERIFY(child<QLineEdit>(&page, "editVornAux")->isVisible());
        QVERIFY(text(page, "editVornAux").startsWith("getVornAuxVersion: Error: "_s));
    }

private:
    static QString text(const QWidget &page, const char *edit)
    {
        return child<QLineEdit>(&page, edit)->text();
    }
};

VORN_TEST_MAIN(VersionPageTest)
#include "tst_versionpage.moc"
