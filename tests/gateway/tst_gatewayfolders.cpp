#include "gateway.h"
#include "text.h"
#include "writefile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// Where the check of a gateway looks, and what it is asked with.

namespace {

const QString symbols
    = QStringLiteral("ok: libvel.so.1 exports all 2 symbols that the library imports from it.\n");
const QString missing = QStringLiteral("FAILS: libvel.so.1, which plugin needs, is not in");

} // namespace

class tst_GatewayFolders : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

private Q_SLOTS:
    void initTestCase();
    void folders_data();
    void folders();
    void linksStayInTheRoot();
    void wrongUsage_data();
    void wrongUsage();
    void pluginOnThisMachine();
};

void tst_GatewayFolders::initTestCase()
{
    QVERIFY(buildGateway(m_folder.path()));
}

void tst_GatewayFolders::folders_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QStringList>("named");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("lib") << text("lib/") << QStringList{} << 0;
    QTest::newRow("usr/lib of several architectures")
        << text("usr/lib/some-linux-gnueabihf/") << QStringList{} << 0;
    QTest::newRow("lib of several architectures")
        << text("lib/some-linux-gnu/") << QStringList{} << 0;
    QTest::newRow("copy of usr/lib alone") << QString() << QStringList{} << 0;
    QTest::newRow("named by the loader's configuration") << text("srv/one/") << QStringList{} << 0;
    QTest::newRow("named by an included one") << text("srv/two/") << QStringList{} << 0;
    QTest::newRow("named by an included one's included one")
        << text("srv/three/") << QStringList{} << 1;
    QTest::newRow("the host's own") << text("srv/vel/") << QStringList{text("/srv/vel")} << 0;
    QTest::newRow("unknown") << text("srv/vel/") << QStringList{} << 1;
}

/// The same folders for every row; the configuration includes itself, which must not matter.
void tst_GatewayFolders::folders()
{
    QFETCH(QString, place);
    QFETCH(QStringList, named);
    QFETCH(int, exitCode);

    const QTemporaryDir folder;
    QVERIFY(layGateway(m_folder.path(), folder.path(),
                       gatewayMoved(text("usr/lib/libvel.so.1"), place + text("libvel.so.1"))));
    const QString configuration = folder.filePath(text("etc/ld.so.conf"));
    QVERIFY(QDir(folder.path()).mkpath(text("etc/more")));
    QVERIFY(writeFile(configuration, "# comment\ninclude more/*.conf\n  /srv/one # ours\n"));
    QVERIFY(writeFile(folder.filePath(text("etc/more/a.conf")),
                      "/srv/two\ninclude /etc/more/a.conf\ninclude /etc/more/b\n"));
    QVERIFY(writeFile(folder.filePath(text("etc/more/b")), "/srv/three\n"));

    const ProgramRun run = runProgram(
        text(GATEWAY_CHECK), QStringList{text("plugin"), folder.path()} + named, m_folder.path());
    QCOMPARE(run.output.contains(missing), exitCode != 0);
    QCOMPARE(run.output.contains(symbols), exitCode == 0);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, exitCode);
}

/// An absolute link in a copy is one to the gateway's file, never to this machine's; a folder too.
void tst_GatewayFolders::linksStayInTheRoot()
{
    const QTemporaryDir folder;
    QVERIFY(layGateway(m_folder.path(), folder.path(),
                       gatewayMoved(text("usr/lib/libvel.so.1"), text("data/real/libvel.so.1.2"))));
    QVERIFY(QFile::link(text("/data/link/libvel.so.1.2"),
                        folder.filePath(text("usr/lib/libvel.so.1"))));
    QVERIFY(QFile::link(text("../data/real"), folder.filePath(text("data/link"))));
    const QStringList arguments{text("plugin"), folder.path()};
    const ProgramRun run = runProgram(text(GATEWAY_CHECK), arguments, m_folder.path());
    QVERIFY2(run.output.contains(symbols), qPrintable(run.output));
    QVERIFY(run.output.contains(text(", as in /usr/bin/host.\n")));
    QCOMPARE(run.exitCode, 0);

    QVERIFY(QFile::remove(folder.filePath(text("usr/lib/libvel.so.1"))));
    QVERIFY(
        QFile::link(m_folder.filePath(text("vel")), folder.filePath(text("usr/lib/libvel.so.1"))));
    const ProgramRun outside = runProgram(text(GATEWAY_CHECK), arguments, m_folder.path());
    QVERIFY(outside.output.contains(missing));
    QCOMPARE(outside.exitCode, 1);
}

void tst_GatewayFolders::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("nothing") << QStringList{}
                             << text("usage: gateway-check.py LIBKEYENCE [ROOT [FOLDER...]]");
    QTest::newRow("no library") << QStringList{text("none.so")} << text("there is no file none.so");
    QTest::newRow("no ELF file") << QStringList{text("plugin.c")}
                                 << text("plugin.c is no ELF library");
    QTest::newRow("no root") << QStringList{text("plugin"), text("none")}
                             << text("there is no folder none; give a copy of the gateway's root "
                                     "folder or of its /usr/lib");
}

void tst_GatewayFolders::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    const ProgramRun run = runProgram(text(GATEWAY_CHECK), arguments, m_folder.path());
    QCOMPARE(run.errors, text("gateway-check: %1\n").arg(message));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
}

/// The real plug-in and the real libraries of this machine, which it was built for or not.
void tst_GatewayFolders::pluginOnThisMachine()
{
    // A folder without programs beside it, which would be asked for their identifier.
    const QString folder = m_folder.filePath(text("real/lib"));
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(QFile::copy(text(VEL_LIBRARY_FILE), folder + text("/libvel.so.1")));
    const ProgramRun run = runProgram(
        text(GATEWAY_CHECK), {text(KEYENCE_PLUGIN_FILE), text("/"), folder}, m_folder.path());
    const bool forThisMachine = CROSS_COMPILED == 0;
    const QString hostSymbols
        = text("ok: libvel.so.1 exports all 7 symbols that the library imports from it.\n");
    QVERIFY2(run.output.contains(hostSymbols) == forThisMachine, qPrintable(run.output));
    QVERIFY2(run.output.contains(text("FAILS: the library is for ")) != forThisMachine,
             qPrintable(run.output));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, forThisMachine ? 0 : 1);
}

QTEST_GUILESS_MAIN(tst_GatewayFolders)
#include "tst_gatewayfolders.moc"
