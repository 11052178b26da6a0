#include "virtualunit/lines/Modem.h"

#include <algorithm>
#include <iterator>

namespace virtualunit::lines {

namespace {

constexpr int pinTriesOfACard = 3;

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

std::string Modem::equipmentError(EquipmentError number) const
{
    if (errorNumbers == 0)
        return error;
    if (errorNumbers == 1)
        return "+CME ERROR: " + std::to_string(number);
    return std::string("+CME ERROR: ") + textOf(number);
}

std::string Modem::messageError(MessageError number) const
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

// Not const, for the table.
// NOLINTNEXTLINE(readability-make-member-function-const)
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

} // namespace virtualunit::lines
