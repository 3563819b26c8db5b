#include "watch/watchview.h"

#include <common/console.h>

#include <QTime>

#include <algorithm>

#include <unistd.h>

namespace {

// Limits the output: a terminal on a slow line must not delay the cycles.
constexpr qint64 minimumRedrawMs = 100;

} // namespace

WatchView::WatchView(const std::vector<WatchedDevice> *devices, LogOutput *log,
                     const QElapsedTimer *clock)
    : m_devices(devices), m_log(log), m_clock(clock), m_screen(new TerminalScreen),
      m_marking(qEnvironmentVariableIsEmpty("NO_COLOR") ? Marking::Colour : Marking::Star)
{
    if (::isatty(STDERR_FILENO) == 1)
        m_log->pause();
}

WatchView::~WatchView()
{
    m_screen.reset();
    print(stdout, watchTableText(*m_devices, m_clock->elapsed()) + u'\n');
    m_log->resume();
}

void WatchView::update(qint64 cycle)
{
    m_hasUpdate = true;
    m_cycle = cycle;
    drawWhenDue();
}

void WatchView::drawWhenDue()
{
    if (dueInMs() == 0)
        draw();
}

qint64 WatchView::dueInMs() const
{
    const qint64 between = m_hasUpdate ? minimumRedrawMs : maximumRedrawMs;
    return std::max<qint64>(m_drawnMs + between - m_clock->elapsed(), 0);
}

void WatchView::draw()
{
    m_drawnMs = m_clock->elapsed();
    m_hasUpdate = false;
    if (m_cycle != m_drawnCycle) {
        m_sinceCycle = m_drawnCycle;
        m_drawnCycle = m_cycle;
    }
    const QString title
        = QStringLiteral("velhost watch, cycle %1, %2; Ctrl+C ends it")
              .arg(QString::number(m_cycle), QTime::currentTime().toString(Qt::ISODate));
    m_screen->draw(watchScreenText({title, m_devices, m_log->latest(), m_drawnMs, m_sinceCycle},
                                   TerminalScreen::size(), m_marking));
}
