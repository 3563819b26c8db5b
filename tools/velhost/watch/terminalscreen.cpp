#include "watch/terminalscreen.h"

#include <common/console.h>
#include <common/stopsignal.h>

#include <algorithm>
#include <array>
#include <atomic>

#include <cerrno>
#include <csignal>
#include <string_view>

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

// Switches to the alternate screen and hides the cursor.
constexpr std::string_view enterSequence = "\x1b[?1049h\x1b[?25l";
// Resets the colour, switches line wrapping and the cursor on, and returns to the normal screen.
constexpr std::string_view leaveSequence = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";

constexpr std::array<int, 8> caughtSignals{SIGINT, SIGQUIT, SIGTSTP, SIGABRT,
                                           SIGBUS, SIGFPE,  SIGILL,  SIGSEGV};

// Changed by the signal handler, too, which may run in another thread than draw().
/// Whether the terminal shows the alternate screen.
std::atomic<bool> isEntered = false;
/// While the program ends or is stopped nothing may be drawn.
std::atomic<bool> isAway = false;
/// Whether the terminal's settings are not those before.
std::atomic<bool> hasOtherSettings = false;

termios settingsBefore{};

/// Lets the terminal give single keys. Those that make a signal still do.
void takeSingleKeys()
{
    if (::tcgetattr(STDIN_FILENO, &settingsBefore) != 0)
        return;
    termios settings = settingsBefore;
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    hasOtherSettings = true;
    ::tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

/// Called by the signal handler, so it must not use the stdout stream.
void leave()
{
    if (hasOtherSettings.exchange(false))
        ::tcsetattr(STDIN_FILENO, TCSANOW, &settingsBefore);
    if (!isEntered.exchange(false))
        return;
    // An error is ignored: the terminal has gone.
    if (::write(STDOUT_FILENO, leaveSequence.data(), leaveSequence.size()) < 0)
        return;
}

void catchSignal(int signal)
{
    const int errorBefore = errno;
    isAway = true;
    leave();
    ::raise(signal);
    // Reached only when a stopped program continues. The next draw() switches to the alternate
    // screen again.
    isAway = false;
    catchOnce(signal, catchSignal);
    errno = errorBefore;
}

} // namespace

bool TerminalScreen::isUsable()
{
    const QByteArray kind = qgetenv("TERM");
    return ::isatty(STDOUT_FILENO) == 1 && !kind.isEmpty() && kind != "dumb";
}

TerminalScreen::TerminalScreen() : m_hasKeyboard(::isatty(STDIN_FILENO) == 1)
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

void TerminalScreen::draw(const QString &lines) const
{
    if (isAway)
        return;
    if (!hasOtherSettings && keyboard() >= 0)
        takeSingleKeys();
    QString sequence;
    if (!isEntered.exchange(true))
        sequence = QLatin1String(enterSequence.data(), static_cast<int>(enterSequence.size()));
    // Starts at the top, without line wrapping. Each line clears the rest of its line, the last one
    // the rest of the screen.
    sequence += u"\x1b[H\x1b[?7l" + QString(lines).replace(u'\n', QStringLiteral("\x1b[K\n"))
                + u"\x1b[J\x1b[?7h";
    print(stdout, sequence);
}

int TerminalScreen::keyboard() const
{
    return m_hasKeyboard && ::tcgetpgrp(STDIN_FILENO) == ::getpgrp() ? STDIN_FILENO : -1;
}

QByteArray TerminalScreen::takeKeys()
{
    QByteArray keys(256, Qt::Uninitialized);
    const ssize_t count = ::read(STDIN_FILENO, keys.data(), static_cast<std::size_t>(keys.size()));
    m_hasKeyboard = count > 0;
    return keys.left(static_cast<int>(std::max<ssize_t>(count, 0)));
}
