#include <text.h>

#include <common/console.h>
#include <host/logoutput.h>
#include <host/progressline.h>

#include <QTest>

#include <array>

#include <pty.h>
#include <unistd.h>

namespace {

constexpr int anHourMs = 60 * 60 * 1000;

/// Replaces standard error by a file descriptor and restores it in the end.
class ReplacedErrors
{
public:
    explicit ReplacedErrors(int descriptor) { ::dup2(descriptor, STDERR_FILENO); }
    ~ReplacedErrors()
    {
        ::dup2(m_before, STDERR_FILENO);
        ::close(m_before);
    }
    ReplacedErrors(const ReplacedErrors &) = delete;
    ReplacedErrors &operator=(const ReplacedErrors &) = delete;

private:
    int m_before = ::dup(STDERR_FILENO);
};

/// The two ends of a pseudo terminal.
class Terminal
{
public:
    Terminal()
    {
        if (::openpty(&m_outside, &m_inside, nullptr, nullptr, nullptr) != 0)
            qFatal("no terminal can be had");
    }
    ~Terminal()
    {
        ::close(m_inside);
        ::close(m_outside);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    int inside() const { return m_inside; }

    /// What was printed on standard error, which must be this terminal.
    QByteArray shown() const
    {
        print(stderr, text("#"));
        QByteArray bytes;
        while (!bytes.endsWith('#')) {
            QByteArray buffer(4096, Qt::Uninitialized);
            const ssize_t count
                = ::read(m_outside, buffer.data(), static_cast<std::size_t>(buffer.size()));
            if (count <= 0)
                return {};
            bytes += buffer.left(static_cast<int>(count));
        }
        bytes.chop(1);
        return bytes;
    }

private:
    int m_outside = -1;
    int m_inside = -1;
};

} // namespace

class tst_ProgressLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void overwritesItself();
    void isClearedAtTheEnd();
    void isNotDueAtFirst();
    void isNotDueWithoutATerminal();
    void isClearedBeforeLogEntries();
};

void tst_ProgressLine::overwritesItself()
{
    const Terminal terminal;
    const ReplacedErrors errors(terminal.inside());
    ProgressLine line(0);
    QCOMPARE(line.isDue(), true);
    line.clear();
    line.show(text("first"));
    line.show(text("2"));
    QCOMPARE(terminal.shown(), QByteArray("\rfirst\x1b[K\r2\x1b[K"));
    line.clear();
    line.clear();
    QCOMPARE(terminal.shown(), QByteArray("\r\x1b[K"));
}

void tst_ProgressLine::isClearedAtTheEnd()
{
    const Terminal terminal;
    const ReplacedErrors errors(terminal.inside());
    {
        const ProgressLine neverShown(0);
        ProgressLine line(0);
        line.show(text("3"));
    }
    QCOMPARE(terminal.shown(), QByteArray("\r3\x1b[K\r\x1b[K"));
}

void tst_ProgressLine::isNotDueAtFirst()
{
    const Terminal terminal;
    const ReplacedErrors errors(terminal.inside());
    ProgressLine line(anHourMs);
    QCOMPARE(line.isDue(), false);
    QCOMPARE(line.isDue(), false);
}

void tst_ProgressLine::isNotDueWithoutATerminal()
{
    std::array<int, 2> pipe{};
    QCOMPARE(::pipe(pipe.data()), 0);
    {
        const ReplacedErrors errors(pipe.back());
        ProgressLine line(0);
        QCOMPARE(line.isDue(), false);
    }
    ::close(pipe.front());
    ::close(pipe.back());
}

void tst_ProgressLine::isClearedBeforeLogEntries()
{
    const Terminal terminal;
    const ReplacedErrors errors(terminal.inside());
    ProgressLine line(0);
    LogOutput log(OutputFormat::Table, &line);
    line.show(text("1"));
    log.add({LogEntry::Level::Error, text("a")});
    log.add({LogEntry::Level::Error, text("a")});
    line.show(text("2"));
    log.printPendingCounts();
    log.add({LogEntry::Level::Error, text("b")});
    QCOMPARE(terminal.shown(), QByteArray("\r1\x1b[K\r\x1b[Klog error: a\r\n"
                                          "\r2\x1b[K\r\x1b[Klog error: a (x 2)\r\n"
                                          "log error: b\r\n"));
}

QTEST_GUILESS_MAIN(tst_ProgressLine)
#include "tst_progressline.moc"
