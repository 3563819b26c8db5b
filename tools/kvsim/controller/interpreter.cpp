#include "controller/interpreter.h"

#include "memory/number.h"

#include <QVector>

#include <algorithm>
#include <array>

namespace {

constexpr const char *noSuchDevice = "E0";
constexpr const char *malformed = "E1";
constexpr const char *writeProtected = "E4";

struct Query
{
    const char *command;
    const char *answer;
};

constexpr std::array<Query, 2> queries{{
    {"?M", "1"},   // RUN
    {"?E", "000"}, // no error
}};

bool hasLowerCase(const QByteArray &line)
{
    return std::any_of(line.cbegin(), line.cend(), [](char c) { return c >= 'a' && c <= 'z'; });
}

QList<QByteArray> fieldsOf(const QByteArray &line)
{
    QList<QByteArray> fields = line.split(' ');
    fields.removeAll(QByteArray());
    return fields;
}

std::optional<quint32> parseCount(const QByteArray &text)
{
    const std::optional<quint32> count = parseNumber(text, 10);
    const bool valid = count && *count >= 1 && *count <= maximumCount;
    return valid ? count : std::nullopt;
}

/// Decimal text from -32768 to 65535; a negative number is kept as its two's complement.
std::optional<quint16> parseWord(const QByteArray &text)
{
    const bool negative = text.startsWith('-');
    const std::optional<quint32> magnitude = parseNumber(negative ? text.mid(1) : text, 10);
    if (!magnitude || *magnitude > (negative ? 32768 : 65535))
        return std::nullopt;
    return static_cast<quint16>(negative ? 65536 - *magnitude : *magnitude);
}

std::optional<quint16> parseValue(DeviceKind kind, const QByteArray &text)
{
    const std::optional<quint16> value = parseWord(text);
    return value && *value <= maximumValue(kind) ? value : std::nullopt;
}

std::optional<QVector<quint16>> parseValues(DeviceKind kind, const QList<QByteArray> &texts)
{
    QVector<quint16> values;
    values.reserve(texts.size());
    for (const QByteArray &text : texts) {
        const std::optional<quint16> value = parseValue(kind, text);
        if (!value)
            return std::nullopt;
        values.append(*value);
    }
    return values;
}

QByteArray valueText(DeviceKind kind, quint16 value)
{
    const QByteArray digits = QByteArray::number(value);
    return kind == DeviceKind::Word ? digits.rightJustified(5, '0') : digits;
}

bool overlapsAny(const QVector<Range> &ranges, const Range &range)
{
    return std::any_of(ranges.cbegin(), ranges.cend(),
                       [&](const Range &other) { return overlap(range, other); });
}

} // namespace

CommandInterpreter::CommandInterpreter(Memory *memory, Profile profile)
    : m_memory(memory), m_profile(std::move(profile))
{
}

QByteArray CommandInterpreter::answer(const QByteArray &line)
{
    return execute(line) + "\r\n";
}

QByteArray CommandInterpreter::refusalOfLine()
{
    return QByteArray(malformed) + "\r\n";
}

QByteArray CommandInterpreter::execute(const QByteArray &line)
{
    const QList<QByteArray> fields = fieldsOf(line);
    if (fields.isEmpty() || hasLowerCase(line))
        return malformed;

    const QByteArray &command = fields.first();
    if (command == "RD" && fields.size() == 2)
        return read(fields.at(1), 1);
    if (command == "RDS" && fields.size() == 3)
        return readMany(fields.at(1), fields.at(2));
    if (command == "WR" && fields.size() == 3)
        return write(fields.at(1), fields.mid(2));
    if (command == "WRS" && fields.size() > 3)
        return writeMany(fields);

    if (command == "?K" && fields.size() == 1)
        return m_profile.model;
    const auto *query = std::find_if(queries.cbegin(), queries.cend(),
                                     [&](Query q) { return command == q.command; });
    return query != queries.cend() && fields.size() == 1 ? query->answer : malformed;
}

QByteArray CommandInterpreter::readMany(const QByteArray &start, const QByteArray &countText) const
{
    const std::optional<quint32> count = parseCount(countText);
    return count ? read(start, *count) : malformed;
}

QByteArray CommandInterpreter::writeMany(const QList<QByteArray> &fields)
{
    const QList<QByteArray> texts = fields.mid(3);
    const std::optional<quint32> count = parseCount(fields.at(2));
    if (!count || *count != static_cast<quint32>(texts.size()))
        return malformed;
    return write(fields.at(1), texts);
}

/// The address that `start` names. Nothing when one of so many words or bits does not exist.
std::optional<Address> CommandInterpreter::existingAddress(const QByteArray &start,
                                                           quint32 count) const
{
    const std::optional<Address> address = parseAddress(start);
    if (!address || countToEnd(*address) < count
        || overlapsAny(m_profile.missing, {*address, count}))
        return std::nullopt;
    return address;
}

QByteArray CommandInterpreter::read(const QByteArray &start, quint32 count) const
{
    const std::optional<Address> address = existingAddress(start, count);
    if (!address)
        return noSuchDevice;

    QByteArray text;
    const QVector<quint16> values = m_memory->values({*address, count});
    for (const quint16 value : values) {
        if (!text.isEmpty())
            text += ' ';
        text += valueText(address->device->kind, value);
    }
    return text;
}

QByteArray CommandInterpreter::write(const QByteArray &start, const QList<QByteArray> &texts)
{
    const auto count = static_cast<quint32>(texts.size());
    const std::optional<Address> address = existingAddress(start, count);
    if (!address)
        return noSuchDevice;

    const Device *device = address->device;
    const std::optional<QVector<quint16>> values = parseValues(device->kind, texts);
    if (!values)
        return malformed;
    if (device->access == Access::ReadOnly || overlapsAny(m_profile.readOnly, {*address, count}))
        return writeProtected;

    quint32 index = address->index;
    for (const quint16 value : *values)
        m_memory->setValue({device, index++}, value);
    return "OK";
}
