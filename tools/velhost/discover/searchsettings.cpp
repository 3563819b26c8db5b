#include "discover/searchsettings.h"

#include "discover/portlist.h"
#include "plant/records.h"

#include <common/json/problem.h>
#include <common/wholenumber.h>

namespace {

const QString timeoutKey = QStringLiteral("timeout_ms");
const QString interfaceKey = QStringLiteral("network_interface");
const QString udpPortsKey = QStringLiteral("udp_ports");
const QString tcpPortsKey = QStringLiteral("tcp_ports");
/// A longer time-out is taken for a mistake.
constexpr int maximumTimeoutMs = 60 * 60 * 1000;

QString missingColumns(const QList<DatabaseColumnStructure> &columns)
{
    QStringList missing{timeoutKey, interfaceKey, udpPortsKey, tcpPortsKey};
    for (const DatabaseColumnStructure &column : columns)
        missing.removeAll(column.name);
    return missing.join(QStringLiteral(", "));
}

/// The parameters with the declared defaults, by column name.
QMap<QString, QString> withDefaults(const QMap<QString, QString> &parameters,
                                    const QList<DatabaseColumnStructure> &columns,
                                    QStringList *errors)
{
    ParameterTexts texts;
    for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter)
        texts.insert(parameter.key(), parameter.value());
    QList<Problem> problems;
    const QMap<QString, QString> resolved = resolveParameters(
        texts, columns, QStringLiteral("device"), QStringLiteral("search"), &problems);
    for (const Problem &problem : std::as_const(problems))
        errors->append(problem.place + u": " + problem.text);
    return resolved;
}

/// `option` is named in the messages.
QVector<quint16> parsePorts(const QString &text, const QString &option, QStringList *errors,
                            QStringList *notes)
{
    QString error;
    const std::optional<PortList> list = parsePortList(text, &error);
    if (!list) {
        errors->append(option + u": " + error);
        return {};
    }
    if (list->isTruncated)
        notes->append(
            QStringLiteral(
                "%1: \"%2\" names more than %3 ports; only the first %3 are asked, up to %4")
                .arg(option, text, QString::number(list->ports.size()),
                     QString::number(list->ports.last())));
    return list->ports;
}

int parseTimeout(const QString &text, QStringList *errors)
{
    const std::optional<int> time = wholeNumber(text, 1, maximumTimeoutMs);
    if (!time)
        errors->append(QStringLiteral("--timeout: \"%1\" is no time; write milliseconds as a "
                                      "whole number from 1 to %2")
                           .arg(text, QString::number(maximumTimeoutMs)));
    return time.value_or(0);
}

} // namespace

std::optional<SearchPlan> searchPlan(const SearchOptions &options,
                                     const QList<DatabaseColumnStructure> &columns,
                                     const QList<InterfaceNetwork> &networks, QStringList *errors,
                                     QStringList *notes)
{
    const QString missing = missingColumns(columns);
    if (!missing.isEmpty()) {
        errors->append(QStringLiteral("the plug-in declares no device search: its device "
                                      "parameters lack %1; name another one with --plugin")
                           .arg(missing));
        return {};
    }
    const QMap<QString, QString> parameters = withDefaults(options.parameters, columns, errors);
    SearchPlan plan;
    plan.udpPorts
        = parsePorts(parameters.value(udpPortsKey), QStringLiteral("--udp-ports"), errors, notes);
    plan.tcpPorts
        = parsePorts(parameters.value(tcpPortsKey), QStringLiteral("--tcp-ports"), errors, notes);
    plan.timeoutMs = parseTimeout(parameters.value(timeoutKey), errors);
    QString error;
    const AreaChoice choice{parameters.value(interfaceKey),
                            options.parameters.contains(interfaceKey), options.subnet,
                            options.isForced};
    if (const std::optional<SearchArea> area = searchArea(choice, networks, &error))
        plan.area = *area;
    else
        errors->append(error);
    return errors->isEmpty() ? std::optional(plan) : std::nullopt;
}
