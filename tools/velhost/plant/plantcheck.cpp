#include "plant/plantcheck.h"

#include "plant/records.h"
#include "plant/rules.h"

#include <common/ipv4address.h>
#include <common/json/problem.h>

#include <QMap>
#include <QSet>

#include <utility>

namespace {

const QString memoryAddress = QStringLiteral("memory_address");
const QString memoryType = QStringLiteral("memory_type");

// The rule for the text of a parameter, if the plug-in declares that parameter.
struct Rule
{
    QString name;
    bool (*isRight)(const QString &text);
    /// The end of the message: what a wrong text is not, and what to write instead.
    QString meaning;
};

const QList<Rule> &parameterRules()
{
    static const QList<Rule> rules{
        {QStringLiteral("port"), isPort,
         QStringLiteral("no TCP port; write a number from 1 to 65535")},
        {QStringLiteral("timeout"), isTimeout,
         QStringLiteral("no time-out; write milliseconds as a whole number, for example 2000")},
        {memoryAddress, isMemoryAddress,
         QStringLiteral("no address in a controller; write a device and its number, for example "
                        "D201, DM100.3, D200-10 or D200-209")}};
    return rules;
}

/// All problems, and the places of those that were found before, which are not checked again.
struct Review
{
    QList<Problem> problems;
    QSet<QString> faultyPlaces;
};

void addFinding(const QString &place, const QString &text, Review *review)
{
    if (!review->faultyPlaces.contains(place))
        review->problems.append({{}, place, text});
}

void checkParameters(const QMap<QString, QString> &parameters,
                     const QList<DatabaseColumnStructure> &columns, const QString &place,
                     Review *review)
{
    for (const Rule &rule : parameterRules()) {
        const QString text = parameters.value(rule.name);
        if (columnNamed(rule.name, columns) != nullptr && !rule.isRight(text))
            addFinding(place + u".parameters." + rule.name,
                       QStringLiteral("\"%1\" is %2").arg(text, rule.meaning), review);
    }
}

/// Warns of an address that is sent, but hardly means what was wanted, and of a memory type that is
/// another than that of the address.
void checkAddress(const ItemInstancePlugin &item, const QList<DatabaseColumnStructure> &columns,
                  const QString &parametersPlace, Review *review)
{
    const QString address = item.parameters.value(memoryAddress);
    if (!isMemoryAddress(address))
        return;
    if (address != address.toUpper())
        addWarning(parametersPlace + memoryAddress,
                   QStringLiteral("\"%1\" is sent in small letters, which a controller may refuse; "
                                  "write \"%2\"")
                       .arg(address, address.toUpper()),
                   &review->problems);
    const DatabaseColumnStructure *const column = columnNamed(memoryType, columns);
    const QString place = parametersPlace + memoryType;
    if (column == nullptr || review->faultyPlaces.contains(place))
        return;
    const bool isBitDevice
        = displayText(item.parameters.value(memoryType), *column).startsWith(u"Bit");
    if (!isBitDevice && holdsBits(address))
        addWarning(place,
                   QStringLiteral("\"%1\" is a bit in the controller and not a word; choose \"Bit "
                                  "device\"")
                       .arg(address),
                   &review->problems);
    if (isBitDevice && holdsWords(address))
        addWarning(place,
                   QStringLiteral("\"%1\" is a word in the controller: a write would leave nothing "
                                  "but 0 or 1 in it; choose \"Word device\"")
                       .arg(address),
                   &review->problems);
}

/// `record` is made of `device`.
void checkDevice(const PlantDevice &device, const DeviceInstancePlugin &record,
                 const PluginRegistration &registration, Review *review)
{
    if (!ipv4Address(device.ip))
        addFinding(device.place + u".ip",
                   QStringLiteral("\"%1\" is no IPv4 address; write four numbers from 0 to "
                                  "255 without leading zeros, for example 192.168.0.10")
                       .arg(device.ip),
                   review);
    checkParameters(record.parameters, registration.deviceColumns, device.place, review);
    for (int i = 0; i < device.items.size(); ++i) {
        const ItemInstancePlugin &item = record.items.at(i);
        const QString &itemPlace = device.items.at(i).place;
        if (review->faultyPlaces.contains(itemPlace))
            continue;
        checkParameters(item.parameters, registration.itemColumns, itemPlace, review);
        checkAddress(item, registration.itemColumns, itemPlace + u".parameters.", review);
    }
}

/// Warns of each device that has the address and the port of one before it.
void checkEndpoints(const Plant &draft, const QList<DeviceInstancePlugin> &records, Review *review)
{
    QMap<QString, QString> firstPlaces;
    for (int i = 0; i < records.size(); ++i) {
        const QString &ip = records.at(i).ipAddress;
        const QString port = records.at(i).parameters.value(QStringLiteral("port"));
        if (!ipv4Address(ip) || !isPort(port))
            continue;
        const QString place = draft.devices.at(i).place;
        QString &first = firstPlaces[ip + u':' + QString::number(port.toInt())];
        if (first.isEmpty())
            first = place;
        else
            addWarning(place,
                       QStringLiteral("%1 has the same address and port; one device can have the "
                                      "items of both")
                           .arg(first),
                       &review->problems);
    }
}

} // namespace

QList<Problem> plantProblems(const Plant &draft, const PluginRegistration &registration,
                             const QList<Problem> &found)
{
    Review review{found, {}};
    const QList<DeviceInstancePlugin> devices
        = deviceRecords(draft, registration, &review.problems);
    for (const Problem &problem : std::as_const(review.problems))
        review.faultyPlaces.insert(problem.place);
    for (int i = 0; i < devices.size(); ++i) {
        const PlantDevice &device = draft.devices.at(i);
        // A device that is no object in the file is not checked further.
        if (!review.faultyPlaces.contains(device.place))
            checkDevice(device, devices.at(i), registration, &review);
    }
    checkEndpoints(draft, devices, &review);
    return review.problems;
}
