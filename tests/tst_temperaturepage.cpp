#include "pages/tabTempDlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/FormCheck.h"

#include <QGridLayout>

using support::child;

class TemperaturePageTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void form();
    void constructionFindsTheSensors();
    void failingFixedSensorAtConstruction_data();
    void failingFixedSensorAtConstruction();
    void rowsGoByTheNumberOfProcessorSensors_data();
    void rowsGoByTheNumberOfProcessorSensors();
    void sensorNames_data();
    void sensorNames();
    void listHoldsTwentySensors();
    void readings_data();
    void readings();
    void refreshButtonReadsAgain();
    void failingFixedSensorLater_data();
    void failingFixedSensorLater();
    void failingProcessorSensorLater_data();
    void failingProcessorSensorLater();
    void vanishedProcessorSensorsTakeTheirRows();
    void singleSensorOfTheBoard();
    void noSensorAtAll();

private:
    void setProcessorSensors(std::initializer_list<std::pair<int, int>> temperaturesAndKinds);
    static bool hasRow(const QWidget &page, const char *edit, const char *label);
    static QString text(const QWidget &page, const char *edit)
    {
        return child<QLineEdit>(&page, edit)->text();
    }
};

void TemperaturePageTest::setProcessorSensors(
    std::initializer_list<std::pair<int, int>> temperaturesAndKinds)
{
    setUnit(
        QStringLiteral("Diagnostics.pmSensorCount"), QString::number(temperaturesAndKinds.size()));
    int n = 0;
    for (const auto &[temperature, kind] : temperaturesAndKinds) {
        setUnit(QStringLiteral("Diagnostics.pmTemp%1").arg(n), QString::number(temperature));
        setUnit(QStringLiteral("Diagnostics.pmKind%1").arg(n), QString::number(kind));
        ++n;
    }
}

bool TemperaturePageTest::hasRow(const QWidget &page, const char *edit, const char *label)
{
    const bool hasEdit = page.findChild<QLineEdit *>(QString::fromLatin1(edit)) != nullptr;
    const bool hasLabel = page.findChild<QLabel *>(QString::fromLatin1(label)) != nullptr;
    if (hasEdit != hasLabel)
        qFatal("half a row: %s", edit);
    return hasEdit;
}

void TemperaturePageTest::form()
{
    const tabTempDlg page;
    QCOMPARE(page.objectName(), QStringLiteral("tabTemp"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Temperature"));
    QCOMPARE(page.size(), QSize(600, 320));
    QCOMPARE(support::compareForm(&page,
                 {{"groupBox", "QGroupBox", "Current temperature"},
                     {"label_2", "QLabel", "System Supervisor:"}, {"label_3", "QLabel", "PCB:"},
                     {"label_5", "QLabel", "CPU:"}, {"label_4", "QLabel", "CPU board:"},
                     {"editTemp_SS", "QLineEdit"}, {"editTemp_PCB", "QLineEdit"},
                     {"editTemp_CPU", "QLineEdit"}, {"editTemp_CPUBoard", "QLineEdit"},
                     {"icon", "QLabel"}, {"buttonRefresh", "QPushButton", "Refresh"},
                     {"editTemp", "QLineEdit", "Hidden"}, {"comboBoxSensor", "QComboBox"}}),
        QString());
    QCOMPARE(child<QWidget>(&page, "groupBox")->geometry(), QRect(10, 20, 431, 209));
    QCOMPARE(child<QWidget>(&page, "layoutWidget")->geometry(), QRect(21, 40, 387, 143));
    QCOMPARE(child<QWidget>(&page, "icon")->geometry(), QRect(490, 30, 60, 60));
    QCOMPARE(child<QWidget>(&page, "buttonRefresh")->geometry(), QRect(450, 250, 131, 51));
    QCOMPARE(child<QWidget>(&page, "editTemp")->geometry(), QRect(94, 264, 260, 20));
    QCOMPARE(child<QWidget>(&page, "comboBoxSensor")->geometry(), QRect(94, 288, 261, 22));
    QVERIFY(child<QWidget>(&page, "editTemp")->isHidden());
    QVERIFY(child<QWidget>(&page, "comboBoxSensor")->isHidden());
    const auto *grid = page.findChild<QGridLayout *>(QStringLiteral("gridLayout"));
    const char *const rows[][2] = {{"label_2", "editTemp_SS"}, {nullptr, nullptr},
        {"label_3", "editTemp_PCB"}, {"label_5", "editTemp_CPU"}, {"label_4", "editTemp_CPUBoard"}};
    for (int row = 0; row < 5; ++row) {
        for (int column = 0; column < 2; ++column) {
            QLayoutItem *item = grid->itemAtPosition(row, column);
            QCOMPARE(item ? item->widget()->objectName() : QString(),
                QString::fromLatin1(rows[row][column]));
        }
        if (rows[row][1]) {
            const auto *edit = child<QLineEdit>(&page, rows[row][1]);
            QVERIFY(edit->isReadOnly() && edit->isEnabled());
        }
    }
}

void TemperaturePageTest::constructionFindsTheSensors()
{
    setUnit(QStringLiteral("Diagnostics.ssTemp"), QStringLiteral("41"));
    setUnit(QStringLiteral("Diagnostics.pcbTemp"), QStringLiteral("-5"));
    setProcessorSensors({{55, 0}, {45, 3}});
    calls();
    {
        const tabTempDlg page;
        QStringList expected{QStringLiteral("Diagnostics_create()"),
            QStringLiteral("Diagnostics_getSSTemp() = 0 [41]"),
            QStringLiteral("Diagnostics_getPCBTemp() = 0 [-5]"),
            QStringLiteral("Diagnostics_getPMTemp(0) = 0 [55, 0]"),
            QStringLiteral("Diagnostics_getPMTemp(1) = 0 [45, 3]")};
        const QStringList found = calls();
        QCOMPARE(found.mid(0, 5), expected);
        QCOMPARE(found.size(), 6);
        QVERIFY(found.constLast().startsWith(QLatin1String("Diagnostics_getPMTemp(2) = ")));
        QCOMPARE(text(page, "editTemp_SS"), QString());
    }
    QCOMPARE(calls(), QStringList({QStringLiteral("Diagnostics_release()")}));
}

void TemperaturePageTest::failingFixedSensorAtConstruction_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QByteArray>("edit");
    QTest::addColumn<QByteArray>("label");
    QTest::addColumn<int>("code");
    for (const int code : {2, 18, 20, 5, -1}) {
        QTest::addRow("SS %d", code) << QStringLiteral("getSSTemp") << QByteArray("editTemp_SS")
                                     << QByteArray("label_2") << code;
        QTest::addRow("PCB %d", code) << QStringLiteral("getPCBTemp") << QByteArray("editTemp_PCB")
                                      << QByteArray("label_3") << code;
    }
}

void TemperaturePageTest::failingFixedSensorAtConstruction()
{
    QFETCH(QString, operation);
    QFETCH(QByteArray, edit);
    QFETCH(QByteArray, label);
    QFETCH(int, code);
    fault(QLatin1String("Diagnostics_") + operation, code);
    tabTempDlg page;
    page.show();
    QCOMPARE(hasRow(page, edit.constData(), label.constData()), code != 2);
    QCOMPARE(child<QComboBox>(&page, "comboBoxSensor")->count(), 6);
    if (code == 2) {
        const auto *grid = page.findChild<QGridLayout *>(QStringLiteral("gridLayout"));
        QCOMPARE(
            grid->itemAtPosition(3, 1)->widget()->objectName(), QStringLiteral("editTemp_CPU"));
        return;
    }
    QCOMPARE(text(page, edit.constData()),
        QStringLiteral("Error(%1) in %2: %3")
            .arg(QString::number(code), operation, QString::fromLatin1(deviceErrorText(code))));
}

void TemperaturePageTest::rowsGoByTheNumberOfProcessorSensors_data()
{
    QTest::addColumn<int>("sensors");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("processor");
    QTest::addColumn<bool>("board");
    for (const int code : {2, 18, 20, 5, -1}) {
        QTest::addRow("none, %d", code) << 0 << code << false << false;
        QTest::addRow("one, %d", code) << 1 << code << true << false;
        QTest::addRow("two, %d", code) << 2 << code << true << true;
    }
}

void TemperaturePageTest::rowsGoByTheNumberOfProcessorSensors()
{
    QFETCH(int, sensors);
    QFETCH(int, code);
    QFETCH(bool, processor);
    QFETCH(bool, board);
    fault(QStringLiteral("Diagnostics_getPMTemp"), code, 0, unsigned(sensors));
    tabTempDlg page;
    QCOMPARE(hasRow(page, "editTemp_CPU", "label_5"), processor);
    QCOMPARE(hasRow(page, "editTemp_CPUBoard", "label_4"), board);
    QCOMPARE(child<QComboBox>(&page, "comboBoxSensor")->count(), 2 + sensors);
    clearFaults();
    page.show();
}

void TemperaturePageTest::sensorNames_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("name");
    const char *names[] = {"CPU", "Processor module box", "Processor module env", "CPU board",
        "Processor module backplane", "Processor module chipsets", "Processor module video",
        "Processor module other", "Unknown sensor: 8"};
    for (int kind = 0; kind < 9; ++kind)
        QTest::newRow(names[kind]) << kind << QString::fromLatin1(names[kind]);
    QTest::newRow("far out") << 200 << QStringLiteral("Unknown sensor: 200");
}

void TemperaturePageTest::sensorNames()
{
    QFETCH(int, kind);
    QFETCH(QString, name);
    setProcessorSensors({{50, kind}});
    const tabTempDlg page;
    const auto *list = child<QComboBox>(&page, "comboBoxSensor");
    QCOMPARE(list->itemText(0), QStringLiteral("System supervisor"));
    QCOMPARE(list->itemText(1), QStringLiteral("PCB"));
    QCOMPARE(list->itemText(2), name);
    QCOMPARE(list->count(), 3);
}

void TemperaturePageTest::listHoldsTwentySensors()
{
    setUnit(QStringLiteral("Diagnostics.pmSensorCount"), QStringLiteral("21"));
    tabTempDlg page;
    // Two fixed ones and eighteen of the processor module fit.
    const auto seen = dialogs.take();
    QCOMPARE(seen.size(), 3);
    QCOMPARE(seen[0].text, QStringLiteral("Error, SensorIndex array out of range."));
    QCOMPARE(seen[0].title, QStringLiteral("Vornsettings"));
    QCOMPARE(seen[0].icon, QMessageBox::Critical);
    QCOMPARE(child<QComboBox>(&page, "comboBoxSensor")->count(), 20);
    calls();
    page.show();
    QCOMPARE(calls().filter(QStringLiteral("getPMTemp")).size(), 18);
}

void TemperaturePageTest::readings_data()
{
    QTest::addColumn<int>("celsius");
    QTest::addColumn<QString>("shown");
    QTest::newRow("0") << 0 << QStringLiteral("0°C (32°F)");
    QTest::newRow("25") << 25 << QStringLiteral("25°C (77°F)");
    QTest::newRow("-5") << -5 << QStringLiteral("-5°C (23°F)");
    QTest::newRow("41") << 41 << QStringLiteral("41°C (105.8°F)");
    QTest::newRow("255") << 255 << QStringLiteral("255°C (491°F)");
    QTest::newRow("256") << 256 << QStringLiteral("N/A");
    QTest::newRow("-56") << -56 << QStringLiteral("-56°C (-68.8°F)");
    QTest::newRow("-57") << -57 << QStringLiteral("N/A");
    QTest::newRow("highest") << 32767 << QStringLiteral("N/A");
    QTest::newRow("lowest") << -32768 << QStringLiteral("N/A");
}

void TemperaturePageTest::readings()
{
    QFETCH(int, celsius);
    QFETCH(QString, shown);
    setUnit(QStringLiteral("Diagnostics.ssTemp"), QString::number(celsius));
    setUnit(QStringLiteral("Diagnostics.pcbTemp"), QString::number(celsius));
    setProcessorSensors({{celsius, 3}, {celsius, 0}, {7, 1}});
    tabTempDlg page;
    page.show();
    for (const char *edit : {"editTemp_SS", "editTemp_PCB", "editTemp_CPU", "editTemp_CPUBoard"})
        QCOMPARE(text(page, edit), shown);
    // A sensor that is neither CPU nor board reaches the hidden field only.
    QCOMPARE(text(page, "editTemp"), QStringLiteral("7°C (44.6°F)"));
}

void TemperaturePageTest::refreshButtonReadsAgain()
{
    setUnit(QStringLiteral("Diagnostics.ssTemp"), QStringLiteral("20"));
    setUnit(QStringLiteral("Diagnostics.pcbTemp"), QStringLiteral("21"));
    setProcessorSensors({{22, 0}, {23, 3}});
    tabTempDlg page;
    page.show();
    setUnit(QStringLiteral("Diagnostics.ssTemp"), QStringLiteral("30"));
    calls();
    QTest::mouseClick(child<QPushButton>(&page, "buttonRefresh"), Qt::LeftButton);
    QCOMPARE(calls(), QStringList({QStringLiteral("Diagnostics_getSSTemp() = 0 [30]"),
                          QStringLiteral("Diagnostics_getPCBTemp() = 0 [21]"),
                          QStringLiteral("Diagnostics_getPMTemp(0) = 0 [22, 0]"),
                          QStringLiteral("Diagnostics_getPMTemp(1) = 0 [23, 3]")}));
    QCOMPARE(text(page, "editTemp_SS"), QStringLiteral("30°C (86°F)"));
}

void TemperaturePageTest::failingFixedSensorLater_data()
{
    failingFixedSensorAtConstruction_data();
}

void TemperaturePageTest::failingFixedSensorLater()
{
    QFETCH(QString, operation);
    QFETCH(QByteArray, edit);
    QFETCH(QByteArray, label);
    QFETCH(int, code);
    setUnit(QStringLiteral("Diagnostics.ssTemp"), QStringLiteral("20"));
    setUnit(QStringLiteral("Diagnostics.pcbTemp"), QStringLiteral("21"));
    tabTempDlg page;
    fault(QLatin1String("Diagnostics_") + operation, code);
    page.show();
    QCOMPARE(child<QWidget>(&page, edit.constData())->isVisible(), code != 2);
    QCOMPARE(child<QWidget>(&page, label.constData())->isVisible(), code != 2);
    if (code != 2) {
        QCOMPARE(text(page, edit.constData()),
            operation + QLatin1String(": Error:  ") + QString::fromLatin1(deviceErrorText(code)));
    } else if (edit == "editTemp_PCB") {
        // It keeps the text that the sensor before it left.
        QCOMPARE(text(page, "editTemp_PCB"), QStringLiteral("20°C (68°F)"));
    }
}

void TemperaturePageTest::failingProcessorSensorLater_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {18, 20, 5, -1})
        QTest::addRow("%d", code) << code;
}

void TemperaturePageTest::failingProcessorSensorLater()
{
    QFETCH(int, code);
    setProcessorSensors({{50, 3}, {60, 0}});
    tabTempDlg page;
    fault(QStringLiteral("Diagnostics_getPMTemp"), code);
    page.show();
    const QString error = QString::fromLatin1(deviceErrorText(code));
    QCOMPARE(text(page, "editTemp_CPUBoard"),
        QLatin1String("i:2 sensorindex:10 getPMTemp: Error:  ") + error);
    QCOMPARE(text(page, "editTemp_CPU"),
        QLatin1String("i:3 sensorindex:11 getPMTemp: Error:  ") + error);
}

void TemperaturePageTest::vanishedProcessorSensorsTakeTheirRows()
{
    setUnit(QStringLiteral("Diagnostics.pcbTemp"), QStringLiteral("21"));
    tabTempDlg page;
    page.show();
    fault(QStringLiteral("Diagnostics_getPMTemp"), 2);
    QTest::mouseClick(child<QPushButton>(&page, "buttonRefresh"), Qt::LeftButton);
    QVERIFY(!hasRow(page, "editTemp_CPU", "label_5"));
    QVERIFY(!hasRow(page, "editTemp_CPUBoard", "label_4"));
    QCOMPARE(text(page, "editTemp"), QStringLiteral("21°C (69.8°F)"));
    clearFaults();
    QTest::mouseClick(child<QPushButton>(&page, "buttonRefresh"), Qt::LeftButton);
    QVERIFY(!hasRow(page, "editTemp_CPU", "label_5"));
}

void TemperaturePageTest::singleSensorOfTheBoard()
{
    setProcessorSensors({{33, 3}});
    tabTempDlg page;
    page.show();
    QVERIFY(hasRow(page, "editTemp_CPU", "label_5"));
    QVERIFY(!hasRow(page, "editTemp_CPUBoard", "label_4"));
    QCOMPARE(text(page, "editTemp_CPU"), QString());
    QCOMPARE(text(page, "editTemp"), QStringLiteral("33°C (91.4°F)"));
}

void TemperaturePageTest::noSensorAtAll()
{
    fault(QStringLiteral("Diagnostics_getSSTemp"), 5);
    fault(QStringLiteral("Diagnostics_getPCBTemp"), 2);
    fault(QStringLiteral("Diagnostics_getPMTemp"), 5);
    tabTempDlg page;
    clearFaults();
    calls();
    page.show();
    QCOMPARE(calls(), QStringList());
    QVERIFY(text(page, "editTemp_SS").startsWith(QLatin1String("Error(5) in getSSTemp: ")));
}

VORN_TEST_MAIN(TemperaturePageTest)
#include "tst_temperaturepage.moc"
