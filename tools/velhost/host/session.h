#pragma once

#include "host/host.h"
#include "host/logoutput.h"
#include "host/outputformat.h"
#include "host/pluginfile.h"
#include "host/wireoutput.h"
#include "plant/plant.h"

#include <common/console.h>

#include <vel/records.h>

#include <QList>
#include <QString>

#include <functional>

/// The input of a session.
struct SessionSetup
{
    /// Empty: the default plug-in.
    QString pluginFile;
    OutputFormat format = OutputFormat::Table;
    Plant plant;
    /// The name of the plant in messages.
    QString plantFile;
    /// See Host.
    Redirection redirection = {};
    /// See LogOutput.
    ProgressLine *progress = nullptr;
    WireSetup wire = {};
};

/// A plug-in between its init() and its stopPlugin(), and its host.
struct Session
{
    const LoadedPlugin &loaded;
    Host &host;
    const PluginRegistration &registration;
    const Plant &plant;
    /// The records of the plant, not redirected.
    QList<DeviceInstancePlugin> devices;
    LogOutput *log;
    /// A null pointer when nothing of the wire is to be seen.
    WireOutput *wire;
};

/// Loads the plug-in, calls init(), `work` and stopPlugin(), and returns the result of `work`. When
/// `work` cannot be called, prints the reason and returns NotLoaded for a fault of the plug-in,
/// WrongUsage for wrong parameters of the plant. ErrorFound when only stopPlugin() failed, when an
/// answer was suspect or when the trace could not be written to the end.
ExitCode runSession(const SessionSetup &setup,
                    const std::function<ExitCode(const Session &)> &work);
