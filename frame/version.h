#pragma once

#include <QString>

/** The program's own version, "2.7.2.0"; compiled in. */
inline QString programVersion()
{
    return QStringLiteral(VORN_VERSION);
}
