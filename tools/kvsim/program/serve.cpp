#include "program/serve.h"

#include "control/controlserver.h"
#include "files/config.h"
#include "files/memoryfile.h"
#include "files/plantfile.h"
#include "files/replayfile.h"
#include "network/server.h"
#include "network/trace.h"
#include "program/options.h"
#include "program/places.h"
#include "program/processsignals.h"

#include <common/json/problem.h>
#include <common/outputfile.h>

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

namespace {

using Servers = std::vector<std::unique_ptr<Server>>;

ExitCode failed(const QString &error)
{
    printError(error);
    return ErrorFound;
}

/// Writes what happens to clients to standard error. Where there are several controllers, the name
/// of the one that it concerns stands before the client.
void traceClients(const Controllers &controllers)
{
    for (const auto &controller : controllers) {
        const QByteArray prefix
            = controllers.size() > 1 ? controller->place.name + ' ' : QByteArray();
        controller->traced
            = [prefix](const QByteArray &client, ClientEvent event, const QByteArray &bytes) {
                  const QByteArray line = traceLine(prefix + client, event, bytes);
                  std::fputs(line.constData(), stderr);
              };
    }
}

/// The controllers that a file or the command line describes. What is wrong is printed: then there
/// are none.
Controllers controllersOf(const Options &options, QJsonObject *plant)
{
    QList<Problem> problems;
    Controllers controllers;
    if (!options.config.isEmpty())
        controllers = readConfig(options.config, options.place, &problems);
    else if (!options.plant.isEmpty())
        controllers = readPlant(options.plant, !options.hasPort, plant, &problems);
    else if (!options.replay.isEmpty())
        controllers = readReplay(options.replay, options.replayDelays, &problems);
    else
        while (controllers.size() < options.controllers)
            controllers.append(std::make_shared<Controller>());
    if (options.config.isEmpty()) {
        const QString error
            = placesError(options.place, controllers.size(), options.consecutivePorts);
        if (error.isEmpty())
            placeControllers(options.place, options.consecutivePorts, controllers);
        else
            addError({}, error, &problems);
    }
    // There is one of these files at most.
    printError(problemLines(options.config + options.plant + options.replay, problems));
    return hasError(problems) ? Controllers() : controllers;
}

/// Carries out --fault and --set. Returns what is wrong with them, or an empty text.
QString applyOptions(const Options &options, const Controllers &controllers)
{
    for (const QString &fault : options.faults) {
        const QString error = addFault(controllers, fault.toUtf8());
        if (!error.isEmpty())
            return QStringLiteral("--fault: %1.").arg(error);
    }
    for (const QString &value : options.values) {
        const int equals = value.indexOf(u'=');
        if (equals < 0)
            return QStringLiteral("--set: '%1' has no '='; write for example DM100=5.").arg(value);
        const QString error
            = storeText(controllers, value.left(equals).toUtf8(), value.mid(equals + 1).toUtf8());
        if (!error.isEmpty())
            return QStringLiteral("--set: %1.").arg(error);
    }
    return {};
}

/// Puts into the controllers what the file of memory and the options say.
ExitCode fillControllers(const Options &options, const Controllers &controllers)
{
    const QList<Problem> problems
        = options.load.isEmpty() ? QList<Problem>() : loadMemory(options.load, controllers);
    printError(problemLines(options.load, problems));
    const QString error = problems.isEmpty() ? applyOptions(options, controllers) : QString();
    if (!error.isEmpty())
        printError(error + u" See kvsim --help.");
    return problems.isEmpty() && error.isEmpty() ? AllWell : WrongUsage;
}

Servers serversOf(const Controllers &controllers)
{
    Servers servers;
    for (const auto &controller : controllers) {
        servers.push_back(std::make_unique<Server>(controller.get()));
        const Server *server = servers.back().get();
        QObject::connect(server, &Server::restartFailed, server, [](const QString &error) {
            printError(QStringLiteral("cannot listen again after a restart: %1. End what listens "
                                      "on that port.")
                           .arg(error));
            QCoreApplication::exit(ErrorFound);
        });
    }
    return servers;
}

/// Starts the servers. Returns an empty text, or where one cannot listen and why.
QString startOnce(const Servers &servers, const Controllers &controllers)
{
    for (std::size_t i = 0; i < servers.size(); ++i) {
        const Place &place = controllers.at(static_cast<int>(i))->place;
        int port = place.port;
        if (port == 0 && place.portOffset && i > 0)
            port = servers.front()->serverPort() + *place.portOffset;
        const auto number = static_cast<quint16>(port);
        const QString error = port > 65535 ? QStringLiteral("there is no such port")
                                           : servers.at(i)->listen(place.address, number);
        if (!error.isEmpty())
            return QString::fromLatin1(endpointText(place.address, number)) + u": " + error;
    }
    return {};
}

/// The same; when one cannot listen, none does.
QString start(const Servers &servers, const Controllers &controllers)
{
    // While the first port is free, one of those that follow it may be in use.
    const bool choose = controllers.size() > 1 && controllers.constLast()->place.port == 0;
    QString error;
    for (int attempts = choose ? 20 : 1; attempts > 0; --attempts) {
        error = startOnce(servers, controllers);
        if (error.isEmpty())
            break;
        for (const auto &server : servers)
            server->close();
    }
    return error;
}

/// Opens the control port and writes the plant, then prints all ports: the first line of output
/// promises that all of that is done.
ExitCode listen(const Options &options, const QJsonObject &plant, const Controllers &controllers,
                ControlServer *control)
{
    QByteArray lines;
    for (const auto &controller : controllers)
        lines += "listening " + controller->endpoint + '\n';
    if (options.control) {
        const QHostAddress loopback(QHostAddress::LocalHost);
        if (!control->listen(loopback, *options.control))
            return failed(QStringLiteral("cannot listen on %1: %2. Choose another --control.")
                              .arg(QString::fromLatin1(endpointText(loopback, *options.control)),
                                   control->errorString()));
        lines += "control " + endpointText(loopback, control->serverPort()) + '\n';
    }
    const QString error = options.writePlant.isEmpty()
                              ? QString()
                              : writePlant(options.writePlant, plant, controllers);
    return error.isEmpty() ? printOutput(QString::fromLatin1(lines)) : failed(error);
}

/// Whether no client has asked what is not in the trace.
bool isReplayWhole(const Controllers &controllers)
{
    return std::all_of(controllers.cbegin(), controllers.cend(), [](const auto &controller) {
        return !controller->replay || controller->replay->unknown == 0;
    });
}

/// Runs until it is told to end.
ExitCode run(const Options &options, const QJsonObject &plant, const Controllers &controllers,
             const std::function<void()> &report)
{
    if (options.trace)
        traceClients(controllers);
    const Servers servers = serversOf(controllers);
    const QString failure = start(servers, controllers);
    if (!failure.isEmpty())
        return failed(QStringLiteral("cannot listen on %1. Choose another %2.")
                          .arg(failure, options.config.isEmpty()
                                            ? QStringLiteral("--bind or --port")
                                            : QStringLiteral("address or port in the file")));

    const DumpFunction dump = [&] { return saveMemory(options.dump, controllers); };
    ControlServer control({controllers, options.dump.isEmpty() ? DumpFunction() : dump});
    const ExitCode listening = listen(options, plant, controllers, &control);
    if (listening != AllWell)
        return listening;
    const bool isWell = QCoreApplication::exec() == 0;
    report();
    const QString error = options.dump.isEmpty() ? QString() : dump();
    if (!error.isEmpty())
        printError(error);
    return isWell && error.isEmpty() && isReplayWhole(controllers) ? AllWell : ErrorFound;
}

} // namespace

ExitCode serve(const Options &options)
{
    QJsonObject plant;
    const Controllers controllers = controllersOf(options, &plant);
    if (controllers.isEmpty())
        return WrongUsage;
    const auto report
        = [&controllers] { std::fputs(countersText(controllers).constData(), stderr); };
    if (!handleSignals(report))
        return failed(u"cannot catch signals: " + qt_error_string(errno));
    for (const QString &file : {options.writePlant, options.dump}) {
        const QString error = file.isEmpty() ? QString() : outputFileError(file);
        if (!error.isEmpty()) {
            printError(error);
            return WrongUsage;
        }
    }
    const ExitCode filled = fillControllers(options, controllers);
    return filled == AllWell ? run(options, plant, controllers, report) : filled;
}
