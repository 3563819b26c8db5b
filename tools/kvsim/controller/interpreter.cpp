#include "controller/interpreter.h"

#include "controller/linebuffer.h"
#include "memory/memory.h"
#include "memory/number.h"

#include <algorithm>

namespace {

constexpr const char *noSuchDevice = "E0";
constexpr const char *malformed = "E1";
constexpr const char *writeProtected = "E4";

/// The most words or bits that one RDS or WRS moves.
constexpr quint32 maximumCount = 1000;

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

/// Decimal text from -32768 to 65535; a negative number is kept as its two's complement.
std::optional<quint16> parseWord(const QByteArray &text)
{
    const bool negative = text.startsWith('-');
    const std::optional<quint32> magnitude
        = parseDecimal(negative ? text.mid(1) : text, 0, negative ? 32768 : 65535);
    if (!magnitude)
        return std::nullopt;
    return static_cast<quint16>(negative ? 65536 - *magnitude : *magnitude);
}

std::optional<QVector<quint16>> parseValues(DeviceKind kind, const QList<QByteArray> &texts)
{
    QVector<quint16> values;
    values.reserve(texts.size());
    for (const QByteArray &text : texts) {
        const std::optional<quint16> value = parseWord(text);
        if (!value || *value > maximumValue(kind))
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

/// The address that `start` names. Nothing when one of so many words or bits does not exist.
std::optional<Address> existingAddress(const Profile &profile, const QByteArray &start,
                                       quint32 count)
{
    const std::optional<Address> address = parseAddress(start);
    if (!address || countToEnd(*address) < count || overlapsAny(profile.missing, {*address, count}))
        return std::nullopt;
    return address;
}

QByteArray read(const Profile &profile, const Memory &memory, const QByteArray &start,
                quint32 count)
{
    const std::optional<Address> address = existingAddress(profile, start, count);
    if (!address)
        return noSuchDevice;

    QList<QByteArray> texts;
    const QVector<quint16> values = memory.values({*address, count});
    for (const quint16 value : values)
        texts.append(valueText(address->device->kind, value));
    return texts.join(' ');
}

QByteArray write(const Profile &profile, Memory *memory, const QByteArray &start,
                 const QList<QByteArray> &texts)
{
    const auto count = static_cast<quint32>(texts.size());
    const std::optional<Address> address = existingAddress(profile, start, count);
    if (!address)
        return noSuchDevice;

    const Device *device = address->device;
    const std::optional<QVector<quint16>> values = parseValues(device->kind, texts);
    if (!values)
        return malformed;
    if (device->access == Access::ReadOnly || overlapsAny(profile.readOnly, {*address, count}))
        return writeProtected;

    quint32 index = address->index;
    for (const quint16 value : *values)
        memory->setValue({device, index++}, value);
    return "OK";
}

QByteArray query(const Profile &profile, const QByteArray &command)
{
    if (command == "?K")
        return profile.model;
    if (command == "?M")
        return "1"; // RUN
    if (command == "?E")
        return "000"; // no error
    return malformed;
}

QByteArray execute(const QByteArray &line, const Profile &profile, Memory *memory)
{
    const QList<QByteArray> fields = fieldsOf(line);
    if (fields.isEmpty() || hasLowerCase(line))
        return malformed;

    const QByteArray &command = fields.first();
    if (fields.size() == 1)
        return query(profile, command);
    if (command == "RD" && fields.size() == 2)
        return read(profile, *memory, fields.at(1), 1);
    if (command == "WR" && fields.size() == 3)
        return write(profile, memory, fields.at(1), fields.mid(2));

    const std::optional<quint32> count = parseDecimal(fields.value(2), 1, maximumCount);
    if (command == "RDS" && fields.size() == 3 && count)
        return read(profile, *memory, fields.at(1), *count);
    const QList<QByteArray> texts = fields.mid(3);
    if (command == "WRS" && count && *count == static_cast<quint32>(texts.size()))
        return write(profile, memory, fields.at(1), texts);
    return malformed;
}

} // namespace

QByteArray answerTo(const Line &line, const Profile &profile, Memory *memory)
{
    return (line.tooLong ? malformed : execute(line.text, profile, memory)) + "\r\n";
}
