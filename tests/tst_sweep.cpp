#include "frame/TabIndex.h"
#include "frame/VornSettings.h"
#include "frame/graphicalMode.h"
#include "frame/tabDlg.h"
#include "tests/support/BiosData.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SkippedPauses.h"
#include "virtualunit/VirtualUnit.h"

#include <QAbstractSlider>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>

/**
 * The whole window on a unit in which one operation fails: every page is opened, every control
 * pressed once, every dialog answered. Nothing may crash, hang or warn, and each dialog must be one
 * that is foreseen.
 *
 * All profiles with all operations and codes take half an hour, so an ordinary run takes a sample
 * that has each operation and each profile in it. VORN_SWEEP=all in the environment takes them all,
 * a number there another sample, so that the numbers 0 to 4 have each operation with each code.
 */
class SweepTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void init();
    void sweep_data();
    void sweep();

private:
    void pressEverything(QWidget *page);
    bool isWorthPressing(const QAbstractButton *button);
    static void answer(QDialog *dialog);

    const bool all = qgetenv("VORN_SWEEP") == "all";
    QStringList fileButtonsPressed; ///< with the profile of the unit
    std::unique_ptr<support::BiosData> bios;
};

namespace {

constexpr int codes[] = {2, 18, 20, 5, -1};
constexpr std::size_t sampledShare = 32; // of the operations in the profiles other than "full"

// What a dialog may say. The error box inserts the operation's name as the pages give it.
const char *const foreseen[] = {
    R"(^Error\(-?\d+\) in [^%]+: .+)",
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

bool isForeseen(const support::Dialog &dialog)
{
    if (dialog.className != QLatin1String("QMessageBox"))
        return dialog.className.contains(QLatin1String("FileDialog")) ||
               dialog.className.contains(QLatin1String("ColorDialog"));
    return std::any_of(std::begin(foreseen), std::end(foreseen), [&](const char *pattern) {
        return QRegularExpression(QString::fromLatin1(pattern)).match(dialog.text).hasMatch();
    });
}

} // namespace

void SweepTest::init()
{
    DeviceTest::init();
    // No serial lines: a dialogue with a modem would take seconds.
    support::useNoOtherLines();
    bios.reset(); // one at a time
    bios = std::make_unique<support::BiosData>();
    dialogs.setDefaultAnswer(answer);
}

/** Questions are denied, so that no reset with its pauses runs; all else is closed. */
void SweepTest::answer(QDialog *dialog)
{
    auto *box = qobject_cast<QMessageBox *>(dialog);
    if (box && box->button(QMessageBox::No))
        box->button(QMessageBox::No)->click();
    else
        dialog->reject();
}

void SweepTest::sweep_data()
{
    QTest::addColumn<QString>("profile");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("code");
    const std::vector<std::string> operations = virtualunit::operations();
    std::size_t shift = all ? 0 : std::size_t(qEnvironmentVariableIntValue("VORN_SWEEP"));
    for (const std::string &profile : virtualunit::profiles()) {
        for (std::size_t i = 0; i < operations.size(); ++i) {
            if (!all && profile != "full" && (i + shift) % sampledShare != 0)
                continue;
            for (std::size_t c = 0; c < std::size(codes); ++c) {
                if (!all && c != (i + shift) % std::size(codes))
                    continue;
                QTest::addRow("%s %s %d", profile.c_str(), operations[i].c_str(), codes[c])
                    << QString::fromStdString(profile) << QString::fromStdString(operations[i])
                    << codes[c];
            }
        }
        ++shift;
    }
}

void SweepTest::sweep()
{
    QFETCH(QString, profile);
    QFETCH(QString, operation);
    QFETCH(int, code);
    const support::SkippedPauses pauses;
    useProfile(profile);
    fault(operation, code);
    {
        VornSettings window(nullptr, Qt::WindowFlags());
        window.show();
        const auto pages = window.findChildren<tabDlg *>();
        for (int index = 1; index < tabCount; ++index) {
            window.showTab(index);
            for (tabDlg *page : pages) {
                if (page->isVisible())
                    pressEverything(page);
            }
            QTest::keyClick(&window, Qt::Key_Escape);
        }
        QTest::mouseClick(
            window.findChild<QPushButton *>(QStringLiteral("buttonExit")), Qt::LeftButton);
        QVERIFY(!window.isVisible());
    }
    for (const support::Dialog &dialog : dialogs.take())
        QVERIFY2(isForeseen(dialog), qPrintable(dialog.className + QLatin1Char(' ') + dialog.text));
}

// File dialogs would be half of an ordinary run's time and have nothing to do with the unit.
bool SweepTest::isWorthPressing(const QAbstractButton *button)
{
    const QString name = button->objectName();
    if (all || (name != QLatin1String("buttonFile") && name != QLatin1String("pushButtonSaveAs")))
        return true;
    QFETCH(QString, profile);
    const QString pressed = profile + QLatin1Char(' ') + name;
    if (fileButtonsPressed.contains(pressed))
        return false;
    fileButtonsPressed << pressed;
    return true;
}

void SweepTest::pressEverything(QWidget *page)
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

int main(int argc, char *argv[])
{
    support::prepareEnvironment();
    QApplication application(argc, argv);
    setApplicationLook();
    SweepTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_sweep.moc"
