#pragma once

#include "host/logoutput.h"
#include "watch/terminalscreen.h"
#include "watch/watchedplant.h"
#include "watch/watchtable.h"

#include <QElapsedTimer>

#include <memory>
#include <vector>

/// Keeps a table of the plant up to date on the terminal, with the latest log entries below.
class WatchView
{
public:
    /// Both must outlive the view. `clock` is the watch's. The log's entries are kept from being
    /// printed as long as the view lives, unless standard error is something else than a terminal.
    WatchView(const std::vector<WatchedDevice> *devices, LogOutput *log,
              const QElapsedTimer *clock);
    /// Gives the terminal back and prints the whole table there, and the latest log entries.
    ~WatchView();
    WatchView(const WatchView &) = delete;
    WatchView &operator=(const WatchView &) = delete;

    /// Something was read in this cycle; it is drawn when it is time.
    void update(qint64 cycle);

    /// Draws when it is time: soon after something was read, or because the values have aged.
    void drawWhenDue();

    /// Milliseconds until it is time, 0 or more.
    qint64 dueInMs() const;

private:
    /// Ages are shown in seconds.
    static constexpr qint64 maximumRedrawMs = 1000;

    void draw();

    const std::vector<WatchedDevice> *m_devices;
    LogOutput *m_log;
    const QElapsedTimer *m_clock;
    std::unique_ptr<TerminalScreen> m_screen;
    Marking m_marking;
    bool m_hasUpdate = false;
    /// Nothing is drawn yet, so it is time.
    qint64 m_drawnMs = -maximumRedrawMs;
    qint64 m_cycle = 0;
    /// The cycle drawn last, and the one before it that was drawn: what changed since stands out.
    /// What comes with the first cycle is no change.
    qint64 m_drawnCycle = 1;
    qint64 m_sinceCycle = 1;
};
