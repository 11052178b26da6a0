#include "tests/support/expected.h"

#include <QFile>

namespace support {

QStringList linesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("can't read %s", qPrintable(path));
    const QString text = QString::fromUtf8(file.readAll()).remove(QLatin1Char('\r'));
    QStringList lines = text.split(QLatin1Char('\n'));
    lines.removeLast(); // behind the last line's end
    return lines;
}

QStringList expectedLines(const QString &path, const QStringList &actual)
{
    if (qgetenv("VORN_EXPECTED") == "write") {
        QFile file(path);
        const QByteArray text = actual.join(QLatin1Char('\n')).toUtf8() + '\n';
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("can't write %s", qPrintable(path));
    }
    return linesOf(path);
}

} // namespace support
