#pragma once

#include <QString>

#include <filesystem>
#include <functional>

class QIODevice;

/**
 * The whole description of the unit as one text: versions, all sections, both log files. Takes no
 * more memory than the text itself, two bytes for each byte of log. Never fails: what can't be
 * read is told in its line. Main thread only.
 */
QString generateSystemReport();

/** The same for somebody who wants no more memory taken than that of a piece.
 *  @param take is given one piece after the other: whole lines, about a million characters of a log
 */
void generateSystemReport(const std::function<void(const QString &piece)> &take);

/** Writes a report as it goes to files: Latin-1, whatever the user's locale. Stops at the first
 *  failure, which nobody is told. */
void writeReportText(QIODevice &device, const QString &text);

/** Replaces the content of that file by the system report. A file that can't be opened leaves the
 *  unit untouched; nothing is written before the report is complete. */
void writeSystemReport(const std::filesystem::path &path);
