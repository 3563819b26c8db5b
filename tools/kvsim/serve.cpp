#include "serve.h"

#include "controlserver.h"
#include "options.h"
#include "processsignals.h"
#include "simulation.h"
#include "terminal.h"
#include "trace.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cerrno>
#include <cstdio>

namespace kvsim {

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

} // namespace

int serve(const Options &options)
{
    Simulation simulation(options.places);
    const auto report
        = [&simulation] { std::fputs(countersText(simulation.controllers()).constData(), stderr); };
    if (!handleSignals(QCoreApplication::instance(), report))
        return fail(Failure, QLatin1String("cannot catch signals: ") + qt_error_string(errno));

    for (const NamedController &named : simulation.controllers()) {
        const QString error = prepare(options, named.controller);
        if (!error.isEmpty())
            return fail(WrongUsage, error + QLatin1String(" See kvsim --help."));
    }
    if (options.trace)
        QObject::connect(&simulation, &Simulation::answered, &simulation, traceExchange);
    QObject::connect(&simulation, &Simulation::stayedDown, &simulation, [](const QString &reason) {
        QCoreApplication::exit(
            fail(Failure, QStringLiteral("cannot listen again after a restart: %1. End what "
                                         "listens on that port.")
                              .arg(reason)));
    });
    if (!simulation.listen())
        return fail(Failure, QStringLiteral("cannot listen on %1. Choose another --bind or --port.")
                                 .arg(simulation.errorString()));

    ControlServer control(simulation.controllers());
    QObject::connect(&control, &ControlServer::quitWanted, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    const int listening = listen(options, &simulation, &control);
    if (listening != Success)
        return listening;
    const int code = QCoreApplication::exec();
    report();
    return code;
}

} // namespace kvsim
