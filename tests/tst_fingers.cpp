#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"
#include "tests/support/PageTest.h"
#include "tests/support/PageWalk.h"
#include "tests/support/SkippedPauses.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QScroller>
#include <QSlider>
#include <QSpinBox>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeView>

using namespace support;

namespace {

constexpr int leastSize = 30; // pixels, of what a finger presses
constexpr int boxSize = 44;   // pixels, of a box's buttons
constexpr int rowHeight = 36; // pixels
constexpr QSize smallestScreen(640, 480);

/** Something that takes a press, in the coordinates of its window. */
struct Target {
    QString name;
    QRect place;
    int least = leastSize;
};

/** What stays smaller, and why. */
struct Exception {
    const char *name; ///< end of a target's
    QSize size;       ///< least all the same
};
constexpr Exception exceptions[] = {
    // The look of the bars is given; they are drag aids beside the finger in the text itself.
    {"QScrollBar", {25, 30}},
    {"QScrollBar, horizontal", {30, 25}},
    // Qt paints its colours at one size. What is chosen here is seen beside, and only "OK" sends
    // it.
    {"QWellArray, colour", {28, 24}},
};

QSize least(const Target &target)
{
    for (const Exception &exception : exceptions) {
        if (target.name.endsWith(QLatin1String(exception.name)))
            return exception.size;
    }
    return {target.least, target.least};
}

QString named(const QWidget *widget)
{
    return widget->objectName() + " "_s + QString::fromLatin1(widget->metaObject()->className());
}

template <typename Widget, typename Option>
QRect part(
    const Widget *widget, Option *option, QStyle::ComplexControl control, QStyle::SubControl which)
{
    option->initFrom(widget);
    return widget->style()->subControlRect(control, option, which, widget);
}

QList<Target> partsOf(const QWidget *widget)
{
    if (const auto *spin = qobject_cast<const QSpinBox *>(widget)) {
        QStyleOptionSpinBox option;
        return {{named(widget) + ", up"_s,
                    part(spin, &option, QStyle::CC_SpinBox, QStyle::SC_SpinBoxUp)},
            {named(widget) + ", down"_s,
                part(spin, &option, QStyle::CC_SpinBox, QStyle::SC_SpinBoxDown)}};
    }
    if (const auto *tabs = qobject_cast<const QTabBar *>(widget)) {
        QList<Target> targets;
        for (int index = 0; index < tabs->count(); ++index)
            targets << Target{"tab "_s + tabs->tabText(index), tabs->tabRect(index)};
        return targets;
    }
    if (const auto *header = qobject_cast<const QHeaderView *>(widget)) {
        QList<Target> targets;
        for (int index = 0; index < header->count(); ++index) {
            if (!header->isSectionHidden(index))
                targets << Target{"head of column %1"_s.arg(index),
                    QRect(header->sectionViewportPosition(index), 0, header->sectionSize(index),
                        header->height())};
        }
        return targets;
    }
    if (widget->inherits("QWellArray"))
        return {{named(widget) + ", colour"_s, QRect(0, 0, 28, 24)}};
    return {};
}

/** Whether it takes presses as a whole. */
bool isPressed(const QWidget *widget)
{
    const auto *field = qobject_cast<const QLineEdit *>(widget);
    return qobject_cast<const QAbstractButton *>(widget) ||
           qobject_cast<const QComboBox *>(widget) || qobject_cast<const QSlider *>(widget) ||
           qobject_cast<const QScrollBar *>(widget) || (field && !field->isReadOnly()) ||
           widget->inherits("QColorPicker") || widget->inherits("QColorLuminancePicker");
}

/** All that takes a press in that window or page, where it is seen. */
QList<Target> targetsOf(QWidget *root)
{
    QList<Target> targets;
    for (const QWidget *widget : root->findChildren<QWidget *>()) {
        if (!widget->isVisible() || !widget->isEnabled() || widget->window() != root->window())
            continue;
        QList<Target> found = partsOf(widget);
        if (isPressed(widget)) {
            QString name = named(widget);
            const auto *bar = qobject_cast<const QScrollBar *>(widget);
            if (bar && bar->orientation() == Qt::Horizontal)
                name += ", horizontal"_s;
            found << Target{name, widget->rect()};
        }
        for (Target &target : found) {
            target.place.moveTopLeft(widget->mapTo(root, target.place.topLeft()));
            targets << target;
        }
    }
    return targets;
}

QStringList faultsOf(const QList<Target> &targets)
{
    QStringList faults;
    for (const Target &target : targets) {
        const QSize size = target.place.size();
        if (size.width() < least(target).width() || size.height() < least(target).height())
            faults << "%1 is %2x%3"_s.arg(target.name).arg(size.width()).arg(size.height());
    }
    for (int i = 0; i < targets.size(); ++i) {
        for (int j = i + 1; j < targets.size(); ++j) {
            if (targets[i].place.intersects(targets[j].place))
                faults << targets[i].name + " lies over "_s + targets[j].name;
        }
    }
    return faults;
}

void sendMouse(QWidget *widget, QEvent::Type type, QPoint place, Qt::MouseButtons held)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, widget->mapToGlobal(place), button, held, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &event);
}

constexpr int dragSteps = 10;

/** So that what is dragged doesn't go on by itself behind the end. */
void standStill(const std::function<void()> &move)
{
    for (int step = 0; step < dragSteps; ++step) {
        QTest::qWait(30);
        move();
    }
}

/** Button down, a way in steps, button up; a little while between, as a hand takes it. */
void drag(QWidget *widget, QPoint from, QPoint way, int rest = 0)
{
    sendMouse(widget, QEvent::MouseButtonPress, from, Qt::LeftButton);
    QTest::qWait(rest);
    for (int step = 1; step <= dragSteps; ++step) {
        sendMouse(widget, QEvent::MouseMove, from + way * step / dragSteps, Qt::LeftButton);
        QTest::qWait(5);
    }
    standStill([&] { sendMouse(widget, QEvent::MouseMove, from + way, Qt::LeftButton); });
    sendMouse(widget, QEvent::MouseButtonRelease, from + way, Qt::NoButton);
}

/** The same by a finger on a touch screen. */
void touchDrag(QWidget *widget, QPoint from, QPoint way)
{
    static auto *device = QTest::createTouchDevice();
    QTest::touchEvent(widget, device).press(0, from, widget);
    for (int step = 1; step <= dragSteps; ++step) {
        QTest::touchEvent(widget, device).move(0, from + way * step / dragSteps, widget);
        QTest::qWait(5);
    }
    standStill([&] { QTest::touchEvent(widget, device).move(0, from + way, widget); });
    QTest::touchEvent(widget, device).release(0, from + way, widget);
}

constexpr QPoint upwards(0, -120);

} // namespace

/** That the window can be worked by a finger: sizes, lists, dialogs, and what a drag does. */
class FingersTest : public DeviceTest
{
    Q_OBJECT

private:
    SkippedPauses pauses;
    std::unique_ptr<VornSettings> window;

    template <typename Widget>
    Widget *show(int tab, const char *name)
    {
        window->showTab(tab);
        return child<Widget>(visiblePage(*window), name);
    }

    QAbstractItemView *openLongList()
    {
        auto *box = show<QComboBox>(touchTab, "comboBoxParameter");
        child<QTabWidget>(visiblePage(*window), "tabWidget")->setCurrentIndex(1);
        box->showPopup();
        return box->view();
    }

    /** The report of the whole unit in the About page. */
    QPlainTextEdit *openReport()
    {
        auto *text = show<QPlainTextEdit>(aboutTab, "textEditInfo");
        QString lines;
        for (int line = 0; line < 500; ++line)
            lines += "line %1\n"_s.arg(line);
        text->setPlainText(lines);
        return text;
    }

    /** Where there are no serial lines, the Telematics page says so. */
    void walk(const std::function<void(tabDlg *, const QString &)> &visit)
    {
        walkPages(*window, visit);
        dialogs.take();
    }

    static void verifyNone(const QStringList &faults)
    {
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
    }

    static void finishScrolling(QWidget *viewport)
    {
        QTRY_COMPARE(QScroller::scroller(viewport)->state(), QScroller::Inactive);
    }

private slots:
    void initTestCase() { setApplicationLook(); }

    void init()
    {
        DeviceTest::init();
        window = std::make_unique<VornSettings>();
        window->show();
    }

    void cleanup()
    {
        window.reset();
        takeWarnings(); // the offscreen platform grabs no keyboard for a list
        DeviceTest::cleanup();
    }

    void pages()
    {
        QStringList faults;
        walk([&](tabDlg *, const QString &place) {
            for (const QString &fault : faultsOf(targetsOf(window.get())))
                faults << place + ": "_s + fault;
        });
        verifyNone(faults);
    }

    void lists()
    {
        QStringList faults;
        int count = 0;
        const auto check = [&](QComboBox *box, const QString &place) {
            const auto fault = [&](const QString &what) {
                faults << "%1, %2: %3"_s.arg(place, box->objectName(), what);
            };
            box->showPopup();
            const auto *list = box->view();
            const QRect frame = list->window()->geometry();
            const QRect screen = box->screen()->availableGeometry();
            const QRect first = list->visualRect(box->model()->index(0, 0));
            if (first.height() < rowHeight)
                fault("rows of %1"_s.arg(first.height()));
            if (first.top() != 0 && list->verticalScrollBar()->value() == 0)
                fault("a gap of %1"_s.arg(first.top()));
            if (frame.width() != box->width())
                fault("%1 wide for %2"_s.arg(frame.width()).arg(box->width()));
            if (!screen.contains(frame))
                fault("leaves the screen"_s);
            const int rows = qMin(box->count(), box->maxVisibleItems()) * first.height();
            const int room = qMax(screen.bottom() - box->mapToGlobal(box->rect().bottomLeft()).y(),
                box->mapToGlobal(QPoint()).y() - screen.top());
            if (frame.height() > rows + 10 || frame.height() < qMin(rows, room - 10))
                fault("%1 high for %2"_s.arg(frame.height()).arg(rows));
            if (!QScroller::hasScroller(list->viewport()))
                fault("no flick"_s);
            box->hidePopup();
            ++count;
        };
        const int lowest = window->screen()->availableGeometry().height() - window->height();
        for (const int y : {0, lowest}) {
            window->move(0, y); // the list finds its place above or below
            walk([&](tabDlg *page, const QString &place) {
                for (auto *box : page->findChildren<QComboBox *>()) {
                    if (box->isVisible())
                        check(box, place);
                }
            });
        }
        verifyNone(faults);
        QVERIFY(count >= 26);
    }

    void scrollBars()
    {
        QStringList thin;
        walk([&](tabDlg *page, const QString &place) {
            for (auto *area : page->findChildren<QAbstractScrollArea *>()) {
                const auto *bar = area->verticalScrollBar();
                if (area->isVisible() && bar->sizeHint().width() != 25)
                    thin << place + ": "_s + area->objectName();
            }
        });
        verifyNone(thin);
    }

    void listByFinger_data()
    {
        QTest::addColumn<bool>("touch");
        QTest::addColumn<int>("rest"); // milliseconds that the finger lies still before
        QTest::newRow("mouse profile") << false << 0;
        QTest::newRow("mouse profile, after a rest") << false << 400;
        QTest::newRow("touch profile") << true << 0;
    }

    /** A flick moves the list and chooses nothing; a tap chooses. */
    void listByFinger()
    {
        QFETCH(bool, touch);
        QFETCH(int, rest);
        auto *list = openLongList();
        auto *box = child<QComboBox>(visiblePage(*window), "comboBoxParameter");
        QWidget *viewport = list->viewport();
        const QSignalSpy chosen(box, SIGNAL(activated(int)));
        list->window()->resize(list->window()->width(), 300);
        QTest::qWait(
            QApplication::doubleClickInterval()); // Qt's own guard against the opening press
        const QPoint from(60, 200);
        if (touch)
            touchDrag(viewport, from, upwards);
        else
            drag(viewport, from, upwards, rest);
        finishScrolling(viewport);
        QVERIFY2(list->verticalScrollBar()->value() >= 90,
            qPrintable(QString::number(list->verticalScrollBar()->value())));
        QVERIFY(list->isVisible());
        QCOMPARE(box->currentIndex(), 0);
        QCOMPARE(chosen.count(), 0);

        const QModelIndex under = list->indexAt(from);
        QVERIFY(under.row() > 0);
        QTest::mouseClick(viewport, Qt::LeftButton, {}, from);
        QCOMPARE(box->currentIndex(), under.row());
        QVERIFY(!list->isVisible());
    }

    /** The press that opens a list goes on over its rows. */
    void slideIntoList()
    {
        QAbstractItemView *list = openLongList();
        auto *box = child<QComboBox>(visiblePage(*window), "comboBoxParameter");
        QTest::qWait(QApplication::doubleClickInterval());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(60, 10));
        QVERIFY(!list->isVisible());
        list = openLongList();
        QTest::qWait(QApplication::doubleClickInterval());
        const QPoint row = list->visualRect(box->model()->index(3, 0)).center();
        for (int y = 2; y <= row.y(); y += 10)
            sendMouse(list->viewport(), QEvent::MouseMove, QPoint(row.x(), y), Qt::LeftButton);
        sendMouse(list->viewport(), QEvent::MouseButtonRelease, row, Qt::NoButton);
        QCOMPARE(box->currentIndex(), 0);
        QCOMPARE(list->currentIndex().row(), 0);
        QVERIFY(list->isVisible());
        box->hidePopup();
    }

    void textByFinger_data()
    {
        QTest::addColumn<bool>("touch");
        QTest::newRow("mouse profile") << false;
        QTest::newRow("touch profile") << true;
    }

    /** The text follows the finger, line by line, and nothing is selected. */
    void textByFinger()
    {
        QFETCH(bool, touch);
        auto *text = openReport();
        QWidget *viewport = text->viewport();
        const QPoint from(60, viewport->height() - 5);
        sendDrag(viewport, from, touch);
        finishScrolling(viewport);
        const int lines = text->verticalScrollBar()->value();
        const int line = text->fontMetrics().lineSpacing();
        QVERIFY2(lines >= 80 / line && lines <= 160 / line, qPrintable(QString::number(lines)));
        QVERIFY(!text->textCursor().hasSelection());
    }

    /** The Touch page's list of values is of another kind, and scrolls by pixels. */
    void valuesByFinger()
    {
        auto *text = show<QTextEdit>(touchTab, "textEdit");
        child<QTabWidget>(visiblePage(*window), "tabWidget")->setCurrentIndex(1);
        text->setPlainText(QString("value\n"_s).repeated(100));
        drag(text->viewport(), QPoint(60, 60), QPoint(0, -50));
        finishScrolling(text->viewport());
        QVERIFY(text->verticalScrollBar()->value() >= 30);
        QVERIFY(!text->textCursor().hasSelection());
    }

    /** A mouse that goes sideways first selects, and may go on down then. */
    void selection()
    {
        auto *text = openReport();
        QWidget *viewport = text->viewport();
        sendMouse(viewport, QEvent::MouseButtonPress, QPoint(8, 8), Qt::LeftButton);
        for (int x = 8; x <= 40; x += 4) {
            sendMouse(viewport, QEvent::MouseMove, QPoint(x, 8), Qt::LeftButton);
            QTest::qWait(10);
        }
        QTest::qWait(400);
        for (int y = 8; y <= 80; y += 8) {
            sendMouse(viewport, QEvent::MouseMove, QPoint(40, y), Qt::LeftButton);
            QTest::qWait(10);
        }
        sendMouse(viewport, QEvent::MouseButtonRelease, QPoint(40, 80), Qt::NoButton);
        QCOMPARE(text->verticalScrollBar()->value(), 0);
        const QString selected = text->textCursor().selectedText();
        QVERIFY2(
            selected.contains("line 1"_s) && selected.contains("line 3"_s), qPrintable(selected));
    }

    void boxes_data()
    {
        QTest::addColumn<QMessageBox::StandardButtons>("buttons");
        QTest::addColumn<bool>("onPage");
        const QMessageBox::StandardButtons answers = QMessageBox::Yes | QMessageBox::No;
        QTest::newRow("error of a page") << QMessageBox::StandardButtons(QMessageBox::Ok) << true;
        QTest::newRow("question of a page") << answers << true;
        QTest::newRow("without a page") << QMessageBox::StandardButtons(QMessageBox::Ok) << false;
        QTest::newRow("with all pictures that there are")
            << (QMessageBox::Save | QMessageBox::Discard | QMessageBox::Apply) << true;
    }

    void boxes()
    {
        QFETCH(QMessageBox::StandardButtons, buttons);
        QFETCH(bool, onPage);
        window->showTab(displayTab);
        QMessageBox box(QMessageBox::Critical, "Vornsettings"_s, "Value out of range"_s, buttons,
            onPage ? visiblePage(*window) : nullptr);
        box.setModal(false);
        box.show();
        verifyNone(boxFaults(&box));
    }

    void fileDialog_data()
    {
        QTest::addColumn<int>("tab");
        QTest::addColumn<QString>("button");
        QTest::newRow("Save Data") << int(aboutTab) << "pushButtonSaveAs"_s;
        QTest::newRow("firmware file") << int(advancedTab) << "buttonFile"_s;
    }

    void fileDialog()
    {
        QFETCH(int, tab);
        QFETCH(QString, button);
        const QTemporaryDir folder;
        QVERIFY(QFile(folder.filePath("file.txt"_s)).open(QIODevice::WriteOnly));
        QStringList faults;
        QSize size;
        dialogs.plan([&](QDialog *dialog) {
            qobject_cast<QFileDialog *>(dialog)->setDirectory(folder.path());
            for (const char *name : {"sidebar", "treeView"}) {
                const auto *list = child<QAbstractItemView>(dialog, name);
                const auto height = [list] {
                    return list->visualRect(list->model()->index(0, 0, list->rootIndex())).height();
                };
                if (!QTest::qWaitFor([&] { return height() > 0; }) || height() < rowHeight)
                    faults << "%1 has rows of %2"_s.arg(named(list)).arg(height());
                if (!QScroller::hasScroller(list->viewport()))
                    faults << named(list) + " has no flick"_s;
            }
            constexpr int typeColumn = 2; // the name tells the type, and needs the room
            if (!child<QTreeView>(dialog, "treeView")->isColumnHidden(typeColumn))
                faults << "the type has a column"_s;
            faults += dialogFaults(dialog);
            size = dialog->size();
            dialog->reject();
        });
        window->showTab(tab);
        click(visiblePage(*window), qPrintable(button));
        QCOMPARE(dialogs.take().size(), 1);
        verifyNone(faults);
        QVERIFY2(size.boundedTo(smallestScreen) == size,
            qPrintable("%1x%2"_s.arg(size.width()).arg(size.height())));
    }

    /** The touch screen's controller makes a right click of a long press. */
    void menuOfField()
    {
        auto *field = show<QLineEdit>(heaterTab, "editHeatingTemp");
        QContextMenuEvent event(
            QContextMenuEvent::Mouse, QPoint(5, 5), field->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(field, &event);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        int entries = 0;
        for (QAction *action : menu->actions()) {
            if (action->isSeparator())
                continue;
            ++entries;
            QVERIFY2(
                menu->actionGeometry(action).height() >= rowHeight, qPrintable(action->text()));
        }
        QVERIFY(entries >= 5);
        QVERIFY(menu->height() <= smallestScreen.height());
        menu->close();
    }

    /** A finger on a file's row, and on its way. */
    void filesByFinger()
    {
        QTemporaryDir folder;
        for (int number = 10; number < 40; ++number)
            QVERIFY(QFile(folder.filePath("file%1.txt"_s.arg(number))).open(QIODevice::WriteOnly));
        QFileDialog dialog(visiblePage(*window), QString(), folder.path());
        dialog.show();
        auto *files = child<QTreeView>(&dialog, "treeView");
        QTRY_COMPARE(files->model()->rowCount(files->rootIndex()), 30);
        QTRY_VERIFY(files->verticalScrollBar()->maximum() > 200);
        drag(files->viewport(), QPoint(60, 150), upwards, 400);
        finishScrolling(files->viewport());
        QVERIFY(files->verticalScrollBar()->value() >= 90);
        QCOMPARE(child<QLineEdit>(&dialog, "fileNameEdit")->text(), QString());
        QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, QPoint(60, 50));
        QVERIFY(child<QLineEdit>(&dialog, "fileNameEdit")->text().startsWith("file"_s));
        QTest::mouseDClick(files->viewport(), Qt::LeftButton, {}, QPoint(60, 50));
        QVERIFY(!dialog.isVisible());
    }

    /** The next dialog begins where the last file was, whoever asked. */
    void lastFolder()
    {
        QTemporaryDir folder;
        dialogs.planFile(folder.filePath("report.txt"_s));
        window->showTab(aboutTab);
        click(visiblePage(*window), "pushButtonSaveAs");
        QVERIFY(QFile::exists(folder.filePath("report.txt"_s)));
        QString begin;
        dialogs.plan([&](QDialog *dialog) {
            begin = qobject_cast<QFileDialog *>(dialog)->directory().path();
            dialog->reject();
        });
        click(visiblePage(*window), "pushButtonSaveAs");
        QCOMPARE(begin, folder.path());
        dialogs.take();
    }

    void colourDialog()
    {
        QStringList faults;
        QSize size;
        dialogs.plan([&](QDialog *dialog) {
            faults = dialogFaults(dialog);
            size = dialog->size();
            for (auto *spin : dialog->findChildren<QSpinBox *>()) {
                const int digits = spin->fontMetrics().horizontalAdvance("255"_s);
                if (child<QLineEdit>(spin, "qt_spinbox_lineedit")->width() < digits)
                    faults << "a number that is cut off"_s;
            }
            dialog->reject();
        });
        window->showTab(ledTab);
        click(visiblePage(*window), "buttonColorpick");
        QCOMPARE(dialogs.take().size(), 1);
        verifyNone(faults);
        QVERIFY2(size.boundedTo(smallestScreen) == size,
            qPrintable("%1x%2"_s.arg(size.width()).arg(size.height())));
    }

private:
    static void sendDrag(QWidget *viewport, QPoint from, bool touch)
    {
        if (touch)
            touchDrag(viewport, from, upwards);
        else
            drag(viewport, from, upwards);
    }

    /** Buttons are a box's, what else takes a press is as on a page. */
    static QStringList dialogFaults(QDialog *dialog)
    {
        QList<Target> targets = targetsOf(dialog);
        for (Target &target : targets) {
            if (target.name.endsWith("Button"_s))
                target.least = boxSize;
        }
        return faultsOf(targets);
    }

    static QStringList boxFaults(QDialog *box)
    {
        QStringList faults = dialogFaults(box);
        for (const auto *button : box->findChildren<QPushButton *>()) {
            if (button->width() < 88)
                faults << button->text() + " is narrow"_s;
            if (!button->icon().isNull() &&
                button->style()->styleHint(
                    QStyle::SH_DialogButtonBox_ButtonsHaveIcons, nullptr, button->parentWidget()))
                faults << button->text() + " has a picture"_s;
        }
        return faults;
    }
};

VORN_TEST_MAIN(FingersTest)
#include "tst_fingers.moc"
