#include "frame/WaitNotice.h"
#include "telematics/tabTelematicsDlg.h"
#include "telematics/telematicsState.h"
#include "tests/support/PageTest.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SkippedPauses.h"

#include <QElapsedTimer>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

using namespace support;

namespace {

/** Notes what the modem has been told when a wait notice is painted. */
class NoticeWatch : public QObject
{
public:
    explicit NoticeWatch(PseudoTerminal &line)
        : modem(line)
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && watched->objectName() == WaitNotice::stripName()) {
            if (paints++ == 0)
                told = modem.receiveAll(0);
        }
        return false;
    }

    int paints = 0;
    QByteArray told;

private:
    PseudoTerminal &modem;
};

} // namespace

/** The modem console of the Telematics page, with the modem's end of the line in the test's hand.
 */
class GsmConsoleTest : public PageTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PageTest::init();
        modem = std::make_unique<PseudoTerminal>();
        modem->setName("COM3"_s);
        page = std::make_unique<tabTelematicsDlg>();
        page->show();
        child<QTabWidget>(page.get(), "tabWidget")->setCurrentIndex(2);
        QVERIFY(gsmPort);
    }

    void cleanup()
    {
        page.reset();
        modem.reset();
        PageTest::cleanup();
    }

    void withoutLineEachActionEndsAtOnce()
    {
        child<QTabWidget>(page.get(), "tabWidget")->setCurrentIndex(0);
        QVERIFY(!gsmPort);
        type("editNumber", "123"_s);
        type("editPin", "0000"_s);
        QElapsedTimer clock;
        clock.start();
        for (const char *slot : {"CallClicked", "HangUpClicked", "CustomExecClicked",
                 "SetPinClicked", "GetPinStatusClicked", "GetNetworkStatusClicked"}) {
            QMetaObject::invokeMethod(page.get(), slot);
            QCOMPARE(shown(), "No data received"_s);
        }
        QVERIFY(clock.elapsed() < 3000);
        QCOMPARE(text("editPinStatus"), "PIN code status: Unknown"_s);
        QCOMPARE(text("editNetworkStatus"), "Network status: Unknown"_s);
    }

    /** A dialogue lasts, so the user hears of it before its first command. */
    void waitNotice_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<int>("size");
        QTest::newRow("SMS") << QByteArray("pushButtonCall") << 3 * 256;
        QTest::newRow("custom") << QByteArray("pushButtonCustomExec") << 512;
        QTest::newRow("set PIN") << QByteArray("pushButtonSetPin") << 128;
        QTest::newRow("PIN state") << QByteArray("pushButtonGetPIN") << 128;
        QTest::newRow("network") << QByteArray("pushButtonGetNetwork") << 128;
    }

    void waitNotice()
    {
        QFETCH(QByteArray, button);
        QFETCH(int, size);
        type("editNumber", "123"_s);
        type("editPin", "0000"_s);
        QVERIFY(QTest::qWaitForWindowExposed(page.get()));
        QVERIFY(modem->send(QByteArray(size, 'x'))); // so that no read waits for silence
        const NoticeWatch watch(*modem);
        press(button.constData());
        QVERIFY(watch.paints > 0);
        QCOMPARE(watch.told, QByteArray());
        QVERIFY(!QApplication::overrideCursor());
        QVERIFY(!page->findChild<QWidget *>(WaitNotice::stripName()));
    }

    void silentModem_data()
    {
        QTest::addColumn<QByteArray>("slot");
        for (const char *slot : {"HangUpClicked", "CustomExecClicked", "SetPinClicked",
                 "GetPinStatusClicked", "GetNetworkStatusClicked"})
            QTest::newRow(slot) << QByteArray(slot);
    }

    void silentModem()
    {
        QFETCH(QByteArray, slot);
        type("editPin", "0000"_s);
        QElapsedTimer clock;
        clock.start();
        QMetaObject::invokeMethod(page.get(), slot.constData());
        QVERIFY(clock.elapsed() >= 3000);
        QCOMPARE(shown(), "No data received"_s);
        QCOMPARE(text("editPinStatus"), "PIN code status: Unknown"_s);
        QCOMPARE(text("editNetworkStatus"), "Network status: Unknown"_s);
    }

    void silentModemDuringTheSms()
    {
        type("editNumber", "123"_s);
        QElapsedTimer clock;
        clock.start();
        press("pushButtonCall");
        QVERIFY(clock.elapsed() >= 9300);
        QCOMPARE(shown(), "No data received"_s);
    }

    void replySizes_data()
    {
        QTest::addColumn<QByteArray>("slot");
        QTest::addColumn<int>("size");
        QTest::newRow("hang up") << QByteArray("HangUpClicked") << 128;
        QTest::newRow("set PIN") << QByteArray("SetPinClicked") << 128;
        QTest::newRow("PIN state") << QByteArray("GetPinStatusClicked") << 128;
        QTest::newRow("network state") << QByteArray("GetNetworkStatusClicked") << 128;
        QTest::newRow("custom command") << QByteArray("CustomExecClicked") << 512;
    }

    /** What an action doesn't read waits for the next one. */
    void replySizes()
    {
        QFETCH(QByteArray, slot);
        QFETCH(int, size);
        type("editPin", "0000"_s);
        QVERIFY(modem->send(QByteArray(size + 10, 'y')));
        QMetaObject::invokeMethod(page.get(), slot.constData());
        QCOMPARE(shown(), QString(size, QLatin1Char('y')));
        QVERIFY(modem->send(QByteArray(size - 10, 'z')));
        QMetaObject::invokeMethod(page.get(), slot.constData());
        QCOMPARE(shown(), QString(10, QLatin1Char('y')) + QString(size - 10, QLatin1Char('z')));
    }

    /** The replies to the three steps wait from the beginning, so that each read ends at once. */
    void repliesOfTheSms()
    {
        type("editNumber", "123"_s);
        type("editSMStext", "Hi"_s);
        QVERIFY(modem->send(QByteArray(256, 'a') + QByteArray(256, 'b') + QByteArray(256, 'c')));
        const QByteArrayList commands{"AT+CMGF=1\r\n", "AT+CMGS=123\r\n", "Hi\x1A"};
        QByteArrayList written;
        QStringList read;
        {
            const SkippedPauses pauses([&](int) {
                written << modem->receive(int(commands.value(written.size()).size()));
                read << shown();
            });
            press("pushButtonCall");
        }
        QCOMPARE(written, commands);
        // The last command is out at its pause, and its reply isn't read yet.
        const QString first(256, QLatin1Char('a'));
        const QString second(256, QLatin1Char('b'));
        QCOMPARE(read, QStringList({first, second, second}));
        QCOMPARE(shown(), QString(256, QLatin1Char('c')));
    }

    void statesOfTheLastReply()
    {
        const auto ask = [this](const char *button, const QByteArray &reply) {
            talk([&] { press(button); }, {reply}, 128);
        };
        for (const bool silent : {false, true}) {
            ask("pushButtonGetPIN", "+CPIN: READY");
            QCOMPARE(text("editPinStatus"), "PIN code status: Ok"_s);
            ask("pushButtonGetNetwork", "+CREG: 0,1");
            QCOMPARE(text("editNetworkStatus"), "Network status: Ok, registered"_s);
            if (silent) {
                press("pushButtonGetPIN");
                press("pushButtonGetNetwork");
            } else {
                ask("pushButtonGetPIN", "+CPIN: SIM PUK");
                ask("pushButtonGetNetwork", "+CREG: 0,4");
            }
            QCOMPARE(text("editPinStatus"), "PIN code status: Unknown"_s);
            QCOMPARE(text("editNetworkStatus"), "Network status: Unknown"_s);
        }
    }

    void smsDialogue()
    {
        type("editNumber", "123"_s);
        type("editSMStext", "Hi"_s);
        QElapsedTimer clock;
        clock.start();
        const QByteArray sent = talk([&] { press("pushButtonCall"); },
            {"\r\nOK\r\n", "\r\n> ", "\r\n+CMGS: 7\r\n\r\nOK\r\n"});
        QVERIFY(clock.elapsed() >= 9300);
        QCOMPARE(sent, QByteArray("AT+CMGF=1\r\nAT+CMGS=123\r\nHi\x1A"
                                  "CMGS=123\r\n"));
        QVERIFY(shown().contains("+CMGS: 7"_s));
    }

    void smsTextLongerThanTheCommand()
    {
        type("editNumber", "1"_s);
        type("editSMStext", "A text that is longer than the command"_s);
        SkippedPauses pauses;
        const QByteArray sent = talk([&] { press("pushButtonCall"); }, {"", "", ""}, 256);
        QCOMPARE(pauses.take(), (std::vector<int>{100, 100, 100}));
        QCOMPARE(sent,
            QByteArray("AT+CMGF=1\r\nAT+CMGS=1\r\nA text that is longer than the command\x1A"));
    }

    void overlongTextsAreCut()
    {
        type("editNumber", QString(300, QLatin1Char('7')));
        type("editSMStext", QString(400, QLatin1Char('x')));
        const QByteArray sent = talk([&] { press("pushButtonCall"); }, {"", "", ""}, 256);
        QCOMPARE(sent, "AT+CMGF=1\r\nAT+CMGS=" + QByteArray(247, '7') + QByteArray(255, 'x') +
                           QByteArray("\x1A"));
    }

    void smsNeedsNumberAndText_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("text");
        QTest::newRow("no number") << QString() << "Hi"_s;
        QTest::newRow("no text") << "123"_s << QString();
        QTest::newRow("neither") << QString() << QString();
    }

    void smsNeedsNumberAndText()
    {
        QFETCH(QString, number);
        QFETCH(QString, text);
        type("editNumber", number);
        type("editSMStext", text);
        press("pushButtonCall");
        const auto seen = dialogs.take();
        QCOMPARE(seen.size(), 1);
        QCOMPARE(seen[0].title, "Vornsettings"_s);
        QCOMPARE(seen[0].text, "Please enter a number and some text"_s);
        QCOMPARE(seen[0].icon, QMessageBox::Critical);
        QCOMPARE(modem->receiveAll(), QByteArray());
    }

    void pins_data()
    {
        QTest::addColumn<QString>("pin");
        for (const char *pin : {"", "123", "12345", "abcd", "123a", "12 4", "0x12", "1.23"})
            QTest::newRow(pin) << QString::fromLatin1(pin);
    }

    void pins()
    {
        QFETCH(QString, pin);
        type("editPin", pin);
        press("pushButtonSetPin");
        const auto seen = dialogs.take();
        QCOMPARE(seen.size(), 1);
        QCOMPARE(seen[0].title, "Vornsettings"_s);
        QCOMPARE(seen[0].text, "Please enter a 4 digit PIN"_s);
        QCOMPARE(seen[0].icon, QMessageBox::Critical);
        QCOMPARE(modem->receiveAll(), QByteArray());
    }

    void setPinSendsItAsTyped()
    {
        type("editPin", "0000"_s);
        QCOMPARE(talk([&] { press("pushButtonSetPin"); }, {"\r\nOK\r\n"}, 128),
            QByteArray("AT+CPIN=0000\r\n"));
        QVERIFY(shown().contains("OK"_s));
        // A sign is part of the four characters.
        type("editPin", "-123"_s);
        QCOMPARE(
            talk([&] { press("pushButtonSetPin"); }, {""}, 128), QByteArray("AT+CPIN=-123\r\n"));
    }

    void pinStates_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QString>("state");
        QTest::newRow("ready") << QByteArray("\r\n+CPIN: READY\r\n\r\nOK\r\n")
                               << "PIN code status: Ok"_s;
        QTest::newRow("lower case")
            << QByteArray("+cpin: sim pin") << "PIN code status: Enter PIN"_s;
        QTest::newRow("both") << QByteArray("+CPIN: SIM PIN\r\n+CPIN: READY\r\n")
                              << "PIN code status: Ok"_s; // the order of the rules decides
        QTest::newRow("PUK") << QByteArray("\r\n+CPIN: SIM PUK\r\n")
                             << "PIN code status: Unknown"_s;
        QTest::newRow("cut by a zero byte")
            << QByteArray("+CPIN: RE\0ADY", 13) << "PIN code status: Ok"_s;
    }

    void pinStates()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QString, state);
        const QByteArray sent = talk([&] { press("pushButtonGetPIN"); }, {reply}, 128);
        QCOMPARE(sent, QByteArray("AT+CPIN?\r\n\0", 11));
        QCOMPARE(text("editPinStatus"), state);
    }

    void networkStates_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QString>("state");
        const auto row = [](const char *reply, const char *state) {
            QTest::newRow(reply) << QByteArray(reply) << QString::fromLatin1(state);
        };
        row("+CREG: 0,0", "Network status: Searching");
        row("+CREG: 0,1", "Network status: Ok, registered");
        row("+CREG: 0,2", "Network status: Searching");
        row("+CREG: 0,3", "Network status: Registration denied");
        row("+CREG: 0,4", "Network status: Unknown");
        row("+CREG: 0,5", "Network status: Ok, Roaming");
        row("+CREG: 1,1", "Network status: Unknown");
        // The order of the rules decides.
        row("0,5 and 0,1", "Network status: Ok, registered");
        row("0,1 0,0", "Network status: Searching");
        row("0,5 0,3", "Network status: Registration denied");
        row("0,3 0,2", "Network status: Searching");
        row("0,2 0,1", "Network status: Ok, registered");
    }

    void networkStates()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QString, state);
        const QByteArray sent = talk([&] { press("pushButtonGetNetwork"); }, {reply}, 128);
        QCOMPARE(sent, QByteArray("AT+CREG?\r\n\0", 11));
        QCOMPARE(text("editNetworkStatus"), state);
    }

    void customCommand()
    {
        type("editCustomAT", "ATI"_s);
        QCOMPARE(talk([&] { press("pushButtonCustomExec"); }, {"\r\nModem\r\n"}, 512),
            QByteArray("ATI\r\n"));
        QCOMPARE(shown().trimmed(), "Modem"_s);
        type("editCustomAT", QString());
        QCOMPARE(talk([&] { press("pushButtonCustomExec"); }, {""}, 512), QByteArray("\r\n"));
        QCOMPARE(shown(), "No data received"_s);
        // The text ends at a zero byte, the command doesn't.
        type("editCustomAT", QString::fromLatin1("AT\0+X", 5));
        QCOMPARE(talk([&] { press("pushButtonCustomExec"); }, {""}, 512), QByteArray("AT\r\n"));
        type("editCustomAT", "AT+X=\u00C3\u00A4\u20AC"_s); // in UTF-8
        QCOMPARE(talk([&] { press("pushButtonCustomExec"); }, {""}, 512),
            QByteArray("AT+X=\303\203\302\244\342\202\254\r\n"));
        type("editCustomAT", QString(300, QLatin1Char('x')));
        QCOMPARE(talk([&] { press("pushButtonCustomExec"); }, {""}, 512), QByteArray(255, 'x'));
    }

    void hangUp()
    {
        QCOMPARE(talk([&] { QMetaObject::invokeMethod(page.get(), "HangUpClicked"); }, {"OK"}, 128),
            QByteArray("ATH\r\n\0", 6));
        QCOMPARE(shown(), "OK"_s);
    }

    void longRepliesAreShown()
    {
        type("editCustomAT", "AT"_s);
        talk([&] { press("pushButtonCustomExec"); }, {QByteArray(512, 'y')});
        QCOMPARE(shown(), QString(512, QLatin1Char('y')));
        // Pieces between zero bytes are shown joined, whatever their length.
        const QByteArray piece(300, 'z');
        talk([&] { press("pushButtonCustomExec"); },
            {QByteArray(2, '\0') + piece + '\0' + "a" + '\0' + '\0' + "b"}, 512);
        QCOMPARE(shown(), QString(300, QLatin1Char('z')) + "ab"_s);
    }

    void pressingOnDuringTheSms()
    {
        type("editNumber", "123"_s);
        type("editSMStext", "Hi"_s);
        // Waiting presses run between the steps of the dialogue, and may even take the line away.
        QTimer::singleShot(0, page.get(), [&] { press("pushButtonGetPIN"); });
        QTimer::singleShot(
            0, page.get(), [&] { child<QTabWidget>(page.get(), "tabWidget")->setCurrentIndex(0); });
        talk([&] { press("pushButtonCall"); }, {"", ""}, 256);
        QVERIFY(!gsmPort);
        QCOMPARE(shown(), "No data received"_s);
    }

private:
    /** Presses the button while the modem answers each command by the next of these replies; what
     *  the modem got by and by. Zero bytes, which nobody sees, fill up what each read waits for, so
     *  that it doesn't wait for the silence.
     *  @param size of the reads in bytes; 0 for replies as they are */
    QByteArray talk(
        const std::function<void()> &action, const QByteArrayList &replies, int size = 0)
    {
        QByteArray received;
        std::atomic<bool> over{false};
        std::thread peer([&] {
            int answered = 0;
            QByteArray command;
            while (!over) {
                command += modem->receive(1, 20) + modem->receiveAll(20);
                // One that was too long for its buffer has lost its end.
                if (command.isEmpty() ||
                    (command.size() < 255 && !QByteArray("\n\0\x1A", 3).contains(command.back())))
                    continue;
                received += command;
                command.clear();
                if (answered >= replies.size())
                    continue;
                const QByteArray &reply = replies[answered++];
                modem->send(reply + QByteArray(std::max(size - int(reply.size()), 0), '\0'));
            }
            received += command;
            received += modem->receiveAll(20);
        });
        action();
        over = true;
        peer.join();
        return received;
    }
    void press(const char *button) { click(page.get(), button); }
    void type(const char *edit, const QString &text)
    {
        child<QLineEdit>(page.get(), edit)->setText(text);
    }
    QString text(const char *edit) const { return child<QLineEdit>(page.get(), edit)->text(); }
    QString shown() const
    {
        return child<QPlainTextEdit>(page.get(), "textEditGSM")->toPlainText();
    }

    std::unique_ptr<PseudoTerminal> modem;
    std::unique_ptr<tabTelematicsDlg> page;
};

VORN_TEST_MAIN(GsmConsoleTest)
#include "tst_gsmconsole.moc"
