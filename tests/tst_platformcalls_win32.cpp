#include "platform/platform.h"

#include <QStringList>
#include <QtTest>

#include <cstring>
#include <utility>

#include <windows.h>

namespace {

QStringList calls;   // of the system since the last take()
QStringList refused; // names of calls that fail
const auto openedKey = HKEY(0x4711);
const auto loadedLibrary = HMODULE(0x815);

QString latin1(const char *text)
{
    return QString::fromLatin1(text);
}

/** Notes "name(arguments)"; whether the call is to succeed. */
bool note(const char *name, const QStringList &arguments)
{
    calls << latin1(name) + QLatin1Char('(') + arguments.join(QLatin1String(", ")) +
                 QLatin1Char(')');
    return !refused.contains(latin1(name));
}

QString text(const wchar_t *wide)
{
    return QString::fromWCharArray(wide);
}

QString handle(const void *value)
{
    return QString::number(quint64(reinterpret_cast<quintptr>(value)), 16);
}

LSTATUS notedOpenKey(HKEY root, const wchar_t *name, DWORD options, DWORD access, HKEY *key)
{
    *key = openedKey;
    const bool isMachine = root == HKEY_LOCAL_MACHINE;
    const bool opened =
        note("RegOpenKeyExW", {isMachine ? latin1("machine") : latin1("other"), text(name),
                                  QString::number(options), QString::number(access, 16)});
    return opened ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

LSTATUS notedQueryValue(
    HKEY key, const wchar_t *name, DWORD *reserved, DWORD *, BYTE *data, DWORD *size)
{
    const bool found = note(
        "RegQueryValueExW", {handle(key), text(name), handle(reserved), QString::number(*size)});
    if (!found)
        return ERROR_MORE_DATA;
    // Several strings, as the system keeps them.
    constexpr wchar_t value[] = L"TS77\0more\0";
    std::memcpy(data, value, sizeof value);
    *size = sizeof value;
    return ERROR_SUCCESS;
}

LSTATUS notedCloseKey(HKEY key)
{
    note("RegCloseKey", {handle(key)});
    return ERROR_SUCCESS;
}

HMODULE notedLoadLibrary(const wchar_t *name)
{
    return note("LoadLibraryW", {text(name)}) ? loadedLibrary : nullptr;
}

FARPROC notedGetProcAddress(HMODULE library, const char *name)
{
    note("GetProcAddress", {handle(library), latin1(name)});
    return nullptr;
}

BOOL notedFreeLibrary(HMODULE library)
{
    return note("FreeLibrary", {handle(library)});
}

int notedMessageBox(HWND owner, const wchar_t *message, const wchar_t *title, UINT kind)
{
    note("MessageBoxW", {handle(owner), text(message), text(title), QString::number(kind)});
    return IDOK;
}

} // namespace

// The layer once more, on a system that writes down what it is asked for.
#define RegOpenKeyExW notedOpenKey
#define RegQueryValueExW notedQueryValue
#define RegCloseKey notedCloseKey
#define LoadLibraryW notedLoadLibrary
#define GetProcAddress notedGetProcAddress
#define FreeLibrary notedFreeLibrary
#define MessageBoxW notedMessageBox
#include "platform/platform_win32.cpp"

namespace {

using platform::BiosValue;

QStringList take()
{
    return std::exchange(calls, {});
}

const QString boardKey =
    latin1("RegOpenKeyExW(machine, HARDWARE\\DESCRIPTION\\System\\BIOS\\, 0, 20019)");
const QString boardValue = latin1("RegQueryValueExW(4711, BaseBoardProduct, 0, 255)");
const QString biosKey = latin1("RegOpenKeyExW(machine, HARDWARE\\Description\\System, 0, 20019)");
const QString biosValue = latin1("RegQueryValueExW(4711, SystemBiosVersion, 0, 255)");
const QString closing = latin1("RegCloseKey(4711)");

} // namespace

/** What the platform layer asks of Windows, in order and with every argument. */
class PlatformCallsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        take();
        refused.clear();
    }

    void biosText_data()
    {
        QTest::addColumn<bool>("board");
        QTest::addColumn<QString>("failing");
        QTest::addColumn<QStringList>("asked");
        const QString none;
        const auto key = latin1("RegOpenKeyExW");
        const auto value = latin1("RegQueryValueExW");
        // Its key stays open once the value could be read.
        QTest::newRow("board") << true << none << QStringList{boardKey, boardValue};
        QTest::newRow("board, no key") << true << key << QStringList{boardKey};
        QTest::newRow("board, no value")
            << true << value << QStringList{boardKey, boardValue, closing};
        QTest::newRow("BIOS") << false << none << QStringList{biosKey, biosValue, closing};
        QTest::newRow("BIOS, no key") << false << key << QStringList{biosKey};
        QTest::newRow("BIOS, no value")
            << false << value << QStringList{biosKey, biosValue, closing};
    }

    void biosText()
    {
        QFETCH(bool, board);
        QFETCH(QString, failing);
        QFETCH(QStringList, asked);
        refused << failing;
        const auto found =
            platform::biosText(board ? BiosValue::BaseBoardProduct : BiosValue::SystemBiosVersion);
        QCOMPARE(take(), asked);
        QCOMPARE(found.has_value(), failing.isEmpty());
        if (found)
            QCOMPARE(QString::fromStdU16String(*found), latin1("TS77")); // the first string
    }

    void library()
    {
        {
            const platform::DynamicLibrary library("jida.dll");
            QVERIFY(library.isLoaded());
            QCOMPARE(take(), QStringList{latin1("LoadLibraryW(jida.dll)")});
            QVERIFY(!library.procedure("JidaDllInitialize"));
            QCOMPARE(take(), QStringList{latin1("GetProcAddress(815, JidaDllInitialize)")});
        }
        QCOMPARE(take(), QStringList{latin1("FreeLibrary(815)")});
    }

    void missingLibrary()
    {
        refused << latin1("LoadLibraryW");
        {
            const platform::DynamicLibrary library("Cgos.dll");
            QVERIFY(!library.isLoaded());
            QVERIFY(!library.procedure("CgosLibInitialize"));
        }
        QCOMPARE(take(), QStringList{latin1("LoadLibraryW(Cgos.dll)")});
    }

    void blockingMessage()
    {
        platform::showBlockingMessage(latin1("error"), latin1("a text"));
        QCOMPARE(take(), QStringList{latin1("MessageBoxW(0, a text, error, 0)")});
    }
};

QTEST_GUILESS_MAIN(PlatformCallsTest)
#include "tst_platformcalls_win32.moc"
