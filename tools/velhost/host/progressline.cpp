#include "host/progressline.h"

#include <common/console.h>
#include <common/stopsignal.h>

#include <csignal>
#include <string_view>

#include <unistd.h>

namespace {

constexpr int redrawMs = 200;
const QString lineStart = QStringLiteral("\r");
const QString clearRest = QStringLiteral("\x1b[K");

/// The signal ends the program: its handler is removed before this is called.
void clearAtSignal(int signal)
{
    constexpr std::string_view sequence = "\r\x1b[K";
    // After an error the terminal has gone, and the signal ends the program all the same.
    const ssize_t written = ::write(STDERR_FILENO, sequence.data(), sequence.size());
    static_cast<void>(written);
    ::raise(signal);
}

void handleEndingSignals(void (*handler)(int))
{
    for (const int signal : {SIGINT, SIGTERM, SIGQUIT})
        catchOnce(signal, handler);
}

} // namespace

bool ProgressLine::isDue()
{
    const std::lock_guard lock(m_mutex);
    return m_due.hasExpired() && ::isatty(STDERR_FILENO) == 1;
}

void ProgressLine::show(const QString &text)
{
    const std::lock_guard lock(m_mutex);
    if (!m_isShown)
        handleEndingSignals(clearAtSignal);
    print(stderr, lineStart + text + clearRest);
    m_due = QDeadlineTimer(redrawMs);
    m_isShown = true;
}

void ProgressLine::clear()
{
    const std::lock_guard lock(m_mutex);
    if (!m_isShown)
        return;
    print(stderr, lineStart + clearRest);
    handleEndingSignals(SIG_DFL);
    m_isShown = false;
}
