#pragma once

#include <QString>

/// How much a terminal shows.
struct ScreenSize
{
    int columns = 80;
    int rows = 24;
};

/// The terminal behind standard output as a screen that is drawn again and again. It has the
/// terminal's second screen for itself, so that what stood there before comes back, and is the only
/// one of its kind. A signal that ends or stops the program gives the terminal back first.
class TerminalScreen
{
public:
    /// Whether standard output is a terminal that knows how to be drawn on.
    static bool isUsable();

    TerminalScreen();
    ~TerminalScreen();
    TerminalScreen(const TerminalScreen &) = delete;
    TerminalScreen &operator=(const TerminalScreen &) = delete;

    /// As the terminal is now, without its last column: to wipe what is behind a line would take a
    /// character there, too. 80 by 24 when the terminal does not tell.
    static ScreenSize size();

    /// Shows these lines, separated by line feeds, from the top, and nothing else. They must fit,
    /// and hold no control characters but those that set the colour.
    void draw(const QString &lines);
};
