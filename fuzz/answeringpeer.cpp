#include "answeringpeer.h"

#include "loopback.h"

#include <array>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

AnsweringPeer *current = nullptr;

struct Listener
{
    int port = 0;
    int descriptor = listenOnLoopback(16, &port);
};

const Listener &listener()
{
    static const Listener one;
    return one;
}

// libFuzzer looks after the time by a signal, which must not change what is tested.
template<typename Call>
auto withoutInterruption(const Call &call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

} // namespace

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_poll(pollfd *watched, nfds_t count, int timeoutMs);

int __wrap_poll(pollfd *watched, nfds_t count, int timeoutMs)
{
    if (current != nullptr && watched->events == POLLIN)
        current->takeTurn();
    return withoutInterruption([&] { return __real_poll(watched, count, timeoutMs); });
}
}
// NOLINTEND(bugprone-reserved-identifier)

AnsweringPeer::AnsweringPeer(QList<QByteArray> steps) : m_steps(std::move(steps))
{
    current = this;
}

AnsweringPeer::~AnsweringPeer()
{
    acceptPending();
    endConnection();
    current = nullptr;
}

int AnsweringPeer::port()
{
    return listener().port;
}

bool AnsweringPeer::hasSilence() const
{
    return m_steps.contains("silence");
}

void AnsweringPeer::takeTurn()
{
    Exchange exchange{receive(), {}};
    if (m_connection < 0)
        return;
    const QByteArray step = m_steps.isEmpty() ? "close" : m_steps.takeFirst();
    if (step == "close" || step.isEmpty()) {
        ::shutdown(m_connection, SHUT_WR);
    } else if (step == "reset") {
        endConnection();
    } else if (step != "silence") {
        const auto size = static_cast<std::size_t>(step.size());
        const bool isSent = ::send(m_connection, step.constData(), size, MSG_NOSIGNAL) > 0;
        exchange.answer = isSent ? step : QByteArray();
    }
    m_exchanges.append(exchange);
}

QList<Exchange> AnsweringPeer::takeExchanges()
{
    return std::exchange(m_exchanges, {});
}

// Takes the connections that have come, and the newest one for the one to serve.
void AnsweringPeer::acceptPending()
{
    for (;;) {
        const int client = ::accept4(listener().descriptor, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            return;
        endConnection();
        m_connection = client;
    }
}

// The command that the plug-in has sent, perhaps on a new connection. Both may still be on their
// way, or were sent to a connection that was reset: then there is no connection.
QByteArray AnsweringPeer::receive()
{
    constexpr int longestMs = 1000;
    for (;;) {
        acceptPending();
        std::array<char, 65536> buffer;
        const ssize_t count = withoutInterruption(
            [&] { return ::recv(m_connection, buffer.data(), buffer.size(), 0); });
        if (count > 0)
            return {buffer.data(), static_cast<int>(count)};
        endConnection();
        pollfd watched{listener().descriptor, POLLIN, 0};
        if (withoutInterruption([&] { return __real_poll(&watched, 1, longestMs); }) <= 0)
            return {};
    }
}

void AnsweringPeer::endConnection()
{
    if (m_connection < 0)
        return;
    constexpr linger atOnce{1, 0};
    ::setsockopt(m_connection, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    ::close(std::exchange(m_connection, -1));
}
