#include "report/tabAboutDlg.h"
#include "tests/support/PageTest.h"
#include "tests/support/ProgramTree.h"

#include <QPlainTextEdit>
#include <QProcess>

/** Nothing of the product ends badly where nothing more can be written. */
class FullDiskTest : public DeviceTest
{
    Q_OBJECT

private slots:
    void report();
    void tool_data();
    void tool();
    void aboutPage();
};

void FullDiskTest::report()
{
    support::ProgramTree tree(QStringLiteral(VORN_TINYUNIT_DIR "/libVornAux2.so"));
    tree.write(QStringLiteral("log/HardwareErrorLog.log"), QByteArray(10'000'000, 'x'));
    tree.environment.insert(QStringLiteral("TINYUNIT_CODE"), QStringLiteral("2"));
    const support::Run run =
        tree.run({QStringLiteral("--systemreport"), QStringLiteral("/dev/full")});
    QVERIFY(run.endedNormally);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.errors, QByteArray("failed to LoadLibrary(\"jida.dll\")\n"));
}

void FullDiskTest::tool_data()
{
    QTest::addColumn<QString>("command");
    for (const char *command : {"list", "profile", "profiles", "get Buzzer.volume"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void FullDiskTest::tool()
{
    QFETCH(QString, command);
    QProcess tool;
    tool.setStandardOutputFile(QStringLiteral("/dev/full"));
    const QStringList unit{QStringLiteral("--unit"), QStringLiteral(":memory:")};
    tool.start(QStringLiteral(VORN_BIN_DIR "/vornunit"), unit + command.split(QLatin1Char(' ')));
    QVERIFY(tool.waitForFinished(30'000));
    QCOMPARE(tool.exitCode(), 1);
    QVERIFY(tool.readAllStandardError().contains("written"));
}

void FullDiskTest::aboutPage()
{
    tabAboutDlg page;
    page.show();
    const auto *info = support::child<QPlainTextEdit>(&page, "textEditInfo");
    const QString shown = info->toPlainText();
    dialogs.take();
    dialogs.planFile(QStringLiteral("/dev/full"));
    dialogs.plan(QMessageBox::Yes); // the file dialog asks whether to replace it
    support::click(&page, "pushButtonSaveAs");
    QCOMPARE(dialogs.take().count(), 2);
    QCOMPARE(info->toPlainText(), shown);
}

VORN_TEST_MAIN(FullDiskTest)
#include "tst_fulldisk_posix.moc"
