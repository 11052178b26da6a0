#pragma once

#include <QObject>

class QEvent;
class QWidget;

/**
 * Rings the widget that has the keyboard's focus, in every window of the program: white, and black
 * within. No single colour stands out from all of the grounds, amber, both ends of the greys and
 * white; of two such colours one always does. A list in a dialog has the ring at its current row,
 * tabs at the one in front. Main thread only.
 */
class FocusRing : public QObject
{
    Q_OBJECT

public:
    /** Rings from now on, as long as this lives. */
    FocusRing();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool painting = false;
};
