#pragma once

#include <QString>

/// A Latin-1 literal as text.
inline QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}
