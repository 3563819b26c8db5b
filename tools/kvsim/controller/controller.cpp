#include "controller/controller.h"

#include "memory/number.h"

namespace {

bool isRefusal(const QByteArray &bytes)
{
    return bytes.size() == 4 && bytes.startsWith('E') && bytes.endsWith("\r\n");
}

QByteArray countersText(const Controller &controller)
{
    const auto number = [](quint64 count) { return QByteArray::number(count); };
    const Counters &counters = controller.counters;
    QByteArray text = "commands " + number(counters.commands) + ", answers "
                      + number(counters.answers) + ", refusals " + number(counters.refusals)
                      + ", clients " + number(counters.clients) + '\n';
    const QVector<FaultCount> faults = controller.faults.counts();
    for (const FaultCount &fault : faults)
        text += "fault " + fault.text + ": seen " + number(fault.seen) + ", applied "
                + number(fault.applied) + '\n';
    return text;
}

} // namespace

Reply replyTo(const Line &line, Controller *controller, QByteArray *previous)
{
    const Reply reply
        = controller->faults.reply(line, *previous, controller->profile, &controller->memory);
    if (!reply.answer.isEmpty())
        *previous = reply.answer;
    const QByteArray bytes = reply.bytes();
    Counters &counters = controller->counters;
    ++counters.commands;
    if (!bytes.isEmpty())
        ++counters.answers;
    if (isRefusal(bytes))
        ++counters.refusals;
    return reply;
}

QByteArray countersText(const NamedControllers &controllers)
{
    QByteArray text;
    for (const NamedController &named : controllers) {
        if (controllers.size() > 1)
            text += "controller " + named.name + ' ' + named.endpoint + '\n';
        text += countersText(*named.controller);
    }
    return text;
}

std::optional<int> valueAt(const Controller &controller, const QByteArray &address)
{
    const std::optional<Address> place = parseAddress(address);
    return place ? std::make_optional<int>(controller.memory.value(*place)) : std::nullopt;
}

QString storeRefusal(const Controller &controller, const QByteArray &address,
                     const QByteArray &value)
{
    const std::optional<Address> place = parseAddress(address);
    if (!place)
        return QStringLiteral("'%1' is no address that exists; write one such as DM100 or R015")
            .arg(QString::fromUtf8(address));
    const int most = maximumValue(place->device->kind);
    const std::optional<quint32> number = parseNumber(value, 10);
    if (!number || *number > static_cast<quint32>(most))
        return QStringLiteral("'%1' is no value for %2; write a number from 0 to %3")
            .arg(QString::fromUtf8(value), QString::fromUtf8(address))
            .arg(most);
    if (controller.memory.isGenerated(*place))
        return QStringLiteral("a generator makes the value of '%1'; choose another address")
            .arg(QString::fromUtf8(address));
    return {};
}

QString storeText(Controller *controller, const QByteArray &address, const QByteArray &value)
{
    const QString error = storeRefusal(*controller, address, value);
    if (error.isEmpty())
        controller->memory.setValue(*parseAddress(address), value.toUShort());
    return error;
}
