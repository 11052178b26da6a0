#include "frame/window/graphicalMode.h"
#include "pages/tabAdvancedDlg.h"
#include "report/factoryDefaults.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/WindowSweep.h"
#include "tests/tinyunit/foreignunit.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

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
    void window();
    void jobs_data() { seeds(); }
    void jobs();
    void reset_data() { seeds(); }
    void reset();

private:
    static void seeds();
    bool isWorthPressing(const QAbstractButton *button) override;
};

void ForeignUnitTest::seeds()
{
    QTest::addColumn<int>("seed");
    const int number = qEnvironmentVariableIntValue("VORN_SEEDS");
    for (int seed = 1; seed <= (number > 0 ? number : 25); ++seed)
        QTest::addRow("%d", seed) << seed;
}

// What the dialogs for files do has nothing to do with the unit.
bool ForeignUnitTest::isWorthPressing(const QAbstractButton *button)
{
    return button->objectName() != QLatin1String("buttonFile") &&
           button->objectName() != QLatin1String("pushButtonSaveAs");
}

void ForeignUnitTest::window()
{
    QFETCH(int, seed);
    seedForeignUnit(std::uint64_t(seed));
    sweepWindow();
    // The LED page hands on whatever colour the device has; only Qt's style sheets mind.
    for (const QString &warning : takeWarnings())
        QCOMPARE(warning, QStringLiteral("QColor::fromRgb: RGB parameters out of range"));
}

void ForeignUnitTest::jobs()
{
    QFETCH(int, seed);
    seedForeignUnit(std::uint64_t(seed));
    const support::SkippedPauses pauses;
    int jobsDone = 0;
    dialogs.setDefaultAnswer([&jobsDone](QDialog *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        if (box && box->button(QMessageBox::Yes))
            return box->button(QMessageBox::Yes)->click();
        jobsDone += box && (box->text().contains(QLatin1String("succeeded!")) ||
                               box->text().contains(QLatin1String("failed in state")));
        dialog->accept();
    });
    tabAdvancedDlg page;
    page.show();
    auto *path = support::child<QLineEdit>(&page, "editFileName");
    for (const QString &suffix : {QStringLiteral(".mcs"), QStringLiteral(".hex")}) {
        path->setText(QLatin1Char('a') + suffix);
        for (const bool verifies : {false, true}) {
            support::child<QCheckBox>(&page, "checkBox")->setChecked(verifies);
            for (QPushButton *button : page.findChildren<QPushButton *>()) {
                if (isWorthPressing(button))
                    QTest::mouseClick(button, Qt::LeftButton);
            }
        }
    }
    dialogs.take();
    QVERIFY(jobsDone > 0);
}

void ForeignUnitTest::reset()
{
    QFETCH(int, seed);
    seedForeignUnit(std::uint64_t(seed));
    const support::SkippedPauses pauses;
    applyFactoryDefaults();
    for (const QString &text : dialogs.takeTexts())
        QVERIFY2(text.startsWith(QLatin1String("Error(")), qPrintable(text));
}

int main(int argc, char *argv[])
{
    support::prepareEnvironment();
    QApplication application(argc, argv);
    setApplicationLook();
    ForeignUnitTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_foreignunit_posix.moc"
