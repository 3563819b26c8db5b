#include "socket.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t receiveBufferSize = 65535;

QString systemText(int errorNumber)
{
    return QString::fromLocal8Bit(std::strerror(errorNumber));
}

// Waits like select() does, but for descriptors of any number: 1 when ready, 0 when the time is up,
// -1 with errno on failure. poll() passes over a negative descriptor and reports a closed one as
// ready, so both are turned into the failure that select() makes of them.
int waitFor(int descriptor, short events, int timeoutMs)
{
    if (descriptor < 0) {
        errno = EBADF;
        return -1;
    }
    const timeval limit = socketTimevalFromMilliseconds(timeoutMs);
    pollfd watched{descriptor, events, 0};
    const int ready
        = ::poll(&watched, 1, static_cast<int>(limit.tv_sec * 1000 + limit.tv_usec / 1000));
    if (ready > 0 && (watched.revents & POLLNVAL) != 0) {
        errno = EBADF;
        return -1;
    }
    return ready;
}

} // namespace

timeval socketTimevalFromMilliseconds(int ms)
{
    const int wait = ms < 0 ? 0 : ms;
    timeval result{};
    result.tv_sec = wait / 1000;
    result.tv_usec = static_cast<suseconds_t>(wait % 1000) * 1000;
    return result;
}

Socket::Socket(QString address, int portNumber) : Socket(std::move(address), portNumber, 0) {}

Socket::Socket(QString address, int portNumber, int timeoutMs)
    : port(portNumber), ip(std::move(address)), error(QStringLiteral("OK"))
{
    timeout = timeoutMs > 1 ? timeoutMs : defaultTimeout;
    reConnect();
}

Socket::Socket(Socket &&other) noexcept
{
    *this = std::move(other);
}

Socket &Socket::operator=(Socket &&other) noexcept
{
    ip = other.ip;
    port = other.port;
    timeout = other.timeout;
    connected = std::exchange(other.connected, false);
    sockfd = std::exchange(other.sockfd, -1);
    descriptorOpen = std::exchange(other.descriptorOpen, false);
    return *this;
}

Socket::~Socket()
{
    if (connected)
        disconnect();
}

bool Socket::connect(QString address, int portNumber, int *descriptor, int timeoutMs)
{
    *descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    // A caller may keep the descriptor elsewhere; then it is not this object's to use and to close.
    const bool keptHere = descriptor == &sockfd;
    if (keptHere)
        descriptorOpen = sockfd >= 0;
    if (*descriptor < 0) {
        error = QStringLiteral("Error opening socket");
        return false;
    }
    return openConnection(*descriptor, address, portNumber, timeoutMs)
           && setBlocking(*descriptor, true);
}

bool Socket::openConnection(int descriptor, const QString &address, int portNumber, int timeoutMs)
{
    const hostent *host = ::gethostbyname(address.toLocal8Bit().constData());
    // An address that does not resolve leaves the text as it was: the caller reports what it finds.
    if (host == nullptr)
        return disconnect();
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    if (host->h_addrtype != AF_INET || host->h_addr_list[0] == nullptr
        || host->h_length < static_cast<int>(sizeof peer.sin_addr)) {
        disconnect();
        error = QStringLiteral("Error resolving address");
        return false;
    }
    std::memcpy(&peer.sin_addr, host->h_addr_list[0], sizeof peer.sin_addr);
    peer.sin_port = htons(static_cast<quint16>(portNumber));

    // A write to a closed peer must not end the host process, whatever the host did to the signal
    // since.
    std::signal(SIGPIPE, SIG_IGN);

    if (!setBlocking(descriptor, false))
        return disconnect();
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&peer), sizeof peer) >= 0)
        return true;
    if (errno != EINPROGRESS && errno != EAGAIN)
        return failAfterDisconnect(QStringLiteral("Error connecting: "));
    return waitForConnection(descriptor, timeoutMs);
}

bool Socket::waitForConnection(int descriptor, int timeoutMs)
{
    const int ready = waitFor(descriptor, POLLOUT, timeoutMs);
    if (ready < 0 && errno != EINTR)
        return failAfterDisconnect(QStringLiteral("Error: "));
    if (ready <= 0) {
        error = QStringLiteral(" Timeout: ") + QString::number(timeoutMs);
        return disconnect();
    }
    int pending = 0;
    socklen_t length = sizeof pending;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &pending, &length) < 0 || pending != 0) {
        const int reason = pending != 0 ? pending : errno;
        disconnect();
        error = QStringLiteral("Error connecting: ") + systemText(reason);
        return false;
    }
    error = QStringLiteral("OK");
    return true;
}

// Names the error number that is left after the connection was closed: the one of before, unless
// closing it failed too.
bool Socket::failAfterDisconnect(const QString &what)
{
    disconnect();
    error = what + systemText(errno);
    return false;
}

bool Socket::setBlocking(int descriptor, bool blocking)
{
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags >= 0) {
        const int wanted = blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK;
        if (::fcntl(descriptor, F_SETFL, wanted) >= 0)
            return true;
    }
    error = QStringLiteral("Error: ") + systemText(errno);
    return false;
}

int Socket::usableDescriptor() const
{
    return descriptorOpen ? sockfd : -1;
}

bool Socket::reConnect()
{
    connected = connect(ip, port, &sockfd, timeout);
    return connected;
}

bool Socket::disconnect()
{
    connected = false;
    if (std::exchange(descriptorOpen, false))
        ::close(sockfd);
    return false;
}

bool Socket::isConnected() const
{
    return connected;
}

bool Socket::read(QByteArray *data)
{
    // Not cleared: only what was received is looked at.
    std::array<char, receiveBufferSize> buffer;
    data->clear();
    const int ready = waitFor(usableDescriptor(), POLLIN, timeout);
    if (ready < 0) {
        error = QStringLiteral("Error reading: ") + systemText(errno) + QStringLiteral(" (")
                + QString::number(ready) + QLatin1Char(')');
        return disconnect();
    }
    if (ready == 0) {
        error = QStringLiteral("Timeout reading (") + QString::number(timeout)
                + QStringLiteral("ms)");
        return disconnect();
    }
    // An orderly close sets no error number; without this the text would show one of long ago.
    errno = 0;
    const ssize_t count = ::read(sockfd, buffer.data(), buffer.size());
    if (count <= 0) {
        error = QStringLiteral("No data received - ") + systemText(errno);
        return false;
    }
    *data = QByteArray(buffer.data(), static_cast<int>(count));
    return true;
}

bool Socket::write(QByteArray data)
{
    return write(data.constData(), data.size());
}

bool Socket::write(const void *data, int length)
{
    // The system takes the length as an unsigned number.
    errno = EINVAL;
    if (length >= 0
        && ::send(usableDescriptor(), data, static_cast<std::size_t>(length), MSG_NOSIGNAL) >= 0)
        return true;
    error = systemText(errno);
    return disconnect();
}

QString Socket::getIp() const
{
    return ip;
}

int Socket::getPort() const
{
    return port;
}

int Socket::getSockfd() const
{
    return sockfd;
}

QString Socket::getError() const
{
    return error;
}

void Socket::setError(const QString &text)
{
    error = text;
}

bool Socket::hasIpAndPort(QString address, int portNumber) const
{
    return portNumber == port && address == ip;
}

bool Socket::operator==(const Socket &other) const
{
    return this == &other || (ip == other.ip && port == other.port);
}
