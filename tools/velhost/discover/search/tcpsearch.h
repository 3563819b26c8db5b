#pragma once

#include "discover/search/findings.h"
#include "discover/search/searcharea.h"

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include <functional>

/// Asks one endpoint by TCP.
class TcpProbe : public QObject
{
    Q_OBJECT

public:
    TcpProbe(Endpoint endpoint, QObject *parent);

    /// Connects. finished() is emitted within 1.5 seconds, perhaps during this call.
    void start();

    /// The result after finished(): whether a connection was made, and the answer.
    bool wasConnected() const { return m_wasConnected; }
    Finding finding() const;

    /// Why the system gave no socket, so that nothing is known; empty when it gave one.
    const QString &resourceError() const { return m_resourceError; }

Q_SIGNALS:
    void finished();

private:
    void readAnswer();
    void handleError(QAbstractSocket::SocketError error);
    void finish();

    Endpoint m_endpoint;
    QTcpSocket m_socket;
    QTimer m_timeout;
    QByteArray m_received;
    bool m_wasConnected = false;
    bool m_isFinished = false;
    QString m_resourceError;
};

/// Asks every endpoint by TCP, at most 128 of them at once.
class TcpSearch : public QObject
{
    Q_OBJECT

public:
    using FindingHandler = std::function<void(const Finding &)>;

    TcpSearch(Endpoints endpoints, FindingHandler onFinding);

    /// Starts as many probes as the limit allows.
    void startProbes();

    quint64 count() const { return m_endpoints.count(); }
    /// How many probes have finished with a socket.
    quint64 asked() const { return m_asked; }
    bool isDone() const { return m_next == count() && m_inFlight == 0; }

    /// Why the system gave no socket for some probe; empty when there was always one.
    const QString &error() const { return m_error; }

private:
    void probeFinished(TcpProbe *probe);

    Endpoints m_endpoints;
    FindingHandler m_onFinding;
    quint64 m_next = 0;
    quint64 m_asked = 0;
    int m_inFlight = 0;
    QString m_error;
};
