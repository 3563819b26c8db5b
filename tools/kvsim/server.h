#pragma once

#include "interpreter.h"

#include <QHostAddress>
#include <QTcpServer>

namespace kvsim {

/// Serves one memory to any number of TCP clients.
class Server : public QObject
{
    Q_OBJECT

public:
    /// `memory` must outlive the server.
    explicit Server(Memory *memory, QObject *parent = nullptr);

    /// Starts to accept clients; port 0 picks a free one. False when that is not possible:
    /// `errorString()` then tells why.
    bool listen(const QHostAddress &address, quint16 port);

    bool isListening() const;
    QString errorString() const;
    QHostAddress address() const;
    /// The port in use, 0 while the server is not listening.
    quint16 port() const;

Q_SIGNALS:
    /// One command of one client was answered, see Connection::answered().
    void answered(const QByteArray &client, const QByteArray &command, const QByteArray &answer);

private:
    void acceptClients();

    CommandInterpreter m_interpreter;
    QTcpServer *m_listener;
};

} // namespace kvsim
