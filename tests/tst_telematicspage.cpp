#include "telematics/tabTelematicsDlg.h"
#include "telematics/telematicsState.h"
#include "tests/support/PageTest.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SerialLine.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/system.h"

#include <QElapsedTimer>
#include <QScrollBar>

#include <memory>

using namespace support;

namespace {

const QByteArray fix = "$GPRMC,123519.00,A,4807.038,N,01131.000,E,022.4,084.4,230324,003.1,W*6A\r\n"
                       "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n"
                       "$PFST,FOM,12.5*6C\r\n";

const char *const parsedView[] = {"label", "label_3", "label_4", "label_5", "label_6", "label_7",
    "editGpsDate", "editGpsPos", "editGpsSat", "editGpsAlt", "editGpsSpeed", "editGpsAcc"};
const char *const consoleButtons[] = {"pushButtonCall", "pushButtonCustomExec",
    "pushButtonGetNetwork", "pushButtonGetPIN", "pushButtonSetPin"};

constexpr int threadEnd = 20000; // milliseconds, generous

/** Zero bytes, which end a chunk's text, fill up what the thread's read waits for. */
QByteArray fullChunk(const QByteArray &text)
{
    return text.leftJustified(512, '\0');
}

} // namespace

/** The Telematics page but for its modem console, which has a test of its own. */
class TelematicsPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        useNoOtherLines();
    }

    void cleanup()
    {
        // A thread that was left behind ends with the line's silence.
        QTRY_VERIFY_WITH_TIMEOUT(!gpsPort.load(), threadEnd);
        gps.reset();
        gsm.reset();
        PageTest::cleanup();
    }

    void constructionAndDestruction()
    {
        {
            const tabTelematicsDlg page;
            QCOMPARE(calls(),
                QStringList({"Telematics_create()"_s, "Hardware_create()"_s, "Settings_create()"_s,
                    "Settings_getString(\"VornsettingsGsmPort\", 255) = 0 [\"COM3\"]"_s,
                    "Settings_getString(\"VornsettingsGpsPort\", 255) = 0 [\"COM4\"]"_s,
                    "Hardware_hasWlan() = 0 [true]"_s, "Hardware_hasGps() = 0 [true]"_s,
                    "Hardware_hasGsm() = 0 [true]"_s, "Hardware_hasBluetooth() = 0 [true]"_s,
                    "Settings_release()"_s, "Hardware_release()"_s}));
        }
        QCOMPARE(calls(), QStringList({"Telematics_release()"_s, "Settings_create()"_s,
                              "Settings_setString(\"VornsettingsGsmPort\", \"COM3\") = 0"_s,
                              "Settings_setString(\"VornsettingsGpsPort\", \"COM4\") = 0"_s,
                              "Settings_release()"_s}));
    }

    void storedNamesAreShownAndKept()
    {
        {
            const tabTelematicsDlg page;
            child<QLineEdit>(&page, "lineEditGSMdev")
                ->setText(QString::fromUtf8("tty\u00c9\u20ac"));
            child<QLineEdit>(&page, "lineEditGPSdev")->setText("/dev/ttyS7"_s);
        }
        const tabTelematicsDlg page;
        QCOMPARE(text(page, "lineEditGSMdev"), QString::fromUtf8("tty\u00c9\u20ac"));
        QCOMPARE(text(page, "lineEditGPSdev"), "/dev/ttyS7"_s);
    }

    void namesWithoutSetting_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("empty") << 0;
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << code;
    }

    void namesWithoutSetting()
    {
        QFETCH(int, code);
        if (code == 0) {
            const tabTelematicsDlg page;
            child<QLineEdit>(&page, "lineEditGSMdev")->clear();
            child<QLineEdit>(&page, "lineEditGPSdev")->clear();
        } else {
            fault("Settings_getString"_s, code);
        }
        const tabTelematicsDlg page;
        QCOMPARE(text(page, "lineEditGSMdev"), "COM3"_s);
        QCOMPARE(text(page, "lineEditGPSdev"), "COM4"_s);
    }

    void availability_data()
    {
        QTest::addColumn<int>("radios"); // 1 GSM, 2 WLAN, 4 GPS, 8 Bluetooth
        for (int radios = 0; radios < 16; ++radios)
            QTest::addRow("%d", radios) << radios;
    }

    void availability()
    {
        QFETCH(int, radios);
        const struct {
            int bit;
            const char *property;
            const char *box;
            const char *startupBox;
            const char *toolTip;
            QStringList others;
            const char *tab;
        } rows[] = {{1, "Hardware.hasGsm", "checkBoxGPRS", "checkBoxGPRS_Startup",
                        "GSM/GPRS is not available", {"lineEditGSMdev"_s, "label_9"_s}, "GSM/GPRS"},
            {2, "Hardware.hasWlan", "checkBoxWLAN", "checkBoxWLAN_Startup", "WLAN is not available",
                {}, nullptr},
            {4, "Hardware.hasGps", "checkBoxGPS", "checkBoxGPS_Startup", "GPS is not available",
                {"lineEditGPSdev"_s, "label_8"_s}, "GPS"},
            {8, "Hardware.hasBluetooth", "checkBoxBT", "checkBoxBT_Startup",
                "Bluetooth is not available", {}, nullptr}};
        for (const auto &row : rows)
            setUnit(QString::fromLatin1(row.property), radios & row.bit ? "true"_s : "false"_s);
        tabTelematicsDlg page;
        page.show();
        QStringList captions;
        for (int i = 0; i < tabs(page)->count(); ++i)
            captions << tabs(page)->tabText(i);
        QCOMPARE(captions.size(), 1 + (radios & 1) + (radios >> 2 & 1));
        QCOMPARE(captions.constFirst(), "Settings"_s);
        for (const auto &row : rows) {
            const bool present = radios & row.bit;
            for (const char *name : {row.box, row.startupBox}) {
                const auto *box = child<QCheckBox>(&page, name);
                QCOMPARE(box->isVisible(), present);
                QCOMPARE(box->isEnabled(), present);
                QCOMPARE(box->toolTip(), present ? QString() : QString::fromLatin1(row.toolTip));
                if (!present)
                    QVERIFY(!box->isChecked());
            }
            for (const QString &name : row.others)
                QCOMPARE(page.findChild<QWidget *>(name)->isVisible(), present);
            if (row.tab)
                QCOMPARE(captions.contains(QString::fromLatin1(row.tab)), present);
        }
        QStringList names;
        for (const auto &[bit, name] : {std::pair(8, "Bluetooth"), std::pair(2, "WLAN"),
                 std::pair(1, "GSM/GPRS"), std::pair(4, "GPS")}) {
            if (radios & bit)
                names << QString::fromLatin1(name);
        }
        QCOMPARE(
            text(page, "lineEditAvailInterfaces"), "Available interfaces: "_s + names.join(", "_s));
        QCOMPARE(child<QLabel>(&page, "label_GPSantenna")->text(),
            radios & 4 ? "GPS antenna status: OK"_s : "GPS antenna status: Unknown"_s);
    }

    void failedPresenceQueryMeansAbsent_data()
    {
        addFailureRows({"Hardware_hasWlan"_s, "Hardware_hasGps"_s, "Hardware_hasGsm"_s,
            "Hardware_hasBluetooth"_s});
    }

    void failedPresenceQueryMeansAbsent()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code);
        tabTelematicsDlg page;
        const QString available = text(page, "lineEditAvailInterfaces");
        QCOMPARE(available.contains("WLAN"_s), operation != "Hardware_hasWlan"_s);
        QCOMPARE(available.endsWith("GPS"_s), operation != "Hardware_hasGps"_s);
        QCOMPARE(available.contains("GSM"_s), operation != "Hardware_hasGsm"_s);
        QCOMPARE(available.contains("Bluetooth"_s), operation != "Hardware_hasBluetooth"_s);
    }

    void showReadsAllSwitches()
    {
        setUnit("Telematics.gprsPowerStatus"_s, "1"_s);
        setUnit("Telematics.wlanPowerStatus"_s, "0"_s);
        setUnit("Telematics.btPowerStatus"_s, "1"_s);
        setUnit("Telematics.gpsPowerStatus"_s, "1"_s);
        setUnit("Telematics.gprsStartUpPowerStatus"_s, "0"_s);
        setUnit("Telematics.wlanStartUpPowerStatus"_s, "1"_s);
        setUnit("Telematics.gpsStartUpPowerStatus"_s, "2"_s); // every value but 1 is off
        setUnit("Telematics.btStartUpPowerStatus"_s, "1"_s);
        tabTelematicsDlg page;
        calls();
        page.show();
        QCOMPARE(calls(), QStringList({"Telematics_getGPRSPowerStatus() = 0 [1]"_s,
                              "Telematics_getWLANPowerStatus() = 0 [0]"_s,
                              "Telematics_getBTPowerStatus() = 0 [1]"_s,
                              "Telematics_getGPSPowerStatus() = 0 [1]"_s,
                              "Telematics_getGPSAntennaStatus() = 0 [1]"_s,
                              "Telematics_getGPRSStartUpPowerStatus() = 0 [0]"_s,
                              "Telematics_getWLANStartUpPowerStatus() = 0 [1]"_s,
                              "Telematics_getGPSStartUpPowerStatus() = 0 [2]"_s,
                              "Telematics_getBTStartUpPowerStatus() = 0 [1]"_s}));
        const std::pair<const char *, bool> boxes[] = {{"checkBoxGPRS", true},
            {"checkBoxWLAN", false}, {"checkBoxBT", true}, {"checkBoxGPS", true},
            {"checkBoxGPRS_Startup", false}, {"checkBoxWLAN_Startup", true},
            {"checkBoxGPS_Startup", false}, {"checkBoxBT_Startup", true}};
        for (const auto &[name, checked] : boxes)
            QCOMPARE(child<QCheckBox>(&page, name)->isChecked(), checked);
    }

    void everyShowReadsAnew()
    {
        const char *const states[] = {"gprsPowerStatus", "wlanPowerStatus", "btPowerStatus",
            "gpsPowerStatus", "gprsStartUpPowerStatus", "wlanStartUpPowerStatus",
            "gpsStartUpPowerStatus", "btStartUpPowerStatus"};
        tabTelematicsDlg page;
        const auto showWith = [&](const char *value) {
            for (const char *state : states)
                setUnit("Telematics."_s + QString::fromLatin1(state), QString::fromLatin1(value));
            page.hide();
            page.show();
            dialogs.take(); // of an antenna without power
        };
        for (const char *off : {"0", "2"}) { // every value but 1
            showWith("1");
            for (const auto *box : page.findChildren<QCheckBox *>())
                QVERIFY2(box->isChecked(), qPrintable(box->objectName()));
            showWith(off);
            for (const auto *box : page.findChildren<QCheckBox *>())
                QVERIFY2(!box->isChecked(), qPrintable(box->objectName()));
        }
    }

    void failureOfALaterShow_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("property");
        QTest::addColumn<int>("code");
        const char *const rows[][3] = {
            {"checkBoxGPRS", "getGPRSPowerStatus", "Telematics.gprsPowerStatus"},
            {"checkBoxWLAN", "getWLANPowerStatus", "Telematics.wlanPowerStatus"},
            {"checkBoxBT", "getBTPowerStatus", "Telematics.btPowerStatus"},
            {"checkBoxGPS", "getGPSPowerStatus", "Telematics.gpsPowerStatus"},
            {"checkBoxGPRS_Startup", "getGPRSStartUpPowerStatus",
                "Telematics.gprsStartUpPowerStatus"},
            {"checkBoxWLAN_Startup", "getWLANStartUpPowerStatus",
                "Telematics.wlanStartUpPowerStatus"},
            {"checkBoxGPS_Startup", "getGPSStartUpPowerStatus", "Telematics.gpsStartUpPowerStatus"},
            {"checkBoxBT_Startup", "getBTStartUpPowerStatus", "Telematics.btStartUpPowerStatus"}};
        for (const auto &row : rows) {
            for (const int code : failureCodes)
                QTest::addRow("%s %d", row[1], code)
                    << QByteArray(row[0]) << QString::fromLatin1(row[1])
                    << QString::fromLatin1(row[2]) << code;
        }
    }

    /** A power switch keeps the state that it knew, a start-up switch doesn't. */
    void failureOfALaterShow()
    {
        QFETCH(QByteArray, box);
        QFETCH(QString, operation);
        QFETCH(QString, property);
        QFETCH(int, code);
        setUnit(property, "1"_s);
        tabTelematicsDlg page;
        page.show();
        QVERIFY(child<QCheckBox>(&page, box.constData())->isChecked());
        fault("Telematics_"_s + operation, code);
        page.hide();
        page.show();
        const bool startup = operation.contains("StartUp"_s);
        QCOMPARE(child<QCheckBox>(&page, box.constData())->isChecked(), !startup);
        QCOMPARE(boxes(&page),
            startup || code == 2 ? QStringList() : QStringList({errorBox(code, operation)}));
    }

    void failingStatus_data()
    {
        addFailureRows({"Telematics_getGPRSPowerStatus"_s, "Telematics_getWLANPowerStatus"_s,
            "Telematics_getBTPowerStatus"_s, "Telematics_getGPSPowerStatus"_s,
            "Telematics_getGPSAntennaStatus"_s, "Telematics_getGPRSStartUpPowerStatus"_s,
            "Telematics_getWLANStartUpPowerStatus"_s, "Telematics_getGPSStartUpPowerStatus"_s,
            "Telematics_getBTStartUpPowerStatus"_s});
    }

    void failingStatus()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code);
        tabTelematicsDlg page;
        const bool startup = operation.contains("StartUp"_s);
        const bool antenna = operation.contains("Antenna"_s);
        const bool silent = startup || (code == 2 && !antenna);
        if (antenna)
            planBox([&] { return child<QLabel>(&page, "label_GPSantenna")->text(); });
        page.show();
        QCOMPARE(behindBox(), antenna ? "GPS antenna status: OK"_s : QString()); // the form's
        const QString name = operation.mid(int(qstrlen("Telematics_")));
        QCOMPARE(boxes(&page), silent ? QStringList() : QStringList({errorBox(code, name)}));
        for (const auto *box : page.findChildren<QCheckBox *>()) {
            const bool modem = box->objectName() == "checkBoxGPRS"_s;
            QCOMPARE(box->isVisible(),
                !(modem && code == 2 && operation == "Telematics_getGPRSPowerStatus"_s));
        }
        if (antenna)
            QCOMPARE(
                child<QLabel>(&page, "label_GPSantenna")->text(), "GPS antenna status: Unknown"_s);
        if (startup) {
            const QString box = "checkBox"_s +
                                (name.contains("GPRS"_s)      ? "GPRS"_s
                                    : name.contains("WLAN"_s) ? "WLAN"_s
                                    : name.contains("GPS"_s)  ? "GPS"_s
                                                              : "BT"_s) +
                                "_Startup"_s;
            QVERIFY(!page.findChild<QCheckBox *>(box)->isChecked());
        }
    }

    void antennaStates_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("shown");
        QTest::newRow("good") << 1 << "GPS antenna status: OK"_s;
        QTest::newRow("open") << 0 << "GPS antenna status: Error: Open or short"_s;
        QTest::newRow("short") << 2 << "GPS antenna status: Error: Open or short"_s;
    }

    void antennaStates()
    {
        QFETCH(int, status);
        QFETCH(QString, shown);
        setUnit("Telematics.gpsAntennaStatus"_s, QString::number(status));
        tabTelematicsDlg page;
        page.show();
        QCOMPARE(child<QLabel>(&page, "label_GPSantenna")->text(), shown);
    }

    void switchesWriteTheirState_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("property");
        const char *const rows[][3] = {
            {"checkBoxGPRS", "setGPRSPowerStatus", "Telematics.gprsPowerStatus"},
            {"checkBoxWLAN", "setWLANPowerStatus", "Telematics.wlanPowerStatus"},
            {"checkBoxBT", "setBTPowerStatus", "Telematics.btPowerStatus"},
            {"checkBoxGPS", "setGPSPowerStatus", "Telematics.gpsPowerStatus"},
            {"checkBoxGPRS_Startup", "setGPRSStartUpPowerStatus",
                "Telematics.gprsStartUpPowerStatus"},
            {"checkBoxWLAN_Startup", "setWLANStartUpPowerStatus",
                "Telematics.wlanStartUpPowerStatus"},
            {"checkBoxBT_Startup", "setBTStartUpPowerStatus", "Telematics.btStartUpPowerStatus"},
            {"checkBoxGPS_Startup", "setGPSStartUpPowerStatus",
                "Telematics.gpsStartUpPowerStatus"}};
        for (const auto &row : rows)
            QTest::newRow(row[0]) << QByteArray(row[0]) << QString::fromLatin1(row[1])
                                  << QString::fromLatin1(row[2]);
    }

    void switchesWriteTheirState()
    {
        QFETCH(QByteArray, box);
        QFETCH(QString, operation);
        QFETCH(QString, property);
        setUnit(property, "1"_s);
        tabTelematicsDlg page;
        page.show();
        calls();
        click(&page, box.constData());
        QCOMPARE(calls(), QStringList({"Telematics_"_s + operation + "(0) = 0"_s}));
        QCOMPARE(unit(property), "0"_s);
        click(&page, box.constData());
        QCOMPARE(calls(), QStringList({"Telematics_"_s + operation + "(1) = 0"_s}));
    }

    void failingSwitch_data()
    {
        QTest::addColumn<QByteArray>("box");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("code");
        const char *const rows[][2] = {{"checkBoxGPRS", "setGPRSPowerStatus"},
            {"checkBoxWLAN", "setWLANPowerStatus"}, {"checkBoxBT", "setBTPowerStatus"},
            {"checkBoxGPS", "setGPSPowerStatus"},
            {"checkBoxGPRS_Startup", "setGPRSStartUpPowerStatus"},
            {"checkBoxWLAN_Startup", "setWLANStartUpPowerStatus"},
            {"checkBoxBT_Startup", "setBTStartUpPowerStatus"},
            {"checkBoxGPS_Startup", "setGPSStartUpPowerStatus"}};
        for (const auto &row : rows) {
            for (const int code : failureCodes)
                QTest::addRow("%s %d", row[1], code)
                    << QByteArray(row[0]) << QString::fromLatin1(row[1]) << code;
        }
    }

    void failingSwitch()
    {
        QFETCH(QByteArray, box);
        QFETCH(QString, operation);
        QFETCH(int, code);
        tabTelematicsDlg page;
        page.show();
        fault("Telematics_"_s + operation, code);
        const bool before = child<QCheckBox>(&page, box.constData())->isChecked();
        click(&page, box.constData());
        QVERIFY(child<QCheckBox>(&page, box.constData())->isChecked() != before);
        QCOMPARE(boxes(&page), QStringList({errorBox(code, operation)}));
    }

    void viewsOfTheGpsData()
    {
        tabTelematicsDlg page;
        page.show();
        const auto check = [&](bool parsed) {
            for (const char *name : parsedView)
                QCOMPARE(child<QWidget>(&page, name)->isHidden(), !parsed);
            QCOMPARE(child<QWidget>(&page, "textEdit")->isHidden(), parsed);
            QCOMPARE(child<QPushButton>(&page, "buttonToggleData")->text(),
                parsed ? "Serial data"_s : "GPS data"_s);
            QCOMPARE(child<QGroupBox>(&page, "groupBox_2")->title(),
                parsed ? "GPS data"_s : "Serial data"_s);
            QCOMPARE(gpsDataMode, parsed);
        };
        check(true);
        QMetaObject::invokeMethod(&page, "GPSModeClicked");
        check(false);
        QCOMPARE(child<QWidget>(&page, "textEdit")->geometry(), QRect(16, 30, 400, 180));
        QMetaObject::invokeMethod(&page, "GPSModeClicked");
        check(true);
    }

    void gpsTabWithoutPower_data() { addOffRows(); }

    void gpsTabWithoutPower()
    {
        QFETCH(QString, state);
        useLines();
        setUnit("Telematics.gpsPowerStatus"_s, state);
        setUnit("Telematics.gpsAntennaStatus"_s, "1"_s);
        tabTelematicsDlg page;
        page.show();
        dialogs.take();
        tabs(page)->setCurrentIndex(1);
        dialogs.take();
        QCOMPARE(text(page, "editGpsDate"), "Please enable GPS Power!"_s);
        QVERIFY(!child<QWidget>(&page, "buttonToggleData")->isVisible());
        QVERIFY(!child<QWidget>(&page, "buttonToggleData")->isEnabled());
        QVERIFY(!gpsPort.load());
        QVERIFY(!threadStarts());
    }

    void gpsTabShowsLiveData()
    {
        useLines();
        tabTelematicsDlg page;
        page.show();
        tabs(page)->setCurrentIndex(1);
        QCOMPARE(text(page, "editGpsDate"), "INVALID"_s);
        QVERIFY(child<QWidget>(&page, "buttonToggleData")->isVisible());
        QVERIFY(child<QWidget>(&page, "buttonToggleData")->isEnabled());
        QCOMPARE(gps->speed(), 9600);
        QCOMPARE(formatOf(gpsPort),
            (QList<int>{SERIAL_9600, SERIAL_8_BITS, SERIAL_NO_PARITY, SERIAL_1_STOP_BIT}));
        QVERIFY(gps->send(fullChunk(fix)));
        QTRY_COMPARE(text(page, "editGpsAcc"), "12.5 meters"_s);
        QCOMPARE(text(page, "editGpsDate"), "2024-03-23 - 12:35:19"_s);
        QCOMPARE(text(page, "editGpsPos"), "4807.038N 01131.000E "_s);
        QCOMPARE(text(page, "editGpsSat"), "08"_s);
        QCOMPARE(text(page, "editGpsAlt"), "545.4 meters"_s);
        QCOMPARE(text(page, "editGpsSpeed"), "022.4 knots, Heading: 084.4 degrees"_s);
        QCOMPARE(child<QPlainTextEdit>(&page, "textEdit")->toPlainText().remove(QLatin1Char('\n')),
            QString::fromLatin1(fix).remove("\r\n"_s));
        // The text grows with each chunk.
        QVERIFY(gps->send(fullChunk("more\n")));
        QTRY_VERIFY(child<QPlainTextEdit>(&page, "textEdit")->toPlainText().endsWith("more\n"_s));

        // On leaving, five fields are emptied and the accuracy stays.
        leaveGpsTab(page);
        for (const char *edit :
            {"editGpsDate", "editGpsPos", "editGpsSat", "editGpsAlt", "editGpsSpeed"})
            QCOMPARE(text(page, edit), "INVALID"_s);
        QCOMPARE(text(page, "editGpsAcc"), "12.5 meters"_s);
        QCOMPARE(child<QPlainTextEdit>(&page, "textEdit")->toPlainText(), QString());
        QVERIFY(!child<QWidget>(&page, "buttonToggleData")->isVisible());
        QVERIFY(!gpsPort.load());
    }

    void antennaOnTheGpsTab()
    {
        useLines();
        tabTelematicsDlg page;
        page.show();
        tabs(page)->setCurrentIndex(1);
        const auto *antenna = child<QLabel>(&page, "label_GPSantenna");
        QTRY_COMPARE(antenna->text(), "GPS antenna status: OK"_s);
        setUnit("Telematics.gpsAntennaStatus"_s, "0"_s);
        QVERIFY(gps->send(fullChunk(fix)));
        QTRY_COMPARE(antenna->text(), "GPS antenna status: Error: Open or short"_s);
        leaveGpsTab(page);
    }

    void gpsThreadGoesOnBehindAnotherPage()
    {
        useLines();
        tabTelematicsDlg page;
        page.show();
        tabs(page)->setCurrentIndex(1);
        page.hide();
        QVERIFY(gps->send(fullChunk(fix)));
        QTRY_COMPARE(text(page, "editGpsAcc"), "12.5 meters"_s);
        calls();
        page.show();
        QVERIFY(gps->send(fullChunk("$PFST,FOM,7*00\r\n")));
        QTRY_COMPARE(text(page, "editGpsAcc"), "7 meters"_s);
        QVERIFY2(!calls().contains("Telematics_create()"_s), "one thread is enough");
        leaveGpsTab(page);
    }

    void rawViewIsKept()
    {
        useLines();
        tabTelematicsDlg page;
        page.show();
        tabs(page)->setCurrentIndex(1);
        click(&page, "buttonToggleData");
        leaveGpsTab(page);
        tabs(page)->setCurrentIndex(1);
        QVERIFY(child<QWidget>(&page, "textEdit")->isVisible());
        QVERIFY(gps->send(fullChunk("garbage \x80\xff\r\n")));
        QTRY_VERIFY(child<QPlainTextEdit>(&page, "textEdit")->toPlainText().contains("garbage"_s));
        // The newest lines show.
        QVERIFY(gps->send(fullChunk(QByteArray("line\n").repeated(80) + "newest\n")));
        QTRY_VERIFY(child<QPlainTextEdit>(&page, "textEdit")->toPlainText().endsWith("newest\n"_s));
        const auto *bar = child<QPlainTextEdit>(&page, "textEdit")->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 0 && bar->value() == bar->maximum());
        leaveGpsTab(page);
    }

    void gpsTabWithUnopenablePort()
    {
        tabTelematicsDlg page;
        page.show();
        const auto *toggle = child<QWidget>(&page, "buttonToggleData");
        planBox([&] {
            return text(page, "editGpsDate") + (toggle->isVisible() ? " with button"_s : QString());
        });
        tabs(page)->setCurrentIndex(1);
        QCOMPARE(behindBox(), "INVALID"_s);
        const auto seen = dialogs.take();
        QCOMPARE(seen.size(), 1);
        QCOMPARE(seen[0].title, "Vornsettings"_s);
        QCOMPARE(seen[0].text, "Could not open serial port: COM4"_s);
        QCOMPARE(seen[0].icon, QMessageBox::Critical);
        QVERIFY(!gpsPort.load());
        // The tab stays usable, and its thread has nothing to read.
        QVERIFY(toggle->isVisible());
        QElapsedTimer clock;
        clock.start();
        tabs(page)->setCurrentIndex(0);
        QVERIFY(clock.elapsed() < 5000);
    }

    /** Leaves the tab and comes back while the box of the first entry is open. */
    void gpsTabEnteredAgainFromItsBox()
    {
        tabTelematicsDlg page;
        page.show();
        dialogs.plan([&](QDialog *box) {
            useLines();
            tabs(page)->setCurrentIndex(0);
            tabs(page)->setCurrentIndex(1);
            box->accept();
        });
        tabs(page)->setCurrentIndex(1);
        QCOMPARE(dialogs.takeTexts(), QStringList{"Could not open serial port: COM4"_s});
        QVERIFY2(gpsPort.load(), "the line of the second entry stays");
        // The thread of the second entry has gone, or takes its share of these.
        QElapsedTimer clock;
        clock.start();
        while (text(page, "editGpsSat") != "08"_s && !clock.hasExpired(threadEnd)) {
            QVERIFY(gps->send(fix + QByteArray(512, '\n')));
            QTest::qWait(20);
        }
        QCOMPARE(text(page, "editGpsSat"), "08"_s);
        leaveGpsTab(page);
        QTRY_VERIFY_WITH_TIMEOUT(!gpsPort.load(), threadEnd);
        tabs(page)->setCurrentIndex(1);
        QVERIFY2(gpsPort.load(), "nobody else holds it");
        leaveGpsTab(page);
    }

    void gpsPowerQueryFailureCountsAsOn()
    {
        useLines();
        tabTelematicsDlg page;
        page.show();
        fault("Telematics_getGPSPowerStatus"_s, 2);
        tabs(page)->setCurrentIndex(1);
        QVERIFY(gpsPort.load());
        QVERIFY(child<QWidget>(&page, "buttonToggleData")->isVisible());
        leaveGpsTab(page);
    }

    void pageGoesWhileTheThreadReads()
    {
        useLines();
        auto page = std::make_unique<tabTelematicsDlg>();
        page->show();
        tabs(*page)->setCurrentIndex(1);
        QVERIFY(gps->send(fullChunk(fix)));
        QTRY_COMPARE(text(*page, "editGpsSat"), "08"_s);
        QElapsedTimer clock;
        clock.start();
        page.reset();
        QVERIFY(clock.elapsed() < 2000);
        QCOMPARE(int(gpsKeepRunning.load()), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!gpsPort.load(), threadEnd);
    }

    void tabChangesInOrder()
    {
        useLines();
        tabTelematicsDlg page;
        page.show();
        const QStringList status = calls().mid(11); // behind the construction
        QCOMPARE(status.size(), 9);
        QCOMPARE(status.last(), "Telematics_getBTStartUpPowerStatus() = 0 [0]"_s);
        const QStringList gsmPower{"Telematics_getGPRSPowerStatus() = 0 [1]"_s};
        const QStringList gpsPower{"Telematics_getGPSPowerStatus() = 0 [1]"_s};

        {
            bool isOpen = false;
            SkippedPauses pauses([&](int) { isOpen = gsmPort; });
            tabs(page)->setCurrentIndex(2);
            QCOMPARE(pauses.take(), std::vector<int>{50}); // for the line to settle
            QVERIFY(isOpen);
        }
        QCOMPARE(calls(), status + gsmPower);
        tabs(page)->setCurrentIndex(0);
        QCOMPARE(calls(), status);

        {
            bool isOpen = false;
            SkippedPauses pauses([&](int) { isOpen = gpsPort.load(); });
            tabs(page)->setCurrentIndex(1);
            QCOMPARE(pauses.take(), std::vector<int>{50});
            QVERIFY(isOpen);
        }
        QStringList made;
        QVERIFY(QTest::qWaitFor([&] { return (made += calls()).size() == 12; }));
        QCOMPARE(made, status + gpsPower +
                           QStringList({"Telematics_create()"_s,
                               "Telematics_getGPSAntennaStatus() = 0 [1]"_s})); // the thread's
        leaveGpsTab(page);
        QCOMPARE(calls(), status + QStringList{"Telematics_release()"_s});

        setUnit("Telematics.gprsPowerStatus"_s, "0"_s);
        tabs(page)->setCurrentIndex(2);
        QCOMPARE(calls().mid(9), QStringList{"Telematics_getGPRSPowerStatus() = 0 [0]"_s});
        setUnit("Telematics.gpsPowerStatus"_s, "0"_s);
        tabs(page)->setCurrentIndex(1);
        QCOMPARE(calls().mid(9), QStringList{"Telematics_getGPSPowerStatus() = 0 [0]"_s});
        QCOMPARE(
            boxes(&page), QStringList({errorBox(18, "getGPSAntennaStatus"_s)})); // it has no power
    }

    void gsmPowerQueryFailureCountsAsOn_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : failureCodes)
            QTest::addRow("%d", code) << code;
    }

    void gsmPowerQueryFailureCountsAsOn()
    {
        QFETCH(int, code);
        useLines();
        setUnit("Telematics.gprsPowerStatus"_s, "0"_s);
        tabTelematicsDlg page;
        page.show();
        fault("Telematics_getGPRSPowerStatus"_s, code);
        tabs(page)->setCurrentIndex(2);
        QCOMPARE(boxes(&page),
            code == 2 ? QStringList() : QStringList({errorBox(code, "getGPRSPowerStatus"_s)}));
        QVERIFY(gsmPort);
        for (const char *name : consoleButtons)
            QVERIFY(child<QPushButton>(&page, name)->isEnabled());
        QCOMPARE(child<QPlainTextEdit>(&page, "textEditGSM")->toPlainText(), QString());
    }

    void gsmTabWithoutPower_data() { addOffRows(); }

    void gsmTabWithoutPower()
    {
        QFETCH(QString, state);
        useLines();
        setUnit("Telematics.gprsPowerStatus"_s, state);
        tabTelematicsDlg page;
        page.show();
        tabs(page)->setCurrentIndex(2);
        for (const char *name : consoleButtons) {
            QVERIFY(!child<QPushButton>(&page, name)->isEnabled());
            QCOMPARE(child<QPushButton>(&page, name)->toolTip(), "Please enable GSM/GPRS power!"_s);
        }
        QCOMPARE(child<QPlainTextEdit>(&page, "textEditGSM")->toPlainText(),
            "Please enable GSM/GPRS power!"_s);
        QVERIFY(!gsmPort);

        // The switch is taken note of at the next change of the tab.
        tabs(page)->setCurrentIndex(0);
        click(&page, "checkBoxGPRS");
        tabs(page)->setCurrentIndex(2);
        for (const char *name : consoleButtons) {
            QVERIFY(child<QPushButton>(&page, name)->isEnabled());
            QCOMPARE(child<QPushButton>(&page, name)->toolTip(), QString());
        }
        QCOMPARE(child<QPlainTextEdit>(&page, "textEditGSM")->toPlainText(), QString());
        QVERIFY(gsmPort);
    }

    void gsmTabOpensAndClosesTheLine()
    {
        useLines();
        auto made = std::make_unique<tabTelematicsDlg>();
        auto &page = *made;
        page.show();
        tabs(page)->setCurrentIndex(2);
        QVERIFY(gsmPort);
        QCOMPARE(gsm->speed(), 57600);
        QCOMPARE(formatOf(gsmPort),
            (QList<int>{SERIAL_57600, SERIAL_8_BITS, SERIAL_NO_PARITY, SERIAL_1_STOP_BIT}));
        page.hide();
        QVERIFY2(gsmPort, "leaving the page keeps the line");
        page.show();
        tabs(page)->setCurrentIndex(0);
        QVERIFY(!gsmPort);

        tabs(page)->setCurrentIndex(2);
        QVERIFY(gsmPort);
        made.reset();
        QVERIFY(!gsmPort);
    }

    void longPortNamesAreCut()
    {
        useLines();
        tabTelematicsDlg page;
        page.show();
        auto *edit = child<QLineEdit>(&page, "lineEditGSMdev");
        const QString path = QString::fromLatin1(gsm->path());
        if (path.startsWith(QLatin1Char('/'))) { // Windows has no names of that length
            // The 255 bytes that are left name the line.
            edit->setText(path.rightJustified(255, QLatin1Char('/')) + "more"_s);
            tabs(page)->setCurrentIndex(2);
            QVERIFY(gsmPort);
            tabs(page)->setCurrentIndex(0);
        }
        // The box has all of the name.
        const QString nowhere = "/dev/"_s + QString(400, QLatin1Char('x'));
        edit->setText(nowhere);
        tabs(page)->setCurrentIndex(2);
        QCOMPARE(dialogs.takeTexts(), QStringList{"Could not open serial port: "_s + nowhere});
        QVERIFY(!gsmPort);
    }

    void gsmTabWithUnopenablePort()
    {
        tabTelematicsDlg page;
        page.show();
        child<QLineEdit>(&page, "lineEditGSMdev")->setText("COM17"_s);
        setUnit("Telematics.gprsPowerStatus"_s, "0"_s);
        tabs(page)->setCurrentIndex(2);
        tabs(page)->setCurrentIndex(0);
        setUnit("Telematics.gprsPowerStatus"_s, "1"_s);
        const auto *send = child<QWidget>(&page, "pushButtonCall");
        planBox([&] { return send->isEnabled() ? "ready"_s : "refused"_s; });
        tabs(page)->setCurrentIndex(2);
        QCOMPARE(behindBox(), "ready"_s);
        const auto seen = dialogs.take();
        QCOMPARE(seen.size(), 1);
        QCOMPARE(seen[0].title, "Vornsettings"_s);
        QCOMPARE(seen[0].text, "Could not open serial port: COM17"_s);
        QCOMPARE(seen[0].icon, QMessageBox::Critical);
        QCOMPARE(seen[0].parent, static_cast<QWidget *>(&page));
        QVERIFY(!gsmPort);
        click(&page, "pushButtonGetPIN");
        QCOMPARE(child<QPlainTextEdit>(&page, "textEditGSM")->toPlainText(), "No data received"_s);
    }

    void gsmTabEnteredAgainFromItsBox()
    {
        tabTelematicsDlg page;
        page.show();
        dialogs.plan([&](QDialog *box) {
            useLines();
            tabs(page)->setCurrentIndex(0);
            tabs(page)->setCurrentIndex(2);
            box->accept();
        });
        tabs(page)->setCurrentIndex(2);
        QCOMPARE(dialogs.takeTexts(), QStringList{"Could not open serial port: COM3"_s});
        QVERIFY2(gsmPort, "the line of the second entry stays");
        tabs(page)->setCurrentIndex(0);
        QVERIFY(!gsmPort);
        tabs(page)->setCurrentIndex(2);
        QVERIFY2(gsmPort, "nobody else holds it");
    }

    void failureComesBeforeTheViewsAreCleared()
    {
        useLines();
        setUnit("Telematics.gprsPowerStatus"_s, "0"_s);
        tabTelematicsDlg page;
        page.show();
        tabs(page)->setCurrentIndex(2);
        fault("Telematics_getWLANPowerStatus"_s, 5);
        const auto *console = child<QPlainTextEdit>(&page, "textEditGSM");
        planBox([&] { return console->toPlainText(); });
        tabs(page)->setCurrentIndex(0);
        QCOMPARE(behindBox(), "Please enable GSM/GPRS power!"_s);
        QCOMPARE(boxes(&page), QStringList{errorBox(5, "getWLANPowerStatus"_s)});
        QCOMPARE(console->toPlainText(), QString());
    }

    void gsmTabInTheGpsTabsPlace_data()
    {
        QTest::addColumn<QString>("gpsPower");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("date");
        QTest::newRow("on") << "1"_s << 0 << "GPS is not available!"_s;
        QTest::newRow("off") << "0"_s << 0 << "Please enable GPS Power!"_s;
        QTest::newRow("not supported") << "0"_s << 2 << "GPS is not available!"_s;
        QTest::newRow("fault") << "0"_s << 5 << "GPS is not available!"_s;
    }

    void gsmTabInTheGpsTabsPlace()
    {
        QFETCH(QString, gpsPower);
        QFETCH(int, code);
        QFETCH(QString, date);
        useLines();
        fault("Hardware_hasGps"_s, 2); // the board has it, so that its power can be asked for
        tabTelematicsDlg page;
        page.show();
        QCOMPARE(tabs(page)->count(), 2);
        setUnit("Telematics.gpsPowerStatus"_s, gpsPower);
        if (code != 0)
            fault("Telematics_getGPSPowerStatus"_s, code);
        tabs(page)->setCurrentIndex(1);
        QCOMPARE(tabs(page)->tabText(1), "GSM/GPRS"_s);
        QVERIFY(!gsmPort);
        QVERIFY(!gpsPort.load());
        QCOMPARE(text(page, "editGpsDate"), date);
        QVERIFY(!child<QPushButton>(&page, "buttonToggleData")->isEnabled());
        QVERIFY(!threadStarts());
        QVERIFY(child<QPushButton>(&page, "pushButtonGetPIN")->isEnabled());
        click(&page, "pushButtonGetPIN");
        QCOMPARE(child<QPlainTextEdit>(&page, "textEditGSM")->toPlainText(), "No data received"_s);
    }

private:
    /** A receiver and a modem under the names that the unit holds. */
    void useLines()
    {
        gsm = std::make_unique<PseudoTerminal>();
        gps = std::make_unique<PseudoTerminal>();
        gsm->setName("COM3"_s);
        gps->setName("COM4"_s);
    }

    /** Columns and rows for a power state that isn't on. */
    static void addOffRows()
    {
        QTest::addColumn<QString>("state");
        QTest::newRow("off") << "0"_s;
        QTest::newRow("another state") << "2"_s;
    }

    /** Whether a GPS thread has come to life since the page was made, or does so soon. */
    bool threadStarts()
    {
        QTest::qWait(200);
        return calls().count("Telematics_create()"_s) > 1;
    }
    static void leaveGpsTab(const QWidget &page) { tabs(page)->setCurrentIndex(0); }
    static QTabWidget *tabs(const QWidget &page) { return child<QTabWidget>(&page, "tabWidget"); }
    static QString text(const QWidget &page, const char *edit)
    {
        return child<QLineEdit>(&page, edit)->text();
    }

    std::unique_ptr<PseudoTerminal> gps;
    std::unique_ptr<PseudoTerminal> gsm;
};

VORN_TEST_MAIN(TelematicsPageTest)
#include "tst_telematicspage.moc"
