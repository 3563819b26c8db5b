#pragma once

#include <QByteArray>
#include <QString>

/// The question that a controller answers with its model code.
inline const QByteArray identityQuestion = QByteArrayLiteral("?K\r");

/// More of an answer is not looked at.
constexpr int maximumIdentity = 64;

/// What something answered to the question.
struct Identity
{
    enum Kind {
        Model,   ///< one to three digits, the model code
        Refusal, ///< E and a digit: a controller that does not tell its model
        Other    ///< anything else, also nothing: no controller
    };
    Kind kind = Other;
    /// The answer's first line without its end.
    QString text;
};

/// Judges the bytes that came back; only the first line counts. `isWhole` tells that the answer has
/// ended by itself, as a datagram does; otherwise a line that has no end is Other.
Identity identityOf(const QByteArray &bytes, bool isWhole);

/// The name of the model with that code; empty when it is not known.
QString modelName(const QString &code);
