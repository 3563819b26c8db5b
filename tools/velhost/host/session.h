#pragma once

#include "host/host.h"
#include "host/logoutput.h"
#include "host/outputformat.h"
#include "host/pluginfile.h"
#include "plant/plant.h"

#include <common/console.h>

#include <vel/records.h>

#include <QList>
#include <QString>

#include <functional>

/// What a session is made of.
struct SessionSetup
{
    /// Empty: the default plug-in.
    QString pluginFile;
    OutputFormat format = OutputFormat::Table;
    Plant plant;
    /// Names the plant in messages.
    QString plantFile;
    /// As with Host.
    Redirection redirection = {};
};

/// A plug-in between its init() and its stopPlugin(), and the host that it sees.
struct Session
{
    const LoadedPlugin &loaded;
    const Host &host;
    const PluginRegistration &registration;
    /// The plant's own records, without a redirection.
    QList<DeviceInstancePlugin> devices;
    LogOutput *log;
};

/// Loads the plug-in, lets it initialise, does the work and stops it. What keeps the work from
/// being done stands on standard error: NotLoaded for the plug-in, WrongUsage for parameters of the
/// plant that it does not declare. ErrorFound when only the stop failed.
ExitCode runSession(const SessionSetup &setup,
                    const std::function<ExitCode(const Session &)> &work);
