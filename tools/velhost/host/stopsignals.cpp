#include "host/stopsignals.h"

#include <common/stopsignal.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

ExitCode exitCodeOf(int signal)
{
    return static_cast<ExitCode>(128 + signal);
}

StopSignals::StopSignals()
{
    sigemptyset(&m_signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(signal))
            sigaddset(&m_signals, signal);
    }
    pthread_sigmask(SIG_BLOCK, &m_signals, &m_maskBefore);
    m_pending = ::signalfd(-1, &m_signals, SFD_CLOEXEC);
    m_end = ::eventfd(0, EFD_CLOEXEC);
    // Without a descriptor to spare a signal is taken by the next wait().
    if (m_pending >= 0 && m_end >= 0)
        m_watcher = std::thread([this] { watch(); });
}

StopSignals::~StopSignals()
{
    ::eventfd_write(m_end, 1);
    if (m_watcher.joinable())
        m_watcher.join();
    ::close(m_end);
    ::close(m_pending);
    // A pending signal would end the program here, before the plug-in is stopped.
    const timespec atOnce{};
    while (sigtimedwait(&m_signals, nullptr, &atOnce) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &m_maskBefore, nullptr);
}

int StopSignals::wait(qint64 milliseconds)
{
    const std::chrono::milliseconds time(std::max<qint64>(milliseconds, 0));
    std::unique_lock lock(m_mutex);
    takePending();
    m_taken.wait_for(lock, time, [this] { return m_signal != 0; });
    return std::exchange(m_signal, 0);
}

void StopSignals::watch()
{
    std::array<pollfd, 2> descriptors{{{m_pending, POLLIN, 0}, {m_end, POLLIN, 0}}};
    while (descriptors.back().revents == 0) {
        ::poll(descriptors.data(), descriptors.size(), -1);
        const std::lock_guard lock(m_mutex);
        takePending();
    }
}

void StopSignals::takePending()
{
    const timespec atOnce{};
    const int signal = sigtimedwait(&m_signals, nullptr, &atOnce);
    if (signal <= 0)
        return;
    if (signal == SIGINT && !m_sinceInterrupt.isValid()) {
        m_sinceInterrupt.start();
    } else if (signal == SIGINT && m_sinceInterrupt.hasExpired(oneInterruptMs)) {
        // Ends the program, after a handler that restores the terminal.
        pthread_sigmask(SIG_UNBLOCK, &m_signals, nullptr);
        ::raise(SIGINT);
    }
    m_signal = signal;
    m_taken.notify_all();
}
