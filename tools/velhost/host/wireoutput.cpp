#include "host/wireoutput.h"

#include <common/console.h>
#include <common/visibletext.h>

WireOutput::WireOutput(OutputFormat format, const WireSetup &setup)
    : m_format(format), m_prints(setup.prints), m_file(setup.file)
{
    if (!setup.file.isEmpty())
        m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

bool WireOutput::canWrite() const
{
    if (m_file.error() == QFileDevice::NoError)
        return true;
    printError(QStringLiteral("the trace %1 cannot be written: %2")
                   .arg(m_file.fileName(), m_file.errorString()));
    return false;
}

QMap<int, QString> WireOutput::endCall(const LogList &list, qint64 cycle)
{
    QMap<int, QString> suspects;
    const QList<WireEvent> events = m_tap.takeEvents();
    for (const WireEvent &wireEvent : events) {
        const TraceEvent &event = wireEvent.event;
        const Verdict verdict = m_conversations[event.connection].take(event, false);
        if (event.name == QLatin1String("close"))
            m_conversations.remove(event.connection);
        if (isSuspect(verdict)) {
            suspects.insert(wireEvent.item, verdict.text);
            m_wasSuspect = true;
        }
        if (m_prints || m_file.isOpen())
            show(wireEvent, verdict, list, cycle);
    }
    return suspects;
}

void WireOutput::show(const WireEvent &wireEvent, const Verdict &verdict, const LogList &list,
                      qint64 cycle)
{
    auto [event, item, time] = wireEvent;
    event.time = wireTime(time);
    QString place = visible(list.name.isEmpty() ? event.peer : list.name);
    QList<JsonMember> members = wireMembers(event, verdict);
    if (!list.name.isEmpty())
        members += {{"cycle", cycle}, {"device", list.name}};
    if (item >= 0) {
        const QString name = list.dataItems.at(item).item.name;
        members.append({"item", name});
        place += u'/' + visible(name);
    }
    if (m_file.isOpen())
        m_file.write(wireLine(members));
    if (m_prints && m_format == OutputFormat::Json)
        print(stdout, jsonLine("wire", members));
    else if (m_prints)
        print(stderr, u"wire: " + place + u' ' + wireText(event, verdict) + u'\n');
}
