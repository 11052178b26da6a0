#include "telematics/gpsParser.h"
#include "tests/support/literals.h"

#include <QDir>
#include <QtTest>

using namespace support;

namespace {

QByteArray quoted(const char *name, const std::optional<std::string> &text)
{
    return text ? QByteArray(name) + " \"" + text->c_str() + "\"\n" : QByteArray();
}

/** The texts as lines, in the order in which they are shown. */
QByteArray lines(const GpsTexts &texts)
{
    return quoted("newTime", texts.time) + quoted("newPos", texts.position) +
           quoted("newSpeed", texts.speed) + quoted("newAlt", texts.altitude) +
           quoted("newSat", texts.satellites) + quoted("newAcc", texts.accuracy);
}

std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

QByteArray read(const QByteArray &line, GpsFields &fields)
{
    return lines(readGpsLine(view(line), fields));
}

/** All lines of a chunk, each on a line of its own. */
QByteArray readChunk(const QByteArray &chunk, GpsFields &fields)
{
    QByteArray shown;
    for (GpsLines rest(view(chunk)); !rest.atEnd() && !rest.stuck();)
        shown += lines(readGpsLine(rest.next(), fields));
    return shown;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no file %s", qPrintable(path));
    return file.readAll();
}

} // namespace

class GpsParserTest : public QObject
{
    Q_OBJECT

private slots:
    void linesOfAChunk_data()
    {
        QTest::addColumn<QByteArray>("chunk");
        QTest::addColumn<QList<QByteArray>>("expected");
        using List = QList<QByteArray>;
        QTest::newRow("one, cut") << QByteArray("one") << List{"one"};
        QTest::newRow("ended") << QByteArray("one\n") << List{"one", ""};
        QTest::newRow("carriage returns stay")
            << QByteArray("one\r\ntwo\rthree") << List{"one\r", "two\rthree"};
        QTest::newRow("empty lines") << QByteArray("\n\na") << List{"", "", "a"};
        QTest::newRow("nothing") << QByteArray() << List{""};
        const QByteArray most(511, 'm');
        QTest::newRow("511, cut") << most << List{most};
        QTest::newRow("511, ended") << most + '\n' << List{most, ""};
        QTest::newRow("garbage") << QByteArray("\xff\x00\x80\n\x01", 5)
                                 << List{QByteArray("\xff\x00\x80", 3), "\x01"};
    }
    void linesOfAChunk()
    {
        QFETCH(QByteArray, chunk);
        QFETCH(QList<QByteArray>, expected);
        GpsLines rest(view(chunk));
        QList<QByteArray> found;
        while (!rest.atEnd()) {
            const auto line = rest.next();
            found << QByteArray(line.data(), int(line.size()));
            QVERIFY(!rest.stuck());
        }
        QCOMPARE(found, expected);
    }

    void lineTooLong()
    {
        const QByteArray chunk = "first\n" + QByteArray(512, 'm') + "\nnever seen\n";
        GpsLines rest(view(chunk));
        QCOMPARE(int(rest.next().size()), 5);
        QVERIFY(!rest.stuck());
        QCOMPARE(int(rest.next().size()), 511);
        for (int pass = 0; pass < 3; ++pass) {
            QVERIFY(rest.stuck());
            QVERIFY(!rest.atEnd());
            QVERIFY(rest.next().empty());
        }
    }

    void chunkWithoutALineFeed()
    {
        const QByteArray chunk(512, 'm');
        GpsLines rest(view(chunk));
        QCOMPARE(int(rest.next().size()), 511);
        QVERIFY(rest.stuck());
        QVERIFY(!rest.atEnd());
    }

    void splitting_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QList<QByteArray>>("expected"); // of a table of "-"
        using List = QList<QByteArray>;
        QTest::newRow("what follows the last comma is left out")
            << QByteArray("$N,a,b,c*00\r") << List{"a", "b"};
        QTest::newRow("empty fields") << QByteArray("$N,,,") << List{"", ""};
        QTest::newRow("one comma") << QByteArray("$N,a") << List{};
        QTest::newRow("no comma") << QByteArray("$N") << List{};
        QTest::newRow("empty line") << QByteArray() << List{};
        QTest::newRow("starts with a comma") << QByteArray(",a,$N,b,") << List{"a", "$N", "b"};
        List most;
        for (int field = 0; field < 19; ++field)
            most << "f";
        QTest::newRow("19 fields") << "$N," + QByteArray("f,").repeated(19) << most;
        QTest::newRow("more than 19") << "$N," + QByteArray("f,").repeated(40) << most;
    }
    void splitting()
    {
        QFETCH(QByteArray, line);
        QFETCH(QList<QByteArray>, expected);
        GpsFields fields;
        fields.fill("-");
        splitGpsLine(view(line), fields);
        for (int field = 0; field < 20; ++field)
            QCOMPARE(QByteArray(fields[std::size_t(field)].c_str()), expected.value(field, "-"));
    }

    void sentences_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("shown");
        // A name, the sentence, and what it shows; "\\r" is a carriage return.
        QByteArray all =
            contents(QStringLiteral(VORN_SOURCE_DIR "/tests/expected/gpssentences.txt"));
        QList<QByteArray> rows = all.replace("\n  ", "\t").replace("\\r", "\r").split('\n');
        QVERIFY(rows.takeLast().isEmpty());
        for (const QByteArray &row : qAsConst(rows)) {
            const QList<QByteArray> cells = row.split('\t');
            QByteArray shown;
            for (const QByteArray &line : cells.mid(2))
                shown += line + '\n';
            QTest::newRow(cells[0].constData()) << cells.value(1) << shown;
        }
    }
    void sentences()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, shown);
        GpsFields fields;
        QCOMPARE(read(line, fields), shown);
    }

    void cutSentencesShowOlderFields()
    {
        GpsFields fields;
        QCOMPARE(read("$GPGGA,101500.00,5741.9012,N,01156.3301,E,1,09,0.9,31.7,M,36.1,M,,", fields),
            QByteArray("newAlt \"31.7 meters\"\nnewSat \"09\"\n"));
        // Status and time are new, the rest is what the other sentence has in these places.
        QCOMPARE(read("$GPRMC,101501.00,A,", fields),
            QByteArray("newSpeed \"09 knots, Heading: 0.9 degrees\"\n"));
        QCOMPARE(read("$GPRMC,101502.00,A,5741.9,N,01156.3,E,3.4,301.7,240226,", fields),
            QByteArray("newTime \"2026-02-24 - 10:15:02\"\nnewPos \"5741.9N 01156.3E \"\n"
                       "newSpeed \"3.4 knots, Heading: 301.7 degrees\"\n"));
        QCOMPARE(read("$GPRMC,101503.00,V", fields),
            QByteArray("newTime \"2026-02-24 - 10:15:03\"\nnewPos \"5741.9N 01156.3E \"\n"
                       "newSpeed \"3.4 knots, Heading: 301.7 degrees\"\n"));
        QCOMPARE(read("$GPGGA,101504.00,", fields), QByteArray());
    }

    void everyShortTimeIsSurvived()
    {
        const QByteArray full = "123519.000";
        for (int length = 0; length <= full.size(); ++length) {
            GpsFields fields;
            const auto shown = read("$GPRMC," + full.left(length) + ",A,,,,,1,2,,", fields);
            QCOMPARE(shown.isEmpty(), length < 4);
            // The fields are taken all the same.
            QCOMPARE(QByteArray(fields[6].c_str()), QByteArray("1"));
        }
    }

    void cutAnywhere()
    {
        const QByteArray line =
            "$GPRMC,123519.000,A,4807.038,N,01131.000,E,022.4,084.4,230324,,,A*00"
            "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47"
            "$PFST,FOM,12.5*53\r";
        GpsFields fields;
        for (int begin = 0; begin < line.size(); ++begin) {
            for (int end = begin; end <= line.size(); ++end)
                read(line.mid(begin, end - begin), fields);
        }
        QVERIFY(fields[19].empty());
    }

    void recordings_data()
    {
        QTest::addColumn<QString>("path");
        const QDir folder(QStringLiteral(VORN_SOURCE_DIR "/tests/nmea"));
        const auto files = folder.entryList({"*.nmea"_s});
        QVERIFY(files.size() >= 3);
        for (const QString &file : files)
            QTest::newRow(qPrintable(file)) << folder.filePath(file);
    }
    void recordings()
    {
        QFETCH(QString, path);
        const QByteArray recorded = contents(path);
        GpsFields fields;
        QByteArray shown;
        for (int start = 0; start < recorded.size(); start += 512)
            shown += readChunk(recorded.mid(start, 512), fields);
        const QByteArray expected =
            contents(path.left(path.lastIndexOf(QLatin1Char('.'))) + ".expected"_s);
        QCOMPARE(QString::fromUtf8(shown).split(QLatin1Char('\n')),
            QString::fromUtf8(expected).split(QLatin1Char('\n')));
    }
};

QTEST_APPLESS_MAIN(GpsParserTest)
#include "tst_gpsparser.moc"
