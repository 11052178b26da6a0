#include "tests/support/BiosData.h"

#include <QFile>

namespace support {

namespace {

void write(const QString &name, const QByteArray &content)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("no BIOS data");
}

} // namespace

BiosData::BiosData()
{
    qputenv("VORN_DMI_DIR", QFile::encodeName(folder.path()));
}

BiosData::~BiosData()
{
    qunsetenv("VORN_DMI_DIR");
}

void BiosData::setBoard(const QByteArray &product)
{
    write(folder.filePath(QStringLiteral("board_name")), product);
}

void BiosData::setVersion(const QByteArray &version)
{
    write(folder.filePath(QStringLiteral("bios_version")), version);
}

} // namespace support
