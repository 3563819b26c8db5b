#include "host/wireoutput.h"

#include <common/console.h>
#include <common/visibletext.h>

WireOutput::WireOutput(OutputFormat format, const WireSetup &setup)
    : m_format(format), m_prints(setup.prints), m_file(setup.file)
{
    if (!setup.file.isEmpty())
        m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

QString WireOutput::fileError() const
{
    if (m_file.error() == QFileDevice::NoError)
        return {};
    return QStringLiteral("the trace %1 cannot be written: %2")
        .arg(m_file.fileName(), m_file.errorString());
}

QMap<int, QString> WireOutput::endCall(const LogList &list, qint64 cycle)
{
    QMap<int, QString> suspects;
    const QList<WireEvent> events = m_tap.takeEvents();
    for (const WireEvent &wireEvent : events) {
        const auto &[event, item] = wireEvent;
        const Verdict verdict = judge(event);
        if (isSuspect(verdict)) {
            suspects.insert(item, verdict.text);
            m_wasSuspect = true;
        }
        const QString itemName = item < 0 ? QString() : list.dataItems.at(item).item.name;
        show(event, {cycle, list.name, itemName}, verdict);
    }
    return suspects;
}

Verdict WireOutput::judge(const TraceEvent &event)
{
    if (event.name == QLatin1String("close")) {
        m_conversations.remove(event.connection);
        return {};
    }
    return m_conversations[event.connection].take(event, false);
}

void WireOutput::show(const TraceEvent &event, const Place &place, const Verdict &verdict)
{
    if (!m_prints && !m_file.isOpen())
        return;
    QList<JsonMember> members = wireMembers(event);
    if (!place.device.isEmpty())
        members += {{"cycle", place.cycle}, {"device", place.device}};
    if (!place.item.isEmpty())
        members.append({"item", place.item});
    if (isSuspect(verdict))
        members.append({"suspect", verdict.text});
    if (m_file.isOpen())
        m_file.write(wireLine(members));
    if (!m_prints)
        return;
    if (m_format == OutputFormat::Json) {
        print(stdout, jsonLine("wire", members));
        return;
    }
    QString text = visible(place.device.isEmpty() ? event.peer : place.device);
    if (!place.item.isEmpty())
        text += u'/' + visible(place.item);
    print(stderr, u"wire: " + text + u' ' + wireText(event, verdict) + u'\n');
}
