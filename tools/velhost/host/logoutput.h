#pragma once

#include "host/host.h"
#include "host/outputformat.h"
#include "host/progressline.h"

#include <QList>

#include <cstdio>

/// One log entry as a line. In CSV it is the same as in a table.
QString logText(OutputFormat format, const LogEntry &entry);

/// An entry, as it came last, and how often it came.
struct CountedEntry
{
    LogEntry entry;
    qint64 count = 0;
    /// The count that was printed last.
    qint64 printedCount = 0;
};

/// The entry as text, followed by its count if that is not 1. Ends with a line feed.
QString countedText(const CountedEntry &counted);

/// Prints the plug-in's log entries. In JSON every entry goes to standard output. Otherwise they go
/// to standard error, where an entry that a device repeats is printed once, whatever comes between,
/// and again with its count at the end. Of more than a thousand entries the one that came longest
/// ago is printed with its count and forgotten.
class LogOutput
{
public:
    /// `progress` is cleared before an entry is printed.
    LogOutput(OutputFormat format, ProgressLine *progress) : m_format(format), m_progress(progress)
    {
    }

    /// Prints or counts a new entry.
    void add(const LogEntry &entry);

    /// Prints the entries that came again since they were printed, with their counts. Must be
    /// called at the end.
    void printPendingCounts();

    /// Stops printing.
    void pause();

    /// Prints the latest five entries of the pause, forgets the others and continues printing. Does
    /// nothing without pause().
    void resume();

    /// The entries, the one that came last at the end. Repeated entries count as one.
    const QList<CountedEntry> &latest() const { return m_latest; }

private:
    void printPendingCount(const CountedEntry &counted) const;
    void printEntry(FILE *stream, const QString &text) const;

    OutputFormat m_format;
    ProgressLine *m_progress;
    bool m_isPaused = false;
    QList<CountedEntry> m_latest;
};
