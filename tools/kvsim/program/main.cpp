#include "control/ctl.h"
#include "program/options.h"
#include "program/serve.h"
#include "program/terminal.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kvsim"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KVSIM_VERSION));

    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("ctl"))
        return runCtl(arguments.mid(2));

    const Options options = parseOptions(arguments);
    switch (options.action) {
    case Options::Action::ShowHelp:
        return printHelp();
    case Options::Action::ShowVersion:
        return print(QStringLiteral("kvsim %1\n").arg(QCoreApplication::applicationVersion()));
    case Options::Action::RefuseUsage:
        return fail(WrongUsage, options.text + QLatin1String(" See kvsim --help."));
    case Options::Action::Serve:
        break;
    }
    return serve(options);
}
