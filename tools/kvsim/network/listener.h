#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTimer>

#include <memory>

class QSocketNotifier;
class QTcpSocket;

/// Accepts TCP clients on one port. When there is no descriptor for a further client it says so,
/// once in the whole program, and lets clients wait until others go. QTcpServer tells nobody then,
/// and either keeps a processor core busy or accepts no client any more.
class Listener : public QObject
{
    Q_OBJECT

public:
    explicit Listener(QObject *parent = nullptr);
    ~Listener() override;
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    /// Port 0 picks a free one. False when that is not possible: `errorString()` then tells why.
    bool listen(const QHostAddress &address, quint16 port);
    void close();

    bool isListening() const { return m_server.isListening(); }
    QString errorString() const { return m_server.errorString(); }
    QHostAddress address() const { return m_server.serverAddress(); }
    /// 0 while it does not listen.
    quint16 port() const { return m_server.serverPort(); }

Q_SIGNALS:
    /// The listener owns the socket until it gets another parent.
    void clientCame(QTcpSocket *socket);

private:
    void accept();
    void pause();

    /// Only listens; it never accepts.
    QTcpServer m_server;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_pause;
};
