#pragma once

#include "memory/devicetable.h"

#include <QByteArray>
#include <QString>

#include <optional>

struct FaultKind;

/// One fault with the commands, or the new clients, that it strikes.
struct Fault
{
    const FaultKind *kind = nullptr;
    /// Milliseconds, bytes or clients, as the kind has it.
    int amount = 0;
    /// By how many milliseconds a delay varies at most, up or down; those between the parts of an
    /// answer.
    int variation = 0;
    /// The answer of a refusal, for example "E1", or when a connection ends: "before", "in" or
    /// "after" the answer.
    QByteArray word;

    /// Only commands that touch this word or bit; nothing: all commands.
    std::optional<Address> address;
    /// Strikes only the n-th command or client that it sees, counted from 1; 0: no such limit.
    quint32 nth = 0;
    /// Strikes only every n-th that it sees; 0: no such limit.
    quint32 every = 0;
    /// Strikes so many in a hundred, 1 to 100, chosen at random.
    quint32 percent = 100;
    /// The seed of the random numbers of this fault.
    quint32 seed = 1;

    /// The fault as it was written.
    QByteArray text;
};

/// Reads KIND[=ARGUMENTS][@SELECTOR...], for example "split=3,20@DM100@nth=2". Returns an
/// empty text, or what is wrong with it and what to write instead.
QString parseFault(const QByteArray &text, Fault *fault);
