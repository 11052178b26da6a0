#include "platform/platform.h"
#include "report/BoardType.h"
#include "tests/support/DeviceTest.h"
#include "tests/support/registry_win32.h"
#include "tests/support/system.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <algorithm>

using namespace support;

namespace {

using platform::BiosValue;

QString found(BiosValue value)
{
    const auto text = platform::biosText(value);
    return text ? QString::fromStdU16String(*text) : "nothing"_s;
}

/** What a function writes to the standard error stream, when that is a file. */
QByteArray errorsOf(const std::function<void()> &function)
{
    const QTemporaryDir folder;
    const std::wstring name = folder.filePath("errors"_s).toStdWString();
    const HANDLE file = CreateFileW(
        name.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
    const HANDLE before = GetStdHandle(STD_ERROR_HANDLE);
    SetStdHandle(STD_ERROR_HANDLE, file);
    function();
    SetStdHandle(STD_ERROR_HANDLE, before);
    CloseHandle(file);
    QFile written(QString::fromStdWString(name));
    return written.open(QIODevice::ReadOnly) ? written.readAll() : QByteArray("nothing");
}

} // namespace

/** Characters that no code page has together, and half a character. */
static QString oddName()
{
    return QStringLiteral("r\u00E9port \u20AC \u044F ") + QChar(0xD83D) + ".txt"_s;
}

/** The platform layer on Windows. */
class PlatformWin32Test : public QObject
{
    Q_OBJECT

private slots:
    void biosText_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("withZero");
        QTest::addColumn<QString>("read");
        const auto row = [](const char *name, const QString &stored, const QString &read,
                             int type = REG_SZ, bool withZero = true) {
            QTest::newRow(name) << type << stored << withZero << read;
        };
        const auto text = [](int length) { return QString(length, QLatin1Char('x')); };
        const QString several = "first 1.0"_s + QChar(0) + "second"_s;
        const QString none = "nothing"_s;
        row("plain", "V 1.2"_s, "V 1.2"_s);
        row("empty", QString(), QString());
        row("beyond Latin-1", QStringLiteral("\u20AC \u044F"), QStringLiteral("\u20AC \u044F"));
        row("line end", "V\n"_s, "V\n"_s);
        row("several texts", several + QChar(0), "first 1.0"_s, REG_MULTI_SZ);
        row("no text", QString(QChar(0)), QString(), REG_MULTI_SZ);
        row("without a zero", "V 1.2"_s, "V 1.2"_s, REG_SZ, false);
        row("not expanded", "%PATH%"_s, "%PATH%"_s, REG_EXPAND_SZ);
        row("126 characters", text(126), text(126));
        row("127 characters", text(127), none);
        row("128 characters", text(128), none);
        row("5000 characters", text(5000), none);
        row("127 characters without a zero", text(127), text(127), REG_SZ, false);
        row("128 characters without a zero", text(128), none, REG_SZ, false);
        row("125 characters, several texts", text(125) + QChar(0), text(125), REG_MULTI_SZ);
        row("126 characters, several texts", text(126) + QChar(0), none, REG_MULTI_SZ);
    }

    void biosText()
    {
        QFETCH(int, type);
        QFETCH(QString, stored);
        QFETCH(bool, withZero);
        QFETCH(QString, read);
        const OwnRegistry registry;
        writeValue(versionKey, versionValue, DWORD(type), stored.toStdWString(), withZero);
        QCOMPARE(found(BiosValue::SystemBiosVersion), read);
        QCOMPARE(found(BiosValue::BaseBoardProduct), "nothing"_s);
        writeValue(boardKey, boardValue, DWORD(type), stored.toStdWString(), withZero);
        removeValue(versionKey, versionValue);
        QCOMPARE(found(BiosValue::BaseBoardProduct), read);
        QCOMPARE(found(BiosValue::SystemBiosVersion), "nothing"_s);
    }

    void biosText_withoutKeys()
    {
        const OwnRegistry registry;
        QCOMPARE(found(BiosValue::BaseBoardProduct), "nothing"_s);
        QCOMPARE(found(BiosValue::SystemBiosVersion), "nothing"_s);
    }

    void biosText_withoutValues()
    {
        const OwnRegistry registry;
        writeValue(boardKey, L"BaseBoardProducts", REG_SZ, L"TS77");
        writeValue(versionKey, L"", REG_SZ, L"V 1.2");
        QCOMPARE(found(BiosValue::BaseBoardProduct), "nothing"_s);
        QCOMPARE(found(BiosValue::SystemBiosVersion), "nothing"_s);
    }

    void biosText_ofAnyType()
    {
        const OwnRegistry registry;
        writeValue(versionKey, versionValue, REG_BINARY, L"V 1.2");
        QCOMPARE(found(BiosValue::SystemBiosVersion), "V 1.2"_s);
    }

    void boardType_data()
    {
        QTest::addColumn<QString>("product");
        QTest::addColumn<int>("type");
        const auto row = [](const char *product, int type) {
            QTest::newRow(product) << QString::fromLatin1(product) << type;
        };
        row("", 0);
        row("Standard PC", 0);
        row("COMe-bIP6", 1);
        row("COMe-bIP6 B", 0);
        row(" COMe-bIP6", 0);
        row("come-bip6", 0);
        row("ChiefRiver", 1);
        row("an Old ChiefRiver board", 1);
        row("TS77", 2);
        row("xxTS77yy", 2);
        row("ts77", 0);
        row("Aptio CRB", 4);
        row("AptioCRB", 0);
        row("TCA3", 4);
        row("congaTCA3", 4);
        row("TS77 ChiefRiver", 1);
        row("TCA3 TS77", 2);
    }

    void boardType()
    {
        QFETCH(QString, product);
        QFETCH(int, type);
        const OwnRegistry registry;
        writeValue(boardKey, boardValue, REG_SZ, product.toStdWString());
        BoardType read = type == BOARD_CGOS ? BOARD_UNRECOGNISED : BOARD_CGOS;
        QVERIFY(readBoardType(read));
        QCOMPARE(int(read), type);
        // Nothing to read leaves the type as it was.
        removeValue(boardKey, boardValue);
        read = BOARD_CGOS;
        QVERIFY(!readBoardType(read));
        QCOMPARE(int(read), int(BOARD_CGOS));
    }

    void boardTypeKeepsItsKeyOpen()
    {
        constexpr int rounds = 50;
        const OwnRegistry registry;
        writeValue(boardKey, boardValue, REG_SZ, L"TS77");
        writeValue(versionKey, versionValue, REG_SZ, L"V 1.2");
        const auto grown = [](BiosValue value) {
            platform::biosText(value);
            const int before = openHandles();
            for (int i = 0; i < rounds; ++i)
                platform::biosText(value);
            return openHandles() - before;
        };
        QCOMPARE(grown(BiosValue::BaseBoardProduct), rounds);
        QCOMPARE(grown(BiosValue::SystemBiosVersion), 0);
        removeValue(boardKey, boardValue);
        QCOMPARE(grown(BiosValue::BaseBoardProduct), 0);
    }

    void errorLine_isWrittenWhole()
    {
        const QString text = "x"_s.repeated(100'000);
        QCOMPARE(errorsOf([&] { platform::printErrorLine(text); }), text.toLatin1() + '\n');
        const QString cafe = QString::fromLatin1("caf\xE9");
        QCOMPARE(errorsOf([&] { platform::printErrorLine(cafe); }), cafe.toLocal8Bit() + '\n');
    }

    void errorLine_withoutStream()
    {
        const HANDLE before = GetStdHandle(STD_ERROR_HANDLE);
        HANDLE nobodysEnd = nullptr;
        HANDLE ownEnd = nullptr;
        QVERIFY(CreatePipe(&nobodysEnd, &ownEnd, nullptr, 0));
        CloseHandle(nobodysEnd);
        for (const HANDLE stream : {HANDLE(nullptr), INVALID_HANDLE_VALUE, ownEnd}) {
            SetStdHandle(STD_ERROR_HANDLE, stream);
            platform::printErrorLine("nobody reads this"_s);
        }
        SetStdHandle(STD_ERROR_HANDLE, before);
        CloseHandle(ownEnd);
    }

    void blockingMessage_isThePlainBoxOfTheSystem()
    {
        SystemBoxes boxes(QCoreApplication::applicationPid());
        platform::showBlockingMessage(
            "error"_s, QStringLiteral("failed to LoadLibrary(\"jida.dll\") \u20AC"));
        QCOMPARE(boxes.take(),
            QStringList(QStringLiteral("error|failed to LoadLibrary(\"jida.dll\") \u20AC|OK")));
    }

    void damagedLibraryIsNoQuestion()
    {
        platform::ensureStandardStreams();
        const QTemporaryDir folder;
        QFile file(folder.filePath("damaged.dll"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("MZ is all that is left");
        file.close();
        SystemBoxes boxes(QCoreApplication::applicationPid());
        const platform::DynamicLibrary library(
            QDir::toNativeSeparators(file.fileName()).toLatin1().constData());
        QVERIFY(!library.isLoaded());
        QCOMPARE(boxes.take(), QStringList());
    }

    void logs_lieWhereTheyAreWritten()
    {
        qunsetenv("VORN_LOG_DIR");
        QCOMPARE(platform::hardwareErrorLog().wstring(), std::wstring(L"C:\\HardwareErrorLog.log"));
        qputenv("VORN_LOG_DIR", "C:\\elsewhere");
        QCOMPARE(platform::hardwareErrorLog().wstring(),
            std::wstring(L"C:\\elsewhere\\HardwareErrorLog.log"));
        QCOMPARE(QDir::fromNativeSeparators(
                     QString::fromStdWString(platform::deviceServiceLog().wstring())),
            QCoreApplication::applicationDirPath() + "/VornAuxService.log"_s);
    }

    /** Run by itself with the argument, which is told by the exit code. */
    void fileArgument_keepsAllCharacters()
    {
        QProcess other;
        other.start(QCoreApplication::applicationFilePath(), {"argument"_s, oddName()});
        QVERIFY(other.waitForFinished(60'000));
        QCOMPARE(other.exitCode(), 77);
    }
};

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrcmp(argv[1], "argument") == 0)
        return platform::fileArgument(2, argv).native() == oddName().toStdWString() ? 77 : 78;
    prepareEnvironment();
    QApplication application(argc, argv);
    PlatformWin32Test test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_platform_win32.moc"
