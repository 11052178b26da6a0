#include "pages/tabAdvancedDlg.h"
#include "report/factoryDefaults.h"
#include "tests/support/PageForm.h"
#include "tests/support/PageTest.h"
#include "tests/support/SkippedPauses.h"
#include "tests/support/system.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLineEdit>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>
#include <QQueue>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>

#include <functional>
#include <memory>

using namespace support;

namespace {

/** What a test does to the questions for a job's progress. */
struct Questions {
    std::function<void(int)> asked; ///< at each question, with its number from 0
    QQueue<FirmwareUpgradeStatus>
        answers;                 ///< given instead of the library's own, as long as it lasts
    DeviceCode code = DEVICE_OK; ///< beside these answers
    int count = 0;
    FirmwareUpgradeStatus last = {};
    bool alwaysWaits = true;
};

Questions questions;

} // namespace

/** Stands before the library's own operation, to which it hands on. A sound library has no states
 *  beyond the known ones, so a test must be able to make them up. */
DeviceCode Firmware_getUpgradeStatus(
    FirmwareHandle handle, FirmwareUpgradeStatus *status, bool wait)
{
    using Operation = DeviceCode (*)(FirmwareHandle, FirmwareUpgradeStatus *, bool);
    static const auto library =
        reinterpret_cast<Operation>(deviceProcedure("Firmware_getUpgradeStatus"));
    if (questions.asked)
        questions.asked(questions.count);
    ++questions.count;
    questions.alwaysWaits = questions.alwaysWaits && wait;
    DeviceCode code = DEVICE_OK;
    if (questions.answers.isEmpty()) {
        code = library(handle, status, wait);
    } else {
        *status = questions.answers.dequeue();
        code = questions.code;
    }
    questions.last = *status;
    return code;
}

namespace {

/** The page with its widgets at hand. */
struct Page : tabAdvancedDlg {
    QLineEdit *file = child<QLineEdit>(this, "editFileName");
    QPushButton *choose = child<QPushButton>(this, "buttonFile");
    QPushButton *fpga = child<QPushButton>(this, "buttonProgFPGA");
    QPushButton *front = child<QPushButton>(this, "buttonProgFront");
    QPushButton *supervisor = child<QPushButton>(this, "buttonProgSS");
    QCheckBox *verify = child<QCheckBox>(this, "checkBox");
    QPushButton *shutdown = child<QPushButton>(this, "buttonShutdown");
    QPushButton *defaults = child<QPushButton>(this, "buttonDefaults");

    QPushButton *button(const char *name) { return child<QPushButton>(this, name); }
    /** The one of the last job. */
    QProgressDialog *progress() { return findChildren<QProgressDialog *>().value(jobs() - 1); }
    int jobs() { return int(findChildren<QProgressDialog *>().count()); }
};

void click(QWidget *widget)
{
    QTest::mouseClick(widget, Qt::LeftButton);
}

constexpr char image[] = ":0400000001020304F2\n:00000001FF\n";
constexpr char otherImage[] = ":0400000001020305F1\n:00000001FF\n";

constexpr char yesNo[] = "Yes No";

QString upgradeQuestion()
{
    return box(QMessageBox::Warning, "Update progress",
        "This operation may cause harm to your device.\nDo you want to continue?"_s, yesNo);
}

QString supervisorQuestion()
{
    return box(QMessageBox::Warning, "Update progress",
        "This operation may cause harm to your device.\nAfter the update, the unit "
        "power must be turned off and then on again.\nDo you want to continue?"_s,
        yesNo);
}

QString supervisorVerificationQuestion()
{
    return box(QMessageBox::Warning, "Verify",
        "After verifying SS, the unit power must be turned off and then on again.\n\nIf you "
        "are verifying after an upgrade, or after another verification, the process may fail "
        "in the state preparing communication. In this case, it may work to retry.\n\nDo you "
        "want to continue?"_s,
        yesNo);
}

QString upgraded()
{
    return box(QMessageBox::Information, "Update progress",
        "Software update succeeded!\nPlease shut down the computer in order for the "
        "update to take effect."_s);
}

QString supervisorUpgraded()
{
    return box(QMessageBox::Information, "Update progress",
        "Software update succeeded!\nPlease shut down the OS and \nthen toggle the "
        "unit power for the update to take effect.\n\nIt is safe to turn off power "
        "when the screen is all white."_s);
}

QString verified()
{
    return box(QMessageBox::Information, "Verify", "Software verification succeeded!"_s);
}

QString supervisorVerified()
{
    return box(QMessageBox::Information, "Verify",
        "Software verification succeeded!\nPlease shut down the OS and \nthen "
        "toggle the unit power.\n\nIt is safe to turn off power when the screen is "
        "all white."_s);
}

QString failed(const char *state, int percent, int code)
{
    return box(QMessageBox::Critical, "Update progress",
        "Upgrade failed in state: %1 (%2%). \nError: %3"_s.arg(
            latin1(state), QString::number(percent), latin1(deviceErrorText(code))));
}

/** The three targets in both modes. */
struct Job {
    const char *name;
    const char *button;
    bool verify;
    const char *suffix;
    const char *operation;
    QString (*question)(); // null: none
    QString (*success)();
    const char *version;
};

const Job jobs[] = {
    {"program FPGA", "buttonProgFPGA", false, "mcs", "startFpgaUpgrade", upgradeQuestion, upgraded,
        "Versions.fpga"},
    {"program front", "buttonProgFront", false, "hex", "startFrontUpgrade", upgradeQuestion,
        upgraded, "Versions.front"},
    {"program supervisor", "buttonProgSS", false, "hex", "startSSUpgrade", supervisorQuestion,
        supervisorUpgraded, "Versions.ss"},
    {"verify FPGA", "buttonProgFPGA", true, "mcs", "startFpgaVerification", nullptr, verified,
        "Versions.fpga"},
    {"verify front", "buttonProgFront", true, "hex", "startFrontVerification", nullptr, verified,
        "Versions.front"},
    {"verify supervisor", "buttonProgSS", true, "hex", "startSSVerification",
        supervisorVerificationQuestion, supervisorVerified, "Versions.ss"},
};

/** The whole life of the handle, with the code of the query and the value behind it. */
QStringList powerQuery(const QString &answer)
{
    return {"Battery_create()"_s, "Battery_getPowerSource() = "_s + answer, "Battery_release()"_s};
}

QStringList batteryCalls(const Job &job)
{
    if (latin1(job.operation) != "startSSUpgrade"_s)
        return {};
    return powerQuery("0 [1]"_s);
}

QString startCall(const Job &job, const QString &path, int code)
{
    return "Firmware_%1(\"%2\", false) = %3"_s.arg(latin1(job.operation), path).arg(code);
}

} // namespace

class AdvancedPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        questions = {};
        folder = std::make_unique<QTemporaryDir>();
        pauses = std::make_unique<SkippedPauses>();
        setUnit("Firmware.duration"_s, "0"_s);
        calls();
    }

    void cleanup()
    {
        folder.reset();
        pauses.reset();
        QVERIFY2(questions.alwaysWaits, "a question that doesn't wait");
        PageTest::cleanup();
    }

    void layout()
    {
        Page page;
        QCOMPARE(page.findChild<QGridLayout *>("gridLayout"_s)->horizontalSpacing(), 20);
        page.show();
        // All of the box can be pressed.
        QTest::mouseClick(page.verify, Qt::LeftButton, Qt::NoModifier,
            page.verify->rect().bottomRight() - QPoint(10, 5));
        QVERIFY(page.verify->isChecked());
        QCOMPARE(layoutFaults(&page), QStringList());
    }

    void showSetsCaption()
    {
        Page page;
        calls();
        page.show();
        QCOMPARE(page.verify->text(), "Verify only"_s);
        QCOMPARE(page.fpga->text(), "Program FPGA"_s);
        QCOMPARE(page.front->text(), "Program Front"_s);
        QCOMPARE(page.supervisor->text(), "Program SS"_s);
        QCOMPARE(calls(), QStringList());
        click(page.verify);
        page.hide();
        page.show();
        QCOMPARE(page.verify->text(), "Verify only"_s);
        QCOMPARE(page.front->text(), "Verify Front uC"_s);
    }

    void modeChangesCaptions()
    {
        Page page;
        page.show();
        click(page.verify);
        QCOMPARE(page.fpga->text(), "Verify FPGA"_s);
        QCOMPARE(page.front->text(), "Verify Front uC"_s);
        QCOMPARE(page.supervisor->text(), "Verify SS"_s);
        click(page.verify);
        QCOMPARE(page.fpga->text(), "Program FPGA"_s);
        QCOMPARE(page.front->text(), "Program Front uC"_s);
        QCOMPARE(page.supervisor->text(), "Program SS"_s);
    }

    void boxAloneTellsTheMode()
    {
        fault("Firmware_startFrontVerification"_s, 5);
        Page page;
        prepare(page, jobs[1], "/tmp/a.hex"_s);
        const QSignalBlocker keepsCaptions(page.verify);
        page.verify->setChecked(true);
        QCOMPARE(page.front->text(), "Program Front"_s);
        click(page.front);
        QCOMPARE(calls().value(0), startCall(jobs[4], "/tmp/a.hex"_s, 5));
        QCOMPARE(dialogs.take().count(), 1);
    }

    void picksFile()
    {
        const QString path = write("a b.hex"_s, image);
        Page page;
        page.show();
        dialogs.planFile(path);
        click(page.choose);
        QCOMPARE(page.file->text(), path);
        const auto seen = dialogs.take();
        QCOMPARE(seen.count(), 1);
        QCOMPARE(seen.constFirst().className, "QFileDialog"_s);
        QCOMPARE(seen.constFirst().title, "Open File"_s);
        QCOMPARE(seen.constFirst().parent, &page);

        // The next dialog starts where the file was, on whatever page.
        QStringList filters;
        QString directory;
        dialogs.plan([&](QDialog *dialog) {
            const auto *files = qobject_cast<QFileDialog *>(dialog);
            filters = files->nameFilters();
            directory = files->directory().absolutePath();
            dialog->reject();
        });
        Page other;
        other.show();
        click(other.choose);
        QCOMPARE(dialogs.take().count(), 1);
        QCOMPARE(QFileInfo(directory).canonicalFilePath(),
            QFileInfo(folder->path()).canonicalFilePath());
        QCOMPARE(filters,
            QStringList({"All (*.*)"_s, "mcs (FPGA) (*.MCS)"_s, "hex (Front, SS) (*.HEX)"_s}));
        QCOMPARE(other.file->text(), QString());
    }

    void picksNoFile()
    {
        Page page;
        page.show();
        page.file->setText("typed"_s);
        dialogs.planFile(QString());
        click(page.choose);
        QCOMPARE(dialogs.take().count(), 1);
        QCOMPARE(page.file->text(), "typed"_s);
    }

    /** The dialog's own filters spell the suffixes in capitals, which the page then refuses. */
    void pickedCapitalsAreRefused()
    {
        const QString path = write("firmware.MCS"_s, image);
        Page page;
        page.show();
        dialogs.plan([&](QDialog *dialog) {
            auto *files = qobject_cast<QFileDialog *>(dialog);
            files->selectNameFilter("mcs (FPGA) (*.MCS)"_s);
            child<QLineEdit>(files, "fileNameEdit")->setText(path);
            QMetaObject::invokeMethod(files, "accept");
        });
        click(page.choose);
        QCOMPARE(page.file->text(), path);
        dialogs.take();
        calls();
        click(page.fpga);
        QCOMPARE(calls(), QStringList());
        QCOMPARE(boxes(&page), QStringList(box(QMessageBox::Critical, "",
                                   "The file to program must be a .mcs file!"_s)));
    }

    void returnKeyPressesNoButton()
    {
        Page page;
        page.show();
        calls();
        QTest::keyClicks(page.file, "a.hex\r"_s);
        QCOMPARE(calls(), QStringList());
        QCOMPARE(dialogs.takeTexts(), QStringList());
        for (const QPushButton *button : page.findChildren<QPushButton *>())
            QVERIFY2(!button->autoDefault(), qPrintable(button->objectName()));
    }

    void refusesSuffix_data()
    {
        QTest::addColumn<int>("job");
        QTest::addColumn<QString>("path");
        int number = 0;
        for (const Job &job : jobs) {
            const bool fpga = latin1(job.suffix) == "mcs"_s;
            QTest::addRow("%s, empty", job.name) << number << QString();
            QTest::addRow("%s, capitals", job.name)
                << number << "/tmp/firmware."_s + latin1(job.suffix).toUpper();
            QTest::addRow("%s, of another", job.name)
                << number << "/tmp/firmware."_s + latin1(fpga ? "hex" : "mcs");
            QTest::addRow("%s, blank behind", job.name)
                << number << "/tmp/firmware."_s + latin1(job.suffix) + QLatin1Char(' ');
            QTest::addRow("%s, folder", job.name)
                << number << "/tmp/firmware."_s + latin1(job.suffix) + QLatin1Char('/');
            ++number;
        }
    }

    void refusesSuffix()
    {
        const Job &job = currentJob();
        QFETCH(QString, path);
        Page page;
        prepare(page, job, path);
        click(page.button(job.button));
        QCOMPARE(calls(), QStringList());
        const QString text = job.verify ? "The file to verify must be a .%1 file!"_s
                                        : "The file to program must be a .%1 file!"_s;
        QCOMPARE(boxes(&page),
            QStringList(box(QMessageBox::Critical, "", text.arg(latin1(job.suffix)))));
        QCOMPARE(page.jobs(), 0);
    }

    void acceptsSuffix_data() { addJobs(); }

    void acceptsSuffix()
    {
        const Job &job = currentJob();
        fault("Firmware_"_s + latin1(job.operation), 2);
        // The letters at the end are enough, with or without a dot.
        for (const char *name : {"a.", "a", ""}) {
            Page page;
            const QString path = latin1(name) + latin1(job.suffix);
            prepare(page, job, path);
            if (job.question)
                dialogs.plan(QMessageBox::Yes);
            click(page.button(job.button));
            QVERIFY(calls().contains(startCall(job, path, 2)));
            QCOMPARE(dialogs.take().count(), job.question ? 2 : 1);
        }
    }

    void refusedQuestion_data() { addJobs(); }

    void refusedQuestion()
    {
        const Job &job = currentJob();
        const QString path = "/tmp/a."_s + latin1(job.suffix);
        if (!job.question)
            return;
        for (const bool escape : {false, true}) {
            Page page;
            prepare(page, job, path);
            if (escape)
                dialogs.plan([](QDialog *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
            else
                dialogs.plan(QMessageBox::No);
            click(page.button(job.button));
            QCOMPARE(calls(), batteryCalls(job));
            QCOMPARE(boxes(&page), QStringList(job.question()));
            QCOMPARE(page.jobs(), 0);
        }
    }

    void startFails_data()
    {
        QTest::addColumn<int>("job");
        QTest::addColumn<int>("code");
        for (const int code : failureCodes) {
            int number = 0;
            for (const Job &job : jobs)
                QTest::addRow("%s, %d", job.name, code) << number++ << code;
        }
    }

    void startFails()
    {
        const Job &job = currentJob();
        QFETCH(int, code);
        fault("Firmware_"_s + latin1(job.operation), code);
        Page page;
        const QString path = "/tmp/a."_s + latin1(job.suffix);
        prepare(page, job, path);
        if (job.question)
            dialogs.plan(QMessageBox::Yes);
        click(page.button(job.button));
        QCOMPARE(calls(), batteryCalls(job) + QStringList(startCall(job, path, code)));
        QStringList expected(errorBox(code, latin1(job.operation)));
        if (job.question)
            expected.prepend(job.question());
        QCOMPARE(boxes(&page), expected);
        QCOMPARE(page.jobs(), 0);
    }

    void runsJob_data() { addJobs(); }

    void runsJob()
    {
        const Job &job = currentJob();
        const QString path = write("image."_s + latin1(job.suffix), image);
        if (job.verify) {
            // There must be an image to compare with.
            const Job &upgrade = jobs[&job - jobs - 3];
            Page page;
            prepare(page, upgrade, path);
            dialogs.plan(QMessageBox::Yes);
            click(page.button(upgrade.button));
            dialogs.take();
        }
        questions.count = 0;
        Page page;
        prepare(page, job, path);
        const QString version = unit(latin1(job.version));
        if (job.question)
            dialogs.plan(QMessageBox::Yes);
        click(page.button(job.button));
        QCOMPARE(jobCalls(), batteryCalls(job) + QStringList(startCall(job, path, 0)));
        QStringList expected(job.success());
        if (job.question)
            expected.prepend(job.question());
        QCOMPARE(boxes(&page), expected);
        QCOMPARE(questions.last.state, int(FIRMWARE_DONE));
        QVERIFY(questions.count > 1);
        QCOMPARE(unit(latin1(job.version)) == version, job.verify);
    }

    void verificationFindsDifference()
    {
        Page page;
        prepare(page, jobs[1], write("a.hex"_s, image));
        dialogs.plan(QMessageBox::Yes);
        click(page.front);
        QCOMPARE(boxes(&page).value(1), upgraded());
        click(page.verify);
        page.file->setText(write("b.hex"_s, otherImage));
        click(page.front);
        QVERIFY(questions.last.errorCode != 0);
        QCOMPARE(boxes(&page),
            QStringList(failed("Verifying", questions.last.percent, questions.last.errorCode)));
    }

    void damagedFileFails()
    {
        const QString version = unit("Versions.front"_s);
        Page page;
        prepare(page, jobs[1], write("a.hex"_s, ":0400000001020304F3\n:00000001FF\n"));
        dialogs.plan(QMessageBox::Yes);
        click(page.front);
        QVERIFY(questions.last.errorCode != 0);
        QCOMPARE(boxes(&page),
            QStringList({upgradeQuestion(),
                failed("Converting file", questions.last.percent, questions.last.errorCode)}));
        QCOMPARE(unit("Versions.front"_s), version);
    }

    void refusesSupervisorOnBattery()
    {
        setUnit("Battery.powerSource"_s, "0"_s);
        Page page;
        prepare(page, jobs[2], "/tmp/a.hex"_s);
        QStringList beforeBox;
        dialogs.plan([&](QDialog *dialog) {
            beforeBox = calls();
            dialog->accept();
        });
        click(page.supervisor);
        QCOMPARE(beforeBox, powerQuery("0 [0]"_s));
        QCOMPARE(calls(), QStringList());
        QCOMPARE(boxes(&page), QStringList(box(QMessageBox::Warning, "Warning. Battery Power",
                                   "Please use external power when updating SS!"_s)));
        // The others don't ask for the power.
        fault("Firmware_startFrontUpgrade"_s, 5);
        dialogs.plan(QMessageBox::Yes);
        click(page.front);
        QCOMPARE(calls(), QStringList("Firmware_startFrontUpgrade(\"/tmp/a.hex\", false) = 5"_s));
        QCOMPARE(dialogs.take().count(), 2);
    }

    void asksOnAnyOtherPower_data()
    {
        QTest::addColumn<QString>("source");
        for (const char *source : {"1", "2", "255"})
            QTest::newRow(source) << latin1(source);
    }

    void asksOnAnyOtherPower()
    {
        QFETCH(QString, source);
        setUnit("Battery.powerSource"_s, source);
        Page page;
        prepare(page, jobs[2], "/tmp/a.hex"_s);
        QStringList beforeQuestion;
        dialogs.plan([&](QDialog *dialog) {
            beforeQuestion = calls();
            dialog->reject();
        });
        click(page.supervisor);
        QCOMPARE(beforeQuestion, powerQuery("0 [%1]"_s.arg(source)));
        QCOMPARE(calls(), QStringList());
        QCOMPARE(boxes(&page), QStringList(supervisorQuestion()));
    }

    void verifiesSupervisorOnBattery()
    {
        setUnit("Battery.powerSource"_s, "0"_s);
        fault("Firmware_startSSVerification"_s, 5);
        Page page;
        prepare(page, jobs[5], "/tmp/a.hex"_s);
        dialogs.plan(QMessageBox::Yes);
        click(page.supervisor);
        QCOMPARE(calls(), QStringList("Firmware_startSSVerification(\"/tmp/a.hex\", false) = 5"_s));
        QCOMPARE(dialogs.take().count(), 2);
    }

    void powerSourceFails_data() { addFailureRows({"Battery_getPowerSource"_s}); }

    void powerSourceFails()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        setUnit("Battery.powerSource"_s, "0"_s);
        fault(operation, code);
        Page page;
        const QString path = write("a.hex"_s, image);
        prepare(page, jobs[2], path);
        dialogs.plan(QMessageBox::Yes);
        click(page.supervisor);
        QCOMPARE(jobCalls(),
            powerQuery(QString::number(code)) + QStringList(startCall(jobs[2], path, 0)));
        QCOMPARE(boxes(&page), QStringList({supervisorQuestion(), supervisorUpgraded()}));
    }

    void progressDialog()
    {
        Page page;
        prepare(page, jobs[4], "/tmp/a.hex"_s);
        questions.answers.append({FIRMWARE_INITIATING, 0, 0});
        questions.answers.append({FIRMWARE_READING, 18, 0});
        questions.answers.append({FIRMWARE_DONE, 100, 0});
        QStringList shown;
        questions.asked = [&](int) {
            const auto *dialog = page.progress();
            QVERIFY(dialog);
            shown << "%1 %2"_s.arg(dialog->value()).arg(dialog->labelText());
            QCOMPARE(dialog->parentWidget(), &page);
            QCOMPARE(dialog->windowTitle(), "Update progress"_s);
            QCOMPARE(dialog->minimum(), -1);
            QCOMPARE(dialog->maximum(), 100);
            QCOMPARE(dialog->windowModality(), Qt::WindowModal);
            QCOMPARE(dialog->minimumDuration(), 0);
            QVERIFY(!dialog->autoReset());
            QVERIFY(!dialog->findChild<QPushButton *>());
            QVERIFY(dialog->windowFlags() & Qt::CustomizeWindowHint);
            QVERIFY(dialog->windowFlags() & Qt::WindowTitleHint);
            QVERIFY(!(dialog->windowFlags() & Qt::WindowCloseButtonHint));
        };
        click(page.front);
        QCOMPARE(
            shown, QStringList({"0 Fetching data..."_s, "0 Initiating"_s, "18 Reading File"_s}));
        QVERIFY(!page.progress()->isVisible());
        QCOMPARE(boxes(&page), QStringList(verified()));
    }

    /** What an answer says is on the screen before the next one is asked for. */
    void answersArePaintedAtOnce()
    {
        struct Paints : QObject {
            int percent = -2;
            QString label;
            bool eventFilter(QObject *watched, QEvent *event) override
            {
                if (event->type() != QEvent::Paint)
                    return false;
                if (const auto *bar = qobject_cast<QProgressBar *>(watched))
                    percent = bar->value();
                else if (const auto *text = qobject_cast<QLabel *>(watched))
                    label = text->text();
                return false;
            }
        } painted;
        Page page;
        prepare(page, jobs[4], "/tmp/a.hex"_s);
        questions.answers.append({FIRMWARE_INITIATING, 5, 0});
        questions.answers.append({FIRMWARE_READING, 30, 0});
        questions.answers.append({FIRMWARE_FLASHING, 60, 0});
        questions.answers.append({FIRMWARE_DONE, 100, 0});
        QStringList shown;
        questions.asked = [&](int) { shown << "%1 %2"_s.arg(painted.percent).arg(painted.label); };
        qApp->installEventFilter(&painted);
        click(page.front);
        QCOMPARE(
            shown.mid(1), QStringList({"5 Initiating"_s, "30 Reading File"_s, "60 Flashing"_s}));
        QCOMPARE(boxes(&page), QStringList(verified()));
    }

    void progressDialogStaysOpen()
    {
        Page page;
        prepare(page, jobs[4], "/tmp/a.hex"_s);
        for (int round = 0; round < 4; ++round)
            questions.answers.append({FIRMWARE_FLASHING, quint8(20 * round + 20), 0});
        questions.answers.append({FIRMWARE_DONE, 100, 0});
        int shownRounds = 0;
        questions.asked = [&](int count) {
            if (count < 2)
                return;
            shownRounds += page.progress()->isVisible();
            QTest::keyClick(page.progress(), Qt::Key_Escape);
            page.progress()->close();
        };
        click(page.front);
        QCOMPARE(shownRounds, 3);
        QVERIFY(!page.progress()->isVisible());
        QCOMPARE(boxes(&page), QStringList(verified()));
    }

    void makesDialogForEachJob()
    {
        Page page;
        prepare(page, jobs[1], write("a.hex"_s, image));
        for (int job = 1; job <= 3; ++job) {
            dialogs.plan(QMessageBox::Yes);
            click(page.front);
            QCOMPARE(page.jobs(), job);
            QVERIFY(!page.progress()->isVisible());
            QCOMPARE(boxes(&page), QStringList({upgradeQuestion(), upgraded()}));
        }
    }

    void repaintsDuringJob()
    {
        /** Counts how often the page is painted. */
        struct Painted : QObject {
            int count = 0;
            bool eventFilter(QObject *, QEvent *event) override
            {
                count += event->type() == QEvent::Paint;
                return false;
            }
        } painted;
        Page page;
        prepare(page, jobs[4], "/tmp/a.hex"_s);
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        page.installEventFilter(&painted);
        for (int round = 0; round < 5; ++round)
            questions.answers.append({FIRMWARE_FLASHING, quint8(10 * round), 0});
        questions.answers.append({FIRMWARE_DONE, 100, 0});
        questions.asked = [&](int count) {
            if (count > 0)
                QVERIFY(painted.count >= count - 1);
            page.update();
        };
        click(page.front);
        QVERIFY(painted.count >= 5);
        QCOMPARE(dialogs.take().count(), 1);
    }

    /** Timers of other pages run on, and what they are told while the job runs arrives. */
    void othersWorkDuringJob()
    {
        Page page;
        prepare(page, jobs[4], "/tmp/a.hex"_s);
        for (int round = 0; round < 5; ++round)
            questions.answers.append({FIRMWARE_FLASHING, quint8(10 * round), 0});
        questions.answers.append({FIRMWARE_DONE, 100, 0});
        QTimer timer;
        int ticks = 0;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] { ++ticks; });
        timer.start(0);
        int posts = 0;
        int seenTicks = 0;
        questions.asked = [&](int count) {
            QVERIFY(count == 0 || ticks > seenTicks);
            seenTicks = ticks;
            QCOMPARE(posts, count);
            QMetaObject::invokeMethod(
                &timer, [&] { ++posts; }, Qt::QueuedConnection);
        };
        click(page.front);
        QCOMPARE(posts, 6);
        QCOMPARE(dialogs.take().count(), 1);
    }

    /** From the very first events on, as those of a double click. */
    void pressesDuringJobAreBlocked()
    {
        Page page;
        prepare(page, jobs[4], "/tmp/a.hex"_s);
        for (int round = 0; round < 3; ++round)
            questions.answers.append({FIRMWARE_INITIATING, 0, 0});
        questions.answers.append({FIRMWARE_DONE, 100, 0});
        const QPoint middle = page.front->mapTo(&page, page.front->rect().center());
        int presses = 0;
        questions.asked = [&](int) {
            QTimer::singleShot(0, &page, [&] {
                QTest::mouseClick(page.windowHandle(), Qt::LeftButton, Qt::NoModifier, middle);
                ++presses;
            });
        };
        click(page.front);
        QCOMPARE(presses, 4);
        QCOMPARE(jobCalls(), QStringList(startCall(jobs[4], "/tmp/a.hex"_s, 0)));
        QCOMPARE(boxes(&page), QStringList(verified()));
    }

    void pausesBeforeResult_data()
    {
        QTest::addColumn<int>("code");
        QTest::newRow("success") << 0;
        QTest::newRow("failure") << 5;
    }

    void pausesBeforeResult()
    {
        QFETCH(int, code);
        Page page;
        prepare(page, jobs[4], "/tmp/a.hex"_s);
        questions.answers.append({FIRMWARE_DONE, 100, code});
        bool barShows = true;
        pauses.reset();
        pauses =
            std::make_unique<SkippedPauses>([&](int) { barShows = page.progress()->isVisible(); });
        std::vector<int> duringJob;
        std::vector<int> beforeResult;
        questions.asked = [&](int) { duringJob = pauses->take(); };
        dialogs.plan([&](QDialog *dialog) {
            beforeResult = pauses->take();
            dialog->accept();
        });
        click(page.front);
        QCOMPARE(duringJob, std::vector<int>());
        QCOMPARE(beforeResult, std::vector<int>{200});
        QVERIFY(!barShows);
        QCOMPARE(dialogs.take().count(), 1);
    }

    void states_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QByteArray>("failure"); // empty: success
        const char *labels[] = {"Initiating", "Preparing communication", "Reading File",
            "Converting file", "Flashing", "Verifying", "Done", "Done - ERROR", "Unknown state"};
        for (int state = 0; state <= 8; ++state) {
            const char *failure = state == 7 ? "Complete with error" : labels[state];
            QTest::addRow("%s fails", labels[state])
                << state << 5 << latin1(labels[state]) << QByteArray(failure);
            if (state >= 6)
                QTest::addRow("%s succeeds", labels[state])
                    << state << 0 << latin1(labels[state]) << QByteArray();
        }
        QTest::newRow("far off") << 1000 << 0 << "Unknown state"_s << QByteArray();
        QTest::newRow("negative fails")
            << -1 << 5 << "Unknown state"_s << QByteArray("Unknown state");
        QTest::newRow("fails with a negative code")
            << 4 << -1 << "Flashing"_s << QByteArray("Flashing");
        QTest::newRow("fails with not supported")
            << 1 << 2 << "Preparing communication"_s << QByteArray("Preparing communication");
    }

    void states()
    {
        QFETCH(int, state);
        QFETCH(int, code);
        QFETCH(QByteArray, failure);
        Page page;
        prepare(page, jobs[4], "/tmp/a.hex"_s);
        // A negative state is below all that end a job.
        questions.answers.append({-5, 30, 0});
        questions.answers.append({state, 42, code});
        QStringList labels;
        questions.asked = [&](int) { labels << page.progress()->labelText(); };
        click(page.front);
        QCOMPARE(questions.count, 2);
        QCOMPARE(labels.value(1), "Unknown state"_s);
        QTEST(page.progress()->labelText(), "label");
        QCOMPARE(boxes(&page),
            QStringList(failure.isEmpty() ? verified() : failed(failure.constData(), 42, code)));
    }

    void failingQueryIsNotDetected_data() { addFailureRows({"Firmware_getUpgradeStatus"_s}); }

    void failingQueryIsNotDetected()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code, 3);
        Page page;
        prepare(page, jobs[1], write("a.hex"_s, image));
        dialogs.plan(QMessageBox::Yes);
        QStringList labels;
        questions.asked = [&](int) { labels << page.progress()->labelText(); };
        click(page.front);
        // The record is as it was made: at the beginning, without an error.
        QCOMPARE(labels.mid(0, 4),
            QStringList({"Fetching data..."_s, "Initiating"_s, "Initiating"_s, "Initiating"_s}));
        QCOMPARE(boxes(&page), QStringList({upgradeQuestion(), upgraded()}));
    }

    /** What a record says counts, whatever the query returned beside it. */
    void recordOfFailingQueryCounts_data() { addFailureRows({"Firmware_getUpgradeStatus"_s}); }

    void recordOfFailingQueryCounts()
    {
        QFETCH(int, code);
        Page page;
        questions.code = code;
        QStringList labels;
        questions.asked = [&](int) { labels << page.progress()->labelText(); };

        prepare(page, jobs[4], "/tmp/a.hex"_s);
        questions.answers.append({FIRMWARE_FLASHING, 40, 0});
        questions.answers.append({FIRMWARE_DONE, 100, 0});
        click(page.front);
        QCOMPARE(labels.value(1), "Flashing"_s);
        QCOMPARE(page.progress()->labelText(), "Done"_s);
        QCOMPARE(boxes(&page), QStringList(verified()));
    }

    void closedDuringJob()
    {
        QWidget window;
        auto *page = new Page;
        (new QVBoxLayout(&window))->addWidget(page);
        window.show();
        prepare(*page, jobs[1], write("a.hex"_s, image));
        const QString version = unit("Versions.front"_s);
        calls();
        dialogs.plan(QMessageBox::Yes);
        questions.asked = [&](int count) {
            if (count == 3)
                window.close();
        };
        // As in the program: the window closes, its event loop ends, and only then it goes.
        QTimer::singleShot(0, page->front, &QPushButton::click);
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(!window.isVisible());
        QVERIFY(questions.count > 4);
        QCOMPARE(questions.last.state, int(FIRMWARE_DONE));
        QVERIFY(unit("Versions.front"_s) != version);
        QVERIFY(!page->progress()->isVisible());
        dialogs.take();
    }

    void closedDuringFailingJob()
    {
        QWidget window;
        auto *page = new Page;
        (new QVBoxLayout(&window))->addWidget(page);
        window.show();
        prepare(*page, jobs[4], "/tmp/a.hex"_s);
        questions.answers.append({FIRMWARE_READING, 18, 0});
        questions.answers.append({FIRMWARE_FLASHING, 40, 0});
        questions.answers.append({FIRMWARE_FLASHING, 60, 5});
        questions.asked = [&](int count) {
            if (count == 1)
                window.close();
        };
        QTimer::singleShot(0, page->front, &QPushButton::click);
        QCOMPARE(QCoreApplication::exec(), 0);
        QCOMPARE(questions.count, 3);
        QVERIFY(!window.isVisible());
        dialogs.take();
    }

    void umlautsInPath()
    {
        QVERIFY(QDir(folder->path())
                    .mkdir(QString::fromUtf8("Pr\xC3\xBC"
                                             "fst\xC3\xA4nde")));
        const QString path = write(QString::fromUtf8("Pr\xC3\xBC"
                                                     "fst\xC3\xA4nde/gr\xC3\xB6\xC3\x9F"
                                                     "er.hex"),
            image);
        const QString version = unit("Versions.front"_s);
        Page page;
        prepare(page, jobs[1], path);
        dialogs.plan(QMessageBox::Yes);
        click(page.front);
        QCOMPARE(jobCalls(), QStringList(startCall(jobs[1], path, 0)));
        QCOMPARE(boxes(&page), QStringList({upgradeQuestion(), upgraded()}));
        QVERIFY(unit("Versions.front"_s) != version);
    }

    void pathBeyondLatin1_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("decoy"); // what a careless conversion would make of it
        QTest::newRow("Japanese") << QString::fromUtf8("\xE6\x97\xA5\xE6\x9C\xAC.hex")
                                  << "??.hex"_s;
        QTest::newRow("beyond the first plane")
            << QString::fromUtf8("\xF0\x9F\x98\x80.hex") << "??.hex"_s;
        QTest::newRow("beside umlauts")
            << QString::fromUtf8("\xC3\xBC\xE2\x82\xAC.hex") << QString::fromUtf8("\xC3\xBC?.hex");
        QTest::newRow("null character") << "a.hex"_s + QChar(QChar::Null) + "b.hex"_s
                                        << "a.hex"_s;
    }

    void pathBeyondLatin1()
    {
        QFETCH(QString, name);
        QFETCH(QString, decoy);
        if (!name.contains(QChar::Null))
            write(name, image);
        QFile careless(folder->filePath(decoy));
        if (careless.open(QIODevice::WriteOnly)) // not every system has such a name
            careless.write(image);
        careless.close();
        const QString version = unit("Versions.front"_s);
        Page page;
        prepare(page, jobs[1], folder->filePath(name));
        dialogs.plan(QMessageBox::Yes);
        click(page.front);
        QVERIFY(questions.last.errorCode != 0);
        QCOMPARE(boxes(&page),
            QStringList({upgradeQuestion(),
                failed("Reading File", questions.last.percent, questions.last.errorCode)}));
        QCOMPARE(unit("Versions.front"_s), version);
    }

    void shutsDown()
    {
        Page page;
        page.show();
        calls();
        click(page.shutdown);
        QCOMPARE(calls(), QStringList("Firmware_shutDown() = 0"_s));
        QCOMPARE(dialogs.takeTexts(), QStringList());
    }

    void shutDownFails_data() { addFailureRows({"Firmware_shutDown"_s}); }

    void shutDownFails()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code);
        Page page;
        page.show();
        calls();
        click(page.shutdown);
        // The text of the code is asked for once.
        const QStringList done = DeviceTest::calls(); // clazy:exclude=skipped-base-method
        QCOMPARE(
            done, QStringList({"Firmware_shutDown() = %1"_s.arg(code),
                      "deviceErrorText(%1) = %2"_s.arg(code).arg(latin1(deviceErrorText(code)))}));
        QCOMPARE(boxes(&page), QStringList(errorBox(code, "shutDown"_s)));
    }

    void defaultsRefused()
    {
        Page page;
        page.show();
        calls();
        dialogs.plan(QMessageBox::No);
        dialogs.plan([](QDialog *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
        click(page.defaults);
        click(page.defaults);
        QCOMPARE(calls(), QStringList());
        const QString question = box(QMessageBox::Warning, "Default Settings",
            "This operation will reset all settings to the factory default state.\n\n"
            "This includes settings that are only available from the API and not from "
            "Vornsettings\n\nDo you want to continue?"_s,
            yesNo, Qt::AutoText);
        QCOMPARE(boxes(&page), QStringList({question, question}));
    }

    void defaultsReset()
    {
        applyFactoryDefaults();
        const QStringList expected = calls();
        useProfile("full"_s);
        Page page;
        page.show();
        calls();
        dialogs.plan(QMessageBox::Yes);
        click(page.defaults);
        QCOMPARE(calls(), expected);
        QCOMPARE(boxes(&page).value(1),
            box(QMessageBox::Warning, "Default Settings",
                "Operation complete. Restart the system for all settings to take effect."_s, "OK",
                Qt::AutoText));
    }

    void defaultsFail_data() { addFailureRows({"Buzzer_setFrequency"_s}); }

    /** The page looks at no result: what fails is told as the reset tells it, and then comes the
     * end. */
    void defaultsFail()
    {
        QFETCH(QString, operation);
        QFETCH(int, code);
        fault(operation, code);
        applyFactoryDefaults();
        Page page;
        QStringList told = boxes(nullptr);
        QCOMPARE(told.isEmpty(), code == 2);
        told.replaceInStrings(QRegularExpression("^"_s), "elsewhere: "_s);
        page.show();
        dialogs.plan(QMessageBox::Yes);
        click(page.defaults);
        const QStringList shown = boxes(&page);
        QCOMPARE(shown.mid(1, told.count()), told);
        QCOMPARE(shown.mid(1 + told.count()),
            QStringList(box(QMessageBox::Warning, "Default Settings",
                "Operation complete. Restart the system for all settings to take effect."_s, "OK",
                Qt::AutoText)));
    }

private:
    QString write(const QString &name, const char *content)
    {
        QFile file(folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) < 0)
            qFatal("can't write %s", qPrintable(name));
        return file.fileName();
    }

    static void addJobs()
    {
        QTest::addColumn<int>("job");
        int number = 0;
        for (const Job &job : jobs)
            QTest::newRow(job.name) << number++;
    }

    static const Job &currentJob()
    {
        return jobs[*static_cast<int *>(QTest::qData("job", QMetaType::Int))];
    }
    /** Fills the page in for the job. */
    void prepare(Page &page, const Job &job, const QString &path)
    {
        page.show();
        page.file->setText(path);
        page.verify->setChecked(job.verify);
        calls();
    }
    /** calls() without what the library tells of a job. */
    QStringList jobCalls()
    {
        QStringList lines;
        for (const QString &line : calls())
            if (!line.startsWith("Firmware_getUpgradeStatus(true) = 0 "_s))
                lines << line;
        return lines;
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<SkippedPauses> pauses;
};

VORN_TEST_MAIN(AdvancedPageTest)
#include "tst_advancedpage.moc"
