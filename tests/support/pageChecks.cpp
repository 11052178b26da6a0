#include "tests/support/pageChecks.h"

#include "frame/VornAux2.h"
#include "frame/graphicalMode.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QPushButton>
#include <QTabWidget>

namespace {

QString latin1(const char *text)
{
    return QString::fromLatin1(text);
}

constexpr int failureCodes[] = {2, 18, 20, 5, -1};

/** Read before any test, since each call on the library goes to the journal. */
QMap<int, QString> readErrorTexts()
{
    QMap<int, QString> texts;
    for (const int code : failureCodes)
        texts[code] = latin1(deviceErrorText(code));
    return texts;
}
const QMap<int, QString> errorTexts = readErrorTexts();

/** Whether the widget is as large as its text wants it. */
bool fits(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget)) {
        if (label->text().isEmpty())
            return true;
        const QSize hint = label->sizeHint();
        return hint.width() <= label->width() && hint.height() <= label->height();
    }
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->sizeHint().width() <= button->width();
    if (const auto *combo = qobject_cast<const QComboBox *>(widget))
        return combo->sizeHint().width() <= combo->width();
    return true;
}

bool insideParent(const QWidget *widget)
{
    return widget->parentWidget()->rect().contains(widget->geometry());
}

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

void addWidgetColumns()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("toolTip");
}

void addWidget(const char *name, const char *kind, const char *caption, const char *toolTip)
{
    QTest::newRow(name) << latin1(name) << latin1(kind) << latin1(caption) << latin1(toolTip);
}

void checkWidget(const QWidget *page)
{
    QFETCH(QString, name);
    QFETCH(QString, kind);
    const auto *widget = page->objectName() == name ? page : page->findChild<const QWidget *>(name);
    QVERIFY(widget);
    QVERIFY2(widget->inherits(kind.toLatin1().constData()), widget->metaObject()->className());
    QTEST(caption(widget), "caption");
    QTEST(widget->toolTip(), "toolTip");
}

QString caption(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    if (const auto *group = qobject_cast<const QGroupBox *>(widget))
        return group->title();
    if (widget->inherits("QDialog"))
        return widget->windowTitle();
    for (const QWidget *parent = widget->parentWidget(); parent; parent = parent->parentWidget())
        if (const auto *tabs = qobject_cast<const QTabWidget *>(parent))
            if (tabs->indexOf(widget) >= 0)
                return tabs->tabText(tabs->indexOf(widget));
    return {};
}

QStringList clipped(QWidget *page)
{
    QFile sheet(QStringLiteral(":/VornSettings/Resources/style.qss"));
    if (!sheet.open(QIODevice::ReadOnly))
        return {sheet.fileName()};
    setApplicationLook();
    page->setStyleSheet(QString::fromUtf8(sheet.readAll()));
    page->ensurePolished();
    QStringList names;
    for (const QWidget *widget : page->findChildren<QWidget *>()) {
        const bool own = !widget->objectName().startsWith(QLatin1String("qt_"));
        if (own && widget->isVisible() && !widget->isWindow() &&
            !(fits(widget) && insideParent(widget)))
            names << widget->objectName();
    }
    return names;
}

QStringList tooSmall(const QWidget *page)
{
    QStringList names;
    for (const QWidget *widget : page->findChildren<QWidget *>()) {
        const bool pressed =
            qobject_cast<const QPushButton *>(widget) || qobject_cast<const QCheckBox *>(widget) ||
            qobject_cast<const QComboBox *>(widget) || qobject_cast<const QLineEdit *>(widget);
        if (pressed && widget->isVisible() && widget->height() < 30)
            names << widget->objectName();
    }
    return names;
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
