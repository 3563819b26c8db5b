#include "network/server.h"

#include "controller/controller.h"
#include "controller/endpoint.h"
#include "network/connection.h"
#include "network/datagramserver.h"
#include "network/listener.h"

#include <QTcpSocket>

Server::Server(Controller *controller, QObject *parent)
    : QObject(parent), m_controller(controller), m_listener(new Listener(this)),
      m_datagrams(new DatagramServer(controller, this)), m_restartTimer(this)
{
    m_restartTimer.setSingleShot(true);
    m_restartTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_restartTimer, &QTimer::timeout, this, &Server::listenAgain);
    connect(m_listener, &Listener::clientCame, this, &Server::accept);
    // Queued: the server is still busy with the datagram.
    connect(m_datagrams, &DatagramServer::restartWanted, this, &Server::restart,
            Qt::QueuedConnection);
}

bool Server::listen(const QHostAddress &address, quint16 port)
{
    // A port that is free for TCP may be in use for UDP.
    const int attempts = port == 0 ? 20 : 1;
    for (int i = 0; i < attempts; ++i) {
        if (!m_listener->listen(address, port)) {
            m_errorString = m_listener->errorString();
            return false;
        }
        if (m_datagrams->listen(m_listener->address(), m_listener->port()))
            return true;
        m_errorString = m_datagrams->errorString() + u" (UDP)";
        m_listener->close();
    }
    return false;
}

void Server::close()
{
    m_listener->close();
    m_datagrams->close();
}

bool Server::isListening() const
{
    return m_listener->isListening();
}

QHostAddress Server::address() const
{
    return m_listener->address();
}

quint16 Server::port() const
{
    return m_listener->port();
}

void Server::accept(QTcpSocket *socket)
{
    ++m_controller->counters.clients;
    const QByteArray client = endpointText(socket->peerAddress(), socket->peerPort());
    m_controller->traced(client, ClientEvent::Connected, "connected");
    connect(socket, &QTcpSocket::disconnected, this, [this, client, socket] {
        const bool byClient = socket->error() == QAbstractSocket::RemoteHostClosedError;
        m_controller->traced(client, ClientEvent::Closed,
                             byClient ? "closed by the client" : "closed");
    });
    QByteArray fault;
    const Welcome welcome = m_controller->faults.welcome(m_connections.size(), &fault);
    if (!fault.isEmpty())
        m_controller->traced(client, ClientEvent::Fault, fault);
    if (welcome == Welcome::Reset) {
        resetConnection(socket);
        socket->deleteLater();
        return;
    }

    auto *connection = new Connection(socket, m_controller, this);
    m_connections.append(connection);
    // Queued: the connection is still busy with the command.
    connect(connection, &Connection::restartWanted, this, &Server::restart, Qt::QueuedConnection);
    connect(socket, &QTcpSocket::disconnected, this,
            [this, connection] { m_connections.removeOne(connection); });
    if (welcome == Welcome::Ignore)
        connection->ignoreInput();
}

void Server::restart(int milliseconds)
{
    // Two clients may cause a restart at the same time.
    if (!m_listener->isListening())
        return;
    m_restartAddress = address();
    m_restartPort = port();
    close();
    const QList<Connection *> connections = m_connections;
    for (Connection *connection : connections)
        connection->abort();
    m_restartTimer.start(milliseconds);
}

void Server::listenAgain()
{
    if (!listen(m_restartAddress, m_restartPort))
        Q_EMIT restartFailed();
}
