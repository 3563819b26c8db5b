#include "host/pluginfile.h"

#include "host/elffile.h"

#include <common/console.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QPluginLoader>
#include <QRegularExpression>
#include <QVersionNumber>

namespace {

// Functions that are called failures give the fault and what to do.

QString headerFailure(const QFileInfo &file, const QString &loaderText)
{
    const std::optional<ElfHeader> header = readElfHeader(file.filePath());
    if (!header)
        return QStringLiteral(
            "it is no shared library; name the libkeyence.so that the build made");
    const std::optional<ElfHeader> own = readElfHeader(QStringLiteral("/proc/self/exe"));
    if (own && !haveSameProcessor(*header, *own))
        return QStringLiteral("it is built for another processor: %1, this program for %2; take or "
                              "build the one for this processor")
            .arg(processorText(*header), processorText(*own));
    // Qt looks for what stands at the end of a complete file.
    if (loaderText.contains(u"file too small") || loaderText.contains(u"exceed file size"))
        return QStringLiteral("it is cut short; copy it again and compare the sizes");
    return {};
}

/// Qt itself loads plug-ins of the same major and the same or an older minor version.
QString metadataFailure(const QJsonObject &metadata)
{
    if (metadata.isEmpty())
        return QStringLiteral("it is a library, but no plug-in of Qt 5; name libkeyence.so itself, "
                              "built with Qt 5.15");
    const int number = metadata.value(u"version").toInt();
    const QVersionNumber version(number >> 16 & 0xff, number >> 8 & 0xff);
    const QVersionNumber own = QLibraryInfo::version();
    if (version.majorVersion() == own.majorVersion()
        && version.minorVersion() <= own.minorVersion())
        return {};
    return QStringLiteral("it is built with Qt %1, and this program runs on Qt %2; build it with "
                          "the Qt of this machine")
        .arg(version.toString(), own.toString());
}

/// Explains the text of the system's loader for a complete library of the right kind.
QString linkFailure(const QString &loaderText)
{
    static const QRegularExpression missingSymbol(
        QStringLiteral(": undefined symbol: ([^\\s,)]+)"));
    static const QRegularExpression missingVersion(
        QStringLiteral("\\(([^\\s(]+): version `([^']+)' not found"));
    // The loader names a library without a folder when it has searched for it.
    static const QRegularExpression missingLibrary(
        QStringLiteral("\\(([^/\\s(]+): cannot open shared object file"));
    if (const auto match = missingSymbol.match(loaderText); match.hasMatch())
        return QStringLiteral("no library here has the symbol %1, which it needs; give it the "
                              "libvel.so.1 and the Qt that it was built with")
            .arg(match.captured(1));
    if (const auto match = missingVersion.match(loaderText); match.hasMatch())
        return QStringLiteral("it needs version %1 of %2, and the one here is another; build it "
                              "against the libraries of this machine")
            .arg(match.captured(2), match.captured(1));
    if (const auto match = missingLibrary.match(loaderText); match.hasMatch())
        return QStringLiteral("the library %1, which it or one of its libraries needs, is missing "
                              "or there for another processor only; install it, or name its folder "
                              "in LD_LIBRARY_PATH")
            .arg(match.captured(1));
    return QStringLiteral("the system's loader refuses it; go by what it says below");
}

/// Why the path is no readable file; empty when it is one.
QString pathFailure(const QFileInfo &file)
{
    if (!file.exists())
        return QStringLiteral("there is no such file; look at the path, or build the plug-in");
    if (file.isDir())
        return QStringLiteral("it is a folder; name the plug-in's file in it");
    // To open a pipe would wait for its other end.
    if (!file.isFile())
        return QStringLiteral("it is a pipe or a device and no file; name the plug-in's file");
    QFile content(file.filePath());
    if (!content.open(QIODevice::ReadOnly))
        return QStringLiteral("it cannot be read: %1; let this user read it, with chmod a+r")
            .arg(content.errorString());
    return {};
}

/// Why the loader refused a readable file: found in its header, else in its metadata, else in the
/// text of the loader. That text must be English, see main().
QString loaderFailure(const QFileInfo &file, const QJsonObject &metadata, const QString &loaderText)
{
    for (const QString &failure : {headerFailure(file, loaderText), metadataFailure(metadata)}) {
        if (!failure.isEmpty())
            return failure;
    }
    return linkFailure(loaderText);
}

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
