#include "controller/faultreply.h"

#include <QRandomGenerator>

#include <algorithm>
#include <array>

namespace {

const QByteArray lineEnd = QByteArrayLiteral("\r\n");

using Actions = QList<Action>;

struct FaultContext
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

Actions delayed(const FaultContext &context)
{
    const int variation = context.fault.variation;
    const int jitter = context.random->bounded(-variation, variation + 1);
    return send(context.answer, context.fault.amount + jitter);
}

/// There are always two parts: when the answer is too short, its last byte is the second part.
Actions split(const FaultContext &context)
{
    const int cut = std::min(context.fault.amount, context.answer.size() - 1);
    return send(context.answer.left(cut)) + send(context.answer.mid(cut), context.fault.variation);
}

Actions dribble(const FaultContext &context)
{
    Actions actions;
    for (const char byte : context.answer)
        actions += send(QByteArray(1, byte), actions.isEmpty() ? 0 : context.fault.amount);
    return actions;
}

/// Random bytes without those that would end the line.
Actions garbage(const FaultContext &context)
{
    QByteArray bytes(context.fault.amount, '\0');
    for (char &byte : bytes) {
        do {
            byte = static_cast<char>(context.random->bounded(256));
        } while (lineEnd.contains(byte));
    }
    return send(bytes + lineEnd);
}

Actions zeroByte(const FaultContext &context)
{
    QByteArray bytes = context.answer;
    bytes[context.text().size() / 2] = '\0';
    return send(bytes);
}

Actions longLine(const FaultContext &context)
{
    const int length = context.fault.amount - lineEnd.size();
    const QByteArray part = context.text() + ' ';
    return send(part.repeated(length / part.size() + 1).left(length) + lineEnd);
}

Actions shortAnswer(const FaultContext &context)
{
    const QByteArray text = context.text();
    return send(text.left(std::max(text.lastIndexOf(' '), 0)) + lineEnd);
}

Actions notANumber(const FaultContext &context)
{
    QByteArray text = context.text();
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c != ' '; }, '*');
    return send(text + lineEnd);
}

QByteArray sentBefore(const FaultContext &context)
{
    switch (context.fault.moment) {
    case Moment::Before:
        return {};
    case Moment::In:
        return context.answer.left(context.answer.size() / 2);
    case Moment::After:
        break;
    }
    return context.answer;
}

Actions ended(const FaultContext &context)
{
    const bool closes = context.fault.kind == FaultKind::Close;
    const Action end{closes ? Action::Kind::Close : Action::Kind::Reset, 0, {}};
    return send(sentBefore(context)) + Actions{end};
}

Actions restart(const FaultContext &context)
{
    return {{Action::Kind::Restart, context.fault.amount, {}}};
}

struct Effect
{
    FaultKind kind;
    Actions (*actions)(const FaultContext &context);
};

constexpr std::array<Effect, 19> effects{{
    {FaultKind::Delay, delayed},
    {FaultKind::Silent, [](const FaultContext &) { return Actions(); }},
    {FaultKind::Late, delayed},
    {FaultKind::Refuse, [](const FaultContext &c) { return send(c.fault.refusal + lineEnd); }},
    {FaultKind::Split, split},
    {FaultKind::Dribble, dribble},
    {FaultKind::NoTerminator, [](const FaultContext &c) { return send(c.text()); }},
    {FaultKind::Empty, [](const FaultContext &) { return send(lineEnd); }},
    {FaultKind::Garbage, garbage},
    {FaultKind::Nul, zeroByte},
    {FaultKind::Long, longLine},
    {FaultKind::ShortAnswer, shortAnswer},
    {FaultKind::ExtraWord,
     [](const FaultContext &c) { return send(c.text() + " 65535" + lineEnd); }},
    {FaultKind::NotANumber, notANumber},
    {FaultKind::Duplicate, [](const FaultContext &c) { return send(c.answer + c.answer); }},
    {FaultKind::PreviousAnswer, [](const FaultContext &c) { return send(c.previous); }},
    {FaultKind::Close, ended},
    {FaultKind::Reset, ended},
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
