#pragma once

#include <QByteArray>
#include <QString>

/// The command that a controller answers with its model code.
inline const QByteArray identityQuestion = QByteArrayLiteral("?K\r");

/// What kvsim answers at the port of its control commands.
inline const QString simulatorControl = QStringLiteral("error this is the control port of kvsim");

/// The rest of a longer answer is ignored.
constexpr int maximumIdentity = 64;

/// The answer to the question.
struct Identity
{
    /// Whether it is a model code of one to three digits, or E and a digit: a controller that
    /// refuses the question.
    bool isController = false;
    /// The first line of the answer without its end.
    QString text;
};

/// Reads the first line of the answer. `isWhole` means that the answer is complete, as a datagram
/// is; otherwise a line without an end is no controller's.
Identity identityOf(const QByteArray &bytes, bool isWhole);

/// The name of the model with that code; empty when it is not known.
QString modelName(const QString &code);
