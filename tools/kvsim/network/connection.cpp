#include "network/connection.h"

#include "controller/controller.h"

#include <QTcpSocket>

#include <array>

#include <sys/socket.h>

namespace {

constexpr int receiveLimit = 64 * 1024;
/// What an answer that comes late takes beside its bytes, so that many short ones are limited too.
constexpr int lateOverhead = 256;

} // namespace

Connection::Connection(QTcpSocket *socket, Controller *controller, QObject *parent)
    : QObject(parent), m_socket(socket), m_controller(controller),
      m_client(endpointText(socket->peerAddress(), socket->peerPort())), m_nextActionTimer(this)
{
    socket->setParent(this);
    socket->setReadBufferSize(receiveLimit);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_nextActionTimer.setSingleShot(true);
    m_nextActionTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_nextActionTimer, &QTimer::timeout, this, [this] {
        m_pendingActions.first().milliseconds = 0;
        serve();
    });
    connect(socket, &QTcpSocket::readyRead, this, &Connection::serve);
    // A client that reads again makes room for more answers. Queued, because flush() emits the
    // signal too, but not again for what the slot writes.
    connect(socket, &QTcpSocket::bytesWritten, this, [this] {
        if (m_inputWaits)
            Q_EMIT roomMade();
    });
    connect(this, &Connection::roomMade, this, &Connection::serve, Qt::QueuedConnection);
    connect(socket, &QTcpSocket::disconnected, this, &Connection::deleteLater);
}

void Connection::ignoreInput()
{
    disconnect(m_socket, &QTcpSocket::readyRead, this, nullptr);
    connect(m_socket, &QTcpSocket::readyRead, m_socket, [this] { m_socket->skip(receiveLimit); });
}

void Connection::serve()
{
    performPending();
    answerCommands();
    // Sent at once: QTcpSocket throws away unsent bytes when the client closes its sending side.
    m_socket->flush();
}

void Connection::answerCommands()
{
    m_inputWaits = false;
    while (canReadMore()) {
        const std::optional<Line> line = m_lines.next();
        if (line) {
            reply(*line);
            continue;
        }
        std::array<char, 4096> chunk; // NOLINT(cppcoreguidelines-pro-type-member-init)
        const qint64 size = m_socket->read(chunk.data(), chunk.size());
        if (size <= 0)
            return;
        m_lines.append({chunk.data(), static_cast<int>(size)});
    }
    m_inputWaits = true;
}

bool Connection::isConnected() const
{
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

bool Connection::canReadMore() const
{
    return isConnected() && m_pendingActions.isEmpty()
           && m_socket->bytesToWrite() + m_lateBytes <= unsentLimit;
}

void Connection::reply(const Line &line)
{
    const Reply reply = replyTo(m_client, line, m_controller, &m_previousAnswer);
    if (reply.detached) {
        for (const Action &action : reply.actions)
            scheduleAnswer(action);
    } else {
        m_pendingActions = reply.actions;
        performPending();
    }
}

void Connection::performPending()
{
    while (isConnected() && !m_pendingActions.isEmpty() && !m_nextActionTimer.isActive()) {
        const Action &first = m_pendingActions.constFirst();
        if (first.kind != Action::Kind::Restart && first.milliseconds > 0) {
            m_nextActionTimer.start(first.milliseconds);
            return;
        }
        perform(m_pendingActions.takeFirst());
    }
}

void Connection::perform(const Action &action)
{
    switch (action.kind) {
    case Action::Kind::Send:
        m_socket->write(action.bytes);
        m_controller->traced(m_client, ClientEvent::Sent, action.bytes);
        // Each part of an answer leaves by itself.
        if (!m_pendingActions.isEmpty())
            m_socket->flush();
        return;
    case Action::Kind::Close:
        m_socket->disconnectFromHost();
        return;
    case Action::Kind::Reset:
        resetConnection(m_socket);
        return;
    case Action::Kind::Restart:
        Q_EMIT restartWanted(action.milliseconds);
        return;
    }
}

void Connection::scheduleAnswer(const Action &action)
{
    const int size = action.bytes.size() + lateOverhead;
    m_lateBytes += size;
    QTimer::singleShot(action.milliseconds, Qt::PreciseTimer, this, [this, action, size] {
        m_lateBytes -= size;
        // It is not sent into the middle of another answer.
        if (isConnected())
            m_pendingActions.append({Action::Kind::Send, 0, action.bytes});
        serve();
    });
}

void resetConnection(QTcpSocket *socket)
{
    socket->flush();
    const linger atOnce{1, 0};
    ::setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
                 sizeof atOnce);
    socket->abort();
}
