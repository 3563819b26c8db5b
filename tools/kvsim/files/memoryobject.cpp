#include "files/memoryobject.h"

#include <QSet>

namespace {

/// The most values in a line of the file.
constexpr int longestRun = 16;

struct Reader
{
    Memory *memory;
    QSet<QPair<const Device *, quint32>> seen;

    void read(Address address, const JsonNode &node)
    {
        const QString text = QString::fromLatin1(addressText(address));
        const std::optional<qint64> number = node.whole(0, maximumValue(address.device->kind));
        if (memory->isGenerated(address))
            node.fail(QStringLiteral("a generator makes the value of %1; leave one of the two out")
                          .arg(text));
        else if (seen.contains({address.device, address.index}))
            node.fail(QStringLiteral("%1 has a value already; leave one of the two out").arg(text));
        else if (number)
            memory->setValue(address, static_cast<quint16>(*number));
        seen.insert({address.device, address.index});
    }

    void readRun(Address address, const JsonNode &node)
    {
        const QList<JsonNode> values = node.elements();
        const quint32 room = countToEnd(address);
        if (values.isEmpty())
            node.fail(QStringLiteral("must not be empty"));
        if (static_cast<quint32>(values.size()) > room) {
            node.fail(QStringLiteral("%1 values run over the end of the device; write at most %2")
                          .arg(values.size())
                          .arg(room));
            return;
        }
        for (const JsonNode &value : values) {
            read(address, value);
            ++address.index;
        }
    }
};

/// Whether the address is that of the `count`-th word or bit behind another one.
bool follows(Address address, Address first, int count)
{
    return address.device == first.device
           && address.index == first.index + static_cast<quint32>(count);
}

} // namespace

std::optional<Address> readAddress(const QString &text, const JsonNode &node)
{
    const std::optional<Address> address = parseAddress(text.toUtf8());
    if (!address)
        node.fail(QStringLiteral("'%1' is no address that exists; write one such as DM100 or R015")
                      .arg(text));
    return address;
}

void readMemory(const JsonNode &node, Memory *memory)
{
    if (!node.exists() || !node.expectObject())
        return;
    Reader reader{memory, {}};
    const QStringList keys = node.value.toObject().keys();
    for (const QString &key : keys) {
        const JsonNode entry = node[key];
        const std::optional<Address> address = readAddress(key, entry);
        if (address && entry.value.isArray())
            reader.readRun(*address, entry);
        else if (address)
            reader.read(*address, entry);
    }
}

QByteArray memoryText(const QVector<StoredValue> &stored, const QByteArray &indent)
{
    QList<QByteArray> lines;
    for (int i = 0; i < stored.size();) {
        const Address first = stored.at(i).address;
        QList<QByteArray> values;
        while (i < stored.size() && values.size() < longestRun
               && follows(stored.at(i).address, first, values.size()))
            values.append(QByteArray::number(stored.at(i++).value));
        const QByteArray text = values.join(", ");
        lines.append(indent + '"' + addressText(first)
                     + "\": " + (values.size() > 1 ? QByteArray('[' + text + ']') : text));
    }
    return lines.join(",\n");
}
