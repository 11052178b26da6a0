#pragma once

#include <QDialog>
#include <QString>

#include <cstdint>
#include <initializer_list>

class QPushButton;

/**
 * Base of every page of the main window. The frame shows a page's windowTitle in its title strip.
 * A plain tabDlg is the stand-in for a feature that the unit doesn't have. Main thread only.
 */
class tabDlg : public QDialog
{
    Q_OBJECT

public:
    explicit tabDlg(QWidget *parent = nullptr);

    /** Escape closes a dialog, but a page in the window isn't the one to go. */
    void reject() override;

protected:
    /** Return isn't taken: a dialog would press its default button, but a page in the window has
     * none. */
    void keyPressEvent(QKeyEvent *event) override;

    /**
     * Modal error box "Error(code) in operation: text of the code" over this page. Silent on
     * success only: a page for which "not supported" is no fault tests for that code first.
     * @param operation inserted as it stands, the device's or the page's own name for what failed
     */
    void reportError(std::int32_t code, const char *operation);

    /**
     * The answer of most pages to a failed operation: "not supported" means that the feature
     * doesn't exist, so the widgets that stand for it go without a word; any other failure is
     * reported under that name. Not for a success.
     */
    void hideOrReport(
        std::int32_t code, const char *operation, std::initializer_list<QWidget *> widgets);

    /** Modal box with the critical icon, for wrong input, which has no code. */
    void showMessage(const QString &text);

    /** What the device does goes to a button that switches it: pressed and "On", or "Off". */
    static void showOnOff(QPushButton *button, bool on);

private:
    QString title;
};
