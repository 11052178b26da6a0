#include "frame/reportError.h"

#include "platform/platform.h"

#include <QApplication>
#include <QMessageBox>

QString deviceText(std::int32_t code)
{
    return QString::fromLatin1(deviceErrorText(code));
}

QString fieldErrorText(std::int32_t code, const char *operation)
{
    return QStringLiteral("%1: Error:  %2").arg(QString::fromLatin1(operation), deviceText(code));
}

QString errorText(std::int32_t code, const char *operation)
{
    return QStringLiteral("Error(%1) in %2: %3")
        .arg(QString::number(code), QString::fromLatin1(operation), deviceText(code));
}

void reportError(std::int32_t code, const char *operation)
{
    if (code == DEVICE_OK || code == DEVICE_NOT_SUPPORTED)
        return;
    const QString text = errorText(code, operation);
    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        platform::printErrorLine(text);
        return;
    }
    QMessageBox box;
    box.setWindowTitle(QStringLiteral("Vornsettings"));
    box.setTextFormat(Qt::PlainText); // a device's text may look like markup
    box.setText(text);
    box.setIcon(QMessageBox::Critical);
    box.exec();
}
