#include <common/ipv4address.h>

#include <QRegularExpression>

#include <arpa/inet.h>

std::optional<quint32> ipv4Address(const QString &text)
{
    in_addr address = {};
    // The C library would stop at a zero byte.
    if (text.contains(QChar(0)) || inet_pton(AF_INET, text.toUtf8().constData(), &address) != 1)
        return {};
    return ntohl(address.s_addr);
}

bool isDottedQuad(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A%1\\.%1\\.%1\\.%1\\z")
            .arg(QStringLiteral("(25[0-5]|2[0-4][0-9]|[01]?[0-9]?[0-9])")));
    return form.match(text).hasMatch();
}

bool isLoopback(const QString &text)
{
    return isDottedQuad(text) && text.startsWith(u"127.");
}
