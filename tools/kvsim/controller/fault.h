#pragma once

#include "memory/devicetable.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// What goes wrong.
enum class FaultKind {
    Delay,
    Silent,
    Late,
    Refuse,
    Split,
    Dribble,
    NoTerminator,
    Empty,
    Garbage,
    Nul,
    Long,
    ShortAnswer,
    ExtraWord,
    NotANumber,
    Duplicate,
    PreviousAnswer,
    Close,
    Reset,
    Restart,
    // What follows strikes new clients, all others strike commands.
    RefuseConnect,
    AcceptThenSilent,
    MaxClients,
};

/// When a connection ends: instead of the answer, half way through it, or behind it.
enum class Moment { Before, In, After };

/// One fault with the commands, or the new clients, that it strikes.
struct Fault
{
    FaultKind kind = FaultKind::Silent;
    /// Milliseconds, bytes or clients, as the kind has it.
    int amount = 0;
    /// Delay: by how many milliseconds the time varies at most, up or down. Split: milliseconds
    /// between the parts.
    int variation = 0;
    /// Refuse: the answer, for example "E1".
    QByteArray refusal;
    /// Close and Reset.
    Moment moment = Moment::Before;

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

/// Whether it strikes new clients and not commands.
constexpr bool strikesClients(FaultKind kind)
{
    return kind >= FaultKind::RefuseConnect;
}

/// Reads KIND[=ARGUMENTS][@SELECTOR...], for example "split=3,20@DM100@nth=2". Returns an
/// empty text, or what is wrong with it and what to write instead.
QString parseFault(const QByteArray &text, Fault *fault);
