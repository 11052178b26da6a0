#include "tests/support/DeviceTest.h"

#include <QPixmap>

using namespace support;

/** The pictures that forms and style sheet name are there, and are those of the SVG sources. */
class PicturesTest : public QObject
{
    Q_OBJECT

private slots:
    void everyPictureLoads_data()
    {
        QTest::addColumn<QSize>("size");
        const char *icons[] = {"hwinfo", "thermometer", "background", "backgroundGrey", "energy",
            "heater", "heaterGrey", "kblackbox", "ksame", "arts", "input_device",
            "package_settings", "tablet", "tabletGrey", "Full", "FullGrey", "exit", "chip", "Globe",
            "GlobeGrey"};
        for (const char *icon : icons) {
            QTest::newRow(qPrintable(QString::fromLatin1(icon) + ".png"_s)) << QSize(60, 60);
            QTest::newRow(qPrintable(QString::fromLatin1(icon) + "@2x.png"_s)) << QSize(120, 120);
        }
        for (const char *mark : {"buttonUp.png", "buttonDown.png", "ok.png"})
            QTest::newRow(mark) << QSize(25, 25);
        QTest::newRow("logo.png") << QSize(286, 71);
        QTest::newRow("vorn.png") << QSize(256, 256);
        QTest::newRow("Min.ico") << QSize(48, 48);
        QTest::newRow("Full.ico") << QSize(48, 48);
    }

    void everyPictureLoads()
    {
        QFETCH(QSize, size);
        const QImage picture(
            ":/VornSettings/Resources/"_s + QLatin1String(QTest::currentDataTag()));
        QVERIFY(!picture.isNull());
        QCOMPARE(picture.size(), size);
    }
};

VORN_TEST_MAIN(PicturesTest)
#include "tst_pictures.moc"
