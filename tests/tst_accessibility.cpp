#include "tests/support/ViewTest.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabBar>
#include <QTextEdit>

#include <functional>
#include <memory>

using namespace support;

namespace {

QAccessibleInterface *seen(QObject *object)
{
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(object);
    if (!interface)
        qFatal("no interface for %s", qPrintable(object->objectName()));
    return interface;
}

/** All that shows below, as a screen reader walks. */
void walk(QAccessibleInterface *from, const std::function<void(QAccessibleInterface *)> &visit)
{
    for (int i = 0; i < from->childCount(); ++i) {
        QAccessibleInterface *child = from->child(i);
        if (!child || child->state().invisible)
            continue;
        const auto *widget = qobject_cast<const QWidget *>(child->object());
        if (widget && !widget->isVisible()) // to Qt 5 a closed list is there
            continue;
        visit(child);
        walk(child, visit);
    }
}

QString described(QAccessibleInterface *one)
{
    const auto *widget = qobject_cast<const QWidget *>(one->object());
    return "%1 with the role %2"_s.arg(widget ? nameOf(widget) : "a part"_s).arg(one->role());
}

/** What only holds other things, and what belongs to a text that has a name. */
bool needsNoName(const QAccessibleInterface *one)
{
    switch (one->role()) {
    case QAccessible::Client:
    case QAccessible::LayeredPane:
    case QAccessible::Separator:
    case QAccessible::Border:
    case QAccessible::ScrollBar:
        return true;
    case QAccessible::StaticText: // says nothing at present
        return qobject_cast<QLabel *>(one->object()) &&
               qobject_cast<QLabel *>(one->object())->text().isEmpty();
    default:
        return false;
    }
}

/** Whether a number reaches the reader with its limits. */
template <typename Widget>
bool tellsNumber(QAccessibleInterface *one, const Widget *widget)
{
    QAccessibleValueInterface *value = one->valueInterface();
    return value && value->currentValue().toInt() == widget->value() &&
           value->minimumValue().toInt() == widget->minimum() &&
           value->maximumValue().toInt() == widget->maximum();
}

bool tellsButton(QAccessibleInterface *one, const QAbstractButton *button)
{
    const auto state = one->state();
    const auto role =
        qobject_cast<const QCheckBox *>(button) ? QAccessible::CheckBox : QAccessible::Button;
    // A button that stays down is told as a box, with its state.
    return (one->role() == role || button->isCheckable()) &&
           bool(state.checkable) == button->isCheckable() &&
           bool(state.checked) == button->isChecked();
}

bool tellsTabs(QAccessibleInterface *one, const QTabBar *tabs)
{
    for (int tab = 0; tab < tabs->count(); ++tab) {
        QAccessibleInterface *page = one->child(tab);
        if (page->text(QAccessible::Name) != tabs->tabText(tab) ||
            page->role() != QAccessible::PageTab)
            return false;
    }
    return one->role() == QAccessible::PageTabList;
}

/** Role, value and state, as the kind of control has them. */
bool tellsItself(QWidget *widget)
{
    QAccessibleInterface *one = seen(widget);
    if (const auto *button = qobject_cast<QAbstractButton *>(widget))
        return tellsButton(one, button);
    if (const auto *slider = qobject_cast<QSlider *>(widget))
        return one->role() == QAccessible::Slider && tellsNumber(one, slider);
    if (const auto *box = qobject_cast<QSpinBox *>(widget))
        return one->role() == QAccessible::SpinBox && tellsNumber(one, box);
    if (const auto *bar = qobject_cast<QProgressBar *>(widget))
        return one->role() == QAccessible::ProgressBar && tellsNumber(one, bar);
    if (const auto *list = qobject_cast<QComboBox *>(widget))
        return one->role() == QAccessible::ComboBox &&
               one->text(QAccessible::Value) == list->currentText();
    if (const auto *field = qobject_cast<QLineEdit *>(widget))
        return one->role() == QAccessible::EditableText &&
               one->text(QAccessible::Value) == field->text() &&
               bool(one->state().readOnly) == field->isReadOnly();
    if (const auto *text = qobject_cast<QPlainTextEdit *>(widget))
        return one->role() == QAccessible::EditableText &&
               one->text(QAccessible::Value) == text->toPlainText();
    if (const auto *text = qobject_cast<QTextEdit *>(widget))
        return one->role() == QAccessible::EditableText &&
               one->text(QAccessible::Value) == text->toPlainText();
    if (const auto *tabs = qobject_cast<QTabBar *>(widget))
        return tellsTabs(one, tabs);
    return false; // a kind that nobody has thought of
}

/** "Automatic backlight: Enable", as readers say it. */
QString fullName(QWidget *widget)
{
    QString name = seen(widget)->text(QAccessible::Name);
    for (const QWidget *outer = widget->parentWidget(); outer; outer = outer->parentWidget()) {
        if (const auto *group = qobject_cast<const QGroupBox *>(outer))
            name.prepend(group->title() + ": "_s);
    }
    return name;
}

} // namespace

/** What a screen reader is told, by the window as it runs. */
class AccessibilityTest : public ViewTest
{
    Q_OBJECT

private:
    /** What can be worked, and what shows a value. */
    QList<QWidget *> shownControls() const
    {
        QList<QWidget *> all = readingOrder(page);
        for (auto *field : page->findChildren<QLineEdit *>()) {
            if (field->isVisible() && field->isReadOnly())
                all << field;
        }
        for (auto *bar : page->findChildren<QProgressBar *>()) {
            if (bar->isVisible())
                all << bar;
        }
        for (auto *box : page->findChildren<QCheckBox *>()) {
            if (box->isVisible() && !box->isEnabled())
                all << box;
        }
        return all;
    }

private slots:
    void names_data() { addViewRows(); }

    void names()
    {
        openRow();
        QStringList nameless;
        int count = 0;
        walk(seen(window.get()), [&](QAccessibleInterface *one) {
            ++count;
            if (one->text(QAccessible::Name).isEmpty() && !needsNoName(one))
                nameless << described(one);
        });
        QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join(QLatin1Char('\n'))));
        QVERIFY(count > 8);
        QCOMPARE(seen(window.get())->text(QAccessible::Name), "Settings"_s);
        QCOMPARE(seen(page)->text(QAccessible::Name), page->windowTitle());
        QVERIFY(!seen(window.get())->state().busy);
    }

    void controls_data() { addViewRows(); }

    /** What a control is, which value it has, and in which state it is. */
    void controls()
    {
        openRow();
        QStringList names;
        for (QWidget *widget : shownControls()) {
            QVERIFY2(tellsItself(widget), qPrintable(nameOf(widget)));
            QCOMPARE(bool(seen(widget)->state().disabled), !widget->isEnabled());
            const QString name = fullName(widget);
            QVERIFY2(!names.contains(name), qPrintable(name));
            names << name;
        }
    }

    void focus_data() { addViewRows(); }

    /** Each step of the focus. */
    void focus()
    {
        openRow();
        for (const QWidget *stop : tabStops(*window)) {
            QAccessibleInterface *focused = seen(window.get())->focusChild();
            QVERIFY(focused && focused->state().focused);
            if (const auto *tabs = qobject_cast<const QTabBar *>(stop)) // the tab in front has it
                QCOMPARE(focused->text(QAccessible::Name), tabs->tabText(tabs->currentIndex()));
            else
                QCOMPARE(focused->object(), stop);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
    }

    /** The slider counts in tenths of a hertz. */
    void ledFrequency()
    {
        window = std::make_unique<VornSettings>();
        window->show();
        page = openView(*window, {ledTab, 0});
        auto *slider = child<QSlider>(page, "sliderFreq");
        slider->setValue(57);
        QCOMPARE(seen(slider)->text(QAccessible::Description), "5.7 Hz"_s);
    }

    /** Why an entry of the menu can't be pressed. */
    void dimmedEntries()
    {
        useProfile("basic"_s);
        setUnit("Telematics.available"_s, "0"_s);
        window = std::make_unique<VornSettings>();
        window->show();
        auto *entry = child<QPushButton>(window.get(), "pushButtonTelematics");
        QVERIFY(seen(entry)->state().disabled);
        QCOMPARE(seen(entry)->text(QAccessible::Name), "Telematics"_s);
        QCOMPARE(
            seen(entry)->text(QAccessible::Description), "Telematics module is not available"_s);
        dialogs.take();
    }
};

VORN_TEST_MAIN(AccessibilityTest)
#include "tst_accessibility.moc"
