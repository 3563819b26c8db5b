// The simulator's control port, line by line. A line that begins with '>' is a client's command to
// the first controller instead, and one that begins with '<' a new client, with as many connected
// as bytes follow.

#include "input.h"
#include "require.h"

#include <control/control.h>
#include <files/memoryobject.h>

#include <QList>

#include <algorithm>

namespace {

constexpr int mostLines = 40;

// All that a control command could change.
QByteArray stateOf(const Controllers &controllers)
{
    QByteArray state = countersText(controllers);
    for (const auto &controller : controllers)
        state += memoryText(controller->memory.stored(), {}) + '\n';
    return state;
}

void checkTakenFault(const QByteArray &fault, const Controllers &controllers)
{
    require(std::any_of(controllers.begin(), controllers.end(),
                        [&](const auto &controller) {
                            const QVector<FaultCount> counts = controller->faults.counts();
                            return !counts.isEmpty() && counts.constLast().text == fault
                                   && counts.constLast().seen == 0;
                        }),
            "a fault that was taken is the last one in force");
}

void checkDone(const QByteArray &line, const ControlTarget &target)
{
    QList<QByteArray> fields = line.simplified().split(' ');
    const bool isOne = fields.constFirst().startsWith('@');
    const QByteArray name = isOne ? fields.takeFirst() + ' ' : QByteArray();
    if (fields.constFirst() == "fault")
        checkTakenFault(fields.at(1), target.controllers);
    if (fields.constFirst() != "set" || fields.size() > 3)
        return;
    const QByteArray value = QByteArray::number(static_cast<quint16>(fields.at(2).toInt()));
    const QByteArray both = isOne ? value : value + ' ' + value;
    requireSame(answerControl(name + "get " + fields.at(1), target), QByteArray(both + '\n'),
                "a value reads back as it was set");
}

void checkControl(const QByteArray &line, const ControlTarget &target)
{
    const QByteArray before = stateOf(target.controllers);
    const QByteArray text = answerControl(line, target);
    const bool isCounters = text.startsWith("c");
    require(text.endsWith(isCounters ? "\n\n" : "\n"), "an answer has its end");
    require(isCounters || text.count('\n') == 1, "an answer is one line");
    if (text == "ok\n")
        checkDone(line, target);
    else
        requireSame(stateOf(target.controllers), before, "only what is ok changes anything");
}

void checkReply(const QByteArray &command, Controller *controller, QByteArray *previous)
{
    constexpr int mostBytes = 1024 * 1024 + 16;
    constexpr int longestTime = 2 * 600000;
    const quint64 commands = controller->counters.commands;
    const Reply reply = replyTo({}, {command}, controller, previous);
    requireSame<quint64>(controller->counters.commands, commands + 1, "a command is counted");
    require(reply.bytes().size() <= mostBytes + 2 * reply.answer.size(), "a reply has an end");
    for (const Action &action : reply.actions) {
        require(action.milliseconds >= 0 && action.milliseconds <= longestTime,
                "an action waits a time that a fault can state");
        require((action.kind == Action::Kind::Send) != action.bytes.isEmpty(),
                "what is sent has bytes");
    }
}

void checkCounts(const Controller &controller)
{
    const QVector<FaultCount> counts = controller.faults.counts();
    for (const FaultCount &count : counts)
        require(count.applied <= count.seen, "a fault strikes what it has seen");
}

} // namespace

void check(Input input)
{
    const auto press = std::make_shared<Controller>();
    const auto oven = std::make_shared<Controller>();
    press->place.name = "press";
    oven->place.name = "oven";
    oven->profile = {"53", {{*parseAddress("DM1000"), 100}}, {{*parseAddress("EM0"), 9}}};
    const ControlTarget target{{press, oven}, [] { return QString(); }};
    QByteArray previous;
    const QList<QByteArray> lines = input.rest().split('\n').mid(0, mostLines);
    for (const QByteArray &line : lines) {
        if (line.startsWith('>'))
            checkReply(line.mid(1), press.get(), &previous);
        else if (line.startsWith('<'))
            press->faults.welcome(line.size() - 1);
        else
            checkControl(line, target);
        checkCounts(*press);
    }
}
