#pragma once

#include <QByteArray>
#include <QString>

/// What an answer says about its exchange. The plug-in takes everything that is no refusal for what
/// was asked for; here it is seen when that cannot be.
struct Verdict
{
    enum class Kind {
        Fits,
        Refusal,      ///< the plug-in tells of it
        NoLineEnd,    ///< cut, or split: the rest comes to the next command
        SeveralLines, ///< another answer, or the rest of one, came first
        WordCount,    ///< more words or fewer than asked for
        NotANumber,   ///< or one of another width than the device has
        OtherValue    ///< of the right form, but not what is known to be there
    };
    Kind kind = Kind::Fits;
    /// For people; empty when the answer fits.
    QString text;
};

/// Whether the answer cannot be trusted.
bool isSuspect(const Verdict &verdict);

/// Judges what one receive has brought, by the command that was sent before. Both are as they were
/// on the wire. `expected` is the right answer without its line end, where that is known, or null.
Verdict verdict(const QByteArray &command, const QByteArray &answer,
                const QByteArray &expected = {});
