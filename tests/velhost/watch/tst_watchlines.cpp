#include "plantjson.h"
#include "plantrun.h"
#include "simulatorthread.h"
#include "text.h"
#include "writefile.h"

#include <QHostAddress>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

// The lines that `watch` prints for changes.
class tst_WatchLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void longValue();
    void freshAgain();
};

// A text of 20 characters is wider than its column. It never touches what follows.
void tst_WatchLines::longValue()
{
    SimulatorThread controller;
    for (int word = 1; word <= 10; ++word)
        QVERIFY(controller.setWord("DM" + QByteArray::number(word), 0x4142));
    const ProgramRun result = runWithPlant(
        text(VELHOST_FILE),
        {text("watch"), text("plant.json"), text("--plugin"), text(KEYENCE_PLUGIN_FILE),
         text("--for"), text("1"), text("--interval"), text("1000")},
        plantJson("127.0.0.1", portParameter(controller.port()),
                  {itemJson("Name", "DM1-10", "1", "ASCII", R"(, "expect": "other")")}));
    QCOMPARE(withoutTimes(result.output).section(u'\n', 1),
             text("T  Press   Name  BABABABABABABABABABA  expected \"other\"\n"));
    QCOMPARE(result.exitCode, 1);
}

// The controller goes and comes back with the same value.
void tst_WatchLines::freshAgain()
{
    auto controller = std::make_unique<SimulatorThread>();
    const int port = controller->port();
    QVERIFY(controller->setWord("DM1", 7));
    QTemporaryDir folder;
    const QString plant = folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant,
                      plantJson("127.0.0.1", portParameter(port), {itemJson("Counter", "DM1")})));
    QProcess process;
    process.setProcessEnvironment(plainEnvironment());
    process.start(text(VELHOST_FILE),
                  {text("watch"), plant, text("--plugin"), text(KEYENCE_PLUGIN_FILE),
                   text("--interval"), text("20"), text("--only-changes")});
    QString output;
    const auto waitForLine = [&process, &output](const char *line) {
        while (!output.endsWith(text(line)) && process.waitForReadyRead(10000))
            output += QString::fromUtf8(process.readAllStandardOutput());
        return output.endsWith(text(line));
    };
    QVERIFY2(waitForLine("Press   Counter  7\n"), qPrintable(output));
    controller.reset();
    QVERIFY2(waitForLine("Press   Counter  7 (old)\n"), qPrintable(output));
    QVERIFY(output.contains(text("Not connected to PLC\n")));
    controller = std::make_unique<SimulatorThread>(QHostAddress(QHostAddress::LocalHost),
                                                   static_cast<quint16>(port));
    QVERIFY(controller->isListening());
    QVERIFY(controller->setWord("DM1", 7));
    QVERIFY2(waitForLine("Press   Counter  7\n"), qPrintable(output));
    QVERIFY(output.contains(text("no error any more\n")));
    process.terminate();
    QVERIFY(process.waitForFinished(10000));
}

QTEST_GUILESS_MAIN(tst_WatchLines)
#include "tst_watchlines.moc"
