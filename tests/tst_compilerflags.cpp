#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QtTest>

/** What the product is compiled with, where its results would differ from machine to machine. */
class CompilerFlagsTest : public QObject
{
    Q_OBJECT

private slots:
    void floatingPoint_isTheSameOnEveryMachine();
};

/** Whether a machine can fuse multiply and add is no matter then: -15 degrees Celsius, times 1.8
 * plus 32, are 5 degrees Fahrenheit, and one rounding less would make 4 of them. */
void CompilerFlagsTest::floatingPoint_isTheSameOnEveryMachine()
{
    QFile file(QStringLiteral(VORN_BIN_DIR "/../compile_commands.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonArray commands = QJsonDocument::fromJson(file.readAll()).array();
    static const QRegularExpression loose(
        QStringLiteral(" -(Ofast|ffast-math|funsafe-math-optimizations|ffp-contract=(?!off))"));
    int ours = 0;
    for (const QJsonValue &entry : commands) {
        const QString source = entry[QLatin1String("file")].toString();
        const QString command = entry[QLatin1String("command")].toString();
        // A compiler of resources stands among them for Windows.
        if (!source.endsWith(QLatin1String(".cpp")) && !source.endsWith(QLatin1String(".c")))
            continue;
        ++ours;
        QVERIFY2(command.contains(QLatin1String(" -ffp-contract=off ")), qPrintable(source));
        QVERIFY2(!command.contains(loose), qPrintable(command));
    }
    QVERIFY(ours > 100);
}

QTEST_GUILESS_MAIN(CompilerFlagsTest)
#include "tst_compilerflags.moc"
