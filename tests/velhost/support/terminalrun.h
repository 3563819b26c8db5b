#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <sys/types.h>

/// Runs a program in a pseudo terminal. The test reads what the program shows and types as on a
/// keyboard.
class TerminalRun
{
public:
    /// Starts the program in a terminal of that size.
    TerminalRun(const QString &program, const QStringList &arguments, int rows, int columns,
                const QProcessEnvironment &environment);
    /// Ends the program if it still runs.
    ~TerminalRun();
    TerminalRun(const TerminalRun &) = delete;
    TerminalRun &operator=(const TerminalRun &) = delete;

    /// Waits until the program shows these bytes after those of the last call; false when it ends
    /// or after ten seconds. A program that shows nothing for ten seconds is killed.
    bool waitFor(const QByteArray &bytes);

    /// Everything that was read so far.
    const QByteArray &output() const { return m_output; }

    void resize(int rows, int columns) const;
    void type(const QByteArray &bytes) const;
    void sendSignal(int signal) const;

    /// Sends SIGINT again and again until the program ends, at most ten seconds.
    void interruptUntilEnd();

    /// Reads until the program ends, at most ten seconds after the last output. Returns the exit
    /// code, or the negative number of the signal that ended the program.
    int finish();

private:
    bool readMore();

    int m_terminal = -1;
    pid_t m_process = -1;
    QByteArray m_output;
    int m_seen = 0;
};
