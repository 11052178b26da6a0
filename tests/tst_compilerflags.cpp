#include "tests/support/literals.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QtTest>

using namespace support;

/** What the product is compiled with, where its results would differ from machine to machine. */
class CompilerFlagsTest : public QObject
{
    Q_OBJECT

private slots:
    /** Whether a machine can fuse multiply and add is no matter then: -15 degrees Celsius,
     * times 1.8 plus 32, are 5 degrees Fahrenheit, and one rounding less would make 4 of them. */
    void floatingPoint_isTheSameOnEveryMachine()
    {
        QFile file(VORN_BIN_DIR "/../compile_commands.json"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonArray commands = QJsonDocument::fromJson(file.readAll()).array();
        static const QRegularExpression loose(
            " -(Ofast|ffast-math|funsafe-math-optimizations|ffp-contract=(?!off))"_s);
        int ours = 0;
        for (const QJsonValue &entry : commands) {
            const QString source = entry["file"_s].toString();
            const QString command = entry["command"_s].toString();
            // A compiler of resources stands among them for Windows.
            if (!source.endsWith(".cpp"_s) && !source.endsWith(".c"_s))
                continue;
            ++ours;
            QVERIFY2(command.contains(" -ffp-contract=off "_s), qPrintable(source));
            QVERIFY2(!command.contains(loose), qPrintable(command));
        }
        QVERIFY(ours > 100);
    }
};

QTEST_GUILESS_MAIN(CompilerFlagsTest)
#include "tst_compilerflags.moc"
