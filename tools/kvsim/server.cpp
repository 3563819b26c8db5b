#include "server.h"

#include "connection.h"

#include <QTcpSocket>

namespace kvsim {

Server::Server(Memory *memory, QObject *parent)
    : QObject(parent), m_interpreter(memory), m_listener(new QTcpServer(this))
{
    connect(m_listener, &QTcpServer::newConnection, this, &Server::acceptClients);
}

bool Server::listen(const QHostAddress &address, quint16 port)
{
    return m_listener->listen(address, port);
}

bool Server::isListening() const
{
    return m_listener->isListening();
}

QString Server::errorString() const
{
    return m_listener->errorString();
}

QHostAddress Server::address() const
{
    return m_listener->serverAddress();
}

quint16 Server::port() const
{
    return m_listener->serverPort();
}

void Server::acceptClients()
{
    while (QTcpSocket *socket = m_listener->nextPendingConnection()) {
        auto *connection = new Connection(socket, &m_interpreter, this);
        connect(connection, &Connection::answered, this, &Server::answered);
        // Out of file descriptors, Qt may accept nobody any more until it is told to.
        connect(connection, &Connection::destroyed, m_listener, &QTcpServer::resumeAccepting);
    }
}

} // namespace kvsim
