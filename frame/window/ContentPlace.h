#pragma once

#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>

class QMainWindow;
class QMouseEvent;
class QWidget;

/**
 * Where the window's content lies in it. A window that was stretched has it in its middle. In one
 * that is smaller than its content, a finger draws the content along, the foot's buttons stay in
 * sight, and what gets the focus comes into view. From under an on-screen keyboard the content is
 * pushed up until the field that is being filled can be seen. Main thread only.
 */
class ContentPlace : public QObject
{
    Q_OBJECT

public:
    /** @param footButtons of the central widget, below all else that a small window needs. They and
     *  the window must outlive this. */
    ContentPlace(QMainWindow *window, QList<QWidget *> footButtons);

    /** Back to the content's beginning, for a new page. */
    void toStart();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isSmall() const;
    void fitWindow();
    void detachFoot(bool detach);
    void leaveRoomForFrame();
    QSize shown() const;
    void place();
    QPoint aboveKeyboard(QPoint at) const;
    static void moveAbove(int keyboardTop, const QWidget *field);
    void bringIntoView(const QWidget *widget);
    bool fingerOn(QObject *watched, QMouseEvent *event);
    bool drawTo(QPoint at);
    void letGo(QWidget *widget);
    void fingerLifted(const QWidget *from);

    QMainWindow *window;
    QWidget *content;
    QWidget *foot; ///< strip that has the buttons while the window is small
    QList<QWidget *> buttons;
    QList<QRect> buttonPlaces; ///< in the content
    QSize whole;               ///< size of the content
    QPoint drawn;              ///< how far the finger has drawn the content, left and up
    QPointer<QWidget> held;    ///< what the finger is on
    QPoint heldAt;             ///< where it was last, on the screen
    bool drawing = false;
    bool lettingGo = false;
};
