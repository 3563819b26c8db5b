#pragma once

#include "host/host.h"
#include "host/outputformat.h"

#include <QList>

/// One log entry, in CSV as for a table.
QString logText(OutputFormat format, const LogEntry &entry);

/// An entry and how often it came in succession.
struct CountedEntry
{
    LogEntry entry;
    qint64 count = 1;
};

/// The entry as it stands in a log for people, its count behind it unless that is 1. Ends with a
/// line feed.
QString countedText(const CountedEntry &counted);

/// Prints the plug-in's log entries: in JSON each to standard output, else to standard error, where
/// an entry that comes again and again is printed once, and its count when another one comes.
class LogOutput
{
public:
    explicit LogOutput(OutputFormat format) : m_format(format) {}

    /// Takes an entry when it comes.
    void add(const LogEntry &entry);

    /// Prints the count that is still open. To be called at the end, too.
    void printPendingCount();

    /// From now on keeps the latest entries instead of printing them.
    void pause();

    /// Prints what was kept and goes on printing. Does nothing without pause().
    void resume();

    /// The latest entries, those in succession as one; the latest one is the last. Of those that
    /// are kept, no more than a few.
    const QList<CountedEntry> &latest() const { return m_latest; }

private:
    OutputFormat m_format;
    bool m_isPaused = false;
    /// How often the last of `m_latest` was printed or counted in print.
    qint64 m_printedCount = 0;
    QList<CountedEntry> m_latest;
};
