#include "controller/faultreply.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>

namespace {

const QByteArray lineEnd = QByteArrayLiteral("\r\n");

using Actions = QList<Action>;

struct Incident
{
    const Fault &fault;
    const QByteArray &answer;
    const QByteArray &previous;
    QRandomGenerator *random;

    QByteArray text() const { return answer.left(answer.size() - lineEnd.size()); }
};

Actions send(const QByteArray &bytes, int milliseconds = 0)
{
    Actions actions;
    if (!bytes.isEmpty())
        actions.append({Action::Kind::Send, milliseconds, bytes});
    return actions;
}

Actions delayed(const Incident &incident)
{
    const int variation = incident.fault.variation;
    const int jitter = incident.random->bounded(-variation, variation + 1);
    return send(incident.answer, incident.fault.amount + jitter);
}

Actions silence(const Incident & /*incident*/)
{
    return {};
}

Actions refusal(const Incident &incident)
{
    return send(incident.fault.refusal + lineEnd);
}

// An answer too short for the cut loses its last byte to the second part: two parts in any case.
Actions split(const Incident &incident)
{
    const int cut = std::min(incident.fault.amount, incident.answer.size() - 1);
    return send(incident.answer.left(cut))
           + send(incident.answer.mid(cut), incident.fault.variation);
}

Actions dribble(const Incident &incident)
{
    Actions actions;
    for (const char byte : incident.answer)
        actions += send(QByteArray(1, byte), actions.isEmpty() ? 0 : incident.fault.amount);
    return actions;
}

Actions withoutTerminator(const Incident &incident)
{
    return send(incident.text());
}

Actions onlyLineEnd(const Incident & /*incident*/)
{
    return send(lineEnd);
}

// Everything but what would end the line.
Actions garbage(const Incident &incident)
{
    QByteArray bytes(incident.fault.amount, '\0');
    for (char &byte : bytes) {
        do {
            byte = static_cast<char>(incident.random->bounded(256));
        } while (lineEnd.contains(byte));
    }
    return send(bytes + lineEnd);
}

Actions zeroByte(const Incident &incident)
{
    QByteArray bytes = incident.answer;
    bytes[incident.text().size() / 2] = '\0';
    return send(bytes);
}

Actions longLine(const Incident &incident)
{
    const int length = incident.fault.amount - lineEnd.size();
    const QByteArray part = incident.text() + ' ';
    return send(part.repeated(length / part.size() + 1).left(length) + lineEnd);
}

Actions shortAnswer(const Incident &incident)
{
    const QByteArray text = incident.text();
    return send(text.left(std::max(text.lastIndexOf(' '), 0)) + lineEnd);
}

Actions extraWord(const Incident &incident)
{
    return send(incident.text() + " 65535" + lineEnd);
}

Actions notANumber(const Incident &incident)
{
    QByteArray text = incident.text();
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c != ' '; }, '*');
    return send(text + lineEnd);
}

Actions duplicate(const Incident &incident)
{
    return send(incident.answer + incident.answer);
}

Actions previousAnswer(const Incident &incident)
{
    return send(incident.previous);
}

QByteArray sentBefore(const Incident &incident)
{
    switch (incident.fault.moment) {
    case Moment::Before:
        return {};
    case Moment::In:
        return incident.answer.left(incident.answer.size() / 2);
    case Moment::After:
        break;
    }
    return incident.answer;
}

Actions close(const Incident &incident)
{
    return send(sentBefore(incident)) + Actions{{Action::Kind::Close, 0, {}}};
}

Actions reset(const Incident &incident)
{
    return send(sentBefore(incident)) + Actions{{Action::Kind::Reset, 0, {}}};
}

Actions restart(const Incident &incident)
{
    return {{Action::Kind::Restart, incident.fault.amount, {}}};
}

struct Effect
{
    FaultKind kind;
    Actions (*actions)(const Incident &incident);
};

constexpr std::array<Effect, 19> effects{{
    {FaultKind::Delay, delayed},
    {FaultKind::Silent, silence},
    {FaultKind::Late, delayed},
    {FaultKind::Refuse, refusal},
    {FaultKind::Split, split},
    {FaultKind::Dribble, dribble},
    {FaultKind::NoTerminator, withoutTerminator},
    {FaultKind::Empty, onlyLineEnd},
    {FaultKind::Garbage, garbage},
    {FaultKind::Nul, zeroByte},
    {FaultKind::Long, longLine},
    {FaultKind::ShortAnswer, shortAnswer},
    {FaultKind::ExtraWord, extraWord},
    {FaultKind::NotANumber, notANumber},
    {FaultKind::Duplicate, duplicate},
    {FaultKind::PreviousAnswer, previousAnswer},
    {FaultKind::Close, close},
    {FaultKind::Reset, reset},
    {FaultKind::Restart, restart},
}};

} // namespace

QByteArray Reply::bytes() const
{
    QByteArray all;
    for (const Action &action : actions)
        all += action.bytes;
    return all;
}

bool executesCommand(const Fault &fault)
{
    return fault.kind != FaultKind::Refuse && fault.kind != FaultKind::Restart;
}

Reply faultyReply(const Fault &fault, const QByteArray &answer, const QByteArray &previous,
                  QRandomGenerator *random)
{
    const auto *effect = std::find_if(effects.cbegin(), effects.cend(),
                                      [&](Effect e) { return e.kind == fault.kind; });
    Reply reply;
    if (effect != effects.cend())
        reply.actions = effect->actions({fault, answer, previous, random});
    reply.detached = fault.kind == FaultKind::Late;
    reply.answer = executesCommand(fault) ? answer : reply.bytes();
    reply.fault = fault.text;
    return reply;
}
