#pragma once

#include <QString>

#include <optional>

/// The number that the text holds in plain decimal digits, without sign or blank. Nothing when it
/// holds something else or the number is not from `minimum` to `maximum`.
std::optional<int> wholeNumber(const QString &text, int minimum, int maximum);
