#include "discover/search/findings.h"

#include <QHostAddress>
#include <QRegularExpression>

#include <algorithm>
#include <functional>

Identity identityOf(const QByteArray &bytes, bool isWhole)
{
    static const QRegularExpression lineEnd(QStringLiteral("[\r\n]"));
    static const QRegularExpression modelOrRefusal(QStringLiteral("\\A([0-9]{1,3}|E[0-9])\\z"));
    const QString text
        = QString::fromLatin1(bytes.constData(), std::min(bytes.size(), maximumIdentity));
    const int end = text.indexOf(lineEnd);
    const QString line = text.left(end);
    return {(end >= 0 || isWhole) && modelOrRefusal.match(line).hasMatch(), line};
}

QString modelName(const QString &code)
{
    return code == u"55" ? QStringLiteral("KV-7500") : QString();
}

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
