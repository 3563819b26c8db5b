#include <controller/controller.h>
#include <controller/linebuffer.h>

#include <QSet>
#include <QTest>

// What the faults decide, without a socket and without a clock.
class tst_FaultEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void actions_data();
    void actions();
    void onlyTheLateAnswerIsDetached();
    void memoryAfterWrite_data();
    void memoryAfterWrite();
    void selection_data();
    void selection();
    void jitter();
    void garbage();
    void sameSeedSameOutcome();
    void firstThatStrikesIsApplied();
    void welcome_data();
    void welcome();
};

namespace {

// "send 20 00100\r\n; close": the kind, the milliseconds when there are any, the bytes.
QByteArray actionsText(const Reply &reply)
{
    QList<QByteArray> texts;
    for (const Action &action : reply.actions) {
        const QByteArray time = QByteArray::number(action.milliseconds);
        switch (action.kind) {
        case Action::Kind::Send:
            texts.append("send " + time + ' ' + action.bytes);
            break;
        case Action::Kind::Close:
            texts.append("close " + time);
            break;
        case Action::Kind::Reset:
            texts.append("reset " + time);
            break;
        case Action::Kind::Restart:
            texts.append("restart " + time);
            break;
        }
    }
    return texts.join("; ");
}

// An engine with a controller's memory.
class Engine
{
public:
    explicit Engine(const QList<QByteArray> &faults)
    {
        for (const QByteArray &fault : faults)
            m_errors += m_controller.faults.add(fault);
    }

    QString errors() const { return m_errors; }

    Reply reply(const QByteArray &line, const QByteArray &previous = {})
    {
        return m_controller.faults.reply({line}, previous, m_controller.profile,
                                         &m_controller.memory);
    }

    const Controller &controller() const { return m_controller; }
    FaultCount count(int fault = 0) const { return m_controller.faults.counts().value(fault); }

private:
    Controller m_controller;
    QString m_errors;
};

// Which of the commands 1 to 12 the fault strikes: "1" struck, "0" not.
QByteArray pattern(const QByteArray &fault)
{
    Engine engine({fault});
    QByteArray struck;
    for (int i = 0; i < 12; ++i)
        struck += engine.reply("RD DM100").fault.isEmpty() ? '0' : '1';
    return struck;
}

} // namespace

void tst_FaultEngine::actions_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("actions");

    const auto row
        = [](const char *fault, const QByteArray &actions, const char *command = "RD DM100") {
              QTest::addRow("%s, %s", fault, command)
                  << QByteArray(fault) << QByteArray(command) << actions;
          };
    row("delay=250", "send 250 00100\r\n");
    row("delay=0", "send 0 00100\r\n");
    row("silent", "");
    row("late=250", "send 250 00100\r\n");
    row("refuse=E0", "send 0 E0\r\n");
    row("refuse=E6", "send 0 E6\r\n");
    row("split=1,20", "send 0 0; send 20 0100\r\n");
    row("split=6,20", "send 0 00100\r; send 20 \n");
    row("split=7,20", "send 0 00100\r; send 20 \n");
    row("dribble", "send 0 1; send 0 \r; send 0 \n", "RD R500");
    row("dribble=5", "send 0 1; send 5 \r; send 5 \n", "RD R500");
    row("no-terminator", "send 0 00100");
    row("empty", "send 0 \r\n");
    row("nul", QByteArray("send 0 00\00000\r\n", 14));
    row("nul", QByteArray("send 0 \0\r\n", 10), "RD R500");
    row("long=3", "send 0 0\r\n");
    row("long=15", "send 0 00100 00100 0\r\n");
    row("short-answer", "send 0 00100\r\n", "RDS DM100 2");
    row("short-answer", "send 0 \r\n");
    row("extra-word", "send 0 00100 65535\r\n");
    row("not-a-number", "send 0 ***** *****\r\n", "RDS DM100 2");
    row("not-a-number", "send 0 **\r\n", "WR DM100 1");
    row("duplicate", "send 0 00100\r\n00100\r\n");
    row("previous-answer", "send 0 00099\r\n");
    row("close=before", "close 0");
    row("close=in", "send 0 001; close 0");
    row("close=after", "send 0 00100\r\n; close 0");
    row("reset=before", "reset 0");
    row("reset=in", "send 0 001; reset 0");
    row("reset=after", "send 0 00100\r\n; reset 0");
    row("restart=300", "restart 300");
}

void tst_FaultEngine::actions()
{
    QFETCH(QByteArray, fault);
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, actions);

    Engine engine({fault});
    QCOMPARE(engine.errors(), QString());
    const Reply reply = engine.reply(command, "00099\r\n");
    QCOMPARE(actionsText(reply), actions);
    QCOMPARE(reply.fault, fault);
    QCOMPARE(engine.count().text, fault);
    QCOMPARE(engine.count().seen, quint64(1));
    QCOMPARE(engine.count().applied, quint64(1));
}

void tst_FaultEngine::onlyTheLateAnswerIsDetached()
{
    QCOMPARE(Engine({"late=5"}).reply("RD DM1").detached, true);
    QCOMPARE(Engine({"delay=5"}).reply("RD DM1").detached, false);
    QCOMPARE(Engine({}).reply("RD DM1").detached, false);
}

void tst_FaultEngine::memoryAfterWrite_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("word");

    QTest::newRow("executed, no answer") << QByteArray("silent") << 5;
    QTest::newRow("executed, closed instead of the answer") << QByteArray("close=before") << 5;
    QTest::newRow("executed, another answer") << QByteArray("garbage=4") << 5;
    QTest::newRow("refused") << QByteArray("refuse=E4") << 100;
    QTest::newRow("lost in a restart") << QByteArray("restart=0") << 100;
}

void tst_FaultEngine::memoryAfterWrite()
{
    QFETCH(QByteArray, fault);
    QFETCH(int, word);

    Engine engine({fault});
    engine.reply("WR DM100 5");
    QCOMPARE(engine.count().applied, quint64(1));
    QCOMPARE(int(engine.controller().memory.value(*parseAddress("DM100"))), word);
}

void tst_FaultEngine::selection_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<bool>("seen");

    const auto row = [](const char *fault, const char *command, bool seen) {
        QTest::addRow("%s, %s", fault, command) << QByteArray(fault) << QByteArray(command) << seen;
    };
    row("silent@DM100", "RD DM99", false);
    row("silent@DM100", "RD DM100", true);
    row("silent@DM100", "RD DM101", false);
    row("silent@DM100", "RD D0100", true);
    row("silent@D100", "WR DM100 5", true);
    row("silent@DM100", "RD EM100", false);
    row("silent@DM100", "RDS DM98 2", false);
    row("silent@DM100", "RDS DM98 3", true);
    row("silent@DM100", "WRS DM99 2 1 2", true);
    row("silent@DM100", "RDS DM100 x", true);
    row("silent@DM100", "?K", false);
    row("silent@DM100", "", false);
    row("silent@R100", "RDS R015 2", true);
    row("silent", "?K", true);
    row("silent", "", true);
}

void tst_FaultEngine::selection()
{
    QFETCH(QByteArray, fault);
    QFETCH(QByteArray, command);
    QFETCH(bool, seen);

    Engine engine({fault});
    QCOMPARE(engine.errors(), QString());
    engine.reply(command);
    QCOMPARE(engine.count().seen, quint64(seen));
    QCOMPARE(engine.count().applied, quint64(seen));
}

void tst_FaultEngine::jitter()
{
    Engine engine({"delay=10+-3@seed=4"});
    QSet<int> times;
    for (int i = 0; i < 200; ++i)
        times.insert(engine.reply("RD DM1").actions.constFirst().milliseconds);
    QCOMPARE(times, (QSet<int>{7, 8, 9, 10, 11, 12, 13}));
}

void tst_FaultEngine::garbage()
{
    Engine engine({"garbage=100000"});
    QByteArray bytes = engine.reply("RD DM1").bytes();
    QCOMPARE(bytes.size(), 100002);
    QVERIFY(bytes.endsWith("\r\n"));
    bytes.chop(2);
    QCOMPARE(bytes.count('\r') + bytes.count('\n'), 0);
    QVERIFY(bytes.contains('\0'));
    QVERIFY(bytes.contains('\xFF'));
}

void tst_FaultEngine::sameSeedSameOutcome()
{
    QCOMPARE(pattern("silent@nth=3"), QByteArray("001000000000"));
    QCOMPARE(pattern("silent@every=4"), QByteArray("000100010001"));
    const QByteArray random = pattern("silent@percent=50@seed=7");
    QVERIFY(random.contains('0') && random.contains('1'));
    QCOMPARE(pattern("silent@percent=50@seed=7"), random);
    QVERIFY(pattern("silent@percent=50@seed=8") != random);
    QCOMPARE(pattern("silent@percent=100"), QByteArray("111111111111"));

    QCOMPARE(Engine({"garbage=50@seed=7"}).reply("RD DM1").bytes(),
             Engine({"garbage=50@seed=7"}).reply("RD DM1").bytes());
    QVERIFY(Engine({"garbage=50@seed=7"}).reply("RD DM1").bytes()
            != Engine({"garbage=50@seed=8"}).reply("RD DM1").bytes());
}

void tst_FaultEngine::firstThatStrikesIsApplied()
{
    Engine engine({"previous-answer", "refuse=E5@every=2", "empty"});
    QCOMPARE(engine.reply("RD DM1").fault, QByteArray("empty"));
    QCOMPARE(engine.reply("RD DM1", "00007\r\n").fault, QByteArray("previous-answer"));
    QCOMPARE(engine.count(0).seen, quint64(2));
    QCOMPARE(engine.count(0).applied, quint64(1));
    QCOMPARE(engine.count(1).seen, quint64(2));
    QCOMPARE(engine.count(1).applied, quint64(0));
    QCOMPARE(engine.count(2).seen, quint64(2));
    QCOMPARE(engine.count(2).applied, quint64(1));
}

void tst_FaultEngine::welcome_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("connected");
    QTest::addColumn<bool>("applied");

    const auto row = [](const char *name, const char *fault, int connected, bool applied) {
        QTest::newRow(name) << QByteArray(fault) << connected << applied;
    };
    row("a fault of commands", "silent", 0, false);
    row("refused", "refuse-connect", 0, true);
    row("ignored", "accept-then-silent", 0, true);
    row("below the most clients", "max-clients=2", 1, false);
    row("at the most clients", "max-clients=2", 2, true);
    row("above the most clients", "max-clients=2", 3, true);
    row("no client at all", "max-clients=0", 0, true);
    row("not yet", "refuse-connect@nth=2", 0, false);
}

void tst_FaultEngine::welcome()
{
    QFETCH(QByteArray, fault);
    QFETCH(int, connected);
    QFETCH(bool, applied);

    FaultEngine engine;
    QCOMPARE(engine.add(fault), QString());
    const std::optional<Fault> struck = engine.welcome(connected);
    QCOMPARE(struck.has_value(), applied);
    QCOMPARE(struck.value_or(Fault()).text, applied ? fault : QByteArray());
    QCOMPARE(engine.counts().constFirst().seen, quint64(fault != "silent"));
    QCOMPARE(engine.counts().constFirst().applied, quint64(applied));
}

QTEST_GUILESS_MAIN(tst_FaultEngine)
#include "tst_faultengine.moc"
