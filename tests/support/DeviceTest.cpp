#include "tests/support/DeviceTest.h"

#include "virtualunit/VirtualUnit.h"

#include <QMutex>

#include <utility>

namespace {

// A Friday noon: daylight for the light sensor, and far from any change of summer time.
constexpr std::int64_t testTime = 1'768'564'800'000;

QMutex warningsLock;
QStringList warnings;

void collectWarning(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    // The offscreen platform says so for every window; it has no window manager to tell sizes to.
    if (text.contains(QLatin1String("propagateSizeHints")))
        return;
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    const QMutexLocker locker(&warningsLock);
    warnings << text;
    if (type == QtFatalMsg)
        fprintf(stderr, "%s\n", qPrintable(text));
}

QtMessageHandler testlibHandler = nullptr;

QString text(const std::string &bytes)
{
    return QString::fromUtf8(bytes.data(), int(bytes.size()));
}

std::string bytes(const QString &text)
{
    return text.toStdString();
}

QString withoutHandle(const virtualunit::Call &call)
{
    QString line =
        text(call.operation) + QLatin1Char('(') + text(call.arguments) + QLatin1Char(')');
    const QString result = text(call.result);
    if (!result.isEmpty() && !result.startsWith(QLatin1Char('#')))
        line += QLatin1String(" = ") + result;
    if (!call.outs.empty())
        line += QLatin1String(" [") + text(call.outs) + QLatin1Char(']');
    return line;
}

/** The number of the calling thread, which the journal gives in the order of first calls: a page's
 *  thread that is about to end may have been before us. 0 if the calls don't reach our unit. */
unsigned ownNumber()
{
    constexpr DeviceCode unique = 4711;
    deviceErrorText(unique);
    for (const virtualunit::Call &call : virtualunit::takeJournal()) {
        if (call.operation == "deviceErrorText" && call.arguments == std::to_string(unique))
            return call.thread;
    }
    return 0;
}

void require(const virtualunit::Error &error)
{
    if (!error.empty())
        qFatal("virtual unit: %s", error.c_str());
}

} // namespace

void DeviceTest::useProfile(const QString &profile)
{
    require(virtualunit::loadProfile(bytes(profile)));
    require(virtualunit::setClock(testTime));
    virtualunit::takeJournal();
}

void DeviceTest::setUnit(const QString &name, const QString &value)
{
    require(virtualunit::set(bytes(name), bytes(value)));
}

QString DeviceTest::unit(const QString &name)
{
    std::string value;
    require(virtualunit::get(bytes(name), value));
    return text(value);
}

void DeviceTest::fault(const QString &operation, int code, unsigned times, unsigned after)
{
    require(virtualunit::setFault(bytes(operation), code, times, after));
}

void DeviceTest::clearFaults()
{
    require(virtualunit::clearFaults());
}

QStringList DeviceTest::calls()
{
    QStringList lines;
    for (const virtualunit::Call &call : virtualunit::takeJournal())
        lines << withoutHandle(call);
    return lines;
}

QStringList DeviceTest::mainThreadCalls()
{
    QStringList lines;
    for (const virtualunit::Call &call : virtualunit::takeJournal()) {
        if (call.thread == mainThread)
            lines << withoutHandle(call);
    }
    return lines;
}

QStringList DeviceTest::journal()
{
    QStringList lines;
    for (const virtualunit::Call &call : virtualunit::takeJournal())
        lines << text(call.text());
    return lines;
}

QStringList DeviceTest::takeWarnings()
{
    const QMutexLocker locker(&warningsLock);
    return std::exchange(warnings, {});
}

void DeviceTest::init()
{
    takeWarnings();
    testlibHandler = qInstallMessageHandler(collectWarning);
    require(virtualunit::open(":memory:"));
    useProfile(QStringLiteral("full"));
    virtualunit::startJournal();
    mainThread = ownNumber();
}

void DeviceTest::cleanup()
{
    virtualunit::stopJournal();
    qInstallMessageHandler(testlibHandler);
    QCOMPARE(dialogs.takeTexts(), QStringList());
    const QStringList said = takeWarnings();
    QVERIFY2(said.isEmpty(), qPrintable(said.join(QLatin1Char('\n'))));
    for (const QWidget *window : QApplication::topLevelWidgets())
        QVERIFY2(
            !window->isVisible(), qPrintable(QLatin1String("left open: ") + window->objectName()));
}
