#include "hostrecords.h"
#include "recordingbackend.h"
#include "scriptedpeer.h"
#include "text.h"

#include <vel/velinterface.h>

#include <QFile>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

namespace {

const QString pluginFile = QStringLiteral(KEYENCE_PLUGIN_FILE);

// The lines that a program prints.
QStringList linesOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s failed", qPrintable(program));
    return QString::fromLocal8Bit(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
}

// The dynamic symbols of a library.
QStringList symbols(const QString &file, const QStringList &options)
{
    QStringList names = linesOf(text("nm"), QStringList{text("--dynamic"), text("--just-symbols"),
                                                        text("--without-symbol-versions"), file}
                                                + options);
    names.sort();
    return names;
}

} // namespace

// The built library as a host loads it.
class tst_Plugin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void metaData();
    void exports();
    void importsFromTheHost();
    void importsAsLinked();
    void neededLibraries_data();
    void neededLibraries();
    void staysMapped();
    void isBoundAtLoadTime();
    void oneInstance();
    void wholeLife();
};

void tst_Plugin::metaData()
{
    const QJsonObject metaData = QPluginLoader(pluginFile).metaData();
    QCOMPARE(metaData.value(text("IID")).toString(), text(VELInterface_iid));
    QVERIFY(text(VELInterface_iid).endsWith(text("/1.0.7")));
    QCOMPARE(metaData.value(text("className")).toString(), text("Keyence"));
    QCOMPARE(metaData.value(text("version")).toInt(), QT_VERSION_CHECK(5, 15, 0));
    QVERIFY(metaData.value(text("MetaData")).toObject().isEmpty());
}

void tst_Plugin::exports()
{
    QCOMPARE(symbols(pluginFile, {text("--defined-only")}),
             (QStringList{text("qt_plugin_instance"), text("qt_plugin_query_metadata")}));
}

void tst_Plugin::importsFromTheHost()
{
    const QStringList imported
        = symbols(pluginFile, {text("--demangle"), text("--undefined-only")});
    QCOMPARE(imported.filter(text("PluginInterface")),
             (QStringList{
                 text("PluginInterface::PluginInterface()"),
                 text("PluginInterface::getNetworkInterfaces()"),
                 text("PluginInterface::getPluginDevices()"),
                 text("PluginInterface::initPlugin(QString, unsigned int, "
                      "QList<DatabaseColumnStructure>, QList<DatabaseColumnStructure>, "
                      "QList<DatabaseColumnStructure>, QList<DatabaseColumnStructure>, "
                      "PluginInitOptions const&)"),
                 text("PluginInterface::logDebug(QString)"),
                 text("PluginInterface::logError(QString)"),
                 text("PluginInterface::~PluginInterface()"),
             }));
    const QRegularExpression otherRecords(text(
        "HostBackend|VELInterface|DatabaseColumnStructure::|InstancePlugin::|LogList|DataItem"));
    QCOMPARE(imported.filter(otherRecords), QStringList());
}

// A changed argument changes the symbol that the host's library must have.
void tst_Plugin::importsAsLinked()
{
    QFile file(text(IMPORTS_FILE));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const QStringList expected
        = QString::fromLatin1(file.readAll()).split(u'\n', Qt::SkipEmptyParts);

    const QStringList imported = symbols(pluginFile, {text("--undefined-only")});
    QStringList fromHost = symbols(text(VEL_LIBRARY_FILE), {text("--defined-only")});
    const auto notImported = [&imported](const QString &name) { return !imported.contains(name); };
    fromHost.erase(std::remove_if(fromHost.begin(), fromHost.end(), notImported), fromHost.end());
    QCOMPARE(fromHost, expected);
}

void tst_Plugin::neededLibraries_data()
{
    QTest::addColumn<QString>("library");

    QTest::newRow("host") << text("libvel.so.1");
    QTest::newRow("Qt Core") << text("libQt5Core.so.5");
    QTest::newRow("Qt Sql, of which nothing is called") << text("libQt5Sql.so.5");
}

void tst_Plugin::neededLibraries()
{
    QFETCH(QString, library);
    const QStringList needed
        = linesOf(text("readelf"), {text("-d"), pluginFile}).filter(text("(NEEDED)"));
    QCOMPARE(needed.filter(u'[' + library + u']').size(), 1);
}

void tst_Plugin::staysMapped()
{
    const QStringList flags
        = linesOf(text("readelf"), {text("-d"), pluginFile}).filter(text("(FLAGS_1)"));
    QCOMPARE(flags.size(), 1);
    QVERIFY2(flags.constFirst().contains(text("NODELETE")), qPrintable(flags.constFirst()));
}

void tst_Plugin::isBoundAtLoadTime()
{
    const QStringList flags
        = linesOf(text("readelf"), {text("-d"), pluginFile}).filter(text("(FLAGS_1)"));
    QVERIFY2(flags.constFirst().contains(text("NOW")), qPrintable(flags.constFirst()));
}

void tst_Plugin::oneInstance()
{
    QPluginLoader loader(pluginFile);
    QObject *instance = loader.instance();
    QVERIFY2(instance != nullptr, qPrintable(loader.errorString()));
    QCOMPARE(text(instance->metaObject()->className()), text("Keyence"));
    QVERIFY(qobject_cast<VELInterface *>(instance) != nullptr);

    QPluginLoader other(pluginFile);
    QCOMPARE(other.instance(), instance);

    using InstanceFunction = QObject *(*)();
    const auto function
        = reinterpret_cast<InstanceFunction>(QLibrary(pluginFile).resolve("qt_plugin_instance"));
    QVERIFY(function != nullptr);
    QCOMPARE(function(), instance);
    QVERIFY(!other.unload());
    QVERIFY(loader.unload());
}

void tst_Plugin::wholeLife()
{
    ScriptedPeer peer({{"65535\r\n"}, {"OK\r\n"}, {"E0\r\n"}});
    RecordingBackend host;
    host.interfaces = {{text("eth0")}};
    host.configuredDevices = {deviceRecord(7, text("Press"), peer.port())};
    LogList list
        = logList(host.configuredDevices.at(0),
                  {dataItem(text("Counter"), text("D201"), text("1"), text("1"), text("old"))});
    {
        QPluginLoader loader(pluginFile);
        auto *plugin = qobject_cast<VELInterface *>(loader.instance());
        QVERIFY2(plugin != nullptr, qPrintable(loader.errorString()));
        QVERIFY(plugin->init());
        QVERIFY(plugin->readData(&list));
        QCOMPARE(valueOf(list.dataItems.at(0)), text("-1"));
        QVERIFY(plugin->logCallback(&list));
        QVERIFY(plugin->getEventData(&list));
        QVERIFY(plugin->writeData(&list));
        QVERIFY(plugin->readData(&list));
        QVERIFY(plugin->stopPlugin());
        QVERIFY(loader.unload());
    }
    QCOMPARE(peer.finish(), QByteArray("RD D201\rWR D201 00-1\rRD D201\r"));

    // What the plug-in gave to the host is still valid after the plug-in was unloaded.
    const QString error = text("[RD D201\r] <Counter> :invalid address");
    QCOMPARE(host.errorLog, QStringList{error});
    QCOMPARE(list.dataItems.at(0).item.lastError, error);
    QCOMPARE(valueOf(list.dataItems.at(0)), text("-1"));
    QCOMPARE(host.registrations.size(), 1);
    const PluginRegistration &said = host.registrations.constFirst();
    QCOMPARE(said.name, text("keyence"));
    QCOMPARE(said.version, 4U);
    QCOMPARE(said.itemColumns.at(2).selectionValues.constLast().text, text("Unknown Data Type"));
    QCOMPARE(said.deviceColumns.at(3).selectionValues.at(1).value, text("eth0"));
    QCOMPARE(said.deviceColumns.constLast().selectionValues.constLast().text,
             text("__vel_discovery_parameter_only"));
}

QTEST_GUILESS_MAIN(tst_Plugin)
#include "tst_plugin.moc"
