#include "check/checkcommand.h"
#include "cli/commandline.h"
#include "cli/job.h"
#include "cycle/output.h"
#include "discover/discovercommand.h"
#include "explain/explaincommand.h"
#include "host/host.h"
#include "host/logoutput.h"
#include "host/pluginfile.h"
#include "plan/plancommand.h"
#include "plan/planhost.h"
#include "read/readcommand.h"
#include "watch/watchcommand.h"
#include "write/writecommand.h"
#include <common/console.h>

#include <QCoreApplication>
#include <QFile>

#include <clocale>
#include <cstdio>
#include <memory>
#include <optional>

namespace {

/// What comes between init() and stopPlugin(). The recorder is there for `plan` alone.
ExitCode runCommand(const Job &job, const LoadedPlugin &loaded, const Host &host, bool initDone,
                    LogOutput *log, Recorder *recorder)
{
    const std::optional<PluginRegistration> &registration = host.registration();
    if (!registration) {
        printError(
            QStringLiteral("the plug-in %1 did not register during init()").arg(loaded.fileName));
        return NotLoaded;
    }
    QList<Problem> problems;
    const QList<DeviceInstancePlugin> devices = host.deviceRecords(&problems);
    printError(problemLines(job.commandLine.plantFile, problems));
    if (!problems.isEmpty())
        return WrongUsage;
    if (!initDone) {
        printError(
            QStringLiteral("the plug-in %1 returned false from init()").arg(loaded.fileName));
        return NotLoaded;
    }
    switch (job.commandLine.command) {
    case Command::Columns:
        print(stdout, columnsText(job.commandLine.format, loaded, *registration));
        break;
    case Command::Read:
        return runRead(loaded.plugin, devices, job.commandLine);
    case Command::Watch:
        return runWatch(loaded.plugin, devices, job, *registration, log);
    case Command::Write:
        return runWrite(loaded.plugin, devices, job, host);
    case Command::Plan:
        return runPlan(loaded.plugin, devices, job, host, recorder);
    case Command::Check:
        return runCheck(job, *registration);
    case Command::Discover:
        return runDiscover(job, *registration);
    case Command::Explain:
    case Command::Help:
    case Command::Version:
        break;
    }
    return AllWell;
}

/// With a recorder, the host that keeps the plug-in off the plant's network.
std::unique_ptr<Host> makeHost(const Job &job, LogOutput *log, const Recorder *recorder)
{
    const auto addEntry = [log](const LogEntry &entry) { log->add(entry); };
    if (recorder != nullptr)
        return std::make_unique<PlanHost>(job.plant, recorder->port(), addEntry);
    return std::make_unique<Host>(job.plant, addEntry);
}

ExitCode runJob(const Job &job)
{
    QStringList errors;
    const QString &pluginFile = job.commandLine.pluginFile;
    const std::optional<LoadedPlugin> loaded
        = pluginFile.isEmpty() ? loadDefaultPlugin(QCoreApplication::applicationDirPath(), &errors)
                               : loadPlugin(pluginFile, &errors);
    if (!loaded) {
        printError(errors);
        return NotLoaded;
    }
    std::unique_ptr<Recorder> recorder;
    if (job.commandLine.command == Command::Plan) {
        recorder = std::make_unique<Recorder>();
        if (recorder->port() == 0) {
            printError(QStringLiteral("plan cannot listen on 127.0.0.1"));
            return ErrorFound;
        }
    }
    LogOutput log(job.commandLine.format);
    const std::unique_ptr<Host> host = makeHost(job, &log, recorder.get());
    const bool initDone = loaded->plugin->init();
    ExitCode result = runCommand(job, *loaded, *host, initDone, &log, recorder.get());
    const bool isStopped = loaded->plugin->stopPlugin();
    log.printOpenCount();
    if (!isStopped) {
        printError(QStringLiteral("the plug-in %1 returned false from stopPlugin()")
                       .arg(loaded->fileName));
        result = result == AllWell ? ErrorFound : result;
    }
    return result;
}

/// A file that is part of the program: the text of --help, which the manual page is made of, too,
/// or the catalogue of errors, of which docs/errors.md is made.
QByteArray ownFile(const QString &name)
{
    QFile file(u":/" + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

ExitCode run(const QStringList &arguments)
{
    QString error;
    const std::optional<CommandLine> commandLine = parseCommandLine(arguments, &error);
    if (!commandLine) {
        printError({error, QStringLiteral("try velhost --help")});
        return WrongUsage;
    }
    if (commandLine->command == Command::Help) {
        print(stdout, QString::fromUtf8(ownFile(QStringLiteral("help.txt"))));
        return AllWell;
    }
    if (commandLine->command == Command::Version) {
        print(stdout, u"velhost " + QCoreApplication::applicationVersion() + u'\n');
        return AllWell;
    }
    if (commandLine->command == Command::Explain)
        return runExplain(*commandLine, ownFile(QStringLiteral("errors.json")));
    const std::optional<Job> job = prepareJob(*commandLine);
    return job ? runJob(*job) : WrongUsage;
}

/// The arguments read as UTF-8, whatever the locale: a value must reach the controller as it was
/// typed or not at all. Returns nothing when one is not UTF-8.
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
    // The system's texts are shown among English ones, and the loader's are explained by their
    // words.
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
