#include "host/pluginfile.h"

#include "host/loadfailure.h"

#include <common/console.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

namespace {

/// Empty for a file without metadata, too: the loader refuses that one itself.
QString identifierFailure(const QJsonObject &metadata)
{
    const QString identifier = metadata.value(u"IID").toString();
    if (metadata.isEmpty() || identifier == QLatin1String(VELInterface_iid))
        return {};
    return QStringLiteral("its interface identifier is \"%1\", this host asks for \"%2\"; build "
                          "both with the same VEL_INTERFACE_PREFIX")
        .arg(identifier, QLatin1String(VELInterface_iid));
}

void printFailure(const QString &fileName, const QString &failure)
{
    printError(QStringLiteral("cannot load the plug-in %1: %2").arg(fileName, failure));
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
    const QString pathFault = pathFailure(file);
    const QString failure = pathFault.isEmpty() ? identifierFailure(metadata) : pathFault;
    if (!failure.isEmpty()) {
        printFailure(fileName, failure);
        return {};
    }
    // This is the first call that runs code of the plug-in.
    QObject *const instance = loader.instance();
    if (instance == nullptr) {
        printFailure(fileName, loaderFailure(file, metadata, loader.errorString()));
        printError(u"the loader says: " + loader.errorString());
        return {};
    }
    const QString className = metadata.value(u"className").toString();
    auto *const plugin = qobject_cast<VELInterface *>(instance);
    if (plugin == nullptr) {
        printFailure(fileName, QStringLiteral("its class \"%1\" is not a VELInterface; derive it "
                                              "from VELInterface and name that in Q_INTERFACES")
                                   .arg(className));
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
