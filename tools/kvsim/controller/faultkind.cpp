#include "controller/faultkind.h"

#include "memory/number.h"

#include <QRandomGenerator>
#include <QStringList>

#include <algorithm>
#include <array>

namespace {

constexpr quint32 longestTime = 600000; // ten minutes
constexpr quint32 mostBytes = 1024 * 1024;
constexpr quint32 shortestLine = 3; // one character and the line end
constexpr quint32 mostClients = 10000;

const QByteArray lineEnd = QByteArrayLiteral("\r\n");

using Role = FaultKind::Role;
using Actions = QList<Action>;

bool readNumber(const QByteArray &text, quint32 minimum, quint32 maximum, int *number)
{
    const std::optional<quint32> value = parseDecimal(text, minimum, maximum);
    *number = static_cast<int>(value.value_or(0));
    return value.has_value();
}

bool readNothing(const QByteArray &arguments, Fault * /*fault*/)
{
    return arguments.isNull();
}

template<quint32 minimum, quint32 maximum>
bool readAmount(const QByteArray &arguments, Fault *fault)
{
    return readNumber(arguments, minimum, maximum, &fault->amount);
}

constexpr auto readTime = readAmount<0, longestTime>;

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
    return comma >= 0 && readAmount<1, mostBytes>(arguments.left(comma), fault)
           && readNumber(arguments.mid(comma + 1), 0, longestTime, &fault->variation);
}

bool readRefusal(const QByteArray &arguments, Fault *fault)
{
    fault->word = arguments;
    return QList<QByteArray>{"E0", "E1", "E2", "E4", "E5", "E6"}.contains(arguments);
}

bool readMoment(const QByteArray &arguments, Fault *fault)
{
    fault->word = arguments;
    return QList<QByteArray>{"before", "in", "after"}.contains(arguments);
}

/// The answer without its line end.
QByteArray textOf(const StruckCommand &command)
{
    return command.answer.left(command.answer.size() - lineEnd.size());
}

Actions send(const QByteArray &bytes, int milliseconds = 0)
{
    Actions actions;
    if (!bytes.isEmpty())
        actions.append({Action::Kind::Send, milliseconds, bytes});
    return actions;
}

Actions delayed(const StruckCommand &command)
{
    const int variation = command.fault.variation;
    const int jitter = command.random->bounded(-variation, variation + 1);
    return send(command.answer, command.fault.amount + jitter);
}

/// There are always two parts: when the answer is too short, its last byte is the second part.
Actions split(const StruckCommand &command)
{
    const int cut = std::min(command.fault.amount, command.answer.size() - 1);
    return send(command.answer.left(cut)) + send(command.answer.mid(cut), command.fault.variation);
}

Actions dribble(const StruckCommand &command)
{
    Actions actions;
    for (const char byte : command.answer)
        actions += send(QByteArray(1, byte), actions.isEmpty() ? 0 : command.fault.amount);
    return actions;
}

/// Random bytes without those that would end the line.
Actions garbage(const StruckCommand &command)
{
    QByteArray bytes(command.fault.amount, '\0');
    for (char &byte : bytes) {
        do {
            byte = static_cast<char>(command.random->bounded(256));
        } while (lineEnd.contains(byte));
    }
    return send(bytes + lineEnd);
}

Actions zeroByte(const StruckCommand &command)
{
    QByteArray bytes = command.answer;
    bytes[textOf(command).size() / 2] = '\0';
    return send(bytes);
}

Actions longLine(const StruckCommand &command)
{
    const int length = command.fault.amount - lineEnd.size();
    const QByteArray part = textOf(command) + ' ';
    return send(part.repeated(length / part.size() + 1).left(length) + lineEnd);
}

Actions shortAnswer(const StruckCommand &command)
{
    const QByteArray text = textOf(command);
    return send(text.left(std::max(text.lastIndexOf(' '), 0)) + lineEnd);
}

Actions notANumber(const StruckCommand &command)
{
    QByteArray text = textOf(command);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c != ' '; }, '*');
    return send(text + lineEnd);
}

/// The connection ends before, in or after the answer.
template<Action::Kind end>
Actions ended(const StruckCommand &command)
{
    const QByteArray &moment = command.fault.word;
    const int size = command.answer.size();
    const int sent = moment == "before" ? 0 : moment == "in" ? size / 2 : size;
    return send(command.answer.left(sent)) + Actions{{end, 0, {}}};
}

constexpr std::array<FaultKind, 22> kinds{{
    {"delay", Role::Answer, readDelay,
     "delay=MS or delay=MS+-JITTER, MS from 0 to 600000 and JITTER from 0 to MS", delayed},
    {"silent", Role::Answer, readNothing, "silent",
     [](const StruckCommand &) { return Actions(); }},
    {"late", Role::LateAnswer, readTime, "late=MS, from 0 to 600000", delayed},
    {"refuse", Role::NoExecution, readRefusal, "refuse=E0, E1, E2, E4, E5 or E6",
     [](const StruckCommand &c) { return send(c.fault.word + lineEnd); }},
    {"split", Role::Answer, readSplit,
     "split=BYTES,MS, BYTES from 1 to 1048576 and MS from 0 to 600000", split},
    {"dribble", Role::Answer, readOptionalTime, "dribble or dribble=MS, from 0 to 600000", dribble},
    {"no-terminator", Role::Answer, readNothing, "no-terminator",
     [](const StruckCommand &c) { return send(textOf(c)); }},
    {"empty", Role::Answer, readNothing, "empty",
     [](const StruckCommand &) { return send(lineEnd); }},
    {"garbage", Role::Answer, readAmount<1, mostBytes>, "garbage=BYTES, from 1 to 1048576",
     garbage},
    {"nul", Role::Answer, readNothing, "nul", zeroByte},
    {"long", Role::Answer, readAmount<shortestLine, mostBytes>, "long=BYTES, from 3 to 1048576",
     longLine},
    {"short-answer", Role::Answer, readNothing, "short-answer", shortAnswer},
    {"extra-word", Role::Answer, readNothing, "extra-word",
     [](const StruckCommand &c) { return send(textOf(c) + " 65535" + lineEnd); }},
    {"not-a-number", Role::Answer, readNothing, "not-a-number", notANumber},
    {"duplicate", Role::Answer, readNothing, "duplicate",
     [](const StruckCommand &c) { return send(c.answer + c.answer); }},
    {"previous-answer", Role::PreviousAnswer, readNothing, "previous-answer",
     [](const StruckCommand &c) { return send(c.previous); }},
    {"close", Role::Answer, readMoment, "close=before, close=in or close=after",
     ended<Action::Kind::Close>},
    {"reset", Role::Answer, readMoment, "reset=before, reset=in or reset=after",
     ended<Action::Kind::Reset>},
    {"restart", Role::NoExecution, readTime, "restart=MS, from 0 to 600000",
     [](const StruckCommand &c) {
         return Actions{{Action::Kind::Restart, c.fault.amount, {}}};
     }},
    {"refuse-connect", Role::RefuseClient, readNothing, "refuse-connect", nullptr},
    {"accept-then-silent", Role::IgnoreClient, readNothing, "accept-then-silent", nullptr},
    {"max-clients", Role::RefuseClient, readAmount<0, mostClients>,
     "max-clients=N, from 0 to 10000", nullptr},
}};

} // namespace

const FaultKind *faultKind(const QByteArray &name)
{
    const auto *kind
        = std::find_if(kinds.cbegin(), kinds.cend(), [&](FaultKind k) { return name == k.name; });
    return kind == kinds.cend() ? nullptr : kind;
}

QString faultKindNames()
{
    QStringList names;
    for (const FaultKind &kind : kinds)
        names.append(QLatin1String(kind.name));
    return names.join(QStringLiteral(", "));
}
