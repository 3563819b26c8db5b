#include "discover/search/udpsearch.h"

#include <QNetworkDatagram>

#include <utility>

namespace {

constexpr int questionsAtOnce = 64;
constexpr int answersAtOnce = 256;

} // namespace

UdpSearch::UdpSearch(Endpoints endpoints, QVector<quint16> ports, FindingHandler onFinding)
    : m_endpoints(std::move(endpoints)), m_ports(std::move(ports)),
      m_onFinding(std::move(onFinding))
{
    connect(&m_socket, &QUdpSocket::readyRead, this, &UdpSearch::receive);
    m_sinceLast.start();
    if (!m_socket.bind(QHostAddress(QHostAddress::AnyIPv4)))
        m_error = m_socket.errorString();
}

void UdpSearch::sendQuestions()
{
    for (int i = 0; i < questionsAtOnce && m_next < m_endpoints.count(); ++i) {
        const Endpoint endpoint = m_endpoints.at(m_next);
        const qint64 sent
            = m_socket.writeDatagram(identityQuestion, endpoint.address, endpoint.port);
        if (sent < 0 && m_socket.error() == QAbstractSocket::TemporaryError)
            return;
        if (sent < 0) {
            ++m_failed;
            m_error = m_socket.errorString();
        }
        ++m_next;
        m_sinceLast.start();
    }
}

bool UdpSearch::isDone(int answerMs) const
{
    return m_next == m_endpoints.count() && m_sinceLast.hasExpired(answerMs);
}

// The limit is needed: with a peer that never stops sending, the loop would not end.
void UdpSearch::receive()
{
    for (int i = 0; i < answersAtOnce && m_socket.hasPendingDatagrams(); ++i) {
        const QNetworkDatagram datagram = m_socket.receiveDatagram(maximumIdentity);
        const auto port = static_cast<quint16>(datagram.senderPort());
        if (m_ports.contains(port))
            m_onFinding({datagram.senderAddress().toIPv4Address(), port,
                         identityOf(datagram.data(), true), false, true});
    }
}
