#pragma once

#include <QString>

/// A literal of a test table as text, each byte one character.
inline QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}
