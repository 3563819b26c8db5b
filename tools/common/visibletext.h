#pragma once

#include <QString>

/// The text with escape sequences for control characters, other invisible characters and
/// backslashes (`\r`, `\x00`, `\u2028`, `\\`). A space at the end becomes `\x20`.
QString visible(const QString &text);
