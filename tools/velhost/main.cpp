#include "assignment.h"
#include "commandline.h"
#include "cycle.h"
#include "host.h"
#include "output.h"
#include "plant.h"
#include "pluginfile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <optional>

namespace {

// As the help and docs/velhost.md promise them.
enum ExitCode { AllWell = 0, ErrorFound = 1, WrongUsage = 2, NotLoaded = 3 };

/// Writes the text at once, so that it is there when the program is stopped during a wait. A
/// failure leaves its mark on the stream.
void print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

void complain(const QString &text)
{
    print(stderr, u"velhost: " + visible(text) + u'\n');
}

void complain(const QStringList &texts)
{
    for (const QString &text : texts)
        complain(text);
}

/// Everything that can be judged before a plug-in is loaded.
struct Job
{
    CommandLine commandLine;
    Plant plant;
    QList<Assignment> assignments;
};

std::optional<Job> prepareJob(const CommandLine &commandLine)
{
    Job job{commandLine, {}, {}};
    QStringList errors;
    if (!commandLine.plantFile.isEmpty()) {
        const std::optional<Plant> plant = readPlantFile(commandLine.plantFile, &errors);
        if (!plant) {
            complain(errors);
            return {};
        }
        job.plant = *plant;
    }
    for (const QString &argument : commandLine.assignments) {
        QString error;
        if (const auto assignment = parseAssignment(argument, job.plant, &error))
            job.assignments.append(*assignment);
        else
            errors.append(error);
    }
    complain(errors);
    return errors.isEmpty() ? std::optional(job) : std::nullopt;
}

/// Prints the cycle; true when nothing in it has an error.
bool printCycle(OutputFormat format, const QList<DeviceReport> &devices, bool isFirst)
{
    QString text = cycleText(format, devices);
    if (format == OutputFormat::Table && !isFirst)
        text.prepend(u'\n');
    print(stdout, text);
    return std::none_of(devices.begin(), devices.end(),
                        [](const DeviceReport &device) { return device.hasError(); });
}

ExitCode read(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices,
              const CommandLine &commandLine)
{
    QList<LogList> lists = readLists(devices);
    ExitCode result = AllWell;
    for (int cycle = 1; cycle <= commandLine.cycles; ++cycle) {
        QElapsedTimer sinceStart;
        sinceStart.start();
        QList<DeviceReport> reports;
        for (LogList &list : lists)
            reports.append(readDevice(plugin, &list, cycle));
        if (!printCycle(commandLine.format, reports, cycle == 1))
            result = ErrorFound;
        const qint64 rest = commandLine.intervalMs - sinceStart.elapsed();
        if (cycle < commandLine.cycles && rest > 0)
            QThread::msleep(static_cast<unsigned long>(rest));
    }
    return result;
}

ExitCode write(VELInterface *plugin, const QList<DeviceInstancePlugin> &devices, const Job &job,
               const Host &host)
{
    QList<LogList> lists = writeLists(devices, job.assignments);
    QList<DeviceReport> reports;
    for (LogList &list : lists)
        reports.append(writeDevice(plugin, &list, 1, host));
    return printCycle(job.commandLine.format, reports, true) ? AllWell : ErrorFound;
}

/// What comes between init() and stopPlugin().
ExitCode runCommand(const Job &job, const LoadedPlugin &loaded, const Host &host, bool initDone)
{
    const std::optional<PluginRegistration> &registration = host.registration();
    if (!registration) {
        complain(
            QStringLiteral("the plug-in %1 did not register during init()").arg(loaded.fileName));
        return NotLoaded;
    }
    QStringList errors;
    const QList<DeviceInstancePlugin> devices = host.deviceRecords(&errors);
    for (const QString &error : std::as_const(errors))
        complain(job.commandLine.plantFile + u": " + error);
    if (!errors.isEmpty())
        return WrongUsage;
    if (!initDone) {
        complain(QStringLiteral("the plug-in %1 returned false from init()").arg(loaded.fileName));
        return NotLoaded;
    }
    switch (job.commandLine.command) {
    case Command::Columns:
        print(stdout, columnsText(job.commandLine.format, loaded, *registration));
        break;
    case Command::Read:
        return read(loaded.plugin, devices, job.commandLine);
    case Command::Write:
        return write(loaded.plugin, devices, job, host);
    case Command::Help:
    case Command::Version:
        break;
    }
    return AllWell;
}

ExitCode runJob(const Job &job)
{
    QString error;
    const QString &pluginFile = job.commandLine.pluginFile;
    const std::optional<LoadedPlugin> loaded
        = pluginFile.isEmpty() ? loadDefaultPlugin(QCoreApplication::applicationDirPath(), &error)
                               : loadPlugin(pluginFile, &error);
    if (!loaded) {
        complain(error);
        return NotLoaded;
    }
    const OutputFormat format = job.commandLine.format;
    Host host(job.plant, [format](const LogEntry &entry) {
        print(format == OutputFormat::Json ? stdout : stderr, logText(format, entry));
    });
    const bool initDone = loaded->plugin->init();
    ExitCode result = runCommand(job, *loaded, host, initDone);
    if (!loaded->plugin->stopPlugin()) {
        complain(QStringLiteral("the plug-in %1 returned false from stopPlugin()")
                     .arg(loaded->fileName));
        result = result == AllWell ? ErrorFound : result;
    }
    return result;
}

ExitCode run(const QStringList &arguments)
{
    QString error;
    const std::optional<CommandLine> commandLine = parseCommandLine(arguments, &error);
    if (!commandLine) {
        complain({error, QStringLiteral("try velhost --help")});
        return WrongUsage;
    }
    if (commandLine->command == Command::Help) {
        print(stdout, helpText());
        return AllWell;
    }
    if (commandLine->command == Command::Version) {
        print(stdout, u"velhost " + QCoreApplication::applicationVersion() + u'\n');
        return AllWell;
    }
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
    QCoreApplication::setApplicationVersion(QStringLiteral(VELHOST_VERSION));
    if (!arguments) {
        complain(QStringLiteral("an argument is not valid UTF-8"));
        return WrongUsage;
    }
    ExitCode result = run(*arguments);
    if (std::ferror(stdout) != 0) {
        complain(QStringLiteral("standard output could not be written"));
        result = result == AllWell ? ErrorFound : result;
    }
    return result;
}
