#include "tests/support/PageTest.h"

#include "frame/VornAux2.h"

#include <QAbstractButton>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace {

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

void PageTest::planBox(std::function<QString()> shown)
{
    dialogs.plan([this, shown = std::move(shown)](QDialog *box) {
        shownBehindBox = shown();
        box->accept();
    });
}

QString PageTest::behindBox()
{
    dialogs.forgetPlans();
    return std::exchange(shownBehindBox, {});
}
