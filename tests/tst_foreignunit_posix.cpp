#include "frame/window/graphicalMode.h"
#include "pages/tabAdvancedDlg.h"
#include "report/factoryDefaults.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/WindowSweep.h"
#include "tests/tinyunit/foreignunit.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

using namespace support;

/**
 * The whole program on a device library that is not ours and answers anything: values out of every
 * range, texts without an end, failures that write and successes that don't. Nothing may crash,
 * hang or warn, and no dialog come that isn't foreseen.
 *
 * VORN_SEEDS in the environment is the number of units instead of the few of an ordinary run.
 */
class ForeignUnitTest : public WindowSweep
{
    Q_OBJECT

private slots:
    void window_data() { seeds(); }

    void window()
    {
        QFETCH(int, seed);
        seedForeignUnit(std::uint64_t(seed));
        sweepWindow();
        // The LED page hands on whatever colour the device has; only Qt's style sheets mind. And
        // texts of the device may be of a script that the font of the tests doesn't have.
        for (const QString &warning : takeWarnings()) {
            if (!warning.trimmed().startsWith("OpenType support missing for"_s))
                QCOMPARE(warning, "QColor::fromRgb: RGB parameters out of range"_s);
        }
    }

    void jobs_data() { seeds(); }

    void jobs()
    {
        QFETCH(int, seed);
        seedForeignUnit(std::uint64_t(seed));
        const SkippedPauses pauses;
        int jobsDone = 0;
        dialogs.setDefaultAnswer([&jobsDone](QDialog *dialog) {
            auto *box = qobject_cast<QMessageBox *>(dialog);
            if (box && box->button(QMessageBox::Yes))
                return box->button(QMessageBox::Yes)->click();
            jobsDone += box && (box->text().contains("succeeded!"_s) ||
                                   box->text().contains("failed in state"_s));
            dialog->accept();
        });
        tabAdvancedDlg page;
        page.show();
        auto *path = child<QLineEdit>(&page, "editFileName");
        for (const QString &suffix : {".mcs"_s, ".hex"_s}) {
            path->setText(QLatin1Char('a') + suffix);
            for (const bool verifies : {false, true}) {
                child<QCheckBox>(&page, "checkBox")->setChecked(verifies);
                for (QPushButton *button : page.findChildren<QPushButton *>()) {
                    if (isWorthPressing(button))
                        QTest::mouseClick(button, Qt::LeftButton);
                }
            }
        }
        dialogs.take();
        QVERIFY(jobsDone > 0);
    }
    void reset_data() { seeds(); }

    void reset()
    {
        QFETCH(int, seed);
        seedForeignUnit(std::uint64_t(seed));
        const SkippedPauses pauses;
        applyFactoryDefaults();
        for (const QString &text : dialogs.takeTexts())
            QVERIFY2(text.startsWith("Error("_s), qPrintable(text));
    }

private:
    static void seeds()
    {
        QTest::addColumn<int>("seed");
        const int number = qEnvironmentVariableIntValue("VORN_SEEDS");
        for (int seed = 1; seed <= (number > 0 ? number : 25); ++seed)
            QTest::addRow("%d", seed) << seed;
    }

    /** What the dialogs for files do has nothing to do with the unit. */
    bool isWorthPressing(const QAbstractButton *button) override
    {
        return button->objectName() != "buttonFile"_s &&
               button->objectName() != "pushButtonSaveAs"_s;
    }
};

int main(int argc, char *argv[])
{
    prepareEnvironment();
    QApplication application(argc, argv);
    setApplicationLook();
    ForeignUnitTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_foreignunit_posix.moc"
