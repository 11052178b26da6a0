#include "tests/support/ProgramTree.h"

#include <QDir>

namespace support {

ProgramTree::ProgramTree(const QString &deviceLibrary)
    : environment(QProcessEnvironment::systemEnvironment())
{
    for (const char *name : {"bin", "lib", "dmi", "log"})
        QDir().mkpath(path(QString::fromLatin1(name)));
    putIn(QStringLiteral(VORN_BIN_DIR "/VornSettings"), QStringLiteral("bin/VornSettings"));
    replaceDeviceLibrary(deviceLibrary);
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "LD_LIBRARY_PATH"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("VORN_DMI_DIR"), path(QStringLiteral("dmi")));
    environment.insert(QStringLiteral("VORN_LOG_DIR"), path(QStringLiteral("log")));
    environment.insert(QStringLiteral("VORN_UNIT"), path(QStringLiteral("unit")));
}

ProgramTree::~ProgramTree() = default;

QString ProgramTree::program() const
{
    return path(QStringLiteral("bin/VornSettings"));
}

void ProgramTree::replaceDeviceLibrary(const QString &file) const
{
    putIn(file, QStringLiteral("lib/libVornAux2.so"));
}

void ProgramTree::putBesideProgram(const QString &file, const QString &library) const
{
    putIn(file, QStringLiteral("bin/lib%1.so").arg(library));
}

void ProgramTree::letOthersFindUnit() {} // they have run paths

void ProgramTree::setBoard(const QByteArray &product) const
{
    write(QStringLiteral("dmi/board_name"), product);
}

void ProgramTree::setBiosVersion(const QByteArray &version) const
{
    write(QStringLiteral("dmi/bios_version"), version);
}

} // namespace support
