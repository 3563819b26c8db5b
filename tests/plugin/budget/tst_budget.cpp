#include "scriptedpeer.h"
#include "text.h"

#include <QTest>

#include <array>
#include <csignal>
#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

// What the plug-in adds to an exchange, in instructions and in allocations. Neither depends on how
// fast the machine is or on what else it does. The plug-in is one of its own, optimised in every
// build. The instructions are the probe's own, not the system's: this program takes it from one to
// the next and counts the steps.

namespace {

constexpr int itemCount = 5;

struct Counts
{
    long instructions = 0;
    long allocations = 0;
};

struct Measurement
{
    Counts call;
    Counts allItems;
};

class Probe
{
public:
    explicit Probe(QByteArrayList arguments)
    {
        std::vector<char *> words;
        for (QByteArray &argument : arguments)
            words.push_back(argument.data());
        words.push_back(nullptr);
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            qFatal("no pipe");
        m_process = ::fork();
        if (m_process == 0) {
            ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
            ::dup2(ends[1], STDOUT_FILENO);
            ::execv(words.front(), words.data());
            std::_Exit(EXIT_FAILURE);
        }
        ::close(ends[1]);
        m_output = ends[0];
        wait();
    }
    ~Probe() { ::close(m_output); }
    Probe(const Probe &) = delete;
    Probe &operator=(const Probe &) = delete;

    // Counts the instructions from the next stop to the one behind it.
    long stepsBetweenStops()
    {
        run(PTRACE_CONT);
        return run(PTRACE_SINGLESTEP);
    }

    // Lets it end; returns what it printed, or nothing when it did not succeed.
    QByteArray finish()
    {
        run(PTRACE_CONT);
        std::array<char, 64> text{};
        const ssize_t size = ::read(m_output, text.data(), text.size() - 1);
        return WIFEXITED(m_status) && WEXITSTATUS(m_status) == EXIT_SUCCESS && size > 0
                   ? QByteArray(text.data())
                   : QByteArray();
    }

private:
    // The number of steps until the probe stops itself, or ends.
    long run(__ptrace_request request)
    {
        long steps = 0;
        do {
            if (::ptrace(request, m_process, nullptr, nullptr) != 0)
                qFatal("the probe cannot be followed");
            wait();
            ++steps;
        } while (WIFSTOPPED(m_status) && WSTOPSIG(m_status) != SIGSTOP);
        return steps;
    }

    void wait()
    {
        if (::waitpid(m_process, &m_status, 0) != m_process)
            qFatal("the probe is lost");
    }

    pid_t m_process = -1;
    int m_output = -1;
    int m_status = 0;
};

Measurement measure(const QByteArrayList &item, const QByteArrayList &answers)
{
    QByteArrayList all;
    for (int i = 0; i < 2 * itemCount; ++i)
        all += answers;
    ScriptedPeer peer(script(all));
    Probe probe(QByteArrayList{BUDGET_PROBE, OPTIMISED_PLUGIN, QByteArray::number(peer.port())}
                + item + QByteArrayList{QByteArray::number(itemCount)});
    Measurement result;
    const long ofNothing = probe.stepsBetweenStops();
    const long ofCall = probe.stepsBetweenStops();
    result.call.instructions = ofCall - ofNothing;
    result.allItems.instructions = probe.stepsBetweenStops() - ofCall;
    const QByteArrayList printed = probe.finish().simplified().split(' ');
    if (printed.size() != 2)
        qFatal("the probe failed");
    result.call.allocations = printed.at(0).toLong();
    result.allItems.allocations = printed.at(1).toLong() - result.call.allocations;
    return result;
}

// Five in a hundred more than it took when it was written down.
long withRoom(int figure)
{
    return figure + figure / 20;
}

} // namespace

class tst_Budget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void item_data();
    void item();
    void call();
};

void tst_Budget::item_data()
{
    QTest::addColumn<QByteArrayList>("item");
    QTest::addColumn<QByteArrayList>("answers");
    QTest::addColumn<int>("instructions");
    QTest::addColumn<int>("allocations");

    using List = QByteArrayList;
    QTest::newRow("short, read") << List{"read", "D201", "1", "1", ""} << List{"12345\r\n"} << 3980
                                 << 3;
    QTest::newRow("float, read") << List{"read", "D300", "1", "7", ""} << List{"04059 16457\r\n"}
                                 << 5920 << 4;
    QTest::newRow("ten words of ascii, read")
        << List{"read", "D400-10", "1", "9", ""}
        << List{"16961 17475 17989 18503 19017 19531 20045 20559 21073 21587\r\n"} << 8450 << 6;
    QTest::newRow("bit, read") << List{"read", "DM100.3", "1", "0", ""} << List{"00008\r\n"} << 5070
                               << 4;
    QTest::newRow("bit, written") << List{"write", "DM100.3", "1", "0", "1"}
                                  << List{"00008\r\n", "OK\r\n"} << 9500 << 10;
    QTest::newRow("short, written")
        << List{"write", "D201", "1", "1", "1234"} << List{"OK\r\n"} << 4530 << 3;
}

void tst_Budget::item()
{
    QFETCH(QByteArrayList, item);
    QFETCH(QByteArrayList, answers);
    QFETCH(int, instructions);
    QFETCH(int, allocations);
    const Counts counts = measure(item, answers).allItems;
    qInfo("%ld instructions, %ld allocations an item", counts.instructions / itemCount,
          counts.allocations / itemCount);
    QVERIFY(counts.instructions / itemCount <= withRoom(instructions));
    QVERIFY(counts.allocations / itemCount <= withRoom(allocations));
}

void tst_Budget::call()
{
    const Counts counts = measure({"read", "D201", "1", "1", ""}, {"12345\r\n"}).call;
    qInfo("%ld instructions, %ld allocations a call", counts.instructions, counts.allocations);
    QVERIFY(counts.instructions <= withRoom(820));
    QVERIFY(counts.allocations <= 0);
}

QTEST_GUILESS_MAIN(tst_Budget)
#include "tst_budget.moc"
