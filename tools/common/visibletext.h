#pragma once

#include <QString>

/// The text with its control characters, other invisible characters and backslashes written out
/// (`\r`, `\x00`, `\u2028`, `\\`), and a space at its end as `\x20`.
QString visible(const QString &text);
