#include "faults/faulttable.h"
#include "fullqueue.h"
#include "programrun.h"
#include "scriptedpeer.h"
#include "simulatorthread.h"
#include "text.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <vector>

// The plug-in as a guest in a host's process: what it leaves there, and how it gets on with what
// the host does there.

namespace {

struct GuestRun
{
    ProgramRun program;
    QByteArray report;
};

// Lets the guest's host run in a mode, with devices at these ports.
GuestRun runHost(const char *mode, const QList<int> &ports,
                 QProcessEnvironment environment = plainEnvironment())
{
    const QTemporaryDir folder;
    const QString report = folder.filePath(text("report"));
    // Without caches the allocator tells exactly how much is in use.
    environment.insert(text("GLIBC_TUNABLES"),
                       text("glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0"));
    QStringList arguments{report, text(KEYENCE_PLUGIN_FILE), text(mode)};
    for (const int port : ports)
        arguments.append(QString::number(port));
    GuestRun run{runProgram(text(GUEST_HOST), arguments, folder.path(), environment), {}};
    QFile file(report);
    if (file.open(QIODevice::ReadOnly))
        run.report = file.readAll();
    return run;
}

// All lines but those that begin so.
QByteArrayList without(const QByteArrayList &lines, const QByteArray &beginning)
{
    QByteArrayList others;
    for (const QByteArray &line : lines) {
        if (!line.startsWith(beginning))
            others.append(line);
    }
    return others;
}

// What a host tells of its four items when the first of them fails so, and with it the connection.
QByteArray brokenOff(const QByteArray &failure)
{
    return "First '1' [RD D7\r ] socket read data error from <First> :" + failure
           + "\n"
             "Second '2' [RD D100\r ] socket write data error from <Second> :Bad file descriptor\n"
             "Bit '0' [RD D201\r ] socket write data error from <Bit> :Bad file descriptor\n"
             "Last '3' [RD D1000\r ] socket write data error from <Last> :Bad file descriptor\n";
}

} // namespace

class tst_Guest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesTheProcessAsItWas();
    void manyDescriptors();
    void reusedDescriptor();
    void locale_data();
    void locale();
    void interruptedWaits();
};

// Five lives with a device for each fault of the simulator, one without, and one that takes no
// connection.
void tst_Guest::leavesTheProcessAsItWas()
{
    std::vector<std::unique_ptr<SimulatorThread>> controllers;
    const FullQueue deaf;
    QList<int> ports{deaf.port()};
    for (const FaultEffect &effect : faultEffects()) {
        QByteArray fault = effect.fault;
        // It is there again in the next life.
        if (effect.then == Then::IsGone)
            fault = "restart=1";
        if (effect.arrives != nullptr)
            fault += "@DM100";
        controllers.push_back(std::make_unique<SimulatorThread>());
        QVERIFY(controllers.back()->isListening());
        QCOMPARE(controllers.back()->addFault(fault), QString());
        ports.append(controllers.back()->port());
    }
    SimulatorThread good;
    ports.append(good.port());

    const GuestRun run = runHost("lives", ports);
    QCOMPARE(run.program.errors, QString());
    QCOMPARE(run.program.output, QString());
    QCOMPARE(run.program.exitCode, 0);
    for (const auto &controller : controllers) {
        controller->settle();
        const FaultCount count = controller->faultCounts().constFirst();
        QVERIFY2(count.applied >= 5, count.text.constData());
    }

    QList<QByteArrayList> states;
    const QStringList parts = QString::fromUtf8(run.report).split(text("\n\n"));
    for (const QString &state : parts)
        states.append(state.trimmed().toUtf8().split('\n'));
    QCOMPARE(states.size(), 6);
    const QByteArray pipe = "signal " + QByteArray::number(SIGPIPE) + ": ";
    QVERIFY(states.constFirst().contains(pipe + "default"));
    const QByteArrayList before = without(states.takeFirst(), pipe);
    for (const QByteArrayList &after : qAsConst(states)) {
        QVERIFY(after.contains(pipe + "ignored"));
        QCOMPARE(without(without(after, pipe), "heap: "), before);
#ifdef HEAP_IS_EXACT
        QCOMPARE(after.constFirst(), states.constFirst().constFirst());
#endif
    }
    qInfo("%s", states.constFirst().constFirst().constData());
}

void tst_Guest::manyDescriptors()
{
    SimulatorThread good;
    SimulatorThread silent;
    QCOMPARE(silent.addFault("silent"), QString());
    const GuestRun run = runHost("descriptors", {good.port(), silent.port()});
    QCOMPARE(run.program.errors, QString());
    QCOMPARE(run.report, QByteArray("a socket above 2000\n"
                                    "a socket above 2000\n"
                                    "First '7' \nSecond '100' \nBit '1' \nLast '1000' \n")
                             + brokenOff("Timeout reading (20ms)") + "left open: 0\n");
    QCOMPARE(silent.faultCounts().constFirst().applied, quint64(1));
    QCOMPARE(good.takeCommands(),
             (QByteArrayList{"RD D7", "RD D100", "RD D201", "RD D1000", "WR D7 0007",
                             "WR D100 0100", "RD D201", "WR D201 201", "WR D1000 1000"}));
}

void tst_Guest::reusedDescriptor()
{
    SimulatorThread silent;
    QCOMPARE(silent.addFault("silent"), QString());
    const GuestRun run = runHost("reuse", {silent.port()});
    QCOMPARE(run.program.errors, QString());
    QCOMPARE(run.report, brokenOff("Timeout reading (20ms)")
                             + "the same number\n"
                               "the file is open\n"
                               "bytes: 0\n");
    // Of the two cycles behind it, too, only the first command has left.
    silent.settle();
    QCOMPARE(silent.takeCommands(), (QByteArrayList{"RD D7", "WR D7 0001", "RD D7"}));
}

void tst_Guest::locale_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("inForce");

    QTest::newRow("C") << text("C") << QByteArray("1.5 1.5 ANSI_X3.4-1968");
    QTest::newRow("decimal comma") << text("de_DE.UTF-8") << QByteArray("1,5 1,5 UTF-8");
    QTest::newRow("eight bits") << text("de_DE.ISO-8859-1") << QByteArray("1,5 1,5 ISO-8859-1");
}

// What the host's locale is, shows neither in the values nor in the bytes.
void tst_Guest::locale()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, inForce);
    const QByteArray written = "RD DM100\rWR DM100 108\rWR D1 -1234\rWRS D2 2 61072 65534\r"
                               "WR D4 65535\rWRS D5 2 10240 61035\rWR D7 0255\r"
                               "WRS D8 2 4660 43981\rWRS D10 2 20480 17562\r"
                               "WRS D12 4 0 0 0 49040\rWRS D20 3  25153 11820 32313\r";
    const QByteArray read = "RD DM100\rRD D1\rRDS D2 2\rRD D4\rRDS D5 2\rRD D7\rRDS D8 2\r"
                            "RDS D10 2\rRDS D12 4\rRDS D20 3\r";
    QByteArrayList answers{"00100\r\n"};
    for (int i = 0; i < 10; ++i)
        answers.append("OK\r\n");
    answers += {"00108\r\n",
                "64302\r\n",
                "61072 65534\r\n",
                "65535\r\n",
                "10240 61035\r\n",
                "00255\r\n",
                "04660 43981\r\n",
                "20480 17562\r\n",
                "00000 00000 00000 49040\r\n",
                "25153 11820 32313\r\n"};
    ScriptedPeer peer(script(answers));

    QProcessEnvironment environment = plainEnvironment();
    environment.insert(text("LC_ALL"), name);
    environment.insert(text("LOCPATH"), text(LOCALES_FOLDER));
    const GuestRun run = runHost("values", {peer.port()}, environment);
    QCOMPARE(run.program.errors, QString());
    QCOMPARE(run.report, inForce
                             + "\nBit '1' \nShort '-1234' \nLong '-70000' \nWord '65535' \n"
                               "DWord '4000000000' \nHex16 'FF' \nHex32 'ABCD1234' \n"
                               "Float '1234.5' \nDouble '-0.015625' \nText 'Ab,.9~' \n");
    QCOMPARE(peer.finish(), written + read);
}

void tst_Guest::interruptedWaits()
{
    const FullQueue deaf;
    SimulatorThread silent;
    QCOMPARE(silent.addFault("silent"), QString());
    const GuestRun run = runHost("interrupts", {deaf.port(), silent.port()});
    QCOMPARE(run.program.errors, QString());
    QCOMPARE(run.report, "Not connected to PLC\n"
                             + brokenOff("Error reading: Interrupted system call (-1)")
                             + "interrupted\n"
                               "in time\n");
}

QTEST_GUILESS_MAIN(tst_Guest)
#include "tst_guest.moc"
