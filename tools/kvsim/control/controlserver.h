#pragma once

#include "control/control.h"
#include "network/listener.h"

/// Lets programs on the same machine look into controllers and change them, see answerControl(). A
/// search for controllers, the command "?K" of Host Link, is told that this port is none.
class ControlServer : public QObject
{
    Q_OBJECT

public:
    /// The longest line in bytes; a client that sends a longer one gets an error and is closed.
    static constexpr int maximumLine = 4096;

    /// The controllers must outlive the server.
    explicit ControlServer(ControlTarget target, QObject *parent = nullptr);

    /// Starts to accept clients on 127.0.0.1; port 0 picks a free one. False when that is not
    /// possible: `errorString()` then tells why.
    bool listen(quint16 port);

    QString errorString() const { return m_listener.errorString(); }
    quint16 port() const { return m_listener.port(); }

Q_SIGNALS:
    /// A client wants the simulator to end. Its answer is sent.
    void quitWanted();

private:
    void accept(QTcpSocket *socket);
    void serve(QTcpSocket *socket);

    ControlTarget m_target;
    Listener m_listener;
};
