#include "network/server.h"

#include "controller/controller.h"
#include "controller/faultkind.h"
#include "network/connection.h"

#include <QTcpSocket>
#include <QTimer>

Server::Server(Controller *controller, QObject *parent)
    : Listener(parent), m_controller(controller), m_datagrams(controller)
{
    // Queued: the server is still busy with the datagram.
    connect(&m_datagrams, &DatagramServer::restartWanted, this, &Server::restart,
            Qt::QueuedConnection);
}

QString Server::listen(const QHostAddress &address, quint16 port)
{
    // A port that is free for TCP may be in use for UDP.
    QString error;
    for (int attempts = port == 0 ? 20 : 1; attempts > 0; --attempts) {
        if (!Listener::listen(address, port))
            return errorString();
        m_controller->endpoint = endpointText(serverAddress(), serverPort());
        error = m_datagrams.listen(serverAddress(), serverPort());
        if (error.isEmpty())
            return {};
        Listener::close();
    }
    return error + u" (UDP)";
}

void Server::close()
{
    Listener::close();
    m_datagrams.close();
}

void Server::welcome(QTcpSocket *socket)
{
    ++m_controller->counters.clients;
    const QByteArray client = endpointText(socket->peerAddress(), socket->peerPort());
    m_controller->traced(client, ClientEvent::Connected, "connected");
    connect(socket, &QTcpSocket::disconnected, this, [this, client, socket] {
        const bool byClient = socket->error() == QAbstractSocket::RemoteHostClosedError;
        m_controller->traced(client, ClientEvent::Closed,
                             byClient ? "closed by the client" : "closed");
        m_clients.removeOne(socket);
    });
    const std::optional<Fault> fault = m_controller->faults.welcome(m_clients.size());
    if (fault)
        m_controller->traced(client, ClientEvent::Fault, fault->text);
    if (fault && fault->kind->role == FaultKind::Role::RefuseClient) {
        resetConnection(socket);
        socket->deleteLater();
        return;
    }

    m_clients.append(socket);
    auto *connection = new Connection(socket, m_controller, this);
    // Queued: the connection is still busy with the command.
    connect(connection, &Connection::restartWanted, this, &Server::restart, Qt::QueuedConnection);
    if (fault)
        connection->ignoreInput();
}

void Server::restart(int milliseconds)
{
    // Two clients may cause a restart at the same time.
    if (!isListening())
        return;
    const QHostAddress address = serverAddress();
    const quint16 port = serverPort();
    close();
    const QList<QTcpSocket *> clients = m_clients;
    for (QTcpSocket *client : clients)
        client->abort();
    auto *away = new QTimer(this);
    away->setSingleShot(true);
    away->setTimerType(Qt::PreciseTimer);
    connect(away, &QTimer::timeout, this, [this, away, address, port] {
        away->deleteLater();
        const QString error = listen(address, port);
        if (!error.isEmpty())
            Q_EMIT restartFailed(error);
    });
    away->start(milliseconds);
}
