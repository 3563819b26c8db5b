#include "controller.h"
#include "options.h"
#include "processsignals.h"
#include "server.h"
#include "trace.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cerrno>
#include <cstdio>

using kvsim::Options;

namespace {

enum ExitCode { Success = 0, CannotServe = 1, WrongUsage = 2 };

int fail(ExitCode code, const QString &text)
{
    const QString line = QLatin1String("kvsim: ") + text + QLatin1Char('\n');
    std::fputs(line.toLocal8Bit().constData(), stderr);
    return code;
}

// Flushed, because a script waits for the first line; checked, because it would wait for ever.
int print(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    if (std::fputs(bytes.constData(), stdout) < 0 || std::fflush(stdout) != 0)
        return fail(CannotServe,
                    QLatin1String("cannot write to standard output: ") + qt_error_string(errno));
    return Success;
}

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

int listen(const Options &options, kvsim::Server *server)
{
    if (!server->listen(options.address, options.port)) {
        const QByteArray endpoint = kvsim::endpointText(options.address, options.port);
        return fail(CannotServe,
                    QStringLiteral("cannot listen on %1: %2. Choose another --bind or --port.")
                        .arg(QLatin1String(endpoint), server->errorString()));
    }
    const QByteArray endpoint = kvsim::endpointText(server->address(), server->port());
    return print(QStringLiteral("listening %1\n").arg(QLatin1String(endpoint)));
}

int serve(const Options &options)
{
    kvsim::Controller controller;
    const auto report
        = [&controller] { std::fputs(kvsim::countersText(controller).constData(), stderr); };
    if (!kvsim::handleSignals(QCoreApplication::instance(), report))
        return fail(CannotServe, QLatin1String("cannot catch signals: ") + qt_error_string(errno));

    const QString error = prepare(options, &controller);
    if (!error.isEmpty())
        return fail(WrongUsage, error + QLatin1String(" See kvsim --help."));

    kvsim::Server server(&controller);
    if (options.trace)
        QObject::connect(&server, &kvsim::Server::answered, &server, traceExchange);
    QObject::connect(&server, &kvsim::Server::stayedDown, &server, [&server] {
        QCoreApplication::exit(
            fail(CannotServe, QStringLiteral("cannot listen again after a restart: %1. End "
                                             "what listens on that port.")
                                  .arg(server.errorString())));
    });

    const int listening = listen(options, &server);
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

    const Options options = kvsim::parseOptions(QCoreApplication::arguments());
    switch (options.action) {
    case Options::Action::ShowHelp:
        return print(options.text);
    case Options::Action::ShowVersion:
        return print(QStringLiteral("kvsim %1\n").arg(QCoreApplication::applicationVersion()));
    case Options::Action::RefuseUsage:
        return fail(WrongUsage, options.text + QLatin1String(" See kvsim --help."));
    case Options::Action::Serve:
        break;
    }
    return serve(options);
}
