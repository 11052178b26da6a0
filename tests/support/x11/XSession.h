#pragma once

#include "tests/support/literals.h"
#include "tests/support/x11/XServer.h"

#include <QtTest>

namespace support {

/** The real program on a server and a unit of its own. */
class XSession
{
public:
    /** With a window manager on the server, that gives the keys to the program's windows. */
    static constexpr int patience = 60'000; // milliseconds, on a slow machine

    explicit XSession(const support::XServer &xServer, bool isManaged = false)
        : server(xServer)
        , managed(isManaged)
    {
        environment.insert(QStringLiteral("DISPLAY"), server.display());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("VORN_UNIT"), folder.filePath(QStringLiteral("unit")));
        environment.insert(QStringLiteral("VORN_JOURNAL"), journalFile());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.path());
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    }

    ~XSession()
    {
        if (process.state() == QProcess::NotRunning)
            return;
        process.kill();
        process.waitForFinished();
    }

    /** Starts and waits for the window. */
    void start(const QStringList &arguments = {})
    {
        launch(arguments);
        awaitWindow();
    }

    void launch(const QStringList &arguments = {})
    {
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(VORN_BIN_DIR "/VornSettings"), arguments);
        QVERIFY(process.waitForStarted());
    }

    /** What the program says on the standard error stream can be asked for then. */
    void keepErrors() { process.setProcessChannelMode(QProcess::SeparateChannels); }
    QByteArray errors() { return process.readAllStandardError(); }

    void awaitWindow()
    {
        window = windowNamed("Settings");
        QVERIFY(window != 0);
        awaitFocus(window);
        // The strip stands once the title's amber is there.
        QTRY_COMPARE_WITH_TIMEOUT(titleStrip().pixelColor(100, 8).green() > 200, true, patience);
    }

    void awaitFocus(std::uint32_t which) const
    {
        // Where nobody manages windows, nobody gives them the keys.
        QTRY_VERIFY_WITH_TIMEOUT(managed ? server.hasFocus(which) : server.focus(which), patience);
    }

    void click(QPoint place) const
    {
        server.tool({QStringLiteral("mousemove"), QStringLiteral("--window"),
            QString::number(window), QString::number(place.x()), QString::number(place.y()),
            QStringLiteral("click"), QStringLiteral("1")});
    }

    /** A finger, where the touch screen is in the mouse profile: down there, and up here. */
    void drag(QPoint from, QPoint to) const
    {
        constexpr int steps = 10;
        moveTo(from);
        server.tool({QStringLiteral("mousedown"), QStringLiteral("1")});
        for (int step = 1; step <= steps; ++step) {
            QTest::qWait(30);
            moveTo(from + (to - from) * step / steps);
        }
        QTest::qWait(200); // at rest in the end
        server.tool({QStringLiteral("mouseup"), QStringLiteral("1")});
    }

    void moveTo(QPoint place) const
    {
        server.tool({QStringLiteral("mousemove"), QStringLiteral("--window"),
            QString::number(window), QString::number(place.x()), QString::number(place.y())});
    }

    /** The program's window of that title, once it shows. */
    std::uint32_t windowNamed(const char *title) const
    {
        const QString found = server.tool({QStringLiteral("search"), QStringLiteral("--sync"),
            QStringLiteral("--onlyvisible"), QStringLiteral("--all"), QStringLiteral("--pid"),
            QString::number(process.processId()), QStringLiteral("--name"),
            QLatin1Char('^') + QLatin1String(title) + QLatin1Char('$')});
        return found.toUInt();
    }

    /** Changes the unit before the program starts. */
    void setUnit(const QString &name, const QString &value) const
    {
        vornunit({QStringLiteral("set"), name, value});
    }

    void vornunit(const QStringList &arguments) const
    {
        QProcess tool;
        tool.setProcessEnvironment(environment);
        tool.start(QStringLiteral(VORN_BIN_DIR "/vornunit"), arguments);
        QVERIFY(tool.waitForFinished(patience) && tool.exitCode() == 0);
    }

    void type(const QString &text) const { server.tool({QStringLiteral("type"), text}); }
    void press(const char *key) const { server.tool({QStringLiteral("key"), QLatin1String(key)}); }

    /** Holds Escape down for so long, milliseconds; the server repeats a key after some 600. */
    void holdEscape(int time) const
    {
        server.tool({QStringLiteral("keydown"), QStringLiteral("Escape")});
        QTest::qWait(time);
        server.tool({QStringLiteral("keyup"), QStringLiteral("Escape")});
    }

    bool isRunning() const { return process.state() == QProcess::Running; }

    QImage picture() const { return server.picture(window); }
    QImage titleStrip() const { return picture().copy(0, 0, 600, 51); }

    /** The program has ended by itself, with its exit value. */
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
    const bool managed;
    std::uint32_t window = 0;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

private:
    QString journalFile() const { return folder.filePath(QStringLiteral("journal")); }

    QTemporaryDir folder;
    QProcess process;
};

} // namespace support
