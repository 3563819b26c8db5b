#include "controller/fault.h"

#include "controller/faultkind.h"
#include "memory/number.h"

#include <array>

namespace {

QString shown(const QByteArray &text)
{
    return QString::fromUtf8(text);
}

QString readKind(const QByteArray &text, Fault *fault)
{
    const int equals = text.indexOf('=');
    const QByteArray name = equals < 0 ? text : text.left(equals);
    fault->kind = faultKind(name);
    if (!fault->kind)
        return QStringLiteral("unknown fault '%1'; use one of: %2")
            .arg(shown(name), faultKindNames());
    // An '=' with nothing behind it is not the same as no '='.
    const QByteArray arguments
        = equals < 0 ? QByteArray() : QByteArray(text.constData() + equals + 1);
    if (!fault->kind->read(arguments, fault))
        return QStringLiteral("'%1' is wrong; write %2")
            .arg(shown(text), QLatin1String(fault->kind->usage));
    return {};
}

struct NumberSelector
{
    const char *name;
    quint32 Fault::*member;
    quint32 minimum;
    quint32 maximum;
};

constexpr quint32 largest = 4294967295;

constexpr std::array<NumberSelector, 4> numberSelectors{{
    {"nth", &Fault::nth, 1, largest},
    {"every", &Fault::every, 1, largest},
    {"percent", &Fault::percent, 1, 100},
    {"seed", &Fault::seed, 0, largest},
}};

QString readNumberSelector(const NumberSelector &selector, const QByteArray &text, Fault *fault)
{
    const std::optional<quint32> number = parseDecimal(text, selector.minimum, selector.maximum);
    fault->*selector.member = number.value_or(0);
    return number ? QString()
                  : QStringLiteral("'@%1=%2' is wrong; write a number from %3 to %4")
                        .arg(QLatin1String(selector.name), shown(text))
                        .arg(selector.minimum)
                        .arg(selector.maximum);
}

QString readSelector(const QByteArray &text, Fault *fault)
{
    const int equals = text.indexOf('=');
    for (const NumberSelector &selector : numberSelectors) {
        if (equals >= 0 && text.left(equals) == selector.name)
            return readNumberSelector(selector, text.mid(equals + 1), fault);
    }
    fault->address = parseAddress(text);
    if (!fault->address)
        return QStringLiteral("unknown selector '@%1'; use an address that exists such as @DM100, "
                              "or @nth=N, @every=N, @percent=N, @seed=N")
            .arg(shown(text));
    return {};
}

QString conflict(const Fault &fault)
{
    const int choices = (fault.nth != 0) + (fault.every != 0) + (fault.percent != 100);
    if (choices > 1)
        return QStringLiteral("'%1' is wrong; write one of @nth, @every and @percent")
            .arg(shown(fault.text));
    if (fault.kind->strikesClients() && fault.address)
        return QStringLiteral("'%1' is wrong; this fault strikes new clients and takes no address")
            .arg(shown(fault.text));
    return {};
}

QByteArray selectorName(const QByteArray &selector)
{
    const int equals = selector.indexOf('=');
    return equals < 0 ? QByteArray("address") : selector.left(equals);
}

} // namespace

QString parseFault(const QByteArray &text, Fault *fault)
{
    fault->text = text;
    QList<QByteArray> parts = text.split('@');
    QString error = readKind(parts.takeFirst(), fault);
    QList<QByteArray> names;
    for (const QByteArray &selector : qAsConst(parts)) {
        if (!error.isEmpty())
            return error;
        if (names.contains(selectorName(selector)))
            return QStringLiteral("'@%1' is one too many; write each kind of selector once")
                .arg(shown(selector));
        names.append(selectorName(selector));
        error = readSelector(selector, fault);
    }
    return error.isEmpty() ? conflict(*fault) : error;
}
