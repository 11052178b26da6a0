#include "frame/window/graphicalMode.h"
#include "pages/tabAdvancedDlg.h"
#include "pages/tabBacklightDlg.h"
#include "pages/tabBuzzerDlg.h"
#include "pages/tabCanDlg.h"
#include "pages/tabDigIODlg.h"
#include "pages/tabLEDDlg.h"
#include "pages/tabLightSensorDlg.h"
#include "pages/tabOnOffDlg.h"
#include "pages/tabPowerDlg.h"
#include "pages/tabSysConfDlg.h"
#include "pages/tabTempDlg.h"
#include "pages/tabTouchDlg.h"
#include "pages/tabVersionDlg.h"
#include "report/tabAboutDlg.h"
#include "telematics/tabTelematicsDlg.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/PageForm.h"
#include "tests/support/expected.h"

#include <memory>

using namespace support;

namespace {

using Make = std::unique_ptr<tabDlg> (*)();

template <typename Page>
std::unique_ptr<tabDlg> make()
{
    return std::make_unique<Page>();
}

constexpr Make pages[] = {make<tabVersionDlg>, make<tabTempDlg>, make<tabBacklightDlg>,
    make<tabPowerDlg>, make<tabSysConfDlg>, make<tabAboutDlg>, make<tabLEDDlg>, make<tabBuzzerDlg>,
    make<tabCanDlg>, make<tabAdvancedDlg>, make<tabDigIODlg>, make<tabLightSensorDlg>,
    make<tabTouchDlg>, make<tabOnOffDlg>, make<tabTelematicsDlg>};

} // namespace

/** What every page has: a form, a layout without faults, and handles that live as long as it does.
 * They stand in expected/pages, a file for each page. */
class PagesTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void initTestCase() { setApplicationLook(); }

    void page_data()
    {
        QTest::addColumn<int>("number");
        for (int number = 0; number < int(std::size(pages)); ++number)
            QTest::addRow("%s", qPrintable(pages[number]()->objectName())) << number;
    }

    void page()
    {
        QFETCH(int, number);
        std::unique_ptr<tabDlg> page = pages[number]();
        // The threads that a page starts are the business of its own test.
        QStringList lines{"made"_s};
        lines += indented(mainThreadCalls());
        lines += form(page.get());
        const QString name = page->objectName();
        lines << "faults of the layout"_s;
        lines += indented(layoutFaults(page.get()));
        mainThreadCalls();
        page.reset();
        lines << "gone"_s;
        lines += indented(mainThreadCalls());
        QCOMPARE(lines,
            expectedLines(VORN_SOURCE_DIR "/tests/expected/pages/"_s + name + ".txt"_s, lines));
    }

private:
    static QStringList indented(QStringList lines)
    {
        return lines.replaceInStrings(QRegularExpression("^"_s), "  "_s);
    }
};

VORN_TEST_MAIN(PagesTest)
#include "tst_pages.moc"
