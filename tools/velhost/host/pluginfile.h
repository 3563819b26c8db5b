#pragma once

#include <vel/velinterface.h>

#include <QString>

#include <optional>

/// A loaded plug-in. It is never unloaded.
struct LoadedPlugin
{
    QString fileName;
    QString className;
    VELInterface *plugin = nullptr;
};

/// Loads the plug-in and creates its instance, but calls none of its operations. When that fails,
/// prints the fault, its remedy and the text of the loader, and returns nothing.
std::optional<LoadedPlugin> loadPlugin(const QString &fileName);

/// Loads the first libkeyence.so that exists: in the program's folder, in ../lib relative to it, in
/// the folder where the build installs it, in Qt's plug-in folders.
std::optional<LoadedPlugin> loadDefaultPlugin();
