#pragma once

#include <QByteArray>
#include <QList>

/// One step of what the simulator does after a command.
struct Action
{
    enum class Kind { Send, Close, Reset, Restart };

    Kind kind = Kind::Send;
    /// Milliseconds after the step before. Restart: how long nobody listens.
    int milliseconds = 0;
    /// What to send.
    QByteArray bytes;
};

/// All that follows from one command.
struct Reply
{
    /// To be done one after the other; none: the command gets no answer.
    QList<Action> actions;
    /// The answers to later commands do not wait for this one.
    bool detached = false;
    /// The proper answer, before a fault changed it.
    QByteArray answer;
    /// The fault that was applied, as it was written; empty when there was none.
    QByteArray fault;

    /// Every byte that the actions send.
    QByteArray bytes() const
    {
        QByteArray all;
        for (const Action &action : actions)
            all += action.bytes;
        return all;
    }
};
