#include "searchrun.h"
#include "simulatorthread.h"
#include "udppeer.h"
#include "writefile.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopedPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

// `discover --plant`: the file that it writes, and when it writes none.

namespace {

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The plant with the same item in every device, as a user adds it.
QByteArray withItem(const QByteArray &plant)
{
    const QJsonObject item{
        {text("name"), text("Counter")},
        {text("parameters"), QJsonObject{{text("memory_address"), text("DM201")},
                                         {text("memory_type"), text("Word device")},
                                         {text("data_type"), text("Word")}}}};
    QJsonObject root = QJsonDocument::fromJson(plant).object();
    QJsonArray devices = root.value(text("devices")).toArray();
    for (int i = 0; i < devices.size(); ++i) {
        QJsonObject device = devices.at(i).toObject();
        device.insert(text("items"), QJsonArray{item});
        devices.replace(i, device);
    }
    root.insert(text("devices"), devices);
    return QJsonDocument(root).toJson();
}

} // namespace

class tst_DiscoverPlant : public QObject
{
    Q_OBJECT

    ProgramRun discover(const QString &port, const QStringList &more);
    QString plant() const { return m_folder->filePath(text("plant.json")); }
    ProgramRun onPlant(const QStringList &arguments);

    SilentPort m_nobody;
    QScopedPointer<QTemporaryDir> m_folder;

private Q_SLOTS:
    void init();
    void writesAndReads();
    void answeredByUdpAlone();
    void nothingFound();
    void isThereAlready();
    void replaces();
    void triedBeforeTheSearch();
    void cannotBeWritten();
    void diskIsFull();
};

void tst_DiscoverPlant::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

ProgramRun tst_DiscoverPlant::discover(const QString &port, const QStringList &more)
{
    return runBesideLoop(
        text(VELHOST_FILE),
        searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(), port,
                        shortSearch() + QStringList{text("--plant"), plant()} + more));
}

ProgramRun tst_DiscoverPlant::onPlant(const QStringList &arguments)
{
    return runProgram(
        text(VELHOST_FILE),
        arguments
            + QStringList{text("--plugin"), text(KEYENCE_PLUGIN_FILE), text("--plant"), plant()},
        m_folder->path());
}

void tst_DiscoverPlant::writesAndReads()
{
    SimulatorThread first;
    SimulatorThread second(QHostAddress(text("127.0.0.2")));
    QVERIFY(first.isListening() && second.isListening());
    QVERIFY(first.setWord("DM201", 11));
    QVERIFY(second.setWord("DM201", 22));
    const ProgramRun run = discover(text("%1,%2").arg(first.port()).arg(second.port()), {});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(contents(plant())), text(R"({
  "networkInterfaces": [],
  "devices": [
    {"id":1,"name":"127.0.0.1:%1","ip":"127.0.0.1","parameters":{"port":"%1"},"items":[]},
    {"id":2,"name":"127.0.0.2:%2","ip":"127.0.0.2","parameters":{"port":"%2"},"items":[]}
  ]
}
)")
                                                       .arg(first.port())
                                                       .arg(second.port()));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList(text("plant.json")));

    const ProgramRun check = onPlant({text("check")});
    QCOMPARE(check.errors, QString());
    QCOMPARE(check.output, plant() + text(": no problems\n"));
    QCOMPARE(check.exitCode, 0);

    QVERIFY(writeFile(plant(), withItem(contents(plant()))));
    const ProgramRun read = onPlant({text("read"), text("--format"), text("csv")});
    QCOMPARE(read.errors, QString());
    QCOMPARE(withoutTimes(read.output),
             text("cycle,time,device,item,value,old,error,expected,suspect\r\n"
                  "1,T,127.0.0.1:%1,Counter,11,,,,\r\n"
                  "1,T,127.0.0.2:%2,Counter,22,,,,\r\n")
                 .arg(first.port())
                 .arg(second.port()));
    QCOMPARE(read.exitCode, 0);
}

void tst_DiscoverPlant::answeredByUdpAlone()
{
    const UdpPeer peer({"55\r\n"});
    const QString port = QString::number(peer.port());
    const ProgramRun run = runBesideLoop(
        text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, port, m_nobody.tcp(),
                                            shortSearch() + QStringList{text("--plant"), plant()}));
    QCOMPARE(run.errors.section(u'\n', 1),
             text("velhost: 127.0.0.1:%1 answered by UDP alone; the plug-in reads over TCP\n")
                 .arg(port));
    QCOMPARE(run.exitCode, 0);
    QVERIFY(contents(plant()).contains("\"port\":\"" + port.toLatin1() + '"'));
    QCOMPARE(onPlant({text("check")}).exitCode, 0);
}

void tst_DiscoverPlant::nothingFound()
{
    const ProgramRun run = discover(m_nobody.tcp(), {});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList());
}

void tst_DiscoverPlant::isThereAlready()
{
    const SimulatorThread controller;
    QVERIFY(controller.isListening());
    QVERIFY(writeFile(plant(), "mine"));
    const ProgramRun run = discover(QString::number(controller.port()), {});
    QCOMPARE(run.errors,
             text("velhost: %1: is already there; add --force to replace it\n").arg(plant()));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(contents(plant()), QByteArray("mine"));
    QCOMPARE(static_cast<int>(controller.counters().clients), 0);
}

void tst_DiscoverPlant::replaces()
{
    const SimulatorThread controller;
    QVERIFY(controller.isListening());
    QVERIFY(writeFile(plant(), "mine"));
    const ProgramRun run = discover(QString::number(controller.port()), {text("--force")});
    QCOMPARE(run.exitCode, 0);
    QVERIFY(contents(plant()).startsWith("{\n  \"networkInterfaces\": []"));
    QCOMPARE(onPlant({text("check")}).exitCode, 0);
}

void tst_DiscoverPlant::triedBeforeTheSearch()
{
    const SimulatorThread controller;
    QVERIFY(controller.isListening());
    const QString file = m_folder->filePath(text("none/plant.json"));
    const ProgramRun run = runBesideLoop(
        text(VELHOST_FILE),
        searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(), QString::number(controller.port()),
                        shortSearch() + QStringList{text("--plant"), file}));
    QCOMPARE(run.errors,
             text("velhost: %1: cannot be written: No such file or directory\n").arg(file));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(static_cast<int>(controller.counters().clients), 0);
}

// The folder goes during the search. The controllers are printed even so.
void tst_DiscoverPlant::cannotBeWritten()
{
    QVERIFY(QDir(m_folder->path()).mkdir(text("gone")));
    const QString file = m_folder->filePath(text("gone/plant.json"));
    QTcpServer controller;
    QVERIFY(controller.listen(QHostAddress(QHostAddress::LocalHost)));
    connect(&controller, &QTcpServer::newConnection, this, [&] {
        QVERIFY(QDir(m_folder->path()).rmdir(text("gone")));
        controller.nextPendingConnection()->write("55\r\n");
    });
    const QString port = QString::number(controller.serverPort());
    const ProgramRun run = runBesideLoop(
        text(VELHOST_FILE), searchArguments(KEYENCE_PLUGIN_FILE, m_nobody.udp(), port,
                                            shortSearch() + QStringList{text("--plant"), file}));
    QCOMPARE(run.errors.section(u'\n', 1),
             text("velhost: %1: cannot be written: No such file or directory\n").arg(file));
    QVERIFY(run.output.contains(port));
    QCOMPARE(run.exitCode, 1);
}

// What was there before is not lost. No file can grow; writing tells so, as on a full disk.
void tst_DiscoverPlant::diskIsFull()
{
    const SimulatorThread controller;
    QVERIFY(controller.isListening());
    QVERIFY(writeFile(plant(), "mine"));
    const ProgramRun run = runBesideLoop(
        text("/bin/sh"),
        QStringList{text("-c"), text(R"(trap '' XFSZ; ulimit -f 0; exec "$0" "$@")"),
                    text(VELHOST_FILE)}
            + searchArguments(
                KEYENCE_PLUGIN_FILE, m_nobody.udp(), QString::number(controller.port()),
                shortSearch() + QStringList{text("--plant"), plant(), text("--force")}));
    QCOMPARE(run.errors.section(u'\n', 1),
             text("velhost: %1: cannot be written: File too large\n").arg(plant()));
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(contents(plant()), QByteArray("mine"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList(text("plant.json")));
}

QTEST_GUILESS_MAIN(tst_DiscoverPlant)
#include "tst_discoverplant.moc"
