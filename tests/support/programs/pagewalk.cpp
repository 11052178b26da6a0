// Opens every page of the window and prints what stands on each, for tests that compare two walks.
#include "frame/tabDlg.h"
#include "frame/window/TabIndex.h"
#include "frame/window/VornSettings.h"
#include "frame/window/graphicalMode.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSlider>
#include <QSpinBox>
#include <QTextEdit>
#include <QTimer>

#include <cstdio>

namespace {

QString shownOn(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text() + (button->isChecked() ? QStringLiteral(" on") : QString());
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget))
        return edit->text();
    if (const auto *box = qobject_cast<const QComboBox *>(widget))
        return box->currentText();
    if (const auto *slider = qobject_cast<const QSlider *>(widget))
        return QString::number(slider->value());
    if (const auto *bar = qobject_cast<const QProgressBar *>(widget))
        return QString::number(bar->value());
    if (const auto *spin = qobject_cast<const QAbstractSpinBox *>(widget))
        return spin->text();
    if (const auto *text = qobject_cast<const QTextEdit *>(widget))
        return text->toPlainText();
    if (const auto *text = qobject_cast<const QPlainTextEdit *>(widget))
        return text->toPlainText();
    return {};
}

/** Timers would ask as often as the machine's speed lets them. */
void holdTimers(const QObject &object)
{
    for (auto *timer : object.findChildren<QTimer *>())
        timer->stop();
}

void print(const QWidget &page)
{
    std::printf("%s\n", page.metaObject()->className());
    for (const auto *widget : page.findChildren<QWidget *>()) {
        const QString text = shownOn(widget);
        if (!text.isEmpty()) {
            std::printf("  %s %s%s\n", qPrintable(widget->objectName()), qPrintable(text),
                widget->isVisible() ? "" : " (hidden)");
        }
    }
}

const QWidget *visiblePage(const QWidget &window)
{
    for (const auto *page : window.findChildren<tabDlg *>()) {
        if (page->isVisible())
            return page;
    }
    return nullptr;
}

void show(VornSettings &window, int index)
{
    window.showTab(index);
    holdTimers(window);
    QApplication::processEvents();
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    VornSettings window;
    window.show();
    for (int index = menuTab; index < tabCount; ++index) {
        show(window, index);
        const auto *page = visiblePage(window);
        if (page && index != powerTab)
            print(*page);
    }
    // The battery's thread brings what it reads in its own time.
    show(window, powerTab);
    QElapsedTimer clock;
    for (clock.start(); clock.elapsed() < 3000;) // milliseconds, more than one of its rounds
        QApplication::processEvents(QEventLoop::AllEvents, 50);
    if (const auto *page = visiblePage(window))
        print(*page);
    return 0;
}
