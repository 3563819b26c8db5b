#pragma once

#include <QSocketNotifier>
#include <QTcpServer>

#include <memory>

class QTcpSocket;

/// Accepts TCP clients on one port. When there is no descriptor for a further client it says so,
/// once in the whole program, and lets clients wait until others go. QTcpServer alone tells nobody
/// then, and either keeps a processor core busy or accepts no client any more.
class Listener : public QTcpServer
{
    Q_OBJECT

public:
    using QTcpServer::QTcpServer;

    /// Port 0 picks a free one. False when that is not possible: `errorString()` then tells why.
    bool listen(const QHostAddress &address, quint16 port);
    void close();

protected:
    /// A client has come. The listener owns the socket until it gets another parent.
    virtual void welcome(QTcpSocket *socket) = 0;

private:
    void accept();
    void pause();

    std::unique_ptr<QSocketNotifier> m_notifier;
};
