#pragma once

#include <QByteArray>
#include <QProcess>
#include <QTemporaryDir>

namespace support {

/**
 * A system bus of the test's own while the object lives: DBUS_SYSTEM_BUS_ADDRESS leads there. Its
 * services are played by python3-dbusmock. One at a time in a process.
 */
class MockBus
{
public:
    /** Whether this machine has what it takes; a test is skipped without. */
    static bool isPossible();

    MockBus();
    ~MockBus();
    MockBus(const MockBus &) = delete;
    MockBus &operator=(const MockBus &) = delete;

    /** Adds services by a Python script: `service(name, path, interface, manager, properties)`
     * gives an object of dbusmock. They all come from one process, which answers one call after the
     *  other. */
    void play(const QByteArray &script);
    /** Their process ends, without a word, in the middle of whatever it does. */
    void killServices();
    /** The bus itself ends. */
    void killBus();
    /** What the services printed: a line for each call, with its method and arguments. */
    QByteArray calls();

private:
    QTemporaryDir folder;
    QProcess daemon;
    QProcess services;
    QByteArray printed;
};

} // namespace support
