#pragma once

#include "controller/faultreply.h"
#include "controller/linebuffer.h"

#include <QObject>
#include <QTimer>

class QTcpSocket;

class CommandInterpreter;
struct Controller;

/// One client: answers its commands in their order, or does to it what a fault asks for, and goes
/// when the client goes.
class Connection : public QObject
{
    Q_OBJECT

public:
    /// While more bytes than this wait to be sent, the client's commands are left unread.
    static constexpr int unsentLimit = 256 * 1024;

    /// Takes over `socket`; `controller` and `interpreter` must outlive the connection.
    Connection(QTcpSocket *socket, Controller *controller, CommandInterpreter *interpreter,
               QObject *parent);

    /// From now on drops everything that the client sends.
    void ignoreInput();

    /// Closes the connection at once, whatever still waits.
    void abort();

Q_SIGNALS:
    /// A command was received and what follows from it is decided. `client` is its address and
    /// port; `command` ends in its carriage return, save for one that was too long, of which only
    /// the beginning is there. `answer` is every byte that is sent for it, now or later; `fault`
    /// the fault that was applied, or empty.
    void answered(const QByteArray &client, const QByteArray &command, const QByteArray &answer,
                  const QByteArray &fault);

    /// A fault asks for the controller to be gone for so long.
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
    /// What is left to do for the last command; until then the next one waits.
    QList<Action> m_pendingActions;
    /// Runs until the first of `m_pendingActions` is due.
    QTimer m_nextActionTimer;
    /// Memory taken by answers that come late.
    int m_lateBytes = 0;
};

/// Ends a connection with a reset instead of an orderly close; what the system has not sent yet is
/// lost.
void resetConnection(QTcpSocket *socket);
