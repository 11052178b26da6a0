#include "frame/window/ContentPlace.h"

#include "frame/qtVersions.h"

#include <QAbstractScrollArea>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QInputMethod>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMouseEvent>
#include <QScreen>
#include <QTabBar>
#include <QTimer>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr int footHeight = 48; // pixels, as all below
constexpr int pageGap = 6;     // between the pages' area and the buttons
constexpr int fieldMargin = 6; // between a field and the keyboard
constexpr QPointF nowhere(-10'000, -10'000);

/** Where a finger that moves has a meaning already, or a press alone does something. */
bool takesDrags(const QWidget *widget)
{
    for (; widget && !widget->isWindow(); widget = widget->parentWidget()) {
        if (qobject_cast<const QAbstractSlider *>(widget) ||
            qobject_cast<const QAbstractScrollArea *>(widget) ||
            qobject_cast<const QAbstractSpinBox *>(widget) ||
            qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLineEdit *>(widget) ||
            qobject_cast<const QTabBar *>(widget))
            return true;
    }
    return false;
}

/** A field of one line, which a return key ends. */
bool takesLine(const QObject *watched)
{
    return qobject_cast<const QLineEdit *>(watched) ||
           qobject_cast<const QAbstractSpinBox *>(watched);
}

// Fields ask for text whether or not they take it by an input method.
bool refusesText(const QObject *watched, QInputMethodQueryEvent *event)
{
    const auto *widget = qobject_cast<const QWidget *>(watched);
    if (!widget || widget->testAttribute(Qt::WA_InputMethodEnabled))
        return false;
    event->setValue(Qt::ImEnabled, false);
    event->accept();
    return true;
}

/** Top of the on-screen keyboard, on the screen; none if there is no such keyboard or it's away. */
std::optional<int> keyboardTop()
{
    const QInputMethod *method = QGuiApplication::inputMethod();
    const QRectF keyboard = method->keyboardRectangle();
    if (!method->isVisible() || keyboard.isEmpty())
        return std::nullopt;
    return int(keyboard.top());
}

QRect onScreen(const QWidget *widget)
{
    return {widget->mapToGlobal(QPoint()), widget->size()};
}

/** A part that begins there, moved so that as much of it as fits lies between 0 and the end. */
int moved(int begin, int length, int end)
{
    return std::max(std::min(begin, end - length), 0);
}

} // namespace

ContentPlace::ContentPlace(QMainWindow *ownWindow, QList<QWidget *> footButtons)
    : window(ownWindow)
    , content(ownWindow->centralWidget())
    , foot(new QWidget(ownWindow))
    , buttons(std::move(footButtons))
    , whole(ownWindow->size())
{
    content->setFixedSize(whole);
    for (const QWidget *button : std::as_const(buttons))
        buttonPlaces << button->geometry();
    foot->hide();
    foot->setPalette(window->palette()); // which style sheets don't hand on
    foot->setAutoFillBackground(true);
    window->installEventFilter(this);
    content->installEventFilter(this);
    qApp->installEventFilter(this);
    const auto *method = QGuiApplication::inputMethod();
    connect(method, &QInputMethod::keyboardRectangleChanged, this, &ContentPlace::place);
    connect(method, &QInputMethod::visibleChanged, this, &ContentPlace::place);
    connect(qApp, &QApplication::focusChanged, this,
        [this](const QWidget *, const QWidget *now) { bringIntoView(now); });
}

void ContentPlace::toStart()
{
    drawn = QPoint();
    place();
}

bool ContentPlace::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Resize:
        if (watched == window)
            fitWindow();
        break;
    case QEvent::Move: // the layout's, which knows the middle alone
        if (watched == content)
            place();
        else if (watched == window)
            leaveRoomForFrame();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return fingerOn(watched, static_cast<QMouseEvent *>(event));
    case QEvent::InputMethodQuery:
        return refusesText(watched, static_cast<QInputMethodQueryEvent *>(event));
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Return && takesLine(watched))
            QTimer::singleShot(0, QGuiApplication::inputMethod(), &QInputMethod::hide);
        break;
    default:
        break;
    }
    return false;
}

bool ContentPlace::isSmall() const
{
    return window->width() < whole.width() || window->height() < whole.height();
}

void ContentPlace::fitWindow()
{
    if (isSmall() != foot->isVisibleTo(window))
        detachFoot(isSmall());
    foot->setGeometry(0, window->height() - footHeight, window->width(), footHeight);
    for (int i = 0; i < buttons.size(); ++i) {
        if (!isSmall())
            continue;
        const QRect place = buttonPlaces.at(i);
        buttons.at(i)->move(
            place.x() + window->width() - whole.width(), (footHeight - place.height()) / 2);
    }
    place();
}

void ContentPlace::detachFoot(bool detach)
{
    for (int i = 0; i < buttons.size(); ++i) {
        QWidget *button = buttons.at(i);
        button->setParent(detach ? foot : content);
        button->setGeometry(buttonPlaces.at(i));
        button->show();
    }
    content->setFixedHeight(detach ? buttonPlaces.constFirst().top() - pageGap : whole.height());
    foot->setVisible(detach);
    foot->raise();
}

QSize ContentPlace::shown() const
{
    return window->size() - QSize(0, isSmall() ? footHeight : 0);
}

void ContentPlace::place()
{
    // What moved under the finger would miss its release.
    if (QGuiApplication::mouseButtons() != Qt::NoButton && !drawing)
        return;
    const QSize room = shown();
    drawn.setX(std::clamp(drawn.x(), std::min(room.width() - content->width(), 0), 0));
    drawn.setY(std::clamp(drawn.y(), std::min(room.height() - content->height(), 0), 0));
    const QPoint middle(std::max(room.width() - content->width(), 0) / 2,
        std::max(room.height() - content->height(), 0) / 2);
    content->move(aboveKeyboard(middle + drawn));
}

QPoint ContentPlace::aboveKeyboard(QPoint at) const
{
    const auto top = keyboardTop();
    const QWidget *field = QApplication::focusWidget();
    if (!top || !field)
        return at;
    if (!content->isAncestorOf(field)) {
        moveAbove(*top, field);
        return at;
    }
    const QRect place(field->mapTo(content, QPoint()) + at, field->size());
    const int end = window->mapFromGlobal(QPoint(0, *top)).y() - fieldMargin;
    return at + QPoint(0, std::min(moved(place.y(), place.height(), end) - place.y(), 0));
}

/** Dialogs stand by themselves. */
void ContentPlace::moveAbove(int keyboardTop, const QWidget *field)
{
    QWidget *dialog = field->window();
    const int covered = onScreen(field).bottom() + fieldMargin - keyboardTop;
    if (covered > 0)
        dialog->move(dialog->pos() - QPoint(0, covered));
}

void ContentPlace::bringIntoView(const QWidget *widget)
{
    if (!widget || !content->isAncestorOf(widget))
        return;
    if (isSmall()) {
        const QRect place(widget->mapTo(content, QPoint()) + drawn, widget->size());
        drawn += QPoint(moved(place.x(), place.width(), shown().width()),
                     moved(place.y(), place.height(), shown().height())) -
                 place.topLeft();
    }
    place();
}

// A window manager's frame comes after the window. Where it doesn't fit as well, the window gives
// way.
void ContentPlace::leaveRoomForFrame()
{
    const QScreen *screen = window->screen();
    if (!isSmall() || !screen)
        return;
    const QRect room = screen->availableGeometry();
    const QSize frame = window->frameGeometry().size() - window->size();
    const QSize left = (room.size() - frame).boundedTo(window->size());
    if (left == window->size() || left.isEmpty())
        return;
    window->setFixedSize(left);
    window->move(room.topLeft());
}

/** Whether the event is no longer for whom it was sent to. */
bool ContentPlace::fingerOn(QObject *watched, QMouseEvent *event)
{
    auto *widget = qobject_cast<QWidget *>(watched);
    if (!widget || lettingGo)
        return false;
    const QPoint at = qtVersions::screenPositionOf(*event).toPoint();
    if (event->type() == QEvent::MouseButtonPress) {
        if (!held || !widget->isAncestorOf(held)) { // else nobody down there wanted it
            held = widget;
            heldAt = at;
        }
        return false;
    }
    if (event->type() == QEvent::MouseMove)
        return held && drawTo(at);
    const bool drew = std::exchange(drawing, false);
    if (held)
        QTimer::singleShot(0, this, [this, lifted = held] { fingerLifted(lifted); });
    held = nullptr;
    return drew;
}

bool ContentPlace::drawTo(QPoint at)
{
    if (!drawing && isSmall() && content->isAncestorOf(held) && !takesDrags(held) &&
        (at - heldAt).manhattanLength() >= QApplication::startDragDistance()) {
        drawing = true;
        letGo(held);
    }
    if (!drawing)
        return false;
    drawn += at - heldAt;
    heldAt = at;
    place();
    return true;
}

// What is pressed must not be chosen where the finger only drew.
void ContentPlace::letGo(QWidget *widget)
{
    QMouseEvent release(
        QEvent::MouseButtonRelease, nowhere, nowhere, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    lettingGo = true;
    QCoreApplication::sendEvent(widget, &release);
    lettingGo = false;
}

// The keyboard goes when the finger was on anything but the field.
void ContentPlace::fingerLifted(const QWidget *from)
{
    const QWidget *field = QApplication::focusWidget();
    if (!field || !from || (field != from && !field->isAncestorOf(from)))
        QGuiApplication::inputMethod()->hide();
    place();
}
