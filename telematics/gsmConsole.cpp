#include "telematics/tabTelematicsDlg.h"

#include "frame/WaitNotice.h"
#include "platform/platform.h"
#include "telematics/modemReply.h"
#include "telematics/telematicsState.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <vector>

// The modem console. Its dialogues are unmatched: a command goes out, what the line has to say
// until it falls silent is shown, and nothing in it is looked at but the two states. A line that
// fails shows as "No data received".

namespace {

using CommandBuffer = std::array<char, 256>;

constexpr int pauseBetweenSteps = 100; // milliseconds
constexpr char endOfSms = 0x1A;

/** Puts the three and a zero at the buffer's beginning, as far as they fit. What stands behind
 * stays as it was. */
void fill(CommandBuffer &buffer, const char *before, const QString &text, const char *after)
{
    std::snprintf(
        buffer.data(), buffer.size(), "%s%s%s", before, text.toStdString().c_str(), after);
}

std::size_t measure(const CommandBuffer &buffer)
{
    return std::size_t(std::find(buffer.begin(), buffer.end(), '\0') - buffer.begin());
}

void write(const CommandBuffer &buffer)
{
    serialWrite(gsmPort, buffer.data(), std::uint32_t(measure(buffer)));
}

/** A command with its terminating zero byte, which goes on the line too. */
template <std::size_t Size>
void writeWithZero(const char (&command)[Size])
{
    serialWrite(gsmPort, command, Size);
}

/** The line falls silent behind every answer but the longest. Milliseconds. */
int expectedTime()
{
    return gsmPort ? serialSilence : 0;
}

void letRepliesShow()
{
    QCoreApplication::processEvents();
    platform::pause(pauseBetweenSteps);
}

} // namespace

void tabTelematicsDlg::readReply(std::size_t size)
{
    std::vector<char> reply(size, '\0');
    // Whatever the result: what came in time is in the buffer.
    serialRead(gsmPort, reply.data(), std::uint32_t(size));
    showModemReply(reply.data(), size);
}

void tabTelematicsDlg::showModemReply(const char *buffer, std::size_t size)
{
    ::showModemReply(ui->textEditGSM, buffer, size);
}

void tabTelematicsDlg::CallClicked()
{
    if (ui->editSMStext->text().isEmpty() || ui->editNumber->text().isEmpty())
        return showMessage(QStringLiteral("Please enter a number and some text"));

    const WaitNotice notice(this, expectedTime());
    CommandBuffer command{};
    fill(command, "AT+CMGF=1", {}, "\r\n");
    write(command);
    readReply(256);
    letRepliesShow();

    fill(command, "AT+CMGS=", ui->editNumber->text(), "\r\n");
    write(command);
    readReply(256);
    letRepliesShow();

    // The end mark takes the place of the text's zero, so that what is left of the command before
    // goes out behind it.
    fill(command, "", ui->editSMStext->text(), "");
    command[measure(command)] = endOfSms;
    write(command);
    letRepliesShow();
    readReply(256);
}

void tabTelematicsDlg::HangUpClicked()
{
    const WaitNotice notice(this, expectedTime());
    writeWithZero("ATH\r\n");
    readReply(128);
}

void tabTelematicsDlg::CustomExecClicked()
{
    const WaitNotice notice(this, expectedTime());
    CommandBuffer command{};
    fill(command, "", ui->editCustomAT->text(), "\r\n");
    write(command);
    readReply(512);
}

void tabTelematicsDlg::SetPinClicked()
{
    const QString pin = ui->editPin->text();
    bool isNumber = false;
    const int value = pin.toInt(&isNumber, 10);
    if (pin.size() != 4 || !isNumber || value >= 10000)
        return showMessage(QStringLiteral("Please enter a 4 digit PIN"));
    const WaitNotice notice(this, expectedTime());
    CommandBuffer command{};
    fill(command, "AT+CPIN=", pin, "\r\n");
    write(command);
    readReply(128);
}

void tabTelematicsDlg::GetPinStatusClicked()
{
    const WaitNotice notice(this, expectedTime());
    writeWithZero("AT+CPIN?\r\n");
    readReply(128);
    ui->editPinStatus->setText(pinStateText(ui->textEditGSM->toPlainText()));
}

void tabTelematicsDlg::GetNetworkStatusClicked()
{
    const WaitNotice notice(this, expectedTime());
    writeWithZero("AT+CREG?\r\n");
    readReply(128);
    ui->editNetworkStatus->setText(networkStateText(ui->textEditGSM->toPlainText()));
}
