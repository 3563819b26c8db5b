#pragma once

#include "controller/linebuffer.h"
#include "controller/reply.h"

#include <QObject>
#include <QTimer>

class QTcpSocket;

struct Controller;

/// The connection of one client. It answers the commands in their order, carries out faults, and
/// deletes itself when the client has disconnected.
class Connection : public QObject
{
    Q_OBJECT

public:
    /// While more bytes than this wait to be sent, the client's commands are left unread.
    static constexpr int unsentLimit = 256 * 1024;

    /// Takes over `socket`; `controller` must outlive the connection.
    Connection(QTcpSocket *socket, Controller *controller, QObject *parent);

    /// Throws away everything that the client sends from now on.
    void ignoreInput();

Q_SIGNALS:
    /// A fault wants the controller to be away for so long.
    void restartWanted(int milliseconds);

    /// Answers have gone, and commands wait that were left unread.
    void roomMade();

private:
    void serve();
    void answerCommands();
    bool isConnected() const;
    bool canReadMore() const;
    void reply(const Line &line);
    void performPending();
    void perform(const Action &action);
    void scheduleAnswer(const Action &action);

    QTcpSocket *m_socket;
    Controller *m_controller;
    LineBuffer m_lines;
    QByteArray m_client;
    /// The proper answer to the last command.
    QByteArray m_previousAnswer;
    /// What is left to do for the last command. The next command waits for it.
    QList<Action> m_pendingActions;
    /// Commands were left unread, because something must be done first.
    bool m_inputWaits = false;
    /// Runs until the first of `m_pendingActions` is due.
    QTimer m_nextActionTimer;
    /// Memory taken by answers that come late.
    int m_lateBytes = 0;
};

/// Ends a connection with a reset instead of an orderly close; what the system has not sent yet is
/// lost.
void resetConnection(QTcpSocket *socket);
