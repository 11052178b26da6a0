#pragma once

#include "virtualunit/VirtualUnit.h"
#include "virtualunit/lines/modemText.h"

#include <string>
#include <string_view>
#include <vector>

namespace virtualunit::lines {

/** The SIM card. The tries are those that are left. */
struct SimCard {
    bool inserted = true;
    std::string pin = "1234"; ///< empty: the card asks for none
    std::string puk = "12345678";
    int pinTries = 3;
    int pukTries = 10;
};

/** What the modem hears of the network. */
struct Network {
    int registration = 1; ///< as AT+CREG? tells it: 0 to 5, 1 home, 5 roaming
    int signal = 21;      ///< as AT+CSQ tells it: 0 to 31, 99 unknown
    std::string name = "Virtual Mobile";
};

/**
 * The command interpreter of a GSM modem: bytes in, bytes out, no line and no clock of its own. Its
 * owner sets what lies around it before each call, and finds there what the call changed: the
 * tries, and the PIN that was given with a PUK.
 */
class Modem
{
public:
    SimCard sim;
    Network network;

    /** Forgets settings, PIN and half a command; the lines that a modem sends after power-on. */
    std::string powerOn();
    /** Takes what came over the line; the answer, echo included. */
    std::string receive(std::string_view bytes);
    /** A line about the registration, if it changed and AT+CREG=1 asked for such lines. */
    std::string announceRegistration();
    /** A line that nobody asked for, as networks cause them now and then. */
    std::string announceTimeZone() const;

    /** The messages sent since the last time. */
    std::vector<ShortMessage> takeSent();

private:
    enum class Form { Execute, Read, Test, Set };
    struct Request {
        std::string_view name; // "+CREG"
        Form form;
        std::string_view argument; // of Form::Set
    };
    /** Carries a request out: appends lines of information, returns the line that ends it. */
    using Handler = std::string (Modem::*)(const Request &, std::string &);
    struct Command {
        std::string_view name;
        Handler handler;
    };
    static const Command commands[];

    bool locked() const;
    int registrationNow() const;
    bool typing() const;
    void resetSettings();
    std::string equipmentError(EquipmentError number) const;
    std::string messageError(MessageError number) const;
    std::string lockError() const;

    std::string takeCommandByte(char byte);
    std::string takeMessageByte(char byte);
    std::string endMessage();
    std::string executeLine(std::string_view typed);
    std::string executeNext(std::string_view &rest, std::string &information);
    std::string basic(std::string_view &rest, std::string &information);
    std::string extended(std::string_view command, std::string &information);
    std::string setting(const Request &request, int &value, int most, std::string &information);

    std::string identification(const Request &request, std::string &information);
    std::string serialNumber(const Request &request, std::string &information);
    std::string cardNumber(const Request &request, std::string &information);
    std::string pin(const Request &request, std::string &information);
    std::string enterPin(std::string_view argument);
    std::string tryPin(const std::string &given);
    std::string tryPuk(const std::string &given, const std::string &newPin);
    std::string registration(const Request &request, std::string &information);
    std::string signal(const Request &request, std::string &information);
    std::string networkName(const Request &request, std::string &information);
    std::string functionality(const Request &request, std::string &information);
    std::string errorStyle(const Request &request, std::string &information);
    std::string messageFormat(const Request &request, std::string &information);
    std::string sendMessage(const Request &request, std::string &information);

    bool echo = true;
    int textMode = 0;          // AT+CMGF
    int registrationTells = 0; // AT+CREG=
    int errorNumbers = 1;      // AT+CMEE
    bool pinEntered = false;
    int announced = 0; // registration that was told last
    int reference = 0; // of the message sent last, 0 to 255
    bool inMessage = false;
    bool afterPrompt = false; // the line feed of the command that the prompt answers may still come
    std::string line;         // command as typed so far
    ShortMessage message;     // as typed so far
    std::vector<ShortMessage> sent;
};

} // namespace virtualunit::lines
