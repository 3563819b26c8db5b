#pragma once

#include <QString>

// What the texts of a plant must be, whoever asks.

/// A TCP port, 1 to 65535 in plain digits.
bool isPort(const QString &text);

/// Milliseconds, 1 or more in plain digits.
bool isTimeout(const QString &text);

/// A device of a controller and its number, with a bit or a range behind it where there is one.
bool isMemoryAddress(const QString &text);

/// Whether the address names a device that holds single bits in every controller of the series, or
/// words of 16 bits. Both are false for a name that is not known, or that has either.
bool holdsBits(const QString &memoryAddress);
bool holdsWords(const QString &memoryAddress);
