#include "options.h"
#include "server.h"
#include "terminationsignals.h"
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

void traceExchange(const QByteArray &client, const QByteArray &command, const QByteArray &answer)
{
    const QDateTime now = QDateTime::currentDateTime();
    std::fputs(kvsim::traceText(now, client, command, answer).constData(), stderr);
}

int serve(const Options &options)
{
    if (!kvsim::quitOnTerminationSignals(QCoreApplication::instance()))
        return fail(CannotServe, QLatin1String("cannot catch signals: ") + qt_error_string(errno));

    kvsim::Memory memory;
    kvsim::Server server(&memory);
    if (options.trace)
        QObject::connect(&server, &kvsim::Server::answered, &server, traceExchange);

    if (!server.listen(options.address, options.port)) {
        const QByteArray endpoint = kvsim::endpointText(options.address, options.port);
        return fail(CannotServe,
                    QStringLiteral("cannot listen on %1: %2. Choose another --bind or --port.")
                        .arg(QLatin1String(endpoint), server.errorString()));
    }
    const QByteArray endpoint = kvsim::endpointText(server.address(), server.port());
    const int printed = print(QStringLiteral("listening %1\n").arg(QLatin1String(endpoint)));
    return printed == Success ? QCoreApplication::exec() : printed;
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
