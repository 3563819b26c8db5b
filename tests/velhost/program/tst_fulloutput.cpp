#include "plantjson.h"
#include "searchrun.h"
#include "simulatorthread.h"
#include "writefile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// Every command while the disk under its output is full: it tells so, and its exit code does.
class tst_FullOutput : public QObject
{
    Q_OBJECT

    bool writePlant(int port) const;
    ProgramRun runOnFullDisk(const QStringList &arguments) const;

    QTemporaryDir m_folder;
    SilentPort m_nobody;

private Q_SLOTS:
    void initTestCase();
    void tells_data();
    void tells();
    void endsEarly_data();
    void endsEarly();
    void writesEvenSo();
    void discover_data();
    void discover();
};

namespace {

const QString message = text("velhost: standard output could not be written\n");

} // namespace

void tst_FullOutput::initTestCase()
{
    QVERIFY(m_folder.isValid());
}

bool tst_FullOutput::writePlant(int port) const
{
    return writeFile(m_folder.filePath(text("plant.json")),
                     plantJson("127.0.0.1", portParameter(port), {itemJson("Counter", "DM201")}));
}

ProgramRun tst_FullOutput::runOnFullDisk(const QStringList &arguments) const
{
    return runProgram(
        text("/bin/sh"),
        QStringList{text("-c"), text(R"(exec "$0" "$@" >/dev/full)"), text(VELHOST_FILE)}
            + arguments,
        m_folder.path());
}

void tst_FullOutput::tells_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("exitCode");

    for (const char *command :
         {"help", "help read", "--help", "--version", "columns --format json", "read plant.json",
          "read plant.json --format json", "read plant.json --format csv",
          "read plant.json --only-changes", "watch plant.json --format json",
          "watch plant.json --format csv", "write plant.json Press/Counter=5 --format json",
          "plan plant.json", "plan plant.json --format json", "check plant.json", "explain E1",
          "explain E1 --format json"})
        QTest::newRow(command) << text(command) << 1;
    QTest::newRow("problems of a plant") << text("check wrong.json --format json") << 2;
}

void tst_FullOutput::tells()
{
    QFETCH(QString, command);
    QFETCH(int, exitCode);

    const SimulatorThread controller;
    QVERIFY(writePlant(controller.port()));
    QVERIFY(writeFile(m_folder.filePath(text("wrong.json")), "{}"));
    QStringList arguments = command.split(u' ');
    if (command.contains(u".json") || arguments.constFirst() == u"columns")
        arguments += {text("--plugin"), text(KEYENCE_PLUGIN_FILE)};
    const ProgramRun run = runOnFullDisk(arguments);
    QVERIFY2(run.errors.endsWith(message), qPrintable(run.errors));
    QCOMPARE(run.errors.count(message), 1);
    QCOMPARE(run.exitCode, exitCode);
}

void tst_FullOutput::endsEarly_data()
{
    QTest::addColumn<QString>("format");

    for (const char *format : {"table", "json", "csv"})
        QTest::newRow(format) << text(format);
}

// Nobody would see what is read in a billion cycles.
void tst_FullOutput::endsEarly()
{
    QFETCH(QString, format);

    const SimulatorThread controller;
    QVERIFY(writePlant(controller.port()));
    const ProgramRun run
        = runOnFullDisk({text("read"), text("plant.json"), text("--plugin"),
                         text(KEYENCE_PLUGIN_FILE), text("--cycles"), text("1000000000"),
                         text("--interval"), text("0"), text("--format"), format});
    QCOMPARE(run.errors, message);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(static_cast<int>(controller.counters().commands), 1);
}

void tst_FullOutput::writesEvenSo()
{
    const SimulatorThread controller;
    QVERIFY(writePlant(controller.port()));
    const ProgramRun run
        = runOnFullDisk({text("write"), text("plant.json"), text("Press/Counter=55"),
                         text("--plugin"), text(KEYENCE_PLUGIN_FILE)});
    QCOMPARE(run.errors, message);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(controller.word("DM201"), 55);
}

void tst_FullOutput::discover_data()
{
    QTest::addColumn<QString>("format");

    for (const char *format : {"table", "json"})
        QTest::newRow(format) << text(format);
}

// The controllers that it found are in the plant file, though not in its output.
void tst_FullOutput::discover()
{
    QFETCH(QString, format);

    const SimulatorThread controller;
    const QString found = m_folder.filePath(format + text(".json"));
    const ProgramRun run = runOnFullDisk(searchArguments(
        KEYENCE_PLUGIN_FILE, m_nobody.udp(), QString::number(controller.port()),
        shortSearch() + QStringList{text("--format"), format, text("--plant"), found}));
    QVERIFY2(run.errors.endsWith(message), qPrintable(run.errors));
    QCOMPARE(run.exitCode, 1);
    QFile file(found);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("\"port\":\"" + QByteArray::number(controller.port()) + '"'));
}

QTEST_GUILESS_MAIN(tst_FullOutput)
#include "tst_fulloutput.moc"
