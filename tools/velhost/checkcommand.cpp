#include "checkcommand.h"

#include "host.h"

#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace {

/// A device parameter that holds a whole number.
struct NumberRule
{
    QString name;
    int maximum;
    /// What the number is, and what to write instead.
    QString meaning;
};

const QList<NumberRule> &numberRules()
{
    static const QList<NumberRule> rules{
        {QStringLiteral("port"), 65535,
         QStringLiteral("no TCP port; write a number from 1 to 65535")},
        {QStringLiteral("timeout"), std::numeric_limits<int>::max(),
         QStringLiteral("no time-out; write milliseconds as a whole number, for example 2000")}};
    return rules;
}

bool isWholeNumber(const QString &text, int maximum)
{
    static const QRegularExpression digits(QStringLiteral("\\A[0-9]+\\z"));
    bool isInt = false;
    const int number = text.toInt(&isInt);
    return isInt && digits.match(text).hasMatch() && number >= 1 && number <= maximum;
}

void checkAddress(const QString &address, const QString &place, QStringList *problems)
{
    // No leading zeros: the system reads such a number as octal.
    static const QRegularExpression dotted(
        QStringLiteral("\\A(25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])"
                       "(\\.(25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])){3}\\z"));
    if (!dotted.match(address).hasMatch())
        problems->append(
            QStringLiteral("%1: \"%2\" is no IPv4 address; write four numbers from 0 to "
                           "255 without leading zeros, for example 192.168.0.10")
                .arg(place, address));
}

void checkNumbers(const QMap<QString, QString> &parameters,
                  const QList<DatabaseColumnStructure> &columns, const QString &place,
                  QStringList *problems)
{
    for (const NumberRule &rule : numberRules()) {
        const bool isDeclared
            = std::any_of(columns.begin(), columns.end(),
                          [&](const auto &column) { return column.name == rule.name; });
        const QString text = parameters.value(rule.name);
        if (isDeclared && !isWholeNumber(text, rule.maximum))
            problems->append(QStringLiteral("%1.parameters.%2: \"%3\" is %4")
                                 .arg(place, rule.name, text, rule.meaning));
    }
}

/// Whether the place has a fault already, so that a look at what stands there has no sense.
bool isFaulty(const QString &place, const QStringList &faults)
{
    return std::any_of(faults.begin(), faults.end(),
                       [&](const QString &fault) { return fault.startsWith(place + u": "); });
}

} // namespace

ExitCode runCheck(const Job &job, const PluginRegistration &registration)
{
    QStringList problems;
    const QList<DeviceInstancePlugin> devices = deviceRecords(job.draft, registration, &problems);
    for (int i = 0; i < devices.size(); ++i) {
        const QString place = QStringLiteral("devices[%1]").arg(i);
        const QString filePlace = job.commandLine.plantFile + u": " + place;
        // A device that is no object has nothing to be looked at.
        if (isFaulty(filePlace, job.faults))
            continue;
        if (!isFaulty(filePlace + u".ip", job.faults))
            checkAddress(devices.at(i).ipAddress, place + u".ip", &problems);
        checkNumbers(devices.at(i).parameters, registration.deviceColumns, place, &problems);
    }
    complain(job.faults);
    for (const QString &problem : std::as_const(problems))
        complain(job.commandLine.plantFile + u": " + problem);
    if (!job.faults.isEmpty() || !problems.isEmpty())
        return WrongUsage;
    print(stdout, job.commandLine.plantFile + u": no problems\n");
    return AllWell;
}
