#include "watch/terminalscreen.h"

#include <common/console.h>
#include <common/stopsignal.h>

#include <algorithm>
#include <array>

#include <cerrno>
#include <csignal>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// Switches to the alternate screen and hides the cursor.
constexpr std::string_view enterSequence = "\x1b[?1049h\x1b[?25l";
// Resets the colour, switches line wrapping and the cursor on, and returns to the normal screen.
constexpr std::string_view leaveSequence = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";

constexpr std::array<int, 8> caughtSignals{SIGINT, SIGQUIT, SIGTSTP, SIGABRT,
                                           SIGBUS, SIGFPE,  SIGILL,  SIGSEGV};

/// Whether the terminal shows the alternate screen. Changed by the signal handler, too.
volatile sig_atomic_t isEntered = 0;

/// Called by the signal handler, so it must not use the stdout stream.
void leave()
{
    if (isEntered == 0)
        return;
    isEntered = 0;
    // An error is ignored: the terminal has gone.
    if (::write(STDOUT_FILENO, leaveSequence.data(), leaveSequence.size()) < 0)
        return;
}

void catchSignal(int signal)
{
    const int errorBefore = errno;
    leave();
    ::raise(signal);
    // Reached only when a stopped program continues. The next draw() switches to the alternate
    // screen again.
    catchOnce(signal, catchSignal);
    errno = errorBefore;
}

} // namespace

bool TerminalScreen::isUsable()
{
    const QByteArray kind = qgetenv("TERM");
    return ::isatty(STDOUT_FILENO) == 1 && !kind.isEmpty() && kind != "dumb";
}

TerminalScreen::TerminalScreen()
{
    for (const int signal : caughtSignals)
        catchOnce(signal, catchSignal);
}

TerminalScreen::~TerminalScreen()
{
    leave();
    for (const int signal : caughtSignals)
        catchOnce(signal, SIG_DFL);
}

ScreenSize TerminalScreen::size()
{
    winsize window{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0
        || window.ws_row == 0)
        return {};
    return {std::max(window.ws_col - 1, 1), window.ws_row};
}

void TerminalScreen::draw(const QString &lines)
{
    QString sequence;
    if (isEntered == 0) {
        isEntered = 1;
        sequence = QLatin1String(enterSequence.data(), static_cast<int>(enterSequence.size()));
    }
    // Starts at the top, without line wrapping. Each line clears the rest of its line, the last one
    // the rest of the screen.
    sequence += u"\x1b[H\x1b[?7l" + QString(lines).replace(u'\n', QStringLiteral("\x1b[K\n"))
                + u"\x1b[J\x1b[?7h";
    print(stdout, sequence);
}
