#pragma once

#include "host/host.h"
#include "host/outputformat.h"
#include "host/progressline.h"

#include <QList>

#include <cstdio>

/// One log entry as a line. In CSV it is the same as in a table.
QString logText(OutputFormat format, const LogEntry &entry);

/// An entry and how often it was repeated in succession.
struct CountedEntry
{
    LogEntry entry;
    qint64 count = 1;
};

/// The entry as text, followed by its count if that is not 1. Ends with a line feed.
QString countedText(const CountedEntry &counted);

/// Prints the plug-in's log entries. In JSON every entry goes to standard output. Otherwise they go
/// to standard error, where an entry that is repeated is printed once, and again with its count
/// when another one comes.
class LogOutput
{
public:
    /// `progress` is cleared before an entry is printed; a null pointer when there is none.
    explicit LogOutput(OutputFormat format, ProgressLine *progress = nullptr)
        : m_format(format), m_progress(progress)
    {
    }

    /// Prints or counts a new entry.
    void add(const LogEntry &entry);

    /// Prints the last entry with its count if it was repeated since it was printed. Must be called
    /// at the end, too.
    void printPendingCount();

    /// Stops printing; the latest entries are kept.
    void pause();

    /// Prints the kept entries and continues printing. Does nothing without pause().
    void resume();

    /// At most five latest entries, the newest one last. Repeated entries count as one.
    const QList<CountedEntry> &latest() const { return m_latest; }

private:
    void printEntry(FILE *stream, const QString &text) const;

    OutputFormat m_format;
    ProgressLine *m_progress;
    bool m_isPaused = false;
    /// The count of the last of `m_latest` that was printed.
    qint64 m_printedCount = 0;
    QList<CountedEntry> m_latest;
};
