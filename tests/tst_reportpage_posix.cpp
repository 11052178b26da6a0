#include "report/systemReport.h"
#include "tests/support/PageTest.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <memory>

namespace {

using namespace support;

constexpr int patience = 120'000; // milliseconds

/** A page around others, at these widths, that says how far each is wider than its frame. */
QByteArray frames()
{
    return R"(<!DOCTYPE html><html><body>
        <iframe src="page.html" width="340" height="600"></iframe>
        <iframe src="page.html" width="1200" height="600"></iframe>
        <p id="result"></p><script>
        addEventListener('load', function () {
            var text = '';
            for (var frame of document.querySelectorAll('iframe')) {
                var root = frame.contentDocument.documentElement;
                text += (root.scrollWidth - root.clientWidth) + ' ';
                var unnamed = Array.from(root.querySelectorAll('svg, table')).filter(
                    e => !(e.querySelector('title, caption, th')));
                text += unnamed.length + ' ' + root.querySelectorAll('script, img').length + ' ';
            }
            document.getElementById('result').textContent = 'measured: ' + text;
        });
        </script></body></html>)";
}

} // namespace

/** The pages of vornreport: what stands in them, and what a browser makes of them. */
class ReportPageTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        DeviceTest::init();
        folder = std::make_unique<QTemporaryDir>();
        setUnit("Diagnostics.ssTemp"_s, "41"_s);
        report = generateSystemReport().toLatin1();
    }

    void findingsComeFirst()
    {
        useProfile("broken"_s);
        const QString html = page({write("a.txt"_s, generateSystemReport().toLatin1())});
        const auto fail = html.indexOf("<li class=\"FAIL\">"_s);
        const auto warn = html.indexOf("<li class=\"WARN\">"_s);
        QVERIFY(fail > 0 && warn > fail && html.indexOf("<table"_s) > warn);
        QVERIFY(html.lastIndexOf("<li class=\"FAIL\">"_s) < warn);
        QVERIFY(html.contains("<strong>Voltage 12V: 9.87 V</strong>, should be at least 10.8 V"_s));
    }

    void sideBySide()
    {
        const QString html = page(kinds("two"_s));
        QVERIFY(html.contains(
            "<tr class=\"changed\"><th scope=\"row\">SS temp</th><td>41 \302\260C</td><td>66 \302\260C</td><td>+25 \302\260C</td></tr>"_s));
        QCOMPARE(html.count("class=\"changed\""_s), 1);
        QVERIFY(html.contains("1 line changed"_s));
        // Whichever comes first on the command line, the older report is on the left.
        QCOMPARE(page({"b.txt"_s, "a.txt"_s}), html);
    }

    void trends()
    {
        const QString html = page(kinds("trend"_s));
        QCOMPARE(html.count("<svg "_s), 1);
        QVERIFY(html.contains(">SS temp</title>"_s));
        QVERIFY(html.contains(
            "2026-03-01: 41 \302\260C; 2026-04-01: 66 \302\260C; 2026-05-01: 87 \302\260C; </desc>"_s));
        for (const char *label : {">41</text>", ">66</text>", ">87</text>", ">\302\260C</text>",
                 ">2026-03-01</text>", ">2026-05-01</text>"})
            QVERIFY2(html.contains(QString::fromUtf8(label)), label);
        QVERIFY(html.contains("c.txt, 2026-05-01 08:00:00"_s));
    }

    void manyUnits()
    {
        const QString html = page(kinds("fleet"_s));
        QVERIFY(html.indexOf("<h2 id=\"units\">"_s) < html.indexOf("<h2 id=\"unit-1\">"_s));
        for (const char *unit : {"unit-1", "unit-2"}) {
            QCOMPARE(html.count("href=\"#%1\""_s.arg(QLatin1String(unit))), 1);
            QCOMPARE(html.count("id=\"%1\""_s.arg(QLatin1String(unit))), 1);
        }
        QVERIFY(page({"a.txt"_s, "none.txt"_s, "d.txt"_s}, 2).contains("side by side"_s));
    }

    void textStaysText()
    {
        const QString html = page(kinds("fleet"_s));
        QVERIFY(!html.contains("<script"_s) && !html.contains("<img"_s));
        QVERIFY(html.contains(QStringLiteral(
            "&lt;script&gt;alert(1)&lt;/script&gt;&amp;&quot;&#39;\uFFFD\uFFFD\u00E4")));
        QVERIFY(html.contains("&lt;/pre&gt;&lt;img src="_s));
        QVERIFY(!html.contains(QRegularExpression("(src|href)=\"[^#]"_s)));
    }

    void browser_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind : {"one", "two", "trend", "fleet"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    /** Nothing in the console, nothing wider than a phone or a desk's screen, nothing without a
     * name, and it prints. */
    void browser()
    {
        if (QStandardPaths::findExecutable("chromium"_s).isEmpty())
            QSKIP("no chromium here");
        QFETCH(QString, kind);
        page(kinds(kind));
        write("frames.html"_s, frames());
        const QByteArray dom =
            chromium({"--dump-dom"_s, "--virtual-time-budget=5000"_s}, "frames.html"_s);
        QVERIFY2(dom.contains("measured: 0 0 0 0 0 0 "), dom.right(300).constData());
        chromium({"--print-to-pdf="_s + folder->filePath("page.pdf"_s)}, "page.html"_s);
        QFile pdf(folder->filePath("page.pdf"_s));
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        QVERIFY(pdf.read(5) == "%PDF-" && pdf.size() > 10'000);
    }

private:
    QString page(const QStringList &files, int expected = 0)
    {
        QProcess tool;
        tool.setWorkingDirectory(folder->path());
        tool.start(VORN_BIN_DIR "/vornreport"_s, QStringList{"html"_s} + files);
        if (!tool.waitForFinished(patience) || tool.exitCode() != expected)
            qFatal("vornreport: %d %s", tool.exitCode(), tool.readAllStandardError().constData());
        const QByteArray html = tool.readAllStandardOutput();
        write("page.html"_s, html);
        return QString::fromUtf8(html);
    }

    QByteArray chromium(const QStringList &arguments, const QString &file) const
    {
        const QTemporaryDir home;
        QProcess browser;
        browser.setWorkingDirectory(folder->path());
        browser.setProcessChannelMode(QProcess::SeparateChannels);
        browser.start("chromium"_s,
            QStringList{"--headless"_s, "--no-sandbox"_s, "--disable-gpu"_s, "--disable-quic"_s,
                "--no-first-run"_s, "--disable-background-networking"_s,
                "--disable-component-update"_s, "--disable-sync"_s, "--enable-logging=stderr"_s,
                "--allow-file-access-from-files"_s, "--user-data-dir="_s + home.path()} +
                arguments + QStringList{"file://"_s + folder->filePath(file)});
        if (!browser.waitForFinished(patience))
            qFatal("the browser doesn't end");
        for (const QByteArray &line : browser.readAllStandardError().split('\n')) {
            if (line.contains(":CONSOLE"))
                qWarning("%s", line.constData());
        }
        return browser.readAllStandardOutput();
    }

    QString write(const QString &name, QByteArray text, const QByteArray &date = {}) const
    {
        if (!date.isEmpty())
            text.replace(text.split('\n').at(1), "System report generated on: " + date);
        QFile file(folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("%s", qPrintable(file.errorString()));
        return name;
    }

    /** Files of the reports that make a page of that kind. */
    QStringList kinds(const QString &kind)
    {
        useProfile("full"_s);
        QStringList files{write("a.txt"_s, report, "Sun Mar 1 08:00:00 2026")};
        if (kind == "one"_s)
            return files;
        QByteArray later = report;
        later.replace("SS temp: 41", "SS temp: 66");
        files << write("b.txt"_s, later, "Wed Apr 1 08:00:00 2026");
        if (kind == "two"_s)
            return files;
        later.replace("SS temp: 66", "SS temp: 87");
        files << write("c.txt"_s, later, "Fri May 1 08:00:00 2026");
        if (kind == "trend"_s)
            return files;
        useProfile("broken"_s);
        QByteArray other = generateSystemReport().toLatin1();
        other.replace("Unit serial number: VU-100-004711",
            "Unit serial number: <script>alert(1)</script>&\"'\1\220\344");
        other.replace("\n------------------  End",
            "\n\nFile:VornAuxService.log:\n</pre><img src=\"x\" onerror=\"alert(1)\">" +
                QByteArray(300, 'x') + "\n\n------------------  End");
        return files << write("d.txt"_s, other);
    }

    std::unique_ptr<QTemporaryDir> folder;
    QByteArray report;
};

VORN_TEST_MAIN(ReportPageTest)
#include "tst_reportpage_posix.moc"
