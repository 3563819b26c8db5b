#pragma once

#include <QString>

/// A literal of a test, which is UTF-8, as text.
inline QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}
