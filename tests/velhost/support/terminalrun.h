#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <sys/types.h>

/// A program in a terminal of its own, of which the test is the other end: it reads what the
/// program shows, and what it types reaches the program as from a keyboard.
class TerminalRun
{
public:
    /// Starts the program; the terminal shows so many lines and columns.
    TerminalRun(const QString &program, const QStringList &arguments, int rows, int columns,
                const QProcessEnvironment &environment);
    /// Ends the program if it still runs.
    ~TerminalRun();
    TerminalRun(const TerminalRun &) = delete;
    TerminalRun &operator=(const TerminalRun &) = delete;

    /// Waits until the program shows these bytes behind those that the last call waited for; false
    /// when it ends or ten seconds pass without. If it shows nothing at all for so long, it is
    /// killed.
    bool waitFor(const QByteArray &bytes);

    /// Everything that was read so far.
    const QByteArray &output() const { return m_output; }

    void resize(int rows, int columns) const;
    void type(const QByteArray &bytes) const;
    void sendSignal(int signal) const;

    /// Reads to the end, at most ten seconds after the last output. Returns the exit code, or minus
    /// the signal that ended the program.
    int finish();

private:
    bool readMore();

    int m_terminal = -1;
    pid_t m_process = -1;
    QByteArray m_output;
    int m_seen = 0;
};
