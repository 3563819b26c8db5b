#include "trace/wiretext.h"

#include <common/visibletext.h>

#include <QDateTime>

namespace {

QString what(const TraceEvent &event)
{
    if (event.name == QLatin1String("sent"))
        return u"> " + visible(latin1(event.bytes));
    if (event.name == QLatin1String("received"))
        return u"< " + visible(latin1(event.bytes));
    return event.outcome.isEmpty() ? event.name : event.name + u": " + event.outcome;
}

} // namespace

QString latin1(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

QString wireTime(qint64 microseconds)
{
    const QDateTime seconds = QDateTime::fromSecsSinceEpoch(microseconds / 1000000, Qt::UTC);
    return seconds.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss."))
           + QStringLiteral("%1Z").arg(microseconds % 1000000, 6, 10, QChar(u'0'));
}

QString wireText(const TraceEvent &event, const Verdict &verdict)
{
    QString text = what(event);
    if (event.waited >= 0)
        text += u"  " + QString::number(static_cast<double>(event.waited) / 1000, 'f', 3) + u" ms";
    if (!verdict.text.isEmpty())
        text += (isSuspect(verdict) ? u"  SUSPECT: " : u"  ") + verdict.text;
    return text;
}

QList<JsonMember> wireMembers(const TraceEvent &event, const Verdict &verdict)
{
    QList<JsonMember> members{{"time", event.time},     {"process", event.process},
                              {"thread", event.thread}, {"connection", event.connection},
                              {"peer", event.peer},     {"event", event.name}};
    if (!event.outcome.isEmpty())
        members.append({"outcome", event.outcome});
    if (event.waited >= 0)
        members.append({"waited_us", event.waited});
    if (!event.bytes.isEmpty())
        members.append({"bytes", latin1(event.bytes)});
    if (isSuspect(verdict))
        members.append({"suspect", verdict.text});
    return members;
}

QByteArray wireLine(const QList<JsonMember> &members)
{
    QByteArray line;
    const QString json = jsonObject(members);
    for (const QChar character : json) {
        if (character <= u'~')
            line += character.toLatin1();
        else
            line += "\\u" + QByteArray::number(character.unicode(), 16).rightJustified(4, '0');
    }
    return line + '\n';
}
