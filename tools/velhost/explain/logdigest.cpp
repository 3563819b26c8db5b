#include "explain/logdigest.h"

#include <common/json/json.h>
#include <common/table.h>
#include <common/visibletext.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr int maximumTexts = 1000;

struct LogLine
{
    QString text;
    QString device = {};
    QString time = {};
    /// How often the entry had come by then.
    qint64 count = 1;
    /// A log error or a message of velhost.
    bool isOurs = false;
};

LogLine logLine(const QString &line)
{
    const QJsonObject json = QJsonDocument::fromJson(line.toUtf8()).object();
    if (json.value(u"level").toString() == u"error")
        return {json.value(u"text").toString(), json.value(u"device").toString(),
                json.value(u"time").toString(), 1, true};
    if (json.contains(u"type"))
        return {{}};
    static const QRegularExpression time(QStringLiteral(
        "\\d{4}-\\d\\d-\\d\\d[T ]\\d\\d:\\d\\d:\\d\\d([.,]\\d+)?(Z|[+-]\\d\\d:?\\d\\d)?"
        "|[A-Z][a-z]{2} [ \\d]\\d \\d\\d:\\d\\d:\\d\\d"));
    static const QRegularExpression ours(
        QStringLiteral("\\b(?:log error: (?:(?<device>.*?), cycle \\d+: )?(?<text>.*?)"
                       "(?: \\(x (?<count>\\d+)\\))?|(?<message>velhost: .*))\\z"));
    const QString timeText = time.match(line).captured();
    const QRegularExpressionMatch match = ours.match(line);
    if (!match.hasMatch())
        return {line, {}, timeText};
    return {match.captured(u"text") + match.captured(u"message"), match.captured(u"device"),
            timeText, std::max(match.captured(u"count").toLongLong(), qint64(1)), true};
}

/// The error that the text tells; one without an id for a text that tells none.
KnownError errorOf(const QString &text, const QList<KnownError> &catalogue)
{
    const QList<KnownError> errors = explanations(text, catalogue);
    KnownError result;
    result.text = visible(text);
    // A text that is never reported, such as "OK", is one by chance.
    if (errors.isEmpty() || errors.first().places.isEmpty())
        return result;
    if (errors.size() == 1)
        return errors.first();
    result.text = errors.first().text;
    result.title = QStringLiteral("has several meanings");
    return result;
}

} // namespace

void LogDigest::add(const QString &line)
{
    const LogLine parsed = logLine(line);
    const KnownError error = errorOf(parsed.text, m_catalogue);
    const QString latest = m_causes.value(parsed.device);
    const QString cause = error.follows.contains(latest) ? latest : QString();
    auto entry = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry &candidate) {
        return candidate.error.id == error.id && candidate.error.text == error.text
               && candidate.cause == cause;
    });
    const bool isText = parsed.isOurs || !error.title.isEmpty();
    if (!isText || (entry == m_entries.end() && m_entries.size() == maximumTexts)) {
        ++m_otherLines;
        return;
    }
    if (entry == m_entries.end())
        entry = m_entries.insert(entry, {error, cause, 0, parsed.time, {}});
    if (cause.isEmpty() && m_causes.size() < maximumTexts)
        m_causes.insert(parsed.device, error.id);
    const QString key = parsed.device + u'/' + parsed.text;
    entry->count += parsed.count - (parsed.count > 1 && m_begun.contains(key) ? 1 : 0);
    if (parsed.isOurs && m_begun.size() < maximumTexts)
        m_begun.insert(key);
    entry->last = parsed.time.isEmpty() ? entry->last : parsed.time;
}

QString LogDigest::text(OutputFormat format) const
{
    QString lines;
    QList<QStringList> rows{QStringLiteral("Count,First,Last,Text").split(u',')};
    const auto add = [&](const Entry &entry) {
        const KnownError &error = entry.error;
        lines += jsonLine("count", {{"id", error.id},
                                    {"text", error.text},
                                    {"after", entry.cause},
                                    {"count", entry.count},
                                    {"first", entry.first},
                                    {"last", entry.last}});
        QString shown = (entry.cause.isEmpty() ? QString() : QStringLiteral("then ")) + error.text;
        if (!error.title.isEmpty())
            shown += u": " + error.title;
        rows.append({QString::number(entry.count), entry.first, entry.last, shown});
    };
    for (const Entry &entry : m_entries) {
        if (!entry.cause.isEmpty())
            continue;
        add(entry);
        for (const Entry &consequence : m_entries) {
            if (!consequence.cause.isEmpty() && consequence.cause == entry.error.id)
                add(consequence);
        }
    }
    if (format == OutputFormat::Json)
        return lines + jsonLine("others", {{"lines", m_otherLines}});
    return (isEmpty() ? QString() : tableText(rows))
           + QStringLiteral("%1 other lines\n").arg(m_otherLines);
}
