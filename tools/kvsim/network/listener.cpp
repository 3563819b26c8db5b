#include "network/listener.h"

#include <common/console.h>

#include <QTcpSocket>
#include <QTimer>

#include <atomic>
#include <cerrno>

#include <sys/socket.h>

namespace {

// Clients that wait are served at most so long after others went.
constexpr int pauseMs = 100;

bool isShortage(int error)
{
    return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

} // namespace

bool Listener::listen(const QHostAddress &address, quint16 port)
{
    if (!QTcpServer::listen(address, port))
        return false;
    pauseAccepting();
    const auto descriptor = static_cast<int>(socketDescriptor());
    // Qt lets 50 clients wait; of more, each loses a second before it tries again.
    ::listen(descriptor, SOMAXCONN);
    m_notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &Listener::accept);
    return true;
}

void Listener::close()
{
    m_notifier.reset();
    QTcpServer::close();
}

// Takes one client, so that other sockets get their turn. The notifier tells again of the next one.
void Listener::accept()
{
    const int descriptor
        = ::accept4(static_cast<int>(socketDescriptor()), nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor >= 0) {
        auto *socket = new QTcpSocket(this);
        socket->setSocketDescriptor(descriptor);
        welcome(socket);
    } else if (isShortage(errno)) {
        pause();
    }
}

void Listener::pause()
{
    const QString reason = qt_error_string(errno);
    m_notifier->setEnabled(false);
    auto *timer = new QTimer(m_notifier.get());
    connect(timer, &QTimer::timeout, this, [this, timer] {
        timer->deleteLater();
        m_notifier->setEnabled(true);
    });
    timer->start(pauseMs);
    static std::atomic_flag isTold = ATOMIC_FLAG_INIT;
    if (!isTold.test_and_set())
        printError(QStringLiteral("cannot accept more clients: %1. They wait until others go; "
                                  "raise the limit of open files (ulimit -n) before the start.")
                       .arg(reason));
}
