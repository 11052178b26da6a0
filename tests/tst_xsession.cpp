#include "tests/support/x11/XServer.h"

#include <QtTest>

#include <memory>

namespace {

constexpr int patience = 60'000; // milliseconds
const QString program = QStringLiteral(VORN_BIN_DIR "/VornSettings");

// Middles of buttons, in the window.
constexpr QPoint aboutButton(69, 205);
constexpr QPoint menuButton(395, 407);
constexpr QPoint exitButton(525, 407);
constexpr QPoint advancedButton(405, 304);
constexpr QPoint firmwarePath(270, 116);
constexpr QPoint programFront(384, 168);

/// The real program on a server and a unit of its own.
class Session
{
public:
    explicit Session(const support::XServer &xServer)
        : server(xServer)
    {
        environment.insert(QStringLiteral("DISPLAY"), server.display());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("VORN_UNIT"), folder.filePath(QStringLiteral("unit")));
        environment.insert(QStringLiteral("VORN_JOURNAL"), journalFile());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.path());
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    }

    ~Session()
    {
        if (process.state() == QProcess::NotRunning)
            return;
        process.kill();
        process.waitForFinished();
    }

    /// Starts and waits for the window.
    void start(const QStringList &arguments = {})
    {
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        QVERIFY(process.waitForStarted());
        window = windowNamed("Settings");
        QVERIFY(window != 0);
        // Nobody manages windows here, so nobody gives them the keys.
        QTRY_VERIFY_WITH_TIMEOUT(server.focus(window), patience);
        // The strip stands once the title's amber is there.
        QTRY_COMPARE_WITH_TIMEOUT(titleStrip().pixelColor(100, 8).green() > 200, true, patience);
    }

    void click(QPoint place) const
    {
        server.tool({QStringLiteral("mousemove"), QStringLiteral("--window"),
            QString::number(window), QString::number(place.x()), QString::number(place.y()),
            QStringLiteral("click"), QStringLiteral("1")});
    }

    /// The program's window of that title, once it shows.
    std::uint32_t windowNamed(const char *title) const
    {
        const QString found = server.tool({QStringLiteral("search"), QStringLiteral("--sync"),
            QStringLiteral("--onlyvisible"), QStringLiteral("--all"), QStringLiteral("--pid"),
            QString::number(process.processId()), QStringLiteral("--name"),
            QLatin1Char('^') + QLatin1String(title) + QLatin1Char('$')});
        return found.toUInt();
    }

    /// Changes the unit before the program starts.
    void setUnit(const QString &name, const QString &value) const
    {
        QProcess tool;
        tool.setProcessEnvironment(environment);
        tool.start(QStringLiteral(VORN_BIN_DIR "/vornunit"), {QStringLiteral("set"), name, value});
        QVERIFY(tool.waitForFinished(patience) && tool.exitCode() == 0);
    }

    void type(const QString &text) const { server.tool({QStringLiteral("type"), text}); }
    void press(const char *key) const { server.tool({QStringLiteral("key"), QLatin1String(key)}); }

    QImage picture() const { return server.picture(window); }
    QImage titleStrip() const { return picture().copy(0, 0, 600, 51); }

    /// The program has ended by itself, with its exit value.
    void verifyEnd(int exitCode)
    {
        QVERIFY(process.state() == QProcess::NotRunning || process.waitForFinished(patience));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), exitCode);
    }

    QStringList journal() const
    {
        QFile file(journalFile());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromLatin1(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    const support::XServer &server;
    std::uint32_t window = 0;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

private:
    QString journalFile() const { return folder.filePath(QStringLiteral("journal")); }

    QTemporaryDir folder;
    QProcess process;
};

/// "Buzzer #1" for each handle that was created and not released.
QStringList openHandles(const QStringList &journal)
{
    static const QRegularExpression created(
        QStringLiteral("^T\\d+ (\\w+)_create\\(\\) = (#\\d+)$"));
    static const QRegularExpression released(QStringLiteral("^T\\d+ (\\w+)_release\\((#\\d+)\\)$"));
    QStringList open;
    for (const QString &line : journal) {
        if (const auto match = created.match(line); match.hasMatch())
            open << match.captured(1) + QLatin1Char(' ') + match.captured(2);
        else if (const auto end = released.match(line); end.hasMatch())
            open.removeOne(end.captured(1) + QLatin1Char(' ') + end.captured(2));
    }
    return open;
}

} // namespace

/// The real program on a real X server, driven by the events of real keys and buttons.
class TestXSession : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<support::XServer> server;
    QImage plainLook; ///< of the window without any argument

    static void verifyHandlesGivenBack(const Session &session)
    {
        const QStringList journal = session.journal();
        QVERIFY(journal.size() > 10);
        QCOMPARE(journal.constFirst(), QStringLiteral("T1 Hardware_create() = #1"));
        QCOMPARE(openHandles(journal), QStringList());
    }

private slots:
    void initTestCase()
    {
        server = std::make_unique<support::XServer>();
        QVERIFY(server->isRunning());
    }

    void cleanupTestCase() { server.reset(); }

    void throughAboutAndBack_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("back by Menu") << false;
        QTest::newRow("back by Escape") << true;
    }

    void throughAboutAndBack()
    {
        QFETCH(bool, byKey);
        Session session(*server);
        session.start();
        const QImage menu = session.titleStrip();
        session.click(aboutButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        if (byKey)
            session.press("Escape");
        else
            session.click(menuButton);
        QTRY_COMPARE_WITH_TIMEOUT(session.titleStrip(), menu, patience);
        session.press("Escape");
        session.verifyEnd(0);
        verifyHandlesGivenBack(session);
    }

    void closes_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<bool>("fromPage");
        for (const char *way : {"Escape", "Exit", "close button"}) {
            QTest::addRow("%s on the menu", way) << QString::fromLatin1(way) << false;
            if (qstrcmp(way, "Escape") != 0)
                QTest::addRow("%s on a page", way) << QString::fromLatin1(way) << true;
        }
    }

    void closes()
    {
        QFETCH(QString, way);
        QFETCH(bool, fromPage);
        Session session(*server);
        session.start();
        const QImage menu = session.titleStrip();
        if (fromPage) {
            session.click(aboutButton);
            QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        }
        if (way == QLatin1String("Escape"))
            session.press("Escape");
        else if (way == QLatin1String("Exit"))
            session.click(exitButton);
        else
            server->requestClose(session.window);
        session.verifyEnd(0);
        verifyHandlesGivenBack(session);
    }

    // The dialog of a firmware job stands before the window: neither can be closed until the job is
    // over, and then everything goes on.
    void closeWaitsForFirmwareJob()
    {
        QTemporaryDir folder;
        QFile image(folder.filePath(QStringLiteral("image.hex")));
        QVERIFY(image.open(QIODevice::WriteOnly));
        image.write(":0400000001020304F2\n:00000001FF\n");
        image.close();
        Session session(*server);
        session.setUnit(QStringLiteral("Firmware.duration"), QStringLiteral("1500"));
        session.start();
        const QImage menu = session.titleStrip();
        session.click(advancedButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.titleStrip() != menu, patience);
        session.click(firmwarePath);
        session.type(image.fileName());
        session.click(programFront);
        const std::uint32_t question = session.windowNamed("Update progress");
        QTRY_VERIFY_WITH_TIMEOUT(server->focus(question), patience);
        session.press("alt+y");

        const auto told = [&session](const char *state) {
            const QString line = QStringLiteral(" = 0 [%1,").arg(QLatin1String(state));
            return session.journal()
                .filter(QStringLiteral("Firmware_getUpgradeStatus"))
                .filter(line)
                .size();
        };
        QTRY_VERIFY_WITH_TIMEOUT(told("4") > 0, patience);
        const std::uint32_t progress = session.windowNamed("Update progress");
        server->requestClose(session.window);
        server->requestClose(progress);
        session.click(exitButton);
        QCOMPARE(told("6"), 0);
        QTRY_COMPARE_WITH_TIMEOUT(told("6"), 1, patience);

        std::uint32_t result = progress;
        QTRY_VERIFY_WITH_TIMEOUT(
            (result = session.windowNamed("Update progress")) != progress && server->focus(result),
            patience);
        session.press("Return");
        server->requestClose(session.window);
        session.verifyEnd(0);
        verifyHandlesGivenBack(session);
        QCOMPARE(told("6"), 1);
    }

    void hasOneSize_data()
    {
        QTest::addColumn<QString>("scale");
        QTest::addColumn<QSize>("size");
        QTest::newRow("1") << QStringLiteral("1") << QSize(600, 435);
        QTest::newRow("1.5") << QStringLiteral("1.5") << QSize(900, 653);
        QTest::newRow("2") << QStringLiteral("2") << QSize(1200, 870);
    }

    void hasOneSize()
    {
        QFETCH(QString, scale);
        QFETCH(QSize, size);
        Session session(*server);
        session.environment.insert(QStringLiteral("QT_SCALE_FACTOR"), scale);
        session.start();
        const auto [least, greatest] = server->sizeLimits(session.window);
        QCOMPARE(least, size);
        QCOMPARE(greatest, size);
        QCOMPARE(session.picture().size(), size);
        server->requestClose(session.window);
        session.verifyEnd(0);
    }

    // A command line that names no other mode, and what the desktop or the user wish for the look
    // of programs, change nothing.
    void looksTheSame_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("variable");
        QTest::addColumn<QString>("value");
        QTest::newRow("style option")
            << QStringList{QStringLiteral("-style"), QStringLiteral("windows")} << QString()
            << QString();
        QTest::newRow("style of the environment")
            << QStringList() << QStringLiteral("QT_STYLE_OVERRIDE") << QStringLiteral("Windows");
        QTest::newRow("report mode without a file")
            << QStringList{QStringLiteral("--systemreport")} << QString() << QString();
        QTest::newRow("reset with one argument too many")
            << QStringList{QStringLiteral("--factorydefault"), QStringLiteral("now")} << QString()
            << QString();
        QTest::newRow("mode in capitals")
            << QStringList{QStringLiteral("--FACTORYDEFAULT")} << QString() << QString();
    }

    void looksTheSame()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, variable);
        QFETCH(QString, value);
        if (plainLook.isNull()) {
            Session session(*server);
            session.start();
            plainLook = session.picture();
            session.press("Escape");
            session.verifyEnd(0);
        }
        Session session(*server);
        if (!variable.isEmpty())
            session.environment.insert(variable, value);
        session.start(arguments);
        QTRY_COMPARE_WITH_TIMEOUT(session.picture(), plainLook, patience);
        session.press("Escape");
        session.verifyEnd(0);
        for (const QString &line : session.journal())
            QVERIFY2(!line.contains(QLatin1String("Config_set")), qPrintable(line));
    }
};

QTEST_GUILESS_MAIN(TestXSession)
#include "tst_xsession.moc"
