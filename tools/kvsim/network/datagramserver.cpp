#include "network/datagramserver.h"

#include "controller/controller.h"

#include <QTimer>
#include <QUdpSocket>

#include <utility>

namespace {

/// What an answer that waits takes beside its bytes, so that many short ones are limited too.
constexpr int pendingOverhead = 256;

QByteArray clientOf(const QNetworkDatagram &question)
{
    return endpointText(question.senderAddress(), static_cast<quint16>(question.senderPort()))
           + "/udp";
}

/// Cuts a datagram into command lines, as LineBuffer does with a stream, but the end of the
/// datagram ends a line too. More than DatagramServer::maximumCommands are no commands: they are
/// one line that is too long.
QList<Line> linesOf(const QByteArray &datagram)
{
    const QList<QByteArray> texts = QByteArray(datagram).replace("\n", "").split('\r');
    QList<Line> lines;
    for (const QByteArray &text : texts)
        lines.append({text});
    if (lines.constLast().text.isEmpty())
        lines.removeLast();
    else
        lines.last().ended = false;
    if (lines.size() > DatagramServer::maximumCommands)
        return {{datagram.left(LineBuffer::shownLength), true, false}};
    return lines;
}

/// Adds the `actions` of one command to the datagrams of the answer. Each action of the kind Send
/// is a datagram; when the first one has no delay, it goes into the last datagram that is there.
void appendDatagrams(const QList<Action> &actions, QList<Action> *datagrams)
{
    bool first = true;
    for (const Action &action : actions) {
        if (action.kind != Action::Kind::Send)
            continue;
        if (first && action.milliseconds == 0 && !datagrams->isEmpty())
            datagrams->last().bytes += action.bytes;
        else
            datagrams->append(action);
        first = false;
    }
}

} // namespace

DatagramServer::DatagramServer(Controller *controller) : m_controller(controller) {}

QString DatagramServer::listen(const QHostAddress &address, quint16 port)
{
    m_socket = new QUdpSocket(this);
    if (!m_socket->bind(address, port, QAbstractSocket::DontShareAddress)) {
        const QString error = m_socket->errorString();
        close();
        return error;
    }
    // Each signal takes one datagram, so that other sockets get their turn. The socket signals
    // again for the next one.
    connect(m_socket, &QUdpSocket::readyRead, this, &DatagramServer::receive);
    return {};
}

void DatagramServer::close()
{
    delete std::exchange(m_socket, nullptr);
    m_pendingBytes = 0;
}

void DatagramServer::receive()
{
    const QNetworkDatagram question = m_socket->receiveDatagram();
    if (m_pendingBytes > pendingLimit)
        return;
    const QByteArray client = clientOf(question);
    const QList<Line> lines = linesOf(question.data());
    QList<Action> datagrams;
    for (const Line &line : lines) {
        const Reply answer = replyTo(client, line, m_controller, &m_previousAnswer);
        const Action first = answer.actions.value(0);
        if (first.kind == Action::Kind::Restart) {
            Q_EMIT restartWanted(first.milliseconds);
            break;
        }
        if (answer.detached)
            schedule(question, answer.actions);
        else
            appendDatagrams(answer.actions, &datagrams);
    }
    schedule(question, datagrams);
}

void DatagramServer::schedule(const QNetworkDatagram &question, const QList<Action> &datagrams)
{
    int wait = 0;
    for (const Action &datagram : datagrams) {
        wait += datagram.milliseconds;
        if (wait == 0) {
            send(question, datagram.bytes);
            continue;
        }
        const int size = datagram.bytes.size() + pendingOverhead;
        m_pendingBytes += size;
        auto *due = new QTimer(m_socket);
        due->setSingleShot(true);
        due->setTimerType(Qt::PreciseTimer);
        connect(due, &QTimer::timeout, this, [this, due, question, size, bytes = datagram.bytes] {
            due->deleteLater();
            m_pendingBytes -= size;
            send(question, bytes);
        });
        due->start(wait);
    }
}

void DatagramServer::send(const QNetworkDatagram &question, const QByteArray &answer)
{
    // It does not matter whether it is sent: a datagram may be lost. It is not sent by makeReply(),
    // with which Qt names the interface: the system would then send from the first address of that
    // interface.
    const QByteArray bytes = answer.left(largestDatagram);
    m_socket->writeDatagram(bytes, question.senderAddress(),
                            static_cast<quint16>(question.senderPort()));
    m_controller->traced(clientOf(question), ClientEvent::Sent, bytes);
}
