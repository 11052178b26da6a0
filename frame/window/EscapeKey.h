#pragma once

#include <QEvent>
#include <QObject>

class QKeyEvent;
class QWidget;

/**
 * Brings the window the releases of the Escape key, and tells it which of them are its own. A list,
 * a box or a dialog in front of the window goes when the key is pressed, so that the window gets
 * the release, or even the rest of the press. Main thread only.
 */
class EscapeKey : public QObject
{
    Q_OBJECT

public:
    /** Sees all keys of the application from now on. The window must outlive this. */
    explicit EscapeKey(QWidget *window);

    /**
     * For a release that reached the window: whether its press was taken by something in front. A
     * release without a press that was seen is the window's; programs may send just that. The press
     * is over then.
     */
    bool endPressTakenInFront();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void pressed(const QKeyEvent &key, QEvent::Type type, bool inFront);
    bool passOn(QEvent *release);
    bool continuesRelease(const QKeyEvent &key) const;

    QWidget *window;
    bool takenInFront = false;      ///< the present press
    bool announcedInFront = false;  ///< and it was before it arrived anywhere as a press
    unsigned long long lastEnd = 0; ///< time of the last release, milliseconds
};
