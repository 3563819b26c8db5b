#include "discover/search/identity.h"

#include <QRegularExpression>

#include <algorithm>

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
