#pragma once

#include "network/datagramserver.h"
#include "network/listener.h"

class Connection;
struct Controller;

/// Serves one controller to any number of TCP clients, and over UDP on the same port.
class Server : public Listener
{
    Q_OBJECT

public:
    /// `controller` must outlive the server.
    explicit Server(Controller *controller, QObject *parent = nullptr);

    /// Starts to accept clients; port 0 picks a free one. False when that is not possible:
    /// `errorString()` then tells why.
    bool listen(const QHostAddress &address, quint16 port);

    /// Stops accepting clients. Those that are connected stay.
    void close();

    QString errorString() const { return m_errorString; }

Q_SIGNALS:
    /// After a restart the server could not listen again, `errorString()` tells why.
    void restartFailed();

protected:
    void welcome(QTcpSocket *socket) override;

private:
    void restart(int milliseconds);

    Controller *m_controller;
    DatagramServer m_datagrams;
    QString m_errorString;
    QList<Connection *> m_connections;
};
