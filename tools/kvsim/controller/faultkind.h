#pragma once

#include "controller/fault.h"
#include "controller/reply.h"

class QRandomGenerator;

/// A command that a fault strikes.
struct StruckCommand
{
    const Fault &fault;
    /// The proper answer with its line end; empty when the command is not executed.
    const QByteArray &answer;
    /// The proper answer to the same client's command before.
    const QByteArray &previous;
    QRandomGenerator *random;
};

/// One of the things that can go wrong.
struct FaultKind
{
    enum class Role {
        /// Changes the answer to a command.
        Answer,
        /// The answers to later commands do not wait for the changed one.
        LateAnswer,
        /// There must have been an answer before.
        PreviousAnswer,
        /// The command is not executed.
        NoExecution,
        // What follows strikes new clients, all others strike commands.
        RefuseClient,
        IgnoreClient,
    };

    const char *name;
    Role role;
    /// Takes what stands behind '=', a null array when there is no '='. False when it is wrong.
    bool (*read)(const QByteArray &arguments, Fault *fault);
    const char *usage;
    /// What becomes of a command; a null pointer for a fault that strikes new clients.
    QList<Action> (*actions)(const StruckCommand &command);

    bool strikesClients() const { return role >= Role::RefuseClient; }
};

/// The kind of that name; a null pointer when there is none.
const FaultKind *faultKind(const QByteArray &name);

/// The names of all kinds with commas between, for messages.
QString faultKindNames();
