#include "tests/support/Boxes.h"

#include "frame/VornAux2.h"

#include <QMap>

namespace {

QString latin1(const char *text)
{
    return QString::fromLatin1(text);
}

/** Read before any test, since each call on the library goes to the journal. */
QMap<int, QString> readErrorTexts()
{
    QMap<int, QString> texts;
    for (int code = -1; code <= 40; ++code)
        texts[code] = latin1(deviceErrorText(code));
    for (const int code : support::failureCodes)
        texts[code] = latin1(deviceErrorText(code));
    return texts;
}
const QMap<int, QString> errorTexts = readErrorTexts();

} // namespace

namespace support {

void addFailureCodes()
{
    QTest::addColumn<int>("code");
    for (const int code : failureCodes)
        QTest::addRow("%d", code) << code;
}

QString deviceText(int code)
{
    return errorTexts[code];
}

QString deviceTextCall(int code)
{
    return QStringLiteral("deviceErrorText(%1) = %2").arg(QString::number(code), deviceText(code));
}

QString deviceError(int code, const char *operation)
{
    return QStringLiteral("Error(%1) in %2: %3")
        .arg(QString::number(code), latin1(operation), deviceText(code));
}

QString describe(const Dialog &dialog)
{
    return QStringLiteral("%1 \"%2\" \"%3\" [%4] over %5%6")
        .arg(QString::number(dialog.icon), dialog.title, dialog.text,
            dialog.buttons.join(QLatin1Char(' ')),
            dialog.parent ? dialog.parent->objectName() : QStringLiteral("nothing"),
            dialog.modal ? QString() : QStringLiteral(", not modal"));
}

QStringList describe(const QList<Dialog> &dialogs)
{
    QStringList lines;
    for (const Dialog &dialog : dialogs)
        lines << describe(dialog);
    return lines;
}

QString box(QMessageBox::Icon icon, const char *title, const QString &text, const char *parent,
    const char *buttons)
{
    return QStringLiteral("%1 \"%2\" \"%3\" [%4] over %5")
        .arg(QString::number(icon), latin1(title), text, latin1(buttons), latin1(parent));
}

} // namespace support
