#include "program/serve.h"

#include "control/controlserver.h"
#include "files/config.h"
#include "files/memoryfile.h"
#include "network/trace.h"
#include "program/options.h"
#include "program/processsignals.h"
#include "program/simulation.h"
#include "program/terminal.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cerrno>
#include <cstdio>

namespace {

void traceExchange(const QByteArray &client, const QByteArray &command, const QByteArray &answer,
                   const QByteArray &fault)
{
    const QDateTime now = QDateTime::currentDateTime();
    std::fputs(traceText(now, client, command, answer, fault).constData(), stderr);
}

// What is wrong with an option's value, or an empty text.
QString prepare(const Options &options, Controller *controller)
{
    for (const QString &fault : options.faults) {
        const QString error = controller->faults.add(fault.toLocal8Bit());
        if (!error.isEmpty())
            return QStringLiteral("--fault: %1.").arg(error);
    }
    for (const QString &value : options.values) {
        const int equals = value.indexOf(QLatin1Char('='));
        if (equals < 0)
            return QStringLiteral("--set: '%1' has no '='; write for example DM100=5.").arg(value);
        const QString error = storeText(controller, value.left(equals).toLocal8Bit(),
                                        value.mid(equals + 1).toLocal8Bit());
        if (!error.isEmpty())
            return QStringLiteral("--set: %1.").arg(error);
    }
    return {};
}

// Every port, before the first line of output promises them.
int listen(const Options &options, Simulation *simulation, ControlServer *control)
{
    QByteArray lines;
    const NamedControllers controllers = simulation->controllers();
    for (const NamedController &named : controllers)
        lines += "listening " + named.endpoint + '\n';
    if (options.control) {
        const QHostAddress loopback(QHostAddress::LocalHost);
        if (!control->listen(*options.control))
            return fail(Failure,
                        QStringLiteral("cannot listen on %1: %2. Choose another --control.")
                            .arg(QString::fromLatin1(endpointText(loopback, *options.control)),
                                 control->errorString()));
        lines += "control " + endpointText(loopback, control->port()) + '\n';
    }
    return print(QString::fromLatin1(lines));
}

int failFile(const QStringList &errors)
{
    for (const QString &error : errors)
        fail(WrongUsage, error);
    return WrongUsage;
}

QList<Setup> setupsOf(const Options &options, QStringList *errors)
{
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

// What the files and the options put into the controllers.
int fill(const Options &options, const NamedControllers &controllers)
{
    const QStringList errors
        = options.load.isEmpty() ? QStringList() : loadMemory(options.load, controllers);
    if (!errors.isEmpty())
        return failFile(errors);
    for (const NamedController &named : controllers) {
        const QString error = prepare(options, named.controller);
        if (!error.isEmpty())
            return fail(WrongUsage, error + QLatin1String(" See kvsim --help."));
    }
    return Success;
}

// Runs until it is told to end.
int run(const Options &options, Simulation *simulation, const std::function<void()> &report)
{
    if (options.trace)
        QObject::connect(simulation, &Simulation::answered, simulation, traceExchange);
    QObject::connect(simulation, &Simulation::stayedDown, simulation, [](const QString &reason) {
        QCoreApplication::exit(
            fail(Failure, QStringLiteral("cannot listen again after a restart: %1. End what "
                                         "listens on that port.")
                              .arg(reason)));
    });
    if (!simulation->listen())
        return fail(Failure, QStringLiteral("cannot listen on %1. Choose another %2.")
                                 .arg(simulation->errorString(),
                                      options.config.isEmpty()
                                          ? QStringLiteral("--bind or --port")
                                          : QStringLiteral("address or port in the file")));

    const NamedControllers controllers = simulation->controllers();
    const DumpTarget dump = [&] { return saveMemory(options.dump, controllers); };
    ControlServer control({controllers, options.dump.isEmpty() ? DumpTarget() : dump});
    QObject::connect(&control, &ControlServer::quitWanted, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    const int listening = listen(options, simulation, &control);
    if (listening != Success)
        return listening;
    const int code = QCoreApplication::exec();
    report();
    const QString error = options.dump.isEmpty() ? QString() : dump();
    return error.isEmpty() ? code : fail(Failure, error);
}

} // namespace

int serve(const Options &options)
{
    QStringList errors;
    const QList<Setup> setups = setupsOf(options, &errors);
    if (!errors.isEmpty())
        return failFile(errors);
    Simulation simulation(setups);
    const auto report
        = [&simulation] { std::fputs(countersText(simulation.controllers()).constData(), stderr); };
    if (!handleSignals(QCoreApplication::instance(), report))
        return fail(Failure, QLatin1String("cannot catch signals: ") + qt_error_string(errno));

    const int filled = fill(options, simulation.controllers());
    return filled == Success ? run(options, &simulation, report) : filled;
}
