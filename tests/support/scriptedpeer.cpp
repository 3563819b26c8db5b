#include "scriptedpeer.h"

#include "loopback.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
constexpr std::chrono::seconds timeout{10};
}

ScriptedPeer::ScriptedPeer(QList<Answer> script) : m_script(std::move(script))
{
    m_listener = listenOnLoopback(SOMAXCONN, &m_port);
    m_wake = ::eventfd(0, EFD_CLOEXEC);
    if (m_wake < 0)
        qFatal("the scripted peer cannot be started");
    m_thread = std::thread([this] { run(); });
}

ScriptedPeer::~ScriptedPeer()
{
    {
        const std::lock_guard lock(m_mutex);
        for (Connection &connection : m_connections)
            closeDescriptor(connection.descriptor);
    }
    finish();
    ::close(m_wake);
}

bool ScriptedPeer::waitForConnections(int count)
{
    std::unique_lock lock(m_mutex);
    return m_accepted.wait_for(
        lock, timeout, [&] { return m_connections.size() >= static_cast<std::size_t>(count); });
}

void ScriptedPeer::send(const QByteArray &bytes)
{
    const std::lock_guard lock(m_mutex);
    ::send(m_connections.back().descriptor, bytes.constData(),
           static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
}

void ScriptedPeer::closeConnection()
{
    const std::lock_guard lock(m_mutex);
    closeDescriptor(m_connections.back().descriptor);
}

QByteArray ScriptedPeer::finish()
{
    if (m_thread.joinable()) {
        {
            const std::lock_guard lock(m_mutex);
            m_finishing = true;
        }
        const std::uint64_t one = 1;
        if (::write(m_wake, &one, sizeof one) < 0)
            qFatal("the scripted peer cannot be stopped");
        m_thread.join();
    }
    QByteArray received;
    for (const Connection &connection : m_connections)
        received += connection.received;
    return received;
}

int ScriptedPeer::connectionCount()
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_connections.size());
}

void ScriptedPeer::run()
{
    QDeadlineTimer deadline(QDeadlineTimer::Forever);
    bool finishing = false;
    while (!deadline.hasExpired()) {
        std::vector<pollfd> watched;
        {
            const std::lock_guard lock(m_mutex);
            if (m_finishing && !finishing) {
                finishing = true;
                deadline.setRemainingTime(timeout);
                acceptPending();
                closeDescriptor(m_listener);
            }
            watched = {{finishing ? -1 : m_wake, POLLIN, 0}, {m_listener, POLLIN, 0}};
            for (const Connection &connection : m_connections)
                watched.push_back({connection.descriptor, POLLIN, 0});
        }
        const bool anyOpen = std::any_of(watched.begin(), watched.end(),
                                         [](pollfd entry) { return entry.fd >= 0; });
        if (!anyOpen)
            return;
        ::poll(watched.data(), watched.size(), static_cast<int>(deadline.remainingTime()));

        const std::lock_guard lock(m_mutex);
        acceptPending();
        for (Connection &connection : m_connections)
            receive(connection);
    }
}

void ScriptedPeer::acceptPending()
{
    for (;;) {
        const int client = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            return;
        m_connections.push_back({client, {}, 0});
        m_accepted.notify_all();
    }
}

// Receives what has arrived, without waiting.
void ScriptedPeer::receive(Connection &connection)
{
    std::array<char, 4096> buffer;
    while (connection.descriptor >= 0) {
        const ssize_t count
            = ::recv(connection.descriptor, buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count < 0 && errno == EAGAIN)
            return;
        if (count <= 0) {
            closeDescriptor(connection.descriptor);
            return;
        }
        connection.received.append(buffer.data(), static_cast<int>(count));
        answerLines(connection);
    }
}

void ScriptedPeer::answerLines(Connection &connection)
{
    for (;;) {
        const int end = connection.received.indexOf('\r', connection.served);
        if (end < 0)
            return;
        connection.served = end + 1;
        if (m_nextAnswer == m_script.size())
            return;
        const Answer &answer = m_script.at(m_nextAnswer++);
        ::send(connection.descriptor, answer.bytes.constData(),
               static_cast<std::size_t>(answer.bytes.size()), MSG_NOSIGNAL);
        if (answer.then == Answer::Close)
            closeDescriptor(connection.descriptor);
    }
}

void ScriptedPeer::closeDescriptor(int &descriptor)
{
    if (descriptor < 0)
        return;
    // A close alone would not be sent while the peer's own thread waits on the descriptor.
    ::shutdown(descriptor, SHUT_RDWR);
    ::close(descriptor);
    descriptor = -1;
}
