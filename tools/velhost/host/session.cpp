#include "host/session.h"

#include "plant/records.h"

#include <common/textwidth.h>
#include <common/visibletext.h>

#include <QFileInfo>

#include <chrono>
#include <future>
#include <optional>
#include <thread>

namespace {

// The line must fit the terminal.
constexpr int maximumNamesWidth = 40;

QString startText(const QList<PlantDevice> &devices, int seconds)
{
    QStringList names;
    for (const PlantDevice &device : devices)
        names.append(visible(device.name));
    return QStringLiteral("the plug-in starts, connecting to %1, %2 s")
        .arg(cutToWidth(names.join(QStringLiteral(", ")), maximumNamesWidth))
        .arg(seconds);
}

/// Calls init(). Shows how long it takes, in a thread of its own: this one is blocked.
bool init(const SessionSetup &setup, VELInterface *plugin, ProgressLine *line)
{
    std::promise<void> end;
    std::thread notice([&setup, line, ended = end.get_future()] {
        using namespace std::chrono_literals;
        for (int seconds = 1; ended.wait_for(1s) == std::future_status::timeout; ++seconds) {
            if (line->isDue())
                line->show(startText(setup.plant.devices, seconds));
        }
    });
    const bool done = plugin->init();
    end.set_value();
    notice.join();
    line->clear();
    return done;
}

/// The part of a session between init() and stopPlugin().
ExitCode runInitialised(const SessionSetup &setup, const LoadedPlugin &loaded, Host *host,
                        bool initDone, LogOutput *log, WireOutput *wire,
                        const std::function<ExitCode(const Session &)> &work)
{
    const auto refuse = [&loaded](const QString &reason) {
        printError(QStringLiteral("the plug-in %1 %2").arg(loaded.fileName, reason));
        return NotLoaded;
    };
    const std::optional<PluginRegistration> &registration = host->registration();
    if (!registration)
        return refuse(QStringLiteral("did not register during init()"));
    QList<Problem> problems;
    const QList<DeviceInstancePlugin> devices
        = deviceRecords(setup.plant, *registration, &problems);
    printError(problemLines(setup.plantFile, problems));
    if (!problems.isEmpty())
        return WrongUsage;
    if (!initDone)
        return refuse(QStringLiteral("returned false from init()"));
    return work({loaded, *host, *registration, setup.plant, devices, log, wire});
}

} // namespace

ExitCode runSession(const SessionSetup &setup, const std::function<ExitCode(const Session &)> &work)
{
    const std::optional<LoadedPlugin> loaded
        = setup.pluginFile.isEmpty() ? loadDefaultPlugin() : loadPlugin(setup.pluginFile);
    if (!loaded)
        return NotLoaded;
    if (!setup.wire.file.isEmpty() && QFileInfo(setup.wire.file) == QFileInfo(setup.plantFile)) {
        printError(QStringLiteral("the trace would replace the plant file %1; name another file")
                       .arg(setup.plantFile));
        return WrongUsage;
    }
    std::optional<WireOutput> wire;
    if (setup.wire.isOn && !wire.emplace(setup.format, setup.wire).canWrite())
        return WrongUsage;
    ProgressLine line(0);
    LogOutput log(setup.format, setup.progress == nullptr ? &line : setup.progress);
    Host host(
        setup.plant, [&log](const LogEntry &entry) { log.add(entry); }, setup.redirection);
    const bool initDone = init(setup, loaded->plugin, &line);
    if (wire)
        wire->endCall({}, 0);
    const ExitCode result
        = runInitialised(setup, *loaded, &host, initDone, &log, wire ? &*wire : nullptr, work);
    const bool isStopped = loaded->plugin->stopPlugin();
    log.printPendingCounts();
    if (wire)
        wire->endCall({}, 0);
    bool isWell = !wire || (wire->canWrite() && !wire->wasSuspect());
    if (!isStopped) {
        printError(QStringLiteral("the plug-in %1 returned false from stopPlugin()")
                       .arg(loaded->fileName));
        isWell = false;
    }
    return result == AllWell && !isWell ? ErrorFound : result;
}
