#include "frame/WaitNotice.h"
#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/workSteps.h"
#include "report/viewText.h"
#include "tests/support/PageTest.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SkippedPauses.h"
#include "virtualunit/VirtualUnit.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QCheckBox>
#include <QIODevice>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

using namespace support;

namespace {

bool waiting()
{
    const QCursor *cursor = QApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::WaitCursor;
}

bool busy(QObject *object)
{
    const QAccessibleInterface *told = QAccessible::queryAccessibleInterface(object);
    return told && told->state().busy;
}

void rest(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

/** Takes that long for everything that it is given. */
class SlowFile : public QIODevice
{
public:
    SlowFile() { open(WriteOnly | Unbuffered); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override
    {
        rest(60);
        return size;
    }
};

} // namespace

/** What the user is told while the program is at work, on the whole window. */
class WaitNoticeTest : public PageTest
{
    Q_OBJECT

public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && watched == window.get())
            started = started || (waiting() && !strip() && (!list || !list->isVisible()));
        if (event->type() == QEvent::Paint && watched->objectName() == WaitNotice::stripName() &&
            paints++ == 0) {
            before = mainThreadCalls();
            place = strip()->geometry();
            if (!waiting() || !busy(window.get()) || !busy(watched) || (list && list->isVisible()))
                QTest::qFail("not as it should be when the strip comes", __FILE__, __LINE__);
        }
        return PageTest::eventFilter(watched, event);
    }

private slots:
    void init()
    {
        PageTest::init();
        pauses = std::make_unique<SkippedPauses>();
        window = std::make_unique<VornSettings>();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        // What the test before has left behind of the unit's pace.
        const WaitNotice quick(window.get());
        mainThreadCalls();
    }

    void cleanup()
    {
        window.reset();
        pauses.reset();
        QVERIFY(!waiting());
        PageTest::cleanup();
    }

    void cursorAtOnce()
    {
        watch([&] {
            const WaitNotice notice(window.get());
            QVERIFY(waiting());
            QVERIFY(busy(window.get()));
            QVERIFY(!strip());
        });
        QCOMPARE(paints, 0);
    }

    void quickWork()
    {
        auto *page = open(onOffTab);
        QElapsedTimer clock;
        watch([&] {
            clock.start();
            click(page, "pushButton");
        });
        if (clock.elapsed() < WaitNotice::patience)
            QCOMPARE(paints, 0);
    }

    void openingPages()
    {
        delay("Config_getOnOffSigAction", 160);
        delay("Config_getShortButtonPressAction", 160);
        watch([&] { window->showTab(onOffTab); });
        QCOMPARE(all.size(), 8);
        QCOMPARE(paints, 1);
        QVERIFY(before.size() < 8);
    }

    void applyOnOff()
    {
        auto *page = open(onOffTab);
        watch([&] { click(page, "pushButton"); });
        const QStringList expected = all;
        QCOMPARE(expected.size(), 8);
        for (const char *operation : {"Config_setLongButtonPressAction",
                 "Config_setShortButtonPressAction", "Config_setOnOffSigAction",
                 "Config_setStartupTriggerConfig", "Config_setSuspendMaxTime",
                 "Config_setFrontBtnTrigTime", "Config_setExtOnOffSigTrigTime"})
            delay(operation, 60);
        watch([&] { click(page, "pushButton"); });
        QCOMPARE(all, expected);
        QCOMPARE(paints, 1);
        QVERIFY(!before.isEmpty() && before.size() < 8);
    }

    void sectionChosenFromTheList()
    {
        auto *page = open(aboutTab);
        auto *selection = child<QComboBox>(page, "comboBoxSelection");
        auto *info = child<QPlainTextEdit>(page, "textEditInfo");
        watch([&] { selection->setCurrentIndex(2); });
        const QStringList expected = all;
        const QString text = info->toPlainText();
        selection->setCurrentIndex(0);
        delay("Adc_getVoltage", 20);
        selection->showPopup();
        list = selection->view()->window();
        QVERIFY(list != window.get() && list->isVisible());
        watch([&] {
            selection->view()->setCurrentIndex(selection->model()->index(2, 0));
            QTest::keyClick(selection->view(), Qt::Key_Return);
        });
        QVERIFY(started);
        QCOMPARE(selection->currentIndex(), 2);
        QCOMPARE(all, expected);
        QCOMPARE(info->toPlainText(), text);
        QCOMPARE(paints, 1);
        QVERIFY(before.size() > 1 && before.size() < all.size());
        takeWarnings(); // the offscreen platform grabs no keyboard for the list
    }

    void listOpenedOverTheWork()
    {
        auto *selection = child<QComboBox>(open(aboutTab), "comboBoxSelection");
        delay("Adc_getVoltage", 20);
        selection->showPopup();
        list = selection->view()->window();
        watch([&] { selection->setCurrentIndex(2); });
        QVERIFY(started);
        QCOMPARE(paints, 1);
        QVERIFY(!list->isVisible());
        takeWarnings();
    }

    void saveAs()
    {
        const QTemporaryDir folder;
        auto *page = open(aboutTab);
        dialogs.planFile(folder.filePath("report.txt"_s));
        watch([&] { click(page, "pushButtonSaveAs"); });
        QCOMPARE(dialogs.take().count(), 1);
        QVERIFY(QFile::exists(folder.filePath("report.txt"_s)));
    }

    void largeTextToSave()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("report.txt"_s);
        auto *page = open(aboutTab);
        const QString text = "A line of a report that is saved.\n"_s.repeated(50'000);
        child<QPlainTextEdit>(page, "textEditInfo")->setPlainText(text);
        dialogs.planFile(path);
        watch([&] { click(page, "pushButtonSaveAs"); });
        dialogs.take();
        QVERIFY(started);
        QCOMPARE(paints, 1); // before the first byte, at the speed of a USB stick
        QCOMPARE(QFileInfo(path).size(), qint64(text.size()));
    }

    void largeTextToSlowDisk()
    {
        QPlainTextEdit view;
        view.setPlainText("A line of a report that is saved.\n"_s.repeated(20'000));
        SlowFile disk;
        watch([&] {
            const WaitNotice notice(window.get());
            writeViewText(disk, *view.document());
        });
        QCOMPARE(paints, 1);
    }

    void touchParameters()
    {
        watch([&] { open(touchTab); });
        const QStringList expected = all;
        QCOMPARE(expected.size(), 12);
        delay("Touch_getAdvancedSetting", 40);
        open(menuTab);
        watch([&] { open(touchTab); });
        QCOMPARE(all, expected);
        QCOMPARE(paints, 1);
        QVERIFY(before.size() > 1 && before.size() < 12);
    }

    void factoryDefaults()
    {
        auto *page = open(advancedTab);
        const auto reset = [&] {
            dialogs.plan(QMessageBox::Yes);
            click(page, "buttonDefaults");
            QCOMPARE(dialogs.take().size(), 2);
        };
        watch(reset);
        // It always lasts, so the strip comes before the first call.
        QCOMPARE(paints, 1);
        QVERIFY(started); // so that nothing is left of the question
        QCOMPARE(before, QStringList());
        QCOMPARE(all.constFirst(), "Hardware_create()"_s);
    }

    void boxInTheMiddle()
    {
        auto *page = open(advancedTab);
        fault("Buzzer_setVolume"_s, 7);
        delay("FrontLED_setColor", WaitNotice::patience);
        watch([&] {
            dialogs.plan(QMessageBox::Yes);
            dialogs.plan([&](QDialog *box) {
                if (waiting() || strip() || busy(window.get()))
                    QTest::qFail("at work while a box is open", __FILE__, __LINE__);
                box->accept();
            });
            click(page, "buttonDefaults");
        });
        QCOMPARE(dialogs.take().size(), 3);
        QCOMPARE(paints, 2); // and once more behind the box
    }

    void leavingTheGpsTab()
    {
        useNoOtherLines();
        setUnit("Telematics.gpsPowerStatus"_s, "1"_s);
        auto *page = open(telematicsTab);
        auto *tabs = child<QTabWidget>(page, "tabWidget");
        tabs->setCurrentIndex(1); // without a line
        QCOMPARE(dialogs.take().size(), 1);
        delay("Telematics_getGPSAntennaStatus", 400);
        rest(50); // until the reader is in the slow call
        watch([&] { tabs->setCurrentIndex(0); });
        QVERIFY(paints > 0);
    }

    /** Before the first call, where there was one that took long. */
    void slowUnitIsKnown()
    {
        auto *page = open(onOffTab);
        delay("Config_setPowerOnStartup", WaitNotice::patience);
        watch([&] { click(page, "pushButton"); });
        QCOMPARE(paints, 0);
        delay("Config_setPowerOnStartup", 0);
        watch([&] { click(page, "pushButton"); });
        QCOMPARE(paints, 1);
        QCOMPARE(before, QStringList());
        QElapsedTimer clock;
        clock.start();
        watch([&] { click(page, "pushButton"); });
        if (clock.elapsed() < WaitNotice::patience)
            QCOMPARE(paints, 0);
    }

    void stripIsAtTheFoot()
    {
        QImage picture;
        watch([&] {
            const WaitNotice notice(window.get(), WaitNotice::patience);
            QCOMPARE(strip()->text(), "Please wait..."_s);
            QCOMPARE(QAccessible::queryAccessibleInterface(strip())->text(QAccessible::Name),
                "Please wait..."_s);
            picture = window->grab().toImage();
        });
        QCOMPARE(place.bottom(), window->height() - 1);
        QCOMPARE(place.left(), 0);
        QCOMPARE(place.width(), window->width());
        // Amber, from the style sheet.
        const QColor ground = picture.pixelColor(place.left() + 20, place.center().y());
        QVERIFY2(ground.red() > 200 && ground.green() > 120 && ground.blue() < 100,
            qPrintable(ground.name()));
    }

    void endsWithAnException()
    {
        watch([&] {
            try {
                const WaitNotice notice(window.get(), WaitNotice::patience);
                throw std::runtime_error("");
            } catch (const std::runtime_error &) {
            }
        });
        QCOMPARE(paints, 1);
        workStep();
    }

    void workWithinWork()
    {
        watch([&] {
            const WaitNotice notice(window.get());
            rest(WaitNotice::patience);
            {
                const WaitNotice inner(window.get());
                workStep();
            }
            QVERIFY(waiting());
            QVERIFY(strip());
        });
        QCOMPARE(paints, 1);
    }

    void pageThatNobodySees()
    {
        QWidget page;
        const WaitNotice notice(&page, WaitNotice::patience);
        QVERIFY(!waiting());
        QVERIFY(!page.findChild<QLabel *>());
        workStep();
    }

private:
    /** The work, with all that is seen of it written down. */
    void watch(const std::function<void()> &work)
    {
        mainThreadCalls();
        started = false;
        before.clear();
        paints = 0;
        qApp->installEventFilter(this);
        work();
        qApp->removeEventFilter(this);
        all = before + mainThreadCalls();
        QVERIFY(!waiting());
        QVERIFY(!strip());
        QVERIFY(!busy(window.get()));
    }

    void delay(const char *operation, unsigned milliseconds)
    {
        const auto error = virtualunit::setDelay(operation, milliseconds);
        QVERIFY2(error.empty(), error.c_str());
    }

    QWidget *open(int tab)
    {
        window->showTab(tab);
        for (auto *page : window->findChildren<tabDlg *>()) {
            if (page->isVisible())
                return page;
        }
        qFatal("no page");
        return nullptr;
    }
    QLabel *strip() const { return window->findChild<QLabel *>(WaitNotice::stripName()); }

    std::unique_ptr<SkippedPauses> pauses;
    std::unique_ptr<VornSettings> window;
    QPointer<QWidget> list; ///< that must be gone when the strip comes
    QStringList before;     ///< calls until the strip was painted
    QStringList all;
    QRect place; ///< of the strip
    int paints = 0;
    bool started = false; ///< the window was painted before the strip came, without its list
};

VORN_TEST_MAIN(WaitNoticeTest)
#include "tst_waitnotice.moc"
