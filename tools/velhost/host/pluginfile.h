#pragma once

#include <vel/velinterface.h>

#include <QString>
#include <QStringList>

#include <optional>

/// A loaded plug-in. It is never unloaded.
struct LoadedPlugin
{
    QString fileName;
    QString className;
    VELInterface *plugin = nullptr;
};

/// Loads the plug-in and creates its instance, but calls none of its operations. Returns nothing
/// when that fails; `errors` then has a line with the fault and its remedy and, if the loader
/// failed, one with its text.
std::optional<LoadedPlugin> loadPlugin(const QString &fileName, QStringList *errors);

/// Loads the first libkeyence.so that exists: in `programFolder`, in ../lib relative to it, in the
/// folder where the build installs it, in Qt's plug-in folders. Errors as with loadPlugin(); when
/// no file exists, `errors` names the places.
std::optional<LoadedPlugin> loadDefaultPlugin(const QString &programFolder, QStringList *errors);
