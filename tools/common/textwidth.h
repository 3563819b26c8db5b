#pragma once

#include <QString>

/// How many columns of a terminal the text takes: an ideograph takes two, a combining mark none.
/// The text must have no control characters, see visible().
int textWidth(const QString &text);

/// The text in at most `width` columns: a longer one is cut and ends in "…", so that nobody takes a
/// part of a number for the whole. Empty when `width` is 0 or less.
QString cutToWidth(const QString &text, int width);

/// The text with spaces behind it up to `width` columns.
QString paddedToWidth(const QString &text, int width);

/// The text in lines of at most 79 characters, where its words allow it, each begun by `indent` and
/// ended by a line feed.
QString wrappedText(const QString &text, const QString &indent);
