#include "connection.h"

#include "interpreter.h"
#include "trace.h"

#include <QHostAddress>
#include <QTcpSocket>

namespace kvsim {

namespace {

constexpr int receiveLimit = 64 * 1024;
constexpr int chunkSize = 4096;

} // namespace

Connection::Connection(QTcpSocket *socket, CommandInterpreter *interpreter, QObject *parent)
    : QObject(parent), m_socket(socket), m_interpreter(interpreter),
      m_client(endpointText(socket->peerAddress(), socket->peerPort()))
{
    socket->setParent(this);
    socket->setReadBufferSize(receiveLimit);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(socket, &QTcpSocket::readyRead, this, &Connection::serve);
    // A client that reads again makes room for more answers. Queued, because flush() emits it too
    // and no second time for what is written from within the slot.
    connect(socket, &QTcpSocket::bytesWritten, this, &Connection::serve, Qt::QueuedConnection);
    connect(socket, &QTcpSocket::disconnected, this, &Connection::deleteLater);
}

void Connection::serve()
{
    answerCommands();
    // At once: QTcpSocket throws away what still waits when the client closes its sending side.
    m_socket->flush();
}

void Connection::answerCommands()
{
    while (m_socket->bytesToWrite() <= unsentLimit) {
        const std::optional<Line> line = m_lines.next();
        if (line) {
            reply(*line);
            continue;
        }
        const QByteArray bytes = m_socket->read(chunkSize);
        if (bytes.isEmpty())
            return;
        m_lines.append(bytes);
    }
}

void Connection::reply(const Line &line)
{
    const QByteArray answer
        = line.tooLong ? CommandInterpreter::refusalOfLine() : m_interpreter->answer(line.text);
    m_socket->write(answer);
    Q_EMIT answered(m_client, line.tooLong ? line.text : QByteArray(line.text + '\r'), answer);
}

} // namespace kvsim
