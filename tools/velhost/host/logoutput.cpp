#include "host/logoutput.h"

#include "host/timetext.h"

#include <common/console.h>
#include <common/json/json.h>
#include <common/visibletext.h>

#include <algorithm>

namespace {

constexpr int maximumKept = 1000;
// What a pause held back is printed at its end.
constexpr int maximumResumed = 5;

bool isSame(const LogEntry &left, const LogEntry &right)
{
    return left.level == right.level && left.text == right.text && left.device == right.device;
}

QString placeText(const LogEntry &entry)
{
    return entry.device.isEmpty() ? QString()
                                  : QStringLiteral("%1, cycle %2: ")
                                        .arg(visible(entry.device), QString::number(entry.cycle));
}

} // namespace

QString logText(OutputFormat format, const LogEntry &entry)
{
    const QString level
        = entry.level == LogEntry::Level::Error ? QStringLiteral("error") : QStringLiteral("debug");
    if (format != OutputFormat::Json)
        return u"log " + level + u": " + placeText(entry) + visible(entry.text) + u'\n';
    QList<JsonMember> members{{"level", level}, {"time", timeText(entry.time)}};
    if (!entry.device.isEmpty())
        members += {{"device", entry.device}, {"cycle", entry.cycle}};
    members.append({"text", entry.text});
    return jsonLine("log", members);
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
    const auto kept
        = std::find_if(m_latest.begin(), m_latest.end(), [&entry](const CountedEntry &counted) {
              return isSame(counted.entry, entry);
          });
    CountedEntry counted;
    if (kept != m_latest.end()) {
        counted = *kept;
        m_latest.erase(kept);
    }
    counted.entry = entry;
    ++counted.count;
    if (counted.count == 1 && !m_isPaused) {
        printEntry(stderr, countedText(counted));
        counted.printedCount = 1;
    }
    if (m_latest.size() == maximumKept)
        printPendingCount(m_latest.takeFirst());
    m_latest.append(counted);
}

void LogOutput::printPendingCounts()
{
    for (CountedEntry &counted : m_latest) {
        printPendingCount(counted);
        counted.printedCount = counted.count;
    }
}

void LogOutput::pause()
{
    printPendingCounts();
    m_latest.clear();
    m_isPaused = true;
}

void LogOutput::resume()
{
    if (!m_isPaused)
        return;
    m_isPaused = false;
    m_latest = m_latest.mid(std::max(m_latest.size() - maximumResumed, 0));
    printPendingCounts();
}

void LogOutput::printPendingCount(const CountedEntry &counted) const
{
    if (!m_isPaused && counted.count != counted.printedCount)
        printEntry(stderr, countedText(counted));
}

void LogOutput::printEntry(FILE *stream, const QString &text) const
{
    m_progress->clear();
    print(stream, text);
}
