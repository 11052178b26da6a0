#include "tests/fuzz/checks.h"
#include "tests/support/literals.h"

#include <QApplication>
#include <QDir>
#include <QtTest>

using namespace support;

using Check = void (*)(const std::uint8_t *, std::size_t);
Q_DECLARE_METATYPE(Check)

/** What the fuzzers saved, tried again: each file is what once led to a new place of the code, or
 * to a defect. A check that fails ends the program. */
class CorpusTest : public QObject
{
    Q_OBJECT

private slots:
    void replay_data()
    {
        QTest::addColumn<Check>("check");
        QTest::addColumn<QString>("folder");
        QTest::newRow("gps") << Check(checkGpsBytes) << "gps"_s;
        QTest::newRow("report") << Check(checkReport) << "report"_s;
        QTest::newRow("reply") << Check(checkModemReply) << "reply"_s;
#ifdef VORN_LINUXUNIT
        QTest::newRow("unitfile") << Check(checkUnitFile) << "unitfile"_s;
        QTest::newRow("kernelfiles") << Check(checkKernelFiles) << "kernelfiles"_s;
#endif
        QTest::newRow("trace") << Check(checkTrace) << "trace"_s;
    }

    void replay()
    {
        QFETCH(Check, check);
        QFETCH(QString, folder);
        const QDir corpus(QStringLiteral(VORN_SOURCE_DIR "/tests/corpus/") + folder);
        const QStringList names = corpus.entryList(QDir::Files);
        QVERIFY(names.size() >= 10);
        for (const QString &name : names) {
            QFile file(corpus.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray bytes = file.readAll();
            check(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                std::size_t(bytes.size()));
        }
    }
};

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    CorpusTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_corpus.moc"
