#include "tests/support/MockBus_posix.h"

#include <QFile>
#include <QStringList>

namespace support {

namespace {

constexpr int startLimit = 30000; ///< milliseconds

/** The one with Debian's packages, whatever comes first in the path. */
const char *const python = "/usr/bin/python3";

constexpr const char *configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>unix:path=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

void end(QProcess &process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.kill();
    process.waitForFinished(-1);
}

} // namespace

bool MockBus::isPossible()
{
    static const bool isThere =
        QProcess::execute(QStringLiteral("dbus-daemon"), {QStringLiteral("--version")}) == 0 &&
        QProcess::execute(QLatin1String(python),
            {QStringLiteral("-c"), QStringLiteral("import dbusmock, gi")}) == 0;
    return isThere;
}

MockBus::MockBus()
{
    const auto path = folder.filePath(QStringLiteral("bus"));
    QFile file(folder.filePath(QStringLiteral("bus.conf")));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(QString::fromLatin1(configuration).arg(path).toUtf8()) < 0)
        qFatal("%s", qPrintable(file.errorString()));
    file.close();
    daemon.setStandardErrorFile(QProcess::nullDevice()); // it complains of its limits
    daemon.start(QStringLiteral("dbus-daemon"),
        {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
            QStringLiteral("--print-address"), QStringLiteral("--config-file=") + file.fileName()});
    if (!daemon.waitForReadyRead(startLimit))
        qFatal("dbus-daemon doesn't start: %s", qPrintable(daemon.errorString()));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + QFile::encodeName(path));
    services.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

MockBus::~MockBus()
{
    end(services);
    end(daemon);
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

void MockBus::play(const QByteArray &script)
{
    end(services);
    printed.clear();
    services.start(QLatin1String(python),
        {QStringLiteral(VORN_SOURCE_DIR "/tests/support/programs/mockservices.py"),
            QString::fromLocal8Bit(qgetenv("DBUS_SYSTEM_BUS_ADDRESS"))});
    services.write(script + "\n# end\n");
    while (!services.canReadLine() && services.waitForReadyRead(startLimit)) {
    }
    if (services.readLine() != "ready\n")
        qFatal("the services don't start");
}

void MockBus::killServices()
{
    end(services);
}

void MockBus::killBus()
{
    end(daemon);
}

QByteArray MockBus::calls()
{
    services.waitForReadyRead(1);
    printed += services.readAllStandardOutput();
    return printed;
}

} // namespace support
