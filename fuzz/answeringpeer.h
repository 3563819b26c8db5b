#pragma once

#include <QByteArray>
#include <QList>

/// What the peer got with one command, and what it did.
struct Exchange
{
    QByteArray line;
    /// Empty when there was none.
    QByteArray answer;
};

/// A controller on a free loopback port that follows a script, in the thread of the plug-in: it
/// takes its turn when the plug-in begins to wait for an answer, because the linker redirects that
/// call (`--wrap`). So no execution waits for a thread, and none for a time unless it asks for it.
/// There is one such peer in a program.
class AnsweringPeer
{
public:
    /// Each step is an answer, "close" (nothing more is sent on this connection), "reset", or
    /// "silence"; behind the last one there is only "close".
    explicit AnsweringPeer(QList<QByteArray> steps);

    /// Ends all connections at once, so that none of them is kept by the system.
    ~AnsweringPeer();
    AnsweringPeer(const AnsweringPeer &) = delete;
    AnsweringPeer &operator=(const AnsweringPeer &) = delete;

    static int port();
    bool hasSilence() const;

    /// Takes the command that has come, and makes the next step.
    void takeTurn();

    /// Every exchange since the last call.
    QList<Exchange> takeExchanges();

private:
    void acceptPending();
    QByteArray receive();
    void endConnection();

    QList<QByteArray> m_steps;
    QList<Exchange> m_exchanges;
    int m_connection = -1;
};
