#include "minimalserver.h"

#include "loopback.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <netinet/in.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr std::array<char, 8> command = {'R', 'D', ' ', 'D', '2', '0', '1', '\r'};

[[noreturn]] void fail(const char *what)
{
    std::perror(what);
    std::exit(EXIT_FAILURE);
}

void answer(int descriptor)
{
    static constexpr std::array<char, 7> word = {'1', '2', '3', '4', '5', '\r', '\n'};
    constexpr std::size_t modbusRequestSize = 12;
    std::array<char, 4096> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
    const ssize_t size = ::read(descriptor, buffer.data(), buffer.size());
    if (size <= 0) {
        ::close(descriptor);
    } else if (static_cast<std::size_t>(size) == modbusRequestSize) {
        // Transaction, protocol, length, unit, function, bytes, register.
        const std::array<char, 11> reply
            = {buffer[0], buffer[1], 0, 0, 0, 5, buffer[6], 3, 2, 0x30, 0x39};
        ::send(descriptor, reply.data(), reply.size(), MSG_NOSIGNAL);
    } else {
        ::send(descriptor, word.data(), word.size(), MSG_NOSIGNAL);
    }
}

[[noreturn]] void serve(int listener)
{
    const int events = ::epoll_create1(0);
    const auto watch = [events](int descriptor) {
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.fd = descriptor;
        if (::epoll_ctl(events, EPOLL_CTL_ADD, descriptor, &event) != 0)
            fail("minimal server");
    };
    watch(listener);
    std::array<epoll_event, 64> ready{};
    for (;;) {
        const int count = ::epoll_wait(events, ready.data(), static_cast<int>(ready.size()), -1);
        for (int i = 0; i < count; ++i) {
            const int descriptor = ready[static_cast<std::size_t>(i)].data.fd;
            if (descriptor == listener)
                watch(::accept(listener, nullptr, nullptr));
            else
                answer(descriptor);
        }
    }
}

} // namespace

MinimalServer::MinimalServer()
{
    const int listener = listenOnLoopback(4096, &m_port);
    m_process = ::fork();
    if (m_process == 0)
        serve(listener);
    ::close(listener);
}

MinimalServer::~MinimalServer()
{
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

void allowManyDescriptors()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0)
        fail("descriptors");
}

int connectedTo(int port)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopbackAddress(port);
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        fail("connect");
    return descriptor;
}

void exchangeBare(int descriptor, int count)
{
    std::array<char, 4096> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
    for (; count > 0; --count) {
        pollfd watched{descriptor, POLLIN, 0};
        if (::send(descriptor, command.data(), command.size(), MSG_NOSIGNAL) <= 0
            || ::poll(&watched, 1, 2000) != 1
            || ::read(descriptor, buffer.data(), buffer.size()) <= 0)
            fail("bare exchange");
    }
}
