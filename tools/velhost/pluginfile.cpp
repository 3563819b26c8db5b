#include "pluginfile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

namespace {

/// What keeps the file from being a plug-in of this host, judged by its metadata alone; none of its
/// code has run. Empty when nothing does.
QString metadataError(const QFileInfo &file, const QPluginLoader &loader)
{
    if (!file.exists())
        return QStringLiteral("there is no such file");
    if (file.isDir())
        return QStringLiteral("it is a folder");
    if (loader.metaData().isEmpty())
        return QStringLiteral("it is not a Qt plug-in: %1").arg(loader.errorString());
    const QString identifier = loader.metaData().value(u"IID").toString();
    if (identifier != QLatin1String(VELInterface_iid))
        return QStringLiteral("its interface identifier is \"%1\", this host asks for \"%2\"")
            .arg(identifier, QLatin1String(VELInterface_iid));
    return {};
}

} // namespace

std::optional<LoadedPlugin> loadPlugin(const QString &fileName, QString *error)
{
    const QFileInfo file(fileName);
    // An absolute path, because the loader searches its own folders for a bare name.
    QPluginLoader loader(file.absoluteFilePath());
    const QString className = loader.metaData().value(u"className").toString();
    QString reason = metadataError(file, loader);
    VELInterface *plugin = nullptr;
    if (reason.isEmpty()) {
        QObject *const instance = loader.instance();
        plugin = qobject_cast<VELInterface *>(instance);
        if (instance == nullptr)
            reason = loader.errorString();
        else if (plugin == nullptr)
            reason = QStringLiteral("its class \"%1\" is not a VELInterface").arg(className);
    }
    if (plugin == nullptr) {
        *error = QStringLiteral("cannot load the plug-in %1: %2").arg(fileName, reason);
        return {};
    }
    return LoadedPlugin{file.absoluteFilePath(), className, QStringLiteral(VELInterface_iid),
                        plugin};
}

std::optional<LoadedPlugin> loadDefaultPlugin(const QString &programFolder, QString *error)
{
    const QString name = QStringLiteral("libkeyence.so");
    const QDir folder(programFolder);
    QStringList tried{folder.filePath(name),
                      QDir::cleanPath(folder.filePath(QStringLiteral("../lib/") + name))};
    for (const QString &candidate : std::as_const(tried)) {
        if (QFileInfo::exists(candidate))
            return loadPlugin(candidate, error);
    }
    const QPluginLoader byName(name);
    if (!byName.fileName().isEmpty())
        return loadPlugin(byName.fileName(), error);
    const QStringList pluginFolders = QCoreApplication::libraryPaths();
    for (const QString &pluginFolder : pluginFolders)
        tried.append(QDir(pluginFolder).filePath(name));
    tried.removeDuplicates();
    *error = QStringLiteral("there is no plug-in at %1; name its file with --plugin")
                 .arg(tried.join(QStringLiteral(", ")));
    return {};
}
