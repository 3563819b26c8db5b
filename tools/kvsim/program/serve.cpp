#include "program/serve.h"

#include "control/controlserver.h"
#include "controller/endpoint.h"
#include "files/config.h"
#include "files/memoryfile.h"
#include "files/plantfile.h"
#include "files/replayfile.h"
#include "network/trace.h"
#include "program/options.h"
#include "program/places.h"
#include "program/processsignals.h"
#include "program/simulation.h"

#include <common/outputfile.h>

#include <QCoreApplication>
#include <QDateTime>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace {

/// Writes what happens to clients to standard error. Where there are several controllers, the name
/// of the one that it concerns stands before the client.
void traceClients(const NamedControllers &controllers)
{
    for (const NamedController &named : controllers) {
        const QByteArray prefix = controllers.size() > 1 ? named.name + ' ' : QByteArray();
        named.controller->traced
            = [prefix](const QByteArray &client, ClientEvent event, const QByteArray &bytes) {
                  const QByteArray line = traceLine(localTime(), prefix + client, event, bytes);
                  std::fputs(line.constData(), stderr);
              };
    }
}

/// Carries out --fault and --set. Returns what is wrong with them, or an empty text.
QString applyOptions(const Options &options, Controller *controller)
{
    for (const QString &fault : options.faults) {
        const QString error = controller->faults.add(fault.toUtf8());
        if (!error.isEmpty())
            return QStringLiteral("--fault: %1.").arg(error);
    }
    for (const QString &value : options.values) {
        const int equals = value.indexOf(u'=');
        if (equals < 0)
            return QStringLiteral("--set: '%1' has no '='; write for example DM100=5.").arg(value);
        const QString error
            = storeText(controller, value.left(equals).toUtf8(), value.mid(equals + 1).toUtf8());
        if (!error.isEmpty())
            return QStringLiteral("--set: %1.").arg(error);
    }
    return {};
}

/// Opens the control port and writes the plant, then prints all ports: the first line of output
/// promises that all of that is done.
ExitCode listen(const Options &options, const QJsonObject &plant,
                const NamedControllers &controllers, ControlServer *control)
{
    QByteArray lines;
    for (const NamedController &named : controllers)
        lines += "listening " + named.endpoint + '\n';
    if (options.control) {
        const QHostAddress loopback(QHostAddress::LocalHost);
        if (!control->listen(loopback, *options.control)) {
            printError(QStringLiteral("cannot listen on %1: %2. Choose another --control.")
                           .arg(QString::fromLatin1(endpointText(loopback, *options.control)),
                                control->errorString()));
            return ErrorFound;
        }
        lines += "control " + endpointText(loopback, control->serverPort()) + '\n';
    }
    const QString error = options.writePlant.isEmpty()
                              ? QString()
                              : writePlant(options.writePlant, plant, controllers);
    if (!error.isEmpty()) {
        printError(error);
        return ErrorFound;
    }
    return printOutput(QString::fromLatin1(lines));
}

/// Puts controllers at addresses one after the other. Those that have no name get their number.
void placeAll(const Options &options, const QString &fileName, QList<Setup> *setups,
              QStringList *errors)
{
    const Place &first = options.places.constFirst();
    QList<Place> places;
    const QString error
        = addPlaces(first.address, first.port, setups->size(), Consecutive::Addresses, &places);
    if (!error.isEmpty())
        errors->append(fileName + u": " + error);
    for (int i = 0; i < places.size(); ++i) {
        const Place own = setups->at(i).place;
        Place &place = (*setups)[i].place;
        place = places.at(i);
        if (!own.name.isEmpty())
            place.name = own.name;
        if (!options.plant.isEmpty())
            place.port = own.port;
    }
}

QList<Setup> setupsOfPlant(const Options &options, QJsonObject *plant, QStringList *errors)
{
    const auto port
        = options.hasPort ? std::make_optional(options.places.constFirst().port) : std::nullopt;
    QList<Setup> setups = readPlant(options.plant, port, plant, errors);
    placeAll(options, options.plant, &setups, errors);
    return setups;
}

QList<Setup> setupsOfReplay(const Options &options, QStringList *errors)
{
    QList<Problem> problems;
    QList<Setup> setups = readReplay(options.replay, options.replayDelays, &problems);
    if (hasError(problems))
        errors->append(problemLines(options.replay, problems));
    else
        printError(problemLines(options.replay, problems));
    placeAll(options, options.replay, &setups, errors);
    return setups;
}

QList<Setup> setupsOf(const Options &options, QJsonObject *plant, QStringList *errors)
{
    if (!options.plant.isEmpty())
        return setupsOfPlant(options, plant, errors);
    if (!options.replay.isEmpty())
        return setupsOfReplay(options, errors);
    if (!options.config.isEmpty())
        return readConfig(options.config, options.places.constFirst(), errors);
    QList<Setup> setups;
    for (const Place &place : options.places) {
        Setup setup;
        setup.place = place;
        setups.append(setup);
    }
    return setups;
}

/// Puts into the controllers what the options and the file of memory say.
ExitCode fillControllers(const Options &options, const NamedControllers &controllers)
{
    const QStringList errors
        = options.load.isEmpty() ? QStringList() : loadMemory(options.load, controllers);
    printError(errors);
    if (!errors.isEmpty())
        return WrongUsage;
    for (const NamedController &named : controllers) {
        const QString error = applyOptions(options, named.controller);
        if (!error.isEmpty()) {
            printError(error + u" See kvsim --help.");
            return WrongUsage;
        }
    }
    return AllWell;
}

/// Whether no client has asked what is not in the trace.
bool isReplayWhole(const NamedControllers &controllers)
{
    return std::all_of(controllers.cbegin(), controllers.cend(), [](const NamedController &named) {
        return !named.controller->replay || named.controller->replay->unknown == 0;
    });
}

/// Runs until it is told to end.
ExitCode run(const Options &options, const QJsonObject &plant, Simulation *simulation,
             const std::function<void()> &report)
{
    if (options.trace)
        traceClients(simulation->controllers());
    QObject::connect(simulation, &Simulation::restartFailed, simulation, [](const QString &reason) {
        printError(QStringLiteral("cannot listen again after a restart: %1. End what listens on "
                                  "that port.")
                       .arg(reason));
        QCoreApplication::exit(ErrorFound);
    });
    if (!simulation->listen()) {
        printError(QStringLiteral("cannot listen on %1. Choose another %2.")
                       .arg(simulation->errorString(),
                            options.config.isEmpty()
                                ? QStringLiteral("--bind or --port")
                                : QStringLiteral("address or port in the file")));
        return ErrorFound;
    }

    const NamedControllers controllers = simulation->controllers();
    const DumpFunction dump = [&] { return saveMemory(options.dump, controllers); };
    ControlServer control({controllers, options.dump.isEmpty() ? DumpFunction() : dump});
    QObject::connect(&control, &ControlServer::quitWanted, QCoreApplication::instance(),
                     &QCoreApplication::quit);
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
    QStringList errors;
    QJsonObject plant;
    const QList<Setup> setups = setupsOf(options, &plant, &errors);
    printError(errors);
    if (!errors.isEmpty())
        return WrongUsage;
    Simulation simulation(setups);
    const auto report
        = [&simulation] { std::fputs(countersText(simulation.controllers()).constData(), stderr); };
    if (!handleSignals(QCoreApplication::instance(), report)) {
        printError(u"cannot catch signals: " + qt_error_string(errno));
        return ErrorFound;
    }
    for (const QString &file : {options.writePlant, options.dump}) {
        const QString error = file.isEmpty() ? QString() : outputFileError(file);
        if (!error.isEmpty()) {
            printError(error);
            return WrongUsage;
        }
    }
    const ExitCode filled = fillControllers(options, simulation.controllers());
    return filled == AllWell ? run(options, plant, &simulation, report) : filled;
}
