#include "watch/terminalscreen.h"

#include "host/stopsignals.h"
#include <common/console.h>

#include <algorithm>
#include <array>

#include <cerrno>
#include <csignal>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// The second screen, without cursor.
constexpr std::string_view enterSequence = "\x1b[?1049h\x1b[?25l";
// Without colour, lines that wrap, the cursor and the first screen.
constexpr std::string_view leaveSequence = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";

constexpr std::array<int, 8> caughtSignals{SIGHUP, SIGQUIT, SIGTSTP, SIGABRT,
                                           SIGBUS, SIGFPE,  SIGILL,  SIGSEGV};

/// Whether the terminal shows the second screen. A stop gives it back behind the program's back.
volatile sig_atomic_t isEntered = 0;

void catchSignal(int signal);

/// The action is the system's own again as soon as the signal is caught.
void install(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND | SA_NODEFER);
    sigaction(signal, &action, nullptr);
}

/// Writes past the stream, whose state nobody knows in the middle of a signal.
void leave()
{
    if (isEntered == 0)
        return;
    isEntered = 0;
    // A terminal that is gone needs nothing back.
    if (::write(STDOUT_FILENO, leaveSequence.data(), leaveSequence.size()) < 0)
        return;
}

void catchSignal(int signal)
{
    const int errorBefore = errno;
    leave();
    ::raise(signal);
    // Only after a stop: the program goes on, and the next drawing takes the screen again.
    install(signal, catchSignal);
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
    for (const int signal : caughtSignals) {
        if (!isIgnored(signal))
            install(signal, catchSignal);
    }
}

TerminalScreen::~TerminalScreen()
{
    leave();
    for (const int signal : caughtSignals) {
        if (!isIgnored(signal))
            install(signal, SIG_DFL);
    }
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
    // From the top, without wrapping; each line wipes what is behind it, the last one what is
    // below.
    sequence += QLatin1String("\x1b[H\x1b[?7l")
                + QString(lines).replace(u'\n', QLatin1String("\x1b[K\n"))
                + QLatin1String("\x1b[J\x1b[?7h");
    print(stdout, sequence);
}
