#pragma once

#include "tests/support/literals.h"

#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <string>

namespace support {

constexpr int checkPatience = 120'000; // milliseconds

/** What a run of vorncheck left. */
struct CheckOutcome {
    int exitCode = -1;
    QString out;
    QString err;
};

/** Waits for a vorncheck that was started; ends the test program if it doesn't end by itself. */
CheckOutcome ended(QProcess &tool);

/** The report of a run with --json. */
QJsonObject reportIn(const CheckOutcome &outcome, int exitCode);

/** What isn't passed or skipped: "fail answers: what it says". */
QStringList findings(const QJsonObject &report);

} // namespace support

/** Base of tests of vorncheck: each test function has a unit of its own, in a file. */
class CheckTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<QTemporaryDir> folder; ///< the function's own
    QProcessEnvironment environment;       ///< of the runs
    QStringList names;                     ///< of all tests of vorncheck

    support::CheckOutcome run(const QStringList &arguments) const;
    /** The report of a run that ends with that code. */
    QJsonObject check(const QStringList &arguments, int exitCode) const;
    /** The two threads take seconds, so only who is about them gets them. */
    QStringList withoutThreads() const;
    /** All of the unit's values that can be set, as a check must leave them. */
    static std::map<std::string, std::string> settings();
    /** Starts a check that writes, and returns while it does, before it has put anything back. */
    void startWriting(QProcess &tool) const;

protected slots:
    void initTestCase();
    void init();
};
