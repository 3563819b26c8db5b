#pragma once

#include "linebuffer.h"

#include <QObject>

class QTcpSocket;

namespace kvsim {

class CommandInterpreter;

/// One client: answers its commands in their order and goes when the client goes.
class Connection : public QObject
{
    Q_OBJECT

public:
    /// While more bytes than this wait for the client to read them, its commands are left unread.
    static constexpr int unsentLimit = 256 * 1024;

    /// Takes over `socket`; `interpreter` must outlive the connection.
    Connection(QTcpSocket *socket, CommandInterpreter *interpreter, QObject *parent);

Q_SIGNALS:
    /// A command was answered. `client` is its address and port; `command` ends in its carriage
    /// return, save for one that was too long, of which only the beginning is there.
    void answered(const QByteArray &client, const QByteArray &command, const QByteArray &answer);

private:
    void serve();
    void answerCommands();
    void reply(const Line &line);

    QTcpSocket *m_socket;
    CommandInterpreter *m_interpreter;
    LineBuffer m_lines;
    QByteArray m_client;
};

} // namespace kvsim
