#include "tests/support/Dialogs.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <utility>

namespace {

QStringList buttonTexts(const QMessageBox *box)
{
    QStringList texts;
    for (const QAbstractButton *button : box->buttons())
        texts << button->text().remove(QLatin1Char('&'));
    return texts;
}

void clickDefault(QDialog *dialog)
{
    if (const auto *box = qobject_cast<QMessageBox *>(dialog)) {
        if (box->defaultButton())
            return box->defaultButton()->click();
        if (!box->buttons().isEmpty())
            return box->buttons().constFirst()->click();
    }
    dialog->reject();
}

} // namespace

namespace support {

void prepareEnvironment()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_PLATFORMTHEME", "");
    static const QTemporaryDir settings; // its file dialog keeps there how it was left
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    // As fontconfig has it; the offscreen platform of other systems knows no such kinship.
    QFont::insertSubstitution(QStringLiteral("Arial"), QStringLiteral("Liberation Sans"));
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

Dialogs::Dialogs()
    : defaultAnswer(clickDefault)
{
    qApp->installEventFilter(this);
}

Dialogs::~Dialogs()
{
    qApp->removeEventFilter(this);
}

void Dialogs::plan(QMessageBox::StandardButton button)
{
    plan([button](QDialog *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        auto *target = box ? box->button(button) : nullptr;
        if (target)
            target->click();
        else
            clickDefault(dialog);
    });
}

void Dialogs::plan(Answer answer)
{
    answers.enqueue(std::move(answer));
}

void Dialogs::planFile(const QString &path)
{
    plan([path](QDialog *dialog) {
        auto *files = qobject_cast<QFileDialog *>(dialog);
        if (!files || path.isEmpty())
            return dialog->reject();
        child<QLineEdit>(files, "fileNameEdit")->setText(path);
        QMetaObject::invokeMethod(files, "accept");
    });
}

QList<Dialog> Dialogs::take()
{
    return std::exchange(seen, {});
}

QStringList Dialogs::takeTexts()
{
    QStringList texts;
    for (const Dialog &dialog : take())
        texts << dialog.text;
    return texts;
}

bool Dialogs::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Show)
        return false;
    auto *dialog = qobject_cast<QDialog *>(watched);
    if (!dialog || !dialog->isModal() || qobject_cast<QProgressDialog *>(dialog))
        return false;
    // From the dialog's own event loop, when it stands as a user would see it.
    QTimer::singleShot(0, dialog, [this, dialog] { answer(dialog); });
    return false;
}

void Dialogs::answer(QDialog *dialog)
{
    if (!dialog->isVisible())
        return;
    Dialog record;
    record.className = QString::fromLatin1(dialog->metaObject()->className());
    record.title = dialog->windowTitle();
    record.parent = dialog->parentWidget();
    record.modal = dialog->isModal();
    if (const auto *box = qobject_cast<QMessageBox *>(dialog)) {
        record.text = box->text();
        record.icon = box->icon();
        record.format = box->textFormat();
        record.buttons = buttonTexts(box);
    }
    seen << record;
    if (!answers.isEmpty())
        answers.dequeue()(dialog);
    else
        defaultAnswer(dialog);
}

} // namespace support
