#pragma once

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QQueue>
#include <QStringList>

#include <functional>

namespace support {

/** A modal dialog that came up in a test, and what it showed. */
struct Dialog {
    QString className;
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    Qt::TextFormat format = Qt::AutoText; ///< of a message box's text
    QStringList buttons; ///< captions of a message box's buttons: "Yes", "No", "OK"
    QWidget *parent = nullptr;
    bool modal = false;
};

/**
 * Answers every modal dialog as soon as it shows, so that code which blocks in one goes on.
 * Without a plan a dialog is answered by its default, or else its first button. Progress dialogs,
 * which nobody answers, are left alone.
 */
class Dialogs : public QObject
{
    Q_OBJECT

public:
    using Answer = std::function<void(QDialog *)>;

    Dialogs();
    ~Dialogs() override;

    /** Answers of the next dialogs, in order. */
    void plan(QMessageBox::StandardButton button);
    void plan(Answer answer);
    /** Those that were planned for dialogs that haven't come. */
    void forgetPlans() { answers.clear(); }
    /** The answer of dialogs without a plan from now on. */
    void setDefaultAnswer(Answer answer) { defaultAnswer = std::move(answer); }
    /** Types the path into the next file dialog and accepts it; an empty path cancels it. */
    void planFile(const QString &path);

    /** What came since the last call. */
    QList<Dialog> take();
    /** The texts alone of what came since the last call. */
    QStringList takeTexts();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void answer(QDialog *dialog);

    QQueue<Answer> answers;
    Answer defaultAnswer;
    QList<Dialog> seen;
};

/** The widget of that kind and name below the page; ends the test program if there is none. */
template <typename Widget>
Widget *child(const QWidget *page, const char *name)
{
    auto *widget = page->findChild<Widget *>(QString::fromLatin1(name));
    if (!widget)
        qFatal("no widget %s", name);
    return widget;
}

/** Offscreen, and nothing from the user's own settings. Before the application object. */
void prepareEnvironment();

} // namespace support
