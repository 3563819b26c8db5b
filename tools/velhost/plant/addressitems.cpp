#include "plant/addressitems.h"

#include "plant/rules.h"

#include <common/ipv4address.h>
#include <common/json/problem.h>

#include <QRegularExpression>
#include <QSet>

namespace {

constexpr quint64 maximumRange = 10'000;

/// The types of a simple address of a word device, with their words.
const QMap<QString, quint64> &wordTypes()
{
    static const QMap<QString, quint64> types{
        {QStringLiteral("Short"), 1}, {QStringLiteral("Long"), 2},  {QStringLiteral("Word"), 1},
        {QStringLiteral("DWord"), 2}, {QStringLiteral("Hex16"), 1}, {QStringLiteral("Hex32"), 2},
        {QStringLiteral("Float"), 2}, {QStringLiteral("Double"), 4}};
    return types;
}

/// The type of an address that takes no other.
QString onlyType(const QString &address)
{
    if (address.contains(u'-'))
        return QStringLiteral("ASCII");
    return holdsBits(address) || address.contains(u'.') ? QStringLiteral("BIT") : QString();
}

/// What is wrong with an address of this type; empty when it is right.
QString errorOf(const QString &address, const QString &type)
{
    const bool isSimple = !address.contains(u'.') && !address.contains(u'-');
    if (!isMemoryAddress(address) || !(holdsWords(address) || (holdsBits(address) && isSimple)))
        return QStringLiteral("no address of which it is known what it holds; write one as DM100, "
                              "DM100.3, D200-10 (DM, EM, FM, ZF, W, TM, CM, VM, Z) or R500 (R, MR, "
                              "LR, CR, B), or a plant file");
    const QString only = onlyType(address);
    if (only.isEmpty() ? wordTypes().contains(type) : type == only)
        return {};
    const QStringList choices = only.isEmpty() ? wordTypes().keys() : QStringList(only);
    return QStringLiteral("%1 has no type, or none that fits; write it behind a colon: %2")
        .arg(address, choices.join(QStringLiteral(", ")));
}

/// The addresses FIRST..LAST, each so many numbers behind the one before; empty when it is no
/// range.
QStringList addressesIn(const QString &range, quint64 step)
{
    static const QRegularExpression form(
        QStringLiteral("\\A([A-Z]+)([0-9][0-9A-F]*)\\.\\.\\1([0-9A-F]+)\\z"));
    const QRegularExpressionMatch match = form.match(range);
    const QString letters = match.captured(1);
    const bool isHexadecimal = letters == u"W" || letters == u"B";
    // R515 is followed by R600: a channel has 16 bits.
    const bool hasChannels = holdsBits(letters) && !isHexadecimal;
    const int base = isHexadecimal ? 16 : 10;
    bool isFirst = false;
    bool isLast = false;
    const quint64 first = match.captured(2).toUInt(&isFirst, base);
    const quint64 last = match.captured(3).toUInt(&isLast, base);
    QStringList addresses;
    for (quint64 number = first; number <= last && last - first < maximumRange; number += step) {
        // A name ends at the first digit: W9 is followed by W0A.
        const QString digits = QString::number(number, base).toUpper();
        const QString zero = digits.at(0).isDigit() ? QString() : QStringLiteral("0");
        if (isFirst && isLast && (!hasChannels || number % 100 < 16))
            addresses.append(letters + zero + digits);
    }
    return addresses;
}

/// The items that the text stands for; none, and the error, when it is wrong.
QList<PlantItem> itemsOf(const QString &text, QString *error)
{
    const QString name = itemName(text);
    const QString first = name.section(QStringLiteral(".."), 0, 0);
    const QString type = name.size() == text.size() ? onlyType(first) : text.section(u':', 1);
    *error = errorOf(first, type);
    if (!error->isEmpty())
        return {};
    const QStringList addresses
        = name == first ? QStringList(name) : addressesIn(name, wordTypes().value(type, 1));
    if (addresses.isEmpty())
        *error = QStringLiteral("no range of at most %1 addresses; write the first and the last, "
                                "both with their letters, for example DM100..DM119")
                     .arg(maximumRange);
    QString dataType = type;
    if (type.startsWith(u"Hex"))
        dataType.replace(QStringLiteral("Hex"), QStringLiteral("Hexadecimal ")).append(u"Bit");
    const ParameterTexts kinds{{QStringLiteral("memory_type"), holdsBits(first)
                                                                   ? QStringLiteral("Bit device")
                                                                   : QStringLiteral("Word device")},
                               {QStringLiteral("data_type"), dataType}};
    QList<PlantItem> items;
    for (const QString &address : addresses) {
        items.append({address, kinds, {}, address});
        items.last().parameters.insert(QStringLiteral("memory_address"), address);
    }
    return items;
}

} // namespace

QString itemName(const QString &text)
{
    return text.section(u':', 0, 0).toUpper();
}

Plant plantOfAddresses(const QString &endpoint, const QStringList &texts, QList<Problem> *problems)
{
    const QString ip = endpoint.section(u':', 0, 0);
    const QString port = endpoint.section(u':', 1);
    PlantDevice device{0, endpoint, ip, {}, {}, {}, QStringLiteral("--ip")};
    if (endpoint.contains(u':'))
        device.parameters.insert(QStringLiteral("port"), port);
    if (!ipv4Address(ip) || (endpoint.contains(u':') && !isPort(port)))
        addError(device.place,
                 QStringLiteral("write an IPv4 address, with a port from 1 to 65535 where it is "
                                "not the usual one, for example 192.168.0.10:8501"),
                 problems);
    QSet<QString> names;
    for (const QString &text : texts) {
        QString error;
        const QList<PlantItem> items = itemsOf(text, &error);
        for (const PlantItem &item : items) {
            if (names.contains(item.name))
                error = item.name + u" is there already; name each address once";
            names.insert(item.name);
        }
        device.items += items;
        if (!error.isEmpty())
            addError({}, u'"' + text + u"\": " + error, problems);
    }
    Plant plant;
    plant.devices.append(device);
    return plant;
}
