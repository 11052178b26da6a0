#include "tests/support/PseudoTerminal.h"
#include "tests/support/x11/XSession.h"

#include <QLibraryInfo>

#include <memory>

using namespace support;

namespace {

constexpr int patience = XSession::patience;
constexpr int settleTime = 1'500; // milliseconds, for what must not happen
constexpr QSize screen(800, 480);
constexpr int keyboardTop = 232; // on this screen, as all places of keys below

// In the window.
constexpr QPoint heaterEntry(517, 100);
constexpr QPoint celsiusField(414, 126);
constexpr QPoint heaterApply(445, 258);
constexpr QPoint telematicsEntry(517, 304);
constexpr QPoint interfacesField(200, 312);
constexpr QPoint gsmTab(300, 74);
constexpr QPoint pinField(225, 125);
constexpr QPoint setPin(304, 125);
constexpr QPoint networkStatus(100, 161);
constexpr QPoint numberField(142, 197);
constexpr QPoint smsField(312, 197);
constexpr QPoint sendSms(465, 197);
constexpr QPoint title(300, 20);

/** Of the keyboard's three faces. */
struct Keys {
    QPoint rubout;
    QMap<char, QPoint> places;
};
const Keys digits{
    {495, 266}, {{'1', {310, 388}}, {'2', {371, 388}}, {'3', {432, 388}}, {'4', {310, 327}}}};
const Keys numbers{
    {601, 266}, {{'1', {416, 388}}, {'2', {477, 388}}, {'3', {539, 388}}, {'-', {323, 388}}}};
const Keys letters{{740, 388}, {{'h', {481, 327}}, {'i', {599, 266}}}};

bool isKeyboardInstalled()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const QString plugins = QLibraryInfo::location(QLibraryInfo::PluginsPath);
#else
    const QString plugins = QLibraryInfo::path(QLibraryInfo::PluginsPath);
#endif
    return QFileInfo::exists(plugins + "/platforminputcontexts/libqtvirtualkeyboardplugin.so"_s);
}

} // namespace

/** Qt's on-screen keyboard over the real program, by clicks alone. */
class XKeyboardTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<XServer> server;
    std::unique_ptr<support::PseudoTerminal> modem;
    std::unique_ptr<XSession> session;

    /** The corner below the keyboard is black while there is none. */
    bool isKeyboardUp() const
    {
        return server->screenPicture().pixelColor(2, screen.height() - 2).lightness() > 20;
    }

    /** It draws its keys one after the other, and later on a busy machine. */
    bool isKeyboardReady() const
    {
        const QRect keyboard(0, keyboardTop, screen.width(), screen.height() - keyboardTop);
        const QImage before = server->screenPicture().copy(keyboard);
        QTest::qWait(settleTime);
        return server->screenPicture().copy(keyboard) == before;
    }

    /** What can be seen above a keyboard. */
    QImage rest() const { return server->screenPicture().copy(0, 0, screen.width(), keyboardTop); }

    void tap(QPoint onScreen) const
    {
        server->tool({"mousemove"_s, QString::number(onScreen.x()), QString::number(onScreen.y()),
            "click"_s, "1"_s});
        QTest::qWait(100);
    }

    /** Each key must change what is seen, or the field would be covered. */
    void fill(QPoint field, const Keys &keys, int rubouts, const char *text) const
    {
        session->click(field);
        QTRY_VERIFY_WITH_TIMEOUT(isKeyboardUp(), patience);
        QTRY_VERIFY_WITH_TIMEOUT(isKeyboardReady(), patience);
        for (int i = 0; i < rubouts; ++i)
            tap(keys.rubout);
        for (; *text; ++text) {
            const QImage before = rest();
            tap(keys.places.value(*text));
            QTRY_VERIFY_WITH_TIMEOUT(rest() != before, patience);
        }
        session->click(title);
        QTRY_VERIFY_WITH_TIMEOUT(!isKeyboardUp(), patience);
        QTest::qWait(settleTime);
    }

    void verifyNoKeyboard(QPoint place) const
    {
        session->click(place);
        QTest::qWait(settleTime);
        QVERIFY(!isKeyboardUp());
    }

private slots:
    void initTestCase()
    {
        if (QT_VERSION_MAJOR == 5 && !isKeyboardInstalled())
            QSKIP("packages.txt lists Qt 6's on-screen keyboard alone");
        QVERIFY2(isKeyboardInstalled(), "Qt's on-screen keyboard of packages.txt is missing");
        server = std::make_unique<XServer>(screen);
        QVERIFY(server->isRunning());
        QVERIFY(server->manage());
    }

    void init()
    {
        modem = std::make_unique<support::PseudoTerminal>();
        modem->setName("COM3"_s); // tells the environment too
        session = std::make_unique<XSession>(*server, true);
        session->environment.insert("QT_IM_MODULE"_s, "qtvirtualkeyboard"_s);
        session->environment.insert("QT_QUICK_BACKEND"_s, "software"_s);
        session->environment.insert("QT_LOGGING_RULES"_s, "qt.virtualkeyboard*=false"_s);
        session->start();
    }

    void cleanup()
    {
        session.reset();
        modem.reset();
    }
    void cleanupTestCase() { server.reset(); }

    void heatingTemperature()
    {
        session->click(heaterEntry);
        QTest::qWait(settleTime);
        QVERIFY(!isKeyboardUp()); // for a page that merely opens
        fill(celsiusField, numbers, 3, "-12");
        session->click(heaterApply);
        const auto told = [this] { return session->journal().filter("setHeatingTempLimit"_s); };
        QTRY_COMPARE_WITH_TIMEOUT(told().size(), 1, patience);
        QVERIFY2(told().constFirst().contains(", -12)"_s), qPrintable(told().constFirst()));
    }

    void pinAndSms()
    {
        session->click(telematicsEntry);
        QTest::qWait(settleTime);
        verifyNoKeyboard(interfacesField);
        session->click(gsmTab);
        QTest::qWait(settleTime);
        verifyNoKeyboard(networkStatus);

        fill(pinField, digits, 0, "1234");
        session->click(setPin);
        QByteArray got;
        const auto goesOn = [&] { return (got += modem->receiveAll()).toLower(); };
        QTRY_VERIFY_WITH_TIMEOUT(goesOn().contains("at+cpin=1234\r\n"), patience);
        QTest::qWait(4'000); // for an answer that doesn't come
        fill(numberField, numbers, 0, "123");
        fill(smsField, letters, 8, "hi");
        session->click(sendSms);
        QTRY_VERIFY_WITH_TIMEOUT(goesOn().contains("hi\x1A"), patience);
        QVERIFY2(got.contains("AT+CMGS=123\r\n"), got.constData());
    }
};

QTEST_GUILESS_MAIN(XKeyboardTest)
#include "tst_xkeyboard.moc"
