#include "tests/support/WindowPresses.h"

#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextDocument>
#include <QTimer>
#include <QtTest>

#include <algorithm>

namespace support {

namespace {

// What a dialog may say. The error box inserts the operation's name as the pages give it.
const char *const foreseen[] = {
    R"(^Error\(-?\d+\) in [^%]+: )",
    R"(^Error, SensorIndex array out of range\.$)",
    R"(^Warning - The driver or API version could not be read\. Consider reinstalling VornAux\.$)",
    R"(^Please restart the computer \(or the CAN driver\) for the changes to take effect!$)",
    R"(^Baud rate invalid format, net \d\.$)",
    R"(^Invalid frametype, net \d\.$)",
    R"(^Invalid data format\. )",
    R"(^Error setAdvancedSetting: )",
    R"(^The file to (program|verify) must be a \.(mcs|hex) file!$)",
    R"(^This operation will reset all settings)",
    R"(^Heating temperature )",
    R"(^(Supend time|ON/OFF button time -|ON/OFF signal time -) invalid format\.$)",
    R"(^Could not open serial port: )",
    R"(^Please enter a (4 digit PIN|number and some text)$)",
};

/** As time would. The second shot finds what the first one left. */
void fireTimers(const QWidget *page)
{
    for (int shot = 0; shot < 2; ++shot) {
        for (QTimer *timer : page->findChildren<QTimer *>()) {
            if (!timer->isActive())
                continue;
            QTimerEvent event(timer->timerId());
            QCoreApplication::sendEvent(timer, &event);
        }
    }
}

void pressEverything(QWidget *page, const WorthPressing &isWorthPressing)
{
    // The widgets by name: some go while others are pressed.
    QStringList names;
    for (const QWidget *widget : page->findChildren<QWidget *>()) {
        if (!widget->objectName().isEmpty() &&
            !widget->objectName().startsWith(QLatin1String("qt_")))
            names << widget->objectName();
    }
    for (const QString &name : names) {
        auto *widget = page->findChild<QWidget *>(name);
        if (!widget || !widget->isVisible() || !widget->isEnabled())
            continue;
        if (auto *tabs = qobject_cast<QTabWidget *>(widget)) {
            for (int tab = 0; tab < tabs->count(); ++tab)
                tabs->setCurrentIndex(tab);
            tabs->setCurrentIndex(0);
        } else if (auto *button = qobject_cast<QAbstractButton *>(widget)) {
            if (isWorthPressing(button))
                QTest::mouseClick(button, Qt::LeftButton);
        } else if (qobject_cast<QAbstractSlider *>(widget) || qobject_cast<QSpinBox *>(widget)) {
            QTest::keyClick(widget, Qt::Key_Up);
        } else if (qobject_cast<QComboBox *>(widget)) {
            QTest::keyClick(widget, Qt::Key_Down);
        } else if (qobject_cast<QLineEdit *>(widget)) {
            QTest::keyClicks(widget, QStringLiteral("1"));
        }
    }
}

} // namespace

bool isForeseen(const Dialog &dialog)
{
    if (dialog.className != QLatin1String("QMessageBox"))
        return dialog.className.contains(QLatin1String("FileDialog")) ||
               dialog.className.contains(QLatin1String("ColorDialog"));
    if (dialog.format != Qt::PlainText && Qt::mightBeRichText(dialog.text))
        return false; // what a device says is no markup
    return std::any_of(std::begin(foreseen), std::end(foreseen), [&](const char *pattern) {
        return QRegularExpression(QString::fromLatin1(pattern)).match(dialog.text).hasMatch();
    });
}

void denyOrClose(QDialog *dialog)
{
    auto *box = qobject_cast<QMessageBox *>(dialog);
    if (box && box->button(QMessageBox::No))
        box->button(QMessageBox::No)->click();
    else
        dialog->reject();
}

void pressWindow(VornSettings &window, const WorthPressing &isWorthPressing)
{
    const auto pages = window.findChildren<tabDlg *>();
    for (int index = 1; index < tabCount; ++index) {
        window.showTab(index);
        for (tabDlg *page : pages) {
            if (!page->isVisible())
                continue;
            pressEverything(page, isWorthPressing);
            fireTimers(page);
        }
        QTest::keyClick(&window, Qt::Key_Escape);
    }
}

} // namespace support
