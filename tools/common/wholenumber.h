#pragma once

#include <QString>

#include <optional>

/// The number in the text, which must have decimal digits only: no sign, no blank. Nothing for
/// another text or a number that is not from `minimum` to `maximum`.
std::optional<int> wholeNumber(const QString &text, int minimum, int maximum);
