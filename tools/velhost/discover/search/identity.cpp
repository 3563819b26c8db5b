#include "discover/search/identity.h"

#include <QRegularExpression>

#include <algorithm>

Identity identityOf(const QByteArray &bytes, bool isWhole)
{
    static const QRegularExpression lineEnd(QStringLiteral("[\r\n]"));
    static const QRegularExpression model(QStringLiteral("\\A[0-9]{1,3}\\z"));
    static const QRegularExpression refusal(QStringLiteral("\\AE[0-9]\\z"));
    const QString text
        = QString::fromLatin1(bytes.constData(), std::min(bytes.size(), maximumIdentity));
    const int end = text.indexOf(lineEnd);
    const QString line = text.left(end);
    if (end < 0 && !isWhole)
        return {Identity::Other, line};
    if (model.match(line).hasMatch())
        return {Identity::Model, line};
    return {refusal.match(line).hasMatch() ? Identity::Refusal : Identity::Other, line};
}

QString modelName(const QString &code)
{
    return code == u"55" ? QStringLiteral("KV-7500") : QString();
}
