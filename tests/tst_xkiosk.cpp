#include "tests/support/x11/XSession.h"

using namespace support;

namespace {

constexpr int patience = XSession::patience;
constexpr QSize screen(800, 480);

QString kioskFile(const char *name)
{
    return VORN_SOURCE_DIR "/packaging/kiosk/"_s + QLatin1String(name);
}

/** The corner of the content where its title strip is, on the screen. */
bool isInTheMiddle(const XServer &server)
{
    const QImage all = server.screenPicture();
    const auto isAmber = [&all](int x, int y) {
        const QColor colour = all.pixelColor(x, y);
        return colour.red() > 200 && colour.green() > 150 && colour.blue() < 120;
    };
    return isAmber(200, 35) && isAmber(110, 35) && isAmber(690, 35) && !isAmber(90, 35) &&
           !isAmber(710, 35);
}

/** A program of the session, with the unit's program in its path. It ends with this object. */
class Running
{
public:
    Running(const XServer &server, const QString &folder)
    {
        environment.insert("DISPLAY"_s, server.display());
        environment.insert("PATH"_s, VORN_BIN_DIR ":"_s + environment.value("PATH"_s));
        environment.insert("XDG_RUNTIME_DIR"_s, folder);
        environment.insert("VORN_UNIT"_s, folder + "/unit"_s);
        process.setStandardErrorFile(QProcess::nullDevice());
    }
    ~Running()
    {
        process.terminate();
        if (!process.waitForFinished(5'000))
            process.kill();
        process.waitForFinished();
    }
    Running(const Running &) = delete;
    Running &operator=(const Running &) = delete;

    void start(const QString &program, const QStringList &arguments = {})
    {
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        QVERIFY(process.waitForStarted());
    }
    bool hasEnded()
    {
        return process.waitForFinished(0) || process.state() == QProcess::NotRunning;
    }

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess process;
};

void click(const XServer &server, QPoint at)
{
    server.tool(
        {"mousemove"_s, QString::number(at.x()), QString::number(at.y()), "click"_s, "1"_s});
}

constexpr QPoint exitButton(100 + 525, 22 + 407); // of a content in the middle of the screen

} // namespace

/** The files of packaging/kiosk/, as they stand. */
class XKioskTest : public QObject
{
    Q_OBJECT

private slots:
    void unit_data()
    {
        QTest::addColumn<QString>("file");
        for (const char *name :
            {"vornsettings-x11.service", "vornsettings-wayland.service", "weston-kiosk.service"})
            QTest::newRow(name) << kioskFile(name);
    }

    void unit()
    {
        QFETCH(QString, file);
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start("systemd-analyze"_s, {"verify"_s, "--man=no"_s, file});
        QVERIFY(process.waitForFinished(patience));
        const QByteArray words = process.readAll();
        QVERIFY2(process.exitCode() == 0, words.constData());
        QVERIFY2(!words.contains("vornsettings") && !words.contains("kiosk"), words.constData());
    }

    void xSession()
    {
        const QTemporaryDir folder;
        const XServer server(screen);
        QVERIFY(server.isRunning());
        Running session(server, folder.path());
        session.start(kioskFile("xsession"));
        QTRY_VERIFY_WITH_TIMEOUT(isInTheMiddle(server), patience);
        click(server, exitButton);
        QTRY_VERIFY_WITH_TIMEOUT(session.hasEnded(), patience);
    }

    /** Weston's window on an X server of that size stands for the screen. */
    void westonsKioskShell()
    {
        const QTemporaryDir folder;
        const XServer server(screen);
        QVERIFY(server.isRunning());
        Running compositor(server, folder.path());
        compositor.start("weston"_s,
            {"--config="_s + kioskFile("weston.ini"), "--backend=x11-backend.so"_s,
                "--use-pixman"_s, "--width=800"_s, "--height=480"_s, "--socket=kiosk"_s});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(folder.filePath("kiosk"_s)), patience);
        Running program(server, folder.path());
        program.environment.insert("WAYLAND_DISPLAY"_s, "kiosk"_s);
        program.environment.insert("QT_QPA_PLATFORM"_s, "wayland"_s);
        program.start(VORN_BIN_DIR "/VornSettings"_s);
        QTRY_VERIFY_WITH_TIMEOUT(isInTheMiddle(server), patience);
        click(server, exitButton);
        QTRY_VERIFY_WITH_TIMEOUT(program.hasEnded(), patience);
    }
};

QTEST_GUILESS_MAIN(XKioskTest)
#include "tst_xkiosk.moc"
