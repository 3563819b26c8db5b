#pragma once

#include <QString>

/// The number of terminal columns that the text takes: an ideograph takes two, a combining mark
/// none. The text must have no control characters, see visible().
int textWidth(const QString &text);

/// The text in at most `width` columns. A longer one is cut and ends in "…", so that a cut number
/// is not read as the whole number. Empty when `width` is 0 or less.
QString cutToWidth(const QString &text, int width);

/// The text, filled up with spaces to `width` columns.
QString paddedToWidth(const QString &text, int width);

/// The text in lines of at most 79 characters; only a longer word makes a longer line. Each line
/// begins with `indent` and ends with a line feed.
QString wrappedText(const QString &text, const QString &indent);
