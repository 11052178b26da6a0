#include "frame/tabDlg.h"
#include "frame/window/graphicalMode.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/PageForm.h"
#include "tests/support/expected.h"
#include "tests/support/pages.h"

using namespace support;

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
        for (int number = 0; number < pageCount; ++number) {
            if (number != 0) // but for the menu, which has no device
                QTest::addRow("%s", qPrintable(pageRows[number].make()->objectName())) << number;
        }
    }

    void page()
    {
        QFETCH(int, number);
        std::unique_ptr<tabDlg> page = pageRows[number].make();
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
