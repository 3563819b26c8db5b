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

QString headerFailure(const QFileInfo &file, const QString &loaderText)
{
    const std::optional<ElfHeader> header = headerOf(file.filePath());
    if (!header)
        return QStringLiteral(
            "it is no shared library; name the libkeyence.so that the build made");
    const std::optional<ElfHeader> own = headerOf(QStringLiteral("/proc/self/exe"));
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

} // namespace

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

QString loaderFailure(const QFileInfo &file, const QJsonObject &metadata, const QString &loaderText)
{
    for (const QString &failure : {headerFailure(file, loaderText), metadataFailure(metadata)}) {
        if (!failure.isEmpty())
            return failure;
    }
    return linkFailure(loaderText);
}
