#include "tests/support/PageTest.h"

#include "frame/VornAux2.h"
#include "frame/window/graphicalMode.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

const auto resources = QStringLiteral(":/VornSettings/Resources/");
constexpr int lowestTarget = 30;     // pixels
constexpr int titleStripHeight = 26; // pixels, of a group box under the program's style sheet

QString quoted(const QString &text)
{
    return QLatin1Char('"') + QString(text).replace(QLatin1Char('\n'), QLatin1String("\\n")) +
           QLatin1Char('"');
}

QString pictureName(const QPixmap &picture)
{
    const QImage shown = picture.toImage();
    for (const QString &file : QDir(resources).entryList(QDir::Files)) {
        if (QPixmap(resources + file).toImage() == shown)
            return file;
    }
    return QStringLiteral("unknown picture");
}

QString described(const QLabel *label)
{
    const QPixmap picture = label->pixmap(Qt::ReturnByValue);
    QString text = picture.isNull() ? quoted(label->text()) : pictureName(picture);
    if (label->alignment() == Qt::AlignCenter)
        text += QLatin1String(" centred");
    return text;
}

QString described(const QAbstractButton *button)
{
    QString text = quoted(button->text());
    if (qobject_cast<const QPushButton *>(button) && button->isCheckable())
        text += QLatin1String(" checkable");
    if (button->isChecked())
        text += QLatin1String(" checked");
    return text;
}

QString described(const QAbstractSlider *slider)
{
    QString text = QStringLiteral("%1 to %2 by %3/%4")
                       .arg(slider->minimum())
                       .arg(slider->maximum())
                       .arg(slider->singleStep())
                       .arg(slider->pageStep());
    if (slider->orientation() == Qt::Vertical)
        text += QLatin1String(" vertical");
    return text;
}

QString described(const QSpinBox *spin)
{
    return QStringLiteral("%1 (%2 to %3 by %4)")
        .arg(spin->value())
        .arg(spin->minimum())
        .arg(spin->maximum())
        .arg(spin->singleStep());
}

QString described(const QComboBox *combo)
{
    return QLatin1Char('[') + support::items(combo).join(QLatin1String(" | ")) + QLatin1Char(']');
}

QString described(const QLineEdit *edit)
{
    return quoted(edit->text()) + QLatin1String(edit->isReadOnly() ? " read-only" : "");
}

QString content(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return described(label);
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return described(button);
    if (const auto *slider = qobject_cast<const QAbstractSlider *>(widget))
        return described(slider);
    if (const auto *spin = qobject_cast<const QSpinBox *>(widget))
        return described(spin);
    if (const auto *combo = qobject_cast<const QComboBox *>(widget))
        return described(combo);
    if (const auto *edit = qobject_cast<const QLineEdit *>(widget))
        return described(edit);
    if (const auto *group = qobject_cast<const QGroupBox *>(widget))
        return quoted(group->title());
    if (const auto *text = qobject_cast<const QPlainTextEdit *>(widget))
        return quoted(text->toPlainText()) + QLatin1String(text->isReadOnly() ? " read-only" : "");
    return {};
}

QString line(const QWidget *widget)
{
    QString text = widget->objectName() + QLatin1String(": ") +
                   QLatin1String(widget->metaObject()->className());
    const QString what = content(widget);
    if (!what.isEmpty())
        text += QLatin1Char(' ') + what;
    if (!widget->isEnabledTo(widget->parentWidget()))
        text += QLatin1String(" disabled");
    if (widget->testAttribute(Qt::WA_WState_ExplicitShowHide) && widget->isHidden())
        text += QLatin1String(" hidden");
    if (!widget->toolTip().isEmpty())
        text += QLatin1String(" tip ") + quoted(widget->toolTip());
    return text;
}

QList<QWidget *> formWidgets(const QWidget *page)
{
    QList<QWidget *> widgets;
    for (QWidget *widget : page->findChildren<QWidget *>()) {
        const QString name = widget->objectName();
        const bool belongsToQt = name.startsWith(QLatin1String("qt_")) ||
                                 qobject_cast<const QTabBar *>(widget->parentWidget());
        if (!name.isEmpty() && !belongsToQt)
            widgets << widget;
    }
    return widgets;
}

bool isPressed(const QWidget *widget)
{
    return qobject_cast<const QAbstractButton *>(widget) ||
           qobject_cast<const QAbstractSlider *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(widget) ||
           qobject_cast<const QComboBox *>(widget);
}

bool isClipped(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        if (!label->pixmap(Qt::ReturnByValue).isNull())
            return !label->hasScaledContents() &&
                   (label->contentsRect().width() < 48 || label->contentsRect().height() < 48);
        if (label->wordWrap())
            return label->heightForWidth(label->width()) > label->height();
    }
    const QSize need = widget->minimumSizeHint().expandedTo(widget->minimumSize());
    return need.width() > widget->width() || need.height() > widget->height();
}

QStringList faultsOf(const QWidget *widget, const QRect &iconPlace)
{
    QStringList faults;
    const QWidget *parent = widget->parentWidget();
    if (isClipped(widget))
        faults << QStringLiteral("is clipped");
    if (!parent->rect().contains(widget->geometry()))
        faults << QStringLiteral("leaves its parent");
    if (qobject_cast<const QGroupBox *>(parent) && widget->y() < titleStripHeight)
        faults << QStringLiteral("covers the title strip");
    if (isPressed(widget) && widget->height() < lowestTarget)
        faults << QStringLiteral("is too low for a finger");
    if (widget->objectName() == QLatin1String("icon") && widget->geometry() != iconPlace)
        faults << QStringLiteral("isn't in its place");
    return faults;
}

QStringList overlaps(const QList<QWidget *> &widgets)
{
    QStringList faults;
    for (int i = 0; i < widgets.size(); ++i) {
        for (int j = i + 1; j < widgets.size(); ++j) {
            const QWidget *parent = widgets[i]->parentWidget();
            if (parent == widgets[j]->parentWidget() &&
                !qobject_cast<const QStackedWidget *>(parent) && // the pages of tabs
                widgets[i]->geometry().intersects(widgets[j]->geometry()))
                faults << widgets[i]->objectName() + QLatin1String(": lies over ") +
                              widgets[j]->objectName();
        }
    }
    return faults;
}

/** A tab's content has its places only once the tab has been in front. */
void layOutTabs(const QWidget *page)
{
    for (QTabWidget *tabs : page->findChildren<QTabWidget *>()) {
        const QSignalBlocker quiet(tabs);
        const int current = tabs->currentIndex();
        for (int index = 0; index < tabs->count(); ++index)
            tabs->setCurrentIndex(index);
        tabs->setCurrentIndex(current);
    }
}

QString styleSheet()
{
    QFile file(resources + QLatin1String("style.qss"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no style sheet");
    return QString::fromUtf8(file.readAll());
}

/** Read before any test, since each call on the library goes to the journal. */
QMap<int, QString> readErrorTexts()
{
    QMap<int, QString> texts;
    for (int code = -1; code <= 40; ++code)
        texts[code] = QString::fromLatin1(deviceErrorText(code));
    for (const int code : support::failureCodes)
        texts[code] = QString::fromLatin1(deviceErrorText(code));
    return texts;
}
const QMap<int, QString> errorTexts = readErrorTexts();

/** In what a box isn't a page's usual error box. */
QString difference(const support::Dialog &box)
{
    QStringList odd;
    if (box.className != QLatin1String("QMessageBox"))
        odd << box.className;
    if (box.title != QLatin1String("Vornsettings"))
        odd << QLatin1String("title ") + box.title;
    if (box.format != Qt::PlainText)
        odd << QStringLiteral("format %1").arg(box.format);
    if (box.icon != QMessageBox::Critical)
        odd << QStringLiteral("icon %1").arg(box.icon);
    if (box.buttons != QStringList{QStringLiteral("OK")})
        odd << QLatin1String("buttons ") + box.buttons.join(QLatin1Char(' '));
    if (!box.modal)
        odd << QStringLiteral("not modal");
    return odd.isEmpty() ? QString()
                         : QLatin1String(" [") + odd.join(QLatin1String(", ")) + QLatin1Char(']');
}

} // namespace

namespace support {

QStringList widgets(const QWidget *page)
{
    QStringList lines;
    for (const QWidget *widget : formWidgets(page))
        lines << line(widget);
    return lines;
}

QStringList layoutFaults(QWidget *page, const QRect &iconPlace)
{
    setApplicationLook();
    page->setStyleSheet(styleSheet());
    page->resize(600, 320);
    page->show();
    layOutTabs(page);
    QStringList faults;
    const QList<QWidget *> widgets = formWidgets(page);
    for (const QWidget *widget : widgets) {
        for (const QString &fault : faultsOf(widget, iconPlace))
            faults << widget->objectName() + QLatin1String(": ") + fault;
    }
    page->hide();
    return faults + overlaps(widgets);
}

QStringList items(const QComboBox *list)
{
    QStringList captions;
    for (int i = 0; i < list->count(); ++i)
        captions << list->itemText(i);
    return captions;
}

QString deviceText(int code)
{
    return errorTexts[code];
}

QString box(QMessageBox::Icon icon, const char *title, const QString &text, const char *buttons,
    Qt::TextFormat format)
{
    Dialog box;
    box.className = "QMessageBox"_s;
    box.title = QString::fromLatin1(title);
    box.icon = icon;
    box.format = format;
    box.buttons = QString::fromLatin1(buttons).split(QLatin1Char(' '));
    box.modal = true;
    return text + difference(box);
}

void click(const QWidget *page, const char *name)
{
    auto *button = child<QAbstractButton>(page, name);
    // On the indicator of a check box; a click beside its caption may miss.
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier,
        QPoint(std::min(button->width() / 2, 12), button->height() / 2));
}

HeldTimer::HeldTimer(const QObject *page)
{
    const auto timers = page->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    if (timers.size() != 1)
        qFatal("%d timers", int(timers.size()));
    timer = timers.constFirst();
    timer->installEventFilter(this);
}

bool HeldTimer::fire()
{
    if (!timer->isActive())
        return false;
    firing = true;
    QTimerEvent event(timer->timerId());
    QCoreApplication::sendEvent(timer, &event);
    return true;
}

bool HeldTimer::eventFilter(QObject *, QEvent *event)
{
    // Only the one event that was asked for passes, not those that come while its slot runs.
    return event->type() == QEvent::Timer && !std::exchange(firing, false);
}

} // namespace support

using namespace support;

void PageTest::addFailureCodes()
{
    QTest::addColumn<int>("code");
    for (const int code : failureCodes)
        QTest::addRow("%d", code) << code;
}

void PageTest::addFailureRows(const QStringList &operations)
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("code");
    for (const QString &operation : operations) {
        for (const int code : failureCodes)
            QTest::addRow("%s = %d", qPrintable(operation), code) << operation << code;
    }
}

QStringList PageTest::failing(QStringList lines, const QString &operation, int code)
{
    for (QString &line : lines) {
        if (line.startsWith(operation + QLatin1Char('(')))
            line.replace(
                QRegularExpression(QStringLiteral("\\) = .*")), QStringLiteral(") = %1").arg(code));
    }
    return lines;
}

QStringList PageTest::calls()
{
    return withoutErrorTexts(DeviceTest::calls());
}

QStringList PageTest::withoutErrorTexts(const QStringList &calls)
{
    static const QRegularExpression question(QStringLiteral("^deviceErrorText\\((-?\\d+)\\)"));
    static const QRegularExpression result(QStringLiteral("\\) = (-?\\d+)( \\[.*\\])?$"));
    QStringList lines;
    QString answered; // by the call before, as long as nobody has asked about it
    for (const QString &call : calls) {
        const auto asked = question.match(call);
        if (!asked.hasMatch()) {
            lines << call;
            answered = result.match(call).captured(1);
        } else if (asked.captured(1) != std::exchange(answered, QString())) {
            const auto message = QStringLiteral("nobody returned what %1 asks about").arg(call);
            QTest::qFail(qPrintable(message), __FILE__, __LINE__);
        }
    }
    return lines;
}

QString PageTest::errorBox(int code, const QString &operation)
{
    return "Error(%1) in %2: %3"_s.arg(QString::number(code), operation, deviceText(code));
}

QStringList PageTest::boxes(const QWidget *page)
{
    QStringList texts;
    for (const Dialog &box : dialogs.take())
        texts << (box.parent == page ? QString() : "elsewhere: "_s) + box.text + difference(box);
    return texts;
}
