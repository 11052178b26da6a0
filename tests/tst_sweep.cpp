#include "frame/window/graphicalMode.h"
#include "tests/support/WindowSweep.h"
#include "virtualunit/VirtualUnit.h"

#include <QAbstractButton>

using namespace support;

namespace {

constexpr std::size_t sampledShare = 32; // of the operations in the profiles other than "full"

} // namespace

/**
 * The whole window on a unit in which one operation fails: every page is opened, every control
 * pressed once, every dialog answered. Nothing may crash, hang or warn, and each dialog must be one
 * that is foreseen.
 *
 * All profiles with all operations and codes take half an hour, so an ordinary run takes a sample
 * that has each operation and each profile in it. VORN_SWEEP=all in the environment takes them all,
 * a number there another sample, so that the numbers 0 to 4 have each operation with each code.
 */
class SweepTest : public WindowSweep
{
    Q_OBJECT

private slots:
    void sweep_data()
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
                for (std::size_t c = 0; c < std::size(failureCodes); ++c) {
                    if (!all && c != (i + shift) % std::size(failureCodes))
                        continue;
                    QTest::addRow(
                        "%s %s %d", profile.c_str(), operations[i].c_str(), failureCodes[c])
                        << QString::fromStdString(profile) << QString::fromStdString(operations[i])
                        << failureCodes[c];
                }
            }
            ++shift;
        }
    }

    void sweep()
    {
        QFETCH(QString, profile);
        QFETCH(QString, operation);
        QFETCH(int, code);
        useProfile(profile);
        fault(operation, code);
        sweepWindow();
    }

private:
    /** File dialogs would be half of an ordinary run's time and have nothing to do with the unit.
     */
    bool isWorthPressing(const QAbstractButton *button) override
    {
        const QString name = button->objectName();
        if (all || (name != "buttonFile"_s && name != "pushButtonSaveAs"_s))
            return true;
        QFETCH(QString, profile);
        const QString pressed = profile + QLatin1Char(' ') + name;
        if (fileButtonsPressed.contains(pressed))
            return false;
        fileButtonsPressed << pressed;
        return true;
    }

    const bool all = qgetenv("VORN_SWEEP") == "all";
    QStringList fileButtonsPressed; ///< with the profile of the unit
};

int main(int argc, char *argv[])
{
    prepareEnvironment();
    QApplication application(argc, argv);
    setApplicationLook();
    SweepTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_sweep.moc"
