#include "control/ctl.h"
#include "program/options.h"
#include "program/serve.h"

#include <common/console.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    // GLib's event loop wakes itself, with a system call, each time that a socket begins or ceases
    // to wait until it can send.
    qputenv("QT_NO_GLIB", "1");
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kvsim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KVSIM_VERSION));

    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == u"ctl")
        return runCtl(arguments.mid(2));

    Options options;
    const QString error = parseOptions(arguments, &options);
    if (!error.isEmpty()) {
        printError(error + u" See kvsim --help.");
        return WrongUsage;
    }
    if (options.help)
        return printHelp();
    if (options.version)
        return printOutput(u"kvsim " + QCoreApplication::applicationVersion() + u'\n');
    const ExitCode result = serve(options);
    // A trace that lacks lines must not pass for a whole one.
    const bool isTraceWhole = !options.trace || std::ferror(stderr) == 0;
    return result == AllWell && !isTraceWhole ? ErrorFound : result;
}
