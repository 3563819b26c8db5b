#include "kvsimprocess.h"
#include "testfolder.h"
#include "text.h"
#include "textclient.h"

#include <QDir>
#include <QTest>

// The built program while its disk is full.
class tst_FullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void output_data();
    void output();
    void traceIsCutOff();
    void memoryStays_data();
    void memoryStays();
};

namespace {

constexpr int timeout = KvsimProcess::timeout;

/// No file can grow; writing tells so, as on a full disk.
const QString noRoom = text("trap '' XFSZ; ulimit -f 0");

} // namespace

void tst_FullDisk::output_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("listening") << QStringList{text("--port"), text("0")};
    QTest::newRow("--help") << QStringList{text("--help")};
    QTest::newRow("--version") << QStringList{text("--version")};
    QTest::newRow("ctl --help") << QStringList{text("ctl"), text("--help")};
    QTest::newRow("ctl get") << QStringList{text("ctl"), text("--port"), text("%1"), text("get"),
                                            text("DM7")};
    QTest::newRow("ctl counters") << QStringList{text("ctl"), text("--port"), text("%1"),
                                                 text("counters")};
}

void tst_FullDisk::output()
{
    QFETCH(QStringList, arguments);

    KvsimProcess served({text("--port"), text("0"), text("--control"), text("0")}, 2);
    arguments.replaceInStrings(text("%1"), QString::number(served.port(1)));
    QProcess process;
    process.setStandardOutputFile(text("/dev/full"));
    process.start(text(KVSIM_PROGRAM), arguments);
    QVERIFY(process.waitForFinished(timeout));
    QCOMPARE(process.readAllStandardError(),
             QByteArray("kvsim: cannot write to standard output: No space left on device\n"));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(served.terminate());
}

// The clients are served even so. The exit code tells it, as nothing else can.
void tst_FullDisk::traceIsCutOff()
{
    KvsimProcess simulator({text("--port"), text("0"), text("--trace")}, 1,
                           text("exec 2>/dev/full"));
    TextClient client(simulator.port());
    for (int i = 0; i < 100; ++i)
        QCOMPARE(client.ask("RD DM7\r"), QByteArray("00007\r\n"));
    simulator.process()->terminate();
    QVERIFY(simulator.process()->waitForFinished(timeout));
    QCOMPARE(simulator.process()->exitStatus(), QProcess::NormalExit);
    QCOMPARE(simulator.process()->exitCode(), 1);
}

void tst_FullDisk::memoryStays_data()
{
    QTest::addColumn<int>("words");

    // Qt holds 16 KiB back until the file is closed.
    QTest::newRow("less than a buffer") << 1;
    QTest::newRow("more than a buffer") << 10000;
}

// What the file held before is not lost.
void tst_FullDisk::memoryStays()
{
    QFETCH(int, words);

    const TestFolder folder;
    const QString file = folder.write(text("memory.json"), "before");
    KvsimProcess simulator(
        {text("--port"), text("0"), text("--control"), text("0"), text("--dump"), file}, 2, noRoom);
    TextClient client(simulator.port());
    for (int i = 0; i < words; ++i)
        QCOMPARE(client.ask("WR DM" + QByteArray::number(i) + " 65000\r"), QByteArray("OK\r\n"));
    const QByteArray error = file.toUtf8() + ": cannot be written: File too large\n";
    QCOMPARE(TextClient(simulator.port(1)).ask("dump\n"), "error " + error);
    simulator.process()->terminate();
    QVERIFY(simulator.process()->waitForFinished(timeout));
    QCOMPARE(simulator.process()->exitCode(), 1);
    QVERIFY(simulator.errors().endsWith("\nkvsim: " + error));
    QCOMPARE(folder.read(text("memory.json")), QByteArray("before"));
    QCOMPARE(QDir(folder.path({})).entryList(QDir::Files), QStringList(text("memory.json")));
}

QTEST_GUILESS_MAIN(tst_FullDisk)
#include "tst_fulldisk.moc"
