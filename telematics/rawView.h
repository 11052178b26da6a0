#pragma once

class QPlainTextEdit;
class QString;

/**
 * Adds what a serial line said to a view that keeps as many lines as its maximumBlockCount. The
 * view follows the newest text, unless the user has scrolled back: then the lines that are looked
 * at stay where they are, until they are too old to be kept. A selection stays as well. Main thread
 * only.
 */
void addRawText(QPlainTextEdit *view, const QString &text);
