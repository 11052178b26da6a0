#pragma once

#include "tests/support/DeviceTest.h"

#include <QComboBox>
#include <QTimer>

#include <functional>

namespace support {

/** The captions of a list's items, in order. */
QStringList items(const QComboBox *list);

/** The library's text of a code, the failure codes among them. Doesn't call the library. */
QString deviceText(int code);

/** A message box as PageTest::boxes() tells of it. */
QString box(QMessageBox::Icon icon, const char *title, const QString &text,
    const char *buttons = "OK", Qt::TextFormat format = Qt::PlainText);

/** Presses the button or check box with the mouse, as a finger would. */
void click(const QWidget *page, const char *name);

/**
 * Holds a page's timer still, so that a test isn't at the mercy of the machine's speed: while this
 * lives, the timer's time has come only when the test says so.
 */
class HeldTimer : public QObject
{
    Q_OBJECT

public:
    /** The page must have one timer of its own. */
    explicit HeldTimer(const QObject *page);

    bool isActive() const { return timer->isActive(); }
    /** Milliseconds. */
    int interval() const { return timer->interval(); }
    /** Lets the timer fire once. A stopped timer doesn't; false then. */
    bool fire();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTimer *timer = nullptr;
    bool firing = false;
};

} // namespace support

/** Base of the tests of pages. */
class PageTest : public DeviceTest
{
    Q_OBJECT

protected:
    /** A row for each failure code. Column: code. */
    static void addFailureCodes();

    /** A row "operation = code" for each of these operations and each of those codes. Columns:
     *  operation, code. */
    static void addFailureRows(const QStringList &operations);

    /** These calls with that operation failing. */
    static QStringList failing(QStringList lines, const QString &operation, int code);

    /** The calls since the last time, as DeviceTest has them, but without the asking for error
     *  texts: boxes() compares those. */
    QStringList calls();

    /** Such calls without the asking for error texts. Each text must have been asked for once,
     * right after the call that returned its code; any other asking fails the test function. */
    static QStringList withoutErrorTexts(const QStringList &calls);

    /** Text of the error box for that failure. */
    static QString errorBox(int code, const QString &operation);

    /** Texts of the boxes that came since the last time. A box that isn't one of this page's error
     *  boxes in title, text format, icon, buttons, modality and parent says so beside its text, as
     *  support::box() has it. */
    QStringList boxes(const QWidget *page);

    /** Accepts the next box, and keeps what this tells of the page while it is open. */
    void planBox(std::function<QString()> shown);
    /** That, once; empty if no box has come. Boxes from now on have no plan. */
    QString behindBox();

private:
    QString shownBehindBox;
};
