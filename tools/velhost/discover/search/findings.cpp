#include "discover/search/findings.h"

#include <QHostAddress>

#include <algorithm>
#include <functional>

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
    const auto &[address, port, identity, byTcp, byUdp] = finding;
    const Key key(address, port, identity.text, identity.isController);
    if (m_all.size() == maximum && !m_all.contains(key)) {
        m_isFull = true;
        return;
    }
    Finding &known = m_all[key];
    known = {address, port, identity, byTcp || known.byTcp, byUdp || known.byUdp};
}

int Findings::controllerCount() const
{
    return static_cast<int>(
        std::count_if(m_all.begin(), m_all.end(), std::mem_fn(&Finding::isController)));
}
