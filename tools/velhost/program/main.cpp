#include "cli/commandline.h"
#include "cli/help.h"
#include "program/commands.h"

#include <common/console.h>

#include <QCoreApplication>

#include <clocale>
#include <cstdio>
#include <optional>

namespace {

ExitCode run(const QStringList &arguments)
{
    const QList<Command> commands = allCommands();
    QString error;
    const std::optional<Request> request = parseCommandLine(arguments, commands, &error);
    if (!request) {
        printError({error, QStringLiteral("try velhost --help")});
        return WrongUsage;
    }
    if (request->action == Request::Action::Run)
        return request->command->run(request->arguments);
    if (request->action == Request::Action::Version)
        print(stdout, u"velhost " + QCoreApplication::applicationVersion() + u'\n');
    else
        print(stdout,
              request->command == nullptr ? helpText(commands) : helpText(*request->command));
    return AllWell;
}

/// The arguments as UTF-8 in every locale: a value must not reach the controller changed. Returns
/// nothing when one is not UTF-8.
std::optional<QStringList> utf8Arguments(int count, char *const *values)
{
    QStringList arguments;
    for (int i = 0; i < count; ++i) {
        const QByteArray bytes(values[i]);
        arguments.append(QString::fromUtf8(bytes));
        if (arguments.last().toUtf8() != bytes)
            return {};
    }
    return arguments;
}

} // namespace

int main(int argc, char *argv[])
{
    const std::optional<QStringList> arguments = utf8Arguments(argc, argv);
    QCoreApplication application(argc, argv);
    // The messages of the system must be English: they are shown among English ones, and
    // pluginfile.cpp looks for their words.
    std::setlocale(LC_MESSAGES, "C");
    QCoreApplication::setApplicationName(QStringLiteral("velhost"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELHOST_VERSION));
    if (!arguments) {
        printError(QStringLiteral("an argument is not valid UTF-8"));
        return WrongUsage;
    }
    ExitCode result = run(*arguments);
    if (std::ferror(stdout) != 0) {
        printError(QStringLiteral("standard output could not be written"));
        result = result == AllWell ? ErrorFound : result;
    }
    return result;
}
