#pragma once

#include "controller/faultreply.h"
#include "controller/linebuffer.h"

#include <QObject>
#include <QTimer>

class QTcpSocket;

class CommandInterpreter;
struct Controller;

/// The connection of one client. It answers the commands in their order, carries out faults, and
/// deletes itself when the client has disconnected.
class Connection : public QObject
{
    Q_OBJECT

public:
    /// While more bytes than this wait to be sent, the client's commands are left unread.
    static constexpr int unsentLimit = 256 * 1024;

    /// Takes over `socket`; `controller` and `interpreter` must outlive the connection.
    Connection(QTcpSocket *socket, Controller *controller, CommandInterpreter *interpreter,
               QObject *parent);

    /// Throws away everything that the client sends from now on.
    void ignoreInput();

    /// Closes the connection at once. Answers that wait are not sent.
    void abort();

Q_SIGNALS:
    /// A command was received, and its answer is decided. `client` is its address and port;
    /// `command` ends in its carriage return, save for one that was too long, of which only the
    /// beginning is there. `answer` is every byte that is sent for it, now or later; `fault` the
    /// fault that was applied, or empty.
    void answered(const QByteArray &client, const QByteArray &command, const QByteArray &answer,
                  const QByteArray &fault);

    /// A fault wants the controller to be away for so long.
    void restartWanted(int milliseconds);

private:
    void serve();
    void answerCommands();
    bool isConnected() const;
    bool canReadMore() const;
    void reply(const Line &line);
    void performPending();
    void perform(const Action &action);
    void scheduleAnswer(const Action &action);
    void queueAnswer(const Action &action);

    QTcpSocket *m_socket;
    Controller *m_controller;
    CommandInterpreter *m_interpreter;
    LineBuffer m_lines;
    QByteArray m_client;
    /// The proper answer to the last command.
    QByteArray m_previousAnswer;
    /// What is left to do for the last command. The next command waits for it.
    QList<Action> m_pendingActions;
    /// Runs until the first of `m_pendingActions` is due.
    QTimer m_nextActionTimer;
    /// Memory taken by answers that come late.
    int m_lateBytes = 0;
};

/// Ends a connection with a reset instead of an orderly close; what the system has not sent yet is
/// lost.
void resetConnection(QTcpSocket *socket);
