#include "plantjson.h"
#include "plantrun.h"
#include "terminalrun.h"
#include "text.h"

#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// `plan` on a terminal shows its progress, unless it is ready at once.

namespace {

/// A plant with so many texts. Their answers are long, so that each takes its time on every
/// machine.
QByteArray plantWith(int items)
{
    QList<QByteArray> texts;
    for (int i = 0; i < items; ++i)
        texts.append(itemJson(QByteArray::number(i), "DM0-10000", "1", "ASCII"));
    return plantJson("10.0.0.1", "", texts);
}

QStringList planOf(const QString &plant)
{
    return {text("plan"), plant, text("--plugin"), text(KEYENCE_PLUGIN_FILE)};
}

} // namespace

class tst_PlanProgress : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;

private Q_SLOTS:
    void terminal();
    void ended_data();
    void ended();
    void readyAtOnce();
    void pipe();
};

void tst_PlanProgress::terminal()
{
    const QString plant = m_folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant, plantWith(5'000)));
    TerminalRun plan(text(VELHOST_FILE), planOf(plant), 25, 80, plainEnvironment());
    QVERIFY2(plan.waitFor("\rplanned "), plan.output().constData());
    QVERIFY2(plan.waitFor(" of 5000 items\x1b[K\rplanned "), plan.output().constData());
}

void tst_PlanProgress::ended_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("Ctrl+C") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGQUIT") << SIGQUIT;
}

// The line is removed, and nothing of the program follows; an emulator tells of some signals there.
void tst_PlanProgress::ended()
{
    QFETCH(int, signal);

    const QString plant = m_folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant, plantWith(5'000)));
    TerminalRun plan(text(VELHOST_FILE), planOf(plant), 25, 80, plainEnvironment());
    QVERIFY2(plan.waitFor("\rplanned "), plan.output().constData());
    plan.sendSignal(signal);
    QCOMPARE(plan.finish(), -signal);
    const QByteArray removed = " of 5000 items\x1b[K\r\x1b[K";
    const int end = plan.output().lastIndexOf(removed);
    QVERIFY2(end > 0, plan.output().constData());
    const QByteArray rest = plan.output().mid(end + removed.size());
    QVERIFY2(rest.isEmpty() || rest.startsWith("qemu: "), plan.output().constData());
}

// The first item is the last one.
void tst_PlanProgress::readyAtOnce()
{
    const QString plant = m_folder.filePath(text("plant.json"));
    QVERIFY(writeFile(plant, plantWith(1)));
    TerminalRun plan(text(VELHOST_FILE), planOf(plant), 25, 80, plainEnvironment());
    QCOMPARE(plan.finish(), 0);
    QCOMPARE(plan.output(),
             QByteArray("Device  Item  Operation  Words  Command          Error\r\n"
                        "Press   0     read       10001  RDS DM0 10001\\r\r\n"
                        "\r\n"
                        "Device  Exchanges a cycle  Best ms  Worst ms  Connect ms  Error\r\n"
                        "Press   1                  1        2000      2000\r\n"));
}

void tst_PlanProgress::pipe()
{
    const ProgramRun run
        = runWithPlant(text(VELHOST_FILE), planOf(text("plant.json")), plantWith(200));
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.output.count(text("RDS DM0")), 200);
    QCOMPARE(run.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_PlanProgress)
#include "tst_planprogress.moc"
