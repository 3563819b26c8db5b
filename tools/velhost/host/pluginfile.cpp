#include "host/pluginfile.h"

#include "host/loadfailure.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

namespace {

/// Returns nothing for a file without metadata: the loader refuses that one itself.
std::optional<LoadFailure> identifierFailure(const QJsonObject &metadata)
{
    const QString identifier = metadata.value(u"IID").toString();
    if (metadata.isEmpty() || identifier == QLatin1String(VELInterface_iid))
        return {};
    return LoadFailure{
        QStringLiteral("its interface identifier is \"%1\", this host asks for \"%2\"")
            .arg(identifier, QLatin1String(VELInterface_iid)),
        QStringLiteral("build both with the same VEL_INTERFACE_PREFIX")};
}

LoadFailure classFailure(const QString &className)
{
    return {QStringLiteral("its class \"%1\" is not a VELInterface").arg(className),
            QStringLiteral("derive it from VELInterface and name that in Q_INTERFACES")};
}

/// Adds the failure as a line and the text of the loader, if there is one, as another line.
void addFailure(const QString &fileName, const LoadFailure &failure, const QString &loaderText,
                QStringList *errors)
{
    errors->append(QStringLiteral("cannot load the plug-in %1: %2; %3")
                       .arg(fileName, failure.fault, failure.remedy));
    if (!loaderText.isEmpty())
        errors->append(u"the loader says: " + loaderText);
}

} // namespace

std::optional<LoadedPlugin> loadPlugin(const QString &fileName, QStringList *errors)
{
    const QFileInfo file(fileName);
    // An absolute path, because the loader searches its own folders for a bare name.
    QPluginLoader loader(file.absoluteFilePath());
    const QJsonObject metadata = loader.metaData();
    const std::optional<LoadFailure> pathFault = pathFailure(file);
    const std::optional<LoadFailure> failure = pathFault ? pathFault : identifierFailure(metadata);
    if (failure) {
        addFailure(fileName, *failure, {}, errors);
        return {};
    }
    // This is the first call that runs code of the plug-in.
    QObject *const instance = loader.instance();
    if (instance == nullptr) {
        addFailure(fileName, loaderFailure(file, metadata, loader.errorString()),
                   loader.errorString(), errors);
        return {};
    }
    const QString className = metadata.value(u"className").toString();
    auto *const plugin = qobject_cast<VELInterface *>(instance);
    if (plugin == nullptr) {
        addFailure(fileName, classFailure(className), {}, errors);
        return {};
    }
    return LoadedPlugin{file.absoluteFilePath(), className, plugin};
}

std::optional<LoadedPlugin> loadDefaultPlugin(const QString &programFolder, QStringList *errors)
{
    const QString name = QStringLiteral("libkeyence.so");
    const QDir folder(programFolder);
    QStringList tried{
        folder.filePath(name), QDir::cleanPath(folder.filePath(QStringLiteral("../lib/") + name)),
        QDir::cleanPath(folder.filePath(QStringLiteral(KEYENCE_PLUGIN_FOLDER "/") + name))};
    for (const QString &candidate : std::as_const(tried)) {
        if (QFileInfo::exists(candidate))
            return loadPlugin(candidate, errors);
    }
    const QPluginLoader byName(name);
    if (!byName.fileName().isEmpty())
        return loadPlugin(byName.fileName(), errors);
    const QStringList pluginFolders = QCoreApplication::libraryPaths();
    for (const QString &pluginFolder : pluginFolders)
        tried.append(QDir(pluginFolder).filePath(name));
    tried.removeDuplicates();
    errors->append(QStringLiteral("there is no plug-in at %1; name its file with --plugin")
                       .arg(tried.join(QStringLiteral(", "))));
    return {};
}
