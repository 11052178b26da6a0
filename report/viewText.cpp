#include "report/viewText.h"

#include "frame/workSteps.h"

#include <QIODevice>
#include <QPlainTextEdit>
#include <QTextBlock>

namespace {

// All that a unit without large logs has to say stays paragraph by paragraph.
constexpr int plainLength = 1 << 20;
constexpr int paragraphLength = 1 << 13; // laid out in one go when it comes into view
constexpr int pieceLength = 1 << 16;

/** One paragraph of these lines, which are without the last one's end. Carriage returns end lines
 *  too, as in all plain texts that a view is given. */
void addParagraph(QTextCursor &end, QString lines)
{
    if (lines.endsWith(QLatin1Char('\r')))
        lines.chop(1);
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    lines.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const auto count = lines.count(QLatin1Char('\n')) + 1;
    lines.replace(QLatin1Char('\n'), QChar::LineSeparator);
    end.insertText(lines);
    end.block().setLineCount(int(count)); // for the scroll bar; wrapped lines count as one yet
}

void addParagraphs(QTextCursor &end, const QString &lines)
{
    for (decltype(lines.size()) start = 0; start < lines.size();) {
        auto stop = lines.indexOf(QLatin1Char('\n'), start + paragraphLength);
        if (stop < 0)
            stop = lines.endsWith(QLatin1Char('\n')) ? lines.size() - 1 : lines.size();
        addParagraph(end, lines.mid(start, stop - start));
        if (stop < lines.size())
            end.insertBlock();
        start = stop + 1;
    }
}

} // namespace

void addToView(QPlainTextEdit *view, const QString &lines)
{
    workStep();
    QTextDocument *document = view->document();
    if (document->isEmpty())
        return view->setPlainText(lines);
    QTextCursor end(document); // not the user's own
    end.movePosition(QTextCursor::End);
    end.beginEditBlock();
    if (document->characterCount() < plainLength)
        end.insertText(lines);
    else
        addParagraphs(end, lines);
    end.endEditBlock();
}

void writeViewText(QIODevice &device, const QTextDocument &document)
{
    // Piece by piece: in one, the text would take its memory twice more.
    QByteArray piece;
    for (QTextBlock block = document.begin(); block.isValid();) {
        // As the document's own plain text has it.
        QString text = block.text();
        text.replace(QChar::LineSeparator, QLatin1Char('\n'));
        text.replace(QChar::Nbsp, QLatin1Char(' '));
        piece += text.toLatin1();
        block = block.next();
        if (block.isValid())
            piece += '\n';
        if (block.isValid() && piece.size() < pieceLength)
            continue;
        workStep();
        if (device.write(piece) != piece.size())
            return;
        piece.clear();
    }
}
