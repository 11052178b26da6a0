#include "tests/support/views.h"

#include "frame/tabDlg.h"
#include "frame/window/VornSettings.h"
#include "tests/support/PageWalk.h"
#include "tests/support/literals.h"

#include <QApplication>
#include <QTabBar>
#include <QTabWidget>
#include <QtTest>

#include <algorithm>
#include <functional>

namespace {

/** A stop, or a widget with stops in it, and where it is in the area that is read. */
struct Item {
    QWidget *widget;
    QRect place;
};
using Items = QList<Item>;

int tabsOf(int index)
{
    switch (index) {
    case 4:
    case 13:
        return 2;
    case 15:
        return 3;
    default:
        return 1;
    }
}

bool isStop(const QWidget *widget)
{
    return widget->isEnabled() && !widget->focusProxy() &&
           (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
}

Items itemsOf(const QWidget *area)
{
    Items items;
    for (QWidget *widget : area->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!widget->isVisible() || widget->isWindow())
            continue;
        if (isStop(widget) || !support::readingOrder(widget).isEmpty())
            items << Item{widget, widget->geometry()};
    }
    return items;
}

using Edge = std::function<int(const QRect &)>;

/** The items in pieces between which a straight line can be drawn. */
QList<Items> cut(Items items, const Edge &begin, const Edge &end)
{
    std::stable_sort(items.begin(), items.end(),
        [&](const Item &one, const Item &other) { return begin(one.place) < begin(other.place); });
    QList<Items> pieces;
    int reach = -1;
    for (const Item &item : items) {
        if (begin(item.place) > reach)
            pieces << Items();
        pieces.last() << item;
        reach = std::max(reach, end(item.place));
    }
    return pieces;
}

QList<QWidget *> read(const Items &items)
{
    if (items.size() == 1) {
        QWidget *widget = items.first().widget;
        return isStop(widget) ? QList<QWidget *>{widget} : support::readingOrder(widget);
    }
    auto pieces = cut(items, &QRect::top, &QRect::bottom);
    if (pieces.size() == 1)
        pieces = cut(items, &QRect::left, &QRect::right);
    QList<QWidget *> order;
    if (pieces.size() == 1) // they lie over each other, which other tests forbid
        qFatal("no order in %s", qPrintable(support::nameOf(items.first().widget)));
    for (const Items &piece : pieces)
        order += read(piece);
    return order;
}

} // namespace

namespace support {

void addViewRows()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("tab");
    for (const PageRow &page : pageRows) {
        for (int tab = 0; tab < tabsOf(page.index); ++tab)
            QTest::addRow("%s %d", page.shot, tab) << page.index << tab;
    }
}

tabDlg *openView(VornSettings &window, View view)
{
    window.showTab(view.index);
    tabDlg *page = visiblePage(window);
    if (const auto *tabs = page->findChild<QTabWidget *>()) {
        if (tabs->count() != tabsOf(view.index))
            qFatal("%d tabs", tabs->count());
        QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, Qt::NoModifier,
            tabs->tabBar()->tabRect(view.tab).center());
    }
    return page;
}

QList<QWidget *> tabStops(const VornSettings &window)
{
    QList<QWidget *> stops{QApplication::focusWidget()};
    while (stops.size() < 100 && stops.last()) {
        QTest::keyClick(stops.last(), Qt::Key_Tab);
        QWidget *next = QApplication::focusWidget();
        if (next == stops.first())
            return stops;
        stops << next;
    }
    qFatal("Tab leads nowhere in %s", qPrintable(window.windowTitle()));
}

QList<QWidget *> readingOrder(const QWidget *area)
{
    const Items items = itemsOf(area);
    return items.isEmpty() ? QList<QWidget *>() : read(items);
}

QString nameOf(const QWidget *widget)
{
    if (!widget)
        return "nothing"_s;
    const QString name = widget->objectName();
    if (!name.isEmpty() && !name.startsWith(QLatin1String("qt_")))
        return name;
    return nameOf(widget->parentWidget()) + QLatin1Char('/') +
           QString::fromLatin1(widget->metaObject()->className());
}

QStringList namesOf(const QList<QWidget *> &widgets)
{
    QStringList names;
    for (const QWidget *widget : widgets)
        names << nameOf(widget);
    return names;
}

} // namespace support
