#include "discover/searchsettings.h"

#include "discover/portlist.h"
#include "plant/records.h"

#include <common/json/problem.h>
#include <common/wholenumber.h>

namespace {

const QString subnetOption = QStringLiteral("subnet");
const QString timeoutKey = QStringLiteral("timeout_ms");
const QString interfaceKey = QStringLiteral("network_interface");
const QString udpPortsKey = QStringLiteral("udp_ports");
const QString tcpPortsKey = QStringLiteral("tcp_ports");
/// A longer time-out is taken for a mistake.
constexpr int maximumTimeoutMs = 60 * 60 * 1000;

/// A search parameter of the plug-in and the option that gives it.
struct SearchParameter
{
    QString column;
    Option option;
};

QList<SearchParameter> searchParameters()
{
    const QString ports = QStringLiteral("PORTS");
    return {{interfaceKey,
             {QStringLiteral("interface"), QStringLiteral("NAME"),
              QStringLiteral("ask by broadcast on this network interface, empty for all of them "
                             "(default as the plug-in declares)")}},
            {udpPortsKey,
             {QStringLiteral("udp-ports"), ports,
              QStringLiteral("ports to ask by UDP, for example 8501,8600-8605 (default as the "
                             "plug-in declares)")}},
            {tcpPortsKey,
             {QStringLiteral("tcp-ports"), ports,
              QStringLiteral("ports to ask by TCP (default as the plug-in declares)")}},
            {timeoutKey,
             {QStringLiteral("timeout"), QStringLiteral("MS"),
              QStringLiteral("milliseconds for the whole search (default as the plug-in "
                             "declares)")}}};
}

QString missingColumns(const QList<DatabaseColumnStructure> &columns)
{
    QStringList missing{timeoutKey, interfaceKey, udpPortsKey, tcpPortsKey};
    for (const DatabaseColumnStructure &column : columns)
        missing.removeAll(column.name);
    return missing.join(QStringLiteral(", "));
}

/// The parameters that were given.
ParameterTexts givenParameters(const Arguments &arguments)
{
    ParameterTexts texts;
    const QList<SearchParameter> parameters = searchParameters();
    for (const auto &[column, option] : parameters) {
        if (arguments.has(option.name))
            texts.insert(column, arguments.value(option.name));
    }
    return texts;
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

QList<Option> discoverOptions()
{
    QList<Option> options{{QStringLiteral("plant"), QStringLiteral("FILE"),
                           QStringLiteral("write the controllers to this plant file")},
                          {subnetOption, QStringLiteral("NETWORK"),
                           QStringLiteral("ask the addresses of this network, for example "
                                          "192.168.0.0/24, and not all of the interface's")},
                          {forceOption,
                           {},
                           QStringLiteral("ask a network larger than a /22, replace a file that is "
                                          "already there")}};
    const QList<SearchParameter> parameters = searchParameters();
    for (const SearchParameter &parameter : parameters)
        options.append(parameter.option);
    return options;
}

SearchPlan searchPlan(const Arguments &arguments, const QList<DatabaseColumnStructure> &columns,
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
    const ParameterTexts given = givenParameters(arguments);
    QList<Problem> problems;
    const QMap<QString, QString> parameters = resolveParameters(
        given, columns, QStringLiteral("device"), QStringLiteral("search"), &problems);
    for (const Problem &problem : std::as_const(problems))
        errors->append(problem.place + u": " + problem.text);
    SearchPlan plan;
    plan.udpPorts = parsePortList(parameters.value(udpPortsKey), QStringLiteral("--udp-ports"),
                                  errors, notes);
    plan.tcpPorts = parsePortList(parameters.value(tcpPortsKey), QStringLiteral("--tcp-ports"),
                                  errors, notes);
    plan.timeoutMs = parseTimeout(parameters.value(timeoutKey), errors);
    const std::optional<QString> subnet
        = arguments.has(subnetOption) ? std::optional(arguments.value(subnetOption)) : std::nullopt;
    QString error;
    const AreaChoice choice{parameters.value(interfaceKey), given.contains(interfaceKey), subnet,
                            arguments.has(forceOption)};
    plan.area = searchArea(choice, networks, &error).value_or(SearchArea());
    if (!error.isEmpty())
        errors->append(error);
    return plan;
}
