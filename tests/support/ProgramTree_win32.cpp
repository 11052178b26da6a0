#include "tests/support/ProgramTree.h"

#include "tests/support/registry_win32.h"

#include <QDir>

namespace support {

namespace {

std::wstring wide(const QByteArray &latin1)
{
    return QString(QLatin1String(latin1.constData(), latin1.size())).toStdWString();
}

void removeBiosData()
{
    removeValue(boardKey, boardValue);
    removeValue(versionKey, versionValue);
}

/** The search path without the folder of the virtual unit's libraries, which a test puts in itself
 *  or wants to be missing. */
QString pathWithoutUnit(const QString &all)
{
    QStringList folders = all.split(QLatin1Char(';'));
    const QDir unit(QStringLiteral(VORN_BIN_DIR));
    folders.erase(std::remove_if(folders.begin(), folders.end(),
                      [&unit](const QString &folder) { return QDir(folder) == unit; }),
        folders.end());
    return folders.join(QLatin1Char(';'));
}

} // namespace

ProgramTree::ProgramTree(const QString &deviceLibrary)
    : environment(QProcessEnvironment::systemEnvironment())
{
    for (const char *name : {"bin", "log"})
        QDir().mkpath(path(QString::fromLatin1(name)));
    putIn(QStringLiteral(VORN_BIN_DIR "/VornSettings.exe"), QStringLiteral("bin/VornSettings.exe"));
    replaceDeviceLibrary(deviceLibrary);
    removeBiosData();
    const QString search = QStringLiteral("PATH");
    environment.insert(search, pathWithoutUnit(environment.value(search)));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.insert(QStringLiteral("VORN_LOG_DIR"), path(QStringLiteral("log")));
    environment.insert(QStringLiteral("VORN_UNIT"), path(QStringLiteral("unit")));
}

ProgramTree::~ProgramTree()
{
    removeBiosData();
}

QString ProgramTree::program() const
{
    return path(QStringLiteral("bin/VornSettings.exe"));
}

void ProgramTree::replaceDeviceLibrary(const QString &file) const
{
    putBesideProgram(file, QStringLiteral("VornAux2"));
}

void ProgramTree::putBesideProgram(const QString &file, const QString &library) const
{
    putIn(file, QStringLiteral("bin/%1.dll").arg(library));
}

void ProgramTree::letOthersFindUnit()
{
    // Alone, for the board's libraries are beside it where it was built.
    QDir().mkpath(path(QStringLiteral("others")));
    putIn(QStringLiteral(VORN_BIN_DIR "/VornAux2.dll"), QStringLiteral("others/VornAux2.dll"));
    const QString search = QStringLiteral("PATH");
    environment.insert(
        search, environment.value(search) + QLatin1Char(';') + path(QStringLiteral("others")));
}

void ProgramTree::setBoard(const QByteArray &product) const
{
    writeValue(boardKey, boardValue, REG_SZ, wide(product));
}

void ProgramTree::setBiosVersion(const QByteArray &version) const
{
    writeValue(versionKey, versionValue, REG_MULTI_SZ, wide(version) + L'\0');
}

} // namespace support
