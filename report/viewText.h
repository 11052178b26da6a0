#pragma once

#include <QString>

class QIODevice;
class QPlainTextEdit;
class QTextDocument;

/*
 * Texts of any size in a read-only view that has no undo. For a view the lines are dear, not the
 * characters: behind the first million of characters several lines share one paragraph, with line
 * separators between them, which looks, is copied and counts as plain text as before. Main thread
 * only; each piece and each part of a file is a step of work.
 */

/** Adds whole lines at the end of the text. The place that is looked at stays. */
void addToView(QPlainTextEdit *view, const QString &lines);

/** Writes the plain text as it goes to files: Latin-1, whatever the user's locale. Stops at the
 *  first failure, which nobody is told. */
void writeViewText(QIODevice &device, const QTextDocument &document);
