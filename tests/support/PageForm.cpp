#include "tests/support/PageForm.h"

#include "frame/window/graphicalMode.h"
#include "tests/support/PageTest.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QDir>
#include <QFile>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStyleOptionFrame>
#include <QTabBar>
#include <QTabWidget>
#include <QTextEdit>
#include <QValidator>

#include <algorithm>

using namespace support;

namespace {

const auto resources = ":/VornSettings/Resources/"_s;
constexpr int lowestTarget = 30;     // pixels
constexpr int titleStripHeight = 26; // pixels, of a group box under the program's style sheet

QString quoted(const QString &text)
{
    return QLatin1Char('"') + QString(text).replace(QLatin1Char('\n'), "<br>"_s) + QLatin1Char('"');
}

QString pictureName(const QPixmap &picture)
{
    const QImage shown = picture.toImage();
    for (const QString &file : QDir(resources).entryList(QDir::Files)) {
        if (QPixmap(resources + file).toImage() == shown)
            return file;
    }
    return "unknown picture"_s;
}

QString pictureName(const QIcon &picture)
{
    const auto shown = [](const QIcon &icon) { return icon.pixmap(QSize(32, 32)).toImage(); };
    for (const QString &file : QDir(resources).entryList(QDir::Files)) {
        if (shown(QIcon(resources + file)) == shown(picture))
            return file;
    }
    return "unknown picture"_s;
}

QString described(const QLabel *label)
{
    const QPixmap picture = label->pixmap(Qt::ReturnByValue);
    QString text = picture.isNull() ? quoted(label->text()) : pictureName(picture);
    if (label->alignment() == Qt::AlignCenter)
        text += " centred"_s;
    return text;
}

QString described(const QAbstractButton *button)
{
    QString text = quoted(button->text());
    if (qobject_cast<const QPushButton *>(button) && button->isCheckable())
        text += " checkable"_s;
    if (button->isChecked())
        text += " checked"_s;
    return text;
}

QString described(const QAbstractSlider *slider)
{
    QString text = "%1 to %2 by %3/%4"_s.arg(slider->minimum())
                       .arg(slider->maximum())
                       .arg(slider->singleStep())
                       .arg(slider->pageStep());
    if (slider->orientation() == Qt::Vertical)
        text += " vertical"_s;
    return text;
}

QString described(const QSpinBox *spin)
{
    return "%1 (%2 to %3 by %4)"_s.arg(spin->value())
        .arg(spin->minimum())
        .arg(spin->maximum())
        .arg(spin->singleStep());
}

QString described(const QComboBox *combo)
{
    return QLatin1Char('[') + items(combo).join(" | "_s) + QLatin1Char(']');
}

QString described(const QLineEdit *edit)
{
    return quoted(edit->text()) + QLatin1String(edit->isReadOnly() ? " read-only" : "");
}

QString described(const QTabWidget *tabs)
{
    QStringList captions;
    for (int index = 0; index < tabs->count(); ++index)
        captions << quoted(tabs->tabText(index)) + " = "_s + tabs->widget(index)->objectName();
    return "[%1] shows %2%3"_s.arg(captions.join(" | "_s), QString::number(tabs->currentIndex()),
        tabs->usesScrollButtons() ? QString() : " without scroll buttons"_s);
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
    if (const auto *tabs = qobject_cast<const QTabWidget *>(widget))
        return described(tabs);
    if (const auto *group = qobject_cast<const QGroupBox *>(widget))
        return quoted(group->title());
    if (const auto *text = qobject_cast<const QPlainTextEdit *>(widget))
        return quoted(text->toPlainText()) + QLatin1String(text->isReadOnly() ? " read-only" : "");
    return {};
}

QString described(const QValidator *validator)
{
    if (const auto *whole = qobject_cast<const QIntValidator *>(validator))
        return " takes %1 to %2"_s.arg(whole->bottom()).arg(whole->top());
    if (const auto *real = qobject_cast<const QDoubleValidator *>(validator))
        return " takes %1 to %2 with %3 decimals"_s.arg(real->bottom(), 0, 'f', 0)
            .arg(real->top(), 0, 'f', 0)
            .arg(real->decimals());
    return validator ? " takes what a %1 does"_s.arg(
                           QString::fromLatin1(validator->metaObject()->className()))
                     : QString();
}

/** The item of a layout at any depth that holds the widget. */
bool isLaidOut(QLayout *layout, const QWidget *widget)
{
    for (int index = 0; layout && index < layout->count(); ++index) {
        QLayoutItem *item = layout->itemAt(index);
        if (item->widget() == widget || isLaidOut(item->layout(), widget))
            return true;
    }
    return false;
}

/** Where the widget is put: the form's own rectangle, or the cell of a grid. Other layouts give it
 *  the place that fonts and style ask for. */
QString place(const QWidget *widget)
{
    const QWidget *parent = widget->parentWidget();
    for (const auto *grid : parent->findChildren<QGridLayout *>()) {
        const int index = grid->indexOf(const_cast<QWidget *>(widget)); // as Qt 5 has it
        if (index < 0)
            continue;
        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        grid->getItemPosition(index, &row, &column, &rows, &columns);
        QString cell = " in cell %1,%2"_s.arg(row).arg(column);
        if (rows > 1 || columns > 1)
            cell += " over %1x%2"_s.arg(rows).arg(columns);
        return cell;
    }
    if (isLaidOut(parent->layout(), widget) || qobject_cast<const QStackedWidget *>(parent))
        return {};
    const QRect at = widget->geometry();
    return " at %1,%2 %3x%4"_s.arg(at.x()).arg(at.y()).arg(at.width()).arg(at.height());
}

QString bounds(const char *word, const QSize &size, int none)
{
    const auto number = [none](int pixels) {
        return pixels == none ? "?"_s : QString::number(pixels);
    };
    if (size == QSize(none, none))
        return {};
    return " %1 %2x%3"_s.arg(
        QString::fromLatin1(word), number(size.width()), number(size.height()));
}

/** What only some kinds of widgets have, where the form sets it. */
QString particulars(const QWidget *widget)
{
    QString text;
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        if (label->buddy())
            text += " for "_s + label->buddy()->objectName();
        if (label->hasScaledContents())
            text += " scaled"_s;
        if (label->textFormat() == Qt::PlainText)
            text += " of plain text"_s;
    } else if (const auto *edit = qobject_cast<const QLineEdit *>(widget)) {
        text += described(edit->validator());
        if (edit->maxLength() != 32767)
            text += " up to %1"_s.arg(edit->maxLength());
        if (edit->alignment() & Qt::AlignRight)
            text += " to the right"_s;
    } else if (const auto *button = qobject_cast<const QPushButton *>(widget)) {
        if (button->autoDefault())
            text += " pressed by Return"_s;
        if (!button->icon().isNull())
            text += " with "_s + pictureName(button->icon());
    } else if (const auto *bar = qobject_cast<const QProgressBar *>(widget)) {
        text += " %1 of %2 to %3"_s.arg(bar->value()).arg(bar->minimum()).arg(bar->maximum());
    } else if (const auto *combo = qobject_cast<const QComboBox *>(widget)) {
        if (combo->currentIndex() != 0)
            text += " shows %1"_s.arg(combo->currentIndex());
    } else if (const auto *area = qobject_cast<const QAbstractScrollArea *>(widget)) {
        text += " scroll bars %1/%2"_s.arg(area->horizontalScrollBarPolicy())
                    .arg(area->verticalScrollBarPolicy());
        const auto *plain = qobject_cast<const QPlainTextEdit *>(area);
        if (plain && plain->lineWrapMode() == QPlainTextEdit::NoWrap)
            text += " unwrapped"_s;
    } else if (const auto *frame = qobject_cast<const QFrame *>(widget)) {
        if (frame->frameShape() == QFrame::HLine)
            text += " a horizontal line"_s;
    }
    return text;
}

QString line(const QWidget *widget)
{
    QString text =
        widget->objectName() + ": "_s + QString::fromLatin1(widget->metaObject()->className());
    const QString what = content(widget);
    if (!what.isEmpty())
        text += QLatin1Char(' ') + what;
    if (!widget->isEnabledTo(widget->parentWidget()))
        text += " disabled"_s;
    if (widget->testAttribute(Qt::WA_WState_ExplicitShowHide) && widget->isHidden())
        text += " hidden"_s;
    if (const QLayout *layout = widget->layout()) {
        text += " with "_s + QString::fromLatin1(layout->metaObject()->className());
        if (layout->contentsMargins().isNull())
            text += " without margins"_s;
    }
    text += particulars(widget) + place(widget) + bounds("at least", widget->minimumSize(), 0) +
            bounds("at most", widget->maximumSize(), QWIDGETSIZE_MAX);
    if (!widget->accessibleName().isEmpty())
        text += " called "_s + quoted(widget->accessibleName());
    if (!widget->toolTip().isEmpty())
        text += " tip "_s + quoted(widget->toolTip());
    return text;
}

/** How many widgets of the form stand around this one. */
int depth(const QWidget *widget, const QWidget *page, const QList<QWidget *> &widgets)
{
    int around = 0;
    for (QWidget *outer = widget->parentWidget(); outer && outer != page;
         outer = outer->parentWidget())
        around += widgets.contains(outer);
    return around;
}

QList<QWidget *> formWidgets(const QWidget *page)
{
    QList<QWidget *> widgets;
    for (QWidget *widget : page->findChildren<QWidget *>()) {
        const QString name = widget->objectName();
        const bool belongsToQt =
            name.startsWith("qt_"_s) || qobject_cast<const QTabBar *>(widget->parentWidget());
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

bool isTextCut(const QLineEdit *field)
{
    QStyleOptionFrame option;
    option.initFrom(field);
    option.state.setFlag(QStyle::State_ReadOnly, field->isReadOnly());
    const int room =
        field->style()->subElementRect(QStyle::SE_LineEditContents, &option, field).width();
    return field->fontMetrics().horizontalAdvance(field->text()) > room;
}

bool isClipped(const QWidget *widget)
{
    if (const auto *field = qobject_cast<const QLineEdit *>(widget);
        field && field->isReadOnly() && isTextCut(field))
        return true;
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

QStringList faultsOf(const QWidget *widget)
{
    QStringList faults;
    const QWidget *parent = widget->parentWidget();
    if (isClipped(widget))
        faults << "is clipped"_s;
    if (!parent->rect().contains(widget->geometry()))
        faults << "leaves its parent"_s;
    if (qobject_cast<const QGroupBox *>(parent) && widget->y() < titleStripHeight)
        faults << "covers the title strip"_s;
    if (isPressed(widget) && widget->height() < lowestTarget)
        faults << "is too low for a finger"_s;
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
                faults << widgets[i]->objectName() + ": lies over "_s + widgets[j]->objectName();
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
    QFile file(resources + "style.qss"_s);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no style sheet");
    return QString::fromUtf8(file.readAll());
}

} // namespace

namespace support {

QStringList form(const QWidget *page)
{
    const QSize size = page->size();
    QStringList lines{
        "%1: %2 %3 %4x%5"_s
            .arg(page->objectName(), QString::fromLatin1(page->metaObject()->className()),
                quoted(page->windowTitle()))
            .arg(size.width())
            .arg(size.height())};
    if (!page->styleSheet().isEmpty())
        lines[0] += " with a style sheet of its own"_s;
    const QList<QWidget *> widgets = formWidgets(page);
    for (const QWidget *widget : widgets)
        lines << QString(2 + 2 * depth(widget, page, widgets), QLatin1Char(' ')) + line(widget);
    return lines;
}

QStringList layoutFaults(QWidget *page)
{
    setApplicationLook();
    page->setStyleSheet(styleSheet());
    page->resize(600, 320);
    page->show();
    layOutTabs(page);
    QStringList faults;
    const QList<QWidget *> widgets = formWidgets(page);
    for (const QWidget *widget : widgets) {
        for (const QString &fault : faultsOf(widget))
            faults << widget->objectName() + ": "_s + fault;
    }
    page->hide();
    return faults + overlaps(widgets);
}

} // namespace support
