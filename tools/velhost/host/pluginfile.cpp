#include "host/pluginfile.h"

#include "host/loadfailure.h"

#include <common/console.h>

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

void printFailure(const QString &fileName, const LoadFailure &failure,
                  const QString &loaderText = {})
{
    printError(QStringLiteral("cannot load the plug-in %1: %2; %3")
                   .arg(fileName, failure.fault, failure.remedy));
    if (!loaderText.isEmpty())
        printError(u"the loader says: " + loaderText);
}

/// Where the plug-in is looked for when no file is named.
QStringList defaultFiles()
{
    const QString name = QStringLiteral("libkeyence.so");
    QStringList folders{QStringLiteral("."), QStringLiteral("../lib"),
                        QStringLiteral(KEYENCE_PLUGIN_FOLDER)};
    folders += QCoreApplication::libraryPaths();
    const QDir programFolder(QCoreApplication::applicationDirPath());
    QStringList files;
    for (const QString &folder : std::as_const(folders))
        files.append(QDir::cleanPath(programFolder.filePath(folder + u'/' + name)));
    files.removeDuplicates();
    return files;
}

} // namespace

std::optional<LoadedPlugin> loadPlugin(const QString &fileName)
{
    const QFileInfo file(fileName);
    // An absolute path, because the loader searches its own folders for a bare name.
    QPluginLoader loader(file.absoluteFilePath());
    const QJsonObject metadata = loader.metaData();
    const std::optional<LoadFailure> pathFault = pathFailure(file);
    const std::optional<LoadFailure> failure = pathFault ? pathFault : identifierFailure(metadata);
    if (failure) {
        printFailure(fileName, *failure);
        return {};
    }
    // This is the first call that runs code of the plug-in.
    QObject *const instance = loader.instance();
    if (instance == nullptr) {
        printFailure(fileName, loaderFailure(file, metadata, loader.errorString()),
                     loader.errorString());
        return {};
    }
    const QString className = metadata.value(u"className").toString();
    auto *const plugin = qobject_cast<VELInterface *>(instance);
    if (plugin == nullptr) {
        printFailure(fileName,
                     {QStringLiteral("its class \"%1\" is not a VELInterface").arg(className),
                      QStringLiteral("derive it from VELInterface and name that in Q_INTERFACES")});
        return {};
    }
    return LoadedPlugin{file.absoluteFilePath(), className, plugin};
}

std::optional<LoadedPlugin> loadDefaultPlugin()
{
    const QStringList files = defaultFiles();
    for (const QString &file : files) {
        if (QFileInfo::exists(file))
            return loadPlugin(file);
    }
    printError(QStringLiteral("there is no plug-in at %1; name its file with --plugin")
                   .arg(files.join(QStringLiteral(", "))));
    return {};
}
