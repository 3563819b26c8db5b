#include "plant/rules.h"

#include <common/wholenumber.h>

#include <QRegularExpression>

#include <limits>

namespace {

constexpr int largestPort = 65535;

} // namespace

bool isPort(const QString &text)
{
    return wholeNumber(text, 1, largestPort).has_value();
}

bool isUsablePort(const QString &text)
{
    bool isNumber = false;
    const int port = text.toInt(&isNumber);
    return isNumber && port >= 1 && port <= largestPort;
}

bool isTimeout(const QString &text)
{
    return wholeNumber(text, 1, std::numeric_limits<int>::max()).has_value();
}

bool isMemoryAddress(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A[A-Za-z]+([0-9A-Fa-f]+|[0-9]+[.-][0-9]+)\\z"));
    return form.match(text).hasMatch();
}
