#pragma once

#include <QByteArray>
#include <QTemporaryDir>

namespace support {

/**
 * The BIOS data that this process sees, none at first, for as long as the object lives. Texts are
 * Latin-1. One at a time.
 */
class BiosData
{
public:
    BiosData();
    ~BiosData();
    BiosData(const BiosData &) = delete;
    BiosData &operator=(const BiosData &) = delete;

    void setBoard(const QByteArray &product);
    void setVersion(const QByteArray &version);

private:
    QTemporaryDir folder;
};

} // namespace support
