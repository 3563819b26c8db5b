#pragma once

#include "host/logoutput.h"
#include "watch/terminalscreen.h"
#include "watch/watchkeys.h"
#include "watch/watchtable.h"

#include <atomic>
#include <memory>
#include <thread>

/// Shows a table of the plant on the terminal, with the latest log entries below, and takes the
/// keys. Has a thread of its own: the plug-in blocks the one that calls it.
class WatchView
{
public:
    /// Both must outlive the view. If standard error is a terminal, the log is paused during the
    /// view's lifetime.
    WatchView(WatchState *state, LogOutput *log);
    /// Restores the terminal and prints the whole table and the latest log entries there.
    ~WatchView();
    WatchView(const WatchView &) = delete;
    WatchView &operator=(const WatchView &) = delete;

private:
    void run();
    void draw();
    QStringList title() const;

    WatchState *m_state;
    LogOutput *m_log;
    std::unique_ptr<TerminalScreen> m_screen;
    bool m_hasColour;
    WatchWish m_wish;
    std::atomic<bool> m_isEnding = false;
    /// The first drawing is due immediately.
    qint64 m_drawnMs;
    /// The last cycle that was drawn, and the one that was drawn before it: what has changed since
    /// that one is marked. The values of the first cycle are no changes.
    qint64 m_drawnCycle = 1;
    qint64 m_sinceCycle = 1;
    std::thread m_thread;
};
