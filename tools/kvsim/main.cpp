#include "controller.h"
#include "controlserver.h"
#include "ctl.h"
#include "options.h"
#include "processsignals.h"
#include "server.h"
#include "terminal.h"
#include "trace.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cerrno>
#include <cstdio>

using kvsim::fail;
using kvsim::Failure;
using kvsim::Options;
using kvsim::print;
using kvsim::Success;
using kvsim::WrongUsage;

namespace {

void traceExchange(const QByteArray &client, const QByteArray &command, const QByteArray &answer,
                   const QByteArray &fault)
{
    const QDateTime now = QDateTime::currentDateTime();
    std::fputs(kvsim::traceText(now, client, command, answer, fault).constData(), stderr);
}

// What is wrong with an option's value, or an empty text.
QString prepare(const Options &options, kvsim::Controller *controller)
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
        const QString error = kvsim::storeText(controller, value.left(equals).toLocal8Bit(),
                                               value.mid(equals + 1).toLocal8Bit());
        if (!error.isEmpty())
            return QStringLiteral("--set: %1.").arg(error);
    }
    return {};
}

QString endpoint(const QHostAddress &address, quint16 port)
{
    return QString::fromLatin1(kvsim::endpointText(address, port));
}

// Both ports, before the first line of output promises them.
int listen(const Options &options, kvsim::Server *server, kvsim::ControlServer *control)
{
    if (!server->listen(options.address, options.port))
        return fail(Failure,
                    QStringLiteral("cannot listen on %1: %2. Choose another --bind or --port.")
                        .arg(endpoint(options.address, options.port), server->errorString()));
    QString lines
        = QStringLiteral("listening %1\n").arg(endpoint(server->address(), server->port()));
    if (options.control) {
        const QHostAddress loopback(QHostAddress::LocalHost);
        if (!control->listen(*options.control))
            return fail(Failure,
                        QStringLiteral("cannot listen on %1: %2. Choose another --control.")
                            .arg(endpoint(loopback, *options.control), control->errorString()));
        lines += QStringLiteral("control %1\n").arg(endpoint(loopback, control->port()));
    }
    return print(lines);
}

int serve(const Options &options)
{
    kvsim::Controller controller;
    const auto report
        = [&controller] { std::fputs(kvsim::countersText(controller).constData(), stderr); };
    if (!kvsim::handleSignals(QCoreApplication::instance(), report))
        return fail(Failure, QLatin1String("cannot catch signals: ") + qt_error_string(errno));

    const QString error = prepare(options, &controller);
    if (!error.isEmpty())
        return fail(WrongUsage, error + QLatin1String(" See kvsim --help."));

    kvsim::Server server(&controller);
    if (options.trace)
        QObject::connect(&server, &kvsim::Server::answered, &server, traceExchange);
    QObject::connect(&server, &kvsim::Server::stayedDown, &server, [&server] {
        QCoreApplication::exit(
            fail(Failure, QStringLiteral("cannot listen again after a restart: %1. End "
                                         "what listens on that port.")
                              .arg(server.errorString())));
    });

    kvsim::ControlServer control(&controller);
    QObject::connect(&control, &kvsim::ControlServer::quitWanted, QCoreApplication::instance(),
                     &QCoreApplication::quit);

    const int listening = listen(options, &server, &control);
    if (listening != Success)
        return listening;
    const int code = QCoreApplication::exec();
    report();
    return code;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kvsim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KVSIM_VERSION));

    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("ctl"))
        return kvsim::runCtl(arguments.mid(2));

    const Options options = kvsim::parseOptions(arguments);
    switch (options.action) {
    case Options::Action::ShowHelp:
        return kvsim::printHelp();
    case Options::Action::ShowVersion:
        return print(QStringLiteral("kvsim %1\n").arg(QCoreApplication::applicationVersion()));
    case Options::Action::RefuseUsage:
        return fail(WrongUsage, options.text + QLatin1String(" See kvsim --help."));
    case Options::Action::Serve:
        break;
    }
    return serve(options);
}
