#include "discover/search/tcpsearch.h"

#include <utility>

namespace {

constexpr int timeoutMs = 1500;
constexpr int maximumInFlight = 128;

} // namespace

TcpProbe::TcpProbe(Endpoint endpoint, QObject *parent)
    : QObject(parent), m_endpoint(std::move(endpoint))
{
    m_socket.setReadBufferSize(maximumIdentity);
    m_timeout.setSingleShot(true);
    connect(&m_socket, &QTcpSocket::connected, this, [this] {
        m_wasConnected = true;
        m_socket.write(identityQuestion);
    });
    connect(&m_socket, &QTcpSocket::readyRead, this, &TcpProbe::readAnswer);
    connect(&m_socket, &QTcpSocket::errorOccurred, this, &TcpProbe::handleError);
    connect(&m_timeout, &QTimer::timeout, this, &TcpProbe::finish);
}

void TcpProbe::start()
{
    m_timeout.start(timeoutMs);
    m_socket.connectToHost(m_endpoint.address, m_endpoint.port);
}

Finding TcpProbe::finding() const
{
    return {m_endpoint.address.toIPv4Address(), m_endpoint.port, identityOf(m_received, false),
            true, false};
}

void TcpProbe::readAnswer()
{
    m_received += m_socket.read(maximumIdentity - m_received.size());
    if (m_received.contains('\r') || m_received.contains('\n')
        || m_received.size() == maximumIdentity)
        finish();
}

void TcpProbe::handleError(QAbstractSocket::SocketError error)
{
    if (error == QAbstractSocket::SocketResourceError)
        m_resourceError = m_socket.errorString();
    finish();
}

void TcpProbe::finish()
{
    if (std::exchange(m_isFinished, true))
        return;
    m_timeout.stop();
    m_socket.disconnect(this);
    m_socket.abort();
    Q_EMIT finished();
}

TcpSearch::TcpSearch(Endpoints endpoints, FindingHandler onFinding)
    : m_endpoints(std::move(endpoints)), m_onFinding(std::move(onFinding))
{
}

// The number is computed once: with probes that fail immediately the loop would not end before all
// were asked.
void TcpSearch::startProbes()
{
    const int room = maximumInFlight - m_inFlight;
    for (int i = 0; i < room && m_next < count(); ++i) {
        auto *const probe = new TcpProbe(m_endpoints.at(m_next++), this);
        ++m_inFlight;
        connect(probe, &TcpProbe::finished, this, [this, probe] { probeFinished(probe); });
        // Counted until here, because the socket of a refused connection is open until it is
        // destroyed.
        connect(probe, &QObject::destroyed, this, [this] { --m_inFlight; });
        probe->start();
    }
}

void TcpSearch::probeFinished(TcpProbe *probe)
{
    if (probe->resourceError().isEmpty())
        ++m_asked;
    else
        m_error = probe->resourceError();
    if (probe->wasConnected())
        m_onFinding(probe->finding());
    probe->deleteLater();
}
