#include "virtualunit/lines/Modem.h"

#include <QtTest>

using virtualunit::lines::Modem;

Q_DECLARE_METATYPE(std::string)

namespace {

std::string ask(Modem &modem, const std::string &command)
{
    return modem.receive(command + "\r\n");
}

/** Powered on, PIN entered, no echo. */
Modem readyModem()
{
    Modem modem;
    modem.powerOn();
    ask(modem, "AT+CPIN=1234");
    ask(modem, "ATE0");
    return modem;
}

} // namespace

class ModemTest : public QObject
{
    Q_OBJECT

private slots:
    void commands_data()
    {
        QTest::addColumn<std::string>("command");
        QTest::addColumn<std::string>("answer");
        const std::string ok = "\r\nOK\r\n";
        const std::string error = "\r\nERROR\r\n";
        QTest::newRow("attention") << std::string("AT") << ok;
        QTest::newRow("small letters") << std::string("at+csq") << "\r\n+CSQ: 21,99\r\n" + ok;
        QTest::newRow("identity") << std::string("ATI")
                                  << "\r\nVirtual Unit\r\nVU-GSM\r\nRevision 1.0\r\n" + ok;
        QTest::newRow("maker") << std::string("AT+CGMI") << "\r\nVirtual Unit\r\n" + ok;
        QTest::newRow("model") << std::string("AT+CGMM") << "\r\nVU-GSM\r\n" + ok;
        QTest::newRow("revision") << std::string("AT+CGMR") << "\r\nRevision 1.0\r\n" + ok;
        QTest::newRow("IMEI") << std::string("AT+CGSN") << "\r\n490154203237518\r\n" + ok;
        QTest::newRow("IMSI") << std::string("AT+CIMI") << "\r\n240017123456789\r\n" + ok;
        QTest::newRow("PIN state") << std::string("AT+CPIN?") << "\r\n+CPIN: READY\r\n" + ok;
        QTest::newRow("registration") << std::string("AT+CREG?") << "\r\n+CREG: 0,1\r\n" + ok;
        QTest::newRow("registration, test")
            << std::string("AT+CREG=?") << "\r\n+CREG: (0-1)\r\n" + ok;
        QTest::newRow("registration, out of range")
            << std::string("AT+CREG=2") << std::string("\r\n+CME ERROR: 3\r\n");
        QTest::newRow("network") << std::string("AT+COPS?")
                                 << "\r\n+COPS: 0,0,\"Virtual Mobile\"\r\n" + ok;
        QTest::newRow("message format") << std::string("AT+CMGF?") << "\r\n+CMGF: 0\r\n" + ok;
        QTest::newRow("text mode") << std::string("AT+CMGF=1") << ok;
        QTest::newRow("no such format")
            << std::string("AT+CMGF=2") << std::string("\r\n+CME ERROR: 3\r\n");
        QTest::newRow("format that is no number")
            << std::string("AT+CMGF=a") << std::string("\r\n+CME ERROR: 3\r\n");
        QTest::newRow("functionality") << std::string("AT+CFUN?") << "\r\n+CFUN: 1\r\n" + ok;
        QTest::newRow("several") << std::string("AT+CSQ;+CREG?")
                                 << "\r\n+CSQ: 21,99\r\n\r\n+CREG: 0,1\r\n" + ok;
        QTest::newRow("several, one wrong")
            << std::string("AT+CSQ;+NONE;+CREG?") << "\r\n+CSQ: 21,99\r\n" + error;
        QTest::newRow("basic ones in a row") << std::string("ATE0H0&FE0") << ok;
        QTest::newRow("hang up") << std::string("ATH") << ok;
        QTest::newRow("reset") << std::string("ATZ") << ok;
        QTest::newRow("dial") << std::string("ATD123456;") << std::string("\r\nNO CARRIER\r\n");
        QTest::newRow("unknown") << std::string("AT+NONE") << error;
        QTest::newRow("unknown basic") << std::string("ATY") << error;
        QTest::newRow("bad tail") << std::string("AT+CREG?x") << error;
        QTest::newRow("number out of range") << std::string("ATE7") << error;
        QTest::newRow("number without end") << std::string("ATE99999999999999") << error;
        QTest::newRow("signal can't be read so") << std::string("AT+CSQ?") << error;
        QTest::newRow("no command") << std::string("hello") << std::string();
        QTest::newRow("empty") << std::string() << std::string();
        QTest::newRow("noise in front") << std::string("xyAT") << ok;
        QTest::newRow("longest line") << "AT" + std::string(600, ' ') << error;
    }
    void commands()
    {
        QFETCH(std::string, command);
        QFETCH(std::string, answer);
        Modem modem = readyModem();
        QCOMPARE(ask(modem, command), answer);
    }

    void echo()
    {
        Modem modem;
        QCOMPARE(modem.powerOn(), std::string("\r\nRDY\r\n"));
        QCOMPARE(modem.receive("AT\r\n"), std::string("AT\r\r\nOK\r\n"));
        QCOMPARE(modem.receive("hello\r"), std::string("hello\r"));
        QCOMPARE(modem.receive("ATE0\r"), std::string("ATE0\r\r\nOK\r\n"));
        QCOMPARE(modem.receive("AT\r"), std::string("\r\nOK\r\n"));
        QCOMPARE(modem.receive("ATE1\r"), std::string("\r\nOK\r\n"));
        QCOMPARE(modem.receive("AX\bT\r"), std::string("AX\b \bT\r\r\nOK\r\n"));
        QCOMPARE(modem.receive("ATE\r"), std::string("ATE\r\r\nOK\r\n"));
        QCOMPARE(modem.receive("AT\r"), std::string("\r\nOK\r\n"));
        modem.powerOn();
        QCOMPARE(modem.receive("AT\r"), std::string("AT\r\r\nOK\r\n"));
    }

    void byteByByte()
    {
        Modem modem = readyModem();
        std::string answer;
        for (const char byte : std::string("AT+CREG?\r\n"))
            answer += modem.receive(std::string(1, byte));
        QCOMPARE(answer, std::string("\r\n+CREG: 0,1\r\n\r\nOK\r\n"));
    }

    void zeroBytesBetweenCommands()
    {
        Modem modem;
        modem.powerOn();
        const std::string zero(1, '\0');
        QCOMPARE(modem.receive("AT+CPIN?\r\n" + zero),
            std::string("AT+CPIN?\r\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"));
        QCOMPARE(modem.receive("AT+CREG?\r\n" + zero),
            std::string("AT+CREG?\r\r\n+CREG: 0,0\r\n\r\nOK\r\n"));
    }

    void garbage()
    {
        Modem modem = readyModem();
        std::string all;
        for (int round = 0; round < 4; ++round) {
            for (int byte = 127; byte < 256; ++byte)
                all += char(byte);
        }
        QCOMPARE(modem.receive(all), std::string());
        QCOMPARE(modem.receive(std::string(5000, 'A') + "\r"), std::string());
        QCOMPARE(ask(modem, "AT"), std::string("\r\nOK\r\n"));
    }

    void pinTries()
    {
        Modem modem = readyModem();
        QCOMPARE(ask(modem, "AT+CPIN=1234"), std::string("\r\n+CME ERROR: 3\r\n"));
        modem.powerOn();
        ask(modem, "ATE0");
        QCOMPARE(ask(modem, "AT+CPIN?"), std::string("\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n"));
        QCOMPARE(ask(modem, "AT+COPS?"), std::string("\r\n+CME ERROR: 11\r\n"));
        QCOMPARE(ask(modem, "AT+CMGS=\"123\""), std::string("\r\n+CMS ERROR: 311\r\n"));
        QCOMPARE(ask(modem, "AT+CIMI=?"), std::string("\r\nOK\r\n"));
        QCOMPARE(ask(modem, "AT+CPIN=1111"), std::string("\r\n+CME ERROR: 16\r\n"));
        QCOMPARE(ask(modem, "AT+CPIN=\"2222\""), std::string("\r\n+CME ERROR: 16\r\n"));
        QCOMPARE(modem.sim.pinTries, 1);
        QCOMPARE(ask(modem, "AT+CPIN=\"1234\""), std::string("\r\nOK\r\n"));
        QCOMPARE(modem.sim.pinTries, 3);
    }

    void puk()
    {
        Modem modem;
        modem.powerOn();
        ask(modem, "ATE0");
        for (int wrong = 0; wrong < 2; ++wrong)
            ask(modem, "AT+CPIN=0000");
        QCOMPARE(ask(modem, "AT+CPIN=0000"), std::string("\r\n+CME ERROR: 12\r\n"));
        QCOMPARE(ask(modem, "AT+CPIN?"), std::string("\r\n+CPIN: SIM PUK\r\n\r\nOK\r\n"));
        QCOMPARE(ask(modem, "AT+CPIN=1234"), std::string("\r\n+CME ERROR: 12\r\n"));
        QCOMPARE(ask(modem, "AT+CIMI"), std::string("\r\n+CME ERROR: 12\r\n"));
        QCOMPARE(ask(modem, "AT+CMGS=\"123\""), std::string("\r\n+CMS ERROR: 316\r\n"));
        QCOMPARE(ask(modem, "AT+CREG?"), std::string("\r\n+CREG: 0,0\r\n\r\nOK\r\n"));
        modem.powerOn();
        ask(modem, "ATE0");
        QCOMPARE(ask(modem, "AT+CPIN=11111111,4711"), std::string("\r\n+CME ERROR: 16\r\n"));
        QCOMPARE(modem.sim.pukTries, 9);
        QCOMPARE(ask(modem, "AT+CPIN=12345678,47"), std::string("\r\n+CME ERROR: 16\r\n"));
        QCOMPARE(modem.sim.pukTries, 9);
        QCOMPARE(ask(modem, "AT+CPIN=\"12345678\",\"4711\""), std::string("\r\nOK\r\n"));
        QCOMPARE(modem.sim.pin, std::string("4711"));
        QCOMPARE(modem.sim.pinTries, 3);
        QCOMPARE(modem.sim.pukTries, 10);
        QCOMPARE(ask(modem, "AT+CPIN?"), std::string("\r\n+CPIN: READY\r\n\r\nOK\r\n"));
    }

    void deadCard()
    {
        Modem modem;
        modem.sim.pinTries = 0;
        modem.sim.pukTries = 1;
        modem.powerOn();
        ask(modem, "ATE0");
        QCOMPARE(ask(modem, "AT+CPIN=1,4711"), std::string("\r\n+CME ERROR: 13\r\n"));
        QCOMPARE(ask(modem, "AT+CPIN=12345678,4711"), std::string("\r\n+CME ERROR: 13\r\n"));
        QCOMPARE(ask(modem, "AT+CPIN?"), std::string("\r\n+CME ERROR: 13\r\n"));
    }

    void noCard()
    {
        Modem modem = readyModem();
        modem.sim.inserted = false;
        QCOMPARE(ask(modem, "AT+CPIN?"), std::string("\r\n+CME ERROR: 10\r\n"));
        QCOMPARE(ask(modem, "AT+CPIN=1234"), std::string("\r\n+CME ERROR: 10\r\n"));
        QCOMPARE(ask(modem, "AT+CMGS=1"), std::string("\r\n+CMS ERROR: 310\r\n"));
    }

    void cardWithoutAPin()
    {
        Modem modem;
        modem.sim.pin.clear();
        modem.powerOn();
        ask(modem, "ATE0");
        QCOMPARE(ask(modem, "AT+CPIN?"), std::string("\r\n+CPIN: READY\r\n\r\nOK\r\n"));
        QCOMPARE(ask(modem, "AT+CREG?"), std::string("\r\n+CREG: 0,1\r\n\r\nOK\r\n"));
    }

    void errorStyles()
    {
        Modem modem = readyModem();
        ask(modem, "AT+CMEE=0");
        QCOMPARE(ask(modem, "AT+CPIN=1"), std::string("\r\nERROR\r\n"));
        QCOMPARE(ask(modem, "AT+CMGS=1"), std::string("\r\nERROR\r\n"));
        ask(modem, "AT+CMEE=2");
        QCOMPARE(ask(modem, "AT+CPIN=1"), std::string("\r\n+CME ERROR: operation not allowed\r\n"));
        QCOMPARE(ask(modem, "AT+CMEE?"), std::string("\r\n+CMEE: 2\r\n\r\nOK\r\n"));
    }

    void network()
    {
        Modem modem = readyModem();
        modem.network = {3, 99, "Elsewhere"};
        QCOMPARE(ask(modem, "AT+CREG?"), std::string("\r\n+CREG: 0,3\r\n\r\nOK\r\n"));
        QCOMPARE(ask(modem, "AT+CSQ"), std::string("\r\n+CSQ: 99,99\r\n\r\nOK\r\n"));
        QCOMPARE(ask(modem, "AT+COPS?"), std::string("\r\n+COPS: 0\r\n\r\nOK\r\n"));
        modem.network.registration = 5;
        QCOMPARE(ask(modem, "AT+COPS?"), std::string("\r\n+COPS: 0,0,\"Elsewhere\"\r\n\r\nOK\r\n"));
    }

    void unasked()
    {
        Modem modem = readyModem();
        QCOMPARE(modem.announceTimeZone(), std::string("\r\n+CTZV: +4\r\n"));
        modem.announceRegistration();
        modem.network.registration = 5;
        QCOMPARE(modem.announceRegistration(), std::string()); // nobody asked to be told
        ask(modem, "AT+CREG=1");
        modem.network.registration = 2;
        modem.receive("AT+C");
        QCOMPARE(modem.announceRegistration(), std::string()); // not into somebody's typing
        QCOMPARE(modem.announceTimeZone(), std::string());
        modem.receive("REG?\r");
        QCOMPARE(modem.announceRegistration(), std::string("\r\n+CREG: 2\r\n"));
        QCOMPARE(modem.announceRegistration(), std::string());
    }

    void message()
    {
        // As the console sends it: behind the message comes what its buffer held before.
        Modem modem;
        modem.powerOn();
        ask(modem, "AT+CPIN=1234");
        QCOMPARE(modem.receive("AT+CMGF=1\r\n"), std::string("AT+CMGF=1\r\r\nOK\r\n"));
        QCOMPARE(modem.receive("AT+CMGS=123\r\n"), std::string("AT+CMGS=123\r\r\n> "));
        QCOMPARE(modem.announceTimeZone(), std::string());
        QCOMPARE(modem.receive("Hi\x1A"
                               "CMGS=123\r\n"),
            std::string("Hi\r\n+CMGS: 1\r\n\r\nOK\r\nCMGS=123\r"));
        const auto sent = modem.takeSent();
        QCOMPARE(int(sent.size()), 1);
        QCOMPARE(sent[0].number, std::string("123"));
        QCOMPARE(sent[0].text, std::string("Hi"));
        QVERIFY(modem.takeSent().empty());
        QCOMPARE(modem.receive("AT\r"), std::string("AT\r\r\nOK\r\n"));
    }

    void messagesInOneGo()
    {
        Modem modem = readyModem();
        ask(modem, "AT+CMGF=1");
        QCOMPARE(modem.receive("AT+CMGS=\"+46701234567\",145\rfirst\rsecond \xE5\x1A"),
            std::string("\r\n> \r\n+CMGS: 1\r\n\r\nOK\r\n"));
        QCOMPARE(
            modem.receive("AT+CMGS=1\rx\b\x1A"), std::string("\r\n> \r\n+CMGS: 2\r\n\r\nOK\r\n"));
        const auto sent = modem.takeSent();
        QCOMPARE(int(sent.size()), 2);
        QCOMPARE(sent[0].number, std::string("+46701234567"));
        QCOMPARE(sent[0].text, std::string("first\rsecond \xE5"));
        QCOMPARE(sent[1].text, std::string());
    }

    void messageGivenUp()
    {
        Modem modem = readyModem();
        ask(modem, "AT+CMGF=1");
        QCOMPARE(modem.receive("AT+CMGS=1\rtext\x1B"), std::string("\r\n> \r\nOK\r\n"));
        QVERIFY(modem.takeSent().empty());
        QCOMPARE(ask(modem, "AT"), std::string("\r\nOK\r\n"));
    }

    void messagesRefused()
    {
        Modem modem = readyModem();
        QCOMPARE(ask(modem, "AT+CMGS=1"), std::string("\r\n+CMS ERROR: 302\r\n"));
        ask(modem, "AT+CMGF=1");
        QCOMPARE(ask(modem, "AT+CMGS=abc"), std::string("\r\n+CMS ERROR: 305\r\n"));
        QCOMPARE(ask(modem, "AT+CMGS="), std::string("\r\n+CMS ERROR: 305\r\n"));
        QCOMPARE(ask(modem, "AT+CMGS"), std::string("\r\nERROR\r\n"));
        std::string tooLong = "AT+CMGS=1\r";
        tooLong.append(161, 't');
        tooLong += '\x1A';
        QCOMPARE(modem.receive(tooLong), std::string("\r\n> \r\n+CMS ERROR: 305\r\n"));
        modem.network.registration = 2;
        QCOMPARE(
            modem.receive("AT+CMGS=1\rtext\x1A"), std::string("\r\n> \r\n+CMS ERROR: 331\r\n"));
        modem.powerOn();
        ask(modem, "ATE0");
        QCOMPARE(ask(modem, "AT+CMGS=1"), std::string("\r\n+CMS ERROR: 311\r\n"));
        QVERIFY(modem.takeSent().empty());
    }

    void endlessMessage()
    {
        Modem modem = readyModem();
        ask(modem, "AT+CMGF=1");
        modem.receive("AT+CMGS=1\r" + std::string(100'000, 't'));
        QCOMPARE(modem.receive("\x1A"), std::string("\r\n+CMS ERROR: 305\r\n"));
    }
};

QTEST_APPLESS_MAIN(ModemTest)
#include "tst_modem.moc"
