#include "frame/window/EscapeKey.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>

#include <utility>

EscapeKey::EscapeKey(QWidget *ownWindow)
    : window(ownWindow)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool EscapeKey::endPressTakenInFront()
{
    announcedInFront = false;
    return std::exchange(takenInFront, false);
}

bool EscapeKey::eventFilter(QObject *watched, QEvent *event)
{
    const auto type = event->type();
    if (type != QEvent::ShortcutOverride && type != QEvent::KeyPress && type != QEvent::KeyRelease)
        return false;
    const auto *widget = qobject_cast<QWidget *>(watched);
    const auto &key = *static_cast<QKeyEvent *>(event);
    if (!widget || key.key() != Qt::Key_Escape)
        return false;
    const bool inFront = widget->window() != window;
    if (type != QEvent::KeyRelease) {
        pressed(key, type, inFront);
    } else if (!key.isAutoRepeat()) {
        lastEnd = key.timestamp();
        if (inFront)
            endPressTakenInFront();
        else if (watched != window)
            return passOn(event);
    }
    return false;
}

// A field keeps the releases of all keys to itself.
bool EscapeKey::passOn(QEvent *release)
{
    QCoreApplication::sendEvent(window, release);
    return true;
}

// A press is announced first, as a possible shortcut. With that an open list goes already, and the
// press itself arrives in the window.
void EscapeKey::pressed(const QKeyEvent &key, QEvent::Type type, bool inFront)
{
    if (inFront) {
        takenInFront = true;
        announcedInFront = type == QEvent::ShortcutOverride;
    } else if (continuesRelease(key)) {
        takenInFront = true;
    } else if (!key.isAutoRepeat()) {
        if (type == QEvent::ShortcutOverride)
            announcedInFront = false;
        takenInFront = announcedInFront;
    }
}

// A held key repeats in pairs of a release and a press at one time. If the press hasn't come yet
// when the release is looked at, Qt takes both for real: then the window has had its release, and
// what the key goes on with is nobody's. Events that programs make up have no scan code, and may
// well follow each other within a millisecond.
bool EscapeKey::continuesRelease(const QKeyEvent &key) const
{
    return !key.isAutoRepeat() && key.nativeScanCode() != 0 && key.timestamp() == lastEnd;
}
