#include "frame/WaitNotice.h"

#include "frame/workSteps.h"

#include <QAbstractEventDispatcher>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QWindow>

#include <utility>

namespace {

constexpr int stripHeight = 54; // pixels: the foot of the window, where its buttons are

WaitNotice *innermost = nullptr;
bool stepsAreLong = false; // as the last work went

/** The window system's connection sends off what it has when the event loop is about to wait, which
 *  it won't for a while. */
void sendPictures()
{
    emit QAbstractEventDispatcher::instance()->aboutToBlock();
}

} // namespace

WaitNotice::WaitNotice(QWidget *page, int expected, QComboBox *list)
    : window(page->window())
    , knownToLast(expected >= patience)
{
    const bool partOfOther = innermost && innermost->atWork;
    if (partOfOther || !window->isVisible() || !window->windowHandle())
        return;
    outer = std::exchange(innermost, this);
    workStepListener = [] { innermost->stepDone(); };
    window->windowHandle()->installEventFilter(this);
    begin();
    if (list)
        list->hidePopup();
    // Some window systems leave it to us to paint over what was in front: lists, but also boxes.
    if (list || knownToLast)
        window->repaint();
    if (knownToLast || stepsAreLong)
        showStrip();
    sendPictures();
}

WaitNotice::~WaitNotice()
{
    if (innermost != this)
        return;
    judgeStep();
    if (!knownToLast)
        stepsAreLong = hadLongStep;
    suspend();
    innermost = outer;
    if (!innermost)
        workStepListener = nullptr;
}

bool WaitNotice::isBusy(const QWidget *window)
{
    return innermost && innermost->atWork && innermost->window == window;
}

bool WaitNotice::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowBlocked)
        suspend();
    else if (event->type() == QEvent::WindowUnblocked)
        begin();
    return QObject::eventFilter(watched, event);
}

void WaitNotice::begin()
{
    if (atWork)
        return;
    atWork = true;
    work.start();
    step.start();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    announce();
}

void WaitNotice::suspend()
{
    if (!atWork)
        return;
    judgeStep();
    atWork = false;
    pictureStale = true;
    delete strip;
    QApplication::restoreOverrideCursor();
    announce();
}

void WaitNotice::stepDone()
{
    if (!atWork || !window)
        return;
    judgeStep();
    step.start();
    if (std::exchange(pictureStale, false))
        window->repaint();
    if (strip)
        sendPictures(); // and the cursor, which some systems ask for anew where a list is gone
    else if (work.elapsed() >= patience)
        showStrip();
}

void WaitNotice::judgeStep()
{
    if (atWork && step.elapsed() >= patience)
        hadLongStep = true;
}

void WaitNotice::showStrip()
{
    if (strip)
        return;
    strip = new QLabel(window);
    strip->setObjectName(stripName()); // before anybody asks for its interface
    strip->setText(QStringLiteral("Please wait..."));
    strip->setAccessibleName(strip->text());
    strip->setAlignment(Qt::AlignCenter);
    strip->setGeometry(0, window->height() - stripHeight, window->width(), stripHeight);
    strip->show();
    strip->repaint();
    sendPictures();
}

void WaitNotice::announce()
{
    if (!window)
        return;
    QAccessible::State changed;
    changed.busy = true;
    QAccessibleStateChangeEvent event(window, changed);
    QAccessible::updateAccessibility(&event);
}
