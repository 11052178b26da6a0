#include "virtualunit/lines/Modem.h"

#include <algorithm>
#include <utility>

namespace virtualunit::lines {

namespace {

constexpr char endOfMessage = 0x1A;
constexpr char escape = 0x1B;
constexpr char backspace = 0x08;
constexpr std::size_t longestLine = 556;
constexpr std::size_t longestMessage = 160;

} // namespace

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
    const auto *const start = std::search(typed.begin(), typed.end(), attention.begin(),
        attention.end(), [](char one, char other) { return upper(one) == other; });
    if (start == typed.end())
        return {};
    if (typed.size() > longestLine)
        return framed(error);
    std::string_view rest = typed.substr(std::size_t(start - typed.begin()) + 2);
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
