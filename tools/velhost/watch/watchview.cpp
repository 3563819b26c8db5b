#include "watch/watchview.h"

#include <common/console.h>
#include <common/visibletext.h>

#include <QTime>

#include <csignal>

#include <poll.h>
#include <unistd.h>

namespace {

// Limits the output of a terminal on a slow line.
constexpr int minimumRedrawMs = 100;
// Ages are shown in seconds.
constexpr qint64 maximumRedrawMs = 1000;
// A shorter call is no wait, and a shorter delay of the cycles none that shows.
constexpr qint64 minimumWaitMs = 1000;
constexpr qint64 minimumDelayMs = 100;

QString hint(const WatchWish &wish, bool hasKeyboard)
{
    if (!hasKeyboard)
        return QStringLiteral("Ctrl+C ends it");
    if (wish.isTyping)
        return QStringLiteral("filter: %1_, Enter ends, Esc clears").arg(visible(wish.filter));
    if (wish.wantsOutages)
        return QStringLiteral("outages; o shows the values, q ends");
    const QString keys = QStringLiteral("/ filters, o lists outages, q ends");
    return wish.filter.isEmpty()
               ? keys
               : QStringLiteral("only \"%1\", Esc shows all; ").arg(visible(wish.filter)) + keys;
}

/// What the watch waits for; empty when it does not.
QString waitText(const WatchState &state, qint64 nowMs)
{
    QStringList texts;
    if (state.called != nullptr && nowMs - state.calledMs >= minimumWaitMs)
        texts.append(QStringLiteral("%1 %2 (%3), %4")
                         .arg(state.called->error.isEmpty() ? QStringLiteral("waiting for")
                                                            : QStringLiteral("connecting to"),
                              visible(state.called->name), state.called->address,
                              ageText(nowMs - state.calledMs)));
    if (state.cycleMs - state.intervalMs >= minimumDelayMs && state.intervalMs > 0)
        texts.append(QStringLiteral("the cycle takes %1 s, the interval is %2 s")
                         .arg(static_cast<double>(state.cycleMs) / 1000, 0, 'f', 1)
                         .arg(static_cast<double>(state.intervalMs) / 1000));
    return texts.join(QStringLiteral("; "));
}

} // namespace

WatchView::WatchView(WatchState *state, LogOutput *log)
    : m_state(state), m_log(log), m_screen(new TerminalScreen),
      m_hasColour(qEnvironmentVariableIsEmpty("NO_COLOR")), m_drawnMs(-maximumRedrawMs)
{
    if (::isatty(STDERR_FILENO) == 1)
        m_log->pause();
    m_thread = std::thread([this] { run(); });
}

WatchView::~WatchView()
{
    m_isEnding = true;
    m_thread.join();
    m_screen.reset();
    print(stdout, watchTableText(m_state->devices, m_state->clock.elapsed()) + u'\n');
    m_log->resume();
}

void WatchView::run()
{
    while (!m_isEnding) {
        const qint64 dueMs = m_drawnMs + (m_state->hasUpdate ? minimumRedrawMs : maximumRedrawMs);
        if (m_state->clock.elapsed() >= dueMs)
            draw();
        pollfd keyboard{m_screen->keyboard(), POLLIN, 0};
        ::poll(&keyboard, 1, minimumRedrawMs);
        if (keyboard.revents == 0)
            continue;
        // As Ctrl+C would.
        if (applyKeys(QString::fromUtf8(m_screen->takeKeys()), &m_wish))
            ::kill(::getpid(), SIGINT);
        m_state->hasUpdate = true;
    }
}

void WatchView::draw()
{
    m_state->hasUpdate = false;
    QString lines;
    {
        const std::lock_guard lock(m_state->mutex);
        m_drawnMs = m_state->clock.elapsed();
        if (m_state->cycle > m_drawnCycle) {
            m_sinceCycle = m_drawnCycle;
            m_drawnCycle = m_state->cycle;
        }
        lines = watchScreenText({title(), *m_state, m_drawnMs, m_sinceCycle},
                                TerminalScreen::size(), m_hasColour, &m_wish);
    }
    m_screen->draw(lines);
}

QStringList WatchView::title() const
{
    QStringList lines{
        QStringLiteral("velhost watch, cycle %1, %2; ")
            .arg(QString::number(m_state->cycle), QTime::currentTime().toString(Qt::ISODate))
        + hint(m_wish, m_screen->keyboard() >= 0)};
    const QString wait = waitText(*m_state, m_drawnMs);
    if (!wait.isEmpty())
        lines.append(wait);
    return lines;
}
