#include "gateway.h"
#include "text.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// What the check of a gateway says about each point, over small libraries that have what is looked
// at and nothing else.

namespace {

const QString bits = QStringLiteral("%1-bit").arg(QT_POINTER_SIZE * 8);
const QString kindSentence = QStringLiteral("ok: the library is for %1, and so is the gateway.");
const QString good = QStringLiteral("Nothing that was found keeps the library from loading on this "
                                    "gateway.");
const QString bad = QStringLiteral("The library will not work on this gateway.");
const QString notChecked = QStringLiteral("The other points were not checked.");
const QString libraries
    = QStringLiteral("ok: all 3 needed libraries are there, with those that they "
                     "need.");
const QString glibc
    = QStringLiteral("ok: GLIBC symbols up to 2.34 are needed, up to 2.34 are there.");
const QString qt = QStringLiteral("ok: Qt symbols up to 5.15 are needed, up to 5.15 are there.");
const QString symbols
    = QStringLiteral("ok: libvel.so.1 exports all 2 symbols that the library imports from it.");
const QString identifier = QStringLiteral(
    "ok: the interface identifier is org.example.VELInterface/1.0.7, as in /usr/bin/host.");
const QString notCompared = QStringLiteral(
    "unknown: the symbols of libvel.so.1 were not compared, because libraries are missing.");
const QString identifierUnknown
    = QStringLiteral("unknown: the interface identifier org.example.VELInterface/1.0.7: what the "
                     "host asks for was not found; compare it by hand.");

/// Overwrites bytes of the file.
bool patch(const QString &fileName, qint64 offset, const QByteArray &bytes)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadWrite) && file.seek(offset)
           && file.write(bytes) == bytes.size();
}

} // namespace

class tst_GatewayCheck : public QObject
{
    Q_OBJECT

    QString built(const QString &name) const { return m_folder.filePath(name); }
    bool makeForeign(const QString &name, const QString &original, char machine, char floatFlag);

    QTemporaryDir m_folder;
    QString m_kind;

private Q_SLOTS:
    void initTestCase();
    void points_data();
    void points();
};

/// A copy that says it is for another machine. Only the header is read of it.
bool tst_GatewayCheck::makeForeign(const QString &name, const QString &original, char machine,
                                   char floatFlag)
{
    const qint64 flagsOffset = QT_POINTER_SIZE == 8 ? 48 : 36;
    return QFile::copy(built(original), built(name))
           && patch(built(name), 18, QByteArray(1, machine) + '\0')
           && patch(built(name), flagsOffset,
                    QByteArray("\0", 1) + floatFlag + QByteArray("\0\5", 2));
}

void tst_GatewayCheck::initTestCase()
{
    const QString folder = m_folder.path();
    QVERIFY(buildGateway(folder));
    QVERIFY(buildLibrary(folder, text("old libc"), text("libc.so.6"),
                         "void old_call(void) {}\nvoid new_call(void) {}\n",
                         "GLIBC_2.4 { global: old_call; local: *; };\n"
                         "GLIBC_2.31 { global: new_call; } GLIBC_2.4;\n"));
    const QByteArray core = "void qt_call(void) {}\nvoid qt_version_tag(void) {}\n";
    const QByteArray coreVersions = "Qt_5 { global: qt_call; local: *; };\n"
                                    "Qt_5.15 { global: qt_version_tag; } Qt_5;\n";
    const QString coreName = text("libQt5Core.so.5");
    QVERIFY(buildLibrary(folder, text("old qt"), coreName, core,
                         "Qt_5 { global: qt_call; local: *; };\n"
                         "Qt_5.9 { global: qt_version_tag; } Qt_5;\n"));
    QVERIFY(buildLibrary(folder, text("plain qt"), coreName, core));
    QVERIFY(buildLibrary(folder, text("icu"), text("libicu.so.72"), "void icu(void) {}\n"));
    QVERIFY(buildLibrary(folder, text("qt with icu"), coreName, core, coreVersions, {text("icu")}));
    QVERIFY(buildLibrary(folder, text("renamed qt"), text("libQt5Core.so.6"), core, coreVersions));
    QVERIFY(
        buildLibrary(folder, text("small vel"), text("libvel.so.1"), "void host_call(void) {}\n"));
    QVERIFY(buildLibrary(folder, text("no plugin"), text("libkeyence.so"), pluginCode(), {},
                         {text("libc"), text("qt"), text("vel")}));
    QVERIFY(buildLibrary(folder, text("other host"), text("host"),
                         hostCode("com.org.example.VELInterface/1.0.7"), {}, {text("vel")}));

    // ARM with hard and soft float, and AArch64, also as one of the other width.
    QVERIFY(makeForeign(text("hard plugin"), text("plugin"), 40, 4));
    QVERIFY(makeForeign(text("soft libc"), text("libc"), 40, 2));
    QVERIFY(makeForeign(text("foreign plugin"), text("plugin"), '\xb7', 0));
    QVERIFY(makeForeign(text("foreign libc"), text("libc"), '\xb7', 0));
    QVERIFY(QFile::copy(built(text("foreign libc")), built(text("other width"))));
    QVERIFY(patch(built(text("other width")), 4, QByteArray(1, QT_POINTER_SIZE == 8 ? 1 : 2)));

    const ProgramRun header = runProgram(text("readelf"), {text("-h"), text("plugin")}, folder);
    QCOMPARE(header.exitCode, 0);
    m_kind
        = bits + u' ' + header.output.section(text("Machine:"), 1).section(u'\n', 0, 0).trimmed();
    if (m_kind == text("32-bit ARM"))
        m_kind += text(" with hard float");
}

void tst_GatewayCheck::points_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<GatewayRoot>("root");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("exitCode");

    const QString plugin = text("plugin");
    const QString libc = text("usr/lib/libc.so.6");
    const QString core = text("usr/lib/libQt5Core.so.5");
    const QString vel = text("usr/lib/libvel.so.1");
    const QString host = text("usr/bin/host");
    const QString kind = kindSentence.arg(m_kind);

    QTest::newRow("complete") << plugin << completeGateway()
                              << QStringList{kind, libraries, glibc, qt, symbols, identifier, good}
                              << 0;
    QTest::newRow("missing library")
        << plugin << gatewayWithout(core)
        << QStringList{kind,
                       text("FAILS: libQt5Core.so.5, which plugin needs, is not in the library "
                            "folders; install it, or name the host's folder."),
                       glibc,
                       notCompared,
                       identifier,
                       bad}
        << 1;
    QTest::newRow("missing library of a library")
        << plugin << gatewayWith(core, text("qt with icu"))
        << QStringList{kind,
                       text("FAILS: libicu.so.72, which libQt5Core.so.5 needs, is not in the "
                            "library folders; install it, or name the host's folder."),
                       glibc,
                       qt,
                       notCompared,
                       identifier,
                       bad}
        << 1;
    QTest::newRow("library under another's name")
        << plugin << gatewayWith(core, text("renamed qt"))
        << QStringList{kind,
                       text("FAILS: libQt5Core.so.5, which plugin needs, is another library; it "
                            "calls itself libQt5Core.so.6."),
                       glibc,
                       qt,
                       symbols,
                       identifier,
                       bad}
        << 1;
    QTest::newRow("no host library")
        << plugin << gatewayWithout(vel)
        << QStringList{kind,
                       text(
                           "FAILS: libvel.so.1, which plugin needs, is not in the library folders; "
                           "install it, or name the host's folder."),
                       glibc,
                       qt,
                       notCompared,
                       identifier,
                       bad}
        << 1;
    QTest::newRow("older C library")
        << plugin << gatewayWith(libc, text("old libc"))
        << QStringList{kind,
                       libraries,
                       text("FAILS: GLIBC symbols up to 2.34 are needed, up to 2.31 are there; "
                            "missing: GLIBC_2.34."),
                       qt,
                       symbols,
                       identifier,
                       bad}
        << 1;
    QTest::newRow("older Qt, by number and not by text")
        << plugin << gatewayWith(core, text("old qt"))
        << QStringList{kind,
                       libraries,
                       glibc,
                       text(
                           "FAILS: Qt symbols up to 5.15 are needed, up to 5.9 are there; missing: "
                           "Qt_5.15."),
                       symbols,
                       identifier,
                       bad}
        << 1;
    QTest::newRow("Qt without versions")
        << plugin << gatewayWith(core, text("plain qt"))
        << QStringList{kind,
                       libraries,
                       glibc,
                       text("ok: Qt symbols up to 5.15 are needed; libQt5Core.so.5 states no "
                            "versions, so the loader does not ask."),
                       symbols,
                       identifier,
                       good}
        << 0;
    QTest::newRow("host library that lacks a symbol")
        << plugin << gatewayWith(vel, text("small vel"))
        << QStringList{kind,
                       libraries,
                       glibc,
                       qt,
                       text("FAILS: libvel.so.1 lacks 1 of the 2 symbols that the library imports "
                            "from it: host_log; build with VEL_ROOT against the host's framework."),
                       identifier,
                       bad}
        << 1;
    QTest::newRow("host of another identifier")
        << plugin << gatewayWith(host, text("other host"))
        << QStringList{kind,
                       libraries,
                       glibc,
                       qt,
                       symbols,
                       text(
                           "FAILS: the interface identifier is org.example.VELInterface/1.0.7, but "
                           "/usr/bin/host has com.org.example.VELInterface/1.0.7; build with its "
                           "VEL_INTERFACE_PREFIX."),
                       bad}
        << 1;
    QTest::newRow("host not there")
        << plugin << gatewayWithout(host)
        << QStringList{kind, libraries, glibc, qt, symbols, identifierUnknown, good} << 0;
    QTest::newRow("an earlier build is no witness")
        << plugin << gatewayMoved(host, text("opt/vel/libkeyence.so"))
        << QStringList{kind, libraries, glibc, qt, symbols, identifierUnknown, good} << 0;
    QTest::newRow("velhost is no witness")
        << plugin << gatewayMoved(host, text("usr/bin/velhost"))
        << QStringList{kind, libraries, glibc, qt, symbols, identifierUnknown, good} << 0;
    QTest::newRow("host in a folder of its own")
        << plugin << gatewayMoved(host, text("opt/vel/bin/host"))
        << QStringList{kind,
                       libraries,
                       glibc,
                       qt,
                       symbols,
                       text("ok: the interface identifier is org.example.VELInterface/1.0.7, as in "
                            "/opt/vel/bin/host."),
                       good}
        << 0;
    QTest::newRow("no plug-in")
        << text("no plugin") << completeGateway()
        << QStringList{kind,
                       libraries,
                       glibc,
                       qt,
                       symbols,
                       text("FAILS: the library has no interface identifier: it is no Qt plug-in."),
                       bad}
        << 1;
    QTest::newRow("soft float")
        << text("hard plugin") << GatewayRoot{{libc, text("soft libc")}}
        << QStringList{text("FAILS: the library is for %1 ARM with hard float, but the gateway is "
                            "%1 "
                            "ARM with soft float; take the package for that.")
                           .arg(bits),
                       notChecked}
        << 1;
    QTest::newRow("other machine")
        << plugin << gatewayWith(libc, text("foreign libc"))
        << QStringList{text("FAILS: the library is for %1, but the gateway is %2 AArch64; take the "
                            "package for that.")
                           .arg(m_kind, bits),
                       notChecked}
        << 1;
    QTest::newRow("other width")
        << text("foreign plugin") << gatewayWith(libc, text("other width"))
        << QStringList{text("FAILS: the library is for %1 AArch64, but the gateway is %2-bit "
                            "AArch64; take the package for that.")
                           .arg(bits)
                           .arg(96 - QT_POINTER_SIZE * 8),
                       notChecked}
        << 1;
    QTest::newRow("a library of another machine is passed over")
        << plugin << gatewayWith(text("lib/libc.so.6"), text("foreign libc"))
        << QStringList{kind, libraries, glibc, qt, symbols, identifier, good} << 0;
}

void tst_GatewayCheck::points()
{
    QFETCH(QString, library);
    QFETCH(GatewayRoot, root);
    QFETCH(QStringList, lines);
    QFETCH(int, exitCode);

    const QTemporaryDir folder;
    QVERIFY(layGateway(m_folder.path(), folder.path(), root));
    const ProgramRun run
        = runProgram(text(GATEWAY_CHECK), {library, folder.path()}, m_folder.path());
    QCOMPARE(run.output.split(u'\n', Qt::SkipEmptyParts), lines);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, exitCode);
}

QTEST_GUILESS_MAIN(tst_GatewayCheck)
#include "tst_gatewaycheck.moc"
