#include "tests/fuzz/checks.h"

#include <QApplication>
#include <QDir>
#include <QtTest>

/** What the fuzzers saved, tried again: each file is what once led to a new place of the code, or
 * to a defect. A check that fails ends the program. */
class TestCorpus : public QObject
{
    Q_OBJECT

private slots:
    void replay_data();
    void replay();
};

using Check = void (*)(const std::uint8_t *, std::size_t);
Q_DECLARE_METATYPE(Check)

void TestCorpus::replay_data()
{
    QTest::addColumn<Check>("check");
    QTest::addColumn<QString>("folder");
    QTest::newRow("gps") << Check(checkGpsBytes) << QStringLiteral("gps");
    QTest::newRow("report") << Check(checkReport) << QStringLiteral("report");
    QTest::newRow("reply") << Check(checkModemReply) << QStringLiteral("reply");
}

void TestCorpus::replay()
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
        check(reinterpret_cast<const std::uint8_t *>(bytes.constData()), std::size_t(bytes.size()));
    }
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    TestCorpus test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_corpus.moc"
