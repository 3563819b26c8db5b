#include "plant/plantcheck.h"

#include "plant/records.h"
#include "plant/rules.h"

#include <common/ipv4address.h>

#include <QSet>

#include <algorithm>

namespace {

// The rule for the text of a parameter, if the plug-in declares that parameter.
struct Rule
{
    QString name;
    bool (*isRight)(const QString &text);
    /// The end of the message: what a wrong text is not, and what to write instead.
    QString meaning;
};

const QList<Rule> &deviceRules()
{
    static const QList<Rule> rules{
        {QStringLiteral("port"), isPort,
         QStringLiteral("no TCP port; write a number from 1 to 65535")},
        {QStringLiteral("timeout"), isTimeout,
         QStringLiteral("no time-out; write milliseconds as a whole number, for example 2000")}};
    return rules;
}

const QList<Rule> &itemRules()
{
    static const QList<Rule> rules{
        {QStringLiteral("memory_address"), isMemoryAddress,
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

Review reviewFrom(const QList<Problem> &problems)
{
    Review review{problems, {}};
    for (const Problem &problem : problems)
        review.faultyPlaces.insert(problem.place);
    return review;
}

void addFinding(const QString &place, const QString &text, Review *review)
{
    if (!review->faultyPlaces.contains(place))
        review->problems.append({{}, place, text});
}

void checkParameters(const QMap<QString, QString> &parameters, const QList<Rule> &rules,
                     const QList<DatabaseColumnStructure> &columns, const QString &place,
                     Review *review)
{
    for (const Rule &rule : rules) {
        const bool isDeclared
            = std::any_of(columns.begin(), columns.end(),
                          [&](const auto &column) { return column.name == rule.name; });
        const QString text = parameters.value(rule.name);
        if (isDeclared && !rule.isRight(text))
            addFinding(place + u".parameters." + rule.name,
                       QStringLiteral("\"%1\" is %2").arg(text, rule.meaning), review);
    }
}

void checkDevice(const DeviceInstancePlugin &device, const PluginRegistration &registration,
                 const QString &place, Review *review)
{
    if (!ipv4Address(device.ipAddress))
        addFinding(place + u".ip",
                   QStringLiteral("\"%1\" is no IPv4 address; write four numbers from 0 to "
                                  "255 without leading zeros, for example 192.168.0.10")
                       .arg(device.ipAddress),
                   review);
    checkParameters(device.parameters, deviceRules(), registration.deviceColumns, place, review);
    for (int i = 0; i < device.items.size(); ++i) {
        const QString itemPlace = QStringLiteral("%1.items[%2]").arg(place).arg(i);
        if (!review->faultyPlaces.contains(itemPlace))
            checkParameters(device.items.at(i).parameters, itemRules(), registration.itemColumns,
                            itemPlace, review);
    }
}

} // namespace

QList<Problem> plantProblems(const Plant &draft, const PluginRegistration &registration,
                             const QList<Problem> &found)
{
    QList<Problem> problems = found;
    const QList<DeviceInstancePlugin> devices = deviceRecords(draft, registration, &problems);
    Review review = reviewFrom(problems);
    for (int i = 0; i < devices.size(); ++i) {
        const QString place = QStringLiteral("devices[%1]").arg(i);
        // A device that is no object in the file is not checked further.
        if (!review.faultyPlaces.contains(place))
            checkDevice(devices.at(i), registration, place, &review);
    }
    return review.problems;
}
