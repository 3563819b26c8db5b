#include "control/controlserver.h"

#include <QTcpSocket>

namespace {

/// While more waits for the client to read it, its further commands are left unread.
constexpr int unsentLimit = 64 * 1024;

} // namespace

ControlServer::ControlServer(ControlTarget target) : m_target(std::move(target)) {}

void ControlServer::welcome(QTcpSocket *socket)
{
    socket->setReadBufferSize(maximumLine);
    const auto serveIt = [this, socket] { serve(socket); };
    connect(socket, &QTcpSocket::readyRead, socket, serveIt);
    connect(socket, &QTcpSocket::bytesWritten, socket, serveIt, Qt::QueuedConnection);
    connect(socket, &QTcpSocket::disconnected, socket, &QTcpSocket::deleteLater);
}

void ControlServer::serve(QTcpSocket *socket)
{
    while (socket->bytesToWrite() <= unsentLimit && socket->canReadLine())
        socket->write(answerControl(socket->readLine().trimmed(), m_target));
    // A search for controllers, which would wait in vain: Host Link has no line feed.
    if (socket->peek(4) == "?K\r") {
        socket->write("error this is the control port of kvsim\n");
        socket->disconnectFromHost();
        return;
    }
    if (socket->bytesAvailable() >= maximumLine && !socket->canReadLine()) {
        socket->write("error the line is too long; write at most 4095 bytes\n");
        socket->disconnectFromHost();
        return;
    }
    // Sent at once: QTcpSocket throws away unsent bytes when the client closes its sending side.
    socket->flush();
}
