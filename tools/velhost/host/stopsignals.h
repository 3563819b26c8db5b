#pragma once

#include <common/console.h>

#include <QtGlobal>

#include <csignal>

/// Whether the program was started to ignore the signal, or does so by now.
bool isIgnored(int signal);

/// How the program ends when one of StopSignals' signals has ended its work.
ExitCode exitCodeOf(int signal);

/// Keeps SIGINT and SIGTERM back from this thread and from those that it starts: the system holds
/// one that arrives until the program asks for it. So no handler interrupts the plug-in's own
/// waits, and nothing but an ordinary function decides what a signal does. A signal that the
/// program was started to ignore stays ignored.
class StopSignals
{
public:
    StopSignals();
    /// Lets them through again; one that was not asked for is forgotten.
    ~StopSignals();
    StopSignals(const StopSignals &) = delete;
    StopSignals &operator=(const StopSignals &) = delete;

    /// Waits until one of them arrives, `milliseconds` at most; 0 or less only looks. Returns its
    /// number, or 0 when none came. Each signal is returned once.
    int wait(qint64 milliseconds);

private:
    sigset_t m_signals{};
    sigset_t m_maskBefore{};
};
