#include "frame/tabDlg.h"
#include "pages/tabTempDlg.h"
#include "report/sections.h"
#include "tests/support/PageTest.h"

#include <QComboBox>

#include <vector>

using namespace support;

namespace {

int sensorCount = 0;       // that can be read in a row
std::vector<int> askedFor; // by their 8-bit indices
QStringList told;

} // namespace

// The linker leads the program's calls here; tests/CMakeLists.txt tells it to.
extern "C" {
DeviceCode manySensors(DiagnosticsHandle, std::uint8_t index, std::int16_t *celsius,
    std::int32_t *kind) __asm__("__wrap_Diagnostics_getPMTemp");
void takeMessage(tabDlg *page, const QString &text) __asm__(
    "__wrap__ZN6tabDlg11showMessageERK7QString");
}

DeviceCode manySensors(
    DiagnosticsHandle, std::uint8_t index, std::int16_t *celsius, std::int32_t *kind)
{
    if (int(askedFor.size()) == sensorCount) {
        askedFor.push_back(index);
        return DEVICE_DATA_NOT_AVAILABLE;
    }
    askedFor.push_back(index);
    *celsius = index;
    *kind = SENSOR_BOX;
    return DEVICE_OK;
}

void takeMessage(tabDlg *, const QString &text)
{
    told << text;
}

/** The processor module's sensors where they outnumber what 8 bits can count, or have no end. */
class SensorWalkTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        askedFor.clear();
        told.clear();
    }

    void moreThanTheIndexHolds()
    {
        sensorCount = 300;
        const QStringList lines = reportLines().filter("JIDA"_s);
        QCOMPARE(lines.size(), 300);
        QCOMPARE(lines.at(255), QString::fromLatin1("JIDA box temp: 255 \260C"));
        QCOMPARE(lines.at(256), QString::fromLatin1("JIDA box temp: 0 \260C"));
        QCOMPARE(lines.at(299), QString::fromLatin1("JIDA box temp: 43 \260C"));
        QCOMPARE(int(askedFor.size()), 301);
        QCOMPARE(askedFor.back(), 44);

        askedFor.clear();
        const tabTempDlg page;
        QCOMPARE(int(askedFor.size()), 301);
        QCOMPARE(askedFor.back(), 44);
        QCOMPARE(told.size(), 300 - 18);
        QCOMPARE(told.count("Error, SensorIndex array out of range."_s), 300 - 18);
        QCOMPARE(child<QComboBox>(&page, "comboBoxSensor")->count(), 20);
        QVERIFY(page.findChild<QLineEdit *>("editTemp_CPU"_s));
        QVERIFY(page.findChild<QLineEdit *>("editTemp_CPUBoard"_s));
    }

    void withoutAnEnd()
    {
        const QString end = "Sensor list ended after 65536 readings"_s;
        sensorCount = 1'000'000;
        const QStringList lines = reportLines();
        QCOMPARE(lines.filter("JIDA"_s).size(), 65'536);
        QCOMPARE(int(askedFor.size()), 65'536);
        QCOMPARE(lines.count(end), 1);
        QVERIFY(lines.at(lines.indexOf(end) - 1).startsWith("JIDA box temp: 255"_s));
        QVERIFY(lines.at(lines.indexOf(end) + 1).startsWith("SS temp"_s));

        askedFor.clear();
        const tabTempDlg page;
        QCOMPARE(int(askedFor.size()), 65'536);
        QCOMPARE(told.size(), 65'536 - 18 + 1);
        QCOMPARE(told.constLast(), end);
    }

private:
    static QStringList reportLines()
    {
        askedFor.clear();
        return diagnosticDataText().split(QLatin1Char('\n'));
    }
};

VORN_TEST_MAIN(SensorWalkTest)
#include "tst_sensorwalk_posix.moc"
