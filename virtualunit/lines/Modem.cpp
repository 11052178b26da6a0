#include "virtualunit/lines/Modem.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <utility>

namespace virtualunit::lines {

namespace {

constexpr char endOfMessage = 0x1A;
constexpr char escape = 0x1B;
constexpr char backspace = 0x08;
constexpr std::size_t longestLine = 556;
constexpr std::size_t longestMessage = 160;
constexpr int pinTriesOfACard = 3;

constexpr const char *ok = "OK";
constexpr const char *error = "ERROR";

// Numbers of errors of the equipment and of the message service, as the standards have them.
enum EquipmentError {
    NotAllowed = 3,
    SimNotInserted = 10,
    PinRequired = 11,
    PukRequired = 12,
    SimFailure = 13,
    WrongPassword = 16,
};
enum MessageError {
    MessageNotAllowed = 302,
    NoTextModeParameter = 305,
    MessageSimNotInserted = 310,
    MessagePinRequired = 311,
    MessageSimFailure = 313,
    MessagePukRequired = 316,
    NoNetwork = 331,
};

struct Text {
    int number;
    const char *text;
};
constexpr Text errorTexts[] = {
    {NotAllowed, "operation not allowed"},
    {SimNotInserted, "SIM not inserted"},
    {PinRequired, "SIM PIN required"},
    {PukRequired, "SIM PUK required"},
    {SimFailure, "SIM failure"},
    {WrongPassword, "incorrect password"},
};

struct Identity {
    std::string_view name;
    const char *text;
};
constexpr Identity identities[] = {
    {"+CGMI", "Virtual Unit"},
    {"+GMI", "Virtual Unit"},
    {"+CGMM", "VU-GSM"},
    {"+GMM", "VU-GSM"},
    {"+CGMR", "Revision 1.0"},
    {"+GMR", "Revision 1.0"},
    {"+CGSN", "490154203237518"},
    {"+GSN", "490154203237518"},
};

const char *identity(std::string_view name)
{
    const auto *found = std::find_if(std::begin(identities), std::end(identities),
        [name](const Identity &row) { return row.name == name; });
    return found->text;
}

/** A line as a modem sends it. */
std::string framed(std::string_view text)
{
    return text.empty() ? std::string() : "\r\n" + std::string(text) + "\r\n";
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

char upper(char character)
{
    return static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
}

bool isCode(std::string_view text, std::size_t least, std::size_t most)
{
    return text.size() >= least && text.size() <= most &&
           std::all_of(text.begin(), text.end(), isDigit);
}

bool isPhoneNumber(std::string_view text)
{
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    return isCode(text, 1, 20);
}

/** The arguments between the commas, without blanks and quotation marks around them. */
std::vector<std::string> argumentsOf(std::string_view text)
{
    std::vector<std::string> arguments;
    while (true) {
        const auto comma = text.find(',');
        auto argument = text.substr(0, comma);
        const auto first = argument.find_first_not_of(" \"");
        const auto last = argument.find_last_not_of(" \"");
        arguments.emplace_back(first == std::string_view::npos
                                   ? std::string_view()
                                   : argument.substr(first, last - first + 1));
        if (comma == std::string_view::npos)
            return arguments;
        text.remove_prefix(comma + 1);
    }
}

/** The number at the start of the text, taken off it; 0 if there is none. */
int takeNumber(std::string_view &text)
{
    int number = 0;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (code == std::errc::invalid_argument)
        return 0;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return code == std::errc() ? number : -1;
}

} // namespace

const Modem::Command Modem::commands[] = {
    {"+CGMI", &Modem::identification},
    {"+GMI", &Modem::identification},
    {"+CGMM", &Modem::identification},
    {"+GMM", &Modem::identification},
    {"+CGMR", &Modem::identification},
    {"+GMR", &Modem::identification},
    {"+CGSN", &Modem::identification},
    {"+GSN", &Modem::identification},
    {"+CIMI", &Modem::cardNumber},
    {"+CPIN", &Modem::pin},
    {"+CREG", &Modem::registration},
    {"+CSQ", &Modem::signal},
    {"+COPS", &Modem::networkName},
    {"+CFUN", &Modem::functionality},
    {"+CMEE", &Modem::errorStyle},
    {"+CMGF", &Modem::messageFormat},
    {"+CMGS", &Modem::sendMessage},
};

std::string Modem::powerOn()
{
    resetSettings();
    pinEntered = false;
    inMessage = false;
    line.clear();
    announced = registrationNow();
    return framed("RDY");
}

void Modem::resetSettings()
{
    echo = true;
    textMode = 0;
    registrationTells = 0;
    errorNumbers = 1;
}

bool Modem::locked() const
{
    return !sim.inserted || sim.pukTries == 0 || sim.pinTries == 0 ||
           (!sim.pin.empty() && !pinEntered);
}

int Modem::registrationNow() const
{
    return locked() ? 0 : network.registration;
}

bool Modem::typing() const
{
    return inMessage || !line.empty();
}

std::string Modem::equipmentError(int number) const
{
    if (errorNumbers == 0)
        return error;
    if (errorNumbers == 1)
        return "+CME ERROR: " + std::to_string(number);
    const auto *found = std::find_if(std::begin(errorTexts), std::end(errorTexts),
        [number](const Text &row) { return row.number == number; });
    return std::string("+CME ERROR: ") + found->text;
}

std::string Modem::messageError(int number) const
{
    return errorNumbers == 0 ? error : "+CMS ERROR: " + std::to_string(number);
}

/** What keeps a locked card from being used. */
std::string Modem::lockError() const
{
    if (!sim.inserted)
        return equipmentError(SimNotInserted);
    if (sim.pukTries == 0)
        return equipmentError(SimFailure);
    return equipmentError(sim.pinTries == 0 ? PukRequired : PinRequired);
}

std::string Modem::receive(std::string_view bytes)
{
    std::string answer;
    for (const char byte : bytes)
        answer += inMessage ? takeMessageByte(byte) : takeCommandByte(byte);
    return answer;
}

/** What can't be typed, zero bytes and the noise of a wrong speed included, is not even echoed. */
std::string Modem::takeCommandByte(char byte)
{
    std::string answer;
    if (byte == '\r') {
        const std::string typed = std::exchange(line, {});
        answer = echo ? "\r" : ""; // before the command changes it
        answer += executeLine(typed);
    } else if (byte == backspace && !line.empty()) {
        line.pop_back();
        answer = echo ? "\b \b" : "";
    } else if (byte >= ' ' && byte <= '~') {
        if (line.size() <= longestLine)
            line += byte;
        answer = echo ? std::string(1, byte) : std::string();
    }
    return answer;
}

std::string Modem::takeMessageByte(char byte)
{
    if (std::exchange(afterPrompt, false) && byte == '\n')
        return {};
    if (byte == endOfMessage)
        return endMessage();
    if (byte == escape) {
        inMessage = false;
        return framed(ok);
    }
    if (byte == backspace && !message.text.empty())
        message.text.pop_back();
    else if (byte != backspace && message.text.size() <= longestMessage)
        message.text += byte;
    if (!echo)
        return {};
    return byte == '\r' ? std::string("\r\n> ") : std::string(1, byte);
}

std::string Modem::endMessage()
{
    inMessage = false;
    if (locked())
        return framed(messageError(MessagePinRequired));
    if (message.text.size() > longestMessage)
        return framed(messageError(NoTextModeParameter));
    if (registrationNow() != 1 && registrationNow() != 5)
        return framed(messageError(NoNetwork));
    sent.push_back(message);
    reference = (reference + 1) % 256;
    return framed("+CMGS: " + std::to_string(reference)) + framed(ok);
}

/** Lines without an AT are none for the modem, and are not answered. */
std::string Modem::executeLine(std::string_view typed)
{
    constexpr std::string_view attention = "AT";
    const auto start = std::search(typed.begin(), typed.end(), attention.begin(), attention.end(),
        [](char one, char other) { return upper(one) == other; });
    if (start == typed.end())
        return {};
    if (typed.size() > longestLine)
        return framed(error);
    std::string_view rest = typed.substr(static_cast<std::size_t>(start - typed.begin()) + 2);
    std::string answer;
    std::string result = ok;
    while (!rest.empty() && result == ok) {
        std::string information;
        result = executeNext(rest, information);
        answer += information;
    }
    return answer + (inMessage ? "\r\n> " : framed(result));
}

/** Takes one command off a line of several. Extended ones are ended by a semicolon. */
std::string Modem::executeNext(std::string_view &rest, std::string &information)
{
    if (rest.front() == ' ' || rest.front() == ';') {
        rest.remove_prefix(1);
        return ok;
    }
    if (rest.front() != '+')
        return basic(rest, information);
    const auto end = rest.find(';');
    const auto command = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return extended(command, information);
}

std::string Modem::basic(std::string_view &rest, std::string &information)
{
    const char letter = upper(rest.front());
    rest.remove_prefix(1);
    if (letter == '&' && !rest.empty() && upper(rest.front()) == 'F') {
        rest.remove_prefix(1);
        resetSettings();
        return takeNumber(rest) == 0 ? ok : error;
    }
    if (letter == 'D') {
        rest = {};
        return "NO CARRIER";
    }
    const int number = takeNumber(rest);
    if (letter == 'E' && (number == 0 || number == 1))
        echo = number == 1;
    else if (letter == 'I' && number == 0)
        information += framed(std::string(identity("+CGMI")) + "\r\n" + identity("+CGMM") + "\r\n" +
                              identity("+CGMR"));
    else if (letter == 'Z' && number == 0)
        resetSettings();
    else if (letter != 'H' || number != 0)
        return error;
    return ok;
}

std::string Modem::extended(std::string_view command, std::string &information)
{
    const auto nameEnd = command.find_first_of("=?");
    std::string name(command.substr(0, nameEnd));
    std::transform(name.begin(), name.end(), name.begin(), upper);
    const auto tail = nameEnd == std::string_view::npos ? "" : command.substr(nameEnd);
    Request request{name, Form::Set, {}};
    if (tail.empty())
        request.form = Form::Execute;
    else if (tail == "?")
        request.form = Form::Read;
    else if (tail == "=?")
        request.form = Form::Test;
    else if (tail.front() == '=')
        request.argument = tail.substr(1);
    else
        return error;
    const auto *found = std::find_if(std::begin(commands), std::end(commands),
        [&name](const Command &row) { return row.name == name; });
    return found == std::end(commands) ? error : (this->*found->handler)(request, information);
}

/** A setting of 0 to most that is read, tested and written in the usual way. */
std::string Modem::setting(const Request &request, int &value, int most, std::string &information)
{
    const std::string name(request.name);
    std::string_view argument = request.argument;
    switch (request.form) {
    case Form::Read:
        information += framed(name + ": " + std::to_string(value));
        return ok;
    case Form::Test:
        information += framed(name + ": (0-" + std::to_string(most) + ")");
        return ok;
    case Form::Execute:
        return error;
    case Form::Set:
        break;
    }
    const bool numeric = isCode(argument, 1, 3);
    const int wanted = takeNumber(argument);
    if (!numeric || wanted > most)
        return equipmentError(NotAllowed);
    value = wanted;
    return ok;
}

std::string Modem::identification(const Request &request, std::string &information)
{
    if (request.form == Form::Execute)
        information += framed(identity(request.name));
    return request.form == Form::Execute || request.form == Form::Test ? ok : error;
}

std::string Modem::cardNumber(const Request &request, std::string &information)
{
    if (request.form == Form::Read || request.form == Form::Set)
        return error;
    if (request.form == Form::Test)
        return ok;
    if (locked())
        return lockError();
    information += framed("240017123456789");
    return ok;
}

std::string Modem::pin(const Request &request, std::string &information)
{
    if (request.form == Form::Test)
        return ok;
    if (!sim.inserted || sim.pukTries == 0)
        return lockError();
    if (request.form == Form::Set)
        return enterPin(request.argument);
    if (request.form == Form::Execute)
        return error;
    const char *state = sim.pinTries == 0 ? "SIM PUK" : locked() ? "SIM PIN" : "READY";
    information += framed(std::string("+CPIN: ") + state);
    return ok;
}

std::string Modem::enterPin(std::string_view argument)
{
    if (!locked())
        return equipmentError(NotAllowed);
    const auto given = argumentsOf(argument);
    if (sim.pinTries > 0)
        return given.size() == 1 ? tryPin(given[0]) : equipmentError(NotAllowed);
    return given.size() == 2 ? tryPuk(given[0], given[1]) : equipmentError(PukRequired);
}

std::string Modem::tryPin(const std::string &given)
{
    if (given == sim.pin) {
        sim.pinTries = pinTriesOfACard;
        pinEntered = true;
        return ok;
    }
    --sim.pinTries;
    return equipmentError(sim.pinTries > 0 ? WrongPassword : PukRequired);
}

std::string Modem::tryPuk(const std::string &given, const std::string &newPin)
{
    if (given == sim.puk && isCode(newPin, 4, 8)) {
        sim.pin = newPin;
        sim.pinTries = pinTriesOfACard;
        sim.pukTries = SimCard().pukTries;
        pinEntered = true;
        return ok;
    }
    if (given != sim.puk)
        --sim.pukTries;
    return equipmentError(sim.pukTries > 0 ? WrongPassword : SimFailure);
}

std::string Modem::registration(const Request &request, std::string &information)
{
    if (request.form != Form::Read)
        return setting(request, registrationTells, 1, information);
    information += framed(
        "+CREG: " + std::to_string(registrationTells) + "," + std::to_string(registrationNow()));
    return ok;
}

std::string Modem::signal(const Request &request, std::string &information)
{
    if (request.form == Form::Test)
        information += framed("+CSQ: (0-31,99),(99)");
    else if (request.form == Form::Execute)
        information += framed("+CSQ: " + std::to_string(network.signal) + ",99");
    else
        return error;
    return ok;
}

std::string Modem::networkName(const Request &request, std::string &information)
{
    if (locked())
        return lockError();
    const bool registered = registrationNow() == 1 || registrationNow() == 5;
    if (request.form == Form::Read)
        information += framed(registered ? "+COPS: 0,0,\"" + network.name + "\"" : "+COPS: 0");
    else if (request.form != Form::Set || argumentsOf(request.argument)[0] != "0")
        return equipmentError(NotAllowed);
    return ok;
}

std::string Modem::functionality(const Request &request, std::string &information)
{
    int full = 1;
    return setting(request, full, 1, information);
}

std::string Modem::errorStyle(const Request &request, std::string &information)
{
    return setting(request, errorNumbers, 2, information);
}

std::string Modem::messageFormat(const Request &request, std::string &information)
{
    return setting(request, textMode, 1, information);
}

/** Only messages as text; a number is taken with and without its quotation marks. */
std::string Modem::sendMessage(const Request &request, std::string &)
{
    if (request.form == Form::Test)
        return ok;
    if (request.form != Form::Set)
        return error;
    if (!sim.inserted)
        return messageError(MessageSimNotInserted);
    if (sim.pukTries == 0)
        return messageError(MessageSimFailure);
    if (locked())
        return messageError(sim.pinTries == 0 ? MessagePukRequired : MessagePinRequired);
    if (textMode == 0)
        return messageError(MessageNotAllowed);
    message = {0, argumentsOf(request.argument)[0], {}};
    if (!isPhoneNumber(message.number))
        return messageError(NoTextModeParameter);
    inMessage = true;
    afterPrompt = true;
    return {};
}

std::string Modem::announceRegistration()
{
    const int now = registrationNow();
    if (typing() || now == announced)
        return {};
    announced = now;
    return registrationTells == 1 ? framed("+CREG: " + std::to_string(now)) : std::string();
}

std::string Modem::announceTimeZone() const
{
    return typing() || registrationNow() == 0 ? std::string() : framed("+CTZV: +4");
}

std::vector<ShortMessage> Modem::takeSent()
{
    return std::exchange(sent, {});
}

} // namespace virtualunit::lines
