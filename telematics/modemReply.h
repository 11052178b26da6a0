#pragma once

#include <QString>

#include <cstddef>

class QPlainTextEdit;

/*
 * What the modem console makes of a reply: any bytes, taken as they are. Nothing in a reply is
 * looked at but the two states.
 */

/**
 * Shows what is in the buffer in place of what the view held, or "No data received" if it is all
 * zero. Zero bytes are passed over, and the pieces around them are shown joined. Main thread only.
 */
void showModemReply(QPlainTextEdit *view, const char *buffer, std::size_t size);

/** "PIN code status: Ok" and the like, from what the view shows of the answer to AT+CPIN? */
QString pinStateText(const QString &reply);

/** "Network status: Ok, registered" and the like, from the answer to AT+CREG? */
QString networkStateText(const QString &reply);
