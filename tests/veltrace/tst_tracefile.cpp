#include "simulatorthread.h"
#include "tracedrun.h"
#include "writefile.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// Whatever becomes of the trace: the host does not notice.
class tst_TraceFile : public QObject
{
    Q_OBJECT

    ProgramRun runTraced(const QStringList &actions, QMap<QString, QString> settings) const;
    void compareToPlain(const ProgramRun &traced, const QStringList &actions) const;

    SimulatorThread m_simulator;

private Q_SLOTS:
    void initTestCase();
    void fullDisk();
    void limitedFile();
    void unreadPipe();
    void closedPipe();
    void sizeLimit_data();
    void sizeLimit();
    void relativeName();
    void laterRun();
    void allDescriptorsClosed();
    void replacedDescriptor();
    void fork();
    void threads();
    void signalHandler();
    void brokenSettings_data();
    void brokenSettings();
};

namespace {

QString fileIn(const QTemporaryDir &folder)
{
    return folder.filePath(text("trace"));
}

QStringList manyExchanges(int count)
{
    QStringList actions{text("connect")};
    for (int i = 0; i < count; ++i)
        actions += {text("send=RD D7\r"), text("all=7")};
    return actions + QStringList{text("close")};
}

// What can be read at once.
QByteArray available(int descriptor)
{
    std::array<char, 100000> buffer{};
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    return {buffer.data(), static_cast<int>(std::max(count, ssize_t(0)))};
}

// The events of each connection, one after the other, by process and number; nothing when a line is
// no object.
QMap<QString, QStringList> eventsOf(const QByteArray &trace)
{
    QMap<QString, QStringList> events;
    QByteArrayList lines = trace.split('\n');
    lines.removeLast();
    for (const QByteArray &line : qAsConst(lines)) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (object.isEmpty())
            return {};
        const int process = object.value(text("process")).toInt();
        const int connection = object.value(text("connection")).toInt();
        events[QStringLiteral("%1/%2").arg(process).arg(connection)].append(
            object.value(text("event")).toString());
    }
    return events;
}

} // namespace

void tst_TraceFile::initTestCase()
{
    QVERIFY2(m_simulator.isListening(), qPrintable(m_simulator.errorString()));
}

ProgramRun tst_TraceFile::runTraced(const QStringList &actions,
                                    QMap<QString, QString> settings) const
{
    settings.insert(text("VEL_TRACE_PORTS"), QString::number(m_simulator.port()));
    return runClient(m_simulator.port(), actions, tracedEnvironment(settings));
}

void tst_TraceFile::compareToPlain(const ProgramRun &traced, const QStringList &actions) const
{
    const ProgramRun plain = runClient(m_simulator.port(), actions, plainEnvironment());
    QCOMPARE(plain.exitCode, 0);
    QCOMPARE(traced.exitCode, 0);
    QCOMPARE(traced.output, plain.output);
    QCOMPARE(traced.errors, plain.errors);
}

void tst_TraceFile::fullDisk()
{
    const QStringList actions = manyExchanges(3);
    compareToPlain(runTraced(actions, {{text("VEL_TRACE"), text("/dev/full")}}), actions);
}

// The limit that the host has for its files ends a process by a signal. It is the host's own again
// behind the trace.
void tst_TraceFile::limitedFile()
{
    const QTemporaryDir folder;
    const QStringList actions = QStringList{text("limit=1000")} + manyExchanges(20);
    compareToPlain(runTraced(actions, {{text("VEL_TRACE"), fileIn(folder)}}), actions);
    const QByteArray trace = contentOf(fileIn(folder));
    QCOMPARE(trace.size(), 1000);
    QVERIFY(trace.startsWith("{\"time\":"));
}

// The host does not wait for a reader. What has been written is whole lines.
void tst_TraceFile::unreadPipe()
{
    const QTemporaryDir folder;
    const QByteArray pipe = QFile::encodeName(fileIn(folder));
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    const QStringList actions{text("exchanges=1000")};
    compareToPlain(runTraced(actions, {{text("VEL_TRACE"), fileIn(folder)}}), actions);
    const QByteArray trace = available(reader);
    QVERIFY(trace.size() > 4096 && trace.size() <= 65536);
    QVERIFY(trace.endsWith("}\n"));
    QCOMPARE(eventsOf(trace).size(), 1);
    ::close(reader);
}

void tst_TraceFile::closedPipe()
{
    const QTemporaryDir folder;
    const QByteArray pipe = QFile::encodeName(fileIn(folder));
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    QProcess client;
    client.setProcessEnvironment(tracedEnvironment(tracing(fileIn(folder), m_simulator.port())));
    client.start(text(TRACE_CLIENT),
                 QStringList{QString::number(m_simulator.port()), text("connect"), text("pause")}
                     + manyExchanges(3));
    while (!client.canReadLine())
        QVERIFY(client.waitForReadyRead(10000));
    QVERIFY(available(reader).contains(R"("event":"connect")"));
    ::close(reader);
    client.write("\n");
    QVERIFY(client.waitForFinished(10000));
    QCOMPARE(client.exitStatus(), QProcess::NormalExit);
    QCOMPARE(client.readAllStandardError(), QByteArray());
    QVERIFY(client.readAllStandardOutput().endsWith("close: 0 errno 4242 []\n"));
}

void tst_TraceFile::sizeLimit_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("hasTwoFiles");

    QTest::newRow("many lines a file") << 2000 << true;
    QTest::newRow("one line a file") << 1 << true;
    QTest::newRow("more than there is") << 1000000 << false;
}

void tst_TraceFile::sizeLimit()
{
    QFETCH(const int, size);
    QFETCH(const bool, hasTwoFiles);
    const QTemporaryDir folder;
    const ProgramRun run
        = runTraced(manyExchanges(50), {{text("VEL_TRACE"), fileIn(folder)},
                                        {text("VEL_TRACE_SIZE"), QString::number(size)}});
    QCOMPARE(run.exitCode, 0);
    const QByteArray newest = contentOf(fileIn(folder));
    const QByteArray before = contentOf(fileIn(folder) + text(".1"));
    QCOMPARE(before.isEmpty(), !hasTwoFiles);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), hasTwoFiles ? 2 : 1);
    QVERIFY(newest.endsWith("\"event\":\"close\"}\n"));
    for (const QByteArray &trace : {newest, before}) {
        QVERIFY(trace.size() <= size || trace.count('\n') == 1);
        QVERIFY(trace.isEmpty() || eventsOf(trace).size() == 1);
    }
    // Nothing is missing between the two.
    const QStringList all = eventsOf(before + newest).values().value(0);
    if (size > 1)
        QCOMPARE(all.count(text("sent")) - all.count(text("received")),
                 all.first() == text("received") ? -1 : 0);
    if (!hasTwoFiles)
        QCOMPARE(all.size(), 102);
}

// The second file is made after the host has changed to another folder.
void tst_TraceFile::relativeName()
{
    const QTemporaryDir folder;
    QMap<QString, QString> settings = tracing(text("trace"), m_simulator.port());
    settings.insert(text("VEL_TRACE_SIZE"), text("400"));
    const ProgramRun run = runProgram(
        text(TRACE_CLIENT),
        QStringList{QString::number(m_simulator.port()), text("folder=/")} + manyExchanges(2),
        folder.path(), tracedEnvironment(settings));
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.startsWith(u"folder=/: 0 "));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files),
             (QStringList{text("trace"), text("trace.1")}));
}

void tst_TraceFile::laterRun()
{
    const QTemporaryDir folder;
    for (int i = 0; i < 2; ++i)
        QCOMPARE(runTraced(manyExchanges(1), {{text("VEL_TRACE"), fileIn(folder)}}).exitCode, 0);
    QCOMPARE(contentOf(fileIn(folder)).count('\n'), 8);
    QCOMPARE(eventsOf(contentOf(fileIn(folder))).size(), 2);
}

// The numbers of the trace's own file become another file's, which gets nothing of the trace.
void tst_TraceFile::allDescriptorsClosed()
{
    const QTemporaryDir folder;
    const QString other = folder.filePath(text("other"));
    QVERIFY(writeFile(other, {}));
    const QStringList actions = QStringList{text("closeall=") + other} + manyExchanges(2);
    compareToPlain(runTraced(actions, {{text("VEL_TRACE"), fileIn(folder)}}), actions);
    QCOMPARE(contentOf(other), QByteArray());
    QCOMPARE(contentOf(fileIn(folder)).count('\n'), 6);
}

// A file that has got the number of a connection is not traced, and the next connection is.
void tst_TraceFile::replacedDescriptor()
{
    const QTemporaryDir folder;
    const QString other = folder.filePath(text("other"));
    QVERIFY(writeFile(other, {}));
    const QStringList actions
        = QStringList{text("connect"), text("replace=") + other} + manyExchanges(1);
    compareToPlain(runTraced(actions, {{text("VEL_TRACE"), fileIn(folder)}}), actions);
    QCOMPARE(contentOf(other), QByteArray("secret"));
    QVERIFY(!contentOf(fileIn(folder)).contains("secret"));
    const QMap<QString, QStringList> events = eventsOf(contentOf(fileIn(folder)));
    QCOMPARE(events.size(), 2);
    QCOMPARE(events.first(), QStringList{text("connect")});
    QCOMPARE(events.last(),
             (QStringList{text("connect"), text("sent"), text("received"), text("close")}));
}

// A child's connections are its own. What it does with an inherited one is not written.
void tst_TraceFile::fork()
{
    const QTemporaryDir folder;
    const QStringList actions{text("connect"), text("fork=2"), text("send=RD D7\r"), text("all=7"),
                              text("close")};
    compareToPlain(runTraced(actions, {{text("VEL_TRACE"), fileIn(folder)}}), actions);
    QList<QStringList> events = eventsOf(contentOf(fileIn(folder))).values();
    std::sort(events.begin(), events.end(), [](const QStringList &one, const QStringList &two) {
        return one.size() < two.size();
    });
    QCOMPARE(events,
             (QList<QStringList>{{text("connect"), text("sent"), text("received"), text("close")},
                                 {text("connect"), text("sent"), text("received"), text("sent"),
                                  text("received"), text("close")}}));
}

void tst_TraceFile::threads()
{
    const QTemporaryDir folder;
    const QStringList actions{text("threads=200")};
    compareToPlain(runTraced(actions, {{text("VEL_TRACE"), fileIn(folder)}}), actions);
    const QMap<QString, QStringList> events = eventsOf(contentOf(fileIn(folder)));
    // Four threads and ten children.
    QCOMPARE(events.size(), 14);
    for (const QStringList &ofOne : events) {
        QVERIFY(ofOne.size() == 402 || ofOne.size() == 4);
        QCOMPARE(ofOne.first(), text("connect"));
        QCOMPARE(ofOne.last(), text("close"));
        for (int i = 1; i < ofOne.size() - 1; ++i)
            QCOMPARE(ofOne.at(i), text(i % 2 == 1 ? "sent" : "received"));
    }
}

// The handler may interrupt the library itself.
void tst_TraceFile::signalHandler()
{
    const QTemporaryDir folder;
    const QStringList actions{text("connect"), text("alarms=200")};
    compareToPlain(runTraced(actions, {{text("VEL_TRACE"), fileIn(folder)}}), actions);
    const QMap<QString, QStringList> events = eventsOf(contentOf(fileIn(folder)));
    QCOMPARE(events.size(), 2);
    QVERIFY(events.first().count(text("received")) >= 200);
    QVERIFY(events.last().count(text("sent")) > 0);
}

void tst_TraceFile::brokenSettings_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("problem");

    const QString ports = text("VEL_TRACE_PORTS");
    const QString size = text("VEL_TRACE_SIZE");
    const QString file = text("VEL_TRACE");
    const QString wrongPorts = text("VEL_TRACE_PORTS is no list of ports such as 8501,8502: ");
    for (const char *const value :
         {"", "0", "65536", "8501,", ",8501", "8501 8502", "8501-8510", "x"})
        QTest::addRow("ports \"%s\"", value) << ports << text(value) << wrongPorts + text(value);
    const QString wrongSize = text("VEL_TRACE_SIZE is no number of bytes from 1 to 1000000000: ");
    for (const char *const value :
         {"", "0", "-1", "1000000001", "99999999999999999999", "10M", " 1"})
        QTest::addRow("size \"%s\"", value) << size << text(value) << wrongSize + text(value);
    QTest::newRow("no file") << file << QString() << text("VEL_TRACE names no file: ");
    QTest::newRow("no folder") << file << text("/nowhere/trace")
                               << text("No such file or directory: /nowhere/trace");
    QTest::newRow("a folder") << file << text("/") << text("Is a directory: /");
    const QString longName(5000, u'x');
    QTest::newRow("a long name") << file << longName
                                 << text("File name too long: ") + longName.left(4096);
}

// One line when the host starts, and then nothing.
void tst_TraceFile::brokenSettings()
{
    QFETCH(const QString, name);
    QFETCH(const QString, value);
    QFETCH(const QString, problem);
    const QTemporaryDir folder;
    QMap<QString, QString> settings = tracing(fileIn(folder), m_simulator.port());
    settings.insert(name, value);
    const QStringList actions = manyExchanges(1);
    ProgramRun run = runClient(m_simulator.port(), actions, tracedEnvironment(settings));
    QCOMPARE(run.errors, text("libvel-trace: nothing is traced: ") + problem + text("\n"));
    run.errors.clear();
    compareToPlain(run, actions);
    QCOMPARE(contentOf(fileIn(folder)), QByteArray());
}

QTEST_GUILESS_MAIN(tst_TraceFile)
#include "tst_tracefile.moc"
