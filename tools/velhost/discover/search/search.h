#pragma once

#include "discover/search/findings.h"
#include "discover/search/searcharea.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QStringList>
#include <QTcpSocket>
#include <QUdpSocket>
#include <QVector>

#include <list>

/// A search, ready to run.
struct SearchPlan
{
    SearchArea area;
    QVector<quint16> udpPorts;
    QVector<quint16> tcpPorts;
    /// For the whole search, 1 or more.
    int timeoutMs = 1;
};

/// What is asked by one protocol, and how far that is.
struct Questions
{
    Endpoints endpoints;
    /// The number of the next endpoint to ask.
    quint64 next = 0;
    /// How many endpoints have been asked: by UDP to the sending, by TCP to the end.
    quint64 asked = 0;
    /// Why the last one that could not be asked was not; empty when every one could.
    QString error = {};

    quint64 count() const { return endpoints.count(); }
};

/// Asks for the model by UDP, then by TCP, and notes what answers.
class Search
{
public:
    explicit Search(SearchPlan plan);

    /// Takes answers and asks more; to be called a hundred times a second. Returns false when every
    /// address and port was asked or the time is over.
    bool step();

    const Questions &tcp() const { return m_tcp; }
    const Findings &findings() const { return m_findings; }

    /// Why the search is incomplete after its end; empty when it is complete.
    QStringList gaps() const;

private:
    /// One endpoint that is asked by TCP.
    struct Probe
    {
        Endpoint endpoint;
        QDeadlineTimer deadline;
        QTcpSocket socket;
    };

    void askByUdp();
    void takeDatagrams();
    void askByTcp();
    bool takeAnswer(Probe *probe);

    SearchPlan m_plan;
    QDeadlineTimer m_deadline{m_plan.timeoutMs};
    QDeadlineTimer m_udpDeadline{m_plan.timeoutMs / 2};
    Questions m_udp{{m_plan.area.udp, m_plan.udpPorts}};
    Questions m_tcp{{m_plan.area.tcp, m_plan.tcpPorts}};
    QUdpSocket m_socket;
    QElapsedTimer m_sinceQuestion;
    std::list<Probe> m_probes;
    Findings m_findings;
};
