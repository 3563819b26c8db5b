#include <common/ipv4address.h>

#include <QRegularExpression>

namespace {

QRegularExpression fourNumbers(const QString &number)
{
    return QRegularExpression(QStringLiteral("\\A%1\\.%1\\.%1\\.%1\\z").arg(number));
}

} // namespace

std::optional<quint32> ipv4Address(const QString &text)
{
    static const QRegularExpression form
        = fourNumbers(QStringLiteral("(25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    quint32 address = 0;
    for (int i = 1; i <= 4; ++i)
        address = address << 8 | match.captured(i).toUInt();
    return address;
}

bool isDottedQuad(const QString &text)
{
    static const QRegularExpression form
        = fourNumbers(QStringLiteral("(25[0-5]|2[0-4][0-9]|[01]?[0-9]?[0-9])"));
    return form.match(text).hasMatch();
}

bool isLoopback(const QString &text)
{
    return isDottedQuad(text) && text.startsWith(u"127.");
}
