#include "network/listener.h"

#include <common/console.h>

#include <QSocketNotifier>
#include <QTcpSocket>

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

Listener::Listener(QObject *parent) : QObject(parent), m_pause(this)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseMs);
    connect(&m_pause, &QTimer::timeout, this, [this] { m_notifier->setEnabled(true); });
}

Listener::~Listener() = default;

bool Listener::listen(const QHostAddress &address, quint16 port)
{
    if (!m_server.listen(address, port))
        return false;
    m_server.pauseAccepting();
    const auto descriptor = static_cast<int>(m_server.socketDescriptor());
    // Qt lets 50 clients wait; of more, each loses a second before it tries again.
    ::listen(descriptor, SOMAXCONN);
    m_notifier = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &Listener::accept);
    return true;
}

void Listener::close()
{
    m_pause.stop();
    m_notifier.reset();
    m_server.close();
}

// Takes one client, so that other sockets get their turn. The notifier tells again of the next one.
void Listener::accept()
{
    const int descriptor
        = ::accept4(static_cast<int>(m_server.socketDescriptor()), nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor >= 0) {
        auto *socket = new QTcpSocket(this);
        socket->setSocketDescriptor(descriptor);
        Q_EMIT clientCame(socket);
    } else if (isShortage(errno)) {
        pause();
    }
}

void Listener::pause()
{
    const QString reason = qt_error_string(errno);
    m_notifier->setEnabled(false);
    m_pause.start();
    static std::atomic_flag isTold = ATOMIC_FLAG_INIT;
    if (!isTold.test_and_set())
        printError(QStringLiteral("cannot accept more clients: %1. They wait until others go; "
                                  "raise the limit of open files (ulimit -n) before the start.")
                       .arg(reason));
}
