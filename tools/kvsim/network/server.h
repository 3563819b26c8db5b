#pragma once

#include "network/datagramserver.h"
#include "network/listener.h"

struct Controller;

/// Serves one controller to any number of TCP clients, and over UDP on the same port.
class Server : public Listener
{
    Q_OBJECT

public:
    /// `controller` must outlive the server.
    explicit Server(Controller *controller, QObject *parent = nullptr);

    /// Starts to accept clients; port 0 picks a free one. Returns an empty text, or why that is not
    /// possible.
    QString listen(const QHostAddress &address, quint16 port);

    /// Stops accepting clients. Those that are connected stay.
    void close();

Q_SIGNALS:
    /// After a restart the server could not listen again.
    void restartFailed(const QString &error);

protected:
    void welcome(QTcpSocket *socket) override;

private:
    void restart(int milliseconds);

    Controller *m_controller;
    DatagramServer m_datagrams;
    QList<QTcpSocket *> m_clients;
};
