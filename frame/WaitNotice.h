#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>

class QComboBox;
class QLabel;
class QWidget;

/**
 * Tells the user of a page that the program is at work, for as long as this lives: a wait cursor at
 * once and, where it takes long, a strip "Please wait..." at the foot of the window. The list that
 * the work was chosen from is closed first. Screen readers hear that the window is busy.
 *
 * The work holds the main thread, and no event is handled meanwhile. So the strip is painted
 * straight to the screen at the first workStep() behind 300 ms; every call on the device is such a
 * step. It comes before the work if that is known to last, and also if the work before had a single
 * step of that length: a unit that was as slow as that probably still is.
 *
 * While a box is open in the middle of the work, the window is as usual; time counts anew when the
 * box is closed. A notice of work within other work is part of the other's. A page that nobody sees
 * gets none. Main thread only.
 */
class WaitNotice : public QObject
{
    Q_OBJECT

public:
    static constexpr int patience = 300; ///< milliseconds without the strip

    /** @param expected milliseconds that the work is known to take
     *  @param list from which the work was chosen, if it was */
    explicit WaitNotice(QWidget *page, int expected = 0, QComboBox *list = nullptr);
    ~WaitNotice() override;

    /** Whether work is going on in that window. */
    static bool isBusy(const QWidget *window);

    /** Object name of the strip. */
    static QString stripName() { return QStringLiteral("waitStrip"); }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void begin();
    void suspend();
    void stepDone();
    void judgeStep();
    void showStrip();
    void announce();

    QPointer<QWidget> window;
    QPointer<QLabel> strip;
    WaitNotice *outer = nullptr;
    bool knownToLast;
    bool atWork = false;       ///< not while a box is open
    bool pictureStale = false; ///< a box may have left its own on the screen
    bool hadLongStep = false;
    QElapsedTimer work;
    QElapsedTimer step;
};
