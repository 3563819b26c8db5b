#include "host/logoutput.h"

#include <common/console.h>
#include <common/json/json.h>
#include <common/visibletext.h>

namespace {

constexpr int maximumKept = 5;

bool isSame(const LogEntry &left, const LogEntry &right)
{
    return left.level == right.level && left.text == right.text;
}

} // namespace

QString logText(OutputFormat format, const LogEntry &entry)
{
    const QString level
        = entry.level == LogEntry::Level::Error ? QStringLiteral("error") : QStringLiteral("debug");
    if (format != OutputFormat::Json)
        return u"log " + level + u": " + visible(entry.text) + u'\n';
    return jsonLine("log", {{"level", level}, {"text", entry.text}});
}

QString countedText(const CountedEntry &counted)
{
    QString text = logText(OutputFormat::Table, counted.entry);
    if (counted.count == 1)
        return text;
    text.chop(1);
    return text + QStringLiteral(" (x %1)\n").arg(counted.count);
}

void LogOutput::add(const LogEntry &entry)
{
    if (m_format == OutputFormat::Json) {
        printEntry(stdout, logText(m_format, entry));
        return;
    }
    if (!m_latest.isEmpty() && isSame(m_latest.last().entry, entry)) {
        ++m_latest.last().count;
        return;
    }
    if (!m_isPaused)
        printPendingCount();
    m_latest.append({entry, 1});
    if (m_latest.size() > maximumKept)
        m_latest.removeFirst();
    m_printedCount = m_isPaused ? 0 : 1;
    if (!m_isPaused)
        printEntry(stderr, countedText(m_latest.last()));
}

void LogOutput::printPendingCount()
{
    if (m_latest.isEmpty() || m_latest.last().count == m_printedCount)
        return;
    printEntry(stderr, countedText(m_latest.last()));
    m_printedCount = m_latest.last().count;
}

void LogOutput::pause()
{
    printPendingCount();
    m_latest.clear();
    m_isPaused = true;
}

void LogOutput::resume()
{
    if (!m_isPaused)
        return;
    m_isPaused = false;
    for (const CountedEntry &counted : std::as_const(m_latest))
        printEntry(stderr, countedText(counted));
    m_printedCount = m_latest.isEmpty() ? 0 : m_latest.last().count;
}

void LogOutput::printEntry(FILE *stream, const QString &text) const
{
    if (m_progress != nullptr)
        m_progress->clear();
    print(stream, text);
}
