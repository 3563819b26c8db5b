#pragma once

#include <QByteArray>
#include <QString>

/// The size of a terminal in characters.
struct ScreenSize
{
    int columns = 80;
    int rows = 24;
};

/// Draws on the terminal of standard output. Uses the alternate screen, so that the earlier content
/// comes back at the end. Standard input, if it is a terminal, gives each key at once and does not
/// show it. There must be only one object at a time. A signal that ends or stops the
/// program restores the terminal first.
class TerminalScreen
{
public:
    /// Whether standard output is a terminal with escape sequences.
    static bool isUsable();

    TerminalScreen();
    ~TerminalScreen();
    TerminalScreen(const TerminalScreen &) = delete;
    TerminalScreen &operator=(const TerminalScreen &) = delete;

    /// The current size without the last column: clearing the rest of a full line would remove its
    /// last character. 80 by 24 when the size is unknown.
    static ScreenSize size();

    /// Shows only these lines, separated by line feeds, from the top. They must fit into the size
    /// and have no control characters but colour sequences.
    void draw(const QString &lines) const;

    /// Standard input, to wait for keys there; -1 while it gives none: it is no terminal, or the
    /// program is in the background, where reading would stop it.
    int keyboard() const;

    /// The keys that were typed, as the terminal sends them; waits for one.
    QByteArray takeKeys();

private:
    bool m_hasKeyboard;
};
