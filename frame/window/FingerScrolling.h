#pragma once

#include <QObject>

class QAbstractScrollArea;
class QEvent;
class QMouseEvent;

/**
 * Lets lists and texts be scrolled by a finger, beside their bars. Touch screens in the mouse
 * profile give a finger as a mouse, so a drag with the left button scrolls too; in a text, one that
 * begins sideways selects instead. What lies under a drag is neither pressed nor chosen. Main
 * thread only.
 */
class FingerScrolling : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /** Lists and texts; other areas are left as they are. Twice is once. */
    void equip(QAbstractScrollArea *area);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isStrayInList(const QObject *viewport, const QMouseEvent &event);

    const QObject *pressed = nullptr; ///< the list in which the present press of the mouse began
};
