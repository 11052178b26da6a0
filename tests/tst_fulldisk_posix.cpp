#include "report/tabAboutDlg.h"
#include "tests/support/PageTest.h"
#include "tests/support/ProgramTree.h"

#include <QPlainTextEdit>
#include <QProcess>

using namespace support;

/** Nothing of the product ends badly where nothing more can be written. */
class FullDiskTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void report()
    {
        ProgramTree tree(QStringLiteral(VORN_TINYUNIT_DIR "/libVornAux2.so"));
        tree.write("log/HardwareErrorLog.log"_s, QByteArray(10'000'000, 'x'));
        tree.environment.insert("TINYUNIT_CODE"_s, "2"_s);
        const Run run = tree.run({"--systemreport"_s, "/dev/full"_s});
        QVERIFY(run.endedNormally);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.errors, QByteArray("failed to LoadLibrary(\"jida.dll\")\n"));
    }

    void tool_data()
    {
        QTest::addColumn<QString>("command");
        for (const char *command : {"list", "profile", "profiles", "get Buzzer.volume"})
            QTest::newRow(command) << QString::fromLatin1(command);
    }

    void tool()
    {
        QFETCH(QString, command);
        QProcess tool;
        tool.setStandardOutputFile("/dev/full"_s);
        const QStringList unit{"--unit"_s, ":memory:"_s};
        tool.start(
            QStringLiteral(VORN_BIN_DIR "/vornunit"), unit + command.split(QLatin1Char(' ')));
        QVERIFY(tool.waitForFinished(30'000));
        QCOMPARE(tool.exitCode(), 1);
        QVERIFY(tool.readAllStandardError().contains("written"));
    }

    void aboutPage()
    {
        tabAboutDlg page;
        page.show();
        const auto *info = child<QPlainTextEdit>(&page, "textEditInfo");
        const QString shown = info->toPlainText();
        dialogs.take();
        dialogs.planFile("/dev/full"_s);
        dialogs.plan(QMessageBox::Yes); // the file dialog asks whether to replace it
        click(&page, "pushButtonSaveAs");
        QCOMPARE(dialogs.take().count(), 2);
        QCOMPARE(info->toPlainText(), shown);
    }
};

VORN_TEST_MAIN(FullDiskTest)
#include "tst_fulldisk_posix.moc"
