#pragma once

#include <common/console.h>

#include <QtGlobal>

#include <csignal>

/// Whether the program ignores the signal, for example because it was started so.
bool isIgnored(int signal);

/// The exit code after SIGINT or SIGTERM.
ExitCode exitCodeOf(int signal);

/// Blocks SIGINT and SIGTERM in this thread and in those that it starts. A signal stays pending
/// until wait() returns it, so no signal interrupts the plug-in's own waits, and no handler is
/// needed. A signal that the program was started to ignore stays ignored.
class StopSignals
{
public:
    StopSignals();
    /// Unblocks the signals; discards a pending one.
    ~StopSignals();
    StopSignals(const StopSignals &) = delete;
    StopSignals &operator=(const StopSignals &) = delete;

    /// Waits at most `milliseconds` for a signal; 0 or less does not wait. Returns its number, or 0
    /// when none came. Each signal is returned once.
    int wait(qint64 milliseconds);

private:
    sigset_t m_signals{};
    sigset_t m_maskBefore{};
};
