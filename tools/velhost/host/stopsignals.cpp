#include "host/stopsignals.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <cerrno>

bool isIgnored(int signal)
{
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

ExitCode exitCodeOf(int signal)
{
    return signal == SIGINT ? Interrupted : Terminated;
}

StopSignals::StopSignals()
{
    sigemptyset(&m_signals);
    for (const int signal : {SIGINT, SIGTERM}) {
        if (!isIgnored(signal))
            sigaddset(&m_signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &m_signals, &m_maskBefore);
}

StopSignals::~StopSignals()
{
    // A pending signal would end the program here, before the plug-in is stopped.
    while (wait(0) != 0) {
    }
    pthread_sigmask(SIG_SETMASK, &m_maskBefore, nullptr);
}

int StopSignals::wait(qint64 milliseconds)
{
    const QDeadlineTimer deadline(std::max<qint64>(milliseconds, 0));
    for (;;) {
        const qint64 rest = deadline.remainingTime();
        const timespec time{static_cast<time_t>(rest / 1000),
                            static_cast<long>(rest % 1000) * 1'000'000};
        const int signal = sigtimedwait(&m_signals, nullptr, &time);
        if (signal > 0)
            return signal;
        // Another signal, for example the one that continues a stopped program, ends the wait
        // early.
        if (errno != EINTR)
            return 0;
    }
}
