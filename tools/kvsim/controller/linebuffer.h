#pragma once

#include <QByteArray>

#include <optional>

/// One command line as it came in.
struct Line
{
    /// Without the carriage return and without line feeds. Of a line that is too long only its
    /// first bytes, to show.
    QByteArray text;
    bool tooLong = false;
    /// It has a carriage return of its own.
    bool ended = true;
};

/// Cuts one client's stream of bytes into command lines. A line ends at a carriage return; line
/// feeds are dropped wherever they stand.
class LineBuffer
{
public:
    /// The longest line in bytes. The longest sensible command, a WRS of 1,000 words, has 7,017.
    static constexpr int maximumLength = 64 * 1024;

    /// How many bytes of a line that is too long are handed out.
    static constexpr int shownLength = 40;

    void append(const QByteArray &bytes);

    /// Takes the next line, or nothing before its end has come. A line over `maximumLength` is
    /// reported once, as soon as it is too long; its bytes are then dropped up to its end.
    std::optional<Line> next();

private:
    QByteArray m_bytes;
    bool m_dropping = false;
};
