#include "frame/window/graphicalMode.h"
#include "pages/tabTempDlg.h"
#include "tests/support/PageForm.h"
#include "tests/support/PageTest.h"

#include <QGridLayout>

using namespace support;

class TemperaturePageTest : public PageTest
{
    Q_OBJECT

private slots:
    void initTestCase() { setApplicationLook(); }

    void remainingRowsKeepTheirPlace_data()
    {
        addFailureRows(
            {"Diagnostics_getSSTemp"_s, "Diagnostics_getPCBTemp"_s, "Diagnostics_getPMTemp"_s});
    }

    void remainingRowsKeepTheirPlace()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        const auto places = [](const QWidget &page) {
            QMap<QString, QRect> found;
            for (const QWidget *widget :
                child<QWidget>(&page, "layoutWidget")->findChildren<QWidget *>())
                found[widget->objectName()] = widget->geometry();
            return found;
        };
        tabTempDlg whole;
        layoutFaults(&whole);
        const auto expected = places(whole);
        fault(operation, code);
        tabTempDlg page;
        layoutFaults(&page);
        const auto left = places(page);
        QVERIFY(!left.isEmpty());
        for (auto widget = left.begin(); widget != left.end(); ++widget)
            QCOMPARE(widget.value(), expected[widget.key()]);
    }

    void constructionFindsTheSensors()
    {
        setUnit("Diagnostics.ssTemp"_s, "41"_s);
        setUnit("Diagnostics.pcbTemp"_s, "-5"_s);
        setProcessorSensors({{55, 0}, {45, 3}});
        {
            const tabTempDlg page;
            QCOMPARE(calls(),
                QStringList({"Diagnostics_create()"_s, "Diagnostics_getSSTemp() = 0 [41]"_s,
                    "Diagnostics_getPCBTemp() = 0 [-5]"_s, "Diagnostics_getPMTemp(0) = 0 [55, 0]"_s,
                    "Diagnostics_getPMTemp(1) = 0 [45, 3]"_s, "Diagnostics_getPMTemp(2) = 7"_s}));
            QCOMPARE(text(page, "editTemp_SS"), QString());
        }
        QCOMPARE(calls(), QStringList("Diagnostics_release()"_s));
    }

    void failingFixedSensorAtConstruction_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QByteArray>("edit");
        QTest::addColumn<QByteArray>("label");
        QTest::addColumn<int>("code");
        for (const int code : failureCodes) {
            QTest::addRow("SS %d", code)
                << "getSSTemp"_s << QByteArray("editTemp_SS") << QByteArray("label_2") << code;
            QTest::addRow("PCB %d", code)
                << "getPCBTemp"_s << QByteArray("editTemp_PCB") << QByteArray("label_3") << code;
        }
    }

    void failingFixedSensorAtConstruction()
    {
        QFETCH(QString, operation);
        QFETCH(QByteArray, edit);
        QFETCH(QByteArray, label);
        QFETCH(int, code);
        fault("Diagnostics_"_s + operation, code);
        tabTempDlg page;
        calls();
        page.show();
        QVERIFY2(calls().filter(operation).isEmpty(), "it isn't in the list");
        QCOMPARE(hasRow(page, edit.constData(), label.constData()), code != 2);
        const auto *grid = page.findChild<QGridLayout *>("gridLayout"_s);
        QCOMPARE(grid->itemAtPosition(edit == "editTemp_SS" ? 0 : 2, 0) != nullptr, code != 2);
        QCOMPARE(grid->itemAtPosition(3, 1)->widget()->objectName(), "editTemp_CPU"_s);
        if (code != 2)
            QCOMPARE(text(page, edit.constData()), errorBox(code, operation));
    }

    void rowsGoByTheNumberOfProcessorSensors_data()
    {
        QTest::addColumn<int>("sensors");
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("processor");
        QTest::addColumn<bool>("board");
        for (const int code : failureCodes) {
            QTest::addRow("none, %d", code) << 0 << code << false << false;
            QTest::addRow("one, %d", code) << 1 << code << true << false;
            QTest::addRow("two, %d", code) << 2 << code << true << true;
        }
    }

    void rowsGoByTheNumberOfProcessorSensors()
    {
        QFETCH(int, sensors);
        QFETCH(int, code);
        QFETCH(bool, processor);
        QFETCH(bool, board);
        fault("Diagnostics_getPMTemp"_s, code, 0, unsigned(sensors));
        tabTempDlg page;
        QCOMPARE(hasRow(page, "editTemp_CPU", "label_5"), processor);
        QCOMPARE(hasRow(page, "editTemp_CPUBoard", "label_4"), board);
        QCOMPARE(child<QComboBox>(&page, "comboBoxSensor")->count(), 2 + sensors);
        clearFaults();
        page.show();
    }

    void sensorNames_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("name");
        const char *names[] = {"CPU", "Processor module box", "Processor module env", "CPU board",
            "Processor module backplane", "Processor module chipsets", "Processor module video",
            "Processor module other", "Unknown sensor: 8"};
        for (int kind = 0; kind < 9; ++kind)
            QTest::newRow(names[kind]) << kind << QString::fromLatin1(names[kind]);
        QTest::newRow("far out") << 200 << "Unknown sensor: 200"_s;
    }

    void sensorNames()
    {
        QFETCH(int, kind);
        QFETCH(QString, name);
        setProcessorSensors({{50, kind}});
        const tabTempDlg page;
        const auto *list = child<QComboBox>(&page, "comboBoxSensor");
        QCOMPARE(list->itemText(0), "System supervisor"_s);
        QCOMPARE(list->itemText(1), "PCB"_s);
        QCOMPARE(list->itemText(2), name);
        QCOMPARE(list->count(), 3);
    }

    void listHoldsTwentySensors_data()
    {
        QTest::addColumn<int>("processorSensors");
        QTest::addColumn<int>("refused");
        // Two fixed ones and eighteen of the processor module fit.
        QTest::newRow("nineteen") << 17 << 0;
        QTest::newRow("twenty") << 18 << 0;
        QTest::newRow("twenty-one") << 19 << 1;
        QTest::newRow("sixty-four") << 64 << 46;
    }

    void listHoldsTwentySensors()
    {
        QFETCH(int, processorSensors);
        QFETCH(int, refused);
        setUnit("Diagnostics.pmSensorCount"_s, QString::number(processorSensors));
        tabTempDlg page;
        const QStringList told = boxes(&page);
        QCOMPARE(told.size(), refused);
        QCOMPARE(told.count("Error, SensorIndex array out of range."_s), refused);
        const int listed = std::min(processorSensors, 18);
        QCOMPARE(child<QComboBox>(&page, "comboBoxSensor")->count(), 2 + listed);
        calls();
        page.show();
        const QStringList read = calls().filter("getPMTemp"_s);
        QCOMPARE(read.size(), listed);
        QVERIFY(read.constLast().startsWith("Diagnostics_getPMTemp(%1) = 0"_s.arg(listed - 1)));
    }

    /** Where a reading goes is told with it, each time. */
    void kindsChange()
    {
        setProcessorSensors({{50, 0}, {60, 3}});
        tabTempDlg page;
        setProcessorSensors({{50, 3}, {60, 0}});
        page.show();
        QCOMPARE(text(page, "editTemp_CPU"), "60°C (140°F)"_s);
        QCOMPARE(text(page, "editTemp_CPUBoard"), "50°C (122°F)"_s);
    }

    void readings_data()
    {
        QTest::addColumn<int>("celsius");
        QTest::addColumn<QString>("shown");
        QTest::newRow("0") << 0 << "0°C (32°F)"_s;
        QTest::newRow("25") << 25 << "25°C (77°F)"_s;
        QTest::newRow("-5") << -5 << "-5°C (23°F)"_s;
        QTest::newRow("41") << 41 << "41°C (105.8°F)"_s;
        QTest::newRow("255") << 255 << "255°C (491°F)"_s;
        QTest::newRow("256") << 256 << "N/A"_s;
        QTest::newRow("-56") << -56 << "-56°C (-68.8°F)"_s;
        QTest::newRow("-57") << -57 << "N/A"_s;
        QTest::newRow("highest") << 32767 << "N/A"_s;
        QTest::newRow("lowest") << -32768 << "N/A"_s;
    }

    void readings()
    {
        QFETCH(int, celsius);
        QFETCH(QString, shown);
        setUnit("Diagnostics.ssTemp"_s, QString::number(celsius));
        setUnit("Diagnostics.pcbTemp"_s, QString::number(celsius));
        setProcessorSensors({{celsius, 3}, {celsius, 0}, {7, 1}});
        tabTempDlg page;
        page.show();
        for (const char *edit :
            {"editTemp_SS", "editTemp_PCB", "editTemp_CPU", "editTemp_CPUBoard"})
            QCOMPARE(text(page, edit), shown);
        // A sensor that is neither CPU nor board reaches the hidden field only.
        QCOMPARE(text(page, "editTemp"), "7°C (44.6°F)"_s);
    }

    void refreshButtonReadsAgain()
    {
        setUnit("Diagnostics.ssTemp"_s, "20"_s);
        setUnit("Diagnostics.pcbTemp"_s, "21"_s);
        setProcessorSensors({{22, 0}, {23, 3}});
        tabTempDlg page;
        page.show();
        setUnit("Diagnostics.ssTemp"_s, "30"_s);
        calls();
        click(&page, "buttonRefresh");
        QCOMPARE(calls(),
            QStringList({"Diagnostics_getSSTemp() = 0 [30]"_s,
                "Diagnostics_getPCBTemp() = 0 [21]"_s, "Diagnostics_getPMTemp(0) = 0 [22, 0]"_s,
                "Diagnostics_getPMTemp(1) = 0 [23, 3]"_s}));
        QCOMPARE(text(page, "editTemp_SS"), "30°C (86°F)"_s);
    }

    void failingFixedSensorLater_data() { failingFixedSensorAtConstruction_data(); }

    void failingFixedSensorLater()
    {
        QFETCH(QString, operation);
        QFETCH(QByteArray, edit);
        QFETCH(QByteArray, label);
        QFETCH(int, code);
        setUnit("Diagnostics.ssTemp"_s, "20"_s);
        setUnit("Diagnostics.pcbTemp"_s, "21"_s);
        tabTempDlg page;
        fault("Diagnostics_"_s + operation, code);
        page.show();
        QCOMPARE(child<QWidget>(&page, edit.constData())->isVisible(), code != 2);
        QCOMPARE(child<QWidget>(&page, label.constData())->isVisible(), code != 2);
        if (code != 2) {
            QCOMPARE(text(page, edit.constData()),
                operation + ": Error:  "_s + QString::fromLatin1(deviceErrorText(code)));
        } else if (edit == "editTemp_PCB") {
            // It keeps the text that the sensor before it left.
            QCOMPARE(text(page, "editTemp_PCB"), "20°C (68°F)"_s);
        }
    }

    void failingProcessorSensorLater_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : faultCodes)
            QTest::addRow("%d", code) << code;
    }

    void failingProcessorSensorLater()
    {
        QFETCH(int, code);
        setProcessorSensors({{50, 3}, {60, 0}});
        tabTempDlg page;
        fault("Diagnostics_getPMTemp"_s, code);
        page.show();
        const QString error = QString::fromLatin1(deviceErrorText(code));
        QCOMPARE(
            text(page, "editTemp_CPUBoard"), "i:2 sensorindex:10 getPMTemp: Error:  "_s + error);
        QCOMPARE(text(page, "editTemp_CPU"), "i:3 sensorindex:11 getPMTemp: Error:  "_s + error);
    }

    void vanishedProcessorSensorsTakeTheirRows()
    {
        setUnit("Diagnostics.pcbTemp"_s, "21"_s);
        tabTempDlg page;
        page.show();
        fault("Diagnostics_getPMTemp"_s, 2);
        click(&page, "buttonRefresh");
        QVERIFY(!hasRow(page, "editTemp_CPU", "label_5"));
        QVERIFY(!hasRow(page, "editTemp_CPUBoard", "label_4"));
        QCOMPARE(text(page, "editTemp"), "21°C (69.8°F)"_s);
        clearFaults();
        click(&page, "buttonRefresh");
        QVERIFY(!hasRow(page, "editTemp_CPU", "label_5"));
    }

    void singleSensorOfTheBoard()
    {
        setProcessorSensors({{33, 3}});
        tabTempDlg page;
        page.show();
        QVERIFY(hasRow(page, "editTemp_CPU", "label_5"));
        QVERIFY(!hasRow(page, "editTemp_CPUBoard", "label_4"));
        QCOMPARE(text(page, "editTemp_CPU"), QString());
        QCOMPARE(text(page, "editTemp"), "33°C (91.4°F)"_s);
    }

    void processorSensorsVanishOneByOne()
    {
        setProcessorSensors({{50, 0}, {60, 3}});
        tabTempDlg page;
        page.show();
        // The first one takes both rows, and the second is read all the same.
        fault("Diagnostics_getPMTemp"_s, 2, 1);
        calls();
        click(&page, "buttonRefresh");
        QCOMPARE(calls().filter("getPMTemp"_s), QStringList({"Diagnostics_getPMTemp(0) = 2"_s,
                                                    "Diagnostics_getPMTemp(1) = 0 [60, 3]"_s}));
        QVERIFY(!hasRow(page, "editTemp_CPU", "label_5"));
        QVERIFY(!hasRow(page, "editTemp_CPUBoard", "label_4"));
        QCOMPARE(text(page, "editTemp"), "60°C (140°F)"_s);
        fault("Diagnostics_getPMTemp"_s, 5);
        click(&page, "buttonRefresh");
        QCOMPARE(text(page, "editTemp"),
            "i:3 sensorindex:11 getPMTemp: Error:  "_s + QString::fromLatin1(deviceErrorText(5)));
    }

    void hiddenListReadsAll()
    {
        tabTempDlg page;
        calls();
        QVERIFY(QMetaObject::invokeMethod(&page, "sensorIndexChanged", Q_ARG(int, 3)));
        const QStringList direct = calls();
        page.show();
        QCOMPARE(calls(), direct);
        // Choosing in the list does nothing: it isn't connected.
        child<QComboBox>(&page, "comboBoxSensor")->setCurrentIndex(1);
        QCOMPARE(calls(), QStringList());
    }

    void noSensorAtAll()
    {
        fault("Diagnostics_getSSTemp"_s, 5);
        fault("Diagnostics_getPCBTemp"_s, 2);
        fault("Diagnostics_getPMTemp"_s, 5);
        tabTempDlg page;
        clearFaults();
        calls();
        page.show();
        QCOMPARE(calls(), QStringList());
        QVERIFY(text(page, "editTemp_SS").startsWith("Error(5) in getSSTemp: "_s));
    }

private:
    void setProcessorSensors(std::initializer_list<std::pair<int, int>> temperaturesAndKinds)
    {
        setUnit("Diagnostics.pmSensorCount"_s, QString::number(temperaturesAndKinds.size()));
        int n = 0;
        for (const auto &[temperature, kind] : temperaturesAndKinds) {
            setUnit("Diagnostics.pmTemp%1"_s.arg(n), QString::number(temperature));
            setUnit("Diagnostics.pmKind%1"_s.arg(n), QString::number(kind));
            ++n;
        }
    }

    static bool hasRow(const QWidget &page, const char *edit, const char *label)
    {
        const bool hasEdit = page.findChild<QLineEdit *>(QString::fromLatin1(edit)) != nullptr;
        const bool hasLabel = page.findChild<QLabel *>(QString::fromLatin1(label)) != nullptr;
        if (hasEdit != hasLabel)
            qFatal("half a row: %s", edit);
        return hasEdit;
    }
    static QString text(const QWidget &page, const char *edit)
    {
        return child<QLineEdit>(&page, edit)->text();
    }
};

VORN_TEST_MAIN(TemperaturePageTest)
#include "tst_temperaturepage.moc"
