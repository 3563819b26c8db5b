#pragma once

#include <vel/velinterface.h>

#include <QString>
#include <QStringList>

#include <optional>

/// A plug-in that is loaded and stays so until the program ends.
struct LoadedPlugin
{
    QString fileName;
    QString className;
    QString identifier;
    VELInterface *plugin = nullptr;
};

/// Loads the plug-in and takes its instance; nothing of it is called yet. Returns nothing when that
/// fails; `errors` then has a line with the fault and its remedy and, where the loader was asked,
/// one with the loader's own text.
std::optional<LoadedPlugin> loadPlugin(const QString &fileName, QStringList *errors);

/// Loads libkeyence.so from `programFolder`, else from ../lib relative to it, else from where the
/// build installs it, else from Qt's plug-in folders. The first that is there counts, even when it
/// does not load. Errors as with loadPlugin(); when there is none, `errors` says where it was
/// looked for.
std::optional<LoadedPlugin> loadDefaultPlugin(const QString &programFolder, QStringList *errors);
