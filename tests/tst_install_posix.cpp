#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

/** Installs what has been built, or one component of it; its files below the prefix. */
QStringList installed(const QTemporaryDir &prefix, const QStringList &component)
{
    QProcess cmake;
    cmake.start(QStringLiteral("cmake"),
        QStringList{QStringLiteral("--install"), QStringLiteral(VORN_BIN_DIR "/.."),
            QStringLiteral("--prefix"), prefix.path()} +
            component);
    if (!cmake.waitForFinished(60'000) || cmake.exitCode() != 0)
        return {QString::fromUtf8(cmake.readAllStandardError())};
    QStringList files;
    QDirIterator all(prefix.path(), QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext())
        files << QDir(prefix.path()).relativeFilePath(all.next());
    files.sort();
    return files;
}

} // namespace

/** What "cmake --install" makes of a finished build. */
class InstallPosixTest : public QObject
{
    Q_OBJECT

private slots:
    void files_data();
    void files();
    void treeRunsWhereItLies();
};

void InstallPosixTest::files_data()
{
    QTest::addColumn<QString>("component");
    QTest::addColumn<QStringList>("expected");
    const QStringList program{QStringLiteral("bin/VornSettings")};
    const QStringList unit{QStringLiteral("bin/TouchCalibrator.exe"),
        QStringLiteral("bin/vornunit"), QStringLiteral("lib/libCgos.so"),
        QStringLiteral("lib/libVornAux2.so"), QStringLiteral("lib/libjida.so")};
    QStringList all = program + unit;
    all.sort();
    // On a real unit a stand-in would take the place of the real part.
    QTest::newRow("for a unit") << QStringLiteral("program") << program;
    QTest::newRow("stand-ins") << QStringLiteral("virtualunit") << unit;
    QTest::newRow("all") << QString() << all;
}

void InstallPosixTest::files()
{
    QFETCH(QString, component);
    const QTemporaryDir prefix;
    const QStringList one{QStringLiteral("--component"), component};
    QTEST(installed(prefix, component.isEmpty() ? QStringList() : one), "expected");
}

void InstallPosixTest::treeRunsWhereItLies()
{
    const QTemporaryDir prefix;
    QCOMPARE(installed(prefix, {}).size(), 6);
    QProcess program;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VORN_UNIT"), QStringLiteral(":memory:"));
    program.setProcessEnvironment(environment);
    const QString report = prefix.filePath(QStringLiteral("report.txt"));
    program.start(prefix.filePath(QStringLiteral("bin/VornSettings")),
        {QStringLiteral("--systemreport"), report});
    QVERIFY(program.waitForFinished(60'000));
    QCOMPARE(program.exitCode(), 0);
    QFile file(report);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("\nVornaux API: v"));
}

QTEST_GUILESS_MAIN(InstallPosixTest)
#include "tst_install_posix.moc"
