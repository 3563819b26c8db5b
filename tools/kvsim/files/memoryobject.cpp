#include "files/memoryobject.h"

#include <QSet>

namespace {

/// The most values in a line of the file.
constexpr int longestRun = 16;

struct Reader
{
    Memory *memory;
    QList<Problem> *errors;
    QSet<QPair<const Device *, quint32>> seen;

    void read(Address address, const QJsonValue &value, const QString &place)
    {
        const QString text = QString::fromLatin1(addressText(address));
        const std::optional<qint64> number
            = readWhole(value, 0, maximumValue(address.device->kind), place, errors);
        if (memory->isGenerated(address))
            addError(place,
                     QStringLiteral("a generator makes the value of %1; leave one of the two out")
                         .arg(text),
                     errors);
        else if (seen.contains({address.device, address.index}))
            addError(place,
                     QStringLiteral("%1 has a value already; leave one of the two out").arg(text),
                     errors);
        else if (number)
            memory->setValue(address, static_cast<quint16>(*number));
        seen.insert({address.device, address.index});
    }

    void readRun(Address first, const QJsonArray &values, const QString &place)
    {
        const quint32 room = countToEnd(first);
        if (values.isEmpty())
            addError(place, QStringLiteral("must not be empty"), errors);
        if (static_cast<quint32>(values.size()) > room) {
            addError(place,
                     QStringLiteral("%1 values run over the end of the device; write at most %2")
                         .arg(values.size())
                         .arg(room),
                     errors);
            return;
        }
        for (int i = 0; i < values.size(); ++i)
            read({first.device, first.index + static_cast<quint32>(i)}, values.at(i),
                 element(place, i));
    }
};

QByteArray runText(const QVector<StoredValue> &stored, int first, int count)
{
    QList<QByteArray> values;
    for (int i = first; i < first + count; ++i)
        values.append(QByteArray::number(stored.at(i).value));
    const QByteArray text = values.join(", ");
    return '"' + addressText(stored.at(first).address)
           + "\": " + (count > 1 ? QByteArray('[' + text + ']') : text);
}

/// How many of them from there on follow each other without a gap.
int runLength(const QVector<StoredValue> &stored, int first)
{
    const Address start = stored.at(first).address;
    int count = 1;
    while (count < longestRun && first + count < stored.size()
           && stored.at(first + count).address.device == start.device
           && stored.at(first + count).address.index == start.index + static_cast<quint32>(count))
        ++count;
    return count;
}

} // namespace

std::optional<Address> readAddress(const QString &text, const QString &place,
                                   QList<Problem> *errors)
{
    const std::optional<Address> address = parseAddress(text.toUtf8());
    if (!address)
        addError(place,
                 QStringLiteral("'%1' is no address that exists; write one such as DM100 or R015")
                     .arg(text),
                 errors);
    return address;
}

void readMemory(const QJsonValue &value, const QString &place, Memory *memory,
                QList<Problem> *errors)
{
    if (value.isUndefined())
        return;
    const QJsonObject object = readObject(value, place, errors);
    Reader reader{memory, errors, {}};
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        const QString entryPlace = member(place, entry.key());
        const std::optional<Address> address = readAddress(entry.key(), entryPlace, errors);
        if (!address)
            continue;
        if (entry.value().isArray())
            reader.readRun(*address, entry.value().toArray(), entryPlace);
        else
            reader.read(*address, entry.value(), entryPlace);
    }
}

QByteArray memoryText(const QVector<StoredValue> &stored, const QByteArray &indent)
{
    QList<QByteArray> lines;
    for (int i = 0; i < stored.size();) {
        const int count = runLength(stored, i);
        lines.append(indent + runText(stored, i, count));
        i += count;
    }
    return lines.join(",\n");
}
