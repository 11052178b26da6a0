#include "pages/tabBacklightDlg.h"
#include "pages/tabDigIODlg.h"
#include "pages/tabLightSensorDlg.h"
#include "tests/support/PageTest.h"

#include <QSlider>

#include <memory>

using support::child;
using support::operator""_s;

namespace {

struct LivePage {
    const char *name;
    std::unique_ptr<tabDlg> (*make)();
    const char *operation; ///< that the timer's slot reads with
    const char *errorName;
    bool readsOnShow;
};

template <typename Page>
std::unique_ptr<tabDlg> make()
{
    return std::make_unique<Page>();
}

constexpr LivePage livePages[] = {
    {"display", make<tabBacklightDlg>, "Backlight_getIntensity", "getIntensity", false},
    {"light sensor, illuminance", make<tabLightSensorDlg>, "LightSensor_getIlluminance",
        "getIlluminance", false},
    {"light sensor, range", make<tabLightSensorDlg>, "LightSensor_getOperatingRange",
        "getOperatingRange", false},
    {"digital I/O", make<tabDigIODlg>, "DigIO_getDigIO", "getDigIO", true},
};

} // namespace

/** What the pages that follow the device do while a box of their own stands before them, with their
 *  real timers. A timer isn't delivered again while its own slot waits for such a box. */
class LivePagesTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        setUnit("Backlight.automaticBLStatus"_s, "0"_s);
    }
    void oneBoxForAFailingRound_data() { addPages(); }

    void oneBoxForAFailingRound()
    {
        QFETCH(int, index);
        const LivePage &row = livePages[index];
        const auto page = row.make();
        page->show();
        const QTimer *timer = timerOf(*page);
        QVERIFY(timer->isActive());
        fault(QString::fromLatin1(row.operation), 5);
        calls();
        qsizetype readingsAtTheBox = -1;
        dialogs.plan([&](QDialog *box) {
            waitForRounds(timer);
            readingsAtTheBox = readings(row.operation);
            box->accept();
        });
        QTRY_VERIFY(readingsAtTheBox >= 0);
        QCOMPARE(readingsAtTheBox, 1);
        QTRY_VERIFY(!timer->isActive());
        waitForRounds(timer);
        QCOMPARE(readings(row.operation), 0);
        QCOMPARE(boxes(page.get()), QStringList(errorBox(5, QString::fromLatin1(row.errorName))));
    }

    /** The first reading of this page isn't the timer's, so its box doesn't hold the timer back. */
    void oneBoxForAFailingShow()
    {
        tabDigIODlg page;
        fault("DigIO_getDigIO"_s, 5);
        calls();
        qsizetype readingsAtTheBox = -1;
        dialogs.plan([&](QDialog *box) {
            waitForRounds(timerOf(page));
            readingsAtTheBox = readings("DigIO_getDigIO");
            box->accept();
        });
        page.show();
        QTRY_COMPARE(readingsAtTheBox, 1);
        QVERIFY(!timerOf(page)->isActive());
        QCOMPARE(boxes(&page), QStringList(errorBox(5, "getDigIO"_s)));
    }
    void stopsThoughShownAgainBehindTheBox_data() { addPages(); }

    /** A program can show the page again behind the box, which starts the timer; the round that
     * opened the box comes to its end after that. */
    void stopsThoughShownAgainBehindTheBox()
    {
        QFETCH(int, index);
        const LivePage &row = livePages[index];
        const auto page = row.make();
        page->show();
        const QTimer *timer = timerOf(*page);
        fault(QString::fromLatin1(row.operation), 5, 1);
        bool activeBehind = false;
        dialogs.plan([&](QDialog *box) {
            page->hide();
            page->show();
            activeBehind = timer->isActive();
            box->accept();
        });
        QTRY_VERIFY(activeBehind);
        QTRY_VERIFY(!timer->isActive());
        QCOMPARE(boxes(page.get()), QStringList(errorBox(5, QString::fromLatin1(row.errorName))));
        page->hide();
        page->show();
        QVERIFY(timer->isActive());
    }

    void noRoundsBehindARefusedEcho()
    {
        tabBacklightDlg page;
        page.show();
        fault("Backlight_setIntensity"_s, 5);
        calls();
        qsizetype readingsAtTheBox = -1;
        dialogs.plan([&](QDialog *box) {
            waitForRounds(timerOf(page));
            readingsAtTheBox = readings("Backlight_getIntensity");
            box->accept();
        });
        QTRY_COMPARE(readingsAtTheBox, 1);
        QCOMPARE(boxes(&page), QStringList(errorBox(5, "setIntensity"_s)));
        qsizetype readingsAfterIt = 0;
        QTRY_VERIFY((readingsAfterIt += readings("Backlight_getIntensity")) > 0);
        QCOMPARE(boxes(&page), QStringList());
    }

    /** Shown again behind the box, the page reads on; the slider has the intensity already, so it
     * isn't sent once more. */
    void roundsBehindARefusedEcho()
    {
        tabBacklightDlg page;
        page.show();
        fault("Backlight_setIntensity"_s, 5);
        qsizetype readingsAtTheBox = -1;
        dialogs.plan([&](QDialog *box) {
            page.hide();
            page.show();
            calls();
            waitForRounds(timerOf(page));
            readingsAtTheBox = readings("Backlight_getIntensity");
            box->accept();
        });
        QTRY_VERIFY(readingsAtTheBox > 0);
        QCOMPARE(boxes(&page), QStringList(errorBox(5, "setIntensity"_s)));
        QCOMPARE(child<QLabel>(&page, "labelBLLevel")->text(), unit("Backlight.intensity"_s));
    }

private:
    static void addPages()
    {
        QTest::addColumn<int>("index");
        for (int index = 0; index < int(std::size(livePages)); ++index)
            QTest::newRow(livePages[index].name) << index;
    }

    static QTimer *timerOf(const tabDlg &page)
    {
        return page.findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    }
    /** Lets the time of some rounds pass, delivered or not. */
    static void waitForRounds(const QTimer *timer) { QTest::qWait(3 * timer->interval()); }
    qsizetype readings(const char *operation)
    {
        return calls().filter(QString::fromLatin1(operation) + QLatin1Char('(')).size();
    }
};

VORN_TEST_MAIN(LivePagesTest)
#include "tst_livepages.moc"
