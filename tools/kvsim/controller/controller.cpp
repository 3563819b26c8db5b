#include "controller/controller.h"

#include "memory/datatype.h"

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
    if (controller.replay)
        text += "not in the trace " + number(controller.replay->unknown) + '\n';
    const QVector<FaultCount> faults = controller.faults.counts();
    for (const FaultCount &fault : faults)
        text += "fault " + fault.text + ": seen " + number(fault.seen) + ", applied "
                + number(fault.applied) + '\n';
    return text;
}

/// Reads "5" as one word, or one bit, and "3.14 Float" as the words of its type. Returns an empty
/// text, or what to write instead.
QString readValue(const QByteArray &text, DeviceKind kind, QVector<quint16> *values)
{
    const bool isBit = kind == DeviceKind::Bit;
    const DataType plain{"", 1, 10, isBit ? 0 : -32768, maximumValue(kind)};
    int end = text.indexOf(' ');
    const DataType *type = end < 0 ? &plain : dataType(text.mid(end + 1));
    // A text may have blanks, and so may the name of a type.
    while (!type && (end = text.indexOf(' ', end + 1)) >= 0)
        type = dataType(text.mid(end + 1));
    if (!type)
        return u"behind the value one of these types: " + QString::fromLatin1(dataTypeNames());
    if (isBit && type != &plain)
        return QStringLiteral("a number from 0 to 1, without a type");
    const std::optional<QVector<quint16>> words = wordsOf(*type, text.mid(0, end));
    *values = words.value_or(QVector<quint16>());
    if (words)
        return {};
    if (type->base == 0)
        return QStringLiteral("a number such as 3.14");
    return QStringLiteral("a number from %1 to %2")
        .arg(QString::number(type->minimum, type->base),
             QString::number(type->maximum, type->base).toUpper());
}

/// Returns an empty text, or what is wrong.
QString readStored(const QByteArray &address, const QByteArray &text, QVector<StoredValue> *stored)
{
    const std::optional<Address> first = parseAddress(address);
    if (!first)
        return QStringLiteral("'%1' is no address that exists; write one such as DM100 or R015")
            .arg(QString::fromUtf8(address));
    QVector<quint16> values;
    const QString expected = readValue(text, first->device->kind, &values);
    if (!expected.isEmpty())
        return QStringLiteral("'%1' is no value for %2; write %3")
            .arg(QString::fromUtf8(text), QString::fromUtf8(address), expected);
    if (static_cast<quint32>(values.size()) > countToEnd(*first))
        return QStringLiteral("'%1' runs over the end of the device; choose an address before '%2'")
            .arg(QString::fromUtf8(text), QString::fromUtf8(address));
    quint32 index = first->index;
    for (const quint16 value : qAsConst(values))
        stored->append({{first->device, index++}, value});
    return {};
}

} // namespace

Reply replyTo(const QByteArray &client, const Line &line, Controller *controller,
              QByteArray *previous)
{
    controller->traced(client, ClientEvent::Received, line.ended ? line.text + '\r' : line.text);
    const Reply reply
        = controller->replay
              ? replayed(line, &*controller->replay)
              : controller->faults.reply(line, *previous, controller->profile, &controller->memory);
    if (!reply.answer.isEmpty())
        *previous = reply.answer;
    if (!reply.fault.isEmpty())
        controller->traced(client, ClientEvent::Fault, reply.fault);
    const QByteArray bytes = reply.bytes();
    Counters &counters = controller->counters;
    ++counters.commands;
    if (!bytes.isEmpty())
        ++counters.answers;
    if (isRefusal(bytes))
        ++counters.refusals;
    return reply;
}

QByteArray countersText(const Controllers &controllers)
{
    QByteArray text;
    for (const auto &controller : controllers) {
        if (controllers.size() > 1)
            text += "controller " + controller->place.name + ' ' + controller->endpoint + '\n';
        text += countersText(*controller);
    }
    return text;
}

QString addFault(const Controllers &controllers, const QByteArray &text)
{
    QString error;
    for (const auto &controller : controllers)
        error = controller->faults.add(text);
    return error;
}

QString storeText(const Controllers &controllers, const QByteArray &address, const QByteArray &text)
{
    QVector<StoredValue> stored;
    const QString error = readStored(address, text, &stored);
    if (!error.isEmpty())
        return error;
    for (const auto &controller : controllers) {
        for (const StoredValue &cell : qAsConst(stored)) {
            if (controller->memory.isGenerated(cell.address))
                return QStringLiteral("a generator makes the value of '%1'; choose another address")
                    .arg(QString::fromLatin1(addressText(cell.address)));
        }
    }
    for (const auto &controller : controllers) {
        for (const StoredValue &cell : qAsConst(stored))
            controller->memory.setValue(cell.address, cell.value);
    }
    return {};
}
