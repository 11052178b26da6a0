#pragma once

#include <QStringList>

namespace support {

/** The lines of a text file of UTF-8. Ends the test program if it can't be read. */
QStringList linesOf(const QString &path);

/** The lines of a file of expected output. With VORN_EXPECTED=write in the environment, the given
 * ones are written to it first, for a look at what changed. Ends the test program if it can't. */
QStringList expectedLines(const QString &path, const QStringList &actual);

} // namespace support
