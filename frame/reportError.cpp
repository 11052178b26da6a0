#include "frame/reportError.h"

#include "platform/platform.h"

#include <QApplication>
#include <QMessageBox>

QString errorText(std::int32_t code, const char *operation)
{
    return QStringLiteral("Error(%1) in %2: %3")
        .arg(QString::number(code), QString::fromLatin1(operation),
            QString::fromLatin1(deviceErrorText(code)));
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
    box.setText(text);
    box.setIcon(QMessageBox::Critical);
    box.exec();
}
