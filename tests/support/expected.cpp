#include "tests/support/expected.h"

#include <QFile>

namespace support {

QStringList expectedLines(const QString &path, const QStringList &actual)
{
    QFile file(path);
    if (qgetenv("VORN_EXPECTED") == "write") {
        const QByteArray text = actual.join(QLatin1Char('\n')).toUtf8() + '\n';
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("can't write %s", qPrintable(path));
        file.close();
    }
    if (!file.open(QIODevice::ReadOnly))
        qFatal("can't read %s", qPrintable(path));
    const QString text = QString::fromUtf8(file.readAll()).remove(QLatin1Char('\r'));
    QStringList lines = text.split(QLatin1Char('\n'));
    lines.removeLast(); // behind the last line's end
    return lines;
}

} // namespace support
