#include "frame/reportError.h"

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
    QMessageBox box;
    box.setWindowTitle(QStringLiteral("Vornsettings"));
    box.setText(errorText(code, operation));
    box.setIcon(QMessageBox::Critical);
    box.exec();
}
