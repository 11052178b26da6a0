#include "tests/support/ViewTest.h"
#include "tests/support/contrast.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabBar>
#include <QTextEdit>

using namespace support;

namespace {

constexpr double leastContrast = 3;

using Make = std::function<QWidget *()>;

template <typename Widget>
Make plain()
{
    return [] { return new Widget; };
}

QImage picture(const QWidget *widget)
{
    QWidget *window = widget->window();
    return window->grab(QRect(widget->mapTo(window, QPoint()), widget->size())).toImage();
}

/** Where the focus shows. */
QRect shownPlace(const QWidget *widget)
{
    if (const auto *tabs = qobject_cast<const QTabBar *>(widget))
        return tabs->tabRect(tabs->currentIndex()) & tabs->rect();
    return widget->rect();
}

/** Pixels that stand out from what they were without the focus. */
int changedPixels(const QImage &without, const QImage &with, const QRect &place)
{
    int changed = 0;
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x)
            changed += without.pixel(x, y) != with.pixel(x, y) &&
                       contrast(without.pixelColor(x, y), with.pixelColor(x, y)) >= leastContrast;
    }
    return changed;
}

/** Whether one that comes from outside meets two neighbours that stand out from each other and
 *  weren't both there without the focus. */
bool isEdge(const QImage &without, const QImage &with, QPoint from, QPoint step)
{
    constexpr int depth = 7; // pixels
    for (int i = 0; i < depth; ++i, from += step) {
        const QPoint next = from + step;
        const bool isNew =
            with.pixel(from) != without.pixel(from) || with.pixel(next) != without.pixel(next);
        if (isNew && contrast(with.pixelColor(from), with.pixelColor(next)) >= leastContrast)
            return true;
    }
    return false;
}

/** What is wrong with how the widget shows the focus, nothing if that can be seen. */
QString faultOf(QWidget *widget, QWidget *elsewhere)
{
    elsewhere->setFocus();
    const QImage without = picture(widget);
    widget->setFocus();
    if (QApplication::focusWidget() != widget)
        return "takes no focus"_s;
    const QImage with = picture(widget);
    const QRect place = shownPlace(widget);
    const int changed = changedPixels(without, with, place);
    // As much as a line of one pixel around the widget, but for its corners.
    if (changed < 2 * (place.width() + place.height()) * 9 / 10)
        return "changes %1 pixels"_s.arg(changed);
    const QPoint middle = place.center();
    if (!isEdge(without, with, {place.left(), middle.y()}, {1, 0}) ||
        !isEdge(without, with, {place.right(), middle.y()}, {-1, 0}) ||
        !isEdge(without, with, {middle.x(), place.top()}, {0, 1}) ||
        !isEdge(without, with, {middle.x(), place.bottom()}, {0, -1}))
        return "has no ring"_s;
    return {};
}

} // namespace

Q_DECLARE_METATYPE(Make)

/** The focus can be seen, wherever it is. */
class FocusRingTest : public ViewTest
{
    Q_OBJECT

private slots:
    void measuresContrast()
    {
        QCOMPARE(qRound(contrast(Qt::black, Qt::white)), 21);
        QCOMPARE(contrast(QColor(80, 90, 100), QColor(80, 90, 100)), 1.0);
        QVERIFY(qAbs(contrast(QColor(118, 118, 118), Qt::white) - 4.54) < 0.01);
    }

    void pages_data() { addViewRows(); }

    /** Each control of each page, buttons in either state. */
    void pages()
    {
        openRow();
        auto *menu = child<QPushButton>(window.get(), "buttonMenu");
        auto *exit = child<QPushButton>(window.get(), "buttonExit");
        QStringList faults;
        for (QWidget *widget : readingOrder(page) + QList<QWidget *>{menu, exit}) {
            QWidget *elsewhere = widget == menu ? exit : menu;
            auto *button = qobject_cast<QPushButton *>(widget);
            for (const bool down : {false, true}) {
                if (button)
                    button->setDown(down);
                const QString found = faultOf(widget, elsewhere);
                if (!found.isEmpty())
                    faults << nameOf(widget) + QLatin1Char(' ') + found;
            }
        }
        QCOMPARE(faults, QStringList());
    }

    void places_data()
    {
        QTest::addColumn<Make>("make");
        QTest::newRow("QPushButton") << plain<QPushButton>();
        QTest::newRow("QCheckBox") << plain<QCheckBox>();
        QTest::newRow("QComboBox") << plain<QComboBox>();
        QTest::newRow("QLineEdit") << plain<QLineEdit>();
        QTest::newRow("QSpinBox") << plain<QSpinBox>();
        QTest::newRow("QSlider") << Make([] { return new QSlider(Qt::Horizontal); });
        QTest::newRow("QPlainTextEdit") << plain<QPlainTextEdit>();
        QTest::newRow("QTextEdit") << plain<QTextEdit>();
    }

    /** Each kind everywhere on the page, whose ground isn't the same anywhere. */
    void places()
    {
        QFETCH(Make, make);
        openEmpty();
        auto *menu = child<QPushButton>(window.get(), "buttonMenu");
        QWidget *widget = make();
        widget->setParent(page);
        widget->resize(120, 60);
        widget->show();
        for (int y = 0; y + widget->height() <= page->height(); y += 65) {
            for (const int x : {10, 240, 460}) {
                widget->move(x, y);
                QCOMPARE(faultOf(widget, menu), QString());
            }
        }
    }

    /** A list shows its current row, and itself as long as it has none. */
    void lists()
    {
        openEmpty();
        auto *menu = child<QPushButton>(window.get(), "buttonMenu");
        auto *list = new QListWidget(page);
        list->setGeometry(10, 10, 200, 200);
        list->show();
        menu->setFocus();
        const QImage without = picture(list);
        list->setFocus();
        QVERIFY(changedPixels(without, picture(list), list->rect()) > 2 * (150 + 150));
        list->addItems({"one"_s, "two"_s});
        for (int row = 0; row < 2; ++row) {
            list->setCurrentRow(row);
            menu->setFocus();
            const QImage unfocused = picture(list);
            list->setFocus();
            const QRect place = list->visualItemRect(list->item(row))
                                    .translated(list->viewport()->mapTo(list, QPoint()));
            QVERIFY(
                changedPixels(unfocused, picture(list), place) > place.width() + place.height());
        }
    }

    /** Boxes and dialogs of the window have the ring too. */
    void boxes()
    {
        setUnit("Battery.available"_s, "0"_s);
        window = std::make_unique<VornSettings>();
        window->show();
        QMessageBox box(QMessageBox::Question, "Title"_s, "Text"_s,
            QMessageBox::Yes | QMessageBox::No, window.get());
        dialogs.plan([&box](QDialog *) {
            box.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&box));
            QTRY_COMPARE(QApplication::activeWindow(), &box);
            QAbstractButton *yes = box.button(QMessageBox::Yes);
            QAbstractButton *no = box.button(QMessageBox::No);
            QCOMPARE(faultOf(yes, no), QString());
            QCOMPARE(faultOf(no, yes), QString());
            box.reject();
        });
        box.exec();
        QCOMPARE(dialogs.take().size(), 1);
    }
};

VORN_TEST_MAIN(FocusRingTest)
#include "tst_focusring.moc"
