#pragma once

#include <QHostAddress>
#include <QTimer>

class Connection;
class DatagramServer;
class Listener;
class QTcpSocket;
struct Controller;

/// Serves one controller to any number of TCP clients, and over UDP on the same port.
class Server : public QObject
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

    bool isListening() const;
    QString errorString() const { return m_errorString; }
    QHostAddress address() const;
    /// The port in use, 0 while the server is not listening.
    quint16 port() const;

Q_SIGNALS:
    /// After a restart the server could not listen again, `errorString()` tells why.
    void restartFailed();

private:
    void accept(QTcpSocket *socket);
    void restart(int milliseconds);
    void listenAgain();

    Controller *m_controller;
    Listener *m_listener;
    DatagramServer *m_datagrams;
    QString m_errorString;
    QList<Connection *> m_connections;
    /// Runs while a restart keeps the server from listening.
    QTimer m_restartTimer;
    /// Where the server listened before the restart and listens after it.
    QHostAddress m_restartAddress;
    quint16 m_restartPort = 0;
};
