#include "tests/support/BiosData.h"

#include "tests/support/registry_win32.h"

#include <QString>

#include <memory>

namespace support {

namespace {

std::unique_ptr<OwnRegistry> registry;

std::wstring wide(const QByteArray &latin1)
{
    return QString(QLatin1String(latin1.constData(), latin1.size())).toStdWString();
}

} // namespace

BiosData::BiosData()
{
    registry = std::make_unique<OwnRegistry>();
}

BiosData::~BiosData()
{
    registry.reset();
}

void BiosData::setBoard(const QByteArray &product)
{
    writeValue(boardKey, boardValue, REG_SZ, wide(product));
}

void BiosData::setVersion(const QByteArray &version)
{
    writeValue(versionKey, versionValue, REG_MULTI_SZ, wide(version) + L'\0');
}

} // namespace support
