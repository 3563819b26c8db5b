#include "discover/searchoptions.h"

namespace {

const QString forceOption = QStringLiteral("force");
const QString subnetOption = QStringLiteral("subnet");

/// An option that stands for a search parameter of the plug-in.
struct ParameterOption
{
    Option option;
    QString column;
};

QList<ParameterOption> parameterOptions()
{
    const QString ports = QStringLiteral("PORTS");
    return {{{QStringLiteral("interface"), QStringLiteral("NAME"),
              QStringLiteral("ask by broadcast on this network interface, empty for all of them "
                             "(default as the plug-in declares)")},
             QStringLiteral("network_interface")},
            {{QStringLiteral("udp-ports"), ports,
              QStringLiteral("ports to ask by UDP, for example 8501,8600-8605 (default as the "
                             "plug-in declares)")},
             QStringLiteral("udp_ports")},
            {{QStringLiteral("tcp-ports"), ports,
              QStringLiteral("ports to ask by TCP (default as the plug-in declares)")},
             QStringLiteral("tcp_ports")},
            {{QStringLiteral("timeout"), QStringLiteral("MS"),
              QStringLiteral("milliseconds for the whole search (default as the plug-in "
                             "declares)")},
             QStringLiteral("timeout_ms")}};
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
    const QList<ParameterOption> parameters = parameterOptions();
    for (const ParameterOption &parameter : parameters)
        options.append(parameter.option);
    return options;
}

SearchOptions searchOptions(const Arguments &arguments)
{
    SearchOptions search;
    const QList<ParameterOption> parameters = parameterOptions();
    for (const auto &[option, column] : parameters) {
        if (arguments.has(option.name))
            search.parameters.insert(column, arguments.value(option.name));
    }
    if (arguments.has(subnetOption))
        search.subnet = arguments.value(subnetOption);
    search.isForced = arguments.has(forceOption);
    return search;
}
