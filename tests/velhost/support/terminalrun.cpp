#include "terminalrun.h"

#include <QDeadlineTimer>
#include <QFile>

#include <csignal>
#include <vector>

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Reached by failing tests only.
constexpr int timeoutMs = 10000;

QList<QByteArray> encoded(const QStringList &texts)
{
    QList<QByteArray> bytes;
    for (const QString &text : texts)
        bytes.append(QFile::encodeName(text));
    return bytes;
}

/// The arguments of exec(). The texts must outlive the result and must not change.
std::vector<char *> pointersTo(QList<QByteArray> *texts)
{
    std::vector<char *> pointers;
    for (QByteArray &text : *texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

winsize windowOf(int rows, int columns)
{
    winsize window{};
    window.ws_row = static_cast<unsigned short>(rows);
    window.ws_col = static_cast<unsigned short>(columns);
    return window;
}

} // namespace

TerminalRun::TerminalRun(const QString &program, const QStringList &arguments, int rows,
                         int columns, const QProcessEnvironment &environment)
{
    // Nothing may be allocated after the fork: other threads may hold locks at that moment.
    QList<QByteArray> argumentBytes = encoded(QStringList(program) + arguments);
    QList<QByteArray> variableBytes = encoded(environment.toStringList());
    const std::vector<char *> argumentPointers = pointersTo(&argumentBytes);
    const std::vector<char *> variablePointers = pointersTo(&variableBytes);
    const winsize window = windowOf(rows, columns);
    m_process = ::forkpty(&m_terminal, nullptr, nullptr, &window);
    if (m_process == 0) {
        ::execve(argumentPointers.front(), argumentPointers.data(), variablePointers.data());
        ::_exit(127);
    }
    if (m_process < 0)
        qFatal("no terminal can be had");
}

TerminalRun::~TerminalRun()
{
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::close(m_terminal);
}

bool TerminalRun::waitFor(const QByteArray &bytes)
{
    const QDeadlineTimer deadline(timeoutMs);
    for (;;) {
        const int found = m_output.indexOf(bytes, m_seen);
        if (found >= 0) {
            m_seen = found + bytes.size();
            return true;
        }
        if (deadline.hasExpired() || !readMore())
            return false;
    }
}

void TerminalRun::resize(int rows, int columns) const
{
    const winsize window = windowOf(rows, columns);
    ::ioctl(m_terminal, TIOCSWINSZ, &window);
}

void TerminalRun::type(const QByteArray &bytes) const
{
    if (::write(m_terminal, bytes.constData(), static_cast<std::size_t>(bytes.size()))
        != bytes.size())
        qFatal("the terminal takes no key");
}

void TerminalRun::sendSignal(int signal) const
{
    ::kill(m_process, signal);
}

void TerminalRun::interruptUntilEnd()
{
    const QDeadlineTimer deadline(timeoutMs);
    pollfd descriptor{m_terminal, POLLIN, 0};
    do {
        sendSignal(SIGINT);
    } while (!deadline.hasExpired() && (::poll(&descriptor, 1, 10) == 0 || readMore()));
}

int TerminalRun::finish()
{
    while (readMore()) {
    }
    int status = 0;
    if (::waitpid(m_process, &status, 0) != m_process)
        return -1;
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// Reading fails when the last program of the terminal has ended. A program that shows nothing
/// until the time-out is killed, which fails the test.
bool TerminalRun::readMore()
{
    pollfd descriptor{m_terminal, POLLIN, 0};
    if (::poll(&descriptor, 1, timeoutMs) <= 0) {
        ::kill(m_process, SIGKILL);
        return false;
    }
    QByteArray buffer(65536, Qt::Uninitialized);
    const ssize_t count
        = ::read(m_terminal, buffer.data(), static_cast<std::size_t>(buffer.size()));
    if (count <= 0)
        return false;
    m_output += buffer.left(static_cast<int>(count));
    return true;
}
