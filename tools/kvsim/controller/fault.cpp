#include "controller/fault.h"

#include "memory/number.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

constexpr quint32 longestTime = 600000; // ten minutes
constexpr quint32 mostBytes = 1024 * 1024;
constexpr quint32 shortestLine = 3; // one character and the line end
constexpr quint32 mostClients = 10000;

bool readNumber(const QByteArray &text, quint32 minimum, quint32 maximum, int *number)
{
    const std::optional<quint32> value = parseNumber(text, 10);
    if (!value || *value < minimum || *value > maximum)
        return false;
    *number = static_cast<int>(*value);
    return true;
}

bool readNothing(const QByteArray &arguments, Fault * /*fault*/)
{
    return arguments.isNull();
}

bool readTime(const QByteArray &arguments, Fault *fault)
{
    return readNumber(arguments, 0, longestTime, &fault->amount);
}

bool readOptionalTime(const QByteArray &arguments, Fault *fault)
{
    return arguments.isNull() || readTime(arguments, fault);
}

bool readDelay(const QByteArray &arguments, Fault *fault)
{
    const int separator = arguments.indexOf("+-");
    if (separator < 0)
        return readTime(arguments, fault);
    return readTime(arguments.left(separator), fault)
           && readNumber(arguments.mid(separator + 2), 0, static_cast<quint32>(fault->amount),
                         &fault->variation);
}

bool readSplit(const QByteArray &arguments, Fault *fault)
{
    const int comma = arguments.indexOf(',');
    return comma >= 0 && readNumber(arguments.left(comma), 1, mostBytes, &fault->amount)
           && readNumber(arguments.mid(comma + 1), 0, longestTime, &fault->variation);
}

bool readBytes(const QByteArray &arguments, Fault *fault)
{
    return readNumber(arguments, 1, mostBytes, &fault->amount);
}

bool readLineLength(const QByteArray &arguments, Fault *fault)
{
    return readNumber(arguments, shortestLine, mostBytes, &fault->amount);
}

bool readClients(const QByteArray &arguments, Fault *fault)
{
    return readNumber(arguments, 0, mostClients, &fault->amount);
}

bool readRefusal(const QByteArray &arguments, Fault *fault)
{
    constexpr std::array<const char *, 6> refusals{"E0", "E1", "E2", "E4", "E5", "E6"};
    fault->refusal = arguments;
    return std::any_of(refusals.cbegin(), refusals.cend(),
                       [&](const char *refusal) { return arguments == refusal; });
}

bool readMoment(const QByteArray &arguments, Fault *fault)
{
    constexpr std::array<const char *, 3> moments{"before", "in", "after"};
    const auto *moment = std::find_if(moments.cbegin(), moments.cend(),
                                      [&](const char *name) { return arguments == name; });
    fault->moment = static_cast<Moment>(moment - moments.cbegin());
    return moment != moments.cend();
}

struct Kind
{
    const char *name;
    FaultKind kind;
    /// Takes what stands behind '=', a null array when there is no '='. False when it is wrong.
    bool (*read)(const QByteArray &arguments, Fault *fault);
    const char *usage;
};

constexpr std::array<Kind, 22> kinds{{
    {"delay", FaultKind::Delay, readDelay,
     "delay=MS or delay=MS+-JITTER, MS from 0 to 600000 and JITTER from 0 to MS"},
    {"silent", FaultKind::Silent, readNothing, "silent"},
    {"late", FaultKind::Late, readTime, "late=MS, from 0 to 600000"},
    {"refuse", FaultKind::Refuse, readRefusal, "refuse=E0, E1, E2, E4, E5 or E6"},
    {"split", FaultKind::Split, readSplit,
     "split=BYTES,MS, BYTES from 1 to 1048576 and MS from 0 to 600000"},
    {"dribble", FaultKind::Dribble, readOptionalTime, "dribble or dribble=MS, from 0 to 600000"},
    {"no-terminator", FaultKind::NoTerminator, readNothing, "no-terminator"},
    {"empty", FaultKind::Empty, readNothing, "empty"},
    {"garbage", FaultKind::Garbage, readBytes, "garbage=BYTES, from 1 to 1048576"},
    {"nul", FaultKind::Nul, readNothing, "nul"},
    {"long", FaultKind::Long, readLineLength, "long=BYTES, from 3 to 1048576"},
    {"short-answer", FaultKind::ShortAnswer, readNothing, "short-answer"},
    {"extra-word", FaultKind::ExtraWord, readNothing, "extra-word"},
    {"not-a-number", FaultKind::NotANumber, readNothing, "not-a-number"},
    {"duplicate", FaultKind::Duplicate, readNothing, "duplicate"},
    {"previous-answer", FaultKind::PreviousAnswer, readNothing, "previous-answer"},
    {"close", FaultKind::Close, readMoment, "close=before, close=in or close=after"},
    {"reset", FaultKind::Reset, readMoment, "reset=before, reset=in or reset=after"},
    {"restart", FaultKind::Restart, readTime, "restart=MS, from 0 to 600000"},
    {"refuse-connect", FaultKind::RefuseConnect, readNothing, "refuse-connect"},
    {"accept-then-silent", FaultKind::AcceptThenSilent, readNothing, "accept-then-silent"},
    {"max-clients", FaultKind::MaxClients, readClients, "max-clients=N, from 0 to 10000"},
}};

QString shown(const QByteArray &text)
{
    return QString::fromUtf8(text);
}

QString readKind(const QByteArray &text, Fault *fault)
{
    const int equals = text.indexOf('=');
    const QByteArray name = equals < 0 ? text : text.left(equals);
    const auto *kind
        = std::find_if(kinds.cbegin(), kinds.cend(), [&](const Kind &k) { return name == k.name; });
    if (kind == kinds.cend()) {
        QStringList names;
        for (const Kind &known : kinds)
            names.append(QLatin1String(known.name));
        return QStringLiteral("unknown fault '%1'; use one of: %2")
            .arg(shown(name), names.join(QStringLiteral(", ")));
    }
    fault->kind = kind->kind;
    // An '=' with nothing behind it is not the same as no '='.
    const QByteArray arguments
        = equals < 0 ? QByteArray() : QByteArray(text.constData() + equals + 1);
    if (!kind->read(arguments, fault))
        return QStringLiteral("'%1' is wrong; write %2")
            .arg(shown(text), QLatin1String(kind->usage));
    return {};
}

struct NumberSelector
{
    const char *name;
    quint32 Fault::*member;
    quint32 minimum;
    quint32 maximum;
    const char *range;
};

constexpr quint32 largest = 4294967295;

constexpr std::array<NumberSelector, 4> numberSelectors{{
    {"nth", &Fault::nth, 1, largest, "1 to 4294967295"},
    {"every", &Fault::every, 1, largest, "1 to 4294967295"},
    {"percent", &Fault::percent, 1, 100, "1 to 100"},
    {"seed", &Fault::seed, 0, largest, "0 to 4294967295"},
}};

QString readNumberSelector(const NumberSelector &selector, const QByteArray &text, Fault *fault)
{
    const std::optional<quint32> number = parseNumber(text, 10);
    if (!number || *number < selector.minimum || *number > selector.maximum)
        return QStringLiteral("'@%1=%2' is wrong; write a number from %3")
            .arg(QLatin1String(selector.name), shown(text), QLatin1String(selector.range));
    fault->*selector.member = *number;
    return {};
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
    if (strikesClients(fault.kind) && fault.address)
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
