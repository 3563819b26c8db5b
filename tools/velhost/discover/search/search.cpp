#include "discover/search/search.h"

#include <QCoreApplication>
#include <QNetworkDatagram>

#include <algorithm>
#include <utility>

namespace {

/// How long the search waits for answers by UDP before it asks by TCP. A later answer still counts.
constexpr int maximumAnswerMs = 1000;
/// So that a hundred calls a second do not flood the network.
constexpr int questionsAtOnce = 64;
/// A peer that never stops sending must not hold up the search.
constexpr int answersAtOnce = 256;
constexpr int probeMs = 1500;
constexpr std::size_t maximumProbes = 128;

QString reasonOf(const Questions &questions)
{
    return questions.error.isEmpty() ? QStringLiteral("the time was over") : questions.error;
}

} // namespace

Search::Search(SearchPlan plan) : m_plan(std::move(plan))
{
    m_sinceQuestion.start();
    if (!m_socket.bind(QHostAddress(QHostAddress::AnyIPv4)))
        m_udp.error = m_socket.errorString();
}

bool Search::step()
{
    QCoreApplication::processEvents();
    takeDatagrams();
    askByUdp();
    const int answerMs = std::min(maximumAnswerMs, m_plan.timeoutMs / 4);
    const bool isUdpDone = m_udp.next == m_udp.count() && m_sinceQuestion.hasExpired(answerMs);
    if (isUdpDone || m_udpDeadline.hasExpired())
        askByTcp();
    const bool isTcpDone = m_tcp.next == m_tcp.count() && m_probes.empty();
    return !m_deadline.hasExpired() && !(isUdpDone && isTcpDone);
}

QStringList Search::gaps() const
{
    QStringList gaps;
    if (m_udp.asked < m_udp.count())
        gaps.append(QStringLiteral("%1 questions by UDP were not sent: %2")
                        .arg(QString::number(m_udp.count() - m_udp.asked), reasonOf(m_udp)));
    if (m_tcp.asked < m_tcp.count())
        gaps.append(QStringLiteral("%1 of %2 questions by TCP were not asked to the end: %3")
                        .arg(QString::number(m_tcp.count() - m_tcp.asked),
                             QString::number(m_tcp.count()), reasonOf(m_tcp)));
    if (m_findings.isFull())
        gaps.append(QStringLiteral("more than %1 different answers came; the rest was not noted")
                        .arg(Findings::maximum));
    return gaps;
}

void Search::askByUdp()
{
    for (int i = 0; i < questionsAtOnce && m_udp.next < m_udp.count(); ++i) {
        const Endpoint endpoint = m_udp.endpoints.at(m_udp.next);
        if (m_socket.writeDatagram(identityQuestion, endpoint.address, endpoint.port) >= 0)
            ++m_udp.asked;
        else if (m_socket.error() == QAbstractSocket::TemporaryError)
            return;
        else
            m_udp.error = m_socket.errorString();
        ++m_udp.next;
        m_sinceQuestion.start();
    }
}

void Search::takeDatagrams()
{
    for (int i = 0; i < answersAtOnce && m_socket.hasPendingDatagrams(); ++i) {
        const QNetworkDatagram datagram = m_socket.receiveDatagram(maximumIdentity);
        const auto port = static_cast<quint16>(datagram.senderPort());
        if (m_plan.udpPorts.contains(port))
            m_findings.add({datagram.senderAddress().toIPv4Address(), port,
                            identityOf(datagram.data(), true), false, true});
    }
}

void Search::askByTcp()
{
    m_probes.remove_if([this](Probe &probe) { return takeAnswer(&probe); });
    while (m_probes.size() < maximumProbes && m_tcp.next < m_tcp.count()) {
        Probe &probe = m_probes.emplace_back();
        probe.endpoint = m_tcp.endpoints.at(m_tcp.next++);
        probe.deadline.setRemainingTime(probeMs);
        QTcpSocket &socket = probe.socket;
        socket.setReadBufferSize(maximumIdentity);
        QObject::connect(&socket, &QTcpSocket::connected, &socket,
                         [&socket] { socket.write(identityQuestion); });
        socket.connectToHost(probe.endpoint.address, probe.endpoint.port);
    }
}

/// Notes what has come. Returns whether the probe has ended.
bool Search::takeAnswer(Probe *probe)
{
    QTcpSocket &socket = probe->socket;
    const QByteArray answer = socket.peek(maximumIdentity);
    const bool isAnswered
        = answer.contains('\r') || answer.contains('\n') || answer.size() == maximumIdentity;
    if (!isAnswered && socket.state() != QAbstractSocket::UnconnectedState
        && !probe->deadline.hasExpired())
        return false;
    if (socket.error() == QAbstractSocket::SocketResourceError)
        m_tcp.error = socket.errorString();
    else
        ++m_tcp.asked;
    if (socket.state() == QAbstractSocket::ConnectedState
        || socket.error() == QAbstractSocket::RemoteHostClosedError)
        m_findings.add({probe->endpoint.address.toIPv4Address(), probe->endpoint.port,
                        identityOf(answer, false), true, false});
    return true;
}
