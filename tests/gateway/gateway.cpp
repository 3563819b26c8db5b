#include "gateway.h"

#include "text.h"
#include "writefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

GatewayRoot completeGateway()
{
    return {{text("usr/lib/libc.so.6"), text("libc")},
            {text("usr/lib/libQt5Core.so.5"), text("qt")},
            {text("usr/lib/libvel.so.1"), text("vel")},
            {text("usr/bin/host"), text("host")}};
}

GatewayRoot gatewayWith(const QString &place, const QString &library)
{
    GatewayRoot root = completeGateway();
    root.insert(place, library);
    return root;
}

GatewayRoot gatewayWithout(const QString &place)
{
    GatewayRoot root = completeGateway();
    root.remove(place);
    return root;
}

GatewayRoot gatewayMoved(const QString &from, const QString &to)
{
    GatewayRoot root = completeGateway();
    root.insert(to, root.take(from));
    return root;
}

bool buildLibrary(const QString &folder, const QString &name, const QString &soname,
                  const QByteArray &source, const QByteArray &versions, const QStringList &needed)
{
    const QString script = name + text(".map");
    const QString sourceFile = name + text(".c");
    if (!writeFile(QDir(folder).filePath(sourceFile), source)
        || !writeFile(QDir(folder).filePath(script), versions))
        return false;
    QStringList arguments{text("-shared"),
                          text("-nostdlib"),
                          text("-fPIC"),
                          text("-o"),
                          name,
                          text("-Wl,-soname,") + soname,
                          text("-x"),
                          text("c"),
                          sourceFile};
    arguments += {text("-x"), text("none"), text("-Wl,--no-as-needed")};
    arguments += needed;
    if (!versions.isEmpty())
        arguments.append(text("-Wl,--version-script,") + script);
    const ProgramRun run = runProgram(text(COMPILER), arguments, folder);
    if (run.exitCode != 0)
        qWarning("%s", qPrintable(run.errors));
    return run.exitCode == 0;
}

QByteArray pluginCode()
{
    return R"(
        void old_call(void);
        void new_call(void);
        void qt_call(void);
        void qt_version_tag(void);
        void host_call(void);
        void host_log(void);
        void optional(void) __attribute__((weak));
        void use(void)
        {
            old_call();
            new_call();
            qt_call();
            qt_version_tag();
            host_call();
            host_log();
            optional();
        }
        )";
}

QByteArray pluginMetadata()
{
    return R"(const char data[] __attribute__((used, section(".qtmetadata")))
        = "QTMETADATA !\0\5\17\0\277\2\170\036" "org.example.VELInterface/1.0.7" "\377";)";
}

QByteArray hostCode(const QByteArray &identifier)
{
    return "const char *asked(void) { return \"" + identifier + "\"; }\n";
}

bool buildGateway(const QString &folder)
{
    return buildLibrary(folder, text("libc"), text("libc.so.6"),
                        "void old_call(void) {}\nvoid new_call(void) {}\n",
                        "GLIBC_2.4 { global: old_call; local: *; };\n"
                        "GLIBC_2.34 { global: new_call; } GLIBC_2.4;\n")
           && buildLibrary(folder, text("qt"), text("libQt5Core.so.5"),
                           "void qt_call(void) {}\nvoid qt_version_tag(void) {}\n",
                           "Qt_5 { global: qt_call; local: *; };\n"
                           "Qt_5.15 { global: qt_version_tag; } Qt_5;\n",
                           {text("libc")})
           && buildLibrary(folder, text("vel"), text("libvel.so.1"),
                           "void host_call(void) {}\nvoid host_log(void) {}\n")
           && buildLibrary(folder, text("plugin"), text("libkeyence.so"),
                           pluginCode() + pluginMetadata(), {},
                           {text("libc"), text("qt"), text("vel")})
           && buildLibrary(folder, text("host"), text("host"),
                           hostCode("org.example.VELInterface/1.0.7"), {}, {text("vel")});
}

bool layGateway(const QString &folder, const QString &rootFolder, const GatewayRoot &root)
{
    for (auto file = root.begin(); file != root.end(); ++file) {
        const QString place = QDir(rootFolder).filePath(file.key());
        if (!QDir().mkpath(QFileInfo(place).path())
            || !QFile::copy(QDir(folder).filePath(file.value()), place))
            return false;
    }
    return true;
}
