#include "discover/search/findings.h"

#include <QHostAddress>

#include <algorithm>
#include <tuple>

namespace {

auto sortKey(const Finding &finding)
{
    return std::tie(finding.address, finding.port, finding.identity.text, finding.identity.kind);
}

bool isBefore(const Finding &one, const Finding &other)
{
    return sortKey(one) < sortKey(other);
}

} // namespace

QString Finding::place() const
{
    return QStringLiteral("%1:%2").arg(QHostAddress(address).toString()).arg(port);
}

QString Finding::protocols() const
{
    if (byTcp && byUdp)
        return QStringLiteral("TCP, UDP");
    return byTcp ? QStringLiteral("TCP") : QStringLiteral("UDP");
}

void Findings::add(const Finding &finding)
{
    const auto place = std::lower_bound(m_all.begin(), m_all.end(), finding, isBefore);
    if (place != m_all.end() && !isBefore(finding, *place)) {
        place->byTcp = place->byTcp || finding.byTcp;
        place->byUdp = place->byUdp || finding.byUdp;
        return;
    }
    if (m_all.size() == maximum) {
        m_isFull = true;
        return;
    }
    m_controllerCount += finding.isController() ? 1 : 0;
    m_all.insert(place, finding);
}
