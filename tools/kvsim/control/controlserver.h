#pragma once

#include "control/control.h"
#include "network/listener.h"

/// Lets programs on the same machine look into controllers and change them, see answerControl(). A
/// search for controllers, the command "?K" of Host Link, is told that this port is none.
class ControlServer : public Listener
{
    Q_OBJECT

public:
    /// The longest line in bytes; a client that sends a longer one gets an error and is closed.
    static constexpr int maximumLine = 4096;

    explicit ControlServer(ControlTarget target);

protected:
    void welcome(QTcpSocket *socket) override;

private:
    void serve(QTcpSocket *socket);

    ControlTarget m_target;
};
