#include "plant/rules.h"

#include <common/wholenumber.h>

#include <QRegularExpression>
#include <QStringList>

#include <limits>

namespace {

/// Whether the device's name, which ends at the first digit, is one of the names.
bool isNamed(const QString &address, const QStringList &names)
{
    static const QRegularExpression digit(QStringLiteral("[0-9]"));
    return names.contains(address.section(digit, 0, 0), Qt::CaseInsensitive);
}

} // namespace

bool isPort(const QString &text)
{
    return wholeNumber(text, 1, 65535).has_value();
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

bool holdsBits(const QString &address)
{
    static const QStringList names = QStringLiteral("R MR M LR L CR B").split(u' ');
    return isNamed(address, names);
}

bool holdsWords(const QString &address)
{
    static const QStringList names = QStringLiteral("DM D EM E FM F ZF W TM CM VM Z").split(u' ');
    return isNamed(address, names);
}
