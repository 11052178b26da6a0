#include "frame/window/FocusRing.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QSlider>
#include <QTabBar>

#include <algorithm>

namespace {

// Pixels. Each line is as wide as the style sheet's borders, which the outer one covers.
constexpr int lineWidth = 2;
constexpr double roundCorner = 10;
constexpr double tabCorner = 4;
constexpr double pictureCorner = 15; // of the menu's buttons
constexpr int pictureSize = 60;

/** What of the widget that has the focus shows it: of lists that scroll their content. */
QWidget *ringedPart(QWidget *focus)
{
    auto *view = qobject_cast<QAbstractItemView *>(focus);
    return view ? view->viewport() : focus;
}

QRect ringedPlace(const QWidget *focus, const QWidget *part)
{
    if (const auto *tabs = qobject_cast<const QTabBar *>(focus))
        return tabs->tabRect(tabs->currentIndex());
    if (const auto *view = qobject_cast<const QAbstractItemView *>(focus)) {
        const QRect row = view->visualRect(view->currentIndex());
        if (!row.isEmpty())
            return row;
    }
    return part->rect();
}

/** Whether the style sheet rounds its corners. */
bool isRound(const QWidget *focus)
{
    return qobject_cast<const QAbstractButton *>(focus) || qobject_cast<const QComboBox *>(focus) ||
           qobject_cast<const QAbstractSpinBox *>(focus) ||
           qobject_cast<const QAbstractSlider *>(focus) ||
           (qobject_cast<const QAbstractScrollArea *>(focus) &&
               !qobject_cast<const QAbstractItemView *>(focus));
}

double cornerOf(const QWidget *focus)
{
    if (qobject_cast<const QTabBar *>(focus))
        return tabCorner;
    if (!isRound(focus))
        return 0;
    const auto *button = qobject_cast<const QPushButton *>(focus);
    const bool picture =
        button && !button->icon().isNull() && button->iconSize().height() >= pictureSize;
    return picture ? pictureCorner : roundCorner;
}

/** The middle of a line that far from the edge. */
QPainterPath line(const QWidget *focus, const QRect &place, double inset)
{
    const QRectF rect = QRectF(place).adjusted(inset, inset, -inset, -inset);
    const double corner = std::max(cornerOf(focus) - inset, 0.0);
    QPainterPath path;
    path.addRoundedRect(rect, corner, corner);
    // A slider continues the display at its left.
    if (qobject_cast<const QSlider *>(focus)) {
        QPainterPath left;
        left.addRect(rect.adjusted(0, 0, -rect.width() / 2, 0));
        path = path.united(left);
    }
    return path;
}

void drawRing(const QWidget *focus, QWidget *part)
{
    const QRect place = ringedPlace(focus, part);
    QPainter painter(part);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, lineWidth));
    painter.drawPath(line(focus, place, lineWidth * 1.5));
    painter.setPen(QPen(Qt::white, lineWidth));
    painter.drawPath(line(focus, place, lineWidth * 0.5));
}

} // namespace

FocusRing::FocusRing()
{
    QCoreApplication::instance()->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [](QWidget *former, QWidget *present) {
        for (QWidget *widget : {former, present}) {
            if (widget)
                ringedPart(widget)->update();
        }
    });
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    if (painting || event->type() != QEvent::Paint)
        return false;
    QWidget *focus = QApplication::focusWidget();
    if (!focus || watched != ringedPart(focus))
        return false;
    // Once more, and past this filter: what the widget looks like comes first, and who else filters
    // its events has a part in that.
    painting = true;
    QCoreApplication::sendEvent(watched, event);
    painting = false;
    drawRing(focus, ringedPart(focus));
    return true;
}
