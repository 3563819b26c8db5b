#include "host/loadfailure.h"

#include "host/elffile.h"

#include <QFile>
#include <QLibraryInfo>
#include <QRegularExpression>
#include <QVersionNumber>

namespace {

std::optional<ElfHeader> headerOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? readElfHeader(&file) : std::nullopt;
}

std::optional<LoadFailure> headerFailure(const QFileInfo &file, const QString &loaderText)
{
    const std::optional<ElfHeader> header = headerOf(file.filePath());
    if (!header)
        return LoadFailure{QStringLiteral("it is no shared library"),
                           QStringLiteral("name the libkeyence.so that the build made")};
    const std::optional<ElfHeader> own = headerOf(QStringLiteral("/proc/self/exe"));
    if (own && !haveSameProcessor(*header, *own))
        return LoadFailure{
            QStringLiteral("it is built for another processor: %1, this program for %2")
                .arg(processorText(*header), processorText(*own)),
            QStringLiteral("take or build the one for this processor")};
    // Qt looks for what stands at the end of a complete file.
    if (loaderText.contains(u"file too small") || loaderText.contains(u"exceed file size"))
        return LoadFailure{QStringLiteral("it is cut short"),
                           QStringLiteral("copy it again and compare the sizes")};
    return {};
}

/// Qt itself loads plug-ins of the same major and the same or an older minor version.
std::optional<LoadFailure> metadataFailure(const QJsonObject &metadata)
{
    if (metadata.isEmpty())
        return LoadFailure{QStringLiteral("it is a library, but no plug-in of Qt 5"),
                           QStringLiteral("name libkeyence.so itself, built with Qt 5.15")};
    const int number = metadata.value(u"version").toInt();
    const QVersionNumber version(number >> 16 & 0xff, number >> 8 & 0xff);
    const QVersionNumber own = QLibraryInfo::version();
    if (version.majorVersion() == own.majorVersion()
        && version.minorVersion() <= own.minorVersion())
        return {};
    return LoadFailure{QStringLiteral("it is built with Qt %1, and this program runs on Qt %2")
                           .arg(version.toString(), own.toString()),
                       QStringLiteral("build it with the Qt of this machine")};
}

/// Explains the text of the system's loader for a complete library of the right kind.
LoadFailure linkFailure(const QString &loaderText)
{
    static const QRegularExpression missingSymbol(
        QStringLiteral(": undefined symbol: ([^\\s,)]+)"));
    static const QRegularExpression missingVersion(
        QStringLiteral("\\(([^\\s(]+): version `([^']+)' not found"));
    // The loader names a library without a folder when it has searched for it.
    static const QRegularExpression missingLibrary(
        QStringLiteral("\\(([^/\\s(]+): cannot open shared object file"));
    if (const auto match = missingSymbol.match(loaderText); match.hasMatch())
        return {QStringLiteral("no library here has the symbol %1, which it needs")
                    .arg(match.captured(1)),
                QStringLiteral("give it the libvel.so.1 and the Qt that it was built with")};
    if (const auto match = missingVersion.match(loaderText); match.hasMatch())
        return {QStringLiteral("it needs version %1 of %2, and the one here is another")
                    .arg(match.captured(2), match.captured(1)),
                QStringLiteral("build it against the libraries of this machine")};
    if (const auto match = missingLibrary.match(loaderText); match.hasMatch())
        return {QStringLiteral("the library %1, which it or one of its libraries needs, is missing "
                               "or there for another processor only")
                    .arg(match.captured(1)),
                QStringLiteral("install it, or name its folder in LD_LIBRARY_PATH")};
    return {QStringLiteral("the system's loader refuses it"),
            QStringLiteral("go by what it says below")};
}

} // namespace

std::optional<LoadFailure> pathFailure(const QFileInfo &file)
{
    if (!file.exists())
        return LoadFailure{QStringLiteral("there is no such file"),
                           QStringLiteral("look at the path, or build the plug-in")};
    if (file.isDir())
        return LoadFailure{QStringLiteral("it is a folder"),
                           QStringLiteral("name the plug-in's file in it")};
    // To open a pipe would wait for its other end.
    if (!file.isFile())
        return LoadFailure{QStringLiteral("it is a pipe or a device and no file"),
                           QStringLiteral("name the plug-in's file")};
    QFile content(file.filePath());
    if (!content.open(QIODevice::ReadOnly))
        return LoadFailure{u"it cannot be read: " + content.errorString(),
                           QStringLiteral("let this user read it, with chmod a+r")};
    return {};
}

LoadFailure loaderFailure(const QFileInfo &file, const QJsonObject &metadata,
                          const QString &loaderText)
{
    if (const std::optional<LoadFailure> failure = headerFailure(file, loaderText))
        return *failure;
    return metadataFailure(metadata).value_or(linkFailure(loaderText));
}
