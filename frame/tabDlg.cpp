#include "frame/tabDlg.h"

#include "frame/reportError.h"

#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>

tabDlg::tabDlg(QWidget *parent)
    : QDialog(parent, Qt::WindowFlags())
    , title(QStringLiteral("Vornsettings"))
{
    if (parent)
        setWindowFlags(Qt::Widget); // a dialog begins as a window even inside another widget
}

void tabDlg::reject()
{
    if (isWindow())
        QDialog::reject();
}

void tabDlg::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->ignore();
    else
        QDialog::keyPressEvent(event);
}

void tabDlg::reportError(std::int32_t code, const char *operation)
{
    if (code == DEVICE_OK)
        return;
    showMessage(errorText(code, operation));
}

void tabDlg::hideOrReport(
    std::int32_t code, const char *operation, std::initializer_list<QWidget *> widgets)
{
    if (code != DEVICE_NOT_SUPPORTED)
        return reportError(code, operation);
    for (QWidget *widget : widgets)
        widget->hide();
}

void tabDlg::showMessage(const QString &text)
{
    QMessageBox box(this);
    box.setWindowTitle(title);
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.setIcon(QMessageBox::Critical);
    box.exec();
}

void tabDlg::showOnOff(QPushButton *button, bool on)
{
    button->setChecked(on);
    button->setText(on ? QStringLiteral("On") : QStringLiteral("Off"));
}
