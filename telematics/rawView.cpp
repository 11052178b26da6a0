#include "telematics/rawView.h"

#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>

namespace {

/** The line of the view that this is in, as its scroll bar counts them. */
int lineOf(const QTextCursor &place)
{
    const QTextBlock block = place.block();
    const QTextLine line = block.layout()->lineForTextPosition(place.positionInBlock());
    return block.firstLineNumber() + (line.isValid() ? line.lineNumber() : 0);
}

} // namespace

void addRawText(QPlainTextEdit *view, const QString &text)
{
    QScrollBar *bar = view->verticalScrollBar();
    const bool following = bar->value() == bar->maximum();
    const QTextCursor top = view->cursorForPosition({0, 0});
    QTextCursor end(view->document()); // not the user's own, which may hold a selection
    end.movePosition(QTextCursor::End);
    end.insertText(text);
    // Lines that go at the front would pull those in view along.
    bar->setValue(following ? bar->maximum() : lineOf(top));
}
