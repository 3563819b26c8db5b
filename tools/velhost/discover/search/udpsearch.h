#pragma once

#include "discover/search/findings.h"
#include "discover/search/searcharea.h"

#include <QElapsedTimer>
#include <QObject>
#include <QUdpSocket>

#include <functional>

/// Asks every endpoint by UDP and accepts answers until it is destroyed.
class UdpSearch : public QObject
{
    Q_OBJECT

public:
    using FindingHandler = std::function<void(const Finding &)>;

    /// `ports` are the ports of the endpoints; datagrams from other ports are ignored.
    UdpSearch(Endpoints endpoints, QVector<quint16> ports, FindingHandler onFinding);

    /// Sends the next questions. Their number is limited so that a hundred calls a second do not
    /// flood the network.
    void sendQuestions();

    /// Whether all questions were sent and the last one was at least `answerMs` milliseconds ago.
    bool isDone(int answerMs) const;

    /// How many questions were not sent, and the last error.
    quint64 unsent() const { return m_endpoints.count() - m_next + m_failed; }
    const QString &error() const { return m_error; }

private:
    void receive();

    Endpoints m_endpoints;
    QVector<quint16> m_ports;
    FindingHandler m_onFinding;
    QUdpSocket m_socket;
    QElapsedTimer m_sinceLast;
    quint64 m_next = 0;
    quint64 m_failed = 0;
    QString m_error;
};
