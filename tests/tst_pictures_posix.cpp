#include "tests/support/literals.h"

#include <QProcess>
#include <QtTest>

using namespace support;

/** The pictures against the drawings that they are rendered from. */
class PicturesPosixTest : public QObject
{
    Q_OBJECT

private slots:
    void areUpToDate()
    {
        QProcess check;
        check.start(QStringLiteral(VORN_SOURCE_DIR "/resources/render.sh"), {"--check"_s});
        QVERIFY(check.waitForFinished(300'000));
        QVERIFY2(check.exitCode() == 0, check.readAllStandardError().constData());
    }
};

QTEST_GUILESS_MAIN(PicturesPosixTest)
#include "tst_pictures_posix.moc"
