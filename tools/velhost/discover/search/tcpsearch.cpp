#include "discover/search/tcpsearch.h"

#include <utility>

namespace {

constexpr int patienceMs = 1500;
constexpr int maximumInFlight = 128;

} // namespace

TcpProbe::TcpProbe(Endpoint endpoint, QObject *parent)
    : QObject(parent), m_endpoint(std::move(endpoint))
{
    m_socket.setReadBufferSize(maximumIdentity);
    m_patience.setSingleShot(true);
    connect(&m_socket, &QTcpSocket::connected, this, [this] {
        m_wasConnected = true;
        m_socket.write(identityQuestion);
    });
    connect(&m_socket, &QTcpSocket::readyRead, this, &TcpProbe::look);
    connect(&m_socket, &QTcpSocket::errorOccurred, this, &TcpProbe::fail);
    connect(&m_patience, &QTimer::timeout, this, &TcpProbe::end);
}

void TcpProbe::start()
{
    m_patience.start(patienceMs);
    m_socket.connectToHost(m_endpoint.address, m_endpoint.port);
}

Finding TcpProbe::finding() const
{
    return {m_endpoint.address.toIPv4Address(), m_endpoint.port, identityOf(m_received, false),
            true, false};
}

void TcpProbe::look()
{
    m_received += m_socket.read(maximumIdentity - m_received.size());
    if (m_received.contains('\r') || m_received.contains('\n')
        || m_received.size() == maximumIdentity)
        end();
}

void TcpProbe::fail(QAbstractSocket::SocketError error)
{
    if (error == QAbstractSocket::SocketResourceError)
        m_resourceError = m_socket.errorString();
    end();
}

void TcpProbe::end()
{
    if (std::exchange(m_hasEnded, true))
        return;
    m_patience.stop();
    m_socket.disconnect(this);
    m_socket.abort();
    Q_EMIT ended();
}

TcpSearch::TcpSearch(Endpoints endpoints, Found found)
    : m_endpoints(std::move(endpoints)), m_found(std::move(found))
{
}

// The room is taken once: probes that fail at once must not keep the caller here.
void TcpSearch::startSome()
{
    const int room = maximumInFlight - m_inFlight;
    for (int i = 0; i < room && m_next < count(); ++i) {
        auto *const probe = new TcpProbe(m_endpoints.at(m_next++), this);
        ++m_inFlight;
        connect(probe, &TcpProbe::ended, this, [this, probe] { take(probe); });
        // Not before: a socket whose connection was refused is open until then.
        connect(probe, &QObject::destroyed, this, [this] { --m_inFlight; });
        probe->start();
    }
}

void TcpSearch::take(TcpProbe *probe)
{
    if (probe->resourceError().isEmpty())
        ++m_asked;
    else
        m_error = probe->resourceError();
    if (probe->wasConnected())
        m_found(probe->finding());
    probe->deleteLater();
}
