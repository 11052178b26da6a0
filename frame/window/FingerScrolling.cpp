#include "frame/window/FingerScrolling.h"

#include <QAbstractItemView>
#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QScrollEvent>
#include <QScrollPrepareEvent>
#include <QScroller>
#include <QTextEdit>

namespace {

// A list learns of a press only when the finger has gone up again: then it was no drag. Qt's own
// quarter of a second would choose what a finger rests on before it drags.
constexpr double never = 3600;       // seconds
constexpr double textDelay = 0.25;   // seconds until a press that rests sets the text's cursor
constexpr double dragStart = 0.0025; // metres, ten pixels or so: a gloved finger is never still
constexpr double sideways = 0.6;     // how much of a drag's way must go along the axis to be one

void makeFlickable(QWidget *viewport, double pressDelay)
{
    QScroller *scroller = QScroller::scroller(viewport);
    QScrollerProperties properties = scroller->scrollerProperties();
    properties.setScrollMetric(QScrollerProperties::MousePressEventDelay, pressDelay);
    properties.setScrollMetric(QScrollerProperties::DragStartDistance, dragStart);
    properties.setScrollMetric(QScrollerProperties::AxisLockThreshold, sideways);
    for (const auto policy : {QScrollerProperties::HorizontalOvershootPolicy,
             QScrollerProperties::VerticalOvershootPolicy})
        properties.setScrollMetric(
            policy, QVariant::fromValue(QScrollerProperties::OvershootAlwaysOff));
    scroller->setScrollerProperties(properties);
    QScroller::grabGesture(viewport, QScroller::LeftMouseButtonGesture);
}

/** Plain texts scroll by lines, and a scroller would take these for pixels. */
bool scrollsByLines(QPlainTextEdit *text, QEvent *event)
{
    QScrollBar *bar = text->verticalScrollBar();
    const double line = QFontMetricsF(text->font()).lineSpacing();
    if (event->type() == QEvent::Scroll) {
        bar->setValue(qRound(static_cast<QScrollEvent *>(event)->contentPos().y() / line));
        return true;
    }
    auto *prepare = static_cast<QScrollPrepareEvent *>(event);
    prepare->setViewportSize(text->viewport()->size());
    prepare->setContentPosRange(QRectF(0, 0, 0, bar->maximum() * line));
    prepare->setContentPos(QPointF(0, bar->value() * line));
    prepare->accept();
    return true;
}

} // namespace

void FingerScrolling::equip(QAbstractScrollArea *area)
{
    auto *list = qobject_cast<QAbstractItemView *>(area);
    if (list) {
        list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    } else if (!qobject_cast<QPlainTextEdit *>(area) && !qobject_cast<QTextEdit *>(area)) {
        return;
    }
    makeFlickable(area->viewport(), list ? never : textDelay);
    area->viewport()->installEventFilter(this);
}

bool FingerScrolling::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ScrollPrepare:
    case QEvent::Scroll:
        if (auto *text = qobject_cast<QPlainTextEdit *>(watched->parent()))
            return scrollsByLines(text, event);
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return isStrayInList(watched, *static_cast<QMouseEvent *>(event));
    default:
        return false;
    }
}

// A drop-down list opens while the finger is still down. A finger that then slides into the list
// would choose the row where it goes up.
bool FingerScrolling::isStrayInList(const QObject *viewport, const QMouseEvent &event)
{
    const bool isRelease = event.type() == QEvent::MouseButtonRelease;
    if (event.type() == QEvent::MouseButtonPress)
        pressed = viewport;
    const bool isStray = qobject_cast<QAbstractItemView *>(viewport->parent()) &&
                         pressed != viewport && (isRelease || event.buttons() != Qt::NoButton);
    if (isRelease)
        pressed = nullptr;
    return isStray;
}
