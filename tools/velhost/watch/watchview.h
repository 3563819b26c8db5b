#pragma once

#include "host/logoutput.h"
#include "watch/terminalscreen.h"
#include "watch/watchedplant.h"
#include "watch/watchtable.h"

#include <QElapsedTimer>

#include <memory>
#include <vector>

/// Shows a table of the plant on the terminal, with the latest log entries below.
class WatchView
{
public:
    /// All pointers must outlive the view. `clock` is the watch's. If standard error is a terminal,
    /// the log is paused during the view's lifetime.
    WatchView(const std::vector<WatchedDevice> *devices, LogOutput *log,
              const QElapsedTimer *clock);
    /// Restores the terminal and prints the whole table and the latest log entries there.
    ~WatchView();
    WatchView(const WatchView &) = delete;
    WatchView &operator=(const WatchView &) = delete;

    /// Tells the view that a device was read in this cycle, and draws if it is due.
    void update(qint64 cycle);

    /// Draws if it is due: shortly after an update, else every second because of the ages.
    void drawWhenDue();

    /// Milliseconds until drawing is due, 0 or more.
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
    /// The first drawing is due immediately.
    qint64 m_drawnMs = -maximumRedrawMs;
    qint64 m_cycle = 0;
    /// The last cycle that was drawn, and the one that was drawn before it: what has changed since
    /// that one is marked. The values of the first cycle are no changes.
    qint64 m_drawnCycle = 1;
    qint64 m_sinceCycle = 1;
};
