#pragma once

#include <common/console.h>

#include <QElapsedTimer>

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>

/// The exit code after SIGINT, SIGTERM or SIGHUP.
ExitCode exitCodeOf(int signal);

/// Blocks SIGINT, SIGTERM and SIGHUP in this thread and in those that it starts. A signal stays
/// pending until a thread that waits for nothing else takes it, so no signal interrupts the
/// plug-in's own waits. A second SIGINT ends the program at once, as if it were not blocked;
/// several that come together count as one. A signal that the program was started to ignore stays
/// ignored.
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
    void watch();
    void takePending();

    sigset_t m_signals{};
    sigset_t m_maskBefore{};
    int m_pending = -1;
    int m_end = -1;
    /// Guards what follows. Held while a signal is taken, so that wait() never misses one.
    std::mutex m_mutex;
    std::condition_variable m_taken;
    int m_signal = 0;
    QElapsedTimer m_sinceInterrupt;
    std::thread m_watcher;
};
